// The report of a structure by itself.
#pragma once

#include "report/parameters.h"
#include "simulation/domains/structure_analysis.h"

#include <string>

namespace trelm {

/// Both frames with the angles between them, and the dipole unless the structure was analysed by its shape.
/// `saupe`: the order matrix.
std::string structureReport(const ShownParameters &parameters, const StructureAnalysis &found,
                            const Saupe &saupe);

} // namespace trelm
