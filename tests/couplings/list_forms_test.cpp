// Coupling lists of other programs: what their readers make of them, as one text, and how they refuse.
#include "couplings/formats/forms.h"
#include "couplings/formats/take.h"
#include "support/text/text.h"

#include "common/heard.h"

#include <gtest/gtest.h>

namespace trelm {
namespace {

/// What a reader finds, a line for each row, then the media, the rows left out and the foreign data; or its
/// message.
std::string found(CouplingForm form, const std::string &text)
{
    Archive archive;
    Heard heard;
    if (readerOf(form)({text, "in"}, archive, heard.messages) != Status::ok)
        return heard.err;
    std::string all;
    for (const ArchiveRow &row : archive.rows) {
        appendf(all, "%zu: %s %g", row.line, pairText(row.i, row.j).c_str(), row.value);
        if (row.error)
            appendf(all, " +- %g", *row.error);
        if (row.weight != 1.0)
            appendf(all, " w %g", row.weight);
        if (row.scale != 1.0)
            appendf(all, " s %g", row.scale);
        if (row.alternatives != 1)
            appendf(all, " of %d", row.alternatives);
        appendf(all, " [%s]\n", archive.media[row.medium].name.c_str());
    }
    for (const Medium &medium : archive.media)
        if (medium.tensor)
            appendf(all, "%s %zu: %g %g\n", medium.name.c_str(), medium.rows, medium.tensor->da,
                    medium.tensor->rhombicity);
    for (const LeftOutRow &row : archive.leftOut)
        appendf(all, "%zu: %s: %s\n", row.line, row.pair.c_str(), row.reason.c_str());
    for (const ForeignData &data : archive.foreign)
        appendf(all, "%zu %s %zu\n", data.count, data.kind.c_str(), data.firstLine);
    return all;
}

struct FormCase {
    const char *why;
    std::string text, expected;
    CouplingForm detected = CouplingForm::table; ///< by its content; the table: not looked at
};

void expectFound(CouplingForm form, std::span<const FormCase> cases)
{
    for (const FormCase &one : cases) {
        EXPECT_EQ(found(form, one.text), one.expected) << one.why;
        if (one.detected != CouplingForm::table) {
            EXPECT_EQ(detectForm(one.text), form) << one.why;
        }
    }
}

const std::string axes = "assign (resid 500 and name OO)(resid 500 and name Z)(resid 500 and name X)"
                         "(resid 500 and name Y)";
const std::string pair = "(resid 5 and name N)(resid 5 and name HN)";

TEST(ReadXplor, TakesCouplingsAmongOtherRestraints)
{
    constexpr auto xplor = CouplingForm::xplor;
    const FormCase cases[] = {
        {"parts and axes in any order, quotes, comments, capitals",
         "! made\nREMARK assign (\n# assign (\n{ a { nested } one }\nclass rdcs\n"
         "ASSI ( name oo and resi 999 ) (resid 999 and name X) (resid 999 and name Y)\n"
         " ( resid 999 and name \"Z\" ) ! axes\n ( segid \"   A\" and resid 52B and name n )\n"
         " ( resn gly and resid 52B and name hn and segid a ) -1.25 2.5 ! it\n",
         "6: A 52B N - A 52B GLY HN -1.25 +- 2.5 [999]\n", xplor},
        {"two errors, numbers on the next line, no numbers of the line after",
         axes + pair + "\n 8.9 0.5 0.7\n 11 MET\n",
         "1: 5 N - 5 HN 8.9 +- 0.6 [500]\n1 a row of numbers that is no restraint 3\n", xplor},
        {"two restraints on a line, an integer, an error of 0", axes + pair + "100 0 " + axes + pair + ".5",
         "1: 5 N - 5 HN 100 [500]\n1: 5 N - 5 HN 0.5 [500]\n", xplor},
        {"alternatives, parts that exclude, a group",
         axes +
             "(resid 5 and (name HB1 or name HB2) and not segid REF)((resid 5 or resid 7) and name CB)1 2\n" +
             axes + "(resid 5 and name HB#)(all and residue 5 and name CB)1 2\n",
         "1: 5 HB1 - 5 CB 1 +- 2 of 4 [500]\n2: 5 HB# - 5 CB 1 +- 2 [500]\n", xplor},
        {"media share a number in segments of their own",
         "assign (resid 1 and name OO and segid P)(resid 1 and name Z and segid P)(resid 1 and name X and "
         "segid P)"
         "(resid 1 and name Y and segid P)" +
             pair +
             "1\n"
             "assign (resid 1 and name OO and segid Q)(resid 1 and name Z and segid Q)(resid 1 and name X "
             "and segid Q)"
             "(resid 1 and name Y and segid Q)" +
             pair + "2\n",
         "1: 5 N - 5 HN 1 [1]\n2: 5 N - 5 HN 2 [1:Q]\n", xplor},
        {"restraints of other kinds",
         "assign (resid 3 and name HA) (attr x > 0) 3.0 1.0 1.0 peak 7\n or (resid 5) (resid 6)\n"
         "assign () () () () 1 60 20 2\nassign () () () () 6.5\nassign () () () () () 50 60\n"
         "assign () () () () () () 1\n" +
             axes + "() () () 1 2\nto assign peaks\n",
         "1 distance 1\n2 dihedral angle or J coupling 3\n1 restraint of 5 selections 5\n"
         "1 restraint of 6 selections 6\n1 shift anisotropy 7\n1 restraint of 0 selections 8\n",
         xplor},
        {"pairs that cannot be used",
         axes + pair + "1 2 3 4\n" + axes + "(resid 5 and name N)(resid 5)1\n" + axes +
             "(resid 5 and name N)(resid 5:9 and name HN)1\n" + axes +
             "(resid 5 and name N)(around 5 (name HN))1\n" + axes +
             "(resid 5 and resid 6 and name N)(resid 5 and name HN)1\n",
         "1: ( resid 5 and name N ) ( resid 5 and name HN ): two couplings in one restraint\n"
         "2: ( resid 5 and name N ) ( resid 5 ): names no two atoms\n"
         "3: ( resid 5 and name N ) ( resid 5:9 and name HN ): names no two atoms\n"
         "4: ( resid 5 and name N ) ( around 5 ( name HN ) ): a selection that is not understood\n"
         "5: ( resid 5 and resid 6 and name N ) ( resid 5 and name HN ): a selection that nothing can meet\n",
         xplor},
    };
    expectFound(xplor, cases);
}

TEST(ReadXplor, RefusesWhatIsBroken)
{
    std::string deep = axes;
    deep.append(40, '(').append("name N").append(40, ')');
    const std::string failure = "trelm: in, line ";
    const FormCase cases[] = {
        {"a comment without end", "! x\n{ a { b }\n" + axes + pair + "1\n",
         failure + "2: a comment in braces that never ends.\n"},
        {"the same behind a restraint", axes + pair + "{ 1\n",
         failure + "1: a comment in braces that never ends.\n"},
        {"a quote without end", axes + "(\nsegid \"A and name N)",
         failure + "2: a quote that does not end on its line.\n"},
        {"a selection without end", axes + "(resid 5\n" + axes,
         failure + "1: a selection that never ends.\n"},
        {"cut in a selection", "\n" + axes + "(resid 5\n",
         failure + "2: the file ends within a selection.\n"},
        {"cut behind a selection", axes + pair, failure + "1: the file ends within a restraint.\n"},
        {"five selections", axes + "(resid 5 and name N) 1 2\n",
         failure + "1: a coupling of 5 selections, where six belong.\n"},
        {"no value", axes + pair + "x\n", failure + "1: a coupling without a value.\n"},
        {"two points", axes + pair + "1.2.3\n", failure + "1: 1.2.3 is no number.\n"},
        {"NaN", axes + pair + "NaN 1\n", failure + "1: NaN is no number.\n"},
        {"no error", axes + pair + "1 0.5x\n", failure + "1: 0.5x is no number.\n"},
        {"negative error", axes + pair + "1 -0.5\n", failure + "1: a negative error or weight.\n"},
        {"a line without end", axes + std::string(70000, ' ') + pair,
         failure + "1: a line of more than 65536 characters.\n"},
        {"deep", deep + "(name H) 1\n",
         "1: ( ( ( ( ( ( ( ( ( ( ( ( ( ( ( ( ( ( ( ( ( ( ( ( ( ( ( ( ( ( ...: a selection that is nested too "
         "deep\n"},
    };
    expectFound(CouplingForm::xplor, cases);
}

TEST(ReadCyana, TakesBothFormsAndRefusesWhatIsBroken)
{
    constexpr auto cyana = CouplingForm::cyana;
    const std::string head = "# Orientation  Magnitude\n 1 13.280 0.252 76\n 2 0 0 TNS # unknown\n";
    const std::string row = "11 MET H 11 MET N 3.745 4.0 0.5 1\n", failure = "trelm: in, line ";
    const FormCase cases[] = {
        {"new", " 3 2.0 0.1 TNS\n" + head + row + "12 UNK QB 12 UNK CB 1 0 1 2 0.3 ! scaled\n",
         "5: 11 MET H - 11 MET N 3.745 +- 4 w 0.5 [1]\n6: 12 QB - 12 CB 1 s 0.3 [2]\n3 0: 2 0.1\n1 1: 13.28 "
         "0.252\n",
         cyana},
        {"new, without orientations", "11 MET H 11 MET N 3.745 4.0\r\n",
         "1: 11 MET H - 11 MET N 3.745 +- 4 []\n", cyana},
        {"old", "11 MET HN 3.75\n12 GLY HA2 -1 2 0.5\n13 VAL HB 1\n",
         "1: 11 MET HN - 11 MET N 3.75 []\n2: 12 GLY HA2 - 12 GLY CA -1 +- 2 w 0.5 []\n"
         "3: 13 VAL HB - 13 VAL: its heavy atom is not known\n",
         cyana},
        {"not declared", head + "11 MET H 11 MET N 3.745 4.0 0.5 3\n",
         failure + "4: the orientation 3 was not declared.\n"},
        {"declared twice", head + " 2 1 0.1 80\n", failure + "4: the orientation is declared twice.\n"},
        {"no tensor", " 1 13.280 1.2.3 76\n",
         failure + "1: an orientation has a number, a magnitude, a rhombicity and a residue.\n"},
        {"cut to look like the old form", head + row + "12 SER H 12\n",
         failure + "5: a row of 4 words, the first one has 10.\n"},
        {"cut before the orientation", head + "11 MET H 11 MET N 3.745 4.0 1.0\n",
         failure + "4: the orientation (none) was not declared.\n"},
        {"no atom", row.substr(0, 10) + "MET 11 N 3\n",
         failure + "1: the second atom is no residue number, residue name and atom name.\n"},
        {"no number", "11 MET H nan\n", failure + "1: nan is no number.\n"},
    };
    expectFound(cyana, cases);
}

TEST(ReadRosetta, TakesBothFormsAndRefusesWhatIsBroken)
{
    constexpr auto rosetta = CouplingForm::rosetta;
    const std::string failure = "trelm: in, line ";
    const FormCase cases[] = {
        {"list", "# made\n\n( 2 N A ) (2 H A) 2.269 0.2\n(2 N A or 2 N B)(2 HA* A or 2 HA* B)-1 0\n",
         "3: A 2 N - A 2 H 2.269 +- 0.2 []\n4: A 2 N - A 2 HA* -1 of 2 []\n", rosetta},
        {"columns", "2 N 2 H 2.269\n3 N 2 C -1e1 # it\n", "1: 2 N - 2 H 2.269 []\n2: 3 N - 2 C -10 []\n",
         rosetta},
        {"no chain", "( 2 N ) ( 2 H ) 1 1\n",
         failure + "1: a row has two parentheses of residue, atom and chain.\n"},
        {"cut", "( 2 N A ) ( 2 H A", failure + "1: a row has two parentheses of residue, atom and chain.\n"},
        {"no error", "( 2 N A ) ( 2 H A ) 1\n",
         failure + "1: value and error stand behind the parentheses.\n"},
        {"uneven", "( 2 N A or 2 N B ) ( 2 H A ) 1 1\n",
         failure + "1: the two sides have not equally many atoms.\n"},
        {"no number", "( 2 N A ) ( 2 H A ) 1.2.3 1\n", failure + "1: 1.2.3 is no number.\n"},
        {"cut columns", "2 N 2 H 1\n2 N 2 H\n",
         failure + "2: a row has five columns: residue, atom, residue, atom, value.\n"},
        {"a line without end", "2 N 2 H 1\n" + std::string(70000, '1'),
         failure + "2: a line of more than 65536 characters.\n"},
    };
    expectFound(rosetta, cases);
}

TEST(ReadColumns, TakesLabelsAndHeadersAndRefusesWhatIsBroken)
{
    constexpr auto csv = CouplingForm::csv;
    const std::string head = "resid1,atom1,resid2,atom2,value\n", failure = "trelm: in, line ";
    const FormCase cases[] = {
        {"labels",
         "# made\n14N-H\t-14.5 0.1\nA.16H-A.15C 0.5 # it\n4CA-HA# 1\n-3N-H 2\nB.-1C--2N 3\n2N 112.1\n",
         "2: 14 N - 14 H -14.5 +- 0.1 []\n3: A 16 H - A 15 C 0.5 []\n4: 4 CA - 4 HA# 1 []\n"
         "5: -3 N - -3 H 2 []\n6: B -1 C - B -2 N 3 []\n1 a value of one atom 7\n",
         csv},
        {"all columns",
         "chain,Residue 1,res_2,resname_1,resname_2,Atom-I,Atom-J,\"RDC [Hz]\",err,weight,medium,note\n"
         "A, 5,6,ALA,GLY,H,N,-1.5,0.5,0.25,\"a, b\",x\nA,5,6,,,\"H5\"\"\",N,NA,,.,peg,\n",
         "2: A 5 ALA H - A 6 GLY N -1.5 +- 0.5 w 0.25 [a, b]\n3: A 5 H5\" - A 6 N: no value\n"
         "1 the column note 1\n",
         csv},
        {"other separators", "resid1;atom1;resid2;atom2;d\r\n5;H;5;N;1\r\n", "2: 5 H - 5 N 1 []\n", csv},
        {"blanks", "resid atom1 atom2 d dd\n5 H N 1 2\n", "2: 5 H - 5 N 1 +- 2 []\n"},
        {"no value", head + "5,H,5,N,\n", "2: 5 H - 5 N: no value\n", csv},
        {"no label", "14N-H 1\nNH 2\n", failure + "2: NH is no label like 14N-H.\n"},
        {"cut label", "14N-H 1\n15N-H\n",
         failure + "2: a label stands before a value and perhaps an error.\n"},
        {"no number", "14N-H 1.2.3\n", failure + "1: 1.2.3 is no number.\n"},
        {"NaN", head + "5,H,5,N,NaN\n", failure + "2: NaN is no number.\n"},
        {"cut row", head + "5,H,5", failure + "2: a row of 3 cells under a header of 5.\n"},
        {"open quote", head + "5,\"H,5,N,1\n", failure + "2: a quote that does not end on its line.\n"},
        {"text behind a quote", head + "5,\"H\"x,5,N,1\n", failure + "2: a quote ends within a cell.\n"},
        {"no residue", head + "GLN5,H,5,N,1\n", failure + "2: the row names no two atoms.\n"},
        {"no values", "resid1,atom1,resid2,atom2\n", failure + "1: no column of values in the header.\n"},
        {"no atoms", "resid1,atom,resid2,value\n",
         failure + "1: no columns of the two atoms in the header.\n"},
        {"a column twice", "resid,resid1,atom1,atom2,value\n",
         failure + "1: the column resid1 is there twice.\n"},
    };
    expectFound(csv, cases);
}

/// A form that is written, and what of the table it has no room for.
struct WrittenForm {
    CouplingForm form;
    ArchiveWriter write;
    bool hasChains = true, hasResNames = true;
    const char *groupName = "HB#"; ///< what it has for it
};

TEST(WriteForms, WhatIsWrittenIsReadBack)
{
    Heard heard;
    Archive source;
    const std::string text =
        "chain,resid1,resid2,resname1,resname2,atom1,atom2,value,error\n"
        "A,5,5,ALA,ALA,H,N,-8.17,0.16\nA,52B,51,GLY,LEU,\"H5\"\"\",\"C,x\",0.1234567,1e-6\n"
        "B,-3,-3,ALA,ALA,HB#,CB,-1.5e-9,123456.7\n";
    ASSERT_EQ(readColumns({text, "in"}, source, heard.messages), Status::ok);
    const std::vector<ArchiveRow> rows = source.rows;
    DTable table;
    ASSERT_EQ(takeArchive("in", {}, source, table, heard.messages), Status::ok);
    for (std::size_t k = 0; k < rows.size(); ++k) {
        DCalc &calc = table.calculated()[k];
        calc.valid = 1;
        calc.d = table.observed()[k].d;
        calc.sigma = table.observed()[k].sigma;
    }
    const WrittenForm forms[] = {{CouplingForm::csv, writeCsv},
                                 {CouplingForm::cyana, writeCyana, false, true, "QB"},
                                 {CouplingForm::rosetta, writeRosettaList, true, false, "HB*"}};
    for (const WrittenForm &form : forms) {
        std::string out;
        form.write({table, "in", StatedTensor{-9.25, 0.25}}, out);
        EXPECT_EQ(detectForm(out), form.form);
        Archive back;
        ASSERT_EQ(readerOf(form.form)({out, "out"}, back, heard.messages), Status::ok) << heard.err << out;
        ASSERT_EQ(back.rows.size(), rows.size());
        for (std::size_t k = 0; k < rows.size(); ++k) {
            ArchiveRow expected = rows[k];
            for (NamedAtom *atom : {&expected.i, &expected.j}) {
                atom->chain = form.hasChains ? atom->chain : Name{};
                atom->resName = form.hasResNames ? atom->resName : Name{};
                atom->atomName = atom->atomName == "HB#" ? Name::of(form.groupName) : atom->atomName;
            }
            EXPECT_EQ(pairText(back.rows[k].i, back.rows[k].j), pairText(expected.i, expected.j)) << out;
            EXPECT_EQ(static_cast<float>(back.rows[k].value), static_cast<float>(expected.value)) << out;
            EXPECT_EQ(static_cast<float>(*back.rows[k].error), static_cast<float>(*expected.error)) << out;
        }
        if (form.form == CouplingForm::cyana) {
            EXPECT_EQ(back.media[0].tensor->da, -9.25);
            EXPECT_EQ(back.media[0].tensor->rhombicity, 0.25);
        }
    }
}

} // namespace
} // namespace trelm
