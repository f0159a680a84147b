// Alignment of a charged molecule beside a charged wall or rod: each position and orientation that is not
// obstructed counts with the Boltzmann factor of the charges in the obstacle's field.
// The field of a wall is that of a charged surface in salt (field.h), that of a rod is a table.
#pragma once

#include "couplings/tensor.h"
#include "simulation/alignment/options.h"
#include "simulation/charges/charges.h"
#include "simulation/charges/field.h"
#include "simulation/charges/potential.h"
#include "simulation/orientations/columns.h"
#include "simulation/orientations/orientation.h"

#include <span>

namespace trelm {

/// What a weighted simulation needs beside the atoms. Lengths in angstrom.
struct SmaSetup {
    const AlignmentOptions &options;
    double rSingleCell = 0.0;        ///< wall: from its middle plane to the edge of its cell
    double max_protein_length = 0.0; ///< largest distance of an atom from the centre, with the atom's radius
    double min_protein_length = 0.0; ///< the distance from the particle with which the grid begins
};

/// The elements of all orientations averaged: what the finite set shows without any weight. Prints them, and
/// their magnitude, on standard output; `prefix` stands before each line.
void reportSetBias(const OrientationSet &set, const char *prefix);

/// The weighted simulation beside a wall or a rod. Divides the potential table by kPot and prints what it
/// finds on standard output. Returns 0, or 1 after a message. `saupe`: in the sense of the surviving
/// orientations. The weights of the free distances to the next rod are summed in single precision, one step
/// of gridSpacing after the other: 1e5 steps leave their sum right to 2e-6, 1e6 to 4e-4, 1e8 to a half. More
/// are refused.
int sma(const SmaSetup &setup, const Coordinates &atoms, std::span<const double> dots,
        const ChargeSet &charges, Potential &potential, Saupe &saupe);

} // namespace trelm
