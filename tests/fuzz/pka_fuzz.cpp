// pKa files: read, and what is written of them read again.
#include "fuzz_input.h"

#include "simulation/charges/charge_file.h"
#include "simulation/charges/options.h"

#include <array>
#include <cmath>

namespace {

using namespace trelm;
using fuzz::require;

/// The buffers of a run.
struct Charges {
    std::array<int, maxCharges + 1> atoms = {};
    std::array<float, maxCharges + 1> values = {};
    ChargeSet set{.chargeAtomID = atoms, .charges = values};
};

ChargeOptions electrostaticRun(float pH)
{
    ChargeOptions options;
    options.elFlag = 1;
    options.pH = pH;
    return options;
}

void checkCharges(const ChargeSet &set)
{
    require(set.chCount >= 0 && set.chCount < maxCharges - 1, "there are no more charges than allowed");
    require(std::isfinite(set.chSum), "the net charge is finite");
    for (std::size_t i = 0; i < static_cast<std::size_t>(set.chCount); ++i)
        require(set.chargeAtomID[i] >= 0 && set.chargeAtomID[i] < fuzz::smallMolecule().atomCount &&
                    std::isfinite(set.charges[i]),
                "a charge is finite and sits on an atom");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const AtomMask allAtoms(fuzz::smallMolecule().atoms().size(), 1);
    const SelectedAtoms molecule = {fuzz::smallMolecule(), allAtoms};
    const std::string name = fuzz::fileOf(fuzz::asText(data, size));
    const ChargeOptions options = electrostaticRun(5.0f);
    Charges first;
    if (chargeSetup(name, molecule, options, first.set, "/dev/null", standardMessages()) != Status::ok)
        return 0;
    checkCharges(first.set);

    ChargeLines lines, again;
    Charges second, third;
    require(readChargeFile(name, molecule, options.pH, second.set, lines, standardMessages()) == Status::ok,
            "a file is read twice");
    require(readChargeFile(fuzz::fileOf(lines.text), molecule, options.pH, third.set, again,
                           standardMessages()) == Status::ok,
            "what is written can be read");
    require(again.text == lines.text, "what is read again is written alike");
    return 0;
}
