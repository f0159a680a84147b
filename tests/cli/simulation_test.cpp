// Whole runs of the modes that simulate, and of those that stop after the charges.
#include "cli/run_program.h"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

namespace {

const std::string structure = " -pdb ubi/1d3z_model1.pdb -outD out.tab -H";

std::string steric(const std::string &options)
{
    return options + structure + " -inD ubi/bicelle_hn.tab";
}

double correlation(const std::vector<double> &a, const std::vector<double> &b)
{
    double ab = 0.0, aa = 0.0, bb = 0.0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        ab += a[i] * b[i];
        aa += a[i] * a[i];
        bb += b[i] * b[i];
    }
    return ab / std::sqrt(aa * bb);
}

const char *const wallOutput = "REMARK 63 couplings selected (inclusive max).\n"
                               "REMARK PDB Selection: All Atoms.\n"
                               "REMARK 43 charges placed, Total charge 0.652 [e].\n"
                               "REMARK 157 atoms selected for simulation.\n"
                               "REMARK 0 charges selected for simulation.\n"
                               "REMARK Molecule shifted to geometric center.\n"
                               "SaupeSteric  gMag 1.930317e-03\n"
                               "9.198570e-04  9.545406e-06  7.645483e-05  2.614587e-04  -6.349029e-04  \n"
                               "SaupeEl  gMag 1.930317e-03\n"
                               "0.000000e+00 0.000000e+00 0.000000e+00 0.000000e+00 0.000000e+00 \n"
                               "SaupeSum  gMag 1.930317e-03\n"
                               "9.198570e-04  9.545406e-06  7.645483e-05  2.614587e-04  -6.349029e-04  \n";

TEST(StericRun, PredictsUbiquitinsCouplings)
{
    // Lines, order and stream. That the figures are right is what the tests of the kernels show.
    const Ran ran = goodRun(steric("-pdbRot turned.pdb"));
    EXPECT_EQ(ran.out, wallOutput);
    const std::string err = withoutProgress(ran.err);
    EXPECT_NE(err.find("Residues 2 to 70.\npka Default Values, 43 Charges/pka Values, Net charge 0.652   "
                       "Residues 1 to 76.\n\nREMARK Memory Allocation Status."),
              std::string::npos)
        << err;

    const std::string report = ran.file("out.tab");
    EXPECT_EQ(countOf(report, "DATA TRELM_MODE STERIC\n"), 1);
    // The prediction of a compact molecule in bicelles: axes good, magnitude as good as the concentration,
    // and the sign of the measured couplings.
    EXPECT_GT(number(report, "DATA CORR R"), 0.95);
    EXPECT_NEAR(number(report, "DATA Da_HN"), -9.4, 4.0);
    // What was printed is the opposite of what is reported.
    const std::vector<double> saupe = saupeOf(report);
    EXPECT_NEAR(saupe[0], -9.198570e-04, 1e-8);
    EXPECT_NEAR(saupe[4], 6.349029e-04, 1e-8);
    for (const char *name : {"turned.pdb", "turned.pdb.0", "turned.pdb.3"})
        EXPECT_TRUE(ran.exists(name)) << name;

    const std::string bare = goodRun(structure).file("out.tab"); // no couplings
    EXPECT_EQ(saupeOf(bare), saupe);
    EXPECT_TRUE(tableRows(bare).empty());
}

TEST(StericRun, Rod)
{
    const std::string report = goodRun(steric("-stTrelm -pf1")).file("out.tab");
    EXPECT_EQ(countOf(report, "DATA TRELM LC_TYPE              rod\n"), 1);
    EXPECT_GT(number(report, "DATA CORR R"), 0.9);
    EXPECT_LT(number(report, "DATA Da_HN"), 0.0);
}

TEST(StericRun, OptionsAct)
{
    // What an option does to the first element of the order matrix, as a ratio.
    const struct {
        std::string option;
        double low, high;
    } cases[] = {
        {"-lcS 0.4", 0.4999, 0.5001}, // in proportion
        {"-wv 0.1", 1.8, 2.3},        // nearly so
        {"-dGrid 0.05", 0.98, 1.02},  // sampling
        {"-dot 700", 0.95, 1.05},     {"-digPsi 36", 0.95, 1.05},   {"-rA 2.0", 0.8, 1.3},
        {"-rM 40.0", 0.3, 0.7}, // thicker walls at the same share lie farther apart
        {"-nosurf", 0.95, 1.05},      {"-rim 1.0", 0.9999, 1.0001}, // reported only
    };
    const double usual = saupeOf(goodRun(steric("")).file("out.tab"))[0];
    for (const auto &[option, low, high] : cases) {
        SCOPED_TRACE(option);
        const std::string report = goodRun(steric(option)).file("out.tab");
        const double ratio = saupeOf(report)[0] / usual;
        EXPECT_GT(ratio, low);
        EXPECT_LT(ratio, high);
        EXPECT_EQ(ratio == 1.0, option == "-rim 1.0");
        EXPECT_EQ(countOf(report, "INCLUDE_RIM"), option == "-rim 1.0" ? 1 : 0);
    }
}

TEST(StericRun, RadiiOfAnySignMoveTheEdgeOfTheCell)
{
    // Beside a wall the radii change only how many free positions the order is divided by.
    const auto inverse = [](const std::string &options) {
        return 1.0 / saupeOf(goodRun(steric(options)).file("out.tab"))[0];
    };
    const double usual = inverse("");
    EXPECT_NEAR((inverse("-rA -20") - usual) / (usual - inverse("-rA 20")), 1.0, 0.01);
    EXPECT_NEAR((inverse("-rM -5") - usual) / (usual - inverse("-rM 45")), 1.0, 0.01);
    EXPECT_NEAR((inverse("-rM 0") - usual) / (usual - inverse("-rM 40")), 1.0, 0.01);
}

TEST(TurnedStructures, AFrameThatIsNoneGoesToNoPlainName)
{
    const std::string told =
        "trelm: -rotID 4: the four frames have the numbers 0 to 3, none goes to the plain name.\n";
    for (const std::string mode : {"-bestFit", "-bestFit -jack -map 5", "-stTrelm -dot 12", "-anPdb",
                                   "-elTrelm -dot 12", "-struc -angNoise"}) {
        SCOPED_TRACE(mode);
        const bool isTurned = !mode.starts_with("-el") && !mode.starts_with("-struc");
        const Ran ran = goodRun(steric(mode + " -rotID 4 -pdbRot t.pdb"));
        EXPECT_EQ(countOf(ran.err, "-rotID"), isTurned ? 1 : 0);
        EXPECT_EQ(countOf(ran.err, told), isTurned ? 1 : 0);
        EXPECT_EQ(ran.exists("t.pdb"), !isTurned);
        for (const char *name : {"t.pdb.0", "t.pdb.1", "t.pdb.2", "t.pdb.3"})
            EXPECT_EQ(ran.exists(name), isTurned) << name;
    }
    // Without a plain name there is none that could miss its structure.
    EXPECT_EQ(countOf(goodRun(steric("-anPdb -rotID 4")).err, "-rotID"), 0);
}

TEST(FreeFormatRun, AgreesWithTheStructure)
{
    // Heavy atoms of ubiquitin as records without columns.
    std::istringstream pdb(fileText(example("1d3z_model1.pdb")));
    std::string text = "some words first, then data lines\n";
    for (std::string line; std::getline(pdb, line);)
        if (line.starts_with("ATOM") && line[13] != 'H' && line[12] != 'H')
            text += "ATOM " + line.substr(6, 5) + " " + line.substr(12, 4) + "\tUNK\n " + line.substr(22, 4) +
                    " " + line.substr(30, 8) + " " + line.substr(38, 8) + " " + line.substr(46, 8) +
                    " ignored\n";
    text += "END\nATOM 1 X Y 1 999 999 999\n";
    const Ran ran =
        goodRun("-stTrelmFree -pdbF atoms.txt -outA tensor.tab", {.files = {{"atoms.txt", text}}});
    EXPECT_EQ(ownErrors(ran.err), "atoms.txt, 602 Atoms, Free format.\n\n");
    EXPECT_EQ(ran.out, "REMARK 105 atoms selected for simulation.\n");
    expectNear(saupeOf(ran.file("tensor.tab")),
               {-8.9643e-04, 3.3930e-05, -4.4162e-05, -3.0654e-04, 6.6746e-04}, 1e-8);
    EXPECT_EQ(countOf(ran.file("tensor.tab"), "DATA TRELM_MODE STERIC_FREE\n"), 1);
    EXPECT_GT(
        correlation(saupeOf(ran.file("tensor.tab")), saupeOf(goodRun(steric("-nosurf")).file("out.tab"))),
        0.99);
}

TEST(ChargeRun, ModesWithoutSimulationEndAfterTheCharges)
{
    for (const std::string mode : {"-csSim", "-asRan", "-elTrelmFree", "-elTrelmGrid"})
        EXPECT_EQ(goodRun(mode + " -pdb ubi/1d3z_model1.pdb").out,
                  "REMARK 0 couplings selected (inclusive max).\nREMARK PDB Selection: All Atoms.\n"
                  "REMARK 43 charges placed, Total charge 0.652 [e].\n")
            << mode;
}

TEST(ChargeRun, WrittenChargesAreReadAgain)
{
    for (const std::string source : {"", "-nochTerm", "-pH 4.5", "-charmm -H", "-charmm22 -H"}) {
        const std::string line =
            "-elTrelmFree -elInfo -outPka charges.txt -pdb ubi/1d3z_model1.pdb " + source;
        const Ran first = goodRun(line);
        const Ran second = goodRun(line + " -pka p.txt", {.files = {{"p.txt", first.file("charges.txt")}}});
        EXPECT_EQ(countOf(second.err, "WARNING"), 0) << second.err;
        EXPECT_EQ(countOf(first.out, "REMARK charges used in simulation:\n"), 1);
        // The written values have three decimals: so the net charge differs in the last one at most.
        const auto netCharge = [](const Ran &ran) {
            return number(ran.out.substr(ran.out.find("Total charge")), "Total charge");
        };
        EXPECT_NEAR(netCharge(first), netCharge(second), 0.03);
        EXPECT_EQ(countOf(first.out, "\n"), countOf(second.out, "\n"));
    }
}

} // namespace
