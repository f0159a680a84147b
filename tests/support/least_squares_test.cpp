#include "support/numerics/least_squares.h"

#include "common/heard.h"

#include <cmath>
#include <string>

namespace trelm {
namespace {

TEST(LeastSquares, GaussJordanInvertsAndSolves)
{
    // Pivots off the diagonal throughout.
    std::vector<float> a = {0.0f, 2.0f, 1.0f, 0.5f, 0.0f, 4.0f, 8.0f, 1.0f, 0.0f};
    const std::vector<float> original = a, solution = {1.0f, -2.0f, 3.0f};
    std::vector<float> b(3);
    Heard heard;
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t j = 0; j < 3; ++j)
            b[i] += a[3 * i + j] * solution[j];
    ASSERT_EQ(gaussj(a, 3, b, 1, heard.messages), Status::ok);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_NEAR(b[i], solution[i], 1.0e-6);
        for (std::size_t j = 0; j < 3; ++j) {
            float sum = 0.0f;
            for (std::size_t k = 0; k < 3; ++k)
                sum += a[3 * i + k] * original[3 * k + j];
            EXPECT_NEAR(sum, i == j ? 1.0f : 0.0f, 1.0e-6);
        }
    }
}

TEST(LeastSquares, SingularMatricesAreReported)
{
    std::vector<float> zero = {1.0f, 1.0f, 1.0f, 1.0f}, noNumber = {NAN, NAN, NAN, NAN};
    Heard heard;
    EXPECT_EQ(gaussj(zero, 2, {}, 0, heard.messages), Status::failed);
    EXPECT_EQ(gaussj(noNumber, 2, {}, 0, heard.messages), Status::failed);
    EXPECT_EQ(heard.err, "Utility Error: gaussj: Singular Matrix-2\nAborting.\n"
                         "Utility Error: gaussj: Singular Matrix-1\nAborting.\n");
}

TEST(LeastSquares, CovarianceGoesToTheFittedParameters)
{
    std::vector<float> covar = {1, 2, 9, 9, 2, 5, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9};
    covsrt(covar, 4, std::vector<int>{0, 1, 0, 1}, 2);
    EXPECT_EQ(covar, (std::vector<float>{0, 0, 0, 0, 0, 1, 0, 2, 0, 0, 0, 0, 0, 2, 0, 5}));
}

/// a exp(-b x) + c
void decay(float x, std::span<const float> a, float &y, std::span<float> dyda)
{
    const float e = std::exp(-a[1] * x);
    y = a[0] * e + a[2];
    dyda[0] = e;
    dyda[1] = -a[0] * x * e;
    dyda[2] = 1.0f;
}

TEST(LeastSquares, PerfectDataComeBack)
{
    std::vector<float> x, y;
    for (int i = 0; i < 40; ++i) {
        x.push_back(0.1f * static_cast<float>(i));
        y.push_back(5.0f * std::exp(-1.5f * x.back()) + 0.5f);
    }
    const std::vector<float> sig(40, 0.01f);
    const std::vector<int> all = {1, 1, 1}, fixed = {1, 1, 0};
    std::vector<float> a(3), error(3);
    Heard heard;
    ASSERT_EQ(
        nonlinearfit({x, y, sig, all, decay}, a, std::vector<float>{2.0f, 0.5f, 0.0f}, error, heard.messages),
        Status::ok);
    EXPECT_NEAR(a[0], 5.0, 1.0e-3);
    EXPECT_NEAR(a[1], 1.5, 1.0e-3);
    EXPECT_NEAR(a[2], 0.5, 1.0e-3);
    EXPECT_GT(error[2], 0.01f / std::sqrt(40.0f)); // no better than the mean of all points

    // With the last one fixed its error is 0, and those of the others shrink.
    std::vector<float> b(3), errorB(3);
    ASSERT_EQ(nonlinearfit({x, y, sig, fixed, decay}, b, std::vector<float>{2.0f, 0.5f, 0.5f}, errorB,
                           heard.messages),
              Status::ok);
    EXPECT_NEAR(b[1], 1.5, 1.0e-3);
    EXPECT_EQ(b[2], 0.5f);
    EXPECT_EQ(errorB[2], 0.0f);
    EXPECT_LT(errorB[1], error[1]);
}

void line(float x, std::span<const float> a, float &y, std::span<float> dyda)
{
    y = a[0] + a[1] * x;
    dyda[0] = 1.0f;
    dyda[1] = x;
}

TEST(LeastSquares, ErrorsAreStandardDeviations)
{
    const std::vector<float> x = {1, 2, 3, 4, 5}, y = {2, 1, 4, 3, 5}, sig(5, 2.0f), none(5, 0.0f);
    const std::vector<int> ia = {1, 1};
    std::vector<float> a(2), error(2);
    Heard heard;
    const std::vector<float> guess = {0.0f, 0.0f};
    ASSERT_EQ(nonlinearfit({x, y, sig, ia, line}, a, guess, error, heard.messages), Status::ok);
    EXPECT_NEAR(a[0], 0.6, 1.0e-3);
    EXPECT_NEAR(a[1], 0.8, 1.0e-3);
    EXPECT_NEAR(error[1], 2.0 / std::sqrt(10.0), 1.0e-4);

    EXPECT_EQ(nonlinearfit({x, y, none, ia, line}, a, guess, error, heard.messages), Status::failed);
    EXPECT_EQ(a, guess);
    EXPECT_EQ(error, (std::vector<float>{0.0f, 0.0f}));
    EXPECT_NE(heard.err.find("errors must be above 0"), std::string::npos);
}

} // namespace
} // namespace trelm
