// The frame of every simulation: from chosen atoms to the order matrix of a run.
#pragma once

#include "couplings/tensor.h"
#include "driver/trelm.h"
#include "simulation/atom_selection.h"
#include "simulation/steric.h"

#include <span>

namespace trelm {

/// The composition of the sample made into geometry: writes molarRatio, rSingleCell, lengthModel and
/// orderDiscRim. Once a run: it starts from the molar ratio that it replaces. Returns 0.
int refine_bicelle(TrelmInfo *trelmInfo);

/// Refuses a concentration outside 0 to 1, which refine_bicelle divides by. Returns 0, or 1 after one line.
int checkSample(const TrelmInfo &trelmInfo);

/// Refuses parameters that no simulation can work with: densities, steps and radii that are not positive, too
/// many orientation points. Returns 0, or 1 after one line that names the option.
int checkSimulation(const TrelmInfo &trelmInfo);

/// Moves coordinates to their geometric centre, which is summed in single precision. Returns the largest
/// distance from it, angstrom.
float centreAtoms(const CoordinateBuffers &atoms);

/// The steric simulation of centred atoms with the parameters of a run. As stericAlignment.
int runSteric(const TrelmInfo &trelmInfo, const CoordinateBuffers &atoms, float distance,
              std::span<const double> ddots, Saupe &saupe);

/// Simulates the alignment of the atoms, which are moved to their geometric centre, and prints the three
/// "Saupe" blocks on standard output. `saupe`: the sum of steric and electrostatic order, with the sign of
/// the surviving orientations. Returns 0, or non-zero after a message.
int simulateAlignment(const TrelmInfo &trelmInfo, const CoordinateBuffers &atoms,
                      std::span<const double> ddots, Saupe &saupe);

} // namespace trelm
