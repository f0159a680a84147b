#include "support/text/text.h"

#include "common/heard.h"
#include "common/temp_file.h"
#include "support/text/output_file.h"
#include "support/text/text_input.h"
#include "support/text/token.h"

#include <array>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <random>
#include <utility>
#include <vector>

using namespace trelm;

TEST(Token, WordsAreCountedFromOne)
{
    const char *text = "\t one  2x\r\n";
    EXPECT_EQ(firstWord(text), "one");
    EXPECT_EQ(firstWord(" \t"), "");
    EXPECT_EQ(getToken(1, text), "one");
    EXPECT_EQ(getToken(2, text), "2x");
    for (int n : {-1, 0, 3})
        EXPECT_EQ(getToken(n, text), "") << n;
}

// The numbers of users' files come out as the scanning functions of the C library have them.
TEST(Token, NumbersAreThoseOfTheScanningFunctions)
{
    const char *words[] = {"1",   "+7",       "-12abc", "1e3",   "1E-3",
                           "1e",  ".5",       "5.",     "-.5e1", "0x1f",
                           "abc", "+",        "-",      "+-5",   "--5",
                           "++5", "",         ".",      "1e400", "1e-50",
                           "0.1", "16777217", "inf",    "-1e39", "1.00000017881393432617187499"};
    for (const char *word : words) {
        float f = -1.0f;
        double d = -1.0;
        int i = -1;
        char *end = nullptr;
        const float expected = std::strtof(word, &end);
        EXPECT_EQ(wordToFloat(word, f), end != word) << word;
        EXPECT_EQ(f, expected) << word;
        EXPECT_EQ(toDouble(word), std::strtod(word, nullptr)) << word;
        EXPECT_EQ(wordToDouble(word, d), end != word) << word;
        const long whole = std::strtol(word, &end, 10);
        EXPECT_EQ(wordToInt(word, i), end != word) << word;
        EXPECT_EQ(i, whole) << word;
    }
    EXPECT_EQ(toInt(" \t-99999999999999999999"), INT_MIN);
    EXPECT_EQ(toInt("2147483648"), INT_MAX);
    EXPECT_EQ(toDouble("  +1.25A"), 1.25);
}

TEST(Text, AppendedTextOfAnyLengthIsWhole)
{
    const std::string name(100000, 'n');
    std::string text = "a";
    appendf(text, "%s%3d", name.c_str(), 7);
    appendf(text, "%s", "");
    EXPECT_EQ(text, "a" + name + "  7");
}

TEST(TextInput, LinesWithAndWithoutTheLastNewline)
{
    TextInput input{.text = "a\r\n\nb"};
    std::string_view line;
    std::string all;
    for (int round = 0; round < 2; ++round, rewindText(input))
        while (fgetsAlloc(input, line))
            (all += line) += '|';
    EXPECT_EQ(all, "a||b|a||b|");
}

TEST(Text, NumbersAreThoseOfPrintf)
{
    std::mt19937 engine(11);
    std::vector<float> values = {0.0f,
                                 -0.0f,
                                 -0.0004f,
                                 0.0005f,
                                 0.0625f,
                                 0.125f,
                                 2.5f,
                                 999.9995f,
                                 1e9f,
                                 -3e30f,
                                 std::numeric_limits<float>::infinity(),
                                 -std::nanf("")};
    std::uniform_real_distribution<float> exponent(-6.0f, 10.0f);
    for (int i = 0; i < 20000; ++i)
        values.push_back((i % 2 == 0 ? 1.0f : -1.0f) * std::pow(10.0f, exponent(engine)));
    for (int i = 0; i < 20000; ++i)
        values.push_back(static_cast<float>(i) / 1024.0f); // many of them half-way between two prints
    for (const float value : values)
        for (const auto &[width, decimals] : {std::pair{8, 3}, {6, 2}, {0, 2}, {9, 4}, {5, 0}, {60, 1}}) {
            std::string plain, fast;
            appendf(plain, "%*.*f % *.*f", width, decimals, static_cast<double>(value), width, decimals,
                    static_cast<double>(value));
            appendFixed(fast, value, static_cast<std::size_t>(width), decimals, SignPlace::none);
            fast += ' ';
            appendFixed(fast, value, static_cast<std::size_t>(width), decimals, SignPlace::blank);
            ASSERT_EQ(fast, plain);
        }
    for (const int value : {0, 7, -7, 123456, INT_MAX, INT_MIN}) {
        std::string plain, fast;
        appendf(plain, "%5d%60d", value, value);
        appendInt(fast, value, 5);
        appendInt(fast, value, 60);
        EXPECT_EQ(fast, plain);
    }
}

TEST(OutputFile, WhatIsWrittenCanBeReadAndAFullDeviceIsOneLineAndFails)
{
    const TempFile file;
    OutFile out;
    Heard heard;
    ASSERT_EQ(openOut(out, file.name, "w"), Status::ok);
    writeOut(out, "one\n");
    EXPECT_EQ(closeOut(out, heard.messages), Status::ok);
    TextInput input;
    EXPECT_EQ(readText(input, file.name, heard.messages), TextStatus::read);
    EXPECT_EQ(input.text, "one\n");

    ASSERT_EQ(openOut(out, "/dev/full", "w"), Status::ok);
    writeOut(out, "lost");
    EXPECT_EQ(closeOut(out, heard.messages), Status::failed);
    EXPECT_EQ(heard.err, "Error writing /dev/full.\n");
    EXPECT_EQ(openOut(out, "/none/such/file", "w"), Status::failed);
    EXPECT_EQ(out.fp, stdout);
}
