// Couplings as NMR-STAR (the `_RDC` loop of measured couplings) and as NEF.
#include "couplings/formats/forms.h"
#include "support/text/text.h"

#include <algorithm>
#include <charconv>
#include <functional>
#include <set>
#include <tuple>

namespace trelm {
namespace {

/// One coupling that goes out.
struct OutRow {
    const DInfo &obs;
    const DCalc &calc;
    std::string residueI, residueJ; ///< number and insertion code
};

/// An atom of it.
struct OutAtom {
    std::string_view chain, residue, resName;
    std::string name;
};

/// Methyl groups, whose pseudo-atoms begin with M.
constexpr std::string_view methyls[] = {"ALA HB#",  "VAL HG1#", "VAL HG2#", "LEU HD1#", "LEU HD2#",
                                        "ILE HG2#", "ILE HD1#", "THR HG2#", "MET HE#"};

/// A word as the grammar has it: quoted where it would not be read as it stands.
std::string starWord(std::string_view word)
{
    constexpr std::string_view special = "_#$'\";[]";
    if (word.empty())
        return ".";
    const bool isPlain = special.find(word[0]) == std::string_view::npos && word != "." && word != "?" &&
                         word.find('_') == std::string_view::npos && std::ranges::none_of(word, isSpace);
    const std::size_t marks = isPlain ? 0 : 1;
    const char mark = word.find('"') == std::string_view::npos ? '"' : '\'';
    return std::string(marks, mark).append(word).append(marks, mark);
}

/// The shortest decimal that is read as this number.
std::string shortest(float value)
{
    char text[32];
    return {text, std::to_chars(text, text + sizeof text, value).ptr};
}

std::string errorText(const OutRow &row)
{
    return row.calc.sigma > 0.0f ? shortest(row.calc.sigma) : ".";
}

std::string_view chainOr(const Name &chain, const Name &segment)
{
    return chain.empty() ? segment.view() : chain.view();
}

/// The archives know the amide hydrogen as H.
std::string amideName(std::string_view name)
{
    return std::string(name == "HN" ? "H" : name);
}

/// NEF has % for any number.
std::string nefName(std::string_view name, std::string_view)
{
    std::string text = amideName(name);
    std::ranges::replace(text, '#', '%');
    return text;
}

/// NMR-STAR has pseudo-atoms, no wildcards.
std::string starName(std::string_view name, std::string_view resName)
{
    if (name.size() < 3 || name[0] != 'H' || (name.back() != '#' && name.back() != '*'))
        return amideName(name);
    const std::string_view middle = name.substr(1, name.size() - 2);
    const std::string key = std::string(resName).append(" ").append(name);
    const bool isMethyl = std::ranges::find(methyls, key) != std::end(methyls);
    const std::size_t carbons = name.back() == '*' ? 2 : 1;
    return std::string(carbons, isMethyl ? 'M' : 'Q').append(middle);
}

using NameRule = std::string (*)(std::string_view name, std::string_view resName);

std::pair<OutAtom, OutAtom> atomsOf(const OutRow &row, NameRule rule)
{
    const RowNames &names = *row.obs.names;
    return {{chainOr(names.chainNameI, names.segNameI), row.residueI, names.resNameI.view(),
             rule(names.atomNameI.view(), names.resNameI.view())},
            {chainOr(names.chainNameJ, names.segNameJ), row.residueJ, names.resNameJ.view(),
             rule(names.atomNameJ.view(), names.resNameJ.view())}};
}

void forEachRow(const TableOut &table,
                const std::function<void(const OutRow &row, std::size_t number)> &visit)
{
    const auto observed = table.dTab.observed();
    const auto calculated = table.dTab.calculated();
    const std::vector<ArchiveRow> &from = table.dTab.origin.rows;
    std::size_t number = 0;
    for (std::size_t k = 0; k < observed.size(); ++k) {
        if (observed[k].valid == 0 || calculated[k].valid == 0)
            continue;
        const auto residue = [&](int resID, const NamedAtom ArchiveRow::*side) {
            return std::to_string(resID).append(k < from.size() ? (from[k].*side).code()
                                                                : std::string_view{});
        };
        visit({observed[k], calculated[k], residue(observed[k].resIDI, &ArchiveRow::i),
               residue(observed[k].resIDJ, &ArchiveRow::j)},
              ++number);
    }
}

void appendTags(std::string &text, std::string_view category, std::span<const std::string_view> tags)
{
    for (const std::string_view tag : tags)
        text.append("      ").append(category).append(".").append(tag).append("\n");
    text += "\n";
}

// ---- NMR-STAR ----

int isotopeOf(char letter)
{
    constexpr std::pair<char, int> isotopes[] = {{'H', 1},  {'D', 2},  {'C', 13},
                                                 {'N', 15}, {'F', 19}, {'P', 31}};
    const auto *found = std::ranges::find(isotopes, letter, &std::pair<char, int>::first);
    return found != std::end(isotopes) ? found->second : 1;
}

/// The nucleus of a name: the first letter; pseudo-atoms are hydrogens.
char nucleusLetter(std::string_view name)
{
    const std::size_t place = name.find_first_not_of("0123456789");
    const char letter = place == std::string_view::npos ? 'H' : name[place];
    return letter == 'Q' || letter == 'M' ? 'H' : letter;
}

/// Chains are numbered in the order in which they appear.
std::size_t chainNumber(std::vector<std::string> &chains, std::string_view chain)
{
    const auto known = std::ranges::find(chains, chain);
    const auto place = static_cast<std::size_t>(known - chains.begin());
    if (known == chains.end())
        chains.emplace_back(chain);
    return place + 1;
}

void appendStarAtom(std::string &text, const OutAtom &atom, std::size_t chain)
{
    const char letter = nucleusLetter(atom.name);
    const std::string number(atom.residue.substr(0, atom.residue.find_last_of("0123456789") + 1));
    appendf(text, " %zu %zu %s %s %s %s %c %d", chain, chain, number.c_str(), number.c_str(),
            starWord(atom.resName).c_str(), starWord(atom.name).c_str(), letter, isotopeOf(letter));
    appendf(text, " %s %s %s %s", starWord(atom.chain).c_str(), std::string(atom.residue).c_str(),
            starWord(atom.resName).c_str(), starWord(atom.name).c_str());
}

constexpr std::string_view writtenStarTags[] = {"ID",
                                                "RDC_code",
                                                "Entity_assembly_ID_1",
                                                "Entity_ID_1",
                                                "Comp_index_ID_1",
                                                "Seq_ID_1",
                                                "Comp_ID_1",
                                                "Atom_ID_1",
                                                "Atom_type_1",
                                                "Atom_isotope_number_1",
                                                "Auth_entity_assembly_ID_1",
                                                "Auth_seq_ID_1",
                                                "Auth_comp_ID_1",
                                                "Auth_atom_ID_1",
                                                "Entity_assembly_ID_2",
                                                "Entity_ID_2",
                                                "Comp_index_ID_2",
                                                "Seq_ID_2",
                                                "Comp_ID_2",
                                                "Atom_ID_2",
                                                "Atom_type_2",
                                                "Atom_isotope_number_2",
                                                "Auth_entity_assembly_ID_2",
                                                "Auth_seq_ID_2",
                                                "Auth_comp_ID_2",
                                                "Auth_atom_ID_2",
                                                "Val",
                                                "Val_err",
                                                "Entry_ID",
                                                "RDC_list_ID"};

// ---- NEF ----

constexpr std::string_view writtenNefTags[] = {"index",
                                               "restraint_id",
                                               "restraint_combination_id",
                                               "chain_code_1",
                                               "sequence_code_1",
                                               "residue_name_1",
                                               "atom_name_1",
                                               "chain_code_2",
                                               "sequence_code_2",
                                               "residue_name_2",
                                               "atom_name_2",
                                               "weight",
                                               "target_value",
                                               "target_value_uncertainty"};

constexpr std::string_view nefSequenceTags[] = {"index",   "chain_code",      "sequence_code", "residue_name",
                                                "linking", "residue_variant", "cis_peptide"};

/// The residues that the couplings name.
void appendSequence(const TableOut &table, std::string &text)
{
    std::set<std::tuple<std::string, int, std::string, std::string>> residues;
    forEachRow(table, [&](const OutRow &row, std::size_t) {
        const auto [i, j] = atomsOf(row, nefName);
        for (const auto &[atom, resID] : {std::pair(i, row.obs.resIDI), std::pair(j, row.obs.resIDJ)})
            residues.insert(
                {std::string(atom.chain), resID, std::string(atom.residue), std::string(atom.resName)});
    });
    text += "save_nef_molecular_system\n"
            "   _nef_molecular_system.sf_category   nef_molecular_system\n"
            "   _nef_molecular_system.sf_framecode  nef_molecular_system\n\n   loop_\n";
    appendTags(text, "_nef_sequence", nefSequenceTags);
    std::size_t number = 0;
    for (const auto &[chain, resID, residue, resName] : residues)
        appendf(text, "      %zu %s %s %s . . .\n", ++number, starWord(chain).c_str(), residue.c_str(),
                starWord(resName).c_str());
    text += "   stop_\nsave_\n\n";
}

void appendNefRow(std::string &text, const OutRow &row, std::size_t number)
{
    appendf(text, "      %zu %zu .", number, number);
    const auto [i, j] = atomsOf(row, nefName);
    for (const OutAtom &atom : {i, j})
        appendf(text, " %s %s %s %s", starWord(atom.chain).c_str(), std::string(atom.residue).c_str(),
                starWord(atom.resName).c_str(), starWord(atom.name).c_str());
    appendf(text, " 1 %s %s\n", shortest(row.calc.d).c_str(), errorText(row).c_str());
}

} // namespace

void writeStar(const TableOut &table, std::string &text)
{
    text += "data_trelm\n\nsave_RDC_list_1\n"
            "   _RDC_list.Sf_category   RDCs\n"
            "   _RDC_list.Sf_framecode  RDC_list_1\n"
            "   _RDC_list.Entry_ID      trelm\n"
            "   _RDC_list.ID            1\n\n   loop_\n";
    appendTags(text, "_RDC", writtenStarTags);
    std::vector<std::string> chains;
    forEachRow(table, [&](const OutRow &row, std::size_t number) {
        const auto [i, j] = atomsOf(row, starName);
        appendf(text, "      %zu %s", number, starWord("D" + i.name + j.name).c_str());
        for (const OutAtom &atom : {i, j})
            appendStarAtom(text, atom, chainNumber(chains, atom.chain));
        appendf(text, " %s %s trelm 1\n", shortest(row.calc.d).c_str(), errorText(row).c_str());
    });
    text += "   stop_\nsave_\n";
}

void writeNef(const TableOut &table, std::string &text)
{
    text += "data_trelm\n\nsave_nef_nmr_meta_data\n"
            "   _nef_nmr_meta_data.sf_category     nef_nmr_meta_data\n"
            "   _nef_nmr_meta_data.sf_framecode    nef_nmr_meta_data\n"
            "   _nef_nmr_meta_data.format_name     nmr_exchange_format\n"
            "   _nef_nmr_meta_data.format_version  1.1\n"
            "   _nef_nmr_meta_data.program_name    trelm\n"
            "   _nef_nmr_meta_data.program_version .\n"
            "   _nef_nmr_meta_data.creation_date   .\n"
            "   _nef_nmr_meta_data.uuid            .\nsave_\n\n";
    appendSequence(table, text);
    text += "save_nef_rdc_restraint_list_1\n"
            "   _nef_rdc_restraint_list.sf_category       nef_rdc_restraint_list\n"
            "   _nef_rdc_restraint_list.sf_framecode      nef_rdc_restraint_list_1\n"
            "   _nef_rdc_restraint_list.potential_type    undefined\n"
            "   _nef_rdc_restraint_list.restraint_origin  measured\n";
    if (table.tensor)
        appendf(text,
                "   _nef_rdc_restraint_list.tensor_magnitude  %g\n"
                "   _nef_rdc_restraint_list.tensor_rhombicity %g\n",
                table.tensor->da, table.tensor->rhombicity);
    text += "\n   loop_\n";
    appendTags(text, "_nef_rdc_restraint", writtenNefTags);
    forEachRow(table, [&](const OutRow &row, std::size_t number) { appendNefRow(text, row, number); });
    text += "   stop_\nsave_\n";
}

} // namespace trelm
