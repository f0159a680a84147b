// The common input phase: structure, couplings, and the choice of couplings and atoms.
#pragma once

#include "modes/run.h"

namespace trelm {

/// Reads the structure and the couplings, settles the residue window, maps couplings to atoms, selects atoms,
/// and drops the hydrogens from the selection unless asked not to. Fails after its
/// messages.
Status readInputs(Run &run, Messages &messages);

} // namespace trelm
