// Which distances between a solute and a wall an orientation leaves free.
#pragma once

#include "simulation/orientations/columns.h"
#include "structure/rotate.h"

#include <span>
#include <vector>

namespace trelm {

/// The atoms of which one is the nearest to a wall, with the work space to find it.
struct NearestKernel {
    AtomColumns hull;   ///< the atoms that can be the outermost
    QuickColumns quick; ///< the same in single precision
    std::vector<float> turnedX;
};

NearestKernel makeNearestKernel(const Coordinates &atoms);

/// The coordinate along `normal` of the atom nearest to the wall: the least of the deciding coordinates.
float nearestToWall(NearestKernel &kernel, const Axis &normal);

/// The solute beside a wall.
struct WallKernel {
    NearestKernel nearest;
    std::span<const float> wallLimit; ///< an atom touches the wall at or below it; the limits fall
    float limitsPerLength = 0.0f;     ///< how fast they fall, 1/angstrom
};

/// The limits must outlive the kernel.
WallKernel makeWallKernel(const Coordinates &atoms, std::span<const float> wallLimit);

/// The first position at which an orientation is free of the wall; the number of limits if there is none.
/// `normal`: the direction from the wall to the solute's centre, in the frame of the solute.
int firstFreeOfWall(WallKernel &kernel, const Axis &normal);

} // namespace trelm
