#include "modes/likelihood.h"

#include "magnitude/likelihood.h"
#include "modes/magnitude.h"
#include "support/text/text.h"

namespace trelm {

int estimateByLikelihood(Run &run)
{
    const int status = getMlDabR(makeJob(run), run.options.outScName);
    if (status != 0)
        complain("trelm: error in getMlDabR.\n");
    return status;
}

} // namespace trelm
