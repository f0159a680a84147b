// How far the tensor can move with the errors of the structure.
#pragma once

#include "errors/cone_noise.h"
#include "errors/options.h"
#include "errors/tensor_samples.h"

namespace trelm {

/// What structural noise finds. Without memory for the samples their store is empty.
struct StructuralNoiseResult {
    TensorSamples samples;
    MappingFit fit;         ///< the last one; the next is to go by the measured couplings
    int couplings = 0;      ///< behind the misfit of the measured couplings; without any nothing is sampled
    double coneWidth = 0.0; ///< of the noise, degrees
    int mapCount = 0;       ///< samples that were drawn: one without noise
};

/// Takes the couplings that the fit calculates for the measured ones, perturbs the structure again and again,
/// fits each copy, and finds what the tensors have in common. Before, with nConeFlag, it finds the amount of
/// noise that explains the misfit of the measured couplings. The search goes up from nConeStart until the
/// mean misfit exceeds that of the measured couplings, or to 90 degrees, and then takes the width before:
/// below nConeStart, or no noise at all, where the first width was too much already. The misfit that it tells
/// is the last but one that it met, which after an end at 90 degrees is that of one step less. Structure and
/// couplings are as before at the end of a run without failure. Fails after a message.
Status noiseStrucSimDC(const MappingInput &input, const StructuralNoiseOptions &options,
                       const ResidueOffset &offset, const MappingWatch &watch, Messages &messages,
                       StructuralNoiseResult &result);

} // namespace trelm
