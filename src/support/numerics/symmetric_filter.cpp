#include "support/numerics/symmetric_filter.h"

#include "support/text/text.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numbers>

namespace trelm {
namespace {

/// One stage of a transform on one block: (re, im) and (re2, im2) are its halves of n values. The forward
/// stages turn after the sums, the backward ones before, so that neither way needs its values sorted.
void joinForward(float *__restrict re, float *__restrict im, float *__restrict re2, float *__restrict im2,
                 const float *__restrict cosines, const float *__restrict sines, std::size_t n)
{
    for (std::size_t j = 0; j < n; ++j) {
        const float x = re[j] - re2[j], y = im[j] - im2[j];
        re[j] += re2[j];
        im[j] += im2[j];
        re2[j] = x * cosines[j] - y * sines[j];
        im2[j] = x * sines[j] + y * cosines[j];
    }
}

void joinBackward(float *__restrict re, float *__restrict im, float *__restrict re2, float *__restrict im2,
                  const float *__restrict cosines, const float *__restrict sines, std::size_t n)
{
    for (std::size_t j = 0; j < n; ++j) {
        const float x = re2[j] * cosines[j] + im2[j] * sines[j], y = im2[j] * cosines[j] - re2[j] * sines[j];
        re2[j] = re[j] - x;
        im2[j] = im[j] - y;
        re[j] += x;
        im[j] += y;
    }
}

template <auto join>
void runStage(SymmetricFilter &filter, std::size_t n)
{
    float *re = filter.real.data(), *im = filter.ans.data();
    const float *cosines = filter.cosines.data() + n, *sines = filter.sines.data() + n;
    for (std::size_t i = 0; i < filter.resp.length(); i += 2 * n)
        join(re + i, im + i, re + i + n, im + i + n, cosines, sines, n);
}

void forward(SymmetricFilter &filter)
{
    for (std::size_t n = filter.resp.length() / 2; n >= 4; n /= 2)
        runStage<joinForward>(filter, n);
}

void backward(SymmetricFilter &filter)
{
    for (std::size_t n = 4; n < filter.resp.length(); n *= 2)
        runStage<joinBackward>(filter, n);
}

/// The last two stages forward, on four values. The turns there are by 0 and 90 degrees.
void joinFour(float *re, float *im)
{
    const float r0 = re[0] + re[2], r1 = re[1] + re[3], r2 = re[0] - re[2], r3 = re[1] - re[3];
    const float i0 = im[0] + im[2], i1 = im[1] + im[3], i2 = im[0] - im[2], i3 = im[1] - im[3];
    re[0] = r0 + r1;
    im[0] = i0 + i1;
    re[1] = r0 - r1;
    im[1] = i0 - i1;
    re[2] = r2 + i3;
    im[2] = i2 - r3;
    re[3] = r2 - i3;
    im[3] = i2 + r3;
}

/// The first two stages back.
void partFour(float *re, float *im)
{
    const float r0 = re[0] + re[1], r1 = re[0] - re[1], r2 = re[2] + re[3], r3 = re[2] - re[3];
    const float i0 = im[0] + im[1], i1 = im[0] - im[1], i2 = im[2] + im[3], i3 = im[2] - im[3];
    re[0] = r0 + r2;
    im[0] = i0 + i2;
    re[1] = r1 - i3;
    im[1] = i1 + r3;
    re[2] = r0 - r2;
    im[2] = i0 - i2;
    re[3] = r1 + i3;
    im[3] = i1 - r3;
}

/// From the last stages forward, times the response, to the first ones back.
void turnAround(SymmetricFilter &filter)
{
    const std::size_t length = filter.resp.length();
    const float *__restrict resp = filter.resp.data();
    float *__restrict re = filter.real.data(), *__restrict im = filter.ans.data();
    for (std::size_t i = 0; i < length; i += 4) {
        joinFour(re + i, im + i);
        for (std::size_t k = i; k < i + 4; ++k) {
            re[k] *= resp[k];
            im[k] *= resp[k];
        }
        partFour(re + i, im + i);
    }
}

/// Takes a piece of the ring that may run over its end, more than once.
void copyRing(std::span<const float> ring, std::size_t first, std::span<float> out)
{
    first %= ring.size();
    while (!out.empty()) {
        const std::size_t count = std::min(out.size(), ring.size() - first);
        std::copy_n(ring.begin() + static_cast<std::ptrdiff_t>(first), count, out.begin());
        out = out.subspan(count);
        first = 0;
    }
}

Status allocateFilter(SymmetricFilter &filter, std::size_t length, Messages &messages)
{
    filter.resp = Block<float>("resp", length);
    if (!filter.resp)
        return nrerror("allocation failure for resp", messages);
    filter.cosines = Block<float>("ans", length);
    filter.sines = Block<float>("ans", length);
    filter.real = Block<float>("ans", length);
    filter.ans = Block<float>("ans", 2 * length);
    if (!filter.cosines || !filter.sines || !filter.real || !filter.ans)
        return nrerror("allocation failure for ans", messages);
    return Status::ok;
}

void fillTurns(SymmetricFilter &filter, std::size_t length)
{
    for (std::size_t n = 1; n < length; n *= 2)
        for (std::size_t j = 0; j < n; ++j) {
            const double angle = std::numbers::pi * static_cast<double>(j) / static_cast<double>(n);
            filter.cosines[n + j] = static_cast<float>(std::cos(angle));
            filter.sines[n + j] = static_cast<float>(-std::sin(angle));
        }
}

} // namespace

std::size_t filterLength(std::size_t wing, std::size_t window)
{
    std::size_t length = 8;
    while (2 * length < window + 4 * wing)
        length *= 2;
    return length;
}

Status startFilter(SymmetricFilter &filter, std::span<const float> response, std::size_t window,
                   Messages &messages)
{
    const std::size_t length = filterLength(response.size() - 1, window);
    if (allocateFilter(filter, length, messages) != Status::ok)
        return Status::failed;
    filter.wing = response.size() - 1;
    filter.half = length - 2 * filter.wing;
    fillTurns(filter, length);
    for (std::size_t k = 0; k < response.size(); ++k)
        filter.real[k] = filter.real[(length - k) % length] = response[k];
    forward(filter);
    for (std::size_t i = 0; i < length; i += 4)
        joinFour(filter.real.data() + i, filter.ans.data() + i);
    for (std::size_t i = 0; i < length; ++i)
        filter.resp[i] = filter.real[i] / static_cast<float>(length);
    return Status::ok;
}

float applyFilter(SymmetricFilter &filter, std::span<const float> ring, std::size_t first)
{
    const std::size_t length = filter.resp.length();
    const std::size_t start = first + ring.size() - filter.wing;
    copyRing(ring, start, filter.real.span());
    copyRing(ring, start + filter.half, filter.ans.span().first(length));
    forward(filter);
    turnAround(filter);
    backward(filter);
    float *ans = filter.ans.data();
    std::memmove(ans + filter.half, ans + filter.wing, filter.half * sizeof(float)); // they overlap
    std::copy_n(filter.real.data() + filter.wing, filter.half, ans);
    return *std::max_element(ans, ans + 2 * filter.half);
}

} // namespace trelm
