// Configuration files.
#include "fuzz_input.h"

#include "simulation/domains/config.h"

#include <cmath>

using namespace trelm;
using fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    TrelmInfo trelmInfo;
    SearchState search;
    static_cast<void>(readConfig(fuzz::fileOf(fuzz::asText(data, size)), trelmInfo, search));
    const GridInfo &gridInfo = trelmInfo.gridInfo;
    for (const float value :
         {gridInfo.angleDom[0], gridInfo.angleDom[1], gridInfo.angleDom[2], gridInfo.lBetaCone,
          gridInfo.hBetaCone, gridInfo.cAlphaCone, gridInfo.errAlphaCone, gridInfo.clashDist, search.Pmax})
        require(std::isfinite(value), "numbers of a configuration are finite");
    require(gridInfo.angleDom[2] == 0.0f || gridInfo.resDom1Origin == 0,
            "the third angle and the origin exclude each other");
    return 0;
}
