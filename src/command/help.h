// The help text of the program.
#pragma once

#include "ground/messages.h"

#include <span>
#include <string>
#include <string_view>

namespace trelm {

/// One line of the help text.
struct HelpEntry {
    std::string_view flag;         ///< as typed
    std::string_view argument;     ///< the word for its value; empty for a bare flag
    std::string_view defaultValue; ///< as printed between brackets; empty: none is printed
    std::string_view description;
};

/// Lines under a heading; the heading may be empty. Several sections share a block.
struct HelpBlock {
    std::string_view heading;
    std::span<const HelpEntry> entries;
};

/// The options of one mode.
struct HelpSection {
    std::string_view title;
    std::span<const HelpBlock> blocks;
};

/// All sections in the order of the text.
std::span<const HelpSection> helpSections();

/// One line: a blank, and flag, argument, default and description in their columns.
std::string helpLine(const HelpEntry &entry);

/// Says the help text.
void printInfo(Messages &messages);

} // namespace trelm
