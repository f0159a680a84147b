#include "command/run.h"

#include "command/command_line.h"
#include "command/flag_hint.h"
#include "command/params.h"
#include "support/text/output_file.h"

#include <cstdio>

namespace trelm {
namespace {

constexpr std::string_view legalNotice = "\n\n"
                                         "*--------------------------------------------------*\n"
                                         "|                      TRELM                       |\n"
                                         "*--------------------------------------------------*\n"
                                         "\n\n";

} // namespace

Status startRun(Run &run, Messages &messages)
{
    messages.text(Messages::Stream::err, legalNotice);
    run.dTab = Block<DTable>("matrix", 1);
    run.pdbInfo = Block<PDBInfo>("matrix", 1);
    run.trelmInfo = Block<TrelmInfo>("matrix", 1);
    run.dcInfo = Block<DcInfo>("matrix", 1);
    if (!run.dTab || !run.pdbInfo || !run.trelmInfo || !run.dcInfo)
        return messages.fail("Error allocating DC/PDB/TRELM structures.\n");
    return Status::ok;
}

Status readOptions(int argc, char **argv, Run &run, Messages &messages)
{
    CommandLine line(argc, argv, checkOfEnvironment(), messages);
    Status status =
        getparams(line, run.options, run.trelmInfo[0], run.dcInfo[0], run.sInfo, run.dTab[0].dTensor);
    if (run.options.wCount < 0) // no memory for the weights
        status = Status::failed;
    if (status != Status::ok)
        return messages.fail("TRELM Error extracting command-line arguments.\n");
    line.reportUnused(nearestFlag);
    if (run.options.dbgFlag > 1)
        setAlloc(1);
    return Status::ok;
}

int endRun(Run &run, Status status, Messages &messages)
{
    if (run.dTab)
        run.dTab[0] = DTable{};
    run.options.wList.release();
    // The balance is taken here: it shows what the records and buffers of the run still hold.
    showAlloc();
    run = Run{};
    // A run that failed has told why already, perhaps just this.
    OutFile out;
    if (status == Status::ok)
        status = closeOut(out, messages);
    // Warnings and reports go to the standard error stream; of their loss the status alone can tell. And who
    // went on without a block of memory has told of it, but has no whole result.
    const bool isIncomplete = std::ferror(stderr) != 0 || allocHasFailed();
    return static_cast<int>(status == Status::ok && isIncomplete ? Status::failed : status);
}

} // namespace trelm
