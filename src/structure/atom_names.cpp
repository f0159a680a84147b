#include "structure/atom_names.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace trelm {
namespace {

constexpr float farthestPair = 2.1f; ///< angstrom between two hydrogens of one carbon; others are farther

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

/// "1HB" as "HB1".
std::string digitLast(std::string_view name)
{
    std::string text(name);
    if (name.size() > 1 && isDigit(name[0]))
        std::rotate(text.begin(), text.begin() + 1, text.end());
    return text;
}

/// "HB1" as "1HB".
std::string digitFirst(std::string_view name)
{
    std::string text(name);
    if (name.size() > 1 && isDigit(name.back()))
        std::rotate(text.begin(), text.end() - 1, text.end());
    return text;
}

const AtomInfo *findExact(const ResInfo &residue, std::string_view name)
{
    const auto atoms = residue.atoms();
    const auto found =
        std::ranges::find_if(atoms, [&](const AtomInfo *atom) { return atom->atomName == name; });
    return found != atoms.end() ? *found : nullptr;
}

/// In either place of the digit.
const AtomInfo *findStyled(const ResInfo &residue, const std::string &name)
{
    const AtomInfo *found = findExact(residue, name);
    return found != nullptr ? found : findExact(residue, digitFirst(name));
}

/// The name with another number.
std::string numbered(const std::string &name, char digit)
{
    return name.substr(0, name.size() - 1) + digit;
}

/// Names of the amide hydrogen and of those at the start of a chain.
std::string otherBackboneName(const std::string &name)
{
    if (name == "H")
        return "HN";
    if (name == "HN")
        return "H";
    if (name.size() == 3 && name.starts_with("HT"))
        return {'H', name[2]};
    if (name.size() == 2 && name[0] == 'H' && isDigit(name[1]))
        return {'H', 'T', name[1]};
    return name;
}

} // namespace

const AtomInfo *findRenamed(const PDBInfo &pdbInfo, const ResInfo &residue, std::string_view name)
{
    const std::string modern = digitLast(name);
    if (modern.empty() || modern[0] != 'H')
        return nullptr;
    for (const std::string &candidate : {modern, otherBackboneName(modern)})
        if (const AtomInfo *found = findStyled(residue, candidate); found != nullptr)
            return found;
    const char digit = modern.back();
    if (digit != '1' && digit != '3')
        return nullptr;
    const char other = digit == '1' ? '3' : '1';
    const AtomInfo *second = findStyled(residue, numbered(modern, '2'));
    const AtomInfo *found = findStyled(residue, numbered(modern, other));
    if (second == nullptr || found == nullptr)
        return nullptr;
    const Coord3D &a = pdbInfo.coordList[pdbInfo.placeOf(*found)],
                  &b = pdbInfo.coordList[pdbInfo.placeOf(*second)];
    return std::hypot(a.x - b.x, a.y - b.y, a.z - b.z) < farthestPair ? found : nullptr;
}

std::string_view fullMethylName(std::string_view resName, std::string_view name)
{
    struct Methyl {
        std::string_view resName, name, full;
    };
    constexpr Methyl methyls[] = {{"THR", "MG", "MG2"}, {"ILE", "MG", "MG2"}, {"ILE", "MD", "MD1"}};
    for (const Methyl &methyl : methyls)
        if (methyl.resName == resName && methyl.name == name)
            return methyl.full;
    return name;
}

bool isHydrogenName(std::string_view name)
{
    const std::size_t letter = name.find_first_not_of("0123456789");
    return letter != std::string_view::npos && name[letter] == 'H';
}

bool hasHydrogens(const PDBInfo &pdbInfo)
{
    return std::ranges::any_of(pdbInfo.atoms(),
                               [](const AtomInfo &atom) { return isHydrogenName(atom.atomName.view()); });
}

} // namespace trelm
