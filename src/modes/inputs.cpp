#include "modes/inputs.h"

#include "couplings/formats/placement.h"
#include "couplings/lost_rows.h"
#include "couplings/name_mapping.h"
#include "couplings/table_input.h"
#include "modes/doubts.h"
#include "modes/reading.h"
#include "report/modes.h"
#include "simulation/charges/charges.h"
#include "simulation/orientations/sphere.h"
#include "structure/atom_names.h"
#include "support/text/match.h"
#include "support/text/text.h"

#include <cstdint>

namespace trelm {
namespace {

/// Structures that are written tell of hydrogens that were never seen.
void tellBuiltHydrogens(const HydrogenBonds &bonds, RunOptions &options)
{
    std::string &text = options.builtRemark;
    if (options.remark != nullptr)
        text.append(options.remark).append("\nREMARK ");
    appendf(text, "Hydrogens of the backbone built where they lacked, N-H %.3f and C-H %.3f angstrom.",
            bonds.nitrogen, bonds.carbon);
    options.remark = text.c_str();
}

Status readStructure(Run &run, Messages &messages)
{
    const std::string &pdbName = run.options.pdbName;
    if (pdbName.empty())
        return Status::ok;
    PDBInfo &pdbInfo = run.pdbInfo[0];
    StructureReading reading;
    if (readingOf(run.options, reading, messages) != Status::ok)
        return Status::failed;
    if (readPDB(pdbName, pdbInfo, nullptr, messages, reading) != Status::ok)
        return messages.fail("Error reading PDB input %s\n", pdbName.c_str());
    if (reading.hydrogens)
        tellBuiltHydrogens(*reading.hydrogens, run.options);
    messages.note("%s, %d Atoms, Residues %d to %d.\n", pdbName.c_str(), pdbInfo.atomCount, pdbInfo.minResID,
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

int residueOffset(const DcInfo &dcInfo)
{
    return shiftedRes(dcInfo.aFirst, -std::int64_t{dcInfo.segFirst});
}

bool searchesAssignment(const Run &run)
{
    const SpreadKind spread = run.trelmInfo[0].spreadMode;
    return spread == spreadRand || spread == spreadExhaust || spread == spreadExhaustSel;
}

/// Without a structure there is nothing to find: that is told elsewhere. And a search of assignments puts
/// couplings on other residues than those of the table.
void warnOfLostRows(const Run &run, Messages &messages)
{
    const PDBInfo &pdbInfo = run.pdbInfo[0];
    if (pdbInfo.atomCount == 0 || searchesAssignment(run))
        return;
    tellLostRows(pdbInfo, run.dTab[0], residueOffset(run.dcInfo[0]), messages);
    const LostRows lost = findLostRows(pdbInfo, run.dTab[0], residueOffset(run.dcInfo[0]));
    if (!lost.groups.empty())
        messages.warn("trelm: %s\n", lostRowsText(lost).c_str());
    if (lost.lacksHydrogens)
        messages.warn("trelm: the structure has no hydrogens (-addH builds them)\n");
}

/// Brings the names of the table to those of the structure, or tells what their difference does. Names of
/// other programs are always brought there, but residues of peaks name no atoms.
Status matchNames(Run &run, Messages &messages)
{
    DTable &dTab = run.dTab[0];
    const bool isForeign = !dTab.origin.file.empty() && run.pdbInfo[0].atomCount > 0;
    if (isForeign && !searchesAssignment(run))
        return placeRows(run.pdbInfo[0], residueOffset(run.dcInfo[0]), dTab, messages);
    if (run.options.names == "auto" || isForeign) {
        const std::string text = mappingText(mapNames(run.pdbInfo[0], residueOffset(run.dcInfo[0]), dTab));
        if (!text.empty())
            messages.note("trelm: %s\n", text.c_str());
        return Status::ok;
    }
    const int turned = run.trelmInfo[0].allowFixedDI != 0 ? countTurnedPairs(dTab) : 0;
    if (turned != 0)
        messages.warn(
            "trelm: %d pairs with N first take the distance of the structure, not the fixed one of the other"
            " order (-names auto)\n",
            turned);
    return Status::ok;
}

Status selectCouplings(Run &run, Messages &messages)
{
    const RunOptions &options = run.options;
    const DcInfo &dcInfo = run.dcInfo[0];
    DTable &dTab = run.dTab[0];
    chooseRows(dTab, dcInfo, options.atomNameS1, options.atomNameS2);
    if (matchNames(run, messages) != Status::ok)
        return Status::failed;
    run.trelmInfo[0].validCountD = buildDC(run.pdbInfo[0], dTab,
                                           {.aOff = residueOffset(dcInfo),
                                            .wOff = dcInfo.segFirst,
                                            .wList = options.wList.span(),
                                            .allowFixedDI = run.trelmInfo[0].allowFixedDI},
                                           messages);
    tellRows(run.trelmInfo[0].validCountD, "selected", dcInfo.excludeMode, messages);
    tellTable(run, options.inDName, dTab, messages);
    tellResidues(run, messages);
    warnOfLostRows(run, messages);
    return Status::ok;
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
    if (sInfo.selectMode == selectAll)
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
    run.sInfo.selectMode = selectMatching;
    pdbSelect(run.pdbInfo[0], run.sInfo, run.selection, messages);
}

/// What of the selection of atoms does not act as one may think.
void warnOfSelection(const Run &run, Messages &messages)
{
    const PDBInfo &pdbInfo = run.pdbInfo[0];
    const PDBSelectInfo &sInfo = run.sInfo;
    const struct {
        const char *option;
        const std::string &list;
        MatchMode mode;
        const char *remedy;
    } rows[] = {{"-resName", sInfo.resNameList, sInfo.resNameMode, "-rExact, -rGlob or -rRegex"},
                {"-chain", sInfo.chainNameList, sInfo.chainNameMode, "-cExact, -cGlob or -cRegex"},
                {"-seg", sInfo.segNameList, sInfo.segNameMode, "-sExact, -sGlob or -sRegex"}};
    for (const auto &row : rows)
        if (row.list != "*" && row.mode == matchNone)
            messages.warn("trelm: %s %s acts on nothing without a way to match: %s\n", row.option,
                          row.list.c_str(), row.remedy);
    const bool isFit = run.trelmInfo[0].trelmMode == modeBestFit && run.trelmInfo[0].validCountD > 0;
    if (isFit && pdbInfo.chains().size() > 1 && (sInfo.chainNameList != "*" || sInfo.segNameList != "*"))
        messages.warn(
            "trelm: the couplings were found in %s of %zu: a selection acts on written structures and"
            " simulations alone\n",
            chainsOfRows(pdbInfo, run.dTab[0]).c_str(), pdbInfo.chains().size());
}

/// Hydrogens of the file that a prediction leaves out, because the option that takes them was not given.
void warnOfHydrogens(const Run &run, Messages &messages)
{
    const Mode mode = run.trelmInfo[0].trelmMode;
    const bool predicts = mode == modeStTrelm || mode == modeElTrelm || mode == modeStTrelmGrid;
    if (predicts && run.trelmInfo[0].Hflag == 0 && hasHydrogens(run.pdbInfo[0]))
        messages.warn("trelm: the hydrogens of %s are left out of the simulation (-H takes them in)\n",
                      run.options.pdbName.c_str());
}

} // namespace

Status readInputs(Run &run, Messages &messages)
{
    Status status = readStructure(run, messages);
    if (status == Status::ok)
        status = readCouplings(run.options, run.options.inDName, run.dTab[0], messages);
    if (status != Status::ok)
        return status;
    DcInfo &dcInfo = run.dcInfo[0];
    settleWindow(dcInfo, run.dTab[0]);
    status = allocateBuffers(run, messages);
    if (status != Status::ok)
        return status;
    if (selectCouplings(run, messages) != Status::ok)
        return Status::failed;
    warnOfSelection(run, messages);
    warnOfHydrogens(run, messages);
    selectAtoms(run, messages);
    if (run.trelmInfo[0].Hflag == 0)
        dropHydrogens(run, messages);
    return Status::ok;
}

} // namespace trelm
