// Da and R without a structure: whole runs on measured couplings.
#include "cli/run_program.h"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

namespace {

using Args = std::vector<std::string>;

Ran magnitudeRun(const char *mode, const std::string &table, const Args &more, const RunSetting &setting = {})
{
    Args args = {mode}; // of an option given twice the first counts
    args.insert(args.end(), more.begin(), more.end());
    args.insert(args.end(), {"-inD", table, "-outD", "out.tab", "-outSc", "sets.txt", "-outCol", "map.txt"});
    return runProgram(args, setting);
}

/// The estimate as computed from the definitions in double precision by another program.
struct HistogramRow {
    const char *table;
    Args args;
    double dzz, dyy, dxx;
    int nBins;
    double da, daError, r, rError;
};

TEST(HistogramRun, MeasuredCouplings)
{
    const std::vector<HistogramRow> rows = {
        {"bicelle_hn.tab", {}, -15.431, 11.567, 9.849, 86, -8.713, 0.065, 0.066, 0.009},
        {"bicelle_hn.tab", {"-nFit", "2"}, -15.431, 11.567, 0, 0, -7.715, 0.080, 0.333, 0.017},
        {"bicelle_hn.tab", {"-nFit", "2", "-noave"}, 0, 0, 0, 0, -8.491, 0.080, 0.261, 0.015},
        {"bicelle_hn.tab", {"-noave"}, 0, 0, 7.017, 91, -8.800, 0.065, 0.182, 0.009},
        {"bicelle_hn.tab", {"-bin", "20"}, -15.431, 11.567, 7.574, 20, -8.334, 0.065, 0.160, 0.009},
        {"bicelle_hn.tab", {"-noave", "-bin", "15"}, 0, 0, 7.974, 15, -8.959, 0.065, 0.143, 0.008},
        {"bicelle_hn.tab", {"-nFit", "5"}, -15.431, 11.567, 0, 0, -8.491, 0, 0.261, 0},
        {"bicelle2_hn.tab", {"-noave", "-bin", "10"}, 0, 0, 4.025, 10, 12.190, 0.069, 0.776, 0.008},
        // No bin is the most populated one: the extremes decide.
        {"bicelle2_hn.tab", {}, 25.831, -23.669, 3.871, 147, 13.200, 0, 0.564, 0},
    };
    for (const HistogramRow &row : rows) {
        SCOPED_TRACE(testing::Message() << row.table << testing::PrintToString(row.args));
        const Ran ran = magnitudeRun("-daHist", example(row.table), row.args);
        ASSERT_EQ(ran.status, 0) << ran.err;
        const std::string report = ran.file("out.tab");
        const auto principal = numbersAfter(report, "DATA Dzz_Dyy_Dxx");
        ASSERT_EQ(principal.size(), 3u);
        const auto expect = [&report](const char *label, double value, double within) {
            const auto found = numbersAfter(report, label);
            ASSERT_EQ(found.size(), 1u) << label;
            EXPECT_NEAR(found[0], value, within) << label;
        };
        constexpr double lastDigit = 1.1e-3;
        EXPECT_NEAR(principal[0], row.dzz, lastDigit);
        EXPECT_NEAR(principal[1], row.dyy, lastDigit);
        EXPECT_NEAR(principal[2], row.dxx, lastDigit);
        expect("DATA nBINS ", row.nBins, 0.0);
        expect("DATA Da ", row.da, lastDigit);
        expect("DATA Da_ERR ", row.daError, lastDigit);
        expect("DATA R ", row.r, lastDigit);
        expect("DATA R_ERR ", row.rError, lastDigit);
    }
}

TEST(HistogramRun, Report)
{
    const Ran ran = magnitudeRun("-daHist", example("bicelle_hn.tab"), {"-excl"});
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
    // The couplings that took part stand in both columns.
    const Ran part = magnitudeRun("-daHist", example("bicelle_hn.tab"), {"-s1", "10", "-sN", "40"});
    const auto rows = tableRows(part.file("out.tab"));
    ASSERT_FALSE(rows.empty());
    for (const auto &words : rows)
        EXPECT_EQ(words[7], words[8]);
}

TEST(MotionRun, MeasuredCouplings)
{
    const Ran ran = magnitudeRun("-daFlex", example("bicelle_hn.tab"), {"-nFit", "2"});
    ASSERT_EQ(ran.status, 0) << ran.err.substr(0, 500);
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
    const Ran bare = runProgram({"-daFlex", "-nFit", "2", "-nRun", "5", "-inD", example("bicelle_hn.tab")});
    EXPECT_EQ(bare.status, 0);
    const auto table0 = bare.out.find("# nDots = 32\n"), map0 = bare.out.find("-9.000  0.000  "),
               report = bare.out.find("REMARK Molecular");
    EXPECT_TRUE(table0 < map0 && map0 < report && report != std::string::npos) << bare.out;
}

TEST(MotionRun, SetsWithoutARatioAreCounted)
{
    // Three-parameter tensors of small sets are too small for some of their own couplings.
    const Ran ran = magnitudeRun("-daFlex", example("bicelle_hn.tab"), {});
    EXPECT_EQ(ran.status, 0);
    EXPECT_EQ(countOf(ran.err, " of 1000 sets have no ratio: too few couplings, one outside the pattern"), 1);
    EXPECT_GE(countOf(ran.err, "Warning: No single most populated coupling value.\n"
                               "       ==> 3-parameter fit not possible.\n"),
              1);
}

std::string tableOf(const std::vector<std::string> &couplings, const std::string &weight = "1.00")
{
    std::string text = "VARS RESID_I RESNAME_I ATOMNAME_I RESID_J RESNAME_J ATOMNAME_J D DD W\n"
                       "FORMAT %5d %6s %6s %5d %6s %6s %9.3f %9.3f %.2f\n";
    int residue = 0;
    for (const std::string &coupling : couplings) {
        const std::string id = std::to_string(++residue);
        text += id + " ALA H " + id + " ALA N " + coupling + " " + weight + "\n";
    }
    return text;
}

TEST(MagnitudeFailures, EachIsTold)
{
    const std::vector<std::string> some = {"-18.0 0.5", "2.0 0.5", "7.0 0.5", "7.1 0.5", "12.0 0.5"};
    struct Case {
        const char *why;
        const char *mode; ///< null: both
        std::string table;
        Args args;
        const char *line;
    };
    const char *const hist = "-daHist", *const flex = "-daFlex", *const both = nullptr;
    const char *const folders = "Measurement error too small.\n       ==> 3-parameter fit not possible.\n";
    const std::string zeroErrors = tableOf({"-18.0 0.0", "2.0 0.0", "7.0 0.0"});
    const std::string crossTable = "VARS RESID_I RESNAME_I ATOMNAME_I RESID_J RESNAME_J ATOMNAME_J D DD W\n"
                                   "FORMAT %d %s %s %d %s %s %f %f %f\n"
                                   "2 ALA C 3 ALA N 1.5 0.1 1.0\n1 ALA C 3 ALA H 2.5 0.1 1.0\n";
    const std::vector<Case> cases = {
        {"an empty table", both, "", {}, "Error reading DC input in.tab\n"},
        {"no coupling selected",
         both,
         tableOf(some),
         {"-s1", "50", "-sN", "60"},
         "trelm: no coupling is left to estimate a tensor from.\n"},
        {"no coupling of this kind",
         both,
         tableOf(some),
         {"-aD1", "CA"},
         "trelm: no coupling is left to estimate a tensor from.\n"},
        {"only marks",
         both,
         tableOf({"999.0 1.0", "950.0 1.0"}),
         {},
         "trelm: no coupling is left to estimate a tensor from.\n"},
        {"zeros",
         both,
         tableOf({"0.0 1.0", "0.0 1.0"}),
         {},
         "Error: All couplings are 0, there is no tensor to find.\n"},
        {"infinite",
         both,
         tableOf({"-inf 1.0", "2.0 1.0"}),
         {},
         "DC Error: D is no finite number in row 1 of in.tab.\n"},
        {"weights too large",
         both,
         tableOf(some, "1e38"),
         {},
         "Error: The coupling of row 1 times its weight is out of range.\n"},
        {"no errors, automatic bins", hist, zeroErrors, {}, folders},
        {"no errors, two parameters",
         hist,
         zeroErrors,
         {"-nFit", "2"},
         "Error: The mean error of the couplings is not above 0.\n"},
        {"no errors, bins",
         hist,
         zeroErrors,
         {"-noave", "-bin", "9"},
         "Error: The mean error of the couplings is not above 0.\n"},
        {"no errors, sets", flex, zeroErrors, {}, "Error: The mean error of the couplings is not above 0.\n"},
        {"small errors", both, tableOf({"-18.0 1e-3", "2.0 1e-3", "7.0 1e-3"}), {"-noave"}, folders},
        {"tiny errors",
         hist,
         tableOf({"-18.0 1e-9", "2.0 1e-9", "7.0 1e-9"}),
         {"-noave"},
         "Error: Too many folders (1000000001) for histogram.\n"},
        {"too many bins",
         both,
         tableOf(some),
         {"-bin", "300"},
         "Error: Too many folders (300) for histogram.\n"},
        {"one bin",
         both,
         tableOf(some),
         {"-bin", "1"},
         "Error: -bin 1: a histogram needs two bins at least.\n"},
        {"no factor",
         both,
         tableOf(some),
         {"-sdevDzz", "0"},
         "Error: -sdevDzz and -sdevDyy must be above 0.\n"},
        {"one coupling", hist, tableOf({"-18.0 0.5"}), {}, "Error: One coupling has no distribution.\n"},
        {"no fit of sets",
         flex,
         tableOf(some),
         {"-nFit", "5"},
         "motionHist: -nFit 5: a set is fitted with 2 or 3.\n"},
        {"no sets",
         flex,
         tableOf(some),
         {"-nRun", "0"},
         "motionHist: -nRun 0: the number of sets is 1 to 1000000.\n"},
        {"negative set",
         flex,
         tableOf(some),
         {"-nSel", "-1"},
         "motionHist: -nSel -1: a set cannot have fewer than 0 residues.\n"},
        {"beyond the axis",
         flex,
         tableOf({"-85.0 0.5", "40.0 0.5"}),
         {},
         "motionHist: a coupling lies outside the frequency axis of 81.92 Hz.\n"},
        {"error beyond the response",
         flex,
         tableOf({"-18.0 2.0", "7.0 2.0"}),
         {"-nFit", "2"},
         "motionHist: the mean error of a set, 2.000 Hz, is above 1.70 Hz.\n"},
        {"a wide window",
         flex,
         tableOf(some),
         {"-s1", "-9000", "-sN", "15000"},
         "motionHist: the window of residues -9000 to 15000 has more than 20000.\n"},
        {"couplings alike",
         hist,
         tableOf({"10.0 0.5", "10.0 0.5", "10.0 0.5", "10.0 0.5"}),
         {},
         "Error: The extremes of the couplings are one value, there is no tensor to fit.\n"},
        {"errors as large as the couplings",
         hist,
         tableOf({"-18.0 1e3", "2.0 1e3", "7.0 1e3", "7.1 1e3", "12.0 1e3"}),
         {"-nFit", "2"},
         "Error: The extremes of the couplings are one value, there is no tensor to fit.\n"},
        {"no coupling by its larger residue",
         flex,
         crossTable,
         {"-inc", "-s1", "1", "-sN", "2"},
         "motionHist: no residue of the window has a coupling.\nmotionHist: unsp error occured.\n"},
        {"more than the sphere has",
         flex,
         tableOf(std::vector<std::string>(45000, "5.0 0.5")),
         {"-nSel", "0"},
         "motionHist: the window of residues 1 to 45000 has more than 20000.\n"},
        {"table and map in one file",
         flex,
         tableOf(some),
         {"-outSc", "x", "-outCol", "./x"},
         "motionHist: ./x is another file of this run: give each a name of its own.\n"},
        {"table over the input",
         flex,
         tableOf(some),
         {"-outSc", "./in.tab"},
         "motionHist: ./in.tab is another file of this run: give each a name of its own.\n"},
        {"map over the report",
         flex,
         tableOf(some),
         {"-outCol", "out.tab"},
         "motionHist: out.tab is another file of this run: give each a name of its own.\n"},
        {"no place for the table",
         flex,
         tableOf(some),
         {"-outSc", "/none/s"},
         "TRELM Error opening output file /none/s\n"},
        {"no place for the map",
         flex,
         tableOf(some),
         {"-outCol", "/none/m"},
         "TRELM Error opening output file /none/m\n"},
        {"table to a full device",
         flex,
         tableOf(some),
         {"-outSc", "/dev/full"},
         "Error writing /dev/full.\n"},
        {"map to a full device", flex, tableOf(some), {"-outCol", "/dev/full"}, "Error writing /dev/full.\n"},
    };
    for (const Case &refused : cases)
        for (const char *mode : {hist, flex}) {
            if (refused.mode != both && refused.mode != mode)
                continue;
            SCOPED_TRACE(testing::Message() << mode << ": " << refused.why);
            const Ran ran =
                magnitudeRun(mode, "in.tab", refused.args, {.files = {{"in.tab", refused.table}}});
            EXPECT_EQ(ran.status, 1) << ran.err;
            EXPECT_EQ(countOf(ran.err, refused.line), 1) << ran.err.substr(0, 2000);
            EXPECT_EQ(countOf(ran.err, "trelm: error in getHistDabR.\n"), 1);
            EXPECT_FALSE(ran.exists("out.tab"));
            EXPECT_EQ(ran.file("in.tab"), refused.table);
        }
    const Ran full = runProgram({"-daHist", "-inD", example("bicelle_hn.tab"), "-outD", "/dev/full"});
    EXPECT_EQ(full.status, 1);
    EXPECT_EQ(countOf(full.err, "Error writing /dev/full.\n"), 1) << full.err;
}

} // namespace
