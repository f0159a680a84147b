// Structures: reading, the lists and look-ups over them, selecting, torsion angles, and writing.
#include "fuzz_input.h"

#include "structure/backbone.h"
#include "structure/select.h"
#include "structure/write.h"
#include "support/text/match.h"

#include <cmath>

namespace {

using namespace trelm;
using fuzz::require;

void checkAtom(const PDBInfo &pdbInfo, const AtomInfo &atom)
{
    const Coord3D &at = pdbInfo.coordinates()[pdbInfo.placeOf(atom)];
    require(std::isfinite(at.x) && std::isfinite(at.y) && std::isfinite(at.z), "coordinates are finite");
    require(atom.resInfo != nullptr && atom.chainInfo != nullptr && atom.segInfo != nullptr,
            "each atom has a residue, a chain and a segment");
    require(atom.resID >= pdbInfo.minResID && atom.resID <= pdbInfo.maxResID, "numbers lie in their range");
    if (!atom.icode.empty())
        return;
    const AtomInfo *found =
        findAtom(pdbInfo, atom.resID, atom.atomName.view(), atom.chainID.view(), atom.segID.view());
    require(found != nullptr && found->resID == atom.resID && found->atomName == atom.atomName &&
                found->chainID == atom.chainID && found->segID == atom.segID,
            "each atom is found by its name");
}

void checkResidue(const PDBInfo &pdbInfo, const ResInfo &residue)
{
    require(findRes(pdbInfo, residue.resID, residue.chainID.view(), residue.segID.view()) == &residue,
            "each residue is found by its number");
    require(residue.atomCount > 0, "a residue has atoms");
}

void select(PDBInfo &pdbInfo, MatchMode matchMode)
{
    PDBSelectInfo sInfo;
    sInfo.selectMode = selectMatching;
    sInfo.atomNameMode = sInfo.resNameMode = matchMode;
    sInfo.atomNameList = "CA [H]* N";
    sInfo.resNameList = "[A-L]";
    pdbSelectAdjust(sInfo);
    AtomMask selection;
    pdbSelect(pdbInfo, sInfo, selection, standardMessages());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    PDBInfo pdbInfo;
    if (readPDB(fuzz::fileOf(fuzz::asText(data, size)), pdbInfo, nullptr, standardMessages()) != Status::ok)
        return 0;
    for (const AtomInfo &atom : pdbInfo.atoms())
        checkAtom(pdbInfo, atom);
    for (const ResInfo &residue : pdbInfo.residues())
        checkResidue(pdbInfo, residue);
    for (const MatchMode mode : {matchExact, matchRegex, matchGlob})
        select(pdbInfo, mode);
    std::vector<Coord3D> coords = copyOfCoordinates(pdbInfo);
    for (const ResInfo &residue : pdbInfo.residues()) {
        float phi = 0.0f, psi = 0.0f;
        getPDBPhiPsi({pdbInfo, coords}, residue.resID, residue.chainID.view(), residue.segID.view(), phi,
                     psi);
        require(std::isfinite(phi) && std::isfinite(psi), "torsion angles are finite");
    }
    require(pdbInfo.atomCount == 0 ||
                writePDB("/dev/null", {pdbInfo, nullptr, "fuzz"}, coords, standardMessages()) == Status::ok,
            "what was read can be written");
    return 0;
}
