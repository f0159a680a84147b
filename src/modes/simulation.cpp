#include "modes/simulation.h"

#include "couplings/fit.h"
#include "couplings/options.h"
#include "couplings/tensor.h"
#include "modes/coupling_output.h"
#include "simulation/alignment/alignment.h"
#include "simulation/alignment/face.h"
#include "simulation/alignment/free_format.h"
#include "simulation/alignment/options.h"
#include "simulation/charges/charges.h"
#include "simulation/charges/field.h"
#include "simulation/domains/config.h"
#include "simulation/orientations/sphere.h"

#include <algorithm>
#include <vector>

namespace trelm {
namespace {

/// The charges as listed for the user of an electrostatic run.
void listCharges(const PDBInfo &pdbInfo, const ChargeSet &charges, Messages &messages)
{
    messages.out("REMARK charges used in simulation:\n"
                 "REMARK ===========================\n"
                 "REMARK chargeID    atom serial number  charge [e] \n");
    for (int i = 0; i < charges.chCount; ++i) {
        const int place = charges.chargeAtomID[static_cast<std::size_t>(i)];
        const Coord3D &at = pdbInfo.coordinates()[static_cast<std::size_t>(place)];
        messages.out("REMARK %d:  %5d  %8.3f %8.3f %8.3f %8.3f\n", i, place, static_cast<double>(at.x),
                     static_cast<double>(at.y), static_cast<double>(at.z),
                     static_cast<double>(charges.charges[static_cast<std::size_t>(i)]));
    }
    messages.err("\n\n");
}

/// One block of the order matrix. The three blocks show the same magnitude, that of the sum.
void printSaupe(const char *name, double gMag, const Saupe &saupe, const char *gap, Messages &messages)
{
    messages.out("%s  gMag %e\n", name, gMag);
    for (const double element : saupe)
        messages.out("%e%s", element, gap);
    messages.out("\n");
}

void printPrediction(const Prediction &prediction, Messages &messages)
{
    printSaupe("SaupeSteric", prediction.gMag, prediction.steric, "  ", messages);
    printSaupe("SaupeEl", prediction.gMag, prediction.electrostatic, " ", messages);
    printSaupe("SaupeSum", prediction.gMag, prediction.sum, "  ", messages);
}

/// What is simulated.
struct Solute {
    Sample sample;
    SelectionBuffers buffers;
    Chosen chosen; ///< in these buffers
    std::vector<double> dots;
};

/// A simulated tensor as a fit, with the couplings of it if any take part. Fails after a message.
Status fitSimulated(const Run &run, const Saupe &saupe, FitResult &fit, Messages &messages)
{
    const DTable &dTab = run.dTab[0];
    fit = startOf(dTab);
    fit.tensor.tensorMode = tensorGiven;
    auto &target = run.validCount != 0 ? fit.tensor.userSaupe : fit.tensor.saupe;
    std::ranges::transform(saupe, target.begin(), [](double element) { return static_cast<float>(element); });
    if (run.validCount == 0)
        return Status::ok;
    FitColumns columns;
    FitWork work;
    takeColumns(dTab, columns);
    return fitColumns({run.pdbInfo[0].coordinates(), dTab, columns, run.report.verbFlag}, work, fit,
                      messages);
}

/// From the simulated order matrix to couplings and report. `analysis` gets the tensor with its own sign.
Status finishAlignment(const Run &run, const Solute &solute, Saupe saupe, TensorAnalysis &analysis,
                       Messages &messages)
{
    // What survives beside the obstacle averages to the opposite sign.
    for (double &element : saupe)
        element = -element;
    if (analyzeSaupe(saupe, run.fit.yzFlag, run.fit.eulerFlag, analysis, messages) != Status::ok)
        return messages.fail("Matrix: error in analyzeSaupe.\n");
    FitResult fit;
    if (fitSimulated(run, saupe, fit, messages) != Status::ok)
        return Status::failed;
    return writeCouplings({run.options.outDName}, {run.dTab[0], fit},
                          parametersOf(run, solute.sample.geometry), messages);
}

/// Everything before the simulation itself. `complaint` is said if there is no selection of atoms.
Status chooseSolute(const Run &run, const char *complaint, Solute &solute, Messages &messages)
{
    if (setUp(run, solute.sample, messages) != Status::ok ||
        makeDots(run, solute.dots, messages) != Status::ok ||
        makeSelectionBuffers("matrix", run.pdbInfo[0], solute.buffers, messages) != Status::ok)
        return Status::failed;
    Chosen &chosen = solute.chosen;
    if (selectSolute({run.pdbInfo[0], run.selection}, run.alignment, solute.sample.charges, solute.buffers,
                     chosen, messages) != Status::ok)
        return messages.fail("%s", complaint);
    if (chosen.dipole)
        reportDipole(*chosen.dipole, messages);
    messages.out("REMARK %zu atoms selected for simulation.\n", chosen.atoms.x.size());
    messages.out("REMARK %d charges selected for simulation.\n", chosen.charges.chCount);
    return Status::ok;
}

/// Simulates, and finishes what the modes share.
Status alignSolute(const Run &run, Solute &solute, AlignmentFields &fields, TensorAnalysis &analysis,
                   Messages &messages)
{
    Prediction prediction;
    if (run.alignment.elFlag != 0 && run.alignment.lcType != lcGrid)
        checkField(run.alignment, messages);
    const Status status = simulateAlignment(alignmentSetup(run, solute.sample, solute.dots, messages),
                                            solute.chosen.atoms, solute.chosen.charges, fields, prediction);
    if (status != Status::ok)
        return status == Status::ended ? status : messages.fail("Matrix: Error simulating alignment.\n");
    printPrediction(prediction, messages);
    return finishAlignment(run, solute, prediction.sum, analysis, messages);
}

void reportGridFile(const Run &run, int digPotential, Messages &messages)
{
    const AlignmentOptions &info = run.alignment;
    if (!run.options.pot3DName.empty())
        messages.err("REMARK 3D Potential %s, Total # of gridpositions %d (x: %d, y: %d, z: %d).\n",
                     run.options.pot3DName.c_str(), digPotential, info.grid3DnX, info.grid3DnY,
                     info.grid3DnZ);
}

/// Reads the grid of a steric run for what there is to tell of it: the kernel ends the run before a point
/// is asked for.
Status readStericGrid(const Run &run, Messages &messages)
{
    Block<float> pot3Dst;
    int digPotential = 0;
    if (read3DPotSteric(run.options.pot3DName, run.alignment, pot3Dst, digPotential, messages) != Status::ok)
        return messages.fail("ERROR: Reading of 3D potential not successful.\n");
    reportGridFile(run, digPotential, messages);
    return Status::ok;
}

/// The molecule beside a charged wall or rod, and which of its faces that prefers.
Status alignBesideParticle(const Run &run, Solute &solute, Messages &messages)
{
    const RunOptions &options = run.options;
    AlignmentFields fields;
    Potential &potential = fields.potential;
    if (readPotential(options.potName, potential, messages) != Status::ok)
        return messages.fail("ERROR Reading of 1D potential not successful.\n");
    if (!options.potName.empty())
        messages.err("REMARK 1D Potential %s, Digitization %d, Offset %.1f, Stepsize %.1f [A].\n",
                     options.potName.c_str(), potential.count, potential.offset, potential.stepsize);
    TensorAnalysis analysis;
    if (const Status status = alignSolute(run, solute, fields, analysis, messages); status != Status::ok)
        return status;
    ChargeSet charges =
        solute.chosen.charges; // as many as the simulation had, by their atoms in the molecule
    charges.chargeAtomID = solute.sample.charges.chargeAtomID;
    charges.charges = solute.sample.charges.charges;
    if (iFacePDB(analysis.euler, {run.pdbInfo[0], run.selection, run.alignment, charges}, potential,
                 {options.pRotName, run.structureRemark(), messages}) != Status::ok)
        return messages.fail("trelm: error in iFacePDB.\n");
    return Status::ok;
}

Status alignInGrid(const Run &run, Solute &solute, Messages &messages)
{
    AlignmentFields fields;
    int digPotential = 0;
    if (read3DPotential(run.options.pot3DName, run.alignment, fields.pot3D, digPotential, messages) !=
        Status::ok)
        return messages.fail("ERROR: Reading of 3D potential not successful.\n");
    reportGridFile(run, digPotential, messages);
    TensorAnalysis analysis;
    return alignSolute(run, solute, fields, analysis, messages);
}

} // namespace

Status setUp(const Run &run, Sample &sample, Messages &messages)
{
    const AlignmentOptions &alignment = run.alignment;
    const RunOptions &options = run.options;
    if (checkSample(alignment, messages) != Status::ok)
        return Status::failed;
    if (readConfig(options.inpName, sample.domains, messages) != Status::ok)
        return messages.fail("Error reading configuration file %s\n", options.inpName.c_str());
    sample.chargeAtomID = Block<int>("matrix", maxCharges + 1);
    sample.chargeValues = Block<float>("matrix", maxCharges + 1);
    if (!sample.chargeAtomID || !sample.chargeValues)
        return messages.fail("Error allocating charge and potential buffers.\n");
    ChargeSet &charges = sample.charges;
    charges.chargeAtomID = sample.chargeAtomID.span();
    charges.charges = sample.chargeValues.span();
    if (chargeSetup(options.pkaName, {run.pdbInfo[0], run.selection}, alignment, charges, options.outPkaName,
                    messages) != Status::ok)
        return messages.fail("WARNING: Error setting up charges!\n");
    messages.out("REMARK %d charges placed, Total charge %.3f [e].\n", charges.chCount,
                 static_cast<double>(charges.chSum));
    if (alignment.elFlag != 0 && alignment.chFlag != 0)
        listCharges(run.pdbInfo[0], charges, messages);
    sample.geometry = refine_bicelle(alignment);
    return Status::ok;
}

ShownParameters parametersOf(const Run &run, const SampleGeometry &geometry)
{
    ShownParameters shown = parametersOf(run);
    shown.geometry = &geometry;
    return shown;
}

AlignmentSetup alignmentSetup(const Run &run, const Sample &sample, std::span<const double> dots,
                              Messages &messages)
{
    return {run.alignment, messages, static_cast<double>(sample.geometry.rSingleCell), dots};
}

Status makeDots(const Run &run, std::vector<double> &dots, Messages &messages)
{
    return do_unsp(run.alignment.densityNSC, dots) ? Status::ok
                                                   : messages.fail("Matrix: unsp error occured.\n");
}

Status simulateSteric(const Run &run, Messages &messages)
{
    const AlignmentOptions &alignment = run.alignment;
    const bool inGrid = alignment.lcType == lcGrid;
    if (inGrid && alignment.elFlag != 0)
        return messages.fail("trelm: -stTrelm -3D knows no charges: see -elTrelm.\n");
    if (checkSimulation(alignment, messages) != Status::ok)
        return Status::failed;
    Solute solute;
    if (chooseSolute(run, "trelm: error reading selection of atoms.\n", solute, messages) != Status::ok ||
        (inGrid && readStericGrid(run, messages) != Status::ok))
        return Status::failed;
    AlignmentFields fields;
    TensorAnalysis analysis;
    const Status status = alignSolute(run, solute, fields, analysis, messages);
    return status != Status::ok
               ? status
               : writeFrames(run, analysis.euler, "matrix: error in writePDBRot.\n", messages);
}

Status simulateElectrostatic(const Run &run, Messages &messages)
{
    if (checkSimulation(run.alignment, messages) != Status::ok)
        return Status::failed;
    Solute solute;
    if (chooseSolute(run, "Matrix: Error reading selection of atoms.\n", solute, messages) != Status::ok)
        return Status::failed;
    return run.alignment.lcType == lcGrid ? alignInGrid(run, solute, messages)
                                          : alignBesideParticle(run, solute, messages);
}

Status simulateFree(const Run &run, Messages &messages)
{
    const AlignmentOptions &alignment = run.alignment;
    if (alignment.lcType != lcWall && alignment.lcType != lcRod)
        return messages.fail("trelm: -stTrelmFree knows the models -bic and -pf1 only.\n");
    if (checkSample(alignment, messages) != Status::ok || checkSimulation(alignment, messages) != Status::ok)
        return Status::failed;
    Saupe saupe = {};
    Status status = ssiaFree(alignment, run.options.pdbFName, saupe, messages);
    if (status == Status::ok) {
        DTable shown;
        shown.dTensor = run.tensor;
        std::ranges::transform(saupe, shown.dTensor.saupe.begin(),
                               [](double element) { return static_cast<float>(element); });
        status = writeCouplings({run.options.outAName}, shown, parametersOf(run, refine_bicelle(alignment)),
                                messages);
    }
    if (status != Status::ok)
        messages.err("matrix: error in ssiaFree.\n");
    return status;
}

Status setUpCharges(const Run &run, Messages &messages)
{
    Sample sample;
    return setUp(run, sample, messages);
}

} // namespace trelm
