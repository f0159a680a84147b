// Arithmetic of two coupling tables, row by row.
#pragma once

#include "couplings/dipolar.h"
#include "ground/trelm.h"

#include <string>

namespace trelm {

/// What two couplings (or two values of an order matrix) become: opCode 1 the sum c1 a + c2 b, 2 the
/// difference, 3 the product, 4 the quotient, 5 the greater one, judged before scaling; any other 0.
float addDC(int opCode, float c1, float c2, float d1, float d2);

/// Gives each row of the first table that has a value the combination with the row of the second that has the
/// same residues and names, as its calculated coupling; of several such rows the last counts. Rows without a
/// partner become invalid. Returns the number of valid rows that were combined.
int adjustDC(int opCode, float c1, float c2, DTable *dTab1, const DTable *dTab2);

/// Reads two tables, chooses rows of the first by window and atom names, and writes it with the combined
/// couplings in place of the calculated ones. Returns 0, or non-zero after a message: a table that cannot be
/// read, no memory, an output that cannot be written to its end.
int analyzeDC(const std::string &inD1Name, const std::string &inD2Name, TrelmInfo *trelmInfo, DcInfo *dcInfo,
              const std::string &atomNameS1, const std::string &atomNameS2, const std::string &outName);

} // namespace trelm
