#include "support/numerics/minimise.h"

#include "common/heard.h"
#include "support/numerics/random.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace trelm {
namespace {

int calls = 0;
std::vector<float> lastCoefs;

/// Couplings of bond vectors for a tensor with three angles (degrees), Da of order 1e-3, and R: badly scaled,
/// as the fit that users run.
struct Bond {
    float x, y, z;
};

std::vector<Bond> bonds;
std::vector<float> observed;

float coupling(const Bond &bond, const float *cg)
{
    constexpr float degree = 0.0174532925f;
    const float c0 = std::cos(cg[0] * degree), s0 = std::sin(cg[0] * degree);
    const float c1 = std::cos(cg[1] * degree), s1 = std::sin(cg[1] * degree);
    const float c2 = std::cos(cg[2] * degree), s2 = std::sin(cg[2] * degree);
    const float x1 = c0 * bond.x - s0 * bond.y, y1 = s0 * bond.x + c0 * bond.y;
    const float y2 = c1 * y1 - s1 * bond.z, z2 = s1 * y1 + c1 * bond.z;
    const float x3 = c2 * x1 - s2 * y2, y3 = s2 * x1 + c2 * y2;
    return 21585.2f * cg[3] * ((3.0f * z2 * z2 - 1.0f) + 1.5f * cg[4] * (x3 * x3 - y3 * y3));
}

void tensorResiduals(std::span<const float> coefs, std::span<float> res)
{
    ++calls;
    lastCoefs.assign(coefs.begin(), coefs.end());
    for (std::size_t i = 0; i < res.size(); ++i)
        res[i] = observed[i] - coupling(bonds[i], coefs.data());
}

double tensorRms(const std::vector<float> &coefs)
{
    double sum = 0.0;
    for (std::size_t i = 0; i < bonds.size(); ++i)
        sum += std::pow(observed[i] - coupling(bonds[i], coefs.data()), 2);
    return std::sqrt(sum / static_cast<double>(bonds.size()));
}

using Five = std::array<float, 5>;

void makeCouplings(const Five &truth, float noise)
{
    bonds.clear();
    observed.clear();
    RandomStream random(-11);
    for (int i = 0; i < 60; ++i) {
        const float z = 2.0f * random.ran1() - 1.0f, angle = 6.2831853f * random.ran1();
        const float r = std::sqrt(1.0f - z * z);
        bonds.push_back({r * std::cos(angle), r * std::sin(angle), z});
        observed.push_back(coupling(bonds.back(), truth.data()) + noise * (random.ran1() - 0.5f));
    }
}

/// A fit of 60 couplings within the usual bounds, changed by the case.
struct TensorFit {
    std::vector<float> guess = {45, 45, 45, 0.001f, 0.5f};
    std::vector<float> lower = {-360, -360, -360, -0.01f, 0}, upper = {360, 360, 360, 0.01f, 0.6666667f};

    double rms()
    {
        Heard heard;
        nlsOpt({tensorResiduals, 60}, guess, lower, upper, 1000, heard.messages);
        EXPECT_EQ(heard.err, "");
        return tensorRms(guess);
    }
};

TEST(Minimise, BadlyScaledTensorFitFindsPerfectData)
{
    const Five truths[] = {
        {60, 40, 20, 0.0011f, 0.3f}, {10, 80, 100, 0.0004f, 0.1f}, {30, 30, 60, 0.002f, 0.6f}};
    for (const Five &truth : truths) {
        makeCouplings(truth, 0.0f);
        TensorFit fit;
        EXPECT_LT(fit.rms(), 2.0e-4 * 21585.2 * truth[3]);
        EXPECT_NEAR(fit.guess[3], truth[3], 1.0e-4 * truth[3]);
        EXPECT_NEAR(fit.guess[4], truth[4], 1.0e-3);
        EXPECT_EQ(lastCoefs, fit.guess); // the caller's state is that of the answer
    }
}

constexpr Five usualTruth = {60, 40, 20, 0.0011f, 0.3f};

TEST(Minimise, NoisyFitIsAMinimumInEveryDirection)
{
    makeCouplings(usualTruth, 4.0f);
    TensorFit fit;
    const double best = fit.rms();
    for (std::size_t j = 0; j < 5; ++j)
        for (float side : {-1.0f, 1.0f}) {
            std::vector<float> moved = fit.guess;
            moved[j] += side * (j < 3 ? 0.2f : j == 3 ? 2.0e-6f : 0.003f);
            EXPECT_GT(tensorRms(moved), best) << "parameter " << j;
        }
}

TEST(Minimise, ActiveBoundHoldsAndTheOthersAreFitted)
{
    makeCouplings(usualTruth, 0.0f);
    TensorFit fixed;
    fixed.guess[3] = fixed.lower[3] = fixed.upper[3] = 0.0009f;
    const double best = fixed.rms();
    // Da may not reach its value; R is then to be found with Da at the bound, from any start.
    for (const float start : {0.0005f, 0.0009f, 0.0f}) { // inside, at this bound, at the other
        TensorFit fit;
        fit.lower[3] = 0.0f;
        fit.upper[3] = 0.0009f;
        fit.guess[3] = start;
        EXPECT_NEAR(fit.rms(), best, 1.0e-4 * best);
        EXPECT_EQ(fit.guess[3], 0.0009f);
    }
    TensorFit corner; // a start at two bounds leaves them
    corner.guess = {45, 45, 45, 0.01f, 0.0f};
    EXPECT_LT(corner.rms(), 0.005);
}

/// A valley: (1 - a)^2 + 100 (b - a^2)^2 with b in thousandths.
void valley(std::span<const float> coefs, std::span<float> res)
{
    ++calls;
    lastCoefs.assign(coefs.begin(), coefs.end());
    res[0] = 1.0f - coefs[0];
    res[1] = 10.0f * (1000.0f * coefs[1] - coefs[0] * coefs[0]);
}

TEST(Minimise, ValleyWithAndWithoutABound)
{
    const struct {
        const char *why;
        std::array<float, 2> start, upper;
        double a;
    } rows[] = {{"free", {-1.2f, 0.001f}, {10.0f, 10.0f}, 1.0},
                {"a stops at 0.5", {-1.2f, 0.001f}, {0.5f, 10.0f}, 0.5},
                {"bounds exchanged", {-1.2f, 0.001f}, {-10.0f, 10.0f}, 1.0},
                {"start far off, b from 1", {5.0f, 1.0f}, {10.0f, 10.0f}, 1.0}};
    for (const auto &row : rows) {
        std::vector<float> guess(row.start.begin(), row.start.end()),
            upper(row.upper.begin(), row.upper.end());
        std::vector<float> lower = {upper[0] < 0.0f ? 10.0f : -10.0f, -10.0f};
        Heard heard;
        nlsOpt({valley, 2}, guess, lower, upper, 1000, heard.messages);
        EXPECT_NEAR(guess[0], row.a, 1.0e-4) << row.why;
        EXPECT_NEAR(guess[1], 0.001 * row.a * row.a, 2.0e-7) << row.why;
        EXPECT_LT(lower[0], upper[0]) << row.why;
    }
}

TEST(Minimise, NothingFreeEvaluatesOnceTheGuessAsItCame)
{
    for (int itMax : {1000, 0}) {
        std::vector<float> guess = {3.0f, 4.0f}, lower = {1.0f, 1.0f}, upper = lower;
        if (itMax == 0)
            upper = {9.0f, 9.0f};
        calls = 0;
        Heard heard;
        nlsOpt({valley, 2}, guess, lower, upper, itMax, heard.messages);
        EXPECT_EQ(calls, 1);
        EXPECT_EQ(lastCoefs, (std::vector<float>{3.0f, 4.0f}));
        EXPECT_EQ(guess, lastCoefs);
    }
}

std::vector<float> firstCoefs;

void noNumbers(std::span<const float> coefs, std::span<float> res)
{
    if (firstCoefs.empty())
        firstCoefs.assign(coefs.begin(), coefs.end());
    std::ranges::fill(res, NAN);
}

TEST(Minimise, AStartOutsideTheBoundsIsTheirMeanAndNoNumbersAreAFailure)
{
    std::vector<float> guess = {5.0f, 0.5f}, lower = {1.0f, 0.0f}, upper = {3.0f, 1.0f};
    firstCoefs.clear();
    Heard heard;
    nlsOpt({noNumbers, 2}, guess, lower, upper, 1000, heard.messages);
    EXPECT_EQ(heard.err, "Error: no fit, bounds or residuals at its start are no finite numbers.\n");
    EXPECT_EQ(firstCoefs, (std::vector<float>{2.0f, 0.5f}));
    EXPECT_EQ(guess, firstCoefs);
}

} // namespace
} // namespace trelm
