#include "report/json_quality.h"

#include "report/json_table.h"

namespace trelm {
namespace {

void writeErrors(std::string_view key, const std::optional<TensorErrors> &errors, JsonWriter &json)
{
    json.key(key);
    if (!errors) {
        json.null();
        return;
    }
    json.object();
    writeSaupeJson("saupe", errors->saupe, json);
    json.member("da", errors->da);
    json.member("dr", errors->dr);
    json.member("daNH", errors->da * amideHertz);
    json.member("drNH", errors->dr * amideHertz);
    json.member("rhombicity", errors->rhombicity);
    json.key("axes").object(true);
    json.member("z", errors->axes[0]);
    json.member("y", errors->axes[1]);
    json.member("x", errors->axes[2]);
    json.end();
    json.key("tilts").object(true);
    json.member("zy", errors->tiltZY);
    json.member("zx", errors->tiltZX);
    json.member("yx", errors->tiltYX);
    json.end();
    json.key("eulerZyz").object(true);
    json.member("alpha", errors->alpha);
    json.member("beta", errors->beta);
    json.member("gamma", errors->gamma);
    json.end();
    json.end();
}

void writeAgreement(std::string_view key, const Agreement &agreement, JsonWriter &json)
{
    json.key(key).object(true);
    json.member("count", agreement.count);
    json.member("rms", agreement.rms);
    json.member("q", agreement.q);
    json.member("qBySize", agreement.qBySize);
    json.member("rFactor", agreement.rFactor);
    json.member("rFactorBySize", agreement.rFactorBySize);
    json.member("correlation", agreement.correlation);
    json.member("slope", agreement.slope);
    json.member("offset", agreement.offset);
    json.end();
}

const char *keyOf(TypeVerdict verdict)
{
    switch (verdict) {
    case TypeVerdict::agrees:
        return "agrees";
    case TypeVerdict::turned:
        return "turned";
    case TypeVerdict::normalised:
        return "normalised";
    case TypeVerdict::turnedNormalised:
        return "turnedAndNormalised";
    case TypeVerdict::scaled:
        return "scaled";
    case TypeVerdict::onlyType:
        return "onlyType";
    case TypeVerdict::tooFew:
        return "tooFew";
    case TypeVerdict::notPredicted:
        return "notPredicted";
    }
    return "";
}

void writeTypes(const TypeCheck &check, JsonWriter &json)
{
    json.key("types").array();
    for (const TypeQuality &type : check.types) {
        json.object();
        json.member("name", type.name);
        json.member("count", type.count);
        json.member("interactionConstant", type.constant);
        json.member("rms", type.rms);
        json.member("q", type.q);
        json.member("slope", type.slope);
        json.member("offset", type.offset);
        json.key("leftOut");
        if (type.isPredicted) {
            json.object(true);
            json.member("rms", type.leftOutRms);
            json.member("q", type.leftOutQ);
            json.member("slope", type.leftOutSlope);
            json.member("slopeError", type.leftOutSlopeError);
            json.end();
        } else {
            json.null();
        }
        json.member("verdict", keyOf(type.verdict));
        json.member("words", verdictText(check, type));
        json.end();
    }
    json.end();
}

void writeOutliers(std::string_view key, const std::vector<Outlier> &outliers, const DTable &dTab,
                   const FitQuality &quality, JsonWriter &json)
{
    json.key(key).array();
    for (const Outlier &outlier : outliers) {
        const QualityRow &row = quality.rows[outlier.row];
        json.object();
        writeAtomsJson(dTab.observed()[row.row], json);
        json.member("type", quality.byType.types[row.type].name);
        json.member("observed", row.observed);
        json.member("leftOutDifference", outlier.leftOut);
        json.member("studentised", outlier.studentised);
        json.member("limit", outlier.limit);
        json.member("robust", outlier.robust);
        json.member("leverage", outlier.leverage);
        json.member("foundBy", outlier.wasHidden ? "robust" : "studentised");
        json.key("without").object(true);
        json.member("daNH", outlier.da * amideHertz);
        json.member("rhombicity", outlier.da != 0.0 ? outlier.dr / outlier.da : 0.0);
        json.member("q", outlier.q);
        json.end();
        json.end();
    }
    json.end();
}

const char *keyOf(LeaveOut kind)
{
    switch (kind) {
    case LeaveOut::oneByOne:
        return "oneByOne";
    case LeaveOut::byType:
        return "byType";
    case LeaveOut::inParts:
        return "inParts";
    }
    return "";
}

void writeFree(const FitQuality &quality, JsonWriter &json)
{
    json.key("leftOut").array();
    for (const FreeQuality &free : quality.free) {
        json.object();
        json.member("kind", keyOf(free.kind));
        json.member("count", free.count);
        json.member("rms", free.rms);
        json.member("q", free.q);
        if (free.kind == LeaveOut::inParts)
            json.member("seed", free.seed);
        json.key("parts").array();
        for (const FreePart &part : free.parts) {
            json.object(true);
            json.key("part");
            if (free.kind == LeaveOut::byType)
                json.value(quality.byType.types[part.part].name);
            else
                json.value(part.part + 1);
            json.member("count", part.count);
            if (part.isPredicted) {
                json.member("rms", part.rms);
                json.member("q", part.q);
            }
            json.end();
        }
        json.end();
        json.end();
    }
    json.end();
}

} // namespace

void writeQualityJson(const DTable &dTab, const FitQuality &quality, JsonWriter &json)
{
    json.key("quality").object();
    json.member("unknowns", quality.unknowns);
    json.member("degreesOfFreedom", quality.degreesOfFreedom);
    json.member("conditionNumber", quality.condition);
    json.member("hasErrors", quality.hasErrors);
    json.member("chiSquare", quality.chiSquare);
    json.member("unitWeight", quality.unitWeight);
    json.member("errorScale", quality.errorScale);
    writeErrors("standardDeviations", quality.errors, json);
    writeErrors("scaledStandardDeviations", quality.scaledErrors, json);
    writeAgreement("fitted", quality.fitted, json);
    writeAgreement("notFitted", quality.notFitted, json);
    writeFree(quality, json);
    writeTypes(quality.byType, json);
    json.member("meanLeverage", quality.meanLeverage);
    json.member("largestLeverage", quality.largestLeverage);
    writeOutliers("outliers", quality.outliers, dTab, quality, json);
    writeOutliers("dropped", quality.dropped, dTab, quality, json);
    json.end();
}

} // namespace trelm
