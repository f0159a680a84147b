// A row for a residue that the table has none of.
#pragma once

#include "couplings/dipolar.h"
#include "ground/messages.h"

namespace trelm {

/// A row of the table as another residue would have it. The calculated record has no atoms where the
/// structure lacks them.
struct MovedRow {
    DInfo obs;
    DCalc calc;
};

/// Moves a row of the table to the peak `resID`: the same atoms of residues at the same distance from it.
MovedRow moveRow(const PDBInfo &pdbInfo, const DTable &dTab, int row, int resID, Messages &messages);

} // namespace trelm
