// The modes that place charges and then simulate.
#pragma once

#include "modes/run.h"
#include "simulation/alignment/alignment.h"
#include "simulation/charges/charges.h"
#include "simulation/domains/options.h"

#include <span>
#include <vector>

namespace trelm {

/// What every simulation finds out before it begins.
struct Sample {
    DomainOptions domains; ///< of the configuration file
    Block<int> chargeAtomID;
    Block<float> chargeValues;
    ChargeSet charges; ///< in these two blocks, by their atoms in the molecule
    SampleGeometry geometry;
};

/// Fails after a message.
Status setUp(const Run &run, Sample &sample, Messages &messages);

/// What the reports of a simulation show of it.
ShownParameters parametersOf(const Run &run, const SampleGeometry &geometry);

/// What the simulations of a run share. `dots` of makeDots.
AlignmentSetup alignmentSetup(const Run &run, const Sample &sample, std::span<const double> dots,
                              Messages &messages);

/// The orientation points of a run, three values each. Fails after a message.
Status makeDots(const Run &run, std::vector<double> &dots, Messages &messages);

/// Steric simulation of a structure, with its couplings calculated back if a table is given.
Status simulateSteric(const Run &run, Messages &messages);

/// The same with the charges of the structure in the field of the liquid crystal.
Status simulateElectrostatic(const Run &run, Messages &messages);

/// Steric simulation of a file in free format.
Status simulateFree(const Run &run, Messages &messages);

/// Configuration and charges, and no more: modes without a simulation behind them.
Status setUpCharges(const Run &run, Messages &messages);

} // namespace trelm
