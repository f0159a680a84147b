// Coordinates of atoms as the kernels want them: contiguous, a column for each axis.
#pragma once

#include "structure/rotate.h"

#include <cstddef>
#include <span>
#include <vector>

namespace trelm {

/// Coordinates of atoms, angstrom; three spans of equal length.
struct Coordinates {
    std::span<const double> x, y, z;
    [[nodiscard]] std::size_t count() const { return x.size(); }
};

/// Coordinates gathered from chosen atoms.
struct AtomColumns {
    std::vector<double> x, y, z;
    [[nodiscard]] Coordinates view() const { return {x, y, z}; }
    void append(const Coordinates &atoms, std::size_t i)
    {
        x.push_back(atoms.x[i]);
        y.push_back(atoms.y[i]);
        z.push_back(atoms.z[i]);
    }
};

/// The coordinate of atom j along a direction, rounded to single precision after every term: the one that
/// decides.
inline float turned(const Coordinates &atoms, std::size_t j, const Axis &direction)
{
    auto sum = static_cast<float>(atoms.x[j] * direction[0]);
    sum = static_cast<float>(static_cast<double>(sum) + atoms.y[j] * direction[1]);
    return static_cast<float>(static_cast<double>(sum) + atoms.z[j] * direction[2]);
}

/// The atoms in single precision throughout, for quick tests that leave only a few to turn exactly. Padded to
/// whole blocks with copies of the last atom.
struct QuickColumns {
    static constexpr std::size_t blockSize = 64;
    std::vector<float> x, y, z;
    float error = 0.0f; ///< a quick coordinate is off by less, angstrom
    [[nodiscard]] std::size_t paddedCount() const { return x.size(); }
};

QuickColumns makeQuickColumns(const Coordinates &atoms);

/// A direction in single precision.
struct QuickDirection {
    float x, y, z;
    explicit QuickDirection(const Axis &axis)
        : x(static_cast<float>(axis[0])), y(static_cast<float>(axis[1])), z(static_cast<float>(axis[2]))
    {
    }
};

inline float quickTurned(const QuickColumns &atoms, std::size_t j, const QuickDirection &direction)
{
    return atoms.x[j] * direction.x + atoms.y[j] * direction.y + atoms.z[j] * direction.z;
}

} // namespace trelm
