// One walk over the rows of a table of options, whatever the fields that they fill.
#include "command/params.h"

#include <algorithm>
#include <type_traits>

namespace trelm {
namespace {

/// The value of a row; null after a warning if the option has none.
const char *wordOf(CommandLine &line, const OptionRow &row)
{
    const char *word = line.valueOf(row.flag);
    if (word == nullptr && !row.quiet && line.has(row.flag))
        line.warnNoValue(row.flag);
    return word;
}

bool readValue(CommandLine &line, const OptionRow &row, int &value)
{
    const char *word = wordOf(line, row);
    if (word == nullptr)
        return false;
    if (!row.quiet)
        line.warnInt(row.flag, word);
    value = intWord(word);
    return true;
}

bool readValue(CommandLine &line, const OptionRow &row, float &value)
{
    const char *word = wordOf(line, row);
    if (word == nullptr)
        return false;
    if (!row.quiet)
        line.warnFloat(row.flag, word);
    value = fltWord(word);
    return true;
}

bool readValue(CommandLine &line, const OptionRow &row, double &value)
{
    float single = 0.0f;
    if (!readValue(line, row, single))
        return false;
    value = static_cast<double>(single);
    return true;
}

bool readValue(CommandLine &line, const OptionRow &row, std::string &value)
{
    const char *word = wordOf(line, row);
    if (word != nullptr)
        value = word;
    return word != nullptr;
}

bool readValue(CommandLine &line, const OptionRow &row, const char *&value)
{
    const char *word = wordOf(line, row);
    if (word != nullptr)
        value = word;
    return word != nullptr;
}

bool readRow(CommandLine &line, const OptionRow &row, Options &options)
{
    const auto fill = [&](auto target) {
        auto &field = options.*target;
        using Value = std::remove_reference_t<decltype(field)>;
        if constexpr (!std::is_enum_v<Value>) // each value of a kind has a flag of its own
            if (!row.preset)
                return readValue(line, row, field);
        if (!line.has(row.flag))
            return false;
        if constexpr (std::is_arithmetic_v<Value>)
            field = static_cast<Value>(*row.preset);
        else if constexpr (std::is_enum_v<Value>)
            field = static_cast<Value>(static_cast<int>(*row.preset));
        return true;
    };
    return std::visit(fill, row.target);
}

} // namespace

std::ptrdiff_t readRows(CommandLine &line, std::span<const OptionRow> rows, Options &options)
{
    return std::ranges::count_if(rows, [&](const OptionRow &row) { return readRow(line, row, options); });
}

} // namespace trelm
