// How far the tensor can move with the errors of the structure.
#pragma once

#include "errors/cone_noise.h"
#include "errors/tensor_samples.h"

namespace trelm {

/// Takes the couplings that the fit calculates for the measured ones, perturbs the structure again and again,
/// fits each copy, and reports what the tensors have in common. Before, with nConeFlag, it finds the amount
/// of noise that explains the misfit of the measured couplings; coneWidth of the record holds it afterwards.
/// The search goes up from nConeStart until the mean misfit exceeds that of the measured couplings, or to 90
/// degrees, and then takes the width before: below nConeStart, or no noise at all, where the first width was
/// too much already. The misfit that it tells is the last but one that it met, which after an end at 90
/// degrees is that of one step less. Structure and couplings are as before at the end of a run without
/// failure. Returns 0, or non-zero after a message; where no coupling is left a message, 0, and result files
/// without content.
int noiseStrucSimDC(const MappingSetup &setup, const ResidueOffset &offset);

} // namespace trelm
