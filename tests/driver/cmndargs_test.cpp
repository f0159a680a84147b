// Looking words up by name, and the report on those that nobody used.
#include "driver/cmndargs.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>
#include <string>
#include <vector>

namespace trelm {
namespace {

/// A command line that can be handed over as argc and argv.
struct Line {
    std::vector<std::string> words;
    std::vector<char *> pointers;

    explicit Line(std::vector<std::string> line) : words(std::move(line))
    {
        for (std::string &word : words)
            pointers.push_back(word.data());
        pointers.push_back(nullptr);
    }
    [[nodiscard]] int argc() const { return static_cast<int>(words.size()); }
    char **argv() { return pointers.data(); }
};

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

struct CheckCase {
    const char *why;
    const char *environment; ///< of NMRCHECK; null: unset
    std::vector<std::string> words;
    int warnings;
    std::string told;
};

TEST(Cmndargs, UnusedWordsAreToldByTheEnvironment)
{
    const std::string head = "Warning from trelm:\n";
    const std::vector<std::string> words = {"trelm", "-dot", "5", "-incl", "stray", "-rM", "1", "  ", "end"};
    const CheckCase cases[] = {
        {"unset", nullptr, words, 0, ""},
        {"all", "ALL", words, 2,
         head + "  Arguments 3 to 4 may be unknown or unused:\n  ' -incl stray '\n" + head +
             "  Argument 8 may be unknown or unused:\n  ' end '\n"},
        {"any other text",
         "yes",
         {"trelm", "a"},
         1,
         head + "  Argument 1 may be unknown or unused:\n  ' a '\n"},
        {"flags", "flags", words, 1, head + "  Argument 3 may be unknown or unused:\n  ' -incl '\n"},
        {"debug",
         "Debug",
         {"trelm", "\xff"},
         1,
         "Debug Info from trelm. Original Checksum: 547 Final Checksum: 547.\n"
         "  0. 1   5 Characters: 'trelm'\n"
         "  1. 0   1 Characters: '\xff'\n" +
             head + "  Argument 1 may be unknown or unused:\n  ' \xff '\n"},
    };
    for (const CheckCase &check : cases) {
        SCOPED_TRACE(check.why);
        Line line(check.words);
        if (check.environment != nullptr)
            setenv("NMRCHECK", check.environment, 1);
        else
            unsetenv("NMRCHECK");
        testing::internal::CaptureStderr();
        initArgs(line.argc(), line.argv(), checkFromEnvironment);
        unsetenv("NMRCHECK");
        int value = 0;
        intArgD(line.argc(), line.argv(), "-dot", &value);
        intArgD(line.argc(), line.argv(), "-rM", &value);
        EXPECT_EQ(checkArgs(line.argc(), line.argv()), check.warnings);
        EXPECT_EQ(testing::internal::GetCapturedStderr(), check.told);
    }
}

TEST(Cmndargs, LongAndChangedLinesAreTold)
{
    Line line(std::vector<std::string>(400, "-x"));
    testing::internal::CaptureStderr();
    initArgs(line.argc(), line.argv(), checkFlags);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Warning from -x: not all arguments will be checked.\n");
    testing::internal::CaptureStderr();
    line.words[399][1] = 'y';
    EXPECT_EQ(flagLoc(line.argc(), line.argv(), "-y"), 399); // behind the map, found all the same
    EXPECT_EQ(checkArgs(line.argc(), line.argv()), 254);
    EXPECT_NE(testing::internal::GetCapturedStderr().find("argument checking may not be valid.\n"),
              std::string::npos);
    EXPECT_EQ(checkArgs(line.argc(), line.argv()), 0); // the state is gone
}

} // namespace
} // namespace trelm
