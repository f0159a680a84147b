#include "couplings/formats/take.h"

#include "couplings/interaction.h"
#include "structure/atom_names.h"
#include "support/text/text.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cmath>
#include <functional>
#include <map>
#include <tuple>
#include <unordered_map>

namespace trelm {
namespace {

/// An archive on its way into a table.
struct Taking {
    const std::string &name;
    Archive &archive;
    Messages &messages;
    std::map<std::string, std::size_t> left = {}; ///< rows that are not used, by reason
    std::size_t read = 0;                         ///< of the medium
};

// ---- the choice of a medium ----

std::string mediaText(const std::vector<Medium> &media)
{
    constexpr std::size_t most = 20;
    std::string text;
    for (const Medium &medium : std::span(media).first(std::min(most, media.size())))
        appendf(text, "%s%s (%zu)", text.empty() ? "" : ", ", medium.name.c_str(), medium.rows);
    if (media.size() > most)
        appendf(text, " and %zu more", media.size() - most);
    return text;
}

/// The place of the medium to read; nothing after a message if there is none.
std::optional<std::size_t> chooseMedium(const Taking &taking, const std::string &wanted)
{
    const std::vector<Medium> &media = taking.archive.media;
    const auto found =
        wanted.empty() ? std::ranges::find_if(media, [](const Medium &medium) { return medium.rows != 0; })
                       : std::ranges::find(media, wanted, &Medium::name);
    if (found == media.end() && media.empty())
        taking.messages.err("trelm: %s: no couplings in it.\n", taking.name.c_str());
    else if (found == media.end() && wanted.empty())
        taking.messages.err("trelm: %s: no couplings that can be used.\n", taking.name.c_str());
    else if (found == media.end())
        taking.messages.err("trelm: %s has no medium %s: %s.\n", taking.name.c_str(), wanted.c_str(),
                            mediaText(media).c_str());
    if (found == media.end())
        return std::nullopt;
    if (wanted.empty() && media.size() > 1)
        taking.messages.warn("trelm: %zu media in %s, the first is used (-medium ID): %s\n", media.size(),
                             taking.name.c_str(), mediaText(media).c_str());
    return static_cast<std::size_t>(found - media.begin());
}

// ---- rows that are not used ----

char nucleusOf(const Name &name)
{
    const std::string_view text = name.view();
    const std::size_t letter = text.find_first_not_of("0123456789");
    return letter == std::string_view::npos ? '\0' : text[letter];
}

/// Q and M stand for groups of hydrogens.
bool hasSpinHalf(const Name &name)
{
    constexpr std::string_view letters = "HCNFPQM";
    return letters.find(nucleusOf(name)) != std::string_view::npos;
}

void tellLeft(Taking &taking, std::size_t line, const std::string &pair, const std::string &reason)
{
    taking.messages.note("trelm: %s, line %zu: %s: %s.\n", taking.name.c_str(), line, pair.c_str(),
                         reason.c_str());
    ++taking.left[reason.substr(0, reason.find(" ("))];
}

/// Why a row cannot be used at all; empty if it can.
std::string reasonAgainst(const ArchiveRow &row)
{
    std::string reason;
    if (row.alternatives > 1)
        appendf(reason, "ambiguous (%d alternatives)", row.alternatives);
    else if (row.weight == 0.0)
        reason = "weight 0";
    else if (!hasSpinHalf(row.i.atomName) || !hasSpinHalf(row.j.atomName))
        reason = "not a nucleus with spin 1/2";
    else if (std::fabs(row.value) > double{maxCoupling})
        reason = "beyond 900 Hz";
    return reason;
}

/// The pair of a row in one order of its atoms.
using AtomKey = std::tuple<std::string_view, int, std::string_view, std::string_view>;
using ArchivePairKey = std::pair<AtomKey, AtomKey>;

ArchivePairKey keyOf(const ArchiveRow &row)
{
    const auto key = [](const NamedAtom &atom) -> AtomKey {
        return {atom.chain.view(), atom.resID, atom.code(), atom.atomName.view()};
    };
    return std::minmax(key(row.i), key(row.j));
}

/// The same for both orders of the atoms.
std::size_t hashOf(const ArchiveRow &row)
{
    const auto hash = [](const NamedAtom &atom) {
        return std::hash<std::string_view>{}(atom.atomName.view()) * 31 +
               static_cast<std::size_t>(atom.resID) * 0x9e3779b97f4a7c15;
    };
    return hash(row.i) + hash(row.j);
}

/// Keeps the rows that count, of one medium: those that can be used, the same pair with the same value once.
void keepUsable(Taking &taking, std::size_t medium, std::vector<ArchiveRow> &rows)
{
    std::unordered_multimap<std::size_t, std::size_t> known; // rows by the hash of their pair
    std::size_t kept = 0, others = 0;
    for (const ArchiveRow &row : rows) {
        if (row.medium != medium)
            continue;
        ++taking.read;
        std::string reason = reasonAgainst(row);
        bool isKnown = false;
        const std::size_t hash = hashOf(row);
        const auto [first, last] = known.equal_range(hash);
        for (auto other = first; reason.empty() && other != last; ++other) {
            if (keyOf(rows[other->second]) != keyOf(row))
                continue;
            isKnown = true;
            if (rows[other->second].value == row.value)
                appendf(reason, "given twice (the same value as in line %zu)", rows[other->second].line);
        }
        if (!reason.empty()) {
            tellLeft(taking, row.line, pairText(row.i, row.j), reason);
            continue;
        }
        others += isKnown ? 1 : 0;
        known.emplace(hash, kept);
        rows[kept++] = row;
    }
    rows.erase(rows.begin() + static_cast<std::ptrdiff_t>(kept), rows.end());
    if (others != 0)
        taking.messages.warn("trelm: %s: %zu couplings are given again with another value: two media in one"
                             " list?\n",
                             taking.name.c_str(), others);
}

void tellLeftOut(Taking &taking)
{
    for (const LeftOutRow &row : taking.archive.leftOut)
        tellLeft(taking, row.line, row.pair, row.reason);
    taking.read += taking.archive.leftOut.size();
    for (const ForeignData &data : taking.archive.foreign)
        taking.messages.note("trelm: %s: %zu times something else, left out: %s (line %zu)\n",
                             taking.name.c_str(), data.count, data.kind.c_str(), data.firstLine);
}

/// The sum of it. Couplings that are lost are a warning, those given twice are none.
void tellTotals(const Taking &taking, std::size_t used)
{
    std::string text;
    bool isLoss = false;
    for (const auto &[reason, count] : taking.left) {
        appendf(text, "%s%zu %s", text.empty() ? "" : ", ", count, reason.c_str());
        isLoss = isLoss || reason != "given twice";
    }
    if (isLoss)
        taking.messages.warn("trelm: %s: %zu of %zu couplings taken: %s\n", taking.name.c_str(), used,
                             taking.read, text.c_str());
    else if (!text.empty())
        taking.messages.note("trelm: %s: %zu of %zu couplings taken: %s\n", taking.name.c_str(), used,
                             taking.read, text.c_str());
}

// ---- rows of the table ----

/// A pair that has a fixed distance in the other order of its atoms alone, or an amide with N first.
bool isTurnedPair(const ArchiveRow &row)
{
    if (row.i.atomName == "N" && row.j.atomName == "HN" && row.i.resID == row.j.resID)
        return true;
    Messages silent([](Messages::Stream, std::string_view) {}); // unknown nuclei are told elsewhere
    const PairSide i = {row.i.resID, row.i.atomName.view()}, j = {row.j.resID, row.j.atomName.view()};
    return !findVariableDI(0.0f, i, j, 1, silent).isFixed && findVariableDI(0.0f, j, i, 1, silent).isFixed;
}

/// The name of an atom as tables have it. Q and M names and the wildcards of other programs become those of
/// tables: # for numbers, * for two of them.
Name tableName(const NamedAtom &atom)
{
    std::string text(fullMethylName(atom.resName.view(), atom.atomName.view()));
    const std::size_t marks = text.starts_with("QQ") ? 2 : 1;
    if (text.size() > marks && (text[0] == 'Q' || text[0] == 'M'))
        text = std::string("H").append(text, marks).append(marks == 2 ? "*" : "#");
    std::ranges::replace(text, '%', '#');
    std::ranges::replace(text, '+', '#');
    return Name::of(text);
}

/// A row of the table; its names are kept there.
DInfo rowOf(const ArchiveRow &from, NameStore &names)
{
    DInfo row;
    row.names = names.keep({.resNameI = from.i.resName,
                            .resNameJ = from.j.resName,
                            .atomNameI = tableName(from.i),
                            .atomNameJ = tableName(from.j),
                            .chainNameI = from.i.chain,
                            .chainNameJ = from.j.chain});
    row.valid = 1;
    row.resIDI = from.i.resID;
    row.resIDJ = from.j.resID;
    row.d = static_cast<float>(from.value);
    row.sigma = static_cast<float>(from.error.value_or(1.0) / std::sqrt(from.weight));
    return row;
}

/// What the errors of a file are worth: those of restraints are the width of a potential.
void tellErrors(const Taking &taking, std::span<const ArchiveRow> rows)
{
    constexpr double narrowest =
        1.0; // Hz: no width of a restraint was seen below, no error of a method above
    const auto errorOf = [](const ArchiveRow &row) { return row.error; };
    const auto lacking = static_cast<std::size_t>(
        std::ranges::count_if(rows, [](const ArchiveRow &row) { return !row.error; }));
    if (lacking == rows.size())
        taking.messages.note("trelm: %s has no errors: DD is 1 Hz\n", taking.name.c_str());
    else if (lacking != 0)
        taking.messages.warn("trelm: %s: %zu of %zu couplings have no error: their DD is 1 Hz\n",
                             taking.name.c_str(), lacking, rows.size());
    const std::optional<double> first = rows[0].error;
    const bool isOne = std::ranges::all_of(
        rows, [&](const auto &error) { return error == first; }, errorOf);
    if (first && isOne && rows.size() > 1 && *first >= narrowest)
        taking.messages.note("trelm: %s: one error for all rows: %.3f Hz, a restraint's width?\n",
                             taking.name.c_str(), *first);
    const auto [least, largest] = std::ranges::minmax(rows, {}, &ArchiveRow::scale);
    if (least.scale != 1.0 || largest.scale != 1.0)
        taking.messages.note(
            "trelm: %s: scales from %g to %g are not applied: values are those of the file\n",
            taking.name.c_str(), least.scale, largest.scale);
    const auto [low, high] = std::ranges::minmax(rows, {}, &ArchiveRow::weight);
    if (low.weight != 1.0 || high.weight != 1.0)
        taking.messages.note("trelm: %s: weights from %g to %g: DD is the error over their root\n",
                             taking.name.c_str(), low.weight, high.weight);
}

Status fillRows(std::vector<ArchiveRow> &rows, DTable &dTab, Messages &messages)
{
    if (startRows(dTab, rows.size(), messages) != Status::ok)
        return Status::failed;
    for (std::size_t k = 0; k < rows.size(); ++k) {
        ArchiveRow &row = rows[k];
        if (isTurnedPair(row)) {
            std::swap(row.i, row.j);
            row.isTurned = true;
        }
        dTab.observed()[k] = rowOf(row, *dTab.names);
        dTab.observed()[k].id = static_cast<int>(k + 1);
    }
    return settleRows(dTab, messages);
}

// ---- conventions ----

/// Distances of the pairs whose couplings are normalised to N-H, angstrom, as those who normalise take them.
struct NormalPair {
    std::string_view a, b; ///< in either order
    bool isInResidue;
    double distance;
};
constexpr NormalPair normalPairs[] = {
    {"H", "N", true, 1.041},   {"N", "C", false, 1.329}, {"H", "C", false, 2.107},  {"C", "CA", true, 1.525},
    {"CA", "CB", true, 1.525}, {"N", "CA", true, 1.458}, {"CA", "HA", true, 1.107}, {"H", "CA", true, 2.560},
};
constexpr double amideDistance = 1.041;

std::string_view plainName(const Name &name)
{
    if (name == "HN")
        return "H";
    return name.view().starts_with("HA") ? "HA" : name.view();
}

/// The constant of a pair over that of N-H, without sign; nothing for a pair that nobody normalises.
std::optional<double> normalRatio(const DInfo &row)
{
    const std::string_view i = plainName(row.names->atomNameI), j = plainName(row.names->atomNameJ);
    for (const NormalPair &pair : normalPairs) {
        const bool isPair = (pair.a == i && pair.b == j) || (pair.a == j && pair.b == i);
        if (!isPair || pair.isInResidue != (row.resIDI == row.resIDJ))
            continue;
        Messages silent([](Messages::Stream, std::string_view) {});
        const auto constant = [&](double r, std::string_view a, std::string_view b) {
            return findVariableDI(static_cast<float>(r), {0, a}, {0, b}, 0, silent).di;
        };
        return std::fabs(double{constant(pair.distance, i, j)} / double{constant(amideDistance, "H", "N")});
    }
    return std::nullopt;
}

bool hasNitrogen(const DInfo &row)
{
    return nucleusOf(row.names->atomNameI) == 'N' || nucleusOf(row.names->atomNameJ) == 'N';
}

} // namespace

Status takeArchive(const std::string &name, const CouplingReading &reading, Archive &archive, DTable &dTab,
                   Messages &messages)
{
    Taking taking = {name, archive, messages};
    const std::optional<std::size_t> medium = chooseMedium(taking, reading.medium);
    tellLeftOut(taking);
    if (!medium)
        return Status::failed;
    std::vector<ArchiveRow> rows = std::move(archive.rows);
    keepUsable(taking, *medium, rows);
    tellTotals(taking, rows.size());
    if (rows.empty() || rows.size() > static_cast<std::size_t>(INT_MAX))
        return messages.fail("trelm: %s: no couplings that can be used.\n", name.c_str());
    tellErrors(taking, rows);
    const Status status = fillRows(rows, dTab, messages);
    dTab.origin = {.file = name, .rows = std::move(rows), .tensor = archive.media[*medium].tensor};
    return status;
}

void applyConventions(const std::string &name, const CouplingReading &reading, DTable &dTab,
                      Messages &messages)
{
    std::size_t unknown = 0;
    for (DInfo &row : dTab.observed()) {
        if (row.d == noCoupling)
            continue;
        if (reading.isPhysical && !hasNitrogen(row))
            row.d = -row.d;
        const std::optional<double> ratio = reading.isNormalised ? normalRatio(row) : 1.0;
        unknown += ratio ? 0 : 1;
        row.d = static_cast<float>(double{row.d} * ratio.value_or(1.0));
        row.sigma = static_cast<float>(double{row.sigma} * ratio.value_or(1.0));
    }
    if (unknown != 0)
        messages.warn("trelm: %s: %zu couplings stay as written: their normalisation is not known\n",
                      name.c_str(), unknown);
}

} // namespace trelm
