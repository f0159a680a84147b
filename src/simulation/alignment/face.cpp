#include "simulation/alignment/face.h"

#include "simulation/alignment/alignment.h"
#include "simulation/alignment/options.h"
#include "simulation/charges/charge_labels.h"
#include "simulation/charges/field.h"
#include "simulation/obstacle/steric.h"
#include "structure/rotate.h"
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

/// What both faces share.
struct FaceJob {
    const FaceInput &input;
    Potential &potential;
    Messages &messages;
    std::vector<Coord3D> coords = copyOfCoordinates(input.pdbInfo); ///< of the turned molecule
    SelectionBuffers buffers = {};

    [[nodiscard]] Conformation molecule() { return {input.pdbInfo, coords}; }
};

/// The whole molecule into the frame of the tensor.
void turnIntoFrame(const EulerLists &euler, FaceJob &job)
{
    job.coords = copyOfCoordinates(job.input.pdbInfo);
    rotateMolecule({-euler.gamma[0], -euler.beta[0], -euler.alpha[0]}, job.molecule());
}

/// The other face to the particle.
Status flip(FaceJob &job)
{
    const PDBInfo &pdbInfo = job.input.pdbInfo;
    if (shiftMol2Domain(job.molecule(), pdbInfo.minResID, pdbInfo.maxResID, job.messages) != Status::ok)
        return job.messages.fail("trelm: error in shiftMol2Domain.\n");
    rotateMolecule({0.0, 180.0, 0.0}, job.molecule());
    return Status::ok;
}

/// The weight of the molecule as it stands.
Status weighFace(FaceJob &job, double &prob)
{
    const FaceInput &input = job.input;
    Chosen chosen;
    if (selectSolute({input.pdbInfo, input.selection, job.coords}, input.options, input.charges, job.buffers,
                     chosen, job.messages) != Status::ok)
        return job.messages.fail("trelm: error reading selection of atoms.\n");
    if (chosen.atoms.x.empty()) // without atoms there is no face
        return job.messages.fail("trelm: error determining interaction face.\n");
    iFace(input.options, chosen.atoms, chosen.charges, job.potential, prob, job.messages);
    return Status::ok;
}

/// Weighs both faces; the molecule is flipped then.
Status weighBothFaces(FaceJob &job, FaceWeights &weights)
{
    if (weighFace(job, weights.initial) != Status::ok)
        return Status::failed;
    job.messages.out("REMARK Probability of initial orientation %e.\n", weights.initial);
    if (flip(job) != Status::ok || weighFace(job, weights.rotated) != Status::ok)
        return Status::failed;
    job.messages.out("REMARK Probability of 180 deg. rotated orientation %e.\n", weights.rotated);
    if (std::isnan(weights.initial) || std::isnan(weights.rotated))
        job.messages.err("Warning: the weight of a face is no number, the molecule is not flipped.\n");
    return Status::ok;
}

Status writeFace(const EulerLists &euler, FaceJob &job, const FaceOutput &output, bool isFlipped)
{
    turnIntoFrame(euler, job);
    if (isFlipped && flip(job) != Status::ok)
        return Status::failed;
    const PDBInfo &pdbInfo = job.input.pdbInfo;
    const std::vector<AtomLabel> labels = labelCharges(pdbInfo, job.input.charges);
    return output.outName.empty() ? Status::ok
                                  : writePDB(output.outName, {pdbInfo, nullptr, output.remark, labels},
                                             job.coords, job.messages);
}

} // namespace

void iFace(const AlignmentOptions &options, const CoordinateBuffers &atoms, const ChargeSet &charges,
           Potential &potential, double &prob, Messages &messages)
{
    for (int i = 0; i < potential.count; ++i) {
        double &value = potential.values[static_cast<std::size_t>(i)];
        value = number(static_cast<float>(value) * options.kPot);
    }
    if (options.lcType != lcWall && options.lcType != lcRod)
        return;
    const std::vector<float> y = centred(atoms.y, 0.0);
    const std::vector<float> z = centred(atoms.z, number(options.radiusModel) + number(options.iFace));
    const Obstacle obstacle = {options, fieldConstants(options)};
    if (!obstacle.isWall() || options.chFlag != 0)
        reportField(obstacle.field, messages);
    for (std::size_t j = 0; j < z.size(); ++j)
        if (obstacle.touches(y[j], z[j])) {
            prob = 0.0;
            messages.err("WARNING: Molecule too close to LC particel ...\n"
                         "         Interaction face cannot be determined!\n");
            return;
        }
    double energy = 0.0;
    for (std::size_t c = 0; c < static_cast<std::size_t>(charges.chCount); ++c) {
        const auto place = static_cast<std::size_t>(charges.chargeAtomID[c]);
        energy += obstacle.potential(y[place], z[place]) * number(charges.charges[c]);
    }
    prob = std::exp(-number(options.kEnergy * static_cast<float>(energy)));
}

Status iFacePDB(const EulerLists &euler, const FaceInput &input, Potential &potential,
                const FaceOutput &output)
{
    FaceJob job = {input, potential, output.messages};
    if (makeSelectionBuffers("iFacePDB", input.pdbInfo, job.buffers, job.messages) != Status::ok)
        return Status::failed;
    FaceWeights weights;
    turnIntoFrame(euler, job);
    if (weighBothFaces(job, weights) != Status::ok)
        return Status::failed;
    return writeFace(euler, job, output, weights.initial > weights.rotated);
}

} // namespace trelm
