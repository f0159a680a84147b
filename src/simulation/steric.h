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
#include "simulation/columns.h"
#include "simulation/orientation.h"

#include <span>

namespace trelm {

constexpr int lcWall = 1;
constexpr int lcRod = 2;
constexpr int lcGrid = 3;              ///< a potential in space instead of a particle
constexpr int maxGridPositions = 5000; ///< distances between solute and particle

/// What a steric simulation needs beside the atoms. Lengths in angstrom.
struct StericSetup {
    int lcType = lcWall;
    double stepOutLength = 0.0;      ///< wall: from its middle plane to the edge of its cell
    double max_obstruction = 0.0;    ///< half thickness of the wall, radius of the rod; above 0
    double radius = 0.0;             ///< of every atom
    double gridSpacing = 0.0;        ///< step of the distances; above 0
    double wvAmount = 0.0;           ///< concentration, a fraction; above 0
    double max_protein_length = 0.0; ///< the grid ends where the solute's centre is this far from the surface
    double min_protein_length = 0.0; ///< and starts here
    int digit_psi = 1;               ///< steps of the third angle
};

/// The distances at which the solute is tested, and what they count for.
struct PositionGrid {
    int grid_el = 0;           ///< last position at which the particle can be touched
    int last = 0;              ///< last position of the sums; beyond grid_el all orientations are free
    Block<float> positionDist; ///< from the solute's centre to the wall's middle plane or the rod's axis
    Block<float> wallLimit;    ///< wall: obstructed if an atom's turned x is at or below; falls with position
    double end_dist = 0.0;     ///< wall: number of free positions beyond the grid, up to the edge of the cell
    double total = 0.0;        ///< rod: the weight of all positions, from the concentration
};

/// Sets up the grid. A grid beyond the table ends there with a warning on the standard error stream. Returns
/// 0, or 1 after a message if there is no memory.
int makePositionGrid(const StericSetup &setup, PositionGrid &grid);

/// The order matrix of a solute whose coordinates are relative to its centre. `dots`: three values each.
/// Prints progress on the standard error stream. Returns 0, or 1 after a message if there is no memory or no
/// position counts. `saupe`: Szz, Sxx - Syy, Sxy, Sxz, Syz, in the sense of the surviving orientations: the
/// callers turn the sign.
int stericAlignment(const StericSetup &setup, const Coordinates &atoms, std::span<const double> dots,
                    Saupe &saupe);

} // namespace trelm
