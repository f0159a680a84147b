// Text tables, and the coupling tables that are read from them.
#include "fuzz_input.h"

#include "couplings/dipolar.h"
#include "couplings/window.h"
#include "support/text/table.h"

#include <cmath>
#include <cstdint>
#include <vector>

namespace {

using namespace trelm;
using fuzz::require;

void checkTable(const std::string &name)
{
    TextTable table;
    if (rdTable(name, table, noCoupling, standardMessages()) != Status::ok)
        return;
    const std::size_t columns = table.varInfo.size(), rows = table.entryCount;
    require(table.matrix.length() == rows * columns, "the matrix has a cell for each row and column");
    for (std::size_t i = 0; i < rows * columns; ++i) {
        const tabVar &column = table.varInfo[i % columns];
        if (column.type != CellType::text)
            continue;
        const float cell = table.matrix[i];
        require(cell == nullTextCell || (cell >= 0.0f && cell < static_cast<float>(column.equivList.size())),
                "a text cell names a text of its column");
        static_cast<void>(tabText(column, cell));
    }
}

void checkCouplings(const std::string &name)
{
    DTable dTab;
    if (readDC(name, dTab, standardMessages()) != Status::ok)
        return;
    for (const DInfo &row : dTab.observed())
        require(std::isfinite(row.d) && std::isfinite(row.w) && row.sigma >= 0.0f,
                "couplings, weights and errors are numbers");
    PDBInfo &molecule = fuzz::smallMolecule();
    const int valid = selectD(dTab.observed(), 1, 3, largerInside);
    const int built = buildDC(
        molecule, dTab, {.aOff = 1, .wOff = 2, .wList = std::vector<float>{0.5f, 0.0f}, .allowFixedDI = 0},
        standardMessages());
    require(built <= valid && valid <= static_cast<int>(dTab.dCount), "no rows come from nowhere");
    for (const DCalc &row : dTab.calculated())
        require(row.valid == 0 || (row.pairCount() > 0 && std::isfinite(row.di)),
                "a row that takes part has its atoms and its constant");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string name = fuzz::fileOf(fuzz::asText(data, size));
    checkTable(name);
    checkCouplings(name);
    return 0;
}
