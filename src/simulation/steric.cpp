#include "simulation/steric.h"

#include "simulation/rod.h"
#include "simulation/wall.h"
#include "support/progress.h"
#include "support/text.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>

namespace trelm {
namespace {

constexpr int lastPlace = maxGridPositions - 1;
constexpr const char *tag = "stericAlignment";

void warnShortGrid()
{
    std::fputs("WARNING: concentration too low - magnitude of alignment tensor incorrect\n", stderr);
}

int noBuffers()
{
    return complain("Error allocating coord buffers.\n");
}

/// The positions up to the edge of the wall's cell, where nothing is obstructed, and the wall's limits.
void setWall(const StericSetup &setup, PositionGrid &grid)
{
    const auto reached = static_cast<double>(grid.positionDist[static_cast<std::size_t>(grid.grid_el)]);
    grid.end_dist = std::trunc((setup.stepOutLength - reached) / setup.gridSpacing);
    for (std::size_t i = 0; i <= static_cast<std::size_t>(grid.grid_el); ++i)
        grid.wallLimit[i] = static_cast<float>(
            setup.radius - (static_cast<double>(grid.positionDist[i]) - setup.max_obstruction));
}

/// The weight of all positions beside a rod, and the free positions as far as the gap to the next rod.
void setRod(const StericSetup &setup, PositionGrid &grid, bool isShort)
{
    const double cellGap = setup.max_obstruction / std::sqrt(setup.wvAmount / 1.46) - setup.max_obstruction;
    const double n = std::trunc(cellGap / setup.gridSpacing);
    grid.total = std::trunc(n + n * (n + 1.0) * 0.5 * (setup.gridSpacing / setup.max_obstruction));

    // The gap leaves the rod's radius out, the distances have it in: so the model is.
    const auto reached = static_cast<double>(grid.positionDist[static_cast<std::size_t>(grid.grid_el)]);
    if (reached > cellGap)
        return;
    for (int j = 1; grid.last < lastPlace; ++j) {
        grid.last = grid.grid_el + j;
        const auto place = static_cast<std::size_t>(grid.last);
        grid.positionDist[place] = static_cast<float>(reached + j * setup.gridSpacing);
        if (grid.last < lastPlace && cellGap < static_cast<double>(grid.positionDist[place]))
            return;
    }
    if (!isShort)
        warnShortGrid();
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

void addTurn(PositionSums &sums, const Turn &turn)
{
    for (std::size_t k = 0; k < sums.all.size(); ++k)
        sums.all[k] += turn.saupe[k];
}

void sumBesideWall(const Coordinates &atoms, const OrientationSet &set, const PositionGrid &grid,
                   PositionSums &sums)
{
    WallKernel kernel =
        makeWallKernel(atoms, grid.wallLimit.span().first(static_cast<std::size_t>(grid.grid_el) + 1));
    Progress progress = startProgress("REMARK Orientation ", set.count());
    int number = 0;
    forEachTurn(set, [&](const Turn &turn) {
        showProgress(progress, ++number);
        addTurn(sums, turn);
        const int first = firstFreeOfWall(kernel, turn.column1);
        if (first <= grid.grid_el)
            sums.addFree(turn.saupe, first, grid.grid_el);
    });
    endProgress(progress);
}

void sumBesideRod(const StericSetup &setup, const Coordinates &atoms, const OrientationSet &set,
                  const PositionGrid &grid, PositionSums &sums)
{
    const auto distances = grid.positionDist.span().first(static_cast<std::size_t>(grid.grid_el) + 1);
    RodKernel kernel = makeRodKernel(atoms, distances, setup.max_obstruction, setup.radius);
    std::vector<Interval> blocked;
    Progress progress = startProgress("REMARK Orientation ", set.count());
    int number = 0;
    forEachTurn(set, [&](const Turn &turn) {
        showProgress(progress, ++number);
        addTurn(sums, turn);
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
    endProgress(progress);
}

/// Sums up the differences, and weighs each position's average by what survives there.
void averagePositions(const StericSetup &setup, const PositionGrid &grid, int orientations,
                      const PositionSums &sums, Saupe &saupe, double &total)
{
    Saupe running = {};
    int allowed = 0;
    std::int64_t total_bic = 0;
    saupe = {};
    for (std::size_t i = 0; i <= static_cast<std::size_t>(grid.last); ++i) {
        allowed += sums.allowedCount[i];
        total_bic += allowed;
        const double weight = static_cast<double>(allowed) / orientations;
        const double ring =
            setup.lcType == lcRod ? static_cast<double>(grid.positionDist[i]) / setup.max_obstruction : 1.0;
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

int makePositionGrid(const StericSetup &setup, PositionGrid &grid)
{
    grid.positionDist = Block<float>(tag, maxGridPositions);
    grid.wallLimit = Block<float>(tag, maxGridPositions + 1);
    if (!grid.positionDist || !grid.wallLimit)
        return noBuffers();
    const double steps =
        std::trunc((setup.max_protein_length - setup.min_protein_length) / setup.gridSpacing);
    const bool isShort = steps > lastPlace;
    if (isShort)
        warnShortGrid();
    grid.grid_el = isShort ? lastPlace : static_cast<int>(steps);
    grid.last = grid.grid_el;
    for (int i = 0; i <= grid.grid_el; ++i)
        grid.positionDist[static_cast<std::size_t>(i)] =
            static_cast<float>(i * setup.gridSpacing + (setup.min_protein_length + setup.max_obstruction));
    if (setup.lcType == lcWall)
        setWall(setup, grid);
    else if (setup.lcType == lcRod)
        setRod(setup, grid, isShort);
    return 0;
}

int stericAlignment(const StericSetup &setup, const Coordinates &atoms, std::span<const double> dots,
                    Saupe &saupe)
{
    PositionGrid grid;
    if (makePositionGrid(setup, grid) != 0)
        return 1;
    PositionSums sums;
    sums.saupe_dis = Block<Saupe>(tag, static_cast<std::size_t>(grid.last) + 2);
    sums.allowedCount = Block<int>(tag, static_cast<std::size_t>(grid.last) + 2);
    if (!sums.saupe_dis || !sums.allowedCount)
        return noBuffers();
    const OrientationSet set = makeOrientationSet(dots, setup.digit_psi);
    if (setup.lcType == lcWall)
        sumBesideWall(atoms, set, grid, sums);
    else
        sumBesideRod(setup, atoms, set, grid, sums);
    double total = 0.0;
    averagePositions(setup, grid, set.count(), sums, saupe, total);
    if (total == 0.0)
        return complain("stericAlignment: no position counts at this concentration and grid.\n");
    for (double &element : saupe)
        element /= total;
    return 0;
}

} // namespace trelm
