#include "simulation/obstacle/surface.h"

#include "simulation/obstacle/balls.h"
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
    const auto count = static_cast<double>(exposure.exposed.size());
    const double square = ball.radius * ball.radius;
    const double area = areaOfDots(ball.radius, static_cast<int>(exposure.exposed.size()),
                                   static_cast<int>(exposure.dotTotal));
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

double areaOfDots(double radius, int count, int total)
{
    return radius * radius * (fullSphere / total) * count;
}

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

    const Vec centroid = centroidOf(co);
    double volume = 0.0;
    forEachBall(co, radius, [&](const Ball &ball, std::span<Cap> caps) {
        std::ranges::sort(caps, {}, &Cap::depth); // those that cover most first
        findExposed(exposure, caps);
        addBall(ball, exposure, mode, centroid, surface, volume);
    });
    if ((mode & surfaceVolume) != 0) {
        const auto dotTotal = static_cast<double>(exposure.dotTotal);
        surface.value_of_vol =
            static_cast<double>(static_cast<float>(volume * fullSphere)) / (dotTotal * 3.0);
    }
    return Status::ok;
}

} // namespace trelm
