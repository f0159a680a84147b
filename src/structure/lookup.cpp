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

ResInfo *findRes(PDBInfo *pdbInfo, int resID, std::string_view chainName, std::string_view segName)
{
    if (pdbInfo == nullptr || resID < pdbInfo->minResID || resID > pdbInfo->maxResID)
        return nullptr;
    std::string key;
    buildResText(resID, chainName, segName, key);
    const auto place = hFindSym(key, pdbInfo->resTab);
    return place ? &pdbInfo->resList[static_cast<std::size_t>(*place)] : nullptr;
}

AtomInfo *findAtom(PDBInfo *pdbInfo, int resID, std::string_view atomName, std::string_view chainName,
                   std::string_view segName)
{
    if (pdbInfo == nullptr)
        return nullptr;
    std::string key;
    buildLookupText(resID, atomName, chainName, segName, key);
    const auto place = hFindSym(key, pdbInfo->atomTab);
    return place ? &pdbInfo->atomList[static_cast<std::size_t>(*place)] : nullptr;
}

int findAtomList(PDBInfo *pdbInfo, int resID, std::string_view atomName, std::string_view chainName,
                 std::string_view segName, std::span<AtomInfo *> atomList)
{
    std::size_t count = 0;
    const auto look = [&](std::string_view name) {
        AtomInfo *atom = findAtom(pdbInfo, resID, name, chainName, segName);
        if (atom != nullptr && count < atomList.size())
            atomList[count++] = atom;
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

float findAtomListRad(std::span<AtomInfo *const> atomListI, std::span<AtomInfo *const> atomListJ)
{
    if (atomListI.empty() || atomListJ.empty())
        return 0.0f;
    const float share = 1.0f / static_cast<float>(atomListI.size() * atomListJ.size());
    float rIJ = 0.0f;
    for (const AtomInfo *i : atomListI) {
        for (const AtomInfo *j : atomListJ) {
            const double dx = static_cast<double>(i->x) - j->x;
            const double dy = static_cast<double>(i->y) - j->y;
            const double dz = static_cast<double>(i->z) - j->z;
            rIJ += static_cast<float>(std::sqrt(dx * dx + dy * dy + dz * dz)) * share;
        }
    }
    return rIJ;
}

} // namespace trelm
