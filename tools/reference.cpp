// The reference of all options, in Markdown.
#include "manual.h"

#include <algorithm>
#include <cctype>
#include <map>

namespace trelm {
namespace {

constexpr std::string_view referenceHead = R"(# Reference of the options

Every option with the value that a run starts from. This page is made by `make reference` from the program's own tables;
`trelm -help` prints the options in the same order. How options are read is told in [options.md](options.md).

A default in words is found in the input (`first`: the first residue) or means that there is none; `stdout` is standard
output. Options that several modes share stand where they are first needed, and are linked from the others.
)";

/// How often a name of a heading was given.
using AnchorCounts = std::map<std::string, int>;

/// The name that Markdown viewers give a heading: small letters, minus signs for blanks, a number behind a
/// repeated one.
std::string anchorOf(std::string_view heading, AnchorCounts &counts)
{
    std::string name;
    for (const char c : heading) {
        if (std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '-')
            name += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        else if (c == ' ')
            name += '-';
    }
    const int before = counts[name]++;
    return before == 0 ? name : name + "-" + std::to_string(before);
}

std::string code(std::string_view text)
{
    return "`" + std::string(text) + "`";
}

void appendReferenceEntry(std::string &page, const GuideEntry &entry)
{
    std::string option(entry.flag);
    if (!entry.argument.empty())
        option.append(" ").append(entry.argument);
    page.append("| ").append(code(option)).append(" | ");
    page.append(entry.realDefault.empty() ? "" : code(entry.realDefault)).append(" | ");
    page.append(replaced(entry.description, "*", "\\*"));
    if (!entry.helpDefault.empty())
        page.append(" (The help text still says ").append(code(entry.helpDefault)).append(".)");
    page += " |\n";
}

/// The tables of a section. `places` gets the anchor of each heading, that of the section under an empty one.
void appendTables(std::string &page, const ShownSection &shown, AnchorCounts &anchors,
                  std::map<std::string_view, std::string> &places)
{
    constexpr std::string_view tableHead = "\n| option | default | meaning |\n|---|---|---|\n";
    std::string_view heading;
    bool first = true;
    for (const GuideBlock &block : shown.blocks) {
        if (block.heading != heading) {
            places[block.heading] = anchorOf(block.heading, anchors);
            page.append("\n### ").append(block.heading).append("\n");
        }
        if (first || block.heading != heading)
            page += tableHead;
        first = false;
        heading = block.heading;
        for (const GuideEntry &entry : block.entries)
            appendReferenceEntry(page, entry);
    }
}

} // namespace

std::string referencePage()
{
    std::string page(referenceHead);
    AnchorCounts anchors = {{"reference-of-the-options", 1}};
    const std::vector<ShownSection> sections = shownSections();
    std::vector<std::map<std::string_view, std::string>> places(sections.size());
    for (std::size_t i = 0; i < sections.size(); ++i) {
        const ShownSection &shown = sections[i];
        const std::string title(shown.section->title);
        places[i][""] = anchorOf(title, anchors);
        page.append("\n## ").append(title).append("\n\nTold in [").append(shown.section->page);
        page.append("](").append(shown.section->page).append(").");
        if (!shown.section->note.empty())
            page.append(" ").append(shown.section->note);
        page += "\n";
        appendTables(page, shown, anchors, places[i]);
        if (shown.repeats.empty())
            continue;
        page += "\nAlso: ";
        for (const ShownSection::Repeat &repeat : shown.repeats) {
            page.append(&repeat == &shown.repeats.front() ? "" : ", ");
            page.append("[").append(repeat.heading).append("](#");
            page.append(places[repeat.section][repeat.heading]).append(")");
        }
        page += ".\n";
    }
    return page;
}

} // namespace trelm
