// Plain forms of the weighted kernels: an energy from scratch for every position, orientation and charge.
// They judge the fast ones.
#pragma once

#include "simulation/alignment/electrostatic.h"
#include "simulation/alignment/grid3d.h"
#include "simulation/charges/charges.h"
#include "simulation/orientations/columns.h"

#include <span>

namespace trelm {

/// sma beside a wall or a rod, without its lines. The grid must fit its table; the potential is not scaled.
void smaPlain(const AlignmentSetup &setup, const Coordinates &atoms, const SmaSetup &sizes,
              const ChargeSet &charges, const Potential &potential, Saupe &saupe);

/// sma3D likewise, without the free rest of the cell: the sums, and their weight.
void sma3DPlain(const Grid3D &grid, const Coordinates &atoms, std::span<const double> dots, int digit_psi,
                const ChargeSet &charges, std::span<const double> pot3D, Saupe &sum, double &total);

} // namespace trelm
