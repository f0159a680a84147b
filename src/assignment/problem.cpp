#include "assignment/problem.h"

#include "assignment/moved_row.h"
#include "support/text/text.h"

#include <algorithm>
#include <cstdio>
#include <limits>
#include <string_view>

namespace trelm {
namespace {

/// Which of a coupling's two residue numbers tells its peak.
enum class PeakRule { first, larger, following };

struct TypeRow {
    const char *label;
    std::string_view atomI, atomJ; ///< in either order
    PeakRule peak;
};

// In the order of the columns. An HN may also be called H.
constexpr std::array<TypeRow, couplingTypeCount> typeRows = {{
    {"N-HN", "N", "HN", PeakRule::first},
    {"C-N", "C", "N", PeakRule::larger},
    {"C-HN", "C", "HN", PeakRule::larger},
    {"CA-C", "CA", "C", PeakRule::following},
    {"CA-HA", "CA", "HA", PeakRule::following},
    {"CA-CB", "CA", "CB", PeakRule::following},
    {"C-HA", "C", "HA", PeakRule::following},
    {"CA-HN", "CA", "HN", PeakRule::larger},
}};
constexpr int amideType = 0;

const TypeRow &typeRow(int type)
{
    return typeRows[static_cast<std::size_t>(type)];
}

bool isAtom(const Name &name, std::string_view wanted)
{
    return name == wanted || (wanted == "HN" && name == std::string_view("H"));
}

/// The number of the following residue; the largest number has none.
int following(int resID)
{
    return resID == std::numeric_limits<int>::max() ? resID : resID + 1;
}

/// Whether a coupling of this type belongs to a fixed residue. Of a coupling across residues the larger one
/// counts, also where its peak goes by the first.
bool isFixedPeak(const PeakTable &peaks, const DInfo &obs, int type)
{
    const int resID = std::max(obs.resIDI, obs.resIDJ);
    return isFixed(peaks, typeRow(type).peak == PeakRule::following ? following(resID) : resID);
}

bool isOfMedium(const PeakTable &peaks, std::size_t medium, const DInfo &obs)
{
    return obs.segNameI == std::string_view(peaks.media[medium]);
}

/// Calls the function with number, row and type of each coupling whose assignment is open.
template <class Function>
void forEachUnassigned(const DTable &dTab, const PeakTable &peaks, Function function)
{
    for (std::size_t i = 0; i < dTab.observed().size(); ++i) {
        const DInfo &obs = dTab.observed()[i];
        const int type = couplingType(obs);
        if (takesPart(dTab.calculated()[i]) && type != noType && !isFixedPeak(peaks, obs, type))
            function(i, obs, type);
    }
}

/// Counts the peaks of all media, and takes the residue name of the last of them.
int countPeaks(const DTable &dTab, const PeakTable &peaks, std::string &resSelName)
{
    std::map<int, int> seen;
    forEachUnassigned(dTab, peaks, [&](std::size_t, const DInfo &obs, int type) {
        if (type != amideType)
            return;
        resSelName = obs.resNameI.view();
        ++seen[obs.resIDI];
    });
    return static_cast<int>(seen.size());
}

int countResidues(const PDBInfo &pdbInfo, const PeakTable &peaks, std::string_view resSelName)
{
    return static_cast<int>(std::ranges::count_if(pdbInfo.atoms(), [&](const AtomInfo &atom) {
        return atom.atomName == std::string_view("N") && atom.resName == resSelName &&
               !isFixed(peaks, atom.resID);
    }));
}

/// Counts peaks and residues and tells of both. Returns 0, or 1 if there is nothing to search, or after a
/// message.
int findPeaks(const PDBInfo &pdbInfo, const DTable &dTab, const PeakTable &peaks, AssignmentProblem &problem)
{
    std::string resSelName;
    const int peakCount = countPeaks(dTab, peaks, resSelName);
    std::printf("REMARK %d N-HN Unassigned Peaks, Residues %d to %d.\n", peakCount, dTab.dMinRes,
                dTab.dMaxRes);
    if (peakCount == 0)
        return 1;
    if (peakCount > maxPeaks)
        return complain("Error: %d N-HN Unassigned Peaks, the limit is %d.\n", peakCount, maxPeaks);
    const int resCount = countResidues(pdbInfo, peaks, resSelName);
    if (resCount != peakCount)
        complain("Warning: %d N-HN Unassigned Peaks and %d %s Residues!\n", peakCount, resCount,
                 resSelName.c_str());
    else
        std::printf("REMARK %d N-HN Unassigned Peaks and %d %s Residues.\n", peakCount, resCount,
                    resSelName.c_str());
    problem.peakCount = peakCount;
    return 0;
}

using TypeList = std::array<bool, couplingTypeCount>; ///< which types a medium has

void reportTypes(const PeakTable &peaks, std::size_t medium, const TypeList &types)
{
    if (peaks.media.size() == 1)
        std::printf("REMARK Available Types of Unassigned Couplings:");
    else
        std::printf("REMARK Available Types of Unassigned Couplings of SegId %s:",
                    peaks.media[medium].c_str());
    for (std::size_t type = 0; type < types.size(); ++type)
        if (types[type])
            std::printf(" %s", typeRows[type].label);
    std::printf(".\n");
}

/// Finds the types of each medium and the residue of each row. Returns 0, or 1 after a message.
int findRows(const DTable &dTab, PeakTable &peaks, const AssignmentProblem &problem,
             std::array<TypeList, maxMedia> &types)
{
    for (std::size_t medium = 0; medium < peaks.media.size(); ++medium)
        forEachUnassigned(dTab, peaks, [&](std::size_t i, const DInfo &obs, int type) {
            if (!isOfMedium(peaks, medium, obs))
                return;
            types[medium][static_cast<std::size_t>(type)] = true;
            int &firstRow = peaks.firstRow[medium][static_cast<std::size_t>(type)];
            if (firstRow == noRow)
                firstRow = static_cast<int>(i);
            const auto row = static_cast<int>(peaks.resIdList.size());
            if (type == amideType && peaks.rowResList.try_emplace(obs.resIDI, row).second)
                peaks.resIdList.push_back(obs.resIDI);
        });
    if (static_cast<int>(peaks.resIdList.size()) != problem.peakCount)
        return complain("Error in Number of Unassigned N-HN couplings.");
    for (std::size_t medium = 0; medium < peaks.media.size(); ++medium)
        reportTypes(peaks, medium, types[medium]);
    return 0;
}

/// The vector and values of a coupling. Returns 0, or 1 after a message if it is one of several atoms.
int readCoupling(const DTable &dTab, std::size_t i, FixedCoupling &coupling)
{
    const DInfo &obs = dTab.observed()[i], &calc = dTab.calculated()[i];
    if (calc.atomICount * calc.atomJCount != 1)
        return complain("Error: Degenerate Atoms not implemented yet.\n");
    const AtomInfo &atomI = *calc.atomI[0], &atomJ = *calc.atomJ[0];
    coupling = {atomJ.x - atomI.x, atomJ.y - atomI.y, atomJ.z - atomI.z, obs.d, calc.di, obs.sigma, obs.w};
    return 0;
}

void putCell(AssignmentProblem &problem, std::size_t cell, const FixedCoupling &coupling)
{
    problem.xMat[cell] = coupling.x;
    problem.yMat[cell] = coupling.y;
    problem.zMat[cell] = coupling.z;
    problem.dcMat[cell] = coupling.d;
    problem.diValMat[cell] = coupling.di;
    problem.sigMat[cell] = coupling.sigma;
    problem.wMat[cell] = coupling.w;
}

/// Fills the cells of a column that have a row in the table. Returns 0, or 1 after a message.
int fillRows(const DTable &dTab, PeakTable &peaks, std::size_t medium, int type, AssignmentProblem &problem)
{
    const int column = peaks.dcIndex[medium][static_cast<std::size_t>(type)];
    int status = 0;
    forEachUnassigned(dTab, peaks, [&](std::size_t i, const DInfo &obs, int rowType) {
        if (status != 0 || rowType != type || !isOfMedium(peaks, medium, obs))
            return;
        const int peakId = peakIdOf(obs, type);
        const auto row = peaks.rowResList.find(peakId);
        if (row == peaks.rowResList.end())
            return;
        const std::size_t cell = problem.at(row->second, column);
        if (peaks.hasRow[cell])
            complain("Warning: %s coupling for PeakID %d stands in the table again, the last one counts.\n",
                     typeRow(type).label, peakId);
        FixedCoupling coupling;
        status = readCoupling(dTab, i, coupling);
        putCell(problem, cell, coupling);
        peaks.hasRow[cell] = true;
    });
    return status;
}

/// The vector that a residue has without a row in the table. It stays 0 where the structure lacks the pair.
void putVector(const MovedRow &moved, AssignmentProblem &problem, std::size_t cell)
{
    if (moved.calc.atomICount != 1 || moved.calc.atomJCount != 1)
        return;
    const AtomInfo &atomI = *moved.calc.atomI[0], &atomJ = *moved.calc.atomJ[0];
    problem.xMat[cell] = atomJ.x - atomI.x;
    problem.yMat[cell] = atomJ.y - atomI.y;
    problem.zMat[cell] = atomJ.z - atomI.z;
}

/// Completes a column: the residues without a row get their vectors, and the peaks among them are told.
void fillMissing(PDBInfo &pdbInfo, const DTable &dTab, const PeakTable &peaks, std::size_t medium, int type,
                 AssignmentProblem &problem)
{
    const int column = peaks.dcIndex[medium][static_cast<std::size_t>(type)];
    const int firstRow = peaks.firstRow[medium][static_cast<std::size_t>(type)];
    std::string missing;
    for (int row = 0; row < problem.peakCount; ++row) {
        const std::size_t cell = problem.at(row, column);
        if (peaks.hasRow[cell])
            continue;
        const int resID = peaks.resIdList[static_cast<std::size_t>(row)];
        appendf(missing, " %d", resID);
        putVector(moveRow(pdbInfo, dTab, firstRow, resID), problem, cell);
    }
    if (missing.empty())
        return;
    const std::string ofMedium = peaks.media.size() == 1 ? "" : " of SegId " + peaks.media[medium];
    complain("Warning: no %s coupling%s for peaks%s: they take part without it.\n", typeRow(type).label,
             ofMedium.c_str(), missing.c_str());
}

/// Gives each type of each medium its column.
void numberColumns(const std::array<TypeList, maxMedia> &types, PeakTable &peaks, AssignmentProblem &problem)
{
    for (std::size_t medium = 0; medium < peaks.media.size(); ++medium)
        for (std::size_t type = 0; type < types[medium].size(); ++type) {
            if (!types[medium][type])
                continue;
            peaks.dcIndex[medium][type] = problem.colId++;
            ++problem.colIdList[medium];
        }
}

void clearMatrices(AssignmentProblem &problem)
{
    const std::size_t cells = problem.at(problem.peakCount, 0);
    problem.dcMat.assign(cells, noPeakCoupling);
    for (std::vector<float> *matrix :
         {&problem.diValMat, &problem.sigMat, &problem.wMat, &problem.xMat, &problem.yMat, &problem.zMat})
        matrix->assign(cells, 0.0f);
}

/// Makes the matrices. Returns 0, or 1 after a message.
int fillMatrices(PDBInfo &pdbInfo, const DTable &dTab, const std::array<TypeList, maxMedia> &types,
                 PeakTable &peaks, AssignmentProblem &problem)
{
    numberColumns(types, peaks, problem);
    clearMatrices(problem);
    peaks.hasRow.assign(problem.dcMat.size(), false);
    for (std::size_t medium = 0; medium < peaks.media.size(); ++medium)
        for (int type = 0; type < couplingTypeCount; ++type) {
            if (!types[medium][static_cast<std::size_t>(type)])
                continue;
            if (fillRows(dTab, peaks, medium, type, problem) != 0)
                return 1;
            fillMissing(pdbInfo, dTab, peaks, medium, type, problem);
        }
    return 0;
}

void reportMatrices(const PeakTable &peaks, const AssignmentProblem &problem)
{
    if (peaks.media.size() == 1) {
        std::printf("REMARK # of coupling types: %d\n", problem.colIdList[0]);
    } else {
        std::printf("REMARK # of coupling types for each SegID: ");
        for (std::size_t medium = 0; medium < peaks.media.size(); ++medium)
            std::printf(" (%s %d)", peaks.media[medium].c_str(), problem.colIdList[medium]);
        std::printf(".\n");
    }
    std::printf("REMARK %d x %d Unassigned Coupling Matrix.\n", problem.peakCount, problem.colId);
    std::printf("REMARK Peak");
    for (const int resID : peaks.resIdList)
        std::printf(" %d", resID);
    std::printf(" exhaustively searched.\n");
}

int countFixed(const DTable &dTab, const PeakTable &peaks)
{
    int count = 0;
    for (std::size_t i = 0; i < dTab.observed().size(); ++i) {
        const DInfo &obs = dTab.observed()[i];
        count += takesPart(dTab.calculated()[i]) ? chkFixAa(static_cast<int>(peaks.fixResList.size()),
                                                            peaks.fixResList.data(), obs.resIDI, obs.resIDJ)
                                                 : 0;
    }
    return count;
}

/// Takes the fixed couplings of a medium and names them. Returns 0, or 1 after a message.
int takeFixed(const DTable &dTab, const PeakTable &peaks, std::size_t medium, AssignmentProblem &problem)
{
    if (peaks.media.size() == 1)
        std::printf("REMARK No couplings for residue."); // the words of this line, whatever follows
    else
        std::printf("REMARK Couplings of type %s for residue", peaks.media[medium].c_str());
    for (std::size_t i = 0; i < dTab.observed().size(); ++i) {
        const DInfo &obs = dTab.observed()[i];
        const int type = couplingType(obs);
        if (!takesPart(dTab.calculated()[i]) || type == noType || !isOfMedium(peaks, medium, obs) ||
            !isFixedPeak(peaks, obs, type))
            continue;
        std::printf(" %d", obs.resIDI);
        FixedCoupling coupling;
        if (readCoupling(dTab, i, coupling) != 0)
            return 1;
        problem.fixed.push_back(coupling);
        ++problem.nDTypList[medium];
    }
    std::printf(" are fixed.\n");
    return 0;
}

/// Takes all fixed couplings. They are counted by their residues and taken by their peaks, which differ for
/// couplings within the preceding residue. Returns 0, or 1 after a message where the two do not agree: the
/// user has to fix all couplings of both residues, or none.
int fillFixed(const DTable &dTab, const PeakTable &peaks, AssignmentProblem &problem)
{
    const int fixedCount = countFixed(dTab, peaks);
    if (fixedCount < 1) {
        std::printf("REMARK No couplings are fixed.\n");
        return 0;
    }
    for (std::size_t medium = 0; medium < peaks.media.size(); ++medium)
        if (takeFixed(dTab, peaks, medium, problem) != 0)
            return 1;
    std::printf("REMARK %d couplings fixed in total.\n", static_cast<int>(problem.fixed.size()));
    if (static_cast<int>(problem.fixed.size()) != fixedCount)
        return complain("Error in Number of assigned couplings.");
    return 0;
}

} // namespace

int couplingType(const DInfo &obs)
{
    const auto *row = std::ranges::find_if(typeRows, [&](const TypeRow &type) {
        return (isAtom(obs.atomNameI, type.atomI) && isAtom(obs.atomNameJ, type.atomJ)) ||
               (isAtom(obs.atomNameI, type.atomJ) && isAtom(obs.atomNameJ, type.atomI));
    });
    return row == typeRows.end() ? noType : static_cast<int>(row - typeRows.begin());
}

int peakIdOf(const DInfo &obs, int type)
{
    switch (typeRow(type).peak) {
    case PeakRule::larger:
        return std::max(obs.resIDI, obs.resIDJ);
    case PeakRule::following:
        return following(obs.resIDI);
    default:
        return obs.resIDI;
    }
}

bool isFixed(const PeakTable &peaks, int resID)
{
    return std::ranges::find(peaks.fixResList, resID) != peaks.fixResList.end();
}

int makeProblem(PDBInfo &pdbInfo, const DTable &dTab, PeakTable &peaks, AssignmentProblem &problem)
{
    if (peaks.media.size() > maxMedia)
        return complain("Error: %zu alignment media, the limit is %d.\n", peaks.media.size(), maxMedia);
    for (auto &columns : peaks.dcIndex)
        columns.fill(noType);
    for (auto &rows : peaks.firstRow)
        rows.fill(noRow);
    problem.nLcType = static_cast<int>(peaks.media.size());
    std::array<TypeList, maxMedia> types = {};
    if (findPeaks(pdbInfo, dTab, peaks, problem) != 0 || findRows(dTab, peaks, problem, types) != 0 ||
        fillMatrices(pdbInfo, dTab, types, peaks, problem) != 0)
        return 1;
    reportMatrices(peaks, problem);
    return fillFixed(dTab, peaks, problem);
}

} // namespace trelm
