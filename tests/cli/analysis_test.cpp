// Whole runs of the analysis of one structure: the frames that it is turned into, and the report.
#include "cli/run_program.h"
#include "couplings/tensor.h"
#include "simulation/domains/inertia.h"
#include "structure/pdb.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace {

using namespace trelm;

const std::string line = "-anPdb -pdb ubi/1d3z_model1.pdb -H -pdbRot turned.pdb ";
const std::string allAtoms = line + "-nosurf -outP report ";

// Two charges: their list, the dipole's frame beside the order matrix's, and the report.
const char *const dipoleOutput = R"(REMARK 0 couplings selected (inclusive max).
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
REMARK 1233 atoms selected for simulation.
REMARK 2 charges selected for simulation.
REMARK Molecular Alignment Simulation.

REMARK Simulation parameters.

DATA TRELM_MODE PDB



REMARK Dipole tensor.

DATA IRREDUCIBLE REPRESENTATION (A0,A1R,A1I,A2R,A2I)    0.0000e+00  0.0000e+00  0.0000e+00  0.0000e+00  0.0000e+00
DATA IRREDUCIBLE GENERAL_MAGNITUDE   0.0000e+00

REMARK Eigensystem & Euler angles for clockwise rotation about z, y', z''.

DATA EIGENVALUES (Axx,Ayy,Azz)    0.0000e+00  0.0000e+00  0.0000e+00
DATA EIGENVECTORS
DATA EIGENVECTORS XAXIS  1.0000e+00  0.0000e+00  4.3064e+00
DATA EIGENVECTORS YAXIS -2.1631e+00  3.8227e+00  5.0231e-01
DATA EIGENVECTORS ZAXIS -8.4228e-01 -5.0231e-01  1.9559e-01

DATA Q_EULER_SOLUTIONS    ALPHA     BETA    GAMMA
DATA Q_EULER_ANGLES  1     6.65    78.72   329.19
DATA Q_EULER_ANGLES  2   186.65    78.72   329.19
DATA Q_EULER_ANGLES  3   173.35   101.28   149.19
DATA Q_EULER_ANGLES  4   353.35   101.28   149.19

DATA PDB_EL MONOPOL  -5.000000e-01
DATA PDB_EL SUM_POS   5.000000e-01
DATA PDB_EL SUM_NEG  -1.000000e+00
DATA PDB_EL LOC (x,y,z)
DATA PDB_EL LOC_NEG   5.559800e+01   -8.097800e+01    2.799000e+00
DATA PDB_EL LOC_POS   4.931500e+01   -8.472500e+01    4.258000e+00
DATA PDB_EL DIPOL     3.729772e+00


REMARK Input tensor.

DATA IRREDUCIBLE REPRESENTATION (A0,A1R,A1I,A2R,A2I)   -3.1707e-03 -5.1777e-04  3.8833e-04  6.4721e-04 -6.4721e-04
DATA IRREDUCIBLE GENERAL_MAGNITUDE   3.5449e-03

REMARK Eigensystem & Euler angles for clockwise rotation about z, y', z''.

DATA EIGENVALUES (Axx,Ayy,Azz)    2.9914e-04  1.7695e-03 -2.0687e-03
DATA EIGENVECTORS
DATA EIGENVECTORS XAXIS -3.9811e-01  9.1596e-01  5.0254e-02
DATA EIGENVECTORS YAXIS  9.1214e-01  3.8945e-01  1.2779e-01
DATA EIGENVECTORS ZAXIS -9.7475e-02 -9.6712e-02  9.9053e-01

DATA Q_EULER_SOLUTIONS    ALPHA     BETA    GAMMA
DATA Q_EULER_ANGLES  1   111.47     7.89   315.23
DATA Q_EULER_ANGLES  2   291.47     7.89   315.23
DATA Q_EULER_ANGLES  3    68.53   172.11   135.23
DATA Q_EULER_ANGLES  4   248.53   172.11   135.23

DATA SAUPE  -2.0000e-03  1.0000e-03  5.0000e-04  4.0000e-04  3.0000e-04

DATA Da(NH) = -22.3    R = Dr/Da = 0.474


REMARK Relative orientation of two coordinate systems.

DATA DCOS_DEG (x/y/z)    100.469  114.844  71.070
)";
const char *const dipoleErrors = R"(ubi/1d3z_model1.pdb, 1231 Atoms, Residues 1 to 76.
, 0 Couplings, Residues 0 to 0.
REMARK charges, 2 Charges/pka Values, Net Charge -0.500 Residues 3 to 56.


)";

TEST(AnalysisRun, ThreeVariants)
{
    const std::string tensor = "-inS -2.0e-3 1e-3 5e-4 4e-4 3e-4 ";
    const Ran dipole = goodRun("-el -elInfo -nosurf -pka charges " + tensor + line,
                               {.files = {{"charges", "56 charge HD21 -1.0\n3 charge CB 0.5\n"}}});
    EXPECT_EQ(dipole.out, dipoleOutput);
    EXPECT_EQ(ownErrors(dipole.err), dipoleErrors);

    const Ran shape = goodRun(line + tensor + "-outP report");
    EXPECT_TRUE(shape.out.ends_with("REMARK 157 atoms selected for simulation.\n")) << shape.out;
    const std::string report = shape.file("report");
    expectOrder(report,
                {"REMARK Molecular Alignment Simulation.\n\nREMARK Simulation parameters.\n",
                 "DATA TRELM_MODE PDB\n\n\n\nREMARK Inertia tensor.", "DATA EIGENVALUES",
                 "\n\nREMARK Input tensor.", "\nDATA SAUPE  -2.0000e-03  1.0000e-03  5.0000e-04 ",
                 "DATA Da(NH) = -22.3    R = Dr/Da = 0.474\n\n",
                 "\nREMARK Relative orientation of two coordinate systems.\n\nDATA DCOS_DEG (x/y/z)    "});
    EXPECT_EQ(countOf(report, "PDB_EL"), 0);

    const Ran charges = goodRun(line + tensor + "-el"), user = goodRun(line + tensor + "-user");
    EXPECT_EQ(countOf(charges.out, "DATA PDB_EL DIPOL     5.007146e+01\n"), 1);
    EXPECT_GT(countOf(charges.file("turned.pdb.2"), "N1+"), 0);
    EXPECT_GT(countOf(charges.file("turned.pdb.2"), "O0+"), 0);
    // Each variant turns the structure into another frame.
    EXPECT_NE(shape.file("turned.pdb"), charges.file("turned.pdb"));
    EXPECT_NE(shape.file("turned.pdb"), user.file("turned.pdb"));
}

void readAll(const std::string &name, PDBInfo &pdbInfo)
{
    ASSERT_EQ(readPDB(name, pdbInfo, nullptr, standardMessages()), Status::ok);
    ASSERT_EQ(pdbInfo.atomCount, 1231);
}

Matrix3d momentsOf(const PDBInfo &pdbInfo)
{
    Matrix3d m = {};
    EXPECT_EQ(calcInertia({pdbInfo, AtomMask(1231, 1)}, m, standardMessages()), Status::ok);
    return m;
}

/// From atom i to atom j.
Axis between(const PDBInfo &pdbInfo, std::size_t i, std::size_t j)
{
    const Coord3D &a = pdbInfo.coordinates()[i], &b = pdbInfo.coordinates()[j];
    return {double{b.x} - double{a.x}, double{b.y} - double{a.y}, double{b.z} - double{a.z}};
}

/// An order matrix with the axes of the second moments, in their order.
std::string alongMoments(const PDBInfo &pdbInfo)
{
    TensorAnalysis axes;
    EXPECT_EQ(analyzeMatrix3D(momentsOf(pdbInfo), 0, axes, standardMessages()), Status::ok);
    constexpr double eigVal[] = {2e-4, -1.5e-4, -0.5e-4};
    const auto element = [&](std::size_t i, std::size_t j) {
        double sum = 0.0;
        for (std::size_t k = 0; k < 3; ++k)
            sum += eigVal[k] * axes.eigVec[3 * i + k] * axes.eigVec[3 * j + k];
        return sum;
    };
    char text[200];
    std::snprintf(text, sizeof text, "-inS %.12e %.12e %.12e %.12e %.12e ", element(2, 2),
                  element(0, 0) - element(1, 1), element(0, 1), element(0, 2), element(1, 2));
    return text;
}

TEST(AnalysisRun, TurnsTheStructureOntoItsOwnAxes)
{
    const Ran ran = goodRun(allAtoms);
    for (const char *name : {"turned.pdb", "turned.pdb.0", "turned.pdb.1", "turned.pdb.2", "turned.pdb.3"}) {
        PDBInfo turned;
        readAll(ran.folder / name, turned);
        const Matrix3d m = momentsOf(turned);
        EXPECT_GT(m[8], m[4]) << name; // the longest axis is z
        EXPECT_GT(m[4], m[0]) << name;
        for (const std::size_t k : {1u, 2u, 5u})
            EXPECT_NEAR(m[k], 0.0, 1e-3) << name; // coordinates have three decimals
    }
    EXPECT_TRUE(ran.out.ends_with("REMARK 1231 atoms selected for simulation.\n"));
    EXPECT_EQ(countOf(ran.file("report"), "    R = Dr/Da = 0.000\n"), 1); // no order matrix
}

TEST(AnalysisRun, ReportsHowTheFramesLieToEachOther)
{
    PDBInfo pdbInfo;
    readAll(example("1d3z_model1.pdb"), pdbInfo);
    for (const char *variant : {"", "-user"}) {
        const Ran ran = goodRun(allAtoms + alongMoments(pdbInfo) + variant);
        const std::vector<double> angles = numbersAfter(ran.file("report"), "DATA DCOS_DEG (x/y/z)");
        ASSERT_FALSE(angles.empty());
        for (const double angle : angles) // an axis has no sign
            EXPECT_NEAR(std::min(angle, 180.0 - angle), 0.0, 1e-3) << variant;
    }
}

TEST(AnalysisRun, UserTurnsIntoTheFrameOfTheOrderMatrix)
{
    // Its axes lie between y and z: eigenvalues 5e-4, -5e-4, 0.
    const Ran ran = goodRun(allAtoms + "-user -inS 0 0 0 0 5e-4");
    EXPECT_EQ(countOf(ran.file("report"), "\n\nREMARK Dipole tensor."), 1);
    PDBInfo pdbInfo, turned;
    readAll(example("1d3z_model1.pdb"), pdbInfo);
    readAll(ran.folder / "turned.pdb.0", turned);
    for (const std::size_t j : {100u, 600u, 1200u}) {
        const Axis before = between(pdbInfo, 0, j), after = between(turned, 0, j);
        EXPECT_NEAR(std::fabs(after[0]), std::fabs(before[0]), 2e-3);
        const auto [low, high] = std::minmax({std::fabs(after[1]), std::fabs(after[2])});
        const double sum = std::fabs(before[1] + before[2]) / std::sqrt(2.0),
                     difference = std::fabs(before[1] - before[2]) / std::sqrt(2.0);
        EXPECT_NEAR(low, std::min(sum, difference), 2e-3);
        EXPECT_NEAR(high, std::max(sum, difference), 2e-3);
    }
}

TEST(AnalysisRun, ChargedTurnsTheDipoleOntoZAndMarksItsAtoms)
{
    const std::string pdb = fileText(example("1d3z_model1.pdb"));
    std::string level = pdb; // a dipole at right angles to z
    level.replace(level.find("49.315 -84.725   4.258"), 22, "49.315 -84.725   2.799");
    for (const std::string &molecule : {pdb, level}) {
        const Ran ran =
            goodRun("-pdb m.pdb -el -pka charges " + allAtoms,
                    {.files = {{"m.pdb", molecule}, {"charges", "56 charge HD21 -1.0\n3 charge CB 0.5\n"}}});
        PDBInfo pdbInfo, turned;
        readAll(ran.folder / "m.pdb", pdbInfo);
        readAll(ran.folder / "turned.pdb.0", turned);
        const Axis dipole = between(turned, 900, 40), before = between(pdbInfo, 900, 40);
        const double length = std::hypot(before[0], before[1], before[2]);
        EXPECT_NEAR(dipole[0], 0.0, 2e-3);
        EXPECT_NEAR(dipole[1], 0.0, 2e-3);
        EXPECT_NEAR(dipole[2], length, 2e-3);
        EXPECT_EQ(turned.atomList[900].chargeStr.view(), "0+");
        EXPECT_EQ(turned.atomList[900].tempFactor, -1.0f);
        EXPECT_EQ(turned.atomList[40].chargeStr.view(), "1+");
        EXPECT_EQ(turned.atomList[0].tempFactor, 0.0f);
        EXPECT_NEAR(number(ran.file("report"), "DATA PDB_EL DIPOL"), 0.5 * length, 5e-5 * length);
        EXPECT_EQ(countOf(ran.file("report"), "DATA PDB_EL MONOPOL  -5.000000e-01\n"), 1);
    }
}

TEST(AnalysisRun, WithoutChargesTheFrameStays)
{
    const Ran ran = goodRun(allAtoms + "-el -nopkaDef");
    EXPECT_EQ(countOf(ran.err, "eigVec2euler: error occured!\n"), 1);
    PDBInfo pdbInfo, turned;
    readAll(example("1d3z_model1.pdb"), pdbInfo);
    readAll(ran.folder / "turned.pdb.0", turned);
    const Axis before = between(pdbInfo, 0, 1200), after = between(turned, 0, 1200);
    expectNear({after.begin(), after.end()}, {before.begin(), before.end()}, 2e-3);
    EXPECT_EQ(turned.atomList[0].tempFactor, 0.0f);
    EXPECT_EQ(turned.atomList[0].chargeStr, pdbInfo.atomList[0].chargeStr);
    EXPECT_EQ(countOf(ran.file("report"), "nan"), 0);
}

} // namespace
