#include "simulation/obstacle/steric.h"

#include "simulation/obstacle/rod.h"
#include "simulation/obstacle/wall.h"
#include "support/text/text.h"

#include <cmath>
#include <cstdint>
#include <vector>

namespace trelm {
namespace {

constexpr const char *tag = "stericAlignment";

Status noBuffers(Messages &messages)
{
    return messages.fail("Error allocating coord buffers.\n");
}

/// The positions up to the edge of the wall's cell, where nothing is obstructed, and the wall's limits.
void setWall(const StericSetup &setup, StericGrid &grid)
{
    grid.end_dist = std::trunc((setup.stepOutLength - grid.at.lastDist()) / setup.grid.gridSpacing);
    const std::span<const float> distances = grid.at.touchable();
    for (std::size_t i = 0; i < distances.size(); ++i)
        grid.wallLimit[i] = static_cast<float>(
            setup.radius - (static_cast<double>(distances[i]) - setup.grid.max_obstruction));
}

/// The weight of all positions beside a rod, and the free positions as far as the gap to the next rod.
void setRod(const StericSetup &setup, StericGrid &grid, Messages &messages)
{
    const double radius = setup.grid.max_obstruction, spacing = setup.grid.gridSpacing;
    const double cellGap = radius / std::sqrt(setup.wvAmount / rodDensity) - radius;
    const double n = std::trunc(cellGap / spacing);
    grid.total = std::trunc(n + n * (n + 1.0) * 0.5 * (spacing / radius));

    // The gap leaves the rod's radius out, the distances have it in: so the model is.
    if (grid.at.lastDist() > cellGap)
        return;
    extendPositions(grid.at, spacing, [cellGap](double last, double) { return !(cellGap < last); });
    if (grid.at.last == maxGridPositions - 1)
        warnShortGrid(grid.at, messages);
}

/// The sums over the free orientations of each position, as differences from the position before.
struct PositionSums {
    Block<Saupe> saupe_dis;
    Block<int> allowedCount;
    Saupe all = {}; ///< over all orientations, free or not

    void addFree(const Saupe &saupe, int first, int last)
    {
        const auto from = static_cast<std::size_t>(first), beyond = static_cast<std::size_t>(last) + 1;
        for (std::size_t k = 0; k < saupe.size(); ++k) {
            saupe_dis[from][k] += saupe[k];
            saupe_dis[beyond][k] -= saupe[k];
        }
        ++allowedCount[from];
        --allowedCount[beyond];
    }
};

void sumBesideWall(const Coordinates &atoms, const OrientationSet &set, const StericGrid &grid,
                   PositionSums &sums, Messages &messages)
{
    const int last = grid.at.grid_el;
    WallKernel kernel =
        makeWallKernel(atoms, grid.wallLimit.span().first(static_cast<std::size_t>(last) + 1));
    forEachTurnShown(set, messages, [&](const Turn &turn) {
        addWeighted(sums.all, turn.saupe, 1.0);
        const int first = firstFreeOfWall(kernel, turn.column1);
        if (first <= last)
            sums.addFree(turn.saupe, first, last);
    });
}

void sumBesideRod(const StericSetup &setup, const Coordinates &atoms, const OrientationSet &set,
                  const PositionGrid &grid, PositionSums &sums, Messages &messages)
{
    RodKernel kernel = makeRodKernel(atoms, grid.touchable(), setup.grid.max_obstruction, setup.radius);
    std::vector<Interval> blocked;
    forEachTurnShown(set, messages, [&](const Turn &turn) {
        addWeighted(sums.all, turn.saupe, 1.0);
        blockedByRod(kernel, turn.column1, turn.column2, blocked);
        int free = 0;
        for (const Interval &interval : blocked) {
            if (free < interval.first)
                sums.addFree(turn.saupe, free, interval.first - 1);
            free = interval.last + 1;
        }
        if (free <= grid.last)
            sums.addFree(turn.saupe, free, grid.last);
    });
}

/// Sums up the differences, and weighs each position's average by what survives there.
void averagePositions(const StericSetup &setup, const StericGrid &grid, int orientations,
                      const PositionSums &sums, Saupe &saupe, double &total)
{
    Saupe running = {};
    int allowed = 0;
    std::int64_t total_bic = 0;
    saupe = {};
    for (std::size_t i = 0; i <= static_cast<std::size_t>(grid.at.last); ++i) {
        allowed += sums.allowedCount[i];
        total_bic += allowed;
        const double weight = static_cast<double>(allowed) / orientations;
        const double ring = setup.lcType == lcRod
                                ? static_cast<double>(grid.at.positionDist[i]) / setup.grid.max_obstruction
                                : 1.0;
        for (std::size_t k = 0; k < saupe.size(); ++k) {
            running[k] += sums.saupe_dis[i][k];
            // The bias of the finite set goes: a position without obstruction adds nothing at all.
            if (allowed > 0 && allowed < orientations)
                saupe[k] += weight * (running[k] / allowed - sums.all[k] / orientations) * ring;
        }
    }
    const std::int64_t wholePositions = total_bic / orientations; // what is left of one is not counted
    total = setup.lcType == lcRod ? grid.total : static_cast<double>(wholePositions) + grid.end_dist;
}

} // namespace

Status makeStericGrid(const StericSetup &setup, StericGrid &grid, Messages &messages)
{
    grid.wallLimit = Block<float>(tag, maxGridPositions + 1);
    if (!grid.wallLimit || !layPositions(tag, setup.grid, grid.at, messages))
        return noBuffers(messages);
    if (setup.lcType == lcWall)
        setWall(setup, grid);
    else if (setup.lcType == lcRod)
        setRod(setup, grid, messages);
    return Status::ok;
}

Status stericAlignment(const StericSetup &setup, const Coordinates &atoms, std::span<const double> dots,
                       Saupe &saupe, Messages &messages)
{
    StericGrid grid;
    if (makeStericGrid(setup, grid, messages) != Status::ok)
        return Status::failed;
    PositionSums sums;
    const auto beyond = static_cast<std::size_t>(grid.at.last) + 2;
    sums.saupe_dis = Block<Saupe>(tag, beyond);
    sums.allowedCount = Block<int>(tag, beyond);
    if (!sums.saupe_dis || !sums.allowedCount)
        return noBuffers(messages);
    const OrientationSet set = makeOrientationSet(dots, setup.digit_psi);
    if (setup.lcType == lcWall)
        sumBesideWall(atoms, set, grid, sums, messages);
    else
        sumBesideRod(setup, atoms, set, grid.at, sums, messages);
    double total = 0.0;
    averagePositions(setup, grid, set.count(), sums, saupe, total);
    return divideByWeights(tag, total, saupe, messages);
}

} // namespace trelm
