// Which peaks to assign when not all of them are.
#pragma once

#include "assignment/problem.h"

#include <optional>
#include <vector>

namespace trelm {

constexpr int minSelected = 2, maxSelected = 7; ///< peaks of a selection

/// Chooses nSel peak rows. With dcSelOpt those richest in couplings whose weighted values spread most evenly
/// over the range; of equally good ones the first in lexical order. Without, the first rows. What is chosen
/// is said. Returns the rows, rising; nothing after a message: a number outside minSelected to maxSelected,
/// fewer peaks than that, or no combination that comes near an even spread.
std::optional<std::vector<int>> selectPeaks(const AssignmentProblem &problem,
                                            const AssignmentOptions &options, Messages &messages);

} // namespace trelm
