// Ensemble files.
#include "fuzz_input.h"

#include "simulation/domains/ensemble.h"

#include <cmath>

using namespace trelm;
using fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static Ensemble ensemble{.states = Block<EnsembleState>("fuzz", maxEnsembleStates)};
    const Status status = readEnsemble(fuzz::fileOf(fuzz::asText(data, size)), ensemble, standardMessages());
    require(ensemble.count >= 0 && ensemble.count < maxEnsembleStates, "the states have room");
    require(status == Status::ok || ensemble.count == 0, "a faulty file gives no states");
    for (const EnsembleState &state : ensemble.used())
        require(std::isfinite(state.alpha) && std::isfinite(state.beta) && std::isfinite(state.gamma),
                "angles are finite");
    return 0;
}
