#include "driver/likelihood_road.h"

#include "magnitude/likelihood.h"
#include "support/text.h"

namespace trelm {

int estimateByLikelihood(Run &run)
{
    const RunOptions &options = run.options;
    const int status = getMlDabR(options.inDName, &run.trelmInfo[0], &run.dcInfo[0], options.atomNameS1,
                                 options.atomNameS2, options.outDName, options.outScName);
    if (status != 0)
        complain("trelm: error in getMlDabR.\n");
    return status;
}

} // namespace trelm
