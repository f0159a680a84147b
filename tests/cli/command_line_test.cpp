// Help, version and the words of the command line that nobody used, in whole runs.
#include "cli/run_program.h"

#include <gtest/gtest.h>

#include <cstdio>

namespace {

TEST(CommandLine, VersionIsOneLineAndNothingElse)
{
    for (const char *line : {"-version", "-bestFit -pdb none.pdb -version", "-version -verb 5"}) {
        const Ran ran = goodRun(line, {.environment = {{"NMRCHECK", "DEBUG"}}});
        EXPECT_EQ(ran.out, "trelm " TRELM_VERSION "\n");
        EXPECT_EQ(ran.err, "");
    }
    const Ran full = runProgram("-version", {.stdoutFile = "/dev/full"});
    EXPECT_EQ(full.status, 1);
    EXPECT_EQ(full.err, "Error writing (stdout).\n");
}

TEST(CommandLine, HelpEndsWithTheFailureLine)
{
    const std::string help = runProgram("-help").err;
    for (const char *line : {"", "-bestFit -help", "-version -help"}) {
        const Ran ran = runProgram(line);
        EXPECT_EQ(ran.status, 1);
        EXPECT_EQ(ran.err, help);
        EXPECT_EQ(ran.out, "");
    }
    expectOrder(help, {"trelm",
                       "ARGUMENTS FOR STERIC TRELM\n",
                       " -wv      conc     [0.05]    Liquid Crystal Concentration [mg/ml].\n",
                       "\nDipolar Interaction Value Calculation:\n",
                       "ARGUMENTS FOR ELECTROSTATIC TRELM\n",
                       " -cut     cutoff   [400.0]   ",
                       "ARGUMENTS FOR FREE FORMAT, STERIC TRELM\n",
                       "ARGUMENTS FOR BEST-FIT (SVD/POWELL)\n",
                       " -nAdjustMc steps  [1000]    ",
                       " -stdCone width    [10.0]    ",
                       " -fixCone          [off]     Fix Size of Cone.\n",
                       "ARGUMENTS FOR UNASSIGNED BEST-FIT (exhSVD)\n",
                       "ARGUMENTS FOR ADDITiON OF STRUCTURAL NOISE\n",
                       " -nofixCone        [on]      Fix Size of Cone.\n",
                       " -fixCone          [off]     Don't Fix Size of Cone.\n",
                       "ARGUMENTS FOR ANALYSIS OF ORDER MATRIX\n",
                       "ARGUMENTS FOR ANALYSIS OF DIPOLAR COUPLINGS\n",
                       "ARGUMENTS FOR ANALYSIS OF PDB FILE\n",
                       " -charmm22         [off]     Apply CHARMM Partial Charges.\n",
                       "ARGUMENTS FOR Da & R HISTOGRAM DETERMINATION\n",
                       "ARGUMENTS FOR Da & R LIKELIHOOD DETERMINATION\n",
                       "ARGUMENTS FOR CONVERSION OF DIPOLAR COUPLING TABLE\n",
                       "COMMOM ARGUMENTS\n",
                       "TRELM Error extracting command-line arguments.\n"});
    EXPECT_EQ(countOf(help, "ARGUMENTS FOR "), 12);
    EXPECT_EQ(countOf(help, "COMMOM ARGUMENTS"), 1);
    EXPECT_EQ(countOf(help, "TRELM Error extracting command-line arguments.\n"), 1);
    for (const char *flag : {" -version", " -clearMl", " -noclearMl"})
        EXPECT_EQ(countOf(help, flag), 0) << flag;
}

TEST(CommandLine, WordsNobodyUsedAreTold)
{
    const std::string line =
        "-bestFit -pdb ubi/1d3z_model1.pdb -outD fit.tab -pdbRot t.pdb -ind x.tab -dot 5";
    const std::pair<const char *, std::string> cases[] = {
        {"ALL",
         "Warning from " TRELM_PROGRAM ":\n  Arguments 8 to 9 may be unknown or unused:\n  ' -ind x.tab '\n"
         "-ind: did you mean -inD? (it is not used)\n"},
        {"flags", "Warning from " TRELM_PROGRAM ":\n  Argument 8 may be unknown or unused:\n  ' -ind '\n"
                  "-ind: did you mean -inD? (it is not used)\n"}};
    for (const auto &[mode, told] : cases) {
        const Ran ran = goodRun(line, {.environment = {{"NMRCHECK", mode}}});
        EXPECT_EQ(countOf(ran.err, told), 1) << ran.err;
        EXPECT_EQ(countOf(ran.err, "may be unknown"), 1) << ran.err;
    }
    const Ran debug = goodRun(line, {.environment = {{"NMRCHECK", "Debug"}}});
    const std::string program = TRELM_PROGRAM;
    int sum = 0;
    for (const char c : program + line)
        sum += c != ' ' ? c : 0;
    char start[600];
    std::snprintf(start, sizeof start,
                  "Debug Info from %s. Original Checksum: %d Final Checksum: %d.\n"
                  "  0. 1 %3zu Characters: '%s'\n",
                  program.c_str(), sum, sum, program.size(), program.c_str());
    EXPECT_EQ(ownErrors(debug.err), start +
                                        std::string("  1. 1   8 Characters: '-bestFit'\n"
                                                    "  2. 1   4 Characters: '-pdb'\n"
                                                    "  3. 1  19 Characters: 'ubi/1d3z_model1.pdb'\n"
                                                    "  4. 1   5 Characters: '-outD'\n"
                                                    "  5. 1   7 Characters: 'fit.tab'\n"
                                                    "  6. 1   7 Characters: '-pdbRot'\n"
                                                    "  7. 1   5 Characters: 't.pdb'\n"
                                                    "  8. 0   4 Characters: '-ind'\n"
                                                    "  9. 0   5 Characters: 'x.tab'\n"
                                                    " 10. 1   4 Characters: '-dot'\n"
                                                    " 11. 1   1 Characters: '5'\n") +
                                        cases[0].second +
                                        "trelm: -inD is missing: without a table there are no couplings.\n"
                                        "ubi/1d3z_model1.pdb, 1231 Atoms, Residues 1 to 76.\n"
                                        ", 0 Couplings, Residues 0 to 0.\n"
                                        "trelm: no coupling is left to fit.\n");
    EXPECT_EQ(debug.out, "REMARK 0 couplings selected (inclusive max).\nREMARK PDB Selection: All Atoms.\n");
    const Ran unchecked = goodRun(line);
    EXPECT_EQ(countOf(unchecked.err, "may be unknown"), 0);
    EXPECT_EQ(countOf(unchecked.err, "-ind: did you mean -inD? (it is not used)\n"), 1);
}

TEST(CommandLine, MemoryTraceBeginsAfterTheArguments)
{
    const Ran ran = goodRun("-bestFit -dbg 2 -pdb ubi/1d3z_model1.pdb -pdbRot t.pdb");
    EXPECT_GT(countOf(ran.err, "\n_MEM VOI_ALLOC Name: pdb"), 0) << ran.err.substr(0, 500);
    EXPECT_EQ(countOf(ran.err, "Name: matrix Alloc: "), 0); // no record, and no buffer of a simulation
    EXPECT_EQ(countOf(runProgram("-bestFit -dbg 1 -pdbRot t.pdb").err, "_MEM"), 0);
}

} // namespace
