// Whole runs of the branches of the best-fit that map its error.
#include "cli/run_program.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <sstream>

namespace {

std::vector<std::string> mapping(std::vector<std::string> more, const char *table = "bicelle_hn.tab")
{
    std::vector<std::string> args = {"-bestFit",  "-pdb",         example("1d3z_model1.pdb"),
                                     "-inD",      example(table), "-outD",
                                     "out.tab",   "-H",           "-outDa",
                                     "da.txt",    "-outMap",      "map.txt",
                                     "-outAng",   "ang.txt",      "-outA",
                                     "saupe.txt", "-outFail",     "fail.tab"};
    args.insert(args.end(), more.begin(), more.end());
    return args;
}

int linesOf(const std::string &text)
{
    return static_cast<int>(std::ranges::count(text, '\n'));
}

/// Average, deviation, minimum, maximum.
std::vector<double> four(const Ran &ran, const std::string &label)
{
    return numbersAfter(ran.file("out.tab"),
                        "DATA STATISTICS MAPPING " + label + " (AVERAGE/STD_DEV/MIN/MAX)");
}

int steps(const Ran &ran)
{
    return static_cast<int>(
        numbersAfter(ran.file("out.tab"), "DATA STATISTICS MAPPING NUMBER OF SUCCESFUL STEPS").at(0));
}

TEST(CouplingNoise, ReportsWhatTheTensorsHaveInCommon)
{
    const Ran ran = runProgram(mapping({"-mcDc", "-map", "200", "-pdbRot", "turned.pdb"}));
    ASSERT_EQ(ran.status, 0) << ran.err;
    EXPECT_NE(ran.out.find("REMARK Adjusting DC error bars ...\nREMARK DC Error Scaling factor 1.0\r"),
              std::string::npos);
    EXPECT_EQ(countOf(ran.out, "REMARK DC error bars automatically adjusted by factor of "), 1);
    EXPECT_EQ(countOf(ran.err, "REMARK Sampled 200 of 200\r\n"), 1);
    const int count = steps(ran);
    EXPECT_GT(count, 100); // seven of ten by the search
    EXPECT_LT(count, 200);
    EXPECT_EQ(linesOf(ran.file("da.txt")), 2 + count);
    EXPECT_EQ(linesOf(ran.file("map.txt")), 2 * count);
    EXPECT_EQ(linesOf(ran.file("ang.txt")), 2 + count);
    EXPECT_EQ(linesOf(ran.file("saupe.txt")), 3 + count);

    const std::vector<double> daNH = four(ran, "Da_HN"), angle = four(ran, "ANGLE_5D");
    EXPECT_NEAR(daNH.at(0), -9.4, 0.1); // the fit
    EXPECT_LE(daNH.at(2), daNH.at(0) - daNH.at(1));
    EXPECT_GE(daNH.at(3), daNH.at(0) + daNH.at(1));
    EXPECT_EQ(angle.at(2), 0.0);
    EXPECT_GT(angle.at(3), angle.at(0));
    // Every try that was dropped failed at one coupling at least, and the weights tell where.
    double fails = 0.0;
    for (const std::vector<std::string> &row : tableRows(ran.file("fail.tab")))
        fails += std::stod(row.back());
    EXPECT_GE(fails, 200 - count);
    EXPECT_TRUE(ran.exists("turned.pdb.3"));

    const Ran again = runProgram(mapping({"-mcDc", "-map", "200", "-pdbRot", "turned.pdb"}));
    for (const char *name :
         {"out.tab", "fail.tab", "da.txt", "map.txt", "ang.txt", "saupe.txt", "turned.pdb"})
        EXPECT_EQ(ran.file(name), again.file(name)) << name;
}

TEST(CouplingNoise, DeviationsFollowTheErrors)
{
    const auto deviation = [](const char *scale) {
        const Ran ran =
            runProgram(mapping({"-mcDc", "-map", "400", "-noerr", "-noautoMc", "-kAdjustMc", scale}));
        EXPECT_EQ(
            countOf(ran.out, std::string("REMARK DC error bars scaled by user supplied factor of ") + scale),
            1);
        EXPECT_EQ(steps(ran), 400);
        return four(ran, "G_MAG").at(1);
    };
    const double once = deviation("1.0"), twice = deviation("2.0");
    EXPECT_NEAR(twice / once, 2.0, 0.05); // the same draws
}

TEST(CouplingNoise, NoSamples)
{
    const Ran ran = runProgram(mapping({"-mcDc", "-map", "0", "-pdbRot", "turned.pdb"}));
    ASSERT_EQ(ran.status, 0);
    EXPECT_EQ(steps(ran), 0);
    EXPECT_EQ(
        countOf(ran.file("out.tab"), "ANGLE_5D (AVERAGE/STD_DEV/MIN/MAX) -nan -nan  0.0000e+00  0.0000e+00"),
        1);
    EXPECT_TRUE(ran.exists("fail.tab"));
    EXPECT_FALSE(ran.exists("turned.pdb"));

    const Ran one = runProgram(mapping({"-mcDc", "-map", "1", "-noerr"}));
    const std::vector<double> angle = four(one, "ANGLE_5D");
    EXPECT_EQ(angle.at(2), angle.at(3));

    const Ran many = runProgram(mapping({"-mcDc", "-map", "11500", "-noerr"}));
    EXPECT_EQ(steps(many), 11000);
    EXPECT_EQ(linesOf(many.file("da.txt")), 11502);
    EXPECT_EQ(linesOf(many.file("ang.txt")), 11002);
}

TEST(Jackknife, SubsetsScatterAroundTheFit)
{
    const Ran ran = runProgram(mapping({"-jack", "-map", "300", "-dFrac", "0.5", "-pdbRot", "turned.pdb"}));
    ASSERT_EQ(ran.status, 0) << ran.err;
    EXPECT_EQ(countOf(ran.out, "REMARK 31 DC of 63 picked.\nREMARK 300 SVD runs of 300 succesful.\n"), 1);
    EXPECT_EQ(steps(ran), 300);
    EXPECT_NEAR(four(ran, "Da_HN").at(0), -9.4, 0.05);
    EXPECT_NE(ran.file("saupe.txt").find("\n    0  -"), std::string::npos); // two blanks
    EXPECT_FALSE(ran.exists("fail.tab"));
    EXPECT_EQ(tableRows(ran.file("out.tab")).size(), 63U);
    EXPECT_TRUE(ran.exists("turned.pdb.0"));

    const Ran all = runProgram(mapping({"-jack", "-map", "20", "-dFrac", "1.0"}));
    EXPECT_LT(four(all, "G_MAG").at(1), 1e-8);
    const Ran fixed = runProgram(mapping({"-jack", "-map", "20", "-nDfixed", "-dFrac", "12"}));
    EXPECT_EQ(countOf(fixed.out, "REMARK 12 DC of 63 picked.\n"), 1);
    const Ran none = runProgram(mapping({"-jack", "-map", "0", "-pdbRot", "turned.pdb"}));
    EXPECT_EQ(none.status, 0);
    EXPECT_EQ(countOf(none.err, "WARNING 0 SVD runs of 0 succesful.\n"), 1);
    EXPECT_FALSE(none.exists("turned.pdb"));
}

TEST(StructuralNoise, WidthExplainsTheMisfit)
{
    const Ran ran = runProgram(mapping({"-mcStruc", "-map", "100", "-pdbRot", "turned.pdb"}));
    ASSERT_EQ(ran.status, 0) << ran.err;
    EXPECT_NE(ran.out.find("REMARK Experimental DC and structure have 0.375 Hz DC Rms.\n"
                           "REMARK Adjusting amount of structural noise ...\n"
                           "REMARK Amount of structural noise automatically determined.\n"
                           "REMARK Width of Gaussian cone "),
              std::string::npos);
    EXPECT_EQ(countOf(ran.out, "REMARK 100 SVD runs of 100 succesful.\n"), 1);
    EXPECT_NEAR(four(ran, "Da_HN").at(0), -9.4, 0.1);
    EXPECT_FALSE(ran.exists("fail.tab"));
    // Twice the noise, about twice the spread; none, and the fit comes back.
    const auto spread = [](const char *width) {
        const Ran noisy =
            runProgram(mapping({"-mcStruc", "-map", "200", "-noautoCone", "-fixCone", "-stdCone", width}));
        return four(noisy, "G_MAG").at(1);
    };
    EXPECT_NEAR(spread("2.0") / spread("1.0"), 2.0, 0.3);
    const Ran still = runProgram(mapping({"-mcStruc", "-map", "50", "-noautoCone", "-stdCone", "0"}));
    EXPECT_EQ(countOf(still.out, "REMARK 1 SVD runs of 1 succesful.\n"), 1);
    EXPECT_NEAR(four(still, "Da_HN").at(0), -9.3977, 1e-4);
    const Ran angles = runProgram(mapping({"-mcStruc", "-angNoise", "-nCone", "10", "-map", "20"}));
    EXPECT_EQ(angles.status, 0) << angles.err;
    EXPECT_EQ(steps(angles), 20);
}

TEST(StructuralNoise, WritesANoisyStructure)
{
    const std::vector<std::string> args = {
        "-struc",  "-pdb",     example("1d3z_model1.pdb"), "-inD", example("bicelle_hn.tab"), "-H",
        "-pdbRot", "noisy.pdb"};
    const Ran one = runProgram(args), other = runProgram(args);
    ASSERT_EQ(one.status, 0) << one.err;
    EXPECT_EQ(one.file("noisy.pdb"), other.file("noisy.pdb"));
    std::istringstream before(fileText(example("1d3z_model1.pdb"))), after(one.file("noisy.pdb"));
    std::map<std::string, std::string> places;
    for (std::string line; std::getline(before, line);)
        if (line.starts_with("ATOM"))
            places[line.substr(12, 14)] = line.substr(30, 24);
    int moved = 0;
    for (std::string line; std::getline(after, line);)
        if (line.starts_with("ATOM") && places.at(line.substr(12, 14)) != line.substr(30, 24)) {
            ++moved;
            EXPECT_TRUE(line.substr(12, 4) == " H  " || line.substr(12, 4) == " N  ") << line;
        }
    EXPECT_EQ(moved, 63); // one atom of each coupling
}

struct RefusedCase {
    std::vector<std::string> args;
    const char *line;
};

TEST(MappingFailures, OneLineAndStatusOne)
{
    const RefusedCase cases[] = {
        {mapping({"-mcDc", "-map", "5", "-d1", "2", "-dN", "5"}),
         "TRELM Error: Only 4 couplings available. Exiting ....\n"},
        {mapping({"-mcDc", "-map", "5", "-fracAdjustMc", "1.0"}),
         "trelm: -fracAdjustMc 1 of -nAdjustMc 100: "},
        {mapping({"-mcDc", "-map", "5", "-noerr", "-fracAdjustMc", "1.5"}), "trelm: -fracAdjustMc 1.5 "},
        {mapping({"-mcDc", "-map", "5", "-fracAdjustMc", "1e30"}), "trelm: -fracAdjustMc 1e+30 "},
        {mapping({"-mcDc", "-map", "5", "-noautoMc", "-kAdjustMc", "1e38"}), "trelm: -kAdjustMc 1e+38: "},
        {mapping({"-mcStruc", "-incCone", "1e-30"}), "trelm: -incCone 1e-30: "},
        {mapping({"-mcStruc", "-lCone", "1e30"}), "trelm: -lCone 1e+30: "},
        {mapping({"-mcDc", "-map", "5", "-incAdjustMc", "0"}), "trelm: -incAdjustMc 0: "},
        {mapping({"-mcDc", "-map", "5", "-incAdjustMc", "-0.1"}), "trelm: -incAdjustMc -0.1: "},
        {mapping({"-mcDc", "-outMap", "/none/x"}),
         "TRELM Error opening log file for error space mapping /none/x\n"},
        {mapping({"-jack", "-map", "5", "-dFrac", "0"}), "trelm: -dFrac 0: "},
        {mapping({"-jack", "-map", "5", "-dFrac", "1.5"}), "trelm: -dFrac 1.5: "},
        {mapping({"-jack", "-outAng", "/none/x"}),
         "TRELM Error opening log file for Angular distribution /none/x.\n"},
        {mapping({"-mcStruc", "-incCone", "0"}), "trelm: -incCone 0: "},
        {mapping({"-mcStruc", "-lCone", "-1"}), "trelm: -lCone -1: "},
        {mapping({"-mcStruc", "-d1", "2", "-dN", "5"}),
         "TRELM Error: Only 4 couplings available. Exiting ....\n"},
        {mapping({"-mcDc", "-outDa", "/dev/full", "-map", "20"}), "Error writing /dev/full.\n"},
    };
    for (const RefusedCase &refused : cases) {
        SCOPED_TRACE(refused.line);
        std::vector<std::string> args = refused.args;
        // Of an option given twice the first counts: the case's own one.
        for (auto option = args.begin() + 18; option != args.end(); ++option)
            if (const auto first = std::find(args.begin(), option, *option);
                first != option && (*option)[0] == '-')
                *(first + 1) = *(option + 1);
        const Ran ran = runProgram(args);
        EXPECT_EQ(ran.status, 1);
        EXPECT_EQ(countOf(ran.err, refused.line), 1) << ran.err.substr(0, 1500);
        EXPECT_EQ(countOf(ran.err, "Matrix: error in best-fit of data.\n"), 1);
    }
}

} // namespace
