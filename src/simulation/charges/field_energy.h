// The energy of a molecule's charges in the field of a wall or a rod, as the inner loops want it.
#pragma once

#include "simulation/charges/charges.h"
#include "simulation/charges/field.h"
#include "simulation/charges/potential.h"
#include "simulation/orientations/columns.h"
#include "simulation/orientations/orientation.h"

#include <array>
#include <cstddef>
#include <span>
#include <vector>

namespace trelm {

/// Charges with their places.
struct PlacedCharges {
    Coordinates atoms;
    const ChargeSet *charges; ///< chargeAtomID numbers places in `atoms`
    [[nodiscard]] std::size_t count() const { return static_cast<std::size_t>(charges->chCount); }
};

/// Terms of the series of a charge far from the wall: enough for 1e-12 below seriesLimit.
constexpr std::size_t seriesTerms = 10;

/// Charges beside a wall.
struct WallEnergy {
    FieldConstants field;
    double radiusModel = 0.0;
    double nearest = 0.0;                    ///< turned coordinate of the charge nearest to the wall
    std::vector<std::array<double, 2>> near; ///< decay relative to the nearest one, falling, and charge
    std::vector<std::array<double, seriesTerms>> moments; ///< of the charges from this one on
    std::vector<std::array<double, 2>> turned;            ///< work space
};

/// Turns the charges into an orientation.
void turnCharges(WallEnergy &energy, const PlacedCharges &placed, const Axis &normal);

/// The energy, kT, with the solute's centre at a distance from the wall's middle plane.
double energyAt(const WallEnergy &energy, float distance);

/// The potential of a rod from one entry of its table to the next: at0 + slope r.
struct RodStep {
    double at0 = 0.0, slope = 0.0;
};

/// A charge beside a rod, turned.
struct RodCharge {
    double x, ySquare, q;
};

/// Charges beside a rod, and its table.
struct RodEnergy {
    std::vector<RodStep> steps; ///< the last one lies beyond the table: no potential
    double stepsize = 1.0;
    double radiusModel = 0.0;
    std::vector<double> distances; ///< of the solute's centre from the axis, position by position
    std::vector<RodCharge> charges;
    bool isBeyond = false; ///< a charge was beyond the table

    std::vector<double> r, energy; ///< work space
    std::vector<int> entry;
};

RodEnergy makeRodEnergy(const Potential &potential, double radiusModel, std::span<const float> distances);
void turnCharges(RodEnergy &energy, const PlacedCharges &placed, const Turn &turn);

/// The energies, kT, at the positions from `first` up to `beyond`, one at least. A charge beyond the table
/// feels no potential (isBeyond tells), one before its first entry the first one. Valid until the next call.
std::span<const double> energiesAt(RodEnergy &energy, std::size_t first, std::size_t beyond);

} // namespace trelm
