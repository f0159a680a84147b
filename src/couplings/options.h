// What the reading, the fit and the report of couplings are asked for.
#pragma once

namespace trelm {

/// How couplings are fitted.
struct FitOptions {
    int allowFixedDI = 1; ///< use fixed interaction constants when possible, else those of PDB distances
    int yzFlag = 0;       ///< exchange the ordering of the y and z axes in tensor analysis
    int eulerFlag = 1;    ///< solve for Euler angles
};

/// What a report tells as Q.
enum QKind : int {
    qOfRms = 0,
    qOfOrderMatrix = 1,
    standardDeviation = 2, ///< of the differences
};

/// What a report shows.
struct ReportOptions {
    int verbFlag = 1; ///< coupling output in extended format
    QKind qFlag = qOfOrderMatrix;
    int rotN = 0; ///< index of the rotation of the PDB, or of a hinge axis
};

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
