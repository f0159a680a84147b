// Whole runs of the modes with charges: beside a wall and a rod, in a grid, and the face that follows.
#include "cli/run_program.h"
#include "common/cylinder_grid.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

std::string charged(const std::string &options)
{
    return options + " -elTrelm -pdb ubi/1d3z_model1.pdb -outD out.tab -H -inD ubi/bicelle_hn.tab";
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
    const Ran ran = goodRun(charged("-pdbRot face.pdb"));
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
    const auto corr = [](const std::string &options) {
        return number(goodRun(charged(options)).file("out.tab"), "DATA CORR R");
    };
    const std::string second = " -inD ubi/bicelle2_hn.tab";
    EXPECT_GT(corr("-chSurf 0.1" + second), corr("-chSurf 0.0" + second) + 0.05);
    EXPECT_LT(corr("-chSurf 0.1"), corr("-chSurf 0.0") - 0.1);
}

// Beside a rod, with a potential that is small where it begins, and two charges.
const char *const rodOutput = R"(REMARK 63 couplings selected (inclusive max).
REMARK PDB Selection: All Atoms.
REMARK 2 charges placed, Total charge -0.500 [e].
REMARK charges used in simulation:
REMARK ===========================
REMARK chargeID    atom serial number  charge [e] 
REMARK 0:    900    55.598  -80.978    2.799   -1.000
REMARK 1:     40    49.315  -84.725    4.258    0.500
REMARK Total positive charge 0.500 [e], Total negative charge -1.000 [e].
REMARK Monopol charge at (55.598,-80.978,2.799) [A] of -0.500 [e].
REMARK Dipol at (49.315,-84.725,4.258) [A] of 17.903 [Debye].
REMARK Dipol direction (-0.842,-0.502,0.196).
REMARK 159 atoms selected for simulation.
REMARK 2 charges selected for simulation.
REMARK Molecule shifted to geometric center.
o_pts: 216    saupe_dev[0]: -7.697533e-08
o_pts: 216    saupe_dev[1]: 2.378669e-08
o_pts: 216    saupe_dev[2]: -8.641019e-09
o_pts: 216    saupe_dev[3]: -1.852543e-09
o_pts: 216    saupe_dev[4]: -4.320510e-09
deviation from uniform distribution:  1.252595e-07   6.262973e-06
trelmInfo->elInfo.kPot: 2.0 
REMARK Minimum molecule dimension 0.000 [A].
REMARK Maximum molecule dimension 23.879 [A].
@@@ offset_grid = 33.500 [A]  t_pts = 23.
@@@ REMARK grid_el[0] = 33.500 [A].
@@@ REMARK grid_el[23] = 56.500 [A].
REMARK Equilibrium density of ion pairs 1.204400e-01 [1/nm_3].
REMARK Debye length 6.793048e-01 nm.
REMARK Potential at surface -2.317641e+00 [e/kB*T].
@@ trelmInfo->elInfo.cutoffPot: 1.000000e+00
@@ trelmInfo->radiusModel: 33.500000
@@ trelmInfo->concentration: 0.050000
@@ density: 1.460000
@@ end_dist: 147.524030
@@ beta: 181.024030
@@ no_pt_ph: 23
@@ lengthGrid: 23
digPsi = 18    dots = 12   inc_psi = 20.0
total_ph: 2.429623e+03    test: 1.151668e+01    p: -4.833226e-01  ln(p): nan
grid_el[0] = 33.5   grid_el[lengthGrid 23] = 56.5   d = 23.0
  33.5   38.5  0.000000e+00
  38.5   43.5  0.000000e+00
  43.5   48.5  4.771290e-02
  48.5   53.5  4.226705e-01
  53.5   56.5  5.296167e-01
  33.5   38.5  0.000000e+00  0.000000e+00
  38.5   43.5  0.000000e+00  0.000000e+00
  43.5   48.5  1.557859e-01  4.095931e+01
  48.5   53.5  6.682941e-01  1.757082e+02
  53.5   56.5  2.562907e-01  6.738408e+01
SaupeSteric  gMag 2.155687e-03
0.000000e+00  0.000000e+00  0.000000e+00  0.000000e+00  0.000000e+00  
SaupeEl  gMag 2.155687e-03
1.037653e-03 1.714671e-04 3.843136e-05 2.078058e-04 -7.260712e-04 
SaupeSum  gMag 2.155687e-03
1.037653e-03  1.714671e-04  3.843136e-05  2.078058e-04  -7.260712e-04  
REMARK Equilibrium density of ion pairs 1.204400e-01 [1/nm_3].
REMARK Debye length 6.793048e-01 nm.
REMARK Potential at surface -2.317641e+00 [e/kB*T].
REMARK Probability of initial orientation 9.997048e-01.
REMARK Equilibrium density of ion pairs 1.204400e-01 [1/nm_3].
REMARK Debye length 6.793048e-01 nm.
REMARK Potential at surface -2.317641e+00 [e/kB*T].
REMARK Probability of 180 deg. rotated orientation 9.987745e-01.
)";
const char *const rodErrors = R"(ubi/1d3z_model1.pdb, 1231 Atoms, Residues 1 to 76.
ubi/bicelle_hn.tab, 63 Couplings, Residues 2 to 70.
REMARK charges, 2 Charges/pka Values, Net Charge -0.500 Residues 3 to 56.


REMARK 1D Potential ubi/rod_potential.txt, Digitization 301, Offset 0.0, Stepsize 0.5 [A].
Warning: Potential drops within clash region to below 1.000000e+00!
         ---> Magnitude of alignment tensor wrong!
REMARK Value of potential at cutoff: -7.071836e-02
REMARK # of translational points for EL: 23
REMARK Maximum distance: 5.650000e+01

)";

TEST(ElectrostaticRun, Rod)
{
    const std::string rod = "-pf1 -pot ubi/rod_potential.txt ";
    const Ran near = goodRun(charged(rod + "-kPot 2 -elInfo -pka charges -dot 12 -dGrid 1 -cut 1"),
                             {.files = {{"charges", "56 charge HD21 -1.0\n3 charge CB 0.5\n"}}});
    EXPECT_EQ(near.out, rodOutput);
    EXPECT_EQ(ownErrors(near.err), rodErrors);

    const Ran ran = goodRun(charged(rod));
    expectOrder(ran.out, {"@@ no_pt_ph: 120\n", "@@ lengthGrid: 433\n", " 118.5  120.1  "});
    expectOrder(ran.err, {"REMARK # of translational points for EL: 433\n",
                          "REMARK Maximum distance: 1.201000e+02\n", "REMARK Orientation 2196 of 2196\r"});
    EXPECT_EQ(countOf(ran.err, "beyond"), 0);

    EXPECT_EQ(countOf(goodRun(charged("-pf1")).err,
                      "REMARK Without a potential table charges beside a rod feel no potential.\n"),
              1);
    EXPECT_EQ(countOf(goodRun(charged("-bic -dIFace 5")).err,
                      "WARNING: Molecule too close to LC particel ...\n"
                      "         Interaction face cannot be determined!\n"),
              2);
}

const std::string inGrid = " -3D -pot3D grid.txt -nX 20 -nY 20 -nZ 6 -dX 5 -dY 5 -dZ 5 -z1 1 -zN 6 -dot 12 ";

TEST(ElectrostaticRun, Grid)
{
    const Ran ran =
        goodRun(charged("-pdbRot face.pdb" + inGrid), {.files = {{"grid.txt", cylinderGrid(20, 5)}}});
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

TEST(ElectrostaticRun, OddValuesRunWithOneWarning)
{
    const std::string planes = "the 3D grid has z planes beyond its own: see -z1, -zN.\n",
                      positions = "the 3D grid has no positions: see -nX, -nY, -z1, -zN.\n",
                      cell = "-vol, -mwLC, -massLC, -unitLC, -polyLC give no size of the cell (",
                      field =
                          "-nacl 0, -temp 298.15, -chSurf -0.47: the field of the surface is no number.\n",
                      noStep = "one.txt has no two lines of rising distances: charges feel no potential.\n";
    const std::string start = "REMARK startGrid (x,y,z): 0.000000  0.000000  0.", sum = "SaupeSum  gMag ",
                      none = sum + "0.000000e+00\n",
                      flipped = "REMARK Probability of 180 deg. rotated orientation ";
    const struct {
        std::string options, warning, last; ///< a line of standard output that shows how far the run came
    } cases[] = {
        {"-stTrelm -3D", planes, start + "000000\n"}, // no grid, no planes: it ends as it does with one
        {"-stTrelm -3D -z1 1 -zN 1 -massLC -1", cell, start + "200000\n"},
        {"-stTrelm -3D -nX 0", positions, none},
        {"-elTrelm -3D -z1 3 -zN 2", positions, none},
        {"-elTrelm -3D -z1 1 -zN 1 -massLC 0", cell + "inf).\n", none},
        {"-elTrelm -3D -dGrid 0 -rM -3e38 -rA -3e38", planes, sum}, // a grid has neither
        {"-elTrelm -3D -dY -0.2 -z1 1 -zN 1", "the 3D grid has a negative spacing: see -dX, -dY, -dZ.\n",
         sum},
        {"-elTrelm -nacl 0 -nopkaDef", field, flipped + "1.000000e+00.\n"},
        {"-elTrelm -kPot 0", "-kPot 0: the potential is divided by 0.\n", flipped},
        {"-stTrelm -el -kPot 0", "-kPot 0: the potential is divided by 0.\n", sum},
        {"-elTrelm -cut -100", "-cut -100: the cutoff is negative.\n", flipped},
        {"-elTrelm -pf1 -pot one.txt", noStep, flipped},
    };
    const std::string run = " -dot 12 -digPsi 2 -dGrid 1 -pdb ubi/1d3z_model1.pdb -outD out.tab";
    for (const auto &c : cases) {
        const Ran ran = goodRun(c.options + run, {.files = {{"one.txt", "0.0 1.5\n"}}});
        EXPECT_EQ(countOf(ran.err, "Warning: " + c.warning), 1) << c.options << ran.err;
        EXPECT_EQ(countOf(ran.err, "Warning: ") - countOf(ran.err, "Warning: Potential"), 1) << ran.err;
        EXPECT_EQ(countOf(ran.out, c.last), 1) << c.options << ran.out;
        EXPECT_EQ(ran.exists("out.tab"), !c.last.starts_with(start));
    }
    EXPECT_EQ(countOf(goodRun("-stTrelm -3D -nX 0 -massLC -1" + run).err, "WARNING: Error in simulation\n"),
              1);
}

TEST(ElectrostaticRun, StericGridEndsQuietly)
{
    const std::string line = "-stTrelm -pdb ubi/1d3z_model1.pdb -H -outD out.tab -pdbRot turned.pdb" + inGrid;
    const Files files = {{"grid.txt", cylinderGrid(20, 5)}};
    const Ran ran = goodRun(line, {.files = files});
    EXPECT_TRUE(ran.out.ends_with("REMARK startGrid (x,y,z): -50.000000  -50.000000  -10.000000\n"))
        << ran.out;
    EXPECT_EQ(countOf(ran.err, "Memory Allocation Status"), 0);
    EXPECT_FALSE(ran.exists("out.tab"));
    EXPECT_FALSE(ran.exists("turned.pdb"));
    EXPECT_EQ(runProgram(line, {.files = files, .stdoutFile = "/dev/full"}).status,
              1); // what was printed is lost
    EXPECT_EQ(runProgram(line, {.files = files, .stderrFile = "/dev/full"}).status, 1);
}

} // namespace
