// The form of a coupling file, by what stands in it: names of files tell nothing.
#pragma once

#include <optional>
#include <string_view>

namespace trelm {

/// The forms of coupling files. `table` is this program's own, `rosetta` the list with parentheses and the
/// five columns, `csv` columns with a header line and labels ("14N-H -14.5 0.1").
enum class CouplingForm { table, star, nef, xplor, cyana, rosetta, csv };

/// The form of a text. What no other form is sure of is a table: its reader tells what is wrong.
CouplingForm detectForm(std::string_view text);

/// The form that an option names; nothing for a word that names none.
std::optional<CouplingForm> formOfWord(std::string_view word);

/// The word of a form.
const char *wordOfForm(CouplingForm form);

} // namespace trelm
