#include "simulation/domains/structure_analysis.h"

#include "couplings/options.h"
#include "simulation/domains/inertia.h"
#include "simulation/orientations/rotation.h"
#include "support/numerics/numbers.h"

#include <algorithm>
#include <cmath>

namespace trelm {
namespace {

constexpr Matrix3d ownFrame = {0.0, 0.0, 1.0, 0.0, 1.0, 0.0, 1.0, 0.0, 0.0}; ///< columns z, y, x

bool allFinite(const Matrix3d &matrix)
{
    return std::ranges::all_of(matrix, [](double element) { return std::isfinite(element); });
}

/// The dipole's axes as the dipole has them: its direction first, the others not at unit length. Without a
/// direction the structure keeps its frame.
Status dipoleFrame(const Matrix3d &dipoleVec, Matrix3d &eigVec, Messages &messages)
{
    eigVec = dipoleVec;
    if (allFinite(eigVec))
        return Status::ok;
    const double x = dipoleVec[0], y = dipoleVec[3];
    if (x == 0.0 && y == 0.0) {
        eigVec = ownFrame;
        return messages.fail("eigVec2euler: error occured!\n");
    }
    // At right angles to z, where the rule for the third axis divides by zero and tends to z.
    eigVec = {x, y, 0.0, y, -x, 0.0, 0.0, 0.0, 1.0};
    return Status::ok;
}

void analyzeCharges(const Chosen &chosen, StructureAnalysis &found, Messages &messages)
{
    const auto count = static_cast<std::size_t>(chosen.charges.chCount);
    found.dipole =
        dipoleMoment({chosen.atoms.x, chosen.atoms.y, chosen.atoms.z,
                      chosen.charges.chargeAtomID.first(count), chosen.charges.charges.first(count)});
    TensorAnalysis &structure = found.structure;
    if (dipoleFrame(found.dipole.dipoleVec, structure.eigVec, messages) == Status::ok)
        eigVec2euler(structure.eigVec, structure.euler);
}

Status analyzeShape(const SelectedAtoms &atoms, int yzFlag, StructureAnalysis &found, Messages &messages)
{
    Matrix3d inertiaTensor;
    if (calcInertia(atoms, inertiaTensor, messages) != Status::ok || !allFinite(inertiaTensor))
        return messages.fail("trelm: error in calcInertia.");
    if (analyzeMatrix3D(inertiaTensor, yzFlag, found.structure, messages) != Status::ok)
        return messages.fail("trelm: error in analyzeMatrix3D.");
    return Status::ok;
}

} // namespace

Status analyzeStructure(const StructureInput &input, StructureAnalysis &found, Messages &messages)
{
    const FitOptions &options = input.options;
    if (input.isCharged)
        analyzeCharges(input.chosen, found, messages);
    else if (analyzeShape({input.pdbInfo, input.chosen.mask}, options.yzFlag, found, messages) != Status::ok)
        return Status::failed;
    if (analyzeSaupe(input.saupe, options.yzFlag, options.eulerFlag, found.input, messages) != Status::ok ||
        !std::isfinite(found.input.gMag))
        return messages.fail("trelm: error in analyzeSaupe.\n");
    constexpr double degrees = 180.0 / pi;
    found.angles = calcDcos(found.structure.eigVec, found.input.eigVec);
    for (double &angle : found.angles)
        angle *= degrees;
    return Status::ok;
}

} // namespace trelm
