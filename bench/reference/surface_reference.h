// Plain form of the exposed surface: every dot against every neighbour, neighbours found among all atoms.
#pragma once

#include "simulation/obstacle/surface.h"

#include <span>
#include <vector>

namespace trelm {

/// The number of exposed dots of each atom. `dots`: three values each.
std::vector<int> exposedDotsPlain(std::span<const double> co, std::span<const double> radius,
                                  std::span<const double> dots);

} // namespace trelm
