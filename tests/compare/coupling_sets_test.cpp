#include "compare/coupling_sets.h"
#include "couplings/dc_table.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <limits>

using namespace trelm;

namespace {

TEST(AddDC, CombinesScaledValues)
{
    constexpr float infinity = std::numeric_limits<float>::infinity();
    const struct {
        OpCode opCode;
        float c1, c2, d1, d2, expected;
    } cases[] = {
        {opAdd, 2.0f, 3.0f, 5.0f, -7.0f, -11.0f},
        {opSub, 2.0f, 3.0f, 5.0f, -7.0f, 31.0f},
        {opMul, 2.0f, 3.0f, 5.0f, -7.0f, -210.0f},
        {opDiv, 2.0f, 4.0f, 6.0f, 1.5f, 2.0f},
        {opDiv, 1.0f, 1.0f, 6.0f, 0.0f, infinity},
        {opMax, -1.0f, 100.0f, 5.0f, 4.0f, -5.0f}, // the values decide as they are, not scaled
        {opMax, -1.0f, 100.0f, 4.0f, 5.0f, 500.0f},
        {opMax, 2.0f, 3.0f, 4.0f, 4.0f, 8.0f},
        {OpCode{0}, 2.0f, 3.0f, 5.0f, 7.0f, 0.0f},
        {OpCode{6}, 2.0f, 3.0f, 5.0f, 7.0f, 0.0f},
    };
    for (const auto &c : cases)
        EXPECT_EQ(addDC({c.opCode, c.c1, c.c2}, c.d1, c.d2), c.expected) << c.opCode;
    EXPECT_TRUE(std::isnan(addDC({opDiv, 1.0f, 1.0f}, 0.0f, 0.0f)));
    EXPECT_EQ(addDC({opSub, 1e30f, 1e30f}, 1e30f, 1e30f),
              0.0f); // products do not overflow before the difference
}

DTable tableOf(const std::vector<float> &couplings)
{
    std::vector<std::pair<float, float>> pairs;
    for (const float d : couplings)
        pairs.emplace_back(d, noCoupling);
    DTable table = makeTable(pairs);
    for (DCalc &row : table.calculated())
        row.valid = 0;
    return table;
}

TEST(AdjustDC, PairsRowsByResiduesAndAllNames)
{
    constexpr float absent = 999.0f;
    DTable first = tableOf({1.0f, 2.0f, absent, 6.0f, 7.0f});
    DTable second = tableOf({10.0f, 20.0f, 30.0f, 60.0f, 70.0f, 11.0f});
    second.dObsList[5].resIDI = second.dObsList[5].resIDJ =
        second.dObsList[0].resIDI; // the last of two counts
    second.dObsList[1].resIDJ = 99;
    first.dObsList[3].valid = 0;
    second.dObsList[4].d = absent; // the second table is taken as it is
    EXPECT_EQ(adjustDC({opAdd, 1.0f, 1.0f}, first, second), 2);
    const struct {
        std::size_t row;
        int observed, calculated;
        float d;
    } expected[] = {
        {0, 1, 1, 12.0f}, {1, 0, 0, noCoupling}, {2, 1, 0, noCoupling}, {3, 0, 1, 66.0f}, {4, 1, 1, 1006.0f}};
    for (const auto &e : expected) {
        EXPECT_EQ(first.dObsList[e.row].valid, e.observed) << e.row;
        EXPECT_EQ(first.dCalcList[e.row].valid, e.calculated) << e.row;
        EXPECT_EQ(first.dCalcList[e.row].d, e.d) << e.row;
    }
    for (Name RowNames::*const name :
         {&RowNames::resNameI, &RowNames::resNameJ, &RowNames::atomNameI, &RowNames::atomNameJ,
          &RowNames::chainNameI, &RowNames::chainNameJ, &RowNames::segNameI, &RowNames::segNameJ}) {
        DTable one = tableOf({1.0f}), other = tableOf({2.0f});
        RowNames names = *other.dObsList[0].names;
        names.*name = Name::of("X");
        setNames(other, names, other.dObsList[0]);
        EXPECT_EQ(adjustDC({opAdd, 1.0f, 1.0f}, one, other), 0);
    }
    DTable empty;
    EXPECT_EQ(adjustDC({opAdd, 1.0f, 1.0f}, first, empty), 0);
    EXPECT_EQ(adjustDC({opAdd, 1.0f, 1.0f}, empty, first), 0);
    EXPECT_EQ(first.dObsList[0].valid, 1);
}

TEST(AdjustDC, LargeTablesTakeNoTime)
{
    constexpr int rows = 150'000; // all pairs of a third as many take five seconds
    DTable first = tableOf(std::vector<float>(rows, 1.0f));
    const DTable second = tableOf(std::vector<float>(rows, 2.0f));
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(adjustDC({opSub, 1.0f, 1.0f}, first, second), rows);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}

} // namespace
