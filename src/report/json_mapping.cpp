#include "report/json_mapping.h"

#include "report/json_table.h"
#include "support/numerics/numbers.h"

#include <array>
#include <utility>

namespace trelm {
namespace {

/// Mean, standard deviation, smallest and largest value; all null without samples.
void writeFour(const char *key, const std::array<double, 4> &values, bool hasValues, JsonWriter &json)
{
    constexpr const char *names[] = {"mean", "standardDeviation", "min", "max"};
    json.key(key).object(true);
    for (std::size_t k = 0; k < values.size(); ++k) {
        json.key(names[k]);
        hasValues ? json.value(values[k]) : json.null();
    }
    json.end();
}

void writeSpread(const char *key, const Spread &spread, double count, JsonWriter &json)
{
    const bool hasValues = count > 0.0;
    const double shown = hasValues ? count : 1.0;
    writeFour(key, {spread.average(shown), spread.stdDev(shown), spread.min, spread.max}, hasValues, json);
}

void writeCones(const TensorSamples &samples, JsonWriter &json)
{
    constexpr const char *axes[] = {"x", "y", "z"};
    const std::array<AxisCone, 3> cones = conesOf(samples);
    json.key("axisCones").object();
    for (std::size_t axis = 0; axis < cones.size(); ++axis) {
        json.key(axes[axis]).object(true);
        json.member("mean", cones[axis].mean);
        json.member("rootMeanSquare", cones[axis].rootMeanSquare);
        json.member("largest", cones[axis].largest);
        json.end();
    }
    json.end();
}

} // namespace

void writeMappingJson(const TensorSamples &samples, JsonWriter &json)
{
    const double count = samples.averaged;
    const bool hasValues = count > 0.0;
    json.key("samples").object();
    json.member("count", samples.count);
    writeSpread("generalMagnitude", samples.gMag, count, json);
    writeFour("daNH", {samples.daNHAve, samples.daNHStdDev, number(samples.daNHMin), number(samples.daNHMax)},
              hasValues, json);
    writeFour("da",
              {samples.daNHAve / amideHertz, samples.daNHStdDev / amideHertz, samples.da.min, samples.da.max},
              hasValues, json);
    writeSpread("dr", samples.dr, count, json);
    writeSpread("rhombicity", samples.rhombicity, count, json);
    writeSpread("szz", samples.szz, count, json);
    writeSpread("angle5d", samples.angle5d, samples.count, json);
    json.key("saupe").object();
    writeSaupeJson("mean", samples.saupeAve, json);
    writeSaupeJson("standardDeviation", samples.saupeStdDev, json);
    writeSaupeJson("ofSmallest", samples.saupeMin, json);
    writeSaupeJson("ofLargest", samples.saupeMax, json);
    json.end();
    for (const auto &[key, range] :
         {std::pair("phi", samples.phi), std::pair("psi", samples.psi), std::pair("theta", samples.theta)})
        json.numbers(key, std::array{range.min, range.max});
    writeCones(samples, json);
    json.end();
}

} // namespace trelm
