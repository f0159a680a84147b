#include "assignment/certainty.h"

#include "assignment/interrupt.h"
#include "assignment/tensor_search.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace trelm {
namespace {

constexpr double gapAccuracy = 1e-4; ///< of gaps
constexpr std::size_t fewPeaks = 7;  ///< of which all assignments are met
constexpr int mostClimbs = 40;       ///< of assignment and tensor

/// Alternates between the best assignment without a pair and its tensor.
void climbWithout(Corners &corners, std::size_t peak, TensorVector x)
{
    const TensorProblem &problem = corners.standing.problem;
    const std::size_t pair =
        peak * problem.stride + static_cast<std::size_t>(corners.alternatives->best[peak]);
    std::vector<double> prices(problem.stride, 0.0);
    std::vector<int> rowOf;
    for (int round = 0; round < mostClimbs; ++round) {
        const TensorDirection direction = directionOf(x);
        pairCosts(problem, direction.u, direction.length, corners.costs);
        corners.costs.costs[pair] += barrierOf(problem);
        solveAssignment(corners.costs.costs, problem.size, prices, corners.assignment);
        if (rowOf == corners.assignment.columnOf)
            return;
        rowOf = corners.assignment.columnOf;
        const TensorFit fit = fitTensor(problem, rowOf);
        if (!fit.isSolved || rowOf[peak] == corners.alternatives->best[peak])
            return;
        noteAlternative(*corners.alternatives, fit.score, rowOf);
        x = fit.x;
    }
}

PeakCertainty certaintyOf(const Alternatives &found, std::size_t peak)
{
    const std::size_t size = found.best.size();
    PeakCertainty certainty = {.peak = static_cast<int>(peak), .row = found.best[peak]};
    certainty.gap = std::clamp(found.elsewhere[peak] - found.bestScore, 0.0, certaintyReach);
    for (std::size_t row = 0; row < size; ++row)
        if (const double gap = found.least[peak * size + row] - found.bestScore;
            std::cmp_not_equal(row, certainty.row) && gap < undecidedGap)
            certainty.alternatives.emplace_back(static_cast<int>(row), gap);
    std::ranges::stable_sort(certainty.alternatives, {}, &std::pair<int, double>::second);
    return certainty;
}

/// Meets all assignments of a few peaks.
void meetAll(const SearchSpace &space, const TensorProblem &tensors, Alternatives &found)
{
    std::vector<int> rowOf(tensors.size);
    std::iota(rowOf.begin(), rowOf.end(), 0);
    do {
        bool isAllowed = true;
        for (std::size_t peak = 0; peak < rowOf.size(); ++peak)
            isAllowed = isAllowed && space.mayTake(peak, static_cast<std::size_t>(rowOf[peak]));
        if (const TensorFit fit = fitTensor(tensors, rowOf); isAllowed && fit.isSolved)
            noteAlternative(found, fit.score, rowOf);
    } while (std::ranges::next_permutation(rowOf).found);
}

/// Searches for each peak in turn, with corners that all share. Returns whether all is proved, or nothing if
/// the data are no better than none.
std::optional<bool> meetNearest(Standing &standing, const TensorVector &x, Alternatives &found)
{
    if (!canSearchTensors(standing))
        return std::nullopt;
    Corners corners = {.standing = standing, .reference = directionOf(x).length, .alternatives = &found};
    for (std::size_t peak = 0; peak < found.best.size(); ++peak)
        climbWithout(corners, peak, x);
    for (std::size_t peak = 0; peak < found.best.size(); ++peak)
        if (!searchElsewhere(corners, static_cast<int>(peak), certaintyReach, gapAccuracy))
            return false;
    return true;
}

} // namespace

std::optional<Certainty> findCertainty(const SearchSpace &space, const std::vector<int> &rowOf,
                                       Messages &messages)
{
    const InterruptGuard guard;
    const std::optional<TensorProblem> tensors = makeTensorProblem(space);
    const std::size_t size = rowOf.size();
    if (!tensors || size < 2)
        return std::nullopt;
    const TensorFit fit = fitTensor(*tensors, rowOf);
    if (!fit.isSolved)
        return std::nullopt;
    Alternatives found = {.best = rowOf,
                          .bestScore = fit.score,
                          .least = std::vector<double>(size * size, infinity),
                          .elsewhere = std::vector<double>(size, infinity),
                          .second = {}};
    Certainty certainty = {.score = fit.score};
    if (size <= fewPeaks) {
        meetAll(space, *tensors, found);
    } else {
        ScoreWork work = {.messages = messages};
        Candidate best = {rowOf};
        Standing standing = {space, *tensors, work, best};
        setLimit(standing, fit.score + certaintyReach);
        const std::optional<bool> isProved = meetNearest(standing, fit.x, found);
        if (!isProved)
            return std::nullopt;
        certainty.isProved = *isProved;
    }
    for (std::size_t peak = 0; peak < size; ++peak)
        certainty.peaks.push_back(certaintyOf(found, peak));
    certainty.secondScore = found.secondScore;
    certainty.second = found.second;
    return certainty;
}

} // namespace trelm
