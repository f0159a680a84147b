#include "modes/structure_analysis.h"

#include "compare/options.h"
#include "couplings/options.h"
#include "modes/coupling_output.h"
#include "modes/simulation.h"
#include "report/structure_report.h"
#include "simulation/alignment/options.h"
#include "simulation/charges/charge_labels.h"
#include "structure/write.h"
#include "support/text/output_file.h"

#include <vector>

namespace trelm {
namespace {

/// Chooses atoms and charges, and finds the frames.
Status findFrames(const Run &run, const Sample &sample, StructureAnalysis &found, Messages &messages)
{
    const PDBInfo &pdbInfo = run.pdbInfo[0];
    const bool isCharged = run.comparison.elPdbFlag == asCharged;
    SelectionBuffers buffers;
    Chosen chosen;
    if (makeSelectionBuffers("analyzePDB", pdbInfo, buffers, messages) != Status::ok)
        return Status::failed;
    if (selectSolute({pdbInfo, run.selection}, run.alignment, sample.charges, buffers, chosen, messages) !=
        Status::ok)
        return messages.fail("trelm: error reading selection of atoms.\n");
    if (chosen.dipole)
        reportDipole(*chosen.dipole, messages);
    messages.out("REMARK %zu atoms selected for simulation.\n", chosen.atoms.x.size());
    if (isCharged)
        messages.out("REMARK %d charges selected for simulation.\n", chosen.charges.chCount);
    return analyzeStructure({pdbInfo, chosen, run.options.userSaupe1, isCharged, run.fit}, found, messages);
}

/// The structure in its own frame, or in that of the order matrix.
Status writeStructures(const Run &run, const Sample &sample, const StructureAnalysis &found,
                       Messages &messages)
{
    const PdbKind kind = run.comparison.elPdbFlag;
    std::vector<AtomLabel> labels;
    if (kind == asCharged)
        labels = labelCharges(run.pdbInfo[0], sample.charges);
    return writeFrames(run, kind == asUserFrame ? found.input.euler : found.structure.euler,
                       "matrix: error in writePDBRot.\n", messages, labels);
}

/// The report is opened before anything is found.
Status analyzeAndWrite(const Run &run, const Sample &sample, Messages &messages)
{
    const std::string &name = run.options.outPName;
    OutFile report;
    if (openOut(report, name, "w") != Status::ok)
        return messages.fail("TRELM Error opening output file %s\n", name.c_str());
    StructureAnalysis found;
    if (findFrames(run, sample, found, messages) != Status::ok ||
        writeStructures(run, sample, found, messages) != Status::ok)
        return Status::failed;
    writeOut(report, structureReport(parametersOf(run, sample.geometry), found, run.options.userSaupe1));
    return closeOut(report, messages);
}

} // namespace

Status reportStructure(const Run &run, Messages &messages)
{
    Sample sample;
    if (setUp(run, sample, messages) != Status::ok)
        return Status::failed;
    const Status status = analyzeAndWrite(run, sample, messages);
    if (status != Status::ok)
        messages.err("trelm: error in analysis of PDB.\n");
    return status;
}

} // namespace trelm
