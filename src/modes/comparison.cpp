#include "modes/comparison.h"

#include "compare/convert.h"
#include "compare/coupling_sets.h"
#include "compare/order_matrices.h"
#include "couplings/options.h"
#include "couplings/saupe_input.h"
#include "couplings/table_input.h"
#include "modes/coupling_output.h"
#include "modes/doubts.h"
#include "modes/reading.h"
#include "support/text/output_file.h"

#include <algorithm>

namespace trelm {
namespace {

/// Chooses the couplings of a table by the window of the run. Returns their number.
int choose(const Run &run, DTable &dTab, Messages &messages)
{
    const DcInfo dcInfo = settledWindow(run.askedWindow, dTab);
    const int count = chooseRows(dTab, dcInfo, run.options.atomNameS1, run.options.atomNameS2);
    tellRows(count, "selected", dcInfo.excludeMode, messages);
    return count;
}

Status combine(const Run &run, Messages &messages)
{
    Block<DTable> dTab1("trelm", 1), dTab2("trelm", 1);
    if (!dTab1 || !dTab2)
        return messages.fail("Error allocating DC structures.\n");
    Status status = readCouplings(run.options, run.options.inD1Name, dTab1[0], messages);
    if (status == Status::ok)
        status = readCouplings(run.options, run.options.inD2Name, dTab2[0], messages);
    if (status != Status::ok)
        return status;
    choose(run, dTab1[0], messages);
    tellTable(run, run.options.inD1Name, dTab1[0], messages);
    tellTable(run, run.options.inD2Name, dTab2[0], messages);
    const int shared = adjustDC(run.comparison, dTab1[0], dTab2[0]);
    if (shared == tooLarge)
        return messages.fail("trelm: a combination of couplings is no finite number: look at -c1 and -c2.\n");
    tellRows(shared, "combined", run.askedWindow.excludeMode, messages);
    if (shared == 0)
        messages.warn("trelm: the two tables share no coupling of the selection.\n");
    return writeCouplings({run.options.outDName}, dTab1[0], parametersOf(run), messages);
}

/// The report is a coupling output without couplings, with the combined tensor.
Status compare(const Run &run, Messages &messages)
{
    const RunOptions &options = run.options;
    Saupe saupe1 = options.userSaupe1, saupe2 = options.userSaupe2;
    if ((!options.saupeName1.empty() && readSaupe(options.saupeName1, saupe1, messages) != Status::ok) ||
        (!options.saupeName2.empty() && readSaupe(options.saupeName2, saupe2, messages) != Status::ok))
        return Status::failed;
    const TensorPair pair = {.saupe1 = saupe1,
                             .saupe2 = saupe2,
                             .hingeAxis = options.hingeAxis,
                             .twistAxis = options.twistAxis,
                             .rotN = run.report.rotN,
                             .yzFlag = run.fit.yzFlag};
    TensorComparison found;
    if (const Status status = compareSaupe(pair, run.comparison, found, messages); status != Status::ok)
        return status;
    std::string text;
    appendComparison(pair, found, text);
    DTable shown;
    shown.dTensor = run.tensor;
    std::ranges::transform(found.combined, shown.dTensor.saupe.begin(),
                           [](double value) { return static_cast<float>(value); });
    return writeCouplings({options.outAName, "w", text}, shown, parametersOf(run), messages);
}

/// Opens the output, before the table is read.
Status openResult(const RunOptions &options, OutFile &out, Messages &messages)
{
    if (openOut(out, options.outDName, "w") != Status::ok)
        return messages.fail("TRELM Error opening output file %s\n", options.outDName.c_str());
    return Status::ok;
}

Status convert(const Run &run, Messages &messages)
{
    const RunOptions &options = run.options;
    const ConversionOptions &conversion = run.conversion;
    Block<DTable> table("convertTab", 1);
    if (!table)
        return messages.fail("Error allocating DC structures.\n");
    DTable &dTab = table[0];
    OutFile out;
    if (conversion.outFormat != formatTrelm && openResult(options, out, messages) != Status::ok)
        return Status::failed;
    if (const Status status = readCouplings(options, options.inDName, dTab, messages); status != Status::ok)
        return status;
    if (choose(run, dTab, messages) == 0)
        messages.warn("trelm: no coupling is left to convert.\n");
    tellTable(run, options.inDName, dTab, messages);
    if (fillConverted(conversion, dTab, messages) != Status::ok)
        return Status::failed;
    if (conversion.outFormat == formatTrelm)
        return writeCouplings({options.outDName}, dTab, parametersOf(run), messages);
    std::string text;
    if (convertTab(conversion, dTab, options.inDName, text, messages) != Status::ok)
        return Status::failed;
    writeOut(out, text);
    return closeOut(out, messages);
}

/// The status of a mode, after the line that it adds to a failure.
Status judge(Status status, const char *line, Messages &messages)
{
    if (status != Status::ok)
        messages.err("%s", line);
    return status;
}

constexpr const char *comparisonFailed = "Matrix: error in comparison of order matrices.\n"; // of both

} // namespace

Status combineCouplings(const Run &run, Messages &messages)
{
    return judge(combine(run, messages), comparisonFailed, messages);
}

Status compareTensors(const Run &run, Messages &messages)
{
    return judge(compare(run, messages), comparisonFailed, messages);
}

Status convertTable(const Run &run, Messages &messages)
{
    return judge(convert(run, messages), "trelm: error in conversion of table.\n", messages);
}

} // namespace trelm
