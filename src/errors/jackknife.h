// How far the tensor moves with the choice of couplings.
#pragma once

#include "errors/options.h"
#include "errors/tensor_samples.h"
#include "support/numerics/random.h"

#include <span>

namespace trelm {

/// What the jackknife finds. Without memory for the samples their store is empty.
struct JackknifeResult {
    TensorSamples samples;
    MappingFit fit; ///< the last one; all couplings are to take part in the next
};

/// Keeps a random part of the rows that are marked: the fraction `frac`, or with `fixed` the number `frac`.
/// Returns how many were kept. Draws from ran3. Without memory the run ends (OutOfMemory).
int selectDcFrac(RandomStream &random, std::span<unsigned char> marks, float frac, int fixed,
                 Messages &messages);

/// What a user who means a number of couplings should hear.
void warnOfFraction(const JackknifeOptions &options, Messages &messages);

/// Repeats the fit on random parts of the couplings (mapFrac, mapFixCount) and finds what the tensors have in
/// common. The parts are drawn from ran3 with a seed of their own, so -idum changes nothing. The tensor is
/// not reset between the fits: those of -nofixed and -dadr go on from the last one, and a part without any
/// coupling counts that one again. Fails after a message.
Status aeraSimDC(const MappingInput &input, const JackknifeOptions &options, const MappingWatch &watch,
                 Messages &messages, JackknifeResult &result);

} // namespace trelm
