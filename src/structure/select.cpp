#include "structure/select.h"

#include "support/text/match.h"
#include "support/text/text.h"
#include "support/text/token.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <string_view>
#include <utility>
#include <vector>

namespace trelm {
namespace {

constexpr int classCanonical = 4;  ///< selectClass: canonical amino acids only
constexpr int selectInverted = -1; ///< selectMode
constexpr int caseCounts = 1;

// The amino acids of selectClass, capitals or not. Nucleotides are none.
constexpr std::string_view aminoAcids[] = {"ALA", "ARG", "ASN", "ASP", "CYS", "GLN", "GLU",
                                           "GLY", "HIS", "ILE", "LEU", "LYS", "MET", "PHE",
                                           "PRO", "SER", "THR", "TRP", "TYR", "VAL"};

bool isCanonical(const AtomInfo &atom)
{
    return std::ranges::any_of(
        aminoAcids, [&atom](std::string_view name) { return equalNoCase(atom.resName.view(), name); });
}

/// A name test: the words of its list and how they match; mode 0 is no test.
struct NameTest {
    std::vector<std::string_view> words;
    int mode = 0;

    NameTest(const std::string &list, int matchMode) : mode(matchMode)
    {
        if (mode != 0)
            splitTokens(list, words);
    }
    [[nodiscard]] bool passes(const Name &name) const
    {
        return mode == 0 || std::ranges::any_of(words, [&](std::string_view word) {
                   return strMatch(name.view(), word, mode, caseCounts) != 0;
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
    return sInfo.selectMode != 0 && sInfo.selectMode != 1;
}

/// The class, the modes that ask nothing else, and then the tests, which a mode that asks nothing needs not
/// have.
bool isIn(const PDBSelectInfo &sInfo, const Tests *tests, const AtomInfo *atom)
{
    if (sInfo.selectClass == classCanonical && (atom == nullptr || !isCanonical(*atom)))
        return false;
    if (tests == nullptr)
        return sInfo.selectMode == 1;
    const bool passes = atom != nullptr && tests->pass(*atom);
    return passes != (sInfo.selectMode == selectInverted);
}

int markIfIn(const Tests &tests, AtomInfo &atom)
{
    if (!isIn(tests.sInfo, &tests, &atom))
        return 0;
    atom.selected = tests.sInfo.selectID;
    return 1;
}

/// One chain and one segment: only the residues of the range are looked at.
int selectSimple(PDBInfo &pdbInfo, const PDBSelectInfo &sInfo)
{
    if (sInfo.dbgFlag != 0)
        std::fprintf(stderr, "GORVAT Info: Simple Selection.\n");
    const Tests tests(sInfo);
    int marked = 0;
    const std::int64_t first = std::max(sInfo.res1, pdbInfo.minResID);
    const std::int64_t last = std::min(sInfo.resN, pdbInfo.maxResID);
    for (std::int64_t resID = first; resID <= last; ++resID) {
        ResInfo *residue = findRes(&pdbInfo, static_cast<int>(resID), pdbInfo.defChainName.view(),
                                   pdbInfo.defSegName.view());
        for (int i = 0; residue != nullptr && i < residue->atomCount; ++i)
            marked += markIfIn(tests, *residue->atomList[static_cast<std::size_t>(i)]);
    }
    return marked;
}

int selectComplex(PDBInfo &pdbInfo, const PDBSelectInfo &sInfo)
{
    if (sInfo.dbgFlag != 0) // the names "Seg" and "Chain" stand the wrong way round, as scripts know the line
        std::fprintf(stderr, "GORVAT Info: Complex Selection Atom %d Res %d Seg %d Chain %d\n",
                     sInfo.atomNameMode, sInfo.resNameMode, sInfo.chainNameMode, sInfo.segNameMode);
    const Tests tests(sInfo);
    int marked = 0;
    for (AtomInfo &atom : pdbInfo.atoms())
        marked += markIfIn(tests, atom);
    return marked;
}

/// Switches off the test of a list that is exactly "*".
void adjustList(const std::string &list, int &mode)
{
    if (list == "*")
        mode = 0;
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

int pdbSelectCheck(const PDBSelectInfo &sInfo)
{
    if (!isSelective(sInfo))
        return 0;
    const Tests tests(sInfo);
    int faulty = 0;
    for (const NameTest *test : {&tests.atom, &tests.residue, &tests.chain, &tests.segment})
        for (const std::string_view word : test->words) {
            if (test->mode == matchRegex)
                strMatch("", word, matchRegex, caseCounts);
            if (test->mode == matchRegex && !strMatchError().empty())
                faulty +=
                    complain("PDB Warning: the regular expression %s is faulty and selects nothing: %s.\n",
                             std::string(word).c_str(), strMatchError().c_str());
        }
    return faulty;
}

int pdbSelectTest(const PDBSelectInfo *sInfo, const AtomInfo *atomInfo)
{
    if (sInfo == nullptr)
        return 1;
    if (!isSelective(*sInfo))
        return isIn(*sInfo, nullptr, atomInfo) ? 1 : 0;
    const Tests tests(*sInfo);
    return isIn(*sInfo, &tests, atomInfo) ? 1 : 0;
}

int pdbSelect(PDBInfo *pdbInfo, PDBSelectInfo *sInfo)
{
    if (pdbInfo == nullptr || sInfo == nullptr || !pdbInfo->atomList)
        return 0;
    pdbSelectAdjust(*sInfo);
    if (sInfo->selectMode == 0)
        return pdbClearSelection(pdbInfo);
    if (sInfo->selectMode == 1)
        return pdbSetSelection(pdbInfo, sInfo->selectID);
    const bool simple = pdbInfo->chainCount == 1 && pdbInfo->segCount == 1 && sInfo->chainNameMode == 0 &&
                        sInfo->segNameMode == 0;
    return simple ? selectSimple(*pdbInfo, *sInfo) : selectComplex(*pdbInfo, *sInfo);
}

int pdbSelect1(PDBInfo *pdbInfo, int res1, int resN, std::string_view atomNameList, int selectID,
               int matchMode)
{
    PDBSelectInfo sInfo;
    sInfo.res1 = res1;
    sInfo.resN = resN;
    sInfo.atomNameList = atomNameList;
    sInfo.atomNameMode = matchMode;
    sInfo.selectID = selectID;
    sInfo.selectMode = 2;
    return pdbSelect(pdbInfo, &sInfo);
}

int pdbSetSelection(PDBInfo *pdbInfo, int selectID)
{
    if (pdbInfo == nullptr)
        return 0;
    for (AtomInfo &atom : pdbInfo->atoms())
        atom.selected = selectID;
    return pdbInfo->atomCount;
}

int pdbClearSelection(PDBInfo *pdbInfo)
{
    return pdbSetSelection(pdbInfo, 0);
}

int pdbClearAuxInfo(PDBInfo *pdbInfo)
{
    if (pdbInfo == nullptr)
        return 0;
    for (AtomInfo &atom : pdbInfo->atoms())
        atom.auxInfo = nullptr;
    return pdbInfo->atomCount;
}

std::vector<int> selectionMarks(const PDBInfo &pdbInfo)
{
    std::vector<int> marks;
    for (const AtomInfo &atom : pdbInfo.atoms())
        marks.push_back(atom.selected);
    return marks;
}

void restoreMarks(PDBInfo *pdbInfo, std::span<const int> marks)
{
    for (std::size_t i = 0; i < marks.size(); ++i)
        pdbInfo->atomList[i].selected = marks[i];
}

} // namespace trelm
