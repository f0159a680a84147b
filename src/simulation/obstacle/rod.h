// Which distances between a solute and a rod an orientation blocks.
#pragma once

#include "simulation/orientations/columns.h"
#include "structure/rotate.h"

#include <cstddef>
#include <span>
#include <vector>

namespace trelm {

/// Positions first to last.
struct Interval {
    int first = 0, last = -1;
    [[nodiscard]] bool empty() const { return last < first; }
};

/// The solute beside a rod, with the work space of the kernel.
struct RodKernel {
    AtomColumns atoms;                   ///< outermost first
    std::span<const float> positionDist; ///< distances of the solute's centre from the axis; they rise
    float squareLimit = 0.0f;            ///< an atom is in the way if its squared distance is at or below
    float quickShift = 0.0f;             ///< what the quick test gives away to rounding, angstrom
    float quickSquare = 0.0f;
    QuickColumns quick;
    std::size_t decider = 0; ///< the atom that reached farthest in the orientation before
    std::vector<Interval> pending;
};

/// `max_obstruction` and `radius`: of the rod and of every atom. The distances must outlive the
/// kernel.
RodKernel makeRodKernel(const Coordinates &atoms, std::span<const float> positionDist, double max_obstruction,
                        double radius);

/// The positions that an orientation has blocked, as intervals that rise and do not touch. `normal` is the
/// direction from the axis to the solute's centre, `side` the one at right angles to it and to the axis, both
/// in the frame of the solute.
void blockedByRod(RodKernel &kernel, const Axis &normal, const Axis &side, std::vector<Interval> &blocked);

} // namespace trelm
