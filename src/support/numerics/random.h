// Random deviates. A stream starts the same each time: the same run gives the same numbers.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace trelm {

/// A normal deviate that is drawn, and worked out only where its value is asked for: one coordinate of a
/// point within the unit circle, and the square of the point's distance from the centre, above 0 and below 1.
struct NormalDraw {
    double coordinate = 0.0, square = 1.0;

    [[nodiscard]] double value() const { return coordinate * factor(); }
    /// Root and logarithm, which the two deviates of a point share.
    [[nodiscard]] double factor() const { return std::sqrt(-2.0 * std::log(square) / square); }
    /// Whether scale * |value| is surely at most the limit. True for most that are: -ln s <= (1 / s - s) / 2
    /// stands for the logarithm. Scale and limit are not below 0.
    [[nodiscard]] bool isSurelyWithin(double limit, double scale) const
    {
        constexpr double roundings = 1.0 + 1e-9; // those of both sides, and of value(), are some 1e-15
        const double size = scale * coordinate, bound = limit * square;
        return size * size * (1.0 - square) * (1.0 + square) * roundings <= bound * bound;
    }
};

/// What one user draws from: four generators, two of which share a seed.
class RandomStream {
  public:
    explicit RandomStream(int seed = -1) : idum(seed) {}

    /// Uniform deviate in 0 to 1, both ends included. Never seeded. TT800, period 2^800 - 1.
    /// Source: Matsumoto and Kurita, ACM Trans. Model. Comput. Simul. 4 (1994) 254, tempering of 1996.
    double genrand()
    {
        if (tt800.next == Tt800::words)
            tt800.fill();
        return tt800.deviate[tt800.next++];
    }

    /// Normal deviate, mean 0, standard deviation 1, on the numbers of genrand. Deviates come in pairs: the
    /// first is returned, the second is the result of the next call. Source: polar method of Box, Muller and
    /// Marsaglia.
    double gauss();

    /// The same deviate, not yet worked out.
    NormalDraw drawGauss()
    {
        if (stored.full) {
            stored.full = false;
            return stored.draw;
        }
        return drawPair();
    }

    /// Uniform deviate, above 0 and below 1. A seed of 0 or below starts the sequence; afterwards the seed
    /// holds the generator's state. Seeds above 0 all start the same sequence, that of -1. Source: Park and
    /// Miller, Commun. ACM 31 (1988) 1192, with the shuffle of Bays and Durham.
    float ran1();

    /// Uniform deviate from 0 on. In single precision it can round to 1.0: bound an index taken from it. A
    /// negative seed, and any seed on the first call, starts the sequence of its magnitude and becomes 1.
    /// Source: Knuth, Seminumerical Algorithms, section 3.2.2, subtractive method.
    float ran3();

    /// A place in a list of n, by ran3.
    std::size_t place(std::size_t n)
    {
        return std::min(static_cast<std::size_t>(ran3() * static_cast<float>(n)), n - 1);
    }

  private:
    /// TT800: the state words, the deviates they give, and the place of the next one to be read.
    struct Tt800 {
        static constexpr std::size_t words = 25, offset = 7;
        std::array<std::uint32_t, words> x = {
            0x95f24dabU, 0x0b685215U, 0xe76ccae7U, 0xaf3ec239U, 0x715fad23U, 0x24a590adU, 0x69e4b5efU,
            0xbf456141U, 0x96bc1b7bU, 0xa7bdf825U, 0xc1de75b7U, 0x8858a9c9U, 0x2da87693U, 0xb657f9ddU,
            0xffdc8a9fU, 0x8121da71U, 0x8b823ecbU, 0x885d05f5U, 0x4e20cd47U, 0x5a9ad5d9U, 0x512c0c03U,
            0xea857ccdU, 0x4cc1d30fU, 0x8891a8a1U, 0xa6b7aadbU};
        std::array<double, words> deviate = {};
        std::size_t next = words;
        bool isFirst = true; ///< the words at the start are read before they are renewed

        void fill();
        void renew();
        void temper();
    };

    /// The second deviate of the last pair. The factor is 0 where nobody has asked for the first one's value.
    struct StoredDeviate {
        NormalDraw draw;
        double factor = 0.0;
        bool full = false;
    };

    /// The shuffle table of ran1.
    struct ShuffleTable {
        static constexpr int length = 32;
        std::array<int, length> value = {};
        int y = 0;
        bool filled = false;

        int fill(int seed);
    };

    /// The table of ran3; the place 0 is not used, as the method counts from 1.
    struct SubtractiveTable {
        static constexpr std::size_t length = 55;
        std::array<int, length + 1> value = {};
        std::size_t inext = 0, inextp = 31;
        bool filled = false;

        void fill(int seed);
    };

    NormalDraw drawPair();

    int idum; ///< the seed of ran1 and ran3 in turns
    Tt800 tt800;
    StoredDeviate stored;
    ShuffleTable shuffle;
    SubtractiveTable subtractive;
};

} // namespace trelm
