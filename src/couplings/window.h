// Which couplings of a table are meant.
#pragma once

namespace trelm {

/// A field of DcInfo below this counts as unset.
constexpr int unsetResID = -99999;

/// Which couplings lie in a window of residues.
enum WindowKind : int {
    bothInside = 1,   ///< those with both residues inside
    oneInside = 2,    ///< at least one of them
    largerInside = 3, ///< the larger of the two
};

/// The window of couplings.
struct DcInfo {
    int segFirst = -999999; ///< first residue of the coupling segment
    int segLast = -999999;  ///< last residue of the segment
    int segID = 1;          ///< segment id
    int segStep = 0;        ///< segment step
    int aFirst = -999999;   ///< first residue in the PDB that corresponds to segFirst
    WindowKind excludeMode = largerInside;
};

} // namespace trelm
