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

using Target =
    std::variant<std::monostate, int GridInfo::*, float GridInfo::*, DomainAngle, float SearchState::*>;

/// One key of the file.
struct ConfigRow {
    std::string_view key;
    Target target;
    Target cleared = {}; ///< what goes back to 0 when the key is set
};

// The third angle and the origin of domain 1 exclude each other: the later line wins.
constexpr ConfigRow configRows[] = {
    {"CENTER_PIVOT:", &GridInfo::pivotCenter},
    {"Pmax:", &SearchState::Pmax},
    {"OUTPUT_ENSEMBLE:", &GridInfo::outEflag},
    {"ALIGN_ALONG_Z:", &GridInfo::initOrientFlag},
    {"FIX_POSITION_DOM1:", &GridInfo::fixRotDomain},
    {"ENSEMBLE_CLASH:", &GridInfo::clashFlag},
    {"CLASH_DISTANCE:", &GridInfo::clashDist},
    {"ENSEMBLE_DENSITY:", &GridInfo::densE},
    {"ENSEMBLE_GAMMA:", &GridInfo::digPsiE},
    {"DOMAIN_ANGLE_VAR:", &GridInfo::angleDomFlag},
    {"DOM_ANG_ALPHA:", DomainAngle{0}},
    {"DOM_ANG_BETA:", DomainAngle{1}},
    {"DOM_ANG_GAMMA:", DomainAngle{2}, &GridInfo::resDom1Origin},
    {"ORIGIN_DOM1:", &GridInfo::resDom1Origin, DomainAngle{2}},
    {"ORIGIN_DOM2:", &GridInfo::resDom2Origin},
    {"START_RESID_1:", &GridInfo::startResDom1},
    {"END_RESID_1:", &GridInfo::endResDom1},
    {"START_RESID_2:", &GridInfo::startResDom2},
    {"END_RESID_2:", &GridInfo::endResDom2},
    {"BETA_L:", &GridInfo::lBetaCone},
    {"BETA_H:", &GridInfo::hBetaCone},
    {"ALPHA_CENTER:", &GridInfo::cAlphaCone},
    {"ALPHA_WIDTH:", &GridInfo::errAlphaCone},
    {"START_RES_ANGLE_1:", &GridInfo::startResPart1},
    {"END_RES_ANGLE_1:", &GridInfo::endResPart1},
    {"START_RES_ANGLE_2:", &GridInfo::startResPart2},
    {"END_RES_ANGLE_2:", &GridInfo::endResPart2},
};

/// Puts a number into the field that a target names.
struct Store {
    GridInfo &gridInfo;
    SearchState &search;
    float value;

    void operator()(std::monostate) const {}
    void operator()(int GridInfo::*field) const { gridInfo.*field = truncated(value); }
    void operator()(float GridInfo::*field) const { gridInfo.*field = value; }
    void operator()(DomainAngle angle) const { gridInfo.angleDom[angle.place] = value; }
    void operator()(float SearchState::*field) const { search.*field = value; }
};

int readLine(std::string_view line, TrelmInfo &trelmInfo, SearchState &search)
{
    const std::string_view key = getToken(1, line), word = getToken(2, line);
    float value = 0.0f;
    if (!wordToFloat(word, value))
        return complain("Error: Input data in auto file have wrong format\nLine:%s\n",
                        std::string(line).c_str());
    const auto *row = std::ranges::find(configRows, key, &ConfigRow::key);
    if (row == std::end(configRows)) {
        complain("Error: Wrong input parameter in auto file\nLine:%s\n", std::string(line).c_str());
        return 0;
    }
    if (!std::isfinite(value))
        return complain("Error: %s in auto file needs a finite number, not %s\n", std::string(key).c_str(),
                        std::string(word).c_str());
    std::visit(Store{trelmInfo.gridInfo, search, value}, row->target);
    std::visit(Store{trelmInfo.gridInfo, search, 0.0f}, row->cleared);
    return 0;
}

} // namespace

int readConfig(const std::string &inName, TrelmInfo &trelmInfo, SearchState &search)
{
    if (inName.empty())
        return 0;
    TextInput input;
    const TextStatus status = readText(input, inName);
    if (status == TextStatus::noFile)
        return complain("readConfig File open error: %s.\n", inName.c_str());
    if (status == TextStatus::bad)
        return 1;
    trimEnd(input);
    for (std::string_view line; fgetsAlloc(input, line);)
        if (readLine(line, trelmInfo, search) != 0)
            return 1;
    return 0;
}

} // namespace trelm
