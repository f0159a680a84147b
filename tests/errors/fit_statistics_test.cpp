// The statistics block and the random selections.
#include "errors/fit_statistics.h"

#include "support/random.h"

#include "couplings/dc_table.h"

#include <gtest/gtest.h>

namespace trelm {
namespace {

TEST(StatDC, OffsetIsThatOfTheExchangedRegression)
{
    // y = 1, 3, 2, 5 on x = 1, 2, 3, 4: y = 0 + 1.1 x; exchanged: x = 0.771 + 0.629 y. 999.0 is no value.
    // value.
    const DTable table = makeTable({{1, 1}, {2, 3}, {3, 2}, {4, 5}, {999.0f, 1}, {1, 999.0f}});
    std::string result;
    ASSERT_EQ(statDC(table, result, 1), 0);
    EXPECT_NE(result.find("\nDATA STATISTICS DC\nDATA STATISTICS DC STDDEV_DIFF  0.829 [Hz]\n"),
              std::string::npos);
    EXPECT_NE(result.find("CORR R       0.832\n"), std::string::npos) << result;
    EXPECT_NE(result.find("CORNILESCU Q 0.316\n"), std::string::npos) << result;
    EXPECT_NE(result.find("REGRESSION OFFSET    0.771 +/- 0.927 [Hz]\n"), std::string::npos) << result;
    EXPECT_NE(result.find("REGRESSION SLOPE     1.100 +/- 0.520 [Hz]\n"), std::string::npos) << result;
    EXPECT_TRUE(result.ends_with("[Hz]\n\n"));
}

TEST(StatDC, WithoutPairsAllIsZero)
{
    std::string result = "left over";
    ASSERT_EQ(statDC(makeTable({{999.0f, 1}}), result, 1), 0);
    EXPECT_NE(result.find("BAX SLOPE 0.000 +/- 0.000"), std::string::npos);
    EXPECT_EQ(result.find("nan"), std::string::npos);
    ASSERT_EQ(statDC(makeTable({{1, 1}}), result, 0), 0);
    EXPECT_EQ(result, "");
}

TEST(Select, FractionsOfTheCouplings)
{
    struct Case {
        float frac;
        int fixed, kept;
    };
    for (const Case &choice : {Case{7.9f, 1, 7},
                               {50.0f, 1, 20},
                               {0.2f, 0, 4},
                               {0.99f, 0, 19},
                               {0.01f, 0, 0},
                               {-3.0f, 1, 0},
                               {2.0f, 0, 20}}) {
        DTable table = makeTable(std::vector<std::pair<float, float>>(20, {1.0f, 1.0f}));
        int idum = -1;
        EXPECT_EQ(selectDcFrac(&idum, &table, choice.frac, choice.fixed), choice.kept) << choice.frac;
        int valid = 0;
        for (const DInfo &row : table.calculated())
            valid += row.valid;
        EXPECT_EQ(valid, choice.kept);
    }
}

TEST(Select, ResiduesBringAllTheirCouplings)
{
    const ResidueCouplings residues = {{{1, 2}, {3}, {}}, {{0.5f, 0.5f}, {2}, {}}};
    std::vector<float> couplings, errors;
    float average = 0.0f;
    int idum = -1;
    EXPECT_EQ(selectDcResidue(&idum, residues, 3, couplings, errors, average), 3);
    EXPECT_FLOAT_EQ(average, 1.0f);
    EXPECT_EQ(errors.size(), couplings.size());
    couplings.clear();
    errors.clear();
    EXPECT_EQ(selectDcResidue(&idum, residues, 99, couplings, errors, average), 3); // no endless drawing
}

} // namespace
} // namespace trelm
