#include "structure/select.h"

#include "support/match.h"
#include "support/text.h"
#include "support/token.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <utility>

namespace trelm {
namespace {

constexpr int classCanonical = 4;  ///< selectClass: canonical amino acids only
constexpr int selectInverted = -1; ///< selectMode
constexpr int caseCounts = 1;

bool isCanonical(const AtomInfo &atom)
{
    for (const ResTypeInfo &row : CanonicalResList.first(CanonicalResList.size() - 1))
        if (equalNoCase(atom.resName.view(), row.resName))
            return row.resClass == 1;
    return false;
}

/// True if no test is asked for, or if one entry of the list matches.
bool matchesList(const Name &name, const std::string &list, int count, int mode)
{
    if (mode == 0)
        return true;
    for (int i = 1; i <= count; ++i)
        if (strMatch(name.view(), getToken(i, list), mode, caseCounts) != 0)
            return true;
    return false;
}

bool passesTests(const PDBSelectInfo &sInfo, const AtomInfo &atom)
{
    if (sInfo.resIDMode != 0 && (atom.resID < sInfo.res1 || atom.resID > sInfo.resN))
        return false;
    return matchesList(atom.atomName, sInfo.atomNameList, sInfo.atomNameCount, sInfo.atomNameMode) &&
           matchesList(atom.resName, sInfo.resNameList, sInfo.resNameCount, sInfo.resNameMode) &&
           matchesList(atom.chainID, sInfo.chainNameList, sInfo.chainNameCount, sInfo.chainNameMode) &&
           matchesList(atom.segID, sInfo.segNameList, sInfo.segNameCount, sInfo.segNameMode);
}

int markIfIn(const PDBSelectInfo &sInfo, AtomInfo &atom)
{
    if (pdbSelectTest(&sInfo, &atom) == 0)
        return 0;
    atom.selected = sInfo.selectID;
    return 1;
}

/// One chain and one segment: only the residues of the range are looked at.
int selectSimple(PDBInfo &pdbInfo, const PDBSelectInfo &sInfo)
{
    if (sInfo.dbgFlag != 0)
        std::fprintf(stderr, "GORVAT Info: Simple Selection.\n");
    int marked = 0;
    const std::int64_t first = std::max(sInfo.res1, pdbInfo.minResID);
    const std::int64_t last = std::min(sInfo.resN, pdbInfo.maxResID);
    for (std::int64_t resID = first; resID <= last; ++resID) {
        ResInfo *residue = findRes(&pdbInfo, static_cast<int>(resID), pdbInfo.defChainName.view(),
                                   pdbInfo.defSegName.view());
        for (int i = 0; residue != nullptr && i < residue->atomCount; ++i)
            marked += markIfIn(sInfo, *residue->atomList[static_cast<std::size_t>(i)]);
    }
    return marked;
}

int selectComplex(PDBInfo &pdbInfo, const PDBSelectInfo &sInfo)
{
    if (sInfo.dbgFlag != 0)
        std::fprintf(stderr, "GORVAT Info: Complex Selection Atom %d Res %d Seg %d Chain %d\n",
                     sInfo.atomNameMode, sInfo.resNameMode, sInfo.chainNameMode, sInfo.segNameMode);
    int marked = 0;
    for (AtomInfo &atom : pdbInfo.atoms())
        marked += markIfIn(sInfo, atom);
    return marked;
}

/// Counts a list, and switches off the test of one that is exactly "*".
void adjustList(const std::string &list, int &count, int &mode)
{
    count = cntToken(list);
    if (list == "*")
        mode = 0;
}

} // namespace

int pdbSelectNull(PDBSelectInfo *sInfo)
{
    *sInfo = PDBSelectInfo{};
    return 0;
}

void pdbSelectAdjust(PDBSelectInfo &sInfo)
{
    if (sInfo.res1 > sInfo.resN)
        std::swap(sInfo.res1, sInfo.resN);
    adjustList(sInfo.resNameList, sInfo.resNameCount, sInfo.resNameMode);
    adjustList(sInfo.atomNameList, sInfo.atomNameCount, sInfo.atomNameMode);
    adjustList(sInfo.chainNameList, sInfo.chainNameCount, sInfo.chainNameMode);
    adjustList(sInfo.segNameList, sInfo.segNameCount, sInfo.segNameMode);
}

int pdbSelectTest(const PDBSelectInfo *sInfo, const AtomInfo *atomInfo)
{
    if (sInfo == nullptr)
        return 1;
    // The class is asked first and in every mode, also with inversion.
    if (sInfo->selectClass == classCanonical && (atomInfo == nullptr || !isCanonical(*atomInfo)))
        return 0;
    if (sInfo->selectMode == 0 || sInfo->selectMode == 1)
        return sInfo->selectMode;
    const int match = sInfo->selectMode == selectInverted ? 0 : 1;
    return atomInfo != nullptr && passesTests(*sInfo, *atomInfo) ? match : 1 - match;
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
