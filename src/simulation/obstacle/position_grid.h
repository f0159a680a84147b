// The distances at which a solute is tested beside a wall or a rod.
#pragma once

#include "ground/alloc.h"
#include "ground/messages.h"

#include <cstddef>
#include <span>

namespace trelm {

constexpr int maxGridPositions = 5000; ///< distances between solute and particle
constexpr double rodDensity = 1.46;    ///< of the rods' material, g/ml

/// Lengths in angstrom.
struct GridSetup {
    double gridSpacing = 0.0;        ///< step of the distances; above 0
    double max_obstruction = 0.0;    ///< half thickness of the wall, radius of the rod
    double max_protein_length = 0.0; ///< the grid ends where the solute's centre is this far from the surface
    double min_protein_length = 0.0; ///< and starts here
};

/// The distances from the solute's centre to the wall's middle plane or the rod's axis, rising.
struct PositionGrid {
    int grid_el = 0;           ///< last position at which the particle can be touched
    int last = 0;              ///< last position; beyond grid_el all orientations are free
    Block<float> positionDist; ///< room for maxGridPositions, of which positions 0 to last are set
    bool isShort = false;      ///< it ends at the table's end, and that was told

    [[nodiscard]] double lastDist() const
    {
        return static_cast<double>(positionDist[static_cast<std::size_t>(last)]);
    }
    [[nodiscard]] std::span<const float> positions() const
    {
        return positionDist.span().first(static_cast<std::size_t>(last) + 1);
    }
    [[nodiscard]] std::span<const float> touchable() const
    {
        return positionDist.span().first(static_cast<std::size_t>(grid_el) + 1);
    }
};

/// Warns, once a grid, that it ends at the table's end.
void warnShortGrid(PositionGrid &grid, Messages &messages);

/// Lays the positions at which the particle can be touched; a grid beyond the table ends there with a
/// warning on the standard error stream. Returns false, without a message, if there is no memory.
[[nodiscard]] bool layPositions(const char *tag, const GridSetup &setup, PositionGrid &grid,
                                Messages &messages);

/// Adds positions behind those while more(last distance, next distance) says so. Returns false where the
/// table is full before that.
template <class More>
bool extendPositions(PositionGrid &grid, double gridSpacing, More more)
{
    const double start = grid.lastDist();
    for (int j = 1; more(grid.lastDist(), start + j * gridSpacing); ++j) {
        if (grid.grid_el + j >= maxGridPositions)
            return false;
        grid.last = grid.grid_el + j;
        grid.positionDist[static_cast<std::size_t>(grid.last)] = static_cast<float>(start + j * gridSpacing);
    }
    return true;
}

} // namespace trelm
