#include "simulation/domains/config.h"

#include "support/text/text.h"
#include "support/text/text_input.h"
#include "support/text/token.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string_view>
#include <variant>

namespace trelm {
namespace {

/// An element of angleDom.
struct DomainAngle {
    std::size_t place;
};

/// The keys without a field are read and checked like all others: files have them.
using Target = std::variant<std::monostate, int DomainOptions::*, float DomainOptions::*, DomainAngle>;

/// One key of the file.
struct ConfigRow {
    std::string_view key;
    Target target = {};
    Target cleared = {}; ///< what goes back to 0 when the key is set
};

// The third angle and the origin of domain 1 exclude each other: the later line wins.
constexpr ConfigRow configRows[] = {
    {"CENTER_PIVOT:", &DomainOptions::pivotCenter},
    {"Pmax:"},
    {"OUTPUT_ENSEMBLE:", &DomainOptions::outEflag},
    {"ALIGN_ALONG_Z:", &DomainOptions::initOrientFlag},
    {"FIX_POSITION_DOM1:", &DomainOptions::fixRotDomain},
    {"ENSEMBLE_CLASH:", &DomainOptions::clashFlag},
    {"CLASH_DISTANCE:", &DomainOptions::clashDist},
    {"ENSEMBLE_DENSITY:", &DomainOptions::densE},
    {"ENSEMBLE_GAMMA:", &DomainOptions::digPsiE},
    {"DOMAIN_ANGLE_VAR:", &DomainOptions::angleDomFlag},
    {"DOM_ANG_ALPHA:", DomainAngle{0}},
    {"DOM_ANG_BETA:", DomainAngle{1}},
    {"DOM_ANG_GAMMA:", DomainAngle{2}, &DomainOptions::resDom1Origin},
    {"ORIGIN_DOM1:", &DomainOptions::resDom1Origin, DomainAngle{2}},
    {"ORIGIN_DOM2:", &DomainOptions::resDom2Origin},
    {"START_RESID_1:", &DomainOptions::startResDom1},
    {"END_RESID_1:", &DomainOptions::endResDom1},
    {"START_RESID_2:", &DomainOptions::startResDom2},
    {"END_RESID_2:", &DomainOptions::endResDom2},
    {"BETA_L:", &DomainOptions::lBetaCone},
    {"BETA_H:", &DomainOptions::hBetaCone},
    {"ALPHA_CENTER:"},
    {"ALPHA_WIDTH:", &DomainOptions::errAlphaCone},
    {"START_RES_ANGLE_1:", &DomainOptions::startResPart1},
    {"END_RES_ANGLE_1:", &DomainOptions::endResPart1},
    {"START_RES_ANGLE_2:", &DomainOptions::startResPart2},
    {"END_RES_ANGLE_2:", &DomainOptions::endResPart2},
};

/// Puts a number into the field that a target names.
struct Store {
    DomainOptions &options;
    float value;

    void operator()(std::monostate) const {}
    void operator()(int DomainOptions::*field) const { options.*field = truncated(value); }
    void operator()(float DomainOptions::*field) const { options.*field = value; }
    void operator()(DomainAngle angle) const { options.angleDom[angle.place] = value; }
};

Status readLine(std::string_view line, DomainOptions &options, Messages &messages)
{
    const std::string_view key = getToken(1, line), word = getToken(2, line);
    float value = 0.0f;
    if (!wordToFloat(word, value))
        return messages.fail("Error: Input data in auto file have wrong format\nLine:%s\n",
                             std::string(line).c_str());
    const auto *row = std::ranges::find(configRows, key, &ConfigRow::key);
    if (row == std::end(configRows)) {
        messages.err("Error: Wrong input parameter in auto file\nLine:%s\n", std::string(line).c_str());
        return Status::ok;
    }
    if (!std::isfinite(value))
        return messages.fail("Error: %s in auto file needs a finite number, not %s\n",
                             std::string(key).c_str(), std::string(word).c_str());
    std::visit(Store{options, value}, row->target);
    std::visit(Store{options, 0.0f}, row->cleared);
    return Status::ok;
}

} // namespace

Status readConfig(const std::string &inName, DomainOptions &options, Messages &messages)
{
    if (inName.empty())
        return Status::ok;
    TextInput input;
    const TextStatus status = readText(input, inName, messages);
    if (status == TextStatus::noFile)
        return messages.fail("readConfig File open error: %s.\n", inName.c_str());
    if (status == TextStatus::bad)
        return Status::failed;
    trimEnd(input);
    for (std::string_view line; fgetsAlloc(input, line);)
        if (readLine(line, options, messages) != Status::ok)
            return Status::failed;
    return Status::ok;
}

} // namespace trelm
