#include "support/numerics/statistics.h"

#include "support/numerics/sort.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace trelm {
namespace {

const std::vector<float> x5 = {1.0f, 2.0f, 3.0f, 4.0f, 5.0f}, y5 = {2.0f, 1.0f, 4.0f, 3.0f, 5.0f};

TEST(Statistics, LineAndCorrelationOfFivePoints)
{
    const LineFit line = fit(x5, y5);
    EXPECT_NEAR(line.a, 0.6, 1.0e-6);
    EXPECT_NEAR(line.b, 0.8, 1.0e-6);
    EXPECT_NEAR(line.siga, 1.148912529, 2.0e-6);
    EXPECT_NEAR(line.sigb, 0.346410162, 1.0e-6);
    EXPECT_NEAR(pearsn(x5, y5), 0.8, 1.0e-6);
}

TEST(Statistics, WhatHasNoValueIsZero)
{
    const std::vector<float> same(3, 0.1f), rising = {1.0f, 2.0f, 3.0f};
    EXPECT_EQ(fit(same, rising).b, 0.0f);
    EXPECT_EQ(pearsn(same, rising), 0.0f);
    EXPECT_EQ(pearsn(rising, same), 0.0f);
    EXPECT_EQ(pearsn({}, {}), 0.0f);
    const LineFit two = fit(std::vector<float>{1, 2}, std::vector<float>{1, 3});
    EXPECT_FLOAT_EQ(two.b, 2.0f);
    EXPECT_EQ(two.siga, 0.0f);
    EXPECT_EQ(two.sigb, 0.0f);
    EXPECT_FLOAT_EQ(pearsn(std::vector<float>{1, 2}, std::vector<float>{1, 3}), 1.0f);
}

TEST(Sort, CompanionsFollowAndNoNumbersGoLast)
{
    std::vector<int> keys = {5, -1, 3}, companions = {0, 1, 2};
    iSort2(keys, companions);
    EXPECT_EQ(keys, (std::vector<int>{-1, 3, 5}));
    EXPECT_EQ(companions, (std::vector<int>{1, 2, 0}));
    std::vector<float> values = {2.0f, NAN, -3.0f, NAN, 1.0f};
    rSort(values);
    EXPECT_EQ(std::vector<float>(values.begin(), values.begin() + 3),
              (std::vector<float>{-3.0f, 1.0f, 2.0f}));
    EXPECT_TRUE(std::isnan(values[3]) && std::isnan(values[4]));
}

} // namespace
} // namespace trelm
