// The assignment problem again and again, with costs that change little: prices are kept, and rows are passed
// over in vectors. The clones of a function differ in the length of the vectors alone: all give the same
// bits.
#include "support/numerics/linear_assignment.h"

#include <algorithm>
#include <array>

#ifdef __x86_64__
#include <immintrin.h>
#endif

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

/// The row whose paths go on to all columns, and what the paths are so far.
struct Paths {
    const double *cost, *price; ///< of a column that has been reached the price is -noCost
    double offset;              ///< reduced cost of the row's own column, less the length of the path to it
    double row;
    double *key, *pred; ///< the shortest length so far, and the row before
};

/// The least of costs - prices.
Least leastReducedPlain(const double *cost, const double *price, std::size_t stride)
{
    std::array<double, lanes> least, place;
    least.fill(noCost);
    place.fill(0.0);
    for (std::size_t j = 0; j < stride; ++j) {
        const double reduced = cost[j] - price[j];
        if (reduced < least[j % lanes]) {
            least[j % lanes] = reduced;
            place[j % lanes] = static_cast<double>(j);
        }
    }
    return leastOf(least, place);
}

/// Makes the paths shorter that lead by way of the row. Returns the nearest column.
Least relaxPlain(const Paths &paths, std::size_t stride)
{
    std::array<double, lanes> least, place;
    least.fill(noCost);
    place.fill(0.0);
    for (std::size_t j = 0; j < stride; ++j) {
        const double through = paths.cost[j] - paths.price[j] - paths.offset;
        if (through < paths.key[j]) {
            paths.key[j] = through;
            paths.pred[j] = paths.row;
        }
        if (paths.key[j] < least[j % lanes]) {
            least[j % lanes] = paths.key[j];
            place[j % lanes] = static_cast<double>(j);
        }
    }
    return leastOf(least, place);
}

#ifdef __x86_64__
// The same with vectors of four: compilers leave the search for a least place to one value at a time.

/// The least of each lane and its place.
struct Lanes {
    __m256d least, place;
};

[[gnu::target("avx2"), gnu::always_inline]] inline void keepLess(Lanes &lanesOf, __m256d value, __m256d place)
{
    const __m256d isLess = _mm256_cmp_pd(value, lanesOf.least, _CMP_LT_OQ);
    lanesOf.least = _mm256_blendv_pd(lanesOf.least, value, isLess);
    lanesOf.place = _mm256_blendv_pd(lanesOf.place, place, isLess);
}

[[gnu::target("avx2"), gnu::always_inline]] inline Least leastOf(const Lanes &low, const Lanes &high)
{
    std::array<double, lanes> least, place;
    _mm256_storeu_pd(least.data(), low.least);
    _mm256_storeu_pd(least.data() + lanes / 2, high.least);
    _mm256_storeu_pd(place.data(), low.place);
    _mm256_storeu_pd(place.data() + lanes / 2, high.place);
    return leastOf(least, place);
}

[[gnu::target("avx2")]] Least leastReducedWide(const double *cost, const double *price, std::size_t stride)
{
    Lanes low = {_mm256_set1_pd(noCost), _mm256_setzero_pd()}, high = low;
    __m256d place = _mm256_set_pd(3.0, 2.0, 1.0, 0.0);
    const __m256d four = _mm256_set1_pd(4.0);
    for (std::size_t j = 0; j < stride; j += lanes) {
        keepLess(low, _mm256_sub_pd(_mm256_loadu_pd(cost + j), _mm256_loadu_pd(price + j)), place);
        place = _mm256_add_pd(place, four);
        keepLess(high, _mm256_sub_pd(_mm256_loadu_pd(cost + j + 4), _mm256_loadu_pd(price + j + 4)), place);
        place = _mm256_add_pd(place, four);
    }
    return leastOf(low, high);
}

/// The paths to four columns by way of the row.
[[gnu::target("avx2"), gnu::always_inline]] inline __m256d relaxFour(const Paths &paths, std::size_t j,
                                                                     __m256d offset, __m256d row)
{
    const __m256d reduced = _mm256_sub_pd(_mm256_loadu_pd(paths.cost + j), _mm256_loadu_pd(paths.price + j));
    const __m256d through = _mm256_sub_pd(reduced, offset), before = _mm256_loadu_pd(paths.key + j);
    const __m256d isLess = _mm256_cmp_pd(through, before, _CMP_LT_OQ);
    const __m256d key = _mm256_blendv_pd(before, through, isLess);
    _mm256_storeu_pd(paths.key + j, key);
    _mm256_storeu_pd(paths.pred + j, _mm256_blendv_pd(_mm256_loadu_pd(paths.pred + j), row, isLess));
    return key;
}

[[gnu::target("avx2")]] Least relaxWide(const Paths &paths, std::size_t stride)
{
    Lanes low = {_mm256_set1_pd(noCost), _mm256_setzero_pd()}, high = low;
    __m256d place = _mm256_set_pd(3.0, 2.0, 1.0, 0.0);
    const __m256d four = _mm256_set1_pd(4.0);
    const __m256d offset = _mm256_set1_pd(paths.offset), row = _mm256_set1_pd(paths.row);
    for (std::size_t j = 0; j < stride; j += lanes) {
        keepLess(low, relaxFour(paths, j, offset, row), place);
        place = _mm256_add_pd(place, four);
        keepLess(high, relaxFour(paths, j + 4, offset, row), place);
        place = _mm256_add_pd(place, four);
    }
    return leastOf(low, high);
}

Least leastReduced(const double *cost, const double *price, std::size_t stride)
{
    return __builtin_cpu_supports("avx2") ? leastReducedWide(cost, price, stride)
                                          : leastReducedPlain(cost, price, stride);
}

Least relax(const Paths &paths, std::size_t stride)
{
    return __builtin_cpu_supports("avx2") ? relaxWide(paths, stride) : relaxPlain(paths, stride);
}
#else
Least leastReduced(const double *cost, const double *price, std::size_t stride)
{
    return leastReducedPlain(cost, price, stride);
}

Least relax(const Paths &paths, std::size_t stride)
{
    return relaxPlain(paths, stride);
}
#endif

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

void startPaths(std::span<const double> prices, AssignmentWork &work)
{
    work.key.assign(prices.size(), noCost);
    work.open.assign(prices.begin(), prices.end());
    work.pred.resize(prices.size());
    work.distance.resize(prices.size());
    work.reached.clear();
}

/// Lengthens the paths by one row.
Least goOn(std::span<const double> costs, std::size_t row, double offset, AssignmentWork &work)
{
    const std::size_t stride = work.open.size();
    return relax({&costs[row * stride], work.open.data(), offset, static_cast<double>(row), work.key.data(),
                  work.pred.data()},
                 stride);
}

/// Follows the shortest paths on from the nearest column, until they reach one that `isEnd` takes. Returns it
/// with the length of its path; noCost or more tells that there is none.
template <class IsEnd>
Least shortestPath(std::span<const double> costs, Least nearest, std::span<const double> prices,
                   AssignmentWork &work, IsEnd isEnd)
{
    while (nearest.value < noCost) {
        const auto column = static_cast<std::size_t>(nearest.place);
        if (isEnd(column))
            break;
        work.distance[column] = nearest.value;
        work.key[column] = noCost;
        work.open[column] = -noCost;
        work.reached.push_back(nearest.place);
        const auto row = static_cast<std::size_t>(work.rowOf[column]);
        nearest =
            goOn(costs, row, costs[row * prices.size() + column] - prices[column] - nearest.value, work);
    }
    return nearest;
}

} // namespace

double solveAssignment(std::span<const double> costs, std::size_t size, std::span<double> prices,
                       AssignmentWork &work)
{
    takeCheapest(costs, size, prices, work);
    for (const int start : work.freeRows) {
        startPaths(prices, work);
        const Least first = goOn(costs, static_cast<std::size_t>(start), 0.0, work);
        const Least end = shortestPath(costs, first, prices, work,
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
    startPaths(prices, work);
    work.open[own] = -noCost; // for the first step alone
    const Least first = goOn(costs, row, costs[row * prices.size() + own] - prices[own], work);
    work.open[own] = prices[own];
    const Least end =
        shortestPath(costs, first, prices, work, [&](std::size_t column) { return column == own; });
    work.exchanged.clear();
    if (end.value >= noCost)
        return noCost;
    for (std::size_t column = own;;) {
        const auto before = static_cast<std::size_t>(work.pred[column]);
        work.exchanged.push_back(static_cast<int>(before));
        if (before == row)
            break;
        column = static_cast<std::size_t>(work.columnOf[before]);
    }
    std::ranges::reverse(work.exchanged);
    return end.value;
}

} // namespace trelm
