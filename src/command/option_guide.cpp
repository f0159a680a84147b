#include "command/option_guide.h"

#include "command/params.h"

#include <algorithm>
#include <charconv>

namespace trelm {
namespace {

/// The default of a field, if it is a number.
std::optional<double> fieldDefault(const Target &target)
{
    const Options options;
    const auto read = [&](auto field) -> std::optional<double> {
        using Value = std::remove_cvref_t<decltype(options.*field)>;
        if constexpr (std::is_same_v<Value, float>) {
            // As the shortest decimal that gives this float: 0.2, not 0.200000003.
            char text[32];
            const auto end = std::to_chars(text, text + sizeof text, options.*field).ptr;
            double value = 0.0;
            std::from_chars(text, end, value);
            return value;
        } else if constexpr (std::is_arithmetic_v<Value> || std::is_enum_v<Value>) {
            return static_cast<double>(options.*field);
        } else {
            return std::nullopt;
        }
    };
    return std::visit(read, target);
}

std::vector<OptionRow> rowsOf(std::string_view flag)
{
    std::vector<OptionRow> rows;
    for (const auto table : optionTables())
        std::ranges::copy_if(table, std::back_inserter(rows),
                             [flag](const OptionRow &row) { return row.flag == flag; });
    return rows;
}

/// A bare flag is on if every field has already what it stores.
std::string switchDefault(const HelpEntry &entry)
{
    const std::vector<OptionRow> rows = rowsOf(entry.flag);
    bool isSwitch = false;
    bool isOn = true;
    for (const OptionRow &row : rows) {
        isSwitch = isSwitch || row.preset.has_value();
        isOn = isOn && (!row.preset || fieldDefault(row.target) == row.preset);
    }
    if (!isSwitch)
        return std::string(entry.defaultValue);
    return isOn ? "on" : "off";
}

/// The values of the fields that an option with a value fills.
std::vector<double> valueDefaults(std::string_view flag)
{
    if (flag == "-cut") // read by a step of its own
        return {FieldOptions{}.cutoffPot};
    std::vector<double> values;
    for (const OptionRow &row : rowsOf(flag))
        if (const auto value = fieldDefault(row.target); value && !row.preset)
            values.push_back(*value);
    return values;
}

std::string shortest(double value)
{
    char text[32];
    return {text, std::to_chars(text, text + sizeof text, value).ptr};
}

GuideEntry guideEntry(const HelpEntry &entry)
{
    const std::string real = realDefault(entry);
    const std::string help = real == entry.defaultValue ? "" : std::string(entry.defaultValue);
    const auto correction = std::ranges::find_if(corrections(), [&](const Correction &row) {
        return row.flag == entry.flag && row.description == entry.description;
    });
    if (correction == corrections().end())
        return {entry.flag, entry.argument, real, help, entry.description};
    return {correction->realFlag, entry.argument, real, help, correction->realDescription};
}

void appendBlocks(std::vector<GuideBlock> &guide, std::span<const HelpBlock> blocks)
{
    for (const HelpBlock &block : blocks) {
        std::string_view heading = block.heading;
        if (heading.ends_with(':'))
            heading.remove_suffix(1);
        guide.push_back({heading, block.entries, {}});
        std::ranges::transform(block.entries, std::back_inserter(guide.back().entries), guideEntry);
    }
}

} // namespace

std::vector<GuideBlock> guideBlocks(const GuideSection &section)
{
    std::vector<GuideBlock> guide;
    for (const HelpSection &help : helpSections())
        if (help.title == section.helpTitle)
            appendBlocks(guide, help.blocks);
    appendBlocks(guide, section.more);
    return guide;
}

std::string realDefault(const HelpEntry &entry)
{
    if (entry.argument.empty())
        return switchDefault(entry);
    std::string help(entry.defaultValue);
    double shown = 0.0;
    if (std::from_chars(help.data(), help.data() + help.size(), shown).ptr != help.data() + help.size())
        return help; // a word, as in "first"
    const std::vector<double> values = valueDefaults(entry.flag);
    if (values.empty() || std::ranges::find(values, shown) != values.end())
        return help;
    return shortest(values.front());
}

} // namespace trelm
