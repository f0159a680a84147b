#include "simulation/charges/charges.h"

#include "common/said.h"
#include "simulation/charges/charge_tables.h"
#include "simulation/charges/options.h"
#include "simulation/molecules.h"
#include "support/text/text.h"

#include <gmock/gmock.h>

#include <cmath>
#include <set>
#include <sstream>

using namespace trelm;
using testing::HasSubstr;

namespace {

/// One from residues such as "A GLY 1 N CA", a line for each.
PDBInfo makeMolecule(const std::string &residues)
{
    std::string text, line, chain, resName, resID;
    for (std::istringstream lines(residues); std::getline(lines, line);) {
        std::istringstream words(line);
        words >> chain >> resName >> resID;
        for (std::string name; words >> name;)
            appendf(text, "ATOM      1  %-3s %-4s%s%4s       1.000   0.000   0.000  1.00  0.00\n",
                    name.c_str(), resName.c_str(), chain.c_str(), resID.c_str());
    }
    return moleculeOf(text);
}

struct Placed {
    int status = 0;
    float sum = 0.0f;
    std::string messages;
    std::vector<std::pair<int, float>> charges; ///< in the order of the list
};

Placed placeOn(const SelectedAtoms &selected, const ChargeOptions &elInfo, const std::string &inName = "",
               const std::string &outName = "")
{
    std::vector<int> atoms(maxCharges + 1);
    std::vector<float> charges(maxCharges + 1);
    ChargeSet set{atoms, charges};
    Placed placed;
    placed.messages = said([&] {
                          placed.status = static_cast<int>(
                              chargeSetup(inName, selected, elInfo, set, outName, standardMessages()));
                      }).err;
    placed.sum = set.chSum;
    for (std::size_t i = 0; i < static_cast<std::size_t>(set.chCount); ++i)
        placed.charges.emplace_back(atoms[i], charges[i]);
    return placed;
}

Placed place(const PDBInfo &pdbInfo, const ChargeOptions &elInfo, const std::string &inName = "",
             const std::string &outName = "")
{
    return placeOn({pdbInfo, allAtoms(pdbInfo)}, elInfo, inName, outName);
}

Placed placeLines(PDBInfo &pdbInfo, const ChargeOptions &elInfo, const std::string &lines)
{
    const TempFile file(lines);
    return place(pdbInfo, elInfo, file.name);
}

MATCHER(SameCharge, "")
{
    const auto &[a, b] = arg;
    return a.first == b.first && std::abs(a.second - b.second) < 0.000501f;
}

/// What a run writes, a second run places again: every atom as before, up to the three decimals. Returns what
/// was written.
std::string expectRoundTrip(PDBInfo &pdbInfo, const ChargeOptions &elInfo, const std::string &inName = "")
{
    const TempFile out;
    Placed first = place(pdbInfo, elInfo, inName, out.name);
    const std::string written(std::istreambuf_iterator(std::ifstream(out.name).rdbuf()), {});
    Placed again = place(pdbInfo, elInfo, out.name);
    EXPECT_EQ(again.status, 0) << again.messages;
    std::ranges::sort(first.charges);
    std::ranges::sort(again.charges);
    EXPECT_THAT(again.charges, testing::Pointwise(SameCharge(), first.charges));
    return written;
}

ChargeOptions electrostatics(CharmmKind charmm = charmmNone, float pH = 7.0f)
{
    ChargeOptions elInfo;
    elInfo.elFlag = 1;
    elInfo.charmm = charmm;
    elInfo.pH = pH;
    return elInfo;
}

const char peptide[] = "A LYS 1 N NZ\nA HIS 2 NE2 ND1\nA ASP 3 OD1 OD2\nA ASN 4 OD1\nA GUA 5 O1P O2P\n"
                       "A ARG 6 O NH1 NH2 OXT";

} // namespace

TEST(Charges, FractionHasItsLimits)
{
    EXPECT_EQ(titratedFraction(4.5f, 4.5f), 0.5f);
    EXPECT_FLOAT_EQ(titratedFraction(5.5f, 4.5f), 0.7310586f); // e / (e + 1): not 10 / 11
    EXPECT_EQ(titratedFraction(200.0f, 4.5f), 1.0f);
    EXPECT_EQ(titratedFraction(-200.0f, 4.5f), 0.0f);
}

TEST(Charges, DefaultsTitrateGroupsAndWriteThem)
{
    PDBInfo pdbInfo = makeMolecule(peptide);
    ChargeOptions elInfo = electrostatics(charmmNone, 50.0f); // acids have lost their protons, bases too
    const Placed basic = place(pdbInfo, elInfo);
    EXPECT_FLOAT_EQ(basic.sum, -4.0f); // -1, -1 for each phosphate oxygen, -1 for the end
    EXPECT_EQ(basic.charges.size(), 12u);
    elInfo.pH = 12.0f;
    EXPECT_EQ(place(pdbInfo, elInfo).charges[10], (std::pair{11, 0.25f})); // NH2 of ARG at its pKa
    elInfo.pH = -100.0f;
    EXPECT_EQ(expectRoundTrip(pdbInfo, elInfo), "1\tterminus\tcharge\t1.000\n1\tNZ\tcharge\t1.000\n"
                                                "2\tdefault\tcharge\t1.000\n3\tdefault\tcharge\t0.000\n"
                                                "5\tO1P\tcharge\t0.000\n5\tO2P\tcharge\t0.000\n"
                                                "6\tdefault\tcharge\t1.000\n6\tterminus\tcharge\t0.000\n");
    elInfo.chTerminiFlag = 0;
    EXPECT_EQ(place(pdbInfo, elInfo).charges.size(), 9u);
    const AtomMask nothing(pdbInfo.atoms().size(), 0);
    EXPECT_EQ(placeOn({pdbInfo, nothing}, elInfo).messages,
              "pka Default Values, 0 Charges/pka Values, Net charge 0.000   Residues 1 to 6.\n");
}

TEST(Charges, WrittenFileGivesTheSameCharges)
{
    PDBInfo pdbInfo = ubiquitin();
    for (const auto &[charmm, pH] : {std::pair{charmmNone, 3.0f},
                                     {charmmNone, 7.0f},
                                     {charmmNone, 9.5f},
                                     {charmm19, 7.0f},
                                     {charmm22, 4.0f}})
        EXPECT_NE(expectRoundTrip(pdbInfo, electrostatics(charmm, pH)), "");
    // Two equal chains, an end with one oxygen, half an aspartate, and a residue that is both ends.
    PDBInfo odd = makeMolecule("A GLY 1 N\nA ASP 2 OD1\nA LYS 3 NZ\nA GLY 4 O\n"
                               "B GLY 1 N\nB ASP 2 OD1\nB LYS 3 NZ\nB GLY 4 O");
    EXPECT_NE(expectRoundTrip(odd, electrostatics()), "");
    const TempFile twice("1 pKa N 7\n1 pKa N 7\n2 pKa default 4\n"); // charges add
    EXPECT_NE(expectRoundTrip(odd, electrostatics(), twice.name), "");
    PDBInfo single = makeMolecule("A GLY 1 N O OXT");
    EXPECT_NE(expectRoundTrip(single, electrostatics()), "");
}

// A mistyped row shows in the sum. Second names of an atom are left out.
TEST(Charges, ResiduesOfTheTablesHaveWholeCharges)
{
    const std::set<std::string> second = {"SER HG",   "CYS HG",   "ILE CD1", "ILE HD11",
                                          "ILE HD12", "ILE HD13", "GUA HN'", "GUA HN''",
                                          "THY CM",   "CTER O",   "CTER OXT"};
    for (const auto id : {ChargeTableID::charmm19, ChargeTableID::charmm22, ChargeTableID::charmm22Acid})
        for (const auto &[name, rows] : chargeTable(id)) {
            const std::string residue(name);
            float sum = 0.0f;
            for (const auto &[atom, charge] : rows)
                if (atom != "H" && !second.contains(residue + " " + std::string(atom)))
                    sum += charge;
            if (id == ChargeTableID::charmm19 && residue == "HSD")
                sum -= findRow(rows, "HE2")->charge; // a row for either tautomer's proton
            EXPECT_NEAR(sum, std::round(sum), 1e-4f) << residue << static_cast<int>(id);
        }
}

TEST(Charges, PartialChargesSumToTheFormalOnes)
{
    const struct {
        CharmmKind charmm;
        float pH, sum, oxygen; ///< net charge, and that of a terminal oxygen
        std::size_t count;
        int termini = 1;
    } cases[] = {{charmm19, 7.0f, -1.0f, -0.57f, 23},   {charmm22, 6.0f, -1.0f, -0.67f, 32},
                 {charmm22, 7.0f, -1.0f, -0.67f, 32},   {charmm22, 4.0f, 1.0f, -0.17f, 33},
                 {charmm22, 5.0f, 0.0f, 0.0f, 0},       {charmm22, 7.1f, 0.0f, 0.0f, 0},
                 {charmm22, 7.0f, -0.49f, 0.51f, 28, 0}};
    PDBInfo pdbInfo = makeMolecule("A GLY 1 N HT1 HT2 HT3 HN CA HA1 HA2 C O\n"
                                   "A ASP 2 N HN CA HA CB HB1 HB2 CG OD1 OD2 HD2 C O\n"
                                   "A ALA 3 N H CA HA CB HB1 HB2 HB3 C OT1 OXT");
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::Message()
                     << "charmm " << c.charmm << " pH " << c.pH << " termini " << c.termini);
        ChargeOptions elInfo = electrostatics(c.charmm, c.pH);
        elInfo.chTerminiFlag = c.termini;
        const Placed placed = place(pdbInfo, elInfo);
        EXPECT_NEAR(placed.sum, c.sum, 1e-5f);
        EXPECT_EQ(placed.charges.size(), c.count);
        EXPECT_EQ(placed.charges.empty() ? 0.0f : placed.charges.back().second, c.oxygen);
        EXPECT_EQ(placed.messages.empty(), placed.charges.empty());
    }
}

TEST(Charges, FileLinesAreReadOrRefused)
{
    const std::string wrong = "Error: wrong format of pka file.\nLine:";
    const std::string noAtom = "WARNING:   There is no residue ";
    const struct {
        std::string lines, message; ///< a message of an error comes with status 1
        std::vector<std::pair<int, float>> charges;
    } cases[] = {
        {"2 pKa default 7\n3 charge default -0.8\r\n",
         "4 Charges/pka Values, Net Charge -0.300 Residues 2 to 3.",
         {{2, 0.25f}, {3, 0.25f}, {4, -0.4f}, {5, -0.4f}}},
        {"5 x default -1", "-2.000", {{7, -1.0f}, {8, -1.0f}}}, // a phosphate does not halve
        {"1 pKa terminus 7\n6 pKa terminus 7\n6 charge terminus 3",
         "Residues 1 to 6.",
         {{0, 0.5f}, {9, -0.25f}, {12, -0.25f}, {9, 1.5f}, {12, 1.5f}}},
        {"3 pKa OD1 7\n4 charge OD1 1.5", "2.000", {{4, 0.5f}, {6, 1.5f}}}, // by name: as a base
        {"1 terminus charge 2\n3 OD1 pKa 7", "2.500", {{0, 2.0f}, {4, 0.5f}}},
        {"77 charge NZ 1\n1 charge NZ 1", noAtom + "77 or the proper", {{1, 1.0f}}},
        {"3 charge terminus 1", noAtom + "3 or the proper atom in the given PDB file!\n", {}},
        {"4 pKa default 1", noAtom + "4 or", {}},
        {"", "0 Charges/pka Values, Net Charge 0.000 Residues 999 to -1.", {}},
        {"1001 charge NZ 1", "Residues 999 to 1001.", {}},
        {"1 charge NZ 1\n1 charge NZ\n", wrong + "1 charge NZ\n", {}},
        {"1 charge NZ 1 2", wrong + "1 charge NZ 1 2\n", {}},
        {"\n1 charge NZ 1", wrong + "\n", {}},
        {"1 charge NZ 0,5", wrong + "1 charge NZ 0,5\n", {}},
        {"1A charge NZ 1", wrong + "1A charge NZ 1\n", {}},
        {"1 pKa NZ nan", wrong + "1 pKa NZ nan\n", {}},
        {"1 x NZ 3e38\n1 x NZ 3e38", "Error: The net charge is not a finite number.\n", {}},
    };
    PDBInfo pdbInfo = makeMolecule(peptide);
    for (const auto &c : cases) {
        SCOPED_TRACE(c.lines);
        const Placed placed = placeLines(pdbInfo, electrostatics(), c.lines);
        EXPECT_EQ(placed.status, c.message.starts_with("Error") ? 1 : 0);
        EXPECT_EQ(placed.charges, c.charges);
        EXPECT_THAT(placed.messages, HasSubstr(c.message));
    }
}

TEST(Charges, TooManyAreRefused)
{
    PDBInfo pdbInfo = makeMolecule(peptide);
    std::string lines;
    for (int i = 0; i < 1198; ++i)
        lines += "1 charge NZ 1\n";
    EXPECT_EQ(placeLines(pdbInfo, electrostatics(), lines).charges.size(), 1198u);
    for (const char *last : {"1 charge NZ 1\n", "77 charge NZ 1\n"}) {
        const Placed placed = placeLines(pdbInfo, electrostatics(), lines + last);
        EXPECT_EQ(placed.status, 1);
        EXPECT_THAT(placed.messages, testing::EndsWith("Too many pKa values were supplied ...\n"));
    }
    std::string many;
    for (int i = 1; i <= 1199; ++i)
        appendf(many, "A LYS %d NZ\n", i);
    pdbInfo = makeMolecule(many);
    for (const CharmmKind charmm : {charmmNone, charmm19})
        EXPECT_EQ(place(pdbInfo, electrostatics(charmm, 7.0f)).messages,
                  "Too many pKa values were supplied ...\n");
}

TEST(Charges, ScalesApplyToPlacesOfTheList)
{
    PDBInfo pdbInfo = makeMolecule(peptide);
    ChargeOptions elInfo = electrostatics();
    elInfo.kMonoCh = 2.0f, elInfo.kQuadCh = 3.0f, elInfo.kDipoCh = 5.0f;
    std::string lines;
    for (int i = 0; i < 11; ++i)
        lines += "1 charge NZ 1\n";
    const Placed placed = placeLines(pdbInfo, elInfo, lines);
    const float expected[] = {2, 3, 3, 3, 3, 3, 3, 3, 5, 5, 1};
    for (std::size_t i = 0; i < 11; ++i)
        EXPECT_EQ(placed.charges.at(i).second, expected[i]);
    EXPECT_EQ(placed.sum, 34.0f);
    elInfo.elFlag = 0; // the file is for electrostatic runs
    EXPECT_TRUE(placeLines(pdbInfo, elInfo, lines).charges.empty());
}

TEST(Charges, FilesThatFailAreTold)
{
    PDBInfo pdbInfo = makeMolecule(peptide);
    const struct {
        std::string inName, outName, message;
    } cases[] = {{"none.pka", "", "chargeSetup File open error: none.pka.\n"},
                 {"", "none/x", "TRELM Error opening file for pka output none/x\n"},
                 {"", "/dev/full", "Error writing /dev/full.\n"}};
    for (const auto &c : cases) {
        const Placed placed = place(pdbInfo, electrostatics(), c.inName, c.outName);
        EXPECT_EQ(placed.status, 1);
        EXPECT_THAT(placed.messages, testing::EndsWith(c.message));
    }
}
