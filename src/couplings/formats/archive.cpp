#include "couplings/formats/archive.h"

#include "support/text/text.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdarg>
#include <cstdio>

namespace trelm {
namespace {

void appendWord(std::string &text, std::string_view word)
{
    if (!word.empty())
        text.append(text.empty() || text.back() == ' ' ? "" : " ").append(word);
}

void appendAtom(std::string &text, const NamedAtom &atom)
{
    appendWord(text, atom.chain.view());
    appendWord(text, std::to_string(atom.resID).append(atom.code()));
    appendWord(text, atom.resName.view());
    appendWord(text, atom.atomName.view());
}

} // namespace

std::size_t mediumOf(Archive &archive, std::string_view name)
{
    const auto known = std::ranges::find(archive.media, name, &Medium::name);
    const auto place = static_cast<std::size_t>(known - archive.media.begin());
    if (known == archive.media.end())
        archive.media.push_back({.name = std::string(name)});
    return place;
}

void addRow(Archive &archive, const ArchiveRow &row)
{
    archive.rows.push_back(row);
    ++archive.media[row.medium].rows;
}

void addForeign(Archive &archive, std::string_view kind, std::size_t line)
{
    auto known = std::ranges::find(archive.foreign, kind, &ForeignData::kind);
    if (known == archive.foreign.end())
        known = archive.foreign.insert(known, {.kind = std::string(kind), .firstLine = line});
    ++known->count;
}

std::string pairText(const NamedAtom &i, const NamedAtom &j)
{
    std::string text;
    appendAtom(text, i);
    text += " - ";
    appendAtom(text, j);
    return text;
}

std::string placeText(const TableOrigin &origin, std::size_t row)
{
    const ArchiveRow &from = origin.rows[row];
    std::string text;
    appendf(text, "%s, line %zu: %s", origin.file.c_str(), from.line,
            (from.isTurned ? pairText(from.j, from.i) : pairText(from.i, from.j)).c_str());
    return text;
}

bool readNumber(std::string_view word, double &value)
{
    if (word.starts_with('+'))
        word.remove_prefix(word.starts_with("+-") ? 0 : 1);
    const auto [end, status] = std::from_chars(word.data(), word.data() + word.size(), value);
    return status == std::errc{} && end == word.data() + word.size() && std::isfinite(value);
}

bool readResidue(std::string_view word, NamedAtom &atom)
{
    const char *last = word.data() + word.size();
    const auto [end, status] = std::from_chars(word.data(), last, atom.resID);
    if (status != std::errc{} || last - end > 1 ||
        (end != last && std::isalpha(static_cast<unsigned char>(*end)) == 0))
        return false;
    atom.icode = end == last ? '\0' : *end;
    return true;
}

bool readName(std::string_view word, Name &name)
{
    name = Name::of(word);
    return word.size() <= Name::capacity;
}

Status failAt(const ArchiveText &file, std::size_t line, Messages &messages, const char *format, ...)
{
    constexpr std::size_t longest = 512; // words of the file may be of any length
    char why[longest];
    std::va_list args;
    va_start(args, format);
    std::vsnprintf(why, sizeof why, format, args);
    va_end(args);
    return messages.fail("trelm: %s, line %zu: %s.\n", file.name.c_str(), line, why);
}

} // namespace trelm
