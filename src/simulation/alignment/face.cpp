#include "simulation/alignment/face.h"

#include "simulation/alignment/alignment.h"
#include "simulation/charges/charge_labels.h"
#include "simulation/charges/field.h"
#include "simulation/obstacle/steric.h"
#include "structure/rotate.h"
#include "structure/select.h"
#include "structure/write.h"
#include "support/numerics/numbers.h"
#include "support/text/text.h"

#include <cmath>
#include <cstdio>
#include <vector>

namespace trelm {
namespace {

/// A column about its mean, and `shift` angstrom on; each sum is rounded once.
std::vector<float> centred(std::span<const double> column, double shift)
{
    const double mean = number(singleMean(column));
    std::vector<float> result;
    for (const double value : column)
        result.push_back(static_cast<float>(value - mean + shift));
    return result;
}

/// The distance of an atom from the middle plane of a wall or from the axis of a rod, and the potential
/// there.
struct Obstacle {
    const AlignmentOptions &options;
    FieldConstants field;

    [[nodiscard]] bool isWall() const { return options.lcType == lcWall; }
    [[nodiscard]] bool touches(float y, float z) const
    {
        return (isWall() ? z : std::sqrt(y * y + z * z)) <= options.radiusModel + options.radiusAtom;
    }
    [[nodiscard]] double potential(float y, float z) const
    {
        const double radius = number(options.radiusModel);
        if (isWall())
            return surfacePotential(field, number(z) - radius);
        // surfacePotential but for the decay in single precision, which weights that are compared with older
        // ones have in their last digits.
        const double distance = std::sqrt(number(z) * number(z) + number(y) * number(y)) - radius;
        const double decay =
            number(field.gamma) * number(static_cast<float>(std::exp(-field.kappa * distance / 10.0)));
        return 2.0 * std::log((1.0 + decay) / (1.0 - decay));
    }
};

/// The whole molecule into the frame of the tensor.
int turnIntoFrame(const EulerLists &euler, PDBInfo *pdbInfo)
{
    const int status = rotateDomain({-euler.gamma[0], -euler.beta[0], -euler.alpha[0]}, pdbInfo,
                                    pdbInfo->minResID, pdbInfo->maxResID);
    if (status != 0)
        complain("trelm: error in rotateDomain.");
    return status;
}

/// The other face to the particle.
int flip(PDBInfo *pdbInfo)
{
    int status = shiftMol2Domain(pdbInfo, pdbInfo->minResID, pdbInfo->maxResID);
    if (status != 0) {
        complain("trelm: error in shiftMol2Domain.\n");
        return status;
    }
    status = rotateDomain({0.0, 180.0, 0.0}, pdbInfo, pdbInfo->minResID, pdbInfo->maxResID);
    if (status != 0)
        complain("trelm: error in rotateDomain.");
    return status;
}

/// The weight of the molecule as it stands.
int weighFace(PDBInfo *pdbInfo, const AlignmentOptions &options, const ChargeSet &original,
              SelectionBuffers &buffers, Potential &potential, double &prob)
{
    Chosen chosen;
    const Status status = selectSolute(pdbInfo, options, original, buffers, chosen, standardMessages());
    restoreMarks(pdbInfo, buffers.marks);
    if (status != Status::ok)
        return complain("trelm: error reading selection of atoms.\n");
    const bool isWeighed = // without atoms there is no face
        !chosen.atoms.x.empty() && iFace(options, chosen.atoms, chosen.charges, potential, prob) == 0;
    return isWeighed ? 0 : complain("trelm: error determining interaction face.\n");
}

/// Weighs both faces. `isFlipped` tells whether the flipped one is written.
int weighBothFaces(PDBInfo *pdbInfo, const AlignmentOptions &options, const ChargeSet &charges,
                   SelectionBuffers &buffers, Potential &potential, bool &isFlipped)
{
    double initial = 0.0, rotated = 0.0;
    int status = weighFace(pdbInfo, options, charges, buffers, potential, initial);
    if (status != 0)
        return status;
    std::printf("REMARK Probability of initial orientation %e.\n", initial);
    status = flip(pdbInfo);
    if (status == 0)
        status = weighFace(pdbInfo, options, charges, buffers, potential, rotated);
    if (status != 0)
        return status;
    std::printf("REMARK Probability of 180 deg. rotated orientation %e.\n", rotated);
    isFlipped = initial > rotated;
    if (std::isnan(initial) || std::isnan(rotated))
        complain("Warning: the weight of a face is no number, the molecule is not flipped.\n");
    return 0;
}

int writeFace(const EulerLists &euler, PDBInfo *pdbInfo, const FaceOutput &output, const ChargeSet &charges,
              bool isFlipped)
{
    int status = turnIntoFrame(euler, pdbInfo);
    if (status == 0 && isFlipped)
        status = flip(pdbInfo);
    if (status != 0)
        return status;
    labelCharges(pdbInfo, charges);
    return output.outName.empty() ? 0 : writePDB(output.outName, pdbInfo, nullptr, output.remark);
}

} // namespace

int iFace(const AlignmentOptions &options, const CoordinateBuffers &atoms, const ChargeSet &charges,
          Potential &potential, double &prob)
{
    for (int i = 0; i < potential.count; ++i) {
        double &value = potential.values[static_cast<std::size_t>(i)];
        value = number(static_cast<float>(value) * options.kPot);
    }
    if (options.lcType != lcWall && options.lcType != lcRod)
        return 0;
    const std::vector<float> y = centred(atoms.y, 0.0);
    const std::vector<float> z = centred(atoms.z, number(options.radiusModel) + number(options.iFace));
    const Obstacle obstacle = {options, fieldConstants(options)};
    if (!obstacle.isWall() || options.chFlag != 0)
        reportField(obstacle.field, standardMessages());
    for (std::size_t j = 0; j < z.size(); ++j)
        if (obstacle.touches(y[j], z[j])) {
            prob = 0.0;
            std::fputs("WARNING: Molecule too close to LC particel ...\n"
                       "         Interaction face cannot be determined!\n",
                       stderr);
            return 0;
        }
    double energy = 0.0;
    for (std::size_t c = 0; c < static_cast<std::size_t>(charges.chCount); ++c) {
        const auto place = static_cast<std::size_t>(charges.chargeAtomID[c]);
        energy += obstacle.potential(y[place], z[place]) * number(charges.charges[c]);
    }
    prob = std::exp(-number(options.kEnergy * static_cast<float>(energy)));
    return 0;
}

int iFacePDB(const EulerLists &euler, PDBInfo *pdbInfo, const AlignmentOptions &options,
             const FaceOutput &output, Potential &potential, const ChargeSet &charges)
{
    SelectionBuffers buffers;
    if (makeSelectionBuffers("iFacePDB", *pdbInfo, buffers, standardMessages()) != Status::ok)
        return 1;
    if (storePDBCoords(pdbInfo) != 0)
        return complain("trelm: error in storePDBCoords.\n");
    bool isFlipped = false;
    int status = turnIntoFrame(euler, pdbInfo);
    if (status == 0)
        status = weighBothFaces(pdbInfo, options, charges, buffers, potential, isFlipped);
    if (restorePDBCoords(pdbInfo) != 0)
        return complain("trelm: error in restorePDBCoords.\n");
    if (status != 0)
        return status;
    status = writeFace(euler, pdbInfo, output, charges, isFlipped);
    restorePDBCoords(pdbInfo);
    return status;
}

} // namespace trelm
