// The statistics block.
#include "couplings/statistics.h"

#include "couplings/dc_table.h"

#include <gmock/gmock.h>

namespace trelm {
namespace {

using ::testing::EndsWith;
using ::testing::StartsWith;

TEST(StatDC, OffsetIsThatOfTheExchangedRegression)
{
    // y = 1, 3, 2, 5 on x = 1, 2, 3, 4: y = 0 + 1.1 x; exchanged: x = 0.771 + 0.629 y. 999.0 is no value.
    const DTable table = makeTable({{1, 1}, {2, 3}, {3, 2}, {4, 5}, {999.0f, 1}, {1, 999.0f}});
    std::string result;
    ASSERT_EQ(statDC(table, result, standardMessages()), Status::ok);
    EXPECT_THAT(result, StartsWith("\nDATA STATISTICS DC\nDATA STATISTICS DC STDDEV_DIFF  0.829 [Hz]\n"
                                   "DATA STATISTICS DC CORR R       0.832\n"
                                   "DATA STATISTICS DC CORNILESCU Q 0.316\n"
                                   "DATA STATISTICS DC REGRESSION OFFSET    0.771 +/- 0.927 [Hz]\n"
                                   "DATA STATISTICS DC REGRESSION SLOPE     1.100 +/- 0.520 [Hz]\n"));
    EXPECT_THAT(result, EndsWith("[Hz]\n\n"));
}

TEST(StatDC, WithoutPairsAllIsZero)
{
    std::string result = "left over";
    ASSERT_EQ(statDC(makeTable({{999.0f, 1}}), result, standardMessages()), Status::ok);
    EXPECT_NE(result.find("BAX SLOPE 0.000 +/- 0.000"), std::string::npos);
    EXPECT_EQ(result.find("left over"), std::string::npos);
    EXPECT_EQ(result.find("nan"), std::string::npos);
}

} // namespace
} // namespace trelm
