#include "simulation/charges/charge_labels.h"

namespace trelm {

const char *chargeLabel(float charge)
{
    constexpr float limit = 0.4f; ///< e
    if (charge >= limit)
        return "1+";
    return charge > -limit ? "1-" : "0+";
}

void labelCharges(PDBInfo *pdbInfo, const ChargeSet &charges)
{
    for (AtomInfo &atom : pdbInfo->atoms())
        atom.tempFactor = 0.0f;
    for (std::size_t i = 0; i < static_cast<std::size_t>(charges.chCount); ++i) {
        AtomInfo &atom = pdbInfo->atomList[static_cast<std::size_t>(charges.chargeAtomID[i])];
        atom.tempFactor = charges.charges[i];
        atom.chargeStr = Name::of(chargeLabel(charges.charges[i]));
    }
}

} // namespace trelm
