// The order that a solute takes because it cannot overlap with the particles of a dilute liquid crystal: a
// flat wall, or a cylindrical rod.
//
// The solute's centre is held at a grid of distances from the particle and turned through a fixed set of
// orientations. The obstacle's normal is the laboratory x axis, the director the z axis. At each distance the
// orientations in which no atom touches the particle survive; the result is the average of their Saupe
// elements, weighted by how many survive.
#pragma once

#include "couplings/tensor.h"
#include "ground/alloc.h"
#include "ground/messages.h"
#include "simulation/obstacle/options.h"
#include "simulation/obstacle/position_grid.h"
#include "simulation/orientations/columns.h"
#include "simulation/orientations/orientation.h"

#include <span>

namespace trelm {

/// What a steric simulation needs beside the atoms. Lengths in angstrom.
struct StericSetup {
    LcType lcType = lcWall;
    GridSetup grid;             ///< the distances
    double stepOutLength = 0.0; ///< wall: from its middle plane to the edge of its cell
    double radius = 0.0;        ///< of every atom
    double wvAmount = 0.0;      ///< concentration, above 0
    int digit_psi = 1;          ///< steps of the third angle
};

/// The distances at which the solute is tested, and what they count for.
struct StericGrid {
    PositionGrid at;
    Block<float> wallLimit; ///< wall: obstructed if an atom's turned x is at or below; falls with position
    double end_dist = 0.0;  ///< wall: number of free positions beyond the grid, up to the edge of the cell;
                            ///< below 0 where the solute reaches past that edge
    double total = 0.0;     ///< rod: the weight of all positions, from the concentration
};

/// Sets up the grid. A grid beyond the table ends there with a warning. Returns
/// 0, or 1 after a message if there is no memory.
Status makeStericGrid(const StericSetup &setup, StericGrid &grid, Messages &messages);

/// The order matrix of a solute whose coordinates are relative to its centre. `dots`: three values each.
/// Prints progress. Fails after a message if there is no memory or no
/// position counts. `saupe`: Szz, Sxx - Syy, Sxy, Sxz, Syz, in the sense of the surviving orientations: the
/// callers turn the sign. In a cell smaller than the solute the free positions count below 0: the order grows
/// as their sum falls, and changes its sign, with a warning, where the sum is below 0.
Status stericAlignment(const StericSetup &setup, const Coordinates &atoms, std::span<const double> dots,
                       Saupe &saupe, Messages &messages);

} // namespace trelm
