#include "simulation/alignment/alignment.h"

#include "simulation/alignment/electrostatic.h"
#include "simulation/alignment/grid3d.h"
#include "simulation/orientations/sphere.h"
#include "support/numerics/numbers.h"
#include "support/text/text.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>

namespace trelm {
namespace {

constexpr double mw_DMPC = 677.94; ///< molecular weights of the two lipids, g/mol
constexpr double mw_DHPC = 453.51;
constexpr double freeLipid = 0.005; ///< mol/l of the short lipid that stays outside the bicelles

void warn(const char *option, double value, const char *rule)
{
    complain("WARNING: %s %g: %s.\n", option, value, rule);
}

int refuse(const char *option, double value, const char *rule)
{
    return complain("trelm: %s %g: %s.\n", option, value, rule);
}

bool isPositive(float value)
{
    return value > 0.0f && std::isfinite(value);
}

/// One block of the order matrix. The three blocks show the same magnitude, that of the sum.
void printSaupe(const char *name, double gMag, const Saupe &saupe, const char *gap)
{
    std::printf("%s  gMag %e\n", name, gMag);
    for (const double element : saupe)
        std::printf("%e%s", element, gap);
    std::printf("\n");
}

int printBlocks(const TrelmInfo &trelmInfo, const Saupe &saupeSteric, const Saupe &saupeEl,
                const Saupe &saupe)
{
    TensorAnalysis analysis;
    for (const Saupe *part : {&saupeSteric, &saupeEl, &saupe})
        if (analyzeSaupe(*part, trelmInfo.yzFlag, trelmInfo.verbFlag, analysis) != 0)
            return complain("Matrix: error in analyzeSaupe.\n");
    printSaupe("SaupeSteric", analysis.gMag, saupeSteric, "  ");
    printSaupe("SaupeEl", analysis.gMag, saupeEl, " ");
    printSaupe("SaupeSum", analysis.gMag, saupe, "  ");
    return 0;
}

int checkOrientations(const TrelmInfo &trelmInfo)
{
    if (trelmInfo.densityNSC < 1)
        return refuse("-dot", trelmInfo.densityNSC, "the number of orientation points must be positive");
    const int dots = dotCount(trelmInfo.densityNSC);
    if (dots > maxOrientations)
        return complain("trelm: -dot %d gives %d orientation points, the limit is %d.\n",
                        trelmInfo.densityNSC, dots, maxOrientations);
    if (trelmInfo.digPsiNSC < 1)
        return refuse("-digPsi", trelmInfo.digPsiNSC, "the number of angle steps must be positive");
    if (trelmInfo.digPsiNSC > std::numeric_limits<int>::max() / dots)
        return complain("trelm: -digPsi %d with %d orientation points gives more than %d orientations.\n",
                        trelmInfo.digPsiNSC, dots, std::numeric_limits<int>::max());
    if (!std::isfinite(trelmInfo.lcOrder))
        return refuse("-lcS", number(trelmInfo.lcOrder), "the order is no number");
    return 0;
}

/// The wall or rod, and the steps away from it.
int checkObstacle(const TrelmInfo &trelmInfo)
{
    const double radiusModel = number(trelmInfo.radiusModel), radiusAtom = number(trelmInfo.radiusAtom);
    if (!isPositive(trelmInfo.gridSpacing))
        return refuse("-dGrid", number(trelmInfo.gridSpacing), "the step must be positive");
    if (trelmInfo.lcType == lcRod && radiusModel == 0.0)
        return refuse("-rM", 0.0, "a rod needs a radius");
    if (!std::isfinite(trelmInfo.radiusModel + trelmInfo.radiusAtom))
        return complain("trelm: -rM %g, -rA %g: the radii are out of range.\n", radiusModel, radiusAtom);
    if (!isPositive(trelmInfo.radiusModel))
        warn("-rM", radiusModel, "no liquid crystal has such a radius");
    if (radiusAtom < 0.0)
        warn("-rA", radiusAtom, "no atom has such a radius");
    return 0;
}

} // namespace

int refine_bicelle(TrelmInfo *trelmInfo)
{
    constexpr double piSquare = 9.869604378534024;
    const auto q = static_cast<double>(trelmInfo->molarRatio);
    const auto c = static_cast<double>(trelmInfo->concentration);
    const auto R = static_cast<double>(trelmInfo->radiusModel);
    const double mol_DHPC = c * 1000.0 / (q * mw_DMPC + mw_DHPC);
    const double molar_ratio_eff = q * mol_DHPC / (mol_DHPC - freeLipid);
    const double mol_DHPC_free = c >= 0.01 ? freeLipid : 0.0;
    const double wv_bic = (mw_DHPC * (mol_DHPC - mol_DHPC_free) + q * mol_DHPC * mw_DMPC) / 1000.0;
    trelmInfo->rSingleCell = static_cast<float>(R / wv_bic);
    trelmInfo->lengthModel =
        static_cast<float>((std::sqrt(8.0 / molar_ratio_eff + piSquare) + pi) * 0.5 * R * molar_ratio_eff);
    const double length = static_cast<double>(trelmInfo->lengthModel);
    const double rim = 2.0 * R + pi * length; // 0 without a model, in a grid
    trelmInfo->orderDiscRim = rim != 0.0 ? static_cast<float>(pi * length / (rim * 4.0)) : 0.0f;
    trelmInfo->molarRatio = static_cast<float>(molar_ratio_eff);
    return 0;
}

int checkSample(const TrelmInfo &trelmInfo)
{
    const auto concentration = static_cast<double>(trelmInfo.concentration);
    if (!isPositive(trelmInfo.concentration))
        return refuse("-wv", concentration, "the concentration is a fraction, above 0");
    if (concentration > 1.0)
        warn("-wv", concentration, "the concentration is a fraction, above 1 no sample has it");
    return 0;
}

int checkSimulation(const TrelmInfo &trelmInfo)
{
    const int status = checkOrientations(trelmInfo);
    return status != 0 || trelmInfo.lcType == lcGrid ? status : checkObstacle(trelmInfo);
}

float singleMean(std::span<const double> column)
{
    float sum = 0.0f;
    for (const double value : column)
        sum = static_cast<float>(static_cast<double>(sum) + value);
    return sum / static_cast<float>(column.size());
}

float largestDistance(const CoordinateBuffers &atoms)
{
    float largest = 0.0f;
    for (std::size_t i = 0; i < atoms.x.size(); ++i)
        largest = std::max(largest, static_cast<float>(atoms.x[i] * atoms.x[i] + atoms.y[i] * atoms.y[i] +
                                                       atoms.z[i] * atoms.z[i]));
    return std::sqrt(largest);
}

float centreAtoms(const CoordinateBuffers &atoms)
{
    for (const std::span<double> column : {atoms.x, atoms.y, atoms.z}) {
        const auto mean = static_cast<double>(singleMean(column));
        for (double &value : column)
            value -= mean;
    }
    return largestDistance(atoms);
}

int runSteric(const TrelmInfo &trelmInfo, const CoordinateBuffers &atoms, float distance,
              std::span<const double> ddots, Saupe &saupe)
{
    StericSetup setup;
    setup.lcType = trelmInfo.lcType;
    setup.stepOutLength = static_cast<double>(trelmInfo.rSingleCell);
    setup.grid.max_obstruction = static_cast<double>(trelmInfo.radiusModel);
    setup.radius = static_cast<double>(trelmInfo.radiusAtom);
    setup.grid.gridSpacing = static_cast<double>(trelmInfo.gridSpacing);
    setup.wvAmount = static_cast<double>(trelmInfo.concentration);
    // The grid starts with the solute's centre on the obstacle's surface, however far its nearest atom is.
    setup.grid.max_protein_length = static_cast<double>(distance) + setup.radius;
    setup.grid.min_protein_length = setup.radius;
    setup.digit_psi = trelmInfo.digPsiNSC;
    return stericAlignment(setup, {atoms.x, atoms.y, atoms.z}, ddots, saupe);
}

int runCharged(const TrelmInfo &trelmInfo, const CoordinateBuffers &atoms, float distance,
               std::span<const double> ddots, const ChargeSet &charges, Potential &potential, Saupe &saupe)
{
    const auto radius = static_cast<double>(trelmInfo.radiusAtom);
    return sma(trelmInfo, {atoms.x, atoms.y, atoms.z}, ddots,
               {static_cast<double>(distance) + radius, radius}, charges, potential, saupe);
}

int simulateAlignment(TrelmInfo &trelmInfo, const CoordinateBuffers &atoms, std::span<const double> ddots,
                      const ChargeSet &charges, AlignmentFields &fields, Saupe &saupe)
{
    if (atoms.x.empty())
        return complain("simulateAlignment: no atoms selected.\n");
    Saupe saupeSteric = {}, saupeEl = {};
    const float distance = centreAtoms(atoms);
    std::printf("REMARK Molecule shifted to geometric center.\n");
    const bool inGrid = trelmInfo.lcType == lcGrid;
    const Coordinates view = {atoms.x, atoms.y, atoms.z};
    int status = 0;
    if (trelmInfo.elFlag != 0)
        status = inGrid ? sma3D(trelmInfo, view, ddots, charges, fields.pot3D.span(), saupeEl)
                        : runCharged(trelmInfo, atoms, distance, ddots, charges, fields.potential, saupeEl);
    else if (inGrid)
        ssia3D(trelmInfo, ddots, saupeSteric);
    else if ((status = runSteric(trelmInfo, atoms, distance, ddots, saupeSteric)) != 0)
        complain("simulateAlignment: error in stericAlignment.");
    if (status != 0)
        return status;
    for (std::size_t k = 0; k < saupe.size(); ++k) {
        saupeSteric[k] *= static_cast<double>(trelmInfo.lcOrder);
        saupeEl[k] *= static_cast<double>(trelmInfo.lcOrder);
        saupe[k] = saupeEl[k] + saupeSteric[k];
    }
    return printBlocks(trelmInfo, saupeSteric, saupeEl, saupe);
}

} // namespace trelm
