// Atoms in free format.
#include "fuzz_input.h"

#include "simulation/alignment/free_format.h"

#include <cmath>
#include <vector>

using namespace trelm;
using fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static std::vector<double> x(maxFreeAtoms), y(maxFreeAtoms), z(maxFreeAtoms);
    int count = 0;
    if (readPDBfree(fuzz::fileOf(fuzz::asText(data, size)), count, {x, y, z}, standardMessages()) !=
        Status::ok)
        return 0;
    require(count > 0 && count < maxFreeAtoms, "a file that is read holds atoms");
    for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i)
        require(std::isfinite(x[i]) && std::isfinite(y[i]) && std::isfinite(z[i]), "coordinates are finite");
    return 0;
}
