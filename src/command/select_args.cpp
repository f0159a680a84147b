#include "command/command_line.h"
#include "command/params.h"
#include "support/text/text.h"

#include <span>
#include <vector>

namespace trelm {
namespace {

constexpr OptionRow classRows[] = {
    {"-dbg", &PDBSelectInfo::dbgFlag, {}, true}, // the debug level of the run tells of a faulty value
    {"-hetatm", &PDBSelectInfo::hetatmFlag, 1},
    {"-nohetatm", &PDBSelectInfo::hetatmFlag, 0},
    {"-protein", &PDBSelectInfo::selectClass, classCanonical},
    {"-id", &PDBSelectInfo::selectID},
    {"-inv", &PDBSelectInfo::selectMode, selectFailing},
};

constexpr OptionRow listRows[] = {
    {"-atom", &PDBSelectInfo::atomNameList},   {"-atomName", &PDBSelectInfo::atomNameList},
    {"-resName", &PDBSelectInfo::resNameList}, {"-chain", &PDBSelectInfo::chainNameList},
    {"-seg", &PDBSelectInfo::segNameList},
};

constexpr OptionRow matchRows[] = {
    {"-clear", &PDBSelectInfo::selectMode, selectNone},
    {"-set", &PDBSelectInfo::selectMode, selectAll},
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

/// Reads one of the residue options. The text "*" is no number, and no fault either.
bool readResidueText(CommandLine &line, const char *flag, std::string &text)
{
    if (!line.has(flag))
        return false;
    const char *word = line.valueOf(flag);
    if (word == nullptr) {
        line.warnNoValue(flag);
        return false;
    }
    text = word;
    if (text != "*")
        line.warnInt(flag, text);
    return true;
}

/// Reads the residue range. Returns true if there was one.
bool readResidues(CommandLine &line, PDBSelectInfo &sInfo)
{
    std::string first;
    bool given = readResidueText(line, "-res", first);
    std::string last = first;
    given = readResidueText(line, "-r1", first) || given;
    given = readResidueText(line, "-rN", last) || given;
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

void reportSelection(const PDBSelectInfo &sInfo, Messages &messages)
{
    std::string text = "PDB Selection:";
    if (sInfo.selectMode == selectAll)
        text += " All Atoms.\n";
    else
        appendf(text, " %d to %d Atoms: %s Residues: %s Chains %s Segs: %s.\n", sInfo.res1, sInfo.resN,
                sInfo.atomNameList.c_str(), sInfo.resNameList.c_str(), sInfo.chainNameList.c_str(),
                sInfo.segNameList.c_str());
    messages.text(Messages::Stream::err, text);
}

} // namespace

std::vector<std::span<const OptionRow>> selectionTables()
{
    return {classRows, listRows, matchRows};
}

void getPDBSelectArgs(CommandLine &line, Options &options)
{
    PDBSelectInfo &sInfo = options;
    readRows(line, classRows, options);
    const bool verb = line.has("-verb");
    const bool residues = readResidues(line, sInfo);
    const bool lists = readRows(line, listRows, options) > 0;
    // Stands behind -inv, which a range or a list so overrides, and before -clear and -set.
    if (residues || lists)
        sInfo.selectMode = selectMatching;
    readRows(line, matchRows, options);
    pdbSelectAdjust(sInfo);
    pdbSelectCheck(sInfo, line.messages);
    if (verb)
        reportSelection(sInfo, line.messages);
}

} // namespace trelm
