#include "assignment/assignment.h"

#include "assignment/moved_row.h"
#include "assignment/problem.h"
#include "assignment/score.h"
#include "assignment/search.h"
#include "assignment/selection.h"
#include "couplings/fit.h"
#include "couplings/output.h"
#include "ground/alloc.h"
#include "ground/modes.h"
#include "support/numerics/random.h"
#include "support/text/progress.h"
#include "support/text/text.h"

#include <algorithm>
#include <vector>

namespace trelm {
namespace {

/// What a coupling is left with when its residue has no peak.
constexpr float noPeakSigma = 100000.0f, noPeakWeight = 1e-6f;

/// A random permutation. A deviate can round to 1.0, which is no place in the list.
void drawPermutation(int *idum, std::vector<int> &rowIdList)
{
    std::vector<bool> drawn(rowIdList.size(), false);
    for (std::size_t k = 0; k < rowIdList.size();) {
        const auto row = static_cast<std::size_t>(ran3(idum) * static_cast<float>(rowIdList.size()));
        if (row >= rowIdList.size() || drawn[row])
            continue;
        drawn[row] = true;
        rowIdList[k++] = static_cast<int>(row);
    }
}

void searchRandomly(const AssignmentProblem &problem, int mapCount, BestAssignment &best)
{
    int idum = -1; // the draws do not follow the seed of the run
    ScoreWork work;
    std::vector<int> rowIdList(static_cast<std::size_t>(problem.peakCount));
    Progress progress = startProgress("REMARK Sampled ", mapCount);
    for (int n = 1; n <= mapCount; ++n) {
        showProgress(progress, n);
        drawPermutation(&idum, rowIdList);
        const float score = getSvdChi2Exh(problem, rowIdList, work);
        if (best.pSumDMin > score) {
            best.pSumDMin = score;
            best.bestIdList = rowIdList;
        }
    }
    endProgress(progress);
}

int searchAll(const AssignmentProblem &problem, const TrelmInfo &info, BestAssignment &best)
{
    if (info.nAaCheck < 2)
        return visitExh(problem, best);
    const auto classes = std::span(info.exCheckList).first(static_cast<std::size_t>(info.nAaCheck));
    return visitAa(problem, classes, best) == 0 ? 0 : complain("Matrix: error in analyzeSaupe.\n");
}

/// A selection that cannot be made leaves all residues without a peak; the run tells so and goes on.
void searchSelected(const AssignmentProblem &problem, const TrelmInfo &info, BestAssignment &best)
{
    std::vector<int> selected;
    if (selectPeaks(problem, info.nSel, info.dcSelOpt, selected) == 0)
        visitAllExh(problem, selected, best);
}

/// Returns 0, or 1 after a message.
int search(const AssignmentProblem &problem, const AssignmentSetup &setup, BestAssignment &best)
{
    best.bestIdList.assign(static_cast<std::size_t>(problem.peakCount), -1);
    switch (setup.trelmInfo->spreadMode) {
    case spreadRand:
        searchRandomly(problem, setup.mapCount, best);
        return 0;
    case spreadExhaust:
        return searchAll(problem, *setup.trelmInfo, best);
    case spreadExhaustSel:
        searchSelected(problem, *setup.trelmInfo, best);
        return 0;
    default:
        return complain("trelm: no assignment search has the number %d.\n", setup.trelmInfo->spreadMode);
    }
}

void warnIfNothingFound(const AssignmentProblem &problem, const BestAssignment &best)
{
    if (std::ranges::none_of(best.bestIdList, [](int row) { return row >= 0; }))
        complain("Warning: no assignment was found for Da [%.3f,%.3f] R [%.3f %.3f]!\n",
                 static_cast<double>(problem.lDa), static_cast<double>(problem.hDa),
                 static_cast<double>(problem.lR), static_cast<double>(problem.hR));
}

/// Gives a row of the table the coupling that the peak `row` has in this column, or none.
void assignRow(const AssignmentProblem &problem, int row, int column, DInfo &obs, DInfo &calc)
{
    if (row < 0) {
        obs.d = noPeakCoupling;
        obs.sigma = noPeakSigma;
        obs.w = noPeakWeight;
        return;
    }
    const std::size_t cell = problem.at(row, column);
    obs.d = problem.dcMat[cell];
    obs.sigma = problem.sigMat[cell];
    obs.w = problem.wMat[cell];
    calc.di = problem.diValMat[cell];
    if (obs.d == noPeakCoupling) { // the peak takes part without it, in the final fit too
        calc.w = 0.0f;
        calc.d = 0.0f;
    }
}

/// Brings an assignment into the table. Rows go by their peak alone, also where the search went by the larger
/// residue to see whether a coupling is fixed.
void applyAssignment(const AssignmentProblem &problem, const PeakTable &peaks, const BestAssignment &best,
                     DTable &dTab)
{
    for (std::size_t i = 0; i < dTab.observed().size(); ++i) {
        DInfo &obs = dTab.observed()[i];
        const int type = couplingType(obs);
        if (!takesPart(dTab.calculated()[i]) || type == noType || isFixed(peaks, peakIdOf(obs, type)))
            continue;
        const auto row = peaks.rowResList.find(peakIdOf(obs, type));
        const auto medium = std::ranges::find(peaks.media, obs.segNameI.view());
        if (row == peaks.rowResList.end() || medium == peaks.media.end())
            continue;
        const auto place = static_cast<std::size_t>(medium - peaks.media.begin());
        const int column = peaks.dcIndex[place][static_cast<std::size_t>(type)];
        if (column != noType) // else all rows of the type are fixed
            assignRow(problem, best.bestIdList[static_cast<std::size_t>(row->second)], column, obs,
                      dTab.calculated()[i]);
    }
}

/// Sets `valid` of the rows with a weight: 1 where the function says so, else 0. Rows that did not resolve to
/// atoms, or that the selection left out, stay out.
template <class Predicate>
void markRows(DTable &dTab, Predicate isIn)
{
    for (std::size_t i = 0; i < dTab.observed().size(); ++i) {
        DInfo &obs = dTab.observed()[i], &calc = dTab.calculated()[i];
        if (calc.w != 0.0f && calc.atomICount > 0 && calc.atomJCount > 0)
            obs.valid = calc.valid = isIn(obs) ? 1 : 0;
    }
}

/// Fits the rows marked, and leaves the calculated couplings of all others as they are: a non-linear fit
/// would mark them as without a value. Returns 0, or 1 after a message.
int fitMarked(const AssignmentSetup &setup)
{
    DTable &dTab = *setup.dTab;
    std::vector<float> kept;
    for (const DInfo &calc : dTab.calculated())
        kept.push_back(calc.d);
    if (fitD(setup.pdbInfo, &dTab, setup.verbose) < 0)
        return 1;
    for (std::size_t i = 0; i < kept.size(); ++i)
        if (DInfo &calc = dTab.calculated()[i]; calc.valid == 0 || calc.w == 0.0f)
            calc.d = kept[i];
    return 0;
}

/// Fits medium after medium, and the first once more: its tensor is the one that is reported. Returns 0, or 1
/// after a message.
int fitMedia(const AssignmentSetup &setup, const PeakTable &peaks)
{
    std::vector<std::string> media = peaks.media;
    media.push_back(peaks.media.front());
    for (const std::string &medium : media) {
        markRows(*setup.dTab, [&](const DInfo &obs) { return obs.segNameI == std::string_view(medium); });
        if (fitMarked(setup) != 0)
            return 1;
    }
    markRows(*setup.dTab, [](const DInfo &) { return true; });
    return 0;
}

/// Returns 0, or non-zero after a message.
int writeResults(const AssignmentSetup &setup)
{
    // The angles of a non-linear fit are those of its own rotation; here all are those of the Saupe vector.
    if (setup.dTab->dTensor.eulerFlag != 0)
        solveEuler(setup.dTab->dTensor);
    return writeFit({setup.pdbInfo, setup.sInfo, setup.dTab, setup.trelmInfo, setup.outDName,
                     setup.pdbRotName, setup.remark});
}

PeakTable peakTableOf(const AssignmentSetup &setup)
{
    const TrelmInfo &info = *setup.trelmInfo;
    PeakTable peaks;
    peaks.fixResList = setup.fixResList;
    peaks.media.assign(info.chainDc.begin(), info.chainDc.begin() + info.nChainDc);
    return peaks;
}

} // namespace

int exhSimDC(const AssignmentSetup &setup)
{
    DTable &dTab = *setup.dTab;
    dTab.dTensor.saupe = {};
    PeakTable peaks = peakTableOf(setup);
    const MagnitudeOptions &window = *setup.trelmInfo;
    AssignmentProblem problem;
    problem.lDa = window.lDaMl;
    problem.hDa = window.hDaMl;
    problem.lR = window.lRMl;
    problem.hR = window.hRMl;
    BestAssignment best;
    if (makeProblem(*setup.pdbInfo, dTab, peaks, problem) != 0 || search(problem, setup, best) != 0)
        return 1;
    // An assignment whose fit found no memory has the score of one without a tensor: the best of the others
    // need not be the best.
    if (allocHasFailed())
        return complain("trelm: a fit of the search found no memory: no assignment is written.\n");
    warnIfNothingFound(problem, best);
    applyAssignment(problem, peaks, best, dTab);
    if (appendMovedRows(*setup.pdbInfo, peaks, problem, best.bestIdList, dTab) != 0 ||
        fitMedia(setup, peaks) != 0)
        return 1;
    const int status = writeResults(setup);
    if (status == 0 && !best.isProved)
        return complain(
            "trelm: the search was interrupted: the assignment is the best so far, and not proved.\n");
    return status;
}

} // namespace trelm
