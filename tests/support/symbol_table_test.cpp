#include "support/text/symbol_table.h"

#include "common/said.h"

#include <string>

using namespace trelm;

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

TEST(SymbolTable, SetsAFloatAndTellsAClash)
{
    HTabInfo table;
    EXPECT_EQ(hFindSym("x", table), nullptr); // no table yet
    ASSERT_EQ(hSymTabAlloc(table, 0), 0);
    EXPECT_EQ(table.hashLength, 253);
    EXPECT_EQ(hSetSymFlt("x", 1.5f, table), 0);
    EXPECT_EQ(hSetSymFlt("x", 2.5f, table), 0);
    EXPECT_EQ(table.symbolCount, 1);
    EXPECT_EQ(hFindSym("x", table)->val.f, 2.5f);
    EXPECT_EQ(said([&] { EXPECT_EQ(hFindOrAddSym("x", symIndex, table)->val.type, symFloat); }).err,
              "Symbol Notice: Type Clash for Symbol x\n");
    hSymTabFree(table);
    EXPECT_EQ(hFindSym("x", table), nullptr);
}

// Worked out from the definition: eight letters carry bits into the top four, which come back at the bottom.
TEST(SymbolTable, HashIsThePublishedOne)
{
    EXPECT_EQ(hashName(""), 0u);
    EXPECT_EQ(hashName("ab"), 0x672u);
    EXPECT_EQ(hashName("aaaaaaaa"), 0x7777101u);
}
