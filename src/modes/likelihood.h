// The branch that estimates the tensor's magnitude by likelihood.
#pragma once

#include "modes/run.h"

namespace trelm {

/// Fails after its messages.
Status estimateByLikelihood(const Run &run, Messages &messages);

} // namespace trelm
