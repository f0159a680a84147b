// No file of a run takes the place of another one.
#include "cli/run_program.h"

#include <gtest/gtest.h>

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

} // namespace
