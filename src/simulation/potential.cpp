#include "simulation/potential.h"

#include "support/progress.h"
#include "support/text.h"
#include "support/text_input.h"
#include "support/token.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string_view>
#include <vector>

namespace trelm {
namespace {

constexpr const char *tag = "matrix";
constexpr int headerLines = 11; ///< of a grid
constexpr double angstromPerNanometre = 10.0;
constexpr double stepTolerance = 0.001; ///< nanometres

/// Opens a file for one of the readers. Returns 0, or 1 after a message.
int openPotential(TextInput &input, const std::string &name, const char *reader)
{
    const TextStatus status = readText(input, name);
    if (status == TextStatus::noFile)
        return complain("%s File open error: %s.\n", reader, name.c_str());
    trimEnd(input);
    return status == TextStatus::read ? 0 : 1;
}

/// Two finite numbers at the start of a line.
bool readPair(std::string_view line, double &distance, double &value)
{
    std::vector<std::string_view> words;
    splitTokens(line, words);
    return words.size() >= 2 && wordToDouble(words[0], distance) && wordToDouble(words[1], value) &&
           std::isfinite(static_cast<float>(distance)) && std::isfinite(static_cast<float>(value));
}

/// The lines of a table as they come in.
struct TableLines {
    double last = 0.0, firstStep = 0.0;
};

/// Takes one line. Returns 0, or 1 after a message.
int takeLine(std::string_view line, TableLines &lines, Potential &potential)
{
    double distance = 0.0, value = 0.0;
    if (!readPair(line, distance, value))
        return complain("Error: Input data in file with measured dipolar couplings have wrong format\n"
                        "Line:%s\n",
                        std::string(line).c_str());
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
    std::vector<std::string_view> words;
    std::string_view line;
    for (int skipped = 0; skipped < headerLines && fgetsAlloc(input, line); ++skipped) {
    }
    Progress progress = startProgress("REMARK Reading values of 3D potential ", static_cast<int>(points));
    std::size_t count = 0;
    while (fgetsAlloc(input, line)) {
        splitTokens(line, words);
        std::size_t taken = 0;
        for (double value = 0.0; taken < std::min<std::size_t>(words.size(), 3); ++taken) {
            if (!wordToDouble(words[taken], value) || !std::isfinite(value))
                break;
            if (count < points)
                take(count, value);
            ++count;
        }
        if (taken < 3) {
            pauseProgress(progress);
            complain("WARNING: File with 3D Potential may contain line with wrong input format!\nLine:%s\n",
                     std::string(line).c_str());
        }
        showProgress(progress, static_cast<int>(std::min(count, points + 1)));
    }
    endProgress(progress);
    if (count != points)
        return complain("ERROR: Total size of 3D grid not as specified.\n");
    read = static_cast<int>(count);
    return 0;
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
    if (potential.count < 2 || !(lines.firstStep > 0.0))
        return complain("readPotential: %s needs two lines at least, with rising distances.\n",
                        inName.c_str());
    potential.offset *= angstromPerNanometre;
    potential.stepsize = lines.firstStep * angstromPerNanometre;
    return 0;
}

std::size_t gridPoints(const TrelmInfo &trelmInfo)
{
    const auto fault = [](const char *what) {
        complain("trelm: the 3D grid has %s.\n", what);
        return std::size_t{0};
    };
    const int nX = trelmInfo.grid3DnX, nY = trelmInfo.grid3DnY, nZ = trelmInfo.grid3DnZ;
    if (nX < 1 || nY < 1 || nZ < 1)
        return fault("a count that is not positive: see -nX, -nY, -nZ");
    for (const float spacing : {trelmInfo.grid3DdeltaX, trelmInfo.grid3DdeltaY, trelmInfo.grid3DdeltaZ})
        if (!(spacing > 0.0f) || !std::isfinite(spacing))
            return fault("a spacing that is not positive: see -dX, -dY, -dZ");
    const ElInfo &elInfo = trelmInfo.elInfo;
    if (elInfo.z1 < 1 || elInfo.zN > nZ || elInfo.z1 > elInfo.zN)
        return fault("z planes out of order or out of range: see -z1, -zN");
    const double points = static_cast<double>(nX) * nY * nZ;
    if (points > std::numeric_limits<int>::max())
        return fault("more points than can be counted");
    return static_cast<std::size_t>(points);
}

int read3DPotential(const std::string &inName, const TrelmInfo &trelmInfo, Block<double> &pot3D, int &read)
{
    read = 0;
    const std::size_t points = gridPoints(trelmInfo);
    if (points == 0)
        return 1;
    pot3D = Block<double>(tag, points);
    if (!pot3D)
        return complain("Error allocating charge and potential buffers.\n");
    if (inName.empty())
        return 0;
    return readGrid(inName, points, read, [&](std::size_t i, double value) { pot3D[i] = value; });
}

int read3DPotSteric(const std::string &inName, const TrelmInfo &trelmInfo, Block<float> &pot3Dst, int &read)
{
    read = 0;
    const std::size_t points = gridPoints(trelmInfo);
    if (points == 0)
        return 1;
    pot3Dst = Block<float>(tag, points);
    if (!pot3Dst)
        return complain("Error allocating potential buffer.\n");
    if (inName.empty())
        return 0;
    const auto maxPot = static_cast<double>(trelmInfo.elInfo.maxPot);
    return readGrid(inName, points, read, [&](std::size_t i, double value) {
        pot3Dst[i] = std::fabs(value) < maxPot ? 1.0f : 0.0f;
    });
}

} // namespace trelm
