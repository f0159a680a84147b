#include "support/numerics/statistics.h"

#include "common/said.h"
#include "support/numerics/sort.h"

#include <cmath>
#include <vector>

namespace trelm {
namespace {

const std::vector<float> x5 = {1.0f, 2.0f, 3.0f, 4.0f, 5.0f}, y5 = {2.0f, 1.0f, 4.0f, 3.0f, 5.0f};

TEST(Statistics, LineAndCorrelationOfFivePoints)
{
    const LineFit line = fit(x5, y5, {}, 0);
    EXPECT_NEAR(line.a, 0.6, 1.0e-6);
    EXPECT_NEAR(line.b, 0.8, 1.0e-6);
    EXPECT_NEAR(line.chi2, 3.6, 1.0e-5);
    EXPECT_NEAR(line.siga, 1.148912529, 2.0e-6);
    EXPECT_NEAR(line.sigb, 0.346410162, 1.0e-6);
    EXPECT_EQ(line.q, 1.0f);
    const Correlation c = pearsn(x5, y5);
    EXPECT_NEAR(c.r, 0.8, 1.0e-6);
    EXPECT_NEAR(c.prob, 0.104088039, 1.0e-6);
    EXPECT_NEAR(c.z, 1.098612289, 2.0e-6);
}

TEST(Statistics, WeightsOfTheLine)
{
    // Equal errors of 2: the same line, a quarter of chi-square, and errors that do not depend on it.
    const LineFit line = fit(x5, y5, std::vector<float>(5, 2.0f), 1);
    EXPECT_NEAR(line.b, 0.8, 1.0e-6);
    EXPECT_NEAR(line.chi2, 0.9, 1.0e-5);
    EXPECT_NEAR(line.sigb, 2.0 / std::sqrt(10.0), 1.0e-6);
    EXPECT_NEAR(line.q, std::erfc(std::sqrt(0.45)) + 2.0 * std::sqrt(0.45 / M_PI) * std::exp(-0.45), 2.0e-6);
    // A point with a large error does not turn the line.
    const LineFit robust =
        fit(x5, std::vector<float>{1, 2, 3, 4, 50}, std::vector<float>{1, 1, 1, 1, 1e4f}, 1);
    EXPECT_NEAR(robust.b, 1.0, 1.0e-3);
}

TEST(Statistics, WhatHasNoValueIsZero)
{
    const std::vector<float> same(3, 0.1f), rising = {1.0f, 2.0f, 3.0f};
    EXPECT_EQ(fit(same, rising, {}, 0).b, 0.0f);
    EXPECT_EQ(pearsn(same, rising).r, 0.0f);
    EXPECT_EQ(pearsn(rising, same).r, 0.0f);
    EXPECT_EQ(pearsn({}, {}).r, 0.0f);
    const LineFit two = fit(std::vector<float>{1, 2}, std::vector<float>{1, 3}, {}, 0);
    EXPECT_FLOAT_EQ(two.b, 2.0f);
    EXPECT_EQ(two.siga, 0.0f);
    EXPECT_EQ(two.sigb, 0.0f);
    const Correlation c = pearsn(std::vector<float>{1, 2}, std::vector<float>{1, 3});
    EXPECT_FLOAT_EQ(c.r, 1.0f);
    EXPECT_TRUE(std::isfinite(c.z) && c.prob == 0.0f);
}

TEST(Statistics, MomentsAndTheirLimits)
{
    const Moments m = moment(std::vector<float>{1, 2, 3, 10});
    EXPECT_FLOAT_EQ(m.sum, 16.0f);
    EXPECT_FLOAT_EQ(m.ave, 4.0f);
    EXPECT_FLOAT_EQ(m.adev, 3.0f);
    EXPECT_FLOAT_EQ(m.svar, 50.0f / 3.0f);
    EXPECT_FLOAT_EQ(m.skew, 180.0f / (4.0f * std::pow(50.0f / 3.0f, 1.5f)));
    EXPECT_FLOAT_EQ(m.curt, 1394.0f / (4.0f * 2500.0f / 9.0f) - 3.0f);
    EXPECT_EQ(said([] {
                  EXPECT_EQ(moment(std::vector<float>{5.0f}).ave, 0.0f);
                  EXPECT_EQ(moment(std::vector<float>{5.0f, 5.0f}).skew, 0.0f);
              }).err,
              "Utility Error: n must be at least 2 in moment\nAborting.\n"
              "Utility Error: No skew/kurtosis when variance = 0 (in moment)\nAborting.\n");
}

TEST(Sort, CompanionsFollowAndNoNumbersGoLast)
{
    std::vector<int> keys = {5, -1, 3}, companions = {0, 1, 2};
    iSort2(keys, companions);
    EXPECT_EQ(keys, (std::vector<int>{-1, 3, 5}));
    EXPECT_EQ(companions, (std::vector<int>{1, 2, 0}));
    iSort(companions);
    EXPECT_EQ(companions, (std::vector<int>{0, 1, 2}));
    std::vector<float> values = {2.0f, NAN, -3.0f, NAN, 1.0f};
    rSort(values);
    EXPECT_EQ(std::vector<float>(values.begin(), values.begin() + 3),
              (std::vector<float>{-3.0f, 1.0f, 2.0f}));
    EXPECT_TRUE(std::isnan(values[3]) && std::isnan(values[4]));
}

} // namespace
} // namespace trelm
