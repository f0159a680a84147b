// The atoms that can be the outermost in some direction.
#pragma once

#include "simulation/orientations/columns.h"

namespace trelm {

/// The atoms on the convex hull, and those so near to it that single-precision rounding could make one of
/// them the outermost: a superset of what any direction needs. All atoms where there is no hull with volume
/// (few atoms, or all in a plane).
AtomColumns hullAtoms(const Coordinates &atoms);

} // namespace trelm
