// A table of measured and calculated couplings for tests of statistics and reports.
#pragma once

#include "couplings/dipolar.h"

#include <utility>
#include <vector>

/// N-H couplings of residues 2, 3, ..., measured and calculated, with weights and errors of 1.
inline trelm::DTable makeTable(const std::vector<std::pair<float, float>> &couplings)
{
    trelm::DTable table;
    table.dCount = couplings.size();
    table.dObsList = trelm::Block<trelm::DInfo>("dc", couplings.size());
    table.dCalcList = trelm::Block<trelm::DCalc>("dc", couplings.size());
    table.names = std::make_shared<trelm::NameStore>();
    trelm::RowNames names;
    names.resNameI = names.resNameJ = trelm::Name::of("GLN");
    names.atomNameI = trelm::Name::of("H");
    names.atomNameJ = trelm::Name::of("N");
    for (std::size_t i = 0; i < couplings.size(); ++i) {
        trelm::DInfo row;
        row.valid = 1;
        row.resIDI = row.resIDJ = static_cast<int>(i) + 2;
        trelm::setNames(table, names, row);
        row.di = -21585.2f;
        row.sigma = 1.0f;
        row.d = couplings[i].first;
        table.dObsList[i] = row;
        trelm::DCalc calc;
        calc.valid = 1;
        calc.di = row.di;
        calc.sigma = 1.0f;
        calc.d = couplings[i].second;
        table.dCalcList[i] = calc;
    }
    return table;
}
