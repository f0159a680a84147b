// How far the tensor can move within the errors of the couplings.
#pragma once

#include "errors/options.h"
#include "errors/tensor_samples.h"

namespace trelm {

/// What coupling noise finds. The lists have an entry for each row of the table; those of rows that take no
/// part stay 0. Asks for its memory: without it, it is false.
struct CouplingNoiseResult {
    explicit CouplingNoiseResult(std::size_t rows);
    [[nodiscard]] explicit operator bool() const;

    Block<float> mean, deviation; ///< calculated coupling over the samples, Hz; 0 without any
    Block<float> dSigmaOpt;       ///< error in use, Hz
    Block<int> countFail;         ///< fits that missed the coupling
    TensorSamples samples;
    MappingFit fit;      ///< the last noisy one
    float kSigma = 1.0f; ///< scale of the errors in use
};

/// Adds Gaussian noise to the measured couplings, fits again, keeps the fits that reproduce all couplings
/// within their errors, and finds what the kept tensors have in common. Before, with mcAdjustFlag, it finds
/// the scale of the errors at which enough of the fits are kept. The noise is that of gauss, which no option
/// seeds: two runs have the same. The tensor is not reset between the fits, so those of -nofixed and -dadr go
/// on from the last one.
/// No scale is searched where the fit misses a coupling
/// without an error. A fit that leaves Euler solution j (from 0) at three zero angles is dropped as well, and
/// counted at row j of the table, whatever coupling that is. Fails after a message.
Status mapSimDC(const MappingInput &input, const CouplingNoiseOptions &options, const MappingWatch &watch,
                Messages &messages, CouplingNoiseResult &result);

} // namespace trelm
