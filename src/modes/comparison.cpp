#include "modes/comparison.h"

#include "compare/convert.h"
#include "compare/coupling_sets.h"
#include "compare/order_matrices.h"
#include "support/text/text.h"

namespace trelm {

int combineCouplings(Run &run)
{
    const RunOptions &options = run.options;
    const int status = analyzeDC(options.inD1Name, options.inD2Name, &run.trelmInfo[0], &run.dcInfo[0],
                                 options.atomNameS1, options.atomNameS2, options.outDName);
    if (status != 0)
        complain("Matrix: error in comparison of order matrices.\n"); // the text of both comparisons
    return status;
}

int compareTensors(Run &run)
{
    const RunOptions &options = run.options;
    const int status = compareSaupe(&run.trelmInfo[0], options.userSaupe1, options.userSaupe2,
                                    options.outAName, &run.dTab[0], options.hingeAxis, options.twistAxis);
    if (status != 0)
        complain("Matrix: error in comparison of order matrices.\n");
    return status;
}

int convertTable(Run &run)
{
    const RunOptions &options = run.options;
    const int status = convertTab(options.inDName, &run.trelmInfo[0], &run.dcInfo[0], options.atomNameS1,
                                  options.atomNameS2, options.outDName);
    if (status != 0)
        complain("trelm: error in conversion of table.\n");
    return status;
}

} // namespace trelm
