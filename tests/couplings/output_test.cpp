// The report and the table, to the byte.
#include "couplings/output.h"
#include "couplings/run_report.h"
#include "couplings/statistics.h"

#include "couplings/dc_table.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include <unistd.h>

namespace trelm {
namespace {

std::string written(DTable &table, TrelmInfo &info)
{
    const auto name = std::filesystem::temp_directory_path() / ("trelm_out_" + std::to_string(getpid()));
    EXPECT_EQ(writeDCmod(name, "w", &table, &info, ""), 0);
    std::ostringstream text;
    text << std::ifstream(name).rdbuf();
    std::filesystem::remove(name);
    return text.str();
}

TEST(Output, ShortForm)
{
    DTable table = makeTable({{1.5f, 1.25f}, {-20.0f, -19.875f}});
    table.nullChainName = 0;
    pdbStrCpy(table.dObsList[0].chainNameI, "A");
    TrelmInfo info;
    info.verbFlag = 0;
    EXPECT_EQ(
        written(table, info),
        "DATA SEQUENCE \n\n"
        "VARS    RESID_I RESNAME_I ATOMNAME_I CHAINNAME_I RESID_J RESNAME_J ATOMNAME_J CHAINNAME_J D DD W\n"
        "FORMAT  %4d %4s %4s %4s %4d %4s %4s %4s %9.3f %9.3f %.2f\n\n"
        "    2  GLN    H    A    2  GLN    N None    1.2500  1.0000 1.00\n"
        "    3  GLN    H None    3  GLN    N None  -19.8750  1.0000 1.00\n");
}

TEST(Output, ExtendedFormWithoutATensor)
{
    DTable table = makeTable({{1.5f, 1.25f}, {-20.0f, -19.875f}, {9999.0f, 3.0f}});
    TrelmInfo info;
    info.trelmMode = 7;
    info.qFlag = 0;
    EXPECT_EQ(
        written(table, info),
        "REMARK Molecular Alignment Simulation.\n\nREMARK Simulation parameters.\n"
        "\nDATA TRELM_MODE DC\n\nDATA TENSOR_MODE SVD (Order Matrix Method)\n\n\n"
        "\nREMARK Dipolar couplings.\n\nDATA N                    2\nDATA SEQUENCE \n"
        "DATA RMS                  0.198\nDATA Chi2                 0.078\nDATA CORR R               1.000\n"
        "DATA Q RDC_RMS            0.014\n"
        "DATA REGRESSION OFFSET    -0.224 +/- 0.000 [Hz]\n"
        "DATA REGRESSION SLOPE     0.983 +/- 0.000 [Hz]\n"
        "DATA REGRESSION BAX SLOPE 0.983 +/- 0.000 [Hz]\n\n"
        "VARS    RESID_I RESNAME_I ATOMNAME_I RESID_J RESNAME_J ATOMNAME_J DI D_OBS D D_DIFF DD W\n"
        "FORMAT  %4d %4s %4s %4d %4s %4s %9.2f %9.3f %9.3f %9.3f %.2f %.2f\n\n"
        "    2  GLN    H    2  GLN    N -21585.20    1.5000    1.2500    0.2500  1.0000 1.00\n"
        "    3  GLN    H    3  GLN    N -21585.20  -20.0000  -19.8750   -0.1250  1.0000 1.00\n"
        "    4  GLN    H    4  GLN    N -21585.20  9999.0000    3.0000  9999.0000  1.0000 1.00\n");
}

TEST(Output, WithoutACouplingTheReportEndsAtTheSequence)
{
    DTable table = makeTable({{9999.0f, 9999.0f}});
    TrelmInfo info;
    info.trelmMode = 7;
    const std::string text = written(table, info);
    EXPECT_TRUE(text.ends_with("DATA N                    0\nDATA SEQUENCE \n")) << text;
}

TEST(Output, StatisticsWithoutSpreadAreZero)
{
    const DTable table = makeTable({{2.0f, 2.5f}, {2.0f, 2.5f}, {2.0f, 2.5f}});
    DcStatistics stat;
    ASSERT_EQ(getStatDCmod(table, stat), 0);
    EXPECT_FLOAT_EQ(stat.rSumD2, 0.5f);
    EXPECT_EQ(stat.stdDevD, 0.0f);
    EXPECT_EQ(stat.coorR, 0.0f);
    EXPECT_EQ(stat.slope, 0.0f);
    EXPECT_EQ(stat.errAveSlope, 0.0f);
}

TEST(RunReport, OrdersOfTheTwoBlocks)
{
    TrelmInfo info;
    info.trelmMode = 4;
    info.lcType = 2;
    info.includeRim = 0.001f;
    std::string block, head;
    writeTrelm(info, block);
    appendModeBlock(info, DTensor{}, head);
    EXPECT_TRUE(
        block.starts_with("\nDATA TRELM_MODE ELECTROSTATIC\n\nDATA TRELM LC_TYPE              rod\n"));
    EXPECT_NE(block.find("GRID_SPACING        0.200\nDATA TRELM MODEL_RADIUS        20.000\n"),
              std::string::npos);
    EXPECT_NE(block.find("DATA TRELM EL PH               7.000\nDATA TRELM EL NACL             0.200\n"),
              std::string::npos);
    EXPECT_NE(block.find("DATA TRELM EL CUTOFF          6.000000e-06\nDATA TRELM INCLUDE_RIM      on\n"),
              std::string::npos);
    EXPECT_NE(head.find("MODEL_RADIUS        20.000\nDATA TRELM GRID_SPACING        0.200\n"),
              std::string::npos);
    EXPECT_NE(head.find("DATA TRELM EL NACL             0.200\nDATA TRELM EL PH               7.000\n"),
              std::string::npos);
    EXPECT_NE(head.find("DATA TRELM EL CH_TERM          on\nDATA TRELM EL CUTOFF           6.000000e-06\n"),
              std::string::npos);
    EXPECT_TRUE(head.ends_with("DATA TRELM S_DISC_RIM        0.250\n\n\n"));
    info.trelmMode = 11;
    info.includeRim = 0.0f;
    std::string nothing;
    writeTrelm(info, nothing);
    EXPECT_EQ(nothing, "");
}

} // namespace
} // namespace trelm
