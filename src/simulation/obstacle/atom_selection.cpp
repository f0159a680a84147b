#include "simulation/obstacle/atom_selection.h"

#include "simulation/charges/dipole.h"
#include "simulation/obstacle/exposure.h"
#include "simulation/obstacle/solute_options.h"
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
Status findExposedSpheres(const Spheres &spheres, std::vector<bool> &isExposed, Messages &messages)
{
    const ExposureLimit limit = {surfaceDensity, probeRadius, exposedRatio};
    if (findExposedBalls(spheres.co.span().first(3 * spheres.count),
                         spheres.radius.span().first(spheres.count), limit, isExposed,
                         messages) != Status::ok)
        return messages.fail("NSC: error.\n");
    return Status::ok;
}

void storePlace(const CoordinateBuffers &atoms, std::size_t place, double x, double y, double z)
{
    atoms.x[place] = x;
    atoms.y[place] = y;
    atoms.z[place] = z;
}

/// An atom at the place, as double.
void storeAtom(const CoordinateBuffers &atoms, std::size_t place, const Coord3D &at)
{
    storePlace(atoms, place, static_cast<double>(at.x), static_cast<double>(at.y), static_cast<double>(at.z));
}

/// Puts the charges' coordinates first, and renumbers the charges to match. A dipole replaces them by two.
Dipole putCharges(std::span<const Coord3D> coords, bool asDipole, const CoordinateBuffers &atoms,
                  ChargeSet &charges)
{
    const auto count = static_cast<std::size_t>(charges.chCount);
    for (std::size_t i = 0; i < count; ++i) {
        storeAtom(atoms, i, coords[static_cast<std::size_t>(charges.chargeAtomID[i])]);
        charges.chargeAtomID[i] = static_cast<int>(i);
    }
    const Dipole dipole = dipoleMoment(
        {atoms.x, atoms.y, atoms.z, charges.chargeAtomID.first(count), charges.charges.first(count)});
    if (!asDipole || dipole.magnitude == 0.0f)
        return dipole;
    for (std::size_t i = 0; i < 2; ++i) {
        const auto &centre = i == 0 ? dipole.avePos : dipole.aveNeg;
        storePlace(atoms, i, static_cast<double>(centre[0]), static_cast<double>(centre[1]),
                   static_cast<double>(centre[2]));
        charges.chargeAtomID[i] = static_cast<int>(i);
        charges.charges[i] = dipole.chargeDipol[i];
    }
    charges.chCount = 2;
    return dipole;
}

} // namespace

Status findExposed(const SelectedAtoms &selected, std::vector<bool> &isExposed, Messages &messages)
{
    const auto atoms = selected.pdbInfo.atoms();
    Spheres spheres("callNSC", atoms.size());
    if (!spheres.co || !spheres.radius)
        return messages.fail("callNSC: Error allocating coord buffers.\n");
    for (std::size_t i = 0; i < atoms.size(); ++i) {
        const Coord3D &at = selected.coords[i];
        if (selected.has(i))
            spheres.append(static_cast<double>(at.x), static_cast<double>(at.y), static_cast<double>(at.z),
                           static_cast<double>(atomRadius(atoms[i])) + probeRadius);
    }
    return findExposedSpheres(spheres, isExposed, messages);
}

Status callNSC(const SelectedAtoms &selected, AtomMask &exposed, Messages &messages)
{
    std::vector<bool> isExposed;
    if (findExposed(selected, isExposed, messages) != Status::ok)
        return Status::failed;
    exposed.assign(selected.mask.size(), 0);
    std::ranges::copy(isExposed, exposed.begin());
    return Status::ok;
}

Status surfSel(int atomCount, const CoordinateBuffers &atoms, int &atomSelCount, Messages &messages)
{
    const auto count = static_cast<std::size_t>(atomCount);
    Spheres spheres("surfSel", count);
    if (!spheres.co || !spheres.radius)
        return messages.fail("surfSel: Error allocating coord buffers.\n");
    for (std::size_t i = 0; i < count; ++i)
        spheres.append(atoms.x[i], atoms.y[i], atoms.z[i], freeRadius);
    std::vector<bool> isExposed;
    if (findExposedSpheres(spheres, isExposed, messages) != Status::ok)
        return Status::failed;
    std::size_t kept = 0;
    for (std::size_t i = 0; i < count; ++i)
        if (isExposed[i])
            storePlace(atoms, kept++, atoms.x[i], atoms.y[i], atoms.z[i]);
    atomSelCount = static_cast<int>(kept);
    return Status::ok;
}

Status chCoorSelect(const SelectedAtoms &molecule, const SoluteOptions &options,
                    const CoordinateBuffers &atoms, ChargeSet &charges, SelectedCount &selected,
                    Messages &messages)
{
    selected.atoms = molecule.mask;
    if (options.surfFlag != 0 && callNSC(molecule, selected.atoms, messages) != Status::ok)
        return messages.fail("Error reading selection of atoms.\n");
    if (options.elFlag != 0)
        selected.dipole = putCharges(molecule.coords, options.dipoleFlag != 0, atoms, charges);
    else
        charges.chCount = 0; // a steric simulation sees none of them
    selected.places = static_cast<std::size_t>(charges.chCount);
    if (options.dipoleFlag != 0 || options.chSelFlag != 0)
        return Status::ok; // charges only
    for (std::size_t i = 0; i < selected.atoms.size(); ++i)
        if (selected.atoms[i] != 0)
            storeAtom(atoms, selected.places++, molecule.coords[i]);
    return Status::ok;
}

Status makeSelectionBuffers(const char *tag, const PDBInfo &pdbInfo, SelectionBuffers &buffers,
                            Messages &messages)
{
    const std::size_t places = static_cast<std::size_t>(pdbInfo.atomCount) + maxCharges + 1;
    for (Block<double> *column : {&buffers.x, &buffers.y, &buffers.z})
        *column = Block<double>(tag, places);
    buffers.chargeAtomID = Block<int>(tag, maxCharges + 1);
    buffers.charges = Block<float>(tag, maxCharges + 1);
    const bool isMade = buffers.x && buffers.y && buffers.z && buffers.chargeAtomID && buffers.charges;
    return isMade ? Status::ok : messages.fail("Error allocating coord buffers.\n");
}

Status selectSolute(const SelectedAtoms &molecule, const SoluteOptions &options, const ChargeSet &original,
                    SelectionBuffers &buffers, Chosen &chosen, Messages &messages)
{
    chosen.charges = original;
    std::ranges::copy(original.chargeAtomID, buffers.chargeAtomID.data());
    std::ranges::copy(original.charges, buffers.charges.data());
    chosen.charges.chargeAtomID = buffers.chargeAtomID.span();
    chosen.charges.charges = buffers.charges.span();
    const CoordinateBuffers places = {buffers.x.span(), buffers.y.span(), buffers.z.span()};
    SelectedCount selected;
    const Status status = chCoorSelect(molecule, options, places, chosen.charges, selected, messages);
    const std::size_t count = selected.places;
    chosen.mask = std::move(selected.atoms);
    chosen.dipole = selected.dipole;
    chosen.atoms = {places.x.first(count), places.y.first(count), places.z.first(count)};
    return status;
}

} // namespace trelm
