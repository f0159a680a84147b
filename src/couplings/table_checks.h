// What a coupling table has that its writer hardly meant: values, told apart from the text that names them.
#pragma once

#include "couplings/dipolar.h"
#include "couplings/table_finding.h"
#include "support/text/table.h"

#include <string>
#include <vector>

namespace trelm {

/// What a run takes from a table.
struct TableUse {
    const char *mode = "";      ///< the option that it is asked for with
    bool hasPeaks = false;      ///< residue numbers are those of peaks: names and pairs tell nothing
    bool usesValues = false;    ///< D
    bool isMeasured = false;    ///< D is compared with what was calculated
    bool needsErrors = false;   ///< results go by DD
    bool weighsByError = false; ///< a fit weighs by DD, so that one kind of couplings does without
    bool takesOneScale = false; ///< all couplings are one distribution
};

/// Cells and columns, of those that are read as couplings.
std::vector<TableFinding> checkColumns(const TextTable &text);

/// The rows as they were chosen; after buildDC also by the distances of the structure.
std::vector<TableFinding> checkRows(const DTable &dTab, const TableUse &use);

/// Residue names of the chosen rows against those of the structure, and the shift of residue numbers with
/// which they agree. `offset` is added to the numbers of the table, `first` is the value of -a1 that this
/// comes from. Other names of one residue (HIS and HSD, one letter and three) agree.
std::vector<TableFinding> checkResidueNames(const PDBInfo &pdbInfo, const DTable &dTab, int offset,
                                            int first);

/// One warning for each finding that matters to the use. `name` stands before it, if there is one.
void tellFindings(const std::vector<TableFinding> &findings, const TableUse &use, const std::string &name,
                  Messages &messages);

} // namespace trelm
