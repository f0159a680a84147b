// Whole runs of molecules made of two domains.
#include "cli/run_program.h"
#include "cli/two_domains_run.h"
#include "simulation/two_domains.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <sstream>

namespace {

/// A run of the ensemble: what the configuration says more, the states (null: generated), options.
Ran ensembleRun(const std::string &config, const char *states, const std::string &options = "",
                Files files = {})
{
    static const std::string molecule = twoDomains(76, 40.0);
    files.insert({{"m.pdb", molecule}, {"c.inp", twoDomainsConfig + config}});
    if (states != nullptr)
        files["states"] = states;
    const std::string line = options + (states != nullptr ? " -inE states " : " ") + ensembleLine;
    return goodRun(options.starts_with("-el") ? line : line + " -nopkaDef", {.files = files});
}

std::vector<double> saupeOf(const Ran &ran)
{
    return ::saupeOf(withoutProgress(ran.err));
}

std::vector<double> times(double factor, std::vector<double> values)
{
    for (double &value : values)
        value *= factor;
    return values;
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
    const Ran ran = ensembleRun("", "0 0 0\n0 20 0\n", "-pdbRot start.pdb", {{"all.tab", "before\n"}});
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
    const Ran placed = ensembleRun("OUTPUT_ENSEMBLE: 2\n", "0 0 0\n", "-pdbRot start.pdb");
    const std::string start = placed.file("start.pdb");
    const Ran ensemble = ensembleRun("ALIGN_ALONG_Z: 0\n", "0 0 0\n", "", {{"m.pdb", start}});
    const Ran plain =
        goodRun("-stTrelm -pdb m.pdb -inD ubi/bicelle_hn.tab -outD out.tab -H -nopkaDef -dot 32 "
                "-digPsi 6",
                {.files = {{"m.pdb", start}}});
    expectNear(saupeOf(ensemble), ::saupeOf(plain.file("out.tab")), 2e-7);
    const std::vector<double> ours = couplings(ensemble.file("ave.tab")),
                              theirs = couplings(plain.file("out.tab"));
    EXPECT_EQ(ours.size(), 63U);
    expectNear(ours, theirs, 0.005);
}

TEST(EnsembleRun, AverageCountsStatesThatClash)
{
    const Ran one = ensembleRun("", "30 20 0\n"), other = ensembleRun("", "0 25 90\n");
    const Ran twice = ensembleRun("", "30 20 0\n30 20 0\n");
    const Ran both = ensembleRun("", "30 20 0\n0 25 90\n");
    // Half a turn about z puts domain 1 where the other one is.
    const Ran withClash = ensembleRun("", "30 20 0\n0 0 180\n"), clash = ensembleRun("", "0 0 180\n");
    EXPECT_EQ(saupeOf(twice), saupeOf(one));
    std::vector<double> sum = saupeOf(one);
    for (std::size_t k = 0; k < 5; ++k)
        sum[k] += saupeOf(other).at(k);
    expectNear(saupeOf(both), times(0.5, sum), 2e-7);
    EXPECT_EQ(countOf(withClash.out, "REMARK steric clash of domains in state 2.\n"), 1);
    EXPECT_EQ(countOf(withClash.out, "REMARK steric clash of "), 2);
    EXPECT_EQ(countOf(withClash.file("all.tab"), "ENSEMBLE ID"), 1);
    expectNear(saupeOf(withClash), times(0.5, saupeOf(one)), 2e-7);
    expectNear(saupeOf(clash), std::vector<double>(5, 0.0), 0.0);
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
    const Ran one = ensembleRun("", "30 20 0\n", "-el -dGrid 1.0");
    const Ran twice = ensembleRun("", "30 20 0\n30 20 0\n", "-el -dGrid 1.0");
    EXPECT_EQ(countOf(one.out, "REMARK 0 charges placed"), 0);
    EXPECT_EQ(saupeOf(twice), saupeOf(one));
    EXPECT_GT(std::abs(saupeOf(one)[0] - saupeOf(ensembleRun("", "30 20 0\n", "-dGrid 1.0"))[0]), 1e-6);
}

TEST(EnsembleRun, TurnsDomainOneAsARigidBody)
{
    const Ran ran = ensembleRun("OUTPUT_ENSEMBLE: 3\n", "10 20 30\n", "-pdbRot start.pdb");
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
    EXPECT_EQ(countOf(listed.out, "REMARK X Y Z  "), 3);
    EXPECT_EQ(countOf(listed.out, "REMARK X Y Z  -0.000 0.866 0.500\nREMARK allowed state 3.\n"), 1);
    EXPECT_EQ(countOf(listed.out, "REMARK allowed state 2.\n"), 0);
    EXPECT_EQ(countOf(listed.file("log"), "\n"), 3);
    EXPECT_FALSE(listed.exists("all.tab"));

    const Ran setUp =
        ensembleRun("OUTPUT_ENSEMBLE: 2\nENSEMBLE_DENSITY: 12\nBETA_H: 70\n", nullptr, "-outE e -outEAx ax");
    EXPECT_EQ(countOf(setUp.out, "REMARK 6 states in ensemble.\n"), 1); // the top of an icosahedron
    EXPECT_EQ(countOf(setUp.file("e"), "\n"), 6);
    EXPECT_EQ(countOf(setUp.file("ax"), "\n"), 6);
    EXPECT_FALSE(setUp.exists("rot.pdb"));
    // More directions than a simulation has room for, of which a cone holds few enough.
    const Ran dense = ensembleRun("OUTPUT_ENSEMBLE: 2\nENSEMBLE_DENSITY: 40000\nBETA_H: 30\n", nullptr);
    EXPECT_EQ(countOf(dense.out, "REMARK 2756 states in ensemble.\n"), 1) << dense.out;
    EXPECT_EQ(countOf(dense.err, "WARNING: ENSEMBLE_DENSITY 40000: 40962 directions, a run holds 39998 "
                                 "states of those within the limits.\n"),
              1)
        << dense.err;
    EXPECT_FALSE(setUp.exists("log"));
    // What was written is read again.
    const Ran again =
        ensembleRun("OUTPUT_ENSEMBLE: 2\n", setUp.file("e").c_str(), "-outE generated -outEAx ax");
    EXPECT_EQ(countOf(again.out, "REMARK 6 states in ensemble.\n"), 1);

    // Without couplings there is no average to report, and without -flex the log is on standard output.
    const Ran bare =
        goodRun("-stTrelmGrid -pdb m.pdb -inp c.inp -inE e -ave ave.tab -H -dot 32",
                {.files = {{"m.pdb", twoDomains(76, 40.0)}, {"c.inp", twoDomainsConfig}, {"e", "0 0 0\n"}}});
    EXPECT_FALSE(bare.exists("ave.tab"));
    EXPECT_EQ(countOf(bare.out, "Da(NH) =  "), 1);
}

} // namespace
