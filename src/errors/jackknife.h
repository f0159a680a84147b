// How far the tensor moves with the choice of couplings.
#pragma once

#include "errors/tensor_samples.h"

namespace trelm {

/// Repeats the fit on random parts of the couplings (mapFrac, mapFixCount) and reports what the tensors have
/// in common, with the couplings of the mean tensor. The parts are drawn from ran3 with a seed of their own,
/// so -idum changes nothing. The tensor is not reset between the fits: those of -nofixed and -dadr go on from
/// the last one, and a part without any coupling counts that one again. Returns 0, or non-zero after a
/// message; an empty table gives 0 and no file.
int aeraSimDC(const MappingSetup &setup);

} // namespace trelm
