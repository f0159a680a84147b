#include "structure/atom_columns.h"

#include "support/text/text.h"

#include <string>

namespace trelm {
namespace {

constexpr int maskResID = 1, maskAtomName = 2, maskResName = 4, maskChainName = 8, maskSegName = 16;

/// Reads a name column. Returns the mask if there is one.
int readName(const std::vector<tabVar> &varInfo, const float *rPtr, int loc, int (*fix)(Name &), int mask,
             Name &name)
{
    if (loc < 0)
        return 0;
    pdbStrCpy(name, tabText(varInfo[static_cast<std::size_t>(loc)], rPtr[loc]));
    fix(name);
    return mask;
}

} // namespace

void getAtomTabLocs(const std::vector<tabVar> &varInfo, std::string_view suffix, AtomTabLocs &locs)
{
    const auto find = [&](std::string_view name) {
        return getTabVar(varInfo, std::string(name).append(suffix));
    };
    locs = {find("RESID"), find("RESNAME"), find("ATOMNAME"), find("CHAINNAME"), find("SEGNAME")};
}

int getAtomTabVals(const std::vector<tabVar> &varInfo, const float *rPtr, const AtomTabLocs &locs,
                   AtomTabVals &vals)
{
    int result = 0;
    if (locs.resID >= 0) {
        vals.resID = truncated(rPtr[locs.resID]);
        result += maskResID;
    }
    result += readName(varInfo, rPtr, locs.resName, fixResName, maskResName, vals.resName);
    result += readName(varInfo, rPtr, locs.atomName, fixAtomName, maskAtomName, vals.atomName);
    result += readName(varInfo, rPtr, locs.chainName, fixChainName, maskChainName, vals.chainName);
    result += readName(varInfo, rPtr, locs.segName, fixSegName, maskSegName, vals.segName);
    return result;
}

} // namespace trelm
