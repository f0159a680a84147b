#ifndef TRELM_LEVMAR_SCALING

#include "support/numerics/bounded_fit.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <span>
#include <vector>

namespace trelm {

namespace {

using Vector = std::vector<double>;

/// The problem, with finite bounds.
struct Problem {
    const Residuals &wanted;
    std::vector<float> lower, upper;
};

/// The state of the search.
struct Search {
    std::vector<float> p;    ///< the best parameters so far
    Vector residuals;        ///< at p
    double half = 0.0;       ///< half the sum of their squares
    double largest = 0.0;    ///< the largest norm of the residuals seen: what rounding is relative to
    Vector jacobian;         ///< n rows of m
    Vector curvature;        ///< J^T J, m by m
    Vector gradient;         ///< J^T r
    Vector scale;            ///< the largest diagonal of J^T J so far, per parameter
    std::vector<float> step; ///< of the finite differences, per parameter
    double mu = 1.0;         ///< damping, relative to scale
    double growth = 2.0;     ///< what mu is multiplied with after the next failure
};

double dot(const Vector &a, const Vector &b)
{
    double sum = 0.0;
    for (std::size_t i = 0; i < a.size(); ++i)
        sum += a[i] * b[i];
    return sum;
}

void evaluate(const Problem &problem, const std::vector<float> &p, Vector &residuals)
{
    std::vector<float> values(problem.wanted.count, 0.0f);
    problem.wanted.at(p, values);
    residuals.assign(values.begin(), values.end());
}

/// The change of the residuals from p - h to p + h in parameter j, cut at the bounds. Returns the distance
/// between the two points as single precision has it, 0 if they are the same.
double change(const Problem &problem, const Search &search, std::size_t j, float h, Vector &difference)
{
    std::vector<float> below = search.p, above = search.p;
    below[j] = std::max(below[j] - h, problem.lower[j]);
    above[j] = std::min(above[j] + h, problem.upper[j]);
    const double distance = double{above[j]} - below[j];
    if (!(distance > 0.0))
        return 0.0;
    Vector low;
    evaluate(problem, above, difference);
    evaluate(problem, below, low);
    for (std::size_t i = 0; i < low.size(); ++i)
        difference[i] -= low[i];
    return distance;
}

/// Column j of the Jacobian by central differences. Single-precision residuals carry rounding of 1e-7 of
/// their size: a step that changes them by less than 1e-3 is made longer, up to a hundredth of the range.
void differentiate(const Problem &problem, Search &search, std::size_t j, Vector &difference)
{
    constexpr float relativeStep = 1.0e-3f, leastStep = 1.0e-6f;
    constexpr double leastChange = 1.0e-3;
    constexpr int maxLonger = 5;
    const float first = std::max(relativeStep * std::fabs(search.p[j]), leastStep);
    const float longest = std::max(first, 0.01f * (problem.upper[j] - problem.lower[j]));
    float &h = search.step[j];
    h = std::min(std::max(h, first), longest);
    double distance = change(problem, search, j, h, difference);
    for (int i = 0; i < maxLonger && distance > 0.0 && h < longest; ++i) {
        const double norm = std::sqrt(dot(difference, difference));
        if (!(norm < leastChange * search.largest))
            break;
        h = std::min(10.0f * h, longest);
        distance = change(problem, search, j, h, difference);
    }
    const std::size_t m = problem.lower.size();
    const bool usable = distance > 0.0 && std::isfinite(dot(difference, difference));
    for (std::size_t i = 0; i < search.residuals.size(); ++i)
        search.jacobian[i * m + j] = usable ? difference[i] / distance : 0.0;
}

/// Jacobian, gradient and curvature at the present parameters.
void linearise(const Problem &problem, Search &search)
{
    const std::size_t m = problem.lower.size();
    Vector difference;
    for (std::size_t j = 0; j < m; ++j)
        differentiate(problem, search, j, difference);
    std::ranges::fill(search.curvature, 0.0);
    std::ranges::fill(search.gradient, 0.0);
    for (std::size_t i = 0; i < search.residuals.size(); ++i) {
        const double *row = &search.jacobian[i * m];
        for (std::size_t j = 0; j < m; ++j) {
            search.gradient[j] += row[j] * search.residuals[i];
            for (std::size_t k = 0; k < m; ++k)
                search.curvature[j * m + k] += row[j] * row[k];
        }
    }
    for (std::size_t j = 0; j < m; ++j)
        search.scale[j] = std::max(search.scale[j], search.curvature[j * m + j]);
}

/// True if parameter j can move: it has an effect, and does not stand at a bound with the descent behind it.
bool isFree(const Problem &problem, const Search &search, std::size_t j)
{
    if (search.curvature[j * search.p.size() + j] == 0.0)
        return false;
    return !(search.p[j] <= problem.lower[j] && search.gradient[j] > 0.0) &&
           !(search.p[j] >= problem.upper[j] && search.gradient[j] < 0.0);
}

/// Solves the symmetric positive definite system a x = b in place (Cholesky), the answer in b. Returns false
/// if it is not positive definite.
bool solve(Vector &a, Vector &b)
{
    const std::size_t n = b.size();
    for (std::size_t j = 0; j < n; ++j) {
        for (std::size_t i = j; i < n; ++i) {
            double sum = a[i * n + j];
            for (std::size_t k = 0; k < j; ++k)
                sum -= a[i * n + k] * a[j * n + k];
            if (i == j && !(sum > 0.0))
                return false;
            a[i * n + j] = i == j ? std::sqrt(sum) : sum / a[j * n + j];
        }
        for (std::size_t k = 0; k < j; ++k)
            b[j] -= a[j * n + k] * b[k];
        b[j] /= a[j * n + j];
    }
    for (std::size_t j = n; j-- > 0;) {
        for (std::size_t k = j + 1; k < n; ++k)
            b[j] -= a[k * n + j] * b[k];
        b[j] /= a[j * n + j];
    }
    return true;
}

/// The damped step of the moving parameters, given the changes of those that stand still. The unknowns are
/// scaled by their curvature, so that a parameter of size 1e-3 counts as much as an angle.
bool dampedStep(const Search &search, const std::vector<std::size_t> &moving, Vector &delta)
{
    const std::size_t m = search.p.size(), n = moving.size();
    Vector a(n * n), b(n);
    for (std::size_t r = 0; r < n; ++r) {
        const std::size_t j = moving[r];
        double force = -search.gradient[j];
        for (std::size_t k = 0; k < m; ++k)
            if (std::ranges::find(moving, k) == moving.end())
                force -= search.curvature[j * m + k] * delta[k];
        b[r] = force / std::sqrt(search.scale[j]);
        for (std::size_t c = 0; c < n; ++c)
            a[r * n + c] =
                search.curvature[j * m + moving[c]] / std::sqrt(search.scale[j] * search.scale[moving[c]]);
        a[r * n + r] += search.mu;
    }
    if (!solve(a, b))
        return false;
    for (std::size_t r = 0; r < n; ++r)
        delta[moving[r]] = b[r] / std::sqrt(search.scale[moving[r]]);
    return true;
}

/// Where parameter j goes when its step leads to `wanted`. On the way to a bound it stops half-way, until it
/// is near: at a bound other parameters can lose their effect (an angle, where the rhombicity is 0), and a
/// search that was thrown there by an early step stays. With this and the cautious start, 54 of 300 random
/// tensors, not 135, ended in another minimum, for the same number of calls.
double withinBounds(const Problem &problem, const Search &search, std::size_t j, double wanted)
{
    constexpr double near = 1.0e-3; // of the range
    const double lower = problem.lower[j], upper = problem.upper[j], from = search.p[j];
    const double kept = std::clamp(wanted, lower, upper);
    const bool halfWay = kept != wanted && std::fabs(kept - from) > near * (upper - lower);
    return halfWay ? from + 0.5 * (kept - from) : kept;
}

/// A trial point within the bounds. A parameter whose step leads out of them stops at their side, and the
/// others are solved for again with that known. Returns false if the equations have no solution.
bool propose(const Problem &problem, const Search &search, std::vector<float> &trial)
{
    const std::size_t m = search.p.size();
    std::vector<std::size_t> moving;
    for (std::size_t j = 0; j < m; ++j)
        if (isFree(problem, search, j))
            moving.push_back(j);
    Vector delta(m, 0.0);
    trial = search.p;
    while (!moving.empty()) {
        if (!dampedStep(search, moving, delta))
            return false;
        std::vector<std::size_t> still;
        for (std::size_t j : moving) {
            const double wanted = search.p[j] + delta[j];
            const double kept = withinBounds(problem, search, j, wanted);
            trial[j] = static_cast<float>(kept);
            if (kept == wanted)
                still.push_back(j);
            else
                delta[j] = kept - search.p[j];
        }
        if (still.size() == moving.size())
            break;
        moving = still;
    }
    return true;
}

/// By how much the linear model says that the trial point lowers half the sum of squares.
double predictedFall(const Search &search, const std::vector<float> &trial)
{
    const std::size_t m = trial.size();
    double fall = 0.0;
    for (std::size_t j = 0; j < m; ++j) {
        const double dj = double{trial[j]} - search.p[j];
        double force = search.gradient[j];
        for (std::size_t k = 0; k < m; ++k)
            force += 0.5 * search.curvature[j * m + k] * (double{trial[k]} - search.p[k]);
        fall -= dj * force;
    }
    return fall;
}

void raiseDamping(Search &search)
{
    search.mu *= search.growth;
    search.growth *= 2.0;
}

/// Moves to the trial point, and sets the damping by how well the linear model foretold the fall.
void accept(Search &search, const std::vector<float> &trial, Vector &residuals, double half, double predicted)
{
    const double ratio = (search.half - half) / predicted;
    search.mu *= std::max(1.0 / 3.0, 1.0 - std::pow(2.0 * std::min(ratio, 1.0) - 1.0, 3));
    search.growth = 2.0;
    search.p = trial;
    search.residuals.swap(residuals);
    search.half = half;
}

/// Looks for a better point along rising damping. Returns the fall of half the sum of squares; 0 if there is
/// none that single precision can show.
double improve(const Problem &problem, Search &search)
{
    constexpr double noFall = 1.0e-10; // relative: rounding of the residuals hides it
    constexpr double maxDamping = 1.0e30;
    std::vector<float> trial;
    Vector residuals;
    while (search.mu < maxDamping) {
        if (propose(problem, search, trial)) {
            if (trial == search.p)
                return 0.0;
            const double predicted = predictedFall(search, trial);
            if (predicted > 0.0 && predicted <= noFall * search.half)
                return 0.0;
            evaluate(problem, trial, residuals);
            const double half = 0.5 * dot(residuals, residuals);
            const double fall = search.half - half;
            if (fall > 0.0 && predicted > 0.0) {
                accept(search, trial, residuals, half, predicted);
                return fall;
            }
        }
        raiseDamping(search);
    }
    return 0.0;
}

/// Takes the bounds, infinite ones as the largest numbers. Returns false if they stand the wrong way round.
bool takeBounds(Problem &problem, std::span<const float> lower, std::span<const float> upper)
{
    constexpr float limit = std::numeric_limits<float>::max();
    for (std::size_t j = 0; j < lower.size(); ++j) {
        problem.lower.push_back(std::max(lower[j], -limit));
        problem.upper.push_back(std::min(upper[j], limit));
        if (!(problem.lower.back() <= problem.upper.back()))
            return false;
    }
    return true;
}

/// The search at its start, which is moved into the bounds. Returns false if it has no finite residuals.
bool beginSearch(const Problem &problem, std::span<const float> p, Search &search)
{
    const std::size_t m = problem.lower.size();
    for (std::size_t j = 0; j < m; ++j)
        search.p.push_back(std::clamp(p[j], problem.lower[j], problem.upper[j]));
    search.jacobian.assign(m * problem.wanted.count, 0.0);
    search.curvature.assign(m * m, 0.0);
    search.gradient.assign(m, 0.0);
    search.scale.assign(m, 0.0);
    search.step.assign(m, 0.0f);
    evaluate(problem, search.p, search.residuals);
    search.half = 0.5 * dot(search.residuals, search.residuals);
    search.largest = std::sqrt(2.0 * search.half);
    return std::isfinite(search.half);
}

} // namespace

void fitWithinBounds(const Residuals &residuals, std::span<float> p, std::span<const float> lower,
                     std::span<const float> upper, int itMax, Messages &messages)
{
    constexpr double smallFall = 1.0e-7; // relative
    constexpr int maxSmallFalls = 3;     // so many in a row are the end
    if (residuals.count < p.size())
        return messages.err("Error: %zu residuals are too few to fit %zu parameters.\n", residuals.count,
                            p.size());
    Problem problem{residuals, {}, {}};
    Search search;
    if (!takeBounds(problem, lower, upper) || !beginSearch(problem, p, search))
        return messages.err("Error: no fit, bounds or residuals at its start are no finite numbers.\n");
    for (int iteration = 0, smallFalls = 0;
         iteration < itMax && smallFalls < maxSmallFalls && search.half > 0.0; ++iteration) {
        linearise(problem, search);
        const double before = search.half;
        const double fall = improve(problem, search);
        if (fall == 0.0)
            break;
        smallFalls = fall < smallFall * before ? smallFalls + 1 : 0;
    }
    std::ranges::copy(search.p, p.begin());
}

} // namespace trelm

#endif
