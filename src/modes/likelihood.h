// The branch that estimates the tensor's magnitude by likelihood.
#pragma once

#include "modes/run.h"

namespace trelm {

/// Returns 0, or the status of the failing step after its messages.
int estimateByLikelihood(Run &run);

} // namespace trelm
