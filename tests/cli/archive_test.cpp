// Couplings and structures in the forms of archives: the same fit from each, and nothing lost on the way.
#include "cli/run_program.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

/// A structure of the PDB format as mmCIF. `numberShift` is what label numbers have more than the author's.
std::string asMmcif(const std::string &pdb, int numberShift, bool hasAuthor = true)
{
    std::string text = "data_X\nloop_\n";
    for (const char *tag : {"group_PDB", "id", "type_symbol", "label_atom_id", "label_alt_id",
                            "label_comp_id", "label_asym_id", "label_seq_id", "pdbx_PDB_ins_code", "Cartn_x",
                            "Cartn_y", "Cartn_z", "occupancy", "B_iso_or_equiv"})
        text.append("_atom_site.").append(tag).append("\n");
    for (const char *tag : {"auth_seq_id", "auth_comp_id", "auth_asym_id", "auth_atom_id"})
        text.append(hasAuthor ? "_atom_site." : "_other.").append(tag).append("\n");
    std::istringstream lines(pdb);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::string atom, serial, name, residue, chain, x, y, z, occupancy, b, element;
        int number = 0;
        if (!line.starts_with("ATOM") || !(words >> atom >> serial >> name >> residue >> chain >> number >>
                                           x >> y >> z >> occupancy >> b >> element))
            continue;
        for (const std::string &word : {atom, serial, element, name, std::string("."), residue, chain,
                                        std::to_string(number + numberShift), std::string("?"), x, y, z,
                                        occupancy, b, std::to_string(number), residue, chain, name})
            text += word + " ";
        text += "\n";
    }
    return text;
}

std::string fitLine(const std::string &more)
{
    return "-bestFit -outD fit.tab -nopdbRot " + more;
}

/// The calculated couplings and the tensor of a report.
std::vector<double> resultOf(const Ran &ran)
{
    const std::string report = ran.file("fit.tab");
    std::vector<double> result = saupeOf(report);
    for (const char *label : {"DATA Da_HN", "DATA Rhombicity", "DATA N ", "DATA RMS"})
        result.push_back(number(report, label));
    return result;
}

const std::string nefHead =
    "data_x\nsave_nef_rdc_restraint_list_a\n_nef_rdc_restraint_list.sf_category x\nloop_\n";

/// A NEF file of rows with these columns.
std::string nef(const std::string &rows)
{
    std::string text = nefHead;
    for (const char *tag : {"restraint_id", "chain_code_1", "sequence_code_1", "residue_name_1",
                            "atom_name_1", "chain_code_2", "sequence_code_2", "residue_name_2", "atom_name_2",
                            "weight", "target_value", "target_value_uncertainty"})
        text.append("_nef_rdc_restraint.").append(tag).append("\n");
    return text + rows + "stop_\nsave_\n";
}

const std::string someRows = "1 A 3 ILE H A 3 ILE N 1 8.271 0.16\n2 A 4 PHE H A 4 PHE N 1 10.489 0.16\n"
                             "3 A 5 VAL H A 5 VAL N 1 9.871 0.16\n4 A 6 LYS H A 6 LYS N 1 9.152 0.16\n"
                             "5 A 7 THR H A 7 THR N 1 3.700 0.16\n";

} // namespace

TEST(Archive, OneFitFromEveryForm)
{
    const std::string pdb = "-pdb ubi/1d3z_model1.pdb";
    const Ran told = goodRun(fitLine(pdb + " -inD ubi/bicelle_hn.tab"));
    const std::vector<double> expected = resultOf(told);
    expectNear({expected[5], expected[6]}, {-9.398, 0.156}, 5e-4);
    for (const char *form : {"-star", "-nef"}) {
        const Ran written = goodRun(std::string("-conv -inD ubi/bicelle_hn.tab -outD x.in ") + form);
        const Ran fitted = goodRun(fitLine(pdb + " -inD x.in"), {.files = {{"x.in", written.file("x.in")}}});
        EXPECT_EQ(fitted.file("fit.tab"), told.file("fit.tab")) << form;
        const Ran piped = goodRun(fitLine(pdb + " -inD - -quiet"),
                                  {.files = {{"x.in", written.file("x.in")}}, .stdinFile = "x.in"});
        EXPECT_EQ(piped.file("fit.tab"), told.file("fit.tab")) << form;
    }
    // As the archive has it: N first, HN for H, chains that the structure numbers.
    std::string turned = fileText(example("bicelle_hn_nfirst.tab"));
    const Ran nFirst = goodRun("-conv -nef -inD x.in -outD x.nef", {.files = {{"x.in", turned}}});
    expectNear(resultOf(goodRun(fitLine(pdb + " -inD x.nef"), {.files = {{"x.nef", nFirst.file("x.nef")}}})),
               expected, 1e-9);
}

TEST(Archive, MmcifIsThePdbFile)
{
    const std::string pdb = fileText(example("1d3z_model1.pdb"));
    const Ran told = goodRun("-bestFit -pdb in -inD ubi/bicelle_hn.tab -outD fit.tab -pdbRot t.pdb -H",
                             {.files = {{"in", pdb}}});
    const struct {
        const char *why;
        std::string text, options;
    } cases[] = {
        {"author numbers", asMmcif(pdb, 100), ""},
        {"label numbers", asMmcif(pdb, 0), " -label"},
        {"label numbers that are others", asMmcif(pdb, 100), " -label -a1 102"},
        {"no author columns", asMmcif(pdb, 0, false), ""},
    };
    for (const auto &one : cases) {
        const Ran ran =
            goodRun("-bestFit -pdb in -inD ubi/bicelle_hn.tab -outD fit.tab -pdbRot t.pdb -H" + one.options,
                    {.files = {{"in", one.text}}});
        EXPECT_EQ(ran.file("fit.tab").substr(ran.file("fit.tab").find("REMARK Order")),
                  told.file("fit.tab").substr(told.file("fit.tab").find("REMARK Order")))
            << one.why;
        if (one.options.empty()) {
            EXPECT_EQ(ran.file("t.pdb.0"), told.file("t.pdb.0")) << one.why;
        }
    }
}

TEST(Archive, WhatIsWrittenIsReadBack)
{
    const Ran table = goodRun(
        "-conv -trelm -inD x.in -outD out.tab",
        {.files = {{"x.in", nef("1 A 3 ILE H A 3 ILE N 1 8.271 0.16\n2 B 4 ALA CA B 4 ALA HA 0.25 -10.489 .\n"
                                "3 B 5 VAL QQG B 5 VAL CB 1 9.871 0.00123\n4 A 6 LYS QB A 6 LYS CB 1 -0.1 "
                                "2\n5 A 4 ALA MB A 4 ALA CB 1 5e-3 1\n"
                                "6 AB 7 THR C AB 8 LEU N 1 3.7 0.16\n")}}});
    const auto expected = tableRows(table.file("out.tab"));
    ASSERT_EQ(expected.size(), 6u);
    for (const char *form : {"-star", "-nef"}) {
        const Ran out = goodRun(std::string("-conv -inD x.in -outD y.in ") + form,
                                {.files = {{"x.in", table.file("out.tab")}}});
        const Ran back =
            goodRun("-conv -trelm -inD y.in -outD out.tab", {.files = {{"y.in", out.file("y.in")}}});
        EXPECT_EQ(tableRows(back.file("out.tab")), expected) << form;
    }
}

TEST(Archive, RowsThatAreNotUsedAreTold)
{
    const struct {
        std::string rows, told;
    } cases[] = {
        {"6 A 8 LEU H A 8 LEU N 0 1 1\n", "line 22: A 8 LEU H - A 8 LEU N: weight 0.\n"},
        {"6 A 8 LEU H A 8 LEU N 1 . 1\n", "line 22: A 8 LEU H - A 8 LEU N: no value.\n"},
        {"6 A 8 LEU H A 8 LEU N 1 1 1\n6 A 9 LEU H A 9 LEU N 1 1 1\n",
         "line 22: A 8 LEU H - A 8 LEU N: ambiguous (2 alternatives).\n"},
        {"6 A 8 LEU H A 8 LEU O 1 1 1\n", "O: not a nucleus with spin 1/2.\n"},
        {"6 A 8 LEU H A 8 LEU N 1 1000 1\n", "N: beyond 900 Hz.\n"},
        {"6 A 3 ILE N A 3 ILE H 1 8.271 0.16\n", "H: given twice (the same value as in line 17).\n"},
        {"6 A 3 ILE N A 3 ILE H 1 8.2 0.16\n", "1 couplings are given again with another value: two media"},
        {"6 A 8 LEU HBx A 8 LEU CB 1 1 1\n", "CB: stereo atoms not told apart (HBx).\n"},
        {"6 A 99 LEU H A 99 LEU N 1 1 1\n", "N: residue not in the structure.\n"},
        {"6 A 8 LEU HZ A 8 LEU N 1 1 1\n", "N: no atom HZ in that residue, it has N CA C O"},
        {"6 B 8 LEU H B 8 LEU N 1 1 1\n", "N: chain B not in the structure, it has chain A.\n"},
        {"6 A 8 LEU HD% A 8 LEU CG 1 1 1\n", "trelm: HD% read as HD* (1 atom)\n"},
        {"6 A 46 ALA HN A 46 ALA N 1 1 1\n7 A 46 ALA MB A 46 ALA CB 1 1 1\n",
         "trelm: HN read as H (1 atom), MB read as HB# (1 atom)\n"},
        {"6 A 7 THR MG A 7 THR CB 1 1 1\n", "trelm: MG read as HG2# (1 atom)\n"}, // HG1 is no methyl
        {"stop_ loop_ _nef_rdc_restraint.restraint_combination_id _nef_rdc_restraint.sequence_code_1 "
         "_nef_rdc_restraint.atom_name_1 _nef_rdc_restraint.sequence_code_2 _nef_rdc_restraint.atom_name_2 "
         "_nef_rdc_restraint.target_value\n1 8 H 8 N 1\n1 9 H 9 N 2\n",
         "line 23: 8 H - 8 N: ambiguous (2 alternatives).\n"},
    };
    for (const auto &one : cases) {
        const Ran ran = goodRun(fitLine("-pdb ubi/1d3z_model1.pdb -inD x.nef"),
                                {.files = {{"x.nef", nef(someRows + one.rows)}}});
        EXPECT_EQ(countOf(ran.err, one.told), 1) << one.told << ran.err;
    }
}

TEST(Archive, FaultsAreOneLineWithTheirPlace)
{
    const struct {
        std::string text, told;
    } cases[] = {
        {nefHead + "_a.b\n'x\n", "line 6: a quote that does not end on its line.\n"},
        {nefHead + "_a.b\n;x\n", "line 6: a text field that never ends.\n"},
        {nefHead + "_a.b _A.B\n", "line 5: the loop has the tag _A.B twice.\n"},
        {nefHead + "1\n", "line 4: a loop without tags.\n"},
        {nef("1 A 2\n"), "line 18: the loop has 12 tags, its last row 3 values.\n"},
        {nef("1 A 2 MET H A 2 MET N 1 1.2.3 1\n"), "line 17: 1.2.3 is no number.\n"},
        {nef("1 A 2 MET H A 2 MET N 1 nan 1\n"), "line 17: nan is no number.\n"},
        {nef("1 A 2 MET H A 2 MET N -1 1 1\n"), "line 17: a negative error or weight.\n"},
        {nef(someRows).substr(0, nef(someRows).size() - 6),
         "line 23: the file ends within the frame nef_rdc"},
        {nefHead + "_RDC.Val _RDC.Val_min _RDC.Val_max\n1 2 0\n",
         "line 6: the lower limit is above the upper one.\n"},
        {nefHead + "_RDC.ID\n1\n", "line 4: a loop of couplings without values.\n"},
        {"data_x\nloop_\n_a.b\n1\nstop_\n", "trelm: x.nef: no couplings in it.\n"},
        {nef(""), "trelm: x.nef: no couplings that can be used.\n"},
        {"\x1f\x8b\x08", "Error reading x.nef: the gzip file is cut.\n"},
        {"\x1f\x8b no gzip at all", "Error reading x.nef: unknown compression method.\n"},
    };
    for (const auto &one : cases) {
        const Ran ran = runProgram("-conv -trelm -inD x.nef -outD out.tab", {.files = {{"x.nef", one.text}}});
        EXPECT_EQ(ran.status, 1) << one.told;
        EXPECT_EQ(countOf(ran.err, one.told), 1) << one.told << ran.err;
        EXPECT_FALSE(ran.exists("out.tab")) << one.told;
    }
}

TEST(Archive, AFileOfSeveralMediaIsAskedForOne)
{
    std::string second = nef(someRows);
    second.replace(0, second.find("list_a") + 6, "save_nef_rdc_restraint_list_b");
    const Files files = {{"x.nef", nef(someRows + "6 A 8 LEU H A 8 LEU N 1 1 1\n") + second}};
    const std::string words = "-conv -trelm -inD x.nef -outD out.tab";
    const Ran first = goodRun(words, {.files = files});
    EXPECT_EQ(countOf(first.err, "2 media in x.nef, the first is used (-medium ID): a (6), b (5)\n"), 1)
        << first.err;
    EXPECT_EQ(tableRows(first.file("out.tab")).size(), 6u);
    EXPECT_EQ(tableRows(goodRun(words + " -medium b", {.files = files}).file("out.tab")).size(), 5u);
    const Ran none = runProgram(words + " -medium c", {.files = files});
    EXPECT_EQ(none.status, 1);
    EXPECT_EQ(countOf(none.err, "trelm: x.nef has no medium c: a (6), b (5).\n"), 1) << none.err;
}

TEST(Archive, ConventionsAreUndone)
{
    const std::string rows =
        "1 A 3 ILE H A 3 ILE N 1 10 1\n2 A 3 ILE C A 4 PHE N 1 10 1\n3 A 3 ILE CA A 3 ILE HA 1 10 1\n";
    const auto values = [&](const std::string &options) {
        const Ran ran =
            goodRun("-conv -trelm -inD x.nef -outD out.tab " + options, {.files = {{"x.nef", nef(rows)}}});
        std::vector<double> found;
        for (const auto &row : tableRows(ran.file("out.tab")))
            found.push_back(std::stod(row[row.size() - 5]));
        return found;
    };
    expectNear(values(""), {10.0, 10.0, 10.0}, 1e-6);
    expectNear(values("-rdcSign physical"), {10.0, 10.0, -10.0}, 1e-6);
    expectNear(values("-rdcScale nh"), {10.0, 1.2084, 20.65}, 0.02);
}
