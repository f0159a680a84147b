// A coupling table in the formats of other programs.
#pragma once

#include "ground/trelm.h"

#include <string>

namespace trelm {

/// Reads a table, chooses rows by window and atom names, adds noise (dcNoise) and multiplies by the weights
/// (normDc) if asked to, and writes it in the format of outFormat: 0 and 1 restraints, 2 a listing by
/// residue, 3 and 5 plain rows, 4 the table that readDC reads. Couplings in Hz. An empty output name is
/// standard output. Returns 0, or non-zero after a message: files that cannot be opened, read or written to
/// the end, no memory.
int convertTab(const std::string &inDName, TrelmInfo *trelmInfo, DcInfo *dcInfo,
               const std::string &atomNameS1, const std::string &atomNameS2, const std::string &outName);

} // namespace trelm
