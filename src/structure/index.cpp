// The lists of residues, chains and segments over the atom array.
#include "structure/keys.h"
#include "structure/pdb.h"

#include <algorithm>

namespace trelm {
namespace {

/// Room of a list at the start. A residue has some twenty atoms; a file may hold as many chains as atoms.
constexpr std::size_t firstResidues = 512;
constexpr std::size_t firstChains = 8;
constexpr std::size_t firstAtomsOfGroup = 32;

/// A molecule at work.
struct Indexing {
    PDBInfo &pdbInfo;
    Messages &messages;
    std::string key = {}; ///< of the record at hand
};

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

/// The record of the key at hand; a new one, in its default state, if the key is new. Null after a message.
template <class T>
T *findOrAdd(const KeyedList<T> &keyed, const Indexing &work)
{
    if (const auto place = hFindSym(work.key, keyed.table))
        return &keyed.list[static_cast<std::size_t>(*place)];
    const auto count = static_cast<std::size_t>(keyed.count);
    if (!makeRoom(keyed.list, "pdb", count, 1, keyed.first)) {
        work.messages.err("%s", keyed.memoryMessage);
        return nullptr;
    }
    if (hAddSym(work.key, keyed.count, keyed.table, work.messages) != Status::ok) {
        work.messages.err("%s", keyed.tableMessage);
        return nullptr;
    }
    ++keyed.count;
    return &keyed.list[count];
}

/// Enters an atom under its key. An atom whose key is taken stays in the lists, and the key stays with the
/// first.
Status insertAtom(Indexing &work, int place)
{
    PDBInfo &pdbInfo = work.pdbInfo;
    const AtomInfo &atom = pdbInfo.atomList[static_cast<std::size_t>(place)];
    buildAtomText(atom.resID, atom.atomName.view(), atom.icode.view(), atom.chainID.view(), atom.segID.view(),
                  work.key);
    if (hFindSym(work.key, pdbInfo.atomTab)) {
        work.messages.err("PDB Warning: Redundant Atom Specification.\n"
                          " ResID: %d AtomName: %s Chain: %s Segment: %s\n",
                          atom.resID, atom.atomName.c_str(), atom.chainID.c_str(), atom.segID.c_str());
        return Status::ok;
    }
    if (hAddSym(work.key, place, pdbInfo.atomTab, work.messages) != Status::ok)
        return work.messages.fail("PDB Atom Symbol Table Error.\n");
    return Status::ok;
}

ResInfo *residueOf(Indexing &work, const AtomInfo &atom)
{
    PDBInfo &pdbInfo = work.pdbInfo;
    buildResText(atom.resID, atom.chainID.view(), atom.segID.view(), work.key);
    return findOrAdd<ResInfo>({pdbInfo.resList, pdbInfo.resCount, pdbInfo.resTab, firstResidues,
                               "PDB Error Allocating Residue memory.\n", "PDB Residue Symbol Table Error.\n"},
                              work);
}

ChainInfo *chainOf(Indexing &work, const AtomInfo &atom)
{
    PDBInfo &pdbInfo = work.pdbInfo;
    buildChainText(atom.chainID.view(), atom.segID.view(), work.key);
    return findOrAdd<ChainInfo>({pdbInfo.chainList, pdbInfo.chainCount, pdbInfo.chainTab, firstChains,
                                 "PDB Error Allocating Chain memory.\n", "PDB Chain Symbol Table Error.\n"},
                                work);
}

SegInfo *segmentOf(Indexing &work, const AtomInfo &atom)
{
    PDBInfo &pdbInfo = work.pdbInfo;
    buildSegText(atom.segID.view(), atom.chainID.view(), work.key);
    return findOrAdd<SegInfo>({pdbInfo.segList, pdbInfo.segCount, pdbInfo.segTab, firstChains,
                               "PDB Error Allocating Seg memory.\n", "PDB Seg Symbol Table Error.\n"},
                              work);
}

/// Takes an atom into a residue, chain or segment, whose names are those of the last atom. Without memory it
/// stays out and the loops go on; the molecule is then not whole, and no run may work with it.
template <class Group>
Status addAtom(Group &group, const AtomInfo &atom, Messages &messages)
{
    group.chainID = atom.chainID;
    group.segID = atom.segID;
    if (!makeRoom(group.atomList, "pdb", static_cast<std::size_t>(group.atomCount), 1, firstAtomsOfGroup))
        return messages.fail("PDB Error Allocating Atom Index memory.\n");
    group.atomList[static_cast<std::size_t>(group.atomCount++)] = &atom;
    return Status::ok;
}

Status indexAtoms(Indexing &work)
{
    PDBInfo &pdbInfo = work.pdbInfo;
    for (int i = 0; i < pdbInfo.atomCount; ++i) {
        const int resID = pdbInfo.atomList[static_cast<std::size_t>(i)].resID;
        pdbInfo.minResID = i == 0 ? resID : std::min(pdbInfo.minResID, resID);
        pdbInfo.maxResID = i == 0 ? resID : std::max(pdbInfo.maxResID, resID);
        if (insertAtom(work, i) != Status::ok)
            return Status::failed;
    }
    return Status::ok;
}

/// Residues and their atoms.
Status indexResidues(Indexing &work)
{
    Status status = Status::ok;
    for (const AtomInfo &atom : work.pdbInfo.atoms()) {
        ResInfo *residue = residueOf(work, atom);
        if (residue == nullptr)
            return Status::failed;
        residue->resID = atom.resID;
        residue->resName = atom.resName;
        if (addAtom(*residue, atom, work.messages) != Status::ok)
            status = Status::failed;
    }
    return status;
}

Status indexChains(Indexing &work)
{
    Status status = Status::ok;
    for (const AtomInfo &atom : work.pdbInfo.atoms()) {
        ChainInfo *chain = chainOf(work, atom);
        if (chain == nullptr)
            return Status::failed;
        if (addAtom(*chain, atom, work.messages) != Status::ok)
            status = Status::failed;
        SegInfo *segment = segmentOf(work, atom);
        if (segment == nullptr)
            return Status::failed;
        if (addAtom(*segment, atom, work.messages) != Status::ok)
            status = Status::failed;
    }
    return status;
}

/// The atoms' pointers to the record that lists them. They come last: the lists move as they grow.
template <class Group>
void linkAtoms(PDBInfo &pdbInfo, const Group &group, const Group *AtomInfo::*field)
{
    for (const AtomInfo *atom : group.atomList.span().first(static_cast<std::size_t>(group.atomCount)))
        pdbInfo.atomList[pdbInfo.placeOf(*atom)].*field = &group;
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
    for (const ResInfo &residue : pdbInfo.residues())
        linkAtoms(pdbInfo, residue, &AtomInfo::resInfo);
    for (ChainInfo &chain : pdbInfo.chainList.span().first(static_cast<std::size_t>(pdbInfo.chainCount))) {
        linkAtoms(pdbInfo, chain, &AtomInfo::chainInfo);
        setRange(chain);
    }
    for (SegInfo &seg : pdbInfo.segList.span().first(static_cast<std::size_t>(pdbInfo.segCount))) {
        linkAtoms(pdbInfo, seg, &AtomInfo::segInfo);
        setRange(seg);
    }
}

} // namespace

Status indexPDB(PDBInfo &pdbInfo, Messages &messages)
{
    if (pdbInfo.atomCount == 0)
        return Status::ok;
    pdbInfo.defChainName = pdbInfo.atomList[0].chainID;
    pdbInfo.defSegName = pdbInfo.atomList[0].segID;
    Indexing work = {pdbInfo, messages};
    if (indexAtoms(work) != Status::ok || indexResidues(work) != Status::ok ||
        indexChains(work) != Status::ok)
        return Status::failed;
    linkAll(pdbInfo);
    return Status::ok;
}

} // namespace trelm
