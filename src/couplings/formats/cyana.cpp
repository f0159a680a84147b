// CYANA: rows of two atoms with the orientations declared before them, or, in the old form, of one atom.
#include "couplings/formats/forms.h"
#include "couplings/formats/row_lines.h"
#include "couplings/formats/written_rows.h"
#include "support/text/text.h"
#include "support/text/token.h"

#include <algorithm>
#include <vector>

namespace trelm {
namespace {

struct CyanaFile {
    RowLines lines;
    Archive &archive;
    std::vector<std::string_view> words = {}; ///< of the line at hand
    std::size_t firstCount = 0;               ///< words of the first row
    bool hasOrientations = false;
};

constexpr std::size_t atomWords = 3;          ///< residue, its name, atom
constexpr std::size_t mostOld = 3 + 3;        ///< words of the old form: atom, coupling, error, weight
constexpr std::size_t mostNew = 2 * 3 + 5;    ///< two atoms, the same, orientation and scale
constexpr std::string_view noResName = "UNK"; ///< a residue whose name is not known: the form has no blank

Status failAtRow(const CyanaFile &at, const char *why)
{
    return failAt(at.lines.file, at.lines.number, at.lines.messages, "%s", why);
}

/// Number, magnitude, rhombicity and the residue of the axes. A magnitude of 0 is not known.
Status readOrientation(CyanaFile &at)
{
    constexpr std::size_t count = 4;
    StatedTensor tensor;
    if (at.words.size() != count || !isInteger(at.words[0]) || !readNumber(at.words[1], tensor.da) ||
        !readNumber(at.words[2], tensor.rhombicity))
        return failAtRow(at, "an orientation has a number, a magnitude, a rhombicity and a residue");
    if (std::ranges::find(at.archive.media, at.words[0], &Medium::name) != at.archive.media.end())
        return failAtRow(at, "the orientation is declared twice");
    const std::size_t place = mediumOf(at.archive, at.words[0]);
    if (tensor.da != 0.0)
        at.archive.media[place].tensor = tensor;
    at.hasOrientations = true;
    return Status::ok;
}

bool readCyanaAtom(std::span<const std::string_view> words, NamedAtom &atom)
{
    return readResidue(words[0], atom) && readName(words[1] == noResName ? "" : words[1], atom.resName) &&
           readName(words[2], atom.atomName);
}

/// The heavy atom that carries a hydrogen of the backbone; empty for any other.
std::string_view carrierOf(const Name &atomName)
{
    if (atomName == "H" || atomName == "HN")
        return "N";
    return atomName.view().starts_with("HA") || atomName == "QA" ? "CA" : "";
}

/// The numbers behind the atoms: coupling, error, weight.
Status readCyanaNumbers(const CyanaFile &at, std::size_t place, ArchiveRow &row)
{
    const auto words = std::span(at.words).subspan(place);
    return readNumbers(at.lines.file, row.line, words, row, at.lines.messages);
}

/// Two atoms, numbers, orientation and perhaps a scale. A file without orientations may have less behind the
/// coupling.
Status readTwoAtoms(const CyanaFile &at, ArchiveRow &row)
{
    constexpr std::size_t place = 2 * atomWords + 3; // of the orientation
    if (!readCyanaAtom(std::span(at.words).subspan(atomWords), row.j))
        return failAtRow(at, "the second atom is no residue number, residue name and atom name");
    const std::string_view orientation = at.words.size() > place ? at.words[place] : "";
    const auto known = std::ranges::find(at.archive.media, orientation, &Medium::name);
    if (known == at.archive.media.end() && (at.hasOrientations || !orientation.empty()))
        return failAt(at.lines.file, row.line, at.lines.messages, "the orientation %s was not declared",
                      orientation.empty() ? "(none)" : shownWord(orientation).c_str());
    row.medium = mediumOf(at.archive, orientation);
    if (at.words.size() == mostNew && !readNumber(at.words.back(), row.scale))
        return failAtRow(at, "the scale is no number");
    return readCyanaNumbers(at, 2 * atomWords, row);
}

/// The old form. The other atom is the one that carries the hydrogen.
Status readOneAtom(const CyanaFile &at, ArchiveRow &row)
{
    row.j = row.i;
    row.j.atomName = Name::of(carrierOf(row.i.atomName));
    row.medium = mediumOf(at.archive, "");
    return readCyanaNumbers(at, atomWords, row);
}

Status readCyanaRow(CyanaFile &at)
{
    ArchiveRow row = {.line = at.lines.number};
    const std::size_t count = at.words.size();
    if (at.firstCount == 0)
        at.firstCount = count;
    // A row that is cut may look like one of the other form.
    const bool isOld = at.firstCount <= mostOld;
    if (count <= atomWords || count < at.firstCount || count > (isOld ? mostOld : mostNew))
        return failAt(at.lines.file, row.line, at.lines.messages, "a row of %zu words, the first one has %zu",
                      count, at.firstCount);
    if (!readCyanaAtom(at.words, row.i))
        return failAtRow(at, "the atom is no residue number, residue name and atom name");
    if ((isOld ? readOneAtom(at, row) : readTwoAtoms(at, row)) != Status::ok)
        return Status::failed;
    if (row.j.atomName.empty())
        at.archive.leftOut.push_back({row.line, pairText(row.i, row.j), "its heavy atom is not known"});
    else
        addRow(at.archive, row);
    return Status::ok;
}

// ---- the way out ----

/// Groups of hydrogens are pseudo-atoms: HB# is QB, and HD* of leucine, where it means both methyls, QQD.
std::string cyanaName(const NamedAtom &atom)
{
    const std::string_view name = atom.atomName.view();
    if (name.size() < 3 || name[0] != 'H' || (name.back() != '#' && name.back() != '*'))
        return std::string(name);
    const bool hasTwoMethyls =
        name.size() == 3 && name.back() == '*' &&
        ((atom.resName == "VAL" && name[1] == 'G') || (atom.resName == "LEU" && name[1] == 'D'));
    return std::string(hasTwoMethyls ? "QQ" : "Q").append(name.substr(1, name.size() - 2));
}

void appendCyanaAtom(std::string &text, const NamedAtom &atom)
{
    appendRight(text, residueText(atom), 6);
    text += "  ";
    appendLeft(text, nameOr(atom.resName, noResName), 4);
    text += ' ';
    appendLeft(text, cyanaName(atom), 5);
}

int lastResidue(std::span<const ArchiveRow> rows)
{
    int last = 0;
    for (const ArchiveRow &row : rows)
        last = std::max({last, row.i.resID, row.j.resID});
    return last;
}

} // namespace

Status readCyana(const ArchiveText &file, Archive &archive, Messages &messages)
{
    CyanaFile at = {{file, "#!", messages}, archive};
    while (nextLine(at.lines)) {
        splitTokens(at.lines.line, at.words, mostNew + 1);
        const bool isOrientation = at.words.size() > 1 && isOneNumber(at.words[1]);
        if ((isOrientation ? readOrientation(at) : readCyanaRow(at)) != Status::ok)
            return Status::failed;
    }
    return at.lines.status;
}

void writeCyana(const TableOut &table, std::string &text)
{
    constexpr int axesResidue = 900; // of pseudo-atoms behind the molecule
    const StatedTensor tensor = table.tensor.value_or(StatedTensor{});
    const std::vector<ArchiveRow> rows = writtenRows(table);
    text += "# Orientation  Magnitude  Rhombicity  ORI residue number\n       1 ";
    appendExact(text, tensor.da, 14, 3);
    appendExact(text, tensor.rhombicity, 12, 3);
    appendf(text, " %13d\n#  First atom      Second atom           RDC   Error  Weight Orientation\n",
            std::max(axesResidue, lastResidue(rows) + 1));
    for (const ArchiveRow &row : rows) {
        appendCyanaAtom(text, row.i);
        text += "    ";
        appendCyanaAtom(text, row.j);
        appendExact(text, row.value, 9, 3);
        text += ' ';
        appendExact(text, row.error.value_or(0.0), 7, 3);
        text += "    1.000   1\n";
    }
}

} // namespace trelm
