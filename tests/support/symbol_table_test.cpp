#include "support/text/symbol_table.h"

#include "common/heard.h"

#include <string>

using namespace trelm;

// Three chains at the start: the table grows on its way, and everything must still be where it was.
TEST(SymbolTable, FindsTheLatestOfEqualNamesThroughAllGrowth)
{
    HTabInfo table;
    Heard heard;
    ASSERT_EQ(hSymTabAlloc(table, 3, heard.messages), Status::ok);
    constexpr int count = 20000;
    for (int round = 0; round < 2; ++round)
        for (int i = 0; i < count; ++i)
            ASSERT_EQ(hAddSym("A.LYS." + std::to_string(i), round * count + i, table, heard.messages),
                      Status::ok);
    EXPECT_EQ(table.symbolCount, 2 * count);
    EXPECT_LE(table.symbolCount, 2 * table.hashLength);
    for (int i = 0; i < count; ++i)
        ASSERT_EQ(hFindSym("A.LYS." + std::to_string(i), table), count + i);
    EXPECT_EQ(hFindSym("A.LYS.", table), std::nullopt);
}

TEST(SymbolTable, WithoutChainsHoldsNothing)
{
    HTabInfo table;
    Heard heard;
    EXPECT_EQ(hFindSym("x", table), std::nullopt);
    ASSERT_EQ(hSymTabAlloc(table, 0, heard.messages), Status::ok);
    EXPECT_EQ(table.hashLength, 253);
}

// Worked out from the definition: eight letters carry bits into the top four, which come back at the bottom.
TEST(SymbolTable, HashIsThePublishedOne)
{
    EXPECT_EQ(hashName(""), 0u);
    EXPECT_EQ(hashName("ab"), 0x672u);
    EXPECT_EQ(hashName("aaaaaaaa"), 0x7777101u);
}
