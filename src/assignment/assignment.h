// The best-fit of couplings whose assignment to residues is not known.
#pragma once

#include "couplings/dipolar.h"
#include "ground/trelm.h"
#include "structure/select.h"

#include <span>
#include <string>

namespace trelm {

/// What a search is given.
struct AssignmentSetup {
    PDBInfo *pdbInfo = nullptr;
    const PDBSelectInfo *sInfo = nullptr; ///< atoms of the structures
    DTable *dTab = nullptr;
    TrelmInfo *trelmInfo = nullptr;  ///< kind of search, media, window
    std::string outDName;            ///< couplings as assigned; empty: standard output
    std::string pdbRotName;          ///< structure in the frame of the tensor
    int mapCount = 0;                ///< assignments that a random search tries
    std::span<const int> fixResList; ///< residues whose assignment is fixed
    int verbose = 0;                 ///< of the fits
    const char *remark = nullptr;    ///< for the structures; may be null
};

/// Searches the assignment of peaks to residues with the lowest score, by the run's spreadMode: 4 at random,
/// 5 all peaks, 6 selected ones. Writes it into the table, fits once more and writes couplings and
/// structures. Where no assignment lies inside the window, a warning says so and the couplings go out without
/// values. Returns 0, or non-zero after a message.
int exhSimDC(const AssignmentSetup &setup);

} // namespace trelm
