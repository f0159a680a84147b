// The part of a molecule that meets the liquid crystal.
#pragma once

#include "simulation/charges/options.h"

namespace trelm {

/// The atoms of a simulation.
struct AtomOptions {
    int Hflag = 0;    ///< 0 drops hydrogens from the simple PDB selection
    int surfFlag = 1; ///< select surface accessible atoms
};

/// What of a molecule is simulated.
struct SoluteOptions : AtomOptions, ChargeOptions {};

} // namespace trelm
