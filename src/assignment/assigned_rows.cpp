#include "assignment/assigned_rows.h"

#include "assignment/moved_row.h"
#include "couplings/fit.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace trelm {
namespace {

/// What a coupling is left with when its residue has no peak.
constexpr float noPeakSigma = 100000.0f, noPeakWeight = 1e-6f;

/// Gives a row of the table the coupling that the peak `row` has in this column, or none.
void assignRow(const AssignmentProblem &problem, int row, std::size_t column, DInfo &obs, DCalc &calc)
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

/// Gives the row of a residue that had none the coupling in the cell of a peak.
void fillRow(const AssignmentProblem &problem, std::size_t cell, MovedRow &moved)
{
    const bool hasAtoms = moved.calc.pairCount() == 1;
    moved.obs.d = problem.dcMat[cell];
    moved.obs.sigma = moved.calc.sigma = problem.sigMat[cell];
    moved.obs.w = moved.calc.w = problem.wMat[cell];
    moved.obs.valid = moved.calc.valid = 1;
    moved.calc.di = problem.diValMat[cell];
    if (!hasAtoms)
        moved.calc.w = 0.0f; // in the report, but in no fit
}

/// Appends the couplings of one medium and type that lie on residues without a row.
void appendLanded(const ProblemInput &input, const TableProblem &made, std::span<const int> bestIdList,
                  std::pair<std::size_t, std::size_t> mediumAndType, AssignedRows &rows, Messages &messages)
{
    const auto &[problem, peaks] = made;
    const auto [medium, type] = mediumAndType;
    const int column = peaks.dcIndex[medium][type];
    for (std::size_t row = 0; column != noType && row < problem.peakCount; ++row) {
        const int peak = bestIdList[row];
        if (peak < 0 || peaks.hasRow[problem.at(row, column)] ||
            problem.dcMat[problem.at(peak, column)] == noPeakCoupling)
            continue;
        MovedRow moved =
            moveRow(input.pdbInfo, input.dTab, peaks.firstRow[medium][type], peaks.resIdList[row], messages);
        fillRow(problem, problem.at(peak, column), moved);
        moved.obs.id = static_cast<int>(rows.observed.size()) + 1;
        rows.observed.push_back(moved.obs);
        rows.calculated.push_back(moved.calc);
    }
}

/// The matrix column of a row that the assignment may change, or noType.
int columnOf(const PeakTable &peaks, const DInfo &obs, int type)
{
    const auto medium = std::ranges::find(peaks.media, obs.names->segNameI.view());
    return medium == peaks.media.end() ? noType : peaks.dcIndex[medium - peaks.media.begin()][type];
}

/// Sets `valid` of the rows with a weight: 1 where the function says so, else 0. Rows that did not resolve to
/// atoms, or that the selection left out, stay out.
template <class Predicate>
void markRows(DTable &dTab, Predicate isIn)
{
    for (std::size_t i = 0; i < dTab.observed().size(); ++i) {
        DInfo &obs = dTab.observed()[i];
        DCalc &calc = dTab.calculated()[i];
        if (calc.w != 0.0f && calc.pairCount() > 0)
            obs.valid = calc.valid = isIn(obs) ? 1 : 0;
    }
}

} // namespace

AssignedRows applyAssignment(const ProblemInput &input, const TableProblem &made,
                             std::span<const int> bestIdList, Messages &messages)
{
    const auto &[problem, peaks] = made;
    const auto observed = input.dTab.observed();
    const auto calculated = input.dTab.calculated();
    AssignedRows rows = {{observed.begin(), observed.end()}, {calculated.begin(), calculated.end()}};
    for (std::size_t i = 0; i < observed.size(); ++i) {
        const DInfo &obs = observed[i];
        const int type = couplingType(obs);
        // Rows go by their peak alone, also where the search went by the larger residue to see whether a
        // coupling is fixed.
        if (!takesPart(calculated[i]) || type == noType || isFixed(peaks, peakIdOf(obs, type)))
            continue;
        const auto row = peaks.rowResList.find(peakIdOf(obs, type));
        const int column = columnOf(peaks, obs, type);
        if (row != peaks.rowResList.end() && column != noType) // else all rows of the type are fixed
            assignRow(problem, bestIdList[row->second], column, rows.observed[i], rows.calculated[i]);
    }
    for (std::size_t medium = 0; medium < peaks.media.size(); ++medium)
        for (std::size_t type = 0; type < couplingTypeCount; ++type)
            appendLanded(input, made, bestIdList, {medium, type}, rows, messages);
    return rows;
}

Status takeRows(const AssignedRows &rows, DTable &dTab, Messages &messages)
{
    const std::size_t added = rows.observed.size() - dTab.observed().size();
    if (added > 0 && addRows(dTab, added, messages) != Status::ok)
        return Status::failed;
    std::ranges::copy(rows.observed, dTab.observed().begin());
    std::ranges::copy(rows.calculated, dTab.calculated().begin());
    return Status::ok;
}

Status fitMedia(std::span<const Coord3D> coords, const std::vector<std::string> &media, int verbose,
                DTable &dTab, Messages &messages)
{
    std::vector<std::string> inTurn = media;
    inTurn.push_back(media.front());
    for (const std::string &medium : inTurn) {
        markRows(dTab, [&](const DInfo &obs) { return obs.names->segNameI == std::string_view(medium); });
        if (!fitD(coords, dTab, verbose, messages))
            return Status::failed;
    }
    markRows(dTab, [](const DInfo &) { return true; });
    if (dTab.dTensor.eulerFlag != 0)
        solveEuler(dTab.dTensor);
    return Status::ok;
}

} // namespace trelm
