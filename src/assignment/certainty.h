// How sure an assignment is: what it costs to put each peak elsewhere.
#pragma once

#include "assignment/problem.h"
#include "assignment/search_space.h"

#include <optional>
#include <vector>

namespace trelm {

constexpr double undecidedGap = 3.84;   ///< of chi square: one degree of freedom, one in twenty
constexpr double certaintyReach = 25.0; ///< gaps are found as far as this

/// A peak in the best assignment.
struct PeakCertainty {
    int peak = 0, row = 0; ///< rows of the matrices
    double gap = 0.0; ///< by how much the score rises with the peak anywhere else; certaintyReach or more:
                      ///< that at least
    /// Rows that the peak takes in assignments less than undecidedGap above the best, and their gaps, least
    /// first. The first is sure to be the least, others may be missing.
    std::vector<std::pair<int, double>> alternatives = {};
};

/// Scores are least squares in double precision with the weights of the score.
struct Certainty {
    double score = 0.0;                    ///< of the best assignment
    std::vector<PeakCertainty> peaks = {}; ///< by peak row
    double secondScore = 0.0;              ///< of the second-best assignment; infinity: none within reach
    std::vector<int> second = {};          ///< the row of each peak in it
    bool isProved = true;                  ///< false: the user ended it, and gaps may be smaller
};

/// Finds how sure each peak of the best assignment is. rowOf: the row of each peak. The window is not asked
/// for. Nothing where that cannot be told: several media, fewer peaks than residues, too many couplings
/// missing, one peak alone.
std::optional<Certainty> findCertainty(const SearchSpace &space, const std::vector<int> &rowOf,
                                       Messages &messages);

} // namespace trelm
