#include "simulation/charges/charge_tables.h"

#include <algorithm>
#include <cmath>
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

// Partial charges, in units of e. A residue's rows stand together. Where two names of an atom are in use
// (H and HN, OT1 and O), both have a row: a structure holds one of them. NTER_PRO is published, but a chain's
// first N is -0.30 here whatever its residue, so that no look-up asks for it.

// clang-format off

// CHARMM19: united atoms, polar hydrogens only. Source: protein topology version 19 of the CHARMM
// distribution (toph19.inp) with its heme, acetyl, sulphate and water. It has no nucleotides: those are of
// CHARMM27 (below) with P 1.50, O1P and O2P -0.80, and O5' and O3' -0.55 so that a nucleotide is still -1.
constexpr ChargeRow charmm19Rows[] = {
    {"ALA", "N",   -0.35f}, {"ALA", "HN",   0.25f}, {"ALA", "H",    0.25f}, {"ALA", "CA",   0.10f},
    {"ALA", "CB",   0.00f}, {"ALA", "C",    0.55f}, {"ALA", "O",   -0.55f},
    {"ARG", "N",   -0.35f}, {"ARG", "HN",   0.25f}, {"ARG", "H",    0.25f}, {"ARG", "CA",   0.10f},
    {"ARG", "CB",   0.00f}, {"ARG", "C",    0.55f}, {"ARG", "O",   -0.55f}, {"ARG", "CG",   0.00f},
    {"ARG", "CD",   0.10f}, {"ARG", "NE",  -0.40f}, {"ARG", "HE",   0.30f}, {"ARG", "CZ",   0.50f},
    {"ARG", "NH1", -0.45f}, {"ARG", "HH11", 0.35f}, {"ARG", "HH12", 0.35f}, {"ARG", "NH2", -0.45f},
    {"ARG", "HH21", 0.35f}, {"ARG", "HH22", 0.35f},
    {"ASN", "N",   -0.35f}, {"ASN", "HN",   0.25f}, {"ASN", "H",    0.25f}, {"ASN", "CA",   0.10f},
    {"ASN", "CB",   0.00f}, {"ASN", "C",    0.55f}, {"ASN", "O",   -0.55f}, {"ASN", "CG",   0.55f},
    {"ASN", "OD1", -0.55f}, {"ASN", "ND2", -0.60f}, {"ASN", "HD21", 0.30f}, {"ASN", "HD22", 0.30f},
    {"ASP", "N",   -0.35f}, {"ASP", "HN",   0.25f}, {"ASP", "H",    0.25f}, {"ASP", "CA",   0.10f},
    {"ASP", "CB",  -0.16f}, {"ASP", "C",    0.55f}, {"ASP", "O",   -0.55f}, {"ASP", "CG",   0.36f},
    {"ASP", "OD1", -0.60f}, {"ASP", "OD2", -0.60f},
    {"CYS", "N",   -0.35f}, {"CYS", "HN",   0.25f}, {"CYS", "H",    0.25f}, {"CYS", "CA",   0.10f},
    {"CYS", "CB",   0.19f}, {"CYS", "C",    0.55f}, {"CYS", "O",   -0.55f}, {"CYS", "SG",  -0.19f},
    {"GLN", "N",   -0.35f}, {"GLN", "HN",   0.25f}, {"GLN", "H",    0.25f}, {"GLN", "CA",   0.10f},
    {"GLN", "CB",   0.00f}, {"GLN", "C",    0.55f}, {"GLN", "O",   -0.55f}, {"GLN", "CG",   0.00f},
    {"GLN", "CD",   0.55f}, {"GLN", "OE1", -0.55f}, {"GLN", "NE2", -0.60f}, {"GLN", "HE21", 0.30f},
    {"GLN", "HE22", 0.30f},
    {"GLU", "N",   -0.35f}, {"GLU", "HN",   0.25f}, {"GLU", "H",    0.25f}, {"GLU", "CA",   0.10f},
    {"GLU", "CB",   0.00f}, {"GLU", "C",    0.55f}, {"GLU", "O",   -0.55f}, {"GLU", "CG",  -0.16f},
    {"GLU", "CD",   0.36f}, {"GLU", "OE1", -0.60f}, {"GLU", "OE2", -0.60f},
    {"GLY", "N",   -0.35f}, {"GLY", "HN",   0.25f}, {"GLY", "H",    0.25f}, {"GLY", "CA",   0.10f},
    {"GLY", "C",    0.55f}, {"GLY", "O",   -0.55f},
    {"HSD", "N",   -0.35f}, {"HSD", "HN",   0.25f}, {"HSD", "H",    0.25f}, {"HSD", "CA",   0.10f},
    {"HSD", "CB",   0.00f}, {"HSD", "C",    0.55f}, {"HSD", "O",   -0.55f}, {"HSD", "CG",   0.10f},
    {"HSD", "HD1",  0.30f}, {"HSD", "NE2", -0.40f}, {"HSD", "ND1", -0.40f}, {"HSD", "CD2",  0.10f},
    {"HSD", "CE1",  0.30f}, {"HSD", "HE2",  0.30f},
    {"HSE", "N",   -0.35f}, {"HSE", "HN",   0.25f}, {"HSE", "H",    0.25f}, {"HSE", "CA",   0.10f},
    {"HSE", "CB",   0.00f}, {"HSE", "C",    0.55f}, {"HSE", "O",   -0.55f}, {"HSE", "CG",   0.10f},
    {"HSE", "NE2", -0.40f}, {"HSE", "ND1", -0.40f}, {"HSE", "CD2",  0.10f}, {"HSE", "CE1",  0.30f},
    {"HSE", "HE2",  0.30f},
    {"HSP", "N",   -0.35f}, {"HSP", "HN",   0.25f}, {"HSP", "H",    0.25f}, {"HSP", "CA",   0.10f},
    {"HSP", "CB",   0.10f}, {"HSP", "C",    0.55f}, {"HSP", "O",   -0.55f}, {"HSP", "CG",   0.15f},
    {"HSP", "HD1",  0.35f}, {"HSP", "NE2", -0.30f}, {"HSP", "ND1", -0.30f}, {"HSP", "CD2",  0.20f},
    {"HSP", "CE1",  0.45f}, {"HSP", "HE2",  0.35f},
    {"HIS", "N",   -0.35f}, {"HIS", "HN",   0.25f}, {"HIS", "H",    0.25f}, {"HIS", "CA",   0.10f},
    {"HIS", "CB",   0.00f}, {"HIS", "C",    0.55f}, {"HIS", "O",   -0.55f}, {"HIS", "CG",   0.10f},
    {"HIS", "HD1",  0.30f}, {"HIS", "NE2", -0.40f}, {"HIS", "ND1", -0.40f}, {"HIS", "CD2",  0.10f},
    {"HIS", "CE1",  0.30f},
    {"HSC", "N",   -0.35f}, {"HSC", "HN",   0.25f}, {"HSC", "H",    0.25f}, {"HSC", "CA",   0.10f},
    {"HSC", "CB",   0.10f}, {"HSC", "C",    0.55f}, {"HSC", "O",   -0.55f}, {"HSC", "CG",   0.15f},
    {"HSC", "HD1",  0.35f}, {"HSC", "NE2", -0.30f}, {"HSC", "ND1", -0.30f}, {"HSC", "CD2",  0.20f},
    {"HSC", "CE1",  0.45f}, {"HSC", "HE2",  0.35f},
    {"ILE", "N",   -0.35f}, {"ILE", "HN",   0.25f}, {"ILE", "H",    0.25f}, {"ILE", "CA",   0.10f},
    {"ILE", "CB",   0.00f}, {"ILE", "C",    0.55f}, {"ILE", "O",   -0.55f}, {"ILE", "CD",   0.00f},
    {"ILE", "CG2",  0.00f}, {"ILE", "CG1",  0.00f}, {"ILE", "CD1",  0.00f},
    {"LEU", "N",   -0.35f}, {"LEU", "HN",   0.25f}, {"LEU", "H",    0.25f}, {"LEU", "CA",   0.10f},
    {"LEU", "CB",   0.00f}, {"LEU", "C",    0.55f}, {"LEU", "O",   -0.55f}, {"LEU", "CG",   0.00f},
    {"LEU", "CD2",  0.00f}, {"LEU", "CD1",  0.00f},
    {"LYS", "N",   -0.35f}, {"LYS", "HN",   0.25f}, {"LYS", "H",    0.25f}, {"LYS", "CA",   0.10f},
    {"LYS", "CB",   0.00f}, {"LYS", "C",    0.55f}, {"LYS", "O",   -0.55f}, {"LYS", "CG",   0.00f},
    {"LYS", "CD",   0.00f}, {"LYS", "CE",   0.25f}, {"LYS", "HZ1",  0.35f}, {"LYS", "HZ2",  0.35f},
    {"LYS", "HZ3",  0.35f}, {"LYS", "NZ",  -0.30f},
    {"MET", "N",   -0.35f}, {"MET", "HN",   0.25f}, {"MET", "H",    0.25f}, {"MET", "CA",   0.10f},
    {"MET", "CB",   0.00f}, {"MET", "C",    0.55f}, {"MET", "O",   -0.55f}, {"MET", "CG",   0.06f},
    {"MET", "CE",   0.06f}, {"MET", "SD",  -0.12f},
    {"PHE", "N",   -0.35f}, {"PHE", "HN",   0.25f}, {"PHE", "H",    0.25f}, {"PHE", "CA",   0.10f},
    {"PHE", "CB",   0.00f}, {"PHE", "C",    0.55f}, {"PHE", "O",   -0.55f}, {"PHE", "CG",   0.00f},
    {"PHE", "CZ",   0.00f}, {"PHE", "CD2",  0.00f}, {"PHE", "CE1",  0.00f}, {"PHE", "CD1",  0.00f},
    {"PHE", "CE2",  0.00f},
    {"PRO", "N",   -0.20f}, {"PRO", "CA",   0.10f}, {"PRO", "CB",   0.00f}, {"PRO", "C",    0.55f},
    {"PRO", "O",   -0.55f}, {"PRO", "CG",   0.00f}, {"PRO", "CD",   0.10f},
    {"SER", "N",   -0.35f}, {"SER", "HN",   0.25f}, {"SER", "H",    0.25f}, {"SER", "CA",   0.10f},
    {"SER", "CB",   0.25f}, {"SER", "C",    0.55f}, {"SER", "O",   -0.55f}, {"SER", "HG1",  0.40f},
    {"SER", "HG",   0.40f}, {"SER", "OG",  -0.65f},
    {"THR", "N",   -0.35f}, {"THR", "HN",   0.25f}, {"THR", "H",    0.25f}, {"THR", "CA",   0.10f},
    {"THR", "CB",   0.25f}, {"THR", "C",    0.55f}, {"THR", "O",   -0.55f}, {"THR", "HG1",  0.40f},
    {"THR", "CG2",  0.00f}, {"THR", "OG1", -0.65f},
    {"TRP", "N",   -0.35f}, {"TRP", "HN",   0.25f}, {"TRP", "H",    0.25f}, {"TRP", "CA",   0.10f},
    {"TRP", "CB",   0.00f}, {"TRP", "C",    0.55f}, {"TRP", "O",   -0.55f}, {"TRP", "CG",  -0.03f},
    {"TRP", "CD2",  0.10f}, {"TRP", "HE1",  0.30f}, {"TRP", "CD1",  0.06f}, {"TRP", "CE2", -0.04f},
    {"TRP", "NE1", -0.36f}, {"TRP", "CE3", -0.03f}, {"TRP", "CZ2",  0.00f}, {"TRP", "CZ3",  0.00f},
    {"TRP", "CH2",  0.00f},
    {"TYR", "N",   -0.35f}, {"TYR", "HN",   0.25f}, {"TYR", "H",    0.25f}, {"TYR", "CA",   0.10f},
    {"TYR", "CB",   0.00f}, {"TYR", "C",    0.55f}, {"TYR", "O",   -0.55f}, {"TYR", "CG",   0.00f},
    {"TYR", "CZ",   0.25f}, {"TYR", "CD2",  0.00f}, {"TYR", "CE1",  0.00f}, {"TYR", "CD1",  0.00f},
    {"TYR", "CE2",  0.00f}, {"TYR", "OH",  -0.65f}, {"TYR", "HH",   0.40f},
    {"VAL", "N",   -0.35f}, {"VAL", "HN",   0.25f}, {"VAL", "H",    0.25f}, {"VAL", "CA",   0.10f},
    {"VAL", "CB",   0.00f}, {"VAL", "C",    0.55f}, {"VAL", "O",   -0.55f}, {"VAL", "CG2",  0.00f},
    {"VAL", "CG1",  0.00f},
    {"HEME", "FE",   0.24f}, {"HEME", "NA",  -0.18f}, {"HEME", "NB",  -0.18f}, {"HEME", "NC",  -0.18f},
    {"HEME", "ND",  -0.18f}, {"HEME", "C1A",  0.03f}, {"HEME", "CHA",  0.04f}, {"HEME", "C4D",  0.02f},
    {"HEME", "C1B",  0.03f}, {"HEME", "CHB",  0.04f}, {"HEME", "C4A",  0.02f}, {"HEME", "C1C",  0.03f},
    {"HEME", "CHC",  0.04f}, {"HEME", "C4B",  0.02f}, {"HEME", "C1D",  0.03f}, {"HEME", "CHD",  0.04f},
    {"HEME", "C4C",  0.02f}, {"HEME", "C2A", -0.02f}, {"HEME", "CAA",  0.04f}, {"HEME", "C3A",  0.02f},
    {"HEME", "CMA", -0.04f}, {"HEME", "CBA", -0.10f}, {"HEME", "CGA",  0.30f}, {"HEME", "O1A", -0.50f},
    {"HEME", "O2A", -0.50f}, {"HEME", "C2B",  0.02f}, {"HEME", "CMB", -0.04f}, {"HEME", "C3B", -0.05f},
    {"HEME", "CAB",  0.03f}, {"HEME", "CBB", -0.10f}, {"HEME", "C2C",  0.02f}, {"HEME", "CMC", -0.04f},
    {"HEME", "C3C", -0.05f}, {"HEME", "CAC",  0.03f}, {"HEME", "CBC", -0.10f}, {"HEME", "C2D",  0.02f},
    {"HEME", "CMD", -0.04f}, {"HEME", "C3D", -0.02f}, {"HEME", "CAD",  0.04f}, {"HEME", "CBD", -0.10f},
    {"HEME", "CGD",  0.30f}, {"HEME", "O1D", -0.50f}, {"HEME", "O2D", -0.50f},
    {"ACE", "CA",   0.00f}, {"ACE", "C",    0.55f}, {"ACE", "O",   -0.55f},
    {"SO4", "O1",  -0.50f}, {"SO4", "O2",  -0.50f}, {"SO4", "O3",  -0.50f}, {"SO4", "O4",  -0.50f},
    {"ADE", "P",    1.50f}, {"ADE", "O1P", -0.80f}, {"ADE", "O2P", -0.80f}, {"ADE", "O5'", -0.55f},
    {"ADE", "C5'", -0.08f}, {"ADE", "H5'",  0.09f}, {"ADE", "H5''", 0.09f}, {"ADE", "C4'",  0.16f},
    {"ADE", "H4'",  0.09f}, {"ADE", "O4'", -0.50f}, {"ADE", "C1'",  0.16f}, {"ADE", "H1'",  0.09f},
    {"ADE", "N9",  -0.05f}, {"ADE", "C4",   0.43f}, {"ADE", "N3",  -0.75f}, {"ADE", "C2",   0.50f},
    {"ADE", "N1",  -0.74f}, {"ADE", "C6",   0.46f}, {"ADE", "C5",   0.28f}, {"ADE", "N7",  -0.71f},
    {"ADE", "C8",   0.34f}, {"ADE", "H8",   0.12f}, {"ADE", "C2'",  0.14f}, {"ADE", "H2''", 0.09f},
    {"ADE", "O2'", -0.66f}, {"ADE", "H2'",  0.43f}, {"ADE", "C3'",  0.01f}, {"ADE", "H3'",  0.09f},
    {"ADE", "O3'", -0.55f}, {"ADE", "H2",   0.13f}, {"ADE", "N6",  -0.77f}, {"ADE", "H61",  0.38f},
    {"ADE", "H62",  0.38f},
    {"GUA", "P",    1.50f}, {"GUA", "O1P", -0.80f}, {"GUA", "O2P", -0.80f}, {"GUA", "O5'", -0.55f},
    {"GUA", "C5'", -0.08f}, {"GUA", "H5'",  0.09f}, {"GUA", "H5''", 0.09f}, {"GUA", "C4'",  0.16f},
    {"GUA", "H4'",  0.09f}, {"GUA", "O4'", -0.50f}, {"GUA", "C1'",  0.16f}, {"GUA", "H1'",  0.09f},
    {"GUA", "N9",  -0.02f}, {"GUA", "C4",   0.26f}, {"GUA", "N3",  -0.74f}, {"GUA", "C2",   0.75f},
    {"GUA", "N1",  -0.34f}, {"GUA", "H1",   0.26f}, {"GUA", "N2",  -0.68f}, {"GUA", "H21",  0.32f},
    {"GUA", "HN'",  0.32f}, {"GUA", "H22",  0.35f}, {"GUA", "HN''", 0.35f}, {"GUA", "C6",   0.54f},
    {"GUA", "O6",  -0.51f}, {"GUA", "C5",   0.00f}, {"GUA", "N7",  -0.60f}, {"GUA", "C8",   0.25f},
    {"GUA", "H8",   0.16f}, {"GUA", "C2'",  0.14f}, {"GUA", "H2''", 0.09f}, {"GUA", "O2'", -0.66f},
    {"GUA", "H2'",  0.43f}, {"GUA", "C3'",  0.01f}, {"GUA", "H3'",  0.09f}, {"GUA", "O3'", -0.55f},
    {"CYT", "O2",  -0.49f}, {"CYT", "P",    1.50f}, {"CYT", "O1P", -0.80f}, {"CYT", "O2P", -0.80f},
    {"CYT", "O5'", -0.55f}, {"CYT", "C5'", -0.08f}, {"CYT", "H5'",  0.09f}, {"CYT", "H5''", 0.09f},
    {"CYT", "C4'",  0.16f}, {"CYT", "H4'",  0.09f}, {"CYT", "O4'", -0.50f}, {"CYT", "C1'",  0.16f},
    {"CYT", "H1'",  0.09f}, {"CYT", "C4",   0.65f}, {"CYT", "N3",  -0.66f}, {"CYT", "C2",   0.52f},
    {"CYT", "N1",  -0.13f}, {"CYT", "C6",   0.05f}, {"CYT", "C5",  -0.13f}, {"CYT", "C2'",  0.14f},
    {"CYT", "H2''", 0.09f}, {"CYT", "O2'", -0.66f}, {"CYT", "H2'",  0.43f}, {"CYT", "C3'",  0.01f},
    {"CYT", "H3'",  0.09f}, {"CYT", "O3'", -0.55f}, {"CYT", "H6",   0.17f}, {"CYT", "N4",  -0.75f},
    {"CYT", "H41",  0.37f}, {"CYT", "H42",  0.33f}, {"CYT", "H5",   0.07f},
    {"THY", "O2",  -0.41f}, {"THY", "O4",  -0.45f}, {"THY", "P",    1.50f}, {"THY", "O1P", -0.80f},
    {"THY", "O2P", -0.80f}, {"THY", "O5'", -0.55f}, {"THY", "C5'", -0.08f}, {"THY", "H5'",  0.09f},
    {"THY", "H5''", 0.09f}, {"THY", "C4'",  0.16f}, {"THY", "H4'",  0.09f}, {"THY", "O4'", -0.50f},
    {"THY", "C1'",  0.16f}, {"THY", "H1'",  0.09f}, {"THY", "C4",   0.50f}, {"THY", "N3",  -0.46f},
    {"THY", "C2",   0.51f}, {"THY", "N1",  -0.34f}, {"THY", "C6",   0.17f}, {"THY", "C5",  -0.15f},
    {"THY", "C2'", -0.18f}, {"THY", "H2''", 0.09f}, {"THY", "H2'",  0.09f}, {"THY", "C3'",  0.01f},
    {"THY", "H3'",  0.09f}, {"THY", "O3'", -0.55f}, {"THY", "H6",   0.17f}, {"THY", "H3",   0.36f},
    {"THY", "C5M", -0.11f}, {"THY", "CM",  -0.11f}, {"THY", "H51",  0.07f}, {"THY", "H52",  0.07f},
    {"THY", "H53",  0.07f},
    {"URA", "O2",  -0.45f}, {"URA", "O4",  -0.48f}, {"URA", "P",    1.50f}, {"URA", "O1P", -0.80f},
    {"URA", "O2P", -0.80f}, {"URA", "O5'", -0.55f}, {"URA", "C5'", -0.08f}, {"URA", "H5'",  0.09f},
    {"URA", "H5''", 0.09f}, {"URA", "C4'",  0.16f}, {"URA", "H4'",  0.09f}, {"URA", "O4'", -0.50f},
    {"URA", "C1'",  0.16f}, {"URA", "H1'",  0.09f}, {"URA", "C4",   0.53f}, {"URA", "N3",  -0.46f},
    {"URA", "C2",   0.55f}, {"URA", "N1",  -0.34f}, {"URA", "C6",   0.20f}, {"URA", "C5",  -0.15f},
    {"URA", "C2'",  0.14f}, {"URA", "H2''", 0.09f}, {"URA", "O2'", -0.66f}, {"URA", "H2'",  0.43f},
    {"URA", "C3'",  0.01f}, {"URA", "H3'",  0.09f}, {"URA", "O3'", -0.55f}, {"URA", "H6",   0.14f},
    {"URA", "H5",   0.10f}, {"URA", "H3",   0.36f},
    {"DMPA", "O1",  -0.57f}, {"DMPA", "O2",  -0.57f}, {"DMPA", "O3",  -0.78f}, {"DMPA", "O4",  -0.78f},
    {"DMPA", "C2",  -0.17f}, {"DMPA", "H21",  0.09f}, {"DMPA", "H22",  0.09f}, {"DMPA", "P1",   1.50f},
    {"DMPA", "C1",  -0.17f}, {"DMPA", "H11",  0.09f}, {"DMPA", "H12",  0.09f}, {"DMPA", "H13",  0.09f},
    {"DMPA", "H23",  0.09f},
    {"MP_0", "O1",  -0.56f}, {"MP_0", "O2",  -0.63f}, {"MP_0", "O3",  -0.63f}, {"MP_0", "O4",  -0.64f},
    {"MP_0", "H2",   0.43f}, {"MP_0", "H3",   0.43f}, {"MP_0", "P1",   1.50f}, {"MP_0", "C1",  -0.17f},
    {"MP_0", "H11",  0.09f}, {"MP_0", "H12",  0.09f}, {"MP_0", "H13",  0.09f},
    {"MP_1", "O1",  -0.62f}, {"MP_1", "O2",  -0.68f}, {"MP_1", "O3",  -0.82f}, {"MP_1", "O4",  -0.82f},
    {"MP_1", "H2",   0.34f}, {"MP_1", "P1",   1.50f}, {"MP_1", "C1",  -0.17f}, {"MP_1", "H11",  0.09f},
    {"MP_1", "H12",  0.09f}, {"MP_1", "H13",  0.09f},
    {"MP_2", "O1",  -0.40f}, {"MP_2", "O2",  -0.90f}, {"MP_2", "O3",  -0.90f}, {"MP_2", "O4",  -0.90f},
    {"MP_2", "P1",   1.10f}, {"MP_2", "C1",  -0.27f}, {"MP_2", "H11",  0.09f}, {"MP_2", "H12",  0.09f},
    {"MP_2", "H13",  0.09f},
    {"TIP3", "H1",  0.417f}, {"TIP3", "H2",  0.417f}, {"TIP3", "OH2", -0.834f},
    {"SOD", "SOD",  1.00f},
    {"MG", "MG",   2.00f},
    {"RIBT", "C2'",  0.14f}, {"RIBT", "H2''", 0.09f}, {"RIBT", "O2'", -0.66f}, {"RIBT", "H2'",  0.43f},
    {"RIBT", "C3'",  0.14f}, {"RIBT", "H3'",  0.09f}, {"RIBT", "O3'", -0.66f}, {"RIBT", "H3T",  0.43f},
    {"DEOT", "C2'", -0.18f}, {"DEOT", "H2''", 0.09f}, {"DEOT", "H2'",  0.09f}, {"DEOT", "C3'",  0.14f},
    {"DEOT", "H3'",  0.09f}, {"DEOT", "O3'", -0.66f}, {"DEOT", "H3T",  0.43f},
    {"NTER", "N",   -0.30f}, {"NTER", "CA",   0.25f}, {"NTER", "HT1",  0.35f}, {"NTER", "HT2",  0.35f},
    {"NTER", "HT3",  0.35f},
    {"NTER_GLY", "N",   -0.30f}, {"NTER_GLY", "CA",   0.25f}, {"NTER_GLY", "HT1",  0.35f}, {"NTER_GLY", "HT2",  0.35f},
    {"NTER_GLY", "HT3",  0.35f},
    {"NTER_PRO", "N",   -0.20f}, {"NTER_PRO", "CA",   0.25f}, {"NTER_PRO", "CD",   0.25f}, {"NTER_PRO", "HT1",  0.35f},
    {"NTER_PRO", "HT2",  0.35f},
    {"CTER", "C",    0.14f}, {"CTER", "O",   -0.57f}, {"CTER", "OT1", -0.57f}, {"CTER", "OT2", -0.57f},
    {"CTER", "OXT", -0.57f},
};

// CHARMM22, pH 6 to 7. Sources: MacKerell et al., J. Phys. Chem. B 102 (1998) 3586, for the protein and heme;
// Foloppe, MacKerell, J. Comput. Chem. 21 (2000) 86 (CHARMM27), for nucleotides, phosphates, ions and water.
// There are no keys for heme hydrogens, so each one's charge is added to its carbon; sulphate is CHARMM19's.
constexpr ChargeRow charmm22Rows[] = {
    {"ALA", "N",   -0.47f}, {"ALA", "HN",   0.31f}, {"ALA", "H",    0.31f}, {"ALA", "CA",   0.07f},
    {"ALA", "HA",   0.09f}, {"ALA", "CB",  -0.27f}, {"ALA", "HB1",  0.09f}, {"ALA", "HB2",  0.09f},
    {"ALA", "HB3",  0.09f}, {"ALA", "C",    0.51f}, {"ALA", "O",   -0.51f},
    {"ARG", "N",   -0.47f}, {"ARG", "HN",   0.31f}, {"ARG", "H",    0.31f}, {"ARG", "CA",   0.07f},
    {"ARG", "HA",   0.09f}, {"ARG", "CB",  -0.18f}, {"ARG", "HB1",  0.09f}, {"ARG", "HB2",  0.09f},
    {"ARG", "C",    0.51f}, {"ARG", "O",   -0.51f}, {"ARG", "CG",  -0.18f}, {"ARG", "HG1",  0.09f},
    {"ARG", "HG2",  0.09f}, {"ARG", "CD",   0.20f}, {"ARG", "HD1",  0.09f}, {"ARG", "HD2",  0.09f},
    {"ARG", "NE",  -0.70f}, {"ARG", "HE",   0.44f}, {"ARG", "CZ",   0.64f}, {"ARG", "NH1", -0.80f},
    {"ARG", "HH11", 0.46f}, {"ARG", "HH12", 0.46f}, {"ARG", "NH2", -0.80f}, {"ARG", "HH21", 0.46f},
    {"ARG", "HH22", 0.46f},
    {"ASN", "N",   -0.47f}, {"ASN", "HN",   0.31f}, {"ASN", "H",    0.31f}, {"ASN", "CA",   0.07f},
    {"ASN", "HA",   0.09f}, {"ASN", "CB",  -0.18f}, {"ASN", "HB1",  0.09f}, {"ASN", "HB2",  0.09f},
    {"ASN", "C",    0.51f}, {"ASN", "O",   -0.51f}, {"ASN", "CG",   0.55f}, {"ASN", "OD1", -0.55f},
    {"ASN", "ND2", -0.62f}, {"ASN", "HD21", 0.32f}, {"ASN", "HD22", 0.30f},
    {"ASP", "N",   -0.47f}, {"ASP", "HN",   0.31f}, {"ASP", "H",    0.31f}, {"ASP", "CA",   0.07f},
    {"ASP", "HA",   0.09f}, {"ASP", "CB",  -0.28f}, {"ASP", "HB1",  0.09f}, {"ASP", "HB2",  0.09f},
    {"ASP", "C",    0.51f}, {"ASP", "O",   -0.51f}, {"ASP", "CG",   0.62f}, {"ASP", "OD1", -0.76f},
    {"ASP", "OD2", -0.76f},
    {"CYS", "N",   -0.47f}, {"CYS", "HN",   0.31f}, {"CYS", "H",    0.31f}, {"CYS", "CA",   0.07f},
    {"CYS", "HA",   0.09f}, {"CYS", "CB",  -0.11f}, {"CYS", "HB1",  0.09f}, {"CYS", "HB2",  0.09f},
    {"CYS", "C",    0.51f}, {"CYS", "O",   -0.51f}, {"CYS", "HG1",  0.16f}, {"CYS", "SG",  -0.23f},
    {"CYS", "HG",   0.16f},
    {"GLN", "N",   -0.47f}, {"GLN", "HN",   0.31f}, {"GLN", "H",    0.31f}, {"GLN", "CA",   0.07f},
    {"GLN", "HA",   0.09f}, {"GLN", "CB",  -0.18f}, {"GLN", "HB1",  0.09f}, {"GLN", "HB2",  0.09f},
    {"GLN", "C",    0.51f}, {"GLN", "O",   -0.51f}, {"GLN", "CG",  -0.18f}, {"GLN", "HG1",  0.09f},
    {"GLN", "HG2",  0.09f}, {"GLN", "CD",   0.55f}, {"GLN", "OE1", -0.55f}, {"GLN", "NE2", -0.62f},
    {"GLN", "HE21", 0.32f}, {"GLN", "HE22", 0.30f},
    {"GLU", "N",   -0.47f}, {"GLU", "HN",   0.31f}, {"GLU", "H",    0.31f}, {"GLU", "CA",   0.07f},
    {"GLU", "HA",   0.09f}, {"GLU", "CB",  -0.18f}, {"GLU", "HB1",  0.09f}, {"GLU", "HB2",  0.09f},
    {"GLU", "C",    0.51f}, {"GLU", "O",   -0.51f}, {"GLU", "CG",  -0.28f}, {"GLU", "HG1",  0.09f},
    {"GLU", "HG2",  0.09f}, {"GLU", "CD",   0.62f}, {"GLU", "OE1", -0.76f}, {"GLU", "OE2", -0.76f},
    {"GLY", "N",   -0.47f}, {"GLY", "HN",   0.31f}, {"GLY", "H",    0.31f}, {"GLY", "CA",  -0.02f},
    {"GLY", "C",    0.51f}, {"GLY", "O",   -0.51f}, {"GLY", "HA1",  0.09f}, {"GLY", "HA2",  0.09f},
    {"HSD", "N",   -0.47f}, {"HSD", "HN",   0.31f}, {"HSD", "H",    0.31f}, {"HSD", "CA",   0.07f},
    {"HSD", "HA",   0.09f}, {"HSD", "CB",  -0.09f}, {"HSD", "HB1",  0.09f}, {"HSD", "HB2",  0.09f},
    {"HSD", "C",    0.51f}, {"HSD", "O",   -0.51f}, {"HSD", "CG",  -0.05f}, {"HSD", "HD1",  0.32f},
    {"HSD", "HD2",  0.10f}, {"HSD", "NE2", -0.70f}, {"HSD", "ND1", -0.36f}, {"HSD", "CD2",  0.22f},
    {"HSD", "CE1",  0.25f}, {"HSD", "HE1",  0.13f},
    {"HSE", "N",   -0.47f}, {"HSE", "HN",   0.31f}, {"HSE", "H",    0.31f}, {"HSE", "CA",   0.07f},
    {"HSE", "HA",   0.09f}, {"HSE", "CB",  -0.08f}, {"HSE", "HB1",  0.09f}, {"HSE", "HB2",  0.09f},
    {"HSE", "C",    0.51f}, {"HSE", "O",   -0.51f}, {"HSE", "CG",   0.22f}, {"HSE", "HD2",  0.09f},
    {"HSE", "NE2", -0.36f}, {"HSE", "ND1", -0.70f}, {"HSE", "CD2", -0.05f}, {"HSE", "CE1",  0.25f},
    {"HSE", "HE1",  0.13f}, {"HSE", "HE2",  0.32f},
    {"HSP", "N",   -0.47f}, {"HSP", "HN",   0.31f}, {"HSP", "H",    0.31f}, {"HSP", "CA",   0.07f},
    {"HSP", "HA",   0.09f}, {"HSP", "CB",  -0.05f}, {"HSP", "HB1",  0.09f}, {"HSP", "HB2",  0.09f},
    {"HSP", "C",    0.51f}, {"HSP", "O",   -0.51f}, {"HSP", "CG",   0.19f}, {"HSP", "HD1",  0.44f},
    {"HSP", "HD2",  0.13f}, {"HSP", "NE2", -0.51f}, {"HSP", "ND1", -0.51f}, {"HSP", "CD2",  0.19f},
    {"HSP", "CE1",  0.32f}, {"HSP", "HE1",  0.18f}, {"HSP", "HE2",  0.44f},
    {"HIS", "N",   -0.47f}, {"HIS", "HN",   0.31f}, {"HIS", "H",    0.31f}, {"HIS", "CA",   0.07f},
    {"HIS", "HA",   0.09f}, {"HIS", "CB",  -0.09f}, {"HIS", "HB1",  0.09f}, {"HIS", "HB2",  0.09f},
    {"HIS", "C",    0.51f}, {"HIS", "O",   -0.51f}, {"HIS", "CG",  -0.05f}, {"HIS", "HD1",  0.32f},
    {"HIS", "HD2",  0.10f}, {"HIS", "NE2", -0.70f}, {"HIS", "ND1", -0.36f}, {"HIS", "CD2",  0.22f},
    {"HIS", "CE1",  0.25f}, {"HIS", "HE1",  0.13f},
    {"HSC", "N",   -0.47f}, {"HSC", "HN",   0.31f}, {"HSC", "H",    0.31f}, {"HSC", "CA",   0.07f},
    {"HSC", "HA",   0.09f}, {"HSC", "CB",  -0.05f}, {"HSC", "HB1",  0.09f}, {"HSC", "HB2",  0.09f},
    {"HSC", "C",    0.51f}, {"HSC", "O",   -0.51f}, {"HSC", "CG",   0.19f}, {"HSC", "HD1",  0.44f},
    {"HSC", "HD2",  0.13f}, {"HSC", "NE2", -0.51f}, {"HSC", "ND1", -0.51f}, {"HSC", "CD2",  0.19f},
    {"HSC", "CE1",  0.32f}, {"HSC", "HE1",  0.18f}, {"HSC", "HE2",  0.44f},
    {"ILE", "N",   -0.47f}, {"ILE", "HN",   0.31f}, {"ILE", "H",    0.31f}, {"ILE", "CA",   0.07f},
    {"ILE", "HA",   0.09f}, {"ILE", "CB",  -0.09f}, {"ILE", "C",    0.51f}, {"ILE", "O",   -0.51f},
    {"ILE", "CD",  -0.27f}, {"ILE", "HD1",  0.09f}, {"ILE", "HD2",  0.09f}, {"ILE", "HB",   0.09f},
    {"ILE", "CG2", -0.27f}, {"ILE", "HG21", 0.09f}, {"ILE", "HG22", 0.09f}, {"ILE", "HG23", 0.09f},
    {"ILE", "CG1", -0.18f}, {"ILE", "HG11", 0.09f}, {"ILE", "HG12", 0.09f}, {"ILE", "HD3",  0.09f},
    {"ILE", "CD1", -0.27f}, {"ILE", "HD11", 0.09f}, {"ILE", "HD12", 0.09f}, {"ILE", "HD13", 0.09f},
    {"LEU", "N",   -0.47f}, {"LEU", "HN",   0.31f}, {"LEU", "H",    0.31f}, {"LEU", "CA",   0.07f},
    {"LEU", "HA",   0.09f}, {"LEU", "CB",  -0.18f}, {"LEU", "HB1",  0.09f}, {"LEU", "HB2",  0.09f},
    {"LEU", "C",    0.51f}, {"LEU", "O",   -0.51f}, {"LEU", "CG",  -0.09f}, {"LEU", "HD21", 0.09f},
    {"LEU", "HD22", 0.09f}, {"LEU", "CD2", -0.27f}, {"LEU", "HG",   0.09f}, {"LEU", "CD1", -0.27f},
    {"LEU", "HD11", 0.09f}, {"LEU", "HD12", 0.09f}, {"LEU", "HD13", 0.09f}, {"LEU", "HD23", 0.09f},
    {"LYS", "N",   -0.47f}, {"LYS", "HN",   0.31f}, {"LYS", "H",    0.31f}, {"LYS", "CA",   0.07f},
    {"LYS", "HA",   0.09f}, {"LYS", "CB",  -0.18f}, {"LYS", "HB1",  0.09f}, {"LYS", "HB2",  0.09f},
    {"LYS", "C",    0.51f}, {"LYS", "O",   -0.51f}, {"LYS", "CG",  -0.18f}, {"LYS", "HG1",  0.09f},
    {"LYS", "HG2",  0.09f}, {"LYS", "CD",  -0.18f}, {"LYS", "HD1",  0.09f}, {"LYS", "HD2",  0.09f},
    {"LYS", "HE1",  0.05f}, {"LYS", "HE2",  0.05f}, {"LYS", "CE",   0.21f}, {"LYS", "HZ1",  0.33f},
    {"LYS", "HZ2",  0.33f}, {"LYS", "HZ3",  0.33f}, {"LYS", "NZ",  -0.30f},
    {"MET", "N",   -0.47f}, {"MET", "HN",   0.31f}, {"MET", "H",    0.31f}, {"MET", "CA",   0.07f},
    {"MET", "HA",   0.09f}, {"MET", "CB",  -0.18f}, {"MET", "HB1",  0.09f}, {"MET", "HB2",  0.09f},
    {"MET", "C",    0.51f}, {"MET", "O",   -0.51f}, {"MET", "CG",  -0.14f}, {"MET", "HG1",  0.09f},
    {"MET", "HG2",  0.09f}, {"MET", "HE1",  0.09f}, {"MET", "HE2",  0.09f}, {"MET", "CE",  -0.22f},
    {"MET", "SD",  -0.09f}, {"MET", "HE3",  0.09f},
    {"PHE", "N",   -0.47f}, {"PHE", "HN",   0.31f}, {"PHE", "H",    0.31f}, {"PHE", "CA",   0.07f},
    {"PHE", "HA",   0.09f}, {"PHE", "CB",  -0.18f}, {"PHE", "HB1",  0.09f}, {"PHE", "HB2",  0.09f},
    {"PHE", "C",    0.51f}, {"PHE", "O",   -0.51f}, {"PHE", "CG",   0.00f}, {"PHE", "HD1", 0.115f},
    {"PHE", "HD2", 0.115f}, {"PHE", "CZ",  -0.115f}, {"PHE", "CD2", -0.115f}, {"PHE", "CE1", -0.115f},
    {"PHE", "HE1", 0.115f}, {"PHE", "HE2", 0.115f}, {"PHE", "CD1", -0.115f}, {"PHE", "CE2", -0.115f},
    {"PHE", "HZ",  0.115f},
    {"PRO", "N",   -0.29f}, {"PRO", "CA",   0.02f}, {"PRO", "HA",   0.09f}, {"PRO", "CB",  -0.18f},
    {"PRO", "HB1",  0.09f}, {"PRO", "HB2",  0.09f}, {"PRO", "C",    0.51f}, {"PRO", "O",   -0.51f},
    {"PRO", "CG",  -0.18f}, {"PRO", "HG1",  0.09f}, {"PRO", "HG2",  0.09f}, {"PRO", "CD",   0.00f},
    {"PRO", "HD1",  0.09f}, {"PRO", "HD2",  0.09f},
    {"SER", "N",   -0.47f}, {"SER", "HN",   0.31f}, {"SER", "H",    0.31f}, {"SER", "CA",   0.07f},
    {"SER", "HA",   0.09f}, {"SER", "CB",   0.05f}, {"SER", "HB1",  0.09f}, {"SER", "HB2",  0.09f},
    {"SER", "C",    0.51f}, {"SER", "O",   -0.51f}, {"SER", "HG1",  0.43f}, {"SER", "HG",   0.43f},
    {"SER", "OG",  -0.66f},
    {"THR", "N",   -0.47f}, {"THR", "HN",   0.31f}, {"THR", "H",    0.31f}, {"THR", "CA",   0.07f},
    {"THR", "HA",   0.09f}, {"THR", "CB",   0.14f}, {"THR", "C",    0.51f}, {"THR", "O",   -0.51f},
    {"THR", "HG1",  0.43f}, {"THR", "HB",   0.09f}, {"THR", "CG2", -0.27f}, {"THR", "HG21", 0.09f},
    {"THR", "HG22", 0.09f}, {"THR", "HG23", 0.09f}, {"THR", "OG1", -0.66f},
    {"TRP", "N",   -0.47f}, {"TRP", "HN",   0.31f}, {"TRP", "H",    0.31f}, {"TRP", "CA",   0.07f},
    {"TRP", "HA",   0.09f}, {"TRP", "CB",  -0.18f}, {"TRP", "HB1",  0.09f}, {"TRP", "HB2",  0.09f},
    {"TRP", "C",    0.51f}, {"TRP", "O",   -0.51f}, {"TRP", "CG",  -0.03f}, {"TRP", "HD1", 0.115f},
    {"TRP", "CD2", -0.02f}, {"TRP", "HE1",  0.38f}, {"TRP", "CD1", 0.035f}, {"TRP", "HZ2", 0.115f},
    {"TRP", "HZ3", 0.115f}, {"TRP", "HE3", 0.115f}, {"TRP", "CE2",  0.13f}, {"TRP", "NE1", -0.61f},
    {"TRP", "CE3", -0.115f}, {"TRP", "CZ2", -0.115f}, {"TRP", "CZ3", -0.115f}, {"TRP", "CH2", -0.115f},
    {"TRP", "HH2", 0.115f},
    {"TYR", "N",   -0.47f}, {"TYR", "HN",   0.31f}, {"TYR", "H",    0.31f}, {"TYR", "CA",   0.07f},
    {"TYR", "HA",   0.09f}, {"TYR", "CB",  -0.18f}, {"TYR", "HB1",  0.09f}, {"TYR", "HB2",  0.09f},
    {"TYR", "C",    0.51f}, {"TYR", "O",   -0.51f}, {"TYR", "CG",   0.00f}, {"TYR", "HD1", 0.115f},
    {"TYR", "HD2", 0.115f}, {"TYR", "CZ",   0.11f}, {"TYR", "CD2", -0.115f}, {"TYR", "CE1", -0.115f},
    {"TYR", "HE1", 0.115f}, {"TYR", "HE2", 0.115f}, {"TYR", "CD1", -0.115f}, {"TYR", "CE2", -0.115f},
    {"TYR", "OH",  -0.54f}, {"TYR", "HH",   0.43f},
    {"VAL", "N",   -0.47f}, {"VAL", "HN",   0.31f}, {"VAL", "H",    0.31f}, {"VAL", "CA",   0.07f},
    {"VAL", "HA",   0.09f}, {"VAL", "CB",  -0.09f}, {"VAL", "C",    0.51f}, {"VAL", "O",   -0.51f},
    {"VAL", "HB",   0.09f}, {"VAL", "CG2", -0.27f}, {"VAL", "HG21", 0.09f}, {"VAL", "HG22", 0.09f},
    {"VAL", "HG23", 0.09f}, {"VAL", "CG1", -0.27f}, {"VAL", "HG11", 0.09f}, {"VAL", "HG12", 0.09f},
    {"VAL", "HG13", 0.09f},
    {"HEME", "FE",   0.24f}, {"HEME", "NA",  -0.18f}, {"HEME", "NB",  -0.18f}, {"HEME", "NC",  -0.18f},
    {"HEME", "ND",  -0.18f}, {"HEME", "C1A",  0.12f}, {"HEME", "CHA",  0.00f}, {"HEME", "C4D",  0.12f},
    {"HEME", "C1B",  0.12f}, {"HEME", "CHB",  0.00f}, {"HEME", "C4A",  0.12f}, {"HEME", "C1C",  0.12f},
    {"HEME", "CHC",  0.00f}, {"HEME", "C4B",  0.12f}, {"HEME", "C1D",  0.12f}, {"HEME", "CHD",  0.00f},
    {"HEME", "C4C",  0.12f}, {"HEME", "C2A", -0.06f}, {"HEME", "CAA",  0.00f}, {"HEME", "C3A", -0.06f},
    {"HEME", "CMA",  0.00f}, {"HEME", "CBA", -0.10f}, {"HEME", "CGA",  0.62f}, {"HEME", "O1A", -0.76f},
    {"HEME", "O2A", -0.76f}, {"HEME", "C2B", -0.06f}, {"HEME", "CMB",  0.00f}, {"HEME", "C3B", -0.06f},
    {"HEME", "CAB",  0.00f}, {"HEME", "CBB",  0.00f}, {"HEME", "C2C", -0.06f}, {"HEME", "CMC",  0.00f},
    {"HEME", "C3C", -0.06f}, {"HEME", "CAC",  0.00f}, {"HEME", "CBC",  0.00f}, {"HEME", "C2D", -0.06f},
    {"HEME", "CMD",  0.00f}, {"HEME", "C3D", -0.06f}, {"HEME", "CAD",  0.00f}, {"HEME", "CBD", -0.10f},
    {"HEME", "CGD",  0.62f}, {"HEME", "O1D", -0.76f}, {"HEME", "O2D", -0.76f},
    {"ACE", "C",    0.51f}, {"ACE", "O",   -0.51f},
    {"SO4", "O1",  -0.50f}, {"SO4", "O2",  -0.50f}, {"SO4", "O3",  -0.50f}, {"SO4", "O4",  -0.50f},
    {"ADE", "P",    1.50f}, {"ADE", "O1P", -0.78f}, {"ADE", "O2P", -0.78f}, {"ADE", "O5'", -0.57f},
    {"ADE", "C5'", -0.08f}, {"ADE", "H5'",  0.09f}, {"ADE", "H5''", 0.09f}, {"ADE", "C4'",  0.16f},
    {"ADE", "H4'",  0.09f}, {"ADE", "O4'", -0.50f}, {"ADE", "C1'",  0.16f}, {"ADE", "H1'",  0.09f},
    {"ADE", "N9",  -0.05f}, {"ADE", "C4",   0.43f}, {"ADE", "N3",  -0.75f}, {"ADE", "C2",   0.50f},
    {"ADE", "N1",  -0.74f}, {"ADE", "C6",   0.46f}, {"ADE", "C5",   0.28f}, {"ADE", "N7",  -0.71f},
    {"ADE", "C8",   0.34f}, {"ADE", "H8",   0.12f}, {"ADE", "C2'",  0.14f}, {"ADE", "H2''", 0.09f},
    {"ADE", "O2'", -0.66f}, {"ADE", "H2'",  0.43f}, {"ADE", "C3'",  0.01f}, {"ADE", "H3'",  0.09f},
    {"ADE", "O3'", -0.57f}, {"ADE", "H2",   0.13f}, {"ADE", "N6",  -0.77f}, {"ADE", "H61",  0.38f},
    {"ADE", "H62",  0.38f},
    {"GUA", "P",    1.50f}, {"GUA", "O1P", -0.78f}, {"GUA", "O2P", -0.78f}, {"GUA", "O5'", -0.57f},
    {"GUA", "C5'", -0.08f}, {"GUA", "H5'",  0.09f}, {"GUA", "H5''", 0.09f}, {"GUA", "C4'",  0.16f},
    {"GUA", "H4'",  0.09f}, {"GUA", "O4'", -0.50f}, {"GUA", "C1'",  0.16f}, {"GUA", "H1'",  0.09f},
    {"GUA", "N9",  -0.02f}, {"GUA", "C4",   0.26f}, {"GUA", "N3",  -0.74f}, {"GUA", "C2",   0.75f},
    {"GUA", "N1",  -0.34f}, {"GUA", "H1",   0.26f}, {"GUA", "N2",  -0.68f}, {"GUA", "H21",  0.32f},
    {"GUA", "HN'",  0.32f}, {"GUA", "H22",  0.35f}, {"GUA", "HN''", 0.35f}, {"GUA", "C6",   0.54f},
    {"GUA", "O6",  -0.51f}, {"GUA", "C5",   0.00f}, {"GUA", "N7",  -0.60f}, {"GUA", "C8",   0.25f},
    {"GUA", "H8",   0.16f}, {"GUA", "C2'",  0.14f}, {"GUA", "H2''", 0.09f}, {"GUA", "O2'", -0.66f},
    {"GUA", "H2'",  0.43f}, {"GUA", "C3'",  0.01f}, {"GUA", "H3'",  0.09f}, {"GUA", "O3'", -0.57f},
    {"CYT", "O2",  -0.49f}, {"CYT", "P",    1.50f}, {"CYT", "O1P", -0.78f}, {"CYT", "O2P", -0.78f},
    {"CYT", "O5'", -0.57f}, {"CYT", "C5'", -0.08f}, {"CYT", "H5'",  0.09f}, {"CYT", "H5''", 0.09f},
    {"CYT", "C4'",  0.16f}, {"CYT", "H4'",  0.09f}, {"CYT", "O4'", -0.50f}, {"CYT", "C1'",  0.16f},
    {"CYT", "H1'",  0.09f}, {"CYT", "C4",   0.65f}, {"CYT", "N3",  -0.66f}, {"CYT", "C2",   0.52f},
    {"CYT", "N1",  -0.13f}, {"CYT", "C6",   0.05f}, {"CYT", "C5",  -0.13f}, {"CYT", "C2'",  0.14f},
    {"CYT", "H2''", 0.09f}, {"CYT", "O2'", -0.66f}, {"CYT", "H2'",  0.43f}, {"CYT", "C3'",  0.01f},
    {"CYT", "H3'",  0.09f}, {"CYT", "O3'", -0.57f}, {"CYT", "H6",   0.17f}, {"CYT", "N4",  -0.75f},
    {"CYT", "H41",  0.37f}, {"CYT", "H42",  0.33f}, {"CYT", "H5",   0.07f},
    {"THY", "O2",  -0.41f}, {"THY", "O4",  -0.45f}, {"THY", "P",    1.50f}, {"THY", "O1P", -0.78f},
    {"THY", "O2P", -0.78f}, {"THY", "O5'", -0.57f}, {"THY", "C5'", -0.08f}, {"THY", "H5'",  0.09f},
    {"THY", "H5''", 0.09f}, {"THY", "C4'",  0.16f}, {"THY", "H4'",  0.09f}, {"THY", "O4'", -0.50f},
    {"THY", "C1'",  0.16f}, {"THY", "H1'",  0.09f}, {"THY", "C4",   0.50f}, {"THY", "N3",  -0.46f},
    {"THY", "C2",   0.51f}, {"THY", "N1",  -0.34f}, {"THY", "C6",   0.17f}, {"THY", "C5",  -0.15f},
    {"THY", "C2'", -0.18f}, {"THY", "H2''", 0.09f}, {"THY", "H2'",  0.09f}, {"THY", "C3'",  0.01f},
    {"THY", "H3'",  0.09f}, {"THY", "O3'", -0.57f}, {"THY", "H6",   0.17f}, {"THY", "H3",   0.36f},
    {"THY", "C5M", -0.11f}, {"THY", "CM",  -0.11f}, {"THY", "H51",  0.07f}, {"THY", "H52",  0.07f},
    {"THY", "H53",  0.07f},
    {"URA", "O2",  -0.45f}, {"URA", "O4",  -0.48f}, {"URA", "P",    1.50f}, {"URA", "O1P", -0.78f},
    {"URA", "O2P", -0.78f}, {"URA", "O5'", -0.57f}, {"URA", "C5'", -0.08f}, {"URA", "H5'",  0.09f},
    {"URA", "H5''", 0.09f}, {"URA", "C4'",  0.16f}, {"URA", "H4'",  0.09f}, {"URA", "O4'", -0.50f},
    {"URA", "C1'",  0.16f}, {"URA", "H1'",  0.09f}, {"URA", "C4",   0.53f}, {"URA", "N3",  -0.46f},
    {"URA", "C2",   0.55f}, {"URA", "N1",  -0.34f}, {"URA", "C6",   0.20f}, {"URA", "C5",  -0.15f},
    {"URA", "C2'",  0.14f}, {"URA", "H2''", 0.09f}, {"URA", "O2'", -0.66f}, {"URA", "H2'",  0.43f},
    {"URA", "C3'",  0.01f}, {"URA", "H3'",  0.09f}, {"URA", "O3'", -0.57f}, {"URA", "H6",   0.14f},
    {"URA", "H5",   0.10f}, {"URA", "H3",   0.36f},
    {"DMPA", "O1",  -0.57f}, {"DMPA", "O2",  -0.57f}, {"DMPA", "O3",  -0.78f}, {"DMPA", "O4",  -0.78f},
    {"DMPA", "C2",  -0.17f}, {"DMPA", "H21",  0.09f}, {"DMPA", "H22",  0.09f}, {"DMPA", "P1",   1.50f},
    {"DMPA", "C1",  -0.17f}, {"DMPA", "H11",  0.09f}, {"DMPA", "H12",  0.09f}, {"DMPA", "H13",  0.09f},
    {"DMPA", "H23",  0.09f},
    {"MP_0", "O1",  -0.56f}, {"MP_0", "O2",  -0.63f}, {"MP_0", "O3",  -0.63f}, {"MP_0", "O4",  -0.64f},
    {"MP_0", "H2",   0.43f}, {"MP_0", "H3",   0.43f}, {"MP_0", "P1",   1.50f}, {"MP_0", "C1",  -0.17f},
    {"MP_0", "H11",  0.09f}, {"MP_0", "H12",  0.09f}, {"MP_0", "H13",  0.09f},
    {"MP_1", "O1",  -0.62f}, {"MP_1", "O2",  -0.68f}, {"MP_1", "O3",  -0.82f}, {"MP_1", "O4",  -0.82f},
    {"MP_1", "H2",   0.34f}, {"MP_1", "P1",   1.50f}, {"MP_1", "C1",  -0.17f}, {"MP_1", "H11",  0.09f},
    {"MP_1", "H12",  0.09f}, {"MP_1", "H13",  0.09f},
    {"MP_2", "O1",  -0.40f}, {"MP_2", "O2",  -0.90f}, {"MP_2", "O3",  -0.90f}, {"MP_2", "O4",  -0.90f},
    {"MP_2", "P1",   1.10f}, {"MP_2", "C1",  -0.27f}, {"MP_2", "H11",  0.09f}, {"MP_2", "H12",  0.09f},
    {"MP_2", "H13",  0.09f},
    {"TIP3", "H1",  0.417f}, {"TIP3", "H2",  0.417f}, {"TIP3", "OH2", -0.834f},
    {"SOD", "SOD",  1.00f},
    {"MG", "MG",   2.00f},
    {"RIBT", "C2'",  0.14f}, {"RIBT", "H2''", 0.09f}, {"RIBT", "O2'", -0.66f}, {"RIBT", "H2'",  0.43f},
    {"RIBT", "C3'",  0.14f}, {"RIBT", "H3'",  0.09f}, {"RIBT", "O3'", -0.66f}, {"RIBT", "H3T",  0.43f},
    {"DEOT", "C2'", -0.18f}, {"DEOT", "H2''", 0.09f}, {"DEOT", "H2'",  0.09f}, {"DEOT", "C3'",  0.14f},
    {"DEOT", "H3'",  0.09f}, {"DEOT", "O3'", -0.66f}, {"DEOT", "H3T",  0.43f},
    {"NTER", "N",   -0.30f}, {"NTER", "CA",   0.21f}, {"NTER", "HA",   0.10f}, {"NTER", "HT1",  0.33f},
    {"NTER", "HT2",  0.33f}, {"NTER", "HT3",  0.33f},
    {"NTER_GLY", "N",   -0.30f}, {"NTER_GLY", "CA",   0.13f}, {"NTER_GLY", "HA1",  0.09f}, {"NTER_GLY", "HA2",  0.09f},
    {"NTER_GLY", "HT1",  0.33f}, {"NTER_GLY", "HT2",  0.33f}, {"NTER_GLY", "HT3",  0.33f},
    {"NTER_PRO", "N",   -0.07f}, {"NTER_PRO", "CA",   0.16f}, {"NTER_PRO", "HA",   0.09f}, {"NTER_PRO", "CD",   0.16f},
    {"NTER_PRO", "HD1",  0.09f}, {"NTER_PRO", "HD2",  0.09f}, {"NTER_PRO", "HN1",  0.24f}, {"NTER_PRO", "HN2",  0.24f},
    {"CTER", "C",    0.34f}, {"CTER", "O",   -0.67f}, {"CTER", "OT1", -0.67f}, {"CTER", "OT2", -0.67f},
    {"CTER", "OXT", -0.67f},
};

// CHARMM22, pH at most 4: what differs from the table above, and is looked up before it. Side chains: the
// patches ASPP and GLUP and the residue HSP of the same topology. The chain end is CTER with half a proton's
// charge on each oxygen.
constexpr ChargeRow charmm22AcidRows[] = {
    {"ASP", "N",   -0.47f}, {"ASP", "HN",   0.31f}, {"ASP", "H",    0.31f}, {"ASP", "CA",   0.07f},
    {"ASP", "HA",   0.09f}, {"ASP", "CB",  -0.21f}, {"ASP", "HB1",  0.09f}, {"ASP", "HB2",  0.09f},
    {"ASP", "C",    0.51f}, {"ASP", "O",   -0.51f}, {"ASP", "CG",   0.75f}, {"ASP", "HD2",  0.44f},
    {"ASP", "OD1", -0.55f}, {"ASP", "OD2", -0.61f},
    {"GLU", "N",   -0.47f}, {"GLU", "HN",   0.31f}, {"GLU", "H",    0.31f}, {"GLU", "CA",   0.07f},
    {"GLU", "HA",   0.09f}, {"GLU", "CB",  -0.18f}, {"GLU", "HB1",  0.09f}, {"GLU", "HB2",  0.09f},
    {"GLU", "C",    0.51f}, {"GLU", "O",   -0.51f}, {"GLU", "CG",  -0.21f}, {"GLU", "HG1",  0.09f},
    {"GLU", "HG2",  0.09f}, {"GLU", "CD",   0.75f}, {"GLU", "OE1", -0.55f}, {"GLU", "OE2", -0.61f},
    {"GLU", "HE2",  0.44f},
    {"HSD", "N",   -0.47f}, {"HSD", "HN",   0.31f}, {"HSD", "H",    0.31f}, {"HSD", "CA",   0.07f},
    {"HSD", "HA",   0.09f}, {"HSD", "CB",  -0.05f}, {"HSD", "HB1",  0.09f}, {"HSD", "HB2",  0.09f},
    {"HSD", "C",    0.51f}, {"HSD", "O",   -0.51f}, {"HSD", "CG",   0.19f}, {"HSD", "HD1",  0.44f},
    {"HSD", "HD2",  0.13f}, {"HSD", "NE2", -0.51f}, {"HSD", "ND1", -0.51f}, {"HSD", "CD2",  0.19f},
    {"HSD", "CE1",  0.32f}, {"HSD", "HE1",  0.18f}, {"HSD", "HE2",  0.44f},
    {"HSE", "N",   -0.47f}, {"HSE", "HN",   0.31f}, {"HSE", "H",    0.31f}, {"HSE", "CA",   0.07f},
    {"HSE", "HA",   0.09f}, {"HSE", "CB",  -0.05f}, {"HSE", "HB1",  0.09f}, {"HSE", "HB2",  0.09f},
    {"HSE", "C",    0.51f}, {"HSE", "O",   -0.51f}, {"HSE", "CG",   0.19f}, {"HSE", "HD1",  0.44f},
    {"HSE", "HD2",  0.13f}, {"HSE", "NE2", -0.51f}, {"HSE", "ND1", -0.51f}, {"HSE", "CD2",  0.19f},
    {"HSE", "CE1",  0.32f}, {"HSE", "HE1",  0.18f}, {"HSE", "HE2",  0.44f},
    {"HIS", "N",   -0.47f}, {"HIS", "HN",   0.31f}, {"HIS", "H",    0.31f}, {"HIS", "CA",   0.07f},
    {"HIS", "HA",   0.09f}, {"HIS", "CB",  -0.05f}, {"HIS", "HB1",  0.09f}, {"HIS", "HB2",  0.09f},
    {"HIS", "C",    0.51f}, {"HIS", "O",   -0.51f}, {"HIS", "CG",   0.19f}, {"HIS", "HD1",  0.44f},
    {"HIS", "HD2",  0.13f}, {"HIS", "NE2", -0.51f}, {"HIS", "ND1", -0.51f}, {"HIS", "CD2",  0.19f},
    {"HIS", "CE1",  0.32f}, {"HIS", "HE1",  0.18f}, {"HIS", "HE2",  0.44f},
    {"CTER", "C",    0.34f}, {"CTER", "O",   -0.17f}, {"CTER", "OT1", -0.17f}, {"CTER", "OT2", -0.17f},
    {"CTER", "OXT", -0.17f},
};

// clang-format on

void appendResidues(ChargeTable &table, std::span<const ChargeRow> rows)
{
    while (!rows.empty()) {
        const auto next = std::ranges::find_if(
            rows, [&](const ChargeRow &row) { return row.residue != rows.front().residue; });
        const auto count = static_cast<std::size_t>(next - rows.begin());
        table.push_back(rows.first(count));
        rows = rows.subspan(count);
    }
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
    ChargeTable table;
    if (id == ChargeTableID::charmm19) {
        appendResidues(table, charmm19Rows);
        return table;
    }
    if (id == ChargeTableID::charmm22Acid)
        appendResidues(table, charmm22AcidRows);
    appendResidues(table, charmm22Rows);
    return table;
}

std::span<const ChargeRow> findRows(const ChargeTable &table, std::string_view residue)
{
    const auto rows = std::ranges::find(table, residue, [](const auto &run) { return run.front().residue; });
    return rows == table.end() ? std::span<const ChargeRow>() : *rows;
}

const ChargeRow *findRow(std::span<const ChargeRow> rows, std::string_view atom)
{
    const auto row = std::ranges::find(rows, atom, &ChargeRow::atom);
    return row == rows.end() ? nullptr : &*row;
}

} // namespace trelm
