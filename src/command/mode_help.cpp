#include "command/mode_help.h"

#include "command/help.h"
#include "command/option_guide.h"
#include "command/version.h"
#include "support/text/output_file.h"

#include <algorithm>
#include <span>
#include <string>
#include <string_view>

namespace trelm {
namespace {

/// The sections that a mode's options stand in; its flag is named in the title of the first.
std::string textOfMode(std::string_view mode)
{
    std::string text;
    const std::string flag = ", " + std::string(mode.starts_with('-') ? "" : "-") + std::string(mode);
    for (const GuideSection &section : guideSections()) {
        const std::size_t place = section.title.find(flag);
        const bool isMode = place != std::string_view::npos && (place + flag.size() == section.title.size() ||
                                                                section.title[place + flag.size()] == ' ');
        if (!isMode && (text.empty() || section.title != "Common Options"))
            continue;
        text.append(text.empty() ? "" : "\n").append(section.title).append("\n");
        for (const GuideBlock &block : guideBlocks(section)) {
            text.append("\n").append(block.heading).append(block.heading.empty() ? "" : ":\n");
            for (const GuideEntry &entry : block.entries)
                text += helpLine({entry.flag, entry.argument, entry.realDefault, entry.description});
        }
    }
    return text;
}

Status print(const std::string &text, Messages &messages)
{
    OutFile out;
    writeOut(out, text);
    return closeOut(out, messages);
}

Status printAll(Messages &messages)
{
    std::string text;
    Messages intoText([&](Messages::Stream, std::string_view part) { text += part; });
    printInfo(intoText);
    return print(text, messages);
}

} // namespace

std::optional<Status> answerWithoutRun(int argc, char **argv, Messages &messages)
{
    const std::span<char *> words(argv, static_cast<std::size_t>(argc));
    const auto isOneOf = [](std::initializer_list<std::string_view> names) {
        return [names](const char *word) {
            return word != nullptr && std::ranges::find(names, word) != names.end();
        };
    };
    if (asksVersion(argc, argv))
        return printVersion(messages);
    if (std::ranges::any_of(words, isOneOf({"-h", "--help"})))
        return printAll(messages);
    if (std::ranges::any_of(words, isOneOf({"-v", "--version"})))
        return printVersion(messages);
    const auto help = std::ranges::find_if(words, isOneOf({"-help"}));
    if (help == words.end() || help + 1 == words.end() || help[1] == nullptr)
        return std::nullopt;
    const std::string text = textOfMode(help[1]);
    return text.empty() ? std::nullopt : std::optional(print(text, messages));
}

} // namespace trelm
