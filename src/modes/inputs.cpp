#include "modes/inputs.h"

#include "couplings/table_input.h"
#include "simulation/charges/charges.h"
#include "simulation/orientations/sphere.h"
#include "support/text/match.h"
#include "support/text/text.h"

#include <cstdint>
#include <cstdio>

namespace trelm {
namespace {

int readStructure(Run &run)
{
    const std::string &pdbName = run.options.pdbName;
    if (pdbName.empty())
        return 0;
    PDBInfo &pdbInfo = run.pdbInfo[0];
    const int status = readPDB(pdbName, &pdbInfo, nullptr);
    if (status != 0) {
        complain("Error reading PDB input %s\n", pdbName.c_str());
        return status;
    }
    std::fprintf(stderr, "%s, %d Atoms, Residues %d to %d.\n", pdbName.c_str(), pdbInfo.atomCount,
                 pdbInfo.minResID, pdbInfo.maxResID);
    return 0;
}

int allocateBuffers(Run &run)
{
    const std::size_t coords = static_cast<std::size_t>(run.pdbInfo[0].atomCount) + maxCharges + 1;
    for (Block<double> *buffer : {&run.xI, &run.yI, &run.zI}) {
        *buffer = Block<double>("matrix", coords);
        if (!*buffer)
            return complain("Error allocating coord buffers.\n");
    }
    run.chargeAtomID = Block<int>("matrix", maxCharges + 1);
    run.charges = Block<float>("matrix", maxCharges + 1);
    run.chargeAtomIDOrig = Block<int>("matrix", maxCharges + 1);
    run.chargesOrig = Block<float>("matrix", maxCharges + 1);
    run.ddots = Block<double>("matrix", std::size_t{3} * maxOrientations);
    if (!run.chargeAtomID || !run.charges || !run.chargeAtomIDOrig || !run.chargesOrig || !run.ddots)
        return complain("Error allocating charge and potential buffers.\n");
    return 0;
}

void selectCouplings(Run &run)
{
    const RunOptions &options = run.options;
    const DcInfo &dcInfo = run.dcInfo[0];
    PDBInfo *pdbInfo = &run.pdbInfo[0];
    DTable *dTab = &run.dTab[0];
    chooseRows(*dTab, dcInfo, options.atomNameS1, options.atomNameS2);
    run.trelmInfo[0].validCountD =
        buildDC(pdbInfo, dTab, shiftedRes(dcInfo.aFirst, -std::int64_t{dcInfo.segFirst}), dcInfo.segFirst,
                options.wList.span(), run.trelmInfo[0].allowFixedDI);
    tellRows(run.trelmInfo[0].validCountD, "selected", dcInfo.excludeMode);
}

void selectAtoms(Run &run)
{
    PDBInfo *pdbInfo = &run.pdbInfo[0];
    PDBSelectInfo &sInfo = run.sInfo;
    if (sInfo.res1 == 0 && sInfo.resN == 0) {
        sInfo.res1 = pdbInfo->minResID;
        sInfo.resN = pdbInfo->maxResID;
    }
    pdbSelect(pdbInfo, &sInfo);
    std::printf("REMARK PDB Selection:");
    if (sInfo.selectMode == 1)
        std::printf(" All Atoms.\n");
    else
        std::printf(" Residues %d to %d  Residues: %s  Atoms: %s  Chains %s  Segs: %s.\n", sInfo.res1,
                    sInfo.resN, sInfo.resNameList.c_str(), sInfo.atomNameList.c_str(),
                    sInfo.chainNameList.c_str(), sInfo.segNameList.c_str());
}

/// Takes the mark from the hydrogens. The record stays as changed here: later calls see it.
void dropHydrogens(Run &run)
{
    run.sInfo.atomNameList = "[1-3]H* H*";
    run.sInfo.atomNameMode = matchGlob;
    run.sInfo.selectID = 0;
    run.sInfo.selectMode = 2;
    pdbSelect(&run.pdbInfo[0], &run.sInfo);
}

} // namespace

int readInputs(Run &run)
{
    int status = readStructure(run);
    if (status == 0)
        status = readTable(run.options.inDName, &run.dTab[0]);
    if (status != 0)
        return status;
    DcInfo &dcInfo = run.dcInfo[0];
    settleWindow(dcInfo, run.dTab[0]);
    status = allocateBuffers(run);
    if (status != 0)
        return status;
    selectCouplings(run);
    selectAtoms(run);
    if (run.trelmInfo[0].Hflag == 0)
        dropHydrogens(run);
    return 0;
}

} // namespace trelm
