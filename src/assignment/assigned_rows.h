// The table as an assignment has it.
#pragma once

#include "assignment/problem.h"

#include <span>
#include <string>
#include <vector>

namespace trelm {

/// Rows of a table, observed and calculated. The first are those of the measured table, in its order.
struct AssignedRows {
    std::vector<DInfo> observed;
    std::vector<DCalc> calculated;
};

/// Puts an assignment on the rows that a problem was made from. A row whose residue has no peak has no
/// coupling; fixed rows stay as they are. Behind them stands a row for each coupling that the assignment puts
/// on a residue without a row of its type. Where the structure lacks the atoms of it the row is in no fit and
/// has no calculated coupling. bestIdList: by residue row the peak row on it, or -1.
AssignedRows applyAssignment(const ProblemInput &input, const TableProblem &made,
                             std::span<const int> bestIdList, Messages &messages);

/// Brings the rows into their table. Fails if there is no memory, after a message.
Status takeRows(const AssignedRows &rows, DTable &dTab, Messages &messages);

/// Fits a table medium after medium, and the first once more: its tensor is the one that stays. The Euler
/// angles are those of the Saupe vector, whatever the kind of fit. Fails after a message.
Status fitMedia(std::span<const Coord3D> coords, const std::vector<std::string> &media, int verbose,
                DTable &dTab, Messages &messages);

} // namespace trelm
