// Looking words up by name, and the report on those that nobody used.
#include "command/command_line.h"

#include "command/flag_hint.h"
#include "common/heard.h"
#include "common/line.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>
#include <string>
#include <vector>

namespace trelm {
namespace {

/// A command line and what is said of it.
struct Given : Heard {
    Line words;
    CommandLine line;
    explicit Given(const std::vector<std::string> &typed, ArgumentCheck check = ArgumentCheck::none)
        : words(typed), line(words.argc(), words.argv(), check, messages)
    {
    }
};

TEST(CommandLine, NegativeNumbersAreValuesAndAMinusAloneIsAFlag)
{
    for (const char *flag : {"-x", "-", "--5", "-e5", "-+5"})
        EXPECT_TRUE(isFlag(flag)) << flag;
    for (const char *value : {"-5", "-.5", "5", "", "x-", "."})
        EXPECT_FALSE(isFlag(value)) << value;
}

TEST(CommandLine, TheFirstOccurrenceCounts)
{
    Given given({"trelm", "-rM", "-5", "-rM", "9", "-dot"});
    EXPECT_STREQ(given.line.valueOf("-rM"), "-5");
    EXPECT_EQ(given.line.valueOf("-dot"), nullptr); // the last word has no value
    EXPECT_EQ(given.line.valueOf("-Dot"), nullptr);
    EXPECT_EQ(given.line.word(6), nullptr);
    EXPECT_EQ(given.line.nextFlag(1), 3);
    EXPECT_EQ(given.line.nextFlag(5), 6);
}

TEST(CommandLine, AListEndsAtTheNextFlag)
{
    Given given({"trelm", "-w", "1", "-2.5", "x", "-none", "-end"});
    int length = 0;
    const Block<float> list = given.line.numbersOf("-w", length);
    ASSERT_EQ(length, 3);
    EXPECT_EQ(list[1], -2.5f);
    EXPECT_EQ(list[2], 0.0f);
    for (const char *flag : {"-none", "-end", "-absent"}) {
        EXPECT_FALSE(given.line.numbersOf(flag, length)) << flag;
        EXPECT_EQ(length, 0);
    }
}

TEST(CommandLine, NumbersOutsideTheirTypeBecomeItsLimit)
{
    EXPECT_EQ(intWord("-99999999999999999999"), std::numeric_limits<int>::min());
    EXPECT_EQ(fltWord("1e60"), std::numeric_limits<float>::max());
    EXPECT_EQ(fltWord("-1e999"), std::numeric_limits<float>::lowest());
    EXPECT_EQ(dblWord("1e999"), std::numeric_limits<double>::max());
    EXPECT_EQ(fltWord("nan"), 0.0f);
}

TEST(CommandLine, UnusedWordsAreToldByTheEnvironment)
{
    const auto warning = [](const std::string &which) { return "Warning from trelm:\n  Argument" + which; };
    const std::string unused = " may be unknown or unused:\n";
    const std::vector<std::string> words = {"trelm", "-dot", "5",  "-outd", "stray", "-incl",
                                            "-rM",   "1",    "  ", "end",   "-what"};
    const struct {
        const char *environment; ///< of NMRCHECK; null: unset
        std::vector<std::string> words;
        std::string told;
    } cases[] = {
        {nullptr, words, ""},
        {"ALL", words,
         warning("s 3 to 5") + unused + "  ' -outd stray -incl '\n" + warning("s 9 to 10") + unused +
             "  ' end -what '\n"},
        {"yes", {"trelm", "a"}, warning(" 1") + unused + "  ' a '\n"}, // any other text
        {"flags", words,
         warning(" 3") + unused + "  ' -outd '\n" + warning(" 5") + unused + "  ' -incl '\n" +
             warning(" 10") + unused + "  ' -what '\n"},
        {"Debug",
         {"trelm", "\xff"},
         "Debug Info from trelm. Original Checksum: 547 Final Checksum: 547.\n"
         "  0. 1   5 Characters: 'trelm'\n"
         "  1. 0   1 Characters: '\xff'\n" +
             warning(" 1") + unused + "  ' \xff '\n"},
    };
    for (const auto &check : cases) {
        unsetenv("NMRCHECK");
        if (check.environment != nullptr)
            setenv("NMRCHECK", check.environment, 1);
        Given given(check.words, checkOfEnvironment());
        given.line.valueOf("-dot");
        given.line.valueOf("-rM");
        given.line.reportUnused();
        EXPECT_EQ(given.err, check.told);
    }
    unsetenv("NMRCHECK");
}

TEST(CommandLine, LongAndChangedLinesAreTold)
{
    Given given(std::vector<std::string>(400, "-x"), ArgumentCheck::flags);
    EXPECT_EQ(given.err, "Warning from -x: not all arguments will be checked.\n");
    given.words.words[399][1] = 'y';
    EXPECT_EQ(given.line.flagLoc("-y"), 399); // behind the map, found all the same
    given.line.reportUnused();
    EXPECT_NE(given.err.find("argument checking may not be valid.\n"), std::string::npos);
    EXPECT_NE(given.err.find("  Argument 254 may"), std::string::npos);
}

} // namespace
} // namespace trelm
