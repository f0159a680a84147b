// The charges of a simulation as marks on the atoms that a structure file shows.
#pragma once

#include "simulation/charges/charges.h"
#include "structure/pdb.h"
#include "structure/write.h"

#include <vector>

namespace trelm {

/// The label of a charge, e, in a structure file. The negative charges are the ones marked "0+".
const char *chargeLabel(float charge);

/// Each atom with a charge has it as tempFactor, and its label as chargeStr; all others have 0 and the label
/// they were read with. `charges`: by their places in the atom list.
std::vector<AtomLabel> labelCharges(const PDBInfo &pdbInfo, const ChargeSet &charges);

} // namespace trelm
