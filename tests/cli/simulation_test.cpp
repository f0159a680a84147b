// Whole runs of the modes that simulate, and of those that stop after the charges.
#include "cli/run_program.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <sstream>

namespace {

std::vector<std::string> steric(std::vector<std::string> more = {}, bool withTable = true)
{
    std::vector<std::string> args = {"-pdb", example("1d3z_model1.pdb"), "-outD", "out.tab", "-H"};
    if (withTable)
        args.insert(args.end(), {"-inD", example("bicelle_hn.tab")});
    args.insert(args.end(), more.begin(), more.end());
    return args;
}

double number(const std::string &report, std::string_view label)
{
    const std::vector<double> numbers = numbersAfter(report, label);
    return numbers.empty() ? std::nan("") : numbers[0];
}

/// The standard error stream without progress lines.
std::string withoutProgress(const std::string &err)
{
    const std::size_t first = err.find("REMARK Orientation"), last = err.rfind('\r');
    return first == std::string::npos ? err : err.substr(0, first) + err.substr(last + 1);
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
    const Ran ran = runProgram(steric({"-pdbRot", "turned.pdb"}));
    ASSERT_EQ(ran.status, 0) << ran.err;
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
    const std::vector<double> saupe = numbersAfter(report, "DATA SAUPE ");
    ASSERT_EQ(saupe.size(), 5U);
    EXPECT_NEAR(saupe[0], -9.198570e-04, 1e-8);
    EXPECT_NEAR(saupe[4], 6.349029e-04, 1e-8);
    for (const char *name : {"turned.pdb", "turned.pdb.0", "turned.pdb.3"})
        EXPECT_TRUE(ran.exists(name)) << name;
}

TEST(StericRun, RodAndMissingTable)
{
    const Ran rod = runProgram(steric({"-stTrelm", "-pf1"}));
    ASSERT_EQ(rod.status, 0) << rod.err;
    const std::string report = rod.file("out.tab");
    EXPECT_EQ(countOf(report, "DATA TRELM LC_TYPE              rod\n"), 1);
    EXPECT_GT(number(report, "DATA CORR R"), 0.9);
    EXPECT_LT(number(report, "DATA Da_HN"), 0.0);

    const Ran bare = runProgram(steric({}, false));
    ASSERT_EQ(bare.status, 0) << bare.err;
    EXPECT_EQ(numbersAfter(bare.file("out.tab"), "DATA SAUPE "),
              numbersAfter(runProgram(steric()).file("out.tab"), "DATA SAUPE "));
    EXPECT_TRUE(tableRows(bare.file("out.tab")).empty());
}

/// An option of the simulation and what it does to the first element of the order matrix, as a ratio.
struct OptionCase {
    std::vector<std::string> args;
    double low, high;
};

TEST(StericRun, OptionsAct)
{
    const double usual = numbersAfter(runProgram(steric()).file("out.tab"), "DATA SAUPE ").at(0);
    const std::vector<OptionCase> cases = {
        {{"-lcS", "0.4"}, 0.4999, 0.5001}, // in proportion
        {{"-wv", "0.1"}, 1.8, 2.3},        // nearly so
        {{"-dGrid", "0.05"}, 0.98, 1.02},  // sampling
        {{"-dot", "700"}, 0.95, 1.05},     {{"-digPsi", "36"}, 0.95, 1.05},   {{"-rA", "2.0"}, 0.8, 1.3},
        {{"-rM", "40.0"}, 0.3, 0.7}, // thicker walls at the same share lie farther apart
        {{"-nosurf"}, 0.95, 1.05},         {{"-rim", "1.0"}, 0.9999, 1.0001}, // reported only
    };
    for (const OptionCase &option : cases) {
        const Ran ran = runProgram(steric(option.args));
        ASSERT_EQ(ran.status, 0) << option.args[0] << ran.err;
        const double ratio = numbersAfter(ran.file("out.tab"), "DATA SAUPE ").at(0) / usual;
        EXPECT_GT(ratio, option.low) << option.args[0];
        EXPECT_LT(ratio, option.high) << option.args[0];
        if (option.args[0] != "-rim") {
            EXPECT_NE(ratio, 1.0) << option.args[0];
        }
        EXPECT_EQ(countOf(ran.file("out.tab"), "INCLUDE_RIM"), option.args[0] == "-rim" ? 1 : 0);
    }
}

/// Heavy atoms of ubiquitin as records without columns.
std::string freeFormat(int copies = 1)
{
    std::istringstream pdb(fileText(example("1d3z_model1.pdb")));
    std::string text = "some words first, then ATOM lines\n", line;
    text.replace(text.find("ATOM"), 4, "data");
    std::string body;
    while (std::getline(pdb, line))
        if (line.starts_with("ATOM") && line[13] != 'H' && line[12] != 'H')
            body += "ATOM " + line.substr(6, 5) + " " + line.substr(12, 4) + "\tUNK\n " + line.substr(22, 4) +
                    " " + line.substr(30, 8) + " " + line.substr(38, 8) + " " + line.substr(46, 8) +
                    " ignored\n";
    for (int i = 0; i < copies; ++i)
        text += body;
    return text;
}

TEST(FreeFormatRun, AgreesWithTheStructure)
{
    const Ran ran = runProgram({"-stTrelmFree", "-pdbF", "atoms.txt", "-outA", "tensor.tab"},
                               {.files = {{"atoms.txt", freeFormat() + "END\nATOM 1 X Y 1 999 999 999\n"}}});
    ASSERT_EQ(ran.status, 0) << ran.err;
    EXPECT_EQ(countOf(ran.err, "atoms.txt, 602 Atoms, Free format.\n"), 1);
    EXPECT_EQ(countOf(ran.out, " atoms selected for simulation.\n"), 1);
    EXPECT_EQ(countOf(ran.out, "Saupe"), 0);
    EXPECT_EQ(countOf(ran.file("tensor.tab"), "DATA TRELM_MODE STERIC_FREE\n"), 1);
    const std::vector<double> freely = numbersAfter(ran.file("tensor.tab"), "DATA SAUPE ");
    const std::vector<double> usual =
        numbersAfter(runProgram(steric({"-nosurf"})).file("out.tab"), "DATA SAUPE ");
    ASSERT_EQ(freely.size(), 5U);
    EXPECT_GT(correlation(freely, usual), 0.99);
}

TEST(ChargeRun, ModesWithoutSimulationEndAfterTheCharges)
{
    for (const char *mode : {"-csSim", "-asRan", "-elTrelmFree", "-elTrelmGrid"}) {
        const Ran ran = runProgram({mode, "-pdb", example("1d3z_model1.pdb")});
        EXPECT_EQ(ran.status, 0) << mode << ran.err;
        EXPECT_EQ(ran.out, "REMARK 0 couplings selected (inclusive max).\nREMARK PDB Selection: All Atoms.\n"
                           "REMARK 43 charges placed, Total charge 0.652 [e].\n")
            << mode;
    }
}

TEST(ChargeRun, WrittenChargesAreReadAgain)
{
    for (const std::vector<std::string> &source : {std::vector<std::string>{},
                                                   {"-nochTerm"},
                                                   {"-pH", "4.5"},
                                                   {"-charmm", "-H"},
                                                   {"-charmm22", "-H"}}) {
        std::vector<std::string> args = {"-elTrelmFree", "-pdb",    example("1d3z_model1.pdb"),
                                         "-elInfo",      "-outPka", "charges.txt"};
        args.insert(args.end(), source.begin(), source.end());
        const Ran first = runProgram(args);
        ASSERT_EQ(first.status, 0) << first.err;
        args[5] = "again.txt";
        args.insert(args.end(), {"-pka", "charges.txt"});
        const Ran second = runProgram(args, {.files = {{"charges.txt", first.file("charges.txt")}}});
        ASSERT_EQ(second.status, 0) << second.err;
        EXPECT_EQ(countOf(second.err, "WARNING"), 0) << second.err;
        EXPECT_EQ(countOf(first.out, "REMARK charges used in simulation:\n"), 1);
        // The written values have three decimals: so the net charge differs in the last one at most.
        const double before = number(first.out.substr(first.out.find("Total charge")), "Total charge");
        const double after = number(second.out.substr(second.out.find("Total charge")), "Total charge");
        EXPECT_NEAR(before, after, 0.03);
        EXPECT_EQ(countOf(first.out, "\n"), countOf(second.out, "\n"));
    }
}

struct RefusedCase {
    const char *why;
    std::vector<std::string> args;
    const char *line; ///< once on the error stream
    std::map<std::string, std::string> files = {};
};

TEST(SimulationFailures, EachIsToldInOneLine)
{
    const std::string pdb = example("1d3z_model1.pdb");
    const auto freeRun = [](const std::string &text) {
        return std::map<std::string, std::string>{{"atoms.txt", text}};
    };
    const std::vector<std::string> freeArgs = {"-stTrelmFree", "-pdbF", "atoms.txt", "-outA", "t.tab"};
    const std::vector<std::string> pkaArgs = {"-elTrelmFree", "-pdb", pdb, "-pka", "p.txt"};
    const std::vector<std::string> inpArgs = {"-csSim", "-pdb", pdb, "-inp", "c.txt"};
    const std::vector<RefusedCase> cases = {
        {"no structure", {"-stTrelm", "-outD", "o"}, "trelm: error reading selection of atoms.\n"},
        {"no atoms, no surface", {"-nosurf", "-outD", "o"}, "simulateAlignment: no atoms selected.\n"},
        {"no dots", steric({"-dot", "0"}),
         "trelm: -dot 0: the number of orientation points must be positive.\n"},
        {"dots below none", steric({"-dot", "-5"}), "trelm: -dot -5: "},
        {"too many dots", steric({"-dot", "50000"}),
         "trelm: -dot 50000 gives 50412 orientation points, the limit "},
        {"far too many dots", steric({"-dot", "2147483647"}), "the limit is 40001.\n"},
        {"no angles", steric({"-digPsi", "0"}), "trelm: -digPsi 0: "},
        {"too many angles", steric({"-digPsi", "2147483647"}), "trelm: -digPsi 2147483647 with 122 "},
        {"no step", steric({"-dGrid", "0"}), "trelm: -dGrid 0: the step must be positive.\n"},
        {"a step backwards", steric({"-dGrid", "-0.2"}), "trelm: -dGrid -0.2: "},
        {"no crystal", steric({"-wv", "0"}), "trelm: -wv 0: "},
        {"negative concentration", steric({"-wv", "-0.1"}), "trelm: -wv -0.1: "},
        {"more crystal than sample", steric({"-wv", "1.5"}), "trelm: -wv 1.5: "},
        {"no wall", steric({"-rM", "0"}), "trelm: -rM 0: "},
        {"a grid without planes", steric({"-3D"}),
         "trelm: the 3D grid has z planes out of order or out of range"},
        {"charges in a steric grid", steric({"-3D", "-el"}), "trelm: -stTrelm -3D knows no charges"},
        {"coordinates that are none",
         {"-pdb", "x.pdb", "-outD", "o"},
         "Error reading PDB input x.pdb\n",
         {{"x.pdb", "ATOM      1  CA  ALA A   1         nan   1.000   1.000\n"}}},
        {"free: no file", {"-stTrelmFree", "-pdbF", "none"}, "readPDBfree File open error: none.\n"},
        {"free: no name", {"-stTrelmFree"}, "matrix: error in ssiaFree.\n"},
        {"free: no atoms", freeArgs, "readPDBfree: atoms.txt holds no ATOM record.\n", freeRun("END\n")},
        {"free: cut", freeArgs, "readPDBfree: record 1 of atoms.txt is not complete",
         freeRun("ATOM 1 N MET 1 2.0 3")},
        {"free: letters", freeArgs, "readPDBfree: record 1 of ", freeRun("ATOM 1 N MET 1 x y z\n")},
        {"free: no number", freeArgs, "readPDBfree: record 1 of ", freeRun("ATOM 1 N MET 1 nan 1 1\n")},
        {"free: too many", freeArgs, "error in readPDBfree: too many atoms.\n", freeRun(freeFormat(9))},
        {"charges: no file", pkaArgs, "chargeSetup File open error: p.txt.\n"},
        {"charges: bad line",
         pkaArgs,
         "Error: wrong format of pka file.\nLine:6 charge NZ",
         {{"p.txt", "6 charge NZ\n"}}},
        {"charges: output",
         {"-csSim", "-pdb", pdb, "-outPka", "/none/p"},
         "TRELM Error opening file for pka output /none/p\n"},
        {"configuration: no file", inpArgs, "readConfig File open error: c.txt.\n"},
        {"configuration: bad line",
         inpArgs,
         "Error: Input data in auto file have wrong format\nLine:BETA_L: x",
         {{"c.txt", "BETA_L: x\n"}}},
    };
    for (const RefusedCase &refused : cases) {
        SCOPED_TRACE(refused.why);
        const Ran ran = runProgram(refused.args, {.files = refused.files});
        EXPECT_EQ(ran.status, 1) << withoutProgress(ran.err);
        EXPECT_EQ(countOf(ran.err, refused.line), 1) << withoutProgress(ran.err);
        EXPECT_FALSE(ran.exists("out.tab"));
    }
}

TEST(SimulationFailures, WarningsLeaveTheRunAlone)
{
    const Ran unknown = runProgram({"-csSim", "-pdb", example("1d3z_model1.pdb"), "-inp", "c.txt"},
                                   {.files = {{"c.txt", "NO_KEY: 1\nBETA_H: 20\n"}}});
    EXPECT_EQ(unknown.status, 0);
    EXPECT_EQ(countOf(unknown.err, "Error: Wrong input parameter in auto file"), 1);

    const Ran absent = runProgram({"-elTrelmFree", "-pdb", example("1d3z_model1.pdb"), "-pka", "p.txt"},
                                  {.files = {{"p.txt", "900 pKa default 4.0\n6 charge NZ 1.0\n"}}});
    EXPECT_EQ(absent.status, 0);
    EXPECT_EQ(
        countOf(absent.err, "WARNING:   There is no residue 900 or the proper atom in the given PDB file!\n"),
        1);
    EXPECT_EQ(countOf(absent.out, "REMARK 1 charges placed, Total charge 1.000 [e].\n"), 1);

    const Ran wide = runProgram(steric({"-dGrid", "0.002"}));
    EXPECT_EQ(wide.status, 0);
    EXPECT_EQ(countOf(wide.err, "WARNING: concentration too low - magnitude of alignment tensor incorrect\n"),
              1);
}

} // namespace
