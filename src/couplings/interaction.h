// Dipolar interaction constants.
#pragma once

#include "ground/messages.h"

#include <string_view>

namespace trelm {

/// One side of a pair: residue number and atom name as they stand in the table or the structure.
struct PairSide {
    int resID = 0;
    std::string_view atomName;
};

/// The interaction constant of a pair.
struct Interaction {
    float di = 0.0f;      ///< the coupling of a vector along the director at full order, Hz
    bool isFixed = false; ///< of a distance that is taken as known
    bool isKnown = true;  ///< false: a nucleus is not known, and its ratio counts as 1
};

/// The constant with the sign of the product of the gyromagnetic ratios. Pairs of the backbone have a fixed
/// distance if allowFixedDI is on; all others take rIJ, angstrom, and 0 gives 0. An unknown nucleus is told.
Interaction findVariableDI(float rIJ, const PairSide &sideI, const PairSide &sideJ, int allowFixedDI,
                           Messages &messages);

} // namespace trelm
