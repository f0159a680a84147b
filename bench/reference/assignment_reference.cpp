#include "reference/assignment_reference.h"

#include "assignment/score.h"

#include <algorithm>
#include <functional>
#include <numeric>
#include <utility>

namespace trelm {
namespace {

using Handler = std::function<void(const std::vector<int> &)>;

/// All permutations of `size` items: item t in the order of the levels at which it is taken up.
struct Permutations {
    std::size_t size;
    Handler handle;
    std::vector<int> val = std::vector<int>(size, -1); ///< level, or -1
    std::size_t id = 0;

    void visit()
    {
        if (id == size) {
            handle(val);
            return;
        }
        for (int &place : val) {
            if (place >= 0)
                continue;
            place = static_cast<int>(id++);
            visit();
            place = -1;
            --id;
        }
    }
};

/// All combinations of `size` of `total` items, in lexical order.
void forEachCombination(std::size_t total, std::size_t size, const Handler &handle)
{
    std::vector<int> items(size);
    std::iota(items.begin(), items.end(), 0);
    if (size > total)
        return;
    while (true) {
        handle(items);
        std::size_t k = size; // the items from the last one on that can go up
        while (k > 0 && std::cmp_equal(items[k - 1], total - size + k - 1))
            --k;
        if (k == 0)
            return;
        const int next = items[k - 1] + 1;
        std::iota(items.begin() + static_cast<std::ptrdiff_t>(k) - 1, items.end(), next);
    }
}

/// Rows of a matrix, one below the other.
std::vector<float> rowsOf(const std::vector<float> &matrix, std::size_t colId, std::span<const int> rows)
{
    std::vector<float> result;
    for (const int row : rows) {
        const auto cells = std::span(matrix).subspan(row * colId, colId);
        result.insert(result.end(), cells.begin(), cells.end());
    }
    return result;
}

/// The problem of some peaks on as many residues.
AssignmentProblem partOf(const AssignmentProblem &problem, std::span<const int> peaks,
                         std::span<const int> residues)
{
    AssignmentProblem part = problem;
    part.peakCount = peaks.size();
    for (std::vector<float> AssignmentProblem::*matrix :
         {&AssignmentProblem::dcMat, &AssignmentProblem::diValMat, &AssignmentProblem::sigMat,
          &AssignmentProblem::wMat})
        part.*matrix = rowsOf(problem.*matrix, problem.colId, peaks);
    for (std::vector<float> AssignmentProblem::*matrix :
         {&AssignmentProblem::xMat, &AssignmentProblem::yMat, &AssignmentProblem::zMat})
        part.*matrix = rowsOf(problem.*matrix, problem.colId, residues);
    return part;
}

/// The weighted values of a combination, column by column.
std::vector<float> valuesOf(const AssignmentProblem &problem, const std::vector<int> &rows)
{
    std::vector<float> values;
    for (std::size_t column = 0; column < problem.colId; ++column)
        for (const int row : rows)
            if (const std::size_t cell = problem.at(row, column); problem.dcMat[cell] != noPeakCoupling)
                values.push_back(problem.dcMat[cell] * problem.wMat[cell]);
    return values;
}

/// The values that a selection of n couplings should have.
std::vector<float> ladderOf(const AssignmentProblem &problem, std::size_t n)
{
    float dcMin = 0.0f, dcMax = 0.0f;
    for (std::size_t cell = 0; cell < problem.dcMat.size(); ++cell) {
        dcMin = std::min(dcMin, problem.dcMat[cell] * problem.wMat[cell]);
        dcMax = std::max(dcMax, problem.dcMat[cell] * problem.wMat[cell]);
    }
    std::vector<float> ladder(n);
    for (std::size_t i = 0; i < n; ++i)
        ladder[i] = dcMin + static_cast<float>(i) * (dcMax - dcMin) / static_cast<float>(n - 1);
    return ladder;
}

} // namespace

PlainAssignment visitExhPlain(const AssignmentProblem &problem)
{
    PlainAssignment result;
    result.bestIdList.assign(problem.peakCount, -1);
    ScoreWork work = {.messages = standardMessages()};
    Permutations all = {problem.peakCount, [&](const std::vector<int> &rowIdList) {
                            ++result.count;
                            const float score = getSvdChi2Exh(problem, rowIdList, work);
                            if (result.pSumDMin > score) {
                                result.pSumDMin = score;
                                result.bestIdList = rowIdList;
                            }
                        }};
    all.visit();
    return result;
}

PlainAssignment visitAaPlain(const AssignmentProblem &problem, std::span<const int> idCutList)
{
    PlainAssignment result;
    result.bestIdList.assign(problem.peakCount, -1);
    result.status =
        std::cmp_not_equal(std::accumulate(idCutList.begin(), idCutList.end(), 0), problem.peakCount) ? 1 : 0;
    if (result.status != 0)
        return result;
    ScoreWork work = {.messages = standardMessages()};
    std::vector<int> rowIdList(problem.peakCount);
    std::function<void(std::size_t, int)> extend = [&](std::size_t group, int base) {
        if (group < idCutList.size()) {
            Permutations inside = {static_cast<std::size_t>(idCutList[group]),
                                   [&](const std::vector<int> &order) {
                                       for (std::size_t j = 0; j < order.size(); ++j)
                                           rowIdList[base + j] = base + order[j];
                                       extend(group + 1, base + idCutList[group]);
                                   }};
            inside.visit();
            return;
        }
        ++result.count;
        const float score = getSvdChi2Exh(problem, rowIdList, work);
        if (result.pSumDMin > score) {
            result.pSumDMin = score;
            result.bestIdList = rowIdList;
        }
    };
    extend(0, 0);
    return result;
}

PlainAssignment visitAllExhPlain(const AssignmentProblem &problem, std::span<const int> selected)
{
    PlainAssignment result;
    result.bestIdList.assign(problem.peakCount, -1);
    result.status = selected.size() < 2 || selected.size() > 7 ? 1 : 0;
    if (result.status != 0)
        return result;
    forEachCombination(problem.peakCount, selected.size(), [&](const std::vector<int> &residues) {
        const PlainAssignment part = visitExhPlain(partOf(problem, selected, residues));
        result.count += part.count;
        if (!(result.pSumDMin > part.pSumDMin))
            return;
        result.pSumDMin = part.pSumDMin;
        std::ranges::fill(result.bestIdList, -1);
        for (std::size_t a = 0; a < residues.size(); ++a)
            result.bestIdList[residues[a]] = selected[part.bestIdList[a]];
    });
    return result;
}

std::vector<int> selectPeaksPlain(const AssignmentProblem &problem, int nSel)
{
    std::size_t nDMax = 0;
    forEachCombination(problem.peakCount, nSel, [&](const std::vector<int> &rows) {
        nDMax = std::max(nDMax, valuesOf(problem, rows).size());
    });
    const std::vector<float> ladder = ladderOf(problem, nDMax);
    double least = 1.0e8;
    std::vector<int> best;
    forEachCombination(problem.peakCount, nSel, [&](const std::vector<int> &rows) {
        std::vector<float> values = valuesOf(problem, rows);
        if (values.size() != nDMax)
            return;
        std::ranges::sort(values);
        double chi2 = 0.0;
        for (std::size_t i = 0; i < values.size(); ++i) {
            const double step = static_cast<double>(values[i]) - static_cast<double>(ladder[i]);
            chi2 += step * step;
        }
        if (chi2 < least) {
            least = chi2;
            best = rows;
        }
    });
    return best;
}

} // namespace trelm
