// The coupling table of a run: read, with its window settled and its rows chosen.
#pragma once

#include "couplings/dipolar.h"
#include "couplings/formats/take.h"
#include "couplings/window.h"

#include <string>
#include <string_view>

namespace trelm {

/// Reads couplings of any form, and tells their number on the standard error stream. Fails with the reader's
/// status after "Error reading DC input".
Status readTable(const std::string &inDName, const CouplingReading &reading, DTable &dTab,
                 Messages &messages);

/// A window with what the command line left open filled from the table, and turned if it was reversed.
DcInfo settledWindow(DcInfo dcInfo, const DTable &dTab);

/// What is added to the residue numbers of the couplings to get those of the structure.
int residueOffset(const DcInfo &window);

/// Chooses rows by window and atom names. Returns the number of valid rows.
int chooseRows(DTable &dTab, const DcInfo &dcInfo, std::string_view atomNameS1, std::string_view atomNameS2);

/// The remark on standard output that `count` couplings were selected, or whatever was done to them.
void tellRows(int count, const char *deed, WindowKind excludeMode, Messages &messages);

} // namespace trelm
