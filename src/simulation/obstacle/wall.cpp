#include "simulation/obstacle/wall.h"

#include "simulation/obstacle/hull.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace trelm {
namespace {

/// The least of some numbers, by four minima side by side: a single one would wait for itself at each step.
float lowestOf(std::span<const float> values)
{
    constexpr std::size_t lanes = 4;
    static_assert(QuickColumns::blockSize % lanes == 0);
    std::array<float, lanes> lowest;
    lowest.fill(HUGE_VALF);
    for (std::size_t j = 0; j + lanes <= values.size(); j += lanes)
        for (std::size_t lane = 0; lane < lanes; ++lane)
            lowest[lane] = values[j + lane] < lowest[lane] ? values[j + lane] : lowest[lane];
    return std::min(std::min(lowest[0], lowest[1]), std::min(lowest[2], lowest[3]));
}

} // namespace

NearestKernel makeNearestKernel(const Coordinates &atoms)
{
    NearestKernel kernel;
    kernel.hull = hullAtoms(atoms);
    kernel.quick = makeQuickColumns(kernel.hull.view());
    kernel.turnedX.resize(kernel.quick.paddedCount());
    return kernel;
}

float nearestToWall(NearestKernel &kernel, const Axis &normal)
{
    const QuickDirection direction(normal);
    float *const x = kernel.turnedX.data();
    for (std::size_t j = 0; j < kernel.turnedX.size(); ++j)
        x[j] = quickTurned(kernel.quick, j, direction);
    const float bound = lowestOf(kernel.turnedX) + 2.0f * kernel.quick.error;
    float nearest = HUGE_VALF;
    const Coordinates hull = kernel.hull.view();
    for (std::size_t j = 0; j < hull.count(); ++j)
        if (x[j] <= bound) // the quick coordinate does not rule it out
            nearest = std::min(nearest, turned(hull, j, normal));
    return nearest;
}

WallKernel makeWallKernel(const Coordinates &atoms, std::span<const float> wallLimit)
{
    WallKernel kernel;
    kernel.nearest = makeNearestKernel(atoms);
    kernel.wallLimit = wallLimit;
    const float fall = wallLimit.front() - wallLimit.back();
    kernel.limitsPerLength = fall > 0.0f ? static_cast<float>(wallLimit.size() - 1) / fall : 0.0f;
    return kernel;
}

int firstFreeOfWall(WallKernel &kernel, const Axis &normal)
{
    // One minimum instead of positions times atoms: the limits fall, so the nearest atom alone decides. They
    // fall evenly but for rounding: the first free position is computed, and settled by the very comparison.
    const float nearest = nearestToWall(kernel.nearest, normal);
    const std::span<const float> limits = kernel.wallLimit;
    const float guess = (limits.front() - nearest) * kernel.limitsPerLength;
    auto first = static_cast<std::size_t>(std::clamp(guess, 0.0f, static_cast<float>(limits.size())));
    while (first > 0 && nearest > limits[first - 1])
        --first;
    while (first < limits.size() && nearest <= limits[first])
        ++first;
    return static_cast<int>(first);
}

} // namespace trelm
