// A structure and couplings on it, as a fit finds them.
#pragma once

#include "couplings/dipolar.h"
#include "couplings/window.h"

#include <gtest/gtest.h>

#include <string>

namespace trelm {

const std::string ubiquitinFolder = std::string(TRELM_EXAMPLES) + "/ubiquitin/";

/// Of the table's rows all within residues -1000 to 2000 are chosen and built; `range` limits the structure.
struct Prepared {
    PDBInfo pdb;
    DTable table;
    int valid = 0;
    explicit Prepared(const std::string &tableName, int aOff = 0, const PDBSelectInfo *range = nullptr,
                      const std::string &pdbName = ubiquitinFolder + "1d3z_model1.pdb")
    {
        EXPECT_EQ(readPDB(pdbName, pdb, range, standardMessages()), Status::ok);
        EXPECT_EQ(readDC(tableName, table, standardMessages()), Status::ok);
        selectD(table.observed(), -1000, 2000, largerInside);
        valid = buildDC(pdb, table, {.aOff = aOff}, standardMessages());
    }
};

} // namespace trelm
