// What the guides tell of the options, against the options that the run knows.
#include "command/flag_hint.h"
#include "command/option_guide.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <set>

namespace trelm {
namespace {

std::vector<GuideEntry> allEntries()
{
    std::vector<GuideEntry> entries;
    for (const GuideSection &section : guideSections())
        for (const GuideBlock &block : guideBlocks(section))
            entries.insert(entries.end(), block.entries.begin(), block.entries.end());
    return entries;
}

TEST(OptionGuide, HasEveryOptionAndNoOther)
{
    std::set<std::string_view> told;
    for (const GuideEntry &entry : allEntries())
        told.insert(entry.flag);
    const std::vector<std::string_view> flags = knownFlags();
    EXPECT_EQ(told, std::set<std::string_view>(flags.begin(), flags.end()));
}

TEST(OptionGuide, TheHelpTextLeavesOutTheOldOptionsAlone)
{
    const std::set<std::string_view> silent = {
        "-asRan",       "-clearMl",  "-noclearMl",  "-csSim",  "-csThresh", "-d1",
        "-dN",          "-dStep",    "-daFlex",     "-dbg",    "-dcEns",    "-elTrelmFree",
        "-elTrelmGrid", "-fit",      "-flex",       "-in",     "-inCS",     "-inE",
        "-inc",         "-inp",      "-kAtt",       "-lM",     "-list",     "-nRun",
        "-nofit",       "-out",      "-outCS",      "-outCol", "-outE",     "-outEAx",
        "-outS",        "-pRatio",   "-path",       "-pow",    "-rList",    "-ref",
        "-rim",         "-rimDisc",  "-sID",        "-sList",  "-sPath",    "-sStep",
        "-stTrelmGrid", "-vcThresh", "-version",    "-names",  "-model",    "-addH",
        "-strict",      "-quiet",    "-nopdbRot",   "-outJ",   "-outM",     "-fit1",
        "-fitN",        "-noSuper",  "-fitAtoms",   "-outQ",   "-free",     "-freeSeed",
        "-dropOut",     "-outAss",   "-needVector", "-inF",    "-medium",   "-rdcSign",
        "-rdcScale",    "-label",    "-star",       "-nef",    "-cyana",    "-rosettaList",
        "-csv"};
    std::set<std::string_view> helped;
    for (const HelpSection &help : helpSections())
        for (const HelpBlock &block : help.blocks)
            for (const HelpEntry &entry : block.entries)
                helped.insert(entry.flag);
    for (const std::string_view flag : knownFlags())
        EXPECT_NE(helped.contains(flag), silent.contains(flag)) << flag;
}

TEST(OptionGuide, LeavesOutNothingOfTheHelpText)
{
    std::multiset<std::string_view> titles;
    for (const GuideSection &section : guideSections()) {
        titles.insert(section.helpTitle);
        EXPECT_FALSE(guideBlocks(section).empty()) << section.title;
        EXPECT_TRUE(std::filesystem::exists(TRELM_EXAMPLES "/../docs/" + std::string(section.page)))
            << section.page;
    }
    for (const HelpSection &help : helpSections())
        EXPECT_EQ(titles.count(help.title), 1U) << help.title;
}

TEST(OptionGuide, CorrectsOnlyWhatTheHelpTextSays)
{
    for (const Correction &correction : corrections()) {
        int lines = 0;
        for (const HelpSection &help : helpSections())
            for (const HelpBlock &block : help.blocks)
                for (const HelpEntry &entry : block.entries)
                    lines +=
                        entry.flag == correction.flag && entry.description == correction.description ? 1 : 0;
        EXPECT_GT(lines, 0) << correction.flag;
    }
}

TEST(OptionGuide, TellsTheDefaultsOfTheRun)
{
    struct {
        HelpEntry entry;
        const char *expected;
    } cases[] = {
        {{"-cut", "cutoff", "400.0", ""}, "6e-06"},
        {{"-stdCone", "width", "10.0", ""}, "5"},
        {{"-nAdjustMc", "steps", "1000", ""}, "100"},
        {{"-wv", "conc", "0.06", ""}, "0.05"}, // a float that is no double
        {{"-rM", "radius", "20.0", ""}, "20.0"},
        {{"-nSel", "count", "0", ""}, "0"}, // it fills two fields
        {{"-nSel", "count", "30", ""}, "30"},
        {{"-s1", "res1", "first", ""}, "first"},
        {{"-outD", "outName", "stdout", ""}, "stdout"},
        {{"-bic", "", "off", ""}, "on"},
        {{"-pf1", "", "on", ""}, "off"},
        {{"-clearMl", "", "", ""}, "off"},
        {{"-noclearMl", "", "", ""}, "on"},
        {{"-anDc", "", "on", ""}, "off"}, // of its four fields one has already what it stores
        {{"-help", "", "", ""}, ""},
    };
    for (const auto &check : cases)
        EXPECT_EQ(realDefault(check.entry), check.expected) << check.entry.flag;

    std::set<std::string_view> apart;
    for (const GuideEntry &entry : allEntries())
        if (!entry.helpDefault.empty())
            apart.insert(entry.flag);
    EXPECT_EQ(apart, (std::set<std::string_view>{"-cut", "-nAdjustMc", "-stdCone"}));
}

} // namespace
} // namespace trelm
