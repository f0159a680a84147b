// Da and R without a structure: whole runs on measured couplings.
#include "cli/run_program.h"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

namespace {

Ran magnitudeRun(const std::string &options, const std::string &table = "bicelle_hn.tab")
{
    return goodRun(options + " -outD out.tab -outSc sets.txt -outCol map.txt -inD ubi/" + table);
}

/// N-H couplings of residues 1, 2, ..., with one error.
std::string amides(const std::vector<double> &couplings, const std::string &error)
{
    std::ostringstream table;
    table << "VARS RESID_I ATOMNAME_I RESID_J ATOMNAME_J D DD\nFORMAT %d %s %d %s %f %f\n";
    for (std::size_t i = 1; i <= couplings.size(); ++i)
        table << i << " H " << i << " N " << couplings[i - 1] << ' ' << error << '\n';
    return table.str();
}

/// The estimate as computed from the definitions in double precision by another program.
struct HistogramRow {
    const char *table, *options;
    double dzz, dyy, dxx;
    int nBins;
    double da, daError, r, rError;
};

TEST(HistogramRun, MeasuredCouplings)
{
    const HistogramRow rows[] = {
        {"bicelle_hn.tab", "", -15.431, 11.567, 9.849, 86, -8.713, 0.065, 0.066, 0.009},
        {"bicelle_hn.tab", "-nFit 2", -15.431, 11.567, 0, 0, -7.715, 0.080, 0.333, 0.017},
        {"bicelle_hn.tab", "-nFit 2 -noave", 0, 0, 0, 0, -8.491, 0.080, 0.261, 0.015},
        {"bicelle_hn.tab", "-noave", 0, 0, 7.017, 91, -8.800, 0.065, 0.182, 0.009},
        {"bicelle_hn.tab", "-bin 20", -15.431, 11.567, 7.574, 20, -8.334, 0.065, 0.160, 0.009},
        {"bicelle_hn.tab", "-noave -bin 15", 0, 0, 7.974, 15, -8.959, 0.065, 0.143, 0.008},
        {"bicelle_hn.tab", "-nFit 5", -15.431, 11.567, 0, 0, -8.491, 0, 0.261, 0},
        // An extreme of which no value agrees with another is 0.
        {"bicelle_hn.tab", "-nFit 5 -sdevDzz 0", 0, 11.567, 0, 0, -8.491, 0, 0.261, 0},
        {"bicelle2_hn.tab", "-noave -bin 10", 0, 0, 4.025, 10, 12.190, 0.069, 0.776, 0.008},
        // No bin is the most populated one: the extremes decide.
        {"bicelle2_hn.tab", "", 25.831, -23.669, 3.871, 147, 13.200, 0, 0.564, 0},
    };
    for (const HistogramRow &row : rows) {
        SCOPED_TRACE(testing::Message() << row.table << row.options);
        const std::string report =
            magnitudeRun(std::string("-daHist ") + row.options, row.table).file("out.tab");
        const auto principal = numbersAfter(report, "DATA Dzz_Dyy_Dxx");
        const auto expect = [&report](const char *label, double value, double within) {
            const auto found = numbersAfter(report, label);
            ASSERT_EQ(found.size(), 1u) << label;
            EXPECT_NEAR(found[0], value, within) << label;
        };
        constexpr double lastDigit = 1.1e-3;
        expectNear(principal, {row.dzz, row.dyy, row.dxx}, lastDigit);
        expect("DATA nBINS ", row.nBins, 0.0);
        expect("DATA Da ", row.da, lastDigit);
        expect("DATA Da_ERR ", row.daError, lastDigit);
        expect("DATA R ", row.r, lastDigit);
        expect("DATA R_ERR ", row.rError, lastDigit);
    }
}

TEST(HistogramRun, Report)
{
    const Ran ran = magnitudeRun("-daHist -excl");
    EXPECT_EQ(ran.out, "REMARK 63 couplings selected (exclusive).\ncoupList[0] (-16.983) < -15.591\n");
    EXPECT_EQ(countOf(ran.err, "bicelle_hn.tab, 63 Couplings, Residues 2 to 70.\n"), 1);
    EXPECT_EQ(countOf(ran.file("out.tab"), "\nDATA TRELM_MODE DA_HIST\n\n"
                                           "DATA DC MIN_MAX    -16.983  11.814\n"
                                           "DATA FIT_PAR        3\n"
                                           "DATA AVE_EXTREM     YES\n"
                                           "DATA SDEVDZZ        0.400\n"
                                           "DATA SDEVDYY        0.900\n"
                                           "DATA nBINS          86\n"
                                           "DATA BINWIDTH       0.320\n"
                                           "\n\nREMARK Solving the linear equation system.\n\n"
                                           "DATA EQ Da         -8.491\n"
                                           "DATA EQ R           0.261\n"
                                           "\n\nREMARK Nonlinear least-square opimization.\n\n"
                                           "DATA Dzz_Dyy_Dxx   -15.431  11.567  9.849\n"),
              1);
    const std::string factors = ": without a factor above 0 an extreme is averaged to 0.\n",
                      noPeak = "Error: No single most populated coupling value.\n"
                               "       ==> 3-parameter fit not possible.\n";
    EXPECT_TRUE(complaints(magnitudeRun("-daHist -sdevDzz 0").err)
                    .starts_with("Warning: -sdevDzz 0, -sdevDyy 0.9" + factors));
    const Ran far = goodRun("-daHist -sdevDzz 0 -sdevDyy 0 -inD in.tab",
                            {.files = {{"in.tab", amides({-18.0, 7.0, 12.0}, "0.5")}}});
    EXPECT_TRUE(complaints(far.err).starts_with("Warning: -sdevDzz 0, -sdevDyy 0" + factors + noPeak));
    const Ran single = magnitudeRun("-daHist -bin 1");
    EXPECT_TRUE(complaints(single.err)
                    .starts_with("Warning: -bin 1: a single bin has no width, no coupling falls into it.\n" +
                                 noPeak));
    EXPECT_EQ(single.out, "REMARK 63 couplings selected (inclusive max).\n");
    EXPECT_EQ(countOf(single.file("out.tab"), "DATA nBINS          1\nDATA BINWIDTH       inf\n"), 1);
    // The couplings that took part stand in both columns.
    const Ran part = magnitudeRun("-daHist -s1 10 -sN 40");
    const auto rows = tableRows(part.file("out.tab"));
    ASSERT_FALSE(rows.empty());
    for (const auto &words : rows)
        EXPECT_EQ(words[7], words[8]);
}

TEST(MotionRun, MeasuredCouplings)
{
    const Ran ran = magnitudeRun("-daFlex -nFit 2");
    EXPECT_TRUE(
        ran.out.starts_with("REMARK 63 couplings selected (inclusive max).\nREMARK 32 simulated couplings "
                            "(isotropic).\n"));
    EXPECT_EQ(countOf(ran.err, "REMARK Histogram 1000 of 1000\r\n"), 1);
    const std::string table = ran.file("sets.txt");
    EXPECT_TRUE(table.starts_with("# nDots = 32\n\n1  "));
    EXPECT_EQ(countOf(table, "\n1000  "), 1);
    EXPECT_EQ(countOf(table, "\n\n\n# DATA MAX_MIN Da     "), 3);
    EXPECT_EQ(countOf(table, "nan"), 0);
    std::istringstream map(ran.file("map.txt"));
    double da = 0, r = 0, lastDa = -1e9, lastR = 0;
    int colour[3] = {}, cells = 0;
    while (map >> da >> r >> colour[0] >> colour[1] >> colour[2]) {
        EXPECT_TRUE(std::fabs(r - lastR - 0.02) < 1e-6 || (r == 0.0 && da > lastDa)) << da << ' ' << r;
        lastDa = da;
        lastR = r;
        ++cells;
        for (const int c : colour)
            EXPECT_TRUE(c >= 0 && c <= 15);
    }
    EXPECT_TRUE(map.eof());
    EXPECT_GT(cells, 500);
    EXPECT_EQ(countOf(ran.file("out.tab"), "\nDATA N                    0\n"), 1); // the report has no rows
    // All outputs to standard output, in their order.
    const Ran bare = goodRun("-daFlex -nFit 2 -nRun 5 -inD ubi/bicelle_hn.tab");
    const auto table0 = bare.out.find("# nDots = 32\n"), map0 = bare.out.find("-9.000  0.000  "),
               report = bare.out.find("REMARK Molecular");
    EXPECT_TRUE(table0 < map0 && map0 < report && report != std::string::npos) << bare.out;
}

const std::vector<double> few = {-2.0, -1.9, 1.1, 1.0, 0.9, 0.8, 0.3, -0.4};
const std::string motionReport =
    "REMARK Molecular Alignment Simulation.\n\nREMARK Simulation parameters.\n\n\n\n"
    "REMARK Dipolar couplings.\n\nDATA N                    0\nDATA SEQUENCE \n";

/// The ranges of Da and R and of a list of scores.
std::string motionRange(const std::string &da, const std::string &r, const std::string &score)
{
    return "\n\n# DATA MAX_MIN Da     " + da + "\n# DATA MAX_MIN R      " + r + "\n# DATA MAX_MIN Score  " +
           score + "\n";
}

TEST(MotionRun, WholeTexts)
{
    const Ran ran =
        goodRun("-daFlex -nFit 2 -nRun 2 -nSel 6 -inD in.tab", {.files = {{"in.tab", amides(few, "0.5")}}});
    EXPECT_EQ(ran.out, "REMARK 8 couplings selected (inclusive max).\n"
                       "REMARK 12 simulated couplings (isotropic).\n"
                       "# nDots = 12\n"
                       "\n"
                       "1  -1.000  0.067     6     0.481    0.481    0.481\n"
                       "2  -0.950  0.105     6     0.475    0.475    0.475\n" +
                           motionRange("-0.950  -1.000", "0.105  0.067", "0.481  0.475") +
                           motionRange("-0.950  -1.000", "0.105  0.067", "0.481  0.475") +
                           motionRange("-0.950  -1.000", "0.105  0.067", "0.481  0.475") +
                           "-1.000  0.000     0     0     0\n"
                           "-1.000  0.020     0     0     0\n"
                           "-1.000  0.040     0     0     0\n"
                           "-1.000  0.060     1     1     1\n"
                           "-1.000  0.080     0     0     0\n"
                           "-1.000  0.100     1     0     0\n"
                           "-0.800  0.000     0     0     0\n"
                           "-0.800  0.020     0     0     0\n"
                           "-0.800  0.040     0     0     0\n"
                           "-0.800  0.060     0     0     0\n"
                           "-0.800  0.080     0     0     0\n"
                           "-0.800  0.100     0     0     0\n" +
                           motionReport);
    EXPECT_EQ(ran.err.substr(0, ran.err.find("REMARK Memory Allocation Status.")),
              "\n"
              "\n"
              "*--------------------------------------------------*\n"
              "|                      TRELM                       |\n"
              "*--------------------------------------------------*\n"
              "\n"
              "\n"
              "in.tab, 8 Couplings, Residues 1 to 8.\n"
              "REMARK Histogram 1 of 2\rREMARK Histogram 2 of 2\r\n");
}

// Settings that have no sense, and run all the same.
TEST(MotionRun, OddSettings)
{
    const std::string noScores = motionRange("0.000  0.000", "0.000  0.000", "0.000  0.000");
    const std::string
        start = "REMARK 8 couplings selected (inclusive max).\nREMARK 12 simulated couplings (isotropic).\n"
                "# nDots = 12\n\n",
        none = noScores + noScores + noScores;
    struct {
        const char *options, *error;
        std::string told, out; ///< before the report
    } const cases[] = {
        {"-nRun 0", "0.5", "Warning: -nRun 0: no set is drawn.\n",
         start + none + "0.000  0.000     0     0     0\n0.200  0.000     0     0     0\n"},
        {"-nRun 1 -nFit 5", "0.5", "Warning: -nFit 5: no set is fitted, all have Da and R 0.\n",
         start + "1  0.000  0.000     6     0.000    0.000    0.000\n" + none +
             "0.000  0.000     1     0     0\n0.200  0.000     0     0     0\n"},
        {"-nRun 1 -nFit 2", "2.0",
         "Warning: the mean error of a set, 2.000 Hz, is above 1.70 Hz: the response runs into itself.\n",
         start + "1  -1.000  0.067     6     0.494    0.494    0.494\n" +
             motionRange("-1.000  -1.000", "0.067  0.067", "0.494  0.494") +
             motionRange("-1.000  -1.000", "0.067  0.067", "0.494  0.494") +
             motionRange("-1.000  -1.000", "0.067  0.067", "0.494  0.494") +
             "-1.000  0.000     0     0     0\n"
             "-1.000  0.020     0     0     0\n"
             "-1.000  0.040     0     0     0\n"
             "-1.000  0.060     1     0     0\n"
             "-0.800  0.000     0     0     0\n"
             "-0.800  0.020     0     0     0\n"
             "-0.800  0.040     0     0     0\n"
             "-0.800  0.060     0     0     0\n"},
    };
    for (const auto &row : cases) {
        const Ran ran = goodRun(std::string(row.options) + " -daFlex -nSel 6 -inD in.tab",
                                {.files = {{"in.tab", amides(few, row.error)}}});
        EXPECT_EQ(complaints(ran.err), row.told);
        EXPECT_EQ(ran.out, row.out + motionReport) << row.options;
    }
}

TEST(MotionRun, SetsWithoutARatioAreCounted)
{
    // Three-parameter tensors of small sets are too small for some of their own couplings.
    const Ran ran = magnitudeRun("-daFlex");
    EXPECT_EQ(countOf(ran.err, " of 1000 sets have no ratio: too few couplings, one outside the pattern"), 1);
    EXPECT_GE(countOf(ran.err, "Warning: No single most populated coupling value.\n"
                               "       ==> 3-parameter fit not possible.\n"),
              1);
}

} // namespace
