// The rows of the linear fit: how a coupling depends on the Saupe vector, and with which weight it is fitted.
#pragma once

#include "couplings/fit.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace trelm {

/// A place, angstrom.
using Place = std::array<float, 3>;

/// The coefficients of the Saupe vector in the coupling of the vector from one place to another, per
/// interaction constant. Two atoms at one place have (-1/2, 0, 0, 0, 0).
SaupeValues termsBetween(const Place &from, const Place &to);

/// The same of entry k.
SaupeValues geometryTerms(const FitVectors &vectors, std::size_t k);

/// What a row is scaled by: its weight, which makes the errors of all rows equal on the scale of the order
/// matrix, and the weight over the interaction constant, for the coupling. That is one over the error, Hz; of
/// an error of 0 one over the constant.
struct RowScale {
    float design = 1.0f, coupling = 0.0f;
};
RowScale scaleOf(float di, float sigma);

/// The same of entry k.
RowScale rowScale(const FitVectors &vectors, std::size_t k);

/// The mean place of some atoms.
Place middleOf(std::span<const Coord3D> coords, std::span<const std::uint32_t> atoms);

/// Whether a row is the coupling of one vector: a single pair, or a group of three, whose sides are taken at
/// their middles. Other rows hold none, and the fit does without them.
inline bool isOneVector(const DCalc &calc)
{
    return calc.pairCount() == 1 || calc.pairCount() == 3;
}

} // namespace trelm
