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

/// Fails after a message.
Status setUp(Run &run, Sample &sample, Messages &messages);

/// The parameters as reports show them: with the geometry of the sample.
TrelmInfo shownParameters(const TrelmInfo &trelmInfo, const SampleGeometry &geometry);

/// What the simulations of a run share. `dots` of makeDots.
AlignmentSetup alignmentSetup(const Run &run, const Sample &sample, std::span<const double> dots,
                              Messages &messages);

/// The orientation points of a run, in its own buffer. Fails after a message.
Status makeDots(Run &run, std::span<const double> &ddots, Messages &messages);

/// Steric simulation of a structure, with its couplings calculated back if a table is given.
Status simulateSteric(Run &run, Messages &messages);

/// The same with the charges of the structure in the field of the liquid crystal.
Status simulateElectrostatic(Run &run, Messages &messages);

/// Steric simulation of a file in free format.
Status simulateFree(Run &run, Messages &messages);

/// Axes and charges of a structure, without a simulation.
Status analyzeStructure(Run &run, Messages &messages);

/// Configuration and charges, and no more: modes without a simulation behind them.
Status setUpCharges(Run &run, Messages &messages);

} // namespace trelm
