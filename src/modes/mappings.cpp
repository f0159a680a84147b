#include "modes/mappings.h"

#include "couplings/options.h"
#include "errors/coupling_noise.h"
#include "errors/jackknife.h"
#include "errors/mapping_text.h"
#include "errors/structural_noise.h"
#include "modes/coupling_output.h"
#include "modes/json_output.h"
#include "report/json_mapping.h"
#include "support/text/output_file.h"
#include "support/text/text.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <string>
#include <vector>

namespace trelm {
namespace {

/// The files that are written sample by sample.
struct SampleFiles {
    OutFile map, da, angles, saupe;
};

/// Words that differ from mapping to mapping.
struct MappingWords {
    const char *noAngles; ///< before the name of a file of angles that can not be opened
    const char *dot;      ///< behind this name and that of the file of Da and R
    const char *saupeGap; ///< between number and values in the file of Saupe vectors
};
constexpr const char *noDaWords = "TRELM Error opening log file for Da distribution mapping ";
constexpr MappingWords noiseWords = {noDaWords, "", " "};
constexpr MappingWords mappingWords = {"TRELM Error opening log file for Angular distribution ", ".", "  "};

MappingInput inputOf(const Run &run)
{
    return {.pdbInfo = run.pdbInfo[0],
            .coords = run.pdbInfo[0].coordinates(),
            .dTab = run.dTab[0],
            .fit = run.fit,
            .validCount = run.validCount,
            .mapCount = run.options.mapCount,
            .verbose = run.report.verbFlag};
}

/// Opens the four files. Fails after a message.
Status openFiles(const RunOptions &options, const MappingWords &words, Messages &messages, SampleFiles &files)
{
    const struct {
        OutFile &out;
        const std::string &name;
        const char *complaint, *dot;
    } rows[] = {
        {files.map, options.outMapName, "TRELM Error opening log file for error space mapping ", ""},
        {files.da, options.outDaName, noDaWords, words.dot},
        {files.angles, options.outAngName, words.noAngles, words.dot},
        {files.saupe, options.outAName, "TRELM Error opening log file for Saupe distribution ", "."},
    };
    for (const auto &row : rows)
        if (openOut(row.out, row.name, "w") != Status::ok)
            return messages.fail("%s%s%s\n", row.complaint, row.name.c_str(), row.dot);
    return Status::ok;
}

Status closeFiles(SampleFiles &files, Messages &messages)
{
    Status status = Status::ok;
    for (OutFile *out : {&files.map, &files.da, &files.angles, &files.saupe})
        if (closeOut(*out, messages) != Status::ok)
            status = Status::failed;
    return status;
}

/// Writes the samples as they come.
MappingWatch watchInto(SampleFiles &files)
{
    return {.start = [&files] { writeOut(files.da, magnitudeHead); },
            .sample =
                [&files](const CountedSample &sample) {
                    writeOut(files.da, magnitudeLine(sample));
                    writeOut(files.map, axesLines(sample));
                }};
}

/// What can be said once the mean tensor is known.
void writeSamples(const TensorSamples &samples, const MappingWords &words, SampleFiles &files)
{
    writeOut(files.angles, anglesHead);
    writeOut(files.saupe, saupeHead);
    for (std::size_t i = 0; i < samples.deviations.size(); ++i) {
        writeOut(files.saupe, saupeLine(samples, i, words.saupeGap));
        writeOut(files.angles, anglesLine(samples, i));
    }
}

/// Writes a table with what a mapping found.
Status writeTable(const Run &run, const std::string &name, const FittedTable &table, const std::string &text,
                  Messages &messages)
{
    return writeCouplings({name, "w", text}, table, parametersOf(run), messages);
}

Status writeSamplesJson(const Run &run, const FittedTable &table, const TensorSamples &samples,
                        Messages &messages)
{
    return writeTableJson(
        run, table, nullptr, [&](JsonWriter &json) { writeMappingJson(samples, json); }, messages);
}

/// Couplings and structure of the mean tensor. Fails after a message.
Status reportMeanTensor(const Run &run, const TensorSamples &samples, MappingFit &fit, int mapCount,
                        Messages &messages)
{
    if (fitMean(samples, inputOf(run), fit, messages) != Status::ok)
        return Status::failed;
    if (writeTable(run, run.options.outDName, {run.dTab[0], fit.last}, mappingReport(samples), messages) !=
            Status::ok ||
        writeSamplesJson(run, {run.dTab[0], fit.last}, samples, messages) != Status::ok)
        return Status::failed;
    if (samples.count != 0)
        return writeFrames(run, samples.euler, "trelm: error in writePDBRot.\n", messages);
    messages.err("WARNING %d SVD runs of %d succesful.\n", 0, mapCount);
    return Status::ok;
}

/// The failures are told beside Da and Dr of the mean tensor, by which their Q goes. Fails after a message.
Status takeMean(const Run &run, DTensor &tensor, Messages &messages)
{
    const bool isTensor = tensor.saupe != SaupeValues{} &&
                          std::ranges::all_of(tensor.saupe, [](float value) { return std::isfinite(value); });
    if (!isTensor || run.fit.eulerFlag == 0 || run.report.verbFlag == 0)
        return Status::ok;
    Saupe saupe;
    std::ranges::copy(tensor.saupe, saupe.begin());
    TensorAnalysis mean;
    if (analyzeSaupe(saupe, run.fit.yzFlag, 1, mean, messages) != Status::ok)
        return Status::failed;
    tensor.da = static_cast<float>(mean.da);
    tensor.dr = static_cast<float>(mean.dr);
    return Status::ok;
}

/// The couplings that noise leaves in the mean, as a fit. Angles, Da and Dr of the tensor stay those of the
/// last noisy fit.
FitResult meanFit(const DTable &dTab, const CouplingNoiseResult &result)
{
    FitResult shown = result.fit.last;
    std::ranges::transform(result.samples.saupeAve, shown.tensor.saupe.begin(),
                           [](double element) { return static_cast<float>(element); });
    for (std::size_t i = 0; i < shown.calculated.size(); ++i)
        if (takesPart(dTab.dCalcList[i])) // others are never calculated
            shown.calculated[i] = result.mean[i];
    return shown;
}

/// A column of the table: what noise has found for the rows that are valid, of the others what they hold.
std::vector<float> columnOf(const DTable &dTab, float DInfo::*field,
                            const std::function<float(std::size_t)> &found)
{
    std::vector<float> column(dTab.dCount);
    for (std::size_t i = 0; i < column.size(); ++i)
        column[i] = dTab.dCalcList[i].valid != 0 ? found(i) : dTab.dObsList[i].*field;
    return column;
}

/// Means and deviations of the couplings, and then in place of the weights the number of fits that missed
/// them. Fails after a message.
Status reportCouplingNoise(const Run &run, const CouplingNoiseResult &result, Messages &messages)
{
    const DTable &dTab = run.dTab[0];
    FitResult mean = meanFit(dTab, result);
    FittedTable shown(dTab, mean);
    const auto deviations = columnOf(dTab, &DInfo::sigma, [&](std::size_t i) { return result.deviation[i]; });
    shown.sigma = deviations;
    Status status = writeTable(run, run.options.outDName, shown, mappingReport(result.samples), messages);
    if (status == Status::ok)
        status = writeSamplesJson(run, shown, result.samples, messages);
    const auto missed =
        columnOf(dTab, &DInfo::w, [&](std::size_t i) { return static_cast<float>(result.countFail[i]); });
    shown.w = missed;
    if (takeMean(run, mean.tensor, messages) != Status::ok)
        status = Status::failed;
    std::string fails = "\nREMARK Failure Statistics.\n";
    appendf(fails, "DATA STATISTICS MAPPING NUMBER OF SUCCESFUL STEPS   %d\n\n\n", result.samples.count);
    if (writeTable(run, run.options.outDFailName, shown, fails, messages) != Status::ok)
        status = Status::failed;
    if (result.samples.count != 0 &&
        writeFrames(run, result.samples.euler, "matrix: error in writePDBRot.\n", messages) != Status::ok)
        status = Status::failed;
    return status;
}

/// Closes the files after a mapping whose report ended with this status.
Status ended(Status status, SampleFiles &files, Messages &messages)
{
    const Status closed = closeFiles(files, messages);
    return status != Status::ok ? status : closed;
}

Status noMemory(Messages &messages)
{
    return messages.fail("Error allocating coord buffers.\n");
}

Status couplingNoise(const Run &run, Messages &messages)
{
    CouplingNoiseResult result(run.dTab[0].observed().size());
    if (!result)
        return noMemory(messages);
    SampleFiles files;
    if (openFiles(run.options, noiseWords, messages, files) != Status::ok)
        return Status::failed;
    if (mapSimDC(inputOf(run), run.couplingNoise, watchInto(files), messages, result) != Status::ok) {
        keepNew(files.da, messages); // its head stands before the first fit
        return Status::failed;
    }
    writeSamples(result.samples, noiseWords, files);
    return ended(reportCouplingNoise(run, result, messages), files, messages);
}

Status jackknife(const Run &run, Messages &messages)
{
    warnOfFraction(run.jackknife, messages);
    JackknifeResult result;
    if (!result.samples.store)
        return noMemory(messages);
    SampleFiles files;
    if (openFiles(run.options, mappingWords, messages, files) != Status::ok ||
        aeraSimDC(inputOf(run), run.jackknife, watchInto(files), messages, result) != Status::ok)
        return Status::failed;
    writeSamples(result.samples, mappingWords, files);
    return ended(reportMeanTensor(run, result.samples, result.fit, run.options.mapCount, messages), files,
                 messages);
}

Status structuralNoise(const Run &run, Messages &messages)
{
    if (checkPositions(run.structuralNoise, messages) != Status::ok)
        return Status::failed;
    StructuralNoiseResult result;
    if (!result.samples.store)
        return noMemory(messages);
    const DcInfo &window = run.window;
    SampleFiles files;
    if (openFiles(run.options, mappingWords, messages, files) != Status::ok ||
        noiseStrucSimDC(inputOf(run), run.structuralNoise, {window.aFirst, window.segFirst, window.segLast},
                        watchInto(files), messages, result) != Status::ok)
        return Status::failed;
    if (result.couplings == 0)
        return closeFiles(files, messages); // without content: nothing of an earlier run stays
    writeSamples(result.samples, mappingWords, files);
    return ended(reportMeanTensor(run, result.samples, result.fit, result.mapCount, messages), files,
                 messages);
}

Status tellFailure(Status status, Messages &messages)
{
    return status == Status::ok ? status : messages.fail("Matrix: error in best-fit of data.\n");
}

} // namespace

Status mapCouplingNoise(const Run &run, Messages &messages)
{
    return run.dTab[0].dCount == 0 ? Status::ok : tellFailure(couplingNoise(run, messages), messages);
}

Status mapJackknife(const Run &run, Messages &messages)
{
    return run.dTab[0].dCount == 0 ? Status::ok : tellFailure(jackknife(run, messages), messages);
}

Status mapStructuralNoise(const Run &run, Messages &messages)
{
    return tellFailure(structuralNoise(run, messages), messages);
}

} // namespace trelm
