#include "simulation/alignment/alignment.h"

#include "simulation/alignment/electrostatic.h"
#include "simulation/alignment/grid3d.h"
#include "simulation/alignment/options.h"
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

void warn(const char *option, double value, const char *rule, Messages &messages)
{
    messages.err("WARNING: %s %g: %s.\n", option, value, rule);
}

Status refuse(const char *option, double value, const char *rule, Messages &messages)
{
    return messages.fail("trelm: %s %g: %s.\n", option, value, rule);
}

bool isPositive(float value)
{
    return value > 0.0f && std::isfinite(value);
}

Status checkOrientations(const AlignmentOptions &options, Messages &messages)
{
    if (options.densityNSC < 1)
        return refuse("-dot", options.densityNSC, "the number of orientation points must be positive",
                      messages);
    const int dots = dotCount(options.densityNSC);
    if (dots > maxOrientations)
        return messages.fail("trelm: -dot %d gives %d orientation points, the limit is %d.\n",
                             options.densityNSC, dots, maxOrientations);
    if (options.digPsiNSC < 1)
        return refuse("-digPsi", options.digPsiNSC, "the number of angle steps must be positive", messages);
    if (options.digPsiNSC > std::numeric_limits<int>::max() / dots)
        return messages.fail(
            "trelm: -digPsi %d with %d orientation points gives more than %d orientations.\n",
            options.digPsiNSC, dots, std::numeric_limits<int>::max());
    if (!std::isfinite(options.lcOrder))
        return refuse("-lcS", number(options.lcOrder), "the order is no number", messages);
    if (options.lcOrder < 0.0f || options.lcOrder > 1.0f)
        messages.warn("trelm: -lcS %g: the order of a liquid crystal lies between 0 and 1.\n",
                      number(options.lcOrder));
    return Status::ok;
}

/// The wall or rod, and the steps away from it.
Status checkObstacle(const ObstacleOptions &options, Messages &messages)
{
    const double radiusModel = number(options.radiusModel), radiusAtom = number(options.radiusAtom);
    if (!isPositive(options.gridSpacing))
        return refuse("-dGrid", number(options.gridSpacing), "the step must be positive", messages);
    if (options.lcType == lcRod && radiusModel == 0.0)
        return refuse("-rM", 0.0, "a rod needs a radius", messages);
    if (!std::isfinite(options.radiusModel + options.radiusAtom))
        return messages.fail("trelm: -rM %g, -rA %g: the radii are out of range.\n", radiusModel, radiusAtom);
    if (!isPositive(options.radiusModel))
        warn("-rM", radiusModel, "no liquid crystal has such a radius", messages);
    if (radiusAtom < 0.0)
        warn("-rA", radiusAtom, "no atom has such a radius", messages);
    return Status::ok;
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

Status checkSample(const ObstacleOptions &options, Messages &messages)
{
    const auto concentration = static_cast<double>(options.concentration);
    if (!isPositive(options.concentration))
        return refuse("-wv", concentration, "the concentration is a fraction, above 0", messages);
    if (concentration > 1.0)
        warn("-wv", concentration, "the concentration is a fraction, above 1 no sample has it", messages);
    return Status::ok;
}

Status checkSimulation(const AlignmentOptions &options, Messages &messages)
{
    const Status status = checkOrientations(options, messages);
    return status != Status::ok || options.lcType == lcGrid ? status : checkObstacle(options, messages);
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

Status runSteric(const AlignmentSetup &setup, const CoordinateBuffers &atoms, float distance, Saupe &saupe)
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
    return stericAlignment(steric, {atoms.x, atoms.y, atoms.z}, setup.dots, saupe, setup.messages);
}

Status runCharged(const AlignmentSetup &setup, const CoordinateBuffers &atoms, float distance,
                  const ChargeSet &charges, Potential &potential, Saupe &saupe)
{
    const double radius = number(setup.options.radiusAtom);
    return sma(setup, {atoms.x, atoms.y, atoms.z}, {number(distance) + radius, radius}, charges, potential,
               saupe);
}

Status simulateAlignment(const AlignmentSetup &setup, const CoordinateBuffers &atoms,
                         const ChargeSet &charges, AlignmentFields &fields, Prediction &prediction)
{
    const AlignmentOptions &options = setup.options;
    Messages &messages = setup.messages;
    if (atoms.x.empty())
        return messages.fail("simulateAlignment: no atoms selected.\n");
    prediction = {};
    const float distance = centreAtoms(atoms);
    messages.out("REMARK Molecule shifted to geometric center.\n");
    const bool inGrid = options.lcType == lcGrid;
    const Coordinates view = {atoms.x, atoms.y, atoms.z};
    Status status = Status::ok;
    if (options.elFlag != 0)
        status =
            inGrid ? sma3D(setup, view, charges, fields.pot3D.span(), prediction.electrostatic)
                   : runCharged(setup, atoms, distance, charges, fields.potential, prediction.electrostatic);
    else if (inGrid)
        status = ssia3D(setup, prediction.steric);
    else if ((status = runSteric(setup, atoms, distance, prediction.steric)) != Status::ok)
        messages.err("simulateAlignment: error in stericAlignment.");
    if (status != Status::ok)
        return status;
    for (std::size_t k = 0; k < prediction.sum.size(); ++k) {
        prediction.steric[k] *= number(options.lcOrder);
        prediction.electrostatic[k] *= number(options.lcOrder);
        prediction.sum[k] = prediction.electrostatic[k] + prediction.steric[k];
    }
    TensorAnalysis analysis; // each part must have axes; the magnitude is that of the last one
    for (const Saupe *part : {&prediction.steric, &prediction.electrostatic, &prediction.sum})
        if (analyzeSaupe(*part, 0, 0, analysis, messages) != Status::ok)
            return messages.fail("Matrix: error in analyzeSaupe.\n");
    prediction.gMag = analysis.gMag;
    return Status::ok;
}

} // namespace trelm
