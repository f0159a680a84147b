#include "simulation/charges/charge_tables.h"

#include "support/text/token.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

namespace trelm {

constexpr TitrationGroup startGroup{{"N"}, 7.9f, GroupKind::base, 1.0f};
constexpr TitrationGroup endGroup{{"OT1", "OT2", "O", "OXT"}, 3.0f, GroupKind::acid, 0.5f};

namespace {

constexpr TitrationGroup arginine{{"NH1", "NH2"}, 12.0f, GroupKind::base, 0.5f};
constexpr TitrationGroup lysine{{"NZ"}, 11.5f, GroupKind::base, 1.0f};
constexpr TitrationGroup histidine{{"ND1", "NE2"}, 5.8f, GroupKind::base, 0.5f};
constexpr TitrationGroup tyrosine{{"OH"}, 10.2f, GroupKind::acid, 1.0f};
constexpr TitrationGroup glutamate{{"OE1", "OE2"}, 4.5f, GroupKind::acid, 0.5f};
constexpr TitrationGroup aspartate{{"OD1", "OD2"}, 4.5f, GroupKind::acid, 0.5f};
// Unlike the carboxylates, each oxygen of a phosphate carries the whole -f: the model is defined so.
constexpr TitrationGroup phosphate{{"O1P", "O2P"}, 6.8f, GroupKind::acid, 1.0f};

struct GroupRow {
    std::string_view residue;
    const TitrationGroup *group;
};

constexpr GroupRow groupRows[] = {
    {"ARG", &arginine},  {"LYS", &lysine},    {"HIS", &histidine}, {"TYR", &tyrosine},  {"GLU", &glutamate},
    {"ASP", &aspartate}, {"ADE", &phosphate}, {"GUA", &phosphate}, {"CYT", &phosphate}, {"THY", &phosphate},
    {"A", &phosphate},   {"G", &phosphate},   {"C", &phosphate},   {"U", &phosphate},   {"2MG", &phosphate},
    {"H2U", &phosphate}, {"M2G", &phosphate}, {"OMC", &phosphate}, {"OMG", &phosphate}, {"YG", &phosphate},
    {"PSU", &phosphate}, {"5MC", &phosphate}, {"5MU", &phosphate}, {"1MA", &phosphate}, {"7MG", &phosphate},
};

// Partial charges, in units of e. Where two names of an atom are in use (H and HN, OT1 and O), both have a
// charge: a structure holds one of them. NTER_PRO is published, but a chain's first N is -0.30 here whatever
// its residue, so that no look-up asks for it.

/// A residue, or under a name in small letters what several share: names of atoms with their charges, and
/// with a star the name of another entry whose atoms belong to it as well.
struct ResidueText {
    std::string_view name, atoms;
};

// clang-format off

// CHARMM19: united atoms, polar hydrogens only. Source: protein topology version 19 of the CHARMM
// distribution (toph19.inp) with its heme, acetyl, sulphate and water. It has no nucleotides: those are of
// CHARMM27 (below) with P 1.50, O1P and O2P -0.80, and O5' and O3' -0.55 so that a nucleotide is still -1.
constexpr ResidueText charmm19Texts[] = {
    {"peptide", "N -0.35 HN 0.25 H 0.25 CA 0.10 C 0.55 O -0.55"},
    {"phosphate", "P 1.50 O1P -0.80 O2P -0.80 O5' -0.55 O3' -0.55"},
    {"ALA", "*peptide CB 0.00"},
    {"ARG", "*peptide CB 0.00 CG 0.00 CD 0.10 NE -0.40 HE 0.30 CZ 0.50 NH1 -0.45 HH11 0.35 HH12 0.35"
            " NH2 -0.45 HH21 0.35 HH22 0.35"},
    {"ASN", "*peptide CB 0.00 CG 0.55 OD1 -0.55 ND2 -0.60 HD21 0.30 HD22 0.30"},
    {"ASP", "*peptide CB -0.16 CG 0.36 OD1 -0.60 OD2 -0.60"},
    {"CYS", "*peptide CB 0.19 SG -0.19"},
    {"GLN", "*peptide CB 0.00 CG 0.00 CD 0.55 OE1 -0.55 NE2 -0.60 HE21 0.30 HE22 0.30"},
    {"GLU", "*peptide CB 0.00 CG -0.16 CD 0.36 OE1 -0.60 OE2 -0.60"},
    {"GLY", "*peptide"},
    {"HSD", "*peptide CB 0.00 CG 0.10 HD1 0.30 NE2 -0.40 ND1 -0.40 CD2 0.10 CE1 0.30 HE2 0.30"},
    {"HSE", "*peptide CB 0.00 CG 0.10 NE2 -0.40 ND1 -0.40 CD2 0.10 CE1 0.30 HE2 0.30"},
    {"HSP", "*peptide CB 0.10 CG 0.15 HD1 0.35 NE2 -0.30 ND1 -0.30 CD2 0.20 CE1 0.45 HE2 0.35"},
    {"HIS", "*peptide CB 0.00 CG 0.10 HD1 0.30 NE2 -0.40 ND1 -0.40 CD2 0.10 CE1 0.30"},
    {"HSC", "*HSP"},
    {"ILE", "*peptide CB 0.00 CD 0.00 CG2 0.00 CG1 0.00 CD1 0.00"},
    {"LEU", "*peptide CB 0.00 CG 0.00 CD2 0.00 CD1 0.00"},
    {"LYS", "*peptide CB 0.00 CG 0.00 CD 0.00 CE 0.25 HZ1 0.35 HZ2 0.35 HZ3 0.35 NZ -0.30"},
    {"MET", "*peptide CB 0.00 CG 0.06 CE 0.06 SD -0.12"},
    {"PHE", "*peptide CB 0.00 CG 0.00 CZ 0.00 CD2 0.00 CE1 0.00 CD1 0.00 CE2 0.00"},
    {"PRO", "N -0.20 CA 0.10 CB 0.00 C 0.55 O -0.55 CG 0.00 CD 0.10"},
    {"SER", "*peptide CB 0.25 HG1 0.40 HG 0.40 OG -0.65"},
    {"THR", "*peptide CB 0.25 HG1 0.40 CG2 0.00 OG1 -0.65"},
    {"TRP", "*peptide CB 0.00 CG -0.03 CD2 0.10 HE1 0.30 CD1 0.06 CE2 -0.04 NE1 -0.36 CE3 -0.03 CZ2 0.00"
            " CZ3 0.00 CH2 0.00"},
    {"TYR", "*peptide CB 0.00 CG 0.00 CZ 0.25 CD2 0.00 CE1 0.00 CD1 0.00 CE2 0.00 OH -0.65 HH 0.40"},
    {"VAL", "*peptide CB 0.00 CG2 0.00 CG1 0.00"},
    {"HEME", "FE 0.24 NA -0.18 NB -0.18 NC -0.18 ND -0.18 C1A 0.03 CHA 0.04 C4D 0.02 C1B 0.03 CHB 0.04"
             " C4A 0.02 C1C 0.03 CHC 0.04 C4B 0.02 C1D 0.03 CHD 0.04 C4C 0.02 C2A -0.02 CAA 0.04 C3A 0.02"
             " CMA -0.04 CBA -0.10 CGA 0.30 O1A -0.50 O2A -0.50 C2B 0.02 CMB -0.04 C3B -0.05 CAB 0.03"
             " CBB -0.10 C2C 0.02 CMC -0.04 C3C -0.05 CAC 0.03 CBC -0.10 C2D 0.02 CMD -0.04 C3D -0.02"
             " CAD 0.04 CBD -0.10 CGD 0.30 O1D -0.50 O2D -0.50"},
    {"ACE", "CA 0.00 C 0.55 O -0.55"},
    {"NTER", "N -0.30 CA 0.25 HT1 0.35 HT2 0.35 HT3 0.35"},
    {"NTER_GLY", "*NTER"},
    {"NTER_PRO", "N -0.20 CA 0.25 CD 0.25 HT1 0.35 HT2 0.35"},
    {"CTER", "C 0.14 O -0.57 OT1 -0.57 OT2 -0.57 OXT -0.57"},
};

// CHARMM22, pH 6 to 7. Sources: MacKerell et al., J. Phys. Chem. B 102 (1998) 3586, for the protein and heme;
// Foloppe, MacKerell, J. Comput. Chem. 21 (2000) 86 (CHARMM27), for nucleotides, phosphates, ions and water.
// There are no keys for heme hydrogens, so each one's charge is added to its carbon; sulphate is CHARMM19's.
constexpr ResidueText charmm22Texts[] = {
    {"peptide", "N -0.47 HN 0.31 H 0.31 CA 0.07 HA 0.09 C 0.51 O -0.51"},
    {"phosphate", "P 1.50 O1P -0.78 O2P -0.78 O5' -0.57 O3' -0.57"},
    {"ALA", "*peptide CB -0.27 HB1 0.09 HB2 0.09 HB3 0.09"},
    {"ARG", "*peptide CB -0.18 HB1 0.09 HB2 0.09 CG -0.18 HG1 0.09 HG2 0.09 CD 0.20 HD1 0.09 HD2 0.09"
            " NE -0.70 HE 0.44 CZ 0.64 NH1 -0.80 HH11 0.46 HH12 0.46 NH2 -0.80 HH21 0.46 HH22 0.46"},
    {"ASN", "*peptide CB -0.18 HB1 0.09 HB2 0.09 CG 0.55 OD1 -0.55 ND2 -0.62 HD21 0.32 HD22 0.30"},
    {"ASP", "*peptide CB -0.28 HB1 0.09 HB2 0.09 CG 0.62 OD1 -0.76 OD2 -0.76"},
    {"CYS", "*peptide CB -0.11 HB1 0.09 HB2 0.09 HG1 0.16 SG -0.23 HG 0.16"},
    {"GLN", "*peptide CB -0.18 HB1 0.09 HB2 0.09 CG -0.18 HG1 0.09 HG2 0.09 CD 0.55 OE1 -0.55 NE2 -0.62"
            " HE21 0.32 HE22 0.30"},
    {"GLU", "*peptide CB -0.18 HB1 0.09 HB2 0.09 CG -0.28 HG1 0.09 HG2 0.09 CD 0.62 OE1 -0.76 OE2 -0.76"},
    {"GLY", "N -0.47 HN 0.31 H 0.31 CA -0.02 C 0.51 O -0.51 HA1 0.09 HA2 0.09"},
    {"HSD", "*peptide CB -0.09 HB1 0.09 HB2 0.09 CG -0.05 HD1 0.32 HD2 0.10 NE2 -0.70 ND1 -0.36 CD2 0.22"
            " CE1 0.25 HE1 0.13"},
    {"HSE", "*peptide CB -0.08 HB1 0.09 HB2 0.09 CG 0.22 HD2 0.09 NE2 -0.36 ND1 -0.70 CD2 -0.05 CE1 0.25"
            " HE1 0.13 HE2 0.32"},
    {"HSP", "*peptide CB -0.05 HB1 0.09 HB2 0.09 CG 0.19 HD1 0.44 HD2 0.13 NE2 -0.51 ND1 -0.51 CD2 0.19"
            " CE1 0.32 HE1 0.18 HE2 0.44"},
    {"HIS", "*HSD"},
    {"HSC", "*HSP"},
    {"ILE", "*peptide CB -0.09 CD -0.27 HD1 0.09 HD2 0.09 HB 0.09 CG2 -0.27 HG21 0.09 HG22 0.09"
            " HG23 0.09 CG1 -0.18 HG11 0.09 HG12 0.09 HD3 0.09 CD1 -0.27 HD11 0.09 HD12 0.09 HD13 0.09"},
    {"LEU", "*peptide CB -0.18 HB1 0.09 HB2 0.09 CG -0.09 HD21 0.09 HD22 0.09 CD2 -0.27 HG 0.09"
            " CD1 -0.27 HD11 0.09 HD12 0.09 HD13 0.09 HD23 0.09"},
    {"LYS", "*peptide CB -0.18 HB1 0.09 HB2 0.09 CG -0.18 HG1 0.09 HG2 0.09 CD -0.18 HD1 0.09 HD2 0.09"
            " HE1 0.05 HE2 0.05 CE 0.21 HZ1 0.33 HZ2 0.33 HZ3 0.33 NZ -0.30"},
    {"MET", "*peptide CB -0.18 HB1 0.09 HB2 0.09 CG -0.14 HG1 0.09 HG2 0.09 HE1 0.09 HE2 0.09 CE -0.22"
            " SD -0.09 HE3 0.09"},
    {"PHE", "*peptide CB -0.18 HB1 0.09 HB2 0.09 CG 0.00 HD1 0.115 HD2 0.115 CZ -0.115 CD2 -0.115"
            " CE1 -0.115 HE1 0.115 HE2 0.115 CD1 -0.115 CE2 -0.115 HZ 0.115"},
    {"PRO", "N -0.29 CA 0.02 HA 0.09 CB -0.18 HB1 0.09 HB2 0.09 C 0.51 O -0.51 CG -0.18 HG1 0.09"
            " HG2 0.09 CD 0.00 HD1 0.09 HD2 0.09"},
    {"SER", "*peptide CB 0.05 HB1 0.09 HB2 0.09 HG1 0.43 HG 0.43 OG -0.66"},
    {"THR", "*peptide CB 0.14 HG1 0.43 HB 0.09 CG2 -0.27 HG21 0.09 HG22 0.09 HG23 0.09 OG1 -0.66"},
    {"TRP", "*peptide CB -0.18 HB1 0.09 HB2 0.09 CG -0.03 HD1 0.115 CD2 -0.02 HE1 0.38 CD1 0.035"
            " HZ2 0.115 HZ3 0.115 HE3 0.115 CE2 0.13 NE1 -0.61 CE3 -0.115 CZ2 -0.115 CZ3 -0.115 CH2 -0.115"
            " HH2 0.115"},
    {"TYR", "*peptide CB -0.18 HB1 0.09 HB2 0.09 CG 0.00 HD1 0.115 HD2 0.115 CZ 0.11 CD2 -0.115"
            " CE1 -0.115 HE1 0.115 HE2 0.115 CD1 -0.115 CE2 -0.115 OH -0.54 HH 0.43"},
    {"VAL", "*peptide CB -0.09 HB 0.09 CG2 -0.27 HG21 0.09 HG22 0.09 HG23 0.09 CG1 -0.27 HG11 0.09"
            " HG12 0.09 HG13 0.09"},
    {"HEME", "FE 0.24 NA -0.18 NB -0.18 NC -0.18 ND -0.18 C1A 0.12 CHA 0.00 C4D 0.12 C1B 0.12 CHB 0.00"
             " C4A 0.12 C1C 0.12 CHC 0.00 C4B 0.12 C1D 0.12 CHD 0.00 C4C 0.12 C2A -0.06 CAA 0.00 C3A -0.06"
             " CMA 0.00 CBA -0.10 CGA 0.62 O1A -0.76 O2A -0.76 C2B -0.06 CMB 0.00 C3B -0.06 CAB 0.00"
             " CBB 0.00 C2C -0.06 CMC 0.00 C3C -0.06 CAC 0.00 CBC 0.00 C2D -0.06 CMD 0.00 C3D -0.06"
             " CAD 0.00 CBD -0.10 CGD 0.62 O1D -0.76 O2D -0.76"},
    {"ACE", "C 0.51 O -0.51"},
    {"NTER", "N -0.30 CA 0.21 HA 0.10 HT1 0.33 HT2 0.33 HT3 0.33"},
    {"NTER_GLY", "N -0.30 CA 0.13 HA1 0.09 HA2 0.09 HT1 0.33 HT2 0.33 HT3 0.33"},
    {"NTER_PRO", "N -0.07 CA 0.16 HA 0.09 CD 0.16 HD1 0.09 HD2 0.09 HN1 0.24 HN2 0.24"},
    {"CTER", "C 0.34 O -0.67 OT1 -0.67 OT2 -0.67 OXT -0.67"},
};

// CHARMM22, pH at most 4: what differs from the table above, and is looked up before it. Side chains: the
// patches ASPP and GLUP and the residue HSP of the same topology. The chain end is CTER with half a proton's
// charge on each oxygen.
constexpr ResidueText charmm22AcidTexts[] = {
    {"ASP", "*peptide CB -0.21 HB1 0.09 HB2 0.09 CG 0.75 HD2 0.44 OD1 -0.55 OD2 -0.61"},
    {"GLU", "*peptide CB -0.18 HB1 0.09 HB2 0.09 CG -0.21 HG1 0.09 HG2 0.09 CD 0.75 OE1 -0.55 OE2 -0.61"
            " HE2 0.44"},
    {"HSD", "*peptide CB -0.05 HB1 0.09 HB2 0.09 CG 0.19 HD1 0.44 HD2 0.13 NE2 -0.51 ND1 -0.51 CD2 0.19"
            " CE1 0.32 HE1 0.18 HE2 0.44"},
    {"HSE", "*HSD"},
    {"HIS", "*HSD"},
    {"CTER", "C 0.34 O -0.17 OT1 -0.17 OT2 -0.17 OXT -0.17"},
};

// What both tables have.
constexpr ResidueText commonTexts[] = {
    {"sugar", "C5' -0.08 H5' 0.09 H5'' 0.09 C4' 0.16 H4' 0.09 O4' -0.50 C1' 0.16 H1' 0.09"},
    {"ribose", "C2' 0.14 H2'' 0.09 O2' -0.66 H2' 0.43 C3' 0.01 H3' 0.09"},
    {"SO4", "O1 -0.50 O2 -0.50 O3 -0.50 O4 -0.50"},
    {"ADE", "*phosphate *sugar *ribose N9 -0.05 C4 0.43 N3 -0.75 C2 0.50 N1 -0.74 C6 0.46 C5 0.28"
            " N7 -0.71 C8 0.34 H8 0.12 H2 0.13 N6 -0.77 H61 0.38 H62 0.38"},
    {"GUA", "*phosphate *sugar *ribose N9 -0.02 C4 0.26 N3 -0.74 C2 0.75 N1 -0.34 H1 0.26 N2 -0.68"
            " H21 0.32 HN' 0.32 H22 0.35 HN'' 0.35 C6 0.54 O6 -0.51 C5 0.00 N7 -0.60 C8 0.25 H8 0.16"},
    {"CYT", "*phosphate *sugar *ribose O2 -0.49 C4 0.65 N3 -0.66 C2 0.52 N1 -0.13 C6 0.05 C5 -0.13"
            " H6 0.17 N4 -0.75 H41 0.37 H42 0.33 H5 0.07"},
    {"THY", "*phosphate *sugar O2 -0.41 O4 -0.45 C4 0.50 N3 -0.46 C2 0.51 N1 -0.34 C6 0.17 C5 -0.15"
            " C2' -0.18 H2'' 0.09 H2' 0.09 C3' 0.01 H3' 0.09 H6 0.17 H3 0.36 C5M -0.11 CM -0.11 H51 0.07"
            " H52 0.07 H53 0.07"},
    {"URA", "*phosphate *sugar *ribose O2 -0.45 O4 -0.48 C4 0.53 N3 -0.46 C2 0.55 N1 -0.34 C6 0.20"
            " C5 -0.15 H6 0.14 H5 0.10 H3 0.36"},
    {"DMPA", "O1 -0.57 O2 -0.57 O3 -0.78 O4 -0.78 C2 -0.17 H21 0.09 H22 0.09 P1 1.50 C1 -0.17 H11 0.09"
             " H12 0.09 H13 0.09 H23 0.09"},
    {"MP_0", "O1 -0.56 O2 -0.63 O3 -0.63 O4 -0.64 H2 0.43 H3 0.43 P1 1.50 C1 -0.17 H11 0.09 H12 0.09"
             " H13 0.09"},
    {"MP_1", "O1 -0.62 O2 -0.68 O3 -0.82 O4 -0.82 H2 0.34 P1 1.50 C1 -0.17 H11 0.09 H12 0.09 H13 0.09"},
    {"MP_2", "O1 -0.40 O2 -0.90 O3 -0.90 O4 -0.90 P1 1.10 C1 -0.27 H11 0.09 H12 0.09 H13 0.09"},
    {"TIP3", "H1 0.417 H2 0.417 OH2 -0.834"},
    {"SOD", "SOD 1.00"},
    {"MG", "MG 2.00"},
    {"RIBT", "C2' 0.14 H2'' 0.09 O2' -0.66 H2' 0.43 C3' 0.14 H3' 0.09 O3' -0.66 H3T 0.43"},
    {"DEOT", "C2' -0.18 H2'' 0.09 H2' 0.09 C3' 0.14 H3' 0.09 O3' -0.66 H3T 0.43"},
};

// clang-format on

using TextsByName = std::map<std::string_view, std::string_view>;

std::vector<ChargeRow> rowsOf(const TextsByName &texts, std::string_view atoms)
{
    std::vector<ChargeRow> rows;
    std::vector<std::string_view> words;
    splitTokens(atoms, words);
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (words[i].front() == '*') {
            const std::vector<ChargeRow> shared = rowsOf(texts, texts.at(words[i].substr(1)));
            rows.insert(rows.end(), shared.begin(), shared.end());
            continue;
        }
        ChargeRow &row = rows.emplace_back(ChargeRow{words[i]});
        wordToFloat(words[++i], row.charge);
    }
    return rows;
}

bool isShared(std::string_view name)
{
    return name.front() >= 'a' && name.front() <= 'z';
}

} // namespace

bool TitrationGroup::holds(std::string_view atom) const
{
    return !atom.empty() && std::ranges::find(atoms, atom) != atoms.end();
}

float TitrationGroup::atomCharge(float fraction) const
{
    return share * (kind == GroupKind::acid ? -fraction : 1.0f - fraction);
}

const TitrationGroup *findGroup(std::string_view residue)
{
    const auto *row = std::ranges::find(groupRows, residue, &GroupRow::residue);
    return row == std::end(groupRows) ? nullptr : row->group;
}

float titratedFraction(float pH, float pKa)
{
    const double power = std::exp(static_cast<double>(pH - pKa));
    if (power > static_cast<double>(std::numeric_limits<float>::max()))
        return 1.0f;
    const auto e = static_cast<float>(power);
    return static_cast<float>(e / (e + 1.0));
}

ChargeTable chargeTable(ChargeTableID id)
{
    TextsByName texts; // the first text of a name is the one
    const auto add = [&texts](std::span<const ResidueText> list) {
        for (const ResidueText &entry : list)
            texts.emplace(entry.name, entry.atoms);
    };
    if (id == ChargeTableID::charmm22Acid)
        add(charmm22AcidTexts);
    add(id == ChargeTableID::charmm19 ? std::span<const ResidueText>(charmm19Texts) : charmm22Texts);
    add(commonTexts);
    ChargeTable table;
    for (const auto &[name, atoms] : texts)
        if (!isShared(name))
            table.emplace(name, rowsOf(texts, atoms));
    return table;
}

std::span<const ChargeRow> findRows(const ChargeTable &table, std::string_view residue)
{
    const auto found = table.find(residue);
    return found == table.end() ? std::span<const ChargeRow>() : found->second;
}

const ChargeRow *findRow(std::span<const ChargeRow> rows, std::string_view atom)
{
    const auto row = std::ranges::find(rows, atom, &ChargeRow::atom);
    return row == rows.end() ? nullptr : &*row;
}

} // namespace trelm
