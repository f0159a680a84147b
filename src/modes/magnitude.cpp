#include "modes/magnitude.h"

#include "magnitude/histogram.h"
#include "magnitude/motion.h"
#include "support/text/text.h"

namespace trelm {
namespace {

/// Both branches add the same line to a failure.
int judge(int status)
{
    if (status != 0)
        complain("trelm: error in getHistDabR.\n");
    return status;
}

} // namespace

MagnitudeJob makeJob(Run &run)
{
    const RunOptions &options = run.options;
    return {.inDName = options.inDName,
            .atomNameS1 = options.atomNameS1,
            .atomNameS2 = options.atomNameS2,
            .outDName = options.outDName,
            .dTab = &run.dTab[0],
            .trelmInfo = &run.trelmInfo[0],
            .dcInfo = &run.dcInfo[0]};
}

int estimateByHistogram(Run &run)
{
    return judge(getHistDabR(makeJob(run)));
}

int estimateByMotion(Run &run)
{
    return judge(motionHist(makeJob(run), run.options.outScName, run.options.outColName));
}

} // namespace trelm
