#include "compare/coupling_sets.h"

#include "compare/combine.h"
#include "couplings/output.h"
#include "couplings/table_input.h"
#include "support/text/text.h"

#include <unordered_map>

namespace trelm {
namespace {

/// What two rows of the same coupling share. Names hold no zero character, so that it separates them.
std::string keyOf(const DInfo &row)
{
    std::string key;
    appendf(key, "%d %d", row.resIDI, row.resIDJ);
    for (const Name *name : {&row.resNameI, &row.resNameJ, &row.atomNameI, &row.atomNameJ, &row.chainNameI,
                             &row.chainNameJ, &row.segNameI, &row.segNameJ})
        key.append(1, '\0').append(name->view());
    return key;
}

} // namespace

float addDC(int opCode, float c1, float c2, float d1, float d2)
{
    const double a = static_cast<double>(c1) * static_cast<double>(d1);
    const double b = static_cast<double>(c2) * static_cast<double>(d2);
    return static_cast<float>(combined(opCode, a, b, d1 < d2));
}

int adjustDC(int opCode, float c1, float c2, DTable *dTab1, const DTable *dTab2)
{
    if (dTab1 == nullptr || dTab2 == nullptr || dTab1->dCount == 0 || dTab2->dCount == 0)
        return 0;
    std::unordered_map<std::string, float> values;
    values.reserve(static_cast<std::size_t>(dTab2->dCount));
    for (const DInfo &row : dTab2->observed())
        values[keyOf(row)] = row.d;
    int count = 0;
    const auto observed = dTab1->observed(), calculated = dTab1->calculated();
    for (std::size_t i = 0; i < observed.size(); ++i) {
        DInfo &obs = observed[i];
        if (obs.d >= missingCoupling)
            continue;
        const auto match = values.find(keyOf(obs));
        if (match == values.end()) {
            obs.valid = calculated[i].valid = 0;
            continue;
        }
        calculated[i].valid = 1;
        calculated[i].d = addDC(opCode, c1, c2, obs.d, match->second);
        count += obs.valid != 0 ? 1 : 0;
    }
    return count;
}

int analyzeDC(const std::string &inD1Name, const std::string &inD2Name, TrelmInfo *trelmInfo, DcInfo *dcInfo,
              const std::string &atomNameS1, const std::string &atomNameS2, const std::string &outName)
{
    Block<DTable> dTab1("trelm", 1), dTab2("trelm", 1);
    if (!dTab1 || !dTab2)
        return complain("Error allocating DC structures.\n");
    int status = readTable(inD1Name, &dTab1[0]);
    if (status == 0)
        status = readTable(inD2Name, &dTab2[0]);
    if (status != 0)
        return status;
    settleWindow(*dcInfo, dTab1[0]);
    tellRows(chooseRows(dTab1[0], *dcInfo, atomNameS1, atomNameS2), "selected", dcInfo->excludeMode);
    const int shared = adjustDC(trelmInfo->opCode, trelmInfo->c1, trelmInfo->c2, &dTab1[0], &dTab2[0]);
    tellRows(shared, "combined", dcInfo->excludeMode);
    if (shared == 0)
        complain("trelm: the two tables share no coupling of the selection.\n");
    return writeDCmod(outName, "w", &dTab1[0], trelmInfo, "");
}

} // namespace trelm
