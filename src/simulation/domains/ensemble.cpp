#include "simulation/domains/ensemble.h"

#include "couplings/fit.h"
#include "simulation/alignment/alignment.h"
#include "simulation/alignment/options.h"
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

Status openMonitor(OutFile &out, const std::string &name, bool &isOpen, Messages &messages)
{
    isOpen = !name.empty();
    if (isOpen && openOut(out, name, "w") != Status::ok)
        return messages.fail("TRELM Error opening ensemble monitoring file %s\n", name.c_str());
    return Status::ok;
}

/// A direction of the sphere as a state asks for it, radians.
struct Direction {
    double alpha, beta;
};

/// Appends the states of a direction. Fails after a message if there are too many.
Status appendStates(const DomainOptions &options, const Direction &direction, Monitors &monitors,
                    Ensemble &ensemble, Messages &messages)
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
            return messages.fail("setupEnsemble: ensemble too big.\n");
    }
    return Status::ok;
}

Status generateStates(const DomainOptions &options, Monitors &monitors, Ensemble &ensemble,
                      Messages &messages)
{
    ensemble.count = 0;
    std::vector<double> dots;
    if (options.densE < 1 || !do_unsp(options.densE, dots))
        return messages.fail("setupEnsemble: unsp error occured.\n");
    const std::size_t count = dots.size() / 3;
    if (options.digPsiE >= maxEnsembleStates) // each direction alone would be too much
        return messages.fail("setupEnsemble: ensemble too big.\n");
    if (count >= maxEnsembleStates)
        messages.err(
            "WARNING: ENSEMBLE_DENSITY %d: %zu directions, a run holds %d states of those within the "
            "limits.\n",
            options.densE, count, maxEnsembleStates - 1);
    for (std::size_t i = 0; i + 2 < dots.size(); i += 3) {
        const double x = dots[i], y = dots[i + 1], z = dots[i + 2];
        const Direction direction = {std::atan2(y, x),
                                     std::abs(halfPi - std::atan2(z, std::sqrt(x * x + y * y)))};
        const auto beta = static_cast<float>(direction.beta * 180.0 / coneHalfTurn);
        if (beta < options.lBetaCone || beta > options.hBetaCone)
            continue;
        if (appendStates(options, direction, monitors, ensemble, messages) != Status::ok)
            return Status::failed;
    }
    return Status::ok;
}

// ---- the run over all states ----

/// All that the states share.
struct EnsembleRun {
    const PDBInfo &pdbInfo;
    DTable &dTab;
    const EnsembleSetup &setup;
    EnsembleResult &result;
    std::vector<Coord3D> coords; ///< of the state at work
    Block<float> dcAve;          ///< sum of the calculated couplings, Hz
    SelectionBuffers buffers;
    std::vector<std::size_t> indI, indJ; ///< exposed backbone of domain 1 and of the rest
    OutFile log;
    Potential none; ///< an ensemble has no table of a rod
    double R = 0.0; ///< of the last state that has one

    [[nodiscard]] Conformation molecule() { return {pdbInfo, coords}; }
};

/// One state at work.
struct StateAtWork {
    int id = 0; ///< from 1
    EnsembleState angles;
    std::string remark;
    Saupe saupe = {}; ///< with its own sign
};

/// Whether the row takes part; others hold no coupling.
bool isInUse(const DCalc &calculated)
{
    return calculated.valid != 0 && calculated.w != 0.0f;
}

Status startEnsemble(EnsembleRun &run)
{
    Messages &messages = run.setup.simulation.messages;
    run.result = {};
    constexpr const char *tag = "ensembleAlignment";
    run.dcAve = Block<float>(tag, run.dTab.dCount + 1);
    if (!run.dcAve)
        return messages.fail("Error allocating coord buffers.\n");
    if (makeSelectionBuffers(tag, run.pdbInfo, run.buffers, messages) != Status::ok)
        return Status::failed;
    if (openOut(run.log, run.setup.outName, "w") != Status::ok)
        return messages.fail("TRELM Error opening log file for grid search %s\n", run.setup.outName.c_str());
    const DomainOptions &options = run.setup.domains;
    if (selectSurfDom(run.molecule(), options.startResDom1, options.endResDom1, run.indI, run.indJ,
                      messages) != Status::ok)
        return messages.fail("ensembleAlignment: error in chkDomClash.\n");
    return Status::ok;
}

/// The molecule as it stands into a file of the current folder.
Status writeState(const EnsembleRun &run, const char *name)
{
    const EnsembleSetup &setup = run.setup;
    return writePDB(name, {run.pdbInfo, setup.sInfo, setup.remark}, run.coords, setup.simulation.messages);
}

/// Turns domain 1 and shows the molecule.
Status turnState(EnsembleRun &run, StateAtWork &state)
{
    Messages &messages = run.setup.simulation.messages;
    const DomainOptions &options = run.setup.domains;
    const auto &[alpha, beta, gamma] = state.angles;
    std::ranges::copy(run.setup.start, run.coords.begin());
    rotateDomain({alpha, beta, gamma}, run.molecule(), options.startResDom1, options.endResDom1);
    if (writeState(run, "rot.pdb") != Status::ok)
        return Status::failed;
    std::string text;
    appendf(text, "[%d]  domain rotation angle [deg.]:  %e  %e  %e\n", state.id, alpha, beta, gamma);
    writeOut(run.log, text);
    appendf(state.remark, "ENSEMBLE ID %d\nREMARK ENSEMBLE Q_EULER_ANGLES  %7.2f  %7.2f  %7.2f\n", state.id,
            alpha, beta, gamma);
    messages.text(Messages::Stream::out, state.remark);
    return Status::ok;
}

/// Puts the turned molecule where it is simulated.
Status placeState(EnsembleRun &run, const StateAtWork &state)
{
    Messages &messages = run.setup.simulation.messages;
    const DomainOptions &options = run.setup.domains;
    const auto &[alpha, beta, gamma] = state.angles;
    if (options.fixRotDomain != 0)
        rotateMolecule({-gamma, -beta, -alpha}, run.molecule());
    if (options.pivotCenter == 0 &&
        shiftMol2Domain(run.molecule(), options.startResDom2, options.endResDom2, messages) != Status::ok)
        return messages.fail("matrix: error in shiftMol2Domain.\n");
    if (options.outEflag != outStates)
        return Status::ok;
    const Axis v = rotate_vector(radians(beta), radians(alpha), radians(gamma), unitZ);
    messages.out("REMARK X Y Z  %.3f %.3f %.3f\n", v[0], v[1], v[2]);
    return writeState(run, "rotEns.pdb");
}

/// Whether the state goes no further: its domains clash, or only a list was asked for.
bool endsHere(EnsembleRun &run, const StateAtWork &state)
{
    Messages &messages = run.setup.simulation.messages;
    const DomainOptions &options = run.setup.domains;
    if (options.clashFlag != 0 &&
        chkClashDom(run.molecule(), options.clashDist, run.indI, run.indJ, messages)) {
        messages.out("REMARK steric clash of domains in state %d.\n", state.id);
        return true;
    }
    if (options.outEflag != outStates)
        return false;
    messages.out("REMARK allowed state %d.\n", state.id);
    return true;
}

/// Logs the angles between the axes of the two parts of the angle definition.
Status logPartAngles(EnsembleRun &run)
{
    Messages &messages = run.setup.simulation.messages;
    const DomainOptions &options = run.setup.domains;
    Matrix3d tensor1, tensor2;
    if (calcInertiaSel(run.molecule(), options.startResPart1, options.endResPart1, tensor1, messages) !=
            Status::ok ||
        calcInertiaSel(run.molecule(), options.startResPart2, options.endResPart2, tensor2, messages) !=
            Status::ok)
        return messages.fail("matrix: error in calcInertiaSel.");
    TensorAnalysis analysis1, analysis2;
    if (analyzeMatrix3D(tensor1, run.setup.yzFlag, analysis1, messages) != Status::ok ||
        analyzeMatrix3D(tensor2, run.setup.yzFlag, analysis2, messages) != Status::ok)
        return messages.fail("matrix: error in analyzeMatrix3D.");
    const auto dcos = calcDcos(analysis1.eigVec, analysis2.eigVec);
    std::string text;
    appendf(text, "inter helix angle (x/y/z) [deg.]: %.3f  %.3f  %.3f\n", degrees(dcos[2]), degrees(dcos[1]),
            degrees(dcos[0]));
    writeOut(run.log, text);
    return Status::ok;
}

/// The order matrix of the state as the molecule stands.
Status simulateState(EnsembleRun &run, StateAtWork &state)
{
    Messages &messages = run.setup.simulation.messages;
    Chosen chosen;
    if (selectSolute({run.pdbInfo, run.setup.selection, run.coords}, run.setup.simulation.options,
                     run.setup.charges, run.buffers, chosen, messages) != Status::ok)
        return messages.fail("Matrix: Error reading selection of atoms.\n");
    if (chosen.dipole)
        reportDipole(*chosen.dipole, messages);
    if (run.setup.domains.pivotCenter != 0)
        centreSingle(chosen.atoms);
    const Status status =
        simEnsAlignment(run.setup.simulation, chosen.atoms, chosen.charges, run.none, state.saupe);
    if (status != Status::ok)
        messages.err("Matrix: Error simulating alignment.\n");
    return status;
}

/// Adds the state to the averages, with its couplings calculated back.
Status addState(EnsembleRun &run, StateAtWork &state)
{
    DTensor &tensor = run.dTab.dTensor;
    tensor.tensorMode = tensorGiven;
    for (std::size_t k = 0; k < state.saupe.size(); ++k) {
        // What survives beside the obstacle averages to the opposite sign.
        state.saupe[k] = -state.saupe[k];
        run.result.saupe[k] += state.saupe[k];
        tensor.saupe[k] = tensor.userSaupe[k] = static_cast<float>(state.saupe[k]);
    }
    if (!fitD(run.coords, run.dTab, run.setup.verbose, run.setup.simulation.messages))
        return Status::failed;
    for (std::size_t i = 0; i < run.dTab.calculated().size(); ++i)
        if (isInUse(run.dTab.dCalcList[i]))
            run.dcAve[i] += run.dTab.dCalcList[i].d;
    return Status::ok;
}

/// Logs the tensor of the state and appends its couplings.
Status reportState(EnsembleRun &run, const StateAtWork &state)
{
    Messages &messages = run.setup.simulation.messages;
    TensorAnalysis analysis;
    if (analyzeSaupe(state.saupe, run.setup.yzFlag, run.setup.eulerFlag, analysis, messages) != Status::ok)
        return messages.fail("Matrix: error in analyzeSaupe.\n");
    if (analysis.da != 0.0)
        run.R = analysis.dr / analysis.da;
    std::string text;
    appendf(text, "Da(NH) =  %.1f [Hz]     R = Dr/Da = %.3f\n", analysis.da * amideScale, run.R);
    appendf(text, "Euler angles (alpha/beta/gamma) [deg.]: %7.2f  %7.2f  %7.2f  \n", analysis.euler.alpha[0],
            analysis.euler.beta[0], analysis.euler.gamma[0]);
    writeOut(run.log, text);
    return run.setup.takeCouplings(run.dTab, state.remark);
}

Status runState(EnsembleRun &run, StateAtWork &state)
{
    Status status = turnState(run, state);
    if (status == Status::ok)
        status = placeState(run, state);
    if (status != Status::ok)
        return status;
    ++run.result.states; // also of a state that clashes: it dilutes the average
    if (endsHere(run, state))
        return Status::ok;
    status = logPartAngles(run);
    if (status == Status::ok)
        status = simulateState(run, state);
    if (status == Status::ok)
        status = addState(run, state);
    return status != Status::ok ? status : reportState(run, state);
}

Status finishEnsemble(EnsembleRun &run)
{
    Messages &messages = run.setup.simulation.messages;
    const int states = run.result.states;
    if (states == 0)
        return messages.fail("matrix: zero number of ensemble states.\n");
    for (double &element : run.result.saupe)
        element /= states;
    const auto rows = run.dTab.calculated();
    for (std::size_t i = 0; i < rows.size(); ++i)
        run.result.couplings.push_back(isInUse(rows[i]) ? static_cast<float>(number(run.dcAve[i]) / states)
                                                        : rows[i].d);
    return closeOut(run.log, run.setup.simulation.messages);
}

} // namespace

Status readEnsemble(const std::string &inName, Ensemble &ensemble, Messages &messages)
{
    ensemble.count = 0;
    if (inName.empty())
        return Status::ok;
    TextInput input;
    const TextStatus status = readText(input, inName, messages);
    if (status == TextStatus::noFile)
        return messages.fail("RdTable File open error: %s.\n", inName.c_str());
    if (status != TextStatus::read)
        return Status::failed;
    int count = 0;
    for (std::string_view line; fgetsAlloc(input, line); ++count) {
        EnsembleState state;
        if (!readState(line, state))
            return messages.fail(
                "Error: Input data in file with measured dipolar couplings have wrong format\n"
                "Line:%s\n",
                std::string(line).c_str());
        if (count + 1 >= maxEnsembleStates)
            return messages.fail("error in readEnsemble: digitization of ensemble too high.\n");
        ensemble.states[static_cast<std::size_t>(count)] = state;
    }
    ensemble.count = count;
    return Status::ok;
}

Status setupEnsemble(const DomainOptions &options, const EnsembleFiles &files, Ensemble &ensemble,
                     Messages &messages)
{
    Monitors monitors;
    if (openMonitor(monitors.axes, files.outEAxName, monitors.hasAxes, messages) != Status::ok ||
        openMonitor(monitors.angles, files.outEName, monitors.hasAngles, messages) != Status::ok)
        return Status::failed;
    if (generateStates(options, monitors, ensemble, messages) != Status::ok)
        return Status::failed;
    if ((monitors.hasAxes && closeOut(monitors.axes, messages) != Status::ok) ||
        (monitors.hasAngles && closeOut(monitors.angles, messages) != Status::ok))
        return Status::failed;
    const int generated = ensemble.count;
    if (readEnsemble(files.inEName, ensemble, messages) != Status::ok)
        return messages.fail("error in readEnsemble.\n");
    if (ensemble.count == 0)
        ensemble.count = generated;
    return Status::ok;
}

Status ensembleAlignment(const PDBInfo &pdbInfo, DTable &dTab, const EnsembleSetup &setup,
                         EnsembleResult &result)
{
    EnsembleRun run = {.pdbInfo = pdbInfo,
                       .dTab = dTab,
                       .setup = setup,
                       .result = result,
                       .coords = {setup.start.begin(), setup.start.end()},
                       .dcAve = {},
                       .buffers = {},
                       .indI = {},
                       .indJ = {},
                       .log = {},
                       .none = {}};
    if (startEnsemble(run) != Status::ok)
        return Status::failed;
    StateAtWork state;
    for (const EnsembleState &angles : setup.states) {
        state = {.id = state.id + 1, .angles = angles, .remark = {}};
        const Status status = runState(run, state);
        if (status != Status::ok)
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

Status simEnsAlignment(const AlignmentSetup &setup, const CoordinateBuffers &atoms, const ChargeSet &charges,
                       Potential &potential, Saupe &saupe)
{
    if (atoms.x.empty())
        return setup.messages.fail("simulateAlignment: no atoms selected.\n");
    const float distance = largestDistance(atoms);
    if (setup.options.elFlag != 0) {
        if (runCharged(setup, atoms, distance, charges, potential, saupe) != Status::ok)
            return Status::failed;
    } else if (runSteric(setup, atoms, distance, saupe) != Status::ok) {
        return setup.messages.fail("simulateAlignment: error in stericAlignment.");
    }
    for (double &element : saupe)
        element = static_cast<double>(static_cast<float>(element * number(setup.options.lcOrder)));
    return Status::ok;
}

} // namespace trelm
