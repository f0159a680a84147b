// Looking words up by name, and the report on those that nobody used.
#include "command/cmndargs.h"

#include "command/flag_hint.h"
#include "common/line.h"
#include "common/said.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>
#include <string>
#include <vector>

namespace trelm {
namespace {

TEST(Cmndargs, NegativeNumbersAreValuesAndAMinusAloneIsAFlag)
{
    for (const char *flag : {"-x", "-", "--5", "-e5", "-+5"})
        EXPECT_EQ(isFlag(flag), 1) << flag;
    for (const char *value : {"-5", "-.5", "5", "", "x-", "."})
        EXPECT_EQ(isFlag(value), 0) << value;
}

TEST(Cmndargs, TheFirstOccurrenceCounts)
{
    Line line({"trelm", "-rM", "-5", "-rM", "9", "-dot"});
    float radius = 0.0f;
    EXPECT_EQ(fltArgD(line.argc(), line.argv(), "-rM", &radius), 1);
    EXPECT_EQ(radius, -5.0f);
    int dots = 3;
    EXPECT_EQ(intArgD(line.argc(), line.argv(), "-dot", &dots), 0); // the last word has no value
    EXPECT_EQ(intArgD(line.argc(), line.argv(), "-Dot", &dots), 0);
    EXPECT_EQ(badFlag, 1);
    EXPECT_EQ(dots, 3);
    EXPECT_EQ(getNthArg(line.argc(), line.argv(), 6), nullptr);
    EXPECT_EQ(nextFlag(line.argc(), line.argv(), 1), 3);
    EXPECT_EQ(nextFlag(line.argc(), line.argv(), 5), 6);
}

TEST(Cmndargs, AListEndsAtTheNextFlag)
{
    Line line({"trelm", "-w", "1", "-2.5", "x", "-none", "-end"});
    int length = 0;
    const Block<float> list = rListArg(line.argc(), line.argv(), "-w", &length);
    ASSERT_EQ(length, 3);
    EXPECT_EQ(list[1], -2.5f);
    EXPECT_EQ(list[2], 0.0f);
    for (const char *flag : {"-none", "-end", "-absent"}) {
        EXPECT_FALSE(rListArg(line.argc(), line.argv(), flag, &length)) << flag;
        EXPECT_EQ(length, 0);
    }
}

TEST(Cmndargs, NumbersOutsideTheirTypeBecomeItsLimit)
{
    EXPECT_EQ(intWord("-99999999999999999999"), std::numeric_limits<int>::min());
    EXPECT_EQ(fltWord("1e60"), std::numeric_limits<float>::max());
    EXPECT_EQ(fltWord("-1e999"), std::numeric_limits<float>::lowest());
    EXPECT_EQ(dblWord("1e999"), std::numeric_limits<double>::max());
    EXPECT_EQ(fltWord("nan"), 0.0f);
}

TEST(Cmndargs, UnusedWordsAreToldByTheEnvironment)
{
    const auto warning = [](const std::string &which) { return "Warning from trelm:\n  Argument" + which; };
    const std::string unused = " may be unknown or unused:\n";
    const std::string outd = "  -outd: did you mean -outD?\n", incl = "  -incl: did you mean -inc?\n";
    const std::vector<std::string> words = {"trelm", "-dot", "5",  "-outd", "stray", "-incl",
                                            "-rM",   "1",    "  ", "end",   "-what"};
    const struct {
        const char *environment; ///< of NMRCHECK; null: unset
        std::vector<std::string> words;
        int warnings;
        std::string told;
    } cases[] = {
        {nullptr, words, 0, ""},
        {"ALL", words, 2,
         warning("s 3 to 5") + unused + "  ' -outd stray -incl '\n" + outd + incl + warning("s 9 to 10") +
             unused + "  ' end -what '\n"},
        {"yes", {"trelm", "a"}, 1, warning(" 1") + unused + "  ' a '\n"}, // any other text
        {"flags", words, 3,
         warning(" 3") + unused + "  ' -outd '\n" + outd + warning(" 5") + unused + "  ' -incl '\n" + incl +
             warning(" 10") + unused + "  ' -what '\n"},
        {"Debug",
         {"trelm", "\xff"},
         1,
         "Debug Info from trelm. Original Checksum: 547 Final Checksum: 547.\n"
         "  0. 1   5 Characters: 'trelm'\n"
         "  1. 0   1 Characters: '\xff'\n" +
             warning(" 1") + unused + "  ' \xff '\n"},
    };
    for (const auto &check : cases) {
        Line line(check.words);
        unsetenv("NMRCHECK");
        if (check.environment != nullptr)
            setenv("NMRCHECK", check.environment, 1);
        const std::string told =
            said([&] {
                initArgs(line.argc(), line.argv(), checkFromEnvironment);
                int value = 0;
                intArgD(line.argc(), line.argv(), "-dot", &value);
                intArgD(line.argc(), line.argv(), "-rM", &value);
                EXPECT_EQ(checkArgs(line.argc(), line.argv(), nearestFlag), check.warnings);
            }).err;
        EXPECT_EQ(told, check.told);
    }
    unsetenv("NMRCHECK");
}

TEST(Cmndargs, LongAndChangedLinesAreTold)
{
    Line line(std::vector<std::string>(400, "-x"));
    EXPECT_EQ(said([&] { initArgs(line.argc(), line.argv(), checkFlags); }).err,
              "Warning from -x: not all arguments will be checked.\n");
    line.words[399][1] = 'y';
    const std::string told =
        said([&] {
            EXPECT_EQ(flagLoc(line.argc(), line.argv(), "-y"), 399); // behind the map, found all the same
            EXPECT_EQ(checkArgs(line.argc(), line.argv()), 254);
        }).err;
    EXPECT_NE(told.find("argument checking may not be valid.\n"), std::string::npos);
    EXPECT_EQ(checkArgs(line.argc(), line.argv()), 0); // the state is gone
}

} // namespace
} // namespace trelm
