// Whole runs of the branches of the best-fit that map its error.
#include "cli/run_program.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

namespace {

Ran mapping(const std::string &options)
{
    return goodRun(options +
                   " -bestFit -pdb ubi/1d3z_model1.pdb -inD ubi/bicelle_hn.tab -outD out.tab -H"
                   " -outDa da.txt -outMap map.txt -outAng ang.txt -outA saupe.txt -outFail fail.tab");
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

/// The lines that begin with `start`, every digit a 0 and the signs of the numbers left out: their form.
std::string formOf(const std::string &text, const std::string &start)
{
    std::istringstream lines(text);
    std::string form;
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with(start))
            continue;
        for (std::size_t i = 0; i < line.size(); ++i)
            form += std::isdigit(line[i]) != 0 && line[i - 1] != '_' ? '0'
                    : line[i] == '-' && line[i - 1] == ' '           ? ' '
                                                                     : line[i];
        form += '\n';
    }
    return form;
}

TEST(CouplingNoise, ReportsWhatTheTensorsHaveInCommon)
{
    const Ran ran = mapping("-mcDc -map 200 -pdbRot turned.pdb");
    EXPECT_NE(ran.out.find("REMARK Adjusting DC error bars ...\nREMARK DC Error Scaling factor 1.0\r"),
              std::string::npos);
    EXPECT_EQ(countOf(ran.out, "REMARK DC error bars automatically adjusted by factor of "), 1);
    EXPECT_EQ(countOf(ran.err, "REMARK Sampled 200 of 200\r\n"), 1);
    EXPECT_EQ(formOf(ran.file("out.tab"), "DATA STATISTICS MAPPING"),
              "DATA STATISTICS MAPPING NUMBER OF SUCCESFUL STEPS   000\n"
              "DATA STATISTICS MAPPING G_MAG (AVERAGE/STD_DEV/MIN/MAX)    0.0000e-00  0.0000e-00  0.0000e-00 "
              " 0.0000e-00\n"
              "DATA STATISTICS MAPPING Da_HN (AVERAGE/STD_DEV/MIN/MAX)    0.0000e+00  0.0000e-00  0.0000e+00 "
              " 0.0000e+00\n"
              "DATA STATISTICS MAPPING ANGLE_5D (AVERAGE/STD_DEV/MIN/MAX) 0.0000e-00  0.0000e-00  0.0000e+00 "
              " 0.0000e+00\n"
              "DATA STATISTICS MAPPING SZZ (AVERAGE/STD_DEV/MIN/MAX)      0.0000e-00  0.0000e-00  0.0000e-00 "
              " 0.0000e-00\n"
              "DATA STATISTICS MAPPING SAUPE AVERAGE     0.0000e-00   0.0000e-00   0.0000e-00   0.0000e-00  "
              "0.0000e-00\n"
              "DATA STATISTICS MAPPING SAUPE STD_DEV     0.0000e-00   0.0000e-00   0.0000e-00   0.0000e-00  "
              "0.0000e-00\n"
              "DATA STATISTICS MAPPING SAUPE MIN         0.0000e-00   0.0000e-00   0.0000e-00   0.0000e-00  "
              "0.0000e-00\n"
              "DATA STATISTICS MAPPING SAUPE MAX         0.0000e-00   0.0000e-00   0.0000e-00   0.0000e-00  "
              "0.0000e-00\n"
              "DATA STATISTICS MAPPING Da (AVERAGE/STD_DEV/MIN/MAX)    0.0000e-00  0.0000e-00  0.0000e-00  "
              "0.0000e-00\n"
              "DATA STATISTICS MAPPING Dr (AVERAGE/STD_DEV/MIN/MAX)    0.0000e-00  0.0000e-00  0.0000e-00  "
              "0.0000e-00\n"
              "DATA STATISTICS MAPPING Phi (MIN/MAX)      00.00  0.00\n"
              "DATA STATISTICS MAPPING Psi (MIN/MAX)      00.00  00.00\n"
              "DATA STATISTICS MAPPING Theta (MIN/MAX)    0.00  0.00\n");
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

    const Ran again = mapping("-mcDc -map 200 -pdbRot turned.pdb");
    for (const char *name :
         {"out.tab", "fail.tab", "da.txt", "map.txt", "ang.txt", "saupe.txt", "turned.pdb"})
        EXPECT_EQ(ran.file(name), again.file(name)) << name;
}

TEST(CouplingNoise, DeviationsFollowTheErrors)
{
    const auto deviation = [](const std::string &scale) {
        const Ran ran = mapping("-mcDc -map 400 -noerr -noautoMc -kAdjustMc " + scale);
        EXPECT_EQ(countOf(ran.out, "REMARK DC error bars scaled by user supplied factor of " + scale), 1);
        EXPECT_EQ(steps(ran), 400);
        return four(ran, "G_MAG").at(1);
    };
    EXPECT_NEAR(deviation("2.0") / deviation("1.0"), 2.0, 0.05); // the same draws
}

TEST(CouplingNoise, NoSamples)
{
    const Ran ran = mapping("-mcDc -map 0 -pdbRot turned.pdb");
    EXPECT_EQ(steps(ran), 0);
    EXPECT_EQ(
        countOf(ran.file("out.tab"), "ANGLE_5D (AVERAGE/STD_DEV/MIN/MAX) -nan -nan  0.0000e+00  0.0000e+00"),
        1);
    EXPECT_TRUE(ran.exists("fail.tab"));
    EXPECT_FALSE(ran.exists("turned.pdb"));

    const std::vector<double> angle = four(mapping("-mcDc -map 1 -noerr"), "ANGLE_5D");
    EXPECT_EQ(angle.at(2), angle.at(3));

    const Ran many = mapping("-mcDc -map 11500 -noerr");
    EXPECT_EQ(steps(many), 11000);
    EXPECT_EQ(linesOf(many.file("da.txt")), 11502);
    EXPECT_EQ(linesOf(many.file("ang.txt")), 11002);
}

/// What a run without output files writes before its report: all of the samples, in the order of the method.
TEST(MappingRun, SamplesOnStandardOutput)
{
    const std::string fit = " -bestFit -pdb ubi/1d3z_model1.pdb -inD ubi/bicelle_hn.tab -H -map 1";
    const std::string head = "REMARK Molecular Alignment Simulation.\n";
    const std::string start =
        "REMARK 63 couplings selected (inclusive max).\nREMARK PDB Selection: All Atoms.\n";
    const std::string da = "# SVD_ID    Aa         R\n\n";
    const std::string tables = "# SVD_ID  ANGLE_X  ANGLE_Y  ANGLE_Z       ANGLE_5D        COLL_5D\n\n"
                               "VARS     ID   S_ZZ     S_XXYY     S_XY     S_XZ     S_YZ\n"
                               "FORMAT  %5d  %e       %e       %e     %e     %e\n\n";
    const std::string same = "    0      0.000    0.000    0.000          0.000       1.000000e+00\n";
    struct {
        const char *options;
        std::string text;
    } const cases[] = {
        {"-mcDc -kLAdjustMc 7.2", start + da +
                                      "REMARK Adjusting DC error bars ...\n"
                                      "REMARK DC Error Scaling factor 7.2\rREMARK DC Error Scaling factor "
                                      "7.4\rREMARK DC error bars automatically adjusted by factor of 7.4.\n" +
                                      tables},
        {"-mcDc -d1 2 -dN 5", "REMARK 4 couplings selected (inclusive max).\n"
                              "REMARK PDB Selection: All Atoms.\n" +
                                  da},
        {"-mcStruc -noautoCone",
         start +
             "REMARK Experimental DC and structure have 0.375 Hz DC Rms.\n"
             "REMARK Amount of structural noise by user specified.\n"
             "REMARK Width of Gaussian cone 5.00 degree.\n" +
             da +
             "     0  -9.103306e+00  0.150       1.274    3997.266\n"
             "  -0.601692       1.084145    1.562826       0.485035    0.214916       -0.036546\n"
             " 0.867532\t-1.084145   -1.216412\t-0.485035   -2.924579\t0.036546\n"
             "REMARK 1 SVD runs of 1 succesful.\n" +
             tables + "    0  -5.461962e-04  7.797692e-05  4.045357e-05  -1.508964e-04  5.412694e-04\n" +
             same},
        {"-jack -dFrac 0.9",
         start + da +
             "     0  -9.366331e+00  0.158       0.378     313.329\n"
             "  -0.614187       1.086330    1.586360       0.484276    0.228244       -0.012519\n"
             " 0.848966\t-1.086330   -1.193988\t-0.484276   -2.913102\t0.012519\n"
             "REMARK 56 DC of 63 picked.\n"
             "REMARK 1 SVD runs of 1 succesful.\n" +
             tables + "    0  -5.631845e-04  8.203240e-05  2.821689e-05  -1.418721e-04  5.612278e-04\n" +
             same},
    };
    for (const auto &row : cases) {
        const Ran ran = runProgram(row.options + fit);
        EXPECT_EQ(ran.out.substr(0, ran.out.find(head)), row.text) << row.options;
    }
    EXPECT_EQ(runProgram("-mcDc -d1 2 -dN 5 -outDa da.txt" + fit).file("da.txt"), da);
}

// Settings that have no sense, and run all the same: a word on the error stream, and what the steps give.
TEST(MappingRun, OddSettings)
{
    const std::string fits = "REMARK 3 SVD runs of 3 succesful.\n",
                      unknowns = " couplings: a tensor has five unknowns.\n";
    const std::string
        found = "REMARK Amount of structural noise automatically determined.\nREMARK Width of Gaussian cone ",
        tooWide = ": an angle to an axis is below 180 degrees.\n";
    struct {
        const char *options;
        std::string told, out;
    } const cases[] = {
        {"-jack -dFrac 1.5",
         "Warning: -dFrac 1.5: above 1 each fit takes all couplings; -nDfixed takes a number.\n",
         "REMARK 63 DC of 63 picked.\n" + fits},
        {"-jack -dFrac 0", "trelm: -dFrac 0 picks 0" + unknowns, "REMARK 0 DC of 63 picked.\n" + fits},
        {"-jack -dFrac -2 -nDfixed", "trelm: -dFrac -2 picks 0" + unknowns,
         "REMARK 0 DC of 63 picked.\n" + fits},
        {"-jack -dFrac 4 -nDfixed", "trelm: -dFrac 4 picks 4" + unknowns,
         "REMARK 4 DC of 63 picked.\n" + fits},
        {"-jack -dFrac 5 -nDfixed", "", "REMARK 5 DC of 63 picked.\n" + fits},
        {"-mcStruc -nCone 0", "Warning: -nCone 0: without fits the search of the cone finds no misfit.\n",
         found + "89.75 degree and 0.000 Hz DC Rms.\n" + fits},
        {"-mcStruc -nCone 3 -lCone -1", "Warning: -lCone -1: a cone below 0 degrees moves no atom.\n",
         found + "1.00 degree and 0.284 Hz DC Rms.\n" + fits},
        {"-mcStruc -lCone 180", "Warning: -lCone 180" + tooWide,
         found + "179.75 degree and 0.000 Hz DC Rms.\n" + fits},
        {"-mcStruc -lCone -0.7 -incCone 0.1 -nCone 3",
         "Warning: -lCone -0.7: a cone below 0 degrees moves no atom.\n",
         found + "1.10 degree and 0.330 Hz DC Rms.\n" + fits},
        {"-mcStruc -lCone 90 -incCone -1", "", found + "91.00 degree and 0.000 Hz DC Rms.\n" + fits},
        {"-mcStruc -stdCone 1e-7 -nCone 1 -lCone 3 -incCone 1 -digCone -36", "",
         found + "2.00 degree and 0.000 Hz DC Rms.\n" + fits},
        {"-mcStruc -noautoCone -stdCone 1e-7",
         "Warning: -stdCone 1e-07: a Gaussian cone below 1e-06 degrees moves no atom.\n",
         "REMARK Width of Gaussian cone 0.00 degree.\n" + fits},
        {"-mcStruc -noautoCone -outFail da.txt", "trelm: -outFail is given again: the first counts\n", fits},
        {"-mcDc -noerr -nAdjustMc -5", "", "factor of 1.0.\n"},
        {"-mcDc -noerr -incAdjustMc 0", "", "factor of 1.0.\n"},
        {"-mcDc -kLAdjustMc 50 -incAdjustMc 0", "", "factor of 50.0.\n"},
        {"-mcDc -noautoMc -kAdjustMc 1e10", "", "factor of 10000000000.0.\n"},
        {"-mcStruc -noautoCone -stdCone 200", "Warning: -stdCone 200" + tooWide,
         "REMARK Amount of structural noise by user specified.\nREMARK Width of Gaussian cone 200.00 "
         "degree.\n" +
             fits},
    };
    for (const auto &row : cases) {
        const Ran ran = mapping(std::string(row.options) + " -map 3");
        EXPECT_EQ(complaints(ran.err), row.told);
        EXPECT_NE(ran.out.find(row.out), std::string::npos) << row.options << ran.out;
        EXPECT_EQ(linesOf(ran.file("da.txt")), 5) << row.options;
        EXPECT_EQ(countOf(ran.file("da.txt"), "  -nan  "), row.told.ends_with(unknowns) ? 3 : 0)
            << row.options;
    }
}

TEST(Jackknife, SubsetsScatterAroundTheFit)
{
    const Ran ran = mapping("-jack -map 300 -dFrac 0.5 -pdbRot turned.pdb");
    EXPECT_EQ(countOf(ran.out, "REMARK 31 DC of 63 picked.\nREMARK 300 SVD runs of 300 succesful.\n"), 1);
    EXPECT_EQ(steps(ran), 300);
    EXPECT_NEAR(four(ran, "Da_HN").at(0), -9.4, 0.05);
    EXPECT_NE(ran.file("saupe.txt").find("\n    0  -"), std::string::npos); // two blanks
    EXPECT_FALSE(ran.exists("fail.tab"));
    EXPECT_EQ(tableRows(ran.file("out.tab")).size(), 63U);
    EXPECT_TRUE(ran.exists("turned.pdb.0"));

    EXPECT_LT(four(mapping("-jack -map 20 -dFrac 1.0"), "G_MAG").at(1), 1e-8);
    EXPECT_EQ(countOf(mapping("-jack -map 20 -nDfixed -dFrac 12").out, "REMARK 12 DC of 63 picked.\n"), 1);
    const Ran none = mapping("-jack -map 0 -pdbRot turned.pdb");
    EXPECT_EQ(countOf(none.err, "WARNING 0 SVD runs of 0 succesful.\n"), 1);
    EXPECT_FALSE(none.exists("turned.pdb"));
}

TEST(StructuralNoise, WidthExplainsTheMisfit)
{
    const Ran ran = mapping("-mcStruc -map 100 -pdbRot turned.pdb");
    EXPECT_NE(ran.out.find("REMARK Experimental DC and structure have 0.375 Hz DC Rms.\n"
                           "REMARK Adjusting amount of structural noise ...\n"
                           "REMARK Amount of structural noise automatically determined.\n"
                           "REMARK Width of Gaussian cone "),
              std::string::npos);
    EXPECT_EQ(countOf(ran.out, "REMARK 100 SVD runs of 100 succesful.\n"), 1);
    EXPECT_NEAR(four(ran, "Da_HN").at(0), -9.4, 0.1);
    EXPECT_FALSE(ran.exists("fail.tab"));
    // Twice the noise, about twice the spread; none, and the fit comes back.
    const auto spread = [](const std::string &width) {
        return four(mapping("-mcStruc -map 200 -noautoCone -fixCone -stdCone " + width), "G_MAG").at(1);
    };
    EXPECT_NEAR(spread("2.0") / spread("1.0"), 2.0, 0.3);
    const Ran still = mapping("-mcStruc -map 50 -noautoCone -stdCone 0");
    EXPECT_EQ(countOf(still.out, "REMARK 1 SVD runs of 1 succesful.\n"), 1);
    EXPECT_NEAR(four(still, "Da_HN").at(0), -9.3977, 1e-4);
    EXPECT_EQ(steps(mapping("-mcStruc -angNoise -nCone 10 -map 20")), 20);
}

TEST(StructuralNoise, WritesANoisyStructure)
{
    const char *const line = "-struc -pdb ubi/1d3z_model1.pdb -inD ubi/bicelle_hn.tab -H -pdbRot noisy.pdb";
    const std::string noisy = goodRun(line).file("noisy.pdb");
    EXPECT_EQ(noisy, goodRun(line).file("noisy.pdb"));
    std::istringstream before(fileText(example("1d3z_model1.pdb"))), after(noisy);
    std::map<std::string, std::string> places;
    for (std::string atom; std::getline(before, atom);)
        if (atom.starts_with("ATOM"))
            places[atom.substr(12, 14)] = atom.substr(30, 24);
    int moved = 0;
    for (std::string atom; std::getline(after, atom);)
        if (atom.starts_with("ATOM") && places.at(atom.substr(12, 14)) != atom.substr(30, 24)) {
            ++moved;
            EXPECT_TRUE(atom.substr(12, 4) == " H  " || atom.substr(12, 4) == " N  ") << atom;
        }
    EXPECT_EQ(moved, 63); // one atom of each coupling

    for (const char *options :
         {"", "-angNoise ", "-inD ubi/bicelle_hn.tab ", "-digCone 0 "}) { // nothing to move
        const Ran empty = goodRun(options + std::string("-struc -pdbRot noisy.pdb"));
        EXPECT_EQ(empty.file("noisy.pdb"), "END\n");
        EXPECT_EQ(countOf(empty.err, "trelm: "), 1);
        EXPECT_EQ(countOf(empty.err, "trelm: -struc has no atoms to move: see -pdb.\n"), 1);
    }
}

} // namespace
