// How far the tensor moves with the choice of couplings.
#pragma once

#include "errors/tensor_samples.h"

namespace trelm {

/// Repeats the fit on random parts of the couplings (mapFrac, mapFixCount) and reports what the tensors have
/// in common, with the couplings of the mean tensor. Returns 0, or non-zero after a message.
int aeraSimDC(const MappingSetup &setup);

} // namespace trelm
