#include "support/numerics/special.h"

#include "support/text/text.h"

#include <cmath>

namespace trelm {

namespace {

constexpr int maxTerms = 100;
constexpr float accuracy = 3.0e-7f;
constexpr float floorValue = 1.0e-30f; ///< stands for a zero denominator of a continued fraction

float awayFromZero(float value)
{
    return std::fabs(value) < floorValue ? floorValue : value;
}

/// A continued fraction that is worked out from the front (modified method of Lentz): the value so far with
/// the ratios of successive numerators (c) and denominators (d).
struct Fraction {
    float value, c, d;

    /// Adds the step with partial numerator `a` and partial denominator `b`; returns the factor by which the
    /// value changed.
    float add(float a, float b)
    {
        d = 1.0f / awayFromZero(a * d + b);
        c = awayFromZero(b + a / c);
        const float factor = d * c;
        value *= factor;
        return factor;
    }
};

bool settled(float factor)
{
    return std::fabs(factor - 1.0f) < accuracy;
}

/// The factor x^a e^-x / Gamma(a) that the series and the fraction share.
float gammaFactor(float a, float x)
{
    return static_cast<float>(std::exp(-double{x} + a * std::log(double{x}) - gammln(a)));
}

} // namespace

float gammln(float xx)
{
    // Lanczos, SIAM J. Numer. Anal. B 1 (1964) 86, six terms.
    constexpr double terms[] = {76.18009172947146,  -86.50532032941677,    24.01409824083091,
                                -1.231739572450155, 0.1208650973866179e-2, -0.5395239384953e-5};
    const double x = xx;
    double series = 1.000000000190015;
    double denominator = x;
    for (double term : terms)
        series += term / ++denominator;
    const double shifted = x + 5.5;
    return static_cast<float>((x + 0.5) * std::log(shifted) - shifted +
                              std::log(2.5066282746310005 * series / x));
}

float gammq(float a, float x)
{
    if (!(x >= 0.0f) || !(a > 0.0f)) {
        nrerror("Invalid arguments in routine gammq");
        return 0.0f;
    }
    return x < a + 1.0f ? 1.0f - gser(a, x) : gcf(a, x);
}

float gser(float a, float x)
{
    if (!(x > 0.0f)) {
        if (!(x == 0.0f))
            nrerror("x less than 0 in routine gser");
        return 0.0f;
    }
    float term = 1.0f / a;
    float sum = term;
    float denominator = a;
    for (int n = 0; n < maxTerms; ++n) {
        term *= x / ++denominator;
        sum += term;
        if (std::fabs(term) < std::fabs(sum) * accuracy)
            return sum * gammaFactor(a, x);
    }
    nrerror("a too large, ITMAX too small in routine gser");
    return sum * gammaFactor(a, x);
}

float gcf(float a, float x)
{
    const float b0 = x + 1.0f - a;
    const float first = 1.0f / awayFromZero(b0);
    Fraction fraction{first, 1.0f / floorValue, first};
    float b = b0;
    for (int i = 1; i <= maxTerms; ++i) {
        const auto n = static_cast<float>(i);
        b += 2.0f;
        if (settled(fraction.add(-n * (n - a), b)))
            return gammaFactor(a, x) * fraction.value;
    }
    nrerror("a too large, ITMAX too small in gcf");
    return gammaFactor(a, x) * fraction.value;
}

float betai(float a, float b, float x)
{
    if (!(x >= 0.0f && x <= 1.0f)) {
        nrerror("Bad x in routine betai");
        return 0.0f;
    }
    const bool atEnd = x == 0.0f || x == 1.0f;
    const double exponent = double{gammln(a + b)} - gammln(a) - gammln(b) +
                            (atEnd ? 0.0 : a * std::log(double{x}) + b * std::log(1.0 - x));
    const float factor = atEnd ? 0.0f : static_cast<float>(std::exp(exponent));
    // The fraction converges quickly below the mean of the distribution only; above it the symmetry serves.
    if (x < (a + 1.0f) / (a + b + 2.0f))
        return factor * betacf(a, b, x) / a;
    return 1.0f - factor * betacf(b, a, 1.0f - x) / b;
}

float betacf(float a, float b, float x)
{
    const float first = 1.0f / awayFromZero(1.0f - (a + b) * x / (a + 1.0f));
    Fraction fraction{first, 1.0f, first};
    for (int i = 1; i <= maxTerms; ++i) {
        const auto m = static_cast<float>(i);
        const float even = m * (b - m) * x / ((a + 2.0f * m - 1.0f) * (a + 2.0f * m));
        const float odd = -(a + m) * (a + b + m) * x / ((a + 2.0f * m) * (a + 2.0f * m + 1.0f));
        fraction.add(even, 1.0f);
        if (settled(fraction.add(odd, 1.0f)))
            return fraction.value;
    }
    nrerror("a or b too big, or MAXIT too small in betacf");
    return fraction.value;
}

} // namespace trelm
