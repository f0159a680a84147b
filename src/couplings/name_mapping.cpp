#include "couplings/name_mapping.h"

#include "couplings/interaction.h"
#include "structure/atom_names.h"
#include "support/text/text.h"

#include <algorithm>
#include <array>
#include <optional>

namespace trelm {
namespace {

/// The structure's name for the atom of a side, if it has it under another one alone.
std::optional<Name> renamed(const PDBInfo &pdbInfo, const SideQuery &side)
{
    std::array<std::size_t, maxWildAtoms> found = {};
    if (findAtomList(pdbInfo, side.resID, side.atomName.view(), side.chainName.view(), side.segName.view(),
                     found) != 0)
        return std::nullopt;
    const ResInfo *residue = findRes(pdbInfo, side.resID, side.chainName.view(), side.segName.view());
    const AtomInfo *atom =
        residue != nullptr ? findRenamed(pdbInfo, *residue, side.atomName.view()) : nullptr;
    return atom != nullptr ? std::optional(atom->atomName) : std::nullopt;
}

void mapName(const std::optional<Name> &to, Name &name, std::vector<MappedName> &mapped)
{
    if (!to)
        return;
    auto known = std::ranges::find_if(
        mapped, [&](const MappedName &row) { return row.from == name.view() && row.to == to->view(); });
    if (known == mapped.end())
        known = mapped.insert(mapped.end(), {name.c_str(), to->c_str()});
    ++known->rows;
    name = *to;
}

/// The interaction of a pair with its atoms exchanged, if only that has a fixed distance.
std::optional<Interaction> turned(const DInfo &row)
{
    const PairSide i = {row.resIDI, row.names->atomNameI.view()},
                   j = {row.resIDJ, row.names->atomNameJ.view()};
    if (row.valid == 0 || row.diFixedFlag != 0)
        return std::nullopt;
    Messages silent([](Messages::Stream, std::string_view) {}); // unknown nuclei are told elsewhere
    const Interaction exchanged = findVariableDI(0.0f, j, i, 1, silent);
    return exchanged.isFixed ? std::optional(exchanged) : std::nullopt;
}

} // namespace

NameMapping mapNames(const PDBInfo &pdbInfo, int aOff, DTable &dTab)
{
    NameMapping mapping;
    for (DInfo &row : dTab.observed()) {
        if (row.valid == 0)
            continue;
        const RowQueries sides = queriesOf(pdbInfo, dTab, row, aOff);
        const std::optional<Name> i = renamed(pdbInfo, sides.i), j = renamed(pdbInfo, sides.j);
        RowNames names = *row.names;
        mapName(i, names.atomNameI, mapping.names);
        mapName(j, names.atomNameJ, mapping.names);
        if (i || j)
            setNames(dTab, names, row);
        if (const auto exchanged = turned(row)) {
            row.di = exchanged->di;
            row.diFixedFlag = 1;
            ++mapping.turnedPairs;
        }
    }
    return mapping;
}

std::string mappingText(const NameMapping &mapping)
{
    std::string text;
    for (const MappedName &name : mapping.names)
        appendf(text, "%s%s read as %s (%d row%s)", text.empty() ? "" : ", ", name.from.c_str(),
                name.to.c_str(), name.rows, name.rows == 1 ? "" : "s");
    if (mapping.turnedPairs != 0)
        appendf(text, "%s%d pair%s with N first take%s the fixed distance", text.empty() ? "" : ", ",
                mapping.turnedPairs, mapping.turnedPairs == 1 ? "" : "s",
                mapping.turnedPairs == 1 ? "s" : "");
    return text;
}

int countTurnedPairs(const DTable &dTab)
{
    return static_cast<int>(
        std::ranges::count_if(dTab.observed(), [&](const DInfo &row) { return turned(row).has_value(); }));
}

} // namespace trelm
