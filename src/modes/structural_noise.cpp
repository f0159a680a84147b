#include "modes/structural_noise.h"

#include "errors/cone_noise.h"
#include "structure/write.h"

#include <algorithm>
#include <span>
#include <vector>

namespace trelm {
namespace {

/// Noise by the run's own seed. Fails after a message.
Status moveAtoms(Run &run, std::span<Coord3D> coords, Messages &messages)
{
    const ConeOptions &options = run.trelmInfo[0];
    const DcInfo &window = run.dcInfo[0];
    const NoiseTarget target = {{run.pdbInfo[0], coords}, run.dTab[0]};
    if (checkPositions(options, messages) != Status::ok)
        return Status::failed;
    warnOfWidth(options, messages);
    const auto rows = target.dTab.dCount;
    Block<int> dCalcValid("trelm", rows);
    if (rows != 0 && !dCalcValid)
        return messages.fail("Error allocating coord buffers.\n");
    std::ranges::transform(target.dTab.calculated(), dCalcValid.data(), &DCalc::valid);
    const ConeSetup cone = coneOf(options);
    const ResidueOffset offset = {window.aFirst, window.segFirst, window.segLast};
    RandomStream random(options.idum);
    if (options.noiseMode == noiseOnAngles)
        addPhiPsiNoise(random, target, cone, offset, run.trelmInfo[0].allowFixedDI, messages);
    else if (addPdbNoise(target, cone, offsetOf(offset), dCalcValid.span(), random) == 0)
        messages.warn("trelm: no coupling is left: no vector of the structure is moved.\n");
    return Status::ok;
}

} // namespace

Status addStructureNoise(Run &run, Messages &messages)
{
    const PDBInfo &pdbInfo = run.pdbInfo[0];
    std::vector<Coord3D> coords = copyOfCoordinates(pdbInfo);
    if (pdbInfo.atomCount == 0)
        messages.warn("trelm: -struc has no atoms to move: see -pdb.\n");
    else if (moveAtoms(run, coords, messages) != Status::ok)
        return Status::failed;
    const PDBOutput output = {pdbInfo, &run.sInfo, run.options.remark};
    const Status status = writePDB(run.options.pRotName, output, coords, messages);
    if (status != Status::ok)
        messages.err("trelm: error in writePDB.\n");
    return status;
}

} // namespace trelm
