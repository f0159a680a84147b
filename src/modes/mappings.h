// The branches of the best-fit that map its error.
#pragma once

#include "modes/run.h"

namespace trelm {

// All fail after their messages.
Status mapCouplingNoise(const Run &run, Messages &messages);
Status mapStructuralNoise(const Run &run, Messages &messages);
Status mapJackknife(const Run &run, Messages &messages);

} // namespace trelm
