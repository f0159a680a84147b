// The roads that read configuration and charges and then simulate.
#pragma once

#include "driver/run.h"

namespace trelm {

/// Steric simulation of a structure, with its couplings calculated back if a table is given.
int simulateSteric(Run &run);

/// Steric simulation of a file in free format.
int simulateFree(Run &run);

/// Configuration and charges, and no more: modes without a simulation behind them.
int setUpCharges(Run &run);

} // namespace trelm
