// Whole runs of molecules made of two domains.
#include "cli/run_program.h"
#include "simulation/two_domains.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <sstream>

namespace {

using Files = std::map<std::string, std::string>;
using Args = std::vector<std::string>;

const char *const domains = "START_RESID_1: 1\nEND_RESID_1: 76\nSTART_RESID_2: 101\nEND_RESID_2: 176\n"
                            "START_RES_ANGLE_1: 1\nEND_RES_ANGLE_1: 70\n"
                            "START_RES_ANGLE_2: 101\nEND_RES_ANGLE_2: 170\nORIGIN_DOM1: 53\n";

/// A run of the ensemble: what the configuration says more, the states (null: generated), options.
Ran ensembleRun(const std::string &config, const char *states, const Args &more = {}, Files files = {})
{
    static const std::string molecule = twoDomains(76, 40.0);
    Args args = {"-stTrelmGrid", "-pdb",  "m.pdb",   "-inD",    example("bicelle_hn.tab"),
                 "-inp",         "c.inp", "-ave",    "ave.tab", "-H",
                 "-dot",         "32",    "-digPsi", "6",       "-dcEns",
                 "all.tab"};
    const auto isGiven = [&](const char *option) { return std::ranges::find(more, option) != more.end(); };
    if (!isGiven("-flex"))
        args.insert(args.end(), {"-flex", "log"});
    if (!isGiven("-el"))
        args.emplace_back("-nopkaDef");
    files.insert({{"m.pdb", molecule}, {"c.inp", domains + config}});
    if (states != nullptr) {
        args.insert(args.end(), {"-inE", "states"});
        files["states"] = states;
    }
    args.insert(args.end(), more.begin(), more.end());
    return runProgram(args, {.files = files});
}

/// The standard error stream without progress lines.
std::string withoutProgress(const std::string &err)
{
    std::istringstream in(err);
    std::string text;
    for (std::string line; std::getline(in, line);)
        if (!line.starts_with("REMARK Orientation"))
            text += line + "\n";
    return text;
}

std::vector<double> saupeOf(const Ran &ran)
{
    return numbersAfter(withoutProgress(ran.err), "DATA SAUPE ");
}

void expectEqual(const std::vector<double> &a, const std::vector<double> &b, double factor, double tolerance)
{
    ASSERT_EQ(a.size(), 5U);
    ASSERT_EQ(b.size(), 5U);
    for (std::size_t k = 0; k < 5; ++k)
        EXPECT_NEAR(a[k], factor * b[k], tolerance) << k;
}

/// Calculated couplings of a report with all columns: column D.
std::vector<double> couplings(const std::string &report)
{
    std::vector<double> values;
    for (const auto &row : tableRows(report))
        if (row.size() > 8 && row[0] != "REMARK" && row[0] != "DATA")
            values.push_back(std::stod(row[8]));
    return values;
}

/// Positions of the ATOM lines, angstrom.
std::vector<std::array<double, 3>> positions(const std::string &pdb)
{
    std::istringstream in(pdb);
    std::vector<std::array<double, 3>> atoms;
    for (std::string line; std::getline(in, line);)
        if (line.starts_with("ATOM"))
            atoms.push_back({std::stod(line.substr(30, 8)), std::stod(line.substr(38, 8)),
                             std::stod(line.substr(46, 8))});
    return atoms;
}

double distanceOf(const std::array<double, 3> &a, const std::array<double, 3> &b)
{
    return std::hypot(a[0] - b[0], a[1] - b[1], a[2] - b[2]);
}

TEST(EnsembleRun, LinesAndFilesOfAllStates)
{
    const Ran ran = ensembleRun("", "0 0 0\n0 20 0\n", {"-pdbRot", "start.pdb"}, {{"all.tab", "before\n"}});
    ASSERT_EQ(ran.status, 0) << withoutProgress(ran.err);
    EXPECT_EQ(ran.out, "REMARK 63 couplings selected (inclusive max).\n"
                       "REMARK PDB Selection: All Atoms.\n"
                       "REMARK 0 charges placed, Total charge 0.000 [e].\n"
                       "REMARK ENSEMBLE MODE.\n"
                       "REMARK STERIC CLASH CHECK ENABLED.\n"
                       "REMARK 2 states in ensemble.\n"
                       "REMARK Simulated DCs will be appended to all.tab.\n"
                       "ENSEMBLE ID 1\nREMARK ENSEMBLE Q_EULER_ANGLES     0.00     0.00     0.00\n"
                       "ENSEMBLE ID 2\nREMARK ENSEMBLE Q_EULER_ANGLES     0.00    20.00     0.00\n");
    const std::string log = ran.file("log"), all = ran.file("all.tab");
    EXPECT_EQ(countOf(log, "\n"), 8);
    EXPECT_EQ(countOf(log, "[2]  domain rotation angle [deg.]:  0.000000e+00  2.000000e+01  0.000000e+00\n"),
              1);
    EXPECT_EQ(countOf(log, "Da(NH) =  "), 2);
    EXPECT_EQ(countOf(log, "Euler angles (alpha/beta/gamma) [deg.]: "), 2);
    EXPECT_TRUE(all.starts_with("before\n")); // appended to what is there
    EXPECT_EQ(countOf(all, "ENSEMBLE ID 1\n"), 1);
    EXPECT_EQ(countOf(all, "ENSEMBLE ID 2\n"), 1);
    EXPECT_FALSE(ran.exists("rotEns.pdb"));

    // The copies are alike, so their axes are apart by what the state turns domain 1: about its y axis.
    // An axis has no sense: 160 is as good as 20.
    const std::size_t second = log.find("inter helix", log.find("[2]"));
    std::vector<double> angles = numbersAfter(log.substr(second), "inter helix angle (x/y/z) [deg.]:");
    ASSERT_EQ(angles.size(), 3U);
    for (double &angle : angles)
        angle = std::min(angle, 180.0 - angle);
    EXPECT_NEAR(angles[0], 20.0, 0.05);
    EXPECT_NEAR(angles[1], 0.0, 0.05);
    EXPECT_NEAR(angles[2], 20.0, 0.05);

    const std::string err = withoutProgress(ran.err);
    EXPECT_EQ(countOf(err, "DATA TRELM_MODE STERIC_GRID\n"), 1);
    EXPECT_EQ(numbersAfter(err, "DATA IRREDUCIBLE REPRESENTATION (A0,A1R,A1I,A2R,A2I)"),
              (std::vector<double>{0, 0, 0, 0, 0}));
    EXPECT_EQ(countOf(ran.file("ave.tab"), "DATA SAUPE "), countOf(err, "DATA SAUPE ") + 1);
}

TEST(EnsembleRun, OneStateIsTheStericRunOfThePlacedMolecule)
{
    const Ran placed = ensembleRun("OUTPUT_ENSEMBLE: 2\n", "0 0 0\n", {"-pdbRot", "start.pdb"});
    ASSERT_EQ(placed.status, 0);
    const std::string start = placed.file("start.pdb");
    const Ran ensemble = ensembleRun("ALIGN_ALONG_Z: 0\n", "0 0 0\n", {}, {{"m.pdb", start}});
    const Ran plain = runProgram({"-stTrelm", "-pdb", "m.pdb", "-inD", example("bicelle_hn.tab"), "-outD",
                                  "out.tab", "-H", "-nopkaDef", "-dot", "32", "-digPsi", "6"},
                                 {.files = {{"m.pdb", start}}});
    ASSERT_EQ(ensemble.status, 0);
    ASSERT_EQ(plain.status, 0);
    expectEqual(saupeOf(ensemble), numbersAfter(plain.file("out.tab"), "DATA SAUPE "), 1.0, 2e-7);
    const std::vector<double> ours = couplings(ensemble.file("ave.tab")),
                              theirs = couplings(plain.file("out.tab"));
    ASSERT_EQ(ours.size(), 63U);
    ASSERT_EQ(theirs.size(), 63U);
    for (std::size_t i = 0; i < ours.size(); ++i)
        EXPECT_NEAR(ours[i], theirs[i], 0.005);
}

TEST(EnsembleRun, AverageCountsStatesThatClash)
{
    const Ran one = ensembleRun("", "30 20 0\n"), other = ensembleRun("", "0 25 90\n");
    const Ran twice = ensembleRun("", "30 20 0\n30 20 0\n");
    const Ran both = ensembleRun("", "30 20 0\n0 25 90\n");
    // Half a turn about z puts domain 1 where the other one is.
    const Ran withClash = ensembleRun("", "30 20 0\n0 0 180\n"), clash = ensembleRun("", "0 0 180\n");
    for (const Ran *ran : {&one, &other, &twice, &both, &withClash, &clash})
        ASSERT_EQ(ran->status, 0) << withoutProgress(ran->err);

    expectEqual(saupeOf(twice), saupeOf(one), 1.0, 0.0);
    std::vector<double> sum = saupeOf(one);
    for (std::size_t k = 0; k < 5; ++k)
        sum[k] += saupeOf(other).at(k);
    expectEqual(saupeOf(both), sum, 0.5, 2e-7);
    EXPECT_EQ(countOf(withClash.out, "REMARK steric clash of domains in state 2.\n"), 1);
    EXPECT_EQ(countOf(withClash.out, "REMARK steric clash of "), 2);
    EXPECT_EQ(countOf(withClash.file("all.tab"), "ENSEMBLE ID"), 1);
    expectEqual(saupeOf(withClash), saupeOf(one), 0.5, 2e-7);
    expectEqual(saupeOf(clash), saupeOf(one), 0.0, 0.0);
    EXPECT_EQ(countOf(clash.file("ave.tab"), "nan"), 0);

    const std::vector<double> a = couplings(one.file("ave.tab")), b = couplings(other.file("ave.tab")),
                              mean = couplings(both.file("ave.tab")),
                              half = couplings(withClash.file("ave.tab")),
                              none = couplings(clash.file("ave.tab"));
    ASSERT_EQ(a.size(), 63U);
    for (std::size_t i = 0; i < a.size(); ++i) {
        EXPECT_NEAR(mean[i], (a[i] + b[i]) / 2.0, 1.1e-3);
        EXPECT_NEAR(half[i], a[i] / 2.0, 1.1e-3);
        EXPECT_EQ(none[i], 0.0);
    }
    const Ran unchecked = ensembleRun("ENSEMBLE_CLASH: 0\n", "0 0 180\n");
    EXPECT_EQ(countOf(unchecked.out, "REMARK STERIC CLASH CHECK DISABLED.\n"), 1);
    EXPECT_EQ(countOf(unchecked.out, "steric clash of"), 0);
    EXPECT_EQ(countOf(unchecked.file("all.tab"), "ENSEMBLE ID 1\n"), 1);
}

TEST(EnsembleRun, ChargesAreThoseOfTheMoleculeInEveryState)
{
    const auto charged = [](const char *states) { return ensembleRun("", states, {"-el", "-dGrid", "1.0"}); };
    const Ran one = charged("30 20 0\n"), twice = charged("30 20 0\n30 20 0\n");
    ASSERT_EQ(one.status, 0) << withoutProgress(one.err);
    EXPECT_EQ(countOf(one.out, "REMARK 0 charges placed"), 0);
    expectEqual(saupeOf(twice), saupeOf(one), 1.0, 0.0);
    EXPECT_GT(std::abs(saupeOf(one).at(0) - saupeOf(ensembleRun("", "30 20 0\n", {"-dGrid", "1.0"})).at(0)),
              1e-6);
}

TEST(EnsembleRun, TurnsDomainOneAsARigidBody)
{
    const Ran ran = ensembleRun("OUTPUT_ENSEMBLE: 3\n", "10 20 30\n", {"-pdbRot", "start.pdb"});
    const Ran fixed = ensembleRun("OUTPUT_ENSEMBLE: 3\nFIX_POSITION_DOM1: 1\n", "10 20 30\n");
    const Ran centred = ensembleRun("OUTPUT_ENSEMBLE: 3\nCENTER_PIVOT: 0\n", "10 20 30\n");
    const auto start = positions(ran.file("start.pdb")), turned = positions(ran.file("rot.pdb")),
               back = positions(fixed.file("rotEns.pdb")), shifted = positions(centred.file("rotEns.pdb"));
    ASSERT_EQ(start.size(), 2462U);
    ASSERT_EQ(turned.size(), start.size());
    ASSERT_EQ(back.size(), start.size());
    ASSERT_EQ(shifted.size(), start.size());
    const std::size_t half = start.size() / 2;
    std::array<double, 3> centre = {};
    for (std::size_t i = 0; i < half; ++i) {
        // The copy turns within itself, the other one stays.
        EXPECT_NEAR(distanceOf(turned[i], turned[half / 2]), distanceOf(start[i], start[half / 2]), 3e-3);
        EXPECT_NEAR(distanceOf(turned[half + i], start[half + i]), 0.0, 1e-6);
        EXPECT_NEAR(distanceOf(back[i], start[i]), 0.0, 3e-3); // turned back with the whole
        for (std::size_t k = 0; k < 3; ++k)
            centre[k] += shifted[half + i][k] / static_cast<double>(half);
    }
    EXPECT_GT(distanceOf(turned[0], start[0]), 5.0);
    EXPECT_GT(distanceOf(back[half], start[half]), 5.0);
    EXPECT_NEAR(distanceOf(centre, {}), 0.0, 1e-3); // domain 2 at the origin
    EXPECT_EQ(positions(ran.file("rotEns.pdb")), turned);
}

TEST(EnsembleRun, OutputChoices)
{
    const Ran listed = ensembleRun("OUTPUT_ENSEMBLE: 3\n", "0 90 0\n0 0 180\n0 60 90\n");
    EXPECT_EQ(listed.status, 0);
    EXPECT_EQ(countOf(listed.out, "REMARK X Y Z  "), 3);
    EXPECT_EQ(countOf(listed.out, "REMARK X Y Z  -0.000 0.866 0.500\nREMARK allowed state 3.\n"), 1);
    EXPECT_EQ(countOf(listed.out, "REMARK allowed state 2.\n"), 0);
    EXPECT_EQ(countOf(listed.file("log"), "\n"), 3);
    EXPECT_FALSE(listed.exists("all.tab"));

    const Ran setUp = ensembleRun("OUTPUT_ENSEMBLE: 2\nENSEMBLE_DENSITY: 12\nBETA_H: 70\n", nullptr,
                                  {"-outE", "e", "-outEAx", "ax"});
    EXPECT_EQ(setUp.status, 0);
    EXPECT_EQ(countOf(setUp.out, "REMARK 6 states in ensemble.\n"), 1); // the top of an icosahedron
    EXPECT_EQ(countOf(setUp.file("e"), "\n"), 6);
    EXPECT_EQ(countOf(setUp.file("ax"), "\n"), 6);
    EXPECT_FALSE(setUp.exists("rot.pdb"));
    EXPECT_FALSE(setUp.exists("log"));
    // What was written is read again.
    const Ran again =
        ensembleRun("OUTPUT_ENSEMBLE: 2\n", setUp.file("e").c_str(), {"-outE", "generated", "-outEAx", "ax"});
    EXPECT_EQ(countOf(again.out, "REMARK 6 states in ensemble.\n"), 1);

    const Ran bare =
        runProgram({"-stTrelmGrid", "-pdb", "m.pdb", "-inp", "c.inp", "-inE", "e", "-ave", "ave.tab", "-H",
                    "-dot", "32"},
                   {.files = {{"m.pdb", twoDomains(76, 40.0)}, {"c.inp", domains}, {"e", "0 0 0\n"}}});
    EXPECT_EQ(bare.status, 0); // without couplings there is no average to report
    EXPECT_FALSE(bare.exists("ave.tab"));
    EXPECT_EQ(countOf(bare.out, "Da(NH) =  "), 1); // no -flex: the log on standard output
}

struct RefusedCase {
    const char *why;
    const char *config;
    const char *states; ///< null: generated
    const char *line;   ///< once on the error stream
    Args args = {};
};

TEST(EnsembleFailures, EachIsTold)
{
    std::string tooMany;
    for (int i = 0; i < 39999; ++i)
        tooMany += "0 0 0\n";
    const char *const format =
        "Error: Input data in file with measured dipolar couplings have wrong format\n";
    const char *const noClashAtoms = "Error in chkDomClash: zero atoms selected."
                                     "ensembleAlignment: error in chkDomClash.\n"
                                     "matrix: ensembleAlignment error occured.\n";
    const char *const noAtoms = "Error in initOrient: zero atoms selected.matrix: error in initOrient.\n";
    const std::vector<RefusedCase> cases = {
        {"letters", "", "0 0 x\n", format},
        {"two numbers", "", "0 0 0\n0 0\n", "Line:0 0\nerror in readEnsemble.\nmatrix: setupEnsemble error"},
        {"too many lines", "", tooMany.c_str(),
         "error in readEnsemble: digitization of ensemble too high.\n"},
        {"no file", "", nullptr, "RdTable File open error: none.\n", {"-inE", "none"}},
        {"no cone", "BETA_L: 181\nBETA_H: 190\n", nullptr, "matrix: zero number of ensemble states.\n"},
        {"no dots", "ENSEMBLE_DENSITY: 0\n", nullptr, "setupEnsemble: unsp error occured.\n"},
        {"domain 1 absent", "START_RESID_1: 300\nEND_RESID_1: 310\n", "0 0 0\n", noClashAtoms},
        {"domain 1 is all", "END_RESID_1: 999\n", "0 0 0\n", noClashAtoms},
        {"domain 1 reversed", "START_RESID_1: 76\nEND_RESID_1: 1\n", "0 0 0\n", noClashAtoms},
        {"domain 2 absent", "CENTER_PIVOT: 0\nSTART_RESID_2: 300\nEND_RESID_2: 310\n", "0 0 0\n",
         "Error in positionDomain: zero atoms selected.matrix: error in shiftMol2Domain.\n"},
        {"domain 2 to turn absent", "DOMAIN_ANGLE_VAR: 1\nORIGIN_DOM2: 150\nSTART_RESID_2: 300\n", "0 0 0\n",
         "positionDomain: no atoms in residues 300 to 176 of domain 2.\n"},
        {"axes 1 absent", "START_RES_ANGLE_1: 300\nEND_RES_ANGLE_1: 310\n", "0 0 0\n", noAtoms},
        {"axes 2 absent", "START_RES_ANGLE_2: 300\nEND_RES_ANGLE_2: 310\n", "0 0 0\n",
         "Error in initOrient: zero atoms selected.matrix: error in calcInertiaSel."},
        {"pivot absent", "ORIGIN_DOM1: 99\n", "0 0 0\n",
         "initOrient: ORIGIN_DOM1: residue 99 has no atom CA.\n"},
        {"pivot cleared", "DOM_ANG_GAMMA: 10\n", "0 0 0\n",
         "initOrient: ORIGIN_DOM1: residue 0 has no atom CA.\n"},
        {"pivot 2 absent", "DOMAIN_ANGLE_VAR: 1\n", "0 0 0\n",
         "initOrient: ORIGIN_DOM2: residue 0 has no atom CA.\n"},
        {"a model in space",
         "",
         "0 0 0\n",
         "trelm: -stTrelmGrid knows the models -bic and -pf1 only.\n",
         {"-3D"}},
        {"log",
         "",
         "0 0 0\n",
         "TRELM Error opening log file for grid search /none/log\n",
         {"-flex", "/none/log"}},
        {"monitor",
         "",
         "0 0 0\n",
         "TRELM Error opening ensemble monitoring file /none/e\n",
         {"-outE", "/none/e"}},
        {"structure", "", "0 0 0\n", "PDB Error opening PDB file /none/p\n", {"-pdbRot", "/none/p"}},
        {"full device", "", "0 0 0\n", "Error writing /dev/full.\n", {"-flex", "/dev/full"}},
    };
    for (const RefusedCase &refused : cases) {
        SCOPED_TRACE(refused.why);
        const Ran ran = ensembleRun(refused.config, refused.states, refused.args);
        EXPECT_EQ(ran.status, 1) << withoutProgress(ran.err);
        EXPECT_EQ(countOf(ran.err, refused.line), 1) << withoutProgress(ran.err);
        EXPECT_FALSE(ran.exists("ave.tab"));
    }
    const Ran none = runProgram({"-stTrelmGrid", "-ave", "ave.tab"});
    EXPECT_EQ(none.status, 1);
    EXPECT_EQ(countOf(none.err, noAtoms), 1);
}

} // namespace
