// Whole runs of the likelihood search on ubiquitin's measured N-H couplings.
#include "cli/run_program.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

namespace {

Ran search(const std::string &options)
{
    return goodRun(options + " -daMl -inD ubi/bicelle_hn.tab -outD out.tab");
}

TEST(LikelihoodRun, DefaultGrid)
{
    const Ran ran = search("-outSc scores");
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

    // The same range on the other side, and the scores on standard output.
    const Ran positive = search("-lDa 3 -hDa 25");
    EXPECT_EQ(number(positive.file("out.tab"), "DATA ML Da   "), 9.6);
    EXPECT_EQ(positive.out, "REMARK 63 couplings selected (inclusive max).\n" + scores);

    // Patterns that are not cleared, which is what the run does by itself; those cleared meet the best fit,
    // which finds -9.40 Hz and 0.156 with the structure.
    EXPECT_EQ(search("-noclearMl -outSc scores").file("scores"), scores);
    const Ran cleared = search("-clearMl -outSc scores");
    EXPECT_NE(cleared.file("scores"), scores);
    const std::string report = cleared.file("out.tab");
    EXPECT_NEAR(number(report, "DATA ML Da   "), -9.40, number(report, "DATA ML Da Err"));
    EXPECT_NEAR(number(report, "DATA ML R   "), 0.156, number(report, "DATA ML R Err"));

    const std::vector<std::vector<std::string>> rowsOfCouplings = tableRows(ran.file("out.tab"));
    ASSERT_EQ(rowsOfCouplings.size(), 63U);
    for (const std::vector<std::string> &row : rowsOfCouplings) { // not mapped: nothing calculated
        EXPECT_EQ(std::stod(row[8]), 0.0);
        EXPECT_EQ(std::stod(row[10]), 0.0);
    }
}

TEST(LikelihoodRun, LimitsThatCrossLeaveNoPoint)
{
    for (const char *limits :
         {"-lDa 3 -hDa 3", "-lR 0.3 -hR 0.3", "-lR 0.8", "-lDa -5 -hDa -5", "-lR 5 -hR 3 -hDa 3"}) {
        const Ran ran = search(std::string(limits) + " -outSc scores");
        EXPECT_EQ(ran.out, "REMARK 63 couplings selected (inclusive max).\n");
        EXPECT_EQ(complaints(ran.err),
                  "Warning: the grid of Da and R has no point between its limits, Da and R stay 0.\n");
        EXPECT_EQ(ran.file("scores"), "VARS   DA R SCORE\nFORMAT %3.1f %1.2f %e\n\n");
        EXPECT_EQ(countOf(ran.file("out.tab"),
                          "DATA ML Da             0.000\nDATA ML Da Err         0.500\n"
                          "DATA ML R              0.000\nDATA ML R Err          0.050\n"),
                  1)
            << ran.file("out.tab");
        EXPECT_EQ(tableRows(ran.file("out.tab")).size(), 63U);
    }
}

// R that no tensor has, and Da on the side without patterns, run with one line.
TEST(LikelihoodRun, LimitsBeyondAllTensors)
{
    struct Case {
        const char *limits;
        std::string told, scores; ///< the first scores
        double da;
    };
    const std::string R = "Warning: the grid of R runs from ", Da = "Warning: the grid of Da runs from ",
                      noR = ": no tensor has an R outside 0 to 2.\n",
                      noDa = ": its points above 0 have no pattern.\n",
                      none = "Warning: no grid point scores above 0, Da and R stay 0.\n";
    const Case cases[] = {
        {"-lR -0.7 -hR -0.1 -incR 0.55 -lDa -16 -hDa -15.13 -incDa 2", R + "-0.700 to -0.100" + noR,
         "-15.1 -0.70 0.000000e+00\n-15.1 -0.15 1.", -15.13},
        {"-lR 2.1 -hR 2.2 -incR 0.1 -lDa -10.3 -incDa 6.1 -hDa -4.1", R + "2.100 to 2.200" + noR,
         "-4.1 2.10 0.000000e+00\n-10.2 2.10 7.306025e+00\n", -10.2},
        // A point without a pattern keeps that of the point before.
        {"-lDa -10 -hDa 7 -incDa 16.5 -incR 0.3", Da + "-10.000 to 7.000" + noDa,
         "7.0 0.00 0.000000e+00\n-9.5 0.00 0.000000e+00\n7.0 0.30 0.000000e+00\n-9.5 0.30 3.267861e+01\n"
         "7.0 0.60 3.267861e+01\n",
         -9.5},
        {"-lDa 10 -hDa -7 -incDa 16.5 -incR 0.3", Da + "-10.000 to 7.000" + noDa, "7.0 0.00 ", 9.5},
        {"-lDa 0 -hDa -17 -incDa 3 -incR 0.7", Da + "0.000 to 17.000" + noDa + none, "17.0 0.00 ", 0.0},
    };
    for (const Case &c : cases) {
        const Ran ran = search(std::string(c.limits) + " -outSc scores");
        EXPECT_TRUE(complaints(ran.err).starts_with(c.told)) << ran.err;
        EXPECT_TRUE(ran.file("scores").substr(41).starts_with(c.scores)) << ran.file("scores");
        EXPECT_EQ(number(ran.file("out.tab"), "DATA ML Da   "), c.da) << c.limits;
    }
}

TEST(LikelihoodRun, LargeErrorsFoldTheResponse)
{
    const std::string warning = "Warning: the mean error of the couplings, ",
                      folded = " Hz, is above 1.70 Hz: the response runs into itself.\n";
    const auto told = [&](const std::string &error, const std::string &mean) {
        std::string table = "VARS RESID_I ATOMNAME_I RESID_J ATOMNAME_J D DD\nFORMAT %d %s %d %s %f %f\n";
        for (const char *coupling : {"-20.0", "-18.0", "9.0", "8.0", "10.0", "1.0"})
            table.append("2 H 2 N ").append(coupling).append(" ").append(error).append("\n");
        const Ran ran = runProgram("-daMl -incDa 1 -incR 0.1 -inD in.tab -outD out.tab -outSc scores",
                                   {.files = {{"in.tab", table}}});
        EXPECT_EQ(ran.status, 0);
        return countOf(ran.err, warning + mean + folded);
    };
    EXPECT_EQ(told("1.7", "1.700"), 0);
    EXPECT_EQ(told("1.71", "1.710"), 1);
    EXPECT_EQ(told("2.5", "2.500"), 1);
}

TEST(LikelihoodRun, MappedCouplings)
{
    // Row: ..., measured, calculated, difference, error, weight.
    const Ran mapped = search("-outSc scores -mapMl -clearMl");
    const std::vector<std::vector<std::string>> ranges = tableRows(mapped.file("out.tab"));
    ASSERT_EQ(ranges.size(), 63U);
    int wide = 0;
    for (const std::vector<std::string> &row : ranges) {
        EXPECT_NEAR(std::stod(row[8]), std::stod(row[7]), std::stod(row[10]) + 1e-3) << row[0];
        EXPECT_LT(std::stod(row[10]), 3.1) << row[0];
        wide += std::stod(row[10]) > 0.5 ? 1 : 0;
    }
    EXPECT_GE(wide, 60); // a coupling that no orientation has keeps itself and the width 0

    const Ran positive = search("-outSc scores -mapMl -clearMl -lDa 3 -hDa 25");
    EXPECT_EQ(
        countOf(positive.file("out.tab"), "   52  ASP    H   52  ASP    N      0.00  -16.9830  -17.1289"), 1)
        << positive.file("out.tab");
}

TEST(LikelihoodRun, ScoresToAFullDeviceLeaveTheCouplings)
{
    const Ran ran = runProgram("-daMl -inD ubi/bicelle_hn.tab -outD out.tab -outSc /dev/full");
    EXPECT_EQ(ran.status, 1);
    EXPECT_EQ(countOf(ran.err, "Error writing /dev/full.\ntrelm: error in getMlDabR.\n"), 1);
    EXPECT_EQ(tableRows(ran.file("out.tab")).size(), 63U);
}

} // namespace
