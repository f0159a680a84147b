// Potential files: the same bytes as the table of a rod and as a grid.
#include "fuzz_input.h"

#include "simulation/charges/field_energy.h"
#include "simulation/charges/options.h"
#include "simulation/charges/potential.h"

#include <cmath>

namespace {

using namespace trelm;
using fuzz::require;

void checkTable(const std::string &name)
{
    Potential potential;
    if (readPotential(name, potential, standardMessages()) != Status::ok)
        return;
    require(potential.count < maxPotentialLines, "a table is below the limit");
    const std::size_t steps = makeRodEnergy(potential, 1.0, {}).steps.size();
    require(steps == (hasStep(potential) ? static_cast<std::size_t>(potential.count) : 1),
            "a table is asked where its distances rise");
}

void checkGrid(const std::string &name)
{
    Grid3DOptions options;
    options.grid3DnX = options.grid3DnY = 2;
    options.grid3DnZ = 3;
    options.z1 = 1;
    options.zN = 3;
    constexpr int points = 12;
    Block<double> weighted;
    Block<float> steric;
    int read = 0, readSteric = 0;
    const Status status = read3DPotential(name, options, weighted, read, standardMessages());
    require(read3DPotSteric(name, options, steric, readSteric, standardMessages()) == status,
            "both readers of a grid take the same files");
    if (status != Status::ok)
        return;
    require(read == points && readSteric == points, "a grid has a value for each point");
    for (std::size_t i = 0; i < points; ++i) {
        const float within = std::fabs(weighted[i]) < static_cast<double>(options.maxPot) ? 1.0f : 0.0f;
        require(steric[i] == within, "both readers see the same values");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string name = fuzz::fileOf(fuzz::asText(data, size));
    checkTable(name);
    checkGrid(name);
    return 0;
}
