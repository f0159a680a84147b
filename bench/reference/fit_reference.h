// The fit of a Saupe vector in its plain form: one full decomposition each time.
#pragma once

#include "couplings/fit.h"

#include <array>

namespace trelm {

/// The contract of findS, with nothing kept from the call before.
int findSPlain(const FitVectors &vectors, std::array<float, 5> &saupe, std::array<float, 5> &dSaupe);

} // namespace trelm
