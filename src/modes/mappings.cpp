#include "modes/mappings.h"

#include "errors/coupling_noise.h"
#include "errors/jackknife.h"
#include "errors/mapping_text.h"
#include "errors/structural_noise.h"
#include "report/output.h"
#include "structure/write.h"
#include "support/text/output_file.h"
#include "support/text/text.h"

#include <algorithm>
#include <cmath>
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

MappingInput inputOf(Run &run)
{
    return {.pdbInfo = run.pdbInfo[0],
            .coords = run.pdbInfo[0].coordinates(),
            .dTab = run.dTab[0],
            .fit = run.trelmInfo[0],
            .validCount = run.trelmInfo[0].validCountD,
            .mapCount = run.options.mapCount,
            .verbose = run.trelmInfo[0].verbFlag};
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

/// The structure in the frame of the mean tensor. Fails after messages that end in `words`.
Status writeMeanFrame(Run &run, const TensorSamples &samples, const char *words, Messages &messages)
{
    const EulerLists &euler = samples.euler;
    const Status status =
        writePDBRot({euler.gamma, euler.beta, euler.alpha}, run.trelmInfo[0].rotN,
                    {run.pdbInfo[0], &run.sInfo, run.options.remark}, run.options.pRotName, messages);
    return status == Status::ok ? status : messages.fail("%s", words);
}

/// Writes a table.
Status writeTable(const Run &run, const std::string &name, const DTable &dTab, const std::string &text,
                  Messages &messages)
{
    return writeDCmod({name}, dTab, run.trelmInfo[0], text, messages);
}

/// Couplings and structure of the mean tensor. Fails after a message.
Status reportMeanTensor(Run &run, const TensorSamples &samples, MappingFit &fit, int mapCount,
                        Messages &messages)
{
    if (fitMean(samples, inputOf(run), fit, messages) != Status::ok)
        return Status::failed;
    takeFit(fit.last, run.dTab[0]);
    if (writeTable(run, run.options.outDName, run.dTab[0], mappingReport(samples), messages) != Status::ok)
        return Status::failed;
    if (samples.count != 0)
        return writeMeanFrame(run, samples, "trelm: error in writePDBRot.\n", messages);
    messages.err("WARNING %d SVD runs of %d succesful.\n", 0, mapCount);
    return Status::ok;
}

/// The failures are told beside Da and Dr of the mean tensor, by which their Q goes. Fails after a message.
Status takeMean(const TrelmInfo &options, DTensor &tensor, Messages &messages)
{
    const bool isTensor = tensor.saupe != SaupeValues{} &&
                          std::ranges::all_of(tensor.saupe, [](float value) { return std::isfinite(value); });
    if (!isTensor || options.eulerFlag == 0 || options.verbFlag == 0)
        return Status::ok;
    Saupe saupe;
    std::ranges::copy(tensor.saupe, saupe.begin());
    TensorAnalysis mean;
    if (analyzeSaupe(saupe, options.yzFlag, 1, mean, messages) != Status::ok)
        return Status::failed;
    tensor.da = static_cast<float>(mean.da);
    tensor.dr = static_cast<float>(mean.dr);
    return Status::ok;
}

/// Means and deviations of the couplings, and then in place of the weights the number of fits that missed
/// them. Angles, Da and Dr of the tensor stay those of the last noisy fit. Fails after a message.
Status reportCouplingNoise(Run &run, const CouplingNoiseResult &result, Messages &messages)
{
    DTable &shown = run.dTab[0];
    takeFit(result.fit.last, shown);
    std::ranges::transform(result.samples.saupeAve, shown.dTensor.saupe.begin(),
                           [](double element) { return static_cast<float>(element); });
    const auto observed = shown.observed();
    const auto calculated = shown.calculated();
    for (std::size_t i = 0; i < observed.size(); ++i) {
        if (calculated[i].valid != 0)
            observed[i].sigma = result.deviation[i];
        if (takesPart(calculated[i])) // others are never calculated
            calculated[i].d = result.mean[i];
    }
    Status status = writeTable(run, run.options.outDName, shown, mappingReport(result.samples), messages);
    for (std::size_t i = 0; i < observed.size(); ++i)
        if (calculated[i].valid != 0)
            observed[i].w = static_cast<float>(result.countFail[i]);
    if (takeMean(run.trelmInfo[0], shown.dTensor, messages) != Status::ok)
        status = Status::failed;
    std::string fails = "\nREMARK Failure Statistics.\n";
    appendf(fails, "DATA STATISTICS MAPPING NUMBER OF SUCCESFUL STEPS   %d\n\n\n", result.samples.count);
    if (writeTable(run, run.options.outDFailName, shown, fails, messages) != Status::ok)
        status = Status::failed;
    if (result.samples.count != 0 &&
        writeMeanFrame(run, result.samples, "matrix: error in writePDBRot.\n", messages) != Status::ok)
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

Status couplingNoise(Run &run, Messages &messages)
{
    CouplingNoiseResult result(run.dTab[0].observed().size());
    if (!result)
        return noMemory(messages);
    SampleFiles files;
    if (openFiles(run.options, noiseWords, messages, files) != Status::ok)
        return Status::failed;
    if (mapSimDC(inputOf(run), run.trelmInfo[0], watchInto(files), messages, result) != Status::ok) {
        keepNew(files.da, messages); // its head stands before the first fit
        return Status::failed;
    }
    writeSamples(result.samples, noiseWords, files);
    return ended(reportCouplingNoise(run, result, messages), files, messages);
}

Status jackknife(Run &run, Messages &messages)
{
    warnOfFraction(run.trelmInfo[0], messages);
    JackknifeResult result;
    if (!result.samples.store)
        return noMemory(messages);
    SampleFiles files;
    if (openFiles(run.options, mappingWords, messages, files) != Status::ok ||
        aeraSimDC(inputOf(run), run.trelmInfo[0], watchInto(files), messages, result) != Status::ok)
        return Status::failed;
    writeSamples(result.samples, mappingWords, files);
    return ended(reportMeanTensor(run, result.samples, result.fit, run.options.mapCount, messages), files,
                 messages);
}

Status structuralNoise(Run &run, Messages &messages)
{
    if (checkPositions(run.trelmInfo[0], messages) != Status::ok)
        return Status::failed;
    StructuralNoiseResult result;
    if (!result.samples.store)
        return noMemory(messages);
    const DcInfo &window = run.dcInfo[0];
    SampleFiles files;
    if (openFiles(run.options, mappingWords, messages, files) != Status::ok ||
        noiseStrucSimDC(inputOf(run), run.trelmInfo[0], {window.aFirst, window.segFirst, window.segLast},
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

Status mapCouplingNoise(Run &run, Messages &messages)
{
    return run.dTab[0].dCount == 0 ? Status::ok : tellFailure(couplingNoise(run, messages), messages);
}

Status mapJackknife(Run &run, Messages &messages)
{
    return run.dTab[0].dCount == 0 ? Status::ok : tellFailure(jackknife(run, messages), messages);
}

Status mapStructuralNoise(Run &run, Messages &messages)
{
    return tellFailure(structuralNoise(run, messages), messages);
}

} // namespace trelm
