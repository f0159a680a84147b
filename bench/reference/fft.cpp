#include "reference/fft.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <numbers>
#include <utility>
#include <vector>

namespace trelm {

namespace {

/// Work arrays of convlv, kept from call to call.
std::vector<float> padded, spectrum;

int refuse(const char *message)
{
    std::fprintf(stderr, "Utility Error: %s\nAborting.\n", message);
    return 1;
}

/// exp(i angle k) for k = 0, 1, 2 ..., by a recurrence that keeps the difference from 1 and so its accuracy.
struct Phase {
    double re = 1.0, im = 0.0, stepRe, stepIm;
    explicit Phase(double angle) : stepRe(-2.0 * std::pow(std::sin(0.5 * angle), 2)), stepIm(std::sin(angle))
    {
    }
    void advance()
    {
        const double old = re;
        re += re * stepRe - im * stepIm;
        im += im * stepRe + old * stepIm;
    }
};

/// Puts the complex values into the order of their reversed place bits.
void reverseBits(std::span<float> data)
{
    const std::size_t n = data.size() / 2;
    std::size_t j = 0;
    for (std::size_t i = 0; i < n; ++i) {
        if (j > i) {
            std::swap(data[2 * i], data[2 * j]);
            std::swap(data[2 * i + 1], data[2 * j + 1]);
        }
        std::size_t bit = n / 2;
        for (; bit >= 1 && (j & bit) != 0; bit /= 2)
            j ^= bit;
        j |= bit;
    }
}

/// Joins transforms of half the length, `half` complex values apart.
void butterflies(std::span<float> data, std::size_t half, int isign)
{
    Phase phase(isign * std::numbers::pi / static_cast<double>(half));
    for (std::size_t m = 0; m < half; ++m) {
        for (std::size_t i = m; i < data.size() / 2; i += 2 * half) {
            float *a = &data[2 * i], *b = &data[2 * (i + half)];
            const auto re = static_cast<float>(phase.re * b[0] - phase.im * b[1]);
            const auto im = static_cast<float>(phase.re * b[1] + phase.im * b[0]);
            b[0] = a[0] - re;
            b[1] = a[1] - im;
            a[0] += re;
            a[1] += im;
        }
        phase.advance();
    }
}

/// Splits the transform of the even and odd values of a real array, taken as one complex array, into the
/// transform of the real array (isign 1), or the other way round (-1).
void separate(std::span<float> data, int isign)
{
    const std::size_t n = data.size();
    const float c2 = isign == 1 ? -0.5f : 0.5f;
    Phase phase(isign * 2.0 * std::numbers::pi / static_cast<double>(n));
    for (std::size_t k = 1; k < n / 4; ++k) {
        phase.advance();
        float *low = &data[2 * k], *high = &data[n - 2 * k];
        const float evenRe = 0.5f * (low[0] + high[0]), evenIm = 0.5f * (low[1] - high[1]);
        const float oddRe = -c2 * (low[1] + high[1]), oddIm = c2 * (low[0] - high[0]);
        const auto turnedRe = static_cast<float>(phase.re * oddRe - phase.im * oddIm);
        const auto turnedIm = static_cast<float>(phase.re * oddIm + phase.im * oddRe);
        low[0] = evenRe + turnedRe;
        low[1] = evenIm + turnedIm;
        high[0] = evenRe - turnedRe;
        high[1] = turnedIm - evenIm;
    }
}

/// The response spread over n values, zeros between its positive and its negative times.
void padResponse(std::span<const float> respns, std::size_t n)
{
    const std::size_t wing = (respns.size() - 1) / 2;
    padded.assign(n, 0.0f);
    std::copy_n(respns.begin(), wing + 1, padded.begin());
    std::copy_n(respns.end() - static_cast<std::ptrdiff_t>(wing), wing,
                padded.end() - static_cast<std::ptrdiff_t>(wing));
}

/// Product or quotient of the two spectra, from frequency 0 to the highest, into `ans`.
int combine(int isign, std::span<float> ans, std::size_t n)
{
    const std::size_t points = n / 2;
    const auto half = static_cast<float>(points);
    for (std::size_t k = 0; k <= n / 2; ++k) {
        const float *d = &spectrum[2 * k];
        float *r = &ans[2 * k];
        const float re = r[0], im = isign == 1 ? r[1] : -r[1];
        float scale = half;
        if (isign != 1) {
            const float size = re * re + im * im;
            if (size == 0.0f)
                return refuse("Deconvolving at response zero in convlv");
            scale = size * half;
        }
        r[0] = (d[0] * re - d[1] * im) / scale;
        r[1] = (d[1] * re + d[0] * im) / scale;
    }
    return 0;
}

} // namespace

int four1(std::span<float> data, int isign)
{
    if (data.size() < 2 || !std::has_single_bit(data.size()))
        return refuse("the number of values must be a power of two in four1");
    reverseBits(data);
    for (std::size_t half = 1; half < data.size() / 2; half *= 2)
        butterflies(data, half, isign);
    return 0;
}

int realft(std::span<float> data, int isign)
{
    if (data.size() < 2 || !std::has_single_bit(data.size()))
        return refuse("the number of values must be a power of two in realft");
    if (isign == 1)
        four1(data, 1);
    separate(data, isign);
    const float first = data[0], last = data[1];
    data[0] = first + last;
    data[1] = first - last;
    if (isign != 1) {
        data[0] *= 0.5f;
        data[1] *= 0.5f;
        four1(data, -1);
    }
    return 0;
}

int twofft(std::span<const float> data1, std::span<const float> data2, std::span<float> fft1,
           std::span<float> fft2)
{
    const std::size_t n = data1.size();
    if (!std::has_single_bit(n) || data2.size() != n || fft1.size() < 2 * n || fft2.size() < 2 * n)
        return refuse("the number of values must be a power of two in twofft");
    for (std::size_t i = 0; i < n; ++i) {
        fft1[2 * i] = data1[i];
        fft1[2 * i + 1] = data2[i];
    }
    four1(fft1.first(2 * n), 1);
    // The transform of a real array is symmetric, so that both can be told apart in the one of the pair.
    fft2[0] = fft1[1];
    fft1[1] = fft2[1] = 0.0f;
    for (std::size_t j = 1; j <= n / 2; ++j) {
        const std::size_t low = 2 * j, high = 2 * (n - j);
        const float rep = 0.5f * (fft1[low] + fft1[high]), rem = 0.5f * (fft1[low] - fft1[high]);
        const float aip = 0.5f * (fft1[low + 1] + fft1[high + 1]);
        const float aim = 0.5f * (fft1[low + 1] - fft1[high + 1]);
        fft1[low] = rep;
        fft1[low + 1] = aim;
        fft1[high] = rep;
        fft1[high + 1] = -aim;
        fft2[low] = aip;
        fft2[low + 1] = -rem;
        fft2[high] = aip;
        fft2[high + 1] = rem;
    }
    return 0;
}

int convlv(std::span<const float> data, std::span<const float> respns, int isign, std::span<float> ans)
{
    const std::size_t n = data.size(), m = respns.size();
    if (n < 2 || !std::has_single_bit(n) || m % 2 == 0 || m > n || ans.size() < 2 * n)
        return refuse("wrong number of values in convlv");
    if (isign != 1 && isign != -1)
        return refuse("No meaning for isign in convlv");
    padResponse(respns, n);
    spectrum.resize(2 * n);
    if (twofft(data, padded, spectrum, ans) != 0 || combine(isign, ans, n) != 0)
        return 1;
    ans[1] = ans[n];
    return realft(ans.first(n), -1);
}

} // namespace trelm
