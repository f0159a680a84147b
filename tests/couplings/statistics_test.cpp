// The statistics block.
#include "couplings/statistics.h"

#include "couplings/dc_table.h"

namespace trelm {
namespace {

TEST(StatDC, OffsetIsThatOfTheExchangedRegression)
{
    // y = 1, 3, 2, 5 on x = 1, 2, 3, 4: y = 0 + 1.1 x; exchanged: x = 0.771 + 0.629 y. 999.0 is no value.
    const DTable table = makeTable({{1, 1}, {2, 3}, {3, 2}, {4, 5}, {999.0f, 1}, {1, 999.0f}});
    ComparedCouplings found;
    ASSERT_EQ(statDC(table, found, standardMessages()), Status::ok);
    const struct {
        const char *what;
        float value, expected;
    } rows[] = {{"deviation", found.stdDevD, 0.829f},
                {"correlation", found.line.r, 0.832f},
                {"Q", found.q, 0.316f},
                {"offset", found.line.xOnY.a, 0.771f},
                {"its error", found.line.xOnY.siga, 0.927f},
                {"slope", found.line.yOnX.b, 1.1f},
                {"its error", found.line.yOnX.sigb, 0.520f}};
    for (const auto &row : rows)
        EXPECT_NEAR(row.value, row.expected, 5e-4f) << row.what;
}

TEST(StatDC, WithoutPairsAllIsZero)
{
    ComparedCouplings found;
    found.stdDevD = found.q = found.line.r = 1.0f;
    ASSERT_EQ(statDC(makeTable({{999.0f, 1}}), found, standardMessages()), Status::ok);
    for (const float value :
         {found.stdDevD, found.q, found.line.r, found.line.aveSlope, found.line.errAveSlope})
        EXPECT_EQ(value, 0.0f);
}

} // namespace
} // namespace trelm
