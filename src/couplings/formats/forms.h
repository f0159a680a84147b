// The readers and writers of coupling files, by form.
#pragma once

#include "couplings/dipolar.h"
#include "couplings/formats/archive.h"
#include "couplings/formats/detect.h"

#include <optional>
#include <string>

namespace trelm {

/// Reads all couplings of a file, of all its media, in its order. Fails after one line with file and line
/// number on what breaks the grammar of the form; what the form allows and the program cannot use is left
/// out and told in the record.
using ArchiveReader = Status (*)(const ArchiveText &file, Archive &archive, Messages &messages);

/// NMR-STAR (versions 3 and 2.1) and NEF, whose categories differ alone.
Status readStar(const ArchiveText &file, Archive &archive, Messages &messages);

/// Xplor and CNS: the residue of the axes is the medium; other restraints are counted as foreign.
Status readXplor(const ArchiveText &file, Archive &archive, Messages &messages);
/// CYANA, the form of two atoms with its orientations, and that of one.
Status readCyana(const ArchiveText &file, Archive &archive, Messages &messages);
/// The list with parentheses, and five columns.
Status readRosetta(const ArchiveText &file, Archive &archive, Messages &messages);
/// Separated values under a header line, and labels.
Status readColumns(const ArchiveText &file, Archive &archive, Messages &messages);

/// The reader of a form; null for a table, which has a reader of its own (couplings/dipolar.h).
ArchiveReader readerOf(CouplingForm form);

/// A table on its way out.
struct TableOut {
    const DTable &dTab; ///< names and numbers of the observed rows, values and errors of the calculated ones;
                        ///< rows that are not valid in both are left out
    std::string inName; ///< the table that was read
    std::optional<StatedTensor> tensor = {};
};

/// Appends the table in a form. What is written is read back without loss.
using ArchiveWriter = void (*)(const TableOut &table, std::string &text);

void writeStar(const TableOut &table, std::string &text);
void writeNef(const TableOut &table, std::string &text);
void writeCyana(const TableOut &table, std::string &text);       ///< the form of two atoms; it has no chains
void writeRosettaList(const TableOut &table, std::string &text); ///< the list with parentheses
void writeCsv(const TableOut &table, std::string &text);

} // namespace trelm
