#include "support/numerics/random.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>

namespace trelm {

namespace {

/// TT800: the state words, the deviates they give, and the place of the next one to be read.
struct Tt800 {
    static constexpr std::size_t words = 25, offset = 7;
    std::array<std::uint32_t, words> x = {0x95f24dabU, 0x0b685215U, 0xe76ccae7U, 0xaf3ec239U, 0x715fad23U,
                                          0x24a590adU, 0x69e4b5efU, 0xbf456141U, 0x96bc1b7bU, 0xa7bdf825U,
                                          0xc1de75b7U, 0x8858a9c9U, 0x2da87693U, 0xb657f9ddU, 0xffdc8a9fU,
                                          0x8121da71U, 0x8b823ecbU, 0x885d05f5U, 0x4e20cd47U, 0x5a9ad5d9U,
                                          0x512c0c03U, 0xea857ccdU, 0x4cc1d30fU, 0x8891a8a1U, 0xa6b7aadbU};
    std::array<double, words> deviate = {};
    std::size_t next = words;
    bool isFirst = true; ///< the words that the process starts with are read before they are renewed
};

/// The second deviate of the last pair.
struct StoredDeviate {
    double value = 0.0;
    bool full = false;
};

/// The shuffle table of ran1.
struct ShuffleTable {
    static constexpr int length = 32;
    std::array<int, length> value = {};
    int y = 0;
    bool filled = false;
};

/// The table of ran3; the place 0 is not used, as the method counts from 1.
struct SubtractiveTable {
    static constexpr std::size_t length = 55;
    std::array<int, length + 1> value = {};
    std::size_t inext = 0, inextp = 31;
    bool filled = false;
};

struct Generators {
    Tt800 tt800;
    StoredDeviate stored;
    ShuffleTable shuffle;
    SubtractiveTable subtractive;
};

Generators state;

/// Renews all words in place; the later ones already see renewed words.
void renew(Tt800 &g)
{
    constexpr std::uint32_t twist = 0x8ebfd028U;
    const auto renewed = [&g](std::size_t i, std::size_t other) {
        const std::uint32_t word = g.x[i];
        return g.x[other] ^ (word >> 1) ^
               ((0U - (word & 1U)) & twist); // a branch would be missed half the time
    };
    constexpr std::size_t wrap = Tt800::words - Tt800::offset;
    for (std::size_t i = 0; i < wrap; ++i)
        g.x[i] = renewed(i, i + Tt800::offset);
    for (std::size_t i = wrap; i < Tt800::words; ++i)
        g.x[i] = renewed(i, i - wrap);
}

/// The deviates of all words at once, which go in vectors.
void temper(Tt800 &g)
{
    for (std::size_t i = 0; i < Tt800::words; ++i) {
        std::uint32_t y = g.x[i];
        y ^= (y << 7) & 0x2b5b2500U;
        y ^= (y << 15) & 0xdb8b0000U;
        y ^= y >> 16;
        g.deviate[i] = y / 4294967295.0;
    }
    g.next = 0;
}

inline double nextDeviate(Tt800 &g)
{
    if (g.next == Tt800::words) {
        if (!g.isFirst)
            renew(g);
        g.isFirst = false;
        temper(g);
    }
    return g.deviate[g.next++];
}

constexpr int parkMillerModulus = 2147483647;

/// One step of the minimal standard generator.
int parkMiller(int s)
{
    return static_cast<int>(std::int64_t{16807} * s % parkMillerModulus);
}

/// Fills the shuffle table from a seed of 0 or below; returns the generator's state.
int fillShuffle(ShuffleTable &table, int seed)
{
    // The most negative int has no positive counterpart, and the modulus itself would give zeros for ever.
    int s = static_cast<int>(-std::int64_t{seed} % parkMillerModulus);
    s = std::max(s, 1);
    for (int j = ShuffleTable::length + 7; j >= 0; --j) {
        s = parkMiller(s);
        if (j < ShuffleTable::length)
            table.value[static_cast<std::size_t>(j)] = s;
    }
    table.y = table.value[0];
    table.filled = true;
    return s;
}

constexpr int subtractiveModulus = 1000000000;

/// a - b, kept in 0 to subtractiveModulus - 1.
int difference(int a, int b)
{
    const int d = a - b;
    return d < 0 ? d + subtractiveModulus : d;
}

void fillSubtractive(SubtractiveTable &table, int seed)
{
    constexpr std::size_t length = SubtractiveTable::length;
    const std::int64_t start = std::abs(std::int64_t{161803398} - std::abs(std::int64_t{seed}));
    int prev = static_cast<int>(start % subtractiveModulus);
    int next = 1;
    table.value[length] = prev;
    for (std::size_t i = 1; i < length; ++i) {
        const std::size_t place = 21 * i % length;
        table.value[place] = next;
        next = difference(prev, next);
        prev = table.value[place];
    }
    for (int pass = 0; pass < 4; ++pass)
        for (std::size_t i = 1; i <= length; ++i)
            table.value[i] = difference(table.value[i], table.value[1 + (i + 30) % length]);
    table.inext = 0;
    table.inextp = 31;
    table.filled = true;
}

} // namespace

double genrand()
{
    return nextDeviate(state.tt800);
}

double gauss()
{
    StoredDeviate &stored = state.stored;
    if (stored.full) {
        stored.full = false;
        return stored.value;
    }
    double v1 = 0.0, v2 = 0.0, r = 0.0;
    do {
        v1 = 2.0 * nextDeviate(state.tt800) - 1.0;
        v2 = 2.0 * nextDeviate(state.tt800) - 1.0;
        r = v1 * v1 + v2 * v2;
    } while (r >= 1.0 || r == 0.0);
    const double f = std::sqrt(-2.0 * std::log(r) / r);
    stored = {v2 * f, true};
    return v1 * f;
}

float ran1(int *idum)
{
    constexpr double largest = 1.0 - 1.2e-7;
    constexpr int divisor = 1 + (parkMillerModulus - 1) / ShuffleTable::length;
    ShuffleTable &table = state.shuffle;
    if (*idum <= 0 || !table.filled)
        *idum = fillShuffle(table, *idum);
    *idum = parkMiller(*idum);
    const auto j = static_cast<std::size_t>(table.y / divisor);
    table.y = table.value[j];
    table.value[j] = *idum;
    return static_cast<float>(std::min(table.y * (1.0 / parkMillerModulus), largest));
}

float ran3(int *idum)
{
    SubtractiveTable &table = state.subtractive;
    if (*idum < 0 || !table.filled) {
        fillSubtractive(table, *idum);
        *idum = 1;
    }
    table.inext = table.inext % SubtractiveTable::length + 1;
    table.inextp = table.inextp % SubtractiveTable::length + 1;
    int &value = table.value[table.inext];
    value = difference(value, table.value[table.inextp]);
    return static_cast<float>(value * (1.0 / subtractiveModulus));
}

void resetRandom()
{
    state = Generators{};
}

} // namespace trelm
