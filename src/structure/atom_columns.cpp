#include "structure/atom_columns.h"

#include "support/text/text.h"

#include <string>

namespace trelm {
namespace {

/// Reads a name column, if there is one.
void readName(const std::vector<tabVar> &varInfo, const float *rPtr, std::optional<std::size_t> loc,
              Name &name, Messages &messages)
{
    if (!loc)
        return;
    name = pdbStrCpy(tabText(varInfo[*loc], rPtr[*loc]), messages);
    blankName(name);
}

} // namespace

void getAtomTabLocs(const std::vector<tabVar> &varInfo, std::string_view suffix, AtomTabLocs &locs)
{
    const auto find = [&](std::string_view name) {
        return getTabVar(varInfo, std::string(name).append(suffix));
    };
    locs = {find("RESID"), find("RESNAME"), find("ATOMNAME"), find("CHAINNAME"), find("SEGNAME")};
}

void getAtomTabVals(const std::vector<tabVar> &varInfo, const float *rPtr, const AtomTabLocs &locs,
                    AtomTabVals &vals, Messages &messages)
{
    if (locs.resID)
        vals.resID = truncated(rPtr[*locs.resID]);
    readName(varInfo, rPtr, locs.resName, vals.resName, messages);
    readName(varInfo, rPtr, locs.atomName, vals.atomName, messages);
    readName(varInfo, rPtr, locs.chainName, vals.chainName, messages);
    readName(varInfo, rPtr, locs.segName, vals.segName, messages);
}

} // namespace trelm
