#include "support/symbol_table.h"

#include <gtest/gtest.h>

#include <string>

using namespace trelm;
using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;

// Three chains at the start: the table grows on its way, and everything must still be where it was.
TEST(SymbolTable, FindsTheLatestOfEqualNamesThroughAllGrowth)
{
    HTabInfo table;
    ASSERT_EQ(hSymTabAlloc(table, 3), 0);
    constexpr int count = 20000;
    for (int round = 0; round < 2; ++round)
        for (int i = 0; i < count; ++i)
            ASSERT_EQ(hAddSym("A.LYS." + std::to_string(i), symIndex, table)->val.i = round * count + i,
                      round * count + i);
    EXPECT_EQ(table.symbolCount, 2 * count);
    EXPECT_LE(table.symbolCount, 2 * table.hashLength);
    for (int i = 0; i < count; ++i) {
        const HSymInfo *symbol = hFindSym("A.LYS." + std::to_string(i), table);
        ASSERT_NE(symbol, nullptr);
        ASSERT_EQ(symbol->val.i, count + i);
    }
    EXPECT_EQ(hFindSym("A.LYS.", table), nullptr);
}

TEST(SymbolTable, DepthIsThePlaceBehindTheHead)
{
    HTabInfo table;
    EXPECT_EQ(hFindSym("a", table), nullptr); // no table yet
    ASSERT_EQ(hSymTabAlloc(table, 0), 0);
    EXPECT_EQ(table.hashLength, 253);
    EXPECT_EQ(hMaxDepth(table), 0);
    const int firstId = hAddSym("", symInt, table)->id;
    for (int i = 1; i < 4; ++i)
        EXPECT_EQ(hAddSym("", symInt, table)->id, firstId + i);
    EXPECT_EQ(hSymDepth(*hFindSym("", table), table), 0);
    EXPECT_EQ(hSymDepth(table.symbols[0], table), 3);
    EXPECT_EQ(hMaxDepth(table), 3);
}

TEST(SymbolTable, SetsAFloatAndTellsAClash)
{
    HTabInfo table;
    ASSERT_EQ(hSymTabAlloc(table, 0), 0);
    EXPECT_EQ(hSetSymFlt("x", 1.5f, table), 0);
    EXPECT_EQ(hSetSymFlt("x", 2.5f, table), 0);
    EXPECT_EQ(table.symbolCount, 1);
    EXPECT_EQ(hFindSym("x", table)->val.f, 2.5f);
    CaptureStderr();
    EXPECT_EQ(hFindOrAddSym("x", symInt, table)->val.type, symFloat);
    EXPECT_EQ(GetCapturedStderr(), "Symbol Notice: Type Clash for Symbol x\n");
}

// Worked out from the definition: eight letters carry bits into the top four, which come back at the bottom.
TEST(SymbolTable, HashIsThePublishedOne)
{
    EXPECT_EQ(hashName(""), 0u);
    EXPECT_EQ(hashName("ab"), 0x672u);
    EXPECT_EQ(hashName("aaaaaaaa"), 0x7777101u);
}
