#include "assignment/moved_row.h"

#include <cstdint>
#include <vector>

namespace trelm {
namespace {

/// The name of a side's residue in the structure; a table without residue names stays without.
void nameResidue(PDBInfo &pdbInfo, const SideQuery &side, Name &resName)
{
    if (resName.empty())
        return;
    const ResInfo *residue = findRes(&pdbInfo, side.resID, side.chainName.view(), side.segName.view());
    if (residue != nullptr)
        resName = residue->resName;
    else
        pdbStrCpy(resName, "None");
}

/// A coupling on a residue without a row of its type.
struct Landed {
    int firstRow;     ///< of medium and type
    int resID;        ///< the residue
    std::size_t from; ///< cell of the peak
};

std::vector<Landed> landedCouplings(const PeakTable &peaks, const AssignmentProblem &problem,
                                    std::span<const int> bestIdList)
{
    std::vector<Landed> landed;
    for (std::size_t medium = 0; medium < peaks.media.size(); ++medium)
        for (std::size_t type = 0; type < couplingTypeCount; ++type) {
            const int column = peaks.dcIndex[medium][type];
            for (int row = 0; column != noType && row < problem.peakCount; ++row) {
                const int peak = bestIdList[static_cast<std::size_t>(row)];
                if (peak < 0 || peaks.hasRow[problem.at(row, column)] ||
                    problem.dcMat[problem.at(peak, column)] == noPeakCoupling)
                    continue;
                landed.push_back({peaks.firstRow[medium][type],
                                  peaks.resIdList[static_cast<std::size_t>(row)], problem.at(peak, column)});
            }
        }
    return landed;
}

} // namespace

MovedRow moveRow(PDBInfo &pdbInfo, const DTable &dTab, int row, int resID)
{
    const DInfo &likeObs = dTab.dObsList[static_cast<std::size_t>(row)];
    const DInfo &likeCalc = dTab.dCalcList[static_cast<std::size_t>(row)];
    const std::int64_t shift = std::int64_t{resID} - peakIdOf(likeObs, couplingType(likeObs));
    const int aOff = shiftedRes(likeCalc.resIDI, -std::int64_t{likeObs.resIDI});
    MovedRow moved;
    moved.obs = likeObs;
    moved.obs.resIDI = shiftedRes(likeObs.resIDI, shift);
    moved.obs.resIDJ = shiftedRes(likeObs.resIDJ, shift);
    const RowQueries sides = queriesOf(pdbInfo, dTab, moved.obs, aOff);
    nameResidue(pdbInfo, sides.i, moved.obs.resNameI);
    nameResidue(pdbInfo, sides.j, moved.obs.resNameJ);
    buildRow(&pdbInfo, dTab, aOff, moved.obs, moved.calc);
    moved.obs.atomI = moved.calc.atomI;
    moved.obs.atomJ = moved.calc.atomJ;
    moved.obs.atomICount = moved.calc.atomICount;
    moved.obs.atomJCount = moved.calc.atomJCount;
    return moved;
}

int appendMovedRows(PDBInfo &pdbInfo, const PeakTable &peaks, const AssignmentProblem &problem,
                    std::span<const int> bestIdList, DTable &dTab)
{
    const std::vector<Landed> landed = landedCouplings(peaks, problem, bestIdList);
    auto row = static_cast<std::size_t>(dTab.dCount);
    if (landed.empty())
        return 0;
    if (addRows(&dTab, static_cast<int>(landed.size())) != 0)
        return 1;
    for (const Landed &coupling : landed) {
        MovedRow moved = moveRow(pdbInfo, dTab, coupling.firstRow, coupling.resID);
        const bool hasAtoms = moved.calc.atomICount == 1 && moved.calc.atomJCount == 1;
        moved.obs.id = moved.calc.id = static_cast<int>(row) + 1;
        moved.obs.d = problem.dcMat[coupling.from];
        moved.obs.sigma = moved.calc.sigma = problem.sigMat[coupling.from];
        moved.obs.w = moved.calc.w = problem.wMat[coupling.from];
        moved.obs.valid = moved.calc.valid = 1;
        moved.calc.di = problem.diValMat[coupling.from];
        if (!hasAtoms)
            moved.calc.w = 0.0f; // in the report, but in no fit
        dTab.dObsList[row] = moved.obs;
        dTab.dCalcList[row] = moved.calc;
        ++row;
    }
    return 0;
}

} // namespace trelm
