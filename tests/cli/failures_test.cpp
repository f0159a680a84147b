// Runs that must fail, and say why in one line.
#include "cli/run_program.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace {

std::vector<std::string> fitOf(const std::string &pdb, const std::string &table)
{
    return {"-bestFit", "-pdb", pdb, "-inD", table, "-outD", "fit.tab", "-pdbRot", "t.pdb", "-H"};
}

struct FailureCase {
    const char *why;
    std::vector<std::string> args;
    std::vector<const char *> lines; ///< each once on the error stream
};

TEST(Failures, InputThatCannotBeUsed)
{
    const std::string pdb = example("1d3z_model1.pdb");
    const std::string table = example("bicelle_hn.tab");
    const std::string longName(5000, 'n');
    const std::vector<FailureCase> cases = {
        {"no structure",
         fitOf("none.pdb", table),
         {"PDB Error opening PDB file none.pdb\n", "Error reading PDB input none.pdb\n"}},
        {"no table",
         fitOf(pdb, "none.tab"),
         {"RdTable File open error: none.tab.\n", "Error reading DC input none.tab\n"}},
        {"a folder for a structure", fitOf("/", table), {"Error reading PDB input /\n"}},
        {"a folder for a table", fitOf(pdb, "/"), {"Error reading DC input /\n"}},
        {"an endless line", fitOf("/dev/zero", table), {"Error reading PDB input /dev/zero\n"}},
        {"an endless table", fitOf(pdb, "/dev/zero"), {"Error reading DC input /dev/zero\n"}},
        {"an empty structure", fitOf("/dev/null", table), {"/dev/null, 0 Atoms"}},
        {"an empty table",
         fitOf(pdb, "/dev/null"),
         {"RdTable Error: no entries in /dev/null\n", "Error reading DC input /dev/null\n"}},
        {"a structure for a table", fitOf(pdb, pdb), {"Error reading DC input"}},
        {"a name of 5000 letters",
         fitOf(longName, table),
         {"PDB Error opening PDB file n", "Error reading PDB input n"}},
        {"four values",
         {"-anA", "-inS1", "1", "2", "3", "4"},
         {"GORVAT Error: -inS1 option requires 5 values.\n",
          "TRELM Error extracting command-line arguments.\n"}},
    };
    for (const FailureCase &failure : cases) {
        SCOPED_TRACE(failure.why);
        const Ran ran = runProgram(failure.args);
        EXPECT_EQ(ran.status, 1) << ran.err;
        for (const char *line : failure.lines)
            EXPECT_EQ(countOf(ran.err, line), 1) << line << ran.err.substr(0, 2000);
        EXPECT_EQ(countOf(ran.err, "REMARK Memory Allocation Status."), 1);
    }
}

TEST(Failures, TablesWithFaults)
{
    const std::string vars = "VARS RESID_I RESNAME_I ATOMNAME_I RESID_J RESNAME_J ATOMNAME_J D DD W\n";
    const std::string format = "FORMAT %5d %6s %6s %5d %6s %6s %9.3f %9.3f %.2f\n";
    const std::string row = "2 GLN H 2 GLN N -8.170 1.000 1.00\n";
    struct Case {
        const char *why;
        std::string table;
        int status;
        const char *line;
    };
    const std::vector<Case> cases = {
        {"no VARS line", format + row, 1, "RdTable Error: no variables found.\n"},
        {"a format too few", vars + "FORMAT %5d %6s\n" + row, 1, "RdTable Error: VARS/FORMAT mismatch:\n"},
        {"a tolerance too few", vars + format + "TOLERANCE 1\n" + row, 1,
         "RdTable Error: VARS/TOLERANCE mismatch:\n"},
        {"a format that is none", "VARS RESID_I D\nFORMAT %d %z\n1 2\n", 1, "RdTable Error: bad format"},
        {"remarks alone", "REMARK nothing\n", 1, "RdTable Error: no entries in"},
        {"zero bytes", vars + format + std::string(3, '\0') + row, 1, "Error reading DC input"},
        {"letters for a coupling", vars + format + "2 GLN H 2 GLN N x 1.000 1.00\n", 0,
         "RdTable Warning: Bad F-Item 7:\n"},
        {"a short row", vars + format + "2 GLN H 2 GLN N -8.170 1.000\n", 0,
         "RdTable Warning: Bad F-Item 9:\n"},
        {"a nucleus without a ratio, last row", vars + format + row + "2 GLN H 2 GLN X1 -8.170 1.000 1.00\n",
         1, "Dipolar Interaction - Unknown atom X1.\n"},
        {"a nucleus without a ratio, earlier row",
         vars + format + "2 GLN H 2 GLN X1 -8.170 1.000 1.00\n" + row, 0,
         "Dipolar Interaction - Unknown atom X1.\n"},
        {"a name too long", vars + format + "2 GLN ABCDEFGHIJKLMNOPQRST 2 GLN N -8.170 1.000 1.00\n" + row, 0,
         "PDB Error: string item too long: QRST\n"},
    };
    for (const Case &fault : cases) {
        SCOPED_TRACE(fault.why);
        const Ran ran =
            runProgram(fitOf(example("1d3z_model1.pdb"), "in.tab"), {.files = {{"in.tab", fault.table}}});
        EXPECT_EQ(ran.status, fault.status) << ran.err;
        EXPECT_GE(countOf(ran.err, fault.line), 1) << ran.err;
    }
}

TEST(Failures, ResultsThatAreNoNumbersAreNotWritten)
{
    const std::string table =
        "VARS RESID_I ATOMNAME_I RESID_J ATOMNAME_J D DD\nFORMAT %5d %6s %5d %6s %9.3f %9.3e\n";
    std::string rows;
    for (int residue = 2; residue < 19; ++residue)
        rows += std::to_string(residue) + " H " + std::to_string(residue) + " N -8.0 " +
                (residue == 3 ? "1e-16\n" : "1.0\n");
    const std::vector<FailureCase> cases = {
        {"an error that is none",
         fitOf(example("1d3z_model1.pdb"), "in.tab"),
         {"DC Error: the order matrix is no finite number: look at D, DD, W and the tensor options.\n"}},
        {"the same by least squares",
         fitOf(example("1d3z_model1.pdb"), "in.tab"),
         {"DC Error: the differences of the couplings are no finite numbers: look at D and DD.\n"}},
    };
    for (const FailureCase &failure : cases) {
        std::vector<std::string> args = failure.args;
        std::string text = table + rows;
        if (&failure != &cases.front()) {
            args.emplace_back("-nofixed");
            text = table + "2 H 2 N -8.0 1e-38\n" + rows;
        }
        const Ran ran = runProgram(args, {.files = {{"in.tab", text}}});
        EXPECT_EQ(ran.status, 1) << failure.why << ran.err;
        EXPECT_EQ(countOf(ran.err, failure.lines[0]), 1) << failure.why << ran.err;
        EXPECT_FALSE(ran.exists("fit.tab")) << failure.why;
        EXPECT_FALSE(ran.exists("t.pdb.0")) << failure.why;
    }
}

TEST(Failures, AStructureCutAnywhereNeverCrashes)
{
    const std::string atom =
        "ATOM      1  N   MET A   1      52.923 -90.016   8.509  1.00  9.67           N  \n";
    for (std::size_t length = 0; length <= atom.size(); ++length) {
        const Ran ran = runProgram({"-bestFit", "-pdb", "cut.pdb", "-outD", "fit.tab", "-pdbRot", "t.pdb"},
                                   {.files = {{"cut.pdb", atom.substr(0, length)}}});
        EXPECT_LE(ran.status, 1) << "cut at " << length << "\n" << ran.err;
    }
}

TEST(Failures, OutputThatCannotBeWritten)
{
    const std::string pdb = example("1d3z_model1.pdb");
    const std::string table = example("bicelle_hn.tab");
    const Ran full =
        runProgram({"-bestFit", "-pdb", pdb, "-inD", table, "-outD", "/dev/full", "-pdbRot", "t.pdb"});
    EXPECT_EQ(full.status, 1);
    EXPECT_EQ(countOf(full.err, "Error writing /dev/full.\n"), 1) << full.err;

    const Ran remarks = runProgram(fitOf(pdb, table), {.stdoutFile = "/dev/full"});
    EXPECT_EQ(remarks.status, 1);
    EXPECT_EQ(countOf(remarks.err, "Error writing (stdout).\n"), 1) << remarks.err;

    // A table that cannot be opened goes to standard output, so that nothing is lost.
    const Ran noFolder =
        runProgram({"-bestFit", "-pdb", pdb, "-inD", table, "-outD", "none/fit.tab", "-pdbRot", "t.pdb"});
    EXPECT_EQ(noFolder.status, 0);
    EXPECT_EQ(countOf(noFolder.err, "DC Error opening output file none/fit.tab\n"), 1);
    EXPECT_EQ(tableRows(noFolder.out).size(), 63u);

    const Ran noTurned =
        runProgram({"-bestFit", "-pdb", pdb, "-inD", table, "-outD", "fit.tab", "-pdbRot", "none/t.pdb"});
    EXPECT_EQ(noTurned.status, 1);
    EXPECT_GE(countOf(noTurned.err, "PDB Error opening PDB file none/t.pdb\n"), 1);
}

TEST(CommandLine, HelpEndsWithTheFailureLine)
{
    const Ran none = runProgram({});
    const Ran help = runProgram({"-bestFit", "-help"});
    for (const Ran *ran : {&none, &help}) {
        EXPECT_EQ(ran->status, 1);
        EXPECT_EQ(countOf(ran->err, "ARGUMENTS FOR "), 12);
        EXPECT_EQ(countOf(ran->err, "COMMOM ARGUMENTS"), 1);
        EXPECT_EQ(countOf(ran->err, "TRELM Error extracting command-line arguments.\n"), 1);
        EXPECT_TRUE(ran->out.empty());
    }
}

TEST(CommandLine, WordsNobodyUsedAreTold)
{
    const std::vector<std::string> args = {"-bestFit",
                                           "-pdb",
                                           example("1d3z_model1.pdb"),
                                           "-inD",
                                           example("bicelle_hn.tab"),
                                           "-outD",
                                           "fit.tab",
                                           "-pdbRot",
                                           "t.pdb",
                                           "-incl",
                                           "stray"};
    struct Case {
        const char *mode;
        const char *line;
        int count;
    };
    for (const Case &check :
         {Case{"ALL", "  Arguments 10 to 11 may be unknown or unused:\n  ' -incl stray '\n", 1},
          Case{"flags", "  Argument 10 may be unknown or unused:\n  ' -incl '\n", 1},
          Case{"Debug", " 10. 0   5 Characters: '-incl'\n", 1}}) {
        const Ran ran = runProgram(args, {.environment = {{"NMRCHECK", check.mode}}});
        EXPECT_EQ(ran.status, 0);
        EXPECT_EQ(countOf(ran.err, check.line), check.count) << ran.err;
    }
    EXPECT_EQ(countOf(runProgram(args).err, "may be unknown"), 0);
}

TEST(CommandLine, MemoryTraceBeginsAfterTheArguments)
{
    const Ran ran =
        runProgram({"-bestFit", "-dbg", "2", "-pdb", example("1d3z_model1.pdb"), "-pdbRot", "t.pdb"});
    EXPECT_GT(countOf(ran.err, "\n_MEM VOI_ALLOC Name: pdb"), 0) << ran.err.substr(0, 500);
    EXPECT_EQ(countOf(ran.err, "Name: matrix Alloc: "),
              8); // three coordinate and five charge buffers, no record
    EXPECT_EQ(countOf(runProgram({"-bestFit", "-dbg", "1", "-pdbRot", "t.pdb"}).err, "_MEM"), 0);
}

TEST(CommandLine, ListsLongerThanTheirCapacityAreRefused)
{
    std::vector<std::string> args = {"-bestFit", "-fixAa"};
    args.insert(args.end(), 26, "1");
    const Ran ran = runProgram(args);
    EXPECT_EQ(ran.status, 1);
    EXPECT_EQ(countOf(ran.err, "25"), 1) << ran.err;
    EXPECT_EQ(countOf(ran.err, "TRELM Error extracting command-line arguments.\n"), 1);
}

} // namespace
