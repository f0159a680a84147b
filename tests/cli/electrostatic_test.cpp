// Whole runs of the modes with charges: beside a wall and a rod, in a grid, and the face that follows.
#include "cli/run_program.h"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

namespace {

std::vector<std::string> charged(std::vector<std::string> more, const char *table = "bicelle_hn.tab")
{
    std::vector<std::string> args = {
        "-elTrelm", "-pdb", example("1d3z_model1.pdb"), "-inD", example(table), "-outD", "out.tab", "-H"};
    args.insert(args.end(), more.begin(), more.end());
    return args;
}

double number(const std::string &report, std::string_view label)
{
    const std::vector<double> numbers = numbersAfter(report, label);
    return numbers.empty() ? std::nan("") : numbers[0];
}

/// Whether the lines stand in the text in this order.
void expectOrder(const std::string &text, const std::vector<std::string> &lines)
{
    std::size_t from = 0;
    for (const std::string &line : lines) {
        const std::size_t at = text.find(line, from);
        ASSERT_NE(at, std::string::npos) << "missing or out of order: " << line << "\n" << text;
        from = at + line.size();
    }
}

const char *const wallOutput = "REMARK 63 couplings selected (inclusive max).\n"
                               "REMARK PDB Selection: All Atoms.\n"
                               "REMARK 43 charges placed, Total charge 0.652 [e].\n"
                               "REMARK Total positive charge 11.839 [e], Total negative charge -11.187 [e].\n"
                               "REMARK Monopol charge at (51.823,-80.327,-2.520) [A] of 0.652 [e].\n"
                               "REMARK Dipol at (54.771,-83.602,-3.306) [A] of 240.343 [Debye].\n"
                               "REMARK Dipol direction (-0.659,0.732,0.176).\n"
                               "REMARK 200 atoms selected for simulation.\n"
                               "REMARK 43 charges selected for simulation.\n"
                               "REMARK Molecule shifted to geometric center.\n"
                               "o_pts: 2196    saupe_dev[0]: -5.366281e-08\n"
                               "o_pts: 2196    saupe_dev[1]: 1.658272e-08\n"
                               "o_pts: 2196    saupe_dev[2]: -6.024026e-09\n"
                               "o_pts: 2196    saupe_dev[3]: -1.022799e-09\n"
                               "o_pts: 2196    saupe_dev[4]: -3.012013e-09\n"
                               "deviation from uniform distribution:  8.731182e-08   4.365591e-06\n"
                               "trelmInfo->elInfo.kPot: 1.0 \n"
                               "REMARK Minimum molecule dimension 0.000 [A].\n"
                               "REMARK Maximum molecule dimension 24.198 [A].\n"
                               "@@@ offset_grid = 20.000 [A]  t_pts = 120.\n"
                               "@@@ REMARK grid_el[0] = 20.000 [A].\n"
                               "@@@ REMARK grid_el[120] = 44.000 [A].\n"
                               "SaupeSteric  gMag 5.148455e-03\n"
                               "0.000000e+00  0.000000e+00  0.000000e+00  0.000000e+00  0.000000e+00  \n"
                               "SaupeEl  gMag 5.148455e-03\n"
                               "1.924666e-03 1.092687e-03 -3.547786e-04 1.653228e-03 -1.405063e-03 \n"
                               "SaupeSum  gMag 5.148455e-03\n"
                               "1.924666e-03  1.092687e-03  -3.547786e-04  1.653228e-03  -1.405063e-03  \n";

TEST(ElectrostaticRun, Wall)
{
    const Ran ran = runProgram(charged({"-pdbRot", "face.pdb"}));
    ASSERT_EQ(ran.status, 0) << ran.err;
    // Lines, order and stream; that the figures are right is what the tests of the kernels show.
    EXPECT_TRUE(ran.out.starts_with(wallOutput)) << ran.out;
    expectOrder(ran.out, {"REMARK Probability of initial orientation ",
                          "REMARK Probability of 180 deg. rotated orientation "});
    const std::string report = ran.file("out.tab");
    EXPECT_EQ(countOf(report, "DATA TRELM_MODE ELECTROSTATIC\n"), 1);
    EXPECT_EQ(tableRows(report).size(), 63U);
    // One structure, with the charges in it: an amine and an acid.
    const std::string face = ran.file("face.pdb");
    EXPECT_FALSE(ran.exists("face.pdb.0"));
    std::istringstream lines(face);
    int chargedAtoms = 0;
    for (std::string line; std::getline(lines, line);)
        if (line.starts_with("ATOM") && line.substr(60, 6) != "  0.00") {
            ++chargedAtoms;
            const double q = std::stod(line.substr(60, 6));
            EXPECT_EQ(line.substr(78, 2), q >= 0.4 ? "1+" : q > -0.4 ? "1-" : "0+") << line;
        }
    EXPECT_EQ(chargedAtoms, 43);
}

TEST(ElectrostaticRun, PositiveWallFitsTheSecondMedium)
{
    // The second phase of the example's ubiquitin is told from the first by the charge of its bicelles.
    const std::vector<std::string> positive = {"-chSurf", "0.1"}, neutral = {"-chSurf", "0.0"};
    const auto corr = [](const std::vector<std::string> &more, const char *table) {
        return number(runProgram(charged(more, table)).file("out.tab"), "DATA CORR R");
    };
    EXPECT_GT(corr(positive, "bicelle2_hn.tab"), corr(neutral, "bicelle2_hn.tab") + 0.05);
    EXPECT_LT(corr(positive, "bicelle_hn.tab"), corr(neutral, "bicelle_hn.tab") - 0.1);
}

TEST(ElectrostaticRun, Rod)
{
    const Ran ran = runProgram(charged({"-pf1", "-pot", example("rod_potential.txt"), "-kPot", "2"}));
    ASSERT_EQ(ran.status, 0) << ran.err;
    expectOrder(ran.out, {"trelmInfo->elInfo.kPot: 2.0 \n",
                          "REMARK Equilibrium density of ion pairs ",
                          "REMARK Debye length ",
                          "REMARK Potential at surface ",
                          "@@ trelmInfo->elInfo.cutoffPot: ",
                          "@@ trelmInfo->radiusModel: 33.500000\n",
                          "@@ trelmInfo->concentration: 0.050000\n",
                          "@@ density: 1.460000\n",
                          "@@ end_dist: 147.524030\n",
                          "@@ beta: 181.024030\n",
                          "@@ no_pt_ph: 120\n",
                          "@@ lengthGrid: 433\n",
                          "digPsi = 18    dots = 122   inc_psi = 20.0\n",
                          "total_ph: ",
                          "grid_el[0] = 33.5 ",
                          "  33.5   38.5  0.000000e+00\n",
                          " 118.5  120.1  ",
                          "  33.5   38.5  0.000000e+00  0.000000e+00\n",
                          "SaupeSteric",
                          "REMARK Equilibrium density of ion pairs ",
                          "REMARK Probability of initial orientation ",
                          "REMARK Equilibrium density of ion pairs ",
                          "REMARK Probability of 180 deg."});
    expectOrder(ran.err,
                {"REMARK 1D Potential ", ", Digitization 301, Offset 0.0, Stepsize 0.5 [A].\n",
                 "REMARK Value of potential at cutoff: ", "REMARK # of translational points for EL: 433\n",
                 "REMARK Maximum distance: 1.201000e+02\n", "REMARK Orientation 2196 of 2196\r"});
    EXPECT_EQ(countOf(ran.err, "beyond"), 0);

    const Ran bare = runProgram(charged({"-pf1"}));
    EXPECT_EQ(bare.status, 0);
    EXPECT_EQ(countOf(bare.err, "REMARK Without a potential table charges beside a rod feel no potential.\n"),
              1);
    const Ran near = runProgram(charged({"-bic", "-dIFace", "5"}));
    EXPECT_EQ(near.status, 0);
    EXPECT_EQ(countOf(near.err, "WARNING: Molecule too close to LC particel ...\n"
                                "         Interaction face cannot be determined!\n"),
              2);
}

/// A cylinder of 12 angstrom along z in a grid of 20 by 20 by 6 points, 5 angstrom apart.
std::string gridFile()
{
    std::string text(11, '\n');
    for (int i = 0; i < 20 * 20 * 6; ++i) {
        const int x = i / 120 - 10, y = i / 6 % 20 - 10;
        text += std::hypot(5 * x, 5 * y) < 12.0 ? "9.0" : "-0.1";
        text += i % 3 == 2 ? "\n" : " ";
    }
    return text;
}

std::vector<std::string> inGrid(std::vector<std::string> args)
{
    args.insert(args.end(),
                {"-3D", "-pot3D", "grid.txt", "-nX", "20",  "-nY", "20",  "-nZ", "6",    "-dX", "5",
                 "-dY", "5",      "-dZ",      "5",   "-z1", "1",   "-zN", "6",   "-dot", "12"});
    return args;
}

TEST(ElectrostaticRun, Grid)
{
    const Ran ran =
        runProgram(inGrid(charged({"-pdbRot", "face.pdb"})), {.files = {{"grid.txt", gridFile()}}});
    ASSERT_EQ(ran.status, 0) << ran.err;
    expectOrder(ran.out,
                {"REMARK  o_pts: 216    saupe_dev[0]: ", "REMARK  deviation from uniform distribution:  ",
                 "REMARK trelmInfo->volSample: 515.000000\n",
                 "REMARK trelmInfo->rSingleCell: ", "REMARK trelmInfo->elInfo.maxPot: 5.000000\n",
                 "REMARK trelmInfo->elInfo.z1: 1\n", "REMARK nZGridSel: 6\n", "REMARK lengthGrid: 2400\n",
                 "REMARK Digitization of orientations: digPsi = 18    dots = 12   inc_psi = 20.0\n",
                 "REMARK nX2 nY2 nZ2: 10  10  3\n",
                 "REMARK startGrid (x,y,z): -50.000000  -50.000000  -10.000000\n", "SaupeSteric", "SaupeEl"});
    expectOrder(ran.err,
                {"REMARK Reading values of 3D potential 2400 of 2400\r",
                 "REMARK 3D Potential grid.txt, Total # of gridpositions 2400 (x: 20, y: 20, z: 6).\n",
                 "REMARK Orientation 216 of 216\r"});
    EXPECT_FALSE(ran.exists("face.pdb")); // the face belongs to wall and rod
    EXPECT_EQ(countOf(ran.out, "Probability"), 0);
}

TEST(ElectrostaticRun, StericGridEndsQuietly)
{
    std::vector<std::string> args = inGrid(charged({"-pdbRot", "turned.pdb"}));
    args[0] = "-stTrelm";
    const Ran ran = runProgram(args, {.files = {{"grid.txt", gridFile()}}});
    EXPECT_EQ(ran.status, 0);
    EXPECT_TRUE(ran.out.ends_with("REMARK startGrid (x,y,z): -50.000000  -50.000000  -10.000000\n"))
        << ran.out;
    EXPECT_EQ(countOf(ran.err, "Memory Allocation Status"), 0);
    EXPECT_FALSE(ran.exists("out.tab"));
    EXPECT_FALSE(ran.exists("turned.pdb"));
    const Ran full = runProgram(args, {.stdoutFile = "/dev/full", .files = {{"grid.txt", gridFile()}}});
    EXPECT_EQ(full.status, 1); // what was printed is lost
}

struct RefusedCase {
    const char *why;
    std::vector<std::string> args;
    const char *line;
};

TEST(ElectrostaticFailures, OneLineAndStatusOne)
{
    const RefusedCase cases[] = {
        {"no table", charged({"-pf1", "-pot", "none"}), "readPotential File open error: none.\n"},
        {"a broken table", charged({"-pf1", "-pot", "broken.txt"}), "Line:0.1 x\n"},
        {"said by the road", charged({"-pf1", "-pot", "none"}),
         "ERROR Reading of 1D potential not successful.\n"},
        {"no grid", inGrid(charged({"-pot3D", "none"})), "ERROR: Reading of 3D potential not successful.\n"},
        {"no planes", charged({"-3D"}), "trelm: the 3D grid has z planes out of order or out of range"},
        {"no salt", charged({"-nacl", "0"}), "trelm: -nacl 0: "},
        {"no scale", charged({"-pf1", "-kPot", "0"}), "trelm: -kPot 0: "},
        {"no way to end", charged({"-pf1", "-wv", "1e-20"}), "steps to the next rod.\n"},
        {"no cell", inGrid(charged({"-massLC", "-1"})), "give no size of the cell"},
        {"no limit", charged({"-cut", "-100"}), "trelm: -cut -100: "},
        {"no such frame", charged({"-rotID", "4"}), "trelm: -rotID 4: "},
        {"no room for a face", charged({"-pdbRot", "/none/face.pdb"}), "trelm: error in iFacePDB.\n"},
        {"nothing to simulate", charged({"-chSel", "-nopkaDef"}), "simulateAlignment: no atoms selected.\n"},
    };
    for (const RefusedCase &refused : cases) {
        SCOPED_TRACE(refused.why);
        const Ran ran =
            runProgram(refused.args, {.files = {{"broken.txt", "0.0 1\n0.1 x\n"}, {"grid.txt", gridFile()}}});
        EXPECT_EQ(ran.status, 1);
        EXPECT_EQ(countOf(ran.err, refused.line), 1) << ran.err.substr(0, 2000);
    }
}

// ---- structure analysis ----

TEST(AnalysisRun, ThreeVariants)
{
    const std::vector<std::string> base = {"-anPdb", "-pdb",    example("1d3z_model1.pdb"),
                                           "-H",     "-inS",    "-2.0e-3",
                                           "1e-3",   "5e-4",    "4e-4",
                                           "3e-4",   "-pdbRot", "turned.pdb"};
    const auto with = [&base](std::vector<std::string> more) {
        std::vector<std::string> args = base;
        args.insert(args.end(), more.begin(), more.end());
        return runProgram(args);
    };
    const Ran shape = with({"-outP", "report.txt"});
    ASSERT_EQ(shape.status, 0) << shape.err;
    EXPECT_TRUE(shape.out.ends_with("REMARK 157 atoms selected for simulation.\n")) << shape.out;
    const std::string report = shape.file("report.txt");
    expectOrder(report,
                {"REMARK Molecular Alignment Simulation.\n\nREMARK Simulation parameters.\n",
                 "DATA TRELM_MODE PDB\n\n\n\nREMARK Inertia tensor.", "DATA EIGENVALUES",
                 "\n\nREMARK Input tensor.", "\nDATA SAUPE  -2.0000e-03  1.0000e-03  5.0000e-04 ",
                 "DATA Da(NH) = -22.3    R = Dr/Da = 0.474\n\n",
                 "\nREMARK Relative orientation of two coordinate systems.\n\nDATA DCOS_DEG (x/y/z)    "});
    EXPECT_EQ(countOf(report, "PDB_EL"), 0);

    const Ran charges = with({"-el"}), user = with({"-user"});
    ASSERT_EQ(charges.status, 0) << charges.err;
    expectOrder(charges.out,
                {"REMARK 200 atoms selected for simulation.\n",
                 "REMARK 43 charges selected for simulation.\n", "REMARK Molecular Alignment Simulation.\n",
                 "REMARK Dipole tensor.", "\nDATA PDB_EL MONOPOL   6.520090e-01\n",
                 "DATA PDB_EL DIPOL     5.007146e+01\n"});
    EXPECT_GT(countOf(charges.file("turned.pdb.2"), "N1+"), 0);
    EXPECT_GT(countOf(charges.file("turned.pdb.2"), "O0+"), 0);
    // Each variant turns the structure into another frame.
    EXPECT_NE(shape.file("turned.pdb"), charges.file("turned.pdb"));
    EXPECT_NE(shape.file("turned.pdb"), user.file("turned.pdb"));

    const Ran closed = with({"-outP", "/none/report.txt"});
    EXPECT_EQ(closed.status, 1);
    EXPECT_EQ(countOf(closed.err, "TRELM Error opening output file /none/report.txt\n"
                                  "trelm: error in analysis of PDB.\n"),
              1);
}

} // namespace
