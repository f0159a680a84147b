// Dipolar interaction constants.
#pragma once

#include <string_view>

namespace trelm {

/// One side of a pair: residue number and atom name as they stand in the table or the structure.
struct PairSide {
    int resID = 0;
    std::string_view atomName;
};

/// The interaction constant of a pair, Hz: the coupling of a vector along the director at full order, with
/// the sign of the product of the gyromagnetic ratios. Pairs of the backbone have a fixed distance if
/// allowFixedDI is on (diFixedFlag becomes 1); all others take rIJOrig, angstrom, and 0 gives 0. Returns 0,
/// or 1 after a message for an atom whose nucleus is not known (its ratio counts as 1).
int findVariableDI(float rIJOrig, const PairSide &sideI, const PairSide &sideJ, float &diVal,
                   int &diFixedFlag, int allowFixedDI);

} // namespace trelm
