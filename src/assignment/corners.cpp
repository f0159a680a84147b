#include "assignment/corners.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

namespace trelm {
namespace {

constexpr double supportSlack = 1e-12; ///< what rounding can take from a support, as a part of it
constexpr double dataSlack = 1e-11;    ///< and from a score, as a part of D

/// One coupling a peak: the best assignment has slopes and terms in the same order. Source: Hardy,
/// Littlewood, Polya, Inequalities (1934), theorem 368. Returns its cost.
double solveBySorting(Corners &corners, const TensorVector &v)
{
    const TensorProblem &problem = corners.standing.problem;
    projectTerms(problem, v, corners.costs.projections);
    const std::span<const double> terms = corners.costs.projections;
    if (corners.risingPeaks.empty()) {
        corners.risingPeaks.resize(problem.size);
        std::iota(corners.risingPeaks.begin(), corners.risingPeaks.end(), 0);
        std::ranges::stable_sort(corners.risingPeaks, {}, [&](int peak) { return problem.slope[peak]; });
        corners.risingRows = corners.risingPeaks;
    }
    std::ranges::sort(corners.risingRows, {}, [&](int row) { return terms[row]; });
    corners.assignment.columnOf.resize(problem.size);
    double cost = 0.0;
    for (std::size_t k = 0; k < problem.size; ++k) {
        corners.assignment.columnOf[corners.risingPeaks[k]] = corners.risingRows[k];
        cost -= problem.slope[corners.risingPeaks[k]] * terms[corners.risingRows[k]];
    }
    return cost;
}

/// The best assignment in the direction of a corner. Returns its value.
double solveCorner(Corners &corners, std::uint32_t corner, double tau)
{
    const TensorProblem &problem = corners.standing.problem;
    const TensorVector &v = corners.list[corner].v;
    double cost = 0.0;
    if (problem.columns == 1 && !problem.hasPartial() && problem.barrier.empty() &&
        corners.alternatives == nullptr) {
        cost = solveBySorting(corners, v);
    } else {
        pairCosts(problem, v, tau, corners.costs);
        float *const kept = &corners.prices[corner * problem.stride];
        corners.priceWork.assign(kept, kept + problem.stride);
        cost = solveAssignment(corners.costs.costs, problem.size, corners.priceWork, corners.assignment);
        std::ranges::transform(corners.priceWork, kept,
                               [](double price) { return static_cast<float>(price); });
    }
    const double support = dot(problem.fixed, v) - cost;
    return support + supportSlack * (std::fabs(support) + corners.standing.length);
}

/// What the support at hand loses without each pair of the best assignment. A peak that is elsewhere loses
/// nothing. An assignment that is better than those met, with the tensor of this corner alone, is noted with
/// its own.
void addLosses(Corners &corners, double support, double tau)
{
    const TensorProblem &problem = corners.standing.problem;
    Alternatives &alternatives = *corners.alternatives;
    const bool hasPartial = problem.hasPartial();
    const std::vector<int> solution = corners.assignment.columnOf;
    for (std::size_t peak = 0; peak < problem.size; ++peak) {
        double loss = 0.0;
        std::vector<int> rowOf = solution;
        if (solution[peak] == alternatives.best[peak]) {
            loss = std::min(costWithoutPair(corners.costs.costs, peak, corners.priceWork, corners.assignment),
                            barrierOf(problem));
            const std::vector<int> &cycle = corners.assignment.exchanged;
            for (std::size_t k = 0; k < cycle.size(); ++k)
                rowOf[cycle[k]] = solution[cycle[(k + 1) % cycle.size()]];
        }
        const double value = support - loss;
        const double reached =
            hasPartial ? problem.data + tau * tau - 2.0 * tau * value : problem.data - value * value;
        if (loss < 0.5 * barrierOf(problem) && value > 0.0 && reached < alternatives.elsewhere[peak])
            if (const TensorFit fit = fitTensor(problem, rowOf); fit.isSolved)
                noteAlternative(alternatives, fit.score, rowOf);
        // Rounded down: a bound stays one.
        corners.losses.push_back(static_cast<float>(std::max(0.0, loss * (1.0 - 1e-6) - 1e-12 * support)));
    }
}

/// Looks at a corner at tau, and adds what it finds to its nodes.
double addNode(Corners &corners, std::uint32_t corner, double tau)
{
    const double support = solveCorner(corners, corner, tau);
    const auto node = static_cast<std::uint32_t>(corners.nodes.size());
    corners.nodes.push_back({tau, support, corners.list[corner].node});
    corners.list[corner].node = node;
    if (corners.alternatives != nullptr)
        addLosses(corners, support, tau);
    return support;
}

TensorFit considerSolution(Corners &corners)
{
    const TensorFit fit = fitTensor(corners.standing.problem, corners.assignment.columnOf);
    if (corners.alternatives == nullptr)
        consider(corners.standing, fit, corners.assignment.columnOf);
    return fit;
}

/// Two nodes about a tau.
struct Bracket {
    SupportNode low = {-infinity, 0.0}, high = {infinity, 0.0};
};

/// A node without a pair of the best assignment.
SupportNode nodeWithout(const Corners &corners, std::uint32_t node, int offPeak)
{
    SupportNode here = corners.nodes[node];
    if (offPeak != noPeak)
        here.support -= static_cast<double>(corners.losses[node * corners.standing.problem.size + offPeak]);
    return here;
}

Bracket nodesAbout(const Corners &corners, std::uint32_t corner, double tau, int offPeak)
{
    Bracket bracket;
    for (std::uint32_t node = corners.list[corner].node; node != noNode; node = corners.nodes[node].next) {
        const SupportNode here = nodeWithout(corners, node, offPeak);
        if (here.tau <= tau && here.tau > bracket.low.tau)
            bracket.low = here;
        if (here.tau >= tau && here.tau < bracket.high.tau)
            bracket.high = here;
    }
    return bracket;
}

} // namespace

void setLimit(Standing &standing, double limit)
{
    standing.limit = limit;
    standing.lengthSquare = standing.problem.data - limit;
    standing.length = std::sqrt(std::max(0.0, standing.lengthSquare));
}

void setLimit(Standing &standing)
{
    setLimit(standing,
             exactLimit(standing.space.tables, standing.best.score) + dataSlack * standing.problem.data);
}

void consider(Standing &standing, const TensorFit &fit, std::span<const int> rowOf)
{
    if (fit.isSolved && fit.score > standing.limit)
        return;
    for (std::size_t peak = 0; peak < rowOf.size(); ++peak)
        if (!standing.space.mayTake(peak, static_cast<std::size_t>(rowOf[peak])))
            return;
    if (standing.scored.insert({rowOf.begin(), rowOf.end()}).second &&
        takeBetter(standing.space, rowOf, standing.work, standing.best))
        setLimit(standing);
}

void noteAlternative(Alternatives &alternatives, double score, std::span<const int> rowOf)
{
    bool isOther = false;
    for (std::size_t peak = 0; peak < rowOf.size(); ++peak) {
        double &least = alternatives.least[peak * rowOf.size() + static_cast<std::size_t>(rowOf[peak])];
        least = std::min(least, score);
        if (rowOf[peak] == alternatives.best[peak])
            continue;
        isOther = true;
        alternatives.elsewhere[peak] = std::min(alternatives.elsewhere[peak], score);
    }
    if (isOther && score < alternatives.secondScore) {
        alternatives.secondScore = score;
        alternatives.second.assign(rowOf.begin(), rowOf.end());
    }
}

std::uint32_t addCorner(Corners &corners, const TensorVector &x, std::span<const std::uint32_t> like)
{
    const TensorProblem &problem = corners.standing.problem;
    const auto place = static_cast<std::uint32_t>(corners.list.size());
    corners.list.push_back({.v = directionOf(x).u});
    corners.prices.resize(corners.prices.size() + problem.stride, 0.0F);
    // A price grows with the length of the direction.
    const double share = like.empty() ? 0.0 : 1.0 / std::sqrt(dot(x, x));
    for (const std::uint32_t other : like)
        for (std::size_t k = 0; k < problem.stride; ++k)
            corners.prices[place * problem.stride + k] +=
                static_cast<float>(share) * corners.prices[other * problem.stride + k];
    addNode(corners, place, corners.reference);
    const TensorFit fit = considerSolution(corners);
    corners.list[place].sum = fit.sum;
    corners.list[place].score = fit.isSolved ? fit.score : 0.0;
    if (problem.hasPartial())
        corners.shares.push_back(fit.share);
    return place;
}

std::uint32_t middleOf(Corners &corners, std::uint32_t i, std::uint32_t j)
{
    if (i > j)
        std::swap(i, j);
    const std::uint64_t edge = std::uint64_t{i} << 32U | j;
    if (const auto known = corners.middles.find(edge); known != corners.middles.end())
        return known->second;
    TensorVector x;
    for (std::size_t k = 0; k < saupeCount; ++k)
        x[k] = corners.list[i].v[k] + corners.list[j].v[k];
    const std::array<std::uint32_t, 2> ends = {i, j};
    const std::uint32_t middle = addCorner(corners, x, ends);
    corners.middles.emplace(edge, middle);
    return middle;
}

double supportAt(Corners &corners, std::uint32_t corner, double tau, double spacing, int offPeak)
{
    if (!corners.standing.problem.hasPartial())
        return nodeWithout(corners, corners.list[corner].node, offPeak).support;
    Bracket known = nodesAbout(corners, corner, tau, offPeak);
    if (known.high.tau - known.low.tau > spacing * corners.reference) {
        // Nodes of a finer grid are those of the coarser one and some between.
        const double step =
            corners.reference * std::exp2(2.0 * std::floor(0.5 * std::log2(std::min(1.0, spacing))));
        const double place = std::floor((tau - corners.reference) / step);
        for (const double at : {corners.reference + place * step, corners.reference + (place + 1.0) * step}) {
            if (at == known.low.tau || at == known.high.tau)
                continue;
            addNode(corners, corner, at);
            considerSolution(corners);
        }
        known = nodesAbout(corners, corner, tau, offPeak);
    }
    const double width = known.high.tau - known.low.tau,
                 part = width > 0.0 ? (tau - known.low.tau) / width : 0.0;
    return (1.0 - part) * known.low.support + part * known.high.support;
}

double supportOf(const Corners &corners, std::uint32_t corner)
{
    std::uint32_t node = corners.list[corner].node;
    while (corners.nodes[node].next != noNode)
        node = corners.nodes[node].next;
    return corners.nodes[node].support;
}

double valueOf(const Corners &corners, std::uint32_t corner, const TensorVector &v)
{
    const double linear = dot(corners.list[corner].sum, v);
    return corners.shares.empty() ? linear
                                  : linear + 0.5 * corners.reference * quadratic(corners.shares[corner], v);
}

} // namespace trelm
