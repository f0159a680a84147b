#include "couplings/formats/placement.h"

#include "structure/atom_names.h"
#include "support/text/text.h"
#include "support/text/token.h"

#include <algorithm>
#include <map>
#include <set>

namespace trelm {
namespace {

/// A table at work.
struct Placing {
    const PDBInfo &pdbInfo;
    int aOff;
    DTable &dTab;
    Messages &messages;
    bool hasOneChain = true; ///< all rows of the file name one chain, or none
    std::map<std::pair<std::string, std::string>, int> mapped =
        {};                                 ///< names of the file and of the structure
    bool lacksChain = false;                ///< a row names a chain that the structure does not have
    std::map<std::string, int> unused = {}; ///< rows by reason
};

/// A side of a row: what the file says, and what the structure has.
struct Side {
    const NamedAtom &from;
    int resID; ///< in the structure
    Name chain, segment, atom;
};

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

// ---- chains ----

bool hasResidue(const PDBInfo &pdbInfo, const ChainInfo &chain, int resID)
{
    return findRes(pdbInfo, resID, chain.chainID.view(), chain.segID.view()) != nullptr;
}

/// The chains that a side can mean.
std::vector<const ChainInfo *> possibleChains(const Placing &placing, const Side &side)
{
    const PDBInfo &pdbInfo = placing.pdbInfo;
    std::vector<const ChainInfo *> chains;
    for (const ChainInfo &chain : pdbInfo.chains()) {
        const bool fits = side.from.chain.empty()
                              ? hasResidue(pdbInfo, chain, side.resID)
                              : chain.chainID == side.from.chain || chain.segID == side.from.chain;
        if (fits)
            chains.push_back(&chain);
    }
    const std::span<const ChainInfo> all = pdbInfo.chains();
    const std::string_view name = side.from.chain.view();
    const auto number = static_cast<std::size_t>(std::max(0, isInteger(name) ? toInt(name) : 0));
    if (chains.empty() && all.size() == 1 && placing.hasOneChain)
        chains.push_back(&all[0]);
    else if (chains.empty() && number >= 1 && number <= all.size())
        chains.push_back(&all[number - 1]);
    if (chains.size() > 1 && !side.from.chain.empty()) // chains of one name differ in their segments
        std::erase_if(chains,
                      [&](const ChainInfo *chain) { return !hasResidue(pdbInfo, *chain, side.resID); });
    return chains;
}

/// Why the chain of a side is not known; empty if it is, or if the structure does not have it.
std::string placeChain(Placing &placing, Side &side)
{
    const std::vector<const ChainInfo *> chains = possibleChains(placing, side);
    if (chains.size() > 1)
        return "several chains fit (" + std::to_string(chains.size()) + ")";
    placing.lacksChain = placing.lacksChain || chains.empty();
    side.chain = chains.empty() ? side.from.chain : chains[0]->chainID;
    side.segment = chains.empty() ? Name{} : chains[0]->segID;
    return {};
}

// ---- atoms ----

/// A name that stands for several: their common start, and what may follow.
struct GroupName {
    std::string start;
    std::size_t fewest = 1, most = 1; ///< digits, or any characters
    bool isText = false;
};

/// The group that a name means; one with an empty start if it is no such name.
GroupName groupOf(std::string_view name)
{
    const std::size_t stars = name.find_last_not_of("%*#+") == std::string_view::npos
                                  ? name.size()
                                  : name.size() - name.find_last_not_of("%*#+") - 1;
    const std::size_t marks = name.starts_with("QQ") ? 2 : 1; // of hydrogens of one carbon, or of two
    if (name.size() > marks && (name[0] == 'Q' || name[0] == 'M'))
        return {std::string("H").append(name.substr(marks)), marks, marks};
    if (stars == 0 || stars == name.size())
        return {};
    const std::string start(name.substr(0, name.size() - stars));
    const char mark = name.back();
    if (mark == '+')
        return {start, stars, stars};
    return mark == '*' ? GroupName{start, 0, Name::capacity, true} : GroupName{start, stars, Name::capacity};
}

/// Whether an atom is of a group; "1HB" counts as "HB1".
bool isInGroup(std::string_view name, const GroupName &group)
{
    std::string modern(name);
    if (modern.size() > 1 && isDigit(modern[0]))
        std::rotate(modern.begin(), modern.begin() + 1, modern.end());
    if (!modern.starts_with(group.start))
        return false;
    const std::string_view rest = std::string_view(modern).substr(group.start.size());
    return rest.size() >= group.fewest && rest.size() <= group.most &&
           (group.isText || std::ranges::all_of(rest, isDigit));
}

/// Whether a name with a wildcard gives these atoms, each equally often.
bool givesAll(const Placing &placing, const Side &side, std::string_view name,
              const std::set<std::size_t> &atoms)
{
    std::array<std::size_t, maxWildAtoms> found = {};
    const int count =
        findAtomList(placing.pdbInfo, side.resID, name, side.chain.view(), side.segment.view(), found);
    if (count > maxPairAtoms || count <= 0)
        return false;
    std::map<std::size_t, int> often;
    for (int k = 0; k < count; ++k)
        ++often[found[static_cast<std::size_t>(k)]];
    return often.size() == atoms.size() && std::ranges::all_of(often, [&](const auto &atom) {
               return atoms.contains(atom.first) && atom.second == often.begin()->second;
           });
}

/// Finds the name with a wildcard for a group. Returns why there is none; empty if there is, or if the
/// residue has no atom of the group.
std::string placeGroup(const Placing &placing, const ResInfo &residue, const GroupName &group, Side &side)
{
    std::set<std::size_t> atoms;
    for (const AtomInfo *atom : residue.atoms())
        if (isInGroup(atom->atomName.view(), group)) {
            atoms.insert(placing.pdbInfo.placeOf(*atom));
            side.atom = atom->atomName; // of a group of one
        }
    const bool isPseudo = side.from.atomName.view().find_first_of("QM") == 0;
    if (atoms.size() == 1 && isPseudo) // which stands for several: it must be another atom
        side.atom = side.from.atomName;
    if (atoms.size() < 2)
        return {};
    for (const std::string &name :
         {group.start + "#", group.start + "*", std::string("#").append(group.start)})
        if (givesAll(placing, side, name, atoms)) {
            side.atom = Name::of(name);
            return {};
        }
    return "no name gives its atoms (" + std::to_string(atoms.size()) + " of " +
           std::string(side.from.atomName.view()) + ")";
}

/// Brings the name of an atom to that of the structure. Returns why it cannot be used; empty for one that the
/// structure does not have.
std::string placeAtom(const Placing &placing, Side &side)
{
    const PDBInfo &pdbInfo = placing.pdbInfo;
    side.atom = side.from.atomName;
    if (!side.from.code().empty()) // the key of such an atom is its code and its chain
        side.chain = Name::of(std::string(side.from.code()).append(side.chain.view()));
    if (findAtom(pdbInfo, side.resID, side.atom.view(), side.chain.view(), side.segment.view()) != nullptr)
        return {};
    const ResInfo *residue = findRes(pdbInfo, side.resID, side.chain.view(), side.segment.view());
    if (residue == nullptr)
        return {};
    if (const AtomInfo *renamed = findRenamed(pdbInfo, *residue, side.atom.view()); renamed != nullptr) {
        side.atom = renamed->atomName;
        return {};
    }
    if (side.atom.view().find_first_of("xy") != std::string_view::npos)
        return "stereo atoms not told apart (" + std::string(side.atom.view()) + ")";
    const GroupName group = groupOf(fullMethylName(residue->resName.view(), side.atom.view()));
    return group.start.empty() ? std::string() : placeGroup(placing, *residue, group, side);
}

std::string placeSide(Placing &placing, Side &side)
{
    const std::string why = placeChain(placing, side);
    return why.empty() ? placeAtom(placing, side) : why;
}

// ---- the table ----

void countMapped(Placing &placing, const Side &side)
{
    if (!(side.atom == side.from.atomName))
        ++placing.mapped[{side.from.atomName.c_str(), side.atom.c_str()}];
}

void placeRow(Placing &placing, std::size_t place)
{
    DInfo &row = placing.dTab.observed()[place];
    const ArchiveRow &from = placing.dTab.origin.rows[place];
    Side i = {from.i, shiftedRes(row.resIDI, placing.aOff), {}, {}, {}};
    Side j = {from.j, shiftedRes(row.resIDJ, placing.aOff), {}, {}, {}};
    std::string why = placeSide(placing, i);
    why = why.empty() ? placeSide(placing, j) : why;
    if (!why.empty()) {
        row.valid = 0;
        ++placing.unused[why.substr(0, why.find(" ("))];
        placing.messages.note("trelm: %s: %s.\n", placeText(placing.dTab.origin, place).c_str(), why.c_str());
        return;
    }
    countMapped(placing, i);
    countMapped(placing, j);
    RowNames names = *row.names;
    names.atomNameI = i.atom;
    names.chainNameI = i.chain;
    names.segNameI = i.segment;
    names.atomNameJ = j.atom;
    names.chainNameJ = j.chain;
    names.segNameJ = j.segment;
    setNames(placing.dTab, names, row);
}

bool namesOneChain(const TableOrigin &origin)
{
    return std::ranges::all_of(origin.rows, [&](const ArchiveRow &row) {
        return row.i.chain == origin.rows[0].i.chain && row.j.chain == origin.rows[0].i.chain;
    });
}

void tellPlacing(const Placing &placing)
{
    std::string text;
    for (const auto &[names, rows] : placing.mapped)
        appendf(text, "%s%s read as %s (%d atom%s)", text.empty() ? "" : ", ", names.first.c_str(),
                names.second.c_str(), rows, rows == 1 ? "" : "s");
    if (!text.empty())
        placing.messages.note("trelm: %s\n", text.c_str());
    for (const auto &[reason, rows] : placing.unused)
        placing.messages.warn("trelm: %d couplings of %s are not used: %s\n", rows,
                              placing.dTab.origin.file.c_str(), reason.c_str());
}

} // namespace

Status placeRows(const PDBInfo &pdbInfo, int aOff, DTable &dTab, Messages &messages)
{
    Placing placing = {pdbInfo, aOff, dTab, messages};
    placing.hasOneChain = namesOneChain(dTab.origin);
    for (std::size_t place = 0; place < dTab.observed().size(); ++place)
        if (dTab.observed()[place].valid != 0)
            placeRow(placing, place);
    tellPlacing(placing);
    if (settleRows(dTab, messages) != Status::ok)
        return Status::failed;
    // Of one chain the rows need no name, and a report shows none.
    const bool hasCodes = std::ranges::any_of(dTab.origin.rows, [](const ArchiveRow &row) {
        return !row.i.code().empty() || !row.j.code().empty();
    });
    const bool isPlain = pdbInfo.chains().size() == 1 && !hasCodes && !placing.lacksChain;
    dTab.nullChainName = dTab.nullSegName = isPlain ? 1 : 0;
    return Status::ok;
}

} // namespace trelm
