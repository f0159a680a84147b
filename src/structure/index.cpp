// The lists of residues, chains and segments over the atom array.
#include "structure/keys.h"
#include "structure/pdb.h"
#include "structure/write.h"
#include "support/text.h"

#include <algorithm>
#include <cstdint>

namespace trelm {
namespace {

/// How much room a list gets at the start, and how much more each time it is full.
struct Growth {
    std::size_t first;
    std::size_t step;
};

constexpr Growth residueGrowth = {512, 150};
constexpr Growth chainGrowth = {8, 8};
constexpr Growth residueAtomGrowth = {32, 8};
constexpr Growth chainAtomGrowth = {4096, 1024};
constexpr Growth chainResidueGrowth = {512, 150};

/// Appends to a list of pointers. Returns false if it cannot grow.
template <class T>
bool append(Block<T *> &list, int &count, T *item, const Growth &growth)
{
    if (!makeRoom(list, "pdb", static_cast<std::size_t>(count), growth.first, growth.step))
        return false;
    list[static_cast<std::size_t>(count++)] = item;
    return true;
}

/// A list of records with the table of its keys, and what to say when one of them fails.
template <class T>
struct KeyedList {
    Block<T> &list;
    int &count;
    HTabInfo &table;
    Growth growth;
    const char *memoryMessage;
    const char *tableMessage;
};

/// The place of the record of a key; a new one, in its default state, if the key is new. -1 after a message.
template <class T>
int findOrAdd(const KeyedList<T> &keyed, const std::string &key)
{
    const HSymInfo *known = hFindSym(key, keyed.table);
    if (known != nullptr)
        return known->val.i;
    if (!makeRoom(keyed.list, "pdb", static_cast<std::size_t>(keyed.count), keyed.growth.first,
                  keyed.growth.step))
        return complain("%s", keyed.memoryMessage), -1;
    HSymInfo *symbol = hAddSym(key, symIndex, keyed.table);
    if (symbol == nullptr)
        return complain("%s", keyed.tableMessage), -1;
    symbol->val.i = keyed.count;
    return keyed.count++;
}

/// Enters an atom under its key. An atom whose key is taken stays in the lists, and the key stays with the
/// first.
int insertAtom(PDBInfo &pdbInfo, int place, std::string &key)
{
    const AtomInfo &atom = pdbInfo.atomList[static_cast<std::size_t>(place)];
    buildAtomText(atom.resID, atom.atomName.view(), atom.icode.view(), atom.chainID.view(), atom.segID.view(),
                  key);
    const HSymInfo *known = hFindSym(key, pdbInfo.atomTab);
    if (known != nullptr) {
        complain("PDB Warning: Redundant Atom Specification.\n"
                 " ResID: %d AtomName: %s Chain: %s Segment: %s\n",
                 atom.resID, atom.atomName.c_str(), atom.chainID.c_str(), atom.segID.c_str());
        return known->val.i;
    }
    HSymInfo *symbol = hAddSym(key, symIndex, pdbInfo.atomTab);
    if (symbol == nullptr)
        return complain("PDB Atom Symbol Table Error.\n"), -1;
    symbol->val.i = place;
    return place;
}

int insertRes(PDBInfo &pdbInfo, const AtomInfo &atom, std::string &key)
{
    buildResText(atom.resID, atom.chainID.view(), atom.segID.view(), key);
    return findOrAdd<ResInfo>({pdbInfo.resList, pdbInfo.resCount, pdbInfo.resTab, residueGrowth,
                               "PDB Error Allocating Residue memory.\n", "PDB Residue Symbol Table Error.\n"},
                              key);
}

int insertChain(PDBInfo &pdbInfo, const AtomInfo &atom, std::string &key)
{
    buildChainText(atom.chainID.view(), atom.segID.view(), key);
    return findOrAdd<ChainInfo>({pdbInfo.chainList, pdbInfo.chainCount, pdbInfo.chainTab, chainGrowth,
                                 "PDB Error Allocating Chain memory.\n", "PDB Chain Symbol Table Error.\n"},
                                key);
}

int insertSeg(PDBInfo &pdbInfo, const AtomInfo &atom, std::string &key)
{
    buildSegText(atom.segID.view(), atom.chainID.view(), key);
    return findOrAdd<SegInfo>({pdbInfo.segList, pdbInfo.segCount, pdbInfo.segTab, chainGrowth,
                               "PDB Error Allocating Seg memory.\n", "PDB Seg Symbol Table Error.\n"},
                              key);
}

int indexAtoms(PDBInfo &pdbInfo, std::string &key)
{
    for (int i = 0; i < pdbInfo.atomCount; ++i) {
        const int resID = pdbInfo.atomList[static_cast<std::size_t>(i)].resID;
        pdbInfo.minResID = i == 0 ? resID : std::min(pdbInfo.minResID, resID);
        pdbInfo.maxResID = i == 0 ? resID : std::max(pdbInfo.maxResID, resID);
        if (insertAtom(pdbInfo, i, key) < 0)
            return 1;
    }
    return 0;
}

/// Residues and their atoms. The last atom's names stand. Back pointers come last: the list moves as it
/// grows. An atom for which there is no memory stays out, and the loop goes on; the molecule is then not
/// whole, and no run may work with it.
int indexResidues(PDBInfo &pdbInfo, std::string &key)
{
    int status = 0;
    for (AtomInfo &atom : pdbInfo.atoms()) {
        const int place = insertRes(pdbInfo, atom, key);
        if (place < 0)
            return 1;
        ResInfo &residue = pdbInfo.resList[static_cast<std::size_t>(place)];
        residue.resID = atom.resID;
        if (!append(residue.atomList, residue.atomCount, &atom, residueAtomGrowth))
            status = complain("PDB Error Allocating Atom Index memory.\n");
        residue.resName = atom.resName;
        residue.chainID = atom.chainID;
        residue.segID = atom.segID;
    }
    for (ResInfo &residue : pdbInfo.residues())
        for (int i = 0; i < residue.atomCount; ++i)
            residue.atomList[static_cast<std::size_t>(i)]->resInfo = &residue;
    return status;
}

/// Takes an atom into a chain or segment. Returns 0, or 1 after a message if it stays out.
template <class Group>
int addAtom(Group &group, AtomInfo &atom)
{
    group.chainID = atom.chainID;
    group.segID = atom.segID;
    return append(group.atomList, group.atomCount, &atom, chainAtomGrowth)
               ? 0
               : complain("PDB Error Allocating Atom Index memory.\n");
}

int indexChains(PDBInfo &pdbInfo, std::string &key)
{
    int status = 0;
    for (AtomInfo &atom : pdbInfo.atoms()) {
        const int chain = insertChain(pdbInfo, atom, key);
        if (chain < 0)
            return 1;
        status |= addAtom(pdbInfo.chainList[static_cast<std::size_t>(chain)], atom);
        const int seg = insertSeg(pdbInfo, atom, key);
        if (seg < 0)
            return 1;
        status |= addAtom(pdbInfo.segList[static_cast<std::size_t>(seg)], atom);
    }
    return status;
}

/// Back pointers and residue range of a chain or segment; `field` names the pointer of atoms and `resField`
/// that of residues.
template <class Group>
void linkGroup(Group &group, Group *AtomInfo::*field, Group *ResInfo::*resField)
{
    for (int i = 0; i < group.atomCount; ++i) {
        AtomInfo &atom = *group.atomList[static_cast<std::size_t>(i)];
        atom.*field = &group;
        if (atom.resInfo != nullptr)
            atom.resInfo->*resField = &group;
        group.minResID = i == 0 ? atom.resID : std::min(group.minResID, atom.resID);
        group.maxResID = i == 0 ? atom.resID : std::max(group.maxResID, atom.resID);
    }
}

/// Returns 0, or 1 after a message if the residue stays out.
template <class Group>
int addResidue(Group *group, ResInfo &residue)
{
    const bool isIn =
        group == nullptr || append(group->resList, group->resCount, &residue, chainResidueGrowth);
    return isIn ? 0 : complain("PDB Error Allocating Residue Index memory.\n");
}

/// The array of a chain's residues by number. Returns false if there is no memory.
template <class Group>
bool fillResArray(Group &group)
{
    if (group.resCount == 0)
        return true;
    const auto length = static_cast<std::size_t>(std::int64_t{group.maxResID} - group.minResID + 1);
    group.resArray = Block<ResInfo *>("pdb", length);
    if (!group.resArray)
        return false;
    for (int i = 0; i < group.resCount; ++i) {
        ResInfo *residue = group.resList[static_cast<std::size_t>(i)];
        group.resArray[static_cast<std::size_t>(std::int64_t{residue->resID} - group.minResID)] = residue;
    }
    return true;
}

int linkChains(PDBInfo &pdbInfo)
{
    const auto chains = pdbInfo.chainList.span().first(static_cast<std::size_t>(pdbInfo.chainCount));
    const auto segs = pdbInfo.segList.span().first(static_cast<std::size_t>(pdbInfo.segCount));
    for (ChainInfo &chain : chains)
        linkGroup(chain, &AtomInfo::chainInfo, &ResInfo::chainInfo);
    for (SegInfo &seg : segs)
        linkGroup(seg, &AtomInfo::segInfo, &ResInfo::segInfo);
    int status = 0;
    for (ResInfo &residue : pdbInfo.residues()) {
        status |= addResidue(residue.chainInfo, residue);
        status |= addResidue(residue.segInfo, residue);
    }
    for (ChainInfo &chain : chains)
        if (!fillResArray(chain))
            return complain("PDB Error Allocating Chain Residue Array.\n");
    for (SegInfo &seg : segs)
        if (!fillResArray(seg))
            return complain("PDB Error Allocating Seg Residue Array.\n");
    return status;
}

const ResTypeInfo *findResType(std::string_view resName)
{
    const auto known = CanonicalResList.first(CanonicalResList.size() - 1);
    for (const ResTypeInfo &row : known)
        if (equalNoCase(resName, row.resName))
            return &row;
    return &CanonicalResList.back();
}

/// Neighbours by number, and the kind of each residue. The numbers next to the limits of int have no
/// neighbour.
void linkResidues(PDBInfo &pdbInfo)
{
    for (ResInfo &residue : pdbInfo.residues()) {
        const std::string_view chain = residue.chainID.view();
        const std::string_view seg = residue.segID.view();
        if (residue.resID > pdbInfo.minResID)
            residue.prev = findRes(&pdbInfo, residue.resID - 1, chain, seg);
        if (residue.resID < pdbInfo.maxResID)
            residue.next = findRes(&pdbInfo, residue.resID + 1, chain, seg);
        residue.resType = findResType(residue.resName.view());
        residue.phiPsiSurf = nullptr;
    }
}

int saveCoordinates(PDBInfo &pdbInfo)
{
    pdbInfo.coordList = Block<Coord3D>("pdb", pdbInfo.atomList.length());
    if (!pdbInfo.coordList)
        return complain("PDB Error Allocating PDB coords.\n");
    return storePDBCoords(&pdbInfo);
}

} // namespace

int indexPDB(PDBInfo *pdbInfo)
{
    if (pdbInfo == nullptr || pdbInfo->atomCount == 0 || !pdbInfo->atomList)
        return 0;
    pdbInfo->defChainName = pdbInfo->atomList[0].chainID;
    pdbInfo->defSegName = pdbInfo->atomList[0].segID;
    std::string key;
    if (saveCoordinates(*pdbInfo) != 0 || indexAtoms(*pdbInfo, key) != 0 ||
        indexResidues(*pdbInfo, key) != 0 || indexChains(*pdbInfo, key) != 0 || linkChains(*pdbInfo) != 0)
        return 1;
    linkResidues(*pdbInfo);
    return 0;
}

} // namespace trelm
