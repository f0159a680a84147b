#include "simulation/domains/ensemble.h"

#include "couplings/fit.h"
#include "simulation/alignment/alignment.h"
#include "simulation/domains/domains.h"
#include "simulation/orientations/rotation.h"
#include "simulation/orientations/sphere.h"
#include "structure/rotate.h"
#include "structure/write.h"
#include "support/numerics/numbers.h"
#include "support/text/output_file.h"
#include "support/text/text.h"
#include "support/text/text_input.h"
#include "support/text/token.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <string_view>
#include <vector>

namespace trelm {
namespace {

// Three precisions on purpose: the limits of the cone decide whether a direction on their rim is a state.
constexpr double coneHalfTurn = 3.1415927;
constexpr int outStates = 3; ///< outEflag: the states are listed, not simulated
constexpr Axis unitZ = {0.0, 0.0, 1.0};

constexpr double radians(double angle)
{
    return angle * pi / 180.0;
}

constexpr double degrees(double angle)
{
    return angle * 180.0 / pi;
}

// ---- the states ----

/// Three finite numbers at the start of a line.
bool readState(std::string_view line, EnsembleState &state)
{
    std::array<double, 3> angles = {};
    if (scanNumbers(line, angles) < angles.size() ||
        !std::ranges::all_of(angles, [](double angle) { return std::isfinite(angle); }))
        return false;
    state = {angles[0], angles[1], angles[2]};
    return true;
}

/// The files that show the states as they are made.
struct Monitors {
    OutFile angles, axes;
    bool hasAngles = false, hasAxes = false;
};

int openMonitor(OutFile &out, const std::string &name, bool &isOpen)
{
    isOpen = !name.empty();
    if (isOpen && openOut(out, name, "w") != 0)
        return complain("TRELM Error opening ensemble monitoring file %s\n", name.c_str());
    return 0;
}

/// A direction of the sphere as a state asks for it, radians.
struct Direction {
    double alpha, beta;
};

/// Appends the states of a direction. Returns 0, or 1 after a message if there are too many.
int appendStates(const DomainOptions &options, const Direction &direction, Monitors &monitors,
                 Ensemble &ensemble)
{
    std::string text;
    for (int g = 0; g < options.digPsiE; ++g) {
        const double gamma = radians(g * (360.0 / options.digPsiE));
        const Axis v = rotate_vector(direction.beta, direction.alpha, gamma, unitZ);
        // |y| of the tip but for the rounding, which decides at the limit.
        const double sideways =
            std::abs(std::sin(std::atan2(v[1], v[0])) * std::sqrt(v[1] * v[1] + v[0] * v[0]));
        if (sideways > static_cast<double>(options.errAlphaCone))
            continue;
        const EnsembleState state = {degrees(direction.alpha), degrees(direction.beta), degrees(gamma)};
        ensemble.states[static_cast<std::size_t>(ensemble.count++)] = state;
        if (monitors.hasAxes) {
            text.clear();
            appendf(text, "%.3f %.3f %.3f\n", v[0], v[1], v[2]);
            writeOut(monitors.axes, text);
        }
        if (monitors.hasAngles) {
            text.clear();
            appendf(text, "% .4e % .4e % .4e\n", state.alpha, state.beta, state.gamma);
            writeOut(monitors.angles, text);
        }
        if (ensemble.count >= maxEnsembleStates)
            return complain("setupEnsemble: ensemble too big.\n");
    }
    return 0;
}

int generateStates(const DomainOptions &options, Monitors &monitors, Ensemble &ensemble)
{
    ensemble.count = 0;
    std::vector<double> dots;
    if (options.densE < 1 || !do_unsp(options.densE, dots))
        return complain("setupEnsemble: unsp error occured.\n");
    const std::size_t count = dots.size() / 3;
    if (options.digPsiE >= maxEnsembleStates) // each direction alone would be too much
        return complain("setupEnsemble: ensemble too big.\n");
    if (count >= maxEnsembleStates)
        complain("WARNING: ENSEMBLE_DENSITY %d: %zu directions, a run holds %d states of those within the "
                 "limits.\n",
                 options.densE, count, maxEnsembleStates - 1);
    for (std::size_t i = 0; i + 2 < dots.size(); i += 3) {
        const double x = dots[i], y = dots[i + 1], z = dots[i + 2];
        const Direction direction = {std::atan2(y, x),
                                     std::abs(halfPi - std::atan2(z, std::sqrt(x * x + y * y)))};
        const auto beta = static_cast<float>(direction.beta * 180.0 / coneHalfTurn);
        if (beta < options.lBetaCone || beta > options.hBetaCone)
            continue;
        if (appendStates(options, direction, monitors, ensemble) != 0)
            return 1;
    }
    return 0;
}

// ---- the run over all states ----

/// All that the states share.
struct EnsembleRun {
    PDBInfo *pdbInfo;
    DTable *dTab;
    const EnsembleSetup &setup;
    EnsembleResult &result;
    Block<float> dcAve; ///< sum of the calculated couplings, Hz
    SelectionBuffers buffers;
    std::vector<std::size_t> indI, indJ; ///< exposed backbone of domain 1 and of the rest
    OutFile log;
    Potential none; ///< an ensemble has no table of a rod
    double R = 0.0; ///< of the last state that has one
};

/// One state at work.
struct StateAtWork {
    int id = 0; ///< from 1
    EnsembleState angles;
    std::string remark;
    Saupe saupe = {}; ///< with its own sign
};

/// Whether the row takes part; others hold no coupling.
bool isInUse(const DInfo &calculated)
{
    return calculated.valid != 0 && calculated.w != 0.0f;
}

int startEnsemble(EnsembleRun &run)
{
    run.result = {};
    constexpr const char *tag = "ensembleAlignment";
    run.dcAve = Block<float>(tag, static_cast<std::size_t>(run.dTab->dCount) + 1);
    if (!run.dcAve)
        return complain("Error allocating coord buffers.\n");
    if (makeSelectionBuffers(tag, *run.pdbInfo, run.buffers, standardMessages()) != Status::ok)
        return 1;
    if (openOut(run.log, run.setup.outName, "w") != 0)
        return complain("TRELM Error opening log file for grid search %s\n", run.setup.outName.c_str());
    if (storePDBCoords(run.pdbInfo) != 0)
        return complain("matrix: error in storePDBCoords.\n");
    const DomainOptions &options = run.setup.domains;
    if (selectSurfDom(run.pdbInfo, options.startResDom1, options.endResDom1, run.indI, run.indJ,
                      standardMessages()) != Status::ok)
        return complain("ensembleAlignment: error in chkDomClash.\n");
    return 0;
}

/// Turns domain 1 and shows the molecule.
int turnState(EnsembleRun &run, StateAtWork &state)
{
    const DomainOptions &options = run.setup.domains;
    const auto &[alpha, beta, gamma] = state.angles;
    if (restorePDBCoords(run.pdbInfo) != 0)
        return complain("matrix: error in storePDBCoords.\n");
    if (rotateDomain({alpha, beta, gamma}, run.pdbInfo, options.startResDom1, options.endResDom1) != 0)
        return complain("trelm: error in rotateDomain.\n");
    if (writePDB("rot.pdb", run.pdbInfo, run.setup.sInfo, run.setup.remark) != 0)
        return 1;
    std::string text;
    appendf(text, "[%d]  domain rotation angle [deg.]:  %e  %e  %e\n", state.id, alpha, beta, gamma);
    writeOut(run.log, text);
    appendf(state.remark, "ENSEMBLE ID %d\nREMARK ENSEMBLE Q_EULER_ANGLES  %7.2f  %7.2f  %7.2f\n", state.id,
            alpha, beta, gamma);
    std::fputs(state.remark.c_str(), stdout);
    return 0;
}

/// Puts the turned molecule where it is simulated.
int placeState(EnsembleRun &run, const StateAtWork &state)
{
    const DomainOptions &options = run.setup.domains;
    PDBInfo *pdbInfo = run.pdbInfo;
    const auto &[alpha, beta, gamma] = state.angles;
    if (options.fixRotDomain != 0 &&
        rotateDomain({-gamma, -beta, -alpha}, pdbInfo, pdbInfo->minResID, pdbInfo->maxResID) != 0)
        return complain("trelm: error in rotateDomain.\n");
    if (options.pivotCenter == 0 && shiftMol2Domain(pdbInfo, options.startResDom2, options.endResDom2) != 0)
        return complain("matrix: error in shiftMol2Domain.\n");
    if (options.outEflag != outStates)
        return 0;
    const Axis v = rotate_vector(radians(beta), radians(alpha), radians(gamma), unitZ);
    std::printf("REMARK X Y Z  %.3f %.3f %.3f\n", v[0], v[1], v[2]);
    return writePDB("rotEns.pdb", pdbInfo, run.setup.sInfo, run.setup.remark);
}

/// Whether the state goes no further: its domains clash, or only a list was asked for.
bool endsHere(EnsembleRun &run, const StateAtWork &state)
{
    const DomainOptions &options = run.setup.domains;
    if (options.clashFlag != 0 &&
        chkClashDom(*run.pdbInfo, options.clashDist, run.indI, run.indJ, standardMessages())) {
        std::printf("REMARK steric clash of domains in state %d.\n", state.id);
        return true;
    }
    if (options.outEflag != outStates)
        return false;
    std::printf("REMARK allowed state %d.\n", state.id);
    return true;
}

/// Logs the angles between the axes of the two parts of the angle definition.
int logPartAngles(EnsembleRun &run)
{
    const DomainOptions &options = run.setup.domains;
    Matrix3d tensor1, tensor2;
    if (calcInertiaSel(*run.pdbInfo, options.startResPart1, options.endResPart1, tensor1,
                       standardMessages()) != Status::ok ||
        calcInertiaSel(*run.pdbInfo, options.startResPart2, options.endResPart2, tensor2,
                       standardMessages()) != Status::ok)
        return complain("matrix: error in calcInertiaSel.");
    TensorAnalysis analysis1, analysis2;
    if (analyzeMatrix3D(tensor1, run.setup.yzFlag, analysis1) != 0 ||
        analyzeMatrix3D(tensor2, run.setup.yzFlag, analysis2) != 0)
        return complain("matrix: error in analyzeMatrix3D.");
    const auto dcos = calcDcos(analysis1.eigVec, analysis2.eigVec);
    std::string text;
    appendf(text, "inter helix angle (x/y/z) [deg.]: %.3f  %.3f  %.3f\n", degrees(dcos[2]), degrees(dcos[1]),
            degrees(dcos[0]));
    writeOut(run.log, text);
    return 0;
}

/// The order matrix of the state as the molecule stands.
int simulateState(EnsembleRun &run, StateAtWork &state)
{
    Chosen chosen;
    if (selectSolute(run.pdbInfo, run.setup.simulation.options, run.setup.charges, run.buffers, chosen,
                     standardMessages()) != Status::ok)
        return complain("Matrix: Error reading selection of atoms.\n");
    if (chosen.dipole)
        reportDipole(*chosen.dipole, standardMessages());
    if (run.setup.domains.pivotCenter != 0)
        centreSingle(chosen.atoms);
    const int status =
        simEnsAlignment(run.setup.simulation, chosen.atoms, chosen.charges, run.none, state.saupe);
    if (status != 0)
        complain("Matrix: Error simulating alignment.\n");
    return status;
}

/// Adds the state to the averages, with its couplings calculated back.
int addState(EnsembleRun &run, StateAtWork &state)
{
    DTensor &tensor = run.dTab->dTensor;
    tensor.tensorMode = tensorGiven;
    for (std::size_t k = 0; k < state.saupe.size(); ++k) {
        // What survives beside the obstacle averages to the opposite sign.
        state.saupe[k] = -state.saupe[k];
        run.result.saupe[k] += state.saupe[k];
        tensor.saupe[k] = tensor.userSaupe[k] = static_cast<float>(state.saupe[k]);
    }
    if (fitD(run.pdbInfo, run.dTab, run.setup.verbose) < 0)
        return 1;
    for (std::size_t i = 0; i < run.dTab->calculated().size(); ++i)
        if (isInUse(run.dTab->dCalcList[i]))
            run.dcAve[i] += run.dTab->dCalcList[i].d;
    return 0;
}

/// Logs the tensor of the state and appends its couplings.
int reportState(EnsembleRun &run, const StateAtWork &state)
{
    TensorAnalysis analysis;
    if (analyzeSaupe(state.saupe, run.setup.yzFlag, run.setup.eulerFlag, analysis) != 0)
        return complain("Matrix: error in analyzeSaupe.\n");
    if (analysis.da != 0.0)
        run.R = analysis.dr / analysis.da;
    std::string text;
    appendf(text, "Da(NH) =  %.1f [Hz]     R = Dr/Da = %.3f\n", analysis.da * amideScale, run.R);
    appendf(text, "Euler angles (alpha/beta/gamma) [deg.]: %7.2f  %7.2f  %7.2f  \n", analysis.euler.alpha[0],
            analysis.euler.beta[0], analysis.euler.gamma[0]);
    writeOut(run.log, text);
    return run.setup.takeCouplings(*run.dTab, state.remark);
}

int runState(EnsembleRun &run, StateAtWork &state)
{
    int status = turnState(run, state);
    if (status == 0)
        status = placeState(run, state);
    if (status != 0)
        return status;
    ++run.result.states; // also of a state that clashes: it dilutes the average
    if (endsHere(run, state))
        return 0;
    status = logPartAngles(run);
    if (status == 0)
        status = simulateState(run, state);
    if (status == 0)
        status = addState(run, state);
    return status != 0 ? status : reportState(run, state);
}

int finishEnsemble(EnsembleRun &run)
{
    const int states = run.result.states;
    if (states == 0)
        return complain("matrix: zero number of ensemble states.\n");
    for (double &element : run.result.saupe)
        element /= states;
    const auto rows = run.dTab->calculated();
    for (std::size_t i = 0; i < rows.size(); ++i)
        run.result.couplings.push_back(isInUse(rows[i]) ? static_cast<float>(number(run.dcAve[i]) / states)
                                                        : rows[i].d);
    if (restorePDBCoords(run.pdbInfo) != 0)
        return complain("matrix: error in storePDBCoords.\n");
    return closeOut(run.log);
}

} // namespace

int readEnsemble(const std::string &inName, Ensemble &ensemble)
{
    ensemble.count = 0;
    if (inName.empty())
        return 0;
    TextInput input;
    const TextStatus status = readText(input, inName);
    if (status == TextStatus::noFile)
        return complain("RdTable File open error: %s.\n", inName.c_str());
    if (status != TextStatus::read)
        return 1;
    int count = 0;
    for (std::string_view line; fgetsAlloc(input, line); ++count) {
        EnsembleState state;
        if (!readState(line, state))
            return complain("Error: Input data in file with measured dipolar couplings have wrong format\n"
                            "Line:%s\n",
                            std::string(line).c_str());
        if (count + 1 >= maxEnsembleStates)
            return complain("error in readEnsemble: digitization of ensemble too high.\n");
        ensemble.states[static_cast<std::size_t>(count)] = state;
    }
    ensemble.count = count;
    return 0;
}

int setupEnsemble(const DomainOptions &options, const EnsembleFiles &files, Ensemble &ensemble)
{
    Monitors monitors;
    if (openMonitor(monitors.axes, files.outEAxName, monitors.hasAxes) != 0 ||
        openMonitor(monitors.angles, files.outEName, monitors.hasAngles) != 0)
        return 1;
    if (generateStates(options, monitors, ensemble) != 0)
        return 1;
    if ((monitors.hasAxes && closeOut(monitors.axes) != 0) ||
        (monitors.hasAngles && closeOut(monitors.angles) != 0))
        return 1;
    const int generated = ensemble.count;
    if (readEnsemble(files.inEName, ensemble) != 0)
        return complain("error in readEnsemble.\n");
    if (ensemble.count == 0)
        ensemble.count = generated;
    return 0;
}

int ensembleAlignment(PDBInfo *pdbInfo, DTable *dTab, const EnsembleSetup &setup, EnsembleResult &result)
{
    EnsembleRun run = {.pdbInfo = pdbInfo,
                       .dTab = dTab,
                       .setup = setup,
                       .result = result,
                       .dcAve = {},
                       .buffers = {},
                       .indI = {},
                       .indJ = {},
                       .log = {},
                       .none = {}};
    if (startEnsemble(run) != 0)
        return 1;
    StateAtWork state;
    for (const EnsembleState &angles : setup.states) {
        state = {.id = state.id + 1, .angles = angles, .remark = {}};
        const int status = runState(run, state);
        if (status != 0)
            return status;
    }
    return finishEnsemble(run);
}

void centreSingle(const CoordinateBuffers &atoms)
{
    for (const std::span<double> column : {atoms.x, atoms.y, atoms.z}) {
        const auto mean = static_cast<double>(singleMean(column));
        for (double &value : column)
            value = static_cast<double>(static_cast<float>(value - mean));
    }
}

int simEnsAlignment(const AlignmentSetup &setup, const CoordinateBuffers &atoms, const ChargeSet &charges,
                    Potential &potential, Saupe &saupe)
{
    if (atoms.x.empty())
        return complain("simulateAlignment: no atoms selected.\n");
    const float distance = largestDistance(atoms);
    if (setup.options.elFlag != 0) {
        if (runCharged(setup, atoms, distance, charges, potential, saupe) != Status::ok)
            return 1;
    } else if (runSteric(setup, atoms, distance, saupe) != Status::ok) {
        return complain("simulateAlignment: error in stericAlignment.");
    }
    for (double &element : saupe)
        element = static_cast<double>(static_cast<float>(element * number(setup.options.lcOrder)));
    return 0;
}

} // namespace trelm
