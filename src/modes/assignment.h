// The branches of the best-fit that search an assignment.
#pragma once

#include "modes/run.h"

namespace trelm {

/// Returns 0, or the status of the failing step after its messages.
int searchAssignment(Run &run);

} // namespace trelm
