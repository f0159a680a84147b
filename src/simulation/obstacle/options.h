// The liquid crystal, and the part of the molecule that it meets.
#pragma once

#include "simulation/charges/options.h"

namespace trelm {

/// The model of the liquid crystal.
enum LcType : int {
    lcWall = 1,
    lcRod = 2,
    lcGrid = 3, ///< a potential in space instead of a particle
};

/// The liquid crystal: its model and its composition.
struct ObstacleOptions {
    LcType lcType = lcWall;
    float concentration = 0.05f; ///< of the liquid crystal: g/ml, above 0
    float radiusModel = 20.0f;   ///< half model thickness, angstrom
    float gridSpacing = 0.2f;    ///< step of the distances, angstrom
    float lcOrder = 0.8f;        ///< liquid crystal order, 0 to 1
    float radiusAtom = 0.0f;     ///< angstrom
    float includeRim = 0.0f;     ///< 1 shows the three values of the rim, which have no other effect
    float molarRatio = 3.0f;     ///< ratio of the bicelle lipids
    float lengthModel = 200.0f;  ///< length of the model, angstrom
    float orderDiscRim = 0.25f;  ///< disc-to-rim fraction
};

/// The atoms of a simulation.
struct AtomOptions {
    int Hflag = 0;    ///< 0 drops hydrogens from the simple PDB selection
    int surfFlag = 1; ///< select surface accessible atoms
};

/// What of a molecule is simulated.
struct SoluteOptions : AtomOptions, ChargeOptions {};

} // namespace trelm
