#include "assignment/tensor_problem.h"

#include "assignment/triangle.h"
#include "support/numerics/linear_assignment.h"
#include "support/numerics/numbers.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace trelm {
namespace {

constexpr double noExcess = 1e-9;     ///< weights that differ by rounding are equal
constexpr double likeWeights = 1e-5;  ///< of fit and score, as parts
constexpr double barrierSize = 100.0; ///< in units of the largest total

/// The largest weight of each column.
std::vector<double> largestWeights(const BoundTables &tables)
{
    std::vector<double> largest(tables.columns, 0.0);
    for (const auto &peak : tables.peaks)
        for (const PeakCoupling &coupling : peak)
            largest[coupling.column] = std::max(largest[coupling.column], coupling.w * coupling.di);
    return largest;
}

/// Q, lower triangle.
std::array<double, 15> sumOfSquares(const SearchSpace &space, const std::vector<double> &largest)
{
    NormalEquations all = space.fixed[0];
    for (std::size_t place = 0; place < space.tables.terms.size(); ++place)
        all.add(space.tables.terms[place], 0.0, largest[place % space.tables.columns], 1.0);
    return all.matrix;
}

void setTerms(const SearchSpace &space, const std::vector<double> &largest, TensorProblem &problem)
{
    problem.terms.assign(problem.columns * saupeCount * problem.stride, 0.0);
    for (std::size_t row = 0; row < problem.size; ++row)
        for (std::size_t column = 0; column < problem.columns; ++column) {
            const TensorVector f =
                forward(problem.factor, space.tables.terms[row * problem.columns + column]);
            for (std::size_t k = 0; k < saupeCount; ++k)
                problem.terms[(column * saupeCount + k) * problem.stride + row] = largest[column] * f[k];
        }
}

void setPeaks(const SearchSpace &space, const std::vector<double> &largest, TensorProblem &problem)
{
    problem.slope.assign(problem.size * problem.columns, 0.0);
    problem.excess.assign(problem.size * problem.columns, 0.0);
    for (std::size_t peak = 0; peak < problem.size; ++peak) {
        for (std::size_t column = 0; column < problem.columns; ++column)
            problem.excess[problem.cell(peak, column)] = largest[column] > 0.0 ? 1.0 : 0.0;
        for (const PeakCoupling &coupling : space.tables.peaks[peak]) {
            const std::size_t cell = problem.cell(peak, coupling.column);
            problem.data += coupling.w * coupling.w * coupling.d * coupling.d;
            const double most = largest[coupling.column];
            const double part = most > 0.0 ? coupling.w * coupling.di / most : 0.0;
            problem.slope[cell] = part * coupling.w * coupling.d;
            const double excess = 1.0 - part * part;
            problem.excess[cell] = most > 0.0 && excess > noExcess ? excess : 0.0;
        }
        const auto own = std::span(problem.excess).subspan(problem.cell(peak, 0), problem.columns);
        if (std::ranges::any_of(own, [](double excess) { return excess > 0.0; }))
            problem.partial.push_back(static_cast<int>(peak));
    }
}

/// q(u) has no more than the largest excesses on the longest terms of each column.
double shareLimit(const TensorProblem &problem)
{
    double limit = 0.0;
    for (std::size_t column = 0; column < problem.columns; ++column) {
        std::vector<double> excess, square(problem.size, 0.0);
        for (std::size_t peak = 0; peak < problem.size; ++peak)
            excess.push_back(problem.excess[problem.cell(peak, column)]);
        for (std::size_t k = 0; k < saupeCount; ++k)
            for (std::size_t row = 0; row < problem.size; ++row) {
                const double f = problem.termsOf(column, k)[row];
                square[row] += f * f;
            }
        std::ranges::sort(excess);
        std::ranges::sort(square);
        for (std::size_t i = 0; i < problem.size; ++i)
            limit += excess[i] * square[i];
    }
    return limit;
}

/// Whether fit and score weigh all couplings alike, but for a common factor.
bool weighsAlike(const AssignmentProblem &problem)
{
    double least = infinity, most = 0.0;
    const auto compare = [&](float w, float sigma) {
        const double ratio = std::fabs(number(w) * (sigma != 0.0f ? number(sigma) : 1.0));
        least = std::min(least, ratio);
        most = std::max(most, ratio);
    };
    for (const FixedCoupling &coupling : problem.fixed)
        compare(coupling.w, coupling.sigma);
    for (std::size_t i = 0; i < problem.dcMat.size(); ++i)
        if (problem.dcMat[i] != noPeakCoupling)
            compare(problem.wMat[i], problem.sigMat[i]);
    return least > 0.0 && most <= least * (1.0 + likeWeights);
}

void setBarriers(const SearchSpace &space, TensorProblem &problem)
{
    std::vector<double> barrier(problem.size * problem.stride, 0.0);
    for (std::size_t peak = 0; peak < problem.size; ++peak)
        for (std::size_t row = 0; row < problem.size; ++row)
            if (!space.mayTake(peak, row))
                barrier[peak * problem.stride + row] = barrierOf(problem);
    if (std::ranges::any_of(barrier, [](double cost) { return cost > 0.0; }))
        problem.barrier = std::move(barrier);
}

/// One row of costs less columns of slopes, each times what the column says of the residues.
template <std::size_t Columns>
[[gnu::always_inline]] inline void subtractColumns(const double *slope, const double *__restrict projections,
                                                   std::size_t stride, double *__restrict cost)
{
    for (std::size_t r = 0; r < stride; ++r) {
        double sum = cost[r];
        for (std::size_t c = 0; c < Columns; ++c)
            sum -= slope[c] * projections[c * stride + r];
        cost[r] = sum;
    }
}

// The clones differ in the length of the vectors alone: all give the same bits.
[[gnu::target_clones("avx512f", "avx2", "default")]] void
subtractSlopes(const double *slope, std::size_t columns, const double *__restrict projections,
               std::size_t stride, double *__restrict cost)
{
    constexpr std::size_t most = 4;
    for (; columns >= most; columns -= most, slope += most, projections += most * stride)
        subtractColumns<most>(slope, projections, stride, cost);
    switch (columns) {
    case 3:
        return subtractColumns<3>(slope, projections, stride, cost);
    case 2:
        return subtractColumns<2>(slope, projections, stride, cost);
    case 1:
        return subtractColumns<1>(slope, projections, stride, cost);
    default:
        return;
    }
}

[[gnu::target_clones("avx512f", "avx2", "default")]] void subtractSquares(double factor,
                                                                          const double *__restrict projection,
                                                                          std::size_t stride,
                                                                          double *__restrict cost)
{
    for (std::size_t r = 0; r < stride; ++r)
        cost[r] -= factor * (projection[r] * projection[r]);
}

} // namespace

TensorDirection directionOf(const TensorVector &x)
{
    TensorDirection direction = {x, std::sqrt(dot(x, x))};
    for (double &u : direction.u)
        u /= direction.length;
    return direction;
}

std::optional<TensorProblem> makeTensorProblem(const SearchSpace &space)
{
    const BoundTables &tables = space.tables;
    if (tables.media != 1 || space.peaks.size() != tables.peakCount)
        return std::nullopt;
    TensorProblem problem;
    problem.size = tables.peakCount;
    problem.stride = assignmentStride(problem.size);
    problem.columns = tables.columns;
    const std::vector<double> largest = largestWeights(tables);
    if (!factorise(sumOfSquares(space, largest), problem.factor))
        return std::nullopt;
    setTerms(space, largest, problem);
    problem.data = space.fixed[0].square;
    setPeaks(space, largest, problem);
    problem.fixed = forward(problem.factor, space.fixed[0].rhs);
    if (!std::isfinite(problem.data))
        return std::nullopt;
    problem.largestShare = shareLimit(problem);
    problem.isFitted = weighsAlike(space.problem);
    setBarriers(space, problem);
    return problem;
}

void projectTerms(const TensorProblem &problem, const TensorVector &v, std::vector<double> &projections)
{
    projections.resize(problem.columns * problem.stride);
    for (std::size_t column = 0; column < problem.columns; ++column) {
        const double *const f = &problem.terms[column * saupeCount * problem.stride];
        double *const projection = &projections[column * problem.stride];
        for (std::size_t r = 0; r < problem.stride; ++r)
            projection[r] = f[r] * v[0] + f[problem.stride + r] * v[1] + f[2 * problem.stride + r] * v[2] +
                            f[3 * problem.stride + r] * v[3] + f[4 * problem.stride + r] * v[4];
    }
}

void pairCosts(const TensorProblem &problem, const TensorVector &v, double tau, PairCosts &work)
{
    projectTerms(problem, v, work.projections);
    const std::size_t stride = problem.stride;
    if (problem.barrier.empty())
        work.costs.assign(problem.size * stride, 0.0);
    else
        work.costs = problem.barrier;
    for (std::size_t peak = 0; peak < problem.size; ++peak)
        subtractSlopes(&problem.slope[problem.cell(peak, 0)], problem.columns, work.projections.data(),
                       stride, &work.costs[peak * stride]);
    for (const int peak : problem.partial)
        for (std::size_t column = 0; column < problem.columns; ++column)
            if (const double excess = problem.excess[problem.cell(peak, column)]; excess > 0.0)
                subtractSquares(0.5 * tau * excess, &work.projections[column * stride], stride,
                                &work.costs[peak * stride]);
    for (std::size_t peak = 0; peak < problem.size; ++peak)
        std::fill(&work.costs[peak * stride] + problem.size, &work.costs[peak * stride] + stride, noCost);
}

double barrierOf(const TensorProblem &problem)
{
    return barrierSize * std::sqrt(problem.data);
}

TensorFit fitTensor(const TensorProblem &problem, std::span<const int> rowOf)
{
    TensorFit fit = {.sum = problem.fixed};
    for (std::size_t peak = 0; peak < problem.size; ++peak)
        for (std::size_t column = 0; column < problem.columns; ++column) {
            const std::size_t cell = problem.cell(peak, column), stride = problem.stride;
            const double *const f =
                &problem.terms[column * saupeCount * stride + static_cast<std::size_t>(rowOf[peak])];
            for (std::size_t k = 0; k < saupeCount; ++k)
                fit.sum[k] += problem.slope[cell] * f[k * stride];
            for (std::size_t i = 0; problem.excess[cell] > 0.0 && i < saupeCount; ++i)
                for (std::size_t j = 0; j <= i; ++j)
                    fit.share[packed(i, j)] += problem.excess[cell] * f[i * stride] * f[j * stride];
        }
    Triangle matrix, factor;
    for (std::size_t i = 0; i < saupeCount; ++i)
        for (std::size_t j = 0; j <= i; ++j)
            matrix[packed(i, j)] = (i == j ? 1.0 : 0.0) - fit.share[packed(i, j)];
    fit.isSolved = factorise(matrix, factor);
    if (!fit.isSolved)
        return fit;
    const TensorVector half = forward(factor, fit.sum);
    fit.x = backward(factor, half);
    fit.score = problem.data - dot(half, half);
    return fit;
}

TensorVector tensorOf(const TensorProblem &problem, const Saupe &saupe)
{
    TensorVector x = {};
    for (std::size_t i = 0; i < saupeCount; ++i)
        for (std::size_t j = 0; j <= i; ++j)
            x[j] += problem.factor[packed(i, j)] * saupe[i];
    return x;
}

Saupe saupeOf(const TensorProblem &problem, const TensorVector &x)
{
    return backward(problem.factor, x);
}

} // namespace trelm
