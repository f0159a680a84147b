// Spheres that overlap: for each the caps that its neighbours cut from it.
#pragma once

#include "structure/rotate.h"

#include <functional>
#include <span>

namespace trelm {

/// An atom as the neighbour search sees it.
struct Ball {
    Axis centre;
    double radius;
    int atom; ///< its place in the input
};

/// A neighbour covers the unit vectors u with u . v > limit.
struct Cap {
    Axis v;
    double limit;
    double length; ///< of v
    double depth;  ///< limit over length: the smaller, the more the cap covers
};

using VisitBall = std::function<void(const Ball &ball, std::span<Cap> caps)>;

/// Visits all spheres, neighbours one after another, with their caps, those that cover most first. `co`:
/// three values for each sphere, `radius`: one; there is one sphere at least.
void forEachBall(std::span<const double> co, std::span<const double> radius, const VisitBall &visit);

} // namespace trelm
