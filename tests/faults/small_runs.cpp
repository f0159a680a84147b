#include "faults/small_runs.h"

#include "simulation/two_domains.h"

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string_view>

namespace {

using Args = std::vector<const char *>;

Args operator+(Args args, const Args &more)
{
    args.insert(args.end(), more.begin(), more.end());
    return args;
}

std::string exampleText(const std::string &name)
{
    std::ostringstream text;
    text << std::ifstream(TRELM_EXAMPLES "/" + name).rdbuf();
    return text.str();
}

/// The lines of a coupling table above its rows, and the rows of residues up to `last`.
std::string couplings(const std::string &name, int last)
{
    std::istringstream lines(exampleText(name));
    std::string text;
    for (std::string line; std::getline(lines, line);)
        if (std::atoi(line.c_str()) <= last && !line.starts_with("REMARK Values"))
            text += line + "\n";
    return text;
}

std::string firstLines(const std::string &name, int count)
{
    std::istringstream lines(exampleText(name));
    std::string text, line;
    for (int i = 0; i < count && std::getline(lines, line); ++i)
        text += line + "\n";
    return text;
}

/// A cylinder of 12 angstrom along z in a grid of 10 by 10 by 6 points, 10 angstrom apart.
std::string gridFile()
{
    std::string text(11, '\n');
    for (int i = 0; i < 10 * 10 * 6; ++i) {
        const int x = i / 60 - 5, y = i / 6 % 10 - 5;
        text += std::hypot(10 * x, 10 * y) < 12.0 ? "9.0" : "-0.1";
        text += i % 3 == 2 ? "\n" : " ";
    }
    return text;
}

constexpr const char *configuration =
    "START_RESID_1: 1\nEND_RESID_1: 8\nSTART_RESID_2: 101\nEND_RESID_2: 108\nSTART_RES_ANGLE_1: 1\n"
    "END_RES_ANGLE_1: 8\nSTART_RES_ANGLE_2: 101\nEND_RES_ANGLE_2: 108\nORIGIN_DOM1: 5\nENSEMBLE_DENSITY: 4\n"
    "BETA_H: 40\n";

const Args structure = {"-pdb", "../in/m.pdb", "-H"};
const Args table = {"-inD", "../in/d.tab", "-outD", "fit.tab"};
const Args turned = {"-pdbRot", "t.pdb"};
const Args coarse = {"-dot", "12", "-digPsi", "4", "-dGrid", "2"};
const Args fit = Args{"-bestFit"} + structure + table + turned;
const Args mapping = fit + Args{"-map",    "6",   "-outDa", "da",    "-outMap",  "map",
                                "-outAng", "ang", "-outA",  "saupe", "-outFail", "fail"};
const Args search = {"-bestFit",        "-pdb",  "../in/m.pdb", "-H",      "-inD",
                     "../in/types.tab", "-outD", "fit.tab",     "-pdbRot", "t.pdb"};
const Args steric = structure + table + turned + coarse;
const Args magnitude = {"-inD",   "../in/long.tab", "-outD",   "fit.tab",
                        "-outSc", "scores",         "-outCol", "columns"};
const Args tensors = {"-anA",     "-inS1",    "-5.6e-04", "7.2e-05",  "2.7e-05",
                      "-1.4e-04", "5.6e-04",  "-inS2",    "-1.0e-03", "5.2e-04",
                      "-5.1e-04", "-2.3e-04", "8.5e-04",  "-outA",    "a"};
const Args analysis =
    Args{"-anPdb", "-inS", "-2e-3", "1e-3", "5e-4", "4e-4", "3e-4", "-outP", "report"} + structure + turned;
const Args twoTables = {"-anDc", "-inD1", "../in/d.tab", "-inD2", "../in/d2.tab", "-outD", "fit.tab"};
const Args grid3d = {"-3D", "-pot3D", "../in/grid.txt",
                     "-nX", "10",     "-nY",
                     "10",  "-nZ",    "6",
                     "-dX", "10",     "-dY",
                     "10",  "-dZ",    "10",
                     "-z1", "1",      "-zN",
                     "6"};
const Args ensemble = Args{"-stTrelmGrid", "-pdb",    "../in/two.pdb", "-inp",    "../in/c.inp", "-inD",
                           "../in/d.tab",  "-H",      "-ave",          "fit.tab", "-flex",       "log",
                           "-dcEns",       "all.tab", "-outE",         "states",  "-outEAx",     "axes"} +
                      turned + coarse;

} // namespace

const std::vector<SmallRun> &smallRuns()
{
    static const std::vector<SmallRun> runs = {
        {"version", {"-version"}},
        {"bestFit", fit, "ALL"},
        {"bestFitToStdout", {"-bestFit", "-pdb", "../in/m.pdb", "-H", "-inD", "../in/d.tab"}},
        {"bestFitNofixed", fit + Args{"-nofixed"}},
        {"bestFitWeights", fit + Args{"-w", "1", "2", "-atom", "N", "H*", "-incl", "-stray"}, "DEBUG"},
        {"mcDc", mapping + Args{"-mcDc", "-nAdjustMc", "5"}},
        {"mcStruc", mapping + Args{"-mcStruc", "-nCone", "2"}},
        {"mcStrucAngles", mapping + Args{"-mcStruc", "-nCone", "2", "-angNoise"}},
        {"jack", mapping + Args{"-jack"}},
        {"exhaust", search + Args{"-exhaust"}},
        {"exhaustSel", search + Args{"-exhaustSel", "-nSel", "3"}},
        {"rand", search + Args{"-rand", "-map", "20"}},
        {"stTrelm", Args{"-stTrelm"} + steric},
        {"stTrelmRod", Args{"-stTrelm", "-pf1"} + steric},
        {"stTrelmSet", Args{"-stTrelm", "-nosurf", "-rA", "2"} + steric},
        {"stTrelmGrid3D", Args{"-stTrelm", "-nopkaDef"} + steric + grid3d},
        {"stTrelmFree", Args{"-stTrelmFree", "-pdbF", "../in/free.txt", "-outA", "a"} + coarse},
        {"stTrelmGrid", Args{"-nopkaDef"} + ensemble},
        {"stTrelmGridStates", Args{"-nopkaDef", "-inE", "../in/states"} + ensemble},
        {"stTrelmGridCharged", Args{"-el"} + ensemble},
        {"elTrelm", Args{"-elTrelm"} + steric},
        {"elTrelmRod", Args{"-elTrelm", "-pf1", "-pot", "../in/pot.txt"} + steric},
        {"elTrelm3D", Args{"-elTrelm"} + steric + grid3d},
        {"elTrelmDipole", Args{"-elTrelm", "-charmm", "-dipole"} + steric},
        {"elTrelmFree", Args{"-elTrelmFree", "-elInfo", "-outPka", "pka"} + structure},
        {"elTrelmGrid", Args{"-elTrelmGrid", "-pka", "../in/pka.txt", "-elInfo"} + structure},
        {"csSim", Args{"-csSim", "-inp", "../in/c.inp"} + structure},
        {"asRan", Args{"-asRan"} + structure},
        {"daHist", Args{"-daHist"} + magnitude},
        {"daHistFit", Args{"-daHist", "-nFit", "2"} + magnitude},
        {"daMl", Args{"-daMl", "-incDa", "2", "-incR", "0.2"} + magnitude},
        {"daMlMap", Args{"-daMl", "-mapMl", "-incDa", "2", "-incR", "0.2"} + magnitude},
        {"daFlex", Args{"-daFlex", "-nRun", "4", "-nSel", "8"} + magnitude},
        {"anA", tensors},
        {"anASum", tensors + Args{"-add"}},
        {"anDc", twoTables},
        {"anDcSum", twoTables + Args{"-add", "-c1", "1"}},
        {"anPdb", analysis},
        {"anPdbCharges", analysis + Args{"-el"}},
        {"anPdbUser", analysis + Args{"-user"}},
        {"struc", Args{"-struc"} + structure + table + turned},
        {"strucAngles", Args{"-struc", "-angNoise"} + structure + table + turned},
        {"conv", Args{"-conv", "-trelm"} + table},
        {"convXplor", Args{"-conv", "-xplor", "-dcNoise"} + table},
        {"convRosetta", Args{"-conv", "-rosetta"} + table},
        {"convToStdout", {"-conv", "-inD", "../in/d.tab"}},
    };
    return runs;
}

void writeSmallInputs(const std::filesystem::path &folder)
{
    const std::string molecule = twoDomains(8, 30.0);
    const std::pair<const char *, std::string> files[] = {
        {"m.pdb", molecule},
        {"two.pdb", molecule},
        {"c.inp", configuration},
        {"d.tab", couplings("ubiquitin/bicelle_hn.tab", 8)},
        {"d2.tab", couplings("ubiquitin/bicelle2_hn.tab", 8)},
        {"long.tab", couplings("ubiquitin/bicelle_hn.tab", 30)},
        {"types.tab", couplings("ubiquitin/bicelle_backbone.tab", 8)},
        {"free.txt", firstLines("ubiquitin/heavy_atoms.txt", 60)},
        {"pot.txt", firstLines("ubiquitin/rod_potential.txt", 301)},
        {"grid.txt", gridFile()},
        {"states", "0 0 0\n0 20 0\n10 30 40\n"},
        {"pka.txt", "1 pKa terminus 7.9\n6 pKa NZ 10.5\n"},
    };
    for (const auto &[name, text] : files)
        std::ofstream(folder / name, std::ios::binary) << text;
}
