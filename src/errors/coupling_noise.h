// How far the tensor can move within the errors of the couplings.
#pragma once

#include "errors/tensor_samples.h"

namespace trelm {

/// Adds Gaussian noise to the measured couplings, fits again, keeps the fits that reproduce all couplings
/// within their errors, and reports what the kept tensors have in common. Before, with mcAdjustFlag, it finds
/// the scale of the errors at which enough of the fits are kept; kSigma of the record holds it afterwards.
/// The measured couplings are back at the end of a run without failure; their errors are then the deviations
/// of the calculated ones, their weights the number of fits that missed them. Returns 0, or non-zero after a
/// message.
int mapSimDC(const MappingSetup &setup);

} // namespace trelm
