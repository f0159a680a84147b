// The search for the best assignment of peaks to residues.
//
// The answer is that of the full enumeration: the smallest score, and of equal scores the first in the order
// of enumeration. A candidate is left unscored only where a bound (bound.h) proves that it cannot be the
// answer.
#pragma once

#include "assignment/problem.h"

#include <optional>
#include <span>
#include <vector>

namespace trelm {

constexpr std::size_t mostItems = 500; ///< peaks of one search
constexpr std::size_t mostClasses = 6; ///< of visitAa

struct AssignmentResult {
    float pSumDMin = outsideWindow; ///< its score
    std::vector<int> bestIdList;    ///< by residue row: the peak row on it, or -1
    bool isProved = true;           ///< false: the user ended the search, and it is the best so far
};

/// What a search ends with where no assignment is better than outsideWindow.
AssignmentResult unassigned(const AssignmentProblem &problem);

// Each says how far it has come, and a line feed at the end.

/// All permutations of the peaks. The order of enumeration: by the residue row of peak 0, then of peak 1, and
/// so on. Returns nothing, after a message, if there are too many peaks.
std::optional<AssignmentResult> visitExh(const AssignmentProblem &problem, Messages &messages);

/// Permutations within classes of consecutive peaks, of the given sizes. With more than mostClasses nothing
/// is searched. Returns nothing, after a message, if the sizes do not add up to the number of peaks.
std::optional<AssignmentResult> visitAa(const AssignmentProblem &problem, std::span<const int> idCutList,
                                        Messages &messages);

/// The selected peaks (rows, rising) on all subsets of residues: by subset in lexical order, then as
/// visitExh. Returns nothing, after a message, if the number of selected peaks is not 2 to 7.
std::optional<AssignmentResult> visitAllExh(const AssignmentProblem &problem, std::span<const int> selected,
                                            Messages &messages);

} // namespace trelm
