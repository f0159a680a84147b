#include "command/run.h"

#include "command/cmndargs.h"
#include "command/flag_hint.h"
#include "command/params.h"
#include "support/text/output_file.h"
#include "support/text/text.h"

#include <cstdio>

namespace trelm {
namespace {

void legalNotice()
{
    std::fputs("\n\n"
               "*--------------------------------------------------*\n"
               "|                      TRELM                       |\n"
               "*--------------------------------------------------*\n"
               "\n\n",
               stderr);
}

} // namespace

int startRun(Run &run)
{
    legalNotice();
    run.dTab = Block<DTable>("matrix", 1);
    run.pdbInfo = Block<PDBInfo>("matrix", 1);
    run.trelmInfo = Block<TrelmInfo>("matrix", 1);
    run.dcInfo = Block<DcInfo>("matrix", 1);
    if (!run.dTab || !run.pdbInfo || !run.trelmInfo || !run.dcInfo)
        return complain("Error allocating DC/PDB/TRELM structures.\n");
    return 0;
}

int readOptions(int argc, char **argv, Run &run)
{
    initArgs(argc, argv, checkFromEnvironment);
    int status =
        getparams(argc, argv, run.options, run.trelmInfo[0], run.dcInfo[0], run.sInfo, run.dTab[0].dTensor);
    if (run.options.wCount < 0) // no memory for the weights
        status = 1;
    if (status != 0) {
        complain("TRELM Error extracting command-line arguments.\n");
        return status;
    }
    checkArgs(argc, argv, nearestFlag);
    if (run.options.dbgFlag > 1)
        setAlloc(1);
    return 0;
}

int endRun(Run &run, int status)
{
    if (run.dTab)
        run.dTab[0] = DTable{};
    run.options.wList.release();
    // The balance is taken here: it shows what the records and buffers of the run still hold.
    showAlloc();
    run = Run{};
    // A run that failed has told why already, perhaps just this.
    OutFile out;
    if (status == 0)
        status = static_cast<int>(closeOut(out, standardMessages()));
    // Warnings and reports go to the standard error stream; of their loss the status alone can tell. And who
    // went on without a block of memory has told of it, but has no whole result.
    const bool isIncomplete = std::ferror(stderr) != 0 || allocHasFailed();
    return status == 0 && isIncomplete ? 1 : status;
}

} // namespace trelm
