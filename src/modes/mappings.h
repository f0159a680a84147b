// The branches of the best-fit that map its error.
#pragma once

#include "modes/run.h"

namespace trelm {

// Return 0, or the status of the failing step after its messages.
int mapCouplingNoise(Run &run);
int mapStructuralNoise(Run &run);
int mapJackknife(Run &run);

} // namespace trelm
