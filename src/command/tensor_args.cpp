#include "command/command_line.h"
#include "command/params.h"

#include <array>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace trelm {
namespace {

constexpr OptionRow methodRows[] = {
    {"-svd", &DTensor::tensorMode, tensorSvd},
    {"-saupe", &DTensor::tensorMode, tensorSaupe},
    {"-align", &DTensor::tensorMode, tensorSaupe},
    {"-fixed", &DTensor::tensorMode, tensorFixed},
    {"-nofixed", &DTensor::tensorMode, tensorNofixed},
    {"-dadr", &DTensor::tensorMode, tensorDaDr},
    {"-euler", &DTensor::eulerFlag, 1},
    {"-noeuler", &DTensor::eulerFlag, 0},
};

constexpr OptionRow givenTensorRows[] = {
    {"-da", &DTensor::da},
    {"-dr", &DTensor::dr},
};

// Read after the limits were pinned to a given magnitude, so that a limit on the line still holds.
constexpr OptionRow limitRows[] = {
    {"-daMin", &DTensor::daMin}, {"-daMax", &DTensor::daMax}, {"-drMin", &DTensor::drMin},
    {"-drMax", &DTensor::drMax}, {"-psi", &DTensor::psi},     {"-theta", &DTensor::theta},
    {"-phi", &DTensor::phi},
};

constexpr OptionRow angleLimitRows[] = {
    {"-psiMin", &DTensor::psiMin},     {"-psiMax", &DTensor::psiMax}, {"-thetaMin", &DTensor::thetaMin},
    {"-thetaMax", &DTensor::thetaMax}, {"-phiMin", &DTensor::phiMin}, {"-phiMax", &DTensor::phiMax},
};

void pinMagnitude(DTensor &tensor)
{
    tensor.daMin = tensor.daMax = tensor.da;
    tensor.drMin = tensor.drMax = tensor.dr;
}

void pinAngles(DTensor &tensor)
{
    tensor.psiMin = tensor.psiMax = tensor.psi;
    tensor.thetaMin = tensor.thetaMax = tensor.theta;
    tensor.phiMin = tensor.phiMax = tensor.phi;
}

Status readUserSaupe(CommandLine &line, DTensor &tensor)
{
    const char *flag = line.has("-saupe") ? "-saupe" : "-align";
    std::array<double, 5> values = {};
    if (readValues(line, flag, "-saupe", values) != Status::ok)
        return Status::failed;
    if (!line.has(flag))
        return Status::ok;
    for (std::size_t i = 0; i < values.size(); ++i)
        tensor.userSaupe[i] = boundedFloat(values[i]);
    return Status::ok;
}

} // namespace

std::vector<std::span<const OptionRow>> tensorTables()
{
    return {methodRows, givenTensorRows, limitRows, angleLimitRows};
}

Status getDCTensorParams(CommandLine &line, Options &options)
{
    DTensor &tInfo = options;
    tInfo = DTensor{};
    readRows(line, methodRows, options);
    // A magnitude on the line is meant to be used: the linear fit, which would ignore it, gives way.
    if (readRows(line, givenTensorRows, options) > 0 && tInfo.tensorMode == tensorSvd)
        tInfo.tensorMode = tensorDaDr;
    if (tInfo.tensorMode == tensorDaDr || tInfo.tensorMode == tensorFixed)
        pinMagnitude(tInfo);
    readRows(line, limitRows, options);
    if (tInfo.tensorMode == tensorFixed)
        pinAngles(tInfo);
    readRows(line, angleLimitRows, options);
    return readUserSaupe(line, tInfo);
}

Status readValues(CommandLine &line, std::string_view flag, std::string_view name, std::span<double> values)
{
    if (!line.has(flag))
        return Status::ok;
    const std::vector<const char *> words = line.listOf(flag);
    if (words.size() != values.size())
        return line.messages.fail("GORVAT Error: %s option requires %zu values.\n", std::string(name).c_str(),
                                  values.size());
    for (std::size_t i = 0; i < words.size(); ++i) {
        line.warnDouble(flag, words[i]);
        values[i] = dblWord(words[i]);
    }
    return Status::ok;
}

} // namespace trelm
