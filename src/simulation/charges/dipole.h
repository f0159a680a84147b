// The electric dipole of a set of point charges.
#pragma once

#include "ground/messages.h"
#include "support/numerics/jacobi.h"

#include <array>
#include <span>

namespace trelm {

/// Positive and negative charges, each drawn together in its charge-weighted centre. Lengths in angstrom.
struct Dipole {
    float magnitude = 0.0f;                ///< e times angstrom
    float chSum = 0.0f;                    ///< net charge, e
    std::array<float, 3> avePos = {};      ///< centre of the positive charges
    std::array<float, 3> aveNeg = {};      ///< centre of the negative charges
    std::array<float, 2> chargeDipol = {}; ///< total positive, total negative charge, e
    std::array<float, 3> direction = {};   ///< from negative to positive, of length 1; 0 without a dipole
    /// Columns: the direction, and two at right angles to it, not normalised. These two are no numbers where
    /// the direction has no z, and none at all where there is no dipole: the caller has to look.
    Matrix3d dipoleVec = {};
};

/// Places of charges, views of equal length.
struct ChargePlaces {
    std::span<const double> x, y, z;
    std::span<const int> chargeAtomID; ///< the place of each charge in x, y, z
    std::span<const float> charges;    ///< e
};

Dipole dipoleMoment(const ChargePlaces &places);

/// Four REMARK lines.
void reportDipole(const Dipole &dipole, Messages &messages);

} // namespace trelm
