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

Axis positionOf(const AtomInfo &atom)
{
    return {static_cast<double>(atom.x), static_cast<double>(atom.y), static_cast<double>(atom.z)};
}

/// Calls visit(const Axis &) for each atom of the residues, which may be given in either order, whose name
/// does not begin with H. Returns their number.
template <class Visit>
int forEachHeavy(const PDBInfo &pdbInfo, int resN, int resC, Visit visit)
{
    const auto [first, last] = std::minmax(resN, resC);
    int count = 0;
    for (const AtomInfo &atom : pdbInfo.atoms()) {
        if (!isInRange(atom, first, last) || atom.atomName.text[0] == 'H')
            continue;
        visit(positionOf(atom));
        ++count;
    }
    return count;
}

/// The mean of the residues, hydrogens left out. Fails after a message if there are no such atoms.
Status meanOfResidues(const PDBInfo &pdbInfo, int resN, int resC, Axis &mean, Messages &messages)
{
    mean = {};
    const int count = forEachHeavy(pdbInfo, resN, resC, [&](const Axis &position) {
        for (std::size_t k = 0; k < 3; ++k)
            mean[k] += position[k];
    });
    if (count == 0)
        return messages.fail("Error in initOrient: zero atoms selected.");
    for (double &element : mean)
        element /= count;
    return Status::ok;
}

void moveToOrigin(PDBInfo *pdbInfo, const Axis &point)
{
    for (AtomInfo &atom : pdbInfo->atoms()) {
        atom.x = static_cast<float>(static_cast<double>(atom.x) - point[0]);
        atom.y = static_cast<float>(static_cast<double>(atom.y) - point[1]);
        atom.z = static_cast<float>(static_cast<double>(atom.z) - point[2]);
    }
}

/// Moves the CA of a residue to the origin. `key` is the line of the configuration that names the residue.
Status moveToPivot(PDBInfo *pdbInfo, int resID, const char *key, Messages &messages)
{
    const auto atoms = pdbInfo->atoms();
    const auto pivot = std::ranges::find_if(
        atoms, [resID](const AtomInfo &atom) { return atom.resID == resID && atom.atomName == "CA"; });
    if (pivot == atoms.end())
        return messages.fail("initOrient: %s residue %d has no atom CA.\n", key, resID);
    moveToOrigin(pdbInfo, positionOf(*pivot));
    return Status::ok;
}

bool isBackbone(const AtomInfo &atom)
{
    return atom.atomName == "C" || atom.atomName == "CA" || atom.atomName == "N";
}

/// The exposed ones of the backbone atoms for which isWanted holds.
template <class IsWanted>
Status exposedBackbone(const PDBInfo &pdbInfo, IsWanted isWanted, std::vector<std::size_t> &exposed,
                       Messages &messages)
{
    std::vector<std::size_t> measured;
    AtomMask mask(pdbInfo.atoms().size(), 0);
    for (std::size_t i = 0; i < mask.size(); ++i)
        if (const AtomInfo &atom = pdbInfo.atomList[i]; isBackbone(atom) && isWanted(atom)) {
            mask[i] = 1;
            measured.push_back(i);
        }
    if (measured.empty())
        return messages.fail("Error in chkDomClash: zero atoms selected.");
    std::vector<bool> isExposed;
    if (findExposed({pdbInfo, mask}, isExposed, messages) != Status::ok)
        return Status::failed;
    exposed.clear();
    for (std::size_t k = 0; k < measured.size(); ++k)
        if (isExposed[k])
            exposed.push_back(measured[k]);
    return Status::ok;
}

} // namespace

Status initOrient(PDBInfo *pdbInfo, const DomainOptions &options, int yzFlag, Messages &messages)
{
    Axis mean;
    if (meanOfResidues(*pdbInfo, options.startResPart1, options.endResPart1, mean, messages) != Status::ok)
        return Status::failed;
    moveToOrigin(pdbInfo, mean);
    Matrix3d inertiaTensor;
    TensorAnalysis analysis;
    if (calcInertiaSel(*pdbInfo, options.startResPart1, options.endResPart1, inertiaTensor, messages) !=
        Status::ok)
        return Status::failed;
    if (analyzeMatrix3D(inertiaTensor, yzFlag, analysis, messages) != Status::ok)
        return messages.fail("initOrient: error in analyzeMatrix3D.");
    const EulerLists &euler = analysis.euler;
    if (options.initOrientFlag != 0 && rotateDomain({-euler.gamma[0], -euler.beta[0], -euler.alpha[0]},
                                                    pdbInfo, pdbInfo->minResID, pdbInfo->maxResID) != 0)
        return messages.fail("initOrient: error in rotateDomain.");
    if (options.angleDomFlag != 0 && positionDomain(pdbInfo, options, messages) != Status::ok)
        return Status::failed;
    return moveToPivot(pdbInfo, options.resDom1Origin, "ORIGIN_DOM1:", messages);
}

Status positionDomain(PDBInfo *pdbInfo, const DomainOptions &options, Messages &messages)
{
    const int resN = options.startResDom2, resC = options.endResDom2;
    if (std::ranges::none_of(pdbInfo->atoms(),
                             [&](const AtomInfo &atom) { return isInRange(atom, resN, resC); }))
        messages.err("Warning: no atoms in residues %d to %d of domain 2: nothing of it is turned.\n", resN,
                     resC);
    if (moveToPivot(pdbInfo, options.resDom2Origin, "ORIGIN_DOM2:", messages) != Status::ok)
        return Status::failed;
    const auto &angle = options.angleDom;
    if (rotateDomain(
            {static_cast<double>(angle[0]), static_cast<double>(angle[1]), static_cast<double>(angle[2])},
            pdbInfo, resN, resC) != 0)
        return messages.fail("initOrient: error in rotateDomain.");
    return moveToPivot(pdbInfo, options.resDom1Origin, "ORIGIN_DOM1:", messages);
}

Status selectSurfDom(const PDBInfo &pdbInfo, int resN, int resC, std::vector<std::size_t> &indI,
                     std::vector<std::size_t> &indJ, Messages &messages)
{
    const auto isInDomain = [=](const AtomInfo &atom) { return isInRange(atom, resN, resC); };
    const Status status = exposedBackbone(pdbInfo, isInDomain, indI, messages);
    return status != Status::ok
               ? status
               : exposedBackbone(
                     pdbInfo, [&](const AtomInfo &atom) { return !isInDomain(atom); }, indJ, messages);
}

bool chkClashDom(const PDBInfo &pdbInfo, float clashDist, std::span<const std::size_t> indI,
                 std::span<const std::size_t> indJ, Messages &messages)
{
    for (const std::size_t i : indI) {
        const AtomInfo &a = pdbInfo.atomList[i];
        for (const std::size_t j : indJ) {
            const AtomInfo &b = pdbInfo.atomList[j];
            const float dx = a.x - b.x;
            if (std::fabs(dx) >= clashDist) // no distance is below its x part, rounded or not
                continue;
            const float distance = calcNorm(dx, a.y - b.y, a.z - b.z);
            if (distance >= clashDist)
                continue;
            messages.out("\nREMARK steric clash of %5d %6s %6s   and  %5d %6s %6s : %6.2f A\n", a.resID,
                         a.resName.c_str(), a.atomName.c_str(), b.resID, b.resName.c_str(),
                         b.atomName.c_str(), static_cast<double>(distance));
            return true;
        }
    }
    return false;
}

Status calcInertiaSel(const PDBInfo &pdbInfo, int resN, int resC, Matrix3d &inertiaTensor, Messages &messages)
{
    std::vector<Axis> points;
    if (forEachHeavy(pdbInfo, resN, resC, [&](const Axis &position) { points.push_back(position); }) == 0)
        return messages.fail("Error in initOrient: zero atoms selected.");
    inertiaTensor = secondMoments(points);
    return Status::ok;
}

} // namespace trelm
