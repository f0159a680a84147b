// The parameters of a run as DATA lines.
#pragma once

#include "report/parameters.h"

#include <string>

namespace trelm {

struct DTensor;

/// Appends the mode of a run and every simulation parameter that matters for it.
void writeTrelm(const ShownParameters &parameters, std::string &result);

/// The same at the head of a coupling table, whose blocks and orders differ: the mode block and the rim
/// block.
void appendModeBlock(const ShownParameters &parameters, const DTensor &dTensor, std::string &text);

} // namespace trelm
