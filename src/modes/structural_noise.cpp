#include "modes/structural_noise.h"

#include "errors/cone_noise.h"
#include "structure/write.h"

#include <algorithm>

namespace trelm {
namespace {

/// Noise by the run's own seed. Fails after a message.
Status moveAtoms(Run &run, Messages &messages)
{
    const ConeOptions &options = run.trelmInfo[0];
    const DcInfo &window = run.dcInfo[0];
    PDBInfo *pdbInfo = &run.pdbInfo[0];
    DTable *dTab = &run.dTab[0];
    if (checkPositions(options, messages) != Status::ok)
        return Status::failed;
    warnOfWidth(options, messages);
    const auto rows = static_cast<std::size_t>(dTab->dCount);
    Block<int> dCalcValid("trelm", rows);
    if (rows != 0 && !dCalcValid)
        return messages.fail("Error allocating coord buffers.\n");
    std::ranges::transform(dTab->calculated(), dCalcValid.data(), &DInfo::valid);
    const ConeSetup cone = coneOf(options);
    const ResidueOffset offset = {window.aFirst, window.segFirst, window.segLast};
    RandomStream random(options.idum);
    if (options.noiseMode == 0)
        addPhiPsiNoise(random, pdbInfo, dTab, cone, offset, run.trelmInfo[0].allowFixedDI, messages);
    else if (addPdbNoise(pdbInfo, dTab, cone, offsetOf(offset), dCalcValid.span(), random) == 0)
        messages.err("trelm: no coupling is left: no vector of the structure is moved.\n");
    return Status::ok;
}

} // namespace

Status addStructureNoise(Run &run, Messages &messages)
{
    if (run.pdbInfo[0].atomCount == 0)
        messages.err("trelm: -struc has no atoms to move: see -pdb.\n");
    else if (moveAtoms(run, messages) != Status::ok)
        return Status::failed;
    const int status = writePDB(run.options.pRotName, &run.pdbInfo[0], &run.sInfo, run.options.remark);
    if (status != 0)
        messages.err("trelm: error in writePDB.\n");
    return static_cast<Status>(status);
}

} // namespace trelm
