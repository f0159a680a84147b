// Whole runs that tell what a fit is worth.
#include "cli/run_program.h"
#include "support/text/text.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>

namespace {

const std::string fitRun = "-bestFit -pdb ubi/1d3z_model1.pdb -outD fit.tab -nopdbRot -H -inD ";

using Row = std::vector<std::string>;

/// The backbone couplings of ubiquitin with some changed.
std::string changed(const std::function<void(const Row &row, double &d, double &dd, double &w)> &change)
{
    std::string text = "VARS RESID_I RESNAME_I ATOMNAME_I RESID_J RESNAME_J ATOMNAME_J D DD W\n"
                       "FORMAT %5d %6s %6s %5d %6s %6s %9.3f %9.4f %.2f\n";
    for (const Row &row : tableRows(fileText(example("bicelle_backbone.tab")))) {
        double d = std::atof(row[6].c_str()), dd = std::atof(row[7].c_str()), w = 1.0;
        change(row, d, dd, w);
        for (std::size_t k = 0; k < 6; ++k)
            text += row[k] + " ";
        trelm::appendf(text, "%.3f %.4f %.2f\n", d, dd, w);
    }
    return text;
}

TEST(FitWorth, StandsInItsFile)
{
    const Ran ran = goodRun(fitRun + "ubi/bicelle_hn.tab -outQ worth.tab -free 5");
    const std::string text = ran.file("worth.tab");
    EXPECT_EQ(ran.file("fit.tab"), goodRun(fitRun + "ubi/bicelle_hn.tab").file("fit.tab"));
    expectNear(numbersAfter(text, "DATA DEGREES_OF_FREEDOM"), {58}, 0.0);
    expectNear(numbersAfter(text, "DATA UNIT_WEIGHT"), {2.4431}, 1e-4);
    expectNear(numbersAfter(text, "DATA TENSOR Da_HN"), {-9.3977, 0.0256, 0.0625}, 1e-4);
    expectNear(numbersAfter(text, "DATA TENSOR R "), {0.1556, 0.0026, 0.0064}, 1e-4);
    expectNear(numbersAfter(text, "DATA LEFT_OUT ONE_BY_ONE"), {63, 0.4092, 0.0500}, 1e-4);
    EXPECT_NEAR(number(text, "DATA Q_FREE"), 0.050, 0.003);
    EXPECT_NE(text,
              goodRun(fitRun + "ubi/bicelle_hn.tab -outQ worth.tab -free 5 -freeSeed 2").file("worth.tab"));
    const auto rows = tableRows(text);
    ASSERT_EQ(rows.size(), 63U);
    EXPECT_EQ(rows[0][7], "-8.1700");
    EXPECT_EQ(complaints(ran.err), "");
}

TEST(FitWorth, OutliersAreDroppedAndTold)
{
    const Ran ran = goodRun(fitRun + "ubi/bicelle_hn_all.tab -outQ - -dropOut");
    EXPECT_EQ(
        countOf(ran.err,
                "trelm: 3 outliers left out of the fit: GLY 76 H - GLY 76 N, GLY 75 H - GLY 75 N, LEU 73"),
        1);
    const std::string report = ran.file("fit.tab");
    EXPECT_EQ(countOf(report, "REMARK Outlier left out of the fit: GLY 76 H - GLY 76 N, 1.120 Hz"), 1);
    EXPECT_EQ(number(report, "DATA N"), 65.0);
    EXPECT_NEAR(number(report, "DATA Da_HN"), -9.3661, 1e-3);
    EXPECT_EQ(number(ran.out, "DATA NOT_FITTED"), 3.0);
    EXPECT_EQ(countOf(ran.out, "\nDATA DROPPED "), 3);
    EXPECT_EQ(number(ran.out, "DATA OUTLIERS"), 0.0);
}

TEST(FitWorth, RowsOfWeightZeroAreCalculated)
{
    // Those of residues 20 to 29 are left out, in the table or by residue: the fit is the same without them.
    const auto inside = [](const Row &row) { return std::atoi(row[0].c_str()) / 10 == 2; };
    const Files files = {{"in.tab", changed([&](const Row &row, double &, double &, double &w) {
                              w = inside(row) ? 0.0 : 1.0;
                          })}};
    const std::string text = goodRun(fitRun + "in.tab -outQ worth.tab", {files}).file("worth.tab");
    EXPECT_GT(number(text, "DATA NOT_FITTED"), 30.0);
    EXPECT_LT(number(text, "DATA NOT_FITTED Q"), 0.1);
    for (const Row &row : tableRows(text))
        EXPECT_EQ(row.back(), inside(row) ? "0" : "1");
    const std::string all = fileText(example("bicelle_hn.tab"));
    const std::string ofResidues =
        goodRun(fitRun + "ubi/bicelle_hn.tab -outQ worth.tab -d1 1 -w 0 0 0 1 1 1").file("worth.tab");
    EXPECT_EQ(number(ofResidues, "DATA NOT_FITTED"), 2.0); // residues 2 and 3
}

TEST(FitWorth, DoubtfulTypesAreWarnedOf)
{
    const struct {
        std::string why;
        std::function<void(const Row &row, double &d, double &dd, double &w)> change;
        std::string told;
    } cases[] = {
        {"clean", [](const Row &, double &, double &, double &) {}, ""},
        {"turned",
         [](const Row &row, double &d, double &, double &) {
             d *= row[2] == "H" && row[5] == "C" ? -1.0 : 1.0;
         },
         "trelm: H-C: sign turned against the rest (turn its values)\n"},
        {"normalised",
         [](const Row &row, double &d, double &dd, double &) {
             const double factor = row[2] == "N" && row[5] == "C" ? 8.3 : 1.0;
             d *= factor;
             dd *= factor;
         },
         "trelm: N-C: normalised to N-H, "},
    };
    for (const auto &row : cases) {
        SCOPED_TRACE(row.why);
        const RunSetting setting = {{{"in.tab", changed(row.change)}}};
        const std::string said = complaints(goodRun(fitRun + "in.tab", setting).err);
        EXPECT_EQ(said.substr(0, row.told.size()), row.told);
        EXPECT_EQ(countOf(said, "trelm: "), row.told.empty() ? 0 : 1);
        EXPECT_EQ(runProgram(fitRun + "in.tab -strict", setting).status, row.told.empty() ? 0 : 1);
    }
}

TEST(FitWorth, FaultyOptionsAreTold)
{
    const struct {
        const char *options, *told;
        int status;
    } cases[] = {
        {"-outQ q.tab -free 1", "trelm: -free 1: a number of parts from 2 on, type or one.\n", 1},
        {"-outQ q.tab -free some", "trelm: -free some: a number of parts from 2 on, type or one.\n", 1},
        {"-outQ q.tab -free 3 -freeSeed 0", "trelm: -freeSeed 0: a seed is above 0.\n", 1},
        {"-free 3", "trelm: -free has no file to stand in (-outQ or -outJ)\n", 0},
        {"-outQ fit.tab", "are one file", 1},
        {"-jack -map 5 -outQ q.tab",
         "trelm: -outQ, -free and -dropOut act on a single best-fit alone (without -jack)\n", 0},
    };
    for (const auto &row : cases) {
        const Ran ran = runProgram(fitRun + "ubi/bicelle_hn.tab " + row.options);
        EXPECT_EQ(ran.status, row.status) << row.options;
        EXPECT_EQ(countOf(ran.err, row.told), 1) << ran.err;
        EXPECT_FALSE(ran.exists("q.tab"));
    }
}

} // namespace
