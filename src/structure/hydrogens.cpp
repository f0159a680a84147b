#include "structure/hydrogens.h"

#include "support/numerics/vec3.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

namespace trelm {
namespace {

constexpr double longestPeptideBond = 2.0; ///< angstrom; C and N farther apart are of a break in the chain
constexpr double halfTetrahedral = 109.5 / 2.0; ///< degrees

/// Neighbours in the file, with their places in space.
struct Residue {
    std::span<const AtomInfo> atoms;
    std::span<const Coord3D> coords;
};

/// An atom that may not be there.
struct Site {
    const AtomInfo *atom = nullptr;
    Vec3 at = {}; ///< angstrom
    explicit operator bool() const { return atom != nullptr; }
};

/// What was read, with what was built.
struct Built {
    std::vector<AtomInfo> atoms;
    std::vector<Coord3D> coords;
};

bool isOneResidue(const AtomInfo &a, const AtomInfo &b)
{
    return a.resID == b.resID && a.icode == b.icode && a.chainID == b.chainID && a.segID == b.segID;
}

Site findOneOf(const Residue &residue, std::initializer_list<std::string_view> names)
{
    for (std::size_t i = 0; i < residue.atoms.size(); ++i)
        if (std::ranges::find(names, residue.atoms[i].atomName.view()) != names.end()) {
            const Coord3D &at = residue.coords[i];
            return {&residue.atoms[i], {at.x, at.y, at.z}};
        }
    return {};
}

Vec3 fromTo(const Site &a, const Site &b)
{
    return {b.at[0] - a.at[0], b.at[1] - a.at[1], b.at[2] - a.at[2]};
}

double lengthOf(const Vec3 &v)
{
    return std::sqrt(dot(v, v));
}

/// Of length 1; atoms at one place have no direction, and get 0.
Vec3 direction(const Vec3 &v)
{
    const double length = lengthOf(v);
    return length > 0.0 ? scaled(v, 1.0 / length) : Vec3{};
}

Vec3 sumOf(const Vec3 &a, const Vec3 &b)
{
    return {a[0] + b[0], a[1] + b[1], a[2] + b[2]};
}

/// A hydrogen of `heavy`, at the end of `bond` (angstrom).
void addHydrogen(const Site &heavy, std::string_view name, const Vec3 &bond, Built &built)
{
    AtomInfo atom = *heavy.atom;
    atom.atomName = Name::of(name);
    atom.element = Name::of("H");
    atom.chargeStr = Name{};
    built.atoms.push_back(atom);
    const Vec3 at = sumOf(heavy.at, bond);
    built.coords.push_back({static_cast<float>(at[0]), static_cast<float>(at[1]), static_cast<float>(at[2])});
}

/// `before` is the residue before it in the file.
void buildAmide(const Residue &residue, const Residue &before, double bond, Built &built)
{
    const Site n = findOneOf(residue, {"N"}), ca = findOneOf(residue, {"CA"}), c = findOneOf(before, {"C"});
    if (!n || !ca || !c || n.atom->resName == "PRO" ||
        findOneOf(residue, {"H", "HN", "D", "DN", "H1", "1H", "HT1", "HN1"}))
        return;
    const bool isBonded = n.atom->chainID == c.atom->chainID && n.atom->segID == c.atom->segID &&
                          lengthOf(fromTo(n, c)) <= longestPeptideBond;
    if (!isBonded)
        return;
    const Vec3 inwards = sumOf(direction(fromTo(n, c)), direction(fromTo(n, ca)));
    addHydrogen(n, "H", scaled(direction(inwards), -bond), built);
}

void buildAlpha(const Residue &residue, double bond, Built &built)
{
    const Site n = findOneOf(residue, {"N"}), ca = findOneOf(residue, {"CA"}), c = findOneOf(residue, {"C"}),
               cb = findOneOf(residue, {"CB"});
    if (!n || !ca || !c || findOneOf(residue, {"HA", "HA1", "HA2", "HA3", "1HA", "2HA", "DA"}))
        return;
    const Vec3 toN = direction(fromTo(ca, n)), toC = direction(fromTo(ca, c));
    if (cb) {
        const Vec3 inwards = sumOf(sumOf(toN, toC), direction(fromTo(ca, cb)));
        addHydrogen(ca, "HA", scaled(direction(inwards), -bond), built);
    } else if (ca.atom->resName == "GLY") {
        const double half = halfTetrahedral * radiansOfDegree;
        const Vec3 outwards = scaled(direction(sumOf(toN, toC)), -bond * std::cos(half));
        // CB of the other residues lies on this side of the plane through N, CA and C.
        const Vec3 sideways = scaled(direction(cross(toN, toC)), bond * std::sin(half));
        addHydrogen(ca, "HA2", sumOf(outwards, scaled(sideways, -1.0)), built);
        addHydrogen(ca, "HA3", sumOf(outwards, sideways), built);
    }
}

/// The first residue of what is left of a file.
Residue firstResidue(const Residue &rest)
{
    const auto end = std::ranges::find_if(
        rest.atoms, [&](const AtomInfo &atom) { return !isOneResidue(atom, rest.atoms[0]); });
    const auto count = static_cast<std::size_t>(end - rest.atoms.begin());
    return {rest.atoms.first(count), rest.coords.first(count)};
}

Built buildAll(const HydrogenBonds &bonds, Residue rest)
{
    Built built;
    for (Residue before; !rest.atoms.empty();) {
        const Residue residue = firstResidue(rest);
        built.atoms.insert(built.atoms.end(), residue.atoms.begin(), residue.atoms.end());
        built.coords.insert(built.coords.end(), residue.coords.begin(), residue.coords.end());
        buildAmide(residue, before, bonds.nitrogen, built);
        buildAlpha(residue, bonds.carbon, built);
        before = residue;
        rest = {rest.atoms.subspan(residue.atoms.size()), rest.coords.subspan(residue.atoms.size())};
    }
    return built;
}

} // namespace

Status addHydrogens(const HydrogenBonds &bonds, PDBInfo &pdbInfo, std::size_t &built, Messages &messages)
{
    Built all = buildAll(bonds, {pdbInfo.atoms(), pdbInfo.coordinates()});
    built = all.atoms.size() - pdbInfo.atoms().size();
    int lastID = 0;
    for (AtomInfo &atom : all.atoms) // the serial numbers of the file, shifted by what was built before
        lastID = atom.atomID = std::max(atom.atomID, lastID + 1);
    Block<AtomInfo> atoms("pdb", all.atoms.size());
    Block<Coord3D> coords("pdb", all.coords.size());
    if (!atoms || !coords)
        return messages.fail("PDB Error Allocating Atom memory.\n");
    std::ranges::copy(all.atoms, atoms.data());
    std::ranges::copy(all.coords, coords.data());
    pdbInfo.atomList = std::move(atoms);
    pdbInfo.coordList = std::move(coords);
    pdbInfo.atomCount = static_cast<int>(all.atoms.size());
    return Status::ok;
}

} // namespace trelm
