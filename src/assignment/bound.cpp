#include "assignment/bound.h"

#include "assignment/triangle.h"
#include "couplings/design.h"
#include "support/numerics/numbers.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace trelm {
namespace {

constexpr SaupeTerms sizeWeights = {1.5, 0.5, 2.0, 2.0, 2.0}; ///< of the squares in a tensor's size

/// The terms as the fit has them, single precision included.
std::vector<SaupeTerms> termsOf(std::span<const float> x, std::span<const float> y, std::span<const float> z)
{
    const std::vector<float> zero(x.size());
    const FitVectors vectors = {zero, zero, zero, x, y, z, {}, {}, {}};
    std::vector<SaupeTerms> terms(x.size());
    for (std::size_t k = 0; k < terms.size(); ++k)
        std::ranges::transform(geometryTerms(vectors, k), terms[k].begin(), number);
    return terms;
}

/// How far a score's root can be from that of exact sums. A calculated coupling is the product of a constant
/// with five terms in single precision. The terms' sizes sum up to less than 6 |Da|, in units of the tensor:
/// |t| is at most 1.5 and |s| at most 4 |Da|. Five products, their sum and the product with the constant make
/// less than a dozen roundings of 2^-24 each; differences and squares are taken in double precision.
double roundingOf(const AssignmentProblem &problem, double largestDa)
{
    constexpr double roundings = 12.0 / 16777216.0;
    double square = 0.0;
    const auto add = [&](float di, float w) {
        if (di == 0.0f || w == 0.0f)
            return;
        const double error = std::fabs(number(di)) * 6.0 * largestDa * roundings * number(w);
        square += error * error;
    };
    for (const FixedCoupling &coupling : problem.fixed)
        add(coupling.di, coupling.w);
    for (std::size_t i = 0; i < problem.diValMat.size(); ++i)
        add(problem.diValMat[i], problem.wMat[i]);
    return std::sqrt(square);
}

} // namespace

BoundTables makeBoundTables(const AssignmentProblem &problem)
{
    BoundTables tables;
    tables.peakCount = problem.peakCount;
    tables.columns = problem.colId;
    tables.media = problem.nLcType;
    for (std::size_t medium = 0; medium < problem.nLcType; ++medium)
        tables.mediumOf.insert(tables.mediumOf.end(), problem.colIdList[medium], medium);
    tables.terms = termsOf(problem.xMat, problem.yMat, problem.zMat);
    tables.peaks.resize(problem.peakCount);
    for (std::size_t peak = 0; peak < problem.peakCount; ++peak)
        for (std::size_t column = 0; column < problem.colId; ++column) {
            const std::size_t place = problem.at(peak, column);
            if (problem.dcMat[place] != noPeakCoupling)
                tables.peaks[peak].push_back({column, number(problem.dcMat[place]),
                                              std::fabs(number(problem.wMat[place])),
                                              std::fabs(number(problem.diValMat[place]))});
        }
    // Da is half the largest eigenvalue; the squares of all three sum up to twice its square at most.
    const double largestDa =
        std::max(std::fabs(number(problem.window.lowDa)), std::fabs(number(problem.window.highDa))) /
        amideHertz;
    tables.tensorSize = 8.0 * largestDa * largestDa * 1.001;
    tables.rounding = roundingOf(problem, largestDa);
    return tables;
}

double exactLimit(const BoundTables &tables, float score)
{
    // The sum of each medium is rounded to single precision, and so is that of the media.
    const double root = (std::sqrt(number(score)) + tables.rounding) * (1.0 + 1e-6);
    const double limit = root * root;
    return std::isfinite(limit) ? limit : std::numeric_limits<double>::max(); // an open window: no bound
}

void NormalEquations::add(const SaupeTerms &terms, double d, double w, double di)
{
    const double weight = w * w;
    for (std::size_t i = 0; i < saupeCount; ++i) {
        const double scaled = weight * di * terms[i];
        for (std::size_t j = 0; j <= i; ++j)
            matrix[packed(i, j)] += scaled * di * terms[j];
        rhs[i] += scaled * d;
    }
    square += weight * d * d;
    ++count;
}

MediaEquations fixedEquations(const AssignmentProblem &problem)
{
    std::vector<float> x, y, z;
    for (const FixedCoupling &coupling : problem.fixed) {
        x.push_back(coupling.x);
        y.push_back(coupling.y);
        z.push_back(coupling.z);
    }
    const std::vector<SaupeTerms> terms = termsOf(x, y, z);
    MediaEquations equations;
    std::size_t k = 0;
    for (std::size_t medium = 0; medium < problem.nLcType; ++medium)
        for (std::size_t i = 0; i < problem.nDTypList[medium]; ++i, ++k) {
            const FixedCoupling &coupling = problem.fixed[k];
            equations[medium].add(terms[k], number(coupling.d), number(coupling.w),
                                  std::fabs(number(coupling.di)));
        }
    return equations;
}

void addPair(const BoundTables &tables, std::size_t peak, std::size_t row, MediaEquations &equations)
{
    const std::size_t first = row * tables.columns;
    for (const PeakCoupling &coupling : tables.peaks[peak])
        equations[tables.mediumOf[coupling.column]].add(tables.terms[first + coupling.column], coupling.d,
                                                        coupling.w, coupling.di);
}

Ellipsoid makeEllipsoid(const BoundTables &tables, const NormalEquations &equations, double limit)
{
    Ellipsoid ellipsoid;
    // Where the pairs determine the tensor its size hardly counts; where they do not it has to.
    constexpr int determined = 8;
    ellipsoid.given = equations.count < determined ? limit : 1e-6 * limit;
    std::array<double, 15> matrix = equations.matrix;
    if (std::isfinite(tables.tensorSize) && tables.tensorSize > 0.0)
        for (std::size_t i = 0; i < saupeCount; ++i)
            matrix[packed(i, i)] += ellipsoid.given / tables.tensorSize * sizeWeights[i];
    else
        ellipsoid.given = 0.0;
    if (!factorise(matrix, ellipsoid.factor))
        return ellipsoid;
    ellipsoid.isOpen = false;
    const SaupeTerms half = forward(ellipsoid.factor, equations.rhs);
    ellipsoid.centre = backward(ellipsoid.factor, half);
    // Less what rounding can have added: of the difference, and of the solution, which is off by a few units
    // in the last place of the matrix times the square of the centre.
    double trace = 0.0;
    for (std::size_t i = 0; i < saupeCount; ++i)
        trace += matrix[packed(i, i)];
    const double slip =
        64.0 * std::numeric_limits<double>::epsilon() * trace * dot(ellipsoid.centre, ellipsoid.centre);
    ellipsoid.bottom = equations.square - dot(half, half) - 1e-9 * equations.square - slip;
    ellipsoid.least = std::max(0.0, ellipsoid.bottom - ellipsoid.given);
    return ellipsoid;
}

void rowRanges(const BoundTables &tables, std::span<const Ellipsoid> ellipsoids,
               const std::array<double, maxMedia> &slack, std::span<const int> rows,
               std::vector<RowRange> &ranges)
{
    const std::size_t columns = tables.columns;
    ranges.resize(rows.size() * columns);
    std::array<double, maxMedia> radius = {};
    for (std::size_t medium = 0; medium < ellipsoids.size(); ++medium)
        radius[medium] = std::sqrt(std::max(0.0, slack[medium])) * (1.0 + 1e-9);
    std::size_t place = 0;
    for (const int row : rows)
        for (std::size_t column = 0; column < columns; ++column, ++place) {
            const std::size_t medium = tables.mediumOf[column];
            const Ellipsoid &ellipsoid = ellipsoids[medium];
            const SaupeTerms &terms = tables.terms[row * columns + column];
            if (ellipsoid.isOpen) {
                ranges[place] = {0.0, infinity};
                continue;
            }
            const SaupeTerms half = forward(ellipsoid.factor, terms);
            ranges[place] = {dot(terms, ellipsoid.centre), radius[medium] * std::sqrt(dot(half, half))};
        }
}

double pairCost(std::span<const PeakCoupling> peak, const RowRange *row)
{
    double cost = 0.0;
    for (const PeakCoupling &coupling : peak) {
        const RowRange &range = row[coupling.column];
        const double reach = coupling.di == 0.0 ? 0.0 : coupling.di * range.halfWidth;
        const double miss = coupling.w * (std::fabs(coupling.d - coupling.di * range.centre) - reach);
        if (miss > 0.0)
            cost += miss * miss;
    }
    return cost;
}

} // namespace trelm
