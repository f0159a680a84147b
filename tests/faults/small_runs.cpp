#include "faults/small_runs.h"

#include "common/cylinder_grid.h"
#include "common/file_text.h"
#include "simulation/two_domains.h"

#include <zlib.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string_view>

namespace {

/// The lines of a coupling table above its rows, and the rows of residues up to `last`.
std::string couplings(const std::string &name, int last)
{
    std::istringstream lines(fileText(TRELM_EXAMPLES "/" + name));
    std::string text;
    for (std::string line; std::getline(lines, line);)
        if (std::atoi(line.c_str()) <= last && !line.starts_with("REMARK Values"))
            text += line + "\n";
    return text;
}

/// The couplings of an archive file that has them in residues 2 to 8: its rows begin with their number.
std::string archiveCouplings()
{
    std::istringstream lines(fileText(TRELM_EXAMPLES "/formats/bicelle_hn.nef"));
    std::string text;
    for (std::string line; std::getline(lines, line);)
        if (std::atoi(line.c_str()) <= 7)
            text += line + "\n";
    return text;
}

/// The atoms of a PDB file as a loop of mmCIF.
std::string asMmcif(const std::string &pdb)
{
    std::istringstream lines(pdb);
    std::string text = "data_m\nloop_\n";
    for (const char *tag : {"group_PDB", "id", "label_atom_id", "auth_comp_id", "auth_asym_id", "auth_seq_id",
                            "Cartn_x", "Cartn_y", "Cartn_z"})
        text.append("_atom_site.").append(tag).append("\n");
    for (std::string line; std::getline(lines, line);)
        if (line.starts_with("ATOM"))
            text += line.substr(0, 54) + "\n";
    return text;
}

void writePacked(const std::filesystem::path &name, const std::string &text)
{
    gzFile file = gzopen(name.c_str(), "wb");
    gzwrite(file, text.data(), static_cast<unsigned>(text.size()));
    gzclose(file);
}

/// So many couplings, with such errors, that a likelihood goes through transforms.
std::string denseCouplings()
{
    std::string text = "VARS RESID_I ATOMNAME_I RESID_J ATOMNAME_J D DD\nFORMAT %d %s %d %s %f %f\n";
    for (int i = 0; i < 101; ++i)
        text += "2 H 2 N " + std::to_string(0.1 * (i - 50)) + " 1.7\n";
    return text;
}

/// A peak without a coupling: an assignment can put another's on its residue, which makes a row of its own.
std::string withoutRow(std::string text, const std::string &start)
{
    const std::size_t at = text.find("\n" + start);
    return text.erase(at, text.find('\n', at + 1) - at);
}

std::string firstLines(const std::string &name, int count)
{
    std::istringstream lines(fileText(TRELM_EXAMPLES "/" + name));
    std::string text, line;
    for (int i = 0; i < count && std::getline(lines, line); ++i)
        text += line + "\n";
    return text;
}

constexpr const char *configuration =
    "START_RESID_1: 1\nEND_RESID_1: 8\nSTART_RESID_2: 101\nEND_RESID_2: 108\nSTART_RES_ANGLE_1: 1\n"
    "END_RES_ANGLE_1: 8\nSTART_RES_ANGLE_2: 101\nEND_RES_ANGLE_2: 108\nORIGIN_DOM1: 5\nENSEMBLE_DENSITY: 4\n"
    "BETA_H: 40\n";

const std::string structure = " -pdb ../in/m.pdb -H", table = " -inD ../in/d.tab -outD fit.tab";
const std::string turned = " -pdbRot t.pdb", coarse = " -dot 12 -digPsi 4 -dGrid 2";
const std::string fit = "-bestFit" + structure + table + turned;
const std::string mapping = fit + " -map 6 -outDa da -outMap map -outAng ang -outA saupe -outFail fail";
const std::string search = "-bestFit -inD ../in/types.tab -outD fit.tab" + structure + turned;
const std::string steric = structure + table + turned + coarse;
const std::string magnitude = " -inD ../in/long.tab -outD fit.tab -outSc scores -outCol columns";
const std::string tensors = "-anA -inS1 -5.6e-04 7.2e-05 2.7e-05 -1.4e-04 5.6e-04 "
                            "-inS2 -1.0e-03 5.2e-04 -5.1e-04 -2.3e-04 8.5e-04 -outA a";
const std::string analysis = "-anPdb -inS -2e-3 1e-3 5e-4 4e-4 3e-4 -outP report" + structure + turned;
const std::string twoTables = "-anDc -inD1 ../in/d.tab -inD2 ../in/d2.tab -outD fit.tab";
const std::string grid3d = " -3D -pot3D ../in/grid.txt -nX 10 -nY 10 -nZ 6 -dX 10 -dY 10 -dZ 10 -z1 1 -zN 6";
const std::string ensemble =
    " -stTrelmGrid -pdb ../in/two.pdb -inp ../in/c.inp -inD ../in/d.tab -H -ave fit.tab "
    "-flex log -dcEns all.tab -outE states -outEAx axes" +
    turned + coarse;

} // namespace

const std::vector<SmallRun> &smallRuns()
{
    static const std::vector<SmallRun> runs = {
        {"version", "-version"},
        {"bestFit", fit, "ALL"},
        {"bestFitToStdout", "-bestFit -pdb ../in/m.pdb -H -inD ../in/d.tab"},
        {"bestFitNofixed", fit + " -nofixed"},
        {"bestFitWeights", fit + " -w 1 2 -atom N H* -incl -stray", "DEBUG"},
        {"mcDc", mapping + " -mcDc -nAdjustMc 5"},
        {"mcStruc", mapping + " -mcStruc -nCone 2"},
        {"mcStrucAngles", mapping + " -mcStruc -nCone 2 -angNoise"},
        {"jack", mapping + " -jack"},
        {"exhaust", search + " -exhaust"},
        {"exhaustSel", search + " -exhaustSel -nSel 3"},
        {"rand", search + " -rand -map 20"},
        {"stTrelm", "-stTrelm" + steric},
        {"stTrelmRod", "-stTrelm -pf1" + steric},
        {"stTrelmSet", "-stTrelm -nosurf -rA 2" + steric},
        {"stTrelmGrid3D", "-stTrelm -nopkaDef" + steric + grid3d},
        {"stTrelmFree", "-stTrelmFree -pdbF ../in/free.txt -outA a" + coarse},
        {"stTrelmGrid", "-nopkaDef" + ensemble},
        {"stTrelmGridStates", "-nopkaDef -inE ../in/states" + ensemble},
        {"stTrelmGridCharged", "-el" + ensemble},
        {"elTrelm", "-elTrelm" + steric},
        {"elTrelmRod", "-elTrelm -pf1 -pot ../in/pot.txt" + steric},
        {"elTrelm3D", "-elTrelm" + steric + grid3d},
        {"elTrelmDipole", "-elTrelm -charmm -dipole" + steric},
        {"elTrelmFree", "-elTrelmFree -elInfo -outPka pka" + structure},
        {"elTrelmGrid", "-elTrelmGrid -pka ../in/pka.txt -elInfo" + structure},
        {"csSim", "-csSim -inp ../in/c.inp" + structure},
        {"asRan", "-asRan" + structure},
        {"daHist", "-daHist" + magnitude},
        {"daHistFit", "-daHist -nFit 2" + magnitude},
        {"daMl", "-daMl -incDa 2 -incR 0.2" + magnitude},
        {"daMlMap", "-daMl -mapMl -incDa 2 -incR 0.2" + magnitude},
        {"daMlDense",
         "-daMl -lDa -4 -incDa 2 -hR 0.1 -incR 0.2 -inD ../in/dense.tab -outD fit.tab -outSc scores"},
        {"daFlex", "-daFlex -nRun 4 -nSel 8" + magnitude},
        {"anA", tensors},
        {"anASum", tensors + " -add"},
        {"anDc", twoTables},
        {"anDcSum", twoTables + " -add -c1 1"},
        {"anPdb", analysis},
        {"anPdbCharges", analysis + " -el"},
        {"anPdbUser", analysis + " -user"},
        {"struc", "-struc" + structure + table + turned},
        {"strucAngles", "-struc -angNoise" + structure + table + turned},
        {"conv", "-conv -trelm" + table},
        {"convXplor", "-conv -xplor -dcNoise" + table},
        {"convRosetta", "-conv -rosetta" + table},
        {"bestFitNef", "-bestFit" + structure + " -inD ../in/d.nef.gz -medium 1 -outD fit.tab"},
        {"bestFitMmcif", "-bestFit -pdb ../in/m.cif -H -label -inD ../in/d.nef.gz -outD fit.tab"},
        {"convStar", "-conv -star -inD ../in/d.nef.gz -outD fit.tab"},
        {"convToStdout", "-conv -inD ../in/d.tab"},
    };
    return runs;
}

void writeSmallInputs(const std::filesystem::path &folder)
{
    const std::string molecule = twoDomains(8, 30.0);
    const std::pair<const char *, std::string> files[] = {
        {"m.pdb", molecule},
        {"two.pdb", molecule},
        {"m.cif", asMmcif(molecule)},
        {"c.inp", configuration},
        {"d.tab", couplings("ubiquitin/bicelle_hn.tab", 8)},
        {"d2.tab", couplings("ubiquitin/bicelle2_hn.tab", 8)},
        {"long.tab", couplings("ubiquitin/bicelle_hn.tab", 30)},
        {"dense.tab", denseCouplings()},
        {"types.tab",
         withoutRow(couplings("ubiquitin/bicelle_backbone.tab", 8), "    7    THR      H     6")},
        {"free.txt", firstLines("ubiquitin/heavy_atoms.txt", 60)},
        {"pot.txt", firstLines("ubiquitin/rod_potential.txt", 301)},
        {"grid.txt", cylinderGrid(10, 10)},
        {"states", "0 0 0\n0 20 0\n10 30 40\n"},
        {"pka.txt", "1 pKa terminus 7.9\n6 pKa NZ 10.5\n"},
    };
    for (const auto &[name, text] : files)
        std::ofstream(folder / name, std::ios::binary) << text;
    writePacked(folder / "d.nef.gz", archiveCouplings());
}
