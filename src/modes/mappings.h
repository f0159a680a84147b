// The branches of the best-fit that map its error.
#pragma once

#include "modes/run.h"

namespace trelm {

// All fail after their messages.
Status mapCouplingNoise(Run &run, Messages &messages);
Status mapStructuralNoise(Run &run, Messages &messages);
Status mapJackknife(Run &run, Messages &messages);

} // namespace trelm
