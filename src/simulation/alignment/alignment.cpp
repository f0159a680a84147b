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

int checkOrientations(const AlignmentOptions &options)
{
    if (options.densityNSC < 1)
        return refuse("-dot", options.densityNSC, "the number of orientation points must be positive");
    const int dots = dotCount(options.densityNSC);
    if (dots > maxOrientations)
        return complain("trelm: -dot %d gives %d orientation points, the limit is %d.\n", options.densityNSC,
                        dots, maxOrientations);
    if (options.digPsiNSC < 1)
        return refuse("-digPsi", options.digPsiNSC, "the number of angle steps must be positive");
    if (options.digPsiNSC > std::numeric_limits<int>::max() / dots)
        return complain("trelm: -digPsi %d with %d orientation points gives more than %d orientations.\n",
                        options.digPsiNSC, dots, std::numeric_limits<int>::max());
    if (!std::isfinite(options.lcOrder))
        return refuse("-lcS", number(options.lcOrder), "the order is no number");
    return 0;
}

/// The wall or rod, and the steps away from it.
int checkObstacle(const ObstacleOptions &options)
{
    const double radiusModel = number(options.radiusModel), radiusAtom = number(options.radiusAtom);
    if (!isPositive(options.gridSpacing))
        return refuse("-dGrid", number(options.gridSpacing), "the step must be positive");
    if (options.lcType == lcRod && radiusModel == 0.0)
        return refuse("-rM", 0.0, "a rod needs a radius");
    if (!std::isfinite(options.radiusModel + options.radiusAtom))
        return complain("trelm: -rM %g, -rA %g: the radii are out of range.\n", radiusModel, radiusAtom);
    if (!isPositive(options.radiusModel))
        warn("-rM", radiusModel, "no liquid crystal has such a radius");
    if (radiusAtom < 0.0)
        warn("-rA", radiusAtom, "no atom has such a radius");
    return 0;
}

} // namespace

SampleGeometry refine_bicelle(const ObstacleOptions &options)
{
    constexpr double piSquare = 9.869604378534024;
    const double q = number(options.molarRatio), c = number(options.concentration);
    const double R = number(options.radiusModel);
    const double mol_DHPC = c * 1000.0 / (q * mw_DMPC + mw_DHPC);
    const double molar_ratio_eff = q * mol_DHPC / (mol_DHPC - freeLipid);
    const double mol_DHPC_free = c >= 0.01 ? freeLipid : 0.0;
    const double wv_bic = (mw_DHPC * (mol_DHPC - mol_DHPC_free) + q * mol_DHPC * mw_DMPC) / 1000.0;
    SampleGeometry geometry;
    geometry.rSingleCell = static_cast<float>(R / wv_bic);
    geometry.molarRatio = static_cast<float>(molar_ratio_eff);
    geometry.lengthModel =
        static_cast<float>((std::sqrt(8.0 / molar_ratio_eff + piSquare) + pi) * 0.5 * R * molar_ratio_eff);
    const double length = number(geometry.lengthModel);
    const double rim = 2.0 * R + pi * length;
    geometry.orderDiscRim = rim != 0.0 ? static_cast<float>(pi * length / (rim * 4.0)) : 0.0f;
    return geometry;
}

int checkSample(const ObstacleOptions &options)
{
    const auto concentration = static_cast<double>(options.concentration);
    if (!isPositive(options.concentration))
        return refuse("-wv", concentration, "the concentration is a fraction, above 0");
    if (concentration > 1.0)
        warn("-wv", concentration, "the concentration is a fraction, above 1 no sample has it");
    return 0;
}

int checkSimulation(const AlignmentOptions &options)
{
    const int status = checkOrientations(options);
    return status != 0 || options.lcType == lcGrid ? status : checkObstacle(options);
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

int runSteric(const AlignmentSetup &setup, const CoordinateBuffers &atoms, float distance, Saupe &saupe)
{
    const AlignmentOptions &options = setup.options;
    StericSetup steric;
    steric.lcType = options.lcType;
    steric.stepOutLength = setup.rSingleCell;
    steric.grid.max_obstruction = number(options.radiusModel);
    steric.radius = number(options.radiusAtom);
    steric.grid.gridSpacing = number(options.gridSpacing);
    steric.wvAmount = number(options.concentration);
    // The grid starts with the solute's centre on the obstacle's surface, however far its nearest atom is.
    steric.grid.max_protein_length = number(distance) + steric.radius;
    steric.grid.min_protein_length = steric.radius;
    steric.digit_psi = options.digPsiNSC;
    return static_cast<int>(
        stericAlignment(steric, {atoms.x, atoms.y, atoms.z}, setup.dots, saupe, standardMessages()));
}

int runCharged(const AlignmentSetup &setup, const CoordinateBuffers &atoms, float distance,
               const ChargeSet &charges, Potential &potential, Saupe &saupe)
{
    const double radius = number(setup.options.radiusAtom);
    const SmaSetup sizes = {setup.options, setup.rSingleCell, number(distance) + radius, radius};
    return sma(sizes, {atoms.x, atoms.y, atoms.z}, setup.dots, charges, potential, saupe);
}

int simulateAlignment(const AlignmentSetup &setup, const CoordinateBuffers &atoms, const ChargeSet &charges,
                      AlignmentFields &fields, Prediction &prediction)
{
    if (atoms.x.empty())
        return complain("simulateAlignment: no atoms selected.\n");
    const AlignmentOptions &options = setup.options;
    prediction = {};
    const float distance = centreAtoms(atoms);
    std::printf("REMARK Molecule shifted to geometric center.\n");
    const bool inGrid = options.lcType == lcGrid;
    const Coordinates view = {atoms.x, atoms.y, atoms.z};
    int status = 0;
    if (options.elFlag != 0)
        status =
            inGrid ? sma3D(options, view, setup.dots, charges, fields.pot3D.span(), prediction.electrostatic)
                   : runCharged(setup, atoms, distance, charges, fields.potential, prediction.electrostatic);
    else if (inGrid)
        ssia3D(options, setup.dots, prediction.steric);
    else if ((status = runSteric(setup, atoms, distance, prediction.steric)) != 0)
        complain("simulateAlignment: error in stericAlignment.");
    if (status != 0)
        return status;
    for (std::size_t k = 0; k < prediction.sum.size(); ++k) {
        prediction.steric[k] *= number(options.lcOrder);
        prediction.electrostatic[k] *= number(options.lcOrder);
        prediction.sum[k] = prediction.electrostatic[k] + prediction.steric[k];
    }
    TensorAnalysis analysis; // each part must have axes; the magnitude is that of the last one
    for (const Saupe *part : {&prediction.steric, &prediction.electrostatic, &prediction.sum})
        if (analyzeSaupe(*part, 0, 0, analysis) != 0)
            return complain("Matrix: error in analyzeSaupe.\n");
    prediction.gMag = analysis.gMag;
    return 0;
}

} // namespace trelm
