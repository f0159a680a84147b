// The version, and the hint on a mistyped option, in whole runs.
#include "cli/run_program.h"

#include <gtest/gtest.h>

namespace {

TEST(Version, IsOneLineAndNothingElse)
{
    const std::vector<std::string> lines[] = {
        {"-version"}, {"-bestFit", "-pdb", "none.pdb", "-version"}, {"-version", "-verb", "5"}};
    for (const auto &line : lines) {
        const Ran ran = runProgram(line, {.environment = {{"NMRCHECK", "DEBUG"}}});
        EXPECT_EQ(ran.status, 0);
        EXPECT_EQ(ran.out, "trelm " TRELM_VERSION "\n");
        EXPECT_EQ(ran.err, "");
    }
}

TEST(Version, GivesWayToTheHelpText)
{
    const Ran help = runProgram({"-help"});
    const Ran both = runProgram({"-version", "-help"});
    EXPECT_EQ(help.status, 1);
    EXPECT_EQ(both.status, 1);
    EXPECT_EQ(both.err, help.err);
    EXPECT_EQ(both.out, "");
    for (const char *flag : {" -version", " -clearMl", " -noclearMl"})
        EXPECT_EQ(countOf(help.err, flag), 0) << flag;
}

TEST(Version, ThatCannotBeWrittenIsNoSuccess)
{
    const Ran ran = runProgram({"-version"}, {.stdoutFile = "/dev/full"});
    EXPECT_EQ(ran.status, 1);
    EXPECT_EQ(ran.err, "Error writing (stdout).\n");
}

TEST(Hint, StandsUnderTheWarningWithCheckingOnOnly)
{
    const std::vector<std::string> line = {"-bestFit", "-pdb", example("1d3z_model1.pdb"), "-ind", "x.tab"};
    const Ran checked = runProgram(line, {.environment = {{"NMRCHECK", "ALL"}}});
    EXPECT_EQ(countOf(checked.err, "  ' -ind x.tab '\n  -ind: did you mean -inD?\n"), 1) << checked.err;
    EXPECT_EQ(countOf(runProgram(line).err, "did you mean"), 0);
}

} // namespace
