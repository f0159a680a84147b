// The common input phase: structure, couplings, and the choice of couplings and atoms.
#pragma once

#include "modes/run.h"

namespace trelm {

/// Reads the structure and the couplings, settles the residue window, maps couplings to atoms, selects atoms,
/// and drops the hydrogens from the selection unless asked not to. Returns 0, or the status of the failing
/// step after its messages.
int readInputs(Run &run);

} // namespace trelm
