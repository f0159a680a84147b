// No file of a run takes the place of another one.
#include "cli/run_program.h"
#include "common/file_text.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <set>

namespace {

TEST(FilesOfARun, EachHasAPlaceOfItsOwn)
{
    const std::string fit = "-bestFit -pdb in.pdb -inD in.tab -H ", sets = "-daFlex -inD in.tab -nRun 2 ";
    const struct {
        std::string options, first, second;
    } cases[] = {
        {fit + "-outD ./in.tab -pdbRot t", "-inD (in.tab)", "-outD (./in.tab)"},
        {fit + "-outD fit -pdbRot in.pdb", "-pdb (in.pdb)", "-pdbRot (in.pdb)"},
        {fit + "-outD t.3 -pdbRot t", "-outD (t.3)", "-pdbRot (t.3)"},
        {fit + "-mcDc -outDa da -outMap ./da -outD fit -pdbRot t", "-outDa (da)", "-outMap (./da)"},
        {fit + "-mcDc -outDa da -outFail da -outD fit -pdbRot t", "-outDa (da)", "-outFail (da)"},
        {sets + "-outSc x -outCol ./x -outD out", "-outSc (x)", "-outCol (./x)"},
        {sets + "-outSc in.tab -outD out", "-inD (in.tab)", "-outSc (in.tab)"},
        {"-daMl -inD in.tab -outSc out -outD out", "-outD (out)", "-outSc (out)"},
        {"-conv -inD in.tab -outD ./in.tab", "-inD (in.tab)", "-outD (./in.tab)"},
        {"-csSim -pdb in.pdb -pka in.tab -outPka in.tab", "-pka (in.tab)", "-outPka (in.tab)"},
    };
    for (const auto &c : cases) {
        const std::string table = fileText(example("bicelle_hn.tab"));
        const Ran ran = runProgram(c.options, {.files = {{"in.tab", table}, {"in.pdb", "ATOM\n"}}});
        EXPECT_EQ(ran.status, 1) << c.options;
        EXPECT_EQ(complaints(ran.err),
                  "trelm: " + c.first + " and " + c.second + " are one file: give each a name of its own.\n");
        EXPECT_EQ(ran.file("in.tab"), table);
        EXPECT_EQ(ran.file("in.pdb"), "ATOM\n");
    }
    EXPECT_EQ(goodRun("-conv -inD ubi/bicelle_hn.tab -outD /dev/null").err.find("one file"),
              std::string::npos);
}

TEST(FilesOfARun, StandardStreamsAndDevicesTakeTheirPlace)
{
    const std::string names[] = {"-pdb ubi/1d3z_model1.pdb", "-inD ubi/bicelle_hn.tab"};
    const Ran usual = goodRun("-bestFit -H -outD a -pdbRot t -rotID 2 " + names[0] + " " + names[1]);
    for (const auto &[words, input] : {std::pair{names[0] + " -inD -", "ubi/bicelle_hn.tab"},
                                       {names[1] + " -pdb -", "ubi/1d3z_model1.pdb"}}) {
        const Ran ran = goodRun("-bestFit -H -rotID 2 -outD - -pdbRot - " + words, {.stdinFile = input});
        EXPECT_NE(ran.out.find(usual.file("a") + usual.file("t")), std::string::npos) << words;
        EXPECT_FALSE(ran.exists("-")) << words;
        EXPECT_FALSE(ran.exists("-.0")) << words;
    }
    const Ran twice = runProgram("-bestFit -inD - -pdb -", {.stdinFile = "ubi/bicelle_hn.tab"});
    EXPECT_EQ(twice.status, 1);
    EXPECT_EQ(complaints(twice.err), "trelm: -pdb and -inD cannot both be read from standard input.\n");
    const Ran none = goodRun("-bestFit -H -outD a -nopdbRot -pdbRot t " + names[0] + " " + names[1]);
    EXPECT_EQ(none.file("a"), usual.file("a"));
    EXPECT_FALSE(none.exists("t") || none.exists("t.0") || none.exists(".0"));
    goodRun("-bestFit -H -outD a -pdbRot /dev/null " + names[0] + " " + names[1]);
    EXPECT_FALSE(std::filesystem::exists("/dev/null.0"));
}

TEST(FilesOfARun, OneThatCannotBeWrittenIsToldBeforeTheWork)
{
    const std::string line = "trelm: -outD: no/such cannot be written: No such file or directory.\n";
    const std::string words =
        "-bestFit -H -nopdbRot -pdb ubi/1d3z_model1.pdb -inD ubi/bicelle_hn.tab -outD no/such";
    const Ran told = goodRun(words);
    EXPECT_EQ(complaints(told.err), line + "DC Error opening output file no/such\n");
    EXPECT_EQ(tableRows(told.out).size(), 63U);
    const Ran strict = runProgram(words + " -strict");
    EXPECT_EQ(strict.status, 1);
    EXPECT_EQ(complaints(strict.err), line + "trelm: -strict: 1 warning, and so no result.\n");
    EXPECT_EQ(strict.out, "");
}

TEST(FilesOfARun, RunsAtOnceInOneFolderDoNotMix)
{
    const Ran ran = runProgram("-version");
    const std::string fit = std::string(TRELM_PROGRAM) +
                            " -bestFit -H -nopdbRot -pdb ubi/1d3z_model1.pdb -inD ubi/bicelle_hn.tab -d1 $i ";
    const std::string script = "cd " + ran.folder.string() + " && exec >log 2>&1\n" +
                               "for i in $(seq 20); do " + fit + "-outD own$i & " + fit +
                               "-outD shared & done; wait\n" + "for i in $(seq 20); do " + fit +
                               "-outD alone$i; done";
    ASSERT_EQ(std::system(script.c_str()), 0) << ran.file("log");
    std::set<std::string> results;
    for (int i = 1; i <= 20; ++i) {
        const std::string number = std::to_string(i);
        results.insert(ran.file("alone" + number));
        EXPECT_EQ(ran.file("own" + number), ran.file("alone" + number));
    }
    EXPECT_GT(results.size(), 10U);
    EXPECT_TRUE(results.contains(ran.file("shared")));
    for (const auto &entry : std::filesystem::directory_iterator(ran.folder))
        EXPECT_FALSE(entry.path().filename().string().starts_with('.')) << entry.path();
}

} // namespace
