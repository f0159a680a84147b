// Straight lines, correlation, moments, extremes. Spans count from 0.
#pragma once

#include <span>

namespace trelm {

/// A straight line y = a + b x.
struct LineFit {
    float a = 0.0f, b = 0.0f;
    float siga = 0.0f, sigb = 0.0f; ///< standard deviations of a and b
    float chi2 = 0.0f;
    float q = 0.0f; ///< goodness of fit, 1.0 without errors
};

/// Fits a line. mwt 0: errors are not used, `sig` is not read, and siga and sigb are scaled by
/// sqrt(chi2 / (n - 2)). What has no value (no spread in x, or siga and sigb of fewer than three points
/// without errors) is 0. Source: the textbook's chapter on fitting data to a straight line.
LineFit fit(std::span<const float> x, std::span<const float> y, std::span<const float> sig, int mwt);

/// Linear correlation.
struct Correlation {
    float r = 0.0f;    ///< Pearson's r; 0 without spread
    float prob = 0.0f; ///< probability of |r| this large without correlation
    float z = 0.0f;    ///< Fisher's z
};
Correlation pearsn(std::span<const float> x, std::span<const float> y);

/// Moments of a distribution.
struct Moments {
    float sum = 0.0f, ave = 0.0f;
    float adev = 0.0f, sdev = 0.0f, svar = 0.0f; ///< average deviation, standard deviation, variance
    float skew = 0.0f, curt = 0.0f;
};
Moments moment(std::span<const float> data);

void vsSet(std::span<float> vec, float value);
float getAvg(std::span<const float> vec); ///< 0 for no values, as the two below
float getMin(std::span<const float> vec);
float getMax(std::span<const float> vec);

} // namespace trelm
