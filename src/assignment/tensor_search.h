// The search for the best assignment by branching over its tensor instead of over the peaks.
//
// For a direction v of the tensor the best assignment is a linear assignment problem; its support, the
// largest A.v + t / 2 q(v) of all assignments, is convex in v. So over a cone of five directions it is below
// what its values at them tell (cone.h), and a cone where that is less than an assignment within the limit
// needs (tensor_problem.h) is given up. The others are cut in two at their longest edge, and at their range
// of lengths t, until one assignment is the best all over a cone, or the few that come near it are considered
// one by one. Noise makes no difference to that: the tensor has five numbers, whatever the couplings.
#pragma once

#include "assignment/corners.h"

#include <functional>

namespace trelm {

/// Whether the best candidate so far is good enough for a search over the tensor: better than no tensor at
/// all.
bool canSearchTensors(const Standing &standing);

/// Searches to the end, unless the user interrupts it: returns whether it did. The best candidate of
/// `standing` becomes the best of all; limit and T have to be set. `progress` is called with the part that is
/// settled, 0 to 1.
bool searchTensors(Standing &standing, const std::function<void(double)> &progress);

/// Finds the lowest score with a peak on another row than in the best assignment, into the alternatives of
/// the corners, as far as `reach` above the score of that and to `accuracy`. Corners are shared by the
/// searches of all peaks. The window is not asked for. Returns whether it is proved: false after an
/// interrupt.
bool searchElsewhere(Corners &corners, int peak, double reach, double accuracy);

} // namespace trelm
