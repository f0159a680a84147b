// The modes that place charges and then simulate.
#pragma once

#include "modes/run.h"
#include "simulation/alignment/alignment.h"
#include "simulation/charges/charges.h"
#include "simulation/domains/options.h"

#include <span>

namespace trelm {

/// What every simulation finds out before it begins.
struct Sample {
    DomainOptions domains; ///< of the configuration file
    ChargeSet charges;     ///< in the buffers of the run
    SampleGeometry geometry;
};

/// Returns 0, or a status after a message.
int setUp(Run &run, Sample &sample);

/// The parameters as reports show them: with the geometry of the sample.
TrelmInfo shownParameters(const TrelmInfo &trelmInfo, const SampleGeometry &geometry);

/// What the simulations of a run share. `dots` of makeDots.
AlignmentSetup alignmentSetup(const Run &run, const Sample &sample, std::span<const double> dots);

/// The orientation points of a run, in its own buffer. Returns 0, or 1 after a message.
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
