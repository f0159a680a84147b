#include "assignment/tensor_search.h"

#include "assignment/cone.h"
#include "assignment/interrupt.h"
#include "assignment/near_list.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>

namespace trelm {
namespace {

constexpr int mostTrims = 6;           ///< of the lengths of a cell
constexpr double worthTrimming = 0.8;  ///< part of the lengths that is left
constexpr double sagShare = 0.3;       ///< of what a bound has too much that may come from the lengths
constexpr double steepest = 0.499;     ///< growth of a bound with the length that tells nothing about lengths
constexpr double sameSlack = 3e-12;    ///< by which equal supports differ, as a part
constexpr double smallestEdge = 1e-16; ///< square of an edge that is not cut any more
constexpr double smallestLength = 1e-10; ///< range of lengths that is not cut any more, in units of T
constexpr std::size_t fewSteps = 20000;  ///< to list the assignments near the best of a cone
constexpr int listEvery = 3;             ///< cuts
/// Of q(u), for few peaks and for many: beyond it tensors can be very long, and a search over the peaks is no
/// slower.
constexpr double mostShareOfFew = 0.6, mostShareOfMany = 0.95;
constexpr std::size_t manyPeaks = 20;

/// Tensors in a cone, with lengths from t1 to t2.
struct Cell {
    std::array<std::uint32_t, saupeCount> corners = {};
    double t1 = 0.0, t2 = 0.0;
    int cuts = 0;
};

/// What is known of the cell at hand.
struct CellView {
    Cone cone;
    double spread = 1.0; ///< the sum of lambda is no larger
    double bound = 0.0;  ///< of A.u + t / 2 q(u)
    double needed = 0.0; ///< what an assignment within the limit has at least
    double excess = 0.0; ///< by which the bound is above that, at the length where this is most
};

struct Exploration {
    Standing &standing;
    const std::function<void(double)> &progress;
    Corners &corners;
    int offPeak = noPeak; ///< its pair in the best assignment is not wanted
    std::vector<Cell> open = {};
    ReducedCosts reduced = {};
    std::vector<double> prices = {};
    double settled = 0.0;
    bool isProved = true;
};

enum class Verdict { excluded, cutLengths, open };

void settle(Exploration &e, const Cell &cell)
{
    e.settled += std::exp2(-cell.cuts);
    e.progress(e.settled);
}

/// The bound of a cell at one length.
double boundAt(Exploration &e, const Cell &cell, const CellView &view, double t)
{
    const double spacing =
        std::clamp(std::max(view.spread - 1.0, (cell.t2 - cell.t1) / e.corners.reference), 1e-6, 1.0);
    FiveValues supports;
    for (std::size_t i = 0; i < saupeCount; ++i)
        supports[i] = supportAt(e.corners, cell.corners[i], t * view.spread, spacing, e.offPeak);
    return shortestVector(view.cone, supports);
}

/// What an assignment within the limit has at least, with a length in the range.
double neededIn(const Standing &standing, const LengthRange &lengths)
{
    const double t = std::clamp(standing.length, lengths.low, lengths.high);
    return 0.5 * (standing.lengthSquare / t + t);
}

/// Trims the lengths of a cell. The bound is convex in t, so it is below its chord a + b t, and what is
/// within the limit has (1/2 - b) t^2 - a t + T^2 / 2 <= 0.
Verdict trimLengths(Exploration &e, Cell &cell, CellView &view)
{
    for (int round = 0; round < mostTrims; ++round) {
        const double least = e.standing.length;
        cell.t1 = std::max(cell.t1, least);
        if (cell.t2 <= cell.t1)
            return Verdict::excluded;
        const double width = cell.t2 - cell.t1;
        const double first = boundAt(e, cell, view, cell.t1), last = boundAt(e, cell, view, cell.t2);
        const double b = width > 1e-14 * least ? std::max(0.0, (last - first) / width) : 0.0;
        const double a = b > 0.0 ? first - b * cell.t1 : std::max(first, last);
        if (!std::isfinite(last))
            return Verdict::cutLengths;
        view.bound = last;
        view.excess = infinity;
        if (b > steepest)
            return Verdict::open; // what a smaller cone will mend
        const double q = 1.0 - 2.0 * b, square = a * a - e.standing.lengthSquare * q;
        if (square < 0.0)
            return Verdict::excluded;
        const double low = std::max(cell.t1, (a - std::sqrt(square)) / q * (1.0 - 1e-12));
        const double high = std::min(cell.t2, (a + std::sqrt(square)) / q * (1.0 + 1e-12));
        if (high < low)
            return Verdict::excluded;
        const double t = std::clamp(least / std::sqrt(q), low, high);
        view.excess = a + b * t - 0.5 * (e.standing.lengthSquare / t + t);
        const bool isLess = high - low < worthTrimming * width;
        cell.t1 = low;
        cell.t2 = high;
        if (!isLess)
            break;
    }
    return Verdict::open;
}

/// Whether the range of lengths makes a bound too large, rather than the cone.
bool sagsInLength(Exploration &e, const Cell &cell, const CellView &view)
{
    const double width = cell.t2 - cell.t1, length = e.standing.length;
    if (width <= smallestLength * length)
        return false;
    if (width > 2.0 * length * std::sqrt(std::max(view.spread - 1.0, 1e-13)))
        return true;
    const double middle = boundAt(e, cell, view, 0.5 * (cell.t1 + cell.t2));
    const double chord = 0.5 * (boundAt(e, cell, view, cell.t1) + boundAt(e, cell, view, cell.t2));
    return chord - middle > sagShare * view.excess;
}

/// Bounds a cell. Lengths matter where there is a q; else only those of the window do.
Verdict judge(Exploration &e, Cell &cell, CellView &view)
{
    const bool hasPartial = e.standing.problem.hasPartial();
    LengthRange lengths;
    if (!hasPartial) {
        view.bound = boundAt(e, cell, view, e.corners.reference);
        view.needed = e.standing.length;
        if (view.bound < view.needed)
            return Verdict::excluded;
    }
    view.spread =
        std::min(shortestVector(view.cone, {1.0, 1.0, 1.0, 1.0, 1.0}), std::sqrt(5.0) * (1.0 + 1e-9));
    if (e.standing.problem.isFitted && e.offPeak == noPeak) {
        lengths = lengthsInside(e.standing.problem, e.standing.space.problem.window, view.cone, view.spread);
        if (lengths.low > lengths.high)
            return Verdict::excluded;
    }
    if (!hasPartial) {
        view.needed = neededIn(e.standing, lengths);
        return view.bound < view.needed ? Verdict::excluded : Verdict::open;
    }
    cell.t1 = std::max(cell.t1, lengths.low);
    cell.t2 = std::min(cell.t2, lengths.high);
    const Verdict verdict = trimLengths(e, cell, view);
    if (verdict != Verdict::open)
        return verdict;
    view.bound = boundAt(e, cell, view, cell.t2);
    view.needed = neededIn(e.standing, {cell.t1, cell.t2});
    return sagsInLength(e, cell, view) ? Verdict::cutLengths : Verdict::open;
}

/// Solves the assignment at a corner with the costs at hand, and keeps what pairs cost above it.
double solveReduced(Exploration &e, std::uint32_t corner, std::vector<double> &reduced)
{
    const TensorProblem &problem = e.standing.problem;
    const std::span<float> kept =
        std::span(e.corners.prices).subspan(corner * problem.stride, problem.stride);
    e.prices.assign(kept.begin(), kept.end());
    const double cost = solveAssignment(e.corners.costs.costs, problem.size, e.prices, e.corners.assignment);
    std::ranges::transform(e.prices, kept.begin(), [](double price) { return static_cast<float>(price); });
    reduceCosts(e.corners.costs, problem, e.prices, reduced);
    return cost;
}

/// Lists what comes near the best of each corner at the longest lengths, by how far the bound is above what
/// is needed.
bool listByBound(Exploration &e, const Cell &cell, const CellView &view, std::size_t steps)
{
    std::vector<int> rowOf;
    for (std::size_t i = 0; i < saupeCount; ++i) {
        pairCosts(e.standing.problem, view.cone.corner[i], cell.t2 * view.spread, e.corners.costs);
        solveReduced(e, cell.corners[i], e.reduced.at[i]);
        if (i == 0)
            rowOf = e.corners.assignment.columnOf;
    }
    const double margin = view.bound - view.needed + sameSlack * e.standing.length;
    return considerNear(e.standing, e.reduced, rowOf, margin, steps);
}

/// Costs of a corner so that no assignment has less than the difference by which the given one is the better,
/// anywhere in the cell: q of the others is no more than `spread` times that at the corners, its own no less
/// than the tangent at the middle, and each pair counts with the worse end of t.
void differenceCosts(Exploration &e, const Cell &cell, const CellView &view, std::span<const int> rowOf,
                     std::size_t corner, const TensorVector &middle)
{
    const TensorProblem &problem = e.standing.problem;
    pairCosts(problem, view.cone.corner[corner], 0.0, e.corners.costs);
    for (const int peak : problem.partial) {
        const auto own = static_cast<std::size_t>(rowOf[peak]);
        double tangent = 0.0;
        for (std::size_t column = 0; column < problem.columns; ++column) {
            double here = 0.0, atMiddle = 0.0;
            for (std::size_t k = 0; k < saupeCount; ++k) {
                here += problem.termsOf(column, k)[own] * view.cone.corner[corner][k];
                atMiddle += problem.termsOf(column, k)[own] * middle[k];
            }
            tangent += problem.excess[problem.cell(peak, column)] * atMiddle * (2.0 * here - atMiddle);
        }
        for (std::size_t row = 0; row < problem.size; ++row) {
            if (row == own)
                continue;
            double share = 0.0;
            for (std::size_t column = 0; column < problem.columns; ++column) {
                const double f = e.corners.costs.projections[column * problem.stride + row];
                share += problem.excess[problem.cell(peak, column)] * f * f;
            }
            const double change = tangent - view.spread * share;
            e.corners.costs.costs[peak * problem.stride + row] +=
                0.5 * (change < 0.0 ? cell.t2 : cell.t1) * change;
        }
    }
}

/// Whether the assignment of the first corner is the best at all corners at the reference.
bool isSameAtCorners(const Exploration &e, const Cell &cell)
{
    return std::all_of(cell.corners.begin() + 1, cell.corners.end(), [&](std::uint32_t corner) {
        const double support = supportOf(e.corners, corner);
        const double own = valueOf(e.corners, cell.corners[0], e.corners.list[corner].v);
        return own >= support - sameSlack * (std::fabs(support) + e.standing.length);
    });
}

/// Whether one assignment is the best all over a cell. Those within the limit that come near it are
/// considered.
bool isLeaf(Exploration &e, const Cell &cell, const CellView &view)
{
    const TensorProblem &problem = e.standing.problem;
    const double score = e.corners.list[cell.corners[0]].score;
    if (!problem.hasPartial() && score > e.standing.limit)
        return true;
    TensorVector middle = {};
    for (const TensorVector &corner : view.cone.corner)
        for (std::size_t k = 0; k < saupeCount; ++k)
            middle[k] += corner[k];
    middle = directionOf(middle).u;
    pairCosts(problem, view.cone.corner[0], e.corners.reference, e.corners.costs);
    solveReduced(e, cell.corners[0], e.reduced.at[0]);
    const std::vector<int> rowOf = e.corners.assignment.columnOf;
    for (std::size_t i = 0; i < saupeCount; ++i) {
        differenceCosts(e, cell, view, rowOf, i, middle);
        double own = 0.0;
        for (std::size_t peak = 0; peak < problem.size; ++peak)
            own += e.corners.costs.costs[peak * problem.stride + static_cast<std::size_t>(rowOf[peak])];
        const double least = solveReduced(e, cell.corners[i], e.reduced.at[i]);
        if (least < own - sameSlack * (std::fabs(own) + e.standing.length))
            return false;
    }
    // Of two assignments with values a and b at a tensor of length t the scores differ by 2 t (a - b).
    const double length = problem.hasPartial() ? cell.t1 : e.standing.length;
    const double margin = 0.5 * (e.standing.limit - score) / length + 4.0 * sameSlack * e.standing.length;
    return score > e.standing.limit || considerNear(e.standing, e.reduced, rowOf, margin, fewSteps);
}

/// Whether a cell holds an assignment within the limit, and is about as small as what that leaves: it cannot
/// be given up, but there may be few more.
bool isWorthListing(const Exploration &e, const Cell &cell, const CellView &view)
{
    constexpr double enough = 4.0;
    const double room = 0.5 * (e.standing.limit - e.corners.list[cell.corners[0]].score) / e.standing.length;
    return room >= 0.0 && view.bound - view.needed <= enough * room;
}

void cutLengths(Exploration &e, const Cell &cell)
{
    Cell shorter = cell, longer = cell;
    shorter.t2 = longer.t1 = 0.5 * (cell.t1 + cell.t2);
    shorter.cuts = longer.cuts = cell.cuts + 1;
    e.open.push_back(longer);
    e.open.push_back(shorter);
}

void cutEdge(Exploration &e, const Cell &cell, const ConeEdge &edge)
{
    const std::uint32_t middle = middleOf(e.corners, cell.corners[edge.i], cell.corners[edge.j]);
    for (const std::size_t end : {edge.i, edge.j}) {
        Cell half = cell;
        half.corners[end] = middle;
        ++half.cuts;
        e.open.push_back(half);
    }
}

/// A cell that is too small to cut: nothing is proved about it.
void giveUp(Exploration &e)
{
    e.isProved = false;
}

void explore(Exploration &e, Cell cell)
{
    std::array<const TensorVector *, saupeCount> directions;
    for (std::size_t i = 0; i < saupeCount; ++i)
        directions[i] = &e.corners.list[cell.corners[i]].v;
    CellView view = {.cone = makeCone(directions)};
    switch (judge(e, cell, view)) {
    case Verdict::excluded:
        return settle(e, cell);
    case Verdict::cutLengths:
        return cutLengths(e, cell);
    default:
        break;
    }
    const ConeEdge edge = longestEdge(view.cone);
    const bool isSmall = edge.square < smallestEdge;
    if (e.offPeak != noPeak)
        return isSmall ? giveUp(e) : cutEdge(e, cell, edge);
    if (isSameAtCorners(e, cell) && isLeaf(e, cell, view))
        return settle(e, cell);
    if (isSmall || (cell.cuts % listEvery == 0 && isWorthListing(e, cell, view)))
        if (listByBound(e, cell, view, isSmall ? std::numeric_limits<std::size_t>::max() : fewSteps))
            return settle(e, cell);
    if (!isSmall)
        cutEdge(e, cell, edge);
}

/// The longest tensor that an assignment within the limit can have.
double longestLength(const Standing &standing)
{
    const double share = standing.problem.largestShare;
    double longest = std::sqrt(standing.problem.data / (1.0 - share));
    const double size = standing.space.tables.tensorSize;
    if (standing.problem.isFitted && std::isfinite(size)) {
        // |x|^2 = s.Q s is no more than the tensor's size times the trace of Q in its units.
        constexpr TensorVector weights = {1.5, 0.5, 2.0, 2.0, 2.0};
        double trace = 0.0;
        for (std::size_t i = 0; i < saupeCount; ++i)
            for (std::size_t j = 0; j <= i; ++j)
                trace += standing.problem.factor[packed(i, j)] * standing.problem.factor[packed(i, j)] /
                         weights[i];
        longest = std::min(longest, std::sqrt(size * trace));
    }
    return longest;
}

/// The 32 orthants.
void openAll(Exploration &e)
{
    const double longest = e.standing.problem.hasPartial() ? longestLength(e.standing) : infinity;
    std::array<std::array<std::uint32_t, 2>, saupeCount> axes;
    for (std::size_t k = 0; k < saupeCount; ++k)
        for (const int side : {0, 1}) {
            TensorVector axis = {};
            axis[k] = side == 0 ? 1.0 : -1.0;
            // Corners that several searches share begin with these.
            const auto place = static_cast<std::uint32_t>(2 * k) + static_cast<std::uint32_t>(side);
            axes[k][side] = place < e.corners.list.size() ? place : addCorner(e.corners, axis, {});
        }
    constexpr int orthants = 1 << saupeCount;
    for (int orthant = 0; orthant < orthants; ++orthant) {
        Cell cell = {.t2 = longest, .cuts = saupeCount};
        for (std::size_t k = 0; k < saupeCount; ++k)
            cell.corners[k] = axes[k][orthant >> k & 1];
        e.open.push_back(cell);
    }
}

} // namespace

bool canSearchTensors(const Standing &standing)
{
    constexpr double leastExplained = 1e-3;
    return !standing.best.rowOf.empty() && standing.lengthSquare > leastExplained * standing.problem.data &&
           standing.problem.largestShare <
               (standing.problem.size < manyPeaks ? mostShareOfFew : mostShareOfMany);
}

bool searchTensors(Standing &standing, const std::function<void(double)> &progress)
{
    Corners corners = {.standing = standing};
    Exploration e = {.standing = standing, .progress = progress, .corners = corners};
    const TensorFit start = fitTensor(standing.problem, standing.best.rowOf);
    corners.reference = start.isSolved ? directionOf(start.x).length : standing.length;
    openAll(e);
    while (!e.open.empty() && !InterruptGuard::isInterrupted()) {
        const Cell cell = e.open.back();
        e.open.pop_back();
        explore(e, cell);
    }
    return e.open.empty() && !InterruptGuard::isInterrupted();
}

bool searchElsewhere(Corners &corners, int peak, double reach, double accuracy)
{
    const std::function<void(double)> silent = [](double) {};
    Standing &standing = corners.standing;
    Exploration e = {.standing = standing, .progress = silent, .corners = corners, .offPeak = peak};
    const Alternatives &found = *corners.alternatives;
    const auto setThreshold = [&] {
        setLimit(standing, std::min(found.elsewhere[peak], found.bestScore + reach) - accuracy);
    };
    setThreshold();
    openAll(e);
    while (!e.open.empty() && !InterruptGuard::isInterrupted()) {
        const Cell cell = e.open.back();
        e.open.pop_back();
        explore(e, cell);
        setThreshold();
    }
    return e.isProved && e.open.empty() && !InterruptGuard::isInterrupted();
}

} // namespace trelm
