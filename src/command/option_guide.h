// What the man page, the completions and the reference tell of the options: the lines of the help text, whose
// words stay as users know them, what it leaves out, and what it does not say as the run does it.
#pragma once

#include "command/help.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace trelm {

/// A section of the guides.
struct GuideSection {
    std::string_view title;
    std::string_view page;           ///< the page under docs/ that tells the whole of it
    std::string_view helpTitle;      ///< its section of the help text; empty: the help text has none
    std::span<const HelpBlock> more; ///< options that the help text leaves out, behind those of the help text
    std::string_view note;           ///< what else holds, a sentence; may be empty
};

/// All sections in order.
std::span<const GuideSection> guideSections();

/// One line of the help text in other words.
struct Correction {
    std::string_view flag;        ///< as the help text has it
    std::string_view description; ///< as the help text has it
    std::string_view realFlag;
    std::string_view realDescription;
};

/// The lines in which the help text keeps words that are not what the run does.
std::span<const Correction> corrections();

/// An option as the guides show it.
struct GuideEntry {
    std::string_view flag;
    std::string_view argument; ///< empty for a bare flag
    std::string realDefault;   ///< what the run starts from; empty: none
    std::string helpDefault;   ///< what the help text says instead; empty: the same
    std::string_view description;
};

/// Entries under a heading, which may be empty.
struct GuideBlock {
    std::string_view heading;          ///< without a colon at its end
    std::span<const HelpEntry> source; ///< blocks of the same source have the same entries
    std::vector<GuideEntry> entries;
};

/// The blocks of a section.
std::vector<GuideBlock> guideBlocks(const GuideSection &section);

/// The default of an option: the value of the field that it fills, in the spelling of the help text where
/// that has the same, on or off for a bare flag; the word of the help text for texts, lists and what is found
/// in the input.
std::string realDefault(const HelpEntry &entry);

} // namespace trelm
