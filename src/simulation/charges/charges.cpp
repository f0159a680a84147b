#include "simulation/charges/charges.h"

#include "simulation/charges/charge_file.h"
#include "simulation/charges/charge_tables.h"
#include "simulation/charges/options.h"
#include "support/text/output_file.h"
#include "support/text/text.h"

#include <cmath>
#include <cstdio>
#include <unordered_map>
#include <vector>

namespace trelm {
namespace {

/// Multiplies a stretch of the list, counted from 0, also behind the last charge.
void scalePlaces(ChargeSet &set, std::size_t first, std::size_t count, float scale)
{
    for (float &charge : set.charges.subspan(first, count))
        charge *= scale;
}

/// The scales belong to hand-made pKa files that hold a monopole, a quadrupole and a dipole in this order.
void scaleMoments(const ChargeOptions &elInfo, ChargeSet &set)
{
    if (elInfo.kMonoCh == 1.0f && elInfo.kDipoCh == 1.0f && elInfo.kQuadCh == 1.0f)
        return;
    scalePlaces(set, 0, 1, elInfo.kMonoCh);
    scalePlaces(set, 1, 7, elInfo.kQuadCh);
    scalePlaces(set, 8, 2, elInfo.kDipoCh);
}

/// Scales and sums the placed charges. Returns 1 if the sum is no number, which one question tells for pH,
/// scales and values alike.
Status settle(const ChargeOptions &elInfo, ChargeSet &set, Messages &messages)
{
    scaleMoments(elInfo, set);
    set.chSum = 0.0f;
    for (const float charge : set.charges.first(static_cast<std::size_t>(set.chCount)))
        set.chSum += charge;
    return std::isfinite(set.chSum) ? Status::ok
                                    : messages.fail("Error: The net charge is not a finite number.\n");
}

Status chargeFromFile(const std::string &inName, const SelectedAtoms &selected, const ChargeOptions &elInfo,
                      ChargeSet &set, ChargeLines &lines, Messages &messages)
{
    if (readChargeFile(inName, selected, elInfo.pH, set, lines, messages) != Status::ok ||
        settle(elInfo, set, messages) != Status::ok)
        return Status::failed;
    messages.note("REMARK %s, %d Charges/pka Values, Net Charge %.3f Residues %d to %d.\n", inName.c_str(),
                  set.chCount, static_cast<double>(set.chSum), lines.range.first, lines.range.last);
    return Status::ok;
}

/// A group whose atoms come one by one. Its lines are due at the end of the residue.
struct OpenGroup {
    struct Member {
        std::string_view name;
        float charge;
    };
    int resID = 0;
    std::string_view word; ///< what names all atoms of the group in a file; empty: nothing does
    std::vector<Member> members;
    float share = 0.0f, sum = 0.0f;
};

/// True if a reader who gives each atom of the group its share comes to the same charges: the group is there
/// whole, and each of its atoms once.
bool isWhole(const OpenGroup &open)
{
    for (std::size_t i = 0; i < open.members.size(); ++i)
        for (std::size_t j = 0; j < i; ++j)
            if (open.members[i].name == open.members[j].name)
                return false;
    return open.share == 1.0f && !open.word.empty();
}

/// Writes one line for a whole group, else one for each atom.
void closeGroup(OpenGroup &open, ChargeLines &lines)
{
    if (isWhole(open)) {
        const bool single = open.word == defaultWord && open.members.size() == 1;
        addLine(lines, open.resID, single ? open.members.front().name : open.word, open.sum);
    } else {
        for (const auto &[name, charge] : open.members)
            addLine(lines, open.resID, name, charge);
    }
    open.members.clear();
    open.share = open.sum = 0.0f;
}

void addMember(OpenGroup &open, const TitrationGroup &group, std::string_view name, float charge)
{
    open.members.push_back({name, charge});
    open.share += group.share;
    open.sum += charge;
}

/// The residue that a walk over the atoms is in. Insertion codes and names part what one number holds.
bool isSameResidue(const AtomInfo &a, const AtomInfo *b)
{
    return b != nullptr && a.resInfo == b->resInfo && a.resName == b->resName && a.icode == b->icode;
}

/// The groups of the residue that a walk over the atoms is in.
struct ResidueGroups {
    const AtomInfo *first = nullptr;        ///< its first selected atom
    const TitrationGroup *terminal[2] = {}; ///< chain start and end, if this is one
    const TitrationGroup *own = nullptr;
    OpenGroup openTerminus, openOwn;
};

/// Writes the groups of a residue: the chain start before what the residue has of itself, the chain end
/// after.
void leaveResidue(ResidueGroups &groups, ChargeLines &lines)
{
    const bool startFirst = groups.terminal[0] != nullptr;
    closeGroup(startFirst ? groups.openTerminus : groups.openOwn, lines);
    closeGroup(startFirst ? groups.openOwn : groups.openTerminus, lines);
}

void enterResidue(ResidueGroups &groups, const AtomInfo &atom, const PDBInfo &pdbInfo, bool terminiCharged,
                  ChargeLines &lines)
{
    leaveResidue(groups, lines);
    groups.first = &atom;
    groups.terminal[0] = terminiCharged && atom.resID == pdbInfo.minResID ? &startGroup : nullptr;
    groups.terminal[1] = terminiCharged && atom.resID == pdbInfo.maxResID ? &endGroup : nullptr;
    groups.own = findGroup(atom.resName.view());
    groups.openTerminus.resID = groups.openOwn.resID = atom.resID;
    // In a chain of one residue the word would stand for both ends.
    groups.openTerminus.word = pdbInfo.minResID == pdbInfo.maxResID ? std::string_view() : terminusWord;
    groups.openOwn.word = defaultWord;
}

Status titrateAtom(ResidueGroups &groups, std::size_t place, std::string_view name, float pH, ChargeSet &set,
                   Messages &messages)
{
    for (const TitrationGroup *group : {groups.terminal[0], groups.terminal[1], groups.own}) {
        if (group == nullptr || !group->holds(name))
            continue;
        const float charge = group->atomCharge(titratedFraction(pH, group->pKa));
        addMember(group == groups.own ? groups.openOwn : groups.openTerminus, *group, name, charge);
        if (addCharge(set, place, charge, messages) != Status::ok)
            return Status::failed;
    }
    return Status::ok;
}

Status titrateDefaults(const SelectedAtoms &selected, const ChargeOptions &elInfo, ChargeSet &set,
                       ChargeLines &lines, Messages &messages)
{
    const PDBInfo &pdbInfo = selected.pdbInfo;
    ResidueGroups groups;
    const auto atoms = pdbInfo.atoms();
    for (std::size_t i = 0; i < atoms.size(); ++i) {
        if (!selected.has(i))
            continue;
        if (isFullForNothing(set, elInfo, lines, messages))
            break;
        if (!isSameResidue(atoms[i], groups.first))
            enterResidue(groups, atoms[i], pdbInfo, elInfo.chTerminiFlag != 0, lines);
        if (titrateAtom(groups, i, atoms[i].atomName.view(), elInfo.pH, set, messages) != Status::ok)
            return Status::failed;
    }
    leaveResidue(groups, lines);
    if (settle(elInfo, set, messages) != Status::ok)
        return Status::failed;
    messages.note("pka Default Values, %d Charges/pka Values, Net charge %.3f   Residues %d to %d.\n",
                  set.chCount, static_cast<double>(set.chSum), pdbInfo.minResID, pdbInfo.maxResID);
    return Status::ok;
}

/// The rows of the residue that a walk over the atoms is in.
struct ResidueRows {
    const AtomInfo *first = nullptr;       ///< its first selected atom
    std::span<const ChargeRow> start, end; ///< rows of the chain ends, empty elsewhere
    std::span<const ChargeRow> own;
};

ResidueRows residueRows(const ChargeTable &table, const AtomInfo &atom, const PDBInfo &pdbInfo,
                        bool terminiCharged)
{
    ResidueRows rows;
    rows.first = &atom;
    rows.own = findRows(table, atom.resName.view());
    // A known residue without backbone, such as a cap, an ion or a nucleotide, is no end of a protein chain.
    if (!terminiCharged || (!rows.own.empty() && findRow(rows.own, "N") == nullptr))
        return rows;
    if (atom.resID == pdbInfo.minResID)
        rows.start = findRows(table, atom.resName == "GLY" ? "NTER_GLY" : "NTER");
    if (atom.resID == pdbInfo.maxResID)
        rows.end = findRows(table, "CTER");
    return rows;
}

/// The row that holds for an atom, or null.
const ChargeRow *rowOf(const ResidueRows &rows, std::string_view name)
{
    for (const auto &terminal : {rows.start, rows.end})
        if (const ChargeRow *row = findRow(terminal, name))
            return row;
    // The charged start has no amide hydrogen: its row would come on top of those of the ammonium group.
    if (!rows.start.empty() && (name == "H" || name == "HN"))
        return nullptr;
    return findRow(rows.own, name);
}

Status placePartialCharges(ChargeTableID id, const SelectedAtoms &selected, const ChargeOptions &elInfo,
                           ChargeSet &set, ChargeLines &lines, Messages &messages)
{
    const PDBInfo &pdbInfo = selected.pdbInfo;
    const ChargeTable table = chargeTable(id);
    ResidueRows rows;
    const auto atoms = pdbInfo.atoms();
    for (std::size_t i = 0; i < atoms.size(); ++i) {
        if (!selected.has(i))
            continue;
        if (isFullForNothing(set, elInfo, lines, messages))
            break;
        if (!isSameResidue(atoms[i], rows.first))
            rows = residueRows(table, atoms[i], pdbInfo, elInfo.chTerminiFlag != 0);
        const std::string_view name = atoms[i].atomName.view();
        const ChargeRow *row = rowOf(rows, name);
        if (row == nullptr)
            continue;
        addLine(lines, atoms[i].resID, name, row->charge);
        if (addCharge(set, i, row->charge, messages) != Status::ok)
            return Status::failed;
    }
    if (settle(elInfo, set, messages) != Status::ok)
        return Status::failed;
    messages.note("pka Default Values, %d Charges/pka Values  Net Charge %.3f, Residues %d to %d.\n",
                  set.chCount, static_cast<double>(set.chSum), pdbInfo.minResID, pdbInfo.maxResID);
    return Status::ok;
}

Status placeCharges(const std::string &inName, const SelectedAtoms &selected, const ChargeOptions &elInfo,
                    ChargeSet &set, ChargeLines &lines, Messages &messages)
{
    if (!inName.empty())
        return elInfo.elFlag != 0 ? chargeFromFile(inName, selected, elInfo, set, lines, messages)
                                  : Status::ok;
    if (elInfo.pkaFlag == 0)
        return Status::ok;
    if (elInfo.charmm == charmmNone)
        return titrateDefaults(selected, elInfo, set, lines, messages);
    if (elInfo.charmm == charmm19)
        return placePartialCharges(ChargeTableID::charmm19, selected, elInfo, set, lines, messages);
    if (elInfo.charmm == charmm22 && elInfo.pH >= 6.0f && elInfo.pH <= 7.0f)
        return placePartialCharges(ChargeTableID::charmm22, selected, elInfo, set, lines, messages);
    if (elInfo.charmm == charmm22 && elInfo.pH <= 4.0f)
        return placePartialCharges(ChargeTableID::charmm22Acid, selected, elInfo, set, lines, messages);
    return Status::ok; // the tables know no charges between
}

/// The lines of a charge file have no chain and no insertion code: where one number stands for residues of
/// different names they can not be read back as they were.
void warnMixedNumbers(const SelectedAtoms &selected, Messages &messages)
{
    std::unordered_map<int, const AtomInfo *> firstOf;
    const auto atoms = selected.pdbInfo.atoms();
    for (std::size_t i = 0; i < atoms.size(); ++i) {
        if (!selected.has(i))
            continue;
        const AtomInfo &atom = atoms[i];
        const AtomInfo *first = firstOf.try_emplace(atom.resID, &atom).first->second;
        if (first->resName == atom.resName)
            continue;
        messages.err(
            "Warning: residue number %d stands for %s and %s: the charges written can not be read back "
            "as they are.\n",
            atom.resID, first->resName.c_str(), atom.resName.c_str());
        return;
    }
}

} // namespace

Status chargeSetup(const std::string &inName, const SelectedAtoms &selected, const ChargeOptions &elInfo,
                   ChargeSet &set, const std::string &outName, Messages &messages)
{
    set.chCount = 0;
    set.chSum = 0.0f;
    OutFile out;
    if (!outName.empty() && openOut(out, outName, "w") != Status::ok)
        return messages.fail("TRELM Error opening file for pka output %s\n", outName.c_str());
    ChargeLines lines;
    lines.isWanted = !outName.empty();
    if (placeCharges(inName, selected, elInfo, set, lines, messages) != Status::ok) {
        set.chCount = 0;
        set.chSum = 0.0f;
        return Status::failed;
    }
    if (outName.empty())
        return Status::ok;
    warnMixedNumbers(selected, messages);
    writeOut(out, lines.text);
    return closeOut(out, messages);
}

} // namespace trelm
