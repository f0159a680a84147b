// One structure by itself: its axes, its charges, and how it lies to an order matrix.
#pragma once

#include "couplings/tensor.h"
#include "ground/messages.h"
#include "simulation/charges/dipole.h"
#include "simulation/obstacle/atom_selection.h"

#include <array>

namespace trelm {

struct FitOptions;

/// What is analysed: the atoms of `chosen.mask`, or with `isCharged` the charges among `chosen.atoms`.
struct StructureInput {
    const PDBInfo &pdbInfo;
    const Chosen &chosen;
    const Saupe &saupe; ///< the order matrix
    bool isCharged = false;
    const FitOptions &options;
};

/// Two frames, and the angles between them.
struct StructureAnalysis {
    TensorAnalysis
        structure; ///< of the second moments of the atoms, or of the dipole: then axes and angles alone
    TensorAnalysis input;              ///< of the order matrix
    Dipole dipole;                     ///< zero without charges
    std::array<double, 3> angles = {}; ///< between the x, y and z axes of both, degrees
};

/// Finds the frames. A molecule whose charges have no direction keeps the frame it has, after a line on the
/// error stream. Fails after a message: no atoms, or values that are no finite numbers.
Status analyzeStructure(const StructureInput &input, StructureAnalysis &found, Messages &messages);

} // namespace trelm
