// The fits of the models of a file, as text.
#pragma once

#include "couplings/model_fits.h"

#include <string>
#include <string_view>

namespace trelm {

/// A line for each model behind DATA lines of what they have in common. `remark`: whole lines for the head.
std::string modelTable(const ModelFits &fits, std::string_view remark);

} // namespace trelm
