#include "simulation/domains/domains.h"

#include "couplings/tensor.h"
#include "simulation/domains/inertia.h"
#include "simulation/obstacle/atom_selection.h"
#include "simulation/orientations/rotation.h"
#include "structure/rotate.h"
#include "structure/select.h"
#include "support/text/text.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace trelm {
namespace {

bool isInRange(const AtomInfo &atom, int resN, int resC)
{
    return atom.resID >= resN && atom.resID <= resC;
}

/// Calls visit(const Axis &) for each atom of the residues, which may be given in either order, whose name
/// does not begin with H. Returns their number.
template <class Visit>
int forEachHeavy(const Conformation &molecule, int resN, int resC, Visit visit)
{
    const auto [first, last] = std::minmax(resN, resC);
    int count = 0;
    for (std::size_t i = 0; i < molecule.coords.size(); ++i) {
        const AtomInfo &atom = molecule.pdbInfo.atomList[i];
        if (!isInRange(atom, first, last) || atom.atomName.text[0] == 'H')
            continue;
        visit(toAxis(molecule.coords[i]));
        ++count;
    }
    return count;
}

/// The mean of the residues, hydrogens left out. Fails after a message if there are no such atoms.
Status meanOfResidues(const Conformation &molecule, int resN, int resC, Axis &mean, Messages &messages)
{
    mean = {};
    const int count = forEachHeavy(molecule, resN, resC, [&](const Axis &position) {
        for (std::size_t k = 0; k < 3; ++k)
            mean[k] += position[k];
    });
    if (count == 0)
        return messages.fail("Error in initOrient: zero atoms selected.");
    for (double &element : mean)
        element /= count;
    return Status::ok;
}

/// Moves the CA of a residue to the origin. `key` is the line of the configuration that names the residue.
Status moveToPivot(const Conformation &molecule, int resID, const char *key, Messages &messages)
{
    const auto atoms = molecule.pdbInfo.atoms();
    const auto pivot = std::ranges::find_if(
        atoms, [resID](const AtomInfo &atom) { return atom.resID == resID && atom.atomName == "CA"; });
    if (pivot == atoms.end())
        return messages.fail("initOrient: %s residue %d has no atom CA.\n", key, resID);
    shiftToOrigin(molecule.coords, toAxis(molecule.coords[molecule.pdbInfo.placeOf(*pivot)]));
    return Status::ok;
}

bool isBackbone(const AtomInfo &atom)
{
    return atom.atomName == "C" || atom.atomName == "CA" || atom.atomName == "N";
}

/// The exposed ones of the backbone atoms for which isWanted holds.
template <class IsWanted>
Status exposedBackbone(const Conformation &molecule, IsWanted isWanted, std::vector<std::size_t> &exposed,
                       Messages &messages)
{
    std::vector<std::size_t> measured;
    AtomMask mask(molecule.coords.size(), 0);
    for (std::size_t i = 0; i < mask.size(); ++i)
        if (const AtomInfo &atom = molecule.pdbInfo.atomList[i]; isBackbone(atom) && isWanted(atom)) {
            mask[i] = 1;
            measured.push_back(i);
        }
    if (measured.empty())
        return messages.fail("Error in chkDomClash: zero atoms selected.");
    std::vector<bool> isExposed;
    if (findExposed({molecule.pdbInfo, mask, molecule.coords}, isExposed, messages) != Status::ok)
        return Status::failed;
    exposed.clear();
    for (std::size_t k = 0; k < measured.size(); ++k)
        if (isExposed[k])
            exposed.push_back(measured[k]);
    return Status::ok;
}

} // namespace

Status initOrient(const Conformation &molecule, const DomainOptions &options, int yzFlag, Messages &messages)
{
    Axis mean;
    if (meanOfResidues(molecule, options.startResPart1, options.endResPart1, mean, messages) != Status::ok)
        return Status::failed;
    shiftToOrigin(molecule.coords, mean);
    Matrix3d inertiaTensor;
    TensorAnalysis analysis;
    if (calcInertiaSel(molecule, options.startResPart1, options.endResPart1, inertiaTensor, messages) !=
        Status::ok)
        return Status::failed;
    if (analyzeMatrix3D(inertiaTensor, yzFlag, analysis, messages) != Status::ok)
        return messages.fail("initOrient: error in analyzeMatrix3D.");
    const EulerLists &euler = analysis.euler;
    if (options.initOrientFlag != 0)
        rotateMolecule({-euler.gamma[0], -euler.beta[0], -euler.alpha[0]}, molecule);
    if (options.angleDomFlag != 0 && positionDomain(molecule, options, messages) != Status::ok)
        return Status::failed;
    return moveToPivot(molecule, options.resDom1Origin, "ORIGIN_DOM1:", messages);
}

Status positionDomain(const Conformation &molecule, const DomainOptions &options, Messages &messages)
{
    const int resN = options.startResDom2, resC = options.endResDom2;
    if (std::ranges::none_of(molecule.pdbInfo.atoms(),
                             [&](const AtomInfo &atom) { return isInRange(atom, resN, resC); }))
        messages.err("Warning: no atoms in residues %d to %d of domain 2: nothing of it is turned.\n", resN,
                     resC);
    if (moveToPivot(molecule, options.resDom2Origin, "ORIGIN_DOM2:", messages) != Status::ok)
        return Status::failed;
    const auto &angle = options.angleDom;
    rotateDomain(
        {static_cast<double>(angle[0]), static_cast<double>(angle[1]), static_cast<double>(angle[2])},
        molecule, resN, resC);
    return moveToPivot(molecule, options.resDom1Origin, "ORIGIN_DOM1:", messages);
}

Status selectSurfDom(const Conformation &molecule, int resN, int resC, std::vector<std::size_t> &indI,
                     std::vector<std::size_t> &indJ, Messages &messages)
{
    const auto isInDomain = [=](const AtomInfo &atom) { return isInRange(atom, resN, resC); };
    const Status status = exposedBackbone(molecule, isInDomain, indI, messages);
    return status != Status::ok
               ? status
               : exposedBackbone(
                     molecule, [&](const AtomInfo &atom) { return !isInDomain(atom); }, indJ, messages);
}

bool chkClashDom(const Conformation &molecule, float clashDist, std::span<const std::size_t> indI,
                 std::span<const std::size_t> indJ, Messages &messages)
{
    for (const std::size_t i : indI) {
        const Coord3D &atI = molecule.coords[i];
        for (const std::size_t j : indJ) {
            const Coord3D &atJ = molecule.coords[j];
            const float dx = atI.x - atJ.x;
            if (std::fabs(dx) >= clashDist) // no distance is below its x part, rounded or not
                continue;
            const float distance = calcNorm(dx, atI.y - atJ.y, atI.z - atJ.z);
            if (distance >= clashDist)
                continue;
            const AtomInfo &a = molecule.pdbInfo.atomList[i], &b = molecule.pdbInfo.atomList[j];
            messages.out("\nREMARK steric clash of %5d %6s %6s   and  %5d %6s %6s : %6.2f A\n", a.resID,
                         a.resName.c_str(), a.atomName.c_str(), b.resID, b.resName.c_str(),
                         b.atomName.c_str(), static_cast<double>(distance));
            return true;
        }
    }
    return false;
}

Status calcInertiaSel(const Conformation &molecule, int resN, int resC, Matrix3d &inertiaTensor,
                      Messages &messages)
{
    std::vector<Axis> points;
    if (forEachHeavy(molecule, resN, resC, [&](const Axis &position) { points.push_back(position); }) == 0)
        return messages.fail("Error in initOrient: zero atoms selected.");
    inertiaTensor = secondMoments(points);
    return Status::ok;
}

} // namespace trelm
