#include "structure/backbone.h"

#include "structure/transform.h"
#include "support/numerics/vec3.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>

namespace trelm {
namespace {

constexpr int maskPhi = 1;
constexpr int maskPsi = 2;

Vec3 difference(const Coord3D &a, const Coord3D &b)
{
    return {static_cast<double>(a.x) - b.x, static_cast<double>(a.y) - b.y, static_cast<double>(a.z) - b.z};
}

Coord3D &place(const Conformation &molecule, const AtomInfo &atom)
{
    return molecule.coords[molecule.pdbInfo.placeOf(atom)];
}

/// The four atoms of a torsion angle; complete only if all were found.
struct Torsion {
    const AtomInfo *atoms[4] = {};
    [[nodiscard]] bool isComplete() const
    {
        return std::ranges::none_of(atoms, [](const AtomInfo *atom) { return atom == nullptr; });
    }
    [[nodiscard]] float angle(const Conformation &molecule) const
    {
        if (!isComplete())
            return noAngle;
        const auto at = [&](std::size_t i) { return place(molecule, *atoms[i]); };
        float value = 0.0f; // it stays so for an angle without a cosine, which finite coordinates do not make
        getDihedralAngle(at(0), at(1), at(2), at(3), value);
        return value;
    }
};

struct Backbone {
    Torsion phi, psi;
};

/// The backbone atoms around a residue. The limits of int have no neighbour.
Backbone findBackbone(const PDBInfo &pdbInfo, int resID, std::string_view chainName, std::string_view segName)
{
    Backbone backbone;
    if (resID < pdbInfo.minResID || resID > pdbInfo.maxResID)
        return backbone;
    const auto find = [&](std::int64_t number, std::string_view name) -> const AtomInfo * {
        if (number < std::numeric_limits<int>::min() || number > std::numeric_limits<int>::max())
            return nullptr;
        return findAtom(pdbInfo, static_cast<int>(number), name, chainName, segName);
    };
    const AtomInfo *n = find(resID, "N");
    const AtomInfo *ca = find(resID, "CA");
    const AtomInfo *c = find(resID, "C");
    backbone.phi = {{find(std::int64_t{resID} - 1, "C"), n, ca, c}};
    backbone.psi = {{n, ca, c, find(std::int64_t{resID} + 1, "N")}};
    return backbone;
}

/// A bond that a segment is turned about, both atoms in one residue. Within the residue the atoms of these
/// names belong to one side, all others to the other.
struct Hinge {
    const AtomInfo &low, &high; ///< they stay
    std::array<std::string_view, 3> names;
    bool namesAreLow;

    [[nodiscard]] bool isLow(const AtomInfo &atom) const
    {
        if (atom.resID != low.resID)
            return atom.resID < low.resID;
        return (std::ranges::find(names, atom.atomName.view()) != names.end()) == namesAreLow;
    }
    /// True if the residue stands in the lower half of its segment, whose low side is then the shorter.
    [[nodiscard]] bool lowMoves() const
    {
        return (std::int64_t{low.segInfo->minResID} + low.segInfo->maxResID) / 2 >= low.resID;
    }
};

/// Turns the shorter side by `delta` degrees about the bond.
void turnShorterSide(const Conformation &molecule, const Hinge &hinge, float delta)
{
    const bool lowMoves = hinge.lowMoves();
    Transform turn;
    turn.appendRotation(place(molecule, lowMoves ? hinge.high : hinge.low),
                        place(molecule, lowMoves ? hinge.low : hinge.high), delta);
    const SegInfo &segment = *hinge.low.segInfo;
    for (const AtomInfo *atom : segment.atomList.span().first(static_cast<std::size_t>(segment.atomCount)))
        if (atom != &hinge.low && atom != &hinge.high && hinge.isLow(*atom) == lowMoves)
            turn.apply({&place(molecule, *atom), 1});
}

} // namespace

int getDihedralAngle(const Coord3D &r0, const Coord3D &r1, const Coord3D &r2, const Coord3D &r3, float &phi)
{
    const Vec3 b1 = difference(r1, r0), b2 = difference(r2, r1), b3 = difference(r3, r2);
    const Vec3 n1 = cross(b1, b2), n2 = cross(b2, b3);
    const double norm = std::sqrt(dot(n1, n1)) * std::sqrt(dot(n2, n2));
    phi = 0.0f;
    if (norm == 0.0)
        return 0;
    const double cosine = dot(n1, n2) / norm;
    if (!(cosine >= -1.001 && cosine <= 1.001))
        return 1;
    phi = static_cast<float>(std::acos(std::clamp(cosine, -1.0, 1.0)) * degreesOfRadian);
    if (dot(cross(n1, n2), b2) < 0.0)
        phi = -phi;
    return 0;
}

int getPDBPhiPsi(const Conformation &molecule, int resID, std::string_view chainName,
                 std::string_view segName, float &phi, float &psi)
{
    const Backbone backbone = findBackbone(molecule.pdbInfo, resID, chainName, segName);
    phi = backbone.phi.angle(molecule);
    psi = backbone.psi.angle(molecule);
    return (backbone.phi.isComplete() ? maskPhi : 0) + (backbone.psi.isComplete() ? maskPsi : 0);
}

int setPDBPhiPsi(const Conformation &molecule, int resID, std::string_view chainName,
                 std::string_view segName, float phiNew, float psiNew)
{
    const Backbone backbone = findBackbone(molecule.pdbInfo, resID, chainName, segName);
    const auto &phi = backbone.phi, &psi = backbone.psi;
    const float phiTurn = phiNew - phi.angle(molecule), psiTurn = psiNew - psi.angle(molecule);
    if (phi.isComplete())
        turnShorterSide(molecule, {*phi.atoms[1], *phi.atoms[2], {"N", "HN", "H"}, true}, phiTurn);
    if (psi.isComplete())
        turnShorterSide(molecule, {*psi.atoms[1], *psi.atoms[2], {"C", "O", "CO"}, false}, psiTurn);
    return (phi.isComplete() ? maskPhi : 0) + (psi.isComplete() ? maskPsi : 0);
}

} // namespace trelm
