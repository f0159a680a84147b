#include "assignment/search.h"

#include "assignment/candidates.h"
#include "assignment/first_guess.h"
#include "assignment/interrupt.h"
#include "assignment/search_space.h"
#include "assignment/selection.h"
#include "assignment/tensor_search.h"
#include "couplings/fit.h"
#include "support/numerics/linear_assignment.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numeric>
#include <utility>

namespace trelm {
namespace {

constexpr int mostTightenings = 8;       ///< of the ellipsoids at one node
constexpr double worthTightening = 0.02; ///< gain of the bound, as a part of the limit
constexpr int nodesPerLine = 512;        ///< how often the progress is shown
/// Peaks from which on a search over the tensor is faster than one over the peaks.
constexpr std::size_t fewestForTensors = 9;
constexpr std::size_t mostForTrial = 24; ///< up to which one over the peaks may end at once

/// A descent through the candidates, peak by peak.
struct Descent {
    const SearchSpace &space;
    Messages &messages;
    ScoreWork work = {.messages = messages};
    Candidate best = {};
    double limit = 0.0;        ///< of sums in exact arithmetic: above it nothing can be the answer
    std::vector<int> rowOf;    ///< of the peaks placed; -1 of the others
    std::vector<char> isTaken; ///< rows
    CandidateCount settled = {0.0L, 0, true};
    long long nodes = 0;
    long long mostNodes = std::numeric_limits<long long>::max(); ///< of a descent that is only tried

    // Work space of a node, used up before the next one.
    std::vector<int> openPeaks = {}, openRows = {};
    std::vector<RowRange> ranges = {};
    std::vector<double> costs = {};
    LinearAssignment solution = {};
};

/// The progress line, which the next one overwrites. There is none before the first candidate is settled.
void printoutput(const Descent &descent)
{
    if (descent.nodes == 0)
        return;
    descent.messages.note("REMARK Sampled %s\r", countText(descent.settled).c_str());
}

/// Candidates below a node: free rows of each range for the open peaks of it.
CandidateCount candidatesBelow(const Descent &descent)
{
    const SearchSpace &space = descent.space;
    CandidateCount count = {1.0L, 1, true};
    for (std::size_t i = 0; i < space.peaks.size();) {
        const RowSpan rows = space.rowsFor[i];
        std::size_t open = 0;
        for (; i < space.peaks.size() && space.rowsFor[i].first == rows.first; ++i)
            open += descent.rowOf[i] < 0 ? 1 : 0;
        const auto taken = std::span(descent.isTaken).subspan(rows.first, rows.end - rows.first);
        std::size_t free = std::ranges::count(taken, 0);
        for (; open > 0; --open, --free)
            count = count * free;
    }
    return count;
}

void settle(Descent &descent, const CandidateCount &count)
{
    descent.settled += count;
    if (++descent.nodes % nodesPerLine == 0)
        printoutput(descent);
}

void listOpen(Descent &descent)
{
    descent.openPeaks.clear();
    descent.openRows.clear();
    for (std::size_t i = 0; i < descent.rowOf.size(); ++i)
        if (descent.rowOf[i] < 0)
            descent.openPeaks.push_back(static_cast<int>(i));
    for (std::size_t row = 0; row < descent.isTaken.size(); ++row)
        if (descent.isTaken[row] == 0)
            descent.openRows.push_back(static_cast<int>(row));
}

/// What each open peak costs at least on each open row.
void setCosts(Descent &descent)
{
    const BoundTables &tables = descent.space.tables;
    descent.costs.clear();
    for (const int peak : descent.openPeaks) {
        const auto &couplings = tables.peaks[descent.space.peaks[peak]];
        for (std::size_t k = 0; k < descent.openRows.size(); ++k)
            descent.costs.push_back(descent.space.mayTake(peak, descent.openRows[k])
                                        ? pairCost(couplings, &descent.ranges[k * tables.columns])
                                        : infinity);
    }
}

/// The ellipsoids of all media, and what the placed pairs cost at least.
struct PlacedBound {
    std::array<Ellipsoid, maxMedia> ellipsoids;
    double least = 0.0;
};

PlacedBound boundPlaced(const Descent &descent, const MediaEquations &equations)
{
    PlacedBound bound;
    for (std::size_t medium = 0; medium < descent.space.tables.media; ++medium) {
        bound.ellipsoids[medium] = makeEllipsoid(descent.space.tables, equations[medium], descent.limit);
        bound.least += bound.ellipsoids[medium].least;
    }
    return bound;
}

/// Bounds a node with its open peaks. The least total of their costs leaves less room to the tensors, which
/// makes the ellipsoids smaller and the costs larger: again, as long as it is worth it. Returns the bound,
/// infinity if the open peaks have no place at all; costs and solution are left for the choice of a peak.
double boundNode(Descent &descent, const PlacedBound &placed)
{
    const BoundTables &tables = descent.space.tables;
    const std::size_t media = tables.media;
    double open = 0.0;
    for (int round = 0; round < mostTightenings; ++round) {
        std::array<double, maxMedia> slack = {};
        for (std::size_t medium = 0; medium < media; ++medium) {
            const Ellipsoid &ellipsoid = placed.ellipsoids[medium];
            slack[medium] =
                descent.limit - open - (placed.least - ellipsoid.least) + ellipsoid.given - ellipsoid.bottom;
        }
        rowRanges(tables, std::span(placed.ellipsoids).first(media), slack, descent.openRows, descent.ranges);
        setCosts(descent);
        if (!linearAssignment(descent.costs, static_cast<int>(descent.openPeaks.size()),
                              static_cast<int>(descent.openRows.size()), descent.solution))
            return infinity;
        const double gain = descent.solution.total - open;
        open = std::max(open, descent.solution.total);
        if (placed.least + open > descent.limit || gain < worthTightening * descent.limit)
            break;
    }
    return placed.least + open;
}

/// A place for a peak, cheapest first.
struct Choice {
    double cost;
    int row;
};

/// Of the open peaks the one with the fewest rows that the bound leaves it. Returns its place in the space.
std::size_t choosePeak(const Descent &descent, double bound, std::vector<Choice> &choices)
{
    const std::size_t rows = descent.openRows.size();
    const LinearAssignment &solution = descent.solution;
    std::size_t chosen = 0, fewest = rows + 1;
    double weight = 0.0;
    std::vector<Choice> found;
    for (std::size_t p = 0; p < descent.openPeaks.size(); ++p) {
        found.clear();
        for (std::size_t k = 0; k < rows; ++k) {
            // Forced onto this row the others pay at least the reduced cost on top.
            const double cost = descent.costs[p * rows + k];
            const double reduced = cost - solution.rowPrice[p] - solution.columnPrice[k];
            if (std::isfinite(cost) && bound + reduced <= descent.limit)
                found.push_back({cost, descent.openRows[k]});
        }
        const int peak = descent.openPeaks[p];
        double own = 0.0;
        for (const PeakCoupling &c : descent.space.tables.peaks[descent.space.peaks[peak]])
            own += c.w * c.w * c.d * c.d;
        if (found.size() > fewest || (found.size() == fewest && own <= weight))
            continue;
        fewest = found.size();
        weight = own;
        chosen = peak;
        choices = found;
    }
    std::ranges::sort(choices, {}, [](const Choice &choice) { return std::pair(choice.cost, choice.row); });
    return chosen;
}

void finishCandidate(Descent &descent)
{
    if (takeBetter(descent.space, descent.rowOf, descent.work, descent.best))
        descent.limit = exactLimit(descent.space.tables, descent.best.score);
    settle(descent, {1.0L, 1, true});
}

/// Puts a peak of the space on a row, and takes it away again.
void place(Descent &descent, std::size_t peak, int row)
{
    descent.rowOf[peak] = row;
    descent.isTaken[row] = 1;
}

void takeAway(Descent &descent, std::size_t peak)
{
    descent.isTaken[descent.rowOf[peak]] = 0;
    descent.rowOf[peak] = -1;
}

void descend(Descent &descent, const MediaEquations &equations)
{
    if (InterruptGuard::isInterrupted() || descent.nodes > descent.mostNodes)
        return;
    const PlacedBound placed = boundPlaced(descent, equations);
    if (placed.least > descent.limit)
        return settle(descent, candidatesBelow(descent));
    listOpen(descent);
    if (descent.openPeaks.empty())
        return finishCandidate(descent);
    const double bound = boundNode(descent, placed);
    if (bound > descent.limit)
        return settle(descent, candidatesBelow(descent));
    std::vector<Choice> choices;
    const std::size_t peak = choosePeak(descent, bound, choices);
    const RowSpan rows = descent.space.rowsFor[peak];
    std::vector<char> isTried(descent.isTaken.size(), 0);
    for (const Choice &choice : choices) {
        isTried[choice.row] = 1;
        MediaEquations below = equations;
        addPair(descent.space.tables, descent.space.peaks[peak], choice.row, below);
        place(descent, peak, choice.row);
        descend(descent, below);
        takeAway(descent, peak);
    }
    for (std::size_t row = rows.first; row < rows.end; ++row) // what the bound left out
        if (descent.isTaken[row] == 0 && isTried[row] == 0) {
            place(descent, peak, static_cast<int>(row));
            settle(descent, candidatesBelow(descent));
            takeAway(descent, peak);
        }
}

/// Whether no candidate can be better than outsideWindow: a medium with too few couplings for a tensor,
/// whatever the assignment, or a window that holds none.
bool isHopeless(const SearchSpace &space)
{
    const TensorWindow &window = space.problem.window;
    constexpr float highestR = 0.6667f; // by the order of the eigenvalues
    if (!(window.lowDa < window.highDa) || !(window.lowR < window.highR) || window.highR <= 0.0f ||
        window.lowR > highestR)
        return true;
    std::array<std::size_t, maxMedia> couplings = {};
    for (std::size_t medium = 0; medium < couplings.size(); ++medium)
        couplings[medium] = space.fixed[medium].count;
    for (const int peak : space.peaks)
        for (const PeakCoupling &coupling : space.tables.peaks[peak])
            ++couplings[space.tables.mediumOf[coupling.column]];
    return std::any_of(couplings.begin(), couplings.begin() + space.tables.media,
                       [](std::size_t count) { return count < fewestCouplings; });
}

/// Searches over the tensor where that can be done. Returns whether it has.
bool searchOverTensor(Descent &descent)
{
    const std::optional<TensorProblem> problem = makeTensorProblem(descent.space);
    if (!problem)
        return false;
    Standing standing = {descent.space, *problem, descent.work, descent.best};
    setLimit(standing);
    guessByTensors(standing);
    const CandidateCount all = candidatesBelow(descent);
    const auto show = [&](double part) {
        if (++descent.nodes % nodesPerLine != 0)
            return;
        descent.settled = {all.about * static_cast<long double>(part), 0, false};
        printoutput(descent);
    };
    if (!canSearchTensors(standing))
        return false;
    if (searchTensors(standing, show))
        descent.settled = all;
    return true;
}

/// Descends as far as a few nodes go, which clean couplings of few peaks do not need. Returns whether that is
/// the end.
bool tryDescent(Descent &descent)
{
    guessCandidate(descent.space, descent.work, descent.best);
    descent.limit = exactLimit(descent.space.tables, descent.best.score);
    descent.mostNodes = nodesPerLine - 1;
    descend(descent, descent.space.fixed);
    const bool isDone = descent.nodes <= descent.mostNodes;
    if (!isDone) {
        descent.settled = {0.0L, 0, true};
        descent.nodes = 0;
    }
    descent.mostNodes = std::numeric_limits<long long>::max();
    return isDone;
}

void searchFrom(Descent &descent)
{
    if (isHopeless(descent.space))
        return settle(descent, candidatesBelow(descent));
    if (descent.space.peaks.size() >= fewestForTensors) {
        if (descent.space.peaks.size() <= mostForTrial && tryDescent(descent))
            return;
        if (searchOverTensor(descent))
            return;
    }
    guessCandidate(descent.space, descent.work, descent.best);
    descent.limit = exactLimit(descent.space.tables, descent.best.score);
    descend(descent, descent.space.fixed);
}

AssignmentResult searchSpace(const SearchSpace &space, Messages &messages)
{
    Descent descent = {.space = space,
                       .messages = messages,
                       .rowOf = std::vector<int>(space.peaks.size(), -1),
                       .isTaken = std::vector<char>(space.problem.peakCount, 0)};
    searchFrom(descent);
    printoutput(descent);
    messages.note("\n");
    AssignmentResult result = unassigned(space.problem);
    result.isProved = !InterruptGuard::isInterrupted();
    result.pSumDMin = descent.best.score;
    for (std::size_t i = 0; i < descent.best.rowOf.size(); ++i)
        result.bestIdList[descent.best.rowOf[i]] = space.peaks[i];
    return result;
}

std::vector<int> allPeaks(const AssignmentProblem &problem)
{
    std::vector<int> peaks(problem.peakCount);
    std::iota(peaks.begin(), peaks.end(), 0);
    return peaks;
}

Status checkItems(std::size_t items, Messages &messages)
{
    if (items <= mostItems)
        return Status::ok;
    return messages.fail("trelm: %zu peaks to permute, the limit is %zu.\n", items, mostItems);
}

/// The residue rows of each peak of the classes.
Status findClasses(std::span<const int> idCutList, std::vector<RowSpan> &rows, Messages &messages)
{
    for (const int size : idCutList) {
        if (size < 0)
            return messages.fail("trelm: -fixAa %d: a class has no such size.\n", size);
        const std::size_t items = size, first = rows.size();
        if (checkItems(items, messages) != Status::ok)
            return Status::failed;
        messages.note("REMARK Sampled %s\r\n", countText(arrangements(items, items)).c_str());
        rows.insert(rows.end(), items, {first, first + items});
    }
    return Status::ok;
}

} // namespace

AssignmentResult unassigned(const AssignmentProblem &problem)
{
    return {.bestIdList = std::vector<int>(problem.peakCount, -1)};
}

std::optional<AssignmentResult> visitExh(const AssignmentProblem &problem, Messages &messages)
{
    if (checkItems(problem.peakCount, messages) != Status::ok)
        return std::nullopt;
    const std::vector<RowSpan> rows(problem.peakCount, {0, problem.peakCount});
    return searchSpace(makeSearchSpace(problem, allPeaks(problem), rows), messages);
}

std::optional<AssignmentResult> visitAa(const AssignmentProblem &problem, std::span<const int> idCutList,
                                        Messages &messages)
{
    if (idCutList.size() > mostClasses) {
        messages.err("trelm: -fixAa has %zu classes, the limit is %zu: nothing is searched.\n\n",
                     idCutList.size(), mostClasses);
        return unassigned(problem);
    }
    std::vector<RowSpan> rows;
    if (findClasses(idCutList, rows, messages) != Status::ok)
        return std::nullopt;
    if (rows.size() != problem.peakCount) {
        messages.err("REMARK Sampled 1\rError: Error in length of permutation.\n");
        return std::nullopt;
    }
    return searchSpace(makeSearchSpace(problem, allPeaks(problem), rows), messages);
}

std::optional<AssignmentResult> visitAllExh(const AssignmentProblem &problem, std::span<const int> selected,
                                            Messages &messages)
{
    if (selected.size() < minSelected || selected.size() > maxSelected) {
        messages.err("Warning: only subset of 2 to 7 peaks allowed!");
        return std::nullopt;
    }
    const std::vector<RowSpan> rows(selected.size(), {0, problem.peakCount});
    return searchSpace(makeSearchSpace(problem, {selected.begin(), selected.end()}, rows), messages);
}

} // namespace trelm
