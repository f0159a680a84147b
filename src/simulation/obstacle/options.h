// The liquid crystal.
#pragma once

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

} // namespace trelm
