#include "structure/read_mmcif.h"

#include "structure/select.h"
#include "support/text/star.h"
#include "support/text/text.h"
#include "support/text/token.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <optional>

namespace trelm {
namespace {

constexpr std::string_view category = "_atom_site.";

/// What is read of an atom.
enum Field : std::size_t {
    group,
    serial,
    element,
    altLoc,
    insCode,
    coordX,
    coordY,
    coordZ,
    occupancy,
    tempFactor,
    charge,
    model,
    atomName,
    resName,
    chain,
    resNumber,
    fieldCount
};

/// Columns of a field: that of the author, where there are two, and that of the label.
struct FieldTags {
    std::string_view author, label;
};
constexpr std::array<FieldTags, fieldCount> fieldTags = {{
    {"group_PDB", ""},
    {"id", ""},
    {"type_symbol", ""},
    {"label_alt_id", ""},
    {"pdbx_PDB_ins_code", ""},
    {"Cartn_x", ""},
    {"Cartn_y", ""},
    {"Cartn_z", ""},
    {"occupancy", ""},
    {"B_iso_or_equiv", ""},
    {"pdbx_formal_charge", ""},
    {"pdbx_PDB_model_num", ""},
    {"auth_atom_id", "label_atom_id"},
    {"auth_comp_id", "label_comp_id"},
    {"auth_asym_id", "label_asym_id"},
    {"auth_seq_id", "label_seq_id"},
}};

/// Where the fields of the loop stand: the column to look at first, and the other one.
struct AtomSite {
    std::array<std::array<std::optional<std::size_t>, 2>, fieldCount> columns;
};

/// A file at work.
struct MmcifFile {
    const MmcifText &file;
    StarReader reader;
    AtomSite site = {};
    int modelNumber = 0; ///< of the row before
    bool hasRow = false;
};

Status failAtLine(const MmcifFile &mmcif, const char *why, Messages &messages)
{
    return messages.fail("trelm: %s, line %zu: %s.\n", mmcif.file.name, mmcif.reader.line(), why);
}

std::optional<std::size_t> columnOf(std::span<const std::string_view> tags, std::string_view name)
{
    const auto found = std::ranges::find_if(tags, [&](std::string_view tag) {
        return equalNoCase(tag.substr(std::min(tag.size(), category.size())), name);
    });
    if (name.empty() || found == tags.end())
        return std::nullopt;
    return static_cast<std::size_t>(found - tags.begin());
}

void findColumns(MmcifFile &mmcif)
{
    const bool useLabels = mmcif.file.useLabels;
    for (std::size_t field = 0; field < fieldCount; ++field) {
        const FieldTags &tags = fieldTags[field];
        mmcif.site.columns[field][useLabels ? 1 : 0] = columnOf(mmcif.reader.tags(), tags.author);
        mmcif.site.columns[field][useLabels ? 0 : 1] = columnOf(mmcif.reader.tags(), tags.label);
    }
}

/// The value of a field in the row at hand; empty where there is none.
std::string_view valueOf(const MmcifFile &mmcif, Field field)
{
    for (const std::optional<std::size_t> &column : mmcif.site.columns[field])
        if (column && !mmcif.reader.row()[*column].isMissing())
            return mmcif.reader.row()[*column].text;
    return {};
}

/// A number as the reader of PDB files has it: what stands at the start of the text, 0 if nothing does.
float numberOf(const MmcifFile &mmcif, Field field)
{
    return static_cast<float>(toDouble(valueOf(mmcif, field)));
}

bool readCoordinate(const MmcifFile &mmcif, Field field, float &value)
{
    const std::string_view word = valueOf(mmcif, field);
    value = static_cast<float>(toDouble(word));
    return isOneNumber(word) && std::isfinite(value);
}

/// "1+" and "2-", as PDB files have it; nothing for a neutral atom.
Name chargeName(std::string_view word)
{
    const int number = toInt(word);
    constexpr int most = 9;
    if (number == 0 || std::abs(number) > most)
        return {};
    const char text[] = {static_cast<char>('0' + std::abs(number)), number > 0 ? '+' : '-'};
    return Name::of({text, sizeof text});
}

bool isWanted(const MmcifFile &mmcif)
{
    const std::string_view word = valueOf(mmcif, group);
    return word.empty() || equalNoCase(word, "ATOM") ||
           (mmcif.file.takesHetatms && equalNoCase(word, "HETATM"));
}

void followModel(MmcifFile &mmcif, Models &models)
{
    const std::string_view word = valueOf(mmcif, model);
    const int number = toInt(word);
    if (!word.empty() && (!mmcif.hasRow || number != mmcif.modelNumber))
        models.begin(number);
    mmcif.modelNumber = number;
    mmcif.hasRow = true;
}

/// Names and number. Fails after a message on an atom without them.
Status readNames(const MmcifFile &mmcif, AtomInfo &atom, Messages &messages)
{
    const std::string_view number = valueOf(mmcif, resNumber);
    const std::string_view names[] = {valueOf(mmcif, atomName), valueOf(mmcif, resName),
                                      valueOf(mmcif, chain)};
    if (names[0].empty() || !isInteger(number))
        return failAtLine(mmcif, "an atom without a name or the number of its residue", messages);
    if (std::ranges::any_of(names, [](std::string_view name) {
            return name.size() > Name::capacity || std::ranges::any_of(name, isSpace);
        }))
        return failAtLine(mmcif, "a name is longer than 16 characters, or has white space in it", messages);
    atom.resID = toInt(number);
    atom.atomName = Name::of(names[0]);
    atom.resName = Name::of(names[1]);
    atom.chainID = Name::of(names[2]);
    atom.locID = Name::of(valueOf(mmcif, altLoc));
    atom.icode = Name::of(valueOf(mmcif, insCode));
    return Status::ok;
}

Status readNumbers(const MmcifFile &mmcif, AtomInfo &atom, Coord3D &at, Messages &messages)
{
    if (!readCoordinate(mmcif, coordX, at.x) || !readCoordinate(mmcif, coordY, at.y) ||
        !readCoordinate(mmcif, coordZ, at.z))
        return failAtLine(mmcif, "a coordinate is no finite number", messages);
    atom.atomID = toInt(valueOf(mmcif, serial));
    atom.occupancy = numberOf(mmcif, occupancy);
    atom.tempFactor = numberOf(mmcif, tempFactor);
    atom.element = Name::of(valueOf(mmcif, element));
    atom.chargeStr = chargeName(valueOf(mmcif, charge));
    return Status::ok;
}

Status readAtomSite(MmcifFile &mmcif, const PDBSelectInfo *sInfo, Models &models, PDBInfo &pdbInfo,
                    Messages &messages)
{
    findColumns(mmcif);
    while (mmcif.reader.nextRow()) {
        followModel(mmcif, models);
        if (!models.isOpen || !isWanted(mmcif))
            continue;
        AtomInfo atom;
        Coord3D at;
        if (readNames(mmcif, atom, messages) != Status::ok)
            return Status::failed;
        if (!pdbSelectTest(sInfo, atom))
            continue;
        if (readNumbers(mmcif, atom, at, messages) != Status::ok ||
            takeAtom(atom, at, models, pdbInfo, messages) != Status::ok)
            return Status::failed;
    }
    return Status::ok;
}

bool isAtomSite(std::span<const std::string_view> tags)
{
    return equalNoCase(tags[0].substr(0, category.size()), category);
}

} // namespace

bool isMmcif(std::string_view text)
{
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        const std::string_view word = firstWord(text.substr(0, end));
        if (!word.empty() && !word.starts_with('#'))
            return equalNoCase(word.substr(0, 5), "data_");
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    return false;
}

Status readMmcif(const MmcifText &file, const PDBSelectInfo *sInfo, Models &models, PDBInfo &pdbInfo,
                 Messages &messages)
{
    MmcifFile mmcif = {file, StarReader(file.text)};
    bool hasAtoms = false;
    for (auto event = mmcif.reader.next(); event != StarReader::Event::end; event = mmcif.reader.next()) {
        if (event == StarReader::Event::bad)
            return failAtLine(mmcif, mmcif.reader.error().c_str(), messages);
        if (event != StarReader::Event::loop || hasAtoms || !isAtomSite(mmcif.reader.tags()))
            continue;
        hasAtoms = true;
        if (readAtomSite(mmcif, sInfo, models, pdbInfo, messages) != Status::ok)
            return Status::failed;
    }
    return Status::ok;
}

} // namespace trelm
