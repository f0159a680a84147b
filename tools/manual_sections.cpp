#include "manual.h"

#include <algorithm>

namespace trelm {
namespace {

/// Where a source of entries was shown first.
struct Shown {
    const HelpEntry *source;
    ShownSection::Repeat place;
};

} // namespace

std::vector<ShownSection> shownSections()
{
    std::vector<ShownSection> all;
    std::vector<Shown> shown;
    for (const GuideSection &section : guideSections()) {
        ShownSection next = {&section, {}, {}};
        std::string_view heading;
        for (GuideBlock &block : guideBlocks(section)) {
            if (!block.heading.empty())
                heading = block.heading;
            const auto known = std::ranges::find(shown, block.source.data(), &Shown::source);
            if (known == shown.end()) {
                shown.push_back({block.source.data(), {all.size(), heading}});
                block.heading = heading; // a block without one stands under that before it
                next.blocks.push_back(std::move(block));
                continue;
            }
            const auto same = [&](const ShownSection::Repeat &repeat) {
                return repeat.section == known->place.section && repeat.heading == known->place.heading;
            };
            if (std::ranges::none_of(next.repeats, same))
                next.repeats.push_back(known->place);
        }
        all.push_back(std::move(next));
    }
    return all;
}

std::string replaced(std::string_view text, std::string_view from, std::string_view to)
{
    std::string result;
    for (std::size_t at = text.find(from); at != std::string_view::npos; at = text.find(from)) {
        result.append(text.substr(0, at)).append(to);
        text.remove_prefix(at + from.size());
    }
    return result.append(text);
}

} // namespace trelm
