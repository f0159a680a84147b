#include "support/numerics/statistics.h"

#include "support/numerics/special.h"
#include "support/text/text.h"

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

/// Chi-square of the line; without errors each point has weight 1.
float chiSquare(const LineFit &line, std::span<const float> x, std::span<const float> y,
                std::span<const float> sig, bool weighted)
{
    float chi2 = 0.0f;
    for (std::size_t i = 0; i < x.size(); ++i) {
        float deviation = y[i] - line.a - line.b * x[i];
        if (weighted)
            deviation /= sig[i];
        chi2 += deviation * deviation;
    }
    return chi2;
}

} // namespace

LineFit fit(std::span<const float> x, std::span<const float> y, std::span<const float> sig, int mwt)
{
    const bool weighted = mwt != 0;
    const std::size_t n = x.size();
    if (!hasSpread(x))
        return {};
    if (weighted && !(getMin(sig) > 0.0f)) {
        nrerror("errors must be above 0 in fit");
        return {};
    }
    float sx = 0.0f, sy = 0.0f, ss = 0.0f;
    for (std::size_t i = 0; i < n; ++i) {
        const float weight = weighted ? 1.0f / (sig[i] * sig[i]) : 1.0f;
        ss += weight;
        sx += x[i] * weight;
        sy += y[i] * weight;
    }
    const float xMean = sx / ss;
    float st2 = 0.0f;
    LineFit line;
    for (std::size_t i = 0; i < n; ++i) {
        const float error = weighted ? sig[i] : 1.0f;
        const float t = (x[i] - xMean) / error;
        st2 += t * t;
        line.b += t * y[i] / error;
    }
    if (!(st2 > 0.0f))
        return {};
    line.b /= st2;
    line.a = (sy - sx * line.b) / ss;
    line.chi2 = chiSquare(line, x, y, sig, weighted);
    line.q = 1.0f;
    const float freedom = static_cast<float>(n) - 2.0f;
    float scale = 1.0f;
    if (!weighted)
        scale = freedom > 0.0f ? std::sqrt(line.chi2 / freedom) : 0.0f;
    else if (freedom > 0.0f)
        line.q = gammq(0.5f * freedom, 0.5f * line.chi2);
    line.siga = scale * std::sqrt((1.0f + sx * sx / (ss * st2)) / ss);
    line.sigb = scale * std::sqrt(1.0f / st2);
    return line;
}

Correlation pearsn(std::span<const float> x, std::span<const float> y)
{
    constexpr double tiny = 1.0e-20; // keeps complete correlation finite
    if (!hasSpread(x) || !hasSpread(y))
        return {};
    const float ax = mean(x), ay = mean(y);
    float sxx = 0.0f, syy = 0.0f, sxy = 0.0f;
    for (std::size_t i = 0; i < x.size(); ++i) {
        const float xt = x[i] - ax, yt = y[i] - ay;
        sxx += xt * xt;
        syy += yt * yt;
        sxy += xt * yt;
    }
    const double norm = std::sqrt(double{sxx} * syy);
    if (!(norm > 0.0))
        return {};
    Correlation result;
    // Rounding can take r past 1, where the logarithm has no value.
    result.r = std::clamp(static_cast<float>(sxy / norm), -1.0f, 1.0f);
    const double above = 1.0 + result.r + tiny, below = 1.0 - result.r + tiny;
    result.z = static_cast<float>(0.5 * std::log(above / below));
    const double df = static_cast<double>(x.size()) - 2.0;
    if (df > 0.0) {
        const double t = result.r * std::sqrt(df / (below * above));
        result.prob = betai(static_cast<float>(0.5 * df), 0.5f, static_cast<float>(df / (df + t * t)));
    }
    return result;
}

Moments moment(std::span<const float> data)
{
    if (data.size() < 2) {
        nrerror("n must be at least 2 in moment");
        return {};
    }
    const auto n = static_cast<float>(data.size());
    Moments m;
    for (float value : data)
        m.sum += value;
    m.ave = m.sum / n;
    float rest = 0.0f; // what the rounded mean leaves over
    for (float value : data) {
        const float s = value - m.ave;
        rest += s;
        m.adev += std::fabs(s);
        const float square = s * s;
        m.svar += square;
        m.skew += square * s;
        m.curt += square * square;
    }
    m.adev /= n;
    m.svar = std::max((m.svar - rest * rest / n) / (n - 1.0f), 0.0f);
    m.sdev = std::sqrt(m.svar);
    if (m.svar > 0.0f) {
        m.skew = static_cast<float>(m.skew / (double{n} * m.svar * m.sdev));
        m.curt = static_cast<float>(m.curt / (double{n} * m.svar * m.svar) - 3.0);
    } else {
        nrerror("No skew/kurtosis when variance = 0 (in moment)");
        m.skew = m.curt = 0.0f;
    }
    return m;
}

void vsSet(std::span<float> vec, float value)
{
    std::ranges::fill(vec, value);
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
