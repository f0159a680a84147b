// NMR-STAR and NEF: couplings stand in loops of a few categories, which differ in their tags alone.
#include "support/text/star.h"
#include "couplings/formats/forms.h"
#include "support/text/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <unordered_map>

namespace trelm {
namespace {

/// Tags of a field, in the order in which they are looked at. In those of one atom # stands for 1 or 2 ("one"
/// or "two" in old files).
using Tags = std::array<std::string_view, 4>;

/// Columns that name an atom. Both atoms of a row come from one set: archive files have the same pair in
/// several sets, and in another order.
struct AtomTags {
    Tags chain, chainNumber, residue, icode, resName, atom;
};

constexpr std::size_t mostSets = 3;

/// A category of couplings.
struct Category {
    std::string_view prefix; ///< of all its tags
    std::array<AtomTags, mostSets> sets;
    std::size_t labelSet; ///< the set of label numbers
    Tags value, error, low, high, weight, scale, id, combination;
};

constexpr AtomTags authorTags = {{"Auth_asym_ID_#", "PDB_strand_ID_#", "Auth_entity_assembly_ID_#"},
                                 {"Entity_assembly_ID_#"},
                                 {"Auth_seq_ID_#"},
                                 {"PDB_ins_code_#"},
                                 {"Auth_comp_ID_#", "PDB_residue_name_#"},
                                 {"Auth_atom_ID_#"}};
constexpr AtomTags pdbTags = {{"PDB_strand_ID_#", "Auth_asym_ID_#"},
                              {"Entity_assembly_ID_#"},
                              {"PDB_residue_no_#"},
                              {"PDB_ins_code_#"},
                              {"PDB_residue_name_#", "Auth_comp_ID_#"},
                              {"PDB_atom_name_#"}};
constexpr AtomTags labelTags = {
    {}, {"Entity_assembly_ID_#"}, {"Comp_index_ID_#", "Seq_ID_#"}, {}, {"Comp_ID_#"}, {"Atom_ID_#"}};
constexpr AtomTags nefTags = {
    {"chain_code_#"}, {}, {"sequence_code_#"}, {}, {"residue_name_#", "residue_type_#"}, {"atom_name_#"}};
constexpr AtomTags oldTags = {{"Atom_#_mol_system_component_name"},
                              {},
                              {"Atom_#_residue_seq_code"},
                              {},
                              {"Atom_#_residue_label"},
                              {"Atom_#_atom_name"}};

constexpr Category categories[] = {
    {"_nef_rdc_restraint.",
     {nefTags},
     0,
     {"target_value"},
     {"target_value_uncertainty"},
     {"lower_limit"},
     {"upper_limit"},
     {"weight"},
     {"scale"},
     {"restraint_id"},
     {"restraint_combination_id"}},
    {"_RDC_constraint.",
     {authorTags, pdbTags, labelTags},
     2,
     {"Target_value", "RDC_val"},
     {"Target_value_uncertainty", "RDC_val_err"},
     {"RDC_lower_bound"},
     {"RDC_upper_bound"},
     {"Weight"},
     {"RDC_val_scale_factor"},
     {"ID"},
     {"Combination_ID"}},
    {"_RDC.", {authorTags, labelTags}, 1, {"Val"}, {"Val_err"}, {"Val_min"}, {"Val_max"}, {}, {}, {"ID"}, {}},
    {"_", // files of version 2.1, whose tags have no category
     {oldTags},
     0,
     {"Residual_dipolar_coupling_value"},
     {"Residual_dipolar_coupling_value_error", "Residual_dipolar_coupling_error"},
     {"Residual_dipolar_coupling_min_value"},
     {"Residual_dipolar_coupling_max_value"},
     {},
     {},
     {"Residual_dipolar_coupling_ID"},
     {}},
};

/// The items of a frame that state its tensor.
constexpr std::string_view magnitudeTags[] = {"_nef_rdc_restraint_list.tensor_magnitude",
                                              "_RDC_constraint_list.Tensor_magnitude",
                                              "_RDC_list.Tensor_magnitude"};
constexpr std::string_view rhombicityTags[] = {"_nef_rdc_restraint_list.tensor_rhombicity",
                                               "_RDC_constraint_list.Tensor_rhombicity",
                                               "_RDC_list.Tensor_rhombicity"};

using Columns = std::vector<std::size_t>; ///< of a loop, those that a field is taken from

struct AtomColumns {
    Columns chain, chainNumber, residue, icode, resName, atom;
};

/// Where the fields of a loop stand.
struct LoopColumns {
    std::vector<std::array<AtomColumns, 2>> sets; ///< in the order in which they are tried
    Columns value, error, low, high, weight, scale, id, combination;
};

/// A file at work.
struct StarFile {
    const ArchiveText &file;
    StarReader reader;
    Archive &archive;
    Messages &messages;
    std::string_view frame = {};                              ///< or block, which its couplings stand in
    std::optional<std::size_t> medium = {};                   ///< of the frame, once it has couplings
    std::unordered_map<std::string, std::size_t> frames = {}; ///< with couplings, by name
    std::optional<double> da = {}, rhombicity = {};           ///< that the frame states
};

bool isOneOf(std::string_view tag, std::span<const std::string_view> tags)
{
    return std::ranges::any_of(tags, [tag](std::string_view name) { return equalNoCase(tag, name); });
}

// ---- columns ----

/// A tag of an atom with its number.
std::string numbered(std::string_view tag, std::size_t atom, bool isOld)
{
    constexpr std::string_view numbers[] = {"1", "2"}, words[] = {"one", "two"};
    std::string text(tag);
    if (const std::size_t place = text.find('#'); place != std::string::npos)
        text.replace(place, 1, isOld ? words[atom] : numbers[atom]);
    return text;
}

Columns columnsOf(std::span<const std::string_view> loopTags, const Category &category, const Tags &tags,
                  std::size_t atom = 0)
{
    Columns columns;
    for (const std::string_view tag : tags) {
        const std::string name =
            std::string(category.prefix) + numbered(tag, atom, category.prefix.size() == 1);
        const auto place = std::ranges::find_if(
            loopTags, [&](std::string_view loopTag) { return equalNoCase(loopTag, name); });
        if (!tag.empty() && place != loopTags.end())
            columns.push_back(static_cast<std::size_t>(place - loopTags.begin()));
    }
    return columns;
}

AtomColumns atomColumns(std::span<const std::string_view> loopTags, const Category &category,
                        const AtomTags &tags, std::size_t atom)
{
    const auto columns = [&](const Tags &field) { return columnsOf(loopTags, category, field, atom); };
    return {columns(tags.chain), columns(tags.chainNumber), columns(tags.residue),
            columns(tags.icode), columns(tags.resName),     columns(tags.atom)};
}

LoopColumns loopColumns(std::span<const std::string_view> loopTags, const Category &category, bool useLabels)
{
    const auto columns = [&](const Tags &field) { return columnsOf(loopTags, category, field); };
    LoopColumns found = {{},
                         columns(category.value),
                         columns(category.error),
                         columns(category.low),
                         columns(category.high),
                         columns(category.weight),
                         columns(category.scale),
                         columns(category.id),
                         columns(category.combination)};
    for (const AtomTags &set : category.sets)
        if (!set.atom[0].empty())
            found.sets.push_back(
                {atomColumns(loopTags, category, set, 0), atomColumns(loopTags, category, set, 1)});
    if (useLabels)
        std::rotate(found.sets.begin(), found.sets.begin() + static_cast<std::ptrdiff_t>(category.labelSet),
                    found.sets.end());
    return found;
}

/// The category of a loop by its first tag, or that of old files by the tag of its values; null for others.
const Category *categoryOf(std::span<const std::string_view> loopTags)
{
    for (const Category &category : categories) {
        const bool isOld = category.prefix.size() == 1;
        const bool fits = isOld ? !columnsOf(loopTags, category, category.value).empty()
                                : equalNoCase(loopTags[0].substr(0, category.prefix.size()), category.prefix);
        if (fits)
            return &category;
    }
    return nullptr;
}

// ---- rows ----

using Row = std::span<const StarValue>;

/// The first value of a field that is there; empty if none is.
std::string_view textOf(Row row, const Columns &columns)
{
    for (const std::size_t column : columns)
        if (!row[column].isMissing())
            return row[column].text;
    return {};
}

/// Fails after a message on a text that is no number; a value that is missing is none.
Status readField(const StarFile &star, const Columns &columns, std::optional<double> &value)
{
    const std::string_view text = textOf(star.reader.row(), columns);
    double number = 0.0;
    value.reset();
    if (text.empty())
        return Status::ok;
    if (!readNumber(text, number))
        return failAt(star.file, star.reader.line(), star.messages, "%.*s is no number",
                      static_cast<int>(std::min(text.size(), text.find_first_of("\r\n"))), text.data());
    value = number;
    return Status::ok;
}

/// NMR-STAR numbers the chains: 1 is A.
std::string chainOf(std::string_view word)
{
    constexpr int letters = 26;
    int number = 0;
    const auto [end, status] = std::from_chars(word.data(), word.data() + word.size(), number);
    if (status != std::errc{} || end != word.data() + word.size() || number < 1 || number > letters)
        return std::string(word);
    return {static_cast<char>('A' + number - 1)};
}

bool readAtom(Row row, const AtomColumns &columns, NamedAtom &atom)
{
    const std::string_view residue = textOf(row, columns.residue), name = textOf(row, columns.atom);
    if (residue.empty() || name.empty() || !readResidue(residue, atom))
        return false;
    const std::string_view chain = textOf(row, columns.chain), icode = textOf(row, columns.icode);
    if (!icode.empty())
        atom.icode = icode[0];
    return icode.size() <= 1 && readName(name, atom.atomName) &&
           readName(textOf(row, columns.resName), atom.resName) &&
           readName(chain.empty() ? chainOf(textOf(row, columns.chainNumber)) : std::string(chain),
                    atom.chain);
}

/// Both atoms from the first set that names them.
bool readAtoms(Row row, const LoopColumns &columns, ArchiveRow &into)
{
    return std::ranges::any_of(columns.sets, [&](const std::array<AtomColumns, 2> &set) {
        into.i = into.j = {};
        return readAtom(row, set[0], into.i) && readAtom(row, set[1], into.j);
    });
}

/// The atoms of a row that cannot be read, as they stand there.
std::string rawPair(Row row, const LoopColumns &columns)
{
    std::string text;
    for (std::size_t atom = 0; atom < 2 && !columns.sets.empty(); ++atom) {
        text += atom == 0 ? "" : " -";
        for (const Columns *field : {&columns.sets[0][atom].chain, &columns.sets[0][atom].residue,
                                     &columns.sets[0][atom].resName, &columns.sets[0][atom].atom}) {
            const std::string_view word = textOf(row, *field);
            text.append(text.empty() || word.empty() ? "" : " ").append(word);
        }
    }
    return text;
}

/// Value, error and weight. A value or error that is no number is a failure.
Status readValues(const StarFile &star, const LoopColumns &columns, ArchiveRow &row, bool &hasValue)
{
    std::optional<double> value, error, low, high, weight, scale;
    const std::pair<const Columns *, std::optional<double> *> fields[] = {
        {&columns.value, &value}, {&columns.error, &error},   {&columns.low, &low},
        {&columns.high, &high},   {&columns.weight, &weight}, {&columns.scale, &scale}};
    for (const auto &[field, into] : fields)
        if (readField(star, *field, *into) != Status::ok)
            return Status::failed;
    if (!error && low && high)
        error = (*high - *low) / 2.0;
    if (low && high && *low > *high)
        return failAt(star.file, star.reader.line(), star.messages, "the lower limit is above the upper one");
    if (weight.value_or(1.0) < 0.0 || error.value_or(1.0) < 0.0)
        return failAt(star.file, star.reader.line(), star.messages, "a negative error or weight");
    hasValue = value.has_value();
    row.value = value.value_or(0.0);
    const bool hasError = error.value_or(0.0) > 0.0 && std::isfinite(*error); // 0 is no error
    row.error = hasError ? error : std::nullopt;
    row.weight = weight.value_or(1.0);
    row.scale = scale.value_or(1.0);
    return Status::ok;
}

using RowIds = std::vector<std::pair<std::string_view, std::size_t>>; ///< with the place of their row

/// Rows of one restraint mean one of their pairs, those of one combination their pairs together.
void markAlternatives(RowIds &ids, Archive &archive)
{
    std::ranges::sort(ids);
    for (auto first = ids.begin(); first != ids.end();) {
        const auto last =
            std::find_if(first, ids.end(), [&](const auto &id) { return id.first != first->first; });
        for (auto id = first; id != last; ++id) {
            int &alternatives = archive.rows[id->second].alternatives;
            alternatives = std::max(alternatives, static_cast<int>(last - first));
        }
        first = last;
    }
}

/// The medium of the frame: its name without the category before it, which NEF asks for, and with a number if
/// a frame before has the same.
std::size_t frameMedium(StarFile &star)
{
    constexpr std::string_view nefPrefix = "nef_rdc_restraint_list_";
    if (star.medium)
        return *star.medium;
    std::string name(star.frame);
    if (name.starts_with(nefPrefix) && name.size() > nefPrefix.size())
        name.erase(0, nefPrefix.size());
    if (const std::size_t number = ++star.frames[name]; number > 1)
        name.append("#").append(std::to_string(number));
    star.medium = star.archive.media.size();
    star.archive.media.push_back({.name = name});
    return *star.medium;
}

Status readCouplingLoop(StarFile &star, const Category &category)
{
    const LoopColumns columns = loopColumns(star.reader.tags(), category, star.file.useLabels);
    if (columns.value.empty())
        return failAt(star.file, star.reader.line(), star.messages, "a loop of couplings without values");
    const std::size_t medium = frameMedium(star);
    RowIds ids, combinations;
    if (star.archive.rows
            .empty()) // a value takes two bytes at least; what is not used of the room costs nothing
        star.archive.rows.reserve(star.file.text.size() / (2 * star.reader.tags().size()));
    while (star.reader.nextRow()) {
        ArchiveRow row = {.medium = medium, .line = star.reader.line()};
        bool hasValue = false;
        if (readValues(star, columns, row, hasValue) != Status::ok)
            return Status::failed;
        if (!readAtoms(star.reader.row(), columns, row)) {
            star.archive.leftOut.push_back(
                {row.line, rawPair(star.reader.row(), columns), "names no two atoms"});
            continue;
        }
        if (!hasValue) {
            star.archive.leftOut.push_back({row.line, pairText(row.i, row.j), "no value"});
            continue;
        }
        if (const std::string_view id = textOf(star.reader.row(), columns.id); !id.empty())
            ids.emplace_back(id, star.archive.rows.size());
        if (const std::string_view id = textOf(star.reader.row(), columns.combination); !id.empty())
            combinations.emplace_back(id, star.archive.rows.size());
        addRow(star.archive, row);
    }
    markAlternatives(ids, star.archive);
    markAlternatives(combinations, star.archive);
    return Status::ok;
}

// ---- frames ----

/// A tensor that is stated belongs to the couplings of its frame.
void endFrame(StarFile &star)
{
    if (star.medium && star.da && star.rhombicity)
        star.archive.media[*star.medium].tensor = {*star.da, *star.rhombicity};
    star.medium.reset();
    star.da.reset();
    star.rhombicity.reset();
}

void readItem(StarFile &star)
{
    const bool isDa = isOneOf(star.reader.name(), magnitudeTags);
    double number = 0.0;
    if ((isDa || isOneOf(star.reader.name(), rhombicityTags)) && readNumber(star.reader.value().text, number))
        (isDa ? star.da : star.rhombicity) = number;
}

Status readEvent(StarFile &star, StarReader::Event event)
{
    switch (event) {
    case StarReader::Event::block:
    case StarReader::Event::frame:
        endFrame(star);
        star.frame = star.reader.name();
        return Status::ok;
    case StarReader::Event::frameEnd:
        endFrame(star);
        return Status::ok;
    case StarReader::Event::item:
        readItem(star);
        return Status::ok;
    case StarReader::Event::loop:
        if (const Category *category = categoryOf(star.reader.tags()); category != nullptr)
            return readCouplingLoop(star, *category);
        return Status::ok;
    default:
        return failAt(star.file, star.reader.line(), star.messages, "%s", star.reader.error().c_str());
    }
}

} // namespace

Status readStar(const ArchiveText &file, Archive &archive, Messages &messages)
{
    StarFile star = {file, StarReader(file.text), archive, messages};
    for (auto event = star.reader.next(); event != StarReader::Event::end; event = star.reader.next())
        if (readEvent(star, event) != Status::ok)
            return Status::failed;
    endFrame(star);
    return Status::ok;
}

} // namespace trelm
