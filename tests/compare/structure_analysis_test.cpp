// One structure by itself: the frames that it is turned into, and the report.
#include "compare/structure_analysis.h"

#include "simulation/inertia.h"
#include "structure/select.h"
#include "support/text.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <vector>

namespace trelm {
namespace {

using testing::internal::CaptureStderr;
using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStderr;
using testing::internal::GetCapturedStdout;

const char *const ubiquitin = TRELM_EXAMPLES "/ubiquitin/1d3z_model1.pdb";

void readSelected(const std::string &name, PDBInfo &pdbInfo)
{
    ASSERT_EQ(readPDB(name, &pdbInfo, nullptr), 0);
    for (AtomInfo &atom : pdbInfo.atoms())
        atom.selected = 1;
}

/// An analysis of ubiquitin and its files, which go with this record.
struct Analysis {
    std::filesystem::path folder;
    PDBInfo pdbInfo;
    TrelmInfo trelmInfo;
    Saupe saupe = {};
    std::vector<int> atoms;
    std::vector<float> values;
    std::string outPName, said, complained, report;
    int status = -1;

    explicit Analysis(int elPdbFlag)
    {
        folder = testing::TempDir() + "trelm_analysis_" + std::to_string(getpid());
        std::filesystem::create_directory(folder);
        outPName = folder / "report";
        readSelected(ubiquitin, pdbInfo);
        trelmInfo.trelmMode = 15;
        trelmInfo.surfFlag = 0;
        trelmInfo.elPdbFlag = elPdbFlag;
        trelmInfo.elInfo.elFlag = elPdbFlag == 1 ? 1 : 0;
    }
    Analysis(const Analysis &) = delete;
    Analysis &operator=(const Analysis &) = delete;
    ~Analysis() { std::filesystem::remove_all(folder); }

    void run()
    {
        ChargeSet charges;
        charges.chargeAtomID = atoms;
        charges.charges = values;
        charges.chCount = static_cast<int>(values.size());
        CaptureStdout();
        CaptureStderr();
        status = analyzePDB(&pdbInfo, nullptr, trelmInfo, charges, saupe,
                            {folder / "turned.pdb", outPName, nullptr});
        said = GetCapturedStdout();
        complained = GetCapturedStderr();
        std::ostringstream text;
        if (std::filesystem::is_regular_file(outPName))
            text << std::ifstream(outPName).rdbuf();
        report = text.str();
    }
    void readTurned(const std::string &tail, PDBInfo &turned) const
    {
        readSelected((folder / "turned.pdb").string() + tail, turned);
        ASSERT_EQ(turned.atomCount, pdbInfo.atomCount);
    }
    [[nodiscard]] bool reports(const std::string &text) const
    {
        return report.find(text) != std::string::npos;
    }
};

/// From atom i to atom j.
Axis between(const PDBInfo &pdbInfo, std::size_t i, std::size_t j)
{
    const AtomInfo &a = pdbInfo.atomList[i], &b = pdbInfo.atomList[j];
    return {double{b.x} - double{a.x}, double{b.y} - double{a.y}, double{b.z} - double{a.z}};
}

/// An order matrix with the axes of the second moments, in their order.
Saupe alongMoments(const PDBInfo &pdbInfo)
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
    return {element(2, 2), element(0, 0) - element(1, 1), element(0, 1), element(0, 2), element(1, 2)};
}

TEST(StructureAnalysis, TurnsTheStructureOntoItsOwnAxes)
{
    Analysis analysis(0);
    analysis.run();
    ASSERT_EQ(analysis.status, 0) << analysis.complained;
    for (const char *tail : {"", ".0", ".1", ".2", ".3"}) {
        PDBInfo turned;
        analysis.readTurned(tail, turned);
        Matrix3d m;
        ASSERT_EQ(calcInertia(turned, m), 0);
        EXPECT_GT(m[8], m[4]) << tail; // the longest axis is z
        EXPECT_GT(m[4], m[0]) << tail;
        for (const std::size_t k : {1u, 2u, 5u})
            EXPECT_NEAR(m[k], 0.0, 1e-3) << tail; // coordinates have three decimals
    }
    EXPECT_EQ(analysis.said, "REMARK 1231 atoms selected for simulation.\n");
    EXPECT_TRUE(analysis.reports("\n\nREMARK Inertia tensor."));
    EXPECT_FALSE(analysis.reports("PDB_EL"));
    EXPECT_TRUE(analysis.reports("    R = Dr/Da = 0.000\n")); // no order matrix
}

TEST(StructureAnalysis, ReportsHowTheFramesLieToEachOther)
{
    for (const int elPdbFlag : {0, 2}) {
        Analysis analysis(elPdbFlag);
        analysis.saupe = alongMoments(analysis.pdbInfo);
        analysis.run();
        ASSERT_EQ(analysis.status, 0) << analysis.complained;
        const std::size_t at = analysis.report.find("DATA DCOS_DEG (x/y/z)    ");
        ASSERT_NE(at, std::string::npos);
        std::istringstream words(analysis.report.substr(at + 25));
        for (double angle = 90.0; words >> angle;) // an axis has no sign
            EXPECT_NEAR(std::min(angle, 180.0 - angle), 0.0, 1e-3) << elPdbFlag;
    }
}

TEST(StructureAnalysis, UserTurnsIntoTheFrameOfTheOrderMatrix)
{
    Analysis analysis(2);
    analysis.saupe = {0.0, 0.0, 0.0, 0.0, 5e-4}; // its axes lie between y and z: eigenvalues 5e-4, -5e-4, 0
    analysis.run();
    ASSERT_EQ(analysis.status, 0) << analysis.complained;
    EXPECT_TRUE(analysis.reports("\n\nREMARK Dipole tensor."));
    PDBInfo turned;
    analysis.readTurned(".0", turned);
    for (const std::size_t j : {100u, 600u, 1200u}) {
        const Axis before = between(analysis.pdbInfo, 0, j), after = between(turned, 0, j);
        EXPECT_NEAR(std::fabs(after[0]), std::fabs(before[0]), 2e-3);
        const double sum = std::fabs(before[1] + before[2]) / std::sqrt(2.0),
                     difference = std::fabs(before[1] - before[2]) / std::sqrt(2.0);
        EXPECT_NEAR(std::min(std::fabs(after[1]), std::fabs(after[2])), std::min(sum, difference), 2e-3);
        EXPECT_NEAR(std::max(std::fabs(after[1]), std::fabs(after[2])), std::max(sum, difference), 2e-3);
    }
}

TEST(StructureAnalysis, ChargedTurnsTheDipoleOntoZAndMarksItsAtoms)
{
    for (const bool isLevel : {false, true}) {
        Analysis analysis(1);
        analysis.atoms = {900, 40};
        analysis.values = {-1.0f, 0.5f};
        if (isLevel) // a dipole at right angles to z
            analysis.pdbInfo.atomList[40].z = analysis.pdbInfo.atomList[900].z;
        analysis.run();
        ASSERT_EQ(analysis.status, 0) << analysis.complained;
        PDBInfo turned;
        analysis.readTurned(".0", turned);
        const Axis dipole = between(turned, 900, 40), before = between(analysis.pdbInfo, 900, 40);
        const double length = std::hypot(before[0], before[1], before[2]);
        EXPECT_NEAR(dipole[0], 0.0, 2e-3);
        EXPECT_NEAR(dipole[1], 0.0, 2e-3);
        EXPECT_NEAR(dipole[2], length, 2e-3);
        EXPECT_EQ(turned.atomList[900].chargeStr.view(), "0+");
        EXPECT_EQ(turned.atomList[900].tempFactor, -1.0f);
        EXPECT_EQ(turned.atomList[40].chargeStr.view(), "1+");
        EXPECT_EQ(turned.atomList[0].tempFactor, 0.0f);
        std::string size;
        appendf(size, "DATA PDB_EL DIPOL    % .4e", 0.5 * length);
        EXPECT_TRUE(analysis.reports(size.substr(0, size.size() - 5))) << size << analysis.report;
        EXPECT_TRUE(analysis.reports("DATA PDB_EL MONOPOL  -5.000000e-01\n"));
    }
}

TEST(StructureAnalysis, WithoutChargesTheFrameStays)
{
    Analysis analysis(1);
    analysis.run();
    ASSERT_EQ(analysis.status, 0);
    EXPECT_EQ(analysis.complained, "eigVec2euler: error occured!\n");
    PDBInfo turned;
    analysis.readTurned(".0", turned);
    const Axis before = between(analysis.pdbInfo, 0, 1200), after = between(turned, 0, 1200);
    for (std::size_t k = 0; k < 3; ++k)
        EXPECT_NEAR(after[k], before[k], 2e-3);
    EXPECT_EQ(turned.atomList[0].tempFactor, 0.0f);
    EXPECT_EQ(turned.atomList[0].chargeStr, analysis.pdbInfo.atomList[0].chargeStr);
    EXPECT_EQ(analysis.report.find("nan"), std::string::npos);
}

TEST(StructureAnalysis, FailuresAreToldWithAStatus)
{
    const struct {
        const char *why, *outPName;
        void (*spoil)(Analysis &);
        const char *message;
    } rows[] = {
        {"no folder", "/nowhere/report", [](Analysis &) {},
         "TRELM Error opening output file /nowhere/report\n"},
        {"full device", "/dev/full", [](Analysis &) {}, "Error writing /dev/full.\n"},
        {"no atoms", "", [](Analysis &a) { pdbClearSelection(&a.pdbInfo); },
         "WARNING: Zero atoms for inertia tensor selected.trelm: error in calcInertia."},
        {"order matrix without bounds", "", [](Analysis &a) { a.saupe.fill(1e300); },
         "trelm: error in analyzeSaupe.\n"},
    };
    for (const auto &row : rows) {
        Analysis analysis(0);
        analysis.outPName = row.outPName;
        row.spoil(analysis);
        analysis.run();
        EXPECT_EQ(analysis.status, 1) << row.why;
        EXPECT_EQ(analysis.complained, row.message) << row.why;
    }
}

} // namespace
} // namespace trelm
