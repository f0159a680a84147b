// Columns: separated values under a header line, and labels with a value ("14N-H -14.5 0.1").
#include "couplings/formats/forms.h"
#include "couplings/formats/row_lines.h"
#include "couplings/formats/written_rows.h"
#include "support/text/text.h"
#include "support/text/token.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <vector>

namespace trelm {
namespace {

// ---- labels ----

/// "14N", "A.16H", "H": chain and residue may be missing.
bool readLabelAtom(std::string_view label, NamedAtom &atom, bool &hasResidue)
{
    if (const std::size_t dot = label.find('.'); dot != std::string_view::npos) {
        if (!readName(label.substr(0, dot), atom.chain))
            return false;
        label.remove_prefix(dot + 1);
    }
    const auto [end, status] = std::from_chars(label.data(), label.data() + label.size(), atom.resID);
    hasResidue = status == std::errc{};
    label.remove_prefix(static_cast<std::size_t>(end - label.data()));
    return status != std::errc::result_out_of_range && !label.empty() && readName(label, atom.atomName);
}

/// The dash between two atoms; that of a negative residue number stands at the start or behind a dot.
std::size_t dashOf(std::string_view label)
{
    std::size_t dash = label.find('-', 1);
    while (dash != std::string_view::npos && label[dash - 1] == '.')
        dash = label.find('-', dash + 1);
    return dash;
}

/// The second atom is of the residue and the chain of the first where the label does not say.
bool readLabel(std::string_view label, ArchiveRow &row)
{
    const std::size_t dash = dashOf(label);
    bool hasResidue = false, hasSecond = false;
    if (dash == std::string_view::npos || !readLabelAtom(label.substr(0, dash), row.i, hasResidue) ||
        !hasResidue || !readLabelAtom(label.substr(dash + 1), row.j, hasSecond))
        return false;
    if (!hasSecond)
        row.j.resID = row.i.resID;
    if (row.j.chain.empty())
        row.j.chain = row.i.chain;
    return true;
}

/// "14N": another kind of value in the same list, such as a shift anisotropy.
bool isOneAtom(std::string_view label)
{
    NamedAtom atom;
    bool hasResidue = false;
    return dashOf(label) == std::string_view::npos && readLabelAtom(label, atom, hasResidue) && hasResidue;
}

Status readLabelLine(const RowLines &lines, std::span<const std::string_view> words, Archive &archive)
{
    constexpr std::size_t most = 3;
    ArchiveRow row = {.medium = mediumOf(archive, ""), .line = lines.number};
    const bool isForeign = isOneAtom(words[0]);
    if (!isForeign && !readLabel(words[0], row))
        return failAt(lines.file, row.line, lines.messages, "%s is no label like 14N-H",
                      shownWord(words[0]).c_str());
    if (words.size() < 2 || words.size() > most)
        return failAt(lines.file, row.line, lines.messages,
                      "a label stands before a value and perhaps an error");
    if (readNumbers(lines.file, row.line, words.subspan(1), row, lines.messages) != Status::ok)
        return Status::failed;
    if (isForeign)
        addForeign(archive, "a value of one atom", row.line);
    else
        addRow(archive, row);
    return Status::ok;
}

Status readLabels(RowLines &lines, Archive &archive)
{
    std::vector<std::string_view> words;
    do { // the first line is at hand
        splitTokens(lines.line, words);
        if (readLabelLine(lines, words, archive) != Status::ok)
            return Status::failed;
    } while (nextLine(lines));
    return lines.status;
}

// ---- a header and its columns ----

enum Field { valueField, errorField, weightField, mediumField, wholeCount };
enum AtomField { chainField, residueField, resNameField, atomField, atomFieldCount };

struct HeaderName {
    std::string_view name; ///< small letters and digits alone; of an atom's column without its 1 or 2
    int field;
};

constexpr HeaderName wholeNames[] = {
    {"value", valueField},        {"val", valueField},
    {"rdc", valueField},          {"d", valueField},
    {"dobs", valueField},         {"obs", valueField},
    {"coupling", valueField},     {"measured", valueField},
    {"error", errorField},        {"err", errorField},
    {"dd", errorField},           {"sigma", errorField},
    {"sd", errorField},           {"uncertainty", errorField},
    {"rdcerror", errorField},     {"weight", weightField},
    {"medium", mediumField},      {"alignment", mediumField},
    {"orientation", mediumField}, {"dataset", mediumField},
};

constexpr HeaderName atomNames[] = {
    {"chain", chainField},     {"chainid", chainField},   {"chaincode", chainField},
    {"segid", chainField},     {"segment", chainField},   {"residue", residueField},
    {"resid", residueField},   {"res", residueField},     {"resnum", residueField},
    {"resno", residueField},   {"seq", residueField},     {"seqid", residueField},
    {"seqcode", residueField}, {"resname", resNameField}, {"residuename", resNameField},
    {"comp", resNameField},    {"compid", resNameField},  {"atom", atomField},
    {"atomname", atomField},   {"atomid", atomField},     {"name", atomField},
};

constexpr std::size_t noColumn = SIZE_MAX;

struct CsvColumns {
    std::array<std::size_t, wholeCount> whole = {noColumn, noColumn, noColumn, noColumn};
    std::array<std::array<std::size_t, atomFieldCount>, 2> atoms = {
        {{noColumn, noColumn, noColumn, noColumn}, {noColumn, noColumn, noColumn, noColumn}}};
    std::size_t count = 0;
    char separator = ',';
};

struct CsvFile {
    RowLines lines;
    Archive &archive;
    CsvColumns columns = {};
    std::vector<std::string_view> cells = {};
    std::vector<std::string> unquoted = {}; ///< cells with a quote in them, which no view can show

    [[nodiscard]] std::string_view cell(std::size_t column) const
    {
        return column == noColumn ? std::string_view{} : cells[column];
    }
};

/// The cell that begins with a quote, which is cut off the line. Two quotes in it are one.
bool cutQuoted(CsvFile &at, std::string_view &line)
{
    std::string text;
    for (std::size_t start = 1;;) {
        const std::size_t end = line.find('"', start);
        if (end == std::string_view::npos)
            return false;
        text.append(line.substr(start, end - start));
        if (end + 1 == line.size() || line[end + 1] != '"') {
            line.remove_prefix(end + 1);
            break;
        }
        text += '"';
        start = end + 2;
    }
    at.unquoted.push_back(std::move(text));
    at.cells.push_back(at.unquoted.back());
    return true;
}

std::string_view trimmedCell(std::string_view cell)
{
    while (!cell.empty() && isSpace(cell.front()))
        cell.remove_prefix(1);
    while (!cell.empty() && isSpace(cell.back()))
        cell.remove_suffix(1);
    return cell;
}

/// Fills the cells from the line at hand. Fails after a message on a quote that does not end.
Status splitCells(CsvFile &at)
{
    at.cells.clear();
    if (at.columns.separator == ' ') {
        splitTokens(at.lines.line, at.cells);
        return Status::ok;
    }
    std::string_view line = at.lines.line;
    at.unquoted.clear();
    at.unquoted.reserve(static_cast<std::size_t>(std::ranges::count(line, at.columns.separator)) + 1);
    for (bool hasMore = true; hasMore;) {
        while (!line.empty() && line.front() != at.columns.separator && isSpace(line.front()))
            line.remove_prefix(1);
        const bool isQuoted = line.starts_with('"');
        if (isQuoted && !cutQuoted(at, line))
            return failAt(at.lines.file, at.lines.number, at.lines.messages,
                          "a quote that does not end on its line");
        const std::size_t end = std::min(line.find(at.columns.separator), line.size());
        const std::string_view cell = trimmedCell(line.substr(0, end));
        if (isQuoted && !cell.empty())
            return failAt(at.lines.file, at.lines.number, at.lines.messages, "a quote ends within a cell");
        if (!isQuoted)
            at.cells.push_back(cell);
        hasMore = end != line.size();
        line.remove_prefix(end + (hasMore ? 1 : 0));
    }
    return Status::ok;
}

char separatorOf(std::string_view header)
{
    for (const char separator : {';', '\t', ','})
        if (header.find(separator) != std::string_view::npos)
            return separator;
    return ' ';
}

/// A header's name without what people write differently: capitals, blanks, signs, the unit.
std::string plainHeader(std::string_view cell)
{
    std::string plain;
    for (const char c : cell)
        if (c >= 'A' && c <= 'Z')
            plain += static_cast<char>(c - 'A' + 'a');
        else if ((c >= 'a' && c <= 'z') || (c >= '0' && c <= '9'))
            plain += c;
    if (plain.size() > 2 && plain.ends_with("hz"))
        plain.resize(plain.size() - 2);
    return plain;
}

int fieldOf(std::span<const HeaderName> names, std::string_view name)
{
    const auto known = std::ranges::find(names, name, &HeaderName::name);
    return known == names.end() ? -1 : known->field;
}

/// The places that a column fills: one, that of both atoms if its name has no number, or none if it is
/// unknown.
std::vector<std::size_t *> placesOf(CsvColumns &columns, std::string_view name)
{
    if (const int field = fieldOf(wholeNames, name); field >= 0)
        return {&columns.whole[static_cast<std::size_t>(field)]};
    for (const std::size_t atom : {std::size_t{0}, std::size_t{1}}) {
        constexpr std::string_view numbers[] = {"1ia", "2jb"};
        if (name.empty() || numbers[atom].find(name.back()) == std::string_view::npos)
            continue;
        if (const int field = fieldOf(atomNames, name.substr(0, name.size() - 1)); field >= 0)
            return {&columns.atoms[atom][static_cast<std::size_t>(field)]};
    }
    const int field = fieldOf(atomNames, name);
    if (field < 0 || field == atomField) // both atoms have no one name
        return {};
    return {&columns.atoms[0][static_cast<std::size_t>(field)],
            &columns.atoms[1][static_cast<std::size_t>(field)]};
}

Status readHeader(CsvFile &at)
{
    at.columns.separator = separatorOf(at.lines.line);
    if (splitCells(at) != Status::ok)
        return Status::failed;
    at.columns.count = at.cells.size();
    for (std::size_t column = 0; column < at.cells.size(); ++column) {
        const auto places = placesOf(at.columns, plainHeader(at.cells[column]));
        if (places.empty())
            addForeign(at.archive, "the column " + shownWord(at.cells[column]), at.lines.number);
        for (std::size_t *place : places) {
            if (*place != noColumn)
                return failAt(at.lines.file, at.lines.number, at.lines.messages,
                              "the column %s is there twice", shownWord(at.cells[column]).c_str());
            *place = column;
        }
    }
    const auto &atoms = at.columns.atoms;
    if (at.columns.whole[valueField] == noColumn)
        return failAt(at.lines.file, at.lines.number, at.lines.messages, "no column of values in the header");
    for (const AtomField field : {residueField, atomField})
        if (atoms[0][field] == noColumn || atoms[1][field] == noColumn)
            return failAt(at.lines.file, at.lines.number, at.lines.messages,
                          "no columns of the two %s in the header",
                          field == atomField ? "atoms" : "residues");
    return Status::ok;
}

bool isMissingCell(std::string_view cell)
{
    return cell.empty() || cell == "." || cell == "?" || equalNoCase(cell, "NA");
}

bool readCsvAtom(const CsvFile &at, std::size_t number, NamedAtom &atom)
{
    const auto &columns = at.columns.atoms[number];
    const auto optional = [&](AtomField field) {
        const std::string_view cell = at.cell(columns[field]);
        return isMissingCell(cell) ? std::string_view{} : cell;
    };
    return readResidue(at.cell(columns[residueField]), atom) && !optional(atomField).empty() &&
           readName(optional(atomField), atom.atomName) && readName(optional(resNameField), atom.resName) &&
           readName(optional(chainField), atom.chain);
}

Status readCsvRow(CsvFile &at)
{
    const RowLines &lines = at.lines;
    if (splitCells(at) != Status::ok)
        return Status::failed;
    if (std::ranges::all_of(at.cells, &std::string_view::empty)) // spreadsheets end with such rows
        return Status::ok;
    if (at.cells.size() != at.columns.count)
        return failAt(lines.file, lines.number, lines.messages, "a row of %zu cells under a header of %zu",
                      at.cells.size(), at.columns.count);
    const auto &whole = at.columns.whole;
    ArchiveRow row = {.medium = mediumOf(at.archive, at.cell(whole[mediumField])), .line = lines.number};
    if (!readCsvAtom(at, 0, row.i) || !readCsvAtom(at, 1, row.j))
        return failAt(lines.file, row.line, lines.messages, "the row names no two atoms");
    if (isMissingCell(at.cell(whole[valueField]))) {
        at.archive.leftOut.push_back({row.line, pairText(row.i, row.j), "no value"});
        return Status::ok;
    }
    const auto orElse = [&](Field field, std::string_view other) {
        return isMissingCell(at.cell(whole[field])) ? other : at.cell(whole[field]);
    };
    const std::string_view words[] = {at.cell(whole[valueField]), orElse(errorField, "0"),
                                      orElse(weightField, "1")};
    if (readNumbers(lines.file, row.line, words, row, lines.messages) != Status::ok)
        return Status::failed;
    addRow(at.archive, row);
    return Status::ok;
}

// ---- the way out ----

/// A cell, in quotes where a separator or a quote stands in it.
void appendCell(std::string &text, std::string_view cell)
{
    const bool isPlain =
        std::ranges::none_of(cell, [](char c) { return c == ',' || c == '"' || isSpace(c); });
    text += isPlain ? "" : "\"";
    for (const char c : cell)
        text.append(c == '"' ? 2 : 1, c);
    text += isPlain ? "," : "\",";
}

void appendCsvAtom(std::string &text, const NamedAtom &atom)
{
    appendCell(text, atom.chain.view());
    appendCell(text, residueText(atom));
    appendCell(text, atom.resName.view());
    appendCell(text, atom.atomName.view());
}

} // namespace

Status readColumns(const ArchiveText &file, Archive &archive, Messages &messages)
{
    CsvFile at = {{file, "#", messages}, archive};
    if (!nextLine(at.lines))
        return at.lines.status;
    ArchiveRow row;
    const std::string_view first = firstWord(at.lines.line);
    if (readLabel(first, row) || isOneAtom(first))
        return readLabels(at.lines, archive);
    if (readHeader(at) != Status::ok)
        return Status::failed;
    while (nextLine(at.lines))
        if (readCsvRow(at) != Status::ok)
            return Status::failed;
    return at.lines.status;
}

void writeCsv(const TableOut &table, std::string &text)
{
    text += "chain1,resid1,resname1,atom1,chain2,resid2,resname2,atom2,value,error\n";
    for (const ArchiveRow &row : writtenRows(table)) {
        appendCsvAtom(text, row.i);
        appendCsvAtom(text, row.j);
        appendExact(text, row.value, 0, 3);
        text += ',';
        if (row.error)
            appendExact(text, *row.error, 0, 3);
        text += '\n';
    }
}

} // namespace trelm
