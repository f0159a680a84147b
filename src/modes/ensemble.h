// The road of molecules made of two domains.
#pragma once

#include "modes/run.h"

namespace trelm {

/// Simulates an ensemble of domain orientations and averages its couplings. Returns 0, or the status of the
/// failing step after its messages.
int simulateEnsemble(Run &run);

} // namespace trelm
