// Whole runs of -bestFit on ubiquitin's measured couplings.
#include "cli/run_program.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace {

std::string bestFit(const std::string &options, const std::string &table = "ubi/bicelle_backbone.tab")
{
    return options + " -bestFit -pdb ubi/1d3z_model1.pdb -outD fit.tab -pdbRot turned.pdb -H -inD " + table;
}

std::string reportOf(const std::string &options, const std::string &table = "ubi/bicelle_backbone.tab")
{
    return goodRun(bestFit(options, table)).file("fit.tab");
}

const char *const amides = "ubi/bicelle_hn.tab";

/// A double-precision fit by singular value decomposition of each table (weights 1 / DD on the amide scale),
/// as published with the example: what single precision may change is the last digit.
struct FitRow {
    const char *table;
    int n;
    double daHN, rhombicity, rms, r, q, chi2;
    std::array<double, 5> saupe; // 1e-4
};

// clang-format off
constexpr FitRow fitRows[] = {
    {"bicelle_hn.tab",          63,  -9.398, 0.156, 0.375, 0.9986, 0.0459,   346.2, { -5.6368, 0.8665,  0.2927, -1.4116, 5.6394}},
    {"bicelle_backbone.tab",   301,  -9.351, 0.166, 0.453, 0.9983, 0.0568,   132.3, { -5.6237, 0.7177,  0.2748, -1.3829, 5.6242}},
    {"bicelle2_hn.tab",         60, -15.450, 0.503, 1.171, 0.9951, 0.0928,  2849.1, {-10.2016, 5.0346, -4.9577, -2.1155, 8.3330}},
    {"bicelle2_backbone.tab",  298, -15.799, 0.508, 1.050, 0.9967, 0.0815,   781.6, {-10.4941, 5.1898, -5.0508, -2.3027, 8.4644}},
    {"bicelle_hn_nfirst.tab",   63,  -7.837, 0.156, 0.349, 0.9988, 0.0427,   300.2, { -4.6983, 0.7212,  0.2432, -1.1869, 4.7023}},
    {"bicelle_cacb.tab",        39,  -8.333, 0.159, 0.201, 0.9899, 0.1511,    41.5, { -5.0853, 0.6928,  0.1935, -1.4272, 4.8956}},
    {"bicelle_hn_all.tab",      68,  -9.018, 0.177, 1.495, 0.9771, 0.1877,  5936.2, { -5.2374, 0.5997,  0.4108, -1.4693, 5.5319}},
    {"bicelle2_hn_all.tab",     69, -14.402, 0.503, 3.153, 0.9670, 0.2424, 23729.9, { -9.2427, 4.7697, -4.4933, -2.2378, 7.9936}},
    {"synthetic_backbone.tab", 305,  -8.031, 0.235, 0.000, 1.0000, 0.0000,     0.0, {    -5.0,    3.0,    -2.0,     1.5,    4.0}},
};
// clang-format on

/// Two units of the last of five printed digits.
double lastDigits(double value)
{
    return 2e-4 * std::pow(10.0, std::max(0.0, std::floor(std::log10(std::abs(value)))));
}

TEST(BestFit, FindsThePublishedOrderMatrix)
{
    for (const FitRow &row : fitRows) {
        SCOPED_TRACE(row.table);
        const std::string report = reportOf("-qRms", std::string("ubi/") + row.table);
        const std::vector<double> saupe = saupeOf(report);
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
    const std::string first = reportOf("");
    const Ran second = goodRun(bestFit("", "in.tab"), {.files = {{"in.tab", first}}});
    // The column D of an output is the calculated coupling: a table without noise, with the same order
    // matrix.
    const std::string report = second.file("fit.tab");
    EXPECT_LT(number(report, "DATA RMS"), 0.001);
    expectNear(saupeOf(report), saupeOf(first), 2e-8);
}

TEST(BestFit, TurnedStructuresStandInTheTensorsFrame)
{
    const Ran first = goodRun(bestFit("-rotID 2", "ubi/bicelle2_backbone.tab"));
    EXPECT_EQ(first.file("turned.pdb"), first.file("turned.pdb.2"));
    for (const char *turned : {"turned.pdb.0", "turned.pdb.1", "turned.pdb.2", "turned.pdb.3"}) {
        SCOPED_TRACE(turned);
        const Ran again =
            goodRun("-bestFit -pdb in.pdb -inD ubi/bicelle2_backbone.tab -outD fit.tab -pdbRot t.pdb",
                    {.files = {{"in.pdb", first.file(turned)}}});
        const std::vector<double> saupe = saupeOf(again.file("fit.tab"));
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
    const auto atomsWritten = [](const std::string &options) {
        const Ran ran = goodRun("-bestFit -pdb ubi/1d3z_model1.pdb -inD ubi/bicelle_hn.tab -outD fit.tab "
                                "-pdbRot turned.pdb " +
                                options);
        return countOf(ran.file("turned.pdb"), "\nATOM  ") + 1;
    };
    EXPECT_EQ(atomsWritten(""), 629);
    EXPECT_EQ(atomsWritten("-H"), 1231);
}

TEST(BestFit, TensorModes)
{
    // Against the linear fit of the N-H couplings, where both engines weigh alike.
    const std::string vector = " -5.6368e-4 0.8665e-4 0.2927e-4 -1.4116e-4 5.6394e-4";
    const std::pair<std::string, const char *> cases[] = {
        {"-svd", "DATA TENSOR_MODE SVD (Order Matrix Method)\n"},
        {"-saupe" + vector, "DATA TENSOR_MODE SAUPE (Fixed Saupe Values)\n"},
        {"-align" + vector, "DATA TENSOR_MODE SAUPE (Fixed Saupe Values)\n"},
        {"-nofixed", "DATA TENSOR_MODE NOFIXED"},
        {"-dadr -da -4.354e-4 -dr -0.678e-4", "DATA TENSOR_MODE DADR"},
        {"-da -4.354e-4 -dr -0.678e-4", "DATA TENSOR_MODE DADR"},
    };
    for (const auto &[options, modeLine] : cases) {
        SCOPED_TRACE(options);
        const std::string report = reportOf(options, amides);
        EXPECT_NEAR(number(report, "DATA RMS"), 0.375, 0.0011);
        EXPECT_NEAR(number(report, "DATA Da_HN"), -9.398, 0.01);
        EXPECT_EQ(countOf(report, modeLine), 1);
    }
}

TEST(BestFit, NonLinearFitWeighsInHertz)
{
    // The non-linear residuals put every type on the amide scale together with its error, so that errors in
    // proportion to the interaction constants cancel: the answer is the linear fit of the table without
    // errors.
    std::string table = fileText(example("bicelle_backbone.tab"));
    table.replace(table.find(" DD W"), 5, " X1 W");
    const std::string linear = goodRun(bestFit("", "in.tab"), {.files = {{"in.tab", table}}}).file("fit.tab");
    const Ran free = goodRun(bestFit("-nofixed")), again = goodRun(bestFit("-nofixed"));
    for (const char *label : {"DATA RMS", "DATA Da_HN", "DATA Rhombicity"})
        EXPECT_NEAR(number(linear, label), number(free.file("fit.tab"), label), 0.002) << label;
    EXPECT_EQ(free.file("fit.tab"), again.file("fit.tab"));
    EXPECT_EQ(free.file("turned.pdb"), again.file("turned.pdb"));
    EXPECT_EQ(free.out, again.out);
}

TEST(BestFit, AllFixedReproducesTheFreeFit)
{
    const std::string report = reportOf("");
    const std::vector<double> angles = numbersAfter(report, "DATA EULER_ANGLES");
    ASSERT_GE(angles.size(), 3u);
    char given[200];
    std::snprintf(given, sizeof given, "-fixed -da %.6e -dr %.6e -psi %f -theta %f -phi %f",
                  number(report, "DATA Da "), number(report, "DATA Dr "), angles[0], angles[1], angles[2]);
    EXPECT_NEAR(number(reportOf(given), "DATA RMS"), number(report, "DATA RMS"), 0.002);
}

TEST(BestFit, ShortOutputHoldsTheTableAlone)
{
    const std::string table = reportOf("-noverb", amides);
    EXPECT_TRUE(table.starts_with("DATA SEQUENCE \n\nVARS    RESID_I RESNAME_I ATOMNAME_I"))
        << table.substr(0, 120);
    EXPECT_EQ(tableRows(table).size(), 63u);
    EXPECT_EQ(tableRows(table)[0].size(), 9u); // chain columns are absent: 3 + 3 columns, D, DD, W
}

TEST(BestFit, WindowAndAtomPairChooseRows)
{
    const std::pair<const char *, const char *> cases[] = {
        {"-aD1 H -aD2 N", "REMARK 63 couplings selected (inclusive max).\n"},
        {"-aD1 N -aD2 H", "REMARK 0 couplings selected (inclusive max).\n"},
        {"-d1 2 -dN 10", "REMARK 37 couplings selected (inclusive max).\n"},
        {"-aD1 H -d1 2 -dN 10 -excl", "couplings selected (exclusive).\n"},
    };
    for (const auto &[options, line] : cases)
        EXPECT_EQ(countOf(runProgram(bestFit(options)).out, line), 1) << options;
}

TEST(BestFit, InputsAsUsersHaveThem)
{
    const auto marked = [](std::string_view name) { return "\xEF\xBB\xBF" + fileText(example(name)); };
    const std::string line = "-bestFit -outD fit.tab -H -inD ";
    const Ran plain = goodRun(line + "ubi/bicelle_hn.tab -pdb ubi/1d3z_model1.pdb");
    const Ran ran =
        goodRun(line + "m.tab -pdb m.pdb",
                {.files = {{"m.tab", marked("bicelle_hn.tab")}, {"m.pdb", marked("1d3z_model1.pdb")}}});
    EXPECT_EQ(ran.file("fit.tab"), plain.file("fit.tab"));

    const Ran none = runProgram(line + "ubi/bicelle_hn.tab");
    EXPECT_EQ(none.status, 1);
    EXPECT_EQ(countOf(none.err, "trelm: -pdb is missing: without a structure no coupling can be fitted.\n"),
              1);
}

} // namespace
