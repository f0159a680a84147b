#include "assignment/selection.h"

#include "assignment/interrupt.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <numeric>
#include <utility>

namespace trelm {
namespace {

constexpr double worstSpread = 1.0e8; ///< a selection has to be better than this

/// What a selection is made from.
struct PeakValues {
    std::vector<int> counts;                ///< couplings of each peak row
    std::vector<std::vector<float>> values; ///< and their weighted values, rising
    std::vector<int> largest;               ///< the nSel largest counts, largest first
    std::vector<float> ladder;              ///< the values that a selection should have, rising
};

bool hasCoupling(const AssignmentProblem &problem, std::size_t row, std::size_t column)
{
    return problem.dcMat[problem.at(row, column)] != noPeakCoupling;
}

void collectValues(const AssignmentProblem &problem, PeakValues &peaks)
{
    for (std::size_t row = 0; row < problem.peakCount; ++row) {
        std::vector<float> &values = peaks.values.emplace_back();
        for (std::size_t column = 0; column < problem.colId; ++column)
            if (hasCoupling(problem, row, column))
                values.push_back(problem.dcMat[problem.at(row, column)] *
                                 problem.wMat[problem.at(row, column)]);
        std::ranges::sort(values);
        peaks.counts.push_back(static_cast<int>(values.size()));
    }
}

/// Tells how many couplings the selection will have. Returns that number.
int reportCounts(int nSel, PeakValues &peaks, Messages &messages)
{
    peaks.largest = peaks.counts;
    std::ranges::sort(peaks.largest, std::greater());
    messages.out("REMARK Maximum of %d available RDCs per peak.\n",
                 peaks.largest.empty() ? 0 : peaks.largest.front());
    peaks.largest.resize(std::min(peaks.largest.size(), static_cast<std::size_t>(std::max(nSel, 0))));
    int nDMax = 0;
    messages.out("REMARK %d peaks with", nSel);
    for (const int count : peaks.largest) {
        messages.out(" %d", count);
        nDMax += count;
    }
    messages.out(" RDCs will be selected.\n");
    messages.out("REMARK %d peaks with %d RDCs in total will be selected.\n", nSel, nDMax);
    return nDMax;
}

/// Makes the ladder. Its range always holds 0, which unused columns stand for.
void makeLadder(int nDMax, PeakValues &peaks, Messages &messages)
{
    float dcMin = 0.0f, dcMax = 0.0f;
    for (const std::vector<float> &values : peaks.values)
        for (const float value : values) {
            dcMin = std::min(dcMin, value);
            dcMax = std::max(dcMax, value);
        }
    messages.out("REMARK Smallest and largest normalized RDC: %.3f %.3f [Hz].\n", static_cast<double>(dcMin),
                 static_cast<double>(dcMax));
    for (int n = 0; n < nDMax; ++n)
        peaks.ladder.push_back(nDMax == 1 ? dcMin
                                          : dcMin + static_cast<float>(n) * (dcMax - dcMin) /
                                                        static_cast<float>(nDMax - 1));
}

/// The search for the combination of rows whose values lie nearest to the ladder.
struct SpreadSearch {
    const PeakValues &peaks;
    std::vector<int> rows = {};                  ///< the combination so far
    std::vector<std::vector<float>> sorted = {}; ///< its values after each row, rising
    std::vector<double> cost = {};               ///< of the bound
    double chi2 = worstSpread;                   ///< of the best
    std::vector<int> best = {};
};

double squaredStep(float value, float target)
{
    const double step = static_cast<double>(value) - static_cast<double>(target);
    return step * step;
}

/// The smallest sum of squares of some of the values on some of the targets, in rising order. No selection
/// that holds these values has less, as its sorted values put them on targets in rising order too.
double spreadBound(std::span<const float> values, std::span<const float> ladder, std::vector<double> &cost)
{
    const std::size_t spare = ladder.size() - values.size();
    cost.assign(spare + 1, 0.0); // of the first values, on targets up to their number plus the index
    for (std::size_t i = 0; i < values.size(); ++i) {
        double least = std::numeric_limits<double>::infinity();
        for (std::size_t skipped = 0; skipped <= spare; ++skipped) {
            least = std::min(least, cost[skipped] + squaredStep(values[i], ladder[i + skipped]));
            cost[skipped] = least;
        }
    }
    return cost[spare];
}

/// Whether a combination can still reach the number of couplings: it has to hold the largest counts, each as
/// often as the list of them has it.
bool fitsCounts(const SpreadSearch &search, int row)
{
    const int count = search.peaks.counts[row];
    const auto allowed = std::ranges::count(search.peaks.largest, count);
    const auto used =
        std::ranges::count_if(search.rows, [&](int other) { return search.peaks.counts[other] == count; });
    return used < allowed;
}

/// Adds a row to the combination.
void push(SpreadSearch &search, int row)
{
    const std::vector<float> &more = search.peaks.values[row];
    const std::vector<float> &before = search.sorted[search.rows.size()];
    search.rows.push_back(row);
    std::vector<float> &after = search.sorted[search.rows.size()];
    after.resize(before.size() + more.size());
    std::ranges::merge(before, more, after.begin());
}

/// Visits the combinations that go on from the present one, in lexical order, and keeps the best. Whatever
/// is passed over has a bound no smaller than the best, so it would not replace it.
void visitCombinations(SpreadSearch &search)
{
    const std::size_t depth = search.rows.size();
    const std::vector<float> &values = search.sorted[depth];
    const double bound = spreadBound(values, search.peaks.ladder, search.cost);
    if (!(bound < search.chi2) || InterruptGuard::isInterrupted())
        return;
    if (depth == search.peaks.largest.size()) {
        search.chi2 = bound; // every target has its value: this is the sum itself
        search.best = search.rows;
        return;
    }
    const int rest = static_cast<int>(search.peaks.largest.size() - depth) - 1;
    const int last = static_cast<int>(search.peaks.counts.size()) - rest;
    for (int row = depth == 0 ? 0 : search.rows.back() + 1; row < last; ++row) {
        if (!fitsCounts(search, row))
            continue;
        push(search, row);
        visitCombinations(search);
        search.rows.pop_back();
        if (search.peaks.counts[row] > search.peaks.largest.back())
            return; // no combination does without this row
    }
}

/// The sum of a whole combination.
double spreadOf(SpreadSearch &search, const std::vector<int> &rows)
{
    search.rows.clear();
    for (const int row : rows)
        push(search, row);
    search.rows.clear();
    return spreadBound(search.sorted[rows.size()], search.peaks.ladder, search.cost);
}

/// Exchanges single rows of equal count as long as that betters the sum. Returns the sum, which no best
/// combination exceeds; the rows are the best so far.
double goodSpread(SpreadSearch &search)
{
    std::vector<int> rows(search.peaks.counts.size());
    for (std::size_t i = 0; i < rows.size(); ++i)
        rows[i] = static_cast<int>(i);
    const auto countOf = [&](int row) { return search.peaks.counts[row]; };
    std::ranges::stable_sort(rows, std::greater(), countOf);
    std::vector<int> chosen(rows.begin(),
                            rows.begin() + static_cast<std::ptrdiff_t>(search.peaks.largest.size()));
    double best = spreadOf(search, chosen);
    for (bool betters = true; betters;) {
        betters = false;
        for (int &place : chosen)
            for (const int row : rows) {
                if (countOf(row) != countOf(place) || std::ranges::find(chosen, row) != chosen.end())
                    continue;
                const int before = std::exchange(place, row);
                const double sum = spreadOf(search, chosen);
                betters = betters || sum < best;
                if (sum < best)
                    best = sum;
                else
                    place = before;
            }
    }
    std::ranges::sort(chosen);
    search.best = best < worstSpread ? chosen : std::vector<int>();
    return best;
}

/// The rows whose values spread best; none if no combination is better than worstSpread.
std::vector<int> mostEvenRows(const PeakValues &peaks)
{
    SpreadSearch search = {.peaks = peaks};
    search.sorted.resize(peaks.largest.size() + 1);
    // From just above a sum that can be reached, the first combination of the smallest sum is found the same
    // as from worstSpread, only sooner.
    const double good = goodSpread(search);
    search.chi2 = std::min(worstSpread, std::nextafter(good, worstSpread));
    visitCombinations(search);
    return search.best;
}

void reportSelection(const std::vector<int> &selected, Messages &messages)
{
    messages.out("REMARK DC Peaks");
    for (const int row : selected)
        messages.out(" %d", row + 1);
    messages.out(" have been selected.\n.");
}

std::vector<int> firstRows(int count)
{
    std::vector<int> rows(static_cast<std::size_t>(std::max(count, 0)));
    std::iota(rows.begin(), rows.end(), 0);
    return rows;
}

} // namespace

std::optional<std::vector<int>> selectPeaks(const AssignmentProblem &problem,
                                            const AssignmentOptions &options, Messages &messages)
{
    const int nSel = options.nSel;
    const bool isAllowed = nSel >= minSelected && nSel <= maxSelected;
    if (isAllowed && std::cmp_greater(nSel, problem.peakCount)) {
        messages.err("Error: -nSel %d, but there are only %zu peaks.\n", nSel, problem.peakCount);
        return std::nullopt;
    }
    PeakValues peaks;
    collectValues(problem, peaks);
    const int nDMax = reportCounts(nSel, peaks, messages);
    makeLadder(nDMax, peaks, messages);
    std::vector<int> selected;
    if (options.dcSelOpt == 0)
        reportSelection(selected = firstRows(std::min(nSel, static_cast<int>(problem.peakCount))), messages);
    if (!isAllowed) {
        messages.err("Warning: only subset of 2 to 7 peaks allowed!");
        return std::nullopt;
    }
    if (options.dcSelOpt == 0)
        return selected;
    selected = mostEvenRows(peaks);
    if (std::ssize(selected) != nSel) {
        messages.err("Error: # of selected peaks != %d.\n", nSel);
        return std::nullopt;
    }
    reportSelection(selected, messages);
    return selected;
}

} // namespace trelm
