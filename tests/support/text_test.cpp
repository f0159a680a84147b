#include "support/numerics/numbers.h"
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
    std::vector<double> values = {0.0,
                                  -0.0,
                                  -0.0004,
                                  0.0005,
                                  0.0625,
                                  0.125,
                                  2.5,
                                  999.9995,
                                  0.9999995,
                                  999999.95,
                                  1e9,
                                  -3e30,
                                  1e22,
                                  9.9e-15,
                                  5e-324,
                                  1.5e-300,
                                  1.7e308,
                                  1e-5,
                                  1e15,
                                  123456.5,
                                  0.1499999999999999944,
                                  0.15000000000000002,
                                  std::numeric_limits<double>::infinity(),
                                  -std::nan("")};
    std::uniform_real_distribution<double> exponent(-18.0, 24.0);
    for (int i = 0; i < 4000; ++i) {
        const double value = (i % 2 == 0 ? 1.0 : -1.0) * std::pow(10.0, exponent(engine));
        values.insert(values.end(), {value, number(static_cast<float>(value))});
    }
    for (int i = 0; i < 4000; ++i)
        values.push_back(i / 1024.0);            // many of them half-way between two prints
    for (int power = -16; power < 24; ++power) { // powers of ten, and their neighbours
        const double value = std::pow(10.0, power);
        values.insert(values.end(), {value, std::nextafter(value, 0.0), std::nextafter(value, 1e300)});
    }
    for (const double value : values)
        for (const auto &[width, decimals] : {std::pair{8, 3}, {6, 2}, {0, 6}, {9, 4}, {5, 0}, {60, 1}}) {
            std::string plain, fast;
            appendf(plain, "%*.*f % *.*f %.*e % .*e", width, decimals, value, width, decimals, value,
                    decimals, value, decimals, value);
            appendFixed(fast, value, static_cast<std::size_t>(width), decimals, SignPlace::none);
            appendFixed(fast += ' ', value, static_cast<std::size_t>(width), decimals, SignPlace::blank);
            appendScientific(fast += ' ', value, decimals, SignPlace::none);
            appendScientific(fast += ' ', value, decimals, SignPlace::blank);
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
