#include "simulation/charges/potential.h"

#include "simulation/charges/options.h"
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
Status openPotential(TextInput &input, const std::string &name, const char *reader, Messages &messages)
{
    const TextStatus status = readText(input, name, messages);
    if (status == TextStatus::noFile)
        return messages.fail("%s File open error: %s.\n", reader, name.c_str());
    return status == TextStatus::read ? Status::ok : Status::failed;
}

void warnValues(const std::string &name, bool areFinite, Messages &messages)
{
    if (!areFinite)
        messages.err("Warning: %s has values that are no finite numbers.\n", name.c_str());
}

/// The lines of a table as they come in.
struct TableLines {
    double last = 0.0, firstStep = 0.0;
    bool areFinite = true;
};

/// Takes one line. Returns 0, or 1 after a message.
Status takeLine(std::string_view line, TableLines &lines, Potential &potential, Messages &messages)
{
    std::array<double, 2> pair = {};
    if (scanNumbers(line, pair) < pair.size())
        return messages.fail("Error: Input data in file with measured dipolar couplings have wrong format\n"
                             "Line:%s\n",
                             std::string(line).c_str());
    const auto [distance, value] = pair;
    const double step = distance - lines.last;
    if (potential.count == 0)
        potential.offset = distance;
    else if (potential.count == 1)
        lines.firstStep = step;
    else if (!(step - lines.firstStep < stepTolerance))
        return messages.fail("Error: The potential must be supplied with a uniform stepsize\n"
                             "Line:%s\n%e %e ==> diff = %e\n",
                             std::string(line).c_str(), step, lines.firstStep, step - lines.firstStep);
    lines.last = distance;
    lines.areFinite = lines.areFinite && std::isfinite(distance) && std::isfinite(static_cast<float>(value));
    potential.values[static_cast<std::size_t>(potential.count++)] = value;
    if (potential.count >= maxPotentialLines)
        return messages.fail("Error in readPotential: digitization of potential too high.");
    return Status::ok;
}

/// The values of a grid file, one after the other, up to three a line.
template <class Take>
Status readGrid(const std::string &name, std::size_t points, int &read, Take take, Messages &messages)
{
    read = 0;
    TextInput input;
    if (openPotential(input, name, "read3DPotential", messages) != Status::ok)
        return Status::failed;
    std::array<double, 3> values = {};
    std::string_view line;
    for (int skipped = 0; skipped < headerLines && fgetsAlloc(input, line); ++skipped) {
    }
    Progress progress(messages, "REMARK Reading values of 3D potential ", static_cast<int>(points));
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
            progress.pause();
            messages.err(
                "WARNING: File with 3D Potential may contain line with wrong input format!\nLine:%s\n",
                std::string(line).c_str());
        }
        progress.show(static_cast<int>(std::min(count, points + 1)));
    }
    progress.end();
    warnValues(name, areFinite, messages);
    if (count != points)
        return messages.fail("ERROR: Total size of 3D grid not as specified.\n");
    read = static_cast<int>(count);
    return Status::ok;
}

/// The values of a grid, all 0, as many as the run asks for. `complaint`: what is said without memory.
template <class T>
Status makeGrid(const Grid3DOptions &options, const char *complaint, Block<T> &grid, Messages &messages)
{
    std::size_t points = 0;
    if (gridPoints(options, points, messages) != Status::ok)
        return Status::failed;
    grid = points > 0 ? Block<T>(tag, points) : Block<T>();
    return points > 0 && !grid ? messages.fail("%s", complaint) : Status::ok;
}

} // namespace

Status readPotential(const std::string &inName, Potential &potential, Messages &messages)
{
    potential.count = 0;
    potential.offset = potential.stepsize = 0.0;
    potential.values = Block<double>(tag, maxPotentialLines + 2);
    if (!potential.values)
        return messages.fail("Error allocating charge and potential buffers.\n");
    if (inName.empty())
        return Status::ok;
    TextInput input;
    if (openPotential(input, inName, "readPotential", messages) != Status::ok)
        return Status::failed;
    TableLines lines;
    for (std::string_view line; fgetsAlloc(input, line);)
        if (takeLine(line, lines, potential, messages) != Status::ok)
            return Status::failed;
    potential.offset *= angstromPerNanometre;
    potential.stepsize = lines.firstStep * angstromPerNanometre;
    warnValues(inName, lines.areFinite, messages);
    if (!hasStep(potential)) {
        messages.err("Warning: %s has no two lines of rising distances: charges feel no potential.\n",
                     inName.c_str());
        potential.isTold = true;
    }
    return Status::ok;
}

bool hasStep(const Potential &potential)
{
    return potential.count > 1 && potential.stepsize > 0.0 && std::isfinite(potential.stepsize);
}

Status gridPoints(const Grid3DOptions &options, std::size_t &points, Messages &messages)
{
    const auto refuse = [&messages](const char *what) {
        return messages.fail("trelm: the 3D grid has %s.\n", what);
    };
    const double nX = options.grid3DnX, nY = options.grid3DnY, nZ = options.grid3DnZ;
    const double planes = 1.0 + options.zN - options.z1;
    bool isNegative = false;
    for (const float spacing : {options.grid3DdeltaX, options.grid3DdeltaY, options.grid3DdeltaZ}) {
        if (spacing == 0.0f || !std::isfinite(spacing))
            return refuse("a spacing of 0: see -dX, -dY, -dZ");
        isNegative = isNegative || spacing < 0.0f;
    }
    if (nX * nY * nZ < 0.0)
        return refuse("a negative number of points: see -nX, -nY, -nZ");
    for (const double number :
         {planes, 2.0 * options.z1, 2.0 * options.zN, nX * nY, nX * nY * nZ, nX * nY * planes})
        if (std::fabs(number) > std::numeric_limits<int>::max())
            return refuse("more points than can be counted");
    if (std::max({nX, nY, planes}) > std::max(nX * nY * nZ, mostEmpty))
        return refuse("far more positions than points: see -nX, -nY, -nZ, -z1, -zN");
    if (isNegative)
        messages.err("Warning: the 3D grid has a negative spacing: see -dX, -dY, -dZ.\n");
    if (nX < 1.0 || nY < 1.0 || planes < 1.0)
        messages.err("Warning: the 3D grid has no positions: see -nX, -nY, -z1, -zN.\n");
    else if (options.z1 < 1 || options.zN > nZ)
        messages.err("Warning: the 3D grid has z planes beyond its own: see -z1, -zN.\n");
    points = static_cast<std::size_t>(nX * nY * nZ);
    return Status::ok;
}

Status read3DPotential(const std::string &inName, const Grid3DOptions &options, Block<double> &pot3D,
                       int &read, Messages &messages)
{
    read = 0;
    if (makeGrid(options, "Error allocating charge and potential buffers.\n", pot3D, messages) != Status::ok)
        return Status::failed;
    if (inName.empty())
        return Status::ok;
    return readGrid(
        inName, pot3D.span().size(), read, [&](std::size_t i, double value) { pot3D[i] = value; }, messages);
}

Status read3DPotSteric(const std::string &inName, const Grid3DOptions &options, Block<float> &pot3Dst,
                       int &read, Messages &messages)
{
    read = 0;
    if (makeGrid(options, "Error allocating potential buffer.\n", pot3Dst, messages) != Status::ok)
        return Status::failed;
    if (inName.empty())
        return Status::ok;
    const auto maxPot = static_cast<double>(options.maxPot);
    return readGrid(
        inName, pot3Dst.span().size(), read,
        [&](std::size_t i, double value) { pot3Dst[i] = std::fabs(value) < maxPot ? 1.0f : 0.0f; }, messages);
}

} // namespace trelm
