#include "modes/structural_noise.h"

#include "couplings/options.h"
#include "errors/cone_noise.h"
#include "structure/write.h"

#include <algorithm>
#include <optional>
#include <span>
#include <vector>

namespace trelm {
namespace {

/// Noise by the run's own seed. Fails after a message.
Status moveAtoms(const Run &run, std::span<Coord3D> coords, Messages &messages)
{
    const ConeOptions &options = run.structuralNoise;
    std::optional<DTable> rows =
        copyTable(run.dTab[0], messages); // a row that is found no more becomes invalid
    if (!rows)
        return Status::failed;
    const NoiseTarget target = {{run.pdbInfo[0], coords}, *rows};
    if (checkPositions(options, messages) != Status::ok)
        return Status::failed;
    warnOfWidth(options, messages);
    std::vector<int> dCalcValid(rows->calculated().size());
    std::ranges::transform(rows->calculated(), dCalcValid.begin(), &DCalc::valid);
    const ConeSetup cone = coneOf(options);
    const ResidueOffset offset = {run.window.aFirst, run.window.segFirst, run.window.segLast};
    RandomStream random(options.idum);
    if (options.noiseMode == noiseOnAngles)
        addPhiPsiNoise(random, target, cone, offset, run.fit.allowFixedDI, messages);
    else if (addPdbNoise(target, cone, offsetOf(offset), dCalcValid, random) == 0)
        messages.warn("trelm: no coupling is left: no vector of the structure is moved.\n");
    return Status::ok;
}

} // namespace

Status addStructureNoise(const Run &run, Messages &messages)
{
    const PDBInfo &pdbInfo = run.pdbInfo[0];
    std::vector<Coord3D> coords = copyOfCoordinates(pdbInfo);
    if (pdbInfo.atomCount == 0)
        messages.warn("trelm: -struc has no atoms to move: see -pdb.\n");
    else if (moveAtoms(run, coords, messages) != Status::ok)
        return Status::failed;
    const PDBOutput output = {pdbInfo, &run.sInfo, run.structureRemark()};
    const Status status = writePDB(run.options.pRotName, output, coords, messages);
    if (status != Status::ok)
        messages.err("trelm: error in writePDB.\n");
    return status;
}

} // namespace trelm
