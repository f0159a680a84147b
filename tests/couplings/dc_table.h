// A table of measured and calculated couplings for tests of statistics and reports.
#pragma once

#include "couplings/dipolar.h"

#include <utility>
#include <vector>

/// N-H couplings of residues 2, 3, ..., measured and calculated, with weights and errors of 1.
inline trelm::DTable makeTable(const std::vector<std::pair<float, float>> &couplings)
{
    trelm::DTable table;
    table.dCount = static_cast<int>(couplings.size());
    table.dObsList = trelm::Block<trelm::DInfo>("dc", couplings.size());
    table.dCalcList = trelm::Block<trelm::DInfo>("dc", couplings.size());
    for (std::size_t i = 0; i < couplings.size(); ++i) {
        trelm::DInfo row;
        row.valid = 1;
        row.resIDI = row.resIDJ = static_cast<int>(i) + 2;
        row.resNameI = trelm::Name::of("GLN");
        row.atomNameI = trelm::Name::of("H");
        row.resNameJ = trelm::Name::of("GLN");
        row.atomNameJ = trelm::Name::of("N");
        row.di = -21585.2f;
        row.sigma = 1.0f;
        row.d = couplings[i].first;
        table.dObsList[i] = row;
        row.d = couplings[i].second;
        table.dCalcList[i] = row;
    }
    return table;
}
