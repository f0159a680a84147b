#include "modes/coupling_output.h"

#include "couplings/options.h"
#include "report/output.h"
#include "structure/write.h"
#include "support/text/output_file.h"

namespace trelm {
namespace {

Status writeText(const CouplingOutput &output, const std::string &text, Messages &messages)
{
    OutFile out;
    if (openOut(out, output.name, output.access) != Status::ok)
        messages.err("DC Error opening output file %s\n", output.name.c_str());
    writeOut(out, text);
    return closeOut(out, messages);
}

/// Fails after a message if a number of the result is none. Quotients by 0 of a comparison go out as they
/// are.
Status checkNumbers(const FittedTable &table, Mode mode, Messages &messages)
{
    if (mode == modeAnA || mode == modeAnDc || isFinite(table))
        return Status::ok;
    return messages.fail(
        "trelm: the result is no finite number: look at the options and at D, DD and W of the table.\n");
}

/// A table whose tensor is analysed, unless it goes out in the short form.
Status writeAnalysed(const CouplingOutput &output, const FittedTable &table,
                     const ShownParameters &parameters, TableAnalysis &analysis, Messages &messages)
{
    if (parameters.report.verbFlag == 0)
        return writeText(output, couplingTable(table), messages);
    if (analyzeRows(table, analysis, messages) != Status::ok)
        return Status::failed;
    return writeText(output, couplingReport(table, analysis, parameters, output.remark), messages);
}

} // namespace

ShownParameters parametersOf(const Run &run)
{
    return {run.mode.trelmMode, run.fit,        run.report,    run.alignment,
            run.magnitude,      run.comparison, run.conversion};
}

Status writeCouplings(const CouplingOutput &output, const FittedTable &table,
                      const ShownParameters &parameters, Messages &messages)
{
    TableAnalysis analysis;
    if (checkNumbers(table, parameters.trelmMode, messages) != Status::ok)
        return Status::failed;
    const bool isShort = parameters.report.verbFlag == 0;
    if (!isShort && analyzeTensor(table.tensor, parameters.fit, analysis.tensor, messages) != Status::ok)
        return messages.fail("TRELM: error occured in analyzeSaupe.\n");
    return writeAnalysed(output, table, parameters, analysis, messages);
}

Status writeFrames(const Run &run, const EulerLists &euler, const char *complaint, Messages &messages,
                   std::span<const AtomLabel> labels)
{
    const Status status = writePDBRot({euler.gamma, euler.beta, euler.alpha}, run.report.rotN,
                                      {run.pdbInfo[0], &run.sInfo, run.structureRemark(), labels},
                                      run.options.pRotName, messages);
    return status == Status::ok ? status : messages.fail("%s", complaint);
}

Status writeFit(const Run &run, const FittedTable &table, std::string_view remark, Messages &messages)
{
    TableAnalysis analysis;
    if (checkNumbers(table, run.mode.trelmMode, messages) != Status::ok)
        return Status::failed;
    if (analyzeTensor(table.tensor, run.fit, analysis.tensor, messages) != Status::ok)
        return messages.fail("trelm: error in analyzeSaupe.\n");
    if (writeAnalysed({.name = run.options.outDName, .remark = remark}, table, parametersOf(run), analysis,
                      messages) != Status::ok)
        return Status::failed;
    return writeFrames(run, analysis.tensor->euler, "trelm: error in writePDBRot.\n", messages);
}

} // namespace trelm
