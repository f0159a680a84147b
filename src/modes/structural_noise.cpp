#include "modes/structural_noise.h"

#include "errors/cone_noise.h"
#include "structure/write.h"
#include "support/text/text.h"

#include <algorithm>

namespace trelm {
namespace {

/// Noise by the run's own seed, which stays as it is.
int moveAtoms(Run &run)
{
    const TrelmInfo &trelmInfo = run.trelmInfo[0];
    const DcInfo &dcInfo = run.dcInfo[0];
    PDBInfo *pdbInfo = &run.pdbInfo[0];
    DTable *dTab = &run.dTab[0];
    if (checkPositions(trelmInfo) != 0)
        return 1;
    warnOfWidth(trelmInfo);
    const auto rows = static_cast<std::size_t>(dTab->dCount);
    Block<int> dCalcValid("trelm", rows);
    if (rows != 0 && !dCalcValid)
        return complain("Error allocating coord buffers.\n");
    std::ranges::transform(dTab->calculated(), dCalcValid.data(), &DInfo::valid);
    const ConeSetup cone = coneOf(trelmInfo);
    const ResidueOffset offset = {dcInfo.aFirst, dcInfo.segFirst, dcInfo.segLast};
    int idum = trelmInfo.idum;
    if (trelmInfo.noiseMode == 0)
        addPhiPsiNoise(&idum, pdbInfo, dTab, cone, offset, trelmInfo.allowFixedDI);
    else if (addPdbNoise(pdbInfo, dTab, cone, offsetOf(offset), dCalcValid.span(), &idum) == 0)
        complain("trelm: no coupling is left: no vector of the structure is moved.\n");
    return 0;
}

} // namespace

int addStructureNoise(Run &run)
{
    if (run.pdbInfo[0].atomCount == 0)
        complain("trelm: -struc has no atoms to move: see -pdb.\n");
    else if (moveAtoms(run) != 0)
        return 1;
    const int status = writePDB(run.options.pRotName, &run.pdbInfo[0], &run.sInfo, run.options.remark);
    if (status != 0)
        complain("trelm: error in writePDB.\n");
    return status;
}

} // namespace trelm
