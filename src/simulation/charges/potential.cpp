#include "simulation/charges/potential.h"

#include "support/text/progress.h"
#include "support/text/text.h"
#include "support/text/text_input.h"
#include "support/text/token.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string_view>

namespace trelm {
namespace {

constexpr const char *tag = "matrix";
constexpr int headerLines = 11; ///< of a grid
constexpr double angstromPerNanometre = 10.0;
constexpr double mostEmpty = 1e5;       ///< positions along an axis of a grid with fewer points
constexpr double stepTolerance = 0.001; ///< nanometres

/// Opens a file for one of the readers. Returns 0, or 1 after a message.
int openPotential(TextInput &input, const std::string &name, const char *reader)
{
    const TextStatus status = readText(input, name);
    if (status == TextStatus::noFile)
        return complain("%s File open error: %s.\n", reader, name.c_str());
    return status == TextStatus::read ? 0 : 1;
}

void warnValues(const std::string &name, bool areFinite)
{
    if (!areFinite)
        complain("Warning: %s has values that are no finite numbers.\n", name.c_str());
}

/// The lines of a table as they come in.
struct TableLines {
    double last = 0.0, firstStep = 0.0;
    bool areFinite = true;
};

/// Takes one line. Returns 0, or 1 after a message.
int takeLine(std::string_view line, TableLines &lines, Potential &potential)
{
    std::array<double, 2> pair = {};
    if (scanNumbers(line, pair) < pair.size())
        return complain("Error: Input data in file with measured dipolar couplings have wrong format\n"
                        "Line:%s\n",
                        std::string(line).c_str());
    const auto [distance, value] = pair;
    const double step = distance - lines.last;
    if (potential.count == 0)
        potential.offset = distance;
    else if (potential.count == 1)
        lines.firstStep = step;
    else if (!(step - lines.firstStep < stepTolerance))
        return complain("Error: The potential must be supplied with a uniform stepsize\n"
                        "Line:%s\n%e %e ==> diff = %e\n",
                        std::string(line).c_str(), step, lines.firstStep, step - lines.firstStep);
    lines.last = distance;
    lines.areFinite = lines.areFinite && std::isfinite(distance) && std::isfinite(static_cast<float>(value));
    potential.values[static_cast<std::size_t>(potential.count++)] = value;
    if (potential.count >= maxPotentialLines)
        return complain("Error in readPotential: digitization of potential too high.");
    return 0;
}

/// The values of a grid file, one after the other, up to three a line.
template <class Take>
int readGrid(const std::string &name, std::size_t points, int &read, Take take)
{
    read = 0;
    TextInput input;
    if (openPotential(input, name, "read3DPotential") != 0)
        return 1;
    std::array<double, 3> values = {};
    std::string_view line;
    for (int skipped = 0; skipped < headerLines && fgetsAlloc(input, line); ++skipped) {
    }
    Progress progress = startProgress("REMARK Reading values of 3D potential ", static_cast<int>(points));
    std::size_t count = 0;
    bool areFinite = true;
    while (fgetsAlloc(input, line)) {
        const std::size_t taken = scanNumbers(line, values);
        for (std::size_t i = 0; i < taken; ++i, ++count)
            if (count < points) {
                take(count, values[i]);
                areFinite = areFinite && std::isfinite(values[i]);
            }
        if (taken < values.size()) {
            pauseProgress(progress);
            complain("WARNING: File with 3D Potential may contain line with wrong input format!\nLine:%s\n",
                     std::string(line).c_str());
        }
        showProgress(progress, static_cast<int>(std::min(count, points + 1)));
    }
    endProgress(progress);
    warnValues(name, areFinite);
    if (count != points)
        return complain("ERROR: Total size of 3D grid not as specified.\n");
    read = static_cast<int>(count);
    return 0;
}

/// The values of a grid, all 0, as many as the run asks for. `complaint`: what is said without memory.
template <class T>
int makeGrid(const Grid3DOptions &options, const char *complaint, Block<T> &grid)
{
    std::size_t points = 0;
    if (gridPoints(options, points) != 0)
        return 1;
    grid = points > 0 ? Block<T>(tag, points) : Block<T>();
    return points > 0 && !grid ? complain("%s", complaint) : 0;
}

} // namespace

int readPotential(const std::string &inName, Potential &potential)
{
    potential.count = 0;
    potential.offset = potential.stepsize = 0.0;
    potential.values = Block<double>(tag, maxPotentialLines + 2);
    if (!potential.values)
        return complain("Error allocating charge and potential buffers.\n");
    if (inName.empty())
        return 0;
    TextInput input;
    if (openPotential(input, inName, "readPotential") != 0)
        return 1;
    TableLines lines;
    for (std::string_view line; fgetsAlloc(input, line);)
        if (takeLine(line, lines, potential) != 0)
            return 1;
    potential.offset *= angstromPerNanometre;
    potential.stepsize = lines.firstStep * angstromPerNanometre;
    warnValues(inName, lines.areFinite);
    if (!hasStep(potential)) {
        complain("Warning: %s has no two lines of rising distances: charges feel no potential.\n",
                 inName.c_str());
        potential.isTold = true;
    }
    return 0;
}

bool hasStep(const Potential &potential)
{
    return potential.count > 1 && potential.stepsize > 0.0 && std::isfinite(potential.stepsize);
}

int gridPoints(const Grid3DOptions &options, std::size_t &points)
{
    const auto tell = [](const char *kind, const char *what) {
        return complain("%s the 3D grid has %s.\n", kind, what);
    };
    const double nX = options.grid3DnX, nY = options.grid3DnY, nZ = options.grid3DnZ;
    const double planes = 1.0 + options.zN - options.z1;
    bool isNegative = false;
    for (const float spacing : {options.grid3DdeltaX, options.grid3DdeltaY, options.grid3DdeltaZ}) {
        if (spacing == 0.0f || !std::isfinite(spacing))
            return tell("trelm:", "a spacing of 0: see -dX, -dY, -dZ");
        isNegative = isNegative || spacing < 0.0f;
    }
    if (nX * nY * nZ < 0.0)
        return tell("trelm:", "a negative number of points: see -nX, -nY, -nZ");
    for (const double number :
         {planes, 2.0 * options.z1, 2.0 * options.zN, nX * nY, nX * nY * nZ, nX * nY * planes})
        if (std::fabs(number) > std::numeric_limits<int>::max())
            return tell("trelm:", "more points than can be counted");
    if (std::max({nX, nY, planes}) > std::max(nX * nY * nZ, mostEmpty))
        return tell("trelm:", "far more positions than points: see -nX, -nY, -nZ, -z1, -zN");
    if (isNegative)
        tell("Warning:", "a negative spacing: see -dX, -dY, -dZ");
    if (nX < 1.0 || nY < 1.0 || planes < 1.0)
        tell("Warning:", "no positions: see -nX, -nY, -z1, -zN");
    else if (options.z1 < 1 || options.zN > nZ)
        tell("Warning:", "z planes beyond its own: see -z1, -zN");
    points = static_cast<std::size_t>(nX * nY * nZ);
    return 0;
}

int read3DPotential(const std::string &inName, const Grid3DOptions &options, Block<double> &pot3D, int &read)
{
    read = 0;
    if (makeGrid(options, "Error allocating charge and potential buffers.\n", pot3D) != 0)
        return 1;
    if (inName.empty())
        return 0;
    return readGrid(inName, pot3D.span().size(), read,
                    [&](std::size_t i, double value) { pot3D[i] = value; });
}

int read3DPotSteric(const std::string &inName, const Grid3DOptions &options, Block<float> &pot3Dst, int &read)
{
    read = 0;
    if (makeGrid(options, "Error allocating potential buffer.\n", pot3Dst) != 0)
        return 1;
    if (inName.empty())
        return 0;
    const auto maxPot = static_cast<double>(options.maxPot);
    return readGrid(inName, pot3Dst.span().size(), read, [&](std::size_t i, double value) {
        pot3Dst[i] = std::fabs(value) < maxPot ? 1.0f : 0.0f;
    });
}

} // namespace trelm
