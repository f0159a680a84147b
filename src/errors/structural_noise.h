// How far the tensor can move with the errors of the structure.
#pragma once

#include "errors/structure_noise.h"
#include "errors/tensor_samples.h"

namespace trelm {

/// Takes the couplings that the fit calculates for the measured ones, perturbs the structure again and again,
/// fits each copy, and reports what the tensors have in common. Before, with nConeFlag, it finds the amount
/// of noise that explains the misfit of the measured couplings; coneWidth of the record holds it afterwards.
/// Structure and couplings are as before at the end of a run without failure. Returns 0, or non-zero after a
/// message.
int noiseStrucSimDC(const MappingSetup &setup, const ResidueOffset &offset);

} // namespace trelm
