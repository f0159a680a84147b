#include "report/json_table.h"

#include "report/output.h"
#include "support/numerics/numbers.h"

#include <algorithm>
#include <array>

namespace trelm {
namespace {

constexpr const char *saupeKeys[saupeCount] = {"zz", "xxMinusYy", "xy", "xz", "yz"};
constexpr const char *irreducibleKeys[saupeCount] = {"a0", "a1r", "a1i", "a2r", "a2i"};
constexpr const char *axisKeys[3] = {"z", "y", "x"}; ///< in the order of the eigenvalues

void writeFive(std::string_view key, const char *const (&names)[saupeCount], const Saupe &values,
               JsonWriter &json)
{
    json.key(key).object(true);
    for (std::size_t k = 0; k < saupeCount; ++k)
        json.member(names[k], values[k]);
    json.end();
}

/// Eigenvalues, directions, and places on the map of the sphere.
void writeAxesJson(const TensorAnalysis &analysis, JsonWriter &json)
{
    json.key("axes").object();
    for (std::size_t k = 0; k < 3; ++k) {
        const Vec3 axis = column(analysis.eigVec, k);
        const MapPlace place = mapPlace(axis, false), inverse = mapPlace(axis, true);
        json.key(axisKeys[k]).object(true);
        json.member("eigenvalue", analysis.eigVal[k]);
        json.numbers("direction", axis);
        json.numbers("map", std::array{place.x, place.y});
        json.numbers("mapOfOpposite", std::array{inverse.x, inverse.y});
        json.end();
    }
    json.end();
}

void writeEulerJson(const DTensor &tensor, const TensorAnalysis &analysis, JsonWriter &json)
{
    json.key("eulerZyz").array();
    for (std::size_t k = 0; k < analysis.euler.alpha.size(); ++k) {
        json.object(true);
        json.member("alpha", analysis.euler.alpha[k]);
        json.member("beta", analysis.euler.beta[k]);
        json.member("gamma", analysis.euler.gamma[k]);
        json.end();
    }
    json.end();
    json.key("eulerXyz").array();
    const auto count = static_cast<std::size_t>(std::clamp(tensor.eulerCount, 0, 8));
    for (std::size_t k = 0; k < count; ++k) {
        json.object(true);
        json.member("psi", tensor.psiList[k]);
        json.member("theta", tensor.thetaList[k]);
        json.member("phi", tensor.phiList[k]);
        json.end();
    }
    json.end();
}

const char *keyOf(TensorMode mode)
{
    switch (mode) {
    case tensorSvd:
        return "svd";
    case tensorSaupe:
    case tensorGiven:
        return "saupe";
    case tensorNofixed:
        return "nofixed";
    case tensorDaDr:
        return "dadr";
    case tensorFixed:
        return "fixed";
    }
    return "";
}

/// The limits of a fit that has some.
void writeLimitsJson(const DTensor &tensor, JsonWriter &json)
{
    json.key("limits").object();
    if (tensor.tensorMode == tensorNofixed) {
        json.numbers("da", std::array{tensor.daMin, tensor.daMax});
        json.numbers("dr", std::array{tensor.drMin, tensor.drMax});
    }
    json.numbers("psi", std::array{tensor.psiMin, tensor.psiMax});
    json.numbers("theta", std::array{tensor.thetaMin, tensor.thetaMax});
    json.numbers("phi", std::array{tensor.phiMin, tensor.phiMax});
    json.end();
}

void writeSideJson(const char *key, int residue, const Name *const (&names)[4], JsonWriter &json)
{
    json.key(key).object(true);
    json.member("residue", residue);
    json.member("residueName", names[0]->view());
    json.member("atom", names[1]->view());
    if (!names[2]->empty())
        json.member("chain", names[2]->view());
    if (!names[3]->empty())
        json.member("segment", names[3]->view());
    json.end();
}

/// What a judged fit knows of a row.
void writeJudged(const FitQuality &quality, std::size_t place, JsonWriter &json)
{
    const QualityRow &row = quality.rows[place];
    const RowResidual &residual = quality.residuals[place];
    json.member("type", quality.byType.types[row.type].name);
    json.member("fitted", row.isFitted);
    json.member("predictedWithout", row.observed - residual.leftOut);
    if (!row.isFitted)
        return;
    json.member("leverage", residual.leverage);
    json.member("studentised", residual.studentised);
    json.member("robust", residual.robust);
}

} // namespace

void writeSaupeJson(std::string_view key, const Saupe &saupe, JsonWriter &json)
{
    writeFive(key, saupeKeys, saupe, json);
}

void writeAtomsJson(const DInfo &row, JsonWriter &json)
{
    const RowNames &names = *row.names;
    writeSideJson("i", row.resIDI, {&names.resNameI, &names.atomNameI, &names.chainNameI, &names.segNameI},
                  json);
    writeSideJson("j", row.resIDJ, {&names.resNameJ, &names.atomNameJ, &names.chainNameJ, &names.segNameJ},
                  json);
}

void writeTensorJson(const DTensor &tensor, const TensorAnalysis *analysis, bool hasEuler, JsonWriter &json)
{
    json.key("tensor").object();
    json.member("fittedBy", keyOf(tensor.tensorMode));
    if (tensor.tensorMode == tensorNofixed || tensor.tensorMode == tensorDaDr)
        writeLimitsJson(tensor, json);
    json.key("saupe").object(true);
    for (std::size_t k = 0; k < saupeCount; ++k)
        json.member(saupeKeys[k], tensor.saupe[k]);
    json.end();
    if (analysis != nullptr) {
        writeFive("irreducible", irreducibleKeys, analysis->irrSaupe, json);
        json.member("generalMagnitude", analysis->gMag);
        writeAxesJson(*analysis, json);
        if (hasEuler)
            writeEulerJson(tensor, *analysis, json);
        json.member("da", analysis->da);
        json.member("dr", analysis->dr);
        json.member("aa", 2.0 * analysis->da);
        json.member("ar", 2.0 * analysis->dr);
        json.member("daNH", analysis->da * amideHertz);
        json.member("drNH", analysis->dr * amideHertz);
        json.member("rhombicity", analysis->da != 0.0 ? analysis->dr / analysis->da : 0.0);
    }
    json.end();
}

void writeStatisticsJson(const DcStatistics &statistics, JsonWriter &json)
{
    json.key("statistics").object();
    json.member("count", statistics.nD);
    json.member("rms", statistics.rSumD2);
    json.member("chiSquare", statistics.pSumD);
    json.member("correlation", statistics.coorR);
    json.member("qRms", statistics.qD);
    json.member("qSaupe", statistics.qIsoD);
    json.member("standardDeviation", statistics.stdDevD);
    json.member("offset", statistics.offset);
    json.member("offsetError", statistics.errOffset);
    json.member("slope", statistics.slope);
    json.member("slopeError", statistics.errSlope);
    json.member("meanSlope", statistics.aveSlope);
    json.member("meanSlopeError", statistics.errAveSlope);
    json.end();
}

void writeRowsJson(const FittedTable &table, const FitQuality *quality, JsonWriter &json)
{
    json.key("rows").array();
    std::size_t place = 0; // among the judged rows, which rise
    for (std::size_t i = 0; i < table.dTab.observed().size(); ++i) {
        const DInfo &obs = table.dTab.observed()[i];
        const bool isJudged =
            quality != nullptr && place < quality->rows.size() && quality->rows[place].row == i;
        if (!isJudged && !table.isShown(i))
            continue;
        const bool isMeasured = obs.d < missingCoupling;
        const float shown = table.calculated(i);
        const double calculated = isJudged ? quality->rows[place].calculated : number(shown);
        const bool isCalculated = isJudged || shown < missingCoupling;
        json.object(true);
        writeAtomsJson(obs, json);
        json.member("interactionConstant", table.dTab.calculated()[i].di);
        json.key("observed");
        isMeasured ? json.value(obs.d) : json.null();
        json.key("calculated");
        isCalculated ? (isJudged ? json.value(calculated) : json.value(shown)) : json.null();
        json.key("difference");
        isMeasured &&isCalculated ? json.value(number(obs.d) - calculated) : json.null();
        json.member("error", table.error(i));
        json.member("weight", table.weight(i));
        if (isJudged)
            writeJudged(*quality, place++, json);
        json.end();
    }
    json.end();
}

} // namespace trelm
