#include "modes/json_output.h"

#include "couplings/options.h"
#include "modes/files.h"
#include "report/json_quality.h"
#include "report/json_table.h"
#include "support/text/checksum.h"
#include "support/text/output_file.h"
#include "support/text/text.h"

#include <algorithm>
#include <string>

namespace trelm {
namespace {

constexpr int formatVersion = 1; ///< of the file; a new one where a key changes its meaning

struct ModeWord {
    Mode trelmMode;
    const char *word;
};

constexpr ModeWord modeWords[] = {
    {modeStTrelm, "stTrelm"},
    {modeStTrelmFree, "stTrelmFree"},
    {modeStTrelmGrid, "stTrelmGrid"},
    {modeElTrelm, "elTrelm"},
    {modeElTrelmFree, "elTrelmFree"},
    {modeElTrelmGrid, "elTrelmGrid"},
    {modeBestFit, "bestFit"},
    {modeCsSim, "csSim"},
    {modeDaHist, "daHist"},
    {modeDaMl, "daMl"},
    {modeDaFlex, "daFlex"},
    {modeAsRan, "asRan"},
    {modeAnDc, "anDc"},
    {modeAnA, "anA"},
    {modeAnPdb, "anPdb"},
    {modeStruc, "struc"},
    {modeConv, "conv"},
};

const char *kindOfFit(SpreadKind kind)
{
    switch (kind) {
    case spreadSingle:
        return "single";
    case spreadJack:
        return "jack";
    case spreadMcDc:
        return "mcDc";
    case spreadMcStruc:
        return "mcStruc";
    case spreadRand:
        return "rand";
    case spreadExhaust:
        return "exhaust";
    case spreadExhaustSel:
        return "exhaustSel";
    }
    return "";
}

void writeInputs(const Run &run, JsonWriter &json)
{
    json.key("inputs").array();
    for (const RunFile &file : filesOfRun(run)) {
        if (file.isOutput || file.name.empty())
            continue;
        json.object(true);
        json.member("option", file.option);
        json.member("name", file.name);
        if (const auto sum = checksumOf(file.name)) {
            std::string digits;
            appendf(digits, "%08x", static_cast<unsigned>(sum->crc32));
            json.member("bytes", sum->bytes);
            json.member("crc32", digits);
        }
        json.end();
    }
    json.end();
}

void writeHead(const Run &run, const Messages &messages, JsonWriter &json)
{
    json.member("format", "trelm");
    json.member("formatVersion", formatVersion);
    json.member("programVersion", run.options.version);
    json.key("commandLine").array(true);
    for (const std::string &word : run.options.words)
        json.value(word);
    json.end();
    json.member("mode", std::ranges::find(modeWords, run.mode.trelmMode, &ModeWord::trelmMode)->word);
    if (run.mode.trelmMode == modeBestFit)
        json.member("kind", kindOfFit(run.mode.spreadMode));
    writeInputs(run, json);
    json.key("warnings").array();
    for (const std::string &warning : messages.warnings())
        json.value(warning);
    json.end();
}

} // namespace

bool writesJson(const ModeOptions &mode)
{
    const bool isSearch = mode.spreadMode == spreadRand || mode.spreadMode == spreadExhaust ||
                          mode.spreadMode == spreadExhaustSel;
    return mode.trelmMode == modeBestFit && !isSearch;
}

Status writeJson(const Run &run, const JsonPart &result, Messages &messages)
{
    const std::string &name = run.options.outJName;
    if (name.empty())
        return Status::ok;
    std::string text;
    JsonWriter json(text);
    json.object();
    writeHead(run, messages, json);
    json.key("result").object();
    result(json);
    json.end();
    json.end();
    OutFile out;
    if (openOut(out, name, "w") != Status::ok)
        return messages.fail("trelm: -outJ: %s cannot be opened.\n", name.c_str());
    writeOut(out, text);
    return closeOut(out, messages);
}

Status writeTableJson(const Run &run, const FittedTable &table, const FitQuality *quality,
                      const JsonPart &more, Messages &messages)
{
    if (run.options.outJName.empty())
        return Status::ok;
    TableAnalysis analysis;
    if (analyzeTensor(table.tensor, run.fit, analysis.tensor, messages) != Status::ok ||
        analyzeRows(table, analysis, messages) != Status::ok)
        return Status::failed;
    return writeJson(
        run,
        [&](JsonWriter &json) {
            writeTensorJson(analysis.settled, analysis.tensor ? &*analysis.tensor : nullptr,
                            run.fit.eulerFlag != 0, json);
            writeStatisticsJson(analysis.statistics, json);
            if (quality != nullptr)
                writeQualityJson(table.dTab, *quality, json);
            more(json);
            writeRowsJson(table, quality, json);
        },
        messages);
}

} // namespace trelm
