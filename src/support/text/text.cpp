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
    std::array<char, 24> text; // ten digits, a point, an exponent, signs
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

namespace {

/// Powers that a double holds exactly: a product with one of them, and a quotient, is rounded once.
constexpr std::array<double, 23> powersOfTen = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                                1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

constexpr double powerOfTen(int exponent)
{
    return powersOfTen[static_cast<std::size_t>(exponent)];
}

/// Finds the integer nearest to a product, unless the product's own rounding may decide it: then false.
bool roundSurely(double product, std::uint64_t &nearest)
{
    constexpr double largest = 1e9, margin = 1e-6; // the product is off by 6e-8 at most
    if (!(product < largest))
        return false;
    nearest = static_cast<std::uint64_t>(product);
    const double behind = product - static_cast<double>(nearest) - 0.5;
    nearest += behind > 0.0 ? 1 : 0;
    return std::abs(behind) > margin;
}

/// The last `decimals` digits of a number, a point, those before, and the sign.
void putNumber(NumberText &number, std::uint64_t scaled, int decimals, bool isNegative, SignPlace sign)
{
    for (int i = 0; i < decimals; ++i, scaled /= 10)
        number.put(static_cast<char>('0' + scaled % 10));
    number.put('.');
    number.putDigits(scaled, 1);
    if (isNegative)
        number.put('-');
    else if (sign == SignPlace::blank)
        number.put(' ');
}

/// Any number, by the standard library's exact digits.
void appendDigits(std::string &text, double value, std::size_t width, int decimals, std::chars_format form,
                  SignPlace sign)
{
    std::array<char, 400> word; // 309 digits, a point, 60 decimals, a sign
    word[0] = ' ';
    char *const digits = word.data() + (sign == SignPlace::blank && !std::signbit(value) ? 1 : 0);
    const char *const end = std::to_chars(digits, word.data() + word.size(), value, form, decimals).ptr;
    appendRight(text, {word.data(), end}, width);
}

} // namespace

void appendFixed(std::string &text, double value, std::size_t width, int decimals, SignPlace sign)
{
    std::uint64_t scaled = 0;
    if (decimals < 1 || decimals > 9 || !roundSurely(std::abs(value) * powerOfTen(decimals), scaled))
        return appendDigits(text, value, width, decimals, std::chars_format::fixed, sign);
    NumberText number;
    putNumber(number, scaled, decimals, std::signbit(value), sign);
    appendRight(text, number.view(), width);
}

void appendScientific(std::string &text, double value, int decimals, SignPlace sign)
{
    // Within these bounds all powers that are needed stand in the table.
    constexpr double smallest = 1e-14, largest = 1e22;
    const double size = std::abs(value);
    const bool isUsual = size >= smallest && size < largest && decimals >= 1 && decimals <= 7;
    const int exponent = isUsual ? static_cast<int>(std::floor(std::log10(size))) : 0;
    const int shift = decimals - exponent;
    std::uint64_t scaled = 0;
    // A number that is rounded up to the next power, or whose logarithm was, is for the exact form.
    if (!isUsual || !roundSurely(shift < 0 ? size / powerOfTen(-shift) : size * powerOfTen(shift), scaled) ||
        scaled < static_cast<std::uint64_t>(powerOfTen(decimals)) ||
        scaled >= static_cast<std::uint64_t>(powerOfTen(decimals + 1)))
        return appendDigits(text, value, 0, decimals, std::chars_format::scientific, sign);
    NumberText number;
    number.putDigits(static_cast<std::uint64_t>(std::abs(exponent)), 2);
    number.put(exponent < 0 ? '-' : '+');
    number.put('e');
    putNumber(number, scaled, decimals, std::signbit(value), sign);
    text.append(number.view());
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
