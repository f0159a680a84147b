#include "simulation/charges/charge_labels.h"

namespace trelm {

const char *chargeLabel(float charge)
{
    constexpr float limit = 0.4f; ///< e
    if (charge >= limit)
        return "1+";
    return charge > -limit ? "1-" : "0+";
}

std::vector<AtomLabel> labelCharges(const PDBInfo &pdbInfo, const ChargeSet &charges)
{
    std::vector<AtomLabel> labels;
    for (const AtomInfo &atom : pdbInfo.atoms())
        labels.push_back({0.0f, atom.chargeStr});
    for (std::size_t i = 0; i < static_cast<std::size_t>(charges.chCount); ++i)
        labels[static_cast<std::size_t>(charges.chargeAtomID[i])] = {
            charges.charges[i], Name::of(chargeLabel(charges.charges[i]))};
    return labels;
}

} // namespace trelm
