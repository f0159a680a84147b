// Rows for residues that the table has none of.
#pragma once

#include "assignment/problem.h"
#include "couplings/dipolar.h"

#include <span>

namespace trelm {

/// A row of the table as another residue would have it. The calculated record has no atoms where the
/// structure lacks them.
struct MovedRow {
    DInfo obs, calc;
};

/// Moves a row of the table to the peak `resID`: the same atoms of residues at the same distance from it.
MovedRow moveRow(PDBInfo &pdbInfo, const DTable &dTab, int row, int resID);

/// Appends a row to the table for each coupling that an assignment puts on a residue without a row of its
/// type. Where the structure lacks the atoms the row is in no fit and has no calculated coupling. bestIdList:
/// by residue row the peak row on it, or -1. Returns 0, or 1 after a message.
int appendMovedRows(PDBInfo &pdbInfo, const PeakTable &peaks, const AssignmentProblem &problem,
                    std::span<const int> bestIdList, DTable &dTab);

} // namespace trelm
