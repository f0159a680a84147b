#include "errors/cone_noise.h"

#include "couplings/window.h"
#include "structure/backbone.h"
#include "support/numerics/numbers.h"
#include "support/numerics/random.h"
#include "support/text/text.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <string>

namespace trelm {
namespace {

using Vector = std::array<float, 3>;

/// One side of a coupling: how its atoms are looked up, and the places of those that were found.
struct RowSide {
    SideQuery query;
    SideAtoms &atoms;
};

/// Both sides of a row. The names and numbers are those of the table: the calculated row has its number
/// shifted already.
struct RowSides {
    RowSide i, j;
};

RowSides sidesOf(const NoiseTarget &target, std::size_t row, int aOff)
{
    DTable &dTab = target.dTab;
    const RowQueries queries = queriesOf(target.molecule.pdbInfo, dTab, dTab.dObsList[row], aOff);
    DCalc &calc = dTab.dCalcList[row];
    return {{queries.i, calc.atomI}, {queries.j, calc.atomJ}};
}

Axis mean(std::span<const Coord3D> coords, std::span<const std::uint32_t> atoms)
{
    Axis sum = {};
    for (const std::uint32_t atom : atoms)
        for (std::size_t k = 0; k < 3; ++k)
            sum[k] += toAxis(coords[atom])[k];
    for (double &value : sum)
        value /= static_cast<double>(atoms.size());
    return sum;
}

Vector difference(const Axis &to, const Axis &from)
{
    return {static_cast<float>(to[0] - from[0]), static_cast<float>(to[1] - from[1]),
            static_cast<float>(to[2] - from[2])};
}

/// `from` plus the vector.
Coord3D moved(const Axis &from, const Vector &vector)
{
    return {static_cast<float>(from[0] + static_cast<double>(vector[0])),
            static_cast<float>(from[1] + static_cast<double>(vector[1])),
            static_cast<float>(from[2] + static_cast<double>(vector[2]))};
}

/// Looks the moved side up again. Returns whether it has atoms.
bool findAgain(const PDBInfo &pdbInfo, const RowSide &side)
{
    const SideQuery &query = side.query;
    modifyAtomCoorList(pdbInfo, query.resID, query.atomName.view(), query.chainName.view(),
                       query.segName.view(), side.atoms);
    return side.atoms.count != 0;
}

/// Three equivalent atoms and a single one: all three go to one place.
bool moveGroup(const Conformation &molecule, const RowSides &sides, const ConeSetup &cone,
               RandomStream &random)
{
    const bool groupIsI = sides.i.atoms.count >= sides.j.atoms.count;
    const RowSide &group = groupIsI ? sides.i : sides.j, &single = groupIsI ? sides.j : sides.i;
    const Axis from = toAxis(molecule.coords[single.atoms[0]]),
               to = mean(molecule.coords, group.atoms.span());
    // With the group on the first side the vector points away from it, and the group lands opposite: the
    // coupling does not see the sign.
    Vector vector = groupIsI ? difference(from, to) : difference(to, from);
    addVecNoise(random, vector, cone);
    for (const std::uint32_t atom : group.atoms.span())
        molecule.coords[atom] = moved(from, vector);
    return findAgain(molecule.pdbInfo, group);
}

/// Every pair for itself. The list that is walked is the one found last.
bool movePairs(const Conformation &molecule, const RowSides &sides, const ConeSetup &cone,
               RandomStream &random)
{
    for (std::size_t k = 0; k < sides.i.atoms.count; ++k)
        for (std::size_t l = 0; l < sides.j.atoms.count; ++l) {
            const Axis from = toAxis(molecule.coords[sides.i.atoms[k]]);
            Coord3D &at = molecule.coords[sides.j.atoms[l]];
            Vector vector = difference(toAxis(at), from);
            addVecNoise(random, vector, cone);
            at = moved(from, vector);
            if (!findAgain(molecule.pdbInfo, sides.j))
                return false;
        }
    return sides.i.atoms.count != 0 && sides.j.atoms.count != 0;
}

/// Draws and sets the two angles of a residue.
void turnResidue(RandomStream &random, const Conformation &molecule, const ResInfo &residue,
                 const ConeSetup &cone)
{
    const double phiInc = drawAngle(random, cone);
    const double psiInc = drawAngle(random, cone);
    float phi = 0.0f, psi = 0.0f;
    getPDBPhiPsi(molecule, residue.resID, residue.chainID.view(), residue.segID.view(), phi, psi);
    const auto turned = [](float angle, double inc) {
        return static_cast<float>(static_cast<double>(angle) + inc * 180.0 / pi);
    };
    setPDBPhiPsi(molecule, residue.resID, residue.chainID.view(), residue.segID.view(), turned(phi, phiInc),
                 turned(psi, psiInc));
}

} // namespace

int offsetOf(const ResidueOffset &offset)
{
    return shiftedRes(offset.aFirst, -std::int64_t{offset.segFirst});
}

ConeSetup coneOf(const ConeOptions &options)
{
    return {options.coneWidth, options.coneDig, options.coneFix,
            360.0 / static_cast<double>(options.coneDig)};
}

Status checkPositions(const ConeOptions &options, Messages &messages)
{
    if (options.noiseMode == noiseOnVectors &&
        options.coneDig == 0) // backbone angles have no place on a cone
        return messages.fail("trelm: -digCone 0: a cone needs at least one position.\n");
    return Status::ok;
}

void warnOfWidth(const ConeOptions &options, Messages &messages)
{
    const double width = options.coneWidth;
    if (width >= 180.0)
        messages.warn("Warning: -stdCone %g: an angle to an axis is below 180 degrees.\n", width);
    if (width > 0.0 && !coneOf(options).hasNoise())
        messages.warn("Warning: -stdCone %g: a Gaussian cone below %g degrees moves no atom.\n", width,
                      minConeWidth);
}

void rotCone(const Axis &A, double w, double Gamma, Axis &r)
{
    const double c = std::cos(Gamma), s = std::sin(Gamma);
    Axis u = {r[0] - c * A[0], r[1] - c * A[1], r[2] - c * A[2]};
    const auto length = static_cast<float>(std::sqrt(u[0] * u[0] + u[1] * u[1] + u[2] * u[2]));
    if (length == 0.0f)
        return;
    for (double &value : u)
        value /= static_cast<double>(length);
    const Axis v = {A[1] * u[2] - A[2] * u[1], A[2] * u[0] - A[0] * u[2], A[0] * u[1] - A[1] * u[0]};
    const double cosW = std::cos(w * pi / 180.0), sinW = std::sin(w * pi / 180.0);
    for (std::size_t k = 0; k < 3; ++k)
        r[k] = c * A[k] + s * (cosW * u[k] + sinW * v[k]);
}

double drawAngle(RandomStream &random, const ConeSetup &cone)
{
    if (cone.coneFix != 0)
        return cone.coneWidth * pi / 180.0;
    // Few draws are taken, and most of the others are seen to be none without a logarithm or a sine: |sin x|
    // <= |x|.
    const double scale = cone.coneWidth * pi / 180.0;
    for (;;) {
        const NormalDraw draw = random.drawGauss();
        const auto u = static_cast<double>(random.ran1());
        if (draw.isSurelyWithin(u, scale))
            continue;
        const double gamma = draw.value() * cone.coneWidth * pi / 180.0, size = std::fabs(gamma);
        if (!(size <= u || std::sin(size) <= u))
            return gamma;
    }
}

float addVecNoise(RandomStream &random, Vector &coor, const ConeSetup &cone)
{
    const Axis vector = {static_cast<double>(coor[0]), static_cast<double>(coor[1]),
                         static_cast<double>(coor[2])};
    const auto length =
        static_cast<float>(std::sqrt(vector[0] * vector[0] + vector[1] * vector[1] + vector[2] * vector[2]));
    if (!cone.hasNoise())
        return length;
    Axis unit = {};
    if (length != 0.0f)
        for (std::size_t k = 0; k < 3; ++k)
            unit[k] = roundedToFloat(vector[k] * (1.0 / static_cast<double>(length)));
    const double phi = std::atan2(unit[1], unit[0]);
    const double theta = halfPi - std::atan2(unit[2], std::sqrt(unit[0] * unit[0] + unit[1] * unit[1]));
    const double gamma = drawAngle(random, cone);
    const double sine = std::sin(theta - gamma);
    Axis r = {sine * std::cos(phi), sine * std::sin(phi), std::cos(theta - gamma)};
    const int k = truncated(random.ran3() * static_cast<float>(cone.coneDig));
    rotCone(unit, k * cone.rotInc, gamma, r);
    for (std::size_t i = 0; i < 3; ++i)
        coor[i] = static_cast<float>(r[i] * static_cast<double>(length));
    return length;
}

void addPhiPsiNoise(RandomStream &random, const NoiseTarget &target, const ConeSetup &cone,
                    const ResidueOffset &offset, int allowFixedDI, Messages &messages)
{
    if (!cone.hasNoise())
        return;
    const PDBInfo &pdbInfo = target.molecule.pdbInfo;
    const std::int64_t first = std::int64_t{pdbInfo.minResID} - 1;
    const std::int64_t last = std::int64_t{pdbInfo.maxResID} + 1;
    for (const ResInfo &residue : pdbInfo.residues())
        if (residue.resID >= first && residue.resID <= last)
            turnResidue(random, target.molecule, residue, cone);
    // An empty residue of number 0 closes the list. It has no angles to turn, but its draws are in the
    // sequence.
    if (first <= 0 && last >= 0) {
        drawAngle(random, cone);
        drawAngle(random, cone);
    }
    selectD(target.dTab.observed(), offset.segFirst, offset.segLast, largerInside);
    buildDC(pdbInfo, target.dTab,
            {.aOff = offsetOf(offset),
             .wOff = offset.segFirst,
             .wList = {},
             .allowFixedDI = allowFixedDI,
             .coords = target.molecule.coords},
            messages);
}

void modifyAtomCoorList(const PDBInfo &pdbInfo, int resID, std::string_view atomName,
                        std::string_view chainName, std::string_view segName, SideAtoms &atoms)
{
    std::string format;
    const bool isWild = isAtomExpr(atomName, format) != 0;
    atoms.count = 0;
    for (const char digit : {'1', '2', '3'}) {
        // Each wildcard takes the digit; a second text slot stays empty.
        std::string name;
        for (const char c : atomName)
            name += c == '#' || c == '*' ? digit : c;
        const AtomInfo *atom = findAtom(pdbInfo, resID, isWild ? name : atomName, chainName, segName);
        if (atom != nullptr)
            atoms.places[atoms.count++] = static_cast<std::uint32_t>(pdbInfo.placeOf(*atom));
        if (!isWild)
            break;
    }
}

int addPdbNoise(const NoiseTarget &target, const ConeSetup &cone, int aOff, std::span<const int> dCalcValid,
                RandomStream &random)
{
    constexpr std::uint32_t groupSize = 3;
    int count = 0;
    for (std::size_t row = 0; row < target.dTab.calculated().size(); ++row) {
        if (dCalcValid[row] == 0)
            continue;
        const RowSides sides = sidesOf(target, row, aOff);
        const bool isGroup = sides.i.atoms.count * sides.j.atoms.count == groupSize;
        const bool found = isGroup ? moveGroup(target.molecule, sides, cone, random)
                                   : movePairs(target.molecule, sides, cone, random);
        if (found)
            ++count;
        else
            target.dTab.dCalcList[row].valid = 0;
    }
    return count;
}

} // namespace trelm
