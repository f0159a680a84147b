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
#include <optional>

namespace trelm {

/// What a search over the tensor is told and tells.
struct TensorSearch {
    const SearchSpace &space;
    const TensorProblem &problem;
    ScoreWork &work;
    Candidate &best;                           ///< in: a candidate to begin with; out: the best
    std::function<void(double)> progress = {}; ///< is called with the part that is settled, 0 to 1
};

/// Whether the best candidate so far is good enough for a search over the tensor: less than no tensor at all.
bool canSearchTensors(const TensorSearch &search);

/// Searches to the end, unless the user interrupts it. Returns whether it did.
bool searchTensors(const TensorSearch &search);

} // namespace trelm
