#include "modes/magnitude.h"

#include "couplings/table_input.h"
#include "magnitude/histogram.h"
#include "magnitude/motion.h"
#include "modes/coupling_output.h"
#include "modes/doubts.h"
#include "modes/reading.h"
#include "report/run_report.h"
#include "support/text/output_file.h"

namespace trelm {
namespace {

/// Both modes add the same line to a failure.
Status judge(Status status, Messages &messages)
{
    if (status != Status::ok)
        status = messages.fail("trelm: error in getHistDabR.\n");
    return status;
}

/// The calculated rows show the couplings that took part.
void copyObserved(DTable &dTab)
{
    for (std::size_t i = 0; i < dTab.observed().size(); ++i) {
        const DInfo &row = dTab.observed()[i];
        if (!isObserved(row))
            continue;
        dTab.calculated()[i].d = row.d;
        dTab.calculated()[i].valid = row.valid;
    }
}

Status runHistogram(const Run &run, Messages &messages)
{
    ObservedTable observed;
    MagnitudeResult result;
    if (readObserved(run, observed, messages) != Status::ok ||
        getHistDabR(observed.couplings, run.magnitude, result, messages) != Status::ok)
        return Status::failed;
    copyObserved(observed.dTab);
    return reportMagnitude(run, result, observed.dTab, messages);
}

Status openResult(OutFile &out, const std::string &name, Messages &messages)
{
    if (openOut(out, name, "w") != Status::ok)
        return messages.fail("TRELM Error opening output file %s\n", name.c_str());
    return Status::ok;
}

/// Table and map of the sets.
Status writeMotion(MotionSets &drawn, OutFile &outSc, OutFile &outCol, Messages &messages)
{
    std::string table, map;
    const MotionRanges ranges = appendMotion(drawn.sets, drawn.nDots, table);
    writeOut(outSc, table);
    Status status = appendMap(drawn.sets, ranges, map, messages);
    if (status == Status::ok)
        writeOut(outCol, map);
    for (OutFile *out : {&outSc, &outCol})
        if (closeOut(*out, messages) != Status::ok)
            status = Status::failed;
    return status;
}

Status runMotion(const Run &run, Messages &messages)
{
    OutFile outSc, outCol;
    if (openResult(outSc, run.options.outScName, messages) != Status::ok ||
        openResult(outCol, run.options.outColName, messages) != Status::ok)
        return Status::failed;
    ObservedTable observed;
    if (readObserved(run, observed, messages) != Status::ok)
        return Status::failed;
    const DcInfo &window = observed.window;
    MotionSets drawn;
    if (drawMotion(
            {observed.dTab, window.segFirst, window.segLast, observed.couplings, run.magnitude, run.draw},
            drawn, messages) != Status::ok ||
        writeMotion(drawn, outSc, outCol, messages) != Status::ok)
        return Status::failed;
    return reportMagnitude(run, {}, observed.dTab, messages);
}

} // namespace

Status readObserved(const Run &run, ObservedTable &observed, Messages &messages)
{
    const RunOptions &options = run.options;
    DTable &dTab = observed.dTab;
    dTab.dTensor = run.tensor;
    if (readCouplings(options, options.inDName, dTab, messages) != Status::ok)
        return Status::failed;
    observed.window = settledWindow(run.askedWindow, dTab);
    const int count = chooseRows(dTab, observed.window, options.atomNameS1, options.atomNameS2);
    tellRows(count, "selected", observed.window.excludeMode, messages);
    tellTable(run, options.inDName, dTab, messages);
    if (count <= 0)
        return messages.fail("trelm: no coupling is left to estimate a tensor from.\n");
    return collectObserved(dTab, observed.couplings, messages);
}

Status reportMagnitude(const Run &run, const MagnitudeResult &result, const DTable &dTab, Messages &messages)
{
    ShownParameters shown = parametersOf(run);
    shown.estimate = &result;
    std::string text;
    writeTrelm(shown, text);
    return writeCouplings({run.options.outDName, "w", text}, dTab, shown, messages);
}

Status estimateByHistogram(const Run &run, Messages &messages)
{
    return judge(runHistogram(run, messages), messages);
}

Status estimateByMotion(const Run &run, Messages &messages)
{
    return judge(runMotion(run, messages), messages);
}

} // namespace trelm
