#include "modes/mappings.h"

#include "errors/coupling_noise.h"
#include "errors/jackknife.h"
#include "errors/structural_noise.h"
#include "support/text/text.h"

namespace trelm {
namespace {

MappingSetup mappingSetup(Run &run)
{
    const RunOptions &options = run.options;
    return {.pdbInfo = &run.pdbInfo[0],
            .sInfo = &run.sInfo,
            .dTab = &run.dTab[0],
            .trelmInfo = &run.trelmInfo[0],
            .files = {.outDName = options.outDName,
                      .pdbRotName = options.pRotName,
                      .outDaName = options.outDaName,
                      .outMapName = options.outMapName,
                      .outDFailName = {},
                      .outAngName = options.outAngName,
                      .outAName = options.outAName,
                      .remark = options.remark},
            .mapCount = options.mapCount,
            .verbose = run.trelmInfo[0].verbFlag};
}

int ended(int status)
{
    if (status != 0)
        complain("Matrix: error in best-fit of data.\n");
    return status;
}

} // namespace

int mapCouplingNoise(Run &run)
{
    MappingSetup setup = mappingSetup(run);
    setup.files.outDFailName = run.options.outDFailName;
    return ended(mapSimDC(setup));
}

int mapJackknife(Run &run)
{
    return ended(aeraSimDC(mappingSetup(run)));
}

int mapStructuralNoise(Run &run)
{
    const DcInfo &dcInfo = run.dcInfo[0];
    return ended(noiseStrucSimDC(mappingSetup(run), {dcInfo.aFirst, dcInfo.segFirst, dcInfo.segLast}));
}

} // namespace trelm
