#include "assignment/moved_row.h"

#include "assignment/problem.h"

#include <cstdint>

namespace trelm {
namespace {

/// The name of a side's residue in the structure; a table without residue names stays without.
void nameResidue(const PDBInfo &pdbInfo, const SideQuery &side, Name &resName)
{
    if (resName.empty())
        return;
    const ResInfo *residue = findRes(pdbInfo, side.resID, side.chainName.view(), side.segName.view());
    if (residue != nullptr)
        resName = residue->resName;
    else
        resName = Name::of("None");
}

} // namespace

MovedRow moveRow(const PDBInfo &pdbInfo, const DTable &dTab, int row, int resID, Messages &messages)
{
    const DInfo &likeObs = dTab.dObsList[row];
    const DCalc &likeCalc = dTab.dCalcList[row];
    const std::int64_t shift = std::int64_t{resID} - peakIdOf(likeObs, couplingType(likeObs));
    const int aOff = shiftedRes(likeCalc.resIDI, -std::int64_t{likeObs.resIDI});
    MovedRow moved;
    moved.obs = likeObs;
    moved.obs.resIDI = shiftedRes(likeObs.resIDI, shift);
    moved.obs.resIDJ = shiftedRes(likeObs.resIDJ, shift);
    const RowQueries sides = queriesOf(pdbInfo, dTab, moved.obs, aOff);
    RowNames names = *moved.obs.names;
    nameResidue(pdbInfo, sides.i, names.resNameI);
    nameResidue(pdbInfo, sides.j, names.resNameJ);
    setNames(dTab, names, moved.obs);
    buildRow(pdbInfo, dTab, aOff, moved.obs, moved.calc, messages);
    return moved;
}

} // namespace trelm
