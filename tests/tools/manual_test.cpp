// The guides as the tool prints them, against the options that the run knows.
#include "command/flag_hint.h"
#include "common/file_text.h"
#include "common/temp_file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <set>
#include <sstream>

namespace trelm {
namespace {

/// What a command prints on standard output, and on standard error where the command says so.
struct Printed {
    int status = -1;
    std::string text;
};

Printed printedBy(const std::string &command)
{
    Printed printed;
    std::FILE *pipe = popen(command.c_str(), "r");
    if (pipe == nullptr)
        return printed;
    char part[4096];
    for (std::size_t n = std::fread(part, 1, sizeof part, pipe); n > 0;
         n = std::fread(part, 1, sizeof part, pipe))
        printed.text.append(part, n);
    printed.status = pclose(pipe);
    return printed;
}

std::string guide(const std::string &kind)
{
    const Printed printed = printedBy(TRELM_MANUAL_PROGRAM " " + kind);
    EXPECT_EQ(printed.status, 0) << kind;
    return printed.text;
}

std::string roffFlag(std::string_view flag)
{
    std::string text;
    for (const char c : flag)
        text += c == '-' ? std::string("\\-") : std::string(1, c);
    return text;
}

/// The words of the list behind "compgen -W '".
std::set<std::string> bashWords(const std::string &text)
{
    const std::size_t first = text.find("-W '") + 4;
    std::istringstream list(text.substr(first, text.find('\'', first) - first));
    return {std::istream_iterator<std::string>(list), {}};
}

TEST(Manual, EveryGuideHasEveryOption)
{
    const std::string man = guide("man");
    const std::string zsh = guide("zsh");
    const std::string reference = guide("reference");
    const std::set<std::string> bash = bashWords(guide("bash"));
    const auto has = [](const std::string &text, const std::string &before, std::string_view flag,
                        std::string_view ends) {
        const std::string start = before + std::string(flag);
        for (std::size_t at = text.find(start); at != std::string::npos; at = text.find(start, at + 1))
            if (ends.find(text[at + start.size()]) != std::string_view::npos)
                return true;
        return false;
    };
    for (const std::string_view flag : knownFlags()) {
        EXPECT_TRUE(has(man, ".TP\n.B ", roffFlag(flag), " \n")) << flag;
        EXPECT_TRUE(has(zsh, "\n    '", flag, "[")) << flag;
        EXPECT_TRUE(has(reference, "\n| `", flag, " `")) << flag;
        EXPECT_TRUE(bash.contains(std::string(flag))) << flag;
    }
    EXPECT_EQ(bash.size(), knownFlags().size());
}

TEST(Manual, TheReferenceIsUpToDate)
{
    EXPECT_TRUE(fileText(TRELM_EXAMPLES "/../docs/reference.md") == guide("reference"))
        << "make reference brings docs/reference.md up to date";
}

TEST(Manual, TheLinksOfTheReferenceLeadToItsHeadings)
{
    const std::string text = guide("reference");
    std::istringstream lines(text);
    std::set<std::string> anchors;
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with("#"))
            continue;
        std::string anchor;
        for (const char c : line.substr(line.find(' ') + 1))
            if (std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '-' || c == ' ')
                anchor += c == ' ' ? '-' : static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        std::string free = anchor;
        for (int n = 1; anchors.contains(free); ++n)
            free = anchor + "-" + std::to_string(n);
        anchors.insert(free);
    }
    int links = 0;
    for (std::size_t at = text.find("](#"); at != std::string::npos; at = text.find("](#", at + 1)) {
        const std::string anchor = text.substr(at + 3, text.find(')', at) - at - 3);
        EXPECT_TRUE(anchors.contains(anchor)) << anchor;
        ++links;
    }
    EXPECT_GT(links, 20);
}

TEST(Manual, TheManPageIsAcceptedByGroff)
{
    const TempFile page(guide("man"));
    const Printed printed = printedBy("groff -man -ww -z " + page.name + " 2>&1");
    EXPECT_EQ(printed.status, 0);
    EXPECT_EQ(printed.text, "");
}

TEST(Manual, BashCompletesOptionsAndFiles)
{
    const TempFile file(guide("bash"));
    struct {
        const char *line; ///< the words, the last one is to be completed
        const char *expected;
    } cases[] = {
        {"-clear", "-clear -clearMl "},
        {"-bestFit -pdbR", "-pdbRot "},
        {"-rM -", ""}, // a value is wanted
        {"-inD " TRELM_EXAMPLES "/ubiquitin/heavy", TRELM_EXAMPLES "/ubiquitin/heavy_atoms.txt "},
        {"-ave " TRELM_EXAMPLES "/ubiquitin/heavy", TRELM_EXAMPLES "/ubiquitin/heavy_atoms.txt "},
        {"-ave -nocl", "-noclearMl "}, // bare
    };
    for (const auto &check : cases) {
        // compopt is for the shell that completes; here nobody does.
        const std::string script = ". " + file.name + "; compopt() { :; }; COMP_WORDS=(trelm " + check.line +
                                   "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _trelm; "
                                   "printf \"%s \" \"${COMPREPLY[@]}\"; complete -p trelm >&2";
        const Printed printed = printedBy("bash -c '" + script + "' 2>/dev/null");
        EXPECT_EQ(printed.status, 0) << check.line;
        EXPECT_EQ(printed.text == " " ? "" : printed.text, check.expected) << check.line;
    }
}

TEST(Manual, ZshReadsItsCompletion)
{
    const TempFile file(guide("zsh"));
    // _arguments is not there outside a completion: this one takes what it would be given, and prints its
    // first word.
    const Printed printed =
        printedBy("zsh -f -c '_arguments() { print -r -- $# ${1%%\\[*} }; . " + file.name + "' 2>&1");
    EXPECT_EQ(printed.status, 0);
    EXPECT_EQ(printed.text,
              std::to_string(knownFlags().size() + 1) + " -stTrelm\n"); // and the words of lists
}

TEST(Manual, AnUnknownGuideIsRefused)
{
    for (const char *words : {"", "html", "man bash"}) {
        const Printed printed = printedBy(std::string(TRELM_MANUAL_PROGRAM " ") + words + " 2>&1");
        EXPECT_NE(printed.status, 0) << words;
        EXPECT_EQ(printed.text, "Usage: trelm_manual man|bash|zsh|reference\n");
    }
}

} // namespace
} // namespace trelm
