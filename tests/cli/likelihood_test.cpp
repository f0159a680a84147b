// Whole runs of the likelihood search on ubiquitin's measured N-H couplings.
#include "cli/run_program.h"

#include <gtest/gtest.h>

#include <sstream>

#include <algorithm>
#include <cmath>

namespace {

Ran search(std::vector<std::string> more = {}, const RunSetting &setting = {})
{
    std::vector<std::string> args = {"-daMl", "-inD", example("bicelle_hn.tab"), "-outD", "out.tab"};
    args.insert(args.end(), more.begin(), more.end());
    return runProgram(args, setting);
}

double number(const Ran &ran, std::string_view label)
{
    const std::vector<double> numbers = numbersAfter(ran.file("out.tab"), label);
    return numbers.empty() ? std::nan("") : numbers[0];
}

TEST(LikelihoodRun, DefaultGrid)
{
    const Ran ran = search({"-outSc", "scores"});
    ASSERT_EQ(ran.status, 0) << ran.err;
    EXPECT_EQ(ran.out, "REMARK 63 couplings selected (inclusive max).\n");
    EXPECT_EQ(countOf(ran.err, "Grid point R = "), 220 * 70);
    EXPECT_EQ(countOf(ran.err, "Grid point R = 0.69 D = -24.90\r\n"), 1);
    EXPECT_EQ(countOf(ran.file("out.tab"), "\nDATA TRELM_MODE DA_ML\n\n"
                                           "DATA TRELM DA LOW_GRID     -25.000\n"
                                           "DATA TRELM DA HIGH_GRID    -3.000\n"
                                           "DATA TRELM DA INCREMENT     0.100\n"
                                           "DATA TRELM R  LOW_GRID      0.000\n"
                                           "DATA TRELM R  HIGH_GRID     0.700\n"
                                           "DATA TRELM R  INCREMENT     0.010\n"
                                           "\n\nREMARK Solving the linear equation system.\n\n"
                                           "DATA EQ Da         -8.491\n"
                                           "DATA EQ R           0.261\n"
                                           "\n\nREMARK Maximum Likelihood determination.\n\n"
                                           "DATA ML Da            -9.600\n"
                                           "DATA ML Da Err         0.500\n"
                                           "DATA ML R              0.100\n"
                                           "DATA ML R Err          0.050\n"),
              1)
        << ran.file("out.tab");

    const std::string scores = ran.file("scores");
    EXPECT_TRUE(scores.starts_with("VARS   DA R SCORE\nFORMAT %3.1f %1.2f %e\n\n-3.0 0.00 ")) << scores;
    EXPECT_EQ(std::ranges::count(scores, '\n'), 220 * 70 + 3);
    double best = -1e9, bestDa = 0.0, bestR = 0.0;
    std::istringstream rows(scores.substr(scores.find("\n\n")));
    for (double Da = 0.0, R = 0.0, score = 0.0; rows >> Da >> R >> score;)
        if (score > best) {
            best = score;
            bestDa = Da;
            bestR = R;
        }
    EXPECT_EQ(bestDa, -9.6);
    EXPECT_EQ(bestR, 0.10);
}

TEST(LikelihoodRun, ClearedPatternsMeetTheBestFit)
{
    const Ran ran = search({"-clearMl", "-outSc", "scores"});
    ASSERT_EQ(ran.status, 0) << ran.err;
    // -bestFit with the structure finds -9.40 Hz and 0.156.
    EXPECT_NEAR(number(ran, "DATA ML Da   "), -9.40, number(ran, "DATA ML Da Err"));
    EXPECT_NEAR(number(ran, "DATA ML R   "), 0.156, number(ran, "DATA ML R Err"));
    const std::string kept = search({"-noclearMl", "-outSc", "scores"}).file("scores");
    EXPECT_NE(kept, ran.file("scores"));
    EXPECT_EQ(kept, search({"-outSc", "scores"}).file("scores"));
}

TEST(LikelihoodRun, CalculatedCouplings)
{
    // Row: ..., measured, calculated, difference, error, weight.
    const Ran bare = search({"-outSc", "scores"});
    const std::vector<std::vector<std::string>> zeros = tableRows(bare.file("out.tab"));
    ASSERT_EQ(zeros.size(), 63U);
    for (const std::vector<std::string> &row : zeros) {
        EXPECT_EQ(std::stod(row[8]), 0.0);
        EXPECT_EQ(std::stod(row[10]), 0.0);
    }
    const Ran mapped = search({"-outSc", "scores", "-mapMl", "-clearMl"});
    const std::vector<std::vector<std::string>> ranges = tableRows(mapped.file("out.tab"));
    ASSERT_EQ(ranges.size(), 63U);
    int wide = 0;
    for (const std::vector<std::string> &row : ranges) {
        EXPECT_NEAR(std::stod(row[8]), std::stod(row[7]), std::stod(row[10]) + 1e-3) << row[0];
        EXPECT_LT(std::stod(row[10]), 3.1) << row[0];
        wide += std::stod(row[10]) > 0.5 ? 1 : 0;
    }
    EXPECT_GE(wide, 60); // a coupling that no orientation has keeps itself and the width 0

    const Ran positive = search({"-outSc", "scores", "-mapMl", "-clearMl", "-lDa", "3", "-hDa", "25"});
    EXPECT_EQ(
        countOf(positive.file("out.tab"), "   52  ASP    H   52  ASP    N      0.00  -16.9830  -17.1289"), 1)
        << positive.file("out.tab");
}

TEST(LikelihoodRun, PositiveRangeAndScoresOnStandardOutput)
{
    const Ran negative = search({"-outSc", "scores"});
    const Ran ran = search({"-lDa", "3", "-hDa", "25"});
    ASSERT_EQ(ran.status, 0) << ran.err;
    EXPECT_EQ(number(ran, "DATA ML Da   "), 9.6);
    EXPECT_EQ(ran.out, "REMARK 63 couplings selected (inclusive max).\n" + negative.file("scores"));
}

TEST(LikelihoodRun, Failures)
{
    struct Case {
        std::vector<std::string> args;
        const char *message;
    };
    const Case cases[] = {
        {{"-incDa", "0"}, "Error: the grid of Da and R has no point: a step is 0 or limits cross.\n"},
        {{"-incDa", "0.01"}, "Error: the grid of Da and R has 154000 points, the limit is 20000.\n"},
        {{"-lR", "0.3", "-hR", "0.3"},
         "Error: the grid of Da and R has no point: a step is 0 or limits cross.\n"},
        {{"-lDa", "-60", "-incDa", "1"},
         "Error: the patterns up to Da -59.000 Hz, R 0.690 do not fit the axis of 81.92 Hz.\n"},
        {{"-d1", "900", "-dN", "901"}, "trelm: no coupling is left to estimate a tensor from.\n"},
        {{"-outSc", "/no/such/folder/s"}, "TRELM Error opening output file /no/such/folder/s\n"},
        {{"-outSc", "/dev/full"}, "Error writing /dev/full.\n"},
    };
    for (const Case &fault : cases) {
        const Ran ran = search(fault.args);
        EXPECT_EQ(ran.status, 1) << fault.message;
        EXPECT_EQ(countOf(ran.err, fault.message), 1) << fault.message;
        EXPECT_EQ(countOf(ran.err, "trelm: error in getMlDabR.\n"), 1) << fault.message;
        EXPECT_EQ(tableRows(ran.file("out.tab")).size(), fault.args[1] == "/dev/full" ? 63U : 0U)
            << fault.message;
    }
}

} // namespace
