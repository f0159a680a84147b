// Look-ups of residues and atoms by name.
#include "structure/keys.h"
#include "structure/pdb.h"

#include <cmath>

namespace trelm {
namespace {

constexpr std::string_view suffixes[] = {"", "1", "2", "3"};

/// The kinds of a wildcard, as isAtomExpr tells them.
constexpr int plainName = 0;
constexpr int numberWildcard = 1;
constexpr int textWildcard = 2;

/// The kind of the last wildcard of a name.
int wildcardKind(std::string_view atomName)
{
    const std::size_t last = atomName.find_last_of("#*");
    if (last == std::string_view::npos)
        return plainName;
    return atomName[last] == '#' ? numberWildcard : textWildcard;
}

/// Replaces each # by the number and each * by both texts.
std::string expandName(std::string_view atomName, std::string_view number, std::string_view first,
                       std::string_view second)
{
    std::string name;
    for (const char c : atomName) {
        if (c == '#')
            name += number;
        else if (c == '*')
            name.append(first).append(second);
        else
            name += c;
    }
    return name;
}

} // namespace

const ResInfo *findRes(const PDBInfo &pdbInfo, int resID, std::string_view chainName,
                       std::string_view segName)
{
    if (resID < pdbInfo.minResID || resID > pdbInfo.maxResID)
        return nullptr;
    std::string key;
    buildResText(resID, chainName, segName, key);
    const auto place = hFindSym(key, pdbInfo.resTab);
    return place ? &pdbInfo.resList[static_cast<std::size_t>(*place)] : nullptr;
}

const AtomInfo *findAtom(const PDBInfo &pdbInfo, int resID, std::string_view atomName,
                         std::string_view chainName, std::string_view segName)
{
    std::string key;
    std::optional<int> place;
    if (chainName.size() > 1) { // chains of mmCIF files have such names
        buildAtomText(resID, atomName, "", chainName, segName, key);
        place = hFindSym(key, pdbInfo.atomTab);
    }
    if (!place) {
        buildLookupText(resID, atomName, chainName, segName, key);
        place = hFindSym(key, pdbInfo.atomTab);
    }
    return place ? &pdbInfo.atomList[static_cast<std::size_t>(*place)] : nullptr;
}

int findAtomList(const PDBInfo &pdbInfo, int resID, std::string_view atomName, std::string_view chainName,
                 std::string_view segName, std::span<std::size_t> places)
{
    std::size_t count = 0;
    const auto look = [&](std::string_view name) {
        const AtomInfo *atom = findAtom(pdbInfo, resID, name, chainName, segName);
        if (atom != nullptr && count < places.size())
            places[count++] = pdbInfo.placeOf(*atom);
    };
    switch (wildcardKind(atomName)) {
    case numberWildcard:
        for (const std::string_view number : {"1", "2", "3"})
            look(expandName(atomName, number, number, ""));
        break;
    case textWildcard:
        for (const std::string_view first : suffixes)
            for (const std::string_view second : suffixes)
                look(expandName(atomName, first, first, second));
        break;
    default:
        look(atomName);
    }
    return static_cast<int>(count);
}

int isAtomExpr(std::string_view atomName, std::string &atomFmt)
{
    atomFmt = expandName(atomName, "%d", "%s", "%s");
    return wildcardKind(atomName);
}

float findAtomListRad(std::span<const Coord3D> coords, std::span<const std::uint32_t> placesI,
                      std::span<const std::uint32_t> placesJ)
{
    if (placesI.empty() || placesJ.empty())
        return 0.0f;
    const float share = 1.0f / static_cast<float>(placesI.size() * placesJ.size());
    float rIJ = 0.0f;
    for (const std::uint32_t placeI : placesI) {
        for (const std::uint32_t placeJ : placesJ) {
            const Coord3D &i = coords[placeI], &j = coords[placeJ];
            const double dx = static_cast<double>(i.x) - j.x;
            const double dy = static_cast<double>(i.y) - j.y;
            const double dz = static_cast<double>(i.z) - j.z;
            rIJ += static_cast<float>(std::sqrt(dx * dx + dy * dy + dz * dz)) * share;
        }
    }
    return rIJ;
}

} // namespace trelm
