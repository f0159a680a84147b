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

/// Components of the graph whose arcs lead from a peak to the owners of its rows. Source: Tarjan, SIAM J.
/// Comput. 1 (1972) 146.
struct Components {
    const NearWalk &walk;
    std::vector<int> owner; ///< of each row, in the known assignment
    std::vector<int> order, low, component, stack = {};
    int visited = 0, found = 0;
};

constexpr int notVisited = -1;

void visit(Components &graph, int peak)
{
    graph.order[peak] = graph.low[peak] = graph.visited++;
    graph.stack.push_back(peak);
    for (const NearPair &pair : graph.walk.pairs[peak]) {
        const int next = graph.owner[pair.row];
        if (graph.order[next] == notVisited)
            visit(graph, next);
        if (graph.component[next] == notVisited)
            graph.low[peak] = std::min(graph.low[peak], graph.low[next]);
    }
    if (graph.low[peak] != graph.order[peak])
        return;
    for (int member = notVisited; member != peak; graph.stack.pop_back()) {
        member = graph.stack.back();
        graph.component[member] = graph.found;
    }
    ++graph.found;
}

/// Drops pairs that no whole assignment has. Given one assignment, a pair belongs to another if an exchange
/// of rows leads back to its peak. Source: Regin, Proc. AAAI (1994) 362.
void dropDeadEnds(std::span<const int> rowOf, NearWalk &walk)
{
    const std::size_t size = rowOf.size();
    const std::vector<int> none(size, notVisited);
    Components graph = {.walk = walk, .owner = none, .order = none, .low = none, .component = none};
    for (std::size_t peak = 0; peak < size; ++peak)
        graph.owner[rowOf[peak]] = static_cast<int>(peak);
    for (std::size_t peak = 0; peak < size; ++peak)
        if (graph.order[peak] == notVisited)
            visit(graph, static_cast<int>(peak));
    for (std::size_t peak = 0; peak < size; ++peak)
        std::erase_if(walk.pairs[peak], [&](const NearPair &pair) {
            return graph.component[graph.owner[pair.row]] != graph.component[peak];
        });
}

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
}

/// What the pairs so far cost above the best, and their part of A.
struct WalkSums {
    FiveValues excess = {};
    TensorVector sum = {};
};

WalkSums withPair(const TensorProblem &problem, const WalkSums &sums, std::size_t peak, const NearPair &pair)
{
    WalkSums next = sums;
    for (std::size_t i = 0; i < saupeCount; ++i)
        next.excess[i] += pair.excess[i];
    for (std::size_t column = 0; column < problem.columns; ++column)
        for (std::size_t k = 0; k < saupeCount; ++k)
            next.sum[k] += problem.slope[problem.cell(peak, column)] * problem.termsOf(column, k)[pair.row];
    return next;
}

/// Considers a whole assignment.
void considerWalk(const NearWalk &walk, const WalkSums &sums)
{
    const TensorProblem &problem = walk.standing.problem;
    if (!problem.hasPartial() &&
        problem.data - dot(sums.sum, sums.sum) > walk.standing.limit + 1e-9 * problem.data)
        return;
    consider(walk.standing, fitTensor(problem, walk.rowOf), walk.rowOf);
}

/// Goes on from the peaks before. Returns false if there have been too many steps.
bool walkOn(NearWalk &walk, std::size_t depth, const WalkSums &sums)
{
    if (++walk.steps > walk.mostSteps || InterruptGuard::isInterrupted())
        return false;
    if (depth == walk.peaks.size()) {
        considerWalk(walk, sums);
        return true;
    }
    const int peak = walk.peaks[depth];
    for (const NearPair &pair : walk.pairs[peak]) {
        if (walk.isTaken[pair.row] != 0)
            continue;
        const WalkSums next = withPair(walk.standing.problem, sums, static_cast<std::size_t>(peak), pair);
        if (leastOf(next.excess) > walk.margin)
            continue;
        walk.rowOf[peak] = pair.row;
        walk.isTaken[pair.row] = 1;
        const bool isDone = walkOn(walk, depth + 1, next);
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

bool considerNear(Standing &standing, const ReducedCosts &reduced, std::span<const int> rowOf, double margin,
                  std::size_t mostSteps)
{
    NearWalk walk = {.standing = standing, .margin = margin, .steps = 0, .mostSteps = mostSteps};
    listPairs(reduced, walk);
    dropDeadEnds(rowOf, walk);
    std::ranges::stable_sort(walk.peaks, {}, [&](int peak) { return walk.pairs[peak].size(); });
    walk.rowOf.assign(standing.problem.size, -1);
    walk.isTaken.assign(standing.problem.size, 0);
    return walkOn(walk, 0, {.sum = standing.problem.fixed});
}

} // namespace trelm
