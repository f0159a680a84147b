#include "command/help.h"

#include <algorithm>

namespace trelm {
namespace {

constexpr std::size_t argumentColumn = 10;
constexpr std::size_t defaultColumn = 19;
constexpr std::size_t textColumn = 29;

/// Fills up to a column; a word that reaches beyond it keeps one blank behind it.
void padTo(std::string &line, std::size_t column)
{
    line.resize(std::max(column, line.size() + 1), ' ');
}

void appendBlock(std::string &text, const HelpBlock &block)
{
    if (!block.heading.empty())
        text.append("\n").append(block.heading).append("\n");
    for (const HelpEntry &entry : block.entries)
        text += helpLine(entry);
}

} // namespace

std::string helpLine(const HelpEntry &entry)
{
    std::string line = " ";
    line += entry.flag;
    if (!entry.argument.empty()) {
        padTo(line, argumentColumn);
        line += entry.argument;
    }
    if (!entry.defaultValue.empty()) {
        padTo(line, defaultColumn);
        line.append("[").append(entry.defaultValue).append("]");
    }
    padTo(line, textColumn);
    return line.append(entry.description).append("\n");
}

void printInfo(Messages &messages)
{
    std::string text = "trelm: Alignment from Structures and from Residual Dipolar Couplings.\n";
    for (const HelpSection &section : helpSections()) {
        text.append("\n\n").append(section.title).append("\n\n");
        for (const HelpBlock &block : section.blocks)
            appendBlock(text, block);
    }
    messages.text(Messages::Stream::err, text);
}

} // namespace trelm
