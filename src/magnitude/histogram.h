// Da and R from the distribution of couplings: the extremes of the powder pattern, and its peak from a
// histogram. No structure is needed.
//
// Dzz = 2 Da, Dyy = -Da (1 + 1.5 R), Dxx = -Da (1 - 1.5 R).
// Source: Clore, Gronenborn and Bax, J. Magn. Reson. 133 (1998) 216.
#pragma once

#include "magnitude/observed.h"
#include "magnitude/options.h"

#include <span>
#include <vector>

namespace trelm {

constexpr int maxBins = 250; ///< bins of a histogram

/// Warns of factors that are not above 0, and of a single bin, which has no width.
void tellHistogram(const HistogramOptions &options, Messages &messages);

/// Estimates Da and R of couplings. Without one most populated bin the extremes' own Da and R are the result,
/// after a message. Returns Status::failed after a message: fewer than two couplings, an error of 0 where one
/// is needed, too many bins, or a fit without a solution.
Status getHistDabR(const ObservedCouplings &observed, const HistogramOptions &options,
                   HistogramResult &result, Messages &messages);

/// The same method on lists, Hz, of at least two couplings that are not all 0, with the fit within bounds.
/// `result` comes with the tensor of the set before, DaFit and RFit: it stays without one most populated bin.
/// modeFit 2 takes the extremes' own tensor, others than 2 and 3 do nothing. `coupList` may be sorted
/// afterwards. Fails after a message: fewer couplings, all of them 0, or too many bins.
Status histoExtFit(std::span<float> coupList, std::span<const float> sigma, const HistogramOptions &options,
                   HistogramResult &result, Messages &messages);

/// Sorts the couplings. Averages each extreme over as many couplings as agree with one value: sdev * sqrt(n)
/// stays below delta times the factor of the side. The mean of the first set that no longer agrees, or of all
/// couplings, is taken; it is 0 for one coupling or for a limit that is not above 0.
struct AveragedExtremes {
    float dNeg = 0.0f, dPos = 0.0f;
};
AveragedExtremes getDzzDyy(std::span<float> coupList, float delta, float sdevNeg, float sdevPos);

/// A histogram's bins, Hz.
struct Bins {
    int nBins = 0; ///< asked for, also where they are too many to have centres
    float binWidth = 0.0f;
    std::vector<float> centres;
};

/// Lays bins from min on; nUserBins below 1 lets the error decide, a bin being two errors wide; 1 is a bin of
/// no finite width. Returns whether there are at most maxBins; if not, their number stands in nBins (251 at
/// least where the width comes out as 0).
[[nodiscard]] bool makeBins(float delta, float max, float min, int nUserBins, Bins &bins);

/// The centre of the most populated bin into dxx, of the first to reach its count. Couplings outside are told
/// as results. Returns whether that bin is the only one: not if another has the same count or no coupling
/// lies in any.
bool getDxx(std::span<const float> coupList, const Bins &bins, float &dxx, Messages &messages);

/// The principal couplings as a model for nonlinearfit: a is Da, R; x 0 gives Dzz, 1 Dyy, -1 Dxx.
void alignpoly(float x, std::span<const float> a, float &y, std::span<float> dyda);

/// Fits DaFit and RFit to Dzz, Dyy and, with modeFit 3, Dxx, within daLo, daHi, rhLo, rhHi, from Da2Par and
/// R2Par.
void fitDCHisto(const HistogramOptions &options, HistogramResult &result, Messages &messages);

} // namespace trelm
