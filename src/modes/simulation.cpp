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
#include "support/text/text.h"

#include <algorithm>
#include <cstdio>
#include <vector>

namespace trelm {
namespace {

/// The charges as listed for the user of an electrostatic run.
void listCharges(const PDBInfo &pdbInfo, const ChargeSet &charges)
{
    std::printf("REMARK charges used in simulation:\n"
                "REMARK ===========================\n"
                "REMARK chargeID    atom serial number  charge [e] \n");
    for (int i = 0; i < charges.chCount; ++i) {
        const int place = charges.chargeAtomID[static_cast<std::size_t>(i)];
        const AtomInfo &atom = pdbInfo.atomList[static_cast<std::size_t>(place)];
        std::printf("REMARK %d:  %5d  %8.3f %8.3f %8.3f %8.3f\n", i, place, static_cast<double>(atom.x),
                    static_cast<double>(atom.y), static_cast<double>(atom.z),
                    static_cast<double>(charges.charges[static_cast<std::size_t>(i)]));
    }
    std::fputs("\n\n", stderr);
}

/// One block of the order matrix. The three blocks show the same magnitude, that of the sum.
void printSaupe(const char *name, double gMag, const Saupe &saupe, const char *gap)
{
    std::printf("%s  gMag %e\n", name, gMag);
    for (const double element : saupe)
        std::printf("%e%s", element, gap);
    std::printf("\n");
}

void printPrediction(const Prediction &prediction)
{
    printSaupe("SaupeSteric", prediction.gMag, prediction.steric, "  ");
    printSaupe("SaupeEl", prediction.gMag, prediction.electrostatic, " ");
    printSaupe("SaupeSum", prediction.gMag, prediction.sum, "  ");
}

/// What is simulated.
struct Solute {
    Sample sample; ///< its charges by their places in `atoms`
    CoordinateBuffers atoms;
    std::span<const double> ddots;
};

/// From the simulated order matrix to couplings and report. `analysis` gets the tensor with its own sign.
int finishAlignment(Run &run, const Solute &solute, Saupe saupe, TensorAnalysis &analysis)
{
    const TrelmInfo &trelmInfo = run.trelmInfo[0];
    DTable &dTab = run.dTab[0];
    // What survives beside the obstacle averages to the opposite sign.
    for (double &element : saupe)
        element = -element;
    if (analyzeSaupe(saupe, trelmInfo.yzFlag, trelmInfo.eulerFlag, analysis, standardMessages()) !=
        Status::ok)
        return complain("Matrix: error in analyzeSaupe.\n");
    DTensor &tensor = dTab.dTensor;
    tensor.tensorMode = tensorGiven;
    auto &target = trelmInfo.validCountD != 0 ? tensor.userSaupe : tensor.saupe;
    std::ranges::transform(saupe, target.begin(), [](double element) { return static_cast<float>(element); });
    if (trelmInfo.validCountD != 0 && !fitD(&run.pdbInfo[0], dTab, trelmInfo.verbFlag, standardMessages()))
        return 1;
    return static_cast<int>(writeDCmod({run.options.outDName}, dTab,
                                       shownParameters(trelmInfo, solute.sample.geometry), "",
                                       standardMessages()));
}

/// The charges by their atoms in the molecule, as many as the simulation had.
ChargeSet originalCharges(Run &run, ChargeSet charges)
{
    charges.chargeAtomID = run.chargeAtomIDOrig.span();
    charges.charges = run.chargesOrig.span();
    return charges;
}

/// Everything before the simulation itself. `complaint` is said if there is no selection of atoms.
int chooseSolute(Run &run, const char *complaint, Solute &solute)
{
    int status = setUp(run, solute.sample);
    if (status == 0)
        status = makeDots(run, solute.ddots);
    if (status != 0)
        return status;
    const CoordinateBuffers places = {run.xI.span(), run.yI.span(), run.zI.span()};
    SelectedCount selected;
    if (chCoorSelect({run.pdbInfo[0], run.selection}, run.trelmInfo[0], places, solute.sample.charges,
                     selected, standardMessages()) != Status::ok)
        return complain("%s", complaint);
    if (selected.dipole)
        reportDipole(*selected.dipole, standardMessages());
    const std::size_t count = selected.places;
    std::printf("REMARK %zu atoms selected for simulation.\n", count);
    std::printf("REMARK %d charges selected for simulation.\n", solute.sample.charges.chCount);
    solute.atoms = {places.x.first(count), places.y.first(count), places.z.first(count)};
    return 0;
}

/// Simulates, and finishes what the modes share.
int alignSolute(Run &run, const Solute &solute, AlignmentFields &fields, TensorAnalysis &analysis)
{
    Prediction prediction;
    if (run.trelmInfo[0].elFlag != 0 && run.trelmInfo[0].lcType != lcGrid)
        checkField(run.trelmInfo[0], standardMessages());
    if (simulateAlignment(alignmentSetup(run, solute.sample, solute.ddots), solute.atoms,
                          solute.sample.charges, fields, prediction) != Status::ok)
        return complain("Matrix: Error simulating alignment.\n");
    printPrediction(prediction);
    return finishAlignment(run, solute, prediction.sum, analysis);
}

void reportGridFile(const Run &run, int digPotential)
{
    const TrelmInfo &info = run.trelmInfo[0];
    if (!run.options.pot3DName.empty())
        complain("REMARK 3D Potential %s, Total # of gridpositions %d (x: %d, y: %d, z: %d).\n",
                 run.options.pot3DName.c_str(), digPotential, info.grid3DnX, info.grid3DnY, info.grid3DnZ);
}

/// Reads the grid of a steric run for what there is to tell of it: the run ends in the kernel, with status 0,
/// before a point is asked for.
int readStericGrid(const Run &run)
{
    Block<float> pot3Dst;
    int digPotential = 0;
    if (read3DPotSteric(run.options.pot3DName, run.trelmInfo[0], pot3Dst, digPotential, standardMessages()) !=
        Status::ok)
        return complain("ERROR: Reading of 3D potential not successful.\n");
    reportGridFile(run, digPotential);
    return 0;
}

int turnStructure(Run &run, const EulerLists &euler)
{
    const int status = writePDBRot(euler.gamma, euler.beta, euler.alpha, run.trelmInfo[0].rotN,
                                   &run.pdbInfo[0], &run.sInfo, run.options.pRotName, run.options.remark);
    if (status != 0)
        complain("matrix: error in writePDBRot.\n");
    return status;
}

/// The molecule beside a charged wall or rod, and which of its faces that prefers.
int alignBesideParticle(Run &run, const Solute &solute)
{
    const RunOptions &options = run.options;
    AlignmentFields fields;
    Potential &potential = fields.potential;
    if (readPotential(options.potName, potential, standardMessages()) != Status::ok)
        return complain("ERROR Reading of 1D potential not successful.\n");
    if (!options.potName.empty())
        complain("REMARK 1D Potential %s, Digitization %d, Offset %.1f, Stepsize %.1f [A].\n",
                 options.potName.c_str(), potential.count, potential.offset, potential.stepsize);
    TensorAnalysis analysis;
    const int status = alignSolute(run, solute, fields, analysis);
    if (status != 0)
        return status;
    const ChargeSet charges = originalCharges(run, solute.sample.charges);
    if (iFacePDB(analysis.euler, {&run.pdbInfo[0], run.selection, run.trelmInfo[0], charges}, potential,
                 {options.pRotName, options.remark, standardMessages()}) != Status::ok)
        return complain("trelm: error in iFacePDB.\n");
    return 0;
}

int alignInGrid(Run &run, const Solute &solute)
{
    AlignmentFields fields;
    int digPotential = 0;
    if (read3DPotential(run.options.pot3DName, run.trelmInfo[0], fields.pot3D, digPotential,
                        standardMessages()) != Status::ok)
        return complain("ERROR: Reading of 3D potential not successful.\n");
    reportGridFile(run, digPotential);
    TensorAnalysis analysis;
    return alignSolute(run, solute, fields, analysis);
}

} // namespace

int setUp(Run &run, Sample &sample)
{
    const TrelmInfo &trelmInfo = run.trelmInfo[0];
    ChargeSet &charges = sample.charges;
    const RunOptions &options = run.options;
    if (checkSample(trelmInfo, standardMessages()) != Status::ok)
        return 1;
    if (readConfig(options.inpName, sample.domains, standardMessages()) != Status::ok)
        return complain("Error reading configuration file %s\n", options.inpName.c_str());
    charges.chargeAtomID = run.chargeAtomID.span();
    charges.charges = run.charges.span();
    if (chargeSetup(options.pkaName, {run.pdbInfo[0], run.selection}, trelmInfo, charges, options.outPkaName,
                    standardMessages()) != Status::ok)
        return complain("WARNING: Error setting up charges!\n");
    std::ranges::copy(charges.chargeAtomID, run.chargeAtomIDOrig.data());
    std::ranges::copy(charges.charges, run.chargesOrig.data());
    std::printf("REMARK %d charges placed, Total charge %.3f [e].\n", charges.chCount,
                static_cast<double>(charges.chSum));
    if (trelmInfo.elFlag != 0 && trelmInfo.chFlag != 0)
        listCharges(run.pdbInfo[0], charges);
    sample.geometry = refine_bicelle(trelmInfo);
    return 0;
}

TrelmInfo shownParameters(const TrelmInfo &trelmInfo, const SampleGeometry &geometry)
{
    TrelmInfo shown = trelmInfo;
    shown.molarRatio = geometry.molarRatio;
    shown.lengthModel = geometry.lengthModel;
    shown.orderDiscRim = geometry.orderDiscRim;
    return shown;
}

AlignmentSetup alignmentSetup(const Run &run, const Sample &sample, std::span<const double> dots)
{
    return {run.trelmInfo[0], standardMessages(), static_cast<double>(sample.geometry.rSingleCell), dots};
}

int makeDots(Run &run, std::span<const double> &ddots)
{
    std::vector<double> dots;
    if (!do_unsp(run.trelmInfo[0].densityNSC, dots) ||
        dots.size() > run.ddots.span().size()) // checkSimulation has bounded them
        return complain("Matrix: unsp error occured.\n");
    std::ranges::copy(dots, run.ddots.data());
    ddots = run.ddots.span().first(dots.size());
    return 0;
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
    int status = chooseSolute(run, "trelm: error reading selection of atoms.\n", solute);
    if (status != 0)
        return static_cast<Status>(status);
    if (inGrid && readStericGrid(run) != 0)
        return Status::failed;
    AlignmentFields fields;
    TensorAnalysis analysis;
    status = alignSolute(run, solute, fields, analysis);
    return static_cast<Status>(status != 0 ? status : turnStructure(run, analysis.euler));
}

Status simulateElectrostatic(Run &run, Messages &messages)
{
    if (checkSimulation(run.trelmInfo[0], messages) != Status::ok)
        return Status::failed;
    Solute solute;
    const int status = chooseSolute(run, "Matrix: Error reading selection of atoms.\n", solute);
    if (status != 0)
        return static_cast<Status>(status);
    return static_cast<Status>(run.trelmInfo[0].lcType == lcGrid ? alignInGrid(run, solute)
                                                                 : alignBesideParticle(run, solute));
}

Status simulateFree(Run &run, Messages &messages)
{
    const TrelmInfo &trelmInfo = run.trelmInfo[0];
    if (trelmInfo.lcType != lcWall && trelmInfo.lcType != lcRod)
        return messages.fail("trelm: -stTrelmFree knows the models -bic and -pf1 only.\n");
    if (checkSample(trelmInfo, messages) != Status::ok || checkSimulation(trelmInfo, messages) != Status::ok)
        return Status::failed;
    Saupe saupe = {};
    int status = static_cast<int>(ssiaFree(trelmInfo, run.options.pdbFName, saupe, messages));
    if (status == 0) {
        std::ranges::transform(saupe, run.dTab[0].dTensor.saupe.begin(),
                               [](double element) { return static_cast<float>(element); });
        status =
            static_cast<int>(writeDCmod({run.options.outAName}, run.dTab[0],
                                        shownParameters(trelmInfo, refine_bicelle(trelmInfo)), "", messages));
    }
    if (status != 0)
        messages.err("matrix: error in ssiaFree.\n");
    return static_cast<Status>(status);
}

Status setUpCharges(Run &run, Messages &)
{
    Sample sample;
    return static_cast<Status>(setUp(run, sample));
}

Status analyzeStructure(Run &run, Messages &messages)
{
    Sample sample;
    int status = setUp(run, sample);
    if (status != 0)
        return static_cast<Status>(status);
    const RunOptions &options = run.options;
    status = analyzePDB(&run.pdbInfo[0], run.selection, shownParameters(run.trelmInfo[0], sample.geometry),
                        sample.charges, options.userSaupe1,
                        {options.pRotName, options.outPName, &run.sInfo, options.remark});
    if (status != 0)
        messages.err("trelm: error in analysis of PDB.\n");
    return static_cast<Status>(status);
}

} // namespace trelm
