#include "support/text/token.h"

#include "support/text/text.h"

#include <charconv>
#include <cstdlib>
#include <limits>
#include <string>
#include <system_error>
#include <type_traits>

namespace trelm {
namespace {

/// The next word at or behind `place`, which then stands behind the word; the empty text at the end.
std::string_view nextWord(std::string_view text, std::size_t &place)
{
    while (place < text.size() && isSpace(text[place]))
        ++place;
    const std::size_t start = place;
    while (place < text.size() && !isSpace(text[place]))
        ++place;
    return text.substr(start, place - start);
}

/// Cuts a leading plus sign, which std::from_chars does not know. A second sign makes it no number.
bool cutPlus(std::string_view &word)
{
    if (!word.starts_with('+'))
        return true;
    word.remove_prefix(1);
    return !word.starts_with('-') && !word.starts_with('+');
}

bool isHexadecimal(std::string_view word)
{
    if (word.starts_with('-'))
        word.remove_prefix(1);
    return word.starts_with("0x") || word.starts_with("0X");
}

template <class T>
bool wordToReal(std::string_view word, T &value)
{
    value = T{0};
    if (!cutPlus(word))
        return false;
    const auto [end, status] = std::from_chars(word.data(), word.data() + word.size(), value);
    if (status == std::errc{} && !isHexadecimal(word))
        return true;
    if (status == std::errc::invalid_argument)
        return false;
    // Rare, so a copy does no harm: beyond the range (it becomes infinite or 0), or hexadecimal.
    const std::string copy(word);
    if constexpr (std::is_same_v<T, float>)
        value = std::strtof(copy.c_str(), nullptr);
    else
        value = std::strtod(copy.c_str(), nullptr);
    return true;
}

} // namespace

std::string_view getToken(int n, std::string_view text)
{
    std::size_t place = 0;
    std::string_view word;
    for (int i = 0; i < n; ++i) {
        word = nextWord(text, place);
        if (word.empty())
            break;
    }
    return word;
}

std::string_view firstWord(std::string_view line)
{
    std::size_t place = 0;
    return nextWord(line, place);
}

void splitTokens(std::string_view text, std::vector<std::string_view> &words, std::size_t most)
{
    words.clear();
    std::size_t place = 0;
    while (words.size() < most) {
        const std::string_view word = nextWord(text, place);
        if (word.empty())
            return;
        words.push_back(word);
    }
}

bool wordToInt(std::string_view word, int &value)
{
    value = 0;
    if (!cutPlus(word))
        return false;
    const auto [end, status] = std::from_chars(word.data(), word.data() + word.size(), value);
    if (status == std::errc::result_out_of_range)
        value = word.starts_with('-') ? std::numeric_limits<int>::min() : std::numeric_limits<int>::max();
    return status != std::errc::invalid_argument;
}

bool wordToFloat(std::string_view word, float &value)
{
    return wordToReal(word, value);
}

bool wordToDouble(std::string_view word, double &value)
{
    return wordToReal(word, value);
}

bool isOneNumber(std::string_view word)
{
    if (!cutPlus(word))
        return false;
    double value = 0.0;
    const auto [end, status] = std::from_chars(word.data(), word.data() + word.size(), value);
    return status != std::errc::invalid_argument && (end == word.data() + word.size() || isHexadecimal(word));
}

bool isInteger(std::string_view word)
{
    int whole = 0;
    double value = 0.0;
    return wordToInt(word, whole) && wordToDouble(word, value) && value == static_cast<double>(whole);
}

std::size_t scanNumbers(std::string_view line, std::span<double> values)
{
    const std::string text(line);
    const char *place = text.c_str();
    for (std::size_t i = 0; i < values.size(); ++i) {
        char *end = nullptr;
        values[i] = std::strtod(place, &end);
        if (end == place)
            return i;
        place = end;
    }
    return values.size();
}

} // namespace trelm
