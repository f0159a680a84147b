#include "support/numerics/statistics.h"

#include <algorithm>
#include <cmath>

namespace trelm {

namespace {

/// True if the values differ. Asked of the values themselves: the sum of squares about a rounded mean is
/// rarely exactly 0.
bool hasSpread(std::span<const float> values)
{
    return !values.empty() && getMin(values) != getMax(values);
}

float mean(std::span<const float> values)
{
    float sum = 0.0f;
    for (float value : values)
        sum += value;
    return sum / static_cast<float>(values.size());
}

float chiSquare(const LineFit &line, std::span<const float> x, std::span<const float> y)
{
    float chi2 = 0.0f;
    for (std::size_t i = 0; i < x.size(); ++i) {
        const float deviation = y[i] - line.a - line.b * x[i];
        chi2 += deviation * deviation;
    }
    return chi2;
}

} // namespace

LineFit fit(std::span<const float> x, std::span<const float> y)
{
    if (!hasSpread(x))
        return {};
    float sx = 0.0f, sy = 0.0f;
    for (std::size_t i = 0; i < x.size(); ++i) {
        sx += x[i];
        sy += y[i];
    }
    const auto n = static_cast<float>(x.size());
    const float xMean = sx / n;
    float st2 = 0.0f;
    LineFit line;
    for (std::size_t i = 0; i < x.size(); ++i) {
        const float t = x[i] - xMean;
        st2 += t * t;
        line.b += t * y[i];
    }
    if (!(st2 > 0.0f))
        return {};
    line.b /= st2;
    line.a = (sy - sx * line.b) / n;
    const float freedom = n - 2.0f;
    const float scale = freedom > 0.0f ? std::sqrt(chiSquare(line, x, y) / freedom) : 0.0f;
    line.siga = scale * std::sqrt((1.0f + sx * sx / (n * st2)) / n);
    line.sigb = scale * std::sqrt(1.0f / st2);
    return line;
}

float pearsn(std::span<const float> x, std::span<const float> y)
{
    if (!hasSpread(x) || !hasSpread(y))
        return 0.0f;
    const float ax = mean(x), ay = mean(y);
    float sxx = 0.0f, syy = 0.0f, sxy = 0.0f;
    for (std::size_t i = 0; i < x.size(); ++i) {
        const float xt = x[i] - ax, yt = y[i] - ay;
        sxx += xt * xt;
        syy += yt * yt;
        sxy += xt * yt;
    }
    const double norm = std::sqrt(double{sxx} * syy);
    // Rounding can take it past 1.
    return norm > 0.0 ? std::clamp(static_cast<float>(sxy / norm), -1.0f, 1.0f) : 0.0f;
}

float getAvg(std::span<const float> vec)
{
    return vec.empty() ? 0.0f : mean(vec);
}

float getMin(std::span<const float> vec)
{
    return vec.empty() ? 0.0f : *std::ranges::min_element(vec);
}

float getMax(std::span<const float> vec)
{
    return vec.empty() ? 0.0f : *std::ranges::max_element(vec);
}

} // namespace trelm
