// Which candidates a search has, and what they score.
#pragma once

#include "assignment/bound.h"
#include "assignment/problem.h"
#include "assignment/score.h"

#include <span>
#include <vector>

namespace trelm {

/// Rows first to end - 1.
struct RowSpan {
    std::size_t first = 0, end = 0;
};

/// A candidate puts each of the peaks on a residue row of its own. They are enumerated by the set of rows in
/// lexical order, then by the row of the first peak, of the second, and so on.
struct SearchSpace {
    const AssignmentProblem &problem;
    BoundTables tables;
    MediaEquations fixed;
    std::vector<int> peaks;       ///< peak rows, rising
    std::vector<RowSpan> rowsFor; ///< residue rows that each of them may take

    std::vector<char> isBarred = {}; ///< by peak and row; empty: no other pair is

    [[nodiscard]] bool mayTake(std::size_t peak, std::size_t row) const
    {
        return row >= rowsFor[peak].first && row < rowsFor[peak].end &&
               (isBarred.empty() || isBarred[peak * problem.peakCount + row] == 0);
    }
};

SearchSpace makeSearchSpace(const AssignmentProblem &problem, std::vector<int> peaks,
                            std::vector<RowSpan> rowsFor);

/// All peaks on all residues, or within classes of consecutive ones if there are at least two.
SearchSpace wholeSpace(const AssignmentProblem &problem, std::span<const int> classes);

/// A candidate: the row of each peak of the space. Empty: none.
struct Candidate {
    std::vector<int> rowOf;
    float score = outsideWindow;
};

/// Scores a candidate, and takes it if it is better, or as good and earlier in the order of enumeration.
/// Returns whether it was taken.
bool takeBetter(const SearchSpace &space, std::span<const int> rowOf, ScoreWork &work, Candidate &best);

} // namespace trelm
