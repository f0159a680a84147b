#include "assignment/problem.h"

#include "assignment/moved_row.h"
#include "support/text/text.h"

#include <algorithm>
#include <limits>
#include <set>
#include <string_view>
#include <utility>

namespace trelm {
namespace {

/// Which of a coupling's two residue numbers is that of its peak.
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
    return typeRows[type];
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
    return obs.names->segNameI == std::string_view(peaks.media[medium]);
}

/// A problem that is being made.
struct Making {
    const ProblemInput &input;
    Messages &messages;
    PeakTable peaks = {};
    AssignmentProblem problem = {};
    std::array<std::array<bool, couplingTypeCount>, maxMedia> types = {}; ///< which types each medium has
};

/// Calls the function with number, row and type of each coupling whose assignment is open.
template <class Function>
void forEachUnassigned(const Making &making, Function function)
{
    const DTable &dTab = making.input.dTab;
    for (std::size_t i = 0; i < dTab.observed().size(); ++i) {
        const DInfo &obs = dTab.observed()[i];
        const int type = couplingType(obs);
        if (takesPart(dTab.calculated()[i]) && type != noType && !isFixedPeak(making.peaks, obs, type))
            function(i, obs, type);
    }
}

/// Counts the peaks of all media, and takes the residue name of the last of them.
std::size_t countPeaks(const Making &making, std::string &resSelName)
{
    std::set<int> seen;
    forEachUnassigned(making, [&](std::size_t, const DInfo &obs, int type) {
        if (type != amideType)
            return;
        resSelName = obs.names->resNameI.view();
        seen.insert(obs.resIDI);
    });
    return seen.size();
}

std::size_t countResidues(const Making &making, std::string_view resSelName)
{
    return static_cast<std::size_t>(
        std::ranges::count_if(making.input.pdbInfo.atoms(), [&](const AtomInfo &atom) {
            return atom.atomName == std::string_view("N") && atom.resName == resSelName &&
                   !isFixed(making.peaks, atom.resID);
        }));
}

/// Counts peaks and residues and says so. Fails if there is nothing to search, or too much.
Status findPeaks(Making &making)
{
    Messages &messages = making.messages;
    std::string resSelName;
    const std::size_t peakCount = countPeaks(making, resSelName);
    messages.out("REMARK %zu N-HN Unassigned Peaks, Residues %d to %d.\n", peakCount,
                 making.input.dTab.dMinRes, making.input.dTab.dMaxRes);
    if (peakCount == 0)
        return Status::failed;
    if (peakCount > maxPeaks)
        return messages.fail("Error: %zu N-HN Unassigned Peaks, the limit is %zu.\n", peakCount, maxPeaks);
    const std::size_t resCount = countResidues(making, resSelName);
    if (resCount != peakCount)
        messages.err("Warning: %zu N-HN Unassigned Peaks and %zu %s Residues!\n", peakCount, resCount,
                     resSelName.c_str());
    else
        messages.out("REMARK %zu N-HN Unassigned Peaks and %zu %s Residues.\n", peakCount, resCount,
                     resSelName.c_str());
    making.problem.peakCount = peakCount;
    return Status::ok;
}

void reportTypes(const Making &making, std::size_t medium)
{
    Messages &messages = making.messages;
    if (making.peaks.media.size() == 1)
        messages.out("REMARK Available Types of Unassigned Couplings:");
    else
        messages.out("REMARK Available Types of Unassigned Couplings of SegId %s:",
                     making.peaks.media[medium].c_str());
    for (std::size_t type = 0; type < couplingTypeCount; ++type)
        if (making.types[medium][type])
            messages.out(" %s", typeRows[type].label);
    messages.out(".\n");
}

/// Finds the types of each medium and the residue of each row.
Status findRows(Making &making)
{
    PeakTable &peaks = making.peaks;
    for (std::size_t medium = 0; medium < peaks.media.size(); ++medium)
        forEachUnassigned(making, [&](std::size_t i, const DInfo &obs, int type) {
            if (!isOfMedium(peaks, medium, obs))
                return;
            making.types[medium][type] = true;
            int &firstRow = peaks.firstRow[medium][type];
            if (firstRow == noRow)
                firstRow = static_cast<int>(i);
            const auto row = static_cast<int>(peaks.resIdList.size());
            if (type == amideType && peaks.rowResList.try_emplace(obs.resIDI, row).second)
                peaks.resIdList.push_back(obs.resIDI);
        });
    if (peaks.resIdList.size() != making.problem.peakCount)
        return making.messages.fail("Error in Number of Unassigned N-HN couplings.");
    for (std::size_t medium = 0; medium < peaks.media.size(); ++medium)
        reportTypes(making, medium);
    return Status::ok;
}

/// The vector and values of a coupling. Fails if it is one of several atoms.
Status readCoupling(const Making &making, std::size_t i, FixedCoupling &coupling)
{
    const DInfo &obs = making.input.dTab.observed()[i];
    const DCalc &calc = making.input.dTab.calculated()[i];
    if (calc.pairCount() != 1)
        return making.messages.fail("Error: Degenerate Atoms not implemented yet.\n");
    const auto coords = making.input.pdbInfo.coordinates();
    const Coord3D &atomI = coords[calc.atomI[0]], &atomJ = coords[calc.atomJ[0]];
    coupling = {atomJ.x - atomI.x, atomJ.y - atomI.y, atomJ.z - atomI.z, obs.d, calc.di, obs.sigma, obs.w};
    return Status::ok;
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

/// Fills the cells of a column that have a row in the table.
Status fillRows(Making &making, std::size_t medium, int type)
{
    PeakTable &peaks = making.peaks;
    Status status = Status::ok;
    forEachUnassigned(making, [&](std::size_t i, const DInfo &obs, int rowType) {
        if (status != Status::ok || rowType != type || !isOfMedium(peaks, medium, obs))
            return;
        const int peakId = peakIdOf(obs, type);
        const auto row = peaks.rowResList.find(peakId);
        if (row == peaks.rowResList.end())
            return;
        const std::size_t cell = making.problem.at(row->second, peaks.dcIndex[medium][type]);
        if (peaks.hasRow[cell])
            making.messages.err(
                "Warning: %s coupling for PeakID %d stands in the table again, the last one counts.\n",
                typeRow(type).label, peakId);
        FixedCoupling coupling;
        status = readCoupling(making, i, coupling);
        putCell(making.problem, cell, coupling);
        peaks.hasRow[cell] = true;
    });
    return status;
}

/// The vector that a residue has without a row in the table. It stays 0 where the structure lacks the pair.
void putVector(std::span<const Coord3D> coords, const MovedRow &moved, AssignmentProblem &problem,
               std::size_t cell)
{
    if (moved.calc.pairCount() != 1)
        return;
    const Coord3D &atomI = coords[moved.calc.atomI[0]], &atomJ = coords[moved.calc.atomJ[0]];
    problem.xMat[cell] = atomJ.x - atomI.x;
    problem.yMat[cell] = atomJ.y - atomI.y;
    problem.zMat[cell] = atomJ.z - atomI.z;
}

/// Completes a column: the residues without a row get their vectors, and the peaks among them are named.
void fillMissing(Making &making, std::size_t medium, int type)
{
    const PeakTable &peaks = making.peaks;
    std::string missing;
    for (std::size_t row = 0; row < making.problem.peakCount; ++row) {
        const std::size_t cell = making.problem.at(row, peaks.dcIndex[medium][type]);
        if (peaks.hasRow[cell])
            continue;
        const int resID = peaks.resIdList[row];
        appendf(missing, " %d", resID);
        putVector(making.input.pdbInfo.coordinates(),
                  moveRow(making.input.pdbInfo, making.input.dTab, peaks.firstRow[medium][type], resID,
                          making.messages),
                  making.problem, cell);
    }
    if (missing.empty())
        return;
    const std::string ofMedium = peaks.media.size() == 1 ? "" : " of SegId " + peaks.media[medium];
    making.messages.err("Warning: no %s coupling%s for peaks%s: they take part without it.\n",
                        typeRow(type).label, ofMedium.c_str(), missing.c_str());
}

/// Gives each type of each medium its column.
void numberColumns(Making &making)
{
    AssignmentProblem &problem = making.problem;
    for (std::size_t medium = 0; medium < problem.nLcType; ++medium)
        for (std::size_t type = 0; type < couplingTypeCount; ++type) {
            if (!making.types[medium][type])
                continue;
            making.peaks.dcIndex[medium][type] = static_cast<int>(problem.colId++);
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

Status fillMatrices(Making &making)
{
    numberColumns(making);
    clearMatrices(making.problem);
    making.peaks.hasRow.assign(making.problem.dcMat.size(), false);
    for (std::size_t medium = 0; medium < making.problem.nLcType; ++medium)
        for (int type = 0; type < std::ssize(typeRows); ++type) {
            if (!making.types[medium][type])
                continue;
            if (fillRows(making, medium, type) != Status::ok)
                return Status::failed;
            fillMissing(making, medium, type);
        }
    return Status::ok;
}

void reportMatrices(const Making &making)
{
    const AssignmentProblem &problem = making.problem;
    Messages &messages = making.messages;
    if (problem.nLcType == 1) {
        messages.out("REMARK # of coupling types: %zu\n", problem.colIdList[0]);
    } else {
        messages.out("REMARK # of coupling types for each SegID: ");
        for (std::size_t medium = 0; medium < problem.nLcType; ++medium)
            messages.out(" (%s %zu)", making.peaks.media[medium].c_str(), problem.colIdList[medium]);
        messages.out(".\n");
    }
    messages.out("REMARK %zu x %zu Unassigned Coupling Matrix.\n", problem.peakCount, problem.colId);
    messages.out("REMARK Peak");
    for (const int resID : making.peaks.resIdList)
        messages.out(" %d", resID);
    messages.out(" exhaustively searched.\n");
}

/// The fixed couplings by their residues: the larger one counts, whatever their kind.
std::size_t countFixed(const Making &making)
{
    const DTable &dTab = making.input.dTab;
    std::size_t count = 0;
    for (std::size_t i = 0; i < dTab.observed().size(); ++i) {
        const DInfo &obs = dTab.observed()[i];
        if (takesPart(dTab.calculated()[i]) && isFixed(making.peaks, std::max(obs.resIDI, obs.resIDJ)))
            ++count;
    }
    return count;
}

/// Takes the fixed couplings of a medium and names them.
Status takeFixed(Making &making, std::size_t medium)
{
    const DTable &dTab = making.input.dTab;
    Messages &messages = making.messages;
    if (making.problem.nLcType == 1)
        messages.out("REMARK No couplings for residue."); // the words of this line, whatever follows
    else
        messages.out("REMARK Couplings of type %s for residue", making.peaks.media[medium].c_str());
    for (std::size_t i = 0; i < dTab.observed().size(); ++i) {
        const DInfo &obs = dTab.observed()[i];
        const int type = couplingType(obs);
        if (!takesPart(dTab.calculated()[i]) || type == noType || !isOfMedium(making.peaks, medium, obs) ||
            !isFixedPeak(making.peaks, obs, type))
            continue;
        messages.out(" %d", obs.resIDI);
        if (readCoupling(making, i, making.problem.fixed.emplace_back()) != Status::ok)
            return Status::failed;
        ++making.problem.nDTypList[medium];
    }
    messages.out(" are fixed.\n");
    return Status::ok;
}

/// Takes all fixed couplings. They are counted by their residues and taken by their peaks, which differ for
/// couplings within the preceding residue. Fails where the two do not agree: the user has to fix all
/// couplings of both residues, or none.
Status fillFixed(Making &making)
{
    const std::size_t fixedCount = countFixed(making);
    if (fixedCount == 0) {
        making.messages.out("REMARK No couplings are fixed.\n");
        return Status::ok;
    }
    for (std::size_t medium = 0; medium < making.problem.nLcType; ++medium)
        if (takeFixed(making, medium) != Status::ok)
            return Status::failed;
    making.messages.out("REMARK %zu couplings fixed in total.\n", making.problem.fixed.size());
    if (making.problem.fixed.size() != fixedCount)
        return making.messages.fail("Error in Number of assigned couplings.");
    return Status::ok;
}

/// Names and numbers that are known before the table is looked at.
void startProblem(Making &making)
{
    making.peaks.fixResList = making.input.fixResList;
    making.peaks.media = making.input.media;
    for (auto &columns : making.peaks.dcIndex)
        columns.fill(noType);
    for (auto &rows : making.peaks.firstRow)
        rows.fill(noRow);
    making.problem.nLcType = making.input.media.size();
    making.problem.window = making.input.window;
}

} // namespace

bool hasVector(const AssignmentProblem &problem, std::size_t row, std::size_t column)
{
    const std::size_t cell = problem.at(row, column);
    return problem.xMat[cell] != 0.0f || problem.yMat[cell] != 0.0f || problem.zMat[cell] != 0.0f;
}

bool lacksVector(const AssignmentProblem &problem, std::size_t peak, std::size_t row)
{
    for (std::size_t column = 0; column < problem.colId; ++column)
        if (problem.dcMat[problem.at(peak, column)] != noPeakCoupling && !hasVector(problem, row, column))
            return true;
    return false;
}

int couplingType(const DInfo &obs)
{
    const auto *row = std::ranges::find_if(typeRows, [&](const TypeRow &type) {
        return (isAtom(obs.names->atomNameI, type.atomI) && isAtom(obs.names->atomNameJ, type.atomJ)) ||
               (isAtom(obs.names->atomNameI, type.atomJ) && isAtom(obs.names->atomNameJ, type.atomI));
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

std::optional<TableProblem> makeProblem(const ProblemInput &input, Messages &messages)
{
    if (input.media.size() > maxMedia) {
        messages.err("Error: %zu alignment media, the limit is %zu.\n", input.media.size(), maxMedia);
        return std::nullopt;
    }
    Making making = {.input = input, .messages = messages};
    startProblem(making);
    if (findPeaks(making) != Status::ok || findRows(making) != Status::ok ||
        fillMatrices(making) != Status::ok)
        return std::nullopt;
    reportMatrices(making);
    if (fillFixed(making) != Status::ok)
        return std::nullopt;
    return TableProblem{std::move(making.problem), std::move(making.peaks)};
}

} // namespace trelm
