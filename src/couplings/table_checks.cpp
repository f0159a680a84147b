#include "couplings/table_checks.h"

#include "support/text/text.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace trelm {
namespace {

constexpr std::size_t shownPlaces = 3;

/// Keeps the first places, and counts all.
void addPlace(TableFinding &finding, std::string place)
{
    if (finding.count++ < shownPlaces)
        finding.first.push_back(std::move(place));
}

/// The same for a row: of a large table most have no place to be told.
void addRow(TableFinding &finding, const DInfo &row)
{
    std::string place;
    if (finding.count < shownPlaces)
        appendf(place, "%d %s - %d %s", row.resIDI, row.names->atomNameI.c_str(), row.resIDJ,
                row.names->atomNameJ.c_str());
    addPlace(finding, std::move(place));
}

void keepFound(std::vector<TableFinding> &findings, TableFinding &&finding)
{
    if (finding.count > 0)
        findings.push_back(std::move(finding));
}

// ---- values ----

/// Numbers that other programs write where nothing was measured. 9999 is this program's own, and no coupling.
bool isSentinel(float d)
{
    const float size = std::fabs(d);
    return size == 999.0f || d == -noCoupling;
}

TableFinding findSentinels(const DTable &dTab)
{
    TableFinding found = {.fault = TableFault::sentinel, .all = dTab.observed().size()};
    for (const DInfo &row : dTab.observed())
        if (isSentinel(row.d))
            addRow(found, row);
    return found;
}

/// The constant is the coupling of a vector along the field at full order. Twice it leaves room for
/// splittings of like nuclei, which are 3/2 of it.
TableFinding findBeyond(const DTable &dTab)
{
    constexpr float room = 2.0f;
    TableFinding found = {.fault = TableFault::beyondPair, .all = dTab.observed().size()};
    for (std::size_t i = 0; i < dTab.observed().size(); ++i) {
        const DInfo &row = dTab.observed()[i];
        const std::size_t pairs = std::max<std::size_t>(1, dTab.calculated()[i].pairCount());
        const float limit = room * std::fabs(row.di) * static_cast<float>(pairs);
        if (row.valid != 0 && !isSentinel(row.d) && limit > 0.0f && std::fabs(row.d) > limit)
            addRow(found, row);
    }
    return found;
}

TableFinding findZeroErrors(const DTable &dTab)
{
    TableFinding found = {.fault = TableFault::someErrorsZero};
    for (const DInfo &row : dTab.observed()) {
        found.all += row.valid != 0 ? 1 : 0;
        if (row.valid != 0 && row.sigma == 0.0f)
            addRow(found, row);
    }
    if (found.count == found.all)
        found.fault = TableFault::allErrorsZero;
    return found;
}

// ---- pairs ----

/// Numbers for the names of a side but that of its residue: equal for equal names.
class SideNumbers {
  public:
    /// Those of side I and J of a row.
    std::pair<std::uint32_t, std::uint32_t> of(const RowNames &names)
    {
        const auto [known, isNew] = rows_.try_emplace(&names);
        if (isNew)
            known->second = {
                numberOf({names.atomNameI.view(), names.chainNameI.view(), names.segNameI.view()}),
                numberOf({names.atomNameJ.view(), names.chainNameJ.view(), names.segNameJ.view()})};
        return known->second;
    }

  private:
    using Side = std::array<std::string_view, 3>;

    std::uint32_t numberOf(const Side &side)
    {
        return sides_.try_emplace(side, static_cast<std::uint32_t>(sides_.size())).first->second;
    }

    std::map<Side, std::uint32_t> sides_;
    std::unordered_map<const RowNames *, std::pair<std::uint32_t, std::uint32_t>> rows_;
};

/// A pair, with its atoms in one order: residue and names of both.
using PairKey = std::pair<std::pair<int, std::uint32_t>, std::pair<int, std::uint32_t>>;

struct PairHash {
    std::size_t operator()(const PairKey &key) const
    {
        const std::size_t first = std::hash<int>{}(key.first.first) * 31 + key.first.second;
        const std::size_t second = std::hash<int>{}(key.second.first) * 31 + key.second.second;
        return first * 0x9e3779b97f4a7c15 + second;
    }
};

TableFinding findTwice(const DTable &dTab)
{
    TableFinding found = {.fault = TableFault::twice, .all = dTab.observed().size()};
    SideNumbers numbers;
    std::unordered_set<PairKey, PairHash> known;
    for (const DInfo &row : dTab.observed()) {
        if (row.valid == 0)
            continue;
        const auto [i, j] = numbers.of(*row.names);
        if (!known.insert(std::minmax(std::pair(row.resIDI, i), std::pair(row.resIDJ, j))).second)
            addRow(found, row);
    }
    return found;
}

/// What pairs of one interaction constant share: their atoms, in one order. All N-H bonds are one kind.
std::string kindOf(const DInfo &row)
{
    const auto name = [](const Name &atom) { return atom == "HN" ? "H" : std::string(atom.view()); };
    std::string a = name(row.names->atomNameI), b = name(row.names->atomNameJ);
    if (b < a)
        std::swap(a, b);
    const bool isInResidue = row.resIDI == row.resIDJ;
    if (isInResidue && a.starts_with('H') && b.starts_with('N'))
        return "H-N";
    return a + "-" + b + (isInResidue ? "" : " of neighbours");
}

TableFinding findScales(const DTable &dTab)
{
    TableFinding found = {.fault = TableFault::severalScales};
    std::set<std::string> kinds;
    for (const DInfo &row : dTab.observed()) {
        if (row.valid == 0)
            continue;
        if (row.w != 1.0f)
            return found;
        if (const auto [kind, isNew] = kinds.insert(kindOf(row)); isNew && kinds.size() <= shownPlaces)
            found.first.push_back(*kind);
    }
    found.count = kinds.size() > 1 ? kinds.size() : 0;
    return found;
}

// ---- residue names ----

/// The names of the residues that proteins and nucleic acids are made of, by their letters.
struct ResidueLetter {
    char letter;
    std::string_view names; ///< with a blank before and behind each
};
constexpr ResidueLetter residueLetters[] = {
    {'A', " A ALA DA ADE RA "},
    {'R', " R ARG ARG+ "},
    {'N', " N ASN "},
    {'D', " D ASP ASH ASPP "},
    {'E', " E GLU GLH GLUP "},
    {'Q', " Q GLN "},
    {'H', " H HIS HIS+ HID HIE HIP HSD HSE HSP HISD HISE HISH "},
    {'I', " I ILE "},
    {'L', " L LEU "},
    {'K', " K LYS LYS+ LYN LSN "},
    {'M', " M MET "},
    {'F', " F PHE "},
    {'P', " P PRO "},
    {'S', " S SER "},
    {'W', " W TRP "},
    {'Y', " Y TYR "},
    {'V', " V VAL "},
    {'C', " C CYS CYX CYM CYSS CYSH DC CYT RC "},
    {'G', " G GLY DG GUA RG "},
    {'T', " T THR DT THY "},
    {'U', " U URA DU RU "},
};

/// The letter of a name, 0 for one that is not known.
char letterOf(std::string_view name)
{
    std::string word = " ";
    for (const char c : name)
        word += static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    word += ' ';
    for (const ResidueLetter &row : residueLetters)
        if (row.names.find(word) != std::string_view::npos)
            return row.letter;
    return '\0';
}

/// A residue as the table names it.
struct NamedResidue {
    int resID; ///< with the offset of the run
    std::string_view chainName, segName, name;
    auto operator<=>(const NamedResidue &) const = default; // NOLINT(modernize-use-nullptr): of clang-tidy 14
};

/// Named residues of the chosen rows, each once, and no more than tell the numbering. Names that nobody knows
/// ("None", a ligand) are left out.
std::set<NamedResidue> namedResidues(const PDBInfo &pdbInfo, const DTable &dTab, int offset)
{
    constexpr std::size_t most = 1000;
    std::set<NamedResidue> residues;
    struct Seen {
        bool isNamed;
        std::set<std::pair<int, int>> residues;
    };
    std::unordered_map<const RowNames *, Seen> rows; // by their names: those of residues that came before
    for (const DInfo &row : dTab.observed()) {
        if (residues.size() >= most)
            break;
        const auto [known, isNew] = rows.try_emplace(row.names);
        if (isNew)
            known->second.isNamed =
                letterOf(row.names->resNameI.view()) != '\0' || letterOf(row.names->resNameJ.view()) != '\0';
        if (row.valid == 0 || !known->second.isNamed ||
            !known->second.residues.emplace(row.resIDI, row.resIDJ).second)
            continue;
        const RowQueries sides = queriesOf(pdbInfo, dTab, row, offset);
        for (const auto &[side, name] :
             {std::pair(sides.i, row.names->resNameI.view()), std::pair(sides.j, row.names->resNameJ.view())})
            if (letterOf(name) != '\0')
                residues.insert({side.resID, side.chainName.view(), side.segName.view(), name});
    }
    return residues;
}

/// How the names agree at one shift. Residues that the structure lacks are not compared.
struct Agreement {
    int shift = 0;
    std::size_t agreeing = 0, compared = 0;
};

bool agrees(std::string_view a, std::string_view b)
{
    return letterOf(a) == letterOf(b);
}

Agreement agreementAt(const PDBInfo &pdbInfo, const std::set<NamedResidue> &residues, int shift)
{
    Agreement found = {.shift = shift};
    for (const NamedResidue &residue : residues) {
        const ResInfo *there =
            findRes(pdbInfo, shiftedRes(residue.resID, shift), residue.chainName, residue.segName);
        if (there == nullptr)
            continue;
        ++found.compared;
        found.agreeing += agrees(residue.name, there->resName.view()) ? 1 : 0;
    }
    return found;
}

/// The smallest shift with which nearly all names agree.
std::optional<Agreement> bestShift(const PDBInfo &pdbInfo, const std::set<NamedResidue> &residues)
{
    constexpr int farthest = 1000;
    constexpr std::size_t fewest = 4; // some names agree by chance
    for (int size = 1; size <= farthest; ++size)
        for (const int shift : {-size, size}) {
            const Agreement found = agreementAt(pdbInfo, residues, shift);
            if (found.agreeing >= std::max(fewest, residues.size() / 2) &&
                found.agreeing * 10 >= found.compared * 9)
                return found;
        }
    return std::nullopt;
}

// ---- texts ----

/// "a, b and 40 more".
std::string listed(const TableFinding &finding)
{
    std::string text;
    for (const std::string &place : finding.first)
        text.append(text.empty() ? "" : ", ").append(place);
    if (finding.count > finding.first.size())
        appendf(text, " and %zu more", finding.count - finding.first.size());
    return text;
}

/// Whether a finding matters to a use.
bool matters(TableFault fault, const TableUse &use)
{
    switch (fault) {
    case TableFault::noValues:
        return use.usesValues;
    case TableFault::noErrors:
        return use.needsErrors;
    case TableFault::isReport:
        return use.isMeasured;
    case TableFault::someErrorsZero:
    case TableFault::allErrorsZero:
        return use.needsErrors || use.weighsByError;
    default:
        return true;
    }
}

/// What stands behind the name of the table. Words in braces give way to those of the finding.
struct FaultText {
    TableFault fault;
    const char *text;
};
constexpr FaultText faultTexts[] = {
    {TableFault::noValues,
     "no column D, all couplings are 0 (name the column of the measured values D in VARS)"},
    {TableFault::noErrors,
     "no column DD, all errors are 1 Hz: {mode} goes by them (add the error of each row)"},
    {TableFault::isReport,
     "a report, its D was calculated (give the table that was measured; D_OBS has its values)"},
    {TableFault::noNumber,
     "{count} cells of {column} are no number and read as 0: {places} (9999 is no value)"},
    {TableFault::partlyNumber,
     "{count} cells of {column} are read in part: {places} (decimals stand behind a point)"},
    {TableFault::beyondInt,
     "{count} cells of {column} are too large for a number of this kind: {places} (look at the row)"},
    {TableFault::cutNumber,
     "{count} cells of {column} lose their fraction: {places} (write %9.3f in FORMAT)"},
    {TableFault::sentinel,
     "{count} values are 999, -999 or -9999, those below 0 count: {places} (9999 is no value)"},
    {TableFault::beyondPair,
     "{count} couplings are more than their pairs can have: {places} (look at D and the atoms)"},
    {TableFault::twice, "{count} rows of a pair that has one already: {places} (leave one, or their mean)"},
    {TableFault::someErrorsZero,
     "DD is 0 in {count} of {all} rows, which N counts and a fit hardly sees: {places} "
     "(write their errors)"},
    {TableFault::allErrorsZero,
     "DD is 0 in all {all} rows: nothing is weighed by its error (write the errors)"},
    {TableFault::severalScales,
     "{count} kinds of couplings are one pattern, all with W 1: {places} (-aD1 and -aD2 "
     "choose a kind, W brings kinds to one scale)"},
    {TableFault::otherResidues, "{count} of {all} residue names differ: {places} (-a1 shifts the numbers)"},
    {TableFault::shiftedNumbers,
     "{count} of {all} residue names differ; shifted by {shift}, {agreeing} of {compared} "
     "agree (-a1 {first})"},
};

std::string textOf(const TableFinding &finding, const TableUse &use)
{
    const std::pair<std::string_view, std::string> words[] = {
        {"{mode}", use.mode},
        {"{column}", finding.column},
        {"{places}", listed(finding)},
        {"{count}", std::to_string(finding.count)},
        {"{all}", std::to_string(finding.all)},
        {"{shift}", std::to_string(finding.shift)},
        {"{agreeing}", std::to_string(finding.agreeing)},
        {"{compared}", std::to_string(finding.compared)},
        {"{first}", std::to_string(finding.firstResidue)},
    };
    std::string text = std::ranges::find(faultTexts, finding.fault, &FaultText::fault)->text;
    for (const auto &[word, meaning] : words)
        if (const std::size_t place = text.find(word); place != std::string::npos)
            text.replace(place, word.size(), meaning);
    return text;
}

/// The columns whose cells are read as numbers.
constexpr const char *checkedColumns[] = {"RESID_I", "RESID_J", "D", "DD", "W", "DI", "INDEX"};

} // namespace

std::vector<TableFinding> checkColumns(const TextTable &text)
{
    std::vector<TableFinding> findings;
    const auto has = [&](const char *name) { return getTabVar(text.varInfo, name).has_value(); };
    if (!has("D"))
        findings.push_back({.fault = TableFault::noValues});
    if (!has("DD"))
        findings.push_back({.fault = TableFault::noErrors});
    if (has("D") && has("D_OBS"))
        findings.push_back({.fault = TableFault::isReport});
    for (const char *name : checkedColumns) {
        const auto place = getTabVar(text.varInfo, name);
        if (!place)
            continue;
        const tabVar &column = text.varInfo[*place];
        for (const auto &[fault, cells] : {std::pair(TableFault::noNumber, &column.noNumber),
                                           std::pair(TableFault::partlyNumber, &column.partly),
                                           std::pair(TableFault::cutNumber, &column.cut),
                                           std::pair(TableFault::beyondInt, &column.beyond)})
            keepFound(findings,
                      {.fault = fault, .count = cells->count, .column = name, .first = cells->first});
    }
    return findings;
}

std::vector<TableFinding> checkRows(const DTable &dTab, const TableUse &use)
{
    std::vector<TableFinding> findings;
    for (const auto find : {findSentinels, findBeyond, findZeroErrors})
        keepFound(findings, find(dTab));
    if (use.takesOneScale)
        keepFound(findings, findScales(dTab));
    if (!use.hasPeaks)
        keepFound(findings, findTwice(dTab));
    return findings;
}

std::vector<TableFinding> checkResidueNames(const PDBInfo &pdbInfo, const DTable &dTab, int offset, int first)
{
    const std::set<NamedResidue> residues = namedResidues(pdbInfo, dTab, offset);
    TableFinding found = {.fault = TableFault::otherResidues};
    for (const NamedResidue &residue : residues) {
        const ResInfo *there = findRes(pdbInfo, residue.resID, residue.chainName, residue.segName);
        if (there == nullptr || letterOf(there->resName.view()) == '\0')
            continue;
        ++found.all;
        std::string place;
        appendf(place, "%d is %s and %s in the structure", residue.resID, std::string(residue.name).c_str(),
                there->resName.c_str());
        if (!agrees(residue.name, there->resName.view()))
            addPlace(found, std::move(place));
    }
    std::vector<TableFinding> findings;
    if (const auto better = found.count > 1 ? bestShift(pdbInfo, residues) : std::nullopt;
        better && better->agreeing > found.all - found.count) {
        found.fault = TableFault::shiftedNumbers;
        found.shift = better->shift;
        found.firstResidue = shiftedRes(first, better->shift);
        found.agreeing = better->agreeing;
        found.compared = better->compared;
    }
    keepFound(findings, std::move(found));
    return findings;
}

void tellFindings(const std::vector<TableFinding> &findings, const TableUse &use, const std::string &name,
                  Messages &messages)
{
    for (const TableFinding &finding : findings)
        if (matters(finding.fault, use))
            messages.warn("trelm: %s%s%s\n", name.c_str(), name.empty() ? "" : ": ",
                          textOf(finding, use).c_str());
}

} // namespace trelm
