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

TEST(ElectrostaticRun, Rod)
{
    const Ran ran = goodRun(charged("-pf1 -pot ubi/rod_potential.txt -kPot 2"));
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
}

} // namespace
