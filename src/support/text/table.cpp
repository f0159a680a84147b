#include "support/text/table.h"

#include "support/text/text.h"
#include "support/text/text_input.h"
#include "support/text/token.h"

#include <algorithm>
#include <optional>
#include <ranges>
#include <span>
#include <unordered_map>

namespace trelm {
namespace {

constexpr int typeText = 1;
constexpr int typeInteger = 2;
constexpr int typeReal = 3;

/// A cell is a float: beyond this place two texts would share a cell.
constexpr int maxEquivCount = 1 << 24;

/// What the first pass collects. The texts are views into the file.
struct Declarations {
    std::optional<std::string_view> vars, format, tolerance; ///< whole lines
    std::optional<std::string_view> nullString;
    std::optional<int> nullValue;
    int rowCount = 0;
};

using TextPlaces = std::unordered_map<std::string_view, int>;

/// What the second pass needs for each row.
struct RowReader {
    TextTable &table;
    const Declarations &declared;
    float defNullValue = 0.0f;
    std::vector<TextPlaces> places; ///< for each column, its texts so far; they are views into the file
    std::vector<std::string_view> words;
    std::string_view line;
};

bool isComment(std::string_view word)
{
    return word.starts_with('#') || equalNoCase(word, "REMARK");
}

bool isRowWord(std::string_view word)
{
    constexpr std::string_view keywords[] = {"DATA",       "VARS",      "FORMAT", "TOLERANCE",
                                             "NULLSTRING", "NULLVALUE", "END"};
    return !word.empty() && !isComment(word) &&
           std::ranges::none_of(keywords, [word](std::string_view key) { return equalNoCase(word, key); });
}

void collectNullValue(std::string_view line, Declarations &declared)
{
    int value = 0;
    if (wordToInt(getToken(2, line), value))
        declared.nullValue = value;
    else
        complain("RdTable Warning: Bad NULLVALUE:\n%s\n", std::string(line).c_str());
}

void collectLine(std::string_view line, Declarations &declared)
{
    const std::string_view word = firstWord(line);
    if (isRowWord(word))
        ++declared.rowCount;
    else if (word == "VARS")
        declared.vars = declared.vars.value_or(line);
    else if (word == "FORMAT")
        declared.format = declared.format.value_or(line);
    else if (word == "TOLERANCE")
        declared.tolerance = declared.tolerance.value_or(line);
    else if (word == "NULLSTRING")
        declared.nullString = getToken(2, line);
    else if (word == "NULLVALUE")
        collectNullValue(line, declared);
}

/// The words of a declaring line behind its keyword.
std::vector<std::string_view> declaredWords(const std::optional<std::string_view> &line)
{
    std::vector<std::string_view> words;
    if (line) {
        splitTokens(*line, words);
        words.erase(words.begin());
    }
    return words;
}

/// The type that the last character of a format tells; 0 if it tells none.
int typeOf(std::string_view format)
{
    switch (format.empty() ? ' ' : format.back()) {
    case 's':
        return typeText;
    case 'd':
        return typeInteger;
    case 'e':
    case 'f':
    case 'g':
        return typeReal;
    default:
        return 0;
    }
}

int checkCount(const char *keyword, std::size_t varCount, std::size_t count, std::string_view varsLine,
               const std::optional<std::string_view> &line)
{
    if (count == 0 || count == varCount)
        return 0;
    return complain("RdTable Error: VARS/%s mismatch:\n%s\n%s\n", keyword, std::string(varsLine).c_str(),
                    std::string(*line).c_str());
}

/// Makes the columns from the declarations.
int buildColumns(const std::string &inName, const Declarations &declared, TextTable &table)
{
    const auto names = declaredWords(declared.vars);
    const auto formats = declaredWords(declared.format);
    const auto tolerances = declaredWords(declared.tolerance);
    if (names.empty())
        return complain("RdTable Error: no variables found.\n");
    if (checkCount("FORMAT", names.size(), formats.size(), *declared.vars, declared.format) != 0 ||
        checkCount("TOLERANCE", names.size(), tolerances.size(), *declared.vars, declared.tolerance) != 0)
        return 1;
    if (formats.empty())
        complain("RdTable Warning: %s has no FORMAT line: all its columns are read as numbers.\n",
                 inName.c_str());
    table.varInfo.resize(names.size());
    table.varCount = static_cast<int>(names.size());
    for (std::size_t i = 0; i < names.size(); ++i) {
        tabVar &column = table.varInfo[i];
        column.name = names[i];
        column.fmt = formats.empty() ? std::string_view("%f") : formats[i];
        std::ranges::replace(column.fmt, '_', ' ');
        column.type = typeOf(column.fmt);
        if (column.type == 0)
            return complain("RdTable Error: bad format %s\n", std::string(*declared.format).c_str());
    }
    return 0;
}

int allocateMatrix(TextTable &table, std::size_t textBytes)
{
    // A text has room for half as many words as bytes. A table with more cells is mostly missing words: some
    // are forgiven, but a small file must not ask for all memory with them.
    constexpr std::size_t forgiven = std::size_t{1} << 24;
    const std::size_t rows = static_cast<std::size_t>(table.entryCount);
    const std::size_t columns = static_cast<std::size_t>(table.varCount);
    if (columns <= (textBytes / 2 + forgiven) / rows)
        table.matrix = Block<float>("table", rows * columns);
    if (!table.matrix)
        return complain("RdTable error allocating data matrix.\n");
    return 0;
}

void warnBadItem(const RowReader &reader, char kind, std::size_t column)
{
    complain("RdTable Warning: Bad %c-Item %zu:\n%s\n", kind, column + 1, std::string(reader.line).c_str());
}

/// The cell of a text: its place among the distinct texts of the column.
int readTextCell(RowReader &reader, std::size_t column, std::string_view word, float &cell)
{
    if (reader.declared.nullString && word == *reader.declared.nullString) {
        cell = nullTextCell;
        return 0;
    }
    tabVar &info = reader.table.varInfo[column];
    const auto next = static_cast<int>(info.equivList.size());
    const auto [place, isNew] = reader.places[column].try_emplace(word, next);
    if (isNew) {
        if (next >= maxEquivCount)
            return complain("RdTable Error mapping text.\n");
        info.equivList.emplace_back(word);
    }
    cell = static_cast<float>(place->second);
    return 0;
}

int readCell(RowReader &reader, std::size_t column, float &cell)
{
    const bool missing = column >= reader.words.size();
    const std::string_view word = missing ? std::string_view() : reader.words[column];
    const int type = reader.table.varInfo[column].type;
    if (type == typeText) {
        if (missing)
            warnBadItem(reader, 'T', column);
        return readTextCell(reader, column, word, cell);
    }
    if (type == typeInteger) {
        int value = 0;
        if (!wordToInt(word, value))
            warnBadItem(reader, 'I', column);
        cell = static_cast<float>(value);
    } else if (!wordToFloat(word, cell)) {
        warnBadItem(reader, 'F', column);
    }
    if (reader.declared.nullValue && cell == static_cast<float>(*reader.declared.nullValue))
        cell = reader.defNullValue;
    return 0;
}

int readRow(RowReader &reader, std::span<float> cells)
{
    splitTokens(reader.line, reader.words);
    for (std::size_t column = 0; column < cells.size(); ++column)
        if (readCell(reader, column, cells[column]) != 0)
            return 1;
    return 0;
}

/// The second pass: rows into the matrix, header lines to the header.
int readLines(TextInput &input, RowReader &reader, bool header, bool rows)
{
    TextTable &table = reader.table;
    const auto columns = static_cast<std::size_t>(table.varCount);
    std::size_t row = 0;
    rewindText(input);
    while (fgetsAlloc(input, reader.line)) {
        const std::string_view word = firstWord(reader.line);
        if (isRowWord(word)) {
            if (rows && readRow(reader, table.matrix.span().subspan(row++ * columns, columns)) != 0)
                return 1;
        } else if (header && (isComment(word) || equalNoCase(word, "DATA"))) {
            table.header.emplace_back(reader.line);
        }
    }
    return 0;
}

/// Opens and reads the whole file. An empty name names no file here: tables do not come from standard input.
int openTable(const std::string &inName, TextInput &input)
{
    const TextStatus status = inName.empty() ? TextStatus::noFile : readText(input, inName);
    if (status == TextStatus::noFile)
        return complain("RdTable File open error: %s.\n", inName.c_str());
    return status == TextStatus::read ? 0 : 1;
}

} // namespace

int rdTable(const std::string &inName, TextTable &table, int defNullValue)
{
    return rdTable2(inName, table, false, defNullValue, 0, 1);
}

int rdTable2(const std::string &inName, TextTable &table, bool header, int defNullValue, int emptyOk,
             int readFlag)
{
    table = TextTable{};
    TextInput input;
    if (openTable(inName, input) != 0)
        return 1;
    Declarations declared;
    for (std::string_view line; fgetsAlloc(input, line);)
        collectLine(line, declared);
    if (declared.rowCount == 0)
        return emptyOk != 0 ? 0 : complain("RdTable Error: no entries in %s\n", inName.c_str());
    table.entryCount = declared.rowCount;
    const bool rows = readFlag == 1;
    if (buildColumns(inName, declared, table) != 0 || (rows && allocateMatrix(table, input.text.size()) != 0))
        return 1;
    RowReader reader{table, declared, static_cast<float>(defNullValue), {}, {}, {}};
    reader.places.resize(table.varInfo.size());
    return readLines(input, reader, header, rows);
}

int getTabVar(const std::vector<tabVar> &varInfo, std::string_view varName)
{
    for (std::size_t i = varInfo.size(); i-- > 0;)
        if (equalNoCase(varInfo[i].name, varName))
            return static_cast<int>(i);
    return -1;
}

std::string_view tabText(const tabVar &column, float cell)
{
    if (!(cell >= 0.0f && cell < static_cast<float>(column.equivList.size())))
        return {};
    return column.equivList[static_cast<std::size_t>(cell)];
}

} // namespace trelm
