// The guides that are made from the table of options. Each function returns the whole text of one file.
#pragma once

#include "command/option_guide.h"

#include <string>
#include <vector>

namespace trelm {

std::string manPage();
std::string bashCompletion();
std::string zshCompletion();
std::string referencePage(); ///< docs/reference.md

/// A section without the blocks that a section before it has shown.
struct ShownSection {
    /// A block that was shown: the place of its section in the list, and its heading there.
    struct Repeat {
        std::size_t section;
        std::string_view heading;
    };

    const GuideSection *section = nullptr;
    std::vector<GuideBlock>
        blocks; ///< each with the heading that it stands under; empty: that of the section
    std::vector<Repeat> repeats;
};
std::vector<ShownSection> shownSections();

/// Text with every occurrence of `from` replaced.
std::string replaced(std::string_view text, std::string_view from, std::string_view to);

} // namespace trelm
