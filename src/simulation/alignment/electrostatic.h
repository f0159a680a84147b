// Alignment of a charged molecule beside a charged wall or rod: each position and orientation that is not
// obstructed counts with the Boltzmann factor of the charges in the obstacle's field.
// The field of a wall is that of a charged surface in salt (field.h), that of a rod is a table.
#pragma once

#include "couplings/tensor.h"
#include "simulation/alignment/setup.h"
#include "simulation/charges/charges.h"
#include "simulation/charges/field.h"
#include "simulation/charges/potential.h"
#include "simulation/orientations/columns.h"
#include "simulation/orientations/orientation.h"

#include <span>

namespace trelm {

/// Dimensions of the molecule, angstrom: largest distance of an atom from the centre with the atom's radius,
/// and the smallest, with which the grid begins.
struct SmaSetup {
    double max_protein_length = 0.0, min_protein_length = 0.0;
};

/// The elements of all orientations averaged, and their magnitude: what the finite set shows without any
/// weight. `prefix` stands before each line.
void reportSetBias(const OrientationSet &set, const char *prefix, Messages &messages);

/// The weighted simulation beside a wall or a rod. Divides the potential table by kPot and tells what it
/// finds. Fails after a message. `saupe`: in the sense of the surviving orientations. The weights of the free
/// distances to the next rod are summed in single precision, one step of gridSpacing after the other: 1e5
/// steps leave their sum right to 2e-6, 1e6 to 4e-4, 1e8 to a half. More are refused.
Status sma(const AlignmentSetup &setup, const Coordinates &atoms, const SmaSetup &sizes,
           const ChargeSet &charges, Potential &potential, Saupe &saupe);

} // namespace trelm
