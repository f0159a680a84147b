#include "support/numerics/least_squares.h"

#include "support/numerics/matrix_view.h"
#include "support/text/text.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

namespace trelm {

namespace {

struct Place {
    int row = -1, column = -1;
};

/// The largest value in rows and columns that were no pivot yet; none if no value there is a number.
Place findPivot(MatrixView a, const std::vector<char> &used)
{
    Place best;
    float big = -1.0f;
    for (int i = 0; i < a.columns; ++i)
        for (int j = 0; j < a.columns; ++j)
            if (used[i] == 0 && used[j] == 0 && std::fabs(a(i, j)) > big) {
                big = std::fabs(a(i, j));
                best = {i, j};
            }
    return best;
}

/// row -= factor * pivotRow
void subtract(std::span<float> row, std::span<const float> pivotRow, float factor)
{
    for (std::size_t k = 0; k < row.size(); ++k)
        row[k] -= pivotRow[k] * factor;
}

/// Clears the column of the pivot that stands at (c, c) in all other rows; the inverse grows in its place.
void eliminate(MatrixView a, MatrixView b, int c)
{
    const float inverse = 1.0f / a(c, c);
    a(c, c) = 1.0f;
    for (float &value : a.row(c))
        value *= inverse;
    for (float &value : b.row(c))
        value *= inverse;
    for (int i = 0; i < a.columns; ++i) {
        if (i == c)
            continue;
        const float factor = std::exchange(a(i, c), 0.0f);
        subtract(a.row(i), a.row(c), factor);
        subtract(b.row(i), b.row(c), factor);
    }
}

int fittedCount(const ModelFit &model)
{
    return static_cast<int>(std::ranges::count_if(model.ia, [](int flag) { return flag != 0; }));
}

/// Sizes the state for a fit and takes chi-square at the start.
void begin(const ModelFit &model, std::span<const float> a, MarquardtState &state)
{
    const auto mfit = static_cast<std::size_t>(fittedCount(model));
    state.covar.assign(a.size() * a.size(), 0.0f);
    state.alpha.assign(mfit * mfit, 0.0f);
    state.beta.assign(mfit, 0.0f);
    state.alamda = 0.001f;
    state.chisq = mrqcof(model, a, state.alpha, state.beta);
}

/// Takes the covariance out of the inverse of the curvature.
void finish(const ModelFit &model, int ma, int mfit, MarquardtState &state)
{
    const MatrixView inverse{state.trialA.data(), mfit, mfit}, covar{state.covar.data(), ma, ma};
    std::ranges::fill(state.covar, 0.0f);
    for (int i = 0; i < mfit; ++i)
        for (int j = 0; j < mfit; ++j)
            covar(i, j) = inverse(i, j);
    covsrt(state.covar, ma, model.ia, mfit);
}

/// Solves the damped equations: the step in trialB, the inverse in trialA.
Status solveStep(MarquardtState &state, int mfit, Messages &messages)
{
    state.trialA = state.alpha;
    state.trialB = state.beta;
    const MatrixView damped{state.trialA.data(), mfit, mfit};
    for (int j = 0; j < mfit; ++j)
        damped(j, j) *= 1.0f + state.alamda;
    return gaussj(state.trialA, mfit, state.trialB, 1, messages);
}

} // namespace

Status gaussj(std::span<float> a, int n, std::span<float> b, int m, Messages &messages)
{
    const MatrixView matrix{a.data(), n, n}, sides{b.data(), n, m};
    std::vector<Place> pivots;
    std::vector<char> used(static_cast<std::size_t>(n), 0);
    for (int step = 0; step < n; ++step) {
        const Place pivot = findPivot(matrix, used);
        if (pivot.row < 0 || !std::isfinite(matrix(pivot.row, pivot.column)))
            return nrerror("gaussj: Singular Matrix-1", messages);
        if (matrix(pivot.row, pivot.column) == 0.0f)
            return nrerror("gaussj: Singular Matrix-2", messages);
        used[pivot.column] = 1;
        if (pivot.row != pivot.column) {
            std::ranges::swap_ranges(matrix.row(pivot.row), matrix.row(pivot.column));
            std::ranges::swap_ranges(sides.row(pivot.row), sides.row(pivot.column));
        }
        pivots.push_back(pivot);
        eliminate(matrix, sides, pivot.column);
    }
    // Rows were exchanged on the way: the columns of the inverse go back in the opposite order.
    for (int step = n - 1; step >= 0; --step)
        for (int k = 0; k < n; ++k)
            std::swap(matrix(k, pivots[step].row), matrix(k, pivots[step].column));
    return Status::ok;
}

void covsrt(std::span<float> covar, int ma, std::span<const int> ia, int mfit)
{
    const MatrixView matrix{covar.data(), ma, ma};
    for (int i = mfit; i < ma; ++i)
        for (int j = 0; j <= i; ++j)
            matrix(i, j) = matrix(j, i) = 0.0f;
    int from = mfit - 1;
    for (int to = ma - 1; to >= 0; --to) {
        if (ia[to] == 0)
            continue;
        for (int i = 0; i < ma; ++i)
            std::swap(matrix(i, from), matrix(i, to));
        for (int i = 0; i < ma; ++i)
            std::swap(matrix(from, i), matrix(to, i));
        --from;
    }
}

float mrqcof(const ModelFit &model, std::span<const float> a, std::span<float> alpha, std::span<float> beta)
{
    const auto mfit = static_cast<int>(beta.size());
    const MatrixView curvature{alpha.data(), mfit, mfit};
    std::vector<float> dyda(a.size(), 0.0f), fitted;
    std::ranges::fill(alpha, 0.0f);
    std::ranges::fill(beta, 0.0f);
    float chisq = 0.0f;
    for (std::size_t i = 0; i < model.x.size(); ++i) {
        float ymod = 0.0f;
        model.funcs(model.x[i], a, ymod, dyda);
        fitted.clear();
        for (std::size_t l = 0; l < dyda.size(); ++l)
            if (model.ia[l] != 0)
                fitted.push_back(dyda[l]);
        const float sig2i = 1.0f / (model.sig[i] * model.sig[i]);
        const float dy = model.y[i] - ymod;
        for (int j = 0; j < curvature.columns; ++j) {
            const float weighted = fitted[j] * sig2i;
            for (int k = 0; k < curvature.columns; ++k)
                curvature(j, k) += weighted * fitted[k];
            beta[j] += dy * weighted;
        }
        chisq += dy * dy * sig2i;
    }
    return chisq;
}

Status mrqmin(const ModelFit &model, std::span<float> a, MarquardtState &state, Messages &messages)
{
    constexpr float leastDamping = 1.0e-20f; // 0 would mean the last call
    if (state.alamda < 0.0f)
        begin(model, a, state);
    const auto mfit = static_cast<int>(state.beta.size());
    if (solveStep(state, mfit, messages) != Status::ok)
        return Status::failed;
    if (state.alamda == 0.0f) {
        finish(model, static_cast<int>(a.size()), mfit, state);
        return Status::ok;
    }
    state.atry.assign(a.begin(), a.end());
    for (std::size_t l = 0, j = 0; l < a.size(); ++l)
        if (model.ia[l] != 0)
            state.atry[l] += state.trialB[j++];
    const float chisq = mrqcof(model, state.atry, state.trialA, state.trialB);
    if (chisq < state.chisq) {
        state.alamda = std::max(0.1f * state.alamda, leastDamping);
        state.chisq = chisq;
        std::swap(state.alpha, state.trialA);
        std::swap(state.beta, state.trialB);
        std::ranges::copy(state.atry, a.begin());
    } else {
        state.alamda *= 10.0f;
    }
    return Status::ok;
}

Status nonlinearfit(const ModelFit &model, std::span<float> a, std::span<const float> guesa,
                    std::span<float> error, Messages &messages)
{
    constexpr int stopCount = 4; // steps without a fall of chi-square by leastFall
    constexpr int maxSteps =
        1000; // a step that is not counted lowers chi-square by leastFall; this is there to end
    constexpr float leastFall = 0.1f;
    std::ranges::copy(guesa, a.begin());
    std::ranges::fill(error, 0.0f);
    if (std::ranges::any_of(model.sig, [](float sig) { return !(sig > 0.0f); }))
        return nrerror("errors must be above 0 in nonlinearfit", messages);
    MarquardtState state;
    if (mrqmin(model, a, state, messages) != Status::ok)
        return Status::failed;
    int still = 0;
    for (int step = 0; step < maxSteps && still < stopCount; ++step) {
        const float before = state.chisq;
        if (mrqmin(model, a, state, messages) != Status::ok)
            return Status::failed;
        // Written so that a chi-square that is no number ends the fit.
        if (!(before - state.chisq >= leastFall))
            ++still;
    }
    state.alamda = 0.0f;
    if (mrqmin(model, a, state, messages) != Status::ok)
        return Status::failed;
    for (std::size_t i = 0; i < error.size(); ++i) {
        const float variance = state.covar[i * a.size() + i];
        error[i] = variance > 0.0f ? std::sqrt(variance) : 0.0f;
    }
    return Status::ok;
}

} // namespace trelm
