// The mode that adds noise to a structure.
#pragma once

#include "modes/run.h"

namespace trelm {

/// Adds noise to the vectors of the couplings or to the backbone angles, and writes the structure. Fails
/// after its messages.
Status addStructureNoise(const Run &run, Messages &messages);

} // namespace trelm
