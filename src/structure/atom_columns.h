// The columns of a text table that name an atom.
#pragma once

#include "structure/pdb.h"
#include "support/text/table.h"

#include <optional>
#include <string_view>
#include <vector>

namespace trelm {

/// Places of the atom columns of a table, those that it has.
struct AtomTabLocs {
    std::optional<std::size_t> resID, resName, atomName, chainName, segName;
};

/// What the atom columns of one row hold.
struct AtomTabVals {
    int resID = 0;
    Name resName, atomName, chainName, segName;
};

/// Finds RESID, RESNAME, ATOMNAME, CHAINNAME, SEGNAME with a suffix such as "_I".
void getAtomTabLocs(const std::vector<tabVar> &varInfo, std::string_view suffix, AtomTabLocs &locs);

/// Reads the atom columns of the row at rPtr; fields without a column stay. A name that is too long is told.
void getAtomTabVals(const std::vector<tabVar> &varInfo, const float *rPtr, const AtomTabLocs &locs,
                    AtomTabVals &vals, Messages &messages);

} // namespace trelm
