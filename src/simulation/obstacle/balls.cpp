#include "simulation/obstacle/balls.h"

#include "simulation/orientations/rotation.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <vector>

namespace trelm {
namespace {

constexpr int reachInCubes = 2; ///< smaller cubes hold fewer atoms in vain, but more of them are looked into

/// The atoms sorted into cubes, so that all neighbours of an atom are at most so many cubes away along each
/// axis.
struct Cells {
    std::array<int, 3> count = {1, 1, 1};
    std::vector<int> first; ///< first ball of each cube, and one more
    std::vector<Ball> balls;

    [[nodiscard]] int number(int ix, int iy, int iz) const { return ix + count[0] * (iy + count[1] * iz); }
    /// Those of cubes that follow each other along x.
    [[nodiscard]] std::span<const Ball> inCells(int firstCell, int lastCell) const
    {
        const auto from = static_cast<std::size_t>(first[static_cast<std::size_t>(firstCell)]);
        const auto to = static_cast<std::size_t>(first[static_cast<std::size_t>(lastCell) + 1]);
        return std::span(balls).subspan(from, to - from);
    }
};

struct Box {
    Axis low, high;
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

/// Cubes of the largest reach over reachInCubes, larger ones where a few atoms far apart would ask for too
/// many. Points without a radius touch no other: any cubes will do.
double cubeSide(const Box &box, double largest, std::size_t atoms)
{
    double side = largest > 0.0 ? 2.0 * largest / reachInCubes : 1.0;
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
    Axis start;
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

/// The balls of a cube and of those around it, run by run: cubes that follow each other along x are one.
void gatherAround(const Cells &cells, int ix, int iy, int iz, std::vector<std::span<const Ball>> &around)
{
    around.clear();
    const int xLow = std::max(0, ix - reachInCubes), xHigh = std::min(ix + reachInCubes, cells.count[0] - 1);
    for (int z = std::max(0, iz - reachInCubes); z <= std::min(iz + reachInCubes, cells.count[2] - 1); ++z)
        for (int y = std::max(0, iy - reachInCubes); y <= std::min(iy + reachInCubes, cells.count[1] - 1);
             ++y)
            around.push_back(cells.inCells(cells.number(xLow, y, z), cells.number(xHigh, y, z)));
}

Cap capOf(const Ball &ball, const Ball &other, const Axis &v, double squared)
{
    const double limit =
        (squared + ball.radius * ball.radius - other.radius * other.radius) / (2.0 * ball.radius);
    const double length = std::sqrt(squared);
    const double depth = length > 0.0 ? limit / length : std::copysign(1e30, limit); // same centre
    return {v, limit, length, depth};
}

/// The caps that neighbours cut from the sphere of one ball.
void findCaps(const Ball &ball, std::span<const std::span<const Ball>> around, std::vector<Cap> &caps)
{
    caps.clear();
    for (const std::span<const Ball> run : around)
        for (const Ball &other : run) {
            const double reach = ball.radius + other.radius;
            const Axis v = {other.centre[0] - ball.centre[0], other.centre[1] - ball.centre[1],
                            other.centre[2] - ball.centre[2]};
            const double squared = dot(v, v);
            if (squared > reach * reach || other.atom == ball.atom)
                continue;
            caps.push_back(capOf(ball, other, v, squared));
        }
}

} // namespace

void forEachBall(std::span<const double> co, std::span<const double> radius, const VisitBall &visit)
{
    const Cells cells = sortIntoCells(co, radius);
    std::vector<std::span<const Ball>> around;
    std::vector<Cap> caps;
    for (int iz = 0; iz < cells.count[2]; ++iz)
        for (int iy = 0; iy < cells.count[1]; ++iy)
            for (int ix = 0; ix < cells.count[0]; ++ix) {
                const int cell = cells.number(ix, iy, iz);
                const auto balls = cells.inCells(cell, cell);
                if (balls.empty())
                    continue;
                gatherAround(cells, ix, iy, iz, around);
                for (const Ball &ball : balls) {
                    findCaps(ball, around, caps);
                    visit(ball, caps);
                }
            }
}

} // namespace trelm
