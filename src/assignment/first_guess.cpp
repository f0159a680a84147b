#include "assignment/first_guess.h"

#include "assignment/interrupt.h"
#include "support/numerics/linear_assignment.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace trelm {
namespace {

constexpr std::size_t fewestStarts = 40; ///< random tensors
constexpr std::size_t startsPerPeak = 4;
constexpr std::size_t mostWork = 1'000'000; ///< starts times peaks squared,
constexpr std::size_t fewestLongStarts = 4; ///< which many peaks exceed
/// More starts seem useless when one, and one more for each so many peaks, have ended at the best candidate
/// again.
constexpr std::size_t peaksPerHit = 8;
constexpr std::size_t mostRounds = 40; ///< of assignment and tensor

using Tensors = std::array<SaupeTerms, maxMedia>;

/// Uniform in 0 to 1, the same everywhere.
double uniform(std::mt19937 &engine)
{
    return (static_cast<double>(engine()) + 0.5) / 4294967296.0;
}

double between(std::mt19937 &engine, double low, double high)
{
    return low + (high - low) * uniform(engine);
}

/// A random rotation, row by row. Source: Shoemake, Graphics Gems III (1992) 124.
std::array<std::array<double, 3>, 3> randomRotation(std::mt19937 &engine)
{
    constexpr double twoPi = 6.28318530717958648;
    const double u = uniform(engine), a = twoPi * uniform(engine), b = twoPi * uniform(engine);
    const double x = std::sqrt(1.0 - u) * std::sin(a), y = std::sqrt(1.0 - u) * std::cos(a);
    const double z = std::sqrt(u) * std::sin(b), w = std::sqrt(u) * std::cos(b);
    return {{{1 - 2 * (y * y + z * z), 2 * (x * y - w * z), 2 * (x * z + w * y)},
             {2 * (x * y + w * z), 1 - 2 * (x * x + z * z), 2 * (y * z - w * x)},
             {2 * (x * z - w * y), 2 * (y * z + w * x), 1 - 2 * (x * x + y * y)}}};
}

/// A tensor inside the window.
SaupeTerms randomTensor(const AssignmentProblem &problem, std::mt19937 &engine)
{
    constexpr double widest = 50.0, highestR = 2.0 / 3.0;
    const auto limit = [](float value, double low, double high) {
        return std::clamp(static_cast<double>(value), low, high);
    };
    const double da = between(engine, limit(problem.window.lowDa, -widest, widest),
                              limit(problem.window.highDa, -widest, widest)) /
                      amideHertz;
    const double r = between(engine, limit(problem.window.lowR, 0.0, highestR),
                             limit(problem.window.highR, 0.0, highestR));
    const std::array<double, 3> values = {-da * (1.0 - 1.5 * r), -da * (1.0 + 1.5 * r), 2.0 * da};
    const auto rotation = randomRotation(engine);
    const auto element = [&](std::size_t i, std::size_t j) {
        double sum = 0.0;
        for (std::size_t k = 0; k < 3; ++k)
            sum += rotation[i][k] * values[k] * rotation[j][k];
        return sum;
    };
    return {element(2, 2), element(0, 0) - element(1, 1), element(0, 1), element(0, 2), element(1, 2)};
}

/// One climb from a start.
struct Climb {
    const SearchSpace &space;
    Tensors tensors = {};
    std::array<bool, maxMedia> isKnown = {};
    std::vector<double> costs;
    std::vector<RowRange> ranges;
    LinearAssignment solution;
    std::vector<int> rowOf;
};

/// What each coupling would be with the tensors at hand; without one it may be anything.
void setRanges(Climb &climb)
{
    const BoundTables &tables = climb.space.tables;
    climb.ranges.resize(tables.terms.size());
    for (std::size_t place = 0; place < tables.terms.size(); ++place) {
        const std::size_t medium = tables.mediumOf[place % tables.columns];
        double sum = 0.0;
        for (std::size_t k = 0; k < saupeCount; ++k)
            sum += tables.terms[place][k] * climb.tensors[medium][k];
        climb.ranges[place] = {sum, climb.isKnown[medium] ? 0.0 : infinity};
    }
}

/// The best assignment for the tensors at hand. Returns false if it is the one before, or there is none.
bool assign(Climb &climb)
{
    const SearchSpace &space = climb.space;
    const std::size_t rows = space.tables.peakCount;
    setRanges(climb);
    climb.costs.clear();
    for (std::size_t i = 0; i < space.peaks.size(); ++i)
        for (std::size_t row = 0; row < rows; ++row)
            climb.costs.push_back(space.mayTake(i, row) ? pairCost(space.tables.peaks[space.peaks[i]],
                                                                   &climb.ranges[row * space.tables.columns])
                                                        : infinity);
    if (!linearAssignment(climb.costs, static_cast<int>(space.peaks.size()), static_cast<int>(rows),
                          climb.solution) ||
        climb.rowOf == climb.solution.columnOf)
        return false;
    climb.rowOf = climb.solution.columnOf;
    return true;
}

/// The tensors that fit the assignment best.
void fitTensors(Climb &climb)
{
    const SearchSpace &space = climb.space;
    MediaEquations equations = space.fixed;
    for (std::size_t i = 0; i < space.peaks.size(); ++i)
        addPair(space.tables, space.peaks[i], climb.rowOf[i], equations);
    for (std::size_t medium = 0; medium < space.tables.media; ++medium) {
        const Ellipsoid ellipsoid = makeEllipsoid(space.tables, equations[medium], 1e-3);
        climb.isKnown[medium] = !ellipsoid.isOpen;
        if (!ellipsoid.isOpen)
            climb.tensors[medium] = ellipsoid.centre;
    }
}

/// How often the best candidate has been met again.
struct Hits {
    std::size_t enough, met = 0;
};

/// Whether to go on from step n: the first one is done even when the search is interrupted before it, for an
/// interrupted search is to have something to show.
bool goesOn(std::size_t n)
{
    return n == 0 || !InterruptGuard::isInterrupted();
}

void count(Hits &hits, const std::vector<int> &rowOf, bool isBetter, const Candidate &best)
{
    if (isBetter)
        hits.met = 0;
    else if (rowOf == best.rowOf)
        ++hits.met;
}

} // namespace

void guessCandidate(const SearchSpace &space, ScoreWork &work, Candidate &best)
{
    std::mt19937 engine(1);
    Climb climb = {.space = space, .costs = {}, .ranges = {}, .solution = {}, .rowOf = {}};
    // A start of many peaks takes long; the descent finds good candidates, too.
    const std::size_t peaks = space.peaks.size();
    const std::size_t wanted = fewestStarts + startsPerPeak * peaks;
    const std::size_t starts = std::min(wanted, std::max(fewestLongStarts, mostWork / (peaks * peaks + 1)));
    Hits hits = {.enough = 1 + peaks / peaksPerHit};
    for (std::size_t start = 0; start < starts && hits.met < hits.enough && goesOn(start); ++start) {
        climb.isKnown = {};
        const std::size_t first = start % space.tables.media; // the others follow from it
        climb.isKnown[first] = true;
        climb.tensors[first] = randomTensor(space.problem, engine);
        climb.rowOf.clear();
        for (std::size_t round = 0; round < mostRounds && goesOn(round) && assign(climb); ++round)
            fitTensors(climb);
        if (climb.rowOf.empty())
            return; // no assignment at all
        count(hits, climb.rowOf, takeBetter(space, climb.rowOf, work, best), best);
    }
}

void guessByTensors(Standing &standing)
{
    std::mt19937 engine(1);
    const TensorProblem &problem = standing.problem;
    PairCosts costs;
    AssignmentWork work;
    std::vector<double> prices(problem.stride, 0.0);
    std::vector<int> rowOf;
    // The search finds better ones soon.
    constexpr std::size_t enough = 2;
    Hits hits = {.enough = enough};
    for (std::size_t start = 0; start < fewestStarts && hits.met < hits.enough && goesOn(start); ++start) {
        TensorVector x = tensorOf(problem, randomTensor(standing.space.problem, engine));
        const Candidate before = standing.best;
        rowOf.clear();
        for (std::size_t round = 0; round < mostRounds && goesOn(round); ++round) {
            const TensorDirection direction = directionOf(x);
            pairCosts(problem, direction.u, direction.length, costs);
            solveAssignment(costs.costs, problem.size, prices, work);
            if (rowOf == work.columnOf)
                break;
            rowOf = work.columnOf;
            const TensorFit fit = fitTensor(problem, rowOf);
            consider(standing, fit, rowOf);
            if (!fit.isSolved)
                break;
            x = fit.x;
        }
        count(hits, rowOf, standing.best.rowOf != before.rowOf, standing.best);
    }
}

} // namespace trelm
