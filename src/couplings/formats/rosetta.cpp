// Rosetta: a list of two parentheses, value and error, or five columns without parentheses.
#include "couplings/formats/forms.h"
#include "couplings/formats/row_lines.h"
#include "couplings/formats/written_rows.h"
#include "support/text/text.h"
#include "support/text/token.h"

#include <algorithm>
#include <vector>

namespace trelm {
namespace {

struct RosettaFile {
    RowLines lines;
    Archive &archive;
    std::vector<std::string_view> words = {}; ///< of the line at hand, parentheses apart
    std::size_t place = 0;                    ///< of the next one

    [[nodiscard]] std::string_view word() const { return place < words.size() ? words[place] : ""; }
};

Status failAtLine(const RosettaFile &at, const char *why)
{
    return failAt(at.lines.file, at.lines.number, at.lines.messages, "%s", why);
}

/// The words of a line. Parentheses are words of their own, blanks beside them or not.
void splitList(std::string_view line, std::vector<std::string_view> &words)
{
    const auto isParenthesis = [](char c) { return c == '(' || c == ')'; };
    words.clear();
    for (std::size_t place = 0; place < line.size();) {
        const std::size_t start = place++;
        if (isSpace(line[start]))
            continue;
        if (!isParenthesis(line[start]))
            while (place < line.size() && !isSpace(line[place]) && !isParenthesis(line[place]))
                ++place;
        words.push_back(line.substr(start, place - start));
    }
}

/// One atom of a side: residue, name, chain.
bool readListAtom(RosettaFile &at, NamedAtom &atom)
{
    constexpr std::size_t count = 3;
    if (at.place + count > at.words.size())
        return false;
    const auto words = std::span(at.words).subspan(at.place, count);
    at.place += count;
    return readResidue(words[0], atom) && readName(words[1], atom.atomName) &&
           words[2].find_first_of("()") == std::string_view::npos && readName(words[2], atom.chain);
}

/// A side in its parentheses. Of several atoms the first stands for all; `count` is their number.
bool readSide(RosettaFile &at, NamedAtom &atom, int &count)
{
    if (at.word() != "(")
        return false;
    ++at.place;
    count = 1;
    bool isRead = readListAtom(at, atom);
    for (NamedAtom other; isRead && equalNoCase(at.word(), "or"); ++count) {
        ++at.place;
        isRead = readListAtom(at, other);
    }
    return isRead && at.word() == ")" && ++at.place != 0;
}

Status readListRow(RosettaFile &at, ArchiveRow &row)
{
    int first = 0, second = 0;
    splitList(at.lines.line, at.words);
    at.place = 0;
    if (!readSide(at, row.i, first) || !readSide(at, row.j, second))
        return failAtLine(at, "a row has two parentheses of residue, atom and chain");
    if (first != second)
        return failAtLine(at, "the two sides have not equally many atoms");
    if (at.words.size() != at.place + 2)
        return failAtLine(at, "value and error stand behind the parentheses");
    row.alternatives = first;
    return readNumbers(at.lines.file, row.line, std::span(at.words).subspan(at.place), row,
                       at.lines.messages);
}

/// Residue, atom, residue, atom, value.
Status readFiveColumns(RosettaFile &at, ArchiveRow &row)
{
    constexpr std::size_t count = 5;
    splitTokens(at.lines.line, at.words, count + 1);
    if (at.words.size() != count || !readResidue(at.words[0], row.i) || !readResidue(at.words[2], row.j) ||
        !readName(at.words[1], row.i.atomName) || !readName(at.words[3], row.j.atomName))
        return failAtLine(at, "a row has five columns: residue, atom, residue, atom, value");
    return readNumbers(at.lines.file, row.line, std::span(at.words).subspan(count - 1), row,
                       at.lines.messages);
}

/// Groups of hydrogens have a star. A chain has to be named: the first is A.
void appendListAtom(std::string &text, const NamedAtom &atom)
{
    std::string name(atom.atomName.view());
    std::ranges::replace(name, '#', '*');
    text += "( ";
    appendRight(text, residueText(atom), 4);
    text.append(" ").append(name).append(" ").append(nameOr(atom.chain, "A")).append(" )");
}

} // namespace

Status readRosetta(const ArchiveText &file, Archive &archive, Messages &messages)
{
    RosettaFile at = {{file, "#", messages}, archive};
    while (nextLine(at.lines)) {
        ArchiveRow row = {.medium = mediumOf(archive, ""), .line = at.lines.number};
        const bool isList = firstWord(at.lines.line).starts_with('(');
        if ((isList ? readListRow(at, row) : readFiveColumns(at, row)) != Status::ok)
            return Status::failed;
        addRow(archive, row);
    }
    return at.lines.status;
}

void writeRosettaList(const TableOut &table, std::string &text)
{
    for (const ArchiveRow &row : writtenRows(table)) {
        appendListAtom(text, row.i);
        text += ' ';
        appendListAtom(text, row.j);
        text += ' ';
        appendExact(text, row.value, 9, 3);
        text += ' ';
        appendExact(text, row.error.value_or(1.0), 7, 3);
        text += '\n';
    }
}

} // namespace trelm
