// What the estimates of a tensor's magnitude without a structure share: the couplings of a table, chosen and
// normalised by their weights, and the tensor that their extremes alone tell.
//
// A powder pattern has its extremes at Dzz = 2 Da and Dyy = -Da (1 + 1.5 R), its peak at Dxx = -Da (1 - 1.5
// R). Source: Clore, Gronenborn and Bax, J. Magn. Reson. 133 (1998) 216.
#pragma once

#include "couplings/dipolar.h"
#include "ground/trelm.h"

#include <span>
#include <string>
#include <vector>

namespace trelm {

/// What such an estimate works on. An empty output name means standard output.
struct MagnitudeJob {
    std::string inDName;                                ///< the coupling table to read
    std::string atomNameS1 = "All", atomNameS2 = "All"; ///< atoms of the couplings to use; "All": any
    std::string outDName;                               ///< the coupling table to write
    DTable *dTab = nullptr;                             ///< empty, takes the table
    TrelmInfo *trelmInfo = nullptr;                     ///< takes the results, too
    DcInfo *dcInfo = nullptr;                           ///< unset limits take those of the table
};

/// Couplings times their weights, Hz. A row of weight 0 is one, too: a coupling of 0 Hz with the error 0,
/// which lowers the mean error.
struct ObservedCouplings {
    std::vector<float> coupList, sigma; ///< couplings and their errors, in the order of the table
    float minD = 0.0f, maxD = 0.0f;     ///< the extremes; 0 without a coupling
    float rAveDD = 0.0f;                ///< mean error; 0 without a coupling
};

/// True if a measured row takes part: it is valid and has a value.
[[nodiscard]] constexpr bool isObserved(const DInfo &row)
{
    return row.valid != 0 && row.d < missingCoupling;
}

/// Reads the table, settles the window of residues, chooses the couplings, and tells the number left by both
/// choices on standard output, which validCountD takes. Returns 0, or 1 after a message: the table cannot be
/// read, or no coupling is left.
int readObserved(const MagnitudeJob &job);

/// Collects the chosen couplings. Returns 0, or 1 after a message: a coupling or an error times its weight is
/// no finite number, or all couplings are 0, which have no tensor.
int collectObserved(const DTable &dTab, ObservedCouplings &observed);

/// True if the larger extreme is the negative one; extremes of one size count as positive.
[[nodiscard]] bool isNegativeSide(float minD, float maxD);

/// Smallest and largest of the couplings, Hz; 0 without any.
struct Extremes {
    float minD = 0.0f, maxD = 0.0f;
};
Extremes findExtremes(std::span<const float> coupList);

/// Reverses all signs if the larger extreme is the negative one: patterns are scored with it positive.
void turnPositive(std::span<float> coupList);

/// Da2Par and R2Par: the tensor of two extremes that are not both 0. R comes out below 0 if no tensor has
/// such extremes.
void solveExtremes(float minD, float maxD, MagnitudeOptions &histInfo);

} // namespace trelm
