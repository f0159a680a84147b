// The charges of a simulation as marks on the atoms that a structure file shows.
#pragma once

#include "simulation/charges/charges.h"
#include "structure/pdb.h"

namespace trelm {

/// The label of a charge, e, in a structure file. The negative charges are the ones marked "0+".
const char *chargeLabel(float charge);

/// Clears tempFactor of all atoms; then each atom with a charge gets it as tempFactor, and its label as
/// chargeStr. `charges`: by their places in the atom list. Other atoms keep the label they were read with.
void labelCharges(PDBInfo *pdbInfo, const ChargeSet &charges);

} // namespace trelm
