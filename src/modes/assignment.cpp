#include "modes/assignment.h"

#include "assignment/assignment.h"
#include "support/text/text.h"

namespace trelm {

int searchAssignment(Run &run)
{
    const RunOptions &options = run.options;
    const auto fixed = static_cast<std::size_t>(options.nFixAa);
    const int status = exhSimDC({.pdbInfo = &run.pdbInfo[0],
                                 .sInfo = &run.sInfo,
                                 .dTab = &run.dTab[0],
                                 .trelmInfo = &run.trelmInfo[0],
                                 .outDName = options.outDName,
                                 .pdbRotName = options.pRotName,
                                 .mapCount = options.mapCount,
                                 .fixResList = std::span(options.fixResList).first(fixed),
                                 .verbose = run.trelmInfo[0].verbFlag,
                                 .remark = options.remark});
    if (status != 0)
        complain("Matrix: error in best-fit of data.\n");
    return status;
}

} // namespace trelm
