// The roads that read configuration and charges and then simulate.
#pragma once

#include "modes/run.h"
#include "simulation/charges/charges.h"

#include <span>

namespace trelm {

/// Configuration, charges and geometry of the sample, for every road. Returns 0, or a status after a message.
int setUp(Run &run, ChargeSet &charges);

/// The orientation points of a run, in its own buffer: the generator makes other sets later. Returns 0, or 1
/// after a message.
int makeDots(Run &run, std::span<const double> &ddots);

/// Steric simulation of a structure, with its couplings calculated back if a table is given.
int simulateSteric(Run &run);

/// The same with the charges of the structure in the field of the liquid crystal.
int simulateElectrostatic(Run &run);

/// Steric simulation of a file in free format.
int simulateFree(Run &run);

/// Axes and charges of a structure, without a simulation.
int analyzeStructure(Run &run);

/// Configuration and charges, and no more: modes without a simulation behind them.
int setUpCharges(Run &run);

} // namespace trelm
