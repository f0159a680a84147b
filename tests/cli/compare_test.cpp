// Whole runs of the modes that compare and convert.
#include "cli/run_program.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <tuple>

namespace {

/// All kinds of couplings of the listing, both names of the amide proton, and one that was not measured.
const char *const table = "VARS   RESID_I RESNAME_I ATOMNAME_I RESID_J RESNAME_J ATOMNAME_J D DD W\n"
                          "FORMAT %4d %4s %4s %4d %4s %4s %9.3f %9.3f %.2f\n\n"
                          "   2 GLN    H    2 GLN   N    -8.170  1.00 1.00\n"
                          "   2 GLN    N    1 MET   C     1.250  0.10 2.00\n"
                          "   3 ILE    N    3 ILE  HN     8.271  0.50 1.00\n"
                          "   3 ILE   CA    3 ILE  HA   -20.500  2.00 0.50\n"
                          "   3 ILE    H    2 GLN   C     0.333  0.25 1.00\n"
                          "   3 ILE   HN    3 ILE   N     8.300  0.50 1.00\n"
                          "   4 VAL    H    3 ILE  HA     2.500  0.50 1.00\n"
                          "   4 VAL   CA    4 VAL   C   999.000  0.50 1.00\n";

std::string restraint(const std::string &tensor, const std::string &atomI, const std::string &atomJ,
                      const std::string &end)
{
    std::string text = "\nassign ( resid " + tensor + " and name OO  )\n";
    for (const char *axis : {"Z", "X", "Y"})
        text += "       ( resid " + tensor + " and name " + axis + "   )\n";
    text += "       ( resid " + atomI + " and not segid REF )\n";
    return text + "       ( resid " + atomJ + " and not segid REF )   " + end + "\n";
}

TEST(ConversionRun, EachFormatToTheByte)
{
    const std::string restraints = restraint("500", "  2 and name H", "  2 and name N", "-8.1700 1.0000") +
                                   restraint("500", "  2 and name N", "  1 and name C", "1.2500 0.1000");
    const std::string columns = " -9999.000 -9999.000 -9999.000 -9999.000";
    const struct {
        std::string options, expected;
    } cases[] = {
        {"-xplor -dN 2", "! Dipolar couplings from in.tab.\n" + restraints},
        {"-cns -dN 2", "! Dipolar couplings from in.tab.\n" + restraints},
        {"-cns -dN 2 -scale -aD1 N -aD2 C -tensID 77",
         "! Normalized dipolar couplings from in.tab.\n" +
             restraint(" 77", "  2 and name N", "  1 and name C", "2.5000 0.2000")},
        {"-tbl", "    2  GLN    H -8.170 1.250" + columns + "\n" +
                     "    3  ILE    N 8.271 8.300 -9999.000 0.333 -9999.000 -20.500 -9999.000\n" +
                     "    4  VAL    H -9999.000 -9999.000" + columns + "\n"},
        {"-scale -dcHH", // the listing is the default
         "    2  GLN    H -8.170 2.500" + columns + " -9999.000\n" +
             "    3  ILE    N 8.271 8.300 -9999.000 0.333 -9999.000 -10.250 -9999.000 -9999.000\n" +
             "    4  VAL    H -9999.000 -9999.000" + columns + " 2.500\n"},
        {"-dyana", "  2 GLN HN     -8.17    1.00   1.0\n"
                   "  3 ILE HN      8.27    0.50   1.0\n"
                   "  3 ILE HN      8.30    0.50   1.0\n"},
        {"-trelm -noverb -scale -dN 2",
         "DATA SEQUENCE \n\n"
         "VARS    RESID_I RESNAME_I ATOMNAME_I RESID_J RESNAME_J ATOMNAME_J D DD W\n"
         "FORMAT  %4d %4s %4s %4d %4s %4s %9.3f %9.3f %.2f\n\n"
         "    2  GLN    H    2  GLN    N   -8.1700  1.0000 1.00\n"
         "    2  GLN    N    1  MET    C    2.5000  0.2000 1.00\n"},
        {"-rosetta -dN 2 -scale", "Normalized dipolar couplings from in.tab.\n"
                                  "No Gaussian noise has been added.\n"
                                  "comment\n2\n"
                                  "a    2    H    2    N       -8.17\n"
                                  "a    2    N    1    C        2.50\n"},
    };
    for (const auto &c : cases) {
        const Ran ran =
            goodRun("-conv -inD in.tab -outD out.txt " + c.options, {.files = {{"in.tab", table}}});
        EXPECT_EQ(ran.file("out.txt"), c.expected) << c.options << ran.err;
        EXPECT_EQ(countOf(ran.err, "in.tab, 8 Couplings, Residues 1 to 4.\n"), 1);
    }
}

TEST(ConversionRun, OwnTableIsReadBackTheSame)
{
    const std::vector<std::vector<std::string>> source = tableRows(fileText(example("bicelle_backbone.tab")));
    const Ran first = goodRun("-conv -trelm -noverb -inD ubi/bicelle_backbone.tab -outD a.tab");
    const std::vector<std::vector<std::string>> rows = tableRows(first.file("a.tab"));
    ASSERT_EQ(rows.size(), source.size());
    for (std::size_t i = 0; i < rows.size(); ++i)
        for (const std::size_t column : {0, 2, 3, 5, 6, 7})
            EXPECT_TRUE(column < 6 && column % 3 == 2
                            ? rows[i][column] == source[i][column]
                            : std::stod(rows[i][column]) == std::stod(source[i][column]))
                << rows[i][column] << " for " << source[i][column];
    const Ran second =
        goodRun("-conv -trelm -noverb -inD a.tab -outD b.tab", {.files = {{"a.tab", first.file("a.tab")}}});
    EXPECT_EQ(second.file("b.tab"), first.file("a.tab"));
}

std::vector<double> columnOf(const std::string &text, std::size_t column)
{
    std::vector<double> values;
    for (const std::vector<std::string> &row : tableRows(text))
        values.push_back(std::stod(row[column]));
    return values;
}

TEST(ConversionRun, NoiseGoesWithTheError)
{
    const auto converted = [](const std::string &options, const std::string &text) {
        return goodRun("-conv -inD in.tab -outD o.txt " + options, {.files = {{"in.tab", text}}})
            .file("o.txt");
    };
    std::string exact = table;
    for (std::size_t at = 0; (at = exact.find(" 1.00 1.00\n", at)) != std::string::npos;)
        exact.replace(at, 5, " 0.00");
    const std::string with = converted("-rosetta -dcNoise", table);
    EXPECT_TRUE(
        with.starts_with("Dipolar couplings from in.tab.\nGaussian noise has been added.\ncomment\n7\n"));
    EXPECT_EQ(countOf(converted("-rosetta -dcNoise", exact), "a    2    H    2    N       -8.17\n"), 1);
    EXPECT_EQ(with, converted("-rosetta -dcNoise", table)); // two runs draw the same
    EXPECT_TRUE(converted("-cns -dcNoise", table)
                    .starts_with("! Dipolar couplings from in.tab.\n"
                                 "! Gaussian noise has been added.\n\n\nassign"));
    // The noise is of the size of the errors.
    const std::string noisy = converted("-trelm -noverb -dcNoise", table),
                      plain = converted("-trelm -noverb", table);
    const std::vector<double> before = columnOf(plain, 6), after = columnOf(noisy, 6),
                              errors = columnOf(plain, 7);
    ASSERT_EQ(before.size(), 7U);
    ASSERT_EQ(after.size(), 7U);
    double square = 0.0;
    for (std::size_t i = 0; i < before.size(); ++i)
        square += std::pow((after[i] - before[i]) / errors[i], 2);
    EXPECT_GT(square, 0.5);
    EXPECT_LT(square, 40.0);
}

TEST(ConversionRun, ListingGoesByTheResidueOfEachColumn)
{
    // Out of order; the second residue of a row may be the larger one, and the amide proton may come second.
    const std::string rows = "VARS RESID_I RESNAME_I ATOMNAME_I RESID_J RESNAME_J ATOMNAME_J D DD W\n"
                             "FORMAT %d %s %s %d %s %s %f %f %f\n"
                             "9 ALA HA 9 ALA H 9.5 1.0 1.0\n"
                             "4 SER C 5 GLY N 5.25 1.0 1.0\n"
                             "5 GLY C 5 GLY CA 5.75 1.0 1.0\n"
                             "3 VAL CA 4 SER HN 4.125 1.0 1.0\n"
                             "8 LEU HA 9 ALA H 8.875 1.0 1.0\n";
    const Ran ran = goodRun("-conv -dcHH -inD in.tab -outD o.txt", {.files = {{"in.tab", rows}}});
    const std::string none = " -9999.000";
    EXPECT_EQ(ran.file("o.txt"), "    3  VAL   CA" + none + none + none + none + none + " 4.125" + none +
                                     "\n" + "    4  SER    C" + none + " 5.250" + none + " 5.750" + none +
                                     none + none + "\n" + "    9  ALA   HA" + none + none + none + none +
                                     none + none + " 9.500 8.875\n");
}

TEST(ConversionRun, ChainsAndSegmentsHaveColumns)
{
    const Ran ran = goodRun(
        "-conv -inD in.tab -r1 1",
        {.files = {{"in.tab", "VARS RESID_I RESNAME_I ATOMNAME_I CHAINNAME_I SEGNAME_I RESID_J RESNAME_J "
                              "ATOMNAME_J CHAINNAME_J SEGNAME_J D DD W\n"
                              "FORMAT %d %s %s %s %s %d %s %s %s %s %f %f %f\n"
                              "2 GLN H A SEG1 2 GLN N A SEG1 1.5 1.0 1.0\n"
                              "3 ILE H None None 3 ILE N None None 2.5 1.0 1.0\n"}}});
    EXPECT_EQ(ran.out, "REMARK 2 couplings selected (inclusive max).\n"
                       "    2  GLN    H    A SEG1 1.500 -9999.000 -9999.000 -9999.000 -9999.000 -9999.000\n"
                       "    3  ILE    H None None 2.500 -9999.000 -9999.000 -9999.000 -9999.000 -9999.000\n")
        << ran.err;
}

TEST(CouplingSetRun, TableToTheByte)
{
    const std::string head = "VARS RESID_I RESNAME_I ATOMNAME_I RESID_J RESNAME_J ATOMNAME_J D DD W\n"
                             "FORMAT %d %s %s %d %s %s %f %f %f\n";
    const std::map<std::string, std::string> files = {
        {"a.tab", head + "2 GLN H 2 GLN N 1.5 0.5 1.0\n3 ILE H 3 ILE N -2.5 0.5 2.0\n"
                         "4 VAL CA 4 VAL C 3.5 0.5 1.0\n5 LYS H 5 LYS N 999.0 0.5 1.0\n"},
        {"b.tab", head + "3 ILE H 3 ILE N 4.0 9.0 9.0\n2 GLN H 2 GLN N 2.0 9.0 9.0\n"
                         "4 VAL CA 4 VAL C 7.0 9.0 9.0\n5 LYS H 5 LYS N 5.0 9.0 9.0\n"}};
    const struct {
        std::string options;
        int count;
        const char *two, *three;
    } cases[] = {
        {"", 2, " 2.0000", " 4.0000"}, // those of the second table
        {"-add -c1 2", 2, " 5.0000", "-1.0000"},
        {"-sub -c1 1", 2, "-0.5000", "-6.5000"},
        {"-mul -c1 1", 2, " 3.0000", "-10.0000"},
        {"-div -c1 1 -c2 0.5", 2, " 1.5000", "-1.2500"},
        {"-max -c1 1", 2, " 2.0000", " 4.0000"},
        {"-sub -c1 1 -c2 0 -dN 2", 1, " 1.5000", nullptr},
    };
    for (const auto &c : cases) {
        const Ran ran = goodRun(
            "-anDc -noverb -inD1 a.tab -inD2 b.tab -outD o.tab -aD1 H -aD2 N " + c.options, {.files = files});
        const std::string count = std::to_string(c.count);
        EXPECT_EQ(ran.out, "REMARK " + count + " couplings selected (inclusive max).\nREMARK " + count +
                               " couplings combined (inclusive max).\n")
            << ran.err;
        const auto row = [](const char *start, const std::string &d, const char *end) {
            return start + std::string(d.size() < 8 ? 3 : 2, ' ') + d + end;
        };
        std::string rows = row("    2  GLN    H    2  GLN    N", c.two, "  0.5000 1.00\n");
        if (c.three != nullptr)
            rows += row("    3  ILE    H    3  ILE    N", c.three, "  0.5000 2.00\n");
        EXPECT_TRUE(ran.file("o.tab").ends_with("%9.3f %9.3f %.2f\n\n" + rows)) << ran.file("o.tab");
    }
}

TEST(CouplingSetRun, SumAndDifferenceUndoEachOther)
{
    const std::string tables =
        "-anDc -noverb -inD1 ubi/bicelle_hn.tab -inD2 ubi/bicelle2_hn.tab -outD o.tab ";
    const Ran plain = goodRun(tables);
    const std::vector<double> shared = columnOf(plain.file("o.tab"), 6); // those of the second table
    ASSERT_GT(shared.size(), 50u);
    EXPECT_EQ(countOf(plain.out,
                      "REMARK " + std::to_string(shared.size()) + " couplings combined (inclusive max).\n"),
              1)
        << plain.out;
    const Ran back = goodRun("-anDc -noverb -sub -c1 1 -inD1 sum.tab -inD2 ubi/bicelle_hn.tab -outD back.tab",
                             {.files = {{"sum.tab", goodRun(tables + "-add -c1 1").file("o.tab")}}});
    expectNear(columnOf(back.file("back.tab"), 6), shared, 1e-3);
}

// The fits of ubiquitin's backbone couplings in its two media. An independent model of the method, in double
// precision, gives the same digits.
const std::string mediaTensors =
    "-anA -inS1 -5.6237e-04 7.1774e-05 2.7480e-05 -1.3829e-04 5.6242e-04 "
    "-inS2 -1.0494e-03 5.1898e-04 -5.0508e-04 -2.3027e-04 8.4644e-04 -outA a.txt";
const char *const mediaReport = R"(
REMARK Input order matrices.

DATA SAUPE 1      -5.6237e-04  7.1774e-05  2.7480e-05 -1.3829e-04  5.6242e-04
DATA SAUPE 2      -1.0494e-03  5.1898e-04 -5.0508e-04 -2.3027e-04  8.4644e-04
DATA SAUPE RESULT  4.8703e-04 -4.4721e-04  5.3256e-04  9.1980e-05 -2.8402e-04


REMARK Relative orientation of alignment tensors.

DATA ANGLE_3D_AXES (X/Y/Z)  37.58 142.65 7.00

DATA ANGLE_5D_SPACE  25.70
DATA COLL_5D         0.90104


REMARK Hinge rotation between Saupe frames.

DATA HINGE_ANGLES         142.89    37.81   175.93   174.30
DATA CLOSURE_ANGLES         3.69    10.86    87.15    87.96
DATA CLOSURE_PERCENTAGE     0.41     3.55    99.75    99.87

DATA HINGE_AXIS (X/Y/Z)  0  -0.037   0.052  -0.998
DATA HINGE_AXIS (X/Y/Z)  1   0.153   0.110  -0.982
DATA HINGE_AXIS (X/Y/Z)  2   0.318   0.947   0.050
DATA HINGE_AXIS (X/Y/Z)  3  -0.947   0.319   0.036


REMARK Euler rotation between Saupe frames.

DATA Q_EULER_SOLUTIONS  REL  ALPHA     BETA    GAMMA
DATA Q_EULER_ANGLES      1   125.88     7.00    16.94
DATA Q_EULER_ANGLES      2   305.88     7.00    16.94
DATA Q_EULER_ANGLES      3    54.12   173.00   196.94
DATA Q_EULER_ANGLES      4   234.12   173.00   196.94

DATA EULER_SOLUTIONS    REL    PSI    THETA      PHI
DATA EULER_ANGLES        1    -5.68     4.10  -142.61
DATA EULER_ANGLES        2     5.68    -4.10    37.39
DATA EULER_ANGLES        3  -174.32    -4.10    37.39
DATA EULER_ANGLES        4   174.32     4.10  -142.61


REMARK Closure/twist/bend rotation between Saupe frames.

DATA EULER_SOLUTIONS    REL  CLOSURE    TWIST     BEND
DATA CTB_ANGLES          1     7.89   223.13    42.69
DATA CTB_ANGLES          2   -24.18    27.16   -18.49
DATA CTB_ANGLES          3    20.23    16.21   178.74
DATA CTB_ANGLES          4   172.37    -2.98    49.20


REMARK Closure, twist, bend frame.

DATA CTB_FRAME X_AXIS (X/Y/Z) -5.8114e-01  8.1380e-01  0.0000e+00
DATA CTB_FRAME Y_AXIS (X/Y/Z)  0.0000e+00  0.0000e+00  1.0000e+00
DATA CTB_FRAME Z_AXIS (X/Y/Z)  8.1380e-01  5.8114e-01 -0.0000e+00


)";

TEST(OrderMatrixRun, ReportsTwoMediaToTheByte)
{
    const Ran ran = goodRun(mediaTensors);
    EXPECT_EQ(ran.out, "");
    const std::string report = ran.file("a.txt");
    EXPECT_TRUE(report.starts_with(std::string("REMARK Molecular Alignment Simulation.\n\n") + mediaReport +
                                   "REMARK Simulation parameters.\n\nDATA TRELM_MODE SAUPE_CP\n"))
        << report;
    EXPECT_TRUE(
        report.ends_with("\nREMARK Dipolar couplings.\n\nDATA N                    0\nDATA SEQUENCE \n"));

    const std::string exchanged = goodRun(mediaTensors + " -yzInv").file("a.txt"); // the main axes of both
    EXPECT_EQ(countOf(exchanged, "DATA ANGLE_3D_AXES (X/Y/Z)  37.58 7.00 142.65\n"), 1);
}

Ran compareTensors(const std::string &first, const std::string &second, const std::string &options = "")
{
    return goodRun("-anA -outA a.txt -inS1 " + first + " -inS2 " + second + " " + options);
}

const std::string tensor = "3.1e-4 -1.2e-4 0.7e-4 -2.2e-4 1.6e-4",
                  other = "2.9e-4 0.6e-4 1.1e-4 -1.8e-4 2.0e-4";

TEST(OrderMatrixRun, CombinesElementByElement)
{
    const std::string a = "4e-4 -1e-4 2e-4 0.5e-4 0", b = "2e-4 3e-4 -4e-4 1e-4 0.25e-4";
    const std::string scaled = "-c1 2 -c2 3 ";
    const std::tuple<std::string, std::string, std::string, const char *> cases[] = {
        {a, b, scaled + "-add", " 1.4000e-03  7.0000e-04 -8.0000e-04  4.0000e-04  7.5000e-05\n"},
        {a, b, scaled + "-sub", " 2.0000e-04 -1.1000e-03  1.6000e-03 -2.0000e-04 -7.5000e-05\n"},
        {a, b, scaled + "-mul", " 4.8000e-07 -1.8000e-07 -4.8000e-07  3.0000e-08  0.0000e+00\n"},
        {a, b, scaled + "-div", " 1.3333e+00 -2.2222e-01 -3.3333e-01  3.3333e-01  0.0000e+00\n"},
        // The larger one, whatever the scales.
        {a, b, scaled + "-max", " 6.0000e-04  9.0000e-04 -1.2000e-03  3.0000e-04  7.5000e-05\n"},
        {b, a, "-c1 3 -c2 2 -max", " 6.0000e-04  9.0000e-04 -1.2000e-03  3.0000e-04  7.5000e-05\n"},
    };
    for (const auto &[first, second, options, result] : cases) {
        const std::string report = compareTensors(first, second, options).file("a.txt");
        EXPECT_EQ(countOf(report, std::string("\nDATA SAUPE RESULT ") + result), 1) << options << report;
    }
}

TEST(OrderMatrixRun, FindsTheTurnBetweenTwoCopies)
{
    const struct {
        double degrees;
        std::array<double, 3> axis;
    } turns[] = {{20.0, {0.6, 0.0, 0.8}}, {5.0, {0.48, -0.6, 0.64}}, {33.0, {-0.36, 0.48, 0.8}}};
    const double s[3] = {-1e-4, -2e-4, 3e-4}; // along x, y, z
    for (const auto &[degrees, n] : turns) {
        const double angle = degrees * 3.14159265358979 / 180.0, c = std::cos(angle), d = std::sin(angle);
        const double turn[3][3] = {
            {c + n[0] * n[0] * (1 - c), n[0] * n[1] * (1 - c) - n[2] * d, n[0] * n[2] * (1 - c) + n[1] * d},
            {n[1] * n[0] * (1 - c) + n[2] * d, c + n[1] * n[1] * (1 - c), n[1] * n[2] * (1 - c) - n[0] * d},
            {n[2] * n[0] * (1 - c) - n[1] * d, n[2] * n[1] * (1 - c) + n[0] * d, c + n[2] * n[2] * (1 - c)}};
        const auto turned = [&](int i, int j) {
            return turn[i][0] * s[0] * turn[j][0] + turn[i][1] * s[1] * turn[j][1] +
                   turn[i][2] * s[2] * turn[j][2];
        };
        char second[200];
        std::snprintf(second, sizeof second, "%.9e %.9e %.9e %.9e %.9e", turned(2, 2),
                      turned(0, 0) - turned(1, 1), turned(0, 1), turned(0, 2), turned(1, 2));
        const std::string report = compareTensors("3e-4 1e-4 0 0 0", second).file("a.txt");
        // One of the four solutions is the turn itself; its hinge is the axis of the turn, x and y exchanged.
        const std::vector<double> angles = numbersAfter(report, "DATA HINGE_ANGLES");
        ASSERT_EQ(angles.size(), 4U);
        const auto nearest = std::ranges::min_element(
            angles, {}, [turn = degrees](double found) { return std::fabs(found - turn); });
        EXPECT_NEAR(*nearest, degrees, 0.02);
        const std::vector<double> hinge =
            numbersAfter(report, "DATA HINGE_AXIS (X/Y/Z)  " + std::to_string(nearest - angles.begin()));
        ASSERT_EQ(hinge.size(), 3U);
        EXPECT_NEAR(std::fabs(hinge[0] * n[1] + hinge[1] * n[0] + hinge[2] * n[2]), 1.0, 0.01) << report;
    }
}

TEST(OrderMatrixRun, EqualTensorsHaveNoTurn)
{
    const std::string report = compareTensors(tensor, tensor).file("a.txt");
    EXPECT_EQ(numbersAfter(report, "DATA ANGLE_5D_SPACE"), (std::vector<double>{0.0}));
    EXPECT_EQ(numbersAfter(report, "DATA COLL_5D"), (std::vector<double>{1.0}));
    EXPECT_NEAR(number(report, "DATA HINGE_ANGLES"), 0.0, 0.05);
    for (const char *line : {"DATA CTB_ANGLES          1", "DATA EULER_ANGLES        1"})
        expectNear(numbersAfter(report, line), {0.0, 0.0, 0.0}, 0.01);
    EXPECT_EQ(numbersAfter(report, "DATA SAUPE RESULT"), std::vector<double>(5, 0.0));
}

TEST(OrderMatrixRun, HingeAndTwistOfTheUser)
{
    const Ran given = compareTensors(tensor, other, "-hinge 0.6 0 0.8 -twist 0 0 2");
    EXPECT_EQ(given.out, "REMARK 36.87 degree between input hinge and twist axis.\n"
                         "REMARK This corresponds to 36.00 % closure motion.\n");
    const auto axis = [](const Ran &ran, const std::string &name) {
        return numbersAfter(ran.file("a.txt"), "DATA CTB_FRAME " + name + "_AXIS (X/Y/Z)");
    };
    EXPECT_EQ(axis(given, "X"), (std::vector<double>{1.0, 0.0, 0.0}));
    EXPECT_EQ(axis(given, "Y"), (std::vector<double>{0.0, 0.0, 1.0}));
    EXPECT_EQ(axis(given, "Z"), (std::vector<double>{0.0, -1.0, 0.0}));
    // Without bearing on a hinge that is given.
    EXPECT_EQ(compareTensors(tensor, other, "-rotID 4 -hinge 1 1 0").status, 0);
    // Equal components mean that none was given.
    const Ran equal = compareTensors(tensor, other, "-hinge 1 1 1 -twist 1 1 1"),
              plain = compareTensors(tensor, other);
    EXPECT_EQ(equal.out, "");
    EXPECT_EQ(equal.file("a.txt"), plain.file("a.txt"));
    ASSERT_EQ(axis(plain, "X").size(), 3U);
    EXPECT_NE(axis(compareTensors(tensor, other, "-rotID 2"), "X"), axis(plain, "X"));
}

TEST(OrderMatrixRun, DegenerateTensorsAreReported)
{
    const std::string axial = "2e-4 0 0 0 0", none = "0 0 0 0 0";
    const std::tuple<std::string, std::string, const char *> cases[] = {
        {axial, axial, "\nDATA HINGE_ANGLES           0.00"},
        {axial, tensor, "\nDATA CTB_FRAME Y_AXIS (X/Y/Z)  0.0000e+00  0.0000e+00  1.0000e+00\n"},
        {none, none, "\nDATA COLL_5D         0.00000\n"},
        {none, tensor, "\nDATA ANGLE_5D_SPACE  90.00\n"},
        // A turn about the twist axis alone: the hinge does not tell the other two axes.
        {"2e-4 1e-4 0 0 0", "2e-4 5e-5 4.330127e-5 0 0",
         "\nDATA CTB_ANGLES          1      nan      nan      nan\n"},
    };
    for (const auto &[first, second, line] : cases) {
        const Ran ran = compareTensors(first, second);
        EXPECT_EQ(countOf(ran.file("a.txt"), line), 1) << ran.file("a.txt");
        EXPECT_EQ(countOf(ran.err, "trelm: an order matrix is 0"), (first == none) + (second == none));
    }
}

} // namespace
