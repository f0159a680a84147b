// Ordinary mistakes: each ends as it always has, and is told in a line that names the remedy; without the
// mistake nothing is said.
#include "cli/run_program.h"
#include "support/text/text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <ostream>

namespace {

constexpr int open = -1; ///< a status that is not looked at

/// A run that names in.tab and in.pdb, which are right where a case brings none of its own.
struct Mistake {
    std::string name, told;
    std::string options;
    Files files = {};         ///< that are mistaken
    std::string correct = {}; ///< the options of a run without the mistake, if not those above
    int status = 0;
    int strictStatus = 1;
};

std::ostream &operator<<(std::ostream &out, const Mistake &mistake)
{
    return out << mistake.name;
}

const std::string fit = "-bestFit -pdb in.pdb -inD in.tab -outD fit.tab -pdbRot t.pdb -H";
const std::string names = "VARS RESID_I RESNAME_I ATOMNAME_I RESID_J RESNAME_J ATOMNAME_J ";
const std::string head = names + "D DD W\nFORMAT %5d %6s %6s %5d %6s %6s %9.3f %9.3f %.2f\n";

std::string ubiquitin(std::string_view name)
{
    return fileText(example(name));
}

/// A text with the first place of a part changed.
std::string with(std::string text, std::string_view part, std::string_view other)
{
    const std::size_t place = text.find(part);
    EXPECT_NE(place, std::string::npos) << part;
    return text.replace(place, part.size(), other);
}

std::string table(std::string_view part, std::string_view other)
{
    return with(ubiquitin("bicelle_hn.tab"), part, other);
}

/// The amides of ubiquitin, their residues numbered from another one, with an error of one's own.
std::string amides(int shift, const char *error = "0.160")
{
    std::string text = head;
    for (const auto &row : tableRows(ubiquitin("bicelle_hn.tab"))) {
        const int residue = std::stoi(row[0]) + shift;
        trelm::appendf(text, "%d %s H %d %s N %s %s 1.00\n", residue, row[1].c_str(), residue, row[1].c_str(),
                       row[6].c_str(), error);
    }
    return text;
}

/// Couplings of evenly spread vectors, Da -10 Hz, R 0.2.
std::string pattern(int count)
{
    std::string text = head;
    for (int i = 0; i < count; ++i) {
        const double z = 1.0 - (2.0 * i + 1.0) / count;
        const double angle = std::numbers::pi * (1.0 + std::sqrt(5.0)) * i;
        const double d = -10.0 * (3.0 * z * z - 1.0 + 0.3 * (1.0 - z * z) * std::cos(2.0 * angle));
        trelm::appendf(text, "%d ALA H %d ALA N %.3f 0.500 1.00\n", i + 1, i + 1, d);
    }
    return text;
}

/// Twelve amides that all point along z, and their couplings.
Files parallel()
{
    std::string atoms, text = head;
    for (int i = 1; i <= 12; ++i) {
        for (const auto &[name, z] : {std::pair("N", 0.0), std::pair("H", 1.02)})
            trelm::appendf(atoms, "ATOM  %5d  %-3s ALA A%4d    %8.3f%8.3f%8.3f\n", i, name, i, 4.0 * i, 0.0,
                           z);
        trelm::appendf(text, "%d ALA H %d ALA N 5.0 0.2 1.0\n", i, i);
    }
    return {{"in.pdb", atoms}, {"in.tab", text}};
}

std::vector<Mistake> tables()
{
    const std::string lines = "    3    ILE      H     3    ILE      N     8.271     0.160 1.00\n",
                      turned = "    3    ILE      N     3    ILE      H     8.271     0.160 1.00\n";
    const auto in = [](const std::string &text) { return Files{{"in.tab", text}}; };
    return {
        {"NoD", "no column D, all couplings are 0 (name the column", fit, in(table(" D DD", " VALUE DD"))},
        {"NoDD", "no column DD, all errors are 1 Hz: -mcDc goes by them", fit + " -mcDc -map 20",
         in(table("D DD W", "D ERR W"))},
        {"IntegerFormat", "63 cells of D lose their fraction: -8.170 in row 1, ", fit,
         in(table("%9.3f", "%9d"))},
        {"Comma", "1 cells of D are read in part: -8,170 in row 1 (decimals", fit,
         in(table("-8.170", "-8,170"))},
        {"InsertionCode", "1 cells of RESID_I are read in part: 3A in row 2", fit,
         in(table("    3    ILE      H", "   3A    ILE      H"))},
        {"Word", "1 cells of D are no number and read as 0: n.d. in row 1", fit, in(table("-8.170", "n.d."))},
        {"Minus999", "1 values are 999, -999 or -9999, those below 0 count: 2 H - 2 N (9999", fit,
         in(table("-8.170", "-999.0"))},
        {"Plus999", "1 values are 999, ", fit, in(table("-8.170", "999.0"))},
        {"TooLarge", "1 couplings are more than their pairs can have: 2 H - 40 CA", fit,
         in(table(lines, "2 GLN H 40 GLN CA 333.0 1 1\n" + lines))},
        {"Twice", "1 rows of a pair that has one already: 3 H - 3 N", fit, in(table(lines, lines + lines))},
        {"TwiceTurned", "1 rows of a pair that has one already: 3 N - 3 H", fit,
         in(table(lines, lines + turned))},
        {"SomeErrorsZero", "DD is 0 in 1 of 63 rows, which N counts and a fit hardly sees: 2 H - 2 N", fit,
         in(table("0.160", "0.000"))},
        {"AllErrorsZero", "DD is 0 in all 63 rows: ", fit, in(amides(0, "0.000"))},
        {"Shifted", "63 residue names differ; shifted by -1, 63 of 63 agree (-a1 2)", fit, in(amides(1))},
        {"Mutant", "1 of 63 residue names differ: 2 is TRP and GLN in the structure", fit,
         in(with(table("GLN", "TRP"), "GLN", "TRP"))},
        {"Report", "a report, its D was calculated", fit,
         in(names + "D_OBS D DD W\nFORMAT %5d %6s %6s %5d %6s %6s %9.3f %9.3f %9.3f %.2f\n" +
            "2 GLN H 2 GLN N -8.170 -7.9 0.16 1.0\n")},
        {"SeveralKinds",
         "3 kinds of couplings are one pattern, all with W 1: ", "-daMl -clearMl -inD in.tab -outD o.tab",
         in(head + "2 GLN H 2 GLN N -8 1 1\n3 ILE CA 3 ILE C 8 1 1\n4 PHE CA 4 PHE HA 4 1 1\n")},
    };
}

std::vector<Mistake> fits()
{
    const std::string noSample = " without -map draws no sample (-map 1000)";
    return {
        {"FourCouplings", "4 couplings for 5 unknowns: degrees of freedom -1", fit + " -d1 3 -dN 6", {}, fit},
        {"SevenCouplings",
         "7 couplings for 5 unknowns: degrees of freedom 2, condition number ",
         fit + " -d1 2 -dN 8",
         {},
         fit},
        {"FiveForARotation",
         "5 couplings for 3 unknowns: ",
         fit + " -dadr -da -4e-4 -dr 1e-5 -d1 2 -dN 6",
         {},
         fit + " -dadr -da -4e-4 -dr 1e-5"},
        {"OneDirection", ", all along one direction (add couplings of another kind of pair)", fit,
         parallel()},
        {"McDc", "-mcDc" + noSample, fit + " -mcDc", {}, fit + " -mcDc -map 20"},
        {"McStruc", "-mcStruc" + noSample, fit + " -mcStruc", {}, fit + " -mcStruc -map 20"},
        {"Jack", "-jack" + noSample, fit + " -jack", {}, fit + " -jack -map 20 -dFrac 0.5"},
        {"Rand", "-rand" + noSample, fit + " -rand", {}, fit + " -rand -map 20", open},
        {"NoOrder",
         "the order matrix of -saupe is 0, and so are all couplings",
         fit + " -saupe 0 0 0 0 0",
         {},
         fit},
        {"Hertz",
         "-da -9.4 -dr -1 is no tensor, it has no unit",
         fit + " -dadr -da -9.4 -dr -1",
         {},
         fit + " -dadr -da -4e-4 -dr -5e-5"},
    };
}

std::vector<Mistake> magnitudes()
{
    const std::string search = "-daMl -clearMl -inD in.tab -outD o.tab -outSc s.txt",
                      histogram = "-daHist -nFit 2 -outD o.tab -inD ";
    const Files medium = {{"in.tab", ubiquitin("bicelle2_hn.tab")}, {"many.tab", pattern(2000)}};
    return {
        {"EdgeOfDa", "the best score, Da -8.900 R ", search + " -lDa -9", {}, search},
        {"EdgeOfR", "R above 0.667 means that the sign of Da is open", search, medium},
        {"NotCleared", "the couplings reach 26.40 Hz, the pattern found ends at 6.80 Hz",
         "-daMl -inD in.tab -outD o.tab -outSc s.txt", medium},
        {"FewForAPattern", "9 couplings for a pattern", search + " -d1 2 -dN 11", {}, search},
        {"EmptyEnds", "of 60 vectors the outermost is up to 1.98 Hz too small for Da", histogram + "in.tab",
         medium, histogram + "many.tab"},
        {"OpenSign", "the couplings reach -24.37 and 26.40 Hz: ", histogram + "in.tab", medium,
         histogram + "many.tab"},
    };
}

std::vector<Mistake> inputs()
{
    const std::string first = "    2    GLN      H     2    GLN      N    -8.170     0.160 1.00\n",
                      whole = ubiquitin("1d3z_model1.pdb");
    const auto row = [&](const std::string &other) { return Files{{"in.tab", table(first, other + "\n")}}; };
    const auto pdb = [](const std::string &text) { return Files{{"in.pdb", text}}; };
    const std::string predict = "-pdb in.pdb -inD in.tab -outD p.tab -pdbRot t.pdb -dot 12 -digPsi 4";
    const std::string second = "ATOM   9001  CA  ALA B 101      60.000  60.000  60.000  1.00  0.00\n";
    const std::string other = "ATOM   9002  CA BGLN A   2      60.000  60.000  60.000  1.00  0.00\n";
    std::string hn = ubiquitin("bicelle_hn.tab"), unplaced, lysines;
    for (int i = 101; i <= 104; ++i)
        trelm::appendf(unplaced, "ATOM  %5d  CA  ALA A%4d       0.000   0.000   0.000\n", i, i);
    for (int i = 0; i < 1250; ++i) // steric runs that use no charge go on
        trelm::appendf(lysines, "ATOM  %5d  NZ  LYS A%4d    %8.3f%8.3f%8.3f\n", i, i, 4.0 * (i % 11),
                       4.0 * (i / 11 % 11), 4.0 * (i / 121));
    for (std::size_t at = 0; (at = hn.find("      H ", at)) != std::string::npos; ++at)
        hn.replace(at, 8, "     HN ");
    return {
        {"OtherName",
         "0 of 63 couplings used: 63 name atom HN, the structure has H (-names auto maps them)",
         fit,
         {{"in.tab", hn}}},
        {"NoSuchAtom", "62 of 63 couplings used: 1 names atom QX, residue 2 has N CA", fit,
         row("2 GLN QX 2 GLN N -8 1 1")},
        {"NoSuchResidue", "1 names residues that the structure does not have (99)", fit,
         row("99 GLN H 99 GLN N -8 1 1")},
        {"NoWeight", "62 of 63 couplings used: 1 has weight 0", fit, row("2 GLN H 2 GLN N -8 1 0")},
        {"NoValue", "1 has no value", fit, row("2 GLN H 2 GLN N 9999 1 1")},
        {"ResidueBeyondInt",
         "1 cells of RESID_I are too large for a number of this kind: 99999999999 in row 1", fit,
         row("99999999999 GLN H 2 GLN N -8 1 1")},
        {"FarAtom", "1 atoms of in.pdb stand more than 9998 angstrom away, the first is N of residue 1", fit,
         pdb(with(whole, "  52.923", "99999999"))},
        {"Placeholders", "4 atoms of in.pdb stand at one place, 0 0 0", fit, pdb(whole + unplaced)},
        {"ManyCharges",
         "more than 1196 charges: the others are left out, since this run uses none (-nopkaDef)",
         "-pdb in.pdb -outD p.tab -pdbRot t.pdb -dot 12 -digPsi 4 -H", pdb(lysines)},
        {"AboveTheLimit", "1 has a value above 900 Hz", fit, row("2 GLN H 2 GLN N 950 1 1")},
        {"NFirst",
         "63 pairs with N first take the distance of the structure",
         fit,
         {{"in.tab", ubiquitin("bicelle_hn_nfirst.tab")}}},
        {"ChainWithoutMatch",
         "-chain A acts on nothing without a way to match: -cExact",
         fit + " -chain A",
         {},
         fit},
        {"SegmentWithoutMatch",
         "-seg X acts on nothing without a way to match: -sExact",
         fit + " -seg X",
         {},
         fit},
        {"ResidueWithoutMatch",
         "-resName GLY acts on nothing without a way to match: -rExact",
         fit + " -resName GLY",
         {},
         fit},
        {"ChainOfAFit", "the couplings were found in chain A of 2: a selection acts on written structures",
         fit + " -chain B -cExact", pdb(whole + second), fit},
        {"Models", "2 models in in.pdb, the first is used (-model N, all, mean)", fit,
         pdb("MODEL 1\n" + whole + "MODEL 2\n" + second)},
        {"Alternates", "1 alternate locations in in.pdb: fits use the first of each atom", fit,
         pdb(whole + other)},
        {"HydrogensLeftOut",
         "the hydrogens of in.pdb are left out of the simulation (-H takes them in)",
         predict,
         {},
         predict + " -H"},
    };
}

std::vector<Mistake> flags()
{
    const std::string conversion = "-conv -inD in.tab -outD o.tab";
    return {
        {"ModeInTheWrongCase",
         "-bestfit: did you mean -bestFit? (steric prediction was run)",
         "-bestfit -pdb in.pdb -H -dot 12 -digPsi 4",
         {},
         fit},
        {"FlagInTheWrongCase", "-outd: did you mean -outD? (it is not used)", fit + " -outd x", {}, fit},
        {"TwoDashes", "--pdb: did you mean -pdb? (it is not used)", fit + " --pdb x", {}, fit},
        {"NoSuchFlag", "-xyzzy: there is no such option (it is not used)", fit + " -xyzzy", {}, fit},
        {"Twice", "-d1 is given again: the first counts", fit + " -d1 3 -d1 4", {}, fit + " -d1 3"},
        {"IdleWords",
         "4 words belong to no option: a, b, c and 1 more (they are not used)",
         fit + " a b c d",
         {},
         fit},
        {"FlagForAName",
         "-outD takes the option -inc behind it as its value",
         "-bestFit -pdb in.pdb -inD in.tab -pdbRot t.pdb -H -outD -inc",
         {},
         fit},
        {"TwoModes", "-bestFit and -conv are modes: -conv is run", fit + " -conv", {}, fit},
        {"ValueOfWords",
         "Warning: the value abc of option -rM is not a number, 0 is used.",
         conversion + " -rM abc",
         {},
         conversion + " -rM 1"},
        {"ValueOfAPart",
         "Warning: the value 1,5 of option -wv is not a number, 1 is used.",
         conversion + " -wv 1,5",
         {},
         conversion + " -wv 0.05"},
        {"FractionForACount",
         "Warning: the value 2.5 of option -map is not an integer, 2 is used.",
         conversion + " -map 2.5",
         {},
         conversion},
        {"NoValueBehind", "Warning: option -map has no value.", conversion + " -map", {}, conversion},
        {"FitWithoutStructure",
         "-pdb is missing: without a structure no coupling can be fitted.",
         "-bestFit -inD in.tab -outD fit.tab",
         {},
         fit,
         open},
        {"FitWithoutTable",
         "-inD is missing: without a table there are no couplings.",
         "-bestFit -pdb in.pdb -pdbRot t.pdb -H",
         {},
         fit},
        {"PredictionWithoutStructure",
         "-pdb is missing: without a structure there are no atoms.",
         "-stTrelm -inD in.tab",
         {},
         fit,
         open},
        {"NoiseWithoutStructure",
         "-struc has no atoms to move: see -pdb.",
         "-struc -inD in.tab",
         {},
         fit,
         open},
        {"AxesWithoutStructure", "-pdb is missing", "-anPdb", {}, fit, open},
        {"FreeWithoutAtoms",
         "-pdbF is missing: without coordinates there are no atoms.",
         "-stTrelmFree",
         {},
         fit,
         open},
        {"PatternWithoutTable", "-inD is missing", "-daMl", {}, fit, open},
        {"HistogramWithoutTable", "-inD is missing", "-daHist", {}, fit, open},
        {"SetsWithoutTable", "-inD is missing", "-daFlex", {}, fit, open},
        {"ConversionWithoutTable", "-inD is missing", "-conv", {}, fit, open},
        {"OneTableOfTwo", "-inD2 is missing", "-anDc -inD1 in.tab -outD o.tab", {}, fit, open},
        {"NothingLeft", "no coupling is left to fit.", fit + " -aD1 XX", {}, fit},
        {"NothingToConvert", "no coupling is left to convert.", conversion + " -aD1 XX", {}, conversion},
        {"FaultyExpression",
         "PDB Warning: the regular expression C( is faulty and selects nothing",
         fit + " -atom C( -aRegex",
         {},
         fit},
        {"EqualFrames",
         "solution 1 turns nothing: its hinge axis, and what goes by it, is no number",
         "-anA -inS1 1 2 3 4 5 -inS2 1 2 3 4 5 -outA o.tab",
         {},
         fit},
        {"NoMatrix",
         "an order matrix is 0: it has no frame to compare.",
         "-anA -inS1 1 2 3 4 5 -outA o",
         {},
         fit},
    };
}

class Mistakes : public testing::TestWithParam<Mistake> {};

Ran runWith(const std::string &options, Files files)
{
    files.insert({"in.tab", ubiquitin("bicelle_hn.tab")});
    files.insert({"in.pdb", ubiquitin("1d3z_model1.pdb")});
    files.insert({"many.tab", pattern(2000)});
    return runProgram(options, {.files = files});
}

TEST_P(Mistakes, AreTold)
{
    const Mistake &mistake = GetParam();
    const Ran ran = runWith(mistake.options, mistake.files);
    EXPECT_TRUE(mistake.status == open || ran.status == mistake.status) << ran.status;
    const std::size_t place = ran.err.find(mistake.told);
    ASSERT_NE(place, std::string::npos) << ran.err;
    const std::size_t line = ran.err.rfind('\n', place) + 1;
    EXPECT_TRUE(line == place || ran.err.substr(line, 7) == "trelm: ") << ran.err.substr(line);
    const Ran strict = runWith(mistake.options + " -strict", mistake.files);
    EXPECT_EQ(strict.status, mistake.strictStatus) << strict.err;
    for (const char *result : {"fit.tab", "o.tab", "p.tab", "t.pdb.0"})
        EXPECT_FALSE(strict.exists(result)) << result;
}

TEST_P(Mistakes, AreNotToldOfCorrectInput)
{
    const Mistake &mistake = GetParam();
    const Ran ran = runWith(mistake.correct.empty() ? mistake.options : mistake.correct, {});
    for (const char *start : {"\ntrelm: ", "\nWarning: the value", "\nWarning: option", "did you mean"})
        EXPECT_EQ(ran.err.find(start), std::string::npos) << ran.err;
}

/// Each mode, with input as it should be: nothing is told, and a strict run gives its result.
TEST(CleanRuns, AreStrict)
{
    const std::string on = "-pdb ubi/1d3z_model1.pdb -H ", measured = "-inD ubi/bicelle_hn.tab ",
                      small = "-dot 12 -digPsi 4 ", predict = on + measured + small,
                      fitted = "-bestFit " + on + measured,
                      lysine = "-bestFit " + on + "-inD assignment/lysines.tab ",
                      tensors = "-inS1 -5e-4 7e-5 2e-5 -1e-4 5e-4 -inS2 -1e-3 5e-4 -5e-4 -2e-4 8e-4 ";
    const std::string runs[] = {
        fitted,
        fitted + "-nofixed",
        fitted + "-dadr -da -4e-4 -dr -5e-5",
        fitted + "-fixed -da -4e-4 -dr -5e-5",
        fitted + "-saupe 1e-4 1e-4 1e-4 1e-4 1e-4",
        fitted + "-align 1e-4 1e-4 1e-4 1e-4 1e-4",
        fitted + "-mcDc -map 20",
        fitted + "-mcStruc -map 5",
        fitted + "-jack -map 20 -dFrac 0.5",
        lysine + "-exhaust",
        lysine + "-exhaustSel -nSel 4",
        lysine + "-rand -map 50",
        predict + "-stTrelm",
        predict + "-stTrelm -pf1",
        predict + "-elTrelm",
        predict + "-elTrelm -pf1 -pot ubi/rod_potential.txt",
        small + "-stTrelmFree -pdbF ubi/heavy_atoms.txt",
        on + "-elTrelmFree",
        on + "-elTrelmGrid",
        on + "-csSim",
        on + "-asRan",
        on + "-anPdb -inS -2e-3 1e-3 5e-4 4e-4 3e-4",
        "-anA " + tensors,
        "-anDc -inD1 ubi/bicelle_hn.tab -inD2 ubi/bicelle2_hn.tab",
        on + measured + "-struc -pdbRot n.pdb",
        on + "-struc -angNoise -pdbRot n.pdb",
        measured + "-conv -tbl",
        measured + "-conv -trelm -dcNoise",
        "-daHist -inD many.tab",
        "-daHist -nFit 2 -inD many.tab",
        measured + "-daMl",
        measured + "-daMl -clearMl",
        measured + "-daFlex -nRun 5",
    };
    for (const std::string &options : runs) {
        SCOPED_TRACE(options);
        const Ran ran = runProgram(options + " -strict", {.files = {{"many.tab", pattern(2000)}}});
        EXPECT_EQ(ran.status, 0) << ran.err;
        EXPECT_EQ(ran.err.find("\ntrelm: "), std::string::npos) << ran.err;
    }
}

std::string nameOf(const testing::TestParamInfo<Mistake> &info)
{
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(Tables, Mistakes, testing::ValuesIn(tables()), nameOf);
INSTANTIATE_TEST_SUITE_P(Inputs, Mistakes, testing::ValuesIn(inputs()), nameOf);
INSTANTIATE_TEST_SUITE_P(Flags, Mistakes, testing::ValuesIn(flags()), nameOf);
INSTANTIATE_TEST_SUITE_P(Fits, Mistakes, testing::ValuesIn(fits()), nameOf);
INSTANTIATE_TEST_SUITE_P(Magnitudes, Mistakes, testing::ValuesIn(magnitudes()), nameOf);

} // namespace
