#include "modes/inputs.h"

#include "couplings/formats/placement.h"
#include "couplings/name_mapping.h"
#include "couplings/options.h"
#include "couplings/table_input.h"
#include "modes/doubts.h"
#include "modes/models.h"
#include "modes/reading.h"
#include "simulation/alignment/options.h"
#include "support/text/match.h"
#include "support/text/text.h"

namespace trelm {
namespace {

/// Structures that are written tell of hydrogens that were never seen.
std::string builtRemark(const HydrogenBonds &bonds, const char *remark)
{
    std::string text;
    if (remark != nullptr)
        text.append(remark).append("\nREMARK ");
    appendf(text, "Hydrogens of the backbone built where they lacked, N-H %.3f and C-H %.3f angstrom.",
            bonds.nitrogen, bonds.carbon);
    return text;
}

Status readStructure(Run &run, Messages &messages)
{
    const std::string &pdbName = run.options.pdbName;
    if (pdbName.empty())
        return Status::ok;
    PDBInfo &pdbInfo = run.pdbInfo[0];
    StructureReading reading;
    if (checkModels(run, messages) != Status::ok || readingOf(run.options, reading, messages) != Status::ok)
        return Status::failed;
    reading.all = wantsAllModels(run.options) ? &run.models : nullptr;
    if (readPDB(pdbName, pdbInfo, nullptr, messages, reading) != Status::ok)
        return messages.fail("Error reading PDB input %s\n", pdbName.c_str());
    if (reading.hydrogens)
        run.remark = builtRemark(*reading.hydrogens, run.options.remark);
    messages.note("%s, %d Atoms, Residues %d to %d.\n", pdbName.c_str(), pdbInfo.atomCount, pdbInfo.minResID,
                  pdbInfo.maxResID);
    return Status::ok;
}

/// Brings the names of the table to those of the structure, or tells what their difference does. Names of
/// other programs are always brought there, but residues of peaks name no atoms.
Status matchNames(Run &run, Messages &messages)
{
    const PDBInfo &pdbInfo = run.pdbInfo[0];
    DTable &dTab = run.dTab[0];
    const bool isForeign = !dTab.origin.file.empty() && pdbInfo.atomCount > 0;
    if (isForeign && !searchesAssignment(run.mode.spreadMode))
        return placeRows(pdbInfo, residueOffset(run.window), dTab, messages);
    if (run.options.names != "auto" && !isForeign) {
        tellTurnedPairs(run, messages);
        return Status::ok;
    }
    const std::string text = mappingText(mapNames(pdbInfo, residueOffset(run.window), dTab));
    if (!text.empty())
        messages.note("trelm: %s\n", text.c_str());
    return Status::ok;
}

Status selectCouplings(Run &run, Messages &messages)
{
    const RunOptions &options = run.options;
    DTable &dTab = run.dTab[0];
    chooseRows(dTab, run.window, options.atomNameS1, options.atomNameS2);
    if (matchNames(run, messages) != Status::ok)
        return Status::failed;
    run.validCount = buildDC(run.pdbInfo[0], dTab, rowMatchOf(run), messages);
    tellRows(run.validCount, "selected", run.window.excludeMode, messages);
    tellTable(run, options.inDName, dTab, messages);
    tellResidues(run, messages);
    tellLostCouplings(run, messages);
    return Status::ok;
}

void selectAtoms(Run &run, Messages &messages)
{
    const PDBInfo &pdbInfo = run.pdbInfo[0];
    PDBSelectInfo &sInfo = run.sInfo;
    sInfo = run.askedAtoms;
    if (sInfo.res1 == 0 && sInfo.resN == 0) {
        sInfo.res1 = pdbInfo.minResID;
        sInfo.resN = pdbInfo.maxResID;
    }
    pdbSelectAdjust(sInfo);
    pdbSelect(pdbInfo, sInfo, run.selection, messages);
    messages.out("REMARK PDB Selection:");
    if (sInfo.selectMode == selectAll)
        messages.out(" All Atoms.\n");
    else
        messages.out(" Residues %d to %d  Residues: %s  Atoms: %s  Chains %s  Segs: %s.\n", sInfo.res1,
                     sInfo.resN, sInfo.resNameList.c_str(), sInfo.atomNameList.c_str(),
                     sInfo.chainNameList.c_str(), sInfo.segNameList.c_str());
}

/// Takes the hydrogens out. The record stays as changed here: written structures go by it.
void dropHydrogens(Run &run, Messages &messages)
{
    run.sInfo.atomNameList = "[1-3]H* H*";
    run.sInfo.atomNameMode = matchGlob;
    run.sInfo.selectID = 0;
    run.sInfo.selectMode = selectMatching;
    pdbSelect(run.pdbInfo[0], run.sInfo, run.selection, messages);
}

} // namespace

Status readInputs(Run &run, Messages &messages)
{
    Status status = readStructure(run, messages);
    if (status == Status::ok)
        status = readCouplings(run.options, run.options.inDName, run.dTab[0], messages);
    if (status != Status::ok)
        return status;
    run.window = settledWindow(run.askedWindow, run.dTab[0]);
    if (selectCouplings(run, messages) != Status::ok || layModels(run, messages) != Status::ok)
        return Status::failed;
    tellSelection(run, messages);
    tellHydrogens(run, messages);
    selectAtoms(run, messages);
    if (run.alignment.Hflag == 0)
        dropHydrogens(run, messages);
    return Status::ok;
}

} // namespace trelm
