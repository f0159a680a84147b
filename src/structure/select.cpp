#include "structure/select.h"

#include "support/text/text.h"
#include "support/text/token.h"

#include <algorithm>
#include <optional>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

namespace trelm {
namespace {

// The amino acids of selectClass, capitals or not. Nucleotides are none.
constexpr std::string_view aminoAcids[] = {"ALA", "ARG", "ASN", "ASP", "CYS", "GLN", "GLU",
                                           "GLY", "HIS", "ILE", "LEU", "LYS", "MET", "PHE",
                                           "PRO", "SER", "THR", "TRP", "TYR", "VAL"};

bool isCanonical(const AtomInfo &atom)
{
    return std::ranges::any_of(
        aminoAcids, [&atom](std::string_view name) { return equalNoCase(atom.resName.view(), name); });
}

/// A name test: the patterns of its list.
struct NameTest {
    std::vector<NamePattern> patterns;
    MatchMode mode;

    NameTest(const std::string &list, MatchMode matchMode) : mode(matchMode)
    {
        std::vector<std::string_view> words;
        if (mode != matchNone)
            splitTokens(list, words);
        for (const std::string_view word : words)
            patterns.emplace_back(word, mode);
    }
    [[nodiscard]] bool passes(const Name &name) const
    {
        return mode == matchNone || std::ranges::any_of(patterns, [&](const NamePattern &pattern) {
                   return pattern.matches(name.view());
               });
    }
};

/// The tests of a record, with its lists cut into words once for all atoms. Views into the record.
struct Tests {
    const PDBSelectInfo &sInfo;
    NameTest atom, residue, chain, segment;

    explicit Tests(const PDBSelectInfo &info)
        : sInfo(info), atom(info.atomNameList, info.atomNameMode),
          residue(info.resNameList, info.resNameMode), chain(info.chainNameList, info.chainNameMode),
          segment(info.segNameList, info.segNameMode)
    {
    }
    [[nodiscard]] bool pass(const AtomInfo &a) const
    {
        if (sInfo.resIDMode != 0 && (a.resID < sInfo.res1 || a.resID > sInfo.resN))
            return false;
        return atom.passes(a.atomName) && residue.passes(a.resName) && chain.passes(a.chainID) &&
               segment.passes(a.segID);
    }
};

bool isSelective(const PDBSelectInfo &sInfo)
{
    return sInfo.selectMode == selectMatching || sInfo.selectMode == selectFailing;
}

/// The class, the modes that ask nothing else, and then the tests, which a mode that asks nothing needs not
/// have.
bool isIn(const PDBSelectInfo &sInfo, const Tests *tests, const AtomInfo &atom)
{
    if (sInfo.selectClass == classCanonical && !isCanonical(atom))
        return false;
    if (tests == nullptr)
        return sInfo.selectMode == selectAll;
    return tests->pass(atom) != (sInfo.selectMode == selectFailing);
}

/// Whether the molecule is one chain and one segment, and none is asked for: then the range of residues
/// always counts.
bool isSimple(const PDBInfo &pdbInfo, const PDBSelectInfo &sInfo)
{
    return pdbInfo.chainCount == 1 && pdbInfo.segCount == 1 && sInfo.chainNameMode == matchNone &&
           sInfo.segNameMode == matchNone;
}

void tellKind(const PDBSelectInfo &sInfo, bool simple, Messages &messages)
{
    if (simple)
        messages.note("GORVAT Info: Simple Selection.\n");
    else // the names "Seg" and "Chain" stand the wrong way round, as scripts know the line
        messages.note("GORVAT Info: Complex Selection Atom %d Res %d Seg %d Chain %d\n", sInfo.atomNameMode,
                      sInfo.resNameMode, sInfo.chainNameMode, sInfo.segNameMode);
}

/// Switches off the test of a list that is exactly "*".
void adjustList(const std::string &list, MatchMode &mode)
{
    if (list == "*")
        mode = matchNone;
}

} // namespace

void pdbSelectAdjust(PDBSelectInfo &sInfo)
{
    if (sInfo.res1 > sInfo.resN)
        std::swap(sInfo.res1, sInfo.resN);
    adjustList(sInfo.resNameList, sInfo.resNameMode);
    adjustList(sInfo.atomNameList, sInfo.atomNameMode);
    adjustList(sInfo.chainNameList, sInfo.chainNameMode);
    adjustList(sInfo.segNameList, sInfo.segNameMode);
}

void pdbSelectCheck(const PDBSelectInfo &sInfo, Messages &messages)
{
    if (!isSelective(sInfo))
        return;
    const Tests tests(sInfo);
    for (const NameTest *test : {&tests.atom, &tests.residue, &tests.chain, &tests.segment})
        for (const NamePattern &pattern : test->patterns)
            if (!pattern.error().empty())
                messages.warn("PDB Warning: the regular expression %s is faulty and selects nothing: %s.\n",
                              pattern.text().c_str(), pattern.error().c_str());
}

bool pdbSelectTest(const PDBSelectInfo *sInfo, const AtomInfo &atom)
{
    if (sInfo == nullptr)
        return true;
    if (!isSelective(*sInfo))
        return isIn(*sInfo, nullptr, atom);
    const Tests tests(*sInfo);
    return isIn(*sInfo, &tests, atom);
}

AtomMask pdbSelectTestAll(const PDBSelectInfo *sInfo, std::span<const AtomInfo> atoms)
{
    AtomMask mask(atoms.size(), 1);
    if (sInfo == nullptr)
        return mask;
    const std::optional<Tests> tests = isSelective(*sInfo) ? std::optional<Tests>(*sInfo) : std::nullopt;
    for (std::size_t i = 0; i < atoms.size(); ++i)
        mask[i] = isIn(*sInfo, tests ? &*tests : nullptr, atoms[i]) ? 1 : 0;
    return mask;
}

void pdbSelect(const PDBInfo &pdbInfo, const PDBSelectInfo &sInfo, AtomMask &selection, Messages &messages)
{
    const std::span<const AtomInfo> atoms = pdbInfo.atoms();
    if (!isSelective(sInfo)) {
        selection.assign(atoms.size(), sInfo.selectMode == selectAll && sInfo.selectID != 0 ? 1 : 0);
        return;
    }
    selection.resize(atoms.size());
    const bool simple = isSimple(pdbInfo, sInfo);
    if (sInfo.dbgFlag != 0)
        tellKind(sInfo, simple, messages);
    const Tests tests(sInfo);
    for (std::size_t i = 0; i < atoms.size(); ++i) {
        const bool isInRange = atoms[i].resID >= sInfo.res1 && atoms[i].resID <= sInfo.resN;
        if ((!simple || isInRange) && isIn(sInfo, &tests, atoms[i]))
            selection[i] = sInfo.selectID != 0 ? 1 : 0;
    }
}

} // namespace trelm
