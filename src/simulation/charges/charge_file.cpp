#include "simulation/charges/charge_file.h"

#include "simulation/charges/charge_tables.h"
#include "simulation/charges/options.h"
#include "support/text/text.h"
#include "support/text/text_input.h"
#include "support/text/token.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <span>
#include <system_error>
#include <utility>
#include <vector>

namespace trelm {
namespace {

constexpr int chargeLimit = maxCharges - 1; ///< a count that reaches it is refused
constexpr std::string_view pkaWord = "pKa";
constexpr std::string_view chargeWord = "charge";

Status refuseCount(Messages &messages)
{
    return messages.fail("Too many pKa values were supplied ...\n");
}

/// One line of the file.
struct PkaLine {
    int resno = 0;
    std::string_view dataName, atomName;
    float value = 0.0f;
};

/// The selected atoms, by residue number and in the order of the structure within a number.
struct AtomsByResidue {
    const PDBInfo &pdbInfo;
    struct Entry {
        int resID;
        std::size_t atom;
    };
    std::vector<Entry> entries;

    explicit AtomsByResidue(const SelectedAtoms &selected) : pdbInfo(selected.pdbInfo)
    {
        const auto atoms = pdbInfo.atoms();
        for (std::size_t i = 0; i < atoms.size(); ++i)
            if (selected.has(i))
                entries.push_back({atoms[i].resID, i});
        std::ranges::stable_sort(entries, {}, &Entry::resID);
    }
    [[nodiscard]] std::span<const Entry> ofResidue(int resID) const
    {
        return {std::ranges::lower_bound(entries, resID, {}, &Entry::resID),
                std::ranges::upper_bound(entries, resID, {}, &Entry::resID)};
    }
};

/// Takes a word as a number only if all of it is one: "4,5" is no pKa of 4.
template <class T>
bool wholeNumber(std::string_view word, T &value)
{
    if (word.starts_with('+') && !word.starts_with("+-"))
        word.remove_prefix(1);
    const auto [end, status] = std::from_chars(word.data(), word.data() + word.size(), value);
    return status == std::errc{} && end == word.data() + word.size();
}

bool isDataName(std::string_view word)
{
    return word == pkaWord || word == chargeWord;
}

bool parseLine(std::string_view text, std::vector<std::string_view> &words, PkaLine &line, Messages &messages)
{
    splitTokens(text, words);
    if (words.size() != 4 || !wholeNumber(words[0], line.resno) || !wholeNumber(words[3], line.value) ||
        !std::isfinite(line.value))
        return false;
    line.dataName = words[1];
    line.atomName = words[2];
    // The order of the lines that this program writes. No atom has one of those two names.
    if (isDataName(line.atomName) && !isDataName(line.dataName))
        std::swap(line.dataName, line.atomName);
    if (!isDataName(line.dataName))
        messages.err(
            "Warning: %s in a line of the pka file is neither pKa nor charge: its value is a charge.\n",
            std::string(line.dataName).c_str());
    return true;
}

/// An atom that a line names itself takes its charge whole, and by the rule of a base.
constexpr TitrationGroup namedAtom{{}, 0.0f, GroupKind::base, 1.0f};

/// The rule by which an atom takes a charge from a line, or null.
const TitrationGroup *ruleFor(const PkaLine &line, const AtomInfo &atom, const PDBInfo &pdbInfo)
{
    const std::string_view name = atom.atomName.view();
    if (line.atomName == defaultWord) {
        const TitrationGroup *group = findGroup(atom.resName.view());
        return group != nullptr && group->holds(name) ? group : nullptr;
    }
    if (line.atomName == terminusWord) {
        if (atom.resID == pdbInfo.minResID && startGroup.holds(name))
            return &startGroup;
        return atom.resID == pdbInfo.maxResID && endGroup.holds(name) ? &endGroup : nullptr;
    }
    return name == line.atomName ? &namedAtom : nullptr;
}

Status placeLine(const PkaLine &line, const AtomsByResidue &candidates, float pH, ChargeSet &set,
                 ChargeLines &lines, Messages &messages)
{
    const PDBInfo &pdbInfo = candidates.pdbInfo;
    const float fraction = titratedFraction(pH, line.value);
    const int before = set.chCount;
    lines.known.clear(); // two lines that charge an atom are two charges
    for (const auto &entry : candidates.ofResidue(line.resno)) {
        const AtomInfo &atom = pdbInfo.atoms()[entry.atom];
        const TitrationGroup *rule = ruleFor(line, atom, pdbInfo);
        if (rule == nullptr)
            continue;
        const float charge = line.dataName == pkaWord ? rule->atomCharge(fraction) : rule->share * line.value;
        addLine(lines, atom.resID, atom.atomName.view(), charge);
        if (addCharge(set, entry.atom, charge, messages) != Status::ok)
            return Status::failed;
    }
    if (set.chCount == before)
        messages.err("WARNING:   There is no residue %d or the proper atom in the given PDB file!\n",
                     line.resno);
    return Status::ok;
}

} // namespace

Status addCharge(ChargeSet &set, std::size_t atom, float charge, Messages &messages)
{
    const auto place = static_cast<std::size_t>(set.chCount++);
    set.chargeAtomID[place] = static_cast<int>(atom);
    set.charges[place] = charge;
    return set.chCount >= chargeLimit ? refuseCount(messages) : Status::ok;
}

bool isFullForNothing(const ChargeSet &set, const ChargeOptions &elInfo, const ChargeLines &lines,
                      Messages &messages)
{
    constexpr int groupsOfAnAtom = 3; // an atom is never left with a part of its charge
    if (set.chCount + groupsOfAnAtom < chargeLimit || elInfo.elFlag != 0 || lines.isWanted)
        return false;
    messages.warn(
        "trelm: more than %d charges: the others are left out, since this run uses none (-nopkaDef)\n",
        set.chCount);
    return true;
}

void addLine(ChargeLines &lines, int resID, std::string_view name, float charge)
{
    // No minus sign at what is written as zero.
    const auto exact = static_cast<double>(charge);
    const double shown = std::abs(exact) < 0.0005 ? 0.0 : exact;
    std::string line;
    appendf(line, "%d\t%s\t%s\t%.3f\n", resID, std::string(name).c_str(), std::string(chargeWord).c_str(),
            shown);
    if (lines.known.insert(line).second)
        lines.text += line;
}

Status readChargeFile(const std::string &name, const SelectedAtoms &selected, float pH, ChargeSet &set,
                      ChargeLines &lines, Messages &messages)
{
    TextInput input;
    const TextStatus status = readText(input, name, messages);
    if (status == TextStatus::noFile)
        return messages.fail("chargeSetup File open error: %s.\n", name.c_str());
    if (status == TextStatus::bad)
        return Status::failed;
    trimEnd(input);
    if (input.text.empty())
        messages.err("Warning: the pka file %s holds no lines.\n", name.c_str());
    const AtomsByResidue candidates(selected);
    std::vector<std::string_view> words;
    int lineCount = 0;
    for (std::string_view text; fgetsAlloc(input, text);) {
        PkaLine line;
        if (!parseLine(text, words, line, messages))
            return messages.fail("Error: wrong format of pka file.\nLine:%s\n", std::string(text).c_str());
        lines.range.first = std::min(lines.range.first, line.resno);
        lines.range.last = std::max(lines.range.last, line.resno);
        if (placeLine(line, candidates, pH, set, lines, messages) != Status::ok)
            return Status::failed;
        if (++lineCount >= chargeLimit)
            return refuseCount(messages);
    }
    return Status::ok;
}

} // namespace trelm
