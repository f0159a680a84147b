// The tables behind the charges: ionisable groups with their pKa, and partial charges of residues.
#pragma once

#include <array>
#include <map>
#include <span>
#include <string_view>
#include <vector>

namespace trelm {

enum class GroupKind { acid, base };

/// An ionisable group: atoms that share a charge of -f (acid) or 1 - f (base), f as titratedFraction has it.
struct TitrationGroup {
    std::array<std::string_view, 4> atoms; ///< unused entries are empty
    float pKa = 0.0f;
    GroupKind kind = GroupKind::acid;
    float share = 1.0f; ///< what each atom carries of the group's charge

    [[nodiscard]] bool holds(std::string_view atom) const;
    /// Charge of one atom, e.
    [[nodiscard]] float atomCharge(float fraction) const;
};

extern const TitrationGroup startGroup; ///< chain start, at the first residue
extern const TitrationGroup endGroup;   ///< chain end, at the last residue

/// The group that a residue has of itself, or null.
const TitrationGroup *findGroup(std::string_view residue);

/// The fraction f = e / (e + 1) of a group that has lost its proton, 0 to 1, with e = exp(pH - pKa). The base
/// is e and not 10: the model is defined so, and titrates over a pH range 2.3 times as wide. Where e is
/// beyond float, f is its limit 1; where e vanishes, 0. Not a number if pH or pKa is none.
float titratedFraction(float pH, float pKa);

/// The charge of an atom, e.
struct ChargeRow {
    std::string_view atom;
    float charge = 0.0f;
};

enum class ChargeTableID { charmm19, charmm22, charmm22Acid };

/// The atoms of each residue.
using ChargeTable = std::map<std::string_view, std::vector<ChargeRow>>;

ChargeTable chargeTable(ChargeTableID id);

/// The rows of a residue; none if the table does not know it. The chain ends are the residues NTER and CTER,
/// for glycine at the start NTER_GLY; NTER_PRO is there as published, and nothing asks for it.
std::span<const ChargeRow> findRows(const ChargeTable &table, std::string_view residue);

/// The row of an atom, or null.
const ChargeRow *findRow(std::span<const ChargeRow> rows, std::string_view atom);

} // namespace trelm
