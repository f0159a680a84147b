#include "modes/best_fit.h"

#include "couplings/options.h"
#include "couplings/quality.h"
#include "modes/coupling_output.h"
#include "modes/json_output.h"
#include "modes/models.h"
#include "report/quality_text.h"
#include "support/text/output_file.h"
#include "support/text/text.h"

#include <string>

namespace trelm {
namespace {

/// A fit of the run's table, and which rows took part.
struct SingleFit {
    FitColumns columns;
    FitResult fit;
    FitQuality quality; ///< of no use unless it was asked for
};

FitInput inputOf(const Run &run, const SingleFit &single)
{
    return fitInputOf(run, single.columns);
}

/// How Q free is found. Fails after a message on a word that is none of the three.
Status readFree(const RunOptions &options, QualityOptions &asked, Messages &messages)
{
    if (options.freeKind.empty())
        return Status::ok;
    FreeOptions free = {.seed = options.freeSeed};
    if (options.freeSeed < 1)
        return messages.fail("trelm: -freeSeed %d: a seed is above 0.\n", options.freeSeed);
    if (options.freeKind == "type" || options.freeKind == "one") {
        free.kind = options.freeKind == "type" ? LeaveOut::byType : LeaveOut::oneByOne;
    } else {
        free.kind = LeaveOut::inParts;
        free.parts = toInt(options.freeKind);
        if (free.parts < 2 || options.freeKind.find_first_not_of("0123456789") != std::string::npos)
            return messages.fail("trelm: -free %s: a number of parts from 2 on, type or one.\n",
                                 options.freeKind.c_str());
    }
    asked.free = free;
    return Status::ok;
}

bool isAsked(const RunOptions &options)
{
    return !options.outQName.empty() || !options.outJName.empty() || options.dropsOutliers != 0;
}

/// Fits the rows that the columns name, and judges the fit if that is asked for.
Status fitRows(const Run &run, const QualityOptions &asked, SingleFit &single, Messages &messages)
{
    FitWork work;
    single.fit = startOf(run.dTab[0]);
    if (fitColumns(inputOf(run, single), work, single.fit, messages) != Status::ok)
        return Status::failed;
    return isAsked(run.options)
               ? assessQuality(inputOf(run, single), single.fit, asked, single.quality, messages)
               : Status::ok;
}

/// Fits again without the outliers of the first fit, and tells of them.
Status fitWithout(const Run &run, const QualityOptions &asked, SingleFit &single, Messages &messages)
{
    const std::vector<Outlier> outliers = single.quality.outliers;
    std::string names;
    for (const Outlier &outlier : outliers) {
        const std::size_t row = single.quality.rows[outlier.row].row;
        single.columns.use[row] = 0;
        names += (names.empty() ? "" : ", ") + rowText(run.dTab[0].observed()[row]);
    }
    messages.note("trelm: %zu outlier%s left out of the fit%s%s\n", outliers.size(),
                  outliers.size() == 1 ? "" : "s", names.empty() ? "" : ": ", names.c_str());
    if (outliers.empty())
        return Status::ok;
    const Status status = fitRows(run, asked, single, messages);
    single.quality.dropped = outliers;
    return status;
}

Status writeQuality(const Run &run, const QualityOptions &asked, const SingleFit &single, Messages &messages)
{
    const std::string &name = run.options.outQName;
    if (name.empty())
        return Status::ok;
    OutFile out;
    if (openOut(out, name, "w") != Status::ok)
        return messages.fail("trelm: -outQ: %s cannot be opened.\n", name.c_str());
    writeOut(out,
             qualityText(run.dTab[0], single.quality, asked.free ? asked.free->kind : LeaveOut::oneByOne));
    return closeOut(out, messages);
}

Status fitAndWrite(const Run &run, const QualityOptions &asked, Messages &messages)
{
    SingleFit single;
    takeColumns(run.dTab[0], single.columns);
    Status status = fitRows(run, asked, single, messages);
    if (status == Status::ok && run.options.dropsOutliers != 0)
        status = fitWithout(run, asked, single, messages);
    if (status != Status::ok)
        return Status::failed;
    single.columns = FitColumns{}; // the report makes columns of its own
    const FittedTable table(run.dTab[0], single.fit);
    status = writeFit(run, table, run.modelRemark + droppedRemark(run.dTab[0], single.quality), messages);
    if (status == Status::ok)
        status = writeQuality(run, asked, single, messages);
    if (status == Status::ok)
        status = writeTableJson(
            run, table, &single.quality, [](JsonWriter &) {}, messages);
    return status;
}

} // namespace

Status bestFitSingle(const Run &run, Messages &messages)
{
    QualityOptions asked = {.yzFlag = run.fit.yzFlag};
    if (readFree(run.options, asked, messages) != Status::ok)
        return Status::failed;
    if (run.validCount == 0)
        messages.warn("trelm: no coupling is left to fit.\n");
    if (wantsAllModels(run.options) && !averagesModels(run.options))
        return fitEachModel(run, messages);
    return fitAndWrite(run, asked, messages) == Status::ok
               ? Status::ok
               : messages.fail("trelm: error in best-fit of data.\n");
}

} // namespace trelm
