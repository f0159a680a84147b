#include "couplings/coupling_type.h"

#include "support/text/text.h"

#include <algorithm>
#include <cstdint>
#include <string_view>

namespace trelm {
namespace {

/// A pair of the backbone under the name it goes by.
struct BackboneType {
    std::string_view first, second;
    int step; ///< residue of the second atom minus that of the first
};

constexpr BackboneType backboneTypes[] = {
    {"N", "H", 0},  {"H", "C", -1},  {"CA", "HA", 0}, {"N", "C", -1},  {"CA", "C", 0},
    {"N", "CA", 0}, {"CA", "CB", 0}, {"N", "CA", -1}, {"H", "CA", -1}, {"H", "CA", 0},
};

constexpr int farStep = 3; ///< steps from here on are one

/// The name of an atom of the backbone; empty for others.
std::string_view backboneName(std::string_view atom)
{
    if (atom == "HN")
        return "H";
    if (atom.starts_with("HA") && atom.size() <= 3) // of a glycine
        return "HA";
    constexpr std::string_view others[] = {"N", "H", "C", "CA", "CB"};
    return std::ranges::find(others, atom) != std::end(others) ? atom : std::string_view();
}

/// The letter of the nucleus, behind a leading digit.
std::string nucleusOf(std::string_view atom)
{
    const std::size_t place = !atom.empty() && atom[0] >= '0' && atom[0] <= '9' ? 1 : 0;
    return std::string(atom.substr(std::min(place, atom.size()), 1));
}

std::string nameWithStep(std::string_view first, std::string_view second, int step)
{
    std::string name = std::string(first).append("-").append(second);
    if (step >= farStep || step <= -farStep)
        name += " far";
    else if (step != 0)
        appendf(name, " i,i%+d", step);
    return name;
}

std::string typeName(std::string_view atomI, std::string_view atomJ, int step)
{
    const std::string_view i = backboneName(atomI), j = backboneName(atomJ);
    if (i.empty() || j.empty()) {
        std::string first = nucleusOf(atomI), second = nucleusOf(atomJ);
        if (first == "H" && second != "H")
            std::swap(first, second);
        return "other " + first + "-" + second;
    }
    for (const BackboneType &row : backboneTypes)
        if ((row.first == i && row.second == j && row.step == step) ||
            (row.first == j && row.second == i && row.step == -step))
            return std::string(row.first).append("-").append(row.second) +
                   (row.step == -1 && row.second == "CA" ? " i,i-1" : "");
    return j < i ? nameWithStep(j, i, -step) : nameWithStep(i, j, step);
}

} // namespace

std::size_t CouplingTypes::of(const DInfo &row)
{
    const auto step =
        static_cast<int>(std::clamp<std::int64_t>(std::int64_t{row.resIDJ} - row.resIDI, -farStep, farStep));
    const auto key = std::pair(row.names, step);
    if (const auto found = known_.find(key); found != known_.end())
        return found->second;
    const std::string name = typeName(row.names->atomNameI.view(), row.names->atomNameJ.view(), step);
    const auto place = static_cast<std::size_t>(std::ranges::find(names_, name) - names_.begin());
    if (place == names_.size())
        names_.push_back(name);
    known_.emplace(key, place);
    return place;
}

} // namespace trelm
