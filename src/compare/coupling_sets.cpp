#include "compare/coupling_sets.h"

#include "compare/combine.h"
#include "support/text/text.h"

#include <cmath>
#include <unordered_map>

namespace trelm {
namespace {

/// What two rows of the same coupling share. Names hold no zero character, so that it separates them.
std::string keyOf(const DInfo &row)
{
    std::string key;
    appendf(key, "%d %d", row.resIDI, row.resIDJ);
    for (const Name *name :
         {&row.names->resNameI, &row.names->resNameJ, &row.names->atomNameI, &row.names->atomNameJ,
          &row.names->chainNameI, &row.names->chainNameJ, &row.names->segNameI, &row.names->segNameJ})
        key.append(1, '\0').append(name->view());
    return key;
}

/// A quotient by 0 goes out as it is.
bool isTooLarge(const ComparisonOptions &options, float d2, float combination)
{
    return !std::isfinite(combination) && !(options.opCode == opDiv && options.c2 * d2 == 0.0f);
}

} // namespace

float addDC(const ComparisonOptions &options, float d1, float d2)
{
    const double a = double{options.c1} * double{d1};
    const double b = double{options.c2} * double{d2};
    return static_cast<float>(combined(options.opCode, a, b, d1 < d2));
}

int adjustDC(const ComparisonOptions &options, DTable &dTab1, const DTable &dTab2)
{
    if (dTab1.dCount == 0 || dTab2.dCount == 0)
        return 0;
    std::unordered_map<std::string, float> values;
    values.reserve(dTab2.dCount);
    for (const DInfo &row : dTab2.observed())
        values[keyOf(row)] = row.d;
    int count = 0;
    const auto observed = dTab1.observed();
    const auto calculated = dTab1.calculated();
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
        calculated[i].d = addDC(options, obs.d, match->second);
        if (obs.valid != 0 && isTooLarge(options, match->second, calculated[i].d))
            return tooLarge;
        count += obs.valid != 0 ? 1 : 0;
    }
    return count;
}

} // namespace trelm
