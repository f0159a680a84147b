#include "support/text.h"

#include "support/token.h"

#include <algorithm>
#include <charconv>
#include <cstdarg>
#include <cstddef>
#include <cstdio>

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
    std::va_list args, again;
    va_start(args, format);
    va_copy(again, args);
    const int length = std::vsnprintf(nullptr, 0, format, args);
    if (length > 0) {
        const std::size_t before = text.size(), added = static_cast<std::size_t>(length);
        text.resize(before + added + 1); // one more for the terminator that vsnprintf writes
        std::vsnprintf(text.data() + before, added + 1, format, again);
        text.resize(before + added);
    }
    va_end(again);
    va_end(args);
}

int complain(const char *format, ...)
{
    std::va_list args;
    va_start(args, format);
    std::vfprintf(stderr, format, args);
    va_end(args);
    return 1;
}

void nrerror(const char *message)
{
    complain("Utility Error: %s\nAborting.\n", message);
}

bool equalNoCase(std::string_view a, std::string_view b)
{
    return std::ranges::equal(a, b, {}, raised, raised);
}

void raiseStr(std::string &text)
{
    std::ranges::transform(text, text.begin(), raised);
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

int intToStr(int value, std::span<char> text)
{
    constexpr std::size_t maxDigits = 63;
    if (text.empty())
        return 0;
    text[0] = '\0';
    char form[16];
    const char *end = std::to_chars(form, form + sizeof form, value).ptr;
    const auto length = static_cast<std::size_t>(end - form);
    const std::size_t digits = value < 0 ? length - 1 : length;
    if (digits > std::min(text.size() - 1, maxDigits) || length > text.size() - 1)
        return 0;
    std::copy(form, form + length, text.begin());
    text[length] = '\0';
    return static_cast<int>(length);
}

} // namespace trelm
