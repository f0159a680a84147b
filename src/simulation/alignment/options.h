// What a simulation of alignment reads.
#pragma once

#include "simulation/charges/options.h"
#include "simulation/obstacle/options.h"
#include "simulation/obstacle/solute_options.h"
#include "simulation/orientations/options.h"

namespace trelm {

/// The liquid crystal, the molecule in it, and how finely both are looked at.
struct AlignmentOptions : ObstacleOptions, SoluteOptions, SamplingOptions, FieldOptions, Grid3DOptions {};

} // namespace trelm
