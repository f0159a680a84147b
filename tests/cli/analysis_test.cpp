// Whole runs of the analysis of one structure: the frames that it is turned into, and the report.
#include "cli/run_program.h"
#include "couplings/tensor.h"
#include "simulation/inertia.h"
#include "structure/pdb.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace {

using namespace trelm;

const std::string line = "-anPdb -pdb ubi/1d3z_model1.pdb -H -pdbRot turned.pdb ";
const std::string allAtoms = line + "-nosurf -outP report ";

TEST(AnalysisRun, ThreeVariants)
{
    const std::string tensor = "-inS -2.0e-3 1e-3 5e-4 4e-4 3e-4 ";
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
}

void readAll(const std::string &name, PDBInfo &pdbInfo)
{
    ASSERT_EQ(readPDB(name, &pdbInfo, nullptr), 0);
    ASSERT_EQ(pdbInfo.atomCount, 1231);
    for (AtomInfo &atom : pdbInfo.atoms())
        atom.selected = 1;
}

/// From atom i to atom j.
Axis between(const PDBInfo &pdbInfo, std::size_t i, std::size_t j)
{
    const AtomInfo &a = pdbInfo.atomList[i], &b = pdbInfo.atomList[j];
    return {double{b.x} - double{a.x}, double{b.y} - double{a.y}, double{b.z} - double{a.z}};
}

/// An order matrix with the axes of the second moments, in their order.
std::string alongMoments(const PDBInfo &pdbInfo)
{
    Matrix3d m;
    TensorAnalysis axes;
    EXPECT_EQ(calcInertia(pdbInfo, m), 0);
    EXPECT_EQ(analyzeMatrix3D(m, 0, axes), 0);
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
        Matrix3d m;
        ASSERT_EQ(calcInertia(turned, m), 0);
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
