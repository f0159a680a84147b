#include "assignment/search_space.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace trelm {
namespace {

/// The problem with the peaks and rows of a candidate alone.
AssignmentProblem subProblem(const AssignmentProblem &problem, std::span<const int> peaks,
                             std::span<const int> rows)
{
    AssignmentProblem part;
    part.peakCount = peaks.size();
    part.colId = problem.colId;
    part.fixed = problem.fixed;
    part.nLcType = problem.nLcType;
    part.nDTypList = problem.nDTypList;
    part.colIdList = problem.colIdList;
    part.window = problem.window;
    const auto copyRows = [&](const std::vector<float> &from, std::span<const int> chosen,
                              std::vector<float> &to) {
        for (const int row : chosen) {
            const std::span<const float> cells = std::span(from).subspan(problem.at(row, 0), problem.colId);
            to.insert(to.end(), cells.begin(), cells.end());
        }
    };
    copyRows(problem.dcMat, peaks, part.dcMat);
    copyRows(problem.diValMat, peaks, part.diValMat);
    copyRows(problem.sigMat, peaks, part.sigMat);
    copyRows(problem.wMat, peaks, part.wMat);
    copyRows(problem.xMat, rows, part.xMat);
    copyRows(problem.yMat, rows, part.yMat);
    copyRows(problem.zMat, rows, part.zMat);
    return part;
}

std::vector<int> sorted(std::span<const int> rowOf)
{
    std::vector<int> rows(rowOf.begin(), rowOf.end());
    std::ranges::sort(rows);
    return rows;
}

/// The score of a candidate, as the enumeration has it.
float scoreCandidate(const SearchSpace &space, std::span<const int> rowOf, ScoreWork &work)
{
    std::vector<int> rowIdList(rowOf.size());
    if (space.peaks.size() == space.problem.peakCount) {
        for (std::size_t i = 0; i < rowOf.size(); ++i)
            rowIdList[rowOf[i]] = static_cast<int>(i);
        return getSvdChi2Exh(space.problem, rowIdList, work);
    }
    const std::vector<int> rows = sorted(rowOf);
    for (std::size_t i = 0; i < rowOf.size(); ++i)
        rowIdList[std::ranges::lower_bound(rows, rowOf[i]) - rows.begin()] = static_cast<int>(i);
    return getSvdChi2Exh(subProblem(space.problem, space.peaks, rows), rowIdList, work);
}

/// Whether the first comes before the second in the order of enumeration.
bool isEarlier(std::span<const int> rowOf, std::span<const int> other)
{
    const std::vector<int> rows = sorted(rowOf), otherRows = sorted(other);
    return rows != otherRows ? rows < otherRows : std::ranges::lexicographical_compare(rowOf, other);
}

} // namespace

SearchSpace makeSearchSpace(const AssignmentProblem &problem, std::vector<int> peaks,
                            std::vector<RowSpan> rowsFor)
{
    SearchSpace space = {problem, makeBoundTables(problem), fixedEquations(problem), std::move(peaks),
                         std::move(rowsFor)};
    if (problem.needsVector)
        for (const int peak : space.peaks)
            for (std::size_t row = 0; row < problem.peakCount; ++row)
                space.isBarred.push_back(lacksVector(problem, peak, row) ? 1 : 0);
    return space;
}

SearchSpace wholeSpace(const AssignmentProblem &problem, std::span<const int> classes)
{
    std::vector<int> peaks(problem.peakCount);
    std::iota(peaks.begin(), peaks.end(), 0);
    std::vector<RowSpan> rows;
    for (const int size : classes)
        rows.insert(rows.end(), size, {rows.size(), rows.size() + size});
    if (classes.size() < 2)
        rows.assign(problem.peakCount, {0, problem.peakCount});
    return makeSearchSpace(problem, std::move(peaks), std::move(rows));
}

bool takeBetter(const SearchSpace &space, std::span<const int> rowOf, ScoreWork &work, Candidate &best)
{
    const float score = scoreCandidate(space, rowOf, work);
    const bool isBetter =
        score < best.score || (score == best.score && !best.rowOf.empty() && isEarlier(rowOf, best.rowOf));
    if (isBetter)
        best = {{rowOf.begin(), rowOf.end()}, score};
    return isBetter;
}

} // namespace trelm
