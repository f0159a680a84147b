#include "assignment/near_list.h"

#include "assignment/interrupt.h"

#include <algorithm>

namespace trelm {
namespace {

/// A row that a peak may take, and what that costs at each corner.
struct NearPair {
    int row;
    FiveValues excess;
};

/// A walk through the peaks, those with the fewest rows first.
struct NearWalk {
    Standing &standing;
    double margin;
    std::size_t steps, mostSteps;
    std::vector<int> peaks = {};
    std::vector<std::vector<NearPair>> pairs = {}; ///< of each peak
    std::vector<int> rowOf = {};
    std::vector<char> isTaken = {};
};

double leastOf(const FiveValues &values)
{
    return *std::ranges::min_element(values);
}

void listPairs(const ReducedCosts &reduced, NearWalk &walk)
{
    const TensorProblem &problem = walk.standing.problem;
    walk.pairs.resize(problem.size);
    for (std::size_t peak = 0; peak < problem.size; ++peak) {
        walk.peaks.push_back(static_cast<int>(peak));
        for (std::size_t row = 0; row < problem.size; ++row) {
            NearPair pair = {static_cast<int>(row), {}};
            for (std::size_t i = 0; i < saupeCount; ++i)
                pair.excess[i] = std::max(0.0, reduced.at[i][peak * problem.stride + row]);
            if (leastOf(pair.excess) <= walk.margin)
                walk.pairs[peak].push_back(pair);
        }
    }
    std::ranges::stable_sort(walk.peaks, {}, [&](int peak) { return walk.pairs[peak].size(); });
}

/// Goes on from the peaks before. Returns false if there have been too many steps.
bool walkOn(NearWalk &walk, std::size_t depth, const FiveValues &excess)
{
    if (++walk.steps > walk.mostSteps || InterruptGuard::isInterrupted())
        return false;
    if (depth == walk.peaks.size()) {
        consider(walk.standing, fitTensor(walk.standing.problem, walk.rowOf), walk.rowOf);
        return true;
    }
    const int peak = walk.peaks[depth];
    for (const NearPair &pair : walk.pairs[peak]) {
        if (walk.isTaken[pair.row] != 0)
            continue;
        FiveValues sum;
        for (std::size_t i = 0; i < saupeCount; ++i)
            sum[i] = excess[i] + pair.excess[i];
        if (leastOf(sum) > walk.margin)
            continue;
        walk.rowOf[peak] = pair.row;
        walk.isTaken[pair.row] = 1;
        const bool isDone = walkOn(walk, depth + 1, sum);
        walk.isTaken[pair.row] = 0;
        if (!isDone)
            return false;
    }
    return true;
}

} // namespace

void reduceCosts(const PairCosts &costs, const TensorProblem &problem, std::span<const double> prices,
                 std::vector<double> &reduced)
{
    reduced.resize(costs.costs.size());
    for (std::size_t peak = 0; peak < problem.size; ++peak) {
        double least = infinity;
        for (std::size_t k = peak * problem.stride; k < peak * problem.stride + problem.size; ++k) {
            reduced[k] = costs.costs[k] - prices[k - peak * problem.stride];
            least = std::min(least, reduced[k]);
        }
        for (std::size_t k = peak * problem.stride; k < peak * problem.stride + problem.size; ++k)
            reduced[k] -= least;
    }
}

bool considerNear(Standing &standing, const ReducedCosts &reduced, double margin, std::size_t mostSteps)
{
    NearWalk walk = {.standing = standing, .margin = margin, .steps = 0, .mostSteps = mostSteps};
    listPairs(reduced, walk);
    walk.rowOf.assign(standing.problem.size, -1);
    walk.isTaken.assign(standing.problem.size, 0);
    return walkOn(walk, 0, {});
}

} // namespace trelm
