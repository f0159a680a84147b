#include "simulation/obstacle/exposure.h"

#include "simulation/obstacle/balls.h"
#include "simulation/obstacle/surface.h"
#include "simulation/orientations/rotation.h"
#include "simulation/orientations/sphere.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <map>
#include <numeric>

namespace trelm {
namespace {

constexpr std::size_t lanes = 16; ///< dots that are tested side by side

/// Dots that lie close together, and the sphere around them.
struct DotBlock {
    std::array<double, lanes> x = {}, y = {}, z = {};
    int count = 0;
    Axis centre = {};
    double radius = 0.0;
};

/// -1 where a cap covers the dot, or where there is none; 0 elsewhere.
using Covered = std::array<std::int64_t, lanes>;

DotBlock blockOf(std::span<const double> dots)
{
    DotBlock block;
    block.count = static_cast<int>(dots.size() / 3);
    for (std::size_t i = 0; 3 * i < dots.size(); ++i) {
        block.x[i] = dots[3 * i];
        block.y[i] = dots[3 * i + 1];
        block.z[i] = dots[3 * i + 2];
    }
    for (std::size_t i = 0; i < dots.size(); ++i)
        block.centre[i % 3] += dots[i] / block.count;
    for (std::size_t i = 0; 3 * i < dots.size(); ++i) {
        const Axis d = {block.x[i] - block.centre[0], block.y[i] - block.centre[1],
                        block.z[i] - block.centre[2]};
        block.radius = std::max(block.radius, std::sqrt(dot(d, d)));
    }
    return block;
}

/// The dots of each cell of the generator's cube.
std::vector<DotBlock> blocksOf(const DotSet &set)
{
    std::vector<DotBlock> blocks;
    for (std::size_t c = 0; c < set.cellCount.size(); ++c) {
        const auto first = static_cast<std::size_t>(set.cellFirst[c]),
                   count = static_cast<std::size_t>(set.cellCount[c]);
        for (std::size_t i = 0; i < count; i += lanes)
            blocks.push_back(
                blockOf(std::span(set.dots).subspan(3 * (first + i), 3 * std::min(lanes, count - i))));
    }
    return blocks;
}

/// Covers dots of a block. Returns how many are left.
[[gnu::target_clones("avx512f", "avx2", "default")]] int coverDots(const DotBlock &block, const Cap &cap,
                                                                   const Covered &before, Covered &covered)
{
    std::int64_t sum = 0;
    for (std::size_t i = 0; i < lanes; ++i) {
        const double along = block.x[i] * cap.v[0] + block.y[i] * cap.v[1] + block.z[i] * cap.v[2];
        covered[i] = before[i] | (along > cap.limit ? -1 : 0);
        sum += covered[i];
    }
    return static_cast<int>(sum) + static_cast<int>(lanes);
}

/// The dots of one sphere that no cap has covered yet.
struct OpenDots {
    std::vector<DotBlock> blocks;
    std::vector<Covered> atFirst, covered; ///< by block
    std::vector<int> left;                 ///< dots of each block
    std::vector<std::size_t> open;         ///< blocks with dots left
    int total = 0, remaining = 0;

    explicit OpenDots(const DotSet &set) : blocks(blocksOf(set)), covered(blocks.size()), left(blocks.size())
    {
        for (const DotBlock &block : blocks) {
            Covered &covers = atFirst.emplace_back();
            std::fill(covers.begin() + block.count, covers.end(), -1);
            total += block.count;
        }
    }
    void start()
    {
        open.resize(blocks.size());
        std::iota(open.begin(), open.end(), std::size_t{0});
        std::ranges::transform(blocks, left.begin(), &DotBlock::count);
        remaining = total;
    }
    /// Takes what the cap covers of a block. Returns whether dots are left.
    bool leaves(std::size_t b, const Cap &cap)
    {
        // Room for rounding: the sphere around the block decides only where each of its dots surely decides
        // the same way.
        constexpr double margin = 1e-9;
        const DotBlock &block = blocks[b];
        const double middle = dot(block.centre, cap.v),
                     spread = (block.radius + margin) * cap.length + margin;
        const int before = left[b];
        if (middle - spread > cap.limit)
            left[b] = 0;
        else if (middle + spread > cap.limit)
            left[b] = coverDots(block, cap, before == block.count ? atFirst[b] : covered[b], covered[b]);
        remaining -= before - left[b];
        return left[b] != 0;
    }
};

/// Whether so many dots stay open under the caps, whose order changes.
bool areLeft(OpenDots &dots, std::span<Cap> caps, int needed)
{
    // These caps settle most spheres within a molecule. Of one at its surface whole blocks stay open under
    // all caps.
    constexpr std::size_t mostCovering = 8;
    const std::size_t first = std::min(caps.size(), mostCovering);
    std::ranges::nth_element(caps, caps.begin() + static_cast<std::ptrdiff_t>(first), {}, &Cap::depth);
    dots.start();
    for (const Cap &cap : caps.first(first)) {
        std::erase_if(dots.open, [&](std::size_t b) { return !dots.leaves(b, cap); });
        if (dots.remaining < needed)
            return false;
    }
    int found = 0;
    for (const std::size_t b : dots.open) {
        static_cast<void>(
            std::ranges::all_of(caps.subspan(first), [&](const Cap &cap) { return dots.leaves(b, cap); }));
        found += dots.left[b];
        if (found >= needed || dots.remaining < needed)
            break;
    }
    return found >= needed;
}

/// The fewest exposed dots that are enough on a sphere; one more than there are where all are not.
int fewestDots(double radius, int total, const ExposureLimit &limit)
{
    const double bare = radius - limit.probe;
    int count = 0;
    while (count <= total &&
           !(areaOfDots(radius, count, total) / (12.5663706 * (bare * bare)) > limit.leastRatio))
        ++count;
    return count;
}

} // namespace

Status findExposedBalls(std::span<const double> co, std::span<const double> radius,
                        const ExposureLimit &limit, std::vector<bool> &isExposed, Messages &messages)
{
    DotSet set;
    if (!make_unsp(limit.densit, set))
        return Status::failed;
    if (radius.empty())
        return messages.fail("nsc_dclm: no surface atoms selected\n");
    OpenDots dots(set);
    isExposed.assign(radius.size(), false);
    std::map<double, int> needed; // a few sizes
    forEachBall(co, radius, [&](const Ball &ball, std::span<Cap> caps) {
        const auto [size, isNew] = needed.try_emplace(ball.radius, 0);
        if (isNew)
            size->second = fewestDots(ball.radius, dots.total, limit);
        isExposed[static_cast<std::size_t>(ball.atom)] = areLeft(dots, caps, size->second);
    });
    return Status::ok;
}

} // namespace trelm
