#include "couplings/formats/detect.h"

#include "support/text/text.h"
#include "support/text/token.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <utility>
#include <vector>

namespace trelm {
namespace {

using Words = std::vector<std::string_view>;

constexpr std::pair<CouplingForm, const char *> formWords[] = {
    {CouplingForm::table, "table"}, {CouplingForm::star, "star"},   {CouplingForm::nef, "nef"},
    {CouplingForm::xplor, "xplor"}, {CouplingForm::cyana, "cyana"}, {CouplingForm::rosetta, "rosetta"},
    {CouplingForm::csv, "csv"},
};

/// The next line of a text, which is cut off it.
std::string_view cutLine(std::string_view &text)
{
    const std::size_t end = text.find('\n');
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    return line;
}

/// Whether a line begins with a word, behind blanks. The word is searched first: it stands in few lines.
bool hasLine(std::string_view text, std::string_view word)
{
    for (std::size_t place = text.find(word); place != std::string_view::npos;
         place = text.find(word, place + 1)) {
        const std::size_t lineStart = text.substr(0, place).rfind('\n') + 1; // npos + 1 is 0
        const std::string_view line = text.substr(lineStart, text.find('\n', place) - lineStart);
        if (firstWord(line) == word)
            return true;
    }
    return false;
}

/// The first line that is no comment.
std::string_view firstLine(std::string_view text)
{
    constexpr std::string_view marks = "#!;{";
    while (!text.empty()) {
        const std::string_view line = cutLine(text), word = firstWord(line);
        if (!word.empty() && marks.find(word[0]) == std::string_view::npos && !equalNoCase(word, "REMARK"))
            return line;
    }
    return {};
}

bool startsNoCase(std::string_view word, std::string_view start)
{
    return equalNoCase(word.substr(0, start.size()), start);
}

bool beginsStar(std::string_view text)
{
    const std::string_view word = firstWord(firstLine(text));
    return std::ranges::any_of(std::array{"data_", "save_", "loop_"},
                               [word](std::string_view start) { return startsNoCase(word, start); });
}

bool isRestraint(std::string_view line)
{
    const std::string_view word = firstWord(line).substr(0, firstWord(line).find('('));
    return word.size() >= 4 && word.size() <= 6 && startsNoCase("assign", word);
}

bool hasRestraint(std::string_view text)
{
    while (!text.empty())
        if (isRestraint(cutLine(text)))
            return true;
    return false;
}

bool isName(std::string_view word)
{
    return !word.empty() && std::isalpha(static_cast<unsigned char>(word[0])) != 0;
}

/// Whether the words are what a pattern tells, a letter each: i integer, r number, n name.
bool match(const Words &words, std::string_view pattern)
{
    if (words.size() < pattern.size())
        return false;
    for (std::size_t k = 0; k < pattern.size(); ++k)
        if (pattern[k] == 'n' ? !isName(words[k])
                              : !isOneNumber(words[k]) || (pattern[k] == 'i' && !isInteger(words[k])))
            return false;
    return true;
}

/// "14N-H -14.5 0.1" or "A.16H-A.15C 0.5".
bool isLabel(const Words &words)
{
    constexpr std::string_view numberStarts = "+-.0123456789"; // the rest of a number may be mistaken
    if (words.size() < 2 || numberStarts.find(words[1][0]) == std::string_view::npos)
        return false;
    const std::string_view label = words[0];
    const std::size_t dash = label.find('-', 1);
    const auto hasDigit = [](std::string_view part) {
        return std::ranges::any_of(part, [](unsigned char c) { return std::isdigit(c) != 0; });
    };
    return dash != std::string_view::npos && hasDigit(label.substr(0, dash)) && !isOneNumber(label);
}

/// A header line: names alone, of which one is that of a value.
bool isHeader(std::string_view line)
{
    constexpr std::string_view marks = ",;\t";
    return std::ranges::any_of(line, [&](char c) { return marks.find(c) != std::string_view::npos; }) &&
           isName(firstWord(line).substr(line.starts_with('"') ? 1 : 0));
}

} // namespace

CouplingForm detectForm(std::string_view text)
{
    const bool isStar = beginsStar(text) && hasLine(text, "loop_");
    if (isStar)
        return text.find("_nef_") != std::string_view::npos ? CouplingForm::nef : CouplingForm::star;
    if (hasLine(text, "VARS"))
        return CouplingForm::table;
    if (beginsStar(text)) // one that was cut
        return CouplingForm::star;
    const std::string_view line = firstLine(text);
    Words words;
    splitTokens(line, words);
    if (match(words, "inninnr") || match(words, "innr") || match(words, "irri") || match(words, "irrn"))
        return CouplingForm::cyana;
    if (match(words, "ininr") || line.starts_with('(') || (!words.empty() && words[0].starts_with('(')))
        return CouplingForm::rosetta;
    if (hasRestraint(text))
        return CouplingForm::xplor;
    return isLabel(words) || isHeader(line) ? CouplingForm::csv : CouplingForm::table;
}

std::optional<CouplingForm> formOfWord(std::string_view word)
{
    for (const auto &[form, name] : formWords)
        if (word == name)
            return form;
    return std::nullopt;
}

const char *wordOfForm(CouplingForm form)
{
    return std::ranges::find(formWords, form, &std::pair<CouplingForm, const char *>::first)->second;
}

} // namespace trelm
