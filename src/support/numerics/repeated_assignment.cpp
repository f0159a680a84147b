// The assignment problem again and again, with costs that change little: prices are kept, and rows are passed
// over in vectors. The clones of a function differ in the length of the vectors alone: all give the same
// bits.
#include "support/numerics/linear_assignment.h"

#include <algorithm>
#include <array>

namespace trelm {
namespace {

constexpr std::size_t lanes = 8;
constexpr int noPlace = -1;

/// A value and the first place that has it.
struct Least {
    double value;
    int place;
};

Least leastOf(const std::array<double, lanes> &least, const std::array<double, lanes> &place)
{
    std::size_t best = 0;
    for (std::size_t l = 1; l < lanes; ++l)
        if (least[l] < least[best] || (least[l] == least[best] && place[l] < place[best]))
            best = l;
    return {least[best], static_cast<int>(place[best])};
}

/// The least of costs - prices.
[[gnu::target_clones("avx512f", "avx2", "default")]] Least
leastReduced(const double *__restrict cost, const double *__restrict price, std::size_t stride)
{
    std::array<double, lanes> least, place, here;
    for (std::size_t l = 0; l < lanes; ++l) {
        least[l] = noCost;
        place[l] = here[l] = static_cast<double>(l);
    }
    for (std::size_t j = 0; j < stride; j += lanes)
        for (std::size_t l = 0; l < lanes; ++l) {
            const double reduced = cost[j + l] - price[j + l];
            const bool isLess = reduced < least[l];
            least[l] = isLess ? reduced : least[l];
            place[l] = isLess ? here[l] : place[l];
            here[l] += static_cast<double>(lanes);
        }
    return leastOf(least, place);
}

/// A row whose paths go on to all columns.
struct Step {
    const double *cost, *price;
    double offset; ///< reduced cost of the row's own column, less the length of the path to it
    double row;
};

/// Makes the paths to columns that are not blocked shorter by way of a row. Returns the nearest column.
[[gnu::target_clones("avx512f", "avx2", "default")]] Least relax(const Step &step,
                                                                 const double *__restrict block,
                                                                 double *__restrict key,
                                                                 double *__restrict pred, std::size_t stride)
{
    std::array<double, lanes> least, place, here;
    for (std::size_t l = 0; l < lanes; ++l) {
        least[l] = noCost;
        place[l] = here[l] = static_cast<double>(l);
    }
    const double *__restrict cost = step.cost, *__restrict price = step.price;
    const double offset = step.offset, row = step.row;
    for (std::size_t j = 0; j < stride; j += lanes)
        for (std::size_t l = 0; l < lanes; ++l) {
            const double through = cost[j + l] - price[j + l] - offset + block[j + l];
            const double before = key[j + l];
            const bool isShorter = through < before;
            const double length = isShorter ? through : before;
            key[j + l] = length;
            pred[j + l] = isShorter ? row : pred[j + l];
            const bool isLess = length < least[l];
            least[l] = isLess ? length : least[l];
            place[l] = isLess ? here[l] : place[l];
            here[l] += static_cast<double>(lanes);
        }
    return leastOf(least, place);
}

/// Each row takes the cheapest column, if no row before it has.
void takeCheapest(std::span<const double> costs, std::size_t size, std::span<const double> prices,
                  AssignmentWork &work)
{
    const std::size_t stride = prices.size();
    work.rowOf.assign(stride, noPlace);
    work.columnOf.assign(size, noPlace);
    work.freeRows.clear();
    for (std::size_t row = 0; row < size; ++row) {
        const Least cheapest = leastReduced(&costs[row * stride], prices.data(), stride);
        int &owner = work.rowOf[static_cast<std::size_t>(cheapest.place)];
        if (owner != noPlace) {
            work.freeRows.push_back(static_cast<int>(row));
            continue;
        }
        owner = static_cast<int>(row);
        work.columnOf[row] = cheapest.place;
    }
}

void startPaths(std::size_t stride, AssignmentWork &work)
{
    work.key.assign(stride, noCost);
    work.block.assign(stride, 0.0);
    work.pred.resize(stride);
    work.distance.resize(stride);
    work.reached.clear();
}

/// Follows the shortest paths from a row until they reach a column that `isEnd` takes. Returns it with the
/// length of its path; a length of noCost or more tells that there is none.
template <class IsEnd>
Least shortestPath(std::span<const double> costs, std::size_t start, std::span<const double> prices,
                   AssignmentWork &work, IsEnd isEnd)
{
    const std::size_t stride = prices.size();
    std::size_t row = start;
    double offset = 0.0;
    while (true) {
        const Step step = {&costs[row * stride], prices.data(), offset, static_cast<double>(row)};
        const Least nearest = relax(step, work.block.data(), work.key.data(), work.pred.data(), stride);
        const auto column = static_cast<std::size_t>(nearest.place);
        if (nearest.value >= noCost || isEnd(column))
            return nearest;
        work.distance[column] = nearest.value;
        work.key[column] = work.block[column] = noCost;
        work.reached.push_back(nearest.place);
        row = static_cast<std::size_t>(work.rowOf[column]);
        offset = costs[row * stride + column] - prices[column] - nearest.value;
    }
}

} // namespace

double solveAssignment(std::span<const double> costs, std::size_t size, std::span<double> prices,
                       AssignmentWork &work)
{
    takeCheapest(costs, size, prices, work);
    for (const int start : work.freeRows) {
        startPaths(prices.size(), work);
        const Least end = shortestPath(costs, static_cast<std::size_t>(start), prices, work,
                                       [&](std::size_t column) { return work.rowOf[column] == noPlace; });
        for (const int column : work.reached)
            prices[static_cast<std::size_t>(column)] +=
                work.distance[static_cast<std::size_t>(column)] - end.value;
        for (int column = end.place; column != noPlace;) {
            const auto row = static_cast<int>(work.pred[static_cast<std::size_t>(column)]);
            work.rowOf[static_cast<std::size_t>(column)] = row;
            std::swap(work.columnOf[static_cast<std::size_t>(row)], column);
            if (row == start)
                break;
        }
    }
    double total = 0.0;
    for (std::size_t row = 0; row < size; ++row)
        total += costs[row * prices.size() + static_cast<std::size_t>(work.columnOf[row])];
    return total;
}

double costWithoutPair(std::span<const double> costs, std::size_t row, std::span<const double> prices,
                       AssignmentWork &work)
{
    // The row goes elsewhere, and the shortest path of exchanges ends at the column it has left.
    const auto own = static_cast<std::size_t>(work.columnOf[row]);
    const double ownReduced = costs[row * prices.size() + own] - prices[own];
    startPaths(prices.size(), work);
    work.block[own] = noCost; // for the first step alone
    const std::size_t stride = prices.size();
    const Step first = {&costs[row * stride], prices.data(), 0.0, static_cast<double>(row)};
    Least nearest = relax(first, work.block.data(), work.key.data(), work.pred.data(), stride);
    work.block[own] = 0.0;
    while (nearest.value < noCost && static_cast<std::size_t>(nearest.place) != own) {
        const auto column = static_cast<std::size_t>(nearest.place);
        work.key[column] = work.block[column] = noCost;
        const auto owner = static_cast<std::size_t>(work.rowOf[column]);
        const double offset = costs[owner * stride + column] - prices[column] - nearest.value;
        nearest = relax({&costs[owner * stride], prices.data(), offset, static_cast<double>(owner)},
                        work.block.data(), work.key.data(), work.pred.data(), stride);
    }
    return nearest.value < noCost ? nearest.value - ownReduced : noCost;
}

} // namespace trelm
