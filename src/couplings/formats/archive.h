// What a coupling file of another program holds, as it says it: the same record for every form.
#pragma once

#include "ground/messages.h"
#include "structure/pdb.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace trelm {

/// An atom as a file names it. A name that the form does not have is empty.
struct NamedAtom {
    int resID = 0;
    char icode = '\0'; ///< insertion code; 0: none
    Name resName, atomName;
    Name chain; ///< or segment, where the form has that

    [[nodiscard]] std::string_view code() const { return {&icode, icode == '\0' ? 0U : 1U}; }
};

/// One coupling.
struct ArchiveRow {
    NamedAtom i = {}, j = {};         ///< in the order of the file
    double value = 0.0;               ///< Hz, as written
    std::optional<double> error = {}; ///< Hz, half-width; nothing where the file has none
    double weight = 1.0;              ///< factor of the penalty, (value / error)^2; 0: not to be used
    double scale = 1.0;               ///< of the file, which the value is not multiplied by
    std::size_t medium = 0;           ///< place in Archive::media
    std::size_t line = 0;             ///< of the file, counted from 1
    bool isTurned = false;            ///< the atoms were exchanged after they were read
    int alternatives = 1; ///< rows or atoms of which one or all are meant: above 1 the pair is ambiguous
};

/// An alignment tensor that a file states. Its axes stay the other program's.
struct StatedTensor {
    double da = 0.0;         ///< Hz, of N-H
    double rhombicity = 0.0; ///< Dr / Da
};

/// What was measured together: a frame, an orientation, a residue of axes.
struct Medium {
    std::string name;
    std::size_t rows = 0;
    std::optional<StatedTensor> tensor = {};
};

/// A coupling that the reader had to leave out.
struct LeftOutRow {
    std::size_t line = 0;
    std::string pair;   ///< as the file has it
    std::string reason; ///< "no value"
};

/// Restraints that are no couplings, or frames with something else, by kind.
struct ForeignData {
    std::string kind; ///< "dihedral angle"
    std::size_t count = 0, firstLine = 0;
};

/// Where the rows of a table come from.
struct TableOrigin {
    std::string file;             ///< empty: the rows are those of this program's own form
    std::vector<ArchiveRow> rows; ///< one for each row of the table, the atoms in the order of the table
    std::optional<StatedTensor> tensor = {}; ///< that the file states, a report of this program too
};

struct Archive {
    std::vector<ArchiveRow> rows;
    std::vector<Medium> media; ///< in the order of the file; a form without media has one, of no name
    std::vector<LeftOutRow> leftOut;
    std::vector<ForeignData> foreign;
};

/// A file that is read: its text, and how messages name it.
struct ArchiveText {
    std::string_view text;
    std::string name;
    bool useLabels = false; ///< label numbers and names where the form has both, else the author's
};

/// The place of a medium of this name, which is added if it is new.
std::size_t mediumOf(Archive &archive, std::string_view name);

/// Adds a row and counts it for its medium, which must be there.
void addRow(Archive &archive, const ArchiveRow &row);

/// Counts foreign data of a kind.
void addForeign(Archive &archive, std::string_view kind, std::size_t line);

/// A pair as it is told: "A 52B GLY N - A 52B GLY H", without the parts that the file does not have.
std::string pairText(const NamedAtom &i, const NamedAtom &j);

/// A row of a table as messages name it: "2kzn.str, line 12: A 5 LYS N - A 5 LYS HN".
std::string placeText(const TableOrigin &origin, std::size_t row);

/// A whole word that is one finite decimal number; false for any other word, "nan" and "1.2.3" among them.
bool readNumber(std::string_view word, double &value);

/// A residue number, with an insertion code behind it ("52B") or none; false for any other word.
bool readResidue(std::string_view word, NamedAtom &atom);

/// A name of the file as a name; false if it is too long for one.
bool readName(std::string_view word, Name &name);

/// The one line of a reader that gives up, "trelm: 2kzn.str, line 7: ...". Returns Status::failed.
[[gnu::format(printf, 4, 5)]] Status failAt(const ArchiveText &file, std::size_t line, Messages &messages,
                                            const char *format, ...);

} // namespace trelm
