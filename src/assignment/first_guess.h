// A good candidate to begin with.
#pragma once

#include "assignment/search_space.h"

namespace trelm {

/// Alternates between the best assignment for a given tensor and the tensor that fits it, from random
/// tensors, and takes the best candidate that it meets. Always the same for the same space. It proves
/// nothing.
void guessCandidate(const SearchSpace &space, ScoreWork &work, Candidate &best);

} // namespace trelm
