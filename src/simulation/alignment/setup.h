// What the simulations of one run share.
#pragma once

#include "ground/messages.h"

#include <span>

namespace trelm {

struct AlignmentOptions;

struct AlignmentSetup {
    const AlignmentOptions &options;
    Messages &messages;
    double rSingleCell = 0.0;     ///< wall: from its middle plane to the edge of its cell, angstrom
    std::span<const double> dots; ///< orientation points, three values each
};

} // namespace trelm
