#include "support/text/text.h"

#include "support/text/token.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <limits>

namespace trelm {
namespace {

constexpr char raised(char c)
{
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

std::string_view withoutLeadingSpace(std::string_view text)
{
    const auto *first = std::ranges::find_if_not(text, isSpace);
    return text.substr(static_cast<std::size_t>(first - text.begin()));
}

} // namespace

void appendf(std::string &text, const char *format, ...)
{
    constexpr std::size_t firstTry = 256; // most texts fit, and are formatted once
    const std::size_t before = text.size();
    std::va_list args, again;
    va_start(args, format);
    va_copy(again, args);
    text.resize(before + firstTry);
    const int length = std::vsnprintf(text.data() + before, firstTry, format, args);
    const std::size_t added = length > 0 ? static_cast<std::size_t>(length) : 0;
    if (added >= firstTry) {
        text.resize(before + added + 1); // one more for the terminator that vsnprintf writes
        std::vsnprintf(text.data() + before, added + 1, format, again);
    }
    text.resize(before + added);
    va_end(again);
    va_end(args);
}

void appendLeft(std::string &text, std::string_view word, std::size_t width)
{
    text.append(word);
    if (word.size() < width)
        text.append(width - word.size(), ' ');
}

void appendRight(std::string &text, std::string_view word, std::size_t width)
{
    if (word.size() < width)
        text.append(width - word.size(), ' ');
    text.append(word);
}

namespace {

/// A number under construction, from its last character to its first.
struct NumberText {
    std::array<char, 24> text; // ten digits, a point, four digits, a sign
    char *place = text.data() + text.size();

    void put(char c) { *--place = c; }
    void putDigits(std::uint64_t value, int count)
    {
        for (; count > 0 || value != 0; --count, value /= 10)
            put(static_cast<char>('0' + value % 10));
    }
    [[nodiscard]] std::string_view view() const { return {place, text.data() + text.size()}; }
};

} // namespace

void appendInt(std::string &text, int value, std::size_t width)
{
    NumberText number;
    number.putDigits(static_cast<std::uint64_t>(std::abs(std::int64_t{value})), 1);
    if (value < 0)
        number.put('-');
    appendRight(text, number.view(), width);
}

void appendFixed(std::string &text, float value, std::size_t width, int decimals, SignPlace sign)
{
    constexpr std::array<std::uint64_t, 5> powers = {1, 10, 100, 1000, 10000};
    constexpr float largest = 1e9f;
    const bool blank = sign == SignPlace::blank;
    if (decimals < 1 || decimals > 4 || !(std::abs(value) < largest)) {
        appendf(text, blank ? "% *.*f" : "%*.*f", static_cast<int>(width), decimals,
                static_cast<double>(value));
        return;
    }
    // The product is exact (24 bits times 14), and so is what is behind its point: rounded to even, this is
    // what printf makes of all digits.
    const std::uint64_t power = powers[static_cast<std::size_t>(decimals)];
    const double product = std::abs(static_cast<double>(value)) * static_cast<double>(power);
    auto scaled = static_cast<std::uint64_t>(product);
    const double behind = product - static_cast<double>(scaled);
    if (behind > 0.5 || (behind == 0.5 && scaled % 2 == 1))
        ++scaled;
    NumberText number;
    std::uint64_t fraction = scaled % power;
    for (int i = 0; i < decimals; ++i, fraction /= 10)
        number.put(static_cast<char>('0' + fraction % 10));
    number.put('.');
    number.putDigits(scaled / power, 1);
    if (std::signbit(value))
        number.put('-');
    else if (blank)
        number.put(' ');
    appendRight(text, number.view(), width);
}

Status nrerror(const char *message, Messages &messages)
{
    return messages.fail("Utility Error: %s\nAborting.\n", message);
}

bool equalNoCase(std::string_view a, std::string_view b)
{
    return std::ranges::equal(a, b, {}, raised, raised);
}

int toInt(std::string_view text)
{
    int value = 0;
    wordToInt(withoutLeadingSpace(text), value);
    return value;
}

double toDouble(std::string_view text)
{
    double value = 0.0;
    wordToDouble(withoutLeadingSpace(text), value);
    return value;
}

int truncated(float value)
{
    constexpr float limit = 2147483648.0f;
    if (value >= limit)
        return std::numeric_limits<int>::max();
    if (value < -limit)
        return std::numeric_limits<int>::min();
    return std::isnan(value) ? 0 : static_cast<int>(value);
}

} // namespace trelm
