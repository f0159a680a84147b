#include "driver/simulate.h"

#include "couplings/fit.h"
#include "couplings/output.h"
#include "couplings/tensor.h"
#include "simulation/alignment.h"
#include "simulation/charges.h"
#include "simulation/config.h"
#include "simulation/free_format.h"
#include "simulation/sphere.h"
#include "structure/write.h"
#include "support/text.h"

#include <algorithm>
#include <cstdio>

namespace trelm {
namespace {

constexpr int tensorSimulated = 6; ///< tensorMode: the Saupe vector is given

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

/// Configuration, charges and geometry of the sample, for every road of this file.
int setUp(Run &run, ChargeSet &charges)
{
    TrelmInfo &trelmInfo = run.trelmInfo[0];
    const RunOptions &options = run.options;
    if (checkSample(trelmInfo) != 0)
        return 1;
    if (readConfig(options.inpName, trelmInfo, run.search) != 0)
        return complain("Error reading configuration file %s\n", options.inpName.c_str());
    charges.chargeAtomID = run.chargeAtomID.span();
    charges.charges = run.charges.span();
    const int status = chargeSetup(options.pkaName, &run.pdbInfo[0], trelmInfo, charges, options.outPkaName);
    if (status != 0) {
        complain("WARNING: Error setting up charges!\n");
        return status;
    }
    std::ranges::copy(charges.chargeAtomID, run.chargeAtomIDOrig.data());
    std::ranges::copy(charges.charges, run.chargesOrig.data());
    std::printf("REMARK %d charges placed, Total charge %.3f [e].\n", charges.chCount,
                static_cast<double>(charges.chSum));
    if (trelmInfo.elInfo.elFlag != 0 && trelmInfo.elInfo.chFlag != 0)
        listCharges(run.pdbInfo[0], charges);
    return refine_bicelle(&trelmInfo);
}

/// The orientation points of a run, in its own buffer: the generator makes other sets later.
int makeDots(Run &run, std::span<const double> &ddots)
{
    std::span<const double> dots;
    if (do_unsp(run.trelmInfo[0].densityNSC, dots) != 0)
        return complain("Matrix: unsp error occured.\n");
    std::ranges::copy(dots, run.ddots.data());
    ddots = run.ddots.span().first(dots.size());
    return 0;
}

/// From the simulated order matrix to couplings and report. `analysis` gets the tensor with its own sign.
int finishAlignment(Run &run, Saupe saupe, TensorAnalysis &analysis)
{
    TrelmInfo &trelmInfo = run.trelmInfo[0];
    DTable &dTab = run.dTab[0];
    // What survives beside the obstacle averages to the opposite sign.
    for (double &element : saupe)
        element = -element;
    if (analyzeSaupe(saupe, trelmInfo.yzFlag, trelmInfo.eulerFlag, analysis) != 0)
        return complain("Matrix: error in analyzeSaupe.\n");
    DTensor &tensor = dTab.dTensor;
    tensor.tensorMode = tensorSimulated;
    auto &target = trelmInfo.validCountD != 0 ? tensor.userSaupe : tensor.saupe;
    std::ranges::transform(saupe, target.begin(), [](double element) { return static_cast<float>(element); });
    if (trelmInfo.validCountD != 0 && fitD(&run.pdbInfo[0], &dTab, trelmInfo.verbFlag) < 0)
        return 1;
    return writeDCmod(run.options.outDName, "w", &dTab, &trelmInfo, "");
}

} // namespace

int simulateSteric(Run &run)
{
    const TrelmInfo &trelmInfo = run.trelmInfo[0];
    ChargeSet charges;
    if (trelmInfo.lcType != lcWall && trelmInfo.lcType != lcRod)
        return complain("trelm: the model -3D is not built yet.\n");
    if (trelmInfo.elInfo.elFlag != 0)
        return complain("trelm: -el in a steric simulation is not built yet.\n");
    if (checkSimulation(trelmInfo) != 0)
        return 1;
    int status = setUp(run, charges);
    if (status != 0)
        return status;
    std::span<const double> ddots;
    if (makeDots(run, ddots) != 0)
        return 1;
    PDBInfo &pdbInfo = run.pdbInfo[0];
    const CoordinateBuffers places = {run.xI.span(), run.yI.span(), run.zI.span()};
    int atomSelCount = 0;
    status = chCoorSelect(&pdbInfo, trelmInfo, places, charges, 1, atomSelCount);
    if (status != 0) {
        complain("trelm: error reading selection of atoms.\n");
        return status;
    }
    std::printf("REMARK %d atoms selected for simulation.\n", atomSelCount);
    std::printf("REMARK %d charges selected for simulation.\n", charges.chCount);

    const auto count = static_cast<std::size_t>(atomSelCount);
    const CoordinateBuffers atoms = {places.x.first(count), places.y.first(count), places.z.first(count)};
    Saupe saupe = {};
    status = simulateAlignment(trelmInfo, atoms, ddots, saupe);
    if (status != 0) {
        complain("Matrix: Error simulating alignment.\n");
        return status;
    }
    TensorAnalysis analysis;
    const int written = finishAlignment(run, saupe, analysis);
    const int turned =
        writePDBRot(analysis.euler.gamma, analysis.euler.beta, analysis.euler.alpha, trelmInfo.rotN, &pdbInfo,
                    &run.sInfo, run.options.pRotName, run.options.remark);
    if (turned != 0)
        complain("matrix: error in writePDBRot.\n");
    return written != 0 ? written : turned;
}

int simulateFree(Run &run)
{
    TrelmInfo &trelmInfo = run.trelmInfo[0];
    if (trelmInfo.lcType != lcWall && trelmInfo.lcType != lcRod)
        return complain("trelm: -stTrelmFree knows the models -bic and -pf1 only.\n");
    if (checkSample(trelmInfo) != 0 || checkSimulation(trelmInfo) != 0)
        return 1;
    const int status = ssiaFree(&trelmInfo, run.options.pdbFName, run.options.outAName, &run.dTab[0]);
    if (status != 0)
        complain("matrix: error in ssiaFree.\n");
    return status;
}

int setUpCharges(Run &run)
{
    ChargeSet charges;
    return setUp(run, charges);
}

} // namespace trelm
