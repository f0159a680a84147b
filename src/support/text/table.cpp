#include "support/text/table.h"

#include "support/text/text.h"
#include "support/text/text_input.h"
#include "support/text/token.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <ranges>
#include <span>
#include <unordered_map>

namespace trelm {
namespace {

/// A cell is a float: beyond this place two texts would share a cell.
constexpr std::size_t maxEquivCount = std::size_t{1} << 24;

/// What the first pass collects. The texts are views into the file.
struct Declarations {
    std::optional<std::string_view> vars, format, tolerance; ///< whole lines
    std::optional<std::string_view> nullString;
    std::optional<int> nullValue;
    std::size_t rowCount = 0;
};

using TextPlaces = std::unordered_map<std::string_view, std::size_t>;

/// What the second pass needs for each row.
struct RowReader {
    TextTable &table;
    const Declarations &declared;
    float defNullValue;
    Messages &messages;
    std::vector<TextPlaces> places = {}; ///< for each column, its texts so far; they are views into the file
    std::vector<std::string_view> words = {};
    std::string_view line = {};
    std::size_t row = 0; ///< counted from 1
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

void collectNullValue(std::string_view line, Declarations &declared, Messages &messages)
{
    int value = 0;
    if (wordToInt(getToken(2, line), value))
        declared.nullValue = value;
    else
        messages.err("RdTable Warning: Bad NULLVALUE:\n%s\n", std::string(line).c_str());
}

void collectLine(std::string_view line, Declarations &declared, Messages &messages)
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
        collectNullValue(line, declared, messages);
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

/// The type that the last character of a format tells, if it tells one.
std::optional<CellType> typeOf(std::string_view format)
{
    switch (format.empty() ? ' ' : format.back()) {
    case 's':
        return CellType::text;
    case 'd':
        return CellType::integer;
    case 'e':
    case 'f':
    case 'g':
        return CellType::real;
    default:
        return std::nullopt;
    }
}

/// Fails after a message if a line declares something for more or fewer columns than VARS names.
Status checkCount(const char *keyword, const std::optional<std::string_view> &line, std::size_t count,
                  const Declarations &declared, Messages &messages)
{
    if (count == 0 || count == declaredWords(declared.vars).size())
        return Status::ok;
    return messages.fail("RdTable Error: VARS/%s mismatch:\n%s\n%s\n", keyword,
                         std::string(*declared.vars).c_str(), std::string(*line).c_str());
}

/// Makes the columns from the declarations.
Status buildColumns(const std::string &inName, const Declarations &declared, TextTable &table,
                    Messages &messages)
{
    const auto names = declaredWords(declared.vars);
    const auto formats = declaredWords(declared.format);
    const std::size_t tolerances = declaredWords(declared.tolerance).size();
    if (names.empty())
        return messages.fail("RdTable Error: no variables found.\n");
    if (checkCount("FORMAT", declared.format, formats.size(), declared, messages) != Status::ok ||
        checkCount("TOLERANCE", declared.tolerance, tolerances, declared, messages) != Status::ok)
        return Status::failed;
    if (formats.empty())
        messages.warn("RdTable Warning: %s has no FORMAT line: all its columns are read as numbers.\n",
                      inName.c_str());
    for (std::size_t i = 0; i < names.size(); ++i) {
        const auto type = formats.empty() ? std::optional(CellType::real) : typeOf(formats[i]);
        if (!type)
            return messages.fail("RdTable Error: bad format %s\n", std::string(*declared.format).c_str());
        table.varInfo.push_back({*type, std::string(names[i])});
    }
    return Status::ok;
}

Status allocateMatrix(TextTable &table, std::size_t textBytes, Messages &messages)
{
    // A text has room for half as many words as bytes. A table with more cells is mostly missing words: some
    // are forgiven, but a small file must not ask for all memory with them.
    constexpr std::size_t forgiven = std::size_t{1} << 24;
    const std::size_t columns = table.varInfo.size();
    if (columns <= (textBytes / 2 + forgiven) / table.entryCount)
        table.matrix = Block<float>("table", table.entryCount * columns);
    return table.matrix ? Status::ok : messages.fail("RdTable error allocating data matrix.\n");
}

void warnBadItem(const RowReader &reader, char kind, std::size_t column)
{
    reader.messages.err("RdTable Warning: Bad %c-Item %zu:\n%s\n", kind, column + 1,
                        std::string(reader.line).c_str());
}

/// A number as nearly all cells have it: digits, in a column of reals with a point, and few enough for an
/// int. Nothing about it is odd, and that is seen without reading it once more.
bool isPlainNumber(std::string_view word, CellType type)
{
    constexpr std::size_t longest = 9;
    word.remove_prefix(word.starts_with('-') ? 1 : 0);
    const bool hasPoint = type == CellType::real && word.find('.') != std::string_view::npos;
    const auto digits =
        static_cast<std::size_t>(std::ranges::count_if(word, [](char c) { return c >= '0' && c <= '9'; }));
    return digits > 0 && word.size() <= longest && digits + (hasPoint ? 1 : 0) == word.size();
}

/// Keeps what was hardly meant: `isRead` is false for a cell that was read as 0.
void keepOddCell(RowReader &reader, std::size_t column, std::string_view word, bool isRead)
{
    tabVar &info = reader.table.varInfo[column];
    if (isRead && isPlainNumber(word, info.type))
        return;
    const bool isWhole = isOneNumber(word);
    OddCells *cells = nullptr;
    if (isWhole && info.type == CellType::integer && std::abs(toDouble(word)) > INT_MAX)
        cells = &info.beyond;
    else if (isWhole && info.type == CellType::integer && !isInteger(word))
        cells = &info.cut;
    else if (!isRead)
        cells = &info.noNumber;
    else if (!isWhole)
        cells = &info.partly;
    if (cells == nullptr)
        return;
    constexpr std::size_t keptCells = 3;
    if (cells->count++ < keptCells)
        cells->first.push_back((word.empty() ? "nothing" : std::string(word)) + " in row " +
                               std::to_string(reader.row));
}

/// The cell of a text: its place among the distinct texts of the column.
Status readTextCell(RowReader &reader, std::size_t column, std::string_view word, float &cell)
{
    if (reader.declared.nullString && word == *reader.declared.nullString) {
        cell = nullTextCell;
        return Status::ok;
    }
    tabVar &info = reader.table.varInfo[column];
    const std::size_t next = info.equivList.size();
    const auto [place, isNew] = reader.places[column].try_emplace(word, next);
    if (isNew) {
        if (next >= maxEquivCount)
            return reader.messages.fail("RdTable Error mapping text.\n");
        info.equivList.emplace_back(word);
    }
    cell = static_cast<float>(place->second);
    return Status::ok;
}

Status readCell(RowReader &reader, std::size_t column, float &cell)
{
    const bool missing = column >= reader.words.size();
    const std::string_view word = missing ? std::string_view() : reader.words[column];
    const CellType type = reader.table.varInfo[column].type;
    if (type == CellType::text) {
        if (missing)
            warnBadItem(reader, 'T', column);
        return readTextCell(reader, column, word, cell);
    }
    bool isRead = true;
    if (type == CellType::integer) {
        int value = 0;
        isRead = wordToInt(word, value);
        cell = static_cast<float>(value);
    } else {
        isRead = wordToFloat(word, cell);
    }
    if (!isRead)
        warnBadItem(reader, type == CellType::integer ? 'I' : 'F', column);
    keepOddCell(reader, column, word, isRead);
    if (reader.declared.nullValue && cell == static_cast<float>(*reader.declared.nullValue))
        cell = reader.defNullValue;
    return Status::ok;
}

Status readRow(RowReader &reader, std::span<float> cells)
{
    splitTokens(reader.line, reader.words, cells.size());
    for (std::size_t column = 0; column < cells.size(); ++column)
        if (readCell(reader, column, cells[column]) != Status::ok)
            return Status::failed;
    return Status::ok;
}

/// The second pass: rows into the matrix.
Status readLines(TextInput &input, RowReader &reader)
{
    const std::size_t columns = reader.table.varInfo.size();
    std::size_t first = 0;
    rewindText(input);
    while (fgetsAlloc(input, reader.line)) {
        if (!isRowWord(firstWord(reader.line)))
            continue;
        ++reader.row;
        if (readRow(reader, reader.table.matrix.span().subspan(first, columns)) != Status::ok)
            return Status::failed;
        first += columns;
    }
    return Status::ok;
}

} // namespace

Status openTable(const std::string &inName, TextInput &input, Messages &messages)
{
    const TextStatus status = inName.empty() ? TextStatus::noFile : readText(input, inName, messages);
    if (status == TextStatus::noFile)
        return messages.fail("RdTable File open error: %s.\n", inName.c_str());
    return status == TextStatus::read ? Status::ok : Status::failed;
}

Status rdTable(const std::string &inName, TextTable &table, float defNullValue, Messages &messages)
{
    TextInput input;
    if (openTable(inName, input, messages) != Status::ok)
        return Status::failed;
    return parseTable(inName, input, table, defNullValue, messages);
}

Status parseTable(const std::string &inName, TextInput &input, TextTable &table, float defNullValue,
                  Messages &messages)
{
    table = TextTable{};
    Declarations declared;
    for (std::string_view line; fgetsAlloc(input, line);)
        collectLine(line, declared, messages);
    if (declared.rowCount == 0)
        return messages.fail("RdTable Error: no entries in %s\n", inName.c_str());
    table.entryCount = declared.rowCount;
    if (buildColumns(inName, declared, table, messages) != Status::ok ||
        allocateMatrix(table, input.text.size(), messages) != Status::ok)
        return Status::failed;
    RowReader reader{table, declared, defNullValue, messages};
    reader.places.resize(table.varInfo.size());
    return readLines(input, reader);
}

std::optional<std::size_t> getTabVar(const std::vector<tabVar> &varInfo, std::string_view varName)
{
    for (std::size_t i = varInfo.size(); i-- > 0;)
        if (equalNoCase(varInfo[i].name, varName))
            return i;
    return std::nullopt;
}

std::string_view tabText(const tabVar &column, float cell)
{
    if (!(cell >= 0.0f && cell < static_cast<float>(column.equivList.size())))
        return {};
    return column.equivList[static_cast<std::size_t>(cell)];
}

} // namespace trelm
