// The search for the best assignment of couplings whose residues are not known.
#pragma once

#include "assignment/options.h"
#include "assignment/problem.h"
#include "assignment/search.h"
#include "ground/messages.h"

#include <optional>

namespace trelm {

/// What a search is asked for.
struct SearchRequest {
    SearchKind kind = SearchKind::all;
    int mapCount = 0; ///< assignments that a random search tries
    const AssignmentOptions &options;
};

/// Searches the assignment of peaks to residues with the lowest score. Where none lies inside the window, or
/// the peaks to assign cannot be selected, a warning says so and no residue has a peak. Returns nothing after
/// a message.
std::optional<AssignmentResult> searchAssignments(const AssignmentProblem &problem,
                                                  const SearchRequest &request, Messages &messages);

} // namespace trelm
