// Runs that must fail, and say why; and those that go on with a word.
#include "cli/run_program.h"
#include "cli/two_domains_run.h"
#include "common/cylinder_grid.h"
#include "simulation/two_domains.h"

#include <gtest/gtest.h>

#include <ostream>
#include <sstream>

namespace {

struct FailureCase {
    std::string options;   ///< of an option that the group gives as well these count
    std::string told;      ///< once on the error stream
    std::string text = ""; ///< of the file that the cases of the group bring
    int status = 1;
};

/// Runs that have most of their options in common.
struct Failures {
    const char *name;
    std::string options;
    const char *file = "";        ///< that each case brings
    Files files = {};             ///< that all have
    std::string told = {};        ///< by every run of status 1, once
    const char *result = nullptr; ///< what a run of status 1 does not leave behind
    bool saysNothingElse = false; ///< beside the banner, the tables it has read and the balance
    std::vector<FailureCase> cases = {};
};

/// For the messages of the tests.
std::ostream &operator<<(std::ostream &out, const Failures &failures)
{
    return out << failures.name;
}

const std::string pdb = " -pdb ubi/1d3z_model1.pdb ", amides = " -inD ubi/bicelle_hn.tab ";
const std::string columns = "VARS RESID_I RESNAME_I ATOMNAME_I RESID_J RESNAME_J ATOMNAME_J D DD W\n";
const std::string head = columns + "FORMAT %5d %6s %6s %5d %6s %6s %9.3f %9.3f %.2f\n";

Failures inputs()
{
    Failures f{"Inputs", "-bestFit -outD fit.tab -pdbRot t.pdb -H" + pdb + amides, "x.pdb"};
    f.told = "REMARK Memory Allocation Status.";
    f.cases = {
        {"-pdb none.pdb", "PDB Error opening PDB file none.pdb\nError reading PDB input none.pdb\n"},
        {"-inD none.tab", "RdTable File open error: none.tab.\nError reading DC input none.tab\n"},
        {"-pdb /", "Error reading PDB input /\n"},
        {"-inD /", "Error reading DC input /\n"},
        {"-pdb /dev/zero", "Error reading PDB input /dev/zero\n"}, // a line without an end
        {"-inD /dev/zero", "Error reading DC input /dev/zero\n"},
        {"-pdb /dev/null", "PDB Warning: no ATOM line in /dev/null: is it a PDB file?\n/dev/null, 0 Atoms"},
        {"-pdb x.pdb", "trelm: x.pdb, line 4: the value ATOM has no tag.\nError reading PDB input x.pdb\n",
         "# by hand\n\ndata_1D3Z\nATOM 1 N N . MET A 1 1 ? 52.923 -90.016 8.509\n"},
        {"-inD /dev/null", "RdTable Error: no entries in /dev/null\nError reading DC input /dev/null\n"},
        {"-inD ubi/1d3z_model1.pdb", "Error reading DC input"},
        {"-pdb " + std::string(5000, 'n'), "PDB Error opening PDB file n"},
        {"-pdb x.pdb", "Error reading PDB input x.pdb\n",
         "ATOM      1  CA  ALA A   1         nan   1.000   1.000\n"},
        {"-outD /dev/full", "Error writing /dev/full.\n"},
        {"-aRegex -atom H(",
         "PDB Warning: the regular expression H( is faulty and selects nothing: unmatched ().\n", "", 0},
        {"-anA -inS1 1 2 3 4",
         "GORVAT Error: -inS1 option requires 5 values.\nTRELM Error extracting command-line arguments.\n"},
    };
    return f;
}

Failures tables()
{
    const std::string row = "2 GLN H 2 GLN N -8.170 1.000 1.00\n",
                      odd = "2 GLN H 2 GLN X1 -8.170 1.000 1.00\n";
    const std::string unknown = "Dipolar Interaction - Unknown atom X1.\n";
    const std::string longName = "2 GLN ABCDEFGHIJKLMNOPQRST 2 GLN N -8.170 1.000 1.00\n";
    Failures f{"Tables", "-bestFit -outD fit.tab -pdbRot t.pdb -H -inD in.tab" + pdb, "in.tab"};
    f.told = "REMARK Memory Allocation Status.";
    f.result = "fit.tab";
    f.cases = {
        {"", "RdTable Error: no variables found.\n", head.substr(columns.size()) + row},
        {"", "RdTable Error: VARS/FORMAT mismatch:\n", columns + "FORMAT %5d %6s\n" + row},
        {"", "RdTable Error: VARS/TOLERANCE mismatch:\n", head + "TOLERANCE 1\n" + row},
        {"", "RdTable Error: bad format", "VARS RESID_I D\nFORMAT %d %z\n1 2\n"},
        {"", "RdTable Error: no entries in", "REMARK nothing\n"},
        {"", "Error reading DC input", head + std::string(3, '\0') + row},
        {"", "RdTable Warning: Bad F-Item 7:\n", head + "2 GLN H 2 GLN N x 1.000 1.00\n", 0},
        {"", "RdTable Warning: Bad F-Item 9:\n", head + "2 GLN H 2 GLN N -8.170 1.000\n", 0},
        {"",
         "RdTable Warning: in.tab has no FORMAT line: all its columns are read as numbers.\n"
         "RdTable Warning: Bad F-Item 2:\n",
         columns + row},
        {"", unknown, head + row + odd}, // the last row decides
        {"", unknown, head + odd + row, 0},
        {"", "PDB Error: string item too long: QRST\n", head + longName + row, 0},
    };
    return f;
}

Failures mappings()
{
    const std::string four =
        "trelm: 4 couplings for 5 unknowns: degrees of freedom -1, condition number inf, no tensor"
        " can be found (add couplings, or hold Da and Dr with -dadr)\n"
        "TRELM Error: Only 4 couplings available. Exiting ....\n";
    const std::string moreFits = ": more fits than there are can not pass.\n", step = "trelm: -incAdjustMc ",
                      positive = ": the step of the error scale must be positive.\n",
                      small = ": too small a step from a cone of ";
    const std::string noErrors =
        head + "2 GLN H 2 GLN N -8.17 0 1\n3 ILE H 3 ILE N 8.271 0 1\n4 PHE H 4 PHE N 10.489 0 1\n"
               "5 VAL H 5 VAL N 9.871 1 1\n6 LYS H 6 LYS N 9.152 1 1\n7 THR H 7 THR N 3.7 0 1\n";
    Failures f{"Mapping",
               "-bestFit -outD out.tab -H -map 5 -outDa da -outMap map -outAng ang -outFail fail" + pdb +
                   amides,
               "in.tab"};
    f.told = "Matrix: error in best-fit of data.\n";
    f.saysNothingElse = true;
    f.cases = {
        {"-mcDc -d1 2 -dN 5", four},
        {"-mcStruc -d1 2 -dN 5", four},
        {"-mcDc -fracAdjustMc 1.0", "trelm: -fracAdjustMc 1 of -nAdjustMc 100" + moreFits},
        {"-mcDc -noerr -fracAdjustMc 1.5", "trelm: -fracAdjustMc 1.5 of -nAdjustMc 100" + moreFits},
        {"-mcDc -fracAdjustMc 1e30", "trelm: -fracAdjustMc 1e+30 of -nAdjustMc 100" + moreFits},
        {"-mcDc -nAdjustMc 0", "trelm: -nAdjustMc 0: the search needs one fit at least.\n"},
        {"-mcDc -noautoMc -kAdjustMc 3e38",
         "DC Error: the order matrix is no finite number: look at D, DD, W and the tensor options.\n"},
        {"-mcDc -incAdjustMc 0", step + "0" + positive},
        {"-mcDc -incAdjustMc -0.1", step + "-0.1" + positive},
        {"-mcDc -incAdjustMc 1e-30", step + "1e-30: too small a step from an error scale of 1.\n"},
        {"-mcDc -inD in.tab",
         "trelm: in.tab: DD is 0 in 4 of 6 rows, which N counts and a fit hardly sees: 2 H - 2 N, 3 H - 3 N, "
         "4 H - 4 N and 1 more (write their errors)\n"
         "trelm: 6 couplings for 5 unknowns: degrees of freedom 1, condition number inf, a small Q proves "
         "nothing "
         "(add couplings)\n"
         "trelm: -mcDc: the fit misses 4 couplings whose error (DD) is 0: no scale of the errors lets it "
         "pass."
         " See -noautoMc.\n",
         noErrors},
        {"-mcDc -outMap /none/x", "TRELM Error opening log file for error space mapping /none/x\n"},
        {"-mcDc -map 20 -outDa /dev/full", "Error writing /dev/full.\n"},
        {"-jack -outAng /none/x", "TRELM Error opening log file for Angular distribution /none/x.\n"},
        {"-mcStruc -incCone 0", "trelm: -incCone 0: the step of the cone must be positive.\n"},
        {"-mcStruc -incCone 1e-30", "trelm: -incCone 1e-30" + small + "0 degrees.\n"},
        {"-mcStruc -lCone -1e30",
         "Warning: -lCone -1e+30: a cone below 0 degrees moves no atom.\ntrelm: -incCone 0.25" + small +
             "-1e+30 degrees.\n"},
        {"-mcStruc -digCone 0", "trelm: -digCone 0: a cone needs at least one position.\n"},
    };
    return f;
}

Failures assignments()
{
    const std::string none = "Warning: no assignment was found for Da ";
    Failures f{"Assignment", "-bestFit -outD a.tab -H -pdbRot turned.pdb -inD assignment/lysines.tab" + pdb};
    f.cases = {
        {"-exhaust -fixAa 3 5", "Error: Error in length of permutation.\n"},
        {"-exhaust -d1 900 -dN 901", "Matrix: error in best-fit of data.\n"},
        {"-exhaust -lDa 200 -hDa 300 -lR 0.1 -hR 0.4", none + "[200.000,300.000] R [0.100 0.400]!\n", "", 0},
        {"-rand -map 0", none + "[-25.000,-3.000] R [0.000 0.700]!\n", "", 0},
        {"-exhaustSel -nSel 1", "Warning: only subset of 2 to 7 peaks allowed!", "", 0},
        {"-exhaustSel -nSel 8", "Warning: only subset of 2 to 7 peaks allowed!", "", 0},
    };
    return f;
}

Failures simulations()
{
    Failures f{"Simulation", "-stTrelm -outD out.tab -H" + pdb + amides};
    f.result = "out.tab";
    f.cases = {
        {"-dot 0", "trelm: -dot 0: the number of orientation points must be positive.\n"},
        {"-dot -5", "trelm: -dot -5: "},
        {"-dot 50000", "trelm: -dot 50000 gives 50412 orientation points, the limit "},
        {"-dot 2147483647", "the limit is 40001.\n"},
        {"-digPsi 0", "trelm: -digPsi 0: "},
        {"-digPsi 2147483647", "trelm: -digPsi 2147483647 with 122 "},
        {"-dGrid 0", "trelm: -dGrid 0: the step must be positive.\n"},
        {"-dGrid -0.2", "trelm: -dGrid -0.2: "},
        {"-dGrid 0.002", "WARNING: concentration too low - magnitude of alignment tensor incorrect\n", "", 0},
        {"-wv 0", "trelm: -wv 0: "},
        {"-wv -0.1", "trelm: -wv -0.1: "},
        {"-wv 1.5", "WARNING: -wv 1.5: the concentration is a fraction, above 1 no sample has it.\n", "", 0},
        {"-pf1 -rM 0", "trelm: -rM 0: a rod needs a radius.\n"},
        {"-rM -3e38 -rA -3e38", "trelm: -rM -3e+38, -rA -3e+38: the radii are out of range.\n"},
        {"-pf1 -rM -5", "WARNING: -rM -5: no liquid crystal has such a radius.\n", "", 0},
        {"-rM 0", "WARNING: -rM 0: no liquid crystal has such a radius.\n", "", 0},
        {"-pf1 -rA -40", "WARNING: -rA -40: no atom has such a radius.\n", "", 0},
        {"-3D -el", "trelm: -stTrelm -3D knows no charges"},
    };
    return f;
}

Failures withoutStructure()
{
    std::string tooMany;
    for (int i = 0; i < 5000; ++i)
        tooMany += "ATOM 1 N MET 1 1.0 2.0 3.0\n";
    const std::string read = "-stTrelmFree -pdbF atoms.txt";
    Failures f{"WithoutStructure", "-outD out.tab -outA out.tab", "atoms.txt"};
    f.result = "out.tab";
    f.cases = {
        {"-stTrelm", "trelm: error reading selection of atoms.\n"},
        {"-nosurf", "simulateAlignment: no atoms selected.\n"},
        {"-stTrelmFree", "matrix: error in ssiaFree.\n"},
        {"-stTrelmFree -pdbF none", "readPDBfree File open error: none.\n"},
        {read, "readPDBfree: atoms.txt holds no ATOM record.\n", "END\n"},
        {read, "readPDBfree: record 1 of atoms.txt is not complete", "ATOM 1 N MET 1 2.0 3"},
        {read, "readPDBfree: record 1 of ", "ATOM 1 N MET 1 x y z\n"},
        {read, "readPDBfree: record 1 of ", "ATOM 1 N MET 1 nan 1 1\n"},
        {read, "error in readPDBfree: too many atoms.\n", tooMany},
        {"-anA -rotID 4",
         "trelm: -rotID 4: the four solutions for the hinge axis have the numbers 0 to 3.\n"},
    };
    return f;
}

Failures charges()
{
    const std::string analysis = "trelm: error in analysis of PDB.\n";
    const std::string noAtoms =
        "WARNING: Zero atoms for inertia tensor selected.trelm: error in calcInertia.";
    Failures f{"Charges", pdb, "in.txt"};
    f.cases = {
        {"-elTrelmFree -pka p.txt", "chargeSetup File open error: p.txt.\n"},
        {"-elTrelmFree -pka in.txt", "Error: wrong format of pka file.\nLine:6 charge NZ", "6 charge NZ\n"},
        {"-elTrelmFree -pka in.txt", "1 Charges/pka Values, Net Charge 1.000", "6 charge NZ 1.0\n", 0},
        {"-elTrelmFree -pka in.txt",
         "WARNING:   There is no residue 900 or the proper atom in the given PDB file!\n",
         "900 pKa default 4.0\n6 charge NZ 1.0\n", 0},
        {"-csSim -wv 2", "WARNING: -wv 2: the concentration is a fraction, above 1 no sample has it.\n", "",
         0},
        {"-csSim -wv 0", "trelm: -wv 0: the concentration is a fraction, above 0.\n"},
        {"-csSim -outPka /none/p", "TRELM Error opening file for pka output /none/p\n"},
        {"-csSim -inp c.txt", "readConfig File open error: c.txt.\n"},
        {"-csSim -inp in.txt", "Error: Input data in auto file have wrong format\nLine:BETA_L: x",
         "BETA_L: x\n"},
        {"-csSim -inp in.txt", "Error: Wrong input parameter in auto file", "NO_KEY: 1\nBETA_H: 20\n", 0},
        {"-anPdb -outP /none/report", "TRELM Error opening output file /none/report\n" + analysis},
        {"-anPdb -nosurf -pdb in.txt", noAtoms + analysis,
         "ATOM      1  H   ALA A   1       1.000   1.000   1.000\n"},
        {"-anPdb -outP /dev/full", "Error writing /dev/full.\n" + analysis},
        {"-anPdb -inS 1e300 1e300 1e300 1e300 1e300", "trelm: error in analyzeSaupe.\n" + analysis},
    };
    return f;
}

Failures electrostatics()
{
    const std::string grid = "-3D -pot3D grid.txt -nX 20 -nY 20 -nZ 6 -dX 5 -dY 5 -dZ 5 -z1 1 -zN 6 -dot 12";
    Failures f{"Electrostatics", "-elTrelm -outD out.tab -H" + pdb + amides, "table.txt"};
    f.files = {{"grid.txt", cylinderGrid(20, 5)}};
    f.cases = {
        {"-pf1 -pot none",
         "readPotential File open error: none.\nERROR Reading of 1D potential not successful.\n"},
        {"-pf1 -pot table.txt", "Line:0.1 x\n", "0.0 1\n0.1 x\n"},
        {"-pot3D none " + grid, "ERROR: Reading of 3D potential not successful.\n"},
        {"-nacl 0", "sma: the sum of the weights at this concentration and grid, nan, "},
        {"-3D -dX 0", "trelm: the 3D grid has a spacing of 0: see -dX, -dY, -dZ.\n"},
        {"-pf1 -wv 1e-20", "steps to the next rod.\n"},
        {"-pf1 -rA -1e30", "steps to the next rod.\n"},
        {"-pdbRot /none/face.pdb", "trelm: error in iFacePDB.\n"},
        {"-chSel -nopkaDef", "simulateAlignment: no atoms selected.\n"},
    };
    return f;
}

/// What is wrong with the files of states, and with those that a run writes.
Failures ensembles()
{
    std::string tooMany;
    for (int i = 0; i < 39999; ++i)
        tooMany += "0 0 0\n";
    const std::string state = "0 0 0\n";
    Failures f{"Ensembles", "-inE states -nopkaDef " + ensembleLine, "states"};
    f.files = {{"m.pdb", twoDomains(76, 40.0)}, {"c.inp", twoDomainsConfig}};
    f.result = "ave.tab";
    f.cases = {
        {"", "Error: Input data in file with measured dipolar couplings have wrong format\n", "0 0 x\n"},
        {"", "Line:0 0\nerror in readEnsemble.\nmatrix: setupEnsemble error", "0 0 0\n0 0\n"},
        {"", "error in readEnsemble: digitization of ensemble too high.\n", tooMany},
        {"-inE none", "RdTable File open error: none.\n"},
        {"-3D", "trelm: -stTrelmGrid knows the models -bic and -pf1 only.\n", state},
        {"-pot x", "trelm: -stTrelmGrid reads no potential: -pot is not used.\n", state, 0},
        {"-el -kPot 0 -dGrid 1", "Warning: -kPot 0: the potential is divided by 0.\n", state + state, 0},
        {"-flex /none/log", "TRELM Error opening log file for grid search /none/log\n", state},
        {"-flex /dev/full", "Error writing /dev/full.\n", state},
        {"-outE /none/e", "TRELM Error opening ensemble monitoring file /none/e\n", state},
        {"-pdbRot /none/p", "PDB Error opening PDB file /none/p\n", state},
    };
    return f;
}

Failures domains()
{
    const std::string noClashAtoms = "Error in chkDomClash: zero atoms selected."
                                     "ensembleAlignment: error in chkDomClash.\n"
                                     "matrix: ensembleAlignment error occured.\n";
    const std::string noAtoms = "Error in initOrient: zero atoms selected.matrix: error in ";
    const std::string c = twoDomainsConfig,
                      made = "-ave ave.tab -stTrelmGrid -pdb m.pdb -H -inp c.inp -nopkaDef";
    const std::string all = "-inE states -nopkaDef " + ensembleLine;
    Failures f{"Domains", "", "c.inp"};
    f.files = {{"m.pdb", twoDomains(76, 40.0)}, {"states", "0 0 0\n"}};
    f.result = "ave.tab";
    f.cases = {
        {made, "matrix: zero number of ensemble states.\n", c + "BETA_L: 181\nBETA_H: 190\n"},
        {made, "setupEnsemble: unsp error occured.\n", c + "ENSEMBLE_DENSITY: 0\n"},
        {made, "setupEnsemble: ensemble too big.\n", c + "ENSEMBLE_DENSITY: 40000\nBETA_H: 180\n"},
        {"-stTrelmGrid -ave ave.tab", noAtoms + "initOrient.\n"},
        {all, noClashAtoms, c + "START_RESID_1: 300\nEND_RESID_1: 310\n"}, // no domain 1
        {all, noClashAtoms, c + "END_RESID_1: 999\n"},                     // nothing beside it
        {all, noClashAtoms, c + "START_RESID_1: 76\nEND_RESID_1: 1\n"},
        {all, "Error in positionDomain: zero atoms selected.matrix: error in shiftMol2Domain.\n",
         c + "CENTER_PIVOT: 0\nSTART_RESID_2: 300\nEND_RESID_2: 310\n"},
        {all, "Warning: no atoms in residues 300 to 176 of domain 2: nothing of it is turned.\n",
         c + "DOMAIN_ANGLE_VAR: 1\nORIGIN_DOM2: 150\nSTART_RESID_2: 300\n", 0},
        {all, noAtoms + "initOrient.\n", c + "START_RES_ANGLE_1: 300\nEND_RES_ANGLE_1: 310\n"},
        {all, noAtoms + "calcInertiaSel.", c + "START_RES_ANGLE_2: 300\nEND_RES_ANGLE_2: 310\n"},
        {all, "initOrient: ORIGIN_DOM1: residue 99 has no atom CA.\n", c + "ORIGIN_DOM1: 99\n"},
        {all, "initOrient: ORIGIN_DOM1: residue 0 has no atom CA.\n", c + "DOM_ANG_GAMMA: 10\n"},
        {all, "initOrient: ORIGIN_DOM2: residue 0 has no atom CA.\n", c + "DOMAIN_ANGLE_VAR: 1\n"},
    };
    return f;
}

Failures likelihoods()
{
    Failures f{"Likelihood", "-daMl -outD out.tab" + amides};
    f.told = "trelm: error in getMlDabR.\n";
    f.result = "out.tab";
    f.cases = {
        {"-incDa 0 -lDa -3", "Error: the grid of Da and R has a step of 0.\n"},
        {"-incDa 0.01", "Error: the grid of Da and R has 154000 points, the limit is 20000.\n"},
        {"-lDa -60 -incDa 1",
         "Error: the patterns up to Da -59.000 Hz, R 0.690 do not fit the axis of 81.92 Hz.\n"},
        {"-d1 900 -dN 901", "trelm: no coupling is left to estimate a tensor from.\n"},
        {"-outSc /none/s", "TRELM Error opening output file /none/s\n"},
    };
    return f;
}

/// A table of N-H couplings: each with its error, apart by commas.
std::string amidesOf(const std::string &couplings, const std::string &weight = "1.00")
{
    std::string text = head;
    std::istringstream rows(couplings);
    int residue = 0;
    for (std::string row; std::getline(rows, row, ',');) {
        const std::string id = std::to_string(++residue);
        text += id + " ALA H " + id + " ALA N " + row + " " + weight + "\n";
    }
    return text;
}

const std::string five = "-18.0 0.5,2.0 0.5,7.0 0.5,7.1 0.5,12.0 0.5", some = amidesOf(five);
const std::string zeroErrors = amidesOf("-18.0 0.0,2.0 0.0,7.0 0.0");
const std::string noMeanError = "Error: The mean error of the couplings is not above 0.\n";
const std::string smallError = "Measurement error too small.\n       ==> 3-parameter fit not possible.\n";

/// An estimate of Da and R without a structure, and what all of them refuse.
Failures magnitudes(const char *name, const std::string &mode, const std::vector<FailureCase> &more)
{
    const std::string none = "trelm: no coupling is left to estimate a tensor from.\n";
    Failures f{name, mode + " -inD in.tab -outD out.tab -outSc sets.txt -outCol map.txt", "in.tab"};
    f.told = "trelm: error in getHistDabR.\n";
    f.result = "out.tab";
    f.cases = {
        {"", "Error reading DC input in.tab\n"},
        {"-s1 50 -sN 60", none, some},
        {"-aD1 CA", none, some},
        {"", none, amidesOf("999.0 1.0,950.0 1.0")}, // only marks
        {"", "Error: All couplings are 0, there is no tensor to find.\n", amidesOf("0.0 1.0,0.0 1.0")},
        {"", "DC Error: D is no finite number in row 1 of in.tab.\n", amidesOf("-inf 1.0,2.0 1.0")},
        {"", "Error: The coupling of row 1 times its weight is out of range.\n", amidesOf(five, "1e38")},
        {"-noave", smallError, amidesOf("-18.0 1e-3,2.0 1e-3,7.0 1e-3")},
        {"-bin 300", "Error: Too many folders (300) for histogram.\n", some},
    };
    f.cases.insert(f.cases.end(), more.begin(), more.end());
    return f;
}

Failures histograms()
{
    const std::string one =
        "Error: The extremes of the couplings are one value, there is no tensor to fit.\n";
    const std::string tiny = amidesOf("-18.0 1e-9,2.0 1e-9,7.0 1e-9");
    return magnitudes("Histogram", "-daHist",
                      {
                          {"", smallError, zeroErrors},
                          {"-nFit 2", noMeanError, zeroErrors},
                          {"-noave -bin 9", noMeanError, zeroErrors},
                          {"-noave", "Error: Too many folders (1000000001) for histogram.\n", tiny},
                          {"", "Error: One coupling has no distribution.\n", amidesOf("-18.0 0.5")},
                          {"", one, amidesOf("10.0 0.5,10.0 0.5,10.0 0.5,10.0 0.5")},
                          {"-nFit 2", one, amidesOf("-18.0 1e3,2.0 1e3,7.0 1e3,7.1 1e3,12.0 1e3")},
                          {"-outD /dev/full", "Error writing /dev/full.\n", some},
                      });
}

Failures motions()
{
    std::string many = "5.0 0.5";
    for (int i = 1; i < 45000; ++i)
        many += ",5.0 0.5";
    // By the larger one of their residues no row is in the window.
    const std::string crossed = head + "2 ALA C 3 ALA N 1.5 0.1 1.0\n1 ALA C 3 ALA H 2.5 0.1 1.0\n";
    const std::string noResidue =
        "motionHist: no residue of the window has a coupling.\nmotionHist: unsp error occured.\n";
    const std::vector<FailureCase> cases = {
        {"", noMeanError, zeroErrors},
        {"-nRun 1000001", "motionHist: -nRun 1000001: the number of sets is at most 1000000.\n", some},
        {"-nSel -1", "motionHist: -nSel -1: a set cannot have fewer than 0 residues.\n", some},
        {"", "motionHist: a coupling lies outside the frequency axis of 81.92 Hz.\n",
         amidesOf("-85.0 0.5,40.0 0.5")},
        {"-nFit 2", "motionHist: the mean error of a set, 3.420 Hz, is above 3.41 Hz.\n",
         amidesOf("-18.0 3.42,7.0 3.42")},
        {"-s1 -9000 -sN 15000", "motionHist: the window of residues -9000 to 15000 has more than 20000.\n",
         some},
        {"-nSel 0", "motionHist: the window of residues 1 to 45000 has more than 20000.\n", amidesOf(many)},
        {"-inc -s1 1 -sN 2", noResidue, crossed},
        {"-outSc /none/s", "TRELM Error opening output file /none/s\n", some},
        {"-outCol /none/m", "TRELM Error opening output file /none/m\n", some},
        {"-outSc /dev/full", "Error writing /dev/full.\n", some},
        {"-outCol /dev/full", "Error writing /dev/full.\n", some},
    };
    return magnitudes("Motion", "-daFlex", cases);
}

Failures comparisons()
{
    const std::string noTable = "RdTable File open error: none.tab.\nError reading DC input none.tab\n";
    const std::string first = "-anDc -inD1 ubi/bicelle_hn.tab ", both = first + "-inD2 ubi/bicelle_hn.tab ";
    const std::string one = "-anA -inS1 1 2 3 4 5 -outA o ";
    Failures f{"Comparison", ""};
    f.told = "Matrix: error in comparison of order matrices.\n";
    f.saysNothingElse = true;
    f.cases = {
        {"-anA -inS1 1 0 0 0 0 -inS2 1 0 0 0 0 -outA /dev/full",
         "trelm: solution 1 turns nothing: its hinge axis, and what goes by it, is no number\n"
         "Error writing /dev/full.\n"},
        {"-anA -inS1 1e300 0 0 0 0", "Matrix: error in analyzeSaupe.\n"},
        {"-anA -inS1 1e20 0 0 0 0", "Matrix: error in analyzeSaupe.\n"},
        {one + "-inS2 1 2 3 0 5 -div", "trelm: the combined order matrix is not finite.\n", "", 0},
        {one, "trelm: an order matrix is 0: it has no frame to compare.\n", "", 0},
        {"-inD1 none.tab " + both, noTable},
        {first + "-inD2 none.tab", noTable},
        {both + "-outD o -div -c1 -1e38 -c2 1e-10",
         "trelm: a combination of couplings is no finite number: look at -c1 and -c2.\n"},
        {first + "-inD2 ubi/bicelle_cacb.tab -outD o",
         "trelm: the two tables share no coupling of the selection.\n", "", 0},
        {first + "-inD2 ubi/bicelle_cacb.tab -outD o",
         "trelm: the two tables share no coupling of the selection.\n", "", 0},
        {both + "-outD no/o", "DC Error opening output file no/o\n", "", 0},
        {both + "-outD /dev/full", "Error writing /dev/full.\n"},
    };
    return f;
}

Failures conversions()
{
    const std::string notFinite = "trelm: with its weight or noise a coupling is no finite number.\n";
    Failures f{"Conversion", "-conv -inD own.tab", "in.tab"};
    f.files = {{"own.tab", some}};
    f.told = "trelm: error in conversion of table.\n";
    f.saysNothingElse = true;
    f.cases = {
        {"-inD none.tab", "RdTable File open error: none.tab.\nError reading DC input none.tab\n"},
        {"-outD no/o", "TRELM Error opening output file no/o\n"},
        {"-outD /dev/full", "Error writing /dev/full.\n"},
        {"-scale -inD in.tab -outD o", notFinite, amidesOf("-8.17 1.0", "3e38")},
        {"-trelm -outD no/o", "DC Error opening output file no/o\n", "", 0},
        {"-aD1 XX -outD o", "trelm: no coupling is left to convert.\n", "", 0},
    };
    return f;
}

/// Without the lines that a run begins with whose file cannot be opened, and which has an option of its own
/// before that of all cases; other tests have them.
std::string withoutObstacles(const std::string &text)
{
    std::istringstream lines(text);
    std::string rest;
    for (std::string line; std::getline(lines, line);)
        if (!line.ends_with(" cannot be written: No such file or directory.") &&
            !line.ends_with(" is given again: the first counts"))
            rest += line + "\n";
    return rest;
}

class FailuresOf : public testing::TestWithParam<Failures> {};

TEST_P(FailuresOf, AreToldWithAStatus)
{
    const Failures &failures = GetParam();
    for (const FailureCase &c : failures.cases) {
        SCOPED_TRACE(c.options.substr(0, 100) + " told: " + c.told);
        Files files = failures.files;
        if (*failures.file != '\0')
            files[failures.file] = c.text;
        const Ran ran = runProgram(c.options + " " + failures.options, {.files = files});
        const std::string err = withoutProgress(ran.err).substr(0, 3000),
                          last = c.status != 0 ? failures.told : "";
        EXPECT_EQ(ran.status, c.status) << err;
        EXPECT_EQ(countOf(ran.err, c.told), 1) << err;
        EXPECT_TRUE(last.empty() || countOf(ran.err, last) == 1) << err;
        if (failures.saysNothingElse) {
            EXPECT_EQ(withoutObstacles(complaints(ran.err)), c.told + last);
        }
        EXPECT_FALSE(c.status != 0 && failures.result != nullptr && ran.exists(failures.result));
        for (const auto &[name, text] : files)
            EXPECT_TRUE(ran.file(name) == text) << "changed: " << name;
    }
}

INSTANTIATE_TEST_SUITE_P(Modes, FailuresOf,
                         testing::Values(inputs(), tables(), mappings(), assignments(), simulations(),
                                         withoutStructure(), charges(), electrostatics(), ensembles(),
                                         domains(), likelihoods(), histograms(), motions(), comparisons(),
                                         conversions()),
                         [](const auto &test) { return std::string(test.param.name); });

TEST(Failures, ResultsThatAreNoNumbersAreNotWritten)
{
    const std::string start =
        "VARS RESID_I ATOMNAME_I RESID_J ATOMNAME_J D DD\nFORMAT %5d %6s %5d %6s %9.3f %9.3e\n";
    std::string rows;
    for (int residue = 2; residue < 19; ++residue)
        rows += std::to_string(residue) + " H " + std::to_string(residue) + " N -8.0 " +
                (residue == 3 ? "1e-16\n" : "1.0\n");
    const std::tuple<const char *, std::string, const char *> cases[] = {
        {"", rows,
         "DC Error: the order matrix is no finite number: look at D, DD, W and the tensor options.\n"},
        {"-nofixed ", "2 H 2 N -8.0 1e-38\n" + rows,
         "DC Error: the differences of the couplings are no finite numbers: look at D and DD.\n"},
    };
    for (const auto &[options, text, told] : cases) {
        const Ran ran = runProgram(options + ("-bestFit -inD in.tab -outD fit.tab -pdbRot t.pdb -H" + pdb),
                                   {.files = {{"in.tab", start + text}}});
        EXPECT_EQ(ran.status, 1) << ran.err;
        EXPECT_EQ(countOf(ran.err, told), 1) << ran.err;
        EXPECT_FALSE(ran.exists("fit.tab"));
        EXPECT_FALSE(ran.exists("t.pdb.0"));
    }
}

TEST(Failures, AStructureCutAnywhereNeverCrashes)
{
    const std::string atom =
        "ATOM      1  N   MET A   1      52.923 -90.016   8.509  1.00  9.67           N  \n";
    for (std::size_t length = 0; length <= atom.size(); ++length) {
        const Ran ran = runProgram("-bestFit -pdb cut.pdb -outD fit.tab -pdbRot t.pdb",
                                   {.files = {{"cut.pdb", atom.substr(0, length)}}});
        EXPECT_LE(ran.status, 1) << "cut at " << length << "\n" << ran.err;
    }
}

TEST(Failures, OutputThatCannotBeWritten)
{
    const std::string fit = " -bestFit -outD fit.tab -pdbRot t.pdb" + pdb + amides;
    const Ran remarks = runProgram(fit, {.stdoutFile = "/dev/full"});
    EXPECT_EQ(remarks.status, 1);
    EXPECT_EQ(countOf(remarks.err, "Error writing (stdout).\n"), 1) << remarks.err;

    // A table that cannot be opened goes to standard output, so that nothing is lost.
    const Ran noFolder = goodRun("-outD none/fit.tab" + fit);
    EXPECT_EQ(countOf(noFolder.err, "DC Error opening output file none/fit.tab\n"), 1);
    EXPECT_EQ(tableRows(noFolder.out).size(), 63u);

    const Ran noTurned = runProgram("-pdbRot none/t.pdb" + fit);
    EXPECT_EQ(noTurned.status, 1);
    EXPECT_GE(countOf(noTurned.err, "PDB Error opening PDB file none/t.pdb\n"), 1);
}

} // namespace
