#include "support/text/match.h"
#include "support/text/regexp.h"

#include <gtest/gtest.h>

#include <chrono>
#include <random>

#include <regex>

using namespace trelm;

TEST(Match, Names)
{
    const struct {
        const char *name, *pattern;
        int mode, caseMode, expected;
    } cases[] = {
        {"CA", "ca", matchExact, 0, 1},
        {"CA", "ca", matchExact, 1, 0},
        {"CA", "CAA", matchExact, 0, 0},
        {"CA", "ca", matchGlob, 0, 0},
        {"CA", "CA", 0, 1, 0},
        {"1HB", "[1-3]H*", matchGlob, 1, 1},
        {"2HG1", "[3-1]H*", matchGlob, 1, 1},
        {"3HD2", "[1-3]H*", matchGlob, 1, 1},
        {"4HB", "[1-3]H*", matchGlob, 1, 0},
        {"HB", "[1-3]H*", matchGlob, 1, 0},
        {"", "*", matchGlob, 1, 1},
        {"", "?", matchGlob, 1, 0},
        {"HB", "H**", matchGlob, 1, 1},
        {"H*", "H\\*", matchGlob, 1, 1},
        {"HB", "H\\*", matchGlob, 1, 0},
        {"HB", "H\\", matchGlob, 1, 0},
        {"HB", "H[AB", matchGlob, 1, 0},
        {"HB", "H[]", matchGlob, 1, 0},
        {"H-", "H[A-]", matchGlob, 1, 1},
        {"HAHBHC", "*H[AB]*C", matchGlob, 1, 1},
        {"HG21", "^HG[12]+$", matchRegex, 1, 1},
        {"HG21", "G2", matchRegex, 1, 1},
        {"HG21", "^G2", matchRegex, 1, 0},
        {"abb", "^ab+$", matchRegex, 1, 1}, // the operator binds the last letter alone
        {"abab", "^ab+$", matchRegex, 1, 0},
        {"H]", "[]a]", matchRegex, 1, 1},
        {"H-", "[a-]$", matchRegex, 1, 1},
        {"H1'", "[^A-Z0-9]", matchRegex, 1, 1},
        {"a.b", "a\\.b", matchRegex, 1, 1},
        {"axb", "a\\.b", matchRegex, 1, 0},
        {"", "", matchRegex, 1, 1},
        {"", "a*$", matchRegex, 1, 1},
    };
    for (const auto &test : cases)
        EXPECT_EQ(strMatch(test.name, test.pattern, test.mode, test.caseMode), test.expected)
            << test.name << " by " << test.pattern;
}

TEST(Match, AFaultyExpressionSelectsNothingAndSaysWhy)
{
    std::string groups;
    for (int i = 0; i < 20; ++i)
        groups += "(a)";
    const struct {
        std::string pattern;
        const char *error;
    } cases[] = {
        {"a**", "nested *?+"},
        {"(a*)*", "*+ operand could be empty"},
        {"a)", "unmatched ()"},
        {"(a", "unmatched ()"},
        {"*a", "?+* follows nothing"},
        {"a\\", "trailing \\"},
        {"[a", "unmatched []"},
        {"[b-a]", "invalid [] range"},
        {groups, "too many ()"},
        {groups.substr(3), ""},
        {std::string(32759, 'a'), "Regexp too big"},
        {std::string(32755, 'a'), ""},
    };
    for (const auto &test : cases)
        for (int round = 0; round < 2; ++round) { // the second comes from what was kept of the first
            EXPECT_EQ(strMatch("b", test.pattern, matchRegex, 1), 0);
            EXPECT_EQ(strMatchError(), test.error) << test.pattern.substr(0, 40);
        }
    strMatch("a", "a", matchExact, 1);
    EXPECT_EQ(strMatchError(), "");
}

// Each of these takes an age, or the whole call stack, with a matcher that tries all ways or calls itself.
// They end in a set, since the lack of a literal would be seen at a glance.
TEST(Match, HardPatternsEndQuickly)
{
    const std::string name(16, 'a');
    std::string stars, optional, branches = "b";
    for (int i = 0; i < 40; ++i)
        stars += "*a";
    for (int i = 0; i < 2000; ++i) {
        optional += "a?";
        branches += "|b";
    }
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(strMatch(name, std::string(40, '*') + "b", matchGlob, 1), 0);
    EXPECT_EQ(strMatch(name, stars + "b", matchGlob, 1), 0);
    for (const char *pattern : {"(a|a)*[bc]", "(a+)+[bc]", "(a?a?a?a)+[bc]", "(((((a+)+)+)+)+)+[bc]"})
        EXPECT_EQ(strMatch(name, pattern, matchRegex, 1), 0) << pattern;
    EXPECT_EQ(strMatch(name, "(" + optional + "a)+[bc]", matchRegex, 1), 0);
    EXPECT_EQ(strMatch(name, branches, matchRegex, 1), 0);
    EXPECT_EQ(strMatch(std::string(20000, 'a'), ".*.*.*.*.*.*.*.*.*.*[bc]", matchRegex, 1), 0);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

// The library's own expressions, where both dialects agree, judge where random ones match and with which
// groups.
TEST(Regexp, RandomExpressionsMatchWhereTheLibrarySays)
{
    const char *pieces[] = {"a", "b", "ab", ".", "[ab]", "[^a]", "(", "(",
                            ")", ")", "|",  "*", "+",    "?",    "^", "$"};
    std::mt19937 random(1);
    int compared = 0, matched = 0;
    for (int round = 0; round < 40000; ++round) {
        std::string pattern, text, error;
        for (auto i = random() % 9; i > 0; --i)
            pattern += pieces[random() % std::size(pieces)];
        for (auto i = random() % 7; i > 0; --i)
            text += "abc"[random() % 3];
        const auto prog = strRegComp(pattern, error);
        if (!prog || pattern.find("^?") != std::string::npos || pattern.find("$?") != std::string::npos)
            continue; // the library knows no optional anchor
        std::smatch found;
        const bool expected = std::regex_search(text, found, std::regex(pattern));
        ASSERT_EQ(strRegExec2(*prog, text, 0, error) != 0, expected) << pattern << " in " << text;
        ++compared;
        if (!expected)
            continue;
        ++matched;
        EXPECT_EQ(prog->startp[0] - text.data(), found.position(0)) << pattern << " in " << text;
        EXPECT_EQ(prog->endp[0] - prog->startp[0], found.length(0)) << pattern << " in " << text;
    }
    EXPECT_GT(matched, 2000);
    EXPECT_GT(compared - matched, 2000);
}

TEST(Regexp, GroupsAreThoseOfTheLastPass)
{
    std::string error;
    const std::string text = "xHA1HB2";
    const auto prog = strRegComp("(H([AB])[0-9])+|(z)", error);
    ASSERT_TRUE(prog);
    ASSERT_EQ(strRegExec2(*prog, text, 1, error), 1);
    EXPECT_EQ(std::string(prog->startp[1], prog->endp[1]), "HB2");
    EXPECT_EQ(std::string(prog->startp[2], prog->endp[2]), "B");
    EXPECT_EQ(prog->startp[3], nullptr);
    EXPECT_EQ(strRegExec2(*prog, text, 5, error), 0);
}
