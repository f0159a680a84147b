// Configuration files.
#include "fuzz_input.h"

#include "simulation/domains/config.h"

#include <cmath>

using namespace trelm;
using fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    DomainOptions options;
    static_cast<void>(readConfig(fuzz::fileOf(fuzz::asText(data, size)), options, standardMessages()));
    for (const float value : {options.angleDom[0], options.angleDom[1], options.angleDom[2],
                              options.lBetaCone, options.hBetaCone, options.errAlphaCone, options.clashDist})
        require(std::isfinite(value), "numbers of a configuration are finite");
    require(options.angleDom[2] == 0.0f || options.resDom1Origin == 0,
            "the third angle and the origin exclude each other");
    return 0;
}
