// What the fit and the report of couplings are asked for.
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

} // namespace trelm
