#include "simulation/alignment/free_format.h"

#include "ground/alloc.h"
#include "simulation/alignment/alignment.h"
#include "simulation/alignment/options.h"
#include "simulation/orientations/sphere.h"
#include "support/text/text.h"
#include "support/text/text_input.h"
#include "support/text/token.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <optional>
#include <string_view>

namespace trelm {
namespace {

/// The words of a text, one after the other.
struct Words {
    std::string_view rest;

    std::optional<std::string_view> next()
    {
        while (!rest.empty() && isSpace(rest.front()))
            rest.remove_prefix(1);
        const auto end = std::ranges::find_if(rest, isSpace);
        const auto length = static_cast<std::size_t>(end - rest.begin());
        if (length == 0)
            return {};
        const std::string_view word = rest.substr(0, length);
        rest.remove_prefix(length);
        return word;
    }
};

/// Skips words as far as an ATOM. False at the end of the file, and at an END if that ends the list.
bool findAtomWord(Words &words, bool endEnds)
{
    while (const auto word = words.next()) {
        if (*word == "ATOM")
            return true;
        if (endEnds && *word == "END")
            return false;
    }
    return false;
}

/// The seven fields after ATOM. False if one is missing or no number where a number belongs.
bool readRecord(Words &words, float (&place)[3])
{
    int number = 0;
    const auto isInt = [&] {
        const auto word = words.next();
        return word && wordToInt(*word, number);
    };
    if (!isInt() || !words.next() || !words.next() || !isInt())
        return false;
    return std::ranges::all_of(place, [&words](float &value) {
        const auto word = words.next();
        return word && wordToFloat(*word, value) && std::isfinite(value);
    });
}

Status readError(Messages &messages)
{
    return messages.fail("Matrix: Error reading PDB file in free format.\n");
}

/// The coordinates of a run of this mode.
struct FreeBuffers {
    Block<double> xI{"ssiaFree", maxFreeAtoms + 2};
    Block<double> yI{"ssiaFree", maxFreeAtoms + 2};
    Block<double> zI{"ssiaFree", maxFreeAtoms + 2};
    Block<double> ddots{"ssiaFree", std::size_t{3} * maxOrientations};

    [[nodiscard]] bool complete() const { return xI && yI && zI && ddots; }
    CoordinateBuffers first(int count)
    {
        const auto n = static_cast<std::size_t>(count);
        return {xI.span().first(n), yI.span().first(n), zI.span().first(n)};
    }
};

} // namespace

Status readPDBfree(const std::string &inName, int &atomCount, const CoordinateBuffers &atoms,
                   Messages &messages)
{
    atomCount = 0;
    if (inName.empty())
        return Status::ok;
    TextInput input;
    const TextStatus status = readText(input, inName, messages);
    if (status == TextStatus::noFile)
        return messages.fail("readPDBfree File open error: %s.\n", inName.c_str());
    if (status != TextStatus::read)
        return Status::failed;
    Words words{input.text};
    if (!findAtomWord(words, false))
        return messages.fail("readPDBfree: %s holds no ATOM record.\n", inName.c_str());
    do {
        float place[3] = {};
        if (!readRecord(words, place))
            return messages.fail("readPDBfree: record %d of %s is not complete or holds no numbers.\n",
                                 atomCount + 1, inName.c_str());
        const auto i = static_cast<std::size_t>(atomCount++);
        atoms.x[i] = static_cast<double>(place[0]);
        atoms.y[i] = static_cast<double>(place[1]);
        atoms.z[i] = static_cast<double>(place[2]);
    } while (atomCount < maxFreeAtoms && findAtomWord(words, true));
    if (atomCount >= maxFreeAtoms)
        return messages.fail("error in readPDBfree: too many atoms.\n");
    return Status::ok;
}

Status ssiaFree(const AlignmentOptions &options, const std::string &pdbFreeName, Saupe &saupe,
                Messages &messages)
{
    FreeBuffers buffers;
    if (!buffers.complete())
        return messages.fail("Error allocating coord buffers.\n");
    int atomCount = 0;
    if (readPDBfree(pdbFreeName, atomCount, buffers.first(maxFreeAtoms), messages) != Status::ok)
        return readError(messages);
    messages.note("%s, %d Atoms, Free format.\n", pdbFreeName.c_str(), atomCount);
    std::vector<double> dots; // checkSimulation has bounded them
    if (!do_unsp(options.densityNSC, dots))
        return messages.fail("Matrix: unsp error occured.\n");

    int atomSelCount = 0;
    if (surfSel(atomCount, buffers.first(atomCount), atomSelCount, messages) != Status::ok)
        return readError(messages);
    if (atomSelCount == 0)
        return messages.fail("TRELM: error - zero atoms remain after surface selection!\n");
    messages.out("REMARK %d atoms selected for simulation.\n", atomSelCount);
    const CoordinateBuffers atoms = buffers.first(atomSelCount);
    const float distance = centreAtoms(atoms);
    const double rSingleCell = static_cast<double>(refine_bicelle(options).rSingleCell);
    if (runSteric({options, messages, rSingleCell, dots}, atoms, distance, saupe) != Status::ok)
        return messages.fail("simulateAlignment: error in stericAlignment.");
    // What survives beside the obstacle averages to the opposite sign.
    for (double &element : saupe)
        element *= -static_cast<double>(options.lcOrder);
    return Status::ok;
}

} // namespace trelm
