// The coupling output: report and table.
#pragma once

#include "couplings/dipolar.h"
#include "couplings/tensor.h"
#include "ground/trelm.h"

#include <span>
#include <string>
#include <string_view>

namespace trelm {

/// Writes the report (with verbFlag) and the table of a run; the table can be read back by readDC. The file
/// is opened with the fopen mode `access`; an empty name is standard output, and so is, after a message, one
/// that cannot be opened. Returns 0, or 1 if the statistics failed or the output could not be written to its
/// end.
int writeDCmod(const std::string &outDName, const char *access, DTable *dTab, TrelmInfo *trelmInfo,
               std::string_view remark);

/// A tensor's values from B to A; rh, its bounds and rhFlag are not copied.
void dTensorCopy(DTensor &tInfoA, const DTensor &tInfoB);

/// Looks an atom up as findAtom does. The coordinates are not used: nothing in the molecule changes.
AtomInfo *modifyAtomCoor(PDBInfo *pdbInfo, int resID, std::string_view atomName, std::string_view chainName,
                         std::string_view segName, float xI, float yI, float zI);

/// The same for a name with wildcards, expanded with 1, 2, 3. Returns the number found.
int modifyAtomCoorList(PDBInfo *pdbInfo, int resID, std::string_view atomName, std::string_view chainName,
                       std::string_view segName, std::span<AtomInfo *> atomList, float xI, float yI,
                       float zI);

/// The block of text with irreducible representation, eigensystem and Euler angles; empty if `verbose` is 0.
int writeEulerInfo(const TensorAnalysis &analysis, std::string &result, int verbose);

} // namespace trelm
