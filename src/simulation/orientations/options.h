// How finely a simulation looks at orientations.
#pragma once

namespace trelm {

/// The orientations of a simulation.
struct SamplingOptions {
    int densityNSC = 100; ///< density of orientations on the sphere
    int digPsiNSC = 18;   ///< number of steps of the third angle
};

} // namespace trelm
