#include "support/text/json_writer.h"

#include "support/text/text.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>

namespace trelm {
namespace {

template <class Number>
std::string shortestText(Number number)
{
    std::array<char, 32> digits = {};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    return {digits.data(), end};
}

/// The length of the UTF-8 character at the start of a text; 0 for bytes that are none.
/// Source: Unicode, table 3-7: well-formed byte sequences.
std::size_t characterLength(std::string_view text)
{
    const auto byte = [text](std::size_t k) {
        return static_cast<unsigned char>(k < text.size() ? text[k] : '\0');
    };
    const unsigned char first = byte(0);
    if (first < 0x80)
        return 1;
    const std::size_t length = first >= 0xc2 && first < 0xe0   ? 2
                               : first >= 0xe0 && first < 0xf0 ? 3
                               : first >= 0xf0 && first < 0xf5 ? 4
                                                               : 0;
    for (std::size_t k = 1; k < length; ++k)
        if ((byte(k) & 0xc0) != 0x80)
            return 0;
    const bool isOverlong = (first == 0xe0 && byte(1) < 0xa0) || (first == 0xf0 && byte(1) < 0x90);
    const bool isBeyond = (first == 0xed && byte(1) >= 0xa0) || (first == 0xf4 && byte(1) >= 0x90);
    return isOverlong || isBeyond ? 0 : length;
}

} // namespace

void JsonWriter::breakLine()
{
    text += '\n';
    text.append(levels.size(), ' ');
}

void JsonWriter::separate()
{
    if (isKeyed || levels.empty()) {
        isKeyed = false;
        return;
    }
    Level &level = levels.back();
    if (!level.isEmpty)
        text += level.inLine ? ", " : ",";
    level.isEmpty = false;
    if (!level.inLine)
        breakLine();
}

JsonWriter &JsonWriter::open(char opening, char closing, bool inLine)
{
    separate();
    const bool isWithin = !levels.empty() && levels.back().inLine;
    text += opening;
    levels.push_back({closing, inLine || isWithin});
    return *this;
}

void JsonWriter::end()
{
    const Level level = levels.back();
    levels.pop_back();
    if (!level.inLine && !level.isEmpty)
        breakLine();
    text += level.closing;
    if (levels.empty())
        text += '\n';
}

JsonWriter &JsonWriter::key(std::string_view name)
{
    separate();
    quote(name);
    text += ": ";
    isKeyed = true;
    return *this;
}

void JsonWriter::piece(std::string_view words)
{
    separate();
    text += words;
}

void JsonWriter::value(double number)
{
    piece(std::isfinite(number) ? shortestText(number) : "null");
}

void JsonWriter::value(float number)
{
    piece(std::isfinite(number) ? shortestText(number) : "null");
}

void JsonWriter::value(bool flag)
{
    piece(flag ? "true" : "false");
}

void JsonWriter::value(std::string_view words)
{
    separate();
    quote(words);
}

void JsonWriter::quote(std::string_view words)
{
    text += '"';
    while (!words.empty()) {
        const std::size_t length = characterLength(words);
        const char first = words[0];
        if (length == 0)
            text += "\xef\xbf\xbd"; // U+FFFD
        else if (first == '"' || first == '\\')
            text.append("\\").append(1, first);
        else if (static_cast<unsigned char>(first) < 0x20 || first == 0x7f)
            appendf(text, "\\u%04x", static_cast<unsigned>(first));
        else
            text.append(words.substr(0, length));
        words.remove_prefix(length == 0 ? 1 : length);
    }
    text += '"';
}

} // namespace trelm
