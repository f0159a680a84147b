#include "couplings/lost_rows.h"

#include "structure/atom_names.h"
#include "support/text/text.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace trelm {
namespace {

constexpr std::size_t mostGroups = 6; ///< that are told one by one

std::string chainText(std::string_view chain, std::string_view segment)
{
    std::string text;
    for (const auto &[word, name] : {std::pair{"chain ", chain}, std::pair{"segment ", segment}})
        if (!name.empty())
            text.append(text.empty() ? "" : ", ").append(word).append(name);
    return text.empty() ? "no chain" : text;
}

/// The chains of the structure, or whether a row's is among them.
bool hasChain(const PDBInfo &pdbInfo, const SideQuery &side)
{
    return std::ranges::any_of(pdbInfo.chains(), [&](const ChainInfo &chain) {
        return chain.chainID == side.chainName && chain.segID == side.segName;
    });
}

std::string chainsOf(const PDBInfo &pdbInfo)
{
    std::string text;
    for (const ChainInfo &chain : pdbInfo.chains())
        text.append(text.empty() ? "" : "; ").append(chainText(chain.chainID.view(), chain.segID.view()));
    return text;
}

std::string atomsOf(const ResInfo &residue)
{
    std::string text;
    for (const AtomInfo *atom : residue.atoms())
        text.append(text.empty() ? "" : " ").append(atom->atomName.view());
    return text;
}

/// Why a side has no atom.
LostGroup missingSide(const PDBInfo &pdbInfo, const SideQuery &side)
{
    if (!hasChain(pdbInfo, side))
        return {LossReason::noChain, chainText(side.chainName.view(), side.segName.view()),
                chainsOf(pdbInfo)};
    const ResInfo *residue = findRes(pdbInfo, side.resID, side.chainName.view(), side.segName.view());
    if (residue == nullptr)
        return {LossReason::noResidue, {}, {}};
    if (const AtomInfo *renamed = findRenamed(pdbInfo, *residue, side.atomName.view()); renamed != nullptr)
        return {LossReason::noAtom, side.atomName.c_str(), renamed->atomName.c_str(), true};
    return {LossReason::noAtom, side.atomName.c_str(), atomsOf(*residue)};
}

bool hasTooManyAtoms(const PDBInfo &pdbInfo, const RowQueries &sides)
{
    return std::ranges::any_of(std::array{sides.i, sides.j}, [&](const SideQuery &side) {
        std::array<std::size_t, maxWildAtoms> found = {};
        return findAtomList(pdbInfo, side.resID, side.atomName.view(), side.chainName.view(),
                            side.segName.view(), found) > maxPairAtoms;
    });
}

/// Why a row has no part in a fit; nothing for one that the options leave out.
std::optional<LostGroup> lossOf(const PDBInfo &pdbInfo, const RowQueries &sides, const DInfo &obs,
                                const DCalc &calc)
{
    if (obs.d == noCoupling)
        return LostGroup{LossReason::noValue, {}, {}};
    if (obs.d > maxCoupling)
        return LostGroup{LossReason::tooLarge, {}, {}};
    if (obs.valid == 0)
        return hasTooManyAtoms(pdbInfo, sides) ? std::optional<LostGroup>({LossReason::tooManyAtoms, {}, {}})
                                               : std::nullopt;
    if (calc.pairCount() == 0)
        return missingSide(pdbInfo, calc.atomI.count == 0 ? sides.i : sides.j);
    return obs.w == 0.0f ? std::optional<LostGroup>({LossReason::noWeight, {}, {}}) : std::nullopt;
}

void addLoss(LostGroup loss, int resID, std::vector<LostGroup> &groups)
{
    const auto same = std::ranges::find_if(groups, [&](const LostGroup &group) {
        return group.reason == loss.reason && group.missing == loss.missing &&
               group.isRenamed == loss.isRenamed && (!group.isRenamed || group.instead == loss.instead);
    });
    LostGroup &group = same != groups.end() ? *same : groups.emplace_back(std::move(loss));
    group.first = group.count == 0 ? resID : group.first;
    group.last = resID;
    ++group.count;
}

std::string residuesText(const LostGroup &group)
{
    std::string text = std::to_string(group.first);
    if (group.last != group.first)
        text.append(" to ").append(std::to_string(group.last));
    return text;
}

/// Why one row is lost.
std::string reasonText(const LostGroup &loss)
{
    switch (loss.reason) {
    case LossReason::noAtom:
        return "no atom " + loss.missing + " in that residue, it has " + loss.instead;
    case LossReason::noResidue:
        return "residue not in the structure";
    case LossReason::noChain:
        return loss.missing + " not in the structure, it has " + loss.instead;
    case LossReason::tooManyAtoms:
        return "more than " + std::to_string(maxPairAtoms) + " atoms";
    case LossReason::noWeight:
        return "weight 0";
    case LossReason::noValue:
        return "no value";
    case LossReason::tooLarge:
        return "beyond 900 Hz";
    }
    return "";
}

void appendGroup(std::string &text, const LostGroup &group)
{
    const char *plural = group.count == 1 ? "s" : ""; // of the verb
    switch (group.reason) {
    case LossReason::noAtom:
        appendf(text, "%d name%s atom %s, ", group.count, plural, group.missing.c_str());
        if (group.isRenamed)
            appendf(text, "the structure has %s (-names auto maps them)", group.instead.c_str());
        else
            appendf(text, "residue %d has %s", group.first, group.instead.c_str());
        break;
    case LossReason::noResidue:
        appendf(text, "%d name%s residues that the structure does not have (%s)", group.count, plural,
                residuesText(group).c_str());
        break;
    case LossReason::noChain:
        appendf(text, "%d name%s %s, the structure has %s", group.count, plural, group.missing.c_str(),
                group.instead.c_str());
        break;
    case LossReason::tooManyAtoms:
        appendf(text, "%d resolve%s to more than %d atoms", group.count, plural, maxPairAtoms);
        break;
    case LossReason::noWeight:
        appendf(text, "%d ha%s weight 0", group.count, group.count == 1 ? "s" : "ve");
        break;
    case LossReason::noValue:
        appendf(text, "%d ha%s no value", group.count, group.count == 1 ? "s" : "ve");
        break;
    case LossReason::tooLarge:
        appendf(text, "%d ha%s a value above %g Hz", group.count, group.count == 1 ? "s" : "ve",
                static_cast<double>(maxCoupling));
        break;
    }
}

} // namespace

LostRows findLostRows(const PDBInfo &pdbInfo, const DTable &dTab, int aOff)
{
    LostRows lost;
    for (std::size_t i = 0; i < dTab.observed().size(); ++i) {
        const DInfo &obs = dTab.observed()[i];
        const DCalc &calc = dTab.calculated()[i];
        if (calc.valid != 0 && calc.w != 0.0f) {
            ++lost.used;
            continue;
        }
        const RowQueries sides = queriesOf(pdbInfo, dTab, obs, aOff);
        std::optional<LostGroup> loss = lossOf(pdbInfo, sides, obs, calc);
        if (!loss)
            continue;
        const bool namesHydrogen =
            isHydrogenName(obs.names->atomNameI.view()) || isHydrogenName(obs.names->atomNameJ.view());
        lost.lacksHydrogens = lost.lacksHydrogens || (loss->reason == LossReason::noAtom && namesHydrogen);
        addLoss(std::move(*loss), std::max(obs.resIDI, obs.resIDJ), lost.groups);
    }
    lost.given = lost.used;
    for (const LostGroup &group : lost.groups)
        lost.given += group.count;
    lost.lacksHydrogens = lost.lacksHydrogens && !hasHydrogens(pdbInfo);
    std::ranges::stable_sort(lost.groups, {}, &LostGroup::reason);
    return lost;
}

void tellLostRows(const PDBInfo &pdbInfo, const DTable &dTab, int aOff, Messages &messages)
{
    for (std::size_t i = 0; i < dTab.origin.rows.size(); ++i) {
        const DInfo &obs = dTab.observed()[i];
        const DCalc &calc = dTab.calculated()[i];
        if (takesPart(calc))
            continue;
        if (const auto loss = lossOf(pdbInfo, queriesOf(pdbInfo, dTab, obs, aOff), obs, calc))
            messages.note("trelm: %s: %s.\n", placeText(dTab.origin, i).c_str(), reasonText(*loss).c_str());
    }
}

std::string lostRowsText(const LostRows &lost)
{
    std::string text;
    appendf(text, "%d of %d couplings used: ", lost.used, lost.given);
    for (std::size_t i = 0; i < std::min(lost.groups.size(), mostGroups); ++i) {
        text += i == 0 ? "" : "; ";
        appendGroup(text, lost.groups[i]);
    }
    if (lost.groups.size() > mostGroups)
        appendf(text, "; and %zu more kinds", lost.groups.size() - mostGroups);
    return text;
}

std::string chainsOfRows(const PDBInfo &pdbInfo, const DTable &dTab)
{
    std::vector<std::string> names;
    for (const DCalc &row : dTab.calculated()) {
        const ResInfo *residue = row.valid != 0 ? pdbInfo.atomList[row.atomI[0]].resInfo : nullptr;
        if (residue == nullptr)
            continue;
        std::string name = chainText(residue->chainID.view(), residue->segID.view());
        if (std::ranges::find(names, name) == names.end())
            names.push_back(std::move(name));
    }
    std::string text;
    for (const std::string &name : names)
        text.append(text.empty() ? "" : "; ").append(name);
    return text;
}

} // namespace trelm
