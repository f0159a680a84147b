// How well couplings agree with the powder pattern of a tensor: the sum, over the couplings, of log10 of 100
// times the pattern's density per Hz, broadened by the mean error. The factor is that of the sum over places
// of 0.01 Hz, which leaves the step out. It is the same for all tensors, and decides where a score is 0: a
// coupling at which the density is below 0.01 per Hz lowers the score, and a tensor of which most couplings
// are such scores below 0, less than one that does not reach all of them, whose score is 0.
//
// The frequency axis has 8192 places of 0.01 Hz and wraps around: 0.00, 0.01, ... from the start, -0.01,
// -0.02, ... from the end. The pattern is written for a negative Da, its large extreme -2 Da is positive.
// Source: Varner, Vold and Hoatson, J. Magn. Reson. A 123 (1996) 72, for the shape; Warren and Moore, J.
// Magn. Reson. 149 (2001) 271, for the likelihood.
#pragma once

#include "ground/alloc.h"
#include "ground/messages.h"
#include "support/numerics/symmetric_filter.h"

#include <span>
#include <vector>

namespace trelm {

constexpr int axisPlaces = 8192;  ///< places of the frequency axis
constexpr double axisStep = 0.01; ///< Hz
constexpr double axisLength = axisPlaces * axisStep;
constexpr double minMeanError = 1e-6;    ///< Hz; far below a step of the axis: no error of a measurement
constexpr double reachOfResponse = 3.0;  ///< mean errors
constexpr double maxWholeError = 1.703;  ///< Hz; beyond, the halves of the response overwrite each other
constexpr double maxMeanError = 3.413;   ///< Hz; three times a larger error passes the response's 1024 places
constexpr double maxPatternReach = 81.9; ///< Hz; neither half of a pattern may be longer than the axis

/// True if the pattern of such a tensor can be computed: R above -2/3, either half within the axis. That of a
/// positive Dab has no places.
[[nodiscard]] bool isPattern(double Dab, double R);

/// True if neither half of the pattern is longer than the axis.
[[nodiscard]] bool isWithinAxis(double Dab, double R);

/// A place of the axis and how many couplings fall on it.
struct ScorePlace {
    int place = 0;
    int count = 0;
};

/// What the scores of one set of couplings share. The pattern stays between calls of scorePattern.
struct PatternScorer {
    std::vector<ScorePlace> places; ///< ascending
    std::vector<float> taps;        ///< the response, from its lowest to its highest frequency
    int below = 0;                  ///< places of the response below its centre
    float rim = 0.0f;               ///< the value of the two lowest that have no counterpart above; 0: none
    Block<float> data;              ///< the pattern, with margins that repeat its other end
    bool isDense = false;           ///< so many places that `filter` is quicker than a sum for each
    SymmetricFilter filter;         ///< for the part of the axis that has couplings
    int first = 0;                  ///< where that part begins
};

/// Sets a scorer up for couplings and their mean error `delta`, Hz. Fails after a message: delta is below
/// minMeanError or beyond maxMeanError, a coupling lies outside the axis, there is no memory.
Status startScorer(PatternScorer &scorer, std::span<const float> couplings, double delta, Messages &messages);

/// The score of a tensor for which isPattern holds; 0.0 if the pattern does not reach one of the couplings,
/// or is infinite there. Each coupling adds its logarithm to about 1e-5.
/// Where the pattern does not reach, that of the call before stays, unless `clear` is set.
double scorePattern(PatternScorer &scorer, double Dab, double R, bool clear);

/// The score of one tensor. 0.0 also for a tensor without a pattern, and, after a message, for what
/// startScorer refuses.
double mlMagTensorSingle(std::span<const float> coup_mat, double delta, double Dab, double R,
                         Messages &messages);

} // namespace trelm
