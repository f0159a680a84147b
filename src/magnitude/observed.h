// What the estimates of a tensor's magnitude without a structure share: the couplings of a table, chosen and
// normalised by their weights, and the tensor that their extremes alone tell.
//
// A powder pattern has its extremes at Dzz = 2 Da and Dyy = -Da (1 + 1.5 R), its peak at Dxx = -Da (1 - 1.5
// R). Source: Clore, Gronenborn and Bax, J. Magn. Reson. 133 (1998) 216.
#pragma once

#include "couplings/dipolar.h"
#include "ground/messages.h"
#include "magnitude/results.h"

#include <span>
#include <vector>

namespace trelm {

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

/// Collects the chosen couplings. Returns 0, or 1 after a message: a coupling or an error times its weight is
/// no finite number, or all couplings are 0, which have no tensor.
Status collectObserved(const DTable &dTab, ObservedCouplings &observed, Messages &messages);

/// True if the larger extreme is the negative one; extremes of one size count as positive.
[[nodiscard]] bool isNegativeSide(float minD, float maxD);

/// Smallest and largest of the couplings, Hz; 0 without any.
struct Extremes {
    float minD = 0.0f, maxD = 0.0f;
};
Extremes findExtremes(std::span<const float> coupList);

/// Reverses all signs if the larger extreme is the negative one: patterns are scored with it positive.
void turnPositive(std::span<float> coupList);

/// The tensor of two extremes, Hz, that are not both 0.
ExtremesTensor solveExtremes(float minD, float maxD);

} // namespace trelm
