#include "modes/files.h"

#include "couplings/options.h"
#include "modes/json_output.h"
#include "support/text/file_identity.h"
#include "support/text/output_file.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <utility>

namespace trelm {
namespace {

/// A set of modes, one bit each.
constexpr std::uint32_t modes(std::initializer_list<Mode> list)
{
    std::uint32_t set = 0;
    for (const Mode mode : list)
        set |= std::uint32_t{1} << mode;
    return set;
}

constexpr std::uint32_t simulations =
    modes({modeStTrelm, modeStTrelmGrid, modeElTrelm, modeElTrelmFree, modeElTrelmGrid, modeCsSim, modeAsRan,
           modeAnPdb}); // they place charges
constexpr std::uint32_t magnitudes = modes({modeDaHist, modeDaMl, modeDaFlex});
constexpr std::uint32_t common =
    simulations | modes({modeBestFit, modeStruc}); // structure and couplings are read

struct NameRow {
    const char *option;
    std::string RunOptions::*name;
    bool isOutput;
    std::uint32_t modes;
};

constexpr NameRow nameRows[] = {
    {"-pdb", &RunOptions::pdbName, false, common},
    {"-inD", &RunOptions::inDName, false, common | magnitudes | modes({modeConv})},
    {"-inD1", &RunOptions::inD1Name, false, modes({modeAnDc})},
    {"-inD2", &RunOptions::inD2Name, false, modes({modeAnDc})},
    {"-inS1", &RunOptions::saupeName1, false, modes({modeAnA})},
    {"-inS2", &RunOptions::saupeName2, false, modes({modeAnA})},
    {"-pdbF", &RunOptions::pdbFName, false, modes({modeStTrelmFree})},
    {"-inp", &RunOptions::inpName, false, simulations},
    {"-pka", &RunOptions::pkaName, false, simulations},
    {"-pot", &RunOptions::potName, false, modes({modeElTrelm, modeStTrelmGrid})},
    {"-pot3D", &RunOptions::pot3DName, false, modes({modeStTrelm, modeElTrelm})},
    {"-inE", &RunOptions::inEName, false, modes({modeStTrelmGrid})},
    {"-outPka", &RunOptions::outPkaName, true, simulations},
    {"-outD", &RunOptions::outDName, true,
     magnitudes | modes({modeStTrelm, modeElTrelm, modeBestFit, modeAnDc, modeConv})},
    {"-outA", &RunOptions::outAName, true, modes({modeStTrelmFree, modeAnA})},
    {"-outP", &RunOptions::outPName, true, modes({modeAnPdb})},
    {"-outSc", &RunOptions::outScName, true, modes({modeDaMl, modeDaFlex})},
    {"-outCol", &RunOptions::outColName, true, modes({modeDaFlex})},
    {"-outE", &RunOptions::outEName, true, modes({modeStTrelmGrid})},
    {"-outEAx", &RunOptions::outEAxName, true, modes({modeStTrelmGrid})},
    {"-dcEns", &RunOptions::oDcEName, true, modes({modeStTrelmGrid})},
    {"-flex", &RunOptions::flexName, true, modes({modeStTrelmGrid})},
    {"-ave", &RunOptions::aveName, true, modes({modeStTrelmGrid})},
};

/// What the mappings of a best-fit's error write beside.
constexpr NameRow mappingRows[] = {
    {"-outDa", &RunOptions::outDaName, true, 0},
    {"-outMap", &RunOptions::outMapName, true, 0},
    {"-outAng", &RunOptions::outAngName, true, 0},
    {"-outA", &RunOptions::outAName, true, 0},
};

void addStructures(const Run &run, std::vector<RunFile> &files)
{
    const RunOptions &options = run.options;
    constexpr std::uint32_t inFrames = modes({modeStTrelm, modeElTrelm, modeBestFit, modeAnPdb});
    constexpr std::uint32_t plain = modes({modeStTrelmGrid, modeStruc});
    constexpr int frames = 4;
    const std::uint32_t mode = modes({run.mode.trelmMode});
    const bool isPlain = (mode & plain) != 0 || isPassedOn(options.pRotName);
    if ((mode & inFrames) != 0 && !isPlain)
        for (int k = 0; k < frames; ++k) {
            files.push_back({"-pdbRot", options.pRotName + '.' + std::to_string(k), true});
            if (k == run.report.rotN)
                files.push_back({"-pdbRot", options.pRotName, true});
        }
    if (isPlain)
        files.push_back({"-pdbRot", options.pRotName, true});
    if (run.mode.trelmMode == modeStTrelmGrid)
        for (const char *name : {"rot.pdb", "rotEns.pdb"})
            files.push_back({"-stTrelmGrid", name, true});
}

/// Fails after one line if an output is another file of the run.
Status checkIdentities(const std::vector<RunFile> &files, Messages &messages)
{
    std::vector<std::pair<FileIdentity, const RunFile *>> known;
    for (const RunFile &file : files) {
        const std::optional<FileIdentity> identity = fileIdentity(file.name);
        if (!identity)
            continue;
        for (const auto &[other, first] : known)
            if (other == *identity && (file.isOutput || first->isOutput))
                return messages.fail(
                    "trelm: %s (%s) and %s (%s) are one file: give each a name of its own.\n",
                    first->option.c_str(), first->name.c_str(), file.option.c_str(), file.name.c_str());
        known.emplace_back(*identity, &file);
    }
    return Status::ok;
}

/// Fails after one line if two inputs come from standard input: the first would leave nothing to the second.
Status checkStandardInput(const std::vector<RunFile> &files, Messages &messages)
{
    const auto isStandardInput = [](const RunFile &file) { return !file.isOutput && file.name == "-"; };
    const auto first = std::ranges::find_if(files, isStandardInput);
    if (first == files.end())
        return Status::ok;
    const auto second = std::find_if(first + 1, files.end(), isStandardInput);
    if (second == files.end())
        return Status::ok;
    return messages.fail("trelm: %s and %s cannot both be read from standard input.\n", first->option.c_str(),
                         second->option.c_str());
}

/// Tells of the outputs that cannot be opened, one line for an option.
void tellObstacles(const std::vector<RunFile> &files, Messages &messages)
{
    std::string told;
    for (const RunFile &file : files) {
        const std::string obstacle = file.isOutput && file.option != told ? writeObstacle(file.name) : "";
        if (obstacle.empty())
            continue;
        told = file.option;
        messages.warn("trelm: %s: %s cannot be written: %s.\n", file.option.c_str(), file.name.c_str(),
                      obstacle.c_str());
    }
}

} // namespace

std::vector<RunFile> filesOfRun(const Run &run)
{
    const ModeOptions &mode = run.mode;
    std::vector<RunFile> files;
    const auto add = [&](const NameRow &row) {
        files.push_back({row.option, run.options.*row.name, row.isOutput});
    };
    for (const NameRow &row : nameRows)
        if ((row.modes & modes({mode.trelmMode})) != 0)
            add(row);
    const bool isMapping =
        mode.spreadMode == spreadJack || mode.spreadMode == spreadMcDc || mode.spreadMode == spreadMcStruc;
    if (mode.trelmMode == modeBestFit && isMapping)
        for (const NameRow &row : mappingRows)
            add(row);
    if (mode.trelmMode == modeBestFit && mode.spreadMode == spreadMcDc)
        files.push_back({"-outFail", run.options.outDFailName, true});
    if (mode.trelmMode == modeBestFit && mode.spreadMode == spreadSingle && !run.options.outQName.empty())
        files.push_back({"-outQ", run.options.outQName, true});
    if (mode.trelmMode == modeBestFit && !run.options.outMName.empty())
        files.push_back({"-outM", run.options.outMName, true});
    if (mode.trelmMode == modeBestFit && mode.spreadMode == spreadExhaust && !run.options.outAssName.empty())
        files.push_back({"-outAss", run.options.outAssName, true});
    if (writesJson(mode) && !run.options.outJName.empty())
        files.push_back({"-outJ", run.options.outJName, true});
    addStructures(run, files);
    return files;
}

Status checkFiles(const std::vector<RunFile> &files, Messages &messages)
{
    if (checkIdentities(files, messages) != Status::ok || checkStandardInput(files, messages) != Status::ok)
        return Status::failed;
    tellObstacles(files, messages);
    return messages.mayWrite() ? Status::ok : failedByWarnings(messages);
}

} // namespace trelm
