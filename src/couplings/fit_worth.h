// What a fit can tell with the couplings that it has.
#pragma once

#include "couplings/fit.h"

#include <string>

namespace trelm {

struct FitWorth {
    int couplings = 0; ///< that are fitted
    int unknowns = 0;  ///< of the tensor; 0: nothing is fitted
    double condition =
        0.0; ///< largest over smallest singular value of the design matrix; infinite if it is 0
    bool isOneDirection = false; ///< hardly anything but the share along one vector is determined
};

/// Rows of one vector count, as the fit weighs them; other rows hold no coupling of a single vector.
FitWorth assessFit(const FitInput &input, TensorMode tensorMode);

/// One line, empty for a fit that is worth what it says, and for one without any coupling.
std::string worthLine(const FitWorth &worth);

} // namespace trelm
