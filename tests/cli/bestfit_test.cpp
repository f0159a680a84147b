// Whole runs of -bestFit on ubiquitin's measured couplings.
#include "cli/run_program.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

namespace {

std::vector<std::string> bestFit(const std::string &table, std::vector<std::string> more = {})
{
    std::vector<std::string> args = {
        "-bestFit",   "-pdb", example("1d3z_model1.pdb"), "-inD", table, "-outD", "fit.tab", "-pdbRot",
        "turned.pdb", "-H"};
    args.insert(args.end(), more.begin(), more.end());
    return args;
}

double number(const std::string &report, std::string_view label)
{
    const std::vector<double> numbers = numbersAfter(report, label);
    return numbers.empty() ? std::nan("") : numbers[0];
}

/// A double-precision fit by singular value decomposition of each table (weights 1 / DD on the amide scale),
/// as published with the example: what single precision may change is the last digit.
struct FitRow {
    const char *table;
    int n;
    double daHN, rhombicity, rms, r, q, chi2;
    std::array<double, 5> saupe; // 1e-4
};

constexpr FitRow fitRows[] = {
    {"bicelle_hn.tab",
     63,
     -9.398,
     0.156,
     0.375,
     0.9986,
     0.0459,
     346.2,
     {-5.6368, 0.8665, 0.2927, -1.4116, 5.6394}},
    {"bicelle_backbone.tab",
     301,
     -9.351,
     0.166,
     0.453,
     0.9983,
     0.0568,
     132.3,
     {-5.6237, 0.7177, 0.2748, -1.3829, 5.6242}},
    {"bicelle2_hn.tab",
     60,
     -15.450,
     0.503,
     1.171,
     0.9951,
     0.0928,
     2849.1,
     {-10.2016, 5.0346, -4.9577, -2.1155, 8.3330}},
    {"bicelle2_backbone.tab",
     298,
     -15.799,
     0.508,
     1.050,
     0.9967,
     0.0815,
     781.6,
     {-10.4941, 5.1898, -5.0508, -2.3027, 8.4644}},
    {"bicelle_hn_nfirst.tab",
     63,
     -7.837,
     0.156,
     0.349,
     0.9988,
     0.0427,
     300.2,
     {-4.6983, 0.7212, 0.2432, -1.1869, 4.7023}},
    {"bicelle_cacb.tab",
     39,
     -8.333,
     0.159,
     0.201,
     0.9899,
     0.1511,
     41.5,
     {-5.0853, 0.6928, 0.1935, -1.4272, 4.8956}},
    {"bicelle_hn_all.tab",
     68,
     -9.018,
     0.177,
     1.495,
     0.9771,
     0.1877,
     5936.2,
     {-5.2374, 0.5997, 0.4108, -1.4693, 5.5319}},
    {"bicelle2_hn_all.tab",
     69,
     -14.402,
     0.503,
     3.153,
     0.9670,
     0.2424,
     23729.9,
     {-9.2427, 4.7697, -4.4933, -2.2378, 7.9936}},
    {"synthetic_backbone.tab", 305, -8.031, 0.235, 0.000, 1.0000, 0.0000, 0.0, {-5.0, 3.0, -2.0, 1.5, 4.0}},
};

/// Two units of the last of five printed digits.
double lastDigits(double value)
{
    return 2e-4 * std::pow(10.0, std::max(0.0, std::floor(std::log10(std::abs(value)))));
}

TEST(BestFit, FindsThePublishedOrderMatrix)
{
    for (const FitRow &row : fitRows) {
        SCOPED_TRACE(row.table);
        const Ran ran = runProgram(bestFit(example(row.table), {"-qRms"}));
        ASSERT_EQ(ran.status, 0) << ran.err;
        const std::string report = ran.file("fit.tab");
        const std::vector<double> saupe = numbersAfter(report, "DATA SAUPE ");
        ASSERT_EQ(saupe.size(), 5u);
        for (std::size_t k = 0; k < 5; ++k)
            EXPECT_NEAR(saupe[k] * 1e4, row.saupe[k], lastDigits(row.saupe[k]));
        EXPECT_EQ(number(report, "DATA N "), row.n);
        EXPECT_NEAR(number(report, "DATA Da_HN"), row.daHN, 1e-3);
        EXPECT_NEAR(number(report, "DATA Rhombicity"), row.rhombicity, 6e-4);
        EXPECT_NEAR(number(report, "DATA RMS"), row.rms, 6e-4);
        EXPECT_NEAR(number(report, "DATA CORR R"), row.r, 6e-4);
        EXPECT_NEAR(number(report, "DATA Q RDC_RMS"), row.q, 6e-4);
        EXPECT_NEAR(number(report, "DATA Chi2"), row.chi2, 2e-4 * row.chi2 + 0.05);
        EXPECT_EQ(tableRows(report).size(), static_cast<std::size_t>(row.n));
    }
}

TEST(BestFit, WrittenTableIsReadBackAndFitsTheSame)
{
    const Ran first = runProgram(bestFit(example("bicelle_backbone.tab")));
    ASSERT_EQ(first.status, 0);
    const Ran second = runProgram(bestFit((first.folder / "fit.tab").string()));
    ASSERT_EQ(second.status, 0) << second.err;
    // The column D of an output is the calculated coupling: a table without noise, with the same order
    // matrix.
    const std::string report = second.file("fit.tab");
    EXPECT_LT(number(report, "DATA RMS"), 0.001);
    const std::vector<double> before = numbersAfter(first.file("fit.tab"), "DATA SAUPE ");
    const std::vector<double> after = numbersAfter(report, "DATA SAUPE ");
    ASSERT_EQ(before.size(), 5u);
    ASSERT_EQ(after.size(), 5u);
    for (std::size_t k = 0; k < 5; ++k)
        EXPECT_NEAR(before[k], after[k], 2e-8);
}

TEST(BestFit, TurnedStructuresStandInTheTensorsFrame)
{
    const Ran first = runProgram(bestFit(example("bicelle2_backbone.tab"), {"-rotID", "2"}));
    ASSERT_EQ(first.status, 0);
    EXPECT_EQ(first.file("turned.pdb"), first.file("turned.pdb.2"));
    for (const char *turned : {"turned.pdb.0", "turned.pdb.1", "turned.pdb.2", "turned.pdb.3"}) {
        SCOPED_TRACE(turned);
        const Ran again =
            runProgram({"-bestFit", "-pdb", (first.folder / turned).string(), "-inD",
                        example("bicelle2_backbone.tab"), "-outD", "fit.tab", "-pdbRot", "t.pdb"});
        ASSERT_EQ(again.status, 0) << again.err;
        const std::vector<double> saupe = numbersAfter(again.file("fit.tab"), "DATA SAUPE ");
        ASSERT_EQ(saupe.size(), 5u);
        const double szz = saupe[0], sxx = -0.5 * (saupe[0] - saupe[1]), syy = -0.5 * (saupe[0] + saupe[1]);
        for (std::size_t k = 2; k < 5; ++k)
            EXPECT_NEAR(saupe[k] / szz, 0.0, 2e-3); // the file's coordinates have three decimals
        EXPECT_GT(std::abs(szz), std::abs(syy));
        EXPECT_GT(std::abs(syy), std::abs(sxx));
    }
}

TEST(BestFit, WithoutHydrogensWrittenFilesHoldTheHydrogens)
{
    // The selection that drops hydrogens from the marks is the one the writer then asks.
    std::vector<std::string> args = bestFit(example("bicelle_hn.tab"));
    args.pop_back(); // -H
    const Ran ran = runProgram(args);
    ASSERT_EQ(ran.status, 0);
    EXPECT_EQ(countOf(ran.file("turned.pdb"), "\nATOM  ") + 1, 629);
    const Ran all = runProgram(bestFit(example("bicelle_hn.tab")));
    EXPECT_EQ(countOf(all.file("turned.pdb"), "\nATOM  ") + 1, 1231);
}

/// Tensor modes against the linear fit of the N-H couplings, where both engines weigh alike.
struct ModeCase {
    const char *why;
    std::vector<std::string> args;
    const char *modeLine;
};

TEST(BestFit, TensorModes)
{
    const std::vector<std::string> vector = {"-5.6368e-4", "0.8665e-4", "0.2927e-4", "-1.4116e-4",
                                             "5.6394e-4"};
    const auto given = [&](const char *flag) {
        std::vector<std::string> args = {flag};
        args.insert(args.end(), vector.begin(), vector.end());
        return args;
    };
    const std::vector<ModeCase> cases = {
        {"linear fit", {"-svd"}, "DATA TENSOR_MODE SVD (Order Matrix Method)\n"},
        {"given vector", given("-saupe"), "DATA TENSOR_MODE SAUPE (Fixed Saupe Values)\n"},
        {"the same by its other name", given("-align"), "DATA TENSOR_MODE SAUPE (Fixed Saupe Values)\n"},
        {"all free", {"-nofixed"}, "DATA TENSOR_MODE NOFIXED"},
        {"magnitude given", {"-dadr", "-da", "-4.354e-4", "-dr", "-0.678e-4"}, "DATA TENSOR_MODE DADR"},
        {"magnitude given, no mode", {"-da", "-4.354e-4", "-dr", "-0.678e-4"}, "DATA TENSOR_MODE DADR"},
    };
    for (const ModeCase &mode : cases) {
        SCOPED_TRACE(mode.why);
        const Ran ran = runProgram(bestFit(example("bicelle_hn.tab"), mode.args));
        ASSERT_EQ(ran.status, 0) << ran.err;
        const std::string report = ran.file("fit.tab");
        EXPECT_NEAR(number(report, "DATA RMS"), 0.375, 0.0011);
        EXPECT_NEAR(number(report, "DATA Da_HN"), -9.398, 0.01);
        EXPECT_EQ(countOf(report, mode.modeLine), 1);
    }
}

TEST(BestFit, NonLinearFitWeighsInHertz)
{
    // The non-linear residuals put every type on the amide scale together with its error, so that errors in
    // proportion to the interaction constants cancel: the answer is the linear fit of the table without
    // errors.
    std::string table = fileText(example("bicelle_backbone.tab"));
    table.replace(table.find(" DD W"), 5, " X1 W");
    const Ran linear = runProgram(bestFit("in.tab"), {.files = {{"in.tab", table}}});
    const Ran free = runProgram(bestFit(example("bicelle_backbone.tab"), {"-nofixed"}));
    ASSERT_EQ(linear.status + free.status, 0);
    for (const char *label : {"DATA RMS", "DATA Da_HN", "DATA Rhombicity"})
        EXPECT_NEAR(number(linear.file("fit.tab"), label), number(free.file("fit.tab"), label), 0.002)
            << label;
}

TEST(BestFit, AllFixedReproducesTheFreeFit)
{
    const Ran freeFit = runProgram(bestFit(example("bicelle_backbone.tab")));
    const std::string report = freeFit.file("fit.tab");
    const std::vector<double> angles = numbersAfter(report, "DATA EULER_ANGLES");
    ASSERT_GE(angles.size(), 3u);
    const auto text = [](double value) { return std::to_string(value); };
    char da[32], dr[32];
    std::snprintf(da, sizeof da, "%.6e", number(report, "DATA Da "));
    std::snprintf(dr, sizeof dr, "%.6e", number(report, "DATA Dr "));
    const Ran fixed = runProgram(
        bestFit(example("bicelle_backbone.tab"), {"-fixed", "-da", da, "-dr", dr, "-psi", text(angles[0]),
                                                  "-theta", text(angles[1]), "-phi", text(angles[2])}));
    ASSERT_EQ(fixed.status, 0) << fixed.err;
    EXPECT_NEAR(number(fixed.file("fit.tab"), "DATA RMS"), number(report, "DATA RMS"), 0.002);
}

TEST(BestFit, ShortOutputHoldsTheTableAlone)
{
    const Ran ran = runProgram(bestFit(example("bicelle_hn.tab"), {"-noverb"}));
    ASSERT_EQ(ran.status, 0);
    const std::string table = ran.file("fit.tab");
    EXPECT_TRUE(table.starts_with("DATA SEQUENCE \n\nVARS    RESID_I RESNAME_I ATOMNAME_I"))
        << table.substr(0, 120);
    EXPECT_EQ(tableRows(table).size(), 63u);
    EXPECT_EQ(tableRows(table)[0].size(), 9u); // chain columns are absent: 3 + 3 columns, D, DD, W
}

TEST(BestFit, WindowAndAtomPairChooseRows)
{
    struct Case {
        std::vector<std::string> args;
        int n;
    };
    const std::vector<Case> cases = {
        {{"-aD1", "H", "-aD2", "N"}, 63},
        {{"-aD1", "N", "-aD2", "H"}, 0},
        {{"-d1", "2", "-dN", "10"}, 37},
        {{"-aD1", "H", "-d1", "2", "-dN", "10", "-excl"}, -1},
    };
    for (const Case &choice : cases) {
        const Ran ran = runProgram(bestFit(example("bicelle_backbone.tab"), choice.args));
        const int selected = static_cast<int>(number(ran.out, "REMARK"));
        if (choice.n >= 0)
            EXPECT_EQ(selected, choice.n) << choice.args[1];
        else
            EXPECT_EQ(countOf(ran.out, "(exclusive)"), 1);
    }
}

TEST(BestFit, TwoRunsGiveTheSameBytes)
{
    const Ran first = runProgram(bestFit(example("bicelle_backbone.tab"), {"-nofixed"}));
    const Ran second = runProgram(bestFit(example("bicelle_backbone.tab"), {"-nofixed"}));
    EXPECT_EQ(first.file("fit.tab"), second.file("fit.tab"));
    EXPECT_EQ(first.file("turned.pdb"), second.file("turned.pdb"));
    EXPECT_EQ(first.out, second.out);
}

} // namespace
