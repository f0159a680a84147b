#include "structure/backbone.h"

#include "structure/transform.h"
#include "support/numerics/vec3.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <limits>

namespace trelm {
namespace {

constexpr int maskPhi = 1;
constexpr int maskPsi = 2;

Vec3 difference(const Coord3D &a, const Coord3D &b)
{
    return {static_cast<double>(a.x) - b.x, static_cast<double>(a.y) - b.y, static_cast<double>(a.z) - b.z};
}

Coord3D place(const AtomInfo *atom)
{
    return {atom->x, atom->y, atom->z};
}

/// The four atoms of a torsion angle; complete only if all were found.
struct Torsion {
    AtomInfo *atoms[4] = {};
    [[nodiscard]] bool isComplete() const
    {
        return std::ranges::none_of(atoms, [](const AtomInfo *atom) { return atom == nullptr; });
    }
    [[nodiscard]] float angle() const
    {
        float value = 0.0f; // it stays so for an angle without a cosine, which finite coordinates do not make
        getDihedralAngle(place(atoms[0]), place(atoms[1]), place(atoms[2]), place(atoms[3]), value);
        return value;
    }
};

struct Backbone {
    Torsion phi, psi;
};

/// The backbone atoms around a residue. The limits of int have no neighbour.
Backbone findBackbone(PDBInfo *pdbInfo, int resID, std::string_view chainName, std::string_view segName)
{
    Backbone backbone;
    if (pdbInfo == nullptr || resID < pdbInfo->minResID || resID > pdbInfo->maxResID)
        return backbone;
    const auto find = [&](std::int64_t number, std::string_view name) -> AtomInfo * {
        if (number < std::numeric_limits<int>::min() || number > std::numeric_limits<int>::max())
            return nullptr;
        return findAtom(pdbInfo, static_cast<int>(number), name, chainName, segName);
    };
    AtomInfo *n = find(resID, "N");
    AtomInfo *ca = find(resID, "CA");
    AtomInfo *c = find(resID, "C");
    backbone.phi = {{find(std::int64_t{resID} - 1, "C"), n, ca, c}};
    backbone.psi = {{n, ca, c, find(std::int64_t{resID} + 1, "N")}};
    return backbone;
}

/// What setPDBPhiPsi writes into `selected` while it works.
constexpr int lowSide = 0;
constexpr int highSide = 1;
constexpr int otherSegment = 2;

/// Marks the two sides of a residue; within it the atoms of these names belong to `sideOfNames`, all others
/// to the other side.
void markSides(SegInfo &segment, int resID, std::initializer_list<std::string_view> names, int sideOfNames)
{
    for (int i = 0; i < segment.atomCount; ++i) {
        AtomInfo &atom = *segment.atomList[static_cast<std::size_t>(i)];
        if (atom.resID != resID) {
            atom.selected = atom.resID < resID ? lowSide : highSide;
        } else {
            const bool named = std::ranges::find(names, atom.atomName.view()) != names.end();
            atom.selected = named ? sideOfNames : 1 - sideOfNames;
        }
    }
}

/// True if the residue stands in the lower half of its segment, whose low side is then the shorter.
bool isLowHalf(const SegInfo &segment, int resID)
{
    return (std::int64_t{segment.minResID} + segment.maxResID) / 2 >= resID;
}

void moveSide(SegInfo &segment, int side, const Transform &turn)
{
    for (int i = 0; i < segment.atomCount; ++i) {
        AtomInfo &atom = *segment.atomList[static_cast<std::size_t>(i)];
        if (atom.selected != side)
            continue;
        Coord3D r = place(&atom);
        turn.apply({&r, 1});
        atom.x = r.x;
        atom.y = r.y;
        atom.z = r.z;
    }
}

/// Turns the shorter side by `delta` degrees about the bond between two atoms, which stay. `low` is the atom
/// of the bond on the low side.
void turnShorterSide(SegInfo &segment, int resID, AtomInfo &low, AtomInfo &high, float delta)
{
    const bool lowMoves = isLowHalf(segment, resID);
    const Coord3D from = place(lowMoves ? &high : &low);
    const Coord3D to = place(lowMoves ? &low : &high);
    low.selected = high.selected = lowMoves ? highSide : lowSide;
    Transform turn;
    turn.appendRotation(from, to, delta);
    moveSide(segment, lowMoves ? lowSide : highSide, turn);
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

int getPDBPhiPsi(PDBInfo *pdbInfo, int resID, std::string_view chainName, std::string_view segName,
                 float &phi, float &psi)
{
    const Backbone backbone = findBackbone(pdbInfo, resID, chainName, segName);
    phi = backbone.phi.isComplete() ? backbone.phi.angle() : noAngle;
    psi = backbone.psi.isComplete() ? backbone.psi.angle() : noAngle;
    return (backbone.phi.isComplete() ? maskPhi : 0) + (backbone.psi.isComplete() ? maskPsi : 0);
}

int setPDBPhiPsi(PDBInfo *pdbInfo, int resID, std::string_view chainName, std::string_view segName,
                 float phiNew, float psiNew)
{
    if (pdbInfo == nullptr || resID < pdbInfo->minResID || resID > pdbInfo->maxResID)
        return 0;
    const Backbone backbone = findBackbone(pdbInfo, resID, chainName, segName);
    const float phi = backbone.phi.isComplete() ? backbone.phi.angle() : noAngle;
    const float psi = backbone.psi.isComplete() ? backbone.psi.angle() : noAngle;
    for (AtomInfo &atom : pdbInfo->atoms())
        atom.selected = otherSegment;
    int result = 0;
    if (backbone.phi.isComplete()) {
        AtomInfo &n = *backbone.phi.atoms[1];
        AtomInfo &ca = *backbone.phi.atoms[2];
        markSides(*n.segInfo, resID, {"N", "HN", "H"}, lowSide);
        turnShorterSide(*n.segInfo, resID, n, ca, phiNew - phi);
        result += maskPhi;
    }
    if (backbone.psi.isComplete()) {
        AtomInfo &ca = *backbone.psi.atoms[1];
        AtomInfo &c = *backbone.psi.atoms[2];
        markSides(*ca.segInfo, resID, {"C", "O", "CO"}, highSide);
        turnShorterSide(*ca.segInfo, resID, ca, c, psiNew - psi);
        result += maskPsi;
    }
    return result;
}

} // namespace trelm
