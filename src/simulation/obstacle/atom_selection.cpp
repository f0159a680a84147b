#include "simulation/obstacle/atom_selection.h"

#include "simulation/charges/dipole.h"
#include "simulation/obstacle/surface.h"
#include "structure/select.h"
#include "support/text/text.h"

#include <algorithm>

namespace trelm {
namespace {

constexpr double probeRadius = 1.4; ///< of the solvent, angstrom
constexpr int surfaceDensity = 700;
constexpr double exposedRatio = 0.5; ///< exposed area over that of the bare atom

/// Radii of the bare atoms by the first letter of their names, angstrom.
struct RadiusRow {
    char firstLetter;
    float radius;
};

constexpr RadiusRow radiusRows[] = {{'C', 1.9f}, {'F', 1.9f}, {'N', 1.8f}, {'P', 1.8f}, {'S', 1.8f}};
constexpr float otherRadius = 1.4f;
constexpr double freeRadius = 3.1; ///< of an atom without a name, probe included

float atomRadius(const AtomInfo &atom)
{
    const auto *row = std::ranges::find(radiusRows, atom.atomName.text[0], &RadiusRow::firstLetter);
    return row != std::end(radiusRows) ? row->radius : otherRadius;
}

/// Three coordinates of each sphere and its radius with the probe.
struct Spheres {
    Block<double> co, radius;
    std::size_t count = 0;

    Spheres(const char *tag, std::size_t capacity) : co(tag, 3 * capacity), radius(tag, capacity) {}
    void append(double x, double y, double z, double withProbe)
    {
        co[3 * count] = x;
        co[3 * count + 1] = y;
        co[3 * count + 2] = z;
        radius[count++] = withProbe;
    }
};

/// For each sphere, whether enough of it is exposed. Returns 0, or 1 after a message.
int findExposed(const Spheres &spheres, std::vector<bool> &isExposed)
{
    Surface surface;
    if (nsc_dclm(spheres.co.span().first(3 * spheres.count), spheres.radius.span().first(spheres.count),
                 surfaceDensity, surfaceAtomAreas, surface) != 0)
        return complain("NSC: error.\n");
    isExposed.resize(spheres.count);
    for (std::size_t k = 0; k < spheres.count; ++k) {
        const double bare = spheres.radius[k] - probeRadius;
        isExposed[k] = surface.at_area[k] / (12.5663706 * (bare * bare)) > exposedRatio;
    }
    return 0;
}

void storePlace(const CoordinateBuffers &atoms, std::size_t place, double x, double y, double z)
{
    atoms.x[place] = x;
    atoms.y[place] = y;
    atoms.z[place] = z;
}

/// The atom at the place, as double.
void storeAtom(const CoordinateBuffers &atoms, std::size_t place, const AtomInfo &atom)
{
    storePlace(atoms, place, static_cast<double>(atom.x), static_cast<double>(atom.y),
               static_cast<double>(atom.z));
}

/// Puts the charges' coordinates first, and renumbers the charges to match. A dipole replaces them by two.
void placeCharges(const PDBInfo &pdbInfo, bool asDipole, const CoordinateBuffers &atoms, ChargeSet &charges,
                  int verb)
{
    const auto count = static_cast<std::size_t>(charges.chCount);
    for (std::size_t i = 0; i < count; ++i) {
        storeAtom(atoms, i, pdbInfo.atomList[static_cast<std::size_t>(charges.chargeAtomID[i])]);
        charges.chargeAtomID[i] = static_cast<int>(i);
    }
    const Dipole dipole = dipoleMoment(
        {atoms.x, atoms.y, atoms.z, charges.chargeAtomID.first(count), charges.charges.first(count)}, verb);
    if (!asDipole || dipole.magnitude == 0.0f)
        return;
    for (std::size_t i = 0; i < 2; ++i) {
        const auto &centre = i == 0 ? dipole.avePos : dipole.aveNeg;
        storePlace(atoms, i, static_cast<double>(centre[0]), static_cast<double>(centre[1]),
                   static_cast<double>(centre[2]));
        charges.chargeAtomID[i] = static_cast<int>(i);
        charges.charges[i] = dipole.chargeDipol[i];
    }
    charges.chCount = 2;
}

} // namespace

int callNSC(PDBInfo *pdbInfo)
{
    Spheres spheres("callNSC", static_cast<std::size_t>(pdbInfo->atomCount));
    if (!spheres.co || !spheres.radius)
        return complain("callNSC: Error allocating coord buffers.\n");
    for (const AtomInfo &atom : pdbInfo->atoms())
        if (atom.selected != 0)
            spheres.append(static_cast<double>(atom.x), static_cast<double>(atom.y),
                           static_cast<double>(atom.z), static_cast<double>(atomRadius(atom)) + probeRadius);
    std::vector<bool> isExposed;
    if (findExposed(spheres, isExposed) != 0)
        return 1;
    for (AtomInfo &atom : pdbInfo->atoms())
        atom.selected = 0;
    for (std::size_t k = 0; k < isExposed.size(); ++k)
        pdbInfo->atomList[k].selected = isExposed[k] ? 1 : 0;
    return 0;
}

int surfSel(int atomCount, const CoordinateBuffers &atoms, int &atomSelCount)
{
    const auto count = static_cast<std::size_t>(atomCount);
    Spheres spheres("surfSel", count);
    if (!spheres.co || !spheres.radius)
        return complain("surfSel: Error allocating coord buffers.\n");
    for (std::size_t i = 0; i < count; ++i)
        spheres.append(atoms.x[i], atoms.y[i], atoms.z[i], freeRadius);
    std::vector<bool> isExposed;
    if (findExposed(spheres, isExposed) != 0)
        return 1;
    std::size_t kept = 0;
    for (std::size_t i = 0; i < count; ++i)
        if (isExposed[i])
            storePlace(atoms, kept++, atoms.x[i], atoms.y[i], atoms.z[i]);
    atomSelCount = static_cast<int>(kept);
    return 0;
}

int chCoorSelect(PDBInfo *pdbInfo, const SoluteOptions &options, const CoordinateBuffers &atoms,
                 ChargeSet &charges, int verb, int &chAtomSelCount)
{
    if (options.surfFlag != 0 && callNSC(pdbInfo) != 0)
        return complain("Error reading selection of atoms.\n");
    if (options.elFlag != 0)
        placeCharges(*pdbInfo, options.dipoleFlag != 0, atoms, charges, verb);
    else
        charges.chCount = 0; // a steric simulation sees none of them
    chAtomSelCount = charges.chCount;
    if (options.dipoleFlag != 0 || options.chSelFlag != 0)
        return 0; // charges only
    for (const AtomInfo &atom : pdbInfo->atoms())
        if (atom.selected != 0)
            storeAtom(atoms, static_cast<std::size_t>(chAtomSelCount++), atom);
    return 0;
}

int makeSelectionBuffers(const char *tag, const PDBInfo &pdbInfo, SelectionBuffers &buffers)
{
    const std::size_t places = static_cast<std::size_t>(pdbInfo.atomCount) + maxCharges + 1;
    for (Block<double> *column : {&buffers.x, &buffers.y, &buffers.z})
        *column = Block<double>(tag, places);
    buffers.chargeAtomID = Block<int>(tag, maxCharges + 1);
    buffers.charges = Block<float>(tag, maxCharges + 1);
    buffers.marks = selectionMarks(pdbInfo);
    const bool isMade = buffers.x && buffers.y && buffers.z && buffers.chargeAtomID && buffers.charges;
    return isMade ? 0 : complain("Error allocating coord buffers.\n");
}

int selectSolute(PDBInfo *pdbInfo, const SoluteOptions &options, const ChargeSet &original,
                 SelectionBuffers &buffers, int verb, Chosen &chosen)
{
    restoreMarks(pdbInfo, buffers.marks);
    chosen.charges = original;
    std::ranges::copy(original.chargeAtomID, buffers.chargeAtomID.data());
    std::ranges::copy(original.charges, buffers.charges.data());
    chosen.charges.chargeAtomID = buffers.chargeAtomID.span();
    chosen.charges.charges = buffers.charges.span();
    const CoordinateBuffers places = {buffers.x.span(), buffers.y.span(), buffers.z.span()};
    int atomSelCount = 0;
    const int status = chCoorSelect(pdbInfo, options, places, chosen.charges, verb, atomSelCount);
    const auto count = static_cast<std::size_t>(atomSelCount);
    chosen.atoms = {places.x.first(count), places.y.first(count), places.z.first(count)};
    return status;
}

} // namespace trelm
