// The assignment search in its plain form: every candidate is scored, in the order that settles ties.
#pragma once

#include "assignment/problem.h"

#include <cstdint>
#include <span>
#include <vector>

namespace trelm {

struct PlainAssignment {
    float pSumDMin = 1.0e8f;     ///< smallest score
    std::vector<int> bestIdList; ///< by residue row: the peak row of the first candidate with it, or -1
    std::uint64_t count = 0;     ///< candidates
    int status = 0;              ///< 1: the numbers of peaks do not fit, nothing was searched
};

/// All permutations.
PlainAssignment visitExhPlain(const AssignmentProblem &problem);

/// Permutations within classes of consecutive peaks.
PlainAssignment visitAaPlain(const AssignmentProblem &problem, std::span<const int> idCutList);

/// Selected peaks (rows, rising) on all subsets of residues.
PlainAssignment visitAllExhPlain(const AssignmentProblem &problem, std::span<const int> selected);

/// The rows that selectPeaks chooses with dcSelOpt, from all combinations; empty if none is good enough.
std::vector<int> selectPeaksPlain(const AssignmentProblem &problem, int nSel);

} // namespace trelm
