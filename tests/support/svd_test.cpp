#include "support/numerics/svd.h"

#include "ground/alloc.h"
#include "random_values.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace trelm {
namespace {

TEST(Svd, MultipliesBackWithOrthonormalVectors)
{
    const struct {
        int m, n;
    } shapes[] = {{2, 2}, {5, 5}, {40, 5}, {7, 3}};
    for (const auto [m, n] : shapes) {
        const std::vector<float> a = randomValues(static_cast<std::size_t>(m * n), -m);
        std::vector<float> u = a, v(static_cast<std::size_t>(n * n)), w(v.size()), rv1(v.size());
        svdcmpUser(u, m, n, w, v, rv1);
        for (int i = 0; i < m; ++i)
            for (int j = 0; j < n; ++j) {
                double sum = 0.0;
                for (int k = 0; k < n; ++k)
                    sum += double{u[i * n + k]} * w[k] * v[j * n + k];
                EXPECT_NEAR(sum, a[i * n + j], 5.0e-6) << m << " by " << n;
            }
        for (int i = 0; i < n; ++i)
            for (int j = 0; j < n; ++j) {
                double uu = 0.0, vv = 0.0;
                for (int k = 0; k < m; ++k)
                    uu += double{u[k * n + i]} * u[k * n + j];
                for (int k = 0; k < n; ++k)
                    vv += double{v[k * n + i]} * v[k * n + j];
                EXPECT_NEAR(uu, i == j ? 1.0 : 0.0, 5.0e-6);
                EXPECT_NEAR(vv, i == j ? 1.0 : 0.0, 5.0e-6);
            }
    }
}

TEST(Svd, PerfectDataComeBackWithTheCovarianceOfTheNormalMatrix)
{
    const std::vector<float> x = {1.0f, 0.0f, 1.0f, 1.0f, 1.0f, 2.0f, 1.0f, 3.0f};
    const std::vector<float> y = {1.0f, 3.0f, 5.0f, 7.0f}; // 1 + 2 t
    std::vector<float> coef(2), covar(4);
    ASSERT_EQ(svdLSMat(x, y, 4, 2, coef, covar, 1), 0);
    EXPECT_NEAR(coef[0], 1.0, 1.0e-5);
    EXPECT_NEAR(coef[1], 2.0, 1.0e-5);
    // The inverse of ((4, 6), (6, 14)).
    const double exact[] = {0.7, -0.3, -0.3, 0.2};
    for (std::size_t i = 0; i < 4; ++i)
        EXPECT_NEAR(covar[i], exact[i], 1.0e-5);
}

TEST(Svd, RankDeficientMatrixGivesTheMinimumNorm)
{
    // The third column is the sum of the others, so (1, 1, -1) cannot be seen. The answer has none of it.
    const std::vector<float> x = {1.0f, 0.0f, 1.0f, 0.0f, 1.0f, 1.0f, 1.0f, 1.0f, 2.0f, 2.0f, 1.0f, 3.0f};
    const std::vector<float> y = {3.0f, 3.0f, 6.0f, 9.0f};
    std::vector<float> coef(3), covar(9);
    ASSERT_EQ(svdLSMat(x, y, 4, 3, coef, covar, 1), 0);
    const double exact[] = {1.0, 1.0, 2.0};
    double hidden = 0.0;
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_NEAR(coef[i], exact[i], 1.0e-5);
        for (std::size_t j = 0; j < 3; ++j)
            hidden += covar[3 * i + j] * (i == 2 ? -1.0 : 1.0) * (j == 2 ? -1.0 : 1.0);
    }
    EXPECT_NEAR(hidden, 0.0, 1.0e-5);
    EXPECT_GT(covar[0], 0.1f);

    // Fewer rows than columns, after another shape: x + y = 2.
    ASSERT_EQ(svdLSMat(std::vector<float>{1.0f, 1.0f}, std::vector<float>{2.0f}, 1, 2, coef, {}, 1), 0);
    EXPECT_NEAR(coef[0], 1.0, 1.0e-6);
    EXPECT_NEAR(coef[1], 1.0, 1.0e-6);
}

TEST(Svd, ReusedDecompositionGivesTheSameBitsAndAllocatesNothing)
{
    std::vector<float> x = randomValues(150, -7);
    const std::vector<float> y = randomValues(30, -8), other = randomValues(30, -9);
    std::vector<float> fresh(5), freshCovar(25), again(5), againCovar(25), kept(5);
    svdPolyFree();
    const std::int64_t before = allocBytesUsed();
    ASSERT_EQ(svdLSMat(x, y, 30, 5, fresh, freshCovar, 1), 0);
    const std::int64_t used = allocBytesUsed();
    EXPECT_GT(used, before);
    ASSERT_EQ(svdLSMat(x, other, 30, 5, again, againCovar, 1), 0);
    EXPECT_NE(again, fresh);
    ASSERT_EQ(svdLSMat(x, y, 30, 5, again, againCovar, 1), 0);
    ASSERT_EQ(svdLSMat(x, y, 30, 5, kept, {}, 0), 0);
    EXPECT_EQ(again, fresh);
    EXPECT_EQ(againCovar, freshCovar);
    EXPECT_EQ(kept, fresh);

    x[149] = std::nextafter(x[149], 2.0f) + 0.5f; // another matrix in the same array
    ASSERT_EQ(svdLSMat(x, y, 30, 5, again, againCovar, 1), 0);
    EXPECT_NE(again, fresh);
    EXPECT_EQ(allocBytesUsed(), used);
    svdPolyFree();
    EXPECT_EQ(allocBytesUsed(), before);
}

TEST(Svd, ValuesThatAreNoNumbersEnd)
{
    std::vector<float> x = randomValues(50, -3), y(10, 1.0f), coef(5), covar(25);
    x[17] = NAN;
    EXPECT_EQ(svdLSMat(x, y, 10, 5, coef, covar, 1), 0);
    EXPECT_TRUE(std::isnan(coef[0]));
}

TEST(Svd, OneCoefficientIsTheQuotientOfSums)
{
    std::vector<float> coef(1), covar(1);
    const std::vector<float> x = {1.0f, 2.0f};
    for (const auto &[y, expected] : {std::pair{2.0f, 0.5f}, {0.0f, 0.0f}}) {
        EXPECT_EQ(svdLSMat(x, std::vector<float>{y, 2.0f * y}, 2, 1, coef, covar, 1), 0);
        EXPECT_FLOAT_EQ(coef[0], expected);
        EXPECT_EQ(covar[0], 1.0f);
    }
}

} // namespace
} // namespace trelm
