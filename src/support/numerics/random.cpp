#include "support/numerics/random.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace trelm {
namespace {

constexpr std::uint32_t parkMillerModulus = 2147483647;

/// One step of the minimal standard generator: the rest of 16807 s, s in 1 to the modulus - 1. The modulus is
/// 2^31 - 1: what stands above its 31 bits counts as so many ones.
int parkMiller(int s)
{
    const std::uint64_t product = std::uint64_t{16807} * static_cast<std::uint64_t>(s);
    const auto sum = static_cast<std::uint32_t>((product & parkMillerModulus) + (product >> 31));
    return static_cast<int>(sum < parkMillerModulus ? sum : sum - parkMillerModulus);
}

constexpr int subtractiveModulus = 1000000000;

/// a - b, kept in 0 to subtractiveModulus - 1.
int difference(int a, int b)
{
    const int d = a - b;
    return d < 0 ? d + subtractiveModulus : d;
}

} // namespace

void RandomStream::Tt800::fill()
{
    if (!isFirst)
        renew();
    isFirst = false;
    temper();
}

/// Renews all words in place; the later ones already see renewed words.
void RandomStream::Tt800::renew()
{
    constexpr std::uint32_t twist = 0x8ebfd028U;
    const auto renewed = [this](std::size_t i, std::size_t other) {
        const std::uint32_t word = x[i];
        return x[other] ^ (word >> 1) ^
               ((0U - (word & 1U)) & twist); // a branch would be missed half the time
    };
    constexpr std::size_t wrap = words - offset;
    for (std::size_t i = 0; i < wrap; ++i)
        x[i] = renewed(i, i + offset);
    for (std::size_t i = wrap; i < words; ++i)
        x[i] = renewed(i, i - wrap);
}

/// The deviates of all words at once, which go in vectors.
void RandomStream::Tt800::temper()
{
    for (std::size_t i = 0; i < words; ++i) {
        std::uint32_t y = x[i];
        y ^= (y << 7) & 0x2b5b2500U;
        y ^= (y << 15) & 0xdb8b0000U;
        y ^= y >> 16;
        deviate[i] = y / 4294967295.0;
    }
    next = 0;
}

/// Fills the shuffle table from a seed of 0 or below; returns the generator's state.
int RandomStream::ShuffleTable::fill(int seed)
{
    // The most negative int has no positive counterpart, and the modulus itself would give zeros for ever.
    int s = static_cast<int>(-std::int64_t{seed} % std::int64_t{parkMillerModulus});
    s = std::max(s, 1);
    for (int j = length + 7; j >= 0; --j) {
        s = parkMiller(s);
        if (j < length)
            value[static_cast<std::size_t>(j)] = s;
    }
    y = value[0];
    filled = true;
    return s;
}

void RandomStream::SubtractiveTable::fill(int seed)
{
    const std::int64_t start = std::abs(std::int64_t{161803398} - std::abs(std::int64_t{seed}));
    int prev = static_cast<int>(start % subtractiveModulus);
    int next = 1;
    value[length] = prev;
    for (std::size_t i = 1; i < length; ++i) {
        const std::size_t place = 21 * i % length;
        value[place] = next;
        next = difference(prev, next);
        prev = value[place];
    }
    for (int pass = 0; pass < 4; ++pass)
        for (std::size_t i = 1; i <= length; ++i)
            value[i] = difference(value[i], value[1 + (i + 30) % length]);
    inext = 0;
    inextp = 31;
    filled = true;
}

double RandomStream::gauss()
{
    if (stored.full && stored.factor != 0.0) {
        stored.full = false;
        return stored.draw.coordinate * stored.factor;
    }
    const NormalDraw draw = drawGauss();
    const double factor = draw.factor();
    if (stored.full)
        stored.factor = factor;
    return draw.coordinate * factor;
}

NormalDraw RandomStream::drawPair()
{
    double v1 = 0.0, v2 = 0.0, r = 0.0;
    do {
        v1 = 2.0 * genrand() - 1.0;
        v2 = 2.0 * genrand() - 1.0;
        r = v1 * v1 + v2 * v2;
    } while (r >= 1.0 || r == 0.0);
    stored = {{v2, r}, 0.0, true};
    return {v1, r};
}

float RandomStream::ran1()
{
    constexpr double largest = 1.0 - 1.2e-7;
    constexpr std::uint32_t divisor = 1 + (parkMillerModulus - 1) / ShuffleTable::length;
    if (idum <= 0 || !shuffle.filled)
        idum = shuffle.fill(idum);
    idum = parkMiller(idum);
    const std::size_t j = static_cast<std::uint32_t>(shuffle.y) / divisor; // never negative: a shift
    shuffle.y = shuffle.value[j];
    shuffle.value[j] = idum;
    return static_cast<float>(std::min(shuffle.y * (1.0 / parkMillerModulus), largest));
}

float RandomStream::ran3()
{
    if (idum < 0 || !subtractive.filled) {
        subtractive.fill(idum);
        idum = 1;
    }
    subtractive.inext = subtractive.inext % SubtractiveTable::length + 1;
    subtractive.inextp = subtractive.inextp % SubtractiveTable::length + 1;
    int &value = subtractive.value[subtractive.inext];
    value = difference(value, subtractive.value[subtractive.inextp]);
    return static_cast<float>(value * (1.0 / subtractiveModulus));
}

} // namespace trelm
