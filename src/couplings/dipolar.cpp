#include "couplings/dipolar.h"

#include "couplings/interaction.h"
#include "couplings/table_checks.h"
#include "couplings/window.h"
#include "structure/atom_columns.h"
#include "support/text/table.h"
#include "support/text/text.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <functional>
#include <optional>
#include <unordered_map>

namespace trelm {
namespace {

constexpr int wildFactor = maxPairAtoms; ///< entries of a wildcard name, for the size of the workspace

/// A number column of the file and the field it fills; null for one that is checked alone.
struct NumberColumn {
    const char *name;
    float DInfo::*field;
    float missing; ///< value without the column
};

constexpr NumberColumn numberColumns[] = {
    {"D", &DInfo::d, 0.0f}, {"DI", &DInfo::di, 0.0f}, {"DD", &DInfo::sigma, 1.0f},
    {"S", nullptr, 1.0f},   {"W", &DInfo::w, 1.0f},   {"FC", nullptr, 1.0f},
};
constexpr std::size_t numberCount = std::size(numberColumns);

/// Columns whose cells must be numbers, besides those above.
constexpr const char *otherNumbers[] = {"RESID_I", "RESID_J", "INDEX", "ABS"};

/// Places of the columns, negative where absent.
struct ColumnLocs {
    AtomTabLocs atomI, atomJ;
    std::optional<std::size_t> index;
    std::array<std::optional<std::size_t>, numberCount> number;
};

/// One row of the text table.
struct TableRow {
    const TextTable &text;
    const float *cells;
    std::size_t number; ///< counted from 1
};

ColumnLocs findColumns(const TextTable &text)
{
    ColumnLocs locs;
    getAtomTabLocs(text.varInfo, "_I", locs.atomI);
    getAtomTabLocs(text.varInfo, "_J", locs.atomJ);
    for (std::size_t i = 0; i < numberCount; ++i)
        locs.number[i] = getTabVar(text.varInfo, numberColumns[i].name);
    locs.index = getTabVar(text.varInfo, "INDEX");
    return locs;
}

/// A cell of a text column is a place in a list. Taken as a coupling it would be a wrong number that nobody
/// sees.
Status checkNumberColumn(const TextTable &text, const char *name, const std::string &inDName,
                         Messages &messages)
{
    const auto column = getTabVar(text.varInfo, name);
    if (!column)
        return Status::ok;
    if (text.varInfo[*column].type == CellType::text)
        return messages.fail("DC Error: column %s of %s holds text, not numbers.\n", name, inDName.c_str());
    for (std::size_t row = 0; row < text.entryCount; ++row)
        if (!std::isfinite(text.matrix[row * text.varInfo.size() + *column]))
            return messages.fail("DC Error: %s is no finite number in row %zu of %s.\n", name, row + 1,
                                 inDName.c_str());
    return Status::ok;
}

Status checkSigmas(const TextTable &text, const std::string &inDName, Messages &messages)
{
    const auto column = getTabVar(text.varInfo, "DD");
    for (std::size_t row = 0; column && row < text.entryCount; ++row) {
        const float sigma = text.matrix[row * text.varInfo.size() + *column];
        if (sigma < 0.0f)
            return messages.fail("DC Error: DD is negative (%g) in row %zu of %s.\n",
                                 static_cast<double>(sigma), row + 1, inDName.c_str());
    }
    return Status::ok;
}

/// Refuses a table with cells that no row could use.
Status checkNumbers(const TextTable &text, const std::string &inDName, Messages &messages)
{
    for (const NumberColumn &column : numberColumns)
        if (checkNumberColumn(text, column.name, inDName, messages) != Status::ok)
            return Status::failed;
    for (const char *name : otherNumbers)
        if (checkNumberColumn(text, name, inDName, messages) != Status::ok)
            return Status::failed;
    return checkSigmas(text, inDName, messages);
}

float cellOr(const TableRow &row, std::optional<std::size_t> column, float missing)
{
    return column ? row.cells[*column] : missing;
}

int residueOf(const TableRow &row, const AtomTabLocs &locs)
{
    return locs.resID ? truncated(row.cells[*locs.resID]) : noResID;
}

/// Fills an observed record, all but its names and its interaction constant.
void readRow(const TableRow &row, const ColumnLocs &locs, DInfo &obs)
{
    obs.resIDI = residueOf(row, locs.atomI);
    obs.resIDJ = residueOf(row, locs.atomJ);
    for (std::size_t i = 0; i < numberCount; ++i)
        if (numberColumns[i].field != nullptr)
            obs.*numberColumns[i].field = cellOr(row, locs.number[i], numberColumns[i].missing);
    obs.id = locs.index ? truncated(row.cells[*locs.index]) : static_cast<int>(row.number);
    obs.valid = 1;
}

/// The most atom pairs that a row can resolve to.
std::size_t possiblePairs(const RowNames &names)
{
    std::string format;
    std::size_t pairs = 1;
    for (const Name *name : {&names.atomNameI, &names.atomNameJ})
        if (isAtomExpr(name->view(), format) != 0)
            pairs *= wildFactor;
    return pairs;
}

/// What a row says by its texts: its names, and what they tell of the pair.
struct Kind {
    const RowNames *names = nullptr;
    Interaction interaction;
    std::size_t pairs = 1; ///< the most that it can resolve to
};

/// The texts of a row as places in the columns, and the step from residue I to J, of which only that to a
/// neighbour matters: rows that agree in them are of one kind. Large tables have few kinds.
struct KindKey {
    std::array<float, 8> texts = {};
    std::int64_t step = 0;

    [[nodiscard]] bool operator==(const KindKey &) const = default;
};

struct KindHash {
    std::size_t operator()(const KindKey &key) const
    {
        std::size_t hash = std::hash<std::int64_t>{}(key.step);
        for (const float text : key.texts)
            hash = hash * 1000003 + std::hash<float>{}(text);
        return hash;
    }
};

using Kinds = std::unordered_map<KindKey, Kind, KindHash>;

/// Reads the names of a row. Names that are too long are told.
RowNames readNames(const TableRow &row, const ColumnLocs &locs, Messages &messages)
{
    AtomTabVals i, j;
    getAtomTabVals(row.text.varInfo, row.cells, locs.atomI, i, messages);
    getAtomTabVals(row.text.varInfo, row.cells, locs.atomJ, j, messages);
    return {i.resName, j.resName, i.atomName, j.atomName, i.chainName, j.chainName, i.segName, j.segName};
}

KindKey keyOf(const TableRow &row, const ColumnLocs &locs, const DInfo &obs)
{
    constexpr std::int64_t farther = 2;
    KindKey key = {.step = std::clamp(std::int64_t{obs.resIDJ} - obs.resIDI, -farther, farther)};
    std::size_t place = 0;
    for (const AtomTabLocs *side : {&locs.atomI, &locs.atomJ})
        for (const auto &column : {side->resName, side->atomName, side->chainName, side->segName})
            key.texts[place++] = cellOr(row, column, nullTextCell);
    return key;
}

/// Whether a text of the row is cut, which each row tells for itself.
bool hasLongName(const TableRow &row, const ColumnLocs &locs)
{
    for (const AtomTabLocs *side : {&locs.atomI, &locs.atomJ})
        for (const auto &column : {side->resName, side->atomName, side->chainName, side->segName})
            if (column && tabText(row.text.varInfo[*column], row.cells[*column]).size() > Name::capacity)
                return true;
    return false;
}

/// The kind of a row. It is found anew for each row that has something to tell.
Kind kindOf(const TableRow &row, const ColumnLocs &locs, const DInfo &obs, NameStore &names, Kinds &kinds,
            Messages &messages)
{
    const KindKey key = keyOf(row, locs, obs);
    if (const auto known = kinds.find(key); known != kinds.end())
        return known->second;
    Kind kind;
    kind.names = names.keep(readNames(row, locs, messages));
    kind.interaction = findVariableDI(0.0f, {obs.resIDI, kind.names->atomNameI.view()},
                                      {obs.resIDJ, kind.names->atomNameJ.view()}, 1, messages);
    kind.pairs = possiblePairs(*kind.names);
    if (kind.interaction.isKnown && !hasLongName(row, locs))
        kinds.emplace(key, kind);
    return kind;
}

/// Makes room for the observed rows, the larger part of a table that is read.
Status allocateRows(DTable &dTab, std::size_t rows, Messages &messages)
{
    dTab.dCount = 0;
    dTab.names = std::make_shared<NameStore>();
    dTab.dCalcList.release();
    dTab.dObsList = Block<DInfo>("dc", rows);
    if (!dTab.dObsList)
        return messages.fail("DC Error Allocating DC Values.");
    dTab.dCount = rows;
    dTab.maxCount = 0;
    dTab.dMinRes = 1000000;
    dTab.dMaxRes = 0;
    return Status::ok;
}

/// Fails after a message: the length of a fit is an int.
Status boundPairs(DTable &dTab, std::size_t pairs, Messages &messages)
{
    if (pairs > static_cast<std::size_t>(INT_MAX))
        return messages.fail("DC Error Allocating DC Workspaces.\n");
    dTab.maxCount = pairs;
    return Status::ok;
}

/// Fills the table. The status is that of the last row's interaction constant.
Status readRows(const TextTable &text, DTable &dTab, Messages &messages)
{
    const ColumnLocs locs = findColumns(text);
    std::size_t pairs = 0;
    std::size_t number = 0;
    Status status = Status::ok;
    Kinds kinds;
    for (DInfo &obs : dTab.observed()) {
        const float *cells = text.matrix.data() + number * text.varInfo.size();
        const TableRow row = {text, cells, ++number};
        readRow(row, locs, obs);
        const Kind kind = kindOf(row, locs, obs, *dTab.names, kinds, messages);
        obs.names = kind.names;
        if (!obs.names->chainNameI.empty() || !obs.names->chainNameJ.empty())
            dTab.nullChainName = 0;
        if (!obs.names->segNameI.empty() || !obs.names->segNameJ.empty())
            dTab.nullSegName = 0;
        if (kind.interaction
                .isFixed) { // any other pair keeps what the table says until the structure is there
            obs.diFixedFlag = 1;
            obs.di = kind.interaction.di;
        }
        status = kind.interaction.isKnown ? Status::ok : Status::failed;
        dTab.dMinRes = std::min({dTab.dMinRes, obs.resIDI, obs.resIDJ});
        dTab.dMaxRes = std::max({dTab.dMaxRes, obs.resIDI, obs.resIDJ});
        pairs += kind.pairs;
    }
    return boundPairs(dTab, pairs, messages) != Status::ok ? Status::failed : status;
}

/// Resolves one side. Returns how many atoms there are; the record takes maxPairAtoms of them, and none
/// where there are more: a part of the pairs would be a wrong coupling.
int findSide(const PDBInfo &pdbInfo, const SideQuery &query, SideAtoms &atoms)
{
    std::array<std::size_t, maxWildAtoms> found = {};
    const int all = findAtomList(pdbInfo, query.resID, query.atomName.view(), query.chainName.view(),
                                 query.segName.view(), found);
    atoms = {};
    if (all > maxPairAtoms)
        return all;
    atoms.count = static_cast<std::uint32_t>(std::max(all, 0));
    for (std::size_t i = 0; i < atoms.count; ++i)
        atoms.places[i] = static_cast<std::uint32_t>(found[i]);
    return all;
}

/// The same for a row that a fit will use. Returns false after a message for an excess of atoms.
bool findWholeSide(const PDBInfo &pdbInfo, const SideQuery &query, SideAtoms &atoms, Messages &messages)
{
    const int all = findSide(pdbInfo, query, atoms);
    if (all <= maxPairAtoms)
        return true;
    messages.err("DC Error: %s of residue %d resolves to %d atoms, the limit is %d.\n",
                 query.atomName.c_str(), query.resID, all, maxPairAtoms);
    return false;
}

/// Weights a calculated row by its residue. Weight 0 takes the row out.
void weightRow(const DInfo &obs, DCalc &calc, int wOff, std::span<const float> wList)
{
    const std::int64_t loc = std::int64_t{std::max(obs.resIDI, obs.resIDJ)} - wOff;
    if (loc < 0 || loc >= static_cast<std::int64_t>(wList.size()))
        return;
    const float weight = std::fabs(wList[static_cast<std::size_t>(loc)]);
    if (weight == 0.0f) {
        calc.w = 0.0f;
        calc.sigma = 9999.0f;
        calc.valid = 0;
        return;
    }
    calc.w *= std::sqrt(weight);
    calc.sigma /= weight;
}

/// Sets the interaction constant of a row that has its atoms.
void setDI(const PDBInfo &pdbInfo, const RowMatch &match, DInfo &obs, DCalc &calc, Messages &messages)
{
    if (obs.diFixedFlag == 0 || match.allowFixedDI == 0) {
        const AtomInfo &atomI = pdbInfo.atomList[calc.atomI[0]], &atomJ = pdbInfo.atomList[calc.atomJ[0]];
        const float rIJ = findAtomListRad(match.coords.empty() ? pdbInfo.coordinates() : match.coords,
                                          calc.atomI.span(), calc.atomJ.span());
        const Interaction found =
            findVariableDI(rIJ, {calc.resIDI, atomI.atomName.view()}, {calc.resIDJ, atomJ.atomName.view()},
                           match.allowFixedDI, messages);
        obs.di = found.di;
        obs.diFixedFlag = found.isFixed ? 1 : 0;
    }
    calc.di = obs.di;
}

} // namespace

std::optional<DTable> copyTable(const DTable &dTab, Messages &messages)
{
    DTable copy;
    if (dTab.dCount != 0 && addRows(copy, dTab.observed().size(), messages) != Status::ok)
        return std::nullopt;
    std::ranges::copy(dTab.observed(), copy.observed().begin());
    std::ranges::copy(dTab.calculated(), copy.calculated().begin());
    copy.names = dTab.names;
    copy.dTensor = dTab.dTensor;
    copy.maxCount = dTab.maxCount;
    copy.dMinRes = dTab.dMinRes;
    copy.dMaxRes = dTab.dMaxRes;
    copy.nullChainName = dTab.nullChainName;
    copy.nullSegName = dTab.nullSegName;
    return copy;
}

int shiftedRes(int resID, std::int64_t offset)
{
    return static_cast<int>(std::clamp<std::int64_t>(resID + offset, INT_MIN, INT_MAX));
}

RowQueries queriesOf(const PDBInfo &pdbInfo, const DTable &dTab, const DInfo &obs, int aOff)
{
    const auto side = [&](int resID, const Name &atomName, const Name &chainName,
                          const Name &segName) -> SideQuery {
        return {shiftedRes(resID, aOff), atomName, dTab.nullChainName != 0 ? pdbInfo.defChainName : chainName,
                dTab.nullSegName != 0 ? pdbInfo.defSegName : segName};
    };
    return {side(obs.resIDI, obs.names->atomNameI, obs.names->chainNameI, obs.names->segNameI),
            side(obs.resIDJ, obs.names->atomNameJ, obs.names->chainNameJ, obs.names->segNameJ)};
}

bool namesNoTable(const std::string &inDName)
{
    return inDName.empty() || equalNoCase(inDName, "None");
}

Status readDC(const std::string &inDName, DTable &dTab, Messages &messages)
{
    if (namesNoTable(inDName))
        return Status::ok;
    TextInput input;
    return openTable(inDName, input, messages) == Status::ok ? parseDC(inDName, input, dTab, messages)
                                                             : Status::failed;
}

Status parseDC(const std::string &inDName, TextInput &input, DTable &dTab, Messages &messages)
{
    TextTable text;
    if (parseTable(inDName, input, text, noCoupling, messages) != Status::ok ||
        checkNumbers(text, inDName, messages) != Status::ok ||
        allocateRows(dTab, text.entryCount, messages) != Status::ok)
        return Status::failed;
    dTab.columnFindings = checkColumns(text);
    const Status status = readRows(text, dTab, messages);
    text = TextTable{}; // its cells are as many bytes as the rows
    dTab.dCalcList = Block<DCalc>("dc", dTab.dCount);
    if (dTab.dCalcList)
        return status;
    dTab.dCount = 0;
    return messages.fail("DC Error Allocating DC Values.");
}

Status startRows(DTable &dTab, std::size_t rows, Messages &messages)
{
    if (allocateRows(dTab, rows, messages) != Status::ok)
        return Status::failed;
    dTab.dCalcList = Block<DCalc>("dc", rows);
    if (dTab.dCalcList)
        return Status::ok;
    dTab.dCount = 0;
    return messages.fail("DC Error Allocating DC Values.");
}

Status settleRows(DTable &dTab, Messages &messages)
{
    std::size_t pairs = 0;
    for (DInfo &obs : dTab.observed()) {
        if (!obs.names->chainNameI.empty() || !obs.names->chainNameJ.empty())
            dTab.nullChainName = 0;
        if (!obs.names->segNameI.empty() || !obs.names->segNameJ.empty())
            dTab.nullSegName = 0;
        const Interaction found = findVariableDI(0.0f, {obs.resIDI, obs.names->atomNameI.view()},
                                                 {obs.resIDJ, obs.names->atomNameJ.view()}, 1, messages);
        if (found.isFixed) {
            obs.diFixedFlag = 1;
            obs.di = found.di;
        }
        dTab.dMinRes = std::min({dTab.dMinRes, obs.resIDI, obs.resIDJ});
        dTab.dMaxRes = std::max({dTab.dMaxRes, obs.resIDI, obs.resIDJ});
        pairs += possiblePairs(*obs.names);
    }
    return boundPairs(dTab, pairs, messages);
}

int selectD(std::span<DInfo> dList, int segFirst, int segLast, WindowKind excludeMode)
{
    const auto inside = [=](int resID) { return resID >= segFirst && resID <= segLast; };
    int count = 0;
    for (DInfo &row : dList) {
        bool keep = inside(std::max(row.resIDI, row.resIDJ));
        if (excludeMode == bothInside)
            keep = inside(row.resIDI) && inside(row.resIDJ);
        else if (excludeMode == oneInside)
            keep = inside(row.resIDI) || inside(row.resIDJ);
        row.valid = row.d <= maxCoupling && keep ? 1 : 0;
        count += row.valid;
    }
    return count;
}

int selTypDC(std::span<DInfo> dList, std::string_view atomNameI, std::string_view atomNameJ)
{
    constexpr std::string_view any = "All";
    int count = 0;
    for (DInfo &row : dList) {
        const bool keepI = atomNameI == any || row.names->atomNameI == atomNameI;
        const bool keepJ = atomNameJ == any || row.names->atomNameJ == atomNameJ;
        if (!keepI || !keepJ)
            row.valid = 0;
        count += row.valid != 0 ? 1 : 0;
    }
    return count;
}

Status addRows(DTable &dTab, std::size_t count, Messages &messages)
{
    const auto rows = dTab.observed().size() + count;
    const std::size_t pairs = dTab.maxCount + count; // one for each row that is added
    if (!dTab.dObsList.grow("dc", rows) || !dTab.dCalcList.grow("dc", rows))
        return messages.fail("DC Error Allocating DC Values.\n");
    if (boundPairs(dTab, pairs, messages) != Status::ok)
        return Status::failed;
    if (!dTab.names)
        dTab.names = std::make_shared<NameStore>();
    dTab.dCount = rows;
    return Status::ok;
}

void setNames(const DTable &dTab, const RowNames &names, DInfo &obs)
{
    obs.names = dTab.names->keep(names);
}

void buildRow(const PDBInfo &pdbInfo, const DTable &dTab, int aOff, DInfo &obs, DCalc &calc,
              Messages &messages)
{
    calc.valid = 1;
    const RowQueries sides = queriesOf(pdbInfo, dTab, obs, aOff);
    const bool isWholeI = findWholeSide(pdbInfo, sides.i, calc.atomI, messages);
    const bool isWholeJ = findWholeSide(pdbInfo, sides.j, calc.atomJ, messages);
    if (!isWholeI || !isWholeJ)
        obs.valid = 0; // so that it is told once
    if (calc.pairCount() == 0) {
        calc.valid = 0;
        return;
    }
    calc.resIDI = sides.i.resID;
    calc.resIDJ = sides.j.resID;
    calc.sigma = obs.sigma;
    calc.w = obs.w;
}

int buildDC(const PDBInfo &pdbInfo, DTable &dTab, const RowMatch &match, Messages &messages)
{
    if (pdbInfo.atoms().empty()) // the rows keep what they hold
        return 0;
    std::ranges::fill(dTab.calculated(), DCalc{});
    int count = 0;
    for (std::size_t i = 0; i < dTab.observed().size(); ++i) {
        DInfo &obs = dTab.observed()[i];
        DCalc &calc = dTab.calculated()[i];
        if (obs.valid != 1)
            continue;
        buildRow(pdbInfo, dTab, match.aOff, obs, calc, messages);
        if (calc.valid != 0)
            weightRow(obs, calc, match.wOff, match.wList);
        if (calc.pairCount() != 0) // of weight 0, too: what it would be can be asked for
            setDI(pdbInfo, match, obs, calc, messages);
        count += calc.valid;
    }
    return count;
}

} // namespace trelm
