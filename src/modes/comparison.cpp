#include "modes/comparison.h"

#include "compare/convert.h"
#include "compare/coupling_sets.h"
#include "compare/order_matrices.h"
#include "couplings/saupe_input.h"
#include "couplings/table_input.h"
#include "ground/messages.h"
#include "modes/doubts.h"
#include "modes/reading.h"
#include "report/output.h"
#include "support/text/output_file.h"

#include <algorithm>

namespace trelm {
namespace {

/// Settles the window of the run by a table, and chooses its couplings. Returns their number.
int choose(Run &run, DTable &dTab, Messages &messages)
{
    DcInfo &dcInfo = run.dcInfo[0];
    settleWindow(dcInfo, dTab);
    const int count = chooseRows(dTab, dcInfo, run.options.atomNameS1, run.options.atomNameS2);
    tellRows(count, "selected", dcInfo.excludeMode, messages);
    return count;
}

Status combine(Run &run, Messages &messages)
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
    const int shared = adjustDC(run.trelmInfo[0], dTab1[0], dTab2[0]);
    if (shared == tooLarge)
        return messages.fail("trelm: a combination of couplings is no finite number: look at -c1 and -c2.\n");
    tellRows(shared, "combined", run.dcInfo[0].excludeMode, messages);
    if (shared == 0)
        messages.warn("trelm: the two tables share no coupling of the selection.\n");
    return writeDCmod({run.options.outDName}, dTab1[0], run.trelmInfo[0], "", messages);
}

/// The report is a coupling output without couplings, with the combined tensor.
Status compare(Run &run, Messages &messages)
{
    const RunOptions &options = run.options;
    const TrelmInfo &trelmInfo = run.trelmInfo[0];
    Saupe saupe1 = options.userSaupe1, saupe2 = options.userSaupe2;
    if ((!options.saupeName1.empty() && readSaupe(options.saupeName1, saupe1, messages) != Status::ok) ||
        (!options.saupeName2.empty() && readSaupe(options.saupeName2, saupe2, messages) != Status::ok))
        return Status::failed;
    const TensorPair pair = {.saupe1 = saupe1,
                             .saupe2 = saupe2,
                             .hingeAxis = options.hingeAxis,
                             .twistAxis = options.twistAxis,
                             .rotN = trelmInfo.rotN,
                             .yzFlag = trelmInfo.yzFlag};
    TensorComparison found;
    if (const Status status = compareSaupe(pair, trelmInfo, found, messages); status != Status::ok)
        return status;
    std::string text;
    appendComparison(pair, found, text);
    std::ranges::transform(found.combined, run.dTab[0].dTensor.saupe.begin(),
                           [](double value) { return static_cast<float>(value); });
    return writeDCmod({options.outAName}, run.dTab[0], trelmInfo, text, messages);
}

/// Opens the output, before the table is read.
Status openResult(const RunOptions &options, OutFile &out, Messages &messages)
{
    if (openOut(out, options.outDName, "w") != Status::ok)
        return messages.fail("TRELM Error opening output file %s\n", options.outDName.c_str());
    return Status::ok;
}

Status convert(Run &run, Messages &messages)
{
    const RunOptions &options = run.options;
    const ConversionOptions &conversion = run.trelmInfo[0];
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
        return writeDCmod({options.outDName}, dTab, run.trelmInfo[0], "", messages);
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

Status combineCouplings(Run &run, Messages &messages)
{
    return judge(combine(run, messages), comparisonFailed, messages);
}

Status compareTensors(Run &run, Messages &messages)
{
    return judge(compare(run, messages), comparisonFailed, messages);
}

Status convertTable(Run &run, Messages &messages)
{
    return judge(convert(run, messages), "trelm: error in conversion of table.\n", messages);
}

} // namespace trelm
