// The mode that adds noise to a structure.
#pragma once

#include "modes/run.h"

namespace trelm {

/// Adds noise to the vectors of the couplings or to the backbone angles, and writes the structure. Returns 0,
/// or 1 after a message.
int addStructureNoise(Run &run);

} // namespace trelm
