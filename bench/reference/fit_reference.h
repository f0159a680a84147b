// The fit of a Saupe vector in its plain form: one full decomposition each time.
#pragma once

#include "couplings/fit.h"

namespace trelm {

/// The contract of findS, with nothing kept from the call before.
void findSPlain(const FitVectors &vectors, SaupeValues &saupe);

} // namespace trelm
