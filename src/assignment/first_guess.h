// A good candidate to begin with.
#pragma once

#include "assignment/corners.h"
#include "assignment/search_space.h"

namespace trelm {

/// Alternates between the best assignment for a given tensor and the tensor that fits it, from random
/// tensors, and takes the best candidate that it meets. The tensors come from a std::mt19937 with a seed of
/// its own: always the same for the same space, and no generator of the run is touched. It proves nothing.
void guessCandidate(const SearchSpace &space, ScoreWork &work, Candidate &best);

/// The same, faster, where the problem can be searched over the tensor. The best candidate of `standing` need
/// not be one yet; limit and T have to be set.
void guessByTensors(Standing &standing);

} // namespace trelm
