// The frame of every simulation: from chosen atoms to the order matrix of a run.
#pragma once

#include "couplings/tensor.h"
#include "simulation/alignment/setup.h"
#include "simulation/charges/charges.h"
#include "simulation/charges/potential.h"
#include "simulation/obstacle/atom_selection.h"
#include "simulation/obstacle/steric.h"

#include <span>

namespace trelm {

struct AlignmentOptions;
struct ObstacleOptions;

/// What the composition of a sample makes of its particles. Lengths in angstrom.
struct SampleGeometry {
    float rSingleCell = 0.0f;  ///< from the middle plane of a wall to the edge of its cell
    float molarRatio = 0.0f;   ///< of the lipids in the bicelles
    float lengthModel = 0.0f;  ///< length of a bicelle
    float orderDiscRim = 0.0f; ///< disc-to-rim fraction; 0 without a model, in a grid
};

/// The composition of the sample made into geometry. checkSample has accepted the concentration.
SampleGeometry refine_bicelle(const ObstacleOptions &options);

/// Refuses a concentration of 0 or below, which refine_bicelle divides by, and warns of one above 1. Returns
/// 0, or 1 after one line.
Status checkSample(const ObstacleOptions &options, Messages &messages);

/// Refuses parameters that no simulation can work with: densities that are not positive, too many orientation
/// points, an order that is no number; beside a wall or a rod a step that is not positive, radii out of
/// range, a rod without a radius. Radii that make no sense are warned of. A grid has neither step nor radii.
/// Fails after one line that names the option.
Status checkSimulation(const AlignmentOptions &options, Messages &messages);

/// The mean of one coordinate, summed in single precision.
float singleMean(std::span<const double> column);

/// The largest distance from the origin, angstrom.
float largestDistance(const CoordinateBuffers &atoms);

/// Moves coordinates to their geometric centre, of which each is a singleMean. Returns the largest distance
/// from it, angstrom.
float centreAtoms(const CoordinateBuffers &atoms);

/// The steric simulation of centred atoms. As stericAlignment.
Status runSteric(const AlignmentSetup &setup, const CoordinateBuffers &atoms, float distance, Saupe &saupe);

/// The weighted simulation beside a wall or a rod, likewise. As sma.
Status runCharged(const AlignmentSetup &setup, const CoordinateBuffers &atoms, float distance,
                  const ChargeSet &charges, Potential &potential, Saupe &saupe);

/// The potentials of a run; it has one of them at most.
struct AlignmentFields {
    Potential potential; ///< table of a rod
    Block<double> pot3D; ///< grid, kT/e
};

/// The order of a simulated molecule, with the sign of the surviving orientations.
struct Prediction {
    Saupe steric = {}, electrostatic = {}, sum = {};
    double gMag = 0.0; ///< magnitude of the sum
};

/// Simulates the alignment of the atoms, which are moved to their geometric centre. The table of a rod is
/// divided by kPot. Fails after a message. A steric grid ends the run: see ssia3D.
Status simulateAlignment(const AlignmentSetup &setup, const CoordinateBuffers &atoms,
                         const ChargeSet &charges, AlignmentFields &fields, Prediction &prediction);

} // namespace trelm
