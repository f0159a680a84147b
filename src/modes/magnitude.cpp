#include "modes/magnitude.h"

#include "couplings/table_input.h"
#include "magnitude/histogram.h"
#include "magnitude/motion.h"
#include "modes/doubts.h"
#include "modes/reading.h"
#include "report/output.h"
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

Status runHistogram(Run &run, Messages &messages)
{
    ObservedCouplings observed;
    MagnitudeResult result;
    if (readObserved(run, observed, messages) != Status::ok ||
        getHistDabR(observed, run.trelmInfo[0], result, messages) != Status::ok)
        return Status::failed;
    copyObserved(run.dTab[0]);
    return reportMagnitude(run, result, run.dTab[0], messages);
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

Status runMotion(Run &run, Messages &messages)
{
    OutFile outSc, outCol;
    if (openResult(outSc, run.options.outScName, messages) != Status::ok ||
        openResult(outCol, run.options.outColName, messages) != Status::ok)
        return Status::failed;
    ObservedCouplings observed;
    if (readObserved(run, observed, messages) != Status::ok)
        return Status::failed;
    const DcInfo &window = run.dcInfo[0];
    MotionSets drawn;
    if (drawMotion(
            {run.dTab[0], window.segFirst, window.segLast, observed, run.trelmInfo[0], run.trelmInfo[0]},
            drawn, messages) != Status::ok ||
        writeMotion(drawn, outSc, outCol, messages) != Status::ok)
        return Status::failed;
    return reportMagnitude(run, {}, run.dTab[0], messages);
}

} // namespace

Status readObserved(Run &run, ObservedCouplings &observed, Messages &messages)
{
    const RunOptions &options = run.options;
    DTable &dTab = run.dTab[0];
    DcInfo &dcInfo = run.dcInfo[0];
    if (readCouplings(options, options.inDName, dTab, messages) != Status::ok)
        return Status::failed;
    settleWindow(dcInfo, dTab);
    const int count = chooseRows(dTab, dcInfo, options.atomNameS1, options.atomNameS2);
    tellRows(count, "selected", dcInfo.excludeMode, messages);
    tellTable(run, options.inDName, dTab, messages);
    if (count <= 0)
        return messages.fail("trelm: no coupling is left to estimate a tensor from.\n");
    return collectObserved(dTab, observed, messages);
}

Status reportMagnitude(const Run &run, const MagnitudeResult &result, const DTable &dTab, Messages &messages)
{
    TrelmInfo shown = run.trelmInfo[0];
    static_cast<MagnitudeResult &>(shown) = result;
    std::string text;
    writeTrelm(shown, text);
    return writeDCmod({run.options.outDName}, dTab, shown, text, messages);
}

Status estimateByHistogram(Run &run, Messages &messages)
{
    return judge(runHistogram(run, messages), messages);
}

Status estimateByMotion(Run &run, Messages &messages)
{
    return judge(runMotion(run, messages), messages);
}

} // namespace trelm
