#include "modes/simulation.h"

#include "couplings/fit.h"
#include "couplings/tensor.h"
#include "modes/structure_analysis.h"
#include "report/output.h"
#include "simulation/alignment/alignment.h"
#include "simulation/alignment/face.h"
#include "simulation/alignment/free_format.h"
#include "simulation/charges/charges.h"
#include "simulation/charges/field.h"
#include "simulation/domains/config.h"
#include "simulation/orientations/sphere.h"
#include "structure/write.h"

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
    Sample sample; ///< its charges by their places in `atoms`
    CoordinateBuffers atoms;
    std::span<const double> ddots;
};

/// From the simulated order matrix to couplings and report. `analysis` gets the tensor with its own sign.
Status finishAlignment(Run &run, const Solute &solute, Saupe saupe, TensorAnalysis &analysis,
                       Messages &messages)
{
    const TrelmInfo &trelmInfo = run.trelmInfo[0];
    DTable &dTab = run.dTab[0];
    // What survives beside the obstacle averages to the opposite sign.
    for (double &element : saupe)
        element = -element;
    if (analyzeSaupe(saupe, trelmInfo.yzFlag, trelmInfo.eulerFlag, analysis, messages) != Status::ok)
        return messages.fail("Matrix: error in analyzeSaupe.\n");
    DTensor &tensor = dTab.dTensor;
    tensor.tensorMode = tensorGiven;
    auto &target = trelmInfo.validCountD != 0 ? tensor.userSaupe : tensor.saupe;
    std::ranges::transform(saupe, target.begin(), [](double element) { return static_cast<float>(element); });
    if (trelmInfo.validCountD != 0 && !fitD(run.pdbInfo[0].coordinates(), dTab, trelmInfo.verbFlag, messages))
        return Status::failed;
    return writeDCmod({run.options.outDName}, dTab, shownParameters(trelmInfo, solute.sample.geometry), "",
                      messages);
}

/// The charges by their atoms in the molecule, as many as the simulation had.
ChargeSet originalCharges(Run &run, ChargeSet charges)
{
    charges.chargeAtomID = run.chargeAtomIDOrig.span();
    charges.charges = run.chargesOrig.span();
    return charges;
}

/// Everything before the simulation itself. `complaint` is said if there is no selection of atoms.
Status chooseSolute(Run &run, const char *complaint, Solute &solute, Messages &messages)
{
    if (setUp(run, solute.sample, messages) != Status::ok ||
        makeDots(run, solute.ddots, messages) != Status::ok)
        return Status::failed;
    const CoordinateBuffers places = {run.xI.span(), run.yI.span(), run.zI.span()};
    SelectedCount selected;
    if (chCoorSelect({run.pdbInfo[0], run.selection}, run.trelmInfo[0], places, solute.sample.charges,
                     selected, messages) != Status::ok)
        return messages.fail("%s", complaint);
    if (selected.dipole)
        reportDipole(*selected.dipole, messages);
    const std::size_t count = selected.places;
    messages.out("REMARK %zu atoms selected for simulation.\n", count);
    messages.out("REMARK %d charges selected for simulation.\n", solute.sample.charges.chCount);
    solute.atoms = {places.x.first(count), places.y.first(count), places.z.first(count)};
    return Status::ok;
}

/// Simulates, and finishes what the modes share.
Status alignSolute(Run &run, const Solute &solute, AlignmentFields &fields, TensorAnalysis &analysis,
                   Messages &messages)
{
    Prediction prediction;
    if (run.trelmInfo[0].elFlag != 0 && run.trelmInfo[0].lcType != lcGrid)
        checkField(run.trelmInfo[0], messages);
    const Status status = simulateAlignment(alignmentSetup(run, solute.sample, solute.ddots, messages),
                                            solute.atoms, solute.sample.charges, fields, prediction);
    if (status != Status::ok)
        return status == Status::ended ? status : messages.fail("Matrix: Error simulating alignment.\n");
    printPrediction(prediction, messages);
    return finishAlignment(run, solute, prediction.sum, analysis, messages);
}

void reportGridFile(const Run &run, int digPotential, Messages &messages)
{
    const TrelmInfo &info = run.trelmInfo[0];
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
    if (read3DPotSteric(run.options.pot3DName, run.trelmInfo[0], pot3Dst, digPotential, messages) !=
        Status::ok)
        return messages.fail("ERROR: Reading of 3D potential not successful.\n");
    reportGridFile(run, digPotential, messages);
    return Status::ok;
}

Status turnStructure(const Run &run, const EulerLists &euler, Messages &messages)
{
    const Status status =
        writePDBRot({euler.gamma, euler.beta, euler.alpha}, run.trelmInfo[0].rotN,
                    {run.pdbInfo[0], &run.sInfo, run.options.remark}, run.options.pRotName, messages);
    return status == Status::ok ? status : messages.fail("matrix: error in writePDBRot.\n");
}

/// The molecule beside a charged wall or rod, and which of its faces that prefers.
Status alignBesideParticle(Run &run, const Solute &solute, Messages &messages)
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
    const ChargeSet charges = originalCharges(run, solute.sample.charges);
    if (iFacePDB(analysis.euler, {run.pdbInfo[0], run.selection, run.trelmInfo[0], charges}, potential,
                 {options.pRotName, options.remark, messages}) != Status::ok)
        return messages.fail("trelm: error in iFacePDB.\n");
    return Status::ok;
}

Status alignInGrid(Run &run, const Solute &solute, Messages &messages)
{
    AlignmentFields fields;
    int digPotential = 0;
    if (read3DPotential(run.options.pot3DName, run.trelmInfo[0], fields.pot3D, digPotential, messages) !=
        Status::ok)
        return messages.fail("ERROR: Reading of 3D potential not successful.\n");
    reportGridFile(run, digPotential, messages);
    TensorAnalysis analysis;
    return alignSolute(run, solute, fields, analysis, messages);
}

} // namespace

Status setUp(Run &run, Sample &sample, Messages &messages)
{
    const TrelmInfo &trelmInfo = run.trelmInfo[0];
    ChargeSet &charges = sample.charges;
    const RunOptions &options = run.options;
    if (checkSample(trelmInfo, messages) != Status::ok)
        return Status::failed;
    if (readConfig(options.inpName, sample.domains, messages) != Status::ok)
        return messages.fail("Error reading configuration file %s\n", options.inpName.c_str());
    charges.chargeAtomID = run.chargeAtomID.span();
    charges.charges = run.charges.span();
    if (chargeSetup(options.pkaName, {run.pdbInfo[0], run.selection}, trelmInfo, charges, options.outPkaName,
                    messages) != Status::ok)
        return messages.fail("WARNING: Error setting up charges!\n");
    std::ranges::copy(charges.chargeAtomID, run.chargeAtomIDOrig.data());
    std::ranges::copy(charges.charges, run.chargesOrig.data());
    messages.out("REMARK %d charges placed, Total charge %.3f [e].\n", charges.chCount,
                 static_cast<double>(charges.chSum));
    if (trelmInfo.elFlag != 0 && trelmInfo.chFlag != 0)
        listCharges(run.pdbInfo[0], charges, messages);
    sample.geometry = refine_bicelle(trelmInfo);
    return Status::ok;
}

TrelmInfo shownParameters(const TrelmInfo &trelmInfo, const SampleGeometry &geometry)
{
    TrelmInfo shown = trelmInfo;
    shown.molarRatio = geometry.molarRatio;
    shown.lengthModel = geometry.lengthModel;
    shown.orderDiscRim = geometry.orderDiscRim;
    return shown;
}

AlignmentSetup alignmentSetup(const Run &run, const Sample &sample, std::span<const double> dots,
                              Messages &messages)
{
    return {run.trelmInfo[0], messages, static_cast<double>(sample.geometry.rSingleCell), dots};
}

Status makeDots(Run &run, std::span<const double> &ddots, Messages &messages)
{
    std::vector<double> dots;
    if (!do_unsp(run.trelmInfo[0].densityNSC, dots) ||
        dots.size() > run.ddots.span().size()) // checkSimulation has bounded them
        return messages.fail("Matrix: unsp error occured.\n");
    std::ranges::copy(dots, run.ddots.data());
    ddots = run.ddots.span().first(dots.size());
    return Status::ok;
}

Status simulateSteric(Run &run, Messages &messages)
{
    const TrelmInfo &trelmInfo = run.trelmInfo[0];
    const bool inGrid = trelmInfo.lcType == lcGrid;
    if (inGrid && trelmInfo.elFlag != 0)
        return messages.fail("trelm: -stTrelm -3D knows no charges: see -elTrelm.\n");
    if (checkSimulation(trelmInfo, messages) != Status::ok)
        return Status::failed;
    Solute solute;
    if (chooseSolute(run, "trelm: error reading selection of atoms.\n", solute, messages) != Status::ok ||
        (inGrid && readStericGrid(run, messages) != Status::ok))
        return Status::failed;
    AlignmentFields fields;
    TensorAnalysis analysis;
    const Status status = alignSolute(run, solute, fields, analysis, messages);
    return status != Status::ok ? status : turnStructure(run, analysis.euler, messages);
}

Status simulateElectrostatic(Run &run, Messages &messages)
{
    if (checkSimulation(run.trelmInfo[0], messages) != Status::ok)
        return Status::failed;
    Solute solute;
    if (chooseSolute(run, "Matrix: Error reading selection of atoms.\n", solute, messages) != Status::ok)
        return Status::failed;
    return run.trelmInfo[0].lcType == lcGrid ? alignInGrid(run, solute, messages)
                                             : alignBesideParticle(run, solute, messages);
}

Status simulateFree(Run &run, Messages &messages)
{
    const TrelmInfo &trelmInfo = run.trelmInfo[0];
    if (trelmInfo.lcType != lcWall && trelmInfo.lcType != lcRod)
        return messages.fail("trelm: -stTrelmFree knows the models -bic and -pf1 only.\n");
    if (checkSample(trelmInfo, messages) != Status::ok || checkSimulation(trelmInfo, messages) != Status::ok)
        return Status::failed;
    Saupe saupe = {};
    Status status = ssiaFree(trelmInfo, run.options.pdbFName, saupe, messages);
    if (status == Status::ok) {
        std::ranges::transform(saupe, run.dTab[0].dTensor.saupe.begin(),
                               [](double element) { return static_cast<float>(element); });
        status = writeDCmod({run.options.outAName}, run.dTab[0],
                            shownParameters(trelmInfo, refine_bicelle(trelmInfo)), "", messages);
    }
    if (status != Status::ok)
        messages.err("matrix: error in ssiaFree.\n");
    return status;
}

Status setUpCharges(Run &run, Messages &messages)
{
    Sample sample;
    return setUp(run, sample, messages);
}

Status analyzeStructure(Run &run, Messages &messages)
{
    Sample sample;
    if (setUp(run, sample, messages) != Status::ok)
        return Status::failed;
    const RunOptions &options = run.options;
    const Status status = analyzePDB(
        {run.pdbInfo[0], run.selection}, shownParameters(run.trelmInfo[0], sample.geometry), sample.charges,
        options.userSaupe1, {options.pRotName, options.outPName, &run.sInfo, options.remark}, messages);
    if (status != Status::ok)
        messages.err("trelm: error in analysis of PDB.\n");
    return status;
}

} // namespace trelm
