// How sure an assignment is, as a table.
#pragma once

#include "assignment/certainty.h"

#include <span>
#include <string>

namespace trelm {

/// One row a peak: its number, its residue, by how much the score rises with the peak anywhere else, and the
/// residues that it may have instead. Before them the best and the second-best score, and the peaks that are
/// not decided. resIdList: the number of each peak row and residue row.
std::string certaintyTable(const Certainty &certainty, std::span<const int> resIdList);

} // namespace trelm
