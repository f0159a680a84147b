#include "simulation/obstacle/position_grid.h"

#include "support/text/text.h"

#include <algorithm>
#include <cmath>

namespace trelm {

void warnShortGrid(PositionGrid &grid, Messages &messages)
{
    if (!grid.isShort)
        messages.err("WARNING: concentration too low - magnitude of alignment tensor incorrect\n");
    grid.isShort = true;
}

bool layPositions(const char *tag, const GridSetup &setup, PositionGrid &grid, Messages &messages)
{
    constexpr double lastPlace = maxGridPositions - 1;
    grid.positionDist = Block<float>(tag, maxGridPositions);
    if (!grid.positionDist)
        return false;
    const double steps =
        std::trunc((setup.max_protein_length - setup.min_protein_length) / setup.gridSpacing);
    if (steps > lastPlace)
        warnShortGrid(grid, messages);
    grid.grid_el = grid.last = static_cast<int>(std::min(steps, lastPlace));
    const double offset = setup.min_protein_length + setup.max_obstruction;
    for (int i = 0; i <= grid.grid_el; ++i)
        grid.positionDist[static_cast<std::size_t>(i)] = static_cast<float>(i * setup.gridSpacing + offset);
    return true;
}

} // namespace trelm
