// What the estimates of a tensor's magnitude find.
#pragma once

namespace trelm {

/// The tensor that the two extremes of the couplings alone tell.
struct ExtremesTensor {
    float Da2Par = 0.0f; ///< Hz
    float R2Par = 0.0f;  ///< below 0 if no tensor has such extremes
};

/// The result of the histogram method.
struct HistogramResult : ExtremesTensor {
    float dcMin = 0.0f; ///< range of the couplings, Hz
    float dcMax = 0.0f;
    float Dzz = 0.0f; ///< principal couplings, Hz
    float Dyy = 0.0f;
    float Dxx = 0.0f;
    int nBins = 0;         ///< bins used; 0: none were needed
    float binWidth = 0.0f; ///< Hz
    float DaFit = 0.0f;    ///< the fit and its errors, Hz for Da
    float DaErrFit = 0.0f;
    float RFit = 0.0f;
    float RErrFit = 0.0f;
};

/// The result of the likelihood search, Hz for Da.
struct LikelihoodResult {
    float DaMl = 0.0f;
    float DaErrMl = 0.0f;
    float RMl = 0.0f;
    float RErrMl = 0.0f;
};

/// What a report can show of either.
struct MagnitudeResult : HistogramResult, LikelihoodResult {};

} // namespace trelm
