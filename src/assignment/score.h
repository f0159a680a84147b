// The score of one assignment.
#pragma once

#include "assignment/problem.h"
#include "couplings/fit_work.h"

#include <span>
#include <vector>

namespace trelm {

/// The lists of a score; they stay from call to call.
struct ScoreWork {
    Messages &messages;                        ///< for an assignment whose tensor is no number
    std::vector<float> zero = {};              ///< the place of atom I
    std::vector<float> x = {}, y = {}, z = {}; ///< vectors, angstrom
    std::vector<float> d = {};                 ///< couplings, and then those of the tensor, Hz
    std::vector<float> di = {}, sigma = {};
    std::vector<float> w = {};
    std::vector<float> dOrig = {}; ///< couplings, Hz
    FitWork fit = {};
};

/// The sum over the media of the squared weighted differences between the couplings and those of the order
/// matrix that fits them best; a medium whose tensor lies outside the window counts outsideWindow. Lower is
/// better. rowIdList: for each residue row the peak row on it, peakCount of them. Couplings and tensor are in
/// single precision, the squares of a medium are summed in double precision and rounded once; always in the
/// order fixed couplings, then residue by residue its columns: the same assignment has the same score to the
/// bit. It is never a NaN. The fit is that of findS.
float getSvdChi2Exh(const AssignmentProblem &problem, std::span<const int> rowIdList, ScoreWork &work);

} // namespace trelm
