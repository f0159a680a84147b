#include "simulation/obstacle/rod.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <numeric>

namespace trelm {
namespace {

constexpr std::size_t blockSize = QuickColumns::blockSize;

/// The largest number whose root, rounded, is at or below the limit: a comparison of squares decides as one
/// of distances would.
float squareOf(float limit)
{
    if (limit < 0.0f) // no root is as small as that
        return limit;
    float square = limit * limit;
    while (std::sqrt(square) > limit)
        square = std::nextafter(square, 0.0f);
    while (std::sqrt(std::nextafter(square, HUGE_VALF)) <= limit)
        square = std::nextafter(square, HUGE_VALF);
    return square;
}

/// The positions that one atom blocks. Its distance from the axis falls as far as the place where it passes
/// the axis, and rises from there: two searches by halves with the very test.
Interval blockedByAtom(const RodKernel &kernel, float x, float y)
{
    const std::span<const float> distances = kernel.positionDist;
    const float ySquare = y * y;
    if (ySquare > kernel.squareLimit)
        return {};
    const auto isBlocked = [&](float distance) {
        const float along = x + distance;
        return along * along + ySquare <= kernel.squareLimit;
    };
    const auto isBefore = [x](float distance) { return x + distance < 0.0f; };
    const auto isFree = [&](float distance) { return !isBlocked(distance); };
    const auto passing = std::ranges::partition_point(distances, isBefore);
    const auto first = std::ranges::partition_point(distances.begin(), passing, isFree);
    const auto beyond = std::ranges::partition_point(passing, distances.end(), isBlocked);
    return {static_cast<int>(first - distances.begin()), static_cast<int>(beyond - distances.begin()) - 1};
}

/// The directions of an orientation, and the same for the quick test.
struct Directions {
    const Axis &normal, &side;
    QuickDirection quickNormal{normal}, quickSide{side};
};

/// False if atom j is surely not in the way at this distance or beyond.
bool mayReach(const RodKernel &kernel, std::size_t j, const Directions &to, float shifted)
{
    const float along = quickTurned(kernel.quick, j, to.quickNormal) + shifted;
    const float across = quickTurned(kernel.quick, j, to.quickSide);
    // The sign keeps the atoms that have yet to pass the axis: they block positions farther out.
    return across * across + along * std::fabs(along) <= kernel.quickSquare;
}

/// The same of a whole block.
bool mayBlockReach(const RodKernel &kernel, std::size_t start, const Directions &to, float shifted)
{
    int hits = 0;
    for (std::size_t j = start; j < start + blockSize; ++j)
        hits += mayReach(kernel, j, to, shifted) ? 1 : 0;
    return hits != 0;
}

/// Adds what one atom blocks: to the run of positions from 0 to `top`, or to the intervals beyond it.
void takeAtom(RodKernel &kernel, std::size_t j, const Directions &to, int &top)
{
    const Interval interval = blockedByAtom(kernel, turned(kernel.atoms.view(), j, to.normal),
                                            turned(kernel.atoms.view(), j, to.side));
    if (interval.empty() || interval.last <= top)
        return;
    if (interval.first > top + 1) {
        kernel.pending.push_back(interval);
        return;
    }
    top = interval.last;
    kernel.decider = j;
}

/// Joins the run from 0 to `top` with the intervals beyond it.
void joinPending(RodKernel &kernel, int top, std::vector<Interval> &blocked)
{
    blocked.clear();
    if (top >= 0)
        blocked.push_back({0, top});
    std::ranges::sort(kernel.pending, {}, &Interval::first);
    for (const Interval &interval : kernel.pending) {
        if (blocked.empty() || interval.first > blocked.back().last + 1)
            blocked.push_back(interval);
        else
            blocked.back().last = std::max(blocked.back().last, interval.last);
    }
}

AtomColumns outermostFirst(const Coordinates &atoms)
{
    std::vector<std::size_t> order(atoms.count());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::ranges::sort(order, std::ranges::greater{}, [&atoms](std::size_t i) {
        return atoms.x[i] * atoms.x[i] + atoms.y[i] * atoms.y[i] + atoms.z[i] * atoms.z[i];
    });
    AtomColumns sorted;
    for (const std::size_t i : order)
        sorted.append(atoms, i);
    return sorted;
}

} // namespace

RodKernel makeRodKernel(const Coordinates &atoms, std::span<const float> positionDist, double max_obstruction,
                        double radius)
{
    RodKernel kernel;
    kernel.atoms = outermostFirst(atoms);
    kernel.positionDist = positionDist;
    const auto reach = static_cast<float>(max_obstruction + radius);
    kernel.squareLimit = squareOf(reach);

    kernel.quick = makeQuickColumns(kernel.atoms.view());
    // The sum with a distance is rounded once more.
    kernel.quickShift = kernel.quick.error + 1e-6f * positionDist.back();
    const float quickReach = reach + 4.0f * kernel.quickShift;
    kernel.quickSquare = quickReach * quickReach * 1.00001f;
    return kernel;
}

void blockedByRod(RodKernel &kernel, const Axis &normal, const Axis &side, std::vector<Interval> &blocked)
{
    const Directions to{normal, side};
    const auto end = static_cast<int>(kernel.positionDist.size());
    const std::size_t atomCount = kernel.atoms.x.size();
    kernel.pending.clear();
    int top = -1;
    // Neighbouring orientations are often decided by the same atom, and mostly by an outer one: the others
    // are seen to add nothing by the quick test alone.
    takeAtom(kernel, kernel.decider, to, top);
    const auto shifted = [&] {
        return kernel.positionDist[static_cast<std::size_t>(top) + 1] - kernel.quickShift;
    };
    for (std::size_t start = 0; start < atomCount && top + 1 < end; start += blockSize) {
        if (!mayBlockReach(kernel, start, to, shifted()))
            continue;
        for (std::size_t j = start; j < std::min(start + blockSize, atomCount) && top + 1 < end; ++j)
            if (mayReach(kernel, j, to, shifted()))
                takeAtom(kernel, j, to, top);
    }
    joinPending(kernel, top, blocked);
}

} // namespace trelm
