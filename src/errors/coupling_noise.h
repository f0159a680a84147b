// How far the tensor can move within the errors of the couplings.
#pragma once

#include "errors/tensor_samples.h"

namespace trelm {

/// Adds Gaussian noise to the measured couplings, fits again, keeps the fits that reproduce all couplings
/// within their errors, and reports what the kept tensors have in common. Before, with mcAdjustFlag, it finds
/// the scale of the errors at which enough of the fits are kept; kSigma of the record holds it afterwards.
/// The noise is that of gauss, which no option seeds: two runs have the same. The tensor is not reset between
/// the fits, so those of -nofixed and -dadr go on from the last one.
/// The measured couplings are back at the end of a run without failure, and the Saupe vector is the mean one,
/// while the tensor's angles, Da and Dr (the lines of Euler angles and of Q) are left as the last fit had
/// them. The errors of the couplings are then the deviations of the calculated ones, their weights the number
/// of fits that missed them. No scale is searched where the fit misses a coupling without an error. A fit
/// that leaves Euler solution j (from 0) at three zero angles is dropped as well, and counted at row j of the
/// table, whatever coupling that is. Returns 0, or non-zero after a message; an empty table gives 0 and no
/// file.
int mapSimDC(const MappingSetup &setup);

} // namespace trelm
