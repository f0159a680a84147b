// The man page, in the macros of man(7).
#include "manual.h"

namespace trelm {
namespace {

constexpr std::string_view pageHead = R"(.SH NAME
trelm \- alignment from structures and from residual dipolar couplings
.SH SYNOPSIS
.B trelm
.RI [ mode ]
.RI [ option " ...]"
.SH DESCRIPTION
.B trelm
fits the alignment tensor (the Saupe order matrix) to measured residual dipolar couplings and a structure, and says
what the fit is worth; from a structure alone it predicts the alignment that a liquid crystal imposes, and the
couplings.
One run does one job, chosen by a mode flag, with text in and text out.
.PP
Options stand in any order and are looked for by their exact names.
Of an option given twice the first counts; where flags contradict each other, the one that the program looks for
last wins.
A value is the word behind its option, whatever it looks like.
Where an option takes a list, the list ends at the next flag; \-5 and \-.5 are values, not flags.
.SH OPTIONS
Defaults stand between brackets.
)";

constexpr std::string_view tail = R"(.SH ENVIRONMENT
.TP
.B NMRCHECK
Set it to be told of words that no option used, on standard error:
.B ALL
looks at all words,
.B FLAGS
at flags alone,
.B DEBUG
also lists what was given.
Below the warning of an unknown flag stands the option that was probably meant.
.SH EXIT STATUS
0 if the run did its job, otherwise 1 or the status of the step that failed, with a message on standard error.
.B \-help
ends with 1.
.SH EXAMPLES
A fit of measured couplings to a structure:
.PP
.EX
trelm \-bestFit \-pdb structure.pdb \-inD couplings.tab \-outD fit.tab \-pdbRot turned.pdb \-H
.EE
.PP
A prediction of the same couplings from the shape:
.PP
.EX
trelm \-stTrelm \-pdb structure.pdb \-inD couplings.tab \-outD predicted.tab \-pdbRot turned.pdb \-H
.EE
.PP
The documentation that is installed with the program has a guide to each mode, and examples.
)";

std::string roff(std::string_view text)
{
    return replaced(replaced(text, "\\", "\\e"), "-", "\\-");
}

void appendManEntry(std::string &page, const GuideEntry &entry)
{
    page.append(".TP\n.B ").append(roff(entry.flag));
    if (!entry.argument.empty())
        page.append(" \\fI").append(roff(entry.argument)).append("\\fP");
    page.append("\n").append(roff(entry.description));
    if (!entry.realDefault.empty())
        page.append(" [").append(roff(entry.realDefault)).append("]");
    page += "\n";
    if (!entry.helpDefault.empty())
        page.append("The help text still says [").append(roff(entry.helpDefault)).append("].\n");
}

void appendSection(std::string &page, const ShownSection &shown, const std::vector<ShownSection> &all)
{
    page.append(".SS ").append(roff(shown.section->title)).append("\n");
    std::string_view heading;
    for (const GuideBlock &block : shown.blocks) {
        if (block.heading != heading)
            page.append(".PP\n.I ").append(roff(block.heading)).append("\n");
        heading = block.heading;
        for (const GuideEntry &entry : block.entries)
            appendManEntry(page, entry);
    }
    if (!shown.section->note.empty())
        page.append(".PP\n").append(roff(shown.section->note)).append("\n");
    if (shown.repeats.empty())
        return;
    page += ".PP\nAs above:\n";
    for (const ShownSection::Repeat &repeat : shown.repeats) {
        page.append(&repeat == &shown.repeats.front() ? "" : ";\n");
        page.append("\\fI").append(roff(repeat.heading)).append("\\fP (");
        page.append(roff(all[repeat.section].section->title)).append(")");
    }
    page += ".\n";
}

} // namespace

std::string manPage()
{
    // No date: the same source gives the same page.
    std::string page = ".TH TRELM 1 \"\" \"trelm " TRELM_VERSION "\" \"User Commands\"\n";
    page += pageHead;
    const std::vector<ShownSection> sections = shownSections();
    for (const ShownSection &shown : sections)
        appendSection(page, shown, sections);
    return page.append(tail);
}

} // namespace trelm
