// Statistics of measured against calculated couplings.
//
// Three statistics run over much the same pairs; each keeps the rules of the place that prints it:
// - getStatDC, line by line in the mappings: couplings up to 900; differences are weighted in the RMS, not in
//   chi-square; sums in single precision.
// - getStatDCmod, in the report of a fit: couplings below 888; both couplings are weighted before anything
//   else, so chi-square is too; sums in single precision.
// - statDC, the block of the simulations: couplings below 999; weighted as in the
//   report; sums in double precision; no chi-square.
#pragma once

#include "couplings/dipolar.h"
#include "couplings/fit.h"
#include "support/numerics/statistics.h"

#include <span>

namespace trelm {

/// Quick statistics of a fit.
struct Misfit {
    float rSumD = 0.0f; ///< root of the mean of weighted squared differences, Hz
    float pSumD = 0.0f; ///< sum of squared differences over errors
    int nD = 0;         ///< pairs behind both
};
Misfit getStatDC(const DTable &dTab, const FitColumns &columns, std::span<const float> calculated);

/// Correlation and regressions of two equally long lists, without errors. What has no value is 0.
struct Regression {
    float r = 0.0f; ///< correlation
    LineFit yOnX, xOnY;
    float aveSlope = 0.0f;    ///< mean of the slope of y on x and the inverse of that of x on y
    float errAveSlope = 0.0f; ///< half of it times the errors of both, as if they were relative ones
};
Regression regress(std::span<const float> x, std::span<const float> y);

/// The statistics of the report.
struct DcStatistics {
    float rSumD2 = 0.0f;  ///< RMS, Hz
    float pSumD = 0.0f;   ///< chi-square
    float stdDevD = 0.0f; ///< standard deviation of the differences, Hz
    float qD = 0.0f;      ///< Q from rms
    /// Q from the order matrix: the RMS over that of vectors in all directions, for the largest interaction
    /// constant. That is looked for row by row with its sign, so behind a negative one every row counts as
    /// larger: in a table of several kinds of pairs Q depends on the order of the rows.
    float qIsoD = 0.0f;
    float coorR = 0.0f;                    ///< correlation
    float offset = 0.0f, errOffset = 0.0f; ///< regression of calculated on measured
    float slope = 0.0f, errSlope = 0.0f;
    float aveSlope = 0.0f, errAveSlope = 0.0f; ///< mean of both regressions
    int nD = 0;
};

/// Fails after a message if there is no memory; the statistics then stay 0.
Status getStatDCmod(const FittedTable &table, DcStatistics &stat, Messages &messages);

/// The statistics of a simulation.
struct ComparedCouplings {
    float stdDevD = 0.0f; ///< standard deviation of the differences, Hz
    float q = 0.0f;       ///< root of the squared differences over the squared measured couplings
    Regression line;      ///< y: calculated couplings
};

/// Fails after a message if there is no memory; the statistics then stay 0.
Status statDC(const DTable &dTab, ComparedCouplings &found, Messages &messages);

} // namespace trelm
