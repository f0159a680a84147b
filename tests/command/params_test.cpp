// Every option by its row, contradictions, lists, and values that are none.
#include "command/params.h"

#include "common/heard.h"
#include "common/line.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <set>

namespace trelm {
namespace {

using Words = std::vector<std::string>;

/// A command line and what it was read into.
struct Parsed {
    Options options;
    std::optional<Line> words; ///< texts of the options point into it
    Status status = Status::failed;
    std::string told;

    void read(Words line)
    {
        line.insert(line.begin(), "trelm");
        words.emplace(std::move(line));
        Heard heard;
        CommandLine commandLine(words->argc(), words->argv(), ArgumentCheck::none, heard.messages);
        status = getparams(commandLine, options);
        told = heard.err;
    }
};

std::string show(const std::string &text)
{
    return text;
}
std::string show(const char *text)
{
    return text != nullptr ? text : "(null)";
}
template <class Number>
std::string show(Number value)
{
    return std::to_string(static_cast<double>(value));
}

std::string valueOf(const OptionRow &row, Options &options)
{
    return std::visit([&](auto target) { return show(options.*target); }, row.target);
}

/// A value that no preset has and no test gives, in every number.
void spoil(const OptionRow &row, Options &options)
{
    std::visit(
        [&](auto target) {
            auto &field = options.*target;
            using Value = std::remove_reference_t<decltype(field)>;
            if constexpr (std::is_arithmetic_v<Value> || std::is_enum_v<Value>)
                field = static_cast<Value>(77);
        },
        row.target);
}

std::vector<OptionRow> allRows()
{
    std::vector<OptionRow> rows;
    for (const auto table : optionTables())
        rows.insert(rows.end(), table.begin(), table.end());
    return rows;
}

/// Reads one option in front of a line that gives the selection something to do.
void readSpoiled(Parsed &parsed, const std::vector<OptionRow> &rows, const Words &option)
{
    for (const OptionRow &row : rows)
        spoil(row, parsed.options);
    Words line = option;
    for (const char *word : {"-pdb", "x", "-atom", "A", "-resName", "R", "-chain", "C", "-seg", "S"})
        line.emplace_back(word);
    parsed.read(line);
}

TEST(Params, EachFlagSetsItsFieldAndOnlyIt)
{
    const std::vector<OptionRow> rows = allRows();
    Parsed plain;
    readSpoiled(plain, rows, {});
    const std::set<std::string_view> pinning = {"-da", "-dr", "-dadr", "-fixed"}; // these move limits, too
    for (const OptionRow &tried : rows) {
        SCOPED_TRACE(tried.flag);
        if (tried.flag == "-inv") // without effect beside a list
            continue;
        bool takesValue = false;
        std::set<std::size_t> targets;
        for (const OptionRow &row : rows) {
            if (row.flag != tried.flag)
                continue;
            takesValue = takesValue || !row.preset;
            for (std::size_t i = 0; i < rows.size(); ++i)
                if (rows[i].target == row.target)
                    targets.insert(i);
        }
        Parsed parsed;
        readSpoiled(parsed, rows,
                    takesValue ? Words{std::string(tried.flag), "7"} : Words{std::string(tried.flag)});
        EXPECT_EQ(parsed.status, Status::ok);
        const std::string value = valueOf(tried, parsed.options);
        EXPECT_TRUE(tried.preset ? value == show(*tried.preset) : value == "7" || value == show(7)) << value;
        for (std::size_t i = 0; i < rows.size() && !pinning.contains(tried.flag); ++i) {
            if (!targets.contains(i)) {
                EXPECT_EQ(valueOf(rows[i], parsed.options), valueOf(rows[i], plain.options))
                    << "changes what belongs to " << rows[i].flag;
            }
        }
    }
}

TEST(Params, NoTwoOptionsShareAFieldByMistake)
{
    const std::set<std::pair<std::string_view, std::string_view>> shared = {
        {"-in", "-inD"}, {"-out", "-outD"},    {"-dStep", "-sStep"},  {"-d1", "-s1"},
        {"-dN", "-sN"},  {"-saupe", "-align"}, {"-atom", "-atomName"}};
    const std::vector<OptionRow> rows = allRows();
    for (std::size_t i = 0; i < rows.size(); ++i) {
        for (std::size_t j = i + 1; j < rows.size(); ++j) {
            const bool same = rows[i].target == rows[j].target && rows[i].preset == rows[j].preset;
            const bool mode =
                rows[i].target == Target(&ChargeOptions::elFlag); // of the simulation modes, and -el
            const bool comparison = rows[i].flag.starts_with("-an") || rows[i].flag == rows[j].flag;
            const bool allNames =
                rows[i].flag == "-exact" || rows[i].flag == "-regex" || rows[i].flag == "-glob";
            if (same && !mode && !comparison && !allNames) {
                EXPECT_TRUE(shared.contains({rows[i].flag, rows[j].flag}))
                    << rows[i].flag << " and " << rows[j].flag;
            }
        }
    }
}

struct Case {
    Words line;
    std::function<double(const Parsed &)> field;
    double expected;
};

void expectAll(std::span<const Case> cases)
{
    for (const Case &check : cases) {
        Parsed parsed;
        parsed.read(check.line);
        std::string text;
        for (const std::string &word : check.line)
            text += word + " ";
        EXPECT_EQ(parsed.status, Status::ok) << text << parsed.told;
        EXPECT_EQ(check.field(parsed), check.expected) << text;
    }
}

TEST(Params, OfTwoContradictingFlagsTheLaterRowWins)
{
    const auto mode = [](const Parsed &p) { return p.options.trelmMode; };
    const auto kind = [](const Parsed &p) { return p.options.spreadMode; };
    const auto action = [](const Parsed &p) { return p.options.opCode; };
    const auto format = [](const Parsed &p) { return p.options.outFormat; };
    const auto radius = [](const Parsed &p) { return p.options.radiusModel; };
    const auto electric = [](const Parsed &p) { return p.options.elFlag; };
    const Case cases[] = {
        {{"-x"}, mode, 1},
        {{"-daMl", "-daFlex"}, mode, 10},
        {{"-struc", "-conv"}, mode, 16},
        {{"-anDc", "-anA"}, mode, 13},
        {{"-bestFit", "-elTrelm"}, mode, 7},
        {{"-bestFit", "-elTrelm"}, electric, 1},
        {{"-elTrelmGrid", "-stTrelm"}, electric, 1},
        {{"-stTrelm", "-el"}, electric, 1},
        {{"-mcStruc", "-rand"}, kind, 3},
        {{"-single", "-exhaustSel"}, kind, 0},
        {{"-anDc"}, action, 1},
        {{"-anDc", "-anA"}, action, 1},
        {{"-max", "-anDc"}, action, 5},
        {{"-anDc"}, [](const Parsed &p) { return p.options.c1; }, 0},
        {{"-c1", "3", "-anDc"}, [](const Parsed &p) { return p.options.c1; }, 3},
        {{"-tbl", "-xplor"}, format, 2},
        {{"-rosetta", "-trelm"}, format, 5},
        {{"-rM", "25", "-pf1"}, radius, 25},
        {{"-pf1"}, radius, 33.5},
        {{"-3D", "-bic"}, radius, 0},
        {{"-rM", "-5"}, radius, -5},
        {{"-rM", "5", "-rM", "6"}, radius, 5},
        {{"-inc", "-excl"}, [](const Parsed &p) { return p.options.excludeMode; }, 2},
        {{"-s1", "4", "-d1", "9"}, [](const Parsed &p) { return p.options.segFirst; }, 4},
        {{"-nocharmm", "-charmm22"}, [](const Parsed &p) { return p.options.charmm; }, 0},
        {{"-ave", "file", "-noave"}, [](const Parsed &p) { return p.options.optExtrem; }, 1},
        {{"-qStd", "-qDa"}, [](const Parsed &p) { return p.options.qFlag; }, 2},
        {{"-nSel", "5"}, [](const Parsed &p) { return p.options.sCount; }, 5},
        {{"-nSel", "5"}, [](const Parsed &p) { return p.options.nSel; }, 5},
        {{"-dbg"}, [](const Parsed &p) { return p.options.RunOptions::dbgFlag; }, 1},
        {{"-dbg", "2"}, [](const Parsed &p) { return p.options.RunOptions::dbgFlag; }, 2},
        {{"-pdb", "x", "-nofit"}, [](const Parsed &p) { return p.options.fitFlag; }, 0},
        {{"-noeuler", "-euler"}, [](const Parsed &p) { return p.options.TrelmInfo::eulerFlag; }, 0},
        {{"-cut", "-1e-7"}, [](const Parsed &p) { return p.options.cutoffPot; }, -1e-7},
        {{"-x"}, [](const Parsed &p) { return p.options.coneWidth; }, 5.0},
    };
    expectAll(cases);
}

TEST(Params, TheTensorFollowsItsMode)
{
    const auto mode = [](const Parsed &p) { return p.options.tensorMode; };
    const Case cases[] = {
        {{"-da", "0.001"}, mode, 4},
        {{"-svd", "-dr", "0.001"}, mode, 4},
        {{"-da", "0.5", "-nofixed"}, mode, 3},
        {{"-dadr", "-saupe", "1", "2", "3", "4", "5"}, mode, 4},
        {{"-da", "0.5", "-nofixed"}, [](const Parsed &p) { return p.options.daMax; }, double{0.01f}},
        {{"-da", "0.5"}, [](const Parsed &p) { return p.options.daMax; }, 0.5},
        {{"-da", "0.5", "-daMin", "0.25"}, [](const Parsed &p) { return p.options.daMin; }, 0.25},
        {{"-fixed", "-theta", "30"}, [](const Parsed &p) { return p.options.thetaMin; }, 30},
        {{"-dadr", "-theta", "30"}, [](const Parsed &p) { return p.options.thetaMin; }, -360},
        {{"-fixed", "-phiMax", "99"}, [](const Parsed &p) { return p.options.phiMax; }, 99},
        {{"-align", "1", "2", "3", "4", "-5"}, [](const Parsed &p) { return p.options.userSaupe[4]; }, -5},
        {{"-align", "1", "1", "1", "1", "1", "-saupe", "2", "2", "2", "2", "2"},
         [](const Parsed &p) { return p.options.userSaupe[0]; },
         2},
    };
    expectAll(cases);
}

TEST(Params, TheSelectionIsReadWithAStructureOnly)
{
    const auto mode = [](const Parsed &p) { return p.options.selectMode; };
    const auto first = [](const Parsed &p) { return p.options.res1; };
    const auto last = [](const Parsed &p) { return p.options.resN; };
    const auto byResidue = [](const Parsed &p) { return p.options.resIDMode; };
    const auto byAtom = [](const Parsed &p) { return p.options.atomNameMode; };
    const Case cases[] = {
        {{"-res", "7"}, last, 0},
        {{"-pdb", "x", "-res", "7"}, last, 7},
        {{"-pdb", "x", "-res", "7"}, byResidue, 1},
        {{"-pdb", "x", "-r1", "10"}, first, 0},
        {{"-pdb", "x", "-r1", "10"}, last, 10},
        {{"-pdb", "x", "-res", "7", "-rN", "12"}, first, 7},
        {{"-pdb", "x", "-r1", "3", "-rN", "*"}, byResidue, 0},
        {{"-pdb", "x", "-r1", "3", "-rN", "*"}, mode, 2},
        {{"-pdb", "x", "-inv"}, mode, -1},
        {{"-pdb", "x", "-inv", "-atom", "CA"}, mode, 2},
        {{"-pdb", "x", "-set", "-atom", "CA"}, mode, 1},
        {{"-pdb", "x", "-atom", "*"}, byAtom, 0},
        {{"-pdb", "x", "-atom", "CA N"}, byAtom, 1},
        {{"-pdb", "x", "-glob", "-chain", "A"}, [](const Parsed &p) { return p.options.chainNameMode; }, 3},
        {{"-pdb", "x", "-aRegex", "-glob", "-atom", "C"}, byAtom, 2},
    };
    expectAll(cases);

    Parsed told;
    told.read({"-pdb", "x", "-verb", "-r1", "2", "-rN", "9", "-atom", "CA N"});
    EXPECT_EQ(told.told, "PDB Selection: 2 to 9 Atoms: CA N Residues: * Chains * Segs: *.\n");
}

TEST(Params, ListsFillTheirRecordsAndTheSharedCounter)
{
    const auto counter = [](const Parsed &p) { return std::ssize(p.options.fixedResidues); };
    const auto matrix = [](const Parsed &p) { return p.options.userSaupe1[4]; };
    const Case cases[] = {
        {{"-inS1", "1", "2", "3", "4", "-5"}, matrix, -5},
        {{"-inS1", "1", "2", "3", "4", "-5", "-inS", "6", "7", "8", "9", "10"}, matrix, 10},
        {{"-twist", "0", "0", "1"}, [](const Parsed &p) { return p.options.twistAxis[2]; }, 1},
        {{"-x"}, counter, 3},
        {{"-inS", "6", "7", "8", "9", "10"}, counter, 5},
        {{"-inS", "6", "7", "8", "9", "10", "-fixAa", "4"}, counter, 1},
        {{"-fixAa", "4", "5", "-fixRes", "3", "4", "9"}, counter, 3},
        {{"-fixAa", "4", "5", "-fixRes", "3"},
         [](const Parsed &p) { return std::ssize(p.options.classes); },
         2},
        {{"-fixRes", "3", "-7"}, [](const Parsed &p) { return p.options.fixedResidues[1]; }, -7},
        {{"-dcID", "a", "b"}, [](const Parsed &p) { return std::ssize(p.options.media); }, 2},
        {{"-dcID"}, [](const Parsed &p) { return std::ssize(p.options.media); }, 1},
        {{"-w", "1", "0", "-1"}, [](const Parsed &p) { return p.options.wCount; }, 3},
    };
    expectAll(cases);
}

TEST(Params, TextsAndTheEnvironment)
{
    setenv("PDBH_DIR", "/pdb", 1);
    setenv("PDBH_LIST", "lost", 1);
    Parsed parsed;
    parsed.read({"-in", "a", "-inD", "b", "-rList", "all", "-list", "mine", "-rem", "a remark", "-ave"});
    unsetenv("PDBH_DIR");
    unsetenv("PDBH_LIST");
    EXPECT_EQ(parsed.options.inDName, "b");
    EXPECT_EQ(parsed.options.pdbPath, "/pdb");
    EXPECT_EQ(parsed.options.pdbList, "mine");
    EXPECT_STREQ(parsed.options.remark, "a remark");
    EXPECT_EQ(parsed.options.aveName, "");
    EXPECT_EQ(parsed.options.resNames.substr(0, 8), "ALA ARG ");
    EXPECT_EQ(parsed.options.resNames.substr(72), "TYR VAL xPRO");
    EXPECT_EQ(parsed.told, "");
}

TEST(Params, ValuesThatAreNoneAreToldOnceAndTheRunGoesOn)
{
    const std::string none = " is not a number, 0 is used.";
    const struct {
        Words line;
        std::string told;
    } cases[] = {
        {{"-dot", "abc"}, "the value abc of option -dot" + none},
        {{"-dot", "12abc"}, "the value 12abc of option -dot is not a number, 12 is used."},
        {{"-dot", "7.5"}, "the value 7.5 of option -dot is not an integer, 7 is used."},
        {{"-dot", "99999999999"},
         "the value 99999999999 of option -dot is out of range, 2147483647 is used."},
        {{"-rM", "1e60"}, "the value 1e60 of option -rM is out of range, 3.40282e+38 is used."},
        {{"-rM", "nan"}, "the value nan of option -rM" + none},
        {{"-rM", "-pf1"}, "the value -pf1 of option -rM" + none},
        {{"-rM", ""}, "the value  of option -rM" + none},
        {{"-rM", "+-5"}, "the value +-5 of option -rM" + none},
        {{"-stdCone", "x"}, "the value x of option -stdCone" + none},
        {{"-cut", "x"}, "the value x of option -cut" + none},
        {{"-nSel", "x"}, "the value x of option -nSel" + none},
        {{"-pdb", "p", "-r1", "x"}, "the value x of option -r1" + none},
        {{"-pdb", "p", "-dbg", "x"}, "the value x of option -dbg" + none},
        {{"-w", "1", "x"}, "the value x of option -w" + none},
        {{"-fixRes", "x"}, "the value x of option -fixRes" + none},
        {{"-hinge", "x", "1", "2"}, "the value x of option -hinge" + none},
        {{"-align", "x", "1", "2", "3", "4"}, "the value x of option -align" + none},
        {{"-nSel"}, "option -nSel has no value."},
        {{"-pdb", "p", "-rN"}, "option -rN has no value."},
        {{"-pdb"}, "option -pdb has no value."},
        {{"-w"}, "option -w has no value."},
        {{"-pdb", "p", "-dbg"}, ""},
        {{"-dbg", "-pdb", "p"}, ""},
        {{"-ave"}, ""},
        {{"-rM", "+5.e-1", "-dot", "+5", "-cut", ".5"}, ""},
    };
    for (const auto &check : cases) {
        Parsed parsed;
        parsed.read(check.line);
        EXPECT_EQ(parsed.status, Status::ok) << check.line[0];
        EXPECT_EQ(parsed.told, check.told.empty() ? "" : "Warning: " + check.told + "\n");
    }
    Parsed four;
    four.read({"-saupe", "1", "2", "3", "4"});
    EXPECT_EQ(four.status, Status::ok);
    EXPECT_EQ(four.told, "GORVAT Error: -saupe option requires 5 values.\n");
}

TEST(Params, ListsOfAnotherLengthEndTheReading)
{
    const auto longList = [](const char *flag, std::size_t length) {
        Words line(length + 1, "1");
        line[0] = flag;
        return line;
    };
    const struct {
        Words line;
        const char *told;
    } cases[] = {
        {{"-cut", "1", "2"}, "-cut option requires 1 value only.\n"},
        {{"-cut"}, "-cut option requires 1 value only.\n"},
        {{"-inS1", "1", "2", "3", "4"}, "-inS1 option requires 5 values.\n"},
        {longList("-inS2", 6), "-inS2 option requires 5 values.\n"},
        {{"-inS"}, "-inS option requires 5 values.\n"},
        {longList("-hinge", 4), "-hinge option requires 3 values.\n"},
        {longList("-twist", 2), "-twist option requires 3 values.\n"},
        {longList("-fixAa", 26), "option -fixAa takes at most 25 values, 26 were given.\n"},
        {longList("-fixRes", 801), "option -fixRes takes at most 800 values, 801 were given.\n"},
        {longList("-dcID", 4), "option -dcID takes at most 3 values, 4 were given.\n"},
    };
    for (const auto &check : cases) {
        Parsed parsed;
        parsed.read(check.line);
        EXPECT_EQ(parsed.status, Status::failed) << check.line[0];
        EXPECT_EQ(parsed.told, std::string("GORVAT Error: ") + check.told);
    }
    Parsed full;
    full.read(longList("-fixRes", 800));
    EXPECT_EQ(full.options.fixedResidues.size(), 800U);
    Parsed stopped;
    stopped.read({"-inS1", "1", "-outA", "later", "-outD", "earlier"});
    EXPECT_EQ(stopped.options.outAName, "");
    EXPECT_EQ(stopped.options.outDName, "earlier");
}

} // namespace
} // namespace trelm
