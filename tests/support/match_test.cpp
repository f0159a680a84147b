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
        MatchMode mode;
        bool expected;
    } cases[] = {
        {"CA", "ca", matchExact, false},
        {"CA", "CAA", matchExact, false},
        {"CA", "ca", matchGlob, false},
        {"CA", "CA", matchNone, false},
        {"1HB", "[1-3]H*", matchGlob, true},
        {"2HG1", "[3-1]H*", matchGlob, true},
        {"3HD2", "[1-3]H*", matchGlob, true},
        {"4HB", "[1-3]H*", matchGlob, false},
        {"HB", "[1-3]H*", matchGlob, false},
        {"", "*", matchGlob, true},
        {"", "?", matchGlob, false},
        {"HB", "H**", matchGlob, true},
        {"H*", "H\\*", matchGlob, true},
        {"HB", "H\\*", matchGlob, false},
        {"HB", "H\\", matchGlob, false},
        {"HB", "H[AB", matchGlob, false},
        {"HB", "H[]", matchGlob, false},
        {"H-", "H[A-]", matchGlob, true},
        {"HAHBHC", "*H[AB]*C", matchGlob, true},
        {"HG21", "^HG[12]+$", matchRegex, true},
        {"HG21", "G2", matchRegex, true},
        {"HG21", "^G2", matchRegex, false},
        {"abb", "^ab+$", matchRegex, true}, // the operator binds the last letter alone
        {"abab", "^ab+$", matchRegex, false},
        {"H]", "[]a]", matchRegex, true},
        {"H-", "[a-]$", matchRegex, true},
        {"H1'", "[^A-Z0-9]", matchRegex, true},
        {"a.b", "a\\.b", matchRegex, true},
        {"axb", "a\\.b", matchRegex, false},
        {"", "", matchRegex, true},
        {"", "a*$", matchRegex, true},
    };
    for (const auto &test : cases)
        EXPECT_EQ(NamePattern(test.pattern, test.mode).matches(test.name), test.expected)
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
    for (const auto &test : cases) {
        const NamePattern pattern(test.pattern, matchRegex);
        EXPECT_FALSE(pattern.matches("b"));
        EXPECT_EQ(pattern.error(), test.error) << test.pattern.substr(0, 40);
    }
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
    EXPECT_FALSE(NamePattern(std::string(40, '*') + "b", matchGlob).matches(name));
    EXPECT_FALSE(NamePattern(stars + "b", matchGlob).matches(name));
    for (const char *pattern : {"(a|a)*[bc]", "(a+)+[bc]", "(a?a?a?a)+[bc]", "(((((a+)+)+)+)+)+[bc]"})
        EXPECT_FALSE(NamePattern(pattern, matchRegex).matches(name)) << pattern;
    EXPECT_FALSE(NamePattern("(" + optional + "a)+[bc]", matchRegex).matches(name));
    EXPECT_FALSE(NamePattern(branches, matchRegex).matches(name));
    EXPECT_FALSE(NamePattern(".*.*.*.*.*.*.*.*.*.*[bc]", matchRegex).matches(std::string(20000, 'a')));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

// The library's own expressions, where both dialects agree, judge which random ones match.
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
        const bool expected = std::regex_search(text, std::regex(pattern));
        ASSERT_EQ(strRegExec2(*prog, text), expected) << pattern << " in " << text;
        ++compared;
        matched += expected ? 1 : 0;
    }
    EXPECT_GT(matched, 2000);
    EXPECT_GT(compared - matched, 2000);
}
