// The frame of every simulation: from chosen atoms to the order matrix of a run.
#pragma once

#include "couplings/tensor.h"
#include "ground/trelm.h"
#include "simulation/charges/charges.h"
#include "simulation/charges/potential.h"
#include "simulation/obstacle/atom_selection.h"
#include "simulation/obstacle/steric.h"

#include <span>

namespace trelm {

/// The composition of the sample made into geometry: writes molarRatio, rSingleCell, lengthModel and
/// orderDiscRim. Once a run: it starts from the molar ratio that it replaces. Returns 0.
int refine_bicelle(TrelmInfo *trelmInfo);

/// Refuses a concentration of 0 or below, which refine_bicelle divides by, and warns of one above 1. Returns
/// 0, or 1 after one line.
int checkSample(const TrelmInfo &trelmInfo);

/// Refuses parameters that no simulation can work with: densities that are not positive, too many orientation
/// points, an order that is no number; beside a wall or a rod a step that is not positive, radii out of
/// range, a rod without a radius. Radii that make no sense are warned of. A grid has neither step nor radii.
/// Returns 0, or 1 after one line that names the option.
int checkSimulation(const TrelmInfo &trelmInfo);

/// The mean of one coordinate, summed in single precision.
float singleMean(std::span<const double> column);

/// The largest distance from the origin, angstrom.
float largestDistance(const CoordinateBuffers &atoms);

/// Moves coordinates to their geometric centre, of which each is a singleMean. Returns the largest distance
/// from it, angstrom.
float centreAtoms(const CoordinateBuffers &atoms);

/// The steric simulation of centred atoms with the parameters of a run. As stericAlignment.
int runSteric(const TrelmInfo &trelmInfo, const CoordinateBuffers &atoms, float distance,
              std::span<const double> ddots, Saupe &saupe);

/// The weighted simulation beside a wall or a rod, likewise. As sma.
int runCharged(const TrelmInfo &trelmInfo, const CoordinateBuffers &atoms, float distance,
               std::span<const double> ddots, const ChargeSet &charges, Potential &potential, Saupe &saupe);

/// The potentials of a run; it has one of them at most.
struct AlignmentFields {
    Potential potential; ///< table of a rod
    Block<double> pot3D; ///< grid, kT/e
};

/// Simulates the alignment of the atoms, which are moved to their geometric centre, and prints the three
/// "Saupe" blocks on standard output. In a grid rSingleCell of the record changes; the table of a rod is
/// divided by kPot. `saupe`: the sum of steric and electrostatic order, with the sign of the surviving
/// orientations. Returns 0, or non-zero after a message. A steric grid ends the process: see ssia3D.
int simulateAlignment(TrelmInfo &trelmInfo, const CoordinateBuffers &atoms, std::span<const double> ddots,
                      const ChargeSet &charges, AlignmentFields &fields, Saupe &saupe);

} // namespace trelm
