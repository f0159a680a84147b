// Which of its two faces a molecule turns towards a charged particle of the liquid crystal.
#pragma once

#include "couplings/euler.h"
#include "ground/messages.h"
#include "simulation/charges/charges.h"
#include "simulation/charges/potential.h"
#include "simulation/obstacle/atom_selection.h"
#include "structure/select.h"

#include <string>

namespace trelm {

struct AlignmentOptions;

/// The Boltzmann weight of the molecule as it stands, its geometric centre iFace angstrom from the surface:
/// of a wall in the plane z = 0 or of a rod along x, on the side of the molecule's negative z. Multiplies the
/// table by kPot, at each call, and does not read it: the field is that of the surface charge. A molecule
/// that touches the particle has the weight 0, with a warning. Other models leave `prob` as it is.
void iFace(const AlignmentOptions &options, const CoordinateBuffers &atoms, const ChargeSet &charges,
           Potential &potential, double &prob, Messages &messages);

/// The Boltzmann weights of a molecule as it stands, and flipped by 180 degrees.
struct FaceWeights {
    double initial = 0.0, rotated = 0.0;
};

/// A molecule and what weighs it.
struct FaceInput {
    const PDBInfo &pdbInfo;
    const AtomMask &selection; ///< the atoms that can touch
    const AlignmentOptions &options;
    const ChargeSet &charges; ///< by their atoms in the molecule
};

/// Where the result goes.
struct FaceOutput {
    std::string outName;          ///< PDB file; empty: none
    const char *remark = nullptr; ///< of that file; may be null
    Messages &messages;
};

/// Turns the molecule into the first frame of `euler`, weighs it as it is and flipped by 180 degrees, prints
/// both weights, and writes the one of lower weight with its charges marked. Fails after a message.
Status iFacePDB(const EulerLists &euler, const FaceInput &input, Potential &potential,
                const FaceOutput &output);

} // namespace trelm
