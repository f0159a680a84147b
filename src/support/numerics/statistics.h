// Straight lines, correlation, extremes, single precision: sums are formed in the order of the values.
#pragma once

#include <span>

namespace trelm {

/// A straight line y = a + b x.
struct LineFit {
    float a = 0.0f, b = 0.0f;
    float siga = 0.0f, sigb = 0.0f; ///< standard deviations of a and b, from the scatter about the line
};

/// Fits a line to points of equal weight; x and y are equally long. What has no value is 0: all of it without
/// spread in x, siga and sigb of fewer than three points. Source: Bevington and Robinson, Data Reduction and
/// Error Analysis for the Physical Sciences, chapter 6.
LineFit fit(std::span<const float> x, std::span<const float> y);

/// Pearson's coefficient of linear correlation, -1 to 1, of equally long lists; 0 without spread in one.
float pearsn(std::span<const float> x, std::span<const float> y);

float getAvg(std::span<const float> vec); ///< 0 for no values, as the two below
float getMin(std::span<const float> vec);
float getMax(std::span<const float> vec);

} // namespace trelm
