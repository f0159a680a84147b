#include "structure/models.h"

#include "structure/hydrogens.h"

namespace trelm {
namespace {

bool isSameAtom(const AtomInfo &a, const AtomInfo &b)
{
    return a.resID == b.resID && a.atomName == b.atomName && a.resName == b.resName &&
           a.chainID == b.chainID && a.segID == b.segID && a.icode == b.icode && a.locID == b.locID;
}

std::string textOf(const AtomInfo &atom)
{
    return std::string(atom.atomName.view()) + " of " + atom.resName.c_str() + " " +
           std::to_string(atom.resID);
}

Status failDiffering(int number, const ModelSet &all, const std::string &found, Messages &messages)
{
    return messages.fail("PDB Error: model %d is no copy of model %d: %s (-model N reads one).\n", number,
                         all.numbers[0], found.c_str());
}

/// The molecule as it was read, with the places of another model.
Status copyAtoms(const std::vector<AtomInfo> &atoms, const std::vector<Coord3D> &coords, PDBInfo &copy,
                 Messages &messages)
{
    for (std::size_t k = 0; k < atoms.size(); ++k)
        if (appendAtom(atoms[k], coords[k], copy, messages) != Status::ok)
            return Status::failed;
    return Status::ok;
}

} // namespace

void Models::begin(int number)
{
    ++count;
    isOpen = all != nullptr || (wanted == 0 ? count == 1 : number == wanted);
    wasFound = wasFound || isOpen;
    if (all != nullptr) {
        all->numbers.push_back(number > 0 ? number : count);
        all->coords.emplace_back();
    }
}

Status takeAtom(const AtomInfo &atom, const Coord3D &at, Models &models, PDBInfo &pdbInfo, Messages &messages)
{
    if (models.all == nullptr || models.count < 2)
        return appendAtom(atom, at, pdbInfo, messages);
    ModelSet &all = *models.all;
    const std::size_t place = all.coords.back().size();
    if (place >= pdbInfo.atoms().size())
        return failDiffering(all.numbers.back(), all, "it also has " + textOf(atom), messages);
    if (const AtomInfo &first = pdbInfo.atoms()[place]; !isSameAtom(atom, first))
        return failDiffering(all.numbers.back(), all,
                             "it has " + textOf(atom) + " in the place of " + textOf(first), messages);
    all.coords.back().push_back(at);
    return Status::ok;
}

Status completeModels(const PDBInfo &pdbInfo, const char *name, ModelSet &all, Messages &messages)
{
    if (all.empty()) {
        all.numbers.push_back(1);
        all.coords.emplace_back();
    }
    all.coords[0] = copyOfCoordinates(pdbInfo);
    for (std::size_t m = 1; m < all.coords.size(); ++m)
        if (const std::size_t count = all.coords[m].size(); count < pdbInfo.atoms().size())
            return failDiffering(all.numbers[m], all,
                                 "it lacks " + textOf(pdbInfo.atoms()[count]) + " in " + name, messages);
    return Status::ok;
}

Status addHydrogensToAll(const HydrogenBonds &bonds, PDBInfo &pdbInfo, ModelSet &all, std::size_t &built,
                         Messages &messages)
{
    const std::vector<AtomInfo> read(pdbInfo.atoms().begin(), pdbInfo.atoms().end());
    if (addHydrogens(bonds, pdbInfo, built, messages) != Status::ok)
        return Status::failed;
    for (std::size_t m = 0; m < all.coords.size(); ++m) {
        PDBInfo copy;
        std::size_t count = 0;
        if (copyAtoms(read, all.coords[m], copy, messages) != Status::ok ||
            addHydrogens(bonds, copy, count, messages) != Status::ok)
            return Status::failed;
        if (count != built)
            return failDiffering(all.numbers[m], all, "it gets other hydrogens", messages);
        all.coords[m] = copyOfCoordinates(copy);
    }
    return Status::ok;
}

} // namespace trelm
