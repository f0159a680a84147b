// Couplings on their way into a file of another program.
#pragma once

#include "couplings/formats/forms.h"

#include <string>
#include <string_view>
#include <vector>

namespace trelm {

/// The rows that are written, as a reader of theirs will find them again. A segment stands for a chain that
/// has no name; an error of 0 is none.
std::vector<ArchiveRow> writtenRows(const TableOut &table);

/// Residue number and insertion code of an atom.
std::string residueText(const NamedAtom &atom);

/// A name, or what a form without blanks has for none.
std::string_view nameOr(const Name &name, std::string_view none);

/// Appends a number as "%*.*f", or with as many digits as it takes to read back the very same.
void appendExact(std::string &text, double value, std::size_t width, int decimals);

} // namespace trelm
