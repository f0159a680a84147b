// The non-linear engine: rotation, Da and Dr by the method of Levenberg and Marquardt.
#include "couplings/fit.h"
#include "couplings/tensor.h"

#include "ground/alloc.h"
#include "structure/transform.h"
#include "support/numerics/minimise.h"
#include "support/text/text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <span>

namespace trelm {
namespace {

/// Share of each pair of a group of three in its coupling. An empirical number, used as it is: the linear
/// engine has one vector to the mean of the three places instead.
constexpr float methylFactor = 0.309107f;
constexpr auto amideConstant = static_cast<float>(amideHertz); ///< all couplings are weighted on this scale
constexpr int maxIterations = 1000;

/// What a fit works on. Coordinates stand in its workspace.
struct AlignRun {
    const FitInput &input;
    FitWork &work;
    FitResult &result;
    DTensor &tensor;
    Messages &messages;
    std::size_t atomCount = 0; ///< atoms in use
    int dCount = 0;            ///< couplings in use
    float dRMS = 0.0f;         ///< of the weighted residuals
    Transform turn = {};       ///< of the last evaluation

    [[nodiscard]] std::span<Coord3D> standing() { return work.aCoords.span().first(atomCount); }
    [[nodiscard]] std::span<Coord3D> turned() { return work.wCoords.span().first(atomCount); }
};

/// A parameter of the tensor. It is free if its bounds differ.
struct Parameter {
    float DTensor::*value;
    float DTensor::*low;
    float DTensor::*high;
};

constexpr std::size_t parameterCount = 5;

/// The parameters in the order in which the minimiser has them.
std::array<Parameter, parameterCount> parametersOf(int rhFlag)
{
    constexpr Parameter rhombicity = {&DTensor::rh, &DTensor::rhMin, &DTensor::rhMax};
    constexpr Parameter rhombic = {&DTensor::dr, &DTensor::drMin, &DTensor::drMax};
    return {{{&DTensor::psi, &DTensor::psiMin, &DTensor::psiMax},
             {&DTensor::theta, &DTensor::thetaMin, &DTensor::thetaMax},
             {&DTensor::phi, &DTensor::phiMin, &DTensor::phiMax},
             {&DTensor::da, &DTensor::daMin, &DTensor::daMax},
             rhFlag != 0 ? rhombicity : rhombic}};
}

bool isFree(const DTensor &tensor, const Parameter &parameter)
{
    return tensor.*parameter.low != tensor.*parameter.high;
}

/// The free parameters with their bounds.
struct FreeParameters {
    std::array<float, parameterCount> cg = {}, cLo = {}, cHi = {};
    std::size_t count = 0;
};

FreeParameters collectFree(const DTensor &tensor)
{
    FreeParameters free;
    for (const Parameter &parameter : parametersOf(tensor.rhFlag)) {
        if (!isFree(tensor, parameter))
            continue;
        free.cg[free.count] = tensor.*parameter.value;
        free.cLo[free.count] = tensor.*parameter.low;
        free.cHi[free.count] = tensor.*parameter.high;
        ++free.count;
    }
    return free;
}

void takeFree(DTensor &tensor, const float *cg)
{
    for (const Parameter &parameter : parametersOf(tensor.rhFlag))
        if (isFree(tensor, parameter))
            tensor.*parameter.value = *cg++;
    if (tensor.rhFlag != 0)
        tensor.dr = tensor.rh * tensor.da;
}

/// Calls `visit` for each pair of atoms of a row. Returns how many there are.
template <class Visit>
std::size_t forEachPair(const DCalc &calc, Visit visit)
{
    for (const std::uint32_t atomI : calc.atomI.span())
        for (const std::uint32_t atomJ : calc.atomJ.span())
            visit(atomI, atomJ);
    return calc.pairCount();
}

constexpr std::size_t noSlot = SIZE_MAX; ///< of an atom without a coupling in use

/// Finds the atoms of the couplings in use, and gives them slots in the order of the molecule.
void selectAtoms(AlignRun &run)
{
    std::vector<std::size_t> &slots = run.work.slots;
    slots.assign(run.input.coords.size(), noSlot);
    for (std::size_t row = 0; row < run.input.columns.use.size(); ++row) {
        if (run.input.columns.use[row] == 0)
            continue;
        const std::size_t pairs =
            forEachPair(run.input.dTab.dCalcList[row],
                        [&](std::size_t atomI, std::size_t atomJ) { slots[atomI] = slots[atomJ] = 0; });
        run.dCount += pairs > 0 ? 1 : 0;
    }
    for (std::size_t &slot : slots)
        if (slot != noSlot)
            slot = run.atomCount++;
}

Status growCoords(FitWork &work, std::size_t atomCount, Messages &messages)
{
    if (atomCount <= work.wCoords.length())
        return Status::ok;
    for (Block<Coord3D> *coords : {&work.aCoords, &work.wCoords})
        coords->release();
    work.aCoords = Block<Coord3D>("align", atomCount);
    work.wCoords = Block<Coord3D>("align", atomCount);
    if (work.aCoords && work.wCoords)
        return Status::ok;
    for (Block<Coord3D> *coords : {&work.aCoords, &work.wCoords})
        coords->release();
    return messages.fail("GORVAT Error (DC Fit) allocating workspaces.\n");
}

/// Gathers the coordinates of the atoms in use.
Status gatherCoords(AlignRun &run)
{
    if (growCoords(run.work, run.atomCount, run.messages) != Status::ok)
        return Status::failed;
    for (std::size_t atom = 0; atom < run.input.coords.size(); ++atom)
        if (const std::size_t slot = run.work.slots[atom]; slot != noSlot)
            run.standing()[slot] = run.input.coords[atom];
    std::ranges::copy(run.standing(), run.turned().begin());
    return Status::ok;
}

/// Turns the working coordinates by the angles of the tensor.
void turnCoords(AlignRun &run)
{
    std::ranges::copy(run.standing(), run.turned().begin());
    run.turn = Transform{};
    run.turn.appendRotation(run.tensor.psi, run.tensor.theta, run.tensor.phi);
    run.turn.apply(run.turned());
}

/// The geometry term of a pair in the frame of the tensor.
float pairTerm(const Coord3D &i, const Coord3D &j, float da, float dr)
{
    const float xIJ = j.x - i.x, yIJ = j.y - i.y, zIJ = j.z - i.z;
    const float r = std::sqrt(xIJ * xIJ + yIJ * yIJ + zIJ * zIJ);
    const float rinv = r > 0.0f ? 1.0f / r : 0.0f;
    const float x = xIJ * rinv, y = yIJ * rinv, z = zIJ * rinv;
    return da * (3.0f * z * z - 1.0f) + 1.5f * dr * (x * x - y * y);
}

/// Sets the calculated coupling of a row. Returns false if the row takes no part.
bool calculateRow(AlignRun &run, std::size_t row)
{
    const DCalc &calc = run.input.dTab.dCalcList[row];
    if (run.input.columns.use[row] == 0)
        return false;
    const float factor = calc.pairCount() == 3 ? methylFactor : 1.0f;
    const float size = factor * std::fabs(calc.di), da = run.tensor.da, dr = run.tensor.dr;
    const Coord3D *const turned = run.turned().data();
    const std::size_t *const slots = run.work.slots.data();
    float sum = 0.0f;
    const std::size_t pairs = forEachPair(calc, [&](std::size_t atomI, std::size_t atomJ) {
        sum += size * pairTerm(turned[slots[atomI]], turned[slots[atomJ]], da, dr);
    });
    if (pairs > 0)
        run.result.calculated[row] = sum;
    return pairs > 0;
}

float residualWeight(float di, float sigma)
{
    const float scale = di != 0.0f ? amideConstant / std::fabs(di) : 0.0f;
    const float spread = scale * sigma;
    return spread != 0.0f ? 1.0f / spread : 1.0f;
}

void tellState(const AlignRun &run, int n)
{
    const DTensor &t = run.tensor;
    const char *name = t.rhFlag != 0 ? "Rh" : "Dr";
    std::string text;
    appendf(text, "Rot(%.3f %.3f %.3f) Da %.3e %s ", double{t.psi}, double{t.theta}, double{t.phi},
            double{t.da}, name);
    if (t.rhFlag != 0)
        appendf(text, "%.3f", double{t.rh});
    else
        appendf(text, "%.3e", double{t.dr});
    run.messages.note("%s RMS(%d): %.4f\n", text.c_str(), n, double{run.dRMS});
}

/// The residuals of the couplings in use for the free parameters cg, on the scale of an amide pair. The
/// calculated couplings, the tensor and the transform are left as of this call.
void fitDCTarget(AlignRun &run, std::span<const float> cg, std::span<float> res)
{
    takeFree(run.tensor, cg.data());
    turnCoords(run);
    float squares = 0.0f;
    int n = 0;
    const FitColumns &columns = run.input.columns;
    for (std::size_t i = 0; i < columns.d.size(); ++i) {
        if (!calculateRow(run, i))
            continue;
        const float calculated = run.result.calculated[i], difference = columns.d[i] - calculated;
        const float residual = residualWeight(run.input.dTab.dCalcList[i].di, columns.sigma[i]) * difference;
        if (static_cast<std::size_t>(n) < res.size())
            res[static_cast<std::size_t>(n)] = residual;
        squares += residual * residual;
        ++n;
        if (run.input.verbose > 2)
            run.messages.note(" DC %3d % 8.3f % 8.3f % 8.3f\n", n, double{columns.d[i]}, double{calculated},
                              double{difference});
    }
    run.dRMS = n > 0 ? std::sqrt(squares / static_cast<float>(n)) : 0.0f;
    if (run.input.verbose > 1)
        tellState(run, n);
}

/// Runs the minimiser, or leaves zero angles where the couplings can not determine the parameters.
void fitParameters(AlignRun &run)
{
    DTensor &tensor = run.tensor;
    FreeParameters free = collectFree(tensor);
    if (run.dCount < static_cast<int>(free.count)) {
        tensor.psi = tensor.theta = tensor.phi = 0.0f;
        return; // the transform that the Euler angles are read from is that of these angles
    }
    const auto part = [&](std::array<float, parameterCount> &values) {
        return std::span<float>(values).first(free.count);
    };
    const auto residuals = [&run](std::span<const float> cg, std::span<float> res) {
        fitDCTarget(run, cg, res);
    };
    nlsOpt({residuals, static_cast<std::size_t>(run.dCount)}, part(free.cg), part(free.cLo), part(free.cHi),
           maxIterations, run.messages);
}

/// The Euler solutions of the last evaluation, and the Saupe vector of the first of them.
void takeSolutions(const Matrix4 &m, DTensor &tensor)
{
    const Matrix3f r = {m[0], m[1], m[2], m[4], m[5], m[6], m[8], m[9], m[10]};
    RotationLists lists;
    tensor.eulerCount = rot2euler(r, lists);
    tensor.psiList = lists.psi;
    tensor.thetaList = lists.theta;
    tensor.phiList = lists.phi;
    euler2saupe(tensor.saupe, lists.psi[0], lists.theta[0], lists.phi[0], tensor.da, tensor.dr);
}

} // namespace

Status fitDCAlign(const FitInput &input, FitWork &work, FitResult &result, Messages &messages)
{
    AlignRun run{input, work, result, result.tensor, messages};
    selectAtoms(run);
    if (input.verbose > 1)
        messages.note("%d Couplings, %zu Atoms Selected.\n", run.dCount, run.atomCount);
    if (run.atomCount == 0 || run.dCount == 0)
        return Status::ok;
    if (gatherCoords(run) != Status::ok)
        return messages.fail("GORVAT Error initializing alignment workspaces.\n");
    fitParameters(run);
    takeSolutions(run.turn.m, run.tensor);
    if (!std::isfinite(run.dRMS))
        return messages.fail(
            "DC Error: the differences of the couplings are no finite numbers: look at D and DD.\n");
    result.used = run.dCount;
    return Status::ok;
}

} // namespace trelm
