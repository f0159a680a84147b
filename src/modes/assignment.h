// The branches of the best-fit that search an assignment.
#pragma once

#include "modes/run.h"

namespace trelm {

/// Fails after its messages.
Status searchAssignment(const Run &run, Messages &messages);

} // namespace trelm
