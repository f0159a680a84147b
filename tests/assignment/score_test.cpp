#include "assignment/score.h"

#include "common/heard.h"
#include "reference/random_problem.h"

#include <gtest/gtest.h>

namespace trelm {
namespace {

/// Solves the normal equations a s = b, by elimination with pivots.
std::array<double, 5> solve(std::array<std::array<double, 6>, 5> a)
{
    for (std::size_t i = 0; i < 5; ++i) {
        std::size_t pivot = i;
        for (std::size_t row = i; row < 5; ++row)
            pivot = std::abs(a[row][i]) > std::abs(a[pivot][i]) ? row : pivot;
        std::swap(a[i], a[pivot]);
        for (std::size_t row = 0; row < 5; ++row) {
            const double factor = row == i ? 0.0 : a[row][i] / a[i][i];
            for (std::size_t column = i; column < 6; ++column)
                a[row][column] -= factor * a[i][column];
        }
    }
    return {a[0][5] / a[0][0], a[1][5] / a[1][1], a[2][5] / a[2][2], a[3][5] / a[3][3], a[4][5] / a[4][4]};
}

/// The couplings of a medium under an assignment, straight from the matrices.
std::vector<FixedCoupling> couplingsOf(const AssignmentProblem &problem, std::size_t medium,
                                       const std::vector<int> &rowIdList)
{
    std::vector<FixedCoupling> all;
    std::size_t column = 0, fixed = 0;
    for (std::size_t n = 0; n < medium; ++n) {
        column += problem.colIdList[n];
        fixed += problem.nDTypList[n];
    }
    const auto ofMedium = std::span(problem.fixed).subspan(fixed, problem.nDTypList[medium]);
    all.assign(ofMedium.begin(), ofMedium.end());
    for (std::size_t k = 0; k < problem.peakCount; ++k)
        for (std::size_t c = column; c < column + problem.colIdList[medium]; ++c) {
            const std::size_t p = problem.at(rowIdList[k], c), r = problem.at(k, c);
            if (problem.dcMat[p] != noPeakCoupling)
                all.push_back({problem.xMat[r], problem.yMat[r], problem.zMat[r], problem.dcMat[p],
                               problem.diValMat[p], problem.sigMat[p], problem.wMat[p]});
        }
    return all;
}

/// A coupling's factors in the five Saupe elements, in double precision.
std::array<double, 5> factors(const FixedCoupling &coupling)
{
    const double r = std::hypot(coupling.x, coupling.y, coupling.z);
    const double x = r > 0 ? coupling.x / r : 0, y = r > 0 ? coupling.y / r : 0,
                 z = r > 0 ? coupling.z / r : 0;
    const double di = std::abs(coupling.di);
    return {di * (3 * z * z - 1) / 2, di * (x * x - y * y) / 2, di * 2 * x * y, di * 2 * x * z,
            di * 2 * y * z};
}

/// Fits by errors and sums the weighted differences, in double precision.
double expectedScore(const std::vector<FixedCoupling> &couplings)
{
    std::array<std::array<double, 6>, 5> normal = {};
    for (const FixedCoupling &coupling : couplings) {
        const std::array<double, 5> factor = factors(coupling);
        const double sigma = coupling.sigma;
        for (std::size_t i = 0; i < 5; ++i) {
            for (std::size_t j = 0; j < 5; ++j)
                normal[i][j] += factor[i] * factor[j] / (sigma * sigma);
            normal[i][5] += factor[i] * static_cast<double>(coupling.d) / (sigma * sigma);
        }
    }
    const std::array<double, 5> saupe = solve(normal);
    double sum = 0.0;
    for (const FixedCoupling &coupling : couplings) {
        const std::array<double, 5> factor = factors(coupling);
        const double diff = coupling.d - std::inner_product(factor.begin(), factor.end(), saupe.begin(), 0.0);
        sum += diff * diff * coupling.w * coupling.w;
    }
    return sum;
}

TEST(Score, IsThatOfEachMediumsOwnFit)
{
    const RandomProblem kinds[] = {
        {.peaks = 6},
        {.peaks = 8, .columns = {4}, .missing = 0.2, .equalWeights = false},
        {.peaks = 6, .columns = {2, 3}, .fixed = {3, 4}, .equalWeights = false},
        {.peaks = 7, .columns = {2, 2, 3}, .fixed = {0, 6, 2}, .missing = 0.1},
    };
    Heard heard;
    ScoreWork work = {.messages = heard.messages};
    for (const RandomProblem &kind : kinds) {
        ProblemMaker maker(11);
        for (int n = 0; n < 20; ++n) {
            MadeProblem made = maker.make(kind);
            AssignmentProblem &problem = made.problem;
            problem.window = {-1000.0f, 1000.0f, -1000.0f, 1000.0f};
            std::vector<int> rows = made.truth;
            for (int round = 0; round < 2; ++round, std::swap(rows[0], rows[1])) {
                double expected = 0.0;
                for (std::size_t medium = 0; medium < kind.columns.size(); ++medium)
                    expected += expectedScore(couplingsOf(problem, medium, rows));
                EXPECT_NEAR(getSvdChi2Exh(problem, rows, work), expected, 2e-3 * expected + 1e-6);
            }
        }
    }
}

TEST(Score, CountsAMediumOutsideTheWindow)
{
    ProblemMaker maker(3);
    const MadeProblem one = maker.make({.noise = 0.0});
    const MadeProblem two = maker.make({.columns = {3, 3}, .fixed = {0, 0}, .noise = 0.0});
    const auto changed = [](AssignmentProblem problem, auto change) {
        change(problem);
        return problem;
    };
    const auto negate = [](AssignmentProblem &problem, std::size_t firstColumn) {
        for (std::size_t row = 0; row < problem.peakCount; ++row)
            for (std::size_t column = firstColumn; column < problem.colId; ++column)
                problem.dcMat[problem.at(row, column)] *= -1.0f;
    };
    struct {
        const char *why;
        AssignmentProblem problem;
        const std::vector<int> &rows;
        float low, high;
    } const cases[] = {
        {"inside", one.problem, one.truth, 0.0f, 1e-3f},
        {"Da above", changed(one.problem, [](auto &p) { p.window.highDa = -20.0f; }), one.truth, 1e8f, 1e8f},
        {"Da below", changed(one.problem, [](auto &p) { p.window.lowDa = -5.0f; }), one.truth, 1e8f, 1e8f},
        {"R above", changed(one.problem, [](auto &p) { p.window.highR = 0.05f; }), one.truth, 1e8f, 1e8f},
        {"R below", changed(one.problem, [](auto &p) { p.window.lowR = 0.6f; }), one.truth, 1e8f, 1e8f},
        {"positive Da", changed(one.problem, [&](auto &p) { negate(p, 0); }), one.truth, 1e8f, 1e8f},
        {"no medium", changed(one.problem, [](auto &p) { p.nLcType = 0; }), one.truth, 1e8f, 1e8f},
        {"four couplings",
         changed(one.problem, [](auto &p) { std::fill(p.dcMat.begin() + 4, p.dcMat.end(), 888.0f); }),
         one.truth, 1e8f, 1e8f},
        {"no tensor, and a window that holds Da 0",
         changed(one.problem,
                 [](auto &p) {
                     p.dcMat.assign(p.dcMat.size(), 0.0f), p.window = {-25, 5, -5, 0.7f};
                 }),
         one.truth, 1e8f, 1e8f},
        {"no number", changed(one.problem, [](auto &p) { p.dcMat[0] = NAN; }), one.truth, 1e8f, 1e8f},
        {"both media inside", two.problem, two.truth, 0.0f, 1e-3f},
        {"the second of two media", changed(two.problem, [&](auto &p) { negate(p, 3); }), two.truth, 1e8f,
         1e8f},
        {"both media", changed(two.problem, [](auto &p) { p.window.lowDa = -1.0f; }), two.truth, 2e8f, 2e8f},
    };
    Heard heard;
    ScoreWork work = {.messages = heard.messages};
    for (const auto &c : cases) {
        const float score = getSvdChi2Exh(c.problem, c.rows, work);
        EXPECT_GE(score, c.low) << c.why;
        EXPECT_LE(score, c.high) << c.why;
    }
}

} // namespace
} // namespace trelm
