#include "simulation/obstacle/surface.h"

#include "simulation/orientations/rotation.h"
#include "simulation/orientations/sphere.h"
#include "support/text/text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace trelm {
namespace {

constexpr double fullSphere = 12.566370614359172;

using Vec = Axis;

/// An atom as the neighbour search sees it.
struct Ball {
    Vec centre;
    double radius;
    int atom; ///< its place in the input
};

/// The atoms sorted into cubes, so that all neighbours of an atom are in its own and the 26 around it.
struct Cells {
    std::array<int, 3> count = {1, 1, 1};
    std::vector<int> first; ///< first ball of each cube, and one more
    std::vector<Ball> balls;

    [[nodiscard]] int number(int ix, int iy, int iz) const { return ix + count[0] * (iy + count[1] * iz); }
    [[nodiscard]] std::span<const Ball> inCell(int cell) const
    {
        const auto from = static_cast<std::size_t>(first[static_cast<std::size_t>(cell)]);
        const auto to = static_cast<std::size_t>(first[static_cast<std::size_t>(cell) + 1]);
        return std::span(balls).subspan(from, to - from);
    }
};

/// A neighbour covers the dots u with u . v > limit.
struct Cap {
    Vec v;
    double limit;
    double length; ///< of v
    double depth;  ///< limit over length: the smaller, the more the cap covers
};

/// A group of dots and the sphere around it: a test of the group spares those of its dots.
struct DotGroup {
    int first, count;
    Vec centre;
    double radius;
};

Vec dotAt(std::span<const double> dots, int i)
{
    const auto place = static_cast<std::size_t>(3 * i);
    return {dots[place], dots[place + 1], dots[place + 2]};
}

struct Box {
    Vec low, high;
};

Box boundingBox(std::span<const double> co)
{
    Box box{{co[0], co[1], co[2]}, {co[0], co[1], co[2]}};
    for (std::size_t i = 0; i < co.size(); ++i) {
        box.low[i % 3] = std::min(box.low[i % 3], co[i]);
        box.high[i % 3] = std::max(box.high[i % 3], co[i]);
    }
    return box;
}

/// Cubes of twice the largest radius, larger ones where a few atoms far apart would ask for too many. Points
/// without a radius touch no other: any cubes will do.
double cubeSide(const Box &box, double largest, std::size_t atoms)
{
    double side = largest > 0.0 ? 2.0 * largest : 1.0;
    const double enough = 8.0 * static_cast<double>(atoms) + 1000.0;
    const auto cubes = [&box](double width) {
        double product = 1.0;
        for (std::size_t axis = 0; axis < 3; ++axis)
            product *= std::max(1.0, std::ceil((box.high[axis] - box.low[axis]) / width));
        return product;
    };
    while (cubes(side) > enough)
        side *= 2.0;
    return side;
}

Cells sortIntoCells(std::span<const double> co, std::span<const double> radius)
{
    const Box box = boundingBox(co);
    const double side = cubeSide(box, *std::ranges::max_element(radius), radius.size());
    Cells cells;
    Vec start;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const double extent = box.high[axis] - box.low[axis];
        cells.count[axis] = std::max(1, static_cast<int>(std::ceil(extent / side)));
        start[axis] = box.low[axis] - (cells.count[axis] * side - extent) / 2.0;
    }
    std::vector<int> cellOf(radius.size());
    cells.first.assign(static_cast<std::size_t>(cells.number(0, 0, cells.count[2])) + 1, 0);
    for (std::size_t i = 0; i < radius.size(); ++i) {
        std::array<int, 3> place;
        for (std::size_t axis = 0; axis < 3; ++axis)
            place[axis] = std::clamp(static_cast<int>(std::floor((co[3 * i + axis] - start[axis]) / side)), 0,
                                     cells.count[axis] - 1);
        cellOf[i] = cells.number(place[0], place[1], place[2]);
        ++cells.first[static_cast<std::size_t>(cellOf[i]) + 1];
    }
    for (std::size_t c = 1; c < cells.first.size(); ++c)
        cells.first[c] += cells.first[c - 1];
    cells.balls.resize(radius.size());
    std::vector<int> end(cells.first.begin() + 1, cells.first.end()); // each cube is filled from its end
    for (std::size_t i = 0; i < radius.size(); ++i)
        cells.balls[static_cast<std::size_t>(--end[static_cast<std::size_t>(cellOf[i])])] = {
            {co[3 * i], co[3 * i + 1], co[3 * i + 2]}, radius[i], static_cast<int>(i)};
    return cells;
}

/// The balls of a cube and of those around it, side by side.
void gatherAround(const Cells &cells, int ix, int iy, int iz, std::vector<Ball> &around)
{
    around.clear();
    for (int z = std::max(0, iz - 1); z <= std::min(iz + 1, cells.count[2] - 1); ++z)
        for (int y = std::max(0, iy - 1); y <= std::min(iy + 1, cells.count[1] - 1); ++y)
            for (int x = std::max(0, ix - 1); x <= std::min(ix + 1, cells.count[0] - 1); ++x) {
                const auto balls = cells.inCell(cells.number(x, y, z));
                around.insert(around.end(), balls.begin(), balls.end());
            }
}

/// The caps that neighbours cut from the sphere of one ball, those that cover most first.
void findCaps(const Ball &ball, std::span<const Ball> around, std::vector<Cap> &caps)
{
    caps.clear();
    for (const Ball &other : around) {
        const double reach = ball.radius + other.radius;
        const Vec v = {other.centre[0] - ball.centre[0], other.centre[1] - ball.centre[1],
                       other.centre[2] - ball.centre[2]};
        const double squared = dot(v, v);
        if (squared > reach * reach || other.atom == ball.atom)
            continue;
        const double limit =
            (squared + ball.radius * ball.radius - other.radius * other.radius) / (2.0 * ball.radius);
        const double length = std::sqrt(squared);
        const double depth = length > 0.0 ? limit / length : std::copysign(1e30, limit); // same centre
        caps.push_back({v, limit, length, depth});
    }
    std::ranges::sort(caps, {}, &Cap::depth);
}

/// The dots of each cell of the generator's cube, in the order of the set.
std::vector<DotGroup> groupDots(const DotSet &set)
{
    const std::span<const double> dots = set.dots;
    std::vector<DotGroup> groups;
    for (std::size_t c = 0; c < set.cellCount.size(); ++c) {
        if (set.cellCount[c] == 0)
            continue;
        DotGroup group{set.cellFirst[c], set.cellCount[c], {}, 0.0};
        for (int i = 0; i < group.count; ++i)
            for (std::size_t axis = 0; axis < 3; ++axis)
                group.centre[axis] += dotAt(dots, group.first + i)[axis] / group.count;
        for (int i = 0; i < group.count; ++i) {
            const Vec u = dotAt(dots, group.first + i);
            const Vec d = {u[0] - group.centre[0], u[1] - group.centre[1], u[2] - group.centre[2]};
            group.radius = std::max(group.radius, std::sqrt(dot(d, d)));
        }
        groups.push_back(group);
    }
    std::ranges::sort(groups, {}, &DotGroup::first);
    return groups;
}

/// The dots of one ball that no cap covers, and the work space to find them.
struct Exposure {
    std::span<const double> dots;
    std::size_t dotTotal = 0;
    std::vector<DotGroup> groups;
    std::vector<const Cap *> partial; ///< caps that cover a group in part
    std::vector<int> exposed;         ///< numbers of the exposed dots, in the order of the set
};

void exposeGroup(Exposure &exposure, const DotGroup &group, std::span<const Cap> caps)
{
    // Room for rounding: the group decides only where each of its dots surely decides the same way.
    constexpr double margin = 1e-9;
    exposure.partial.clear();
    for (const Cap &cap : caps) {
        const double middle = dot(group.centre, cap.v);
        const double spread = (group.radius + margin) * cap.length + margin;
        if (middle - spread > cap.limit)
            return;
        if (middle + spread > cap.limit)
            exposure.partial.push_back(&cap);
    }
    // The cap that covered the last dot mostly covers the next one, too.
    const Cap *last = exposure.partial.empty() ? nullptr : exposure.partial.front();
    for (int i = group.first; i < group.first + group.count; ++i) {
        const Vec u = dotAt(exposure.dots, i);
        const auto covers = [&u](const Cap *cap) { return dot(u, cap->v) > cap->limit; };
        if (last != nullptr && covers(last))
            continue;
        const auto found = std::ranges::find_if(exposure.partial, covers);
        if (found == exposure.partial.end())
            exposure.exposed.push_back(i);
        else
            last = *found;
    }
}

void findExposed(Exposure &exposure, std::span<const Cap> caps)
{
    exposure.exposed.clear();
    for (const DotGroup &group : exposure.groups)
        exposeGroup(exposure, group, caps);
}

/// Adds what one ball contributes to the surface. `volume` is the running sum.
void addBall(const Ball &ball, const Exposure &exposure, int mode, const Vec &centroid, Surface &surface,
             double &volume)
{
    const auto dotTotal = static_cast<double>(exposure.dotTotal);
    const auto count = static_cast<double>(exposure.exposed.size());
    const double square = ball.radius * ball.radius;
    const double area = square * (fullSphere / dotTotal) * count;
    surface.value_of_area += area;
    if ((mode & surfaceAtomAreas) != 0)
        surface.at_area[static_cast<std::size_t>(ball.atom)] = area;
    Vec sum = {};
    for (const int i : exposure.exposed) {
        const Vec u = dotAt(exposure.dots, i);
        for (std::size_t axis = 0; axis < 3; ++axis) {
            sum[axis] += u[axis];
            if ((mode & surfaceDotList) != 0)
                surface.lidots.push_back(ball.centre[axis] + u[axis] * ball.radius);
        }
    }
    const Vec offset = {ball.centre[0] - centroid[0], ball.centre[1] - centroid[1],
                        ball.centre[2] - centroid[2]};
    volume += square * (dot(sum, offset) + ball.radius * count);
}

Vec centroidOf(std::span<const double> co)
{
    const std::size_t atoms = co.size() / 3;
    Vec sum = {};
    for (std::size_t i = 0; i < co.size(); ++i)
        sum[i % 3] += co[i];
    for (double &value : sum)
        value /= static_cast<double>(atoms);
    return sum;
}

} // namespace

Status nsc_dclm(std::span<const double> co, std::span<const double> radius, int densit, int mode,
                Surface &surface, Messages &messages)
{
    surface = Surface{};
    Exposure exposure;
    DotSet set;
    if (!make_unsp(densit, set))
        return Status::failed;
    exposure.dots = set.dots;
    exposure.dotTotal = exposure.dots.size() / 3;
    exposure.groups = groupDots(set);
    if (radius.empty())
        return messages.fail("nsc_dclm: no surface atoms selected\n");
    if ((mode & surfaceAtomAreas) != 0)
        surface.at_area.assign(radius.size(), 0.0);

    const Cells cells = sortIntoCells(co, radius);
    const Vec centroid = centroidOf(co);
    std::vector<Ball> around;
    std::vector<Cap> caps;
    double volume = 0.0;
    for (int iz = 0; iz < cells.count[2]; ++iz)
        for (int iy = 0; iy < cells.count[1]; ++iy)
            for (int ix = 0; ix < cells.count[0]; ++ix) {
                const auto balls = cells.inCell(cells.number(ix, iy, iz));
                if (balls.empty())
                    continue;
                gatherAround(cells, ix, iy, iz, around);
                for (const Ball &ball : balls) {
                    findCaps(ball, around, caps);
                    findExposed(exposure, caps);
                    addBall(ball, exposure, mode, centroid, surface, volume);
                }
            }
    if ((mode & surfaceVolume) != 0) {
        const auto dotTotal = static_cast<double>(exposure.dotTotal);
        surface.value_of_vol =
            static_cast<double>(static_cast<float>(volume * fullSphere)) / (dotTotal * 3.0);
    }
    return Status::ok;
}

} // namespace trelm
