// Whole runs of the modes that compare and convert.
#include "cli/run_program.h"

#include <gtest/gtest.h>

#include <map>
#include <sstream>

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
        std::vector<std::string> args;
        std::string expected;
    } cases[] = {
        {{"-xplor", "-dN", "2"}, "! Dipolar couplings from in.tab.\n" + restraints},
        {{"-cns", "-dN", "2"}, "! Dipolar couplings from in.tab.\n" + restraints},
        {{"-cns", "-dN", "2", "-scale", "-aD1", "N", "-aD2", "C", "-tensID", "77"},
         "! Normalized dipolar couplings from in.tab.\n" +
             restraint(" 77", "  2 and name N", "  1 and name C", "2.5000 0.2000")},
        {{"-tbl"},
         "    2  GLN    H -8.170 1.250" + columns + "\n" +
             "    3  ILE    N 8.271 8.300 -9999.000 0.333 -9999.000 -20.500 -9999.000\n" +
             "    4  VAL    H -9999.000 -9999.000" + columns + "\n"},
        {{"-scale", "-dcHH"}, // the listing is the default
         "    2  GLN    H -8.170 2.500" + columns + " -9999.000\n" +
             "    3  ILE    N 8.271 8.300 -9999.000 0.333 -9999.000 -10.250 -9999.000 -9999.000\n" +
             "    4  VAL    H -9999.000 -9999.000" + columns + " 2.500\n"},
        {{"-dyana"},
         "  2 GLN HN     -8.17    1.00   1.0\n"
         "  3 ILE HN      8.27    0.50   1.0\n"
         "  3 ILE HN      8.30    0.50   1.0\n"},
        {{"-trelm", "-noverb", "-scale", "-dN", "2"},
         "DATA SEQUENCE \n\n"
         "VARS    RESID_I RESNAME_I ATOMNAME_I RESID_J RESNAME_J ATOMNAME_J D DD W\n"
         "FORMAT  %4d %4s %4s %4d %4s %4s %9.3f %9.3f %.2f\n\n"
         "    2  GLN    H    2  GLN    N   -8.1700  1.0000 1.00\n"
         "    2  GLN    N    1  MET    C    2.5000  0.2000 1.00\n"},
        {{"-rosetta", "-dN", "2", "-scale"},
         "Normalized dipolar couplings from in.tab.\n"
         "No Gaussian noise has been added.\n"
         "comment\n2\n"
         "a    2    H    2    N       -8.17\n"
         "a    2    N    1    C        2.50\n"},
    };
    for (const auto &c : cases) {
        std::vector<std::string> args = {"-conv", "-inD", "in.tab", "-outD", "out.txt"};
        args.insert(args.end(), c.args.begin(), c.args.end());
        const Ran ran = runProgram(args, {.files = {{"in.tab", table}}});
        EXPECT_EQ(ran.status, 0) << ran.err;
        EXPECT_EQ(ran.file("out.txt"), c.expected) << c.args[0] << ran.err;
        EXPECT_EQ(countOf(ran.err, "in.tab, 8 Couplings, Residues 1 to 4.\n"), 1);
    }
}

TEST(ConversionRun, OwnTableIsReadBackTheSame)
{
    const std::vector<std::vector<std::string>> source = tableRows(fileText(example("bicelle_backbone.tab")));
    const Ran first =
        runProgram({"-conv", "-trelm", "-noverb", "-inD", example("bicelle_backbone.tab"), "-outD", "a.tab"});
    ASSERT_EQ(first.status, 0) << first.err;
    const std::vector<std::vector<std::string>> rows = tableRows(first.file("a.tab"));
    ASSERT_EQ(rows.size(), source.size());
    for (std::size_t i = 0; i < rows.size(); ++i)
        for (const std::size_t column : {0, 2, 3, 5, 6, 7})
            EXPECT_TRUE(column < 6 && column % 3 == 2
                            ? rows[i][column] == source[i][column]
                            : std::stod(rows[i][column]) == std::stod(source[i][column]))
                << rows[i][column] << " for " << source[i][column];
    const Ran second = runProgram({"-conv", "-trelm", "-noverb", "-inD", "a.tab", "-outD", "b.tab"},
                                  {.files = {{"a.tab", first.file("a.tab")}}});
    EXPECT_EQ(second.file("b.tab"), first.file("a.tab"));
}

TEST(ConversionRun, NoiseGoesWithTheError)
{
    const auto converted = [](const std::string &format, const std::string &text) {
        return runProgram({"-conv", format, "-dcNoise", "-inD", "in.tab", "-outD", "o.txt"},
                          {.files = {{"in.tab", text}}})
            .file("o.txt");
    };
    std::string exact = table;
    for (std::size_t at = 0; (at = exact.find(" 1.00 1.00\n", at)) != std::string::npos;)
        exact.replace(at, 5, " 0.00");
    const std::string with = converted("-rosetta", table);
    EXPECT_TRUE(
        with.starts_with("Dipolar couplings from in.tab.\nGaussian noise has been added.\ncomment\n7\n"));
    EXPECT_EQ(countOf(converted("-rosetta", exact), "a    2    H    2    N       -8.17\n"), 1);
    EXPECT_EQ(with, converted("-rosetta", table)); // two runs draw the same
    EXPECT_TRUE(converted("-cns", table)
                    .starts_with("! Dipolar couplings from in.tab.\n"
                                 "! Gaussian noise has been added.\n\n\nassign"));
    // The noise is of the size of the errors: 1.00 0.10 0.50 2.00 0.25 0.50 0.50 Hz.
    const std::string plain =
        runProgram({"-conv", "-rosetta", "-inD", "in.tab"}, {.files = {{"in.tab", table}}}).out;
    const double errors[] = {1.0, 0.1, 0.5, 2.0, 0.25, 0.5, 0.5};
    const char *const starts[] = {"a    2    H ", "a    2    N ", "a    3    N ", "a    3   CA ",
                                  "a    3    H ", "a    3   HN ", "a    4    H "};
    double square = 0.0;
    for (std::size_t i = 0; i < std::size(starts); ++i) {
        const auto value = [&](const std::string &text) {
            const std::size_t end = text.find('\n', text.find(starts[i]));
            return std::stod(text.substr(end - 10, 10));
        };
        const double noise = (value(with) - value(plain)) / errors[i];
        square += noise * noise;
    }
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
    const Ran ran =
        runProgram({"-conv", "-dcHH", "-inD", "in.tab", "-outD", "o.txt"}, {.files = {{"in.tab", rows}}});
    const std::string none = " -9999.000";
    EXPECT_EQ(ran.file("o.txt"), "    3  VAL   CA" + none + none + none + none + none + " 4.125" + none +
                                     "\n" + "    4  SER    C" + none + " 5.250" + none + " 5.750" + none +
                                     none + none + "\n" + "    9  ALA   HA" + none + none + none + none +
                                     none + none + " 9.500 8.875\n");
}

TEST(ConversionRun, ChainsAndSegmentsHaveColumns)
{
    const Ran ran = runProgram(
        {"-conv", "-inD", "in.tab", "-r1", "1"},
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

std::vector<double> columnOf(const std::string &text, std::size_t column)
{
    std::vector<double> values;
    for (const std::vector<std::string> &row : tableRows(text))
        values.push_back(std::stod(row[column]));
    return values;
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
        std::vector<std::string> args;
        int count;
        const char *two, *three;
    } cases[] = {
        {{}, 2, " 2.0000", " 4.0000"}, // those of the second table
        {{"-add", "-c1", "2"}, 2, " 5.0000", "-1.0000"},
        {{"-sub", "-c1", "1"}, 2, "-0.5000", "-6.5000"},
        {{"-mul", "-c1", "1"}, 2, " 3.0000", "-10.0000"},
        {{"-div", "-c1", "1", "-c2", "0.5"}, 2, " 1.5000", "-1.2500"},
        {{"-max", "-c1", "1"}, 2, " 2.0000", " 4.0000"},
        {{"-sub", "-c1", "1", "-c2", "0", "-dN", "2"}, 1, " 1.5000", nullptr},
    };
    for (const auto &c : cases) {
        std::vector<std::string> args = {"-anDc", "-noverb", "-inD1", "a.tab", "-inD2", "b.tab",
                                         "-outD", "o.tab",   "-aD1",  "H",     "-aD2",  "N"};
        args.insert(args.end(), c.args.begin(), c.args.end());
        const Ran ran = runProgram(args, {.files = files});
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
    const std::string a = example("bicelle_hn.tab"), b = example("bicelle2_hn.tab");
    const Ran plain = runProgram({"-anDc", "-noverb", "-inD1", a, "-inD2", b, "-outD", "shared.tab"});
    ASSERT_EQ(plain.status, 0) << plain.err;
    const std::vector<double> shared = columnOf(plain.file("shared.tab"), 6); // those of the second table
    ASSERT_GT(shared.size(), 50u);
    EXPECT_EQ(countOf(plain.out,
                      "REMARK " + std::to_string(shared.size()) + " couplings combined (inclusive max).\n"),
              1)
        << plain.out;
    const Ran sum =
        runProgram({"-anDc", "-noverb", "-add", "-c1", "1", "-inD1", a, "-inD2", b, "-outD", "sum.tab"});
    const Ran back = runProgram(
        {"-anDc", "-noverb", "-sub", "-c1", "1", "-inD1", "sum.tab", "-inD2", a, "-outD", "back.tab"},
        {.files = {{"sum.tab", sum.file("sum.tab")}}});
    const std::vector<double> undone = columnOf(back.file("back.tab"), 6);
    ASSERT_EQ(undone.size(), shared.size());
    for (std::size_t i = 0; i < shared.size(); ++i)
        EXPECT_NEAR(undone[i], shared[i], 1e-3);
}

// The fits of ubiquitin's backbone couplings in its two media. An independent model of the method, in double
// precision, gives the same digits.
const std::vector<std::string> mediaTensors = {"-anA",        "-inS1",       "-5.6237e-04", "7.1774e-05",
                                               "2.7480e-05",  "-1.3829e-04", "5.6242e-04",  "-inS2",
                                               "-1.0494e-03", "5.1898e-04",  "-5.0508e-04", "-2.3027e-04",
                                               "8.4644e-04",  "-outA",       "a.txt"};
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
    const Ran ran = runProgram(mediaTensors);
    ASSERT_EQ(ran.status, 0) << ran.err;
    EXPECT_EQ(ran.out, "");
    const std::string report = ran.file("a.txt");
    EXPECT_TRUE(report.starts_with(std::string("REMARK Molecular Alignment Simulation.\n\n") + mediaReport +
                                   "REMARK Simulation parameters.\n\nDATA TRELM_MODE SAUPE_CP\n"))
        << report;
    EXPECT_TRUE(
        report.ends_with("\nREMARK Dipolar couplings.\n\nDATA N                    0\nDATA SEQUENCE \n"));

    std::vector<std::string> exchanged = mediaTensors;
    exchanged.emplace_back("-yzInv"); // the two main axes of both change places
    EXPECT_EQ(countOf(runProgram(exchanged).file("a.txt"), "DATA ANGLE_3D_AXES (X/Y/Z)  37.58 7.00 142.65\n"),
              1);
}

/// What a run says on the standard error stream beside the banner, the tables it has read and the balance.
std::string complaints(const std::string &err)
{
    std::istringstream lines(err);
    std::string text;
    for (std::string line; std::getline(lines, line);)
        if (!line.empty() && line.find_first_of("*|") != 0 &&
            line.find(" Couplings, Residues ") == std::string::npos &&
            !line.starts_with("REMARK Memory Allocation Status."))
            text += line + '\n';
    return text;
}

TEST(CompareFailures, OneLineAndStatus)
{
    const std::string in = example("bicelle_hn.tab");
    const std::string matrix = "Matrix: error in comparison of order matrices.\n";
    const std::string conversion = "trelm: error in conversion of table.\n";
    const struct {
        std::vector<std::string> args;
        int status;
        std::vector<std::string> lines;
    } cases[] = {
        {{"-anA", "-rotID", "4"}, 1, {"trelm: -rotID 4: the four frames have the numbers 0 to 3.\n"}},
        {{"-anA", "-inS1", "1", "0", "0", "0", "0", "-inS2", "1", "0", "0", "0", "0", "-outA", "/dev/full"},
         1,
         {"Error writing /dev/full.\n", matrix}},
        {{"-anA", "-inS1", "1e300", "0", "0", "0", "0"}, 1, {"Matrix: error in analyzeSaupe.\n", matrix}},
        {{"-anA", "-inS1", "1", "2", "3", "4", "5", "-inS2", "1", "2", "3", "0", "5", "-div", "-outA", "o"},
         0,
         {"trelm: the combined order matrix is not finite.\n"}},
        {{"-anA", "-inS1", "1", "2", "3", "4", "5", "-outA", "o"},
         0,
         {"trelm: an order matrix is 0: it has no frame to compare.\n"}},
        {{"-anA", "-inS1", "1e20", "0", "0", "0", "0"}, 1, {"Matrix: error in analyzeSaupe.\n", matrix}},
        {{"-anDc", "-inD1", in, "-inD2", in, "-outD", "no/o"}, 0, {"DC Error opening output file no/o\n"}},
        {{"-conv", "-trelm", "-inD", in, "-outD", "no/o"}, 0, {"DC Error opening output file no/o\n"}},
        {{"-anDc", "-inD1", in, "-inD2", "none.tab"},
         1,
         {"RdTable File open error: none.tab.\n", "Error reading DC input none.tab\n", matrix}},
        {{"-anDc", "-inD1", "none.tab", "-inD2", in},
         1,
         {"RdTable File open error: none.tab.\n", "Error reading DC input none.tab\n", matrix}},
        {{"-anDc", "-inD1", in, "-outD", "o"},
         0,
         {"trelm: the two tables share no coupling of the selection.\n"}},
        {{"-anDc", "-inD1", in, "-inD2", in, "-outD", "/dev/full"},
         1,
         {"Error writing /dev/full.\n", matrix}},
        {{"-conv", "-inD", "none.tab"},
         1,
         {"RdTable File open error: none.tab.\n", "Error reading DC input none.tab\n", conversion}},
        {{"-conv", "-inD", in, "-outD", "no/o"}, 1, {"TRELM Error opening output file no/o\n", conversion}},
        {{"-conv", "-inD", in, "-outD", "/dev/full"}, 1, {"Error writing /dev/full.\n", conversion}},
        {{"-conv", "-inD", in, "-aD1", "XX", "-outD", "o"}, 0, {"trelm: no coupling is left to convert.\n"}},
        {{"-conv", "-inD", "own.tab", "-outD", "./own.tab"},
         1,
         {"trelm: ./own.tab is the table to convert: give the output another name.\n", conversion}},
        {{"-conv", "-scale", "-inD", "large.tab", "-outD", "o"},
         1,
         {"Error: The coupling of row 1 is out of range with its weight or noise.\n", conversion}},
    };
    std::string large = table;
    large.replace(large.find("-8.170  1.00 1.00"), 17, "-8.170  1.00 3e38");
    for (const auto &c : cases) {
        const Ran ran = runProgram(c.args, {.files = {{"own.tab", table}, {"large.tab", large}}});
        EXPECT_EQ(ran.status, c.status) << ran.err;
        std::string expected;
        for (const std::string &line : c.lines)
            expected += line;
        EXPECT_EQ(complaints(ran.err), expected);
        EXPECT_EQ(ran.file("own.tab"), table);
    }
}

} // namespace
