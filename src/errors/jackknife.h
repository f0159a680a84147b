// How far the tensor moves with the choice of couplings.
#pragma once

#include "errors/options.h"
#include "errors/tensor_samples.h"

namespace trelm {

/// What the jackknife finds. Asks for its memory: without it, it is false.
struct JackknifeResult {
    explicit JackknifeResult(std::size_t rows) : selectTab("trelm", rows) {}
    [[nodiscard]] explicit operator bool() const { return selectTab && samples.store; }

    Block<int> selectTab; ///< `valid` of each calculated row, as the fit of all couplings left it
    TensorSamples samples;
};

/// What a user who means a number of couplings should hear.
void warnOfFraction(const JackknifeOptions &options, Messages &messages);

/// Repeats the fit on random parts of the couplings (mapFrac, mapFixCount) and finds what the tensors have in
/// common. The parts are drawn from ran3 with a seed of their own, so -idum changes nothing. The tensor is
/// not reset between the fits: those of -nofixed and -dadr go on from the last one, and a part without any
/// coupling counts that one again. All couplings take part again at the end of a run without failure. Fails
/// after a message.
Status aeraSimDC(const MappingInput &input, const JackknifeOptions &options, const MappingWatch &watch,
                 Messages &messages, JackknifeResult &result);

} // namespace trelm
