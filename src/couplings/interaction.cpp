#include "couplings/interaction.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>

namespace trelm {
namespace {

/// A pair of the backbone whose distance is taken as known.
struct FixedDistance {
    int step; ///< residue of J minus residue of I
    std::string_view atomI, atomJ;
    float rIJ; ///< angstrom
};

// Effective distances, which contain the librations of the bond: as measured for N-H by Ottiger and Bax, J.
// Am. Chem. Soc. 120 (1998) 12334. The first row that fits counts. N before H in one residue is missing: such
// a pair takes the distance of the structure.
constexpr FixedDistance fixedDistances[] = {
    {0, "HN", "N", 1.041f},  {0, "N", "HN", 1.041f},   {0, "H", "N", 1.041f},    {0, "N", "N", 1.041f},
    {0, "HA", "CA", 1.107f}, {0, "HA#", "CA", 1.107f}, {0, "HA1", "CA", 1.107f}, {0, "HA2", "CA", 1.107f},
    {0, "CA", "HA", 1.107f}, {0, "CA", "HA#", 1.107f}, {0, "CA", "HA1", 1.107f}, {0, "CA", "HA2", 1.107f},
    {0, "N", "CA", 1.458f},  {0, "CA", "N", 1.458f},   {0, "C", "CA", 1.525f},   {0, "CA", "C", 1.525f},
    {1, "C", "HN", 2.085f},  {1, "C", "H", 2.085f},    {1, "C", "N", 1.329f},    {-1, "HN", "C", 2.085f},
    {-1, "H", "C", 2.085f},  {-1, "N", "C", 1.329f},
};

/// Gyromagnetic ratio of a nucleus, rad / (s T), with the digits of common NMR tables: all constants, and so
/// all tensors, hang on these very values.
struct GyroRatio {
    char letter;
    float ratio;
};

constexpr GyroRatio gyroRatios[] = {
    {'C', 6.7283e7f},   {'D', 4.1066e7f},  {'F', 2.517e8f},
    {'H', 2.675198e8f}, {'N', -2.7116e7f}, {'P', 1.0829e8f},
};

/// Turns gI gJ / r^3 (r in angstrom) into a coupling in Hz: mu0 h / (8 pi^3), with its sign in the ratios.
constexpr double couplingScale = 3.356809e-12;

/// Below this cube of a distance two atoms count as one: its inverse is no number to go on with.
constexpr float smallestCube = 1.0e-30f;

const FixedDistance *findFixedDistance(const PairSide &sideI, const PairSide &sideJ)
{
    const std::int64_t step = std::int64_t{sideJ.resID} - sideI.resID;
    for (const FixedDistance &row : fixedDistances)
        if (row.step == step && row.atomI == sideI.atomName && row.atomJ == sideJ.atomName)
            return &row;
    return nullptr;
}

bool isLetter(char c)
{
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

/// The letter of the nucleus: the first one, or the one behind a leading digit. 0 if there is none.
char atomLetter(std::string_view atomName)
{
    if (!atomName.empty() && isLetter(atomName[0]))
        return atomName[0];
    return atomName.size() > 1 ? atomName[1] : '\0';
}

/// The ratio of an atom; nothing, after a message, if its nucleus is not known.
std::optional<float> findGyroRatio(std::string_view atomName, Messages &messages)
{
    const auto *row = std::ranges::find(gyroRatios, atomLetter(atomName), &GyroRatio::letter);
    if (row != std::end(gyroRatios))
        return row->ratio;
    messages.err("Dipolar Interaction - Unknown atom %s.\n", std::string(atomName).c_str());
    return std::nullopt;
}

} // namespace

Interaction findVariableDI(float rIJ, const PairSide &sideI, const PairSide &sideJ, int allowFixedDI,
                           Messages &messages)
{
    const FixedDistance *fixed = allowFixedDI != 0 ? findFixedDistance(sideI, sideJ) : nullptr;
    const float r = fixed != nullptr ? fixed->rIJ : rIJ;
    const float cube = r * r * r;
    const float r3 = cube > smallestCube ? 1.0f / cube : 0.0f;
    const std::optional<float> gI = findGyroRatio(sideI.atomName, messages);
    const std::optional<float> gJ = findGyroRatio(sideJ.atomName, messages);
    return {.di = static_cast<float>(double{gI.value_or(1.0f)} * couplingScale * gJ.value_or(1.0f) * r3),
            .isFixed = fixed != nullptr,
            .isKnown = gI && gJ};
}

} // namespace trelm
