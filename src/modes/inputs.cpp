#include "modes/inputs.h"

#include "couplings/table_input.h"
#include "simulation/charges/charges.h"
#include "simulation/orientations/sphere.h"
#include "support/text/match.h"

#include <cstdint>

namespace trelm {
namespace {

Status readStructure(Run &run, Messages &messages)
{
    const std::string &pdbName = run.options.pdbName;
    if (pdbName.empty())
        return Status::ok;
    PDBInfo &pdbInfo = run.pdbInfo[0];
    if (readPDB(pdbName, pdbInfo, nullptr, messages) != Status::ok)
        return messages.fail("Error reading PDB input %s\n", pdbName.c_str());
    messages.err("%s, %d Atoms, Residues %d to %d.\n", pdbName.c_str(), pdbInfo.atomCount, pdbInfo.minResID,
                 pdbInfo.maxResID);
    return Status::ok;
}

Status allocateBuffers(Run &run, Messages &messages)
{
    const std::size_t coords = static_cast<std::size_t>(run.pdbInfo[0].atomCount) + maxCharges + 1;
    for (Block<double> *buffer : {&run.xI, &run.yI, &run.zI}) {
        *buffer = Block<double>("matrix", coords);
        if (!*buffer)
            return messages.fail("Error allocating coord buffers.\n");
    }
    run.chargeAtomID = Block<int>("matrix", maxCharges + 1);
    run.charges = Block<float>("matrix", maxCharges + 1);
    run.chargeAtomIDOrig = Block<int>("matrix", maxCharges + 1);
    run.chargesOrig = Block<float>("matrix", maxCharges + 1);
    run.ddots = Block<double>("matrix", std::size_t{3} * maxOrientations);
    if (!run.chargeAtomID || !run.charges || !run.chargeAtomIDOrig || !run.chargesOrig || !run.ddots)
        return messages.fail("Error allocating charge and potential buffers.\n");
    return Status::ok;
}

void selectCouplings(Run &run, Messages &messages)
{
    const RunOptions &options = run.options;
    const DcInfo &dcInfo = run.dcInfo[0];
    DTable &dTab = run.dTab[0];
    chooseRows(dTab, dcInfo, options.atomNameS1, options.atomNameS2);
    run.trelmInfo[0].validCountD = buildDC(run.pdbInfo[0], dTab,
                                           {.aOff = shiftedRes(dcInfo.aFirst, -std::int64_t{dcInfo.segFirst}),
                                            .wOff = dcInfo.segFirst,
                                            .wList = options.wList.span(),
                                            .allowFixedDI = run.trelmInfo[0].allowFixedDI},
                                           messages);
    tellRows(run.trelmInfo[0].validCountD, "selected", dcInfo.excludeMode, messages);
}

void selectAtoms(Run &run, Messages &messages)
{
    const PDBInfo &pdbInfo = run.pdbInfo[0];
    PDBSelectInfo &sInfo = run.sInfo;
    if (sInfo.res1 == 0 && sInfo.resN == 0) {
        sInfo.res1 = pdbInfo.minResID;
        sInfo.resN = pdbInfo.maxResID;
    }
    pdbSelectAdjust(sInfo);
    pdbSelect(pdbInfo, sInfo, run.selection, messages);
    messages.out("REMARK PDB Selection:");
    if (sInfo.selectMode == 1)
        messages.out(" All Atoms.\n");
    else
        messages.out(" Residues %d to %d  Residues: %s  Atoms: %s  Chains %s  Segs: %s.\n", sInfo.res1,
                     sInfo.resN, sInfo.resNameList.c_str(), sInfo.atomNameList.c_str(),
                     sInfo.chainNameList.c_str(), sInfo.segNameList.c_str());
}

/// Takes the hydrogens out. The record stays as changed here: later calls see it.
void dropHydrogens(Run &run, Messages &messages)
{
    run.sInfo.atomNameList = "[1-3]H* H*";
    run.sInfo.atomNameMode = matchGlob;
    run.sInfo.selectID = 0;
    run.sInfo.selectMode = 2;
    pdbSelect(run.pdbInfo[0], run.sInfo, run.selection, messages);
}

} // namespace

Status readInputs(Run &run, Messages &messages)
{
    Status status = readStructure(run, messages);
    if (status == Status::ok)
        status = readTable(run.options.inDName, run.dTab[0], messages);
    if (status != Status::ok)
        return status;
    DcInfo &dcInfo = run.dcInfo[0];
    settleWindow(dcInfo, run.dTab[0]);
    status = allocateBuffers(run, messages);
    if (status != Status::ok)
        return status;
    selectCouplings(run, messages);
    selectAtoms(run, messages);
    if (run.trelmInfo[0].Hflag == 0)
        dropHydrogens(run, messages);
    return Status::ok;
}

} // namespace trelm
