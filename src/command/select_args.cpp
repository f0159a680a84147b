#include "command/cmndargs.h"
#include "command/params.h"
#include "support/text/match.h"
#include "support/text/text.h"

#include <span>
#include <vector>

namespace trelm {
namespace {

constexpr OptionRow classRows[] = {
    {"-dbg", &PDBSelectInfo::dbgFlag, {}, true}, // the debug level of the run tells of a faulty value
    {"-hetatm", &PDBSelectInfo::hetatmFlag, 1},   {"-nohetatm", &PDBSelectInfo::hetatmFlag, 0},
    {"-protein", &PDBSelectInfo::selectClass, 4}, {"-id", &PDBSelectInfo::selectID},
    {"-inv", &PDBSelectInfo::selectMode, -1},
};

constexpr OptionRow listRows[] = {
    {"-atom", &PDBSelectInfo::atomNameList},   {"-atomName", &PDBSelectInfo::atomNameList},
    {"-resName", &PDBSelectInfo::resNameList}, {"-chain", &PDBSelectInfo::chainNameList},
    {"-seg", &PDBSelectInfo::segNameList},
};

constexpr OptionRow matchRows[] = {
    {"-clear", &PDBSelectInfo::selectMode, 0},
    {"-set", &PDBSelectInfo::selectMode, 1},
    {"-exact", &PDBSelectInfo::atomNameMode, matchExact},
    {"-exact", &PDBSelectInfo::resNameMode, matchExact},
    {"-exact", &PDBSelectInfo::chainNameMode, matchExact},
    {"-exact", &PDBSelectInfo::segNameMode, matchExact},
    {"-regex", &PDBSelectInfo::atomNameMode, matchRegex},
    {"-regex", &PDBSelectInfo::resNameMode, matchRegex},
    {"-regex", &PDBSelectInfo::chainNameMode, matchRegex},
    {"-regex", &PDBSelectInfo::segNameMode, matchRegex},
    {"-glob", &PDBSelectInfo::atomNameMode, matchGlob},
    {"-glob", &PDBSelectInfo::resNameMode, matchGlob},
    {"-glob", &PDBSelectInfo::chainNameMode, matchGlob},
    {"-glob", &PDBSelectInfo::segNameMode, matchGlob},
    {"-aExact", &PDBSelectInfo::atomNameMode, matchExact},
    {"-aRegex", &PDBSelectInfo::atomNameMode, matchRegex},
    {"-aGlob", &PDBSelectInfo::atomNameMode, matchGlob},
    {"-rExact", &PDBSelectInfo::resNameMode, matchExact},
    {"-rRegex", &PDBSelectInfo::resNameMode, matchRegex},
    {"-rGlob", &PDBSelectInfo::resNameMode, matchGlob},
    {"-cExact", &PDBSelectInfo::chainNameMode, matchExact},
    {"-cRegex", &PDBSelectInfo::chainNameMode, matchRegex},
    {"-cGlob", &PDBSelectInfo::chainNameMode, matchGlob},
    {"-sExact", &PDBSelectInfo::segNameMode, matchExact},
    {"-sRegex", &PDBSelectInfo::segNameMode, matchRegex},
    {"-sGlob", &PDBSelectInfo::segNameMode, matchGlob},
};

/// A line of the help text; without a flag it is a heading. The description starts in `column`.
struct SelectHelpRow {
    const char *flag;
    const char *argument;
    int column;
    const char *text;
};

constexpr SelectHelpRow helpRows[] = {
    {"-res", "resID", 18, "Single Residue for Selection."},
    {"-r1", "res1", 18, "First Residue in Segment."},
    {"-rN", "resN", 18, "Last Residue in Segment."},
    {"-atomName", "aList", 18, "Atom Name List  (also -atom)."},
    {"-resName", "rList", 18, "Res Name List   (Default: *)."},
    {"-chain", "cList", 18, "Chain Name List (Default: *)."},
    {"-seg", "sList", 18, "Seg Name List   (Default: *)."},
    {"-id", "sID", 18, "Selection ID."},
    {"-inv", "", 18, "Invert Selection."},
    {"", "", 0, "Special Class Selection:"},
    {"-protein", "", 17, "Select Only Canonical Amino Acids."},
    {"", "", 0, "Reset Selection; No Other Selection Performed:"},
    {"-clear", "", 17, "Clear Selection for All Atoms."},
    {"-set", "", 17, "Set Selection for All Atoms."},
    {"", "", 0, "Name Matching Modes:"},
    {"-exact", "", 15, "Match Names Exactly (Default)."},
    {"-regex", "", 15, "Regular Expression Pattern Matching."},
    {"-glob", "", 15, "Glob-style Pattern Matching."},
    {"", "", 0, "PDB Input Options:"},
    {"-hetatm", "", 15, "Interpret HETATM records as ATOMs."},
};

void printSelectHelp()
{
    std::string text;
    for (const SelectHelpRow &row : helpRows) {
        std::string line;
        if (row.column > 0)
            appendf(line, " %-10s%s", row.flag, row.argument);
        line.resize(static_cast<std::size_t>(row.column), ' ');
        text += line + row.text + "\n";
    }
    complain("%s", text.c_str());
}

/// Reads one of the residue options. The text "*" is no number, and no fault either.
bool readResidueText(int argc, char **argv, const char *flag, std::string &text)
{
    if (flagLoc(argc, argv, flag) == 0)
        return false;
    if (strArgD(argc, argv, flag, &text) == 0) {
        warnNoValue(flag);
        return false;
    }
    if (text != "*")
        warnIntWord(flag, text);
    return true;
}

/// Reads the residue range. Returns true if there was one.
bool readResidues(int argc, char **argv, PDBSelectInfo &sInfo)
{
    std::string first;
    bool given = readResidueText(argc, argv, "-res", first);
    std::string last = first;
    given = readResidueText(argc, argv, "-r1", first) || given;
    given = readResidueText(argc, argv, "-rN", last) || given;
    if (given)
        sInfo.resIDMode = 1;
    if (first == "*" || last == "*") {
        sInfo.resIDMode = 0;
    } else {
        sInfo.res1 = intWord(first);
        sInfo.resN = intWord(last);
    }
    return given;
}

void reportSelection(const PDBSelectInfo &sInfo)
{
    std::string text = "PDB Selection:";
    if (sInfo.selectMode == 1)
        text += " All Atoms.\n";
    else
        appendf(text, " %d to %d Atoms: %s Residues: %s Chains %s Segs: %s.\n", sInfo.res1, sInfo.resN,
                sInfo.atomNameList.c_str(), sInfo.resNameList.c_str(), sInfo.chainNameList.c_str(),
                sInfo.segNameList.c_str());
    complain("%s", text.c_str());
}

} // namespace

std::vector<std::span<const OptionRow>> selectionTables()
{
    return {classRows, listRows, matchRows};
}

int getPDBSelectArgs(int argc, char **argv, PDBSelectInfo *sInfo)
{
    if (flagLoc(argc, argv, "-help") != 0) {
        printSelectHelp();
        return 1;
    }
    const OptionRecords records = {.sInfo = sInfo};
    readRows(argc, argv, classRows, records);
    const bool verb = flagLoc(argc, argv, "-verb") != 0;
    const bool residues = readResidues(argc, argv, *sInfo);
    const bool lists = readRows(argc, argv, listRows, records) > 0;
    // Stands behind -inv, which a range or a list so overrides, and before -clear and -set.
    if (residues || lists)
        sInfo->selectMode = 2;
    readRows(argc, argv, matchRows, records);
    pdbSelectAdjust(*sInfo);
    pdbSelectCheck(*sInfo, standardMessages());
    if (verb)
        reportSelection(*sInfo);
    return 0;
}

} // namespace trelm
