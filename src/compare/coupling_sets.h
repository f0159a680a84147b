// Arithmetic of two coupling tables, row by row.
#pragma once

#include "compare/options.h"
#include "couplings/dipolar.h"

namespace trelm {

/// What two couplings become, Hz: opCode 1 the sum c1 a + c2 b, 2 the difference, 3 the product, 4 the
/// quotient, 5 the greater one, judged before scaling; any other 0.
float addDC(const ComparisonOptions &options, float d1, float d2);

constexpr int tooLarge = -1;

/// Gives each row of the first table that has a value the combination with the row of the second that has the
/// same residues and names, as its calculated coupling; of several such rows the last counts. Rows without a
/// partner become invalid. Returns the number of valid rows that were combined; 0, with nothing changed, if a
/// table is empty; `tooLarge` if a combination is no finite number, but for a quotient by 0.
int adjustDC(const ComparisonOptions &options, DTable &dTab1, const DTable &dTab2);

} // namespace trelm
