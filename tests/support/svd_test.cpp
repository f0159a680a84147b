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

TEST(Svd, RankDeficientMatrixGivesTheMinimumNorm)
{
    // The third column is the sum of the others, so (1, 1, -1) cannot be seen. The answer has none of it.
    const std::vector<float> x = {1.0f, 0.0f, 1.0f, 0.0f, 1.0f, 1.0f, 1.0f, 1.0f, 2.0f, 2.0f, 1.0f, 3.0f};
    const std::vector<float> y = {3.0f, 3.0f, 6.0f, 9.0f};
    std::vector<float> coef(3);
    SvdWork work;
    ASSERT_EQ(svdLSMat(x, y, coef, work), Status::ok);
    const double exact[] = {1.0, 1.0, 2.0};
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_NEAR(coef[i], exact[i], 1.0e-5);

    // Fewer rows than columns, after another shape: x + y = 2.
    coef.resize(2);
    ASSERT_EQ(svdLSMat(std::vector<float>{1.0f, 1.0f}, std::vector<float>{2.0f}, coef, work), Status::ok);
    EXPECT_NEAR(coef[0], 1.0, 1.0e-6);
    EXPECT_NEAR(coef[1], 1.0, 1.0e-6);
}

TEST(Svd, ReusedDecompositionGivesTheSameBitsAndAllocatesNothing)
{
    std::vector<float> x = randomValues(150, -7);
    const std::vector<float> y = randomValues(30, -8), other = randomValues(30, -9);
    std::vector<float> fresh(5), again(5);
    SvdWork work;
    ASSERT_EQ(svdLSMat(x, y, fresh, work), Status::ok);
    const std::int64_t used = allocBytesUsed();
    ASSERT_EQ(svdLSMat(x, other, again, work), Status::ok);
    EXPECT_NE(again, fresh);
    ASSERT_EQ(svdLSMat(x, y, again, work), Status::ok);
    EXPECT_EQ(again, fresh);

    x[149] = std::nextafter(x[149], 2.0f) + 0.5f; // another matrix in the same array
    ASSERT_EQ(svdLSMat(x, y, again, work), Status::ok);
    EXPECT_NE(again, fresh);
    EXPECT_EQ(allocBytesUsed(), used);
}

TEST(Svd, ValuesThatAreNoNumbersEnd)
{
    std::vector<float> x = randomValues(50, -3), y(10, 1.0f), coef(5);
    SvdWork work;
    x[17] = NAN;
    EXPECT_EQ(svdLSMat(x, y, coef, work), Status::ok);
    EXPECT_TRUE(std::isnan(coef[0]));
}

} // namespace
} // namespace trelm
