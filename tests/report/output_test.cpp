// The report and the table, to the byte.
#include "compare/options.h"
#include "couplings/options.h"
#include "magnitude/options.h"
#include "report/output.h"
#include "report/run_report.h"
#include "simulation/alignment/options.h"

#include "couplings/dc_table.h"

namespace trelm {
namespace {

/// What a report reads of a run.
struct Records {
    Mode mode = modeStTrelm;
    FitOptions fit;
    ReportOptions report;
    AlignmentOptions alignment;
    MagnitudeOptions magnitude;
    ComparisonOptions comparison;
    ConversionOptions conversion;

    [[nodiscard]] ShownParameters shown() const
    {
        return {mode, fit, report, alignment, magnitude, comparison, conversion};
    }
};

std::string written(const DTable &table, const Records &records = {})
{
    TableAnalysis analysis;
    EXPECT_EQ(analyzeTensor(table.dTensor, records.fit, analysis.tensor, standardMessages()), Status::ok);
    EXPECT_EQ(analyzeRows(table, analysis, standardMessages()), Status::ok);
    return couplingReport(table, analysis, records.shown(), "");
}

TEST(Output, ShortForm)
{
    DTable table = makeTable({{1.5f, 1.25f}, {-20.0f, -19.875f}});
    table.nullChainName = 0;
    RowNames names = *table.dObsList[0].names;
    names.chainNameI = Name::of("A");
    setNames(table, names, table.dObsList[0]);
    EXPECT_EQ(
        couplingTable(table),
        "DATA SEQUENCE \n\n"
        "VARS    RESID_I RESNAME_I ATOMNAME_I CHAINNAME_I RESID_J RESNAME_J ATOMNAME_J CHAINNAME_J D DD W\n"
        "FORMAT  %4d %4s %4s %4s %4d %4s %4s %4s %9.3f %9.3f %.2f\n\n"
        "    2  GLN    H    A    2  GLN    N None    1.2500  1.0000 1.00\n"
        "    3  GLN    H None    3  GLN    N None  -19.8750  1.0000 1.00\n");
}

TEST(Output, ExtendedFormWithoutATensor)
{
    DTable table = makeTable({{1.5f, 1.25f}, {-20.0f, -19.875f}, {9999.0f, 3.0f}});
    Records info;
    info.mode = modeBestFit;
    info.report.qFlag = qOfRms;
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
    const std::string text = written(table);
    EXPECT_TRUE(text.ends_with("DATA N                    0\nDATA SEQUENCE \n")) << text;
}

TEST(Output, StatisticsWithoutSpreadAreZero)
{
    const DTable table = makeTable({{2.0f, 2.5f}, {2.0f, 2.5f}, {2.0f, 2.5f}});
    DcStatistics stat;
    ASSERT_EQ(getStatDCmod(table, stat, standardMessages()), Status::ok);
    EXPECT_FLOAT_EQ(stat.rSumD2, 0.5f);
    EXPECT_EQ(stat.stdDevD, 0.0f);
    EXPECT_EQ(stat.coorR, 0.0f);
    EXPECT_EQ(stat.slope, 0.0f);
    EXPECT_EQ(stat.errAveSlope, 0.0f);
}

TEST(Output, StatisticsBeyondSinglePrecisionAreNumbers)
{
    struct {
        const char *why;
        std::vector<std::pair<float, float>> couplings;
        float da;
    } const cases[] = {
        {"tiny measured values", {{1e-23f, 5.0f}, {2e-23f, -7.0f}, {3e-23f, 1.0f}}, 1e-3f},
        {"a tiny Da beside Dr", {{1.0f, 2.0f}, {2.0f, 2.5f}, {3.0f, 1.0f}}, 1e-28f},
    };
    for (const auto &extreme : cases) {
        DTable table = makeTable(extreme.couplings);
        table.dTensor.da = extreme.da;
        EXPECT_EQ(written(table).find("nan"), std::string::npos) << extreme.why;
    }
    // The square of the deviations has no room in single precision: no file tells of it.
    const DTable huge = makeTable({{-3e19f, -3.1e19f}, {-2e19f, 2.5f}, {3.0f, -1e19f}});
    TableAnalysis analysis;
    EXPECT_EQ(analyzeRows(huge, analysis, standardMessages()), Status::failed);
}

// Azz along x, Ayy along y, Axx along z, so that an exchange of axes shows.
TEST(Output, SectionsOfTheTensor)
{
    DTable table = makeTable({{1.0f, 1.0f}});
    table.dTensor.saupe = {2e-4f, -10e-4f, 0.0f, 0.0f, 0.0f};
    std::string text = written(table);
    text.erase(0, text.find("REMARK Order matrix."));
    text.erase(text.find("REMARK Dipolar couplings."));
    EXPECT_EQ(text, R"(REMARK Order matrix.

DATA SAUPE_MATRIX     S(zz)       S(xx-yy)      S(xy)      S(xz)      S(yz)
DATA SAUPE         2.0000e-04 -1.0000e-03  0.0000e+00  0.0000e+00  0.0000e+00

DATA IRREDUCIBLE_REP    A0          A1R          A1I         A2R         A2I  
DATA IRREDUCIBLE     3.1707e-04 -0.0000e+00  0.0000e+00 -6.4721e-04 -0.0000e+00
DATA IRREDUCIBLE GENERAL_MAGNITUDE   9.6865e-04


REMARK Mapping of coordinates.

DATA MAPPING_COOR   Szz_d(x)  Szz_d(y)  Syy_d(x)  Syy_d(y)  Sxx_d(x)  Sxx_d(y)
DATA MAPPING        0.00000  -0.00000   1.57080  -0.00000   0.00000   1.57080
DATA MAPPING INV    0.00000   0.00000  -1.57080   0.00000   0.00000  -1.57080


REMARK Eigensystem & Euler angles for clockwise rotation about z, y', z''.

DATA EIGENVALUES (Sxx_d,Syy_d,Szz_d)    2.0000e-04  4.0000e-04 -6.0000e-04
DATA EIGENVECTORS          (x_coor      y_coor      z_coor)
DATA EIGENVECTORS X_AXIS  0.0000e+00  0.0000e+00  1.0000e+00
DATA EIGENVECTORS Y_AXIS  0.0000e+00  1.0000e+00  0.0000e+00
DATA EIGENVECTORS Z_AXIS  1.0000e+00  0.0000e+00  0.0000e+00

DATA Q_EULER_SOLUTIONS    ALPHA     BETA    GAMMA
DATA Q_EULER_ANGLES  1   180.00    90.00   180.00
DATA Q_EULER_ANGLES  2     0.00    90.00   180.00
DATA Q_EULER_ANGLES  3     0.00    90.00     0.00
DATA Q_EULER_ANGLES  4   180.00    90.00     0.00


REMARK Euler angles (psi/theta/phi) for rotation about x, y, z.

DATA EULER_SOLUTIONS 0

DATA Da -3.000000e-04
DATA Dr -6.666667e-05


DATA Aa -6.000000e-04
DATA Ar -1.333333e-04


DATA Da_HN      -6.475560e+00
DATA Rhombicity  2.222222e-01


)");
}

TEST(RunReport, OrdersOfTheTwoBlocks)
{
    Records info;
    info.mode = modeElTrelm;
    info.alignment.lcType = lcRod;
    info.alignment.includeRim = 0.001f;
    std::string block, head;
    writeTrelm(info.shown(), block);
    appendModeBlock(info.shown(), DTensor{}, head);
    EXPECT_TRUE(
        block.starts_with("\nDATA TRELM_MODE ELECTROSTATIC\n\nDATA TRELM LC_TYPE              rod\n"));
    EXPECT_TRUE(head.ends_with("DATA TRELM S_DISC_RIM        0.250\n\n\n"));
    struct {
        const std::string &text;
        const char *lines;
    } const orders[] = {
        {block, "GRID_SPACING        0.200\nDATA TRELM MODEL_RADIUS        20.000\n"},
        {block, "DATA TRELM EL PH               7.000\nDATA TRELM EL NACL             0.200\n"},
        {block, "DATA TRELM EL CUTOFF          6.000000e-06\nDATA TRELM INCLUDE_RIM      on\n"},
        {head, "MODEL_RADIUS        20.000\nDATA TRELM GRID_SPACING        0.200\n"},
        {head, "DATA TRELM EL NACL             0.200\nDATA TRELM EL PH               7.000\n"},
        {head, "DATA TRELM EL CH_TERM          on\nDATA TRELM EL CUTOFF           6.000000e-06\n"},
    };
    for (const auto &order : orders)
        EXPECT_NE(order.text.find(order.lines), std::string::npos) << order.lines;
    info.mode = modeDaFlex;
    info.alignment.includeRim = 0.0f;
    std::string nothing;
    writeTrelm(info.shown(), nothing);
    EXPECT_EQ(nothing, "");
}

} // namespace
} // namespace trelm
