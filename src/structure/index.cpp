// The lists of residues, chains and segments over the atom array.
#include "structure/keys.h"
#include "structure/pdb.h"
#include "structure/write.h"
#include "support/text/text.h"

#include <algorithm>

namespace trelm {
namespace {

/// Room of a list at the start. A residue has some twenty atoms; a file may hold as many chains as atoms.
constexpr std::size_t firstResidues = 512;
constexpr std::size_t firstChains = 8;
constexpr std::size_t firstAtomsOfGroup = 32;

/// A place that could not be given. Prints the message and returns -1.
int noPlace(const char *message)
{
    complain("%s", message);
    return -1;
}

/// A list of records with the table of its keys, and what to say when one of them fails.
template <class T>
struct KeyedList {
    Block<T> &list;
    int &count;
    HTabInfo &table;
    std::size_t first;
    const char *memoryMessage;
    const char *tableMessage;
};

/// The place of the record of a key; a new one, in its default state, if the key is new. -1 after a message.
template <class T>
int findOrAdd(const KeyedList<T> &keyed, const std::string &key)
{
    const HSymInfo *known = hFindSym(key, keyed.table);
    if (known != nullptr)
        return known->value;
    if (!makeRoom(keyed.list, "pdb", static_cast<std::size_t>(keyed.count), 1, keyed.first))
        return noPlace(keyed.memoryMessage);
    HSymInfo *symbol = hAddSym(key, 0, keyed.table);
    if (symbol == nullptr)
        return noPlace(keyed.tableMessage);
    symbol->value = keyed.count;
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
        return known->value;
    }
    HSymInfo *symbol = hAddSym(key, 0, pdbInfo.atomTab);
    if (symbol == nullptr)
        return noPlace("PDB Atom Symbol Table Error.\n");
    symbol->value = place;
    return place;
}

int insertRes(PDBInfo &pdbInfo, const AtomInfo &atom, std::string &key)
{
    buildResText(atom.resID, atom.chainID.view(), atom.segID.view(), key);
    return findOrAdd<ResInfo>({pdbInfo.resList, pdbInfo.resCount, pdbInfo.resTab, firstResidues,
                               "PDB Error Allocating Residue memory.\n", "PDB Residue Symbol Table Error.\n"},
                              key);
}

int insertChain(PDBInfo &pdbInfo, const AtomInfo &atom, std::string &key)
{
    buildChainText(atom.chainID.view(), atom.segID.view(), key);
    return findOrAdd<ChainInfo>({pdbInfo.chainList, pdbInfo.chainCount, pdbInfo.chainTab, firstChains,
                                 "PDB Error Allocating Chain memory.\n", "PDB Chain Symbol Table Error.\n"},
                                key);
}

int insertSeg(PDBInfo &pdbInfo, const AtomInfo &atom, std::string &key)
{
    buildSegText(atom.segID.view(), atom.chainID.view(), key);
    return findOrAdd<SegInfo>({pdbInfo.segList, pdbInfo.segCount, pdbInfo.segTab, firstChains,
                               "PDB Error Allocating Seg memory.\n", "PDB Seg Symbol Table Error.\n"},
                              key);
}

/// Takes an atom into a residue, chain or segment, whose names are those of the last atom. Without memory it
/// stays out and the loops go on; the molecule is then not whole, and no run may work with it: 1.
template <class Group>
int addAtom(Group &group, AtomInfo &atom)
{
    group.chainID = atom.chainID;
    group.segID = atom.segID;
    if (!makeRoom(group.atomList, "pdb", static_cast<std::size_t>(group.atomCount), 1, firstAtomsOfGroup))
        return complain("PDB Error Allocating Atom Index memory.\n");
    group.atomList[static_cast<std::size_t>(group.atomCount++)] = &atom;
    return 0;
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

/// Residues and their atoms.
int indexResidues(PDBInfo &pdbInfo, std::string &key)
{
    int status = 0;
    for (AtomInfo &atom : pdbInfo.atoms()) {
        const int place = insertRes(pdbInfo, atom, key);
        if (place < 0)
            return 1;
        ResInfo &residue = pdbInfo.resList[static_cast<std::size_t>(place)];
        residue.resID = atom.resID;
        residue.resName = atom.resName;
        status |= addAtom(residue, atom);
    }
    return status;
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

/// The atoms' pointers to the record that lists them. They come last: the lists move as they grow.
template <class Group>
void linkAtoms(Group &group, Group *AtomInfo::*field)
{
    for (int i = 0; i < group.atomCount; ++i)
        group.atomList[static_cast<std::size_t>(i)]->*field = &group;
}

template <class Group>
void setRange(Group &group)
{
    const auto atoms = group.atomList.span().first(static_cast<std::size_t>(group.atomCount));
    if (atoms.empty())
        return;
    const auto [low, high] = std::ranges::minmax(atoms, {}, [](const AtomInfo *atom) { return atom->resID; });
    group.minResID = low->resID;
    group.maxResID = high->resID;
}

void linkAll(PDBInfo &pdbInfo)
{
    for (ResInfo &residue : pdbInfo.residues())
        linkAtoms(residue, &AtomInfo::resInfo);
    for (ChainInfo &chain : pdbInfo.chainList.span().first(static_cast<std::size_t>(pdbInfo.chainCount))) {
        linkAtoms(chain, &AtomInfo::chainInfo);
        setRange(chain);
    }
    for (SegInfo &seg : pdbInfo.segList.span().first(static_cast<std::size_t>(pdbInfo.segCount))) {
        linkAtoms(seg, &AtomInfo::segInfo);
        setRange(seg);
    }
}

int saveCoordinates(PDBInfo &pdbInfo)
{
    pdbInfo.coordList = Block<Coord3D>("pdb", pdbInfo.atoms().size());
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
        indexResidues(*pdbInfo, key) != 0 || indexChains(*pdbInfo, key) != 0)
        return 1;
    linkAll(*pdbInfo);
    return 0;
}

} // namespace trelm
