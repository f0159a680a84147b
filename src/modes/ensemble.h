// The mode of molecules made of two domains.
#pragma once

#include "modes/run.h"

namespace trelm {

/// Simulates an ensemble of domain orientations and averages its couplings. Fails after its
/// messages.
Status simulateEnsemble(const Run &run, Messages &messages);

} // namespace trelm
