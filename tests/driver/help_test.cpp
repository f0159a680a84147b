// The help text against the options that the run knows.
#include "driver/help.h"
#include "driver/params.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <set>

namespace trelm {
namespace {

std::set<std::string_view> optionFlags()
{
    std::set<std::string_view> flags(specialFlags().begin(), specialFlags().end());
    for (const auto table : optionTables())
        for (const OptionRow &row : table)
            flags.insert(row.flag);
    return flags;
}

std::vector<HelpEntry> allEntries()
{
    std::vector<HelpEntry> entries;
    for (const HelpSection &section : helpSections())
        for (const HelpBlock &block : section.blocks)
            entries.insert(entries.end(), block.entries.begin(), block.entries.end());
    return entries;
}

TEST(Help, EveryOptionIsDocumentedButTheOldOnes)
{
    const std::set<std::string_view> silent = {
        "-asRan",  "-clearMl", "-noclearMl",   "-csSim",       "-csThresh",    "-d1",      "-dN",   "-dStep",
        "-daFlex", "-dbg",     "-dcEns",       "-elTrelmFree", "-elTrelmGrid", "-fit",     "-flex", "-in",
        "-inCS",   "-inE",     "-inc",         "-inp",         "-kAtt",        "-lM",      "-list", "-nRun",
        "-nofit",  "-out",     "-outCS",       "-outCol",      "-outE",        "-outEAx",  "-outS", "-pRatio",
        "-path",   "-pow",     "-rList",       "-ref",         "-rim",         "-rimDisc", "-sID",  "-sList",
        "-sPath",  "-sStep",   "-stTrelmGrid", "-vcThresh",    "-version"};
    std::set<std::string_view> documented;
    for (const HelpEntry &entry : allEntries())
        documented.insert(entry.flag);
    const std::set<std::string_view> known = optionFlags();
    for (const std::string_view flag : known)
        EXPECT_NE(documented.contains(flag), silent.contains(flag)) << flag;
    for (const std::string_view flag : documented)
        EXPECT_TRUE(known.contains(flag) || flag == "-incl") << flag;
}

/// The default of a field as a number; nothing for a text.
std::optional<double> defaultOf(const OptionRow &row)
{
    RunOptions options;
    TrelmInfo trelmInfo;
    DcInfo dcInfo;
    PDBSelectInfo sInfo;
    DTensor dTensor;
    const OptionRecords records = {&options, &trelmInfo, &dcInfo, &sInfo, &dTensor};
    return std::visit(
        [&](auto target) -> std::optional<double> {
            const auto &field = fieldOf(records, target);
            if constexpr (std::is_arithmetic_v<std::remove_cvref_t<decltype(field)>>)
                return static_cast<double>(field);
            else
                return std::nullopt;
        },
        row.target);
}

TEST(Help, DefaultsAreThoseOfTheRecords)
{
    const std::set<std::string_view> apart = {"-cut", "-stdCone", "-nAdjustMc"};
    int numbers = 0;
    for (const HelpEntry &entry : allEntries()) {
        const std::string shown(entry.defaultValue);
        std::optional<bool> on;
        for (const auto table : optionTables()) {
            for (const OptionRow &row : table) {
                const std::optional<double> value = defaultOf(row);
                if (row.flag != entry.flag || !value)
                    continue;
                if (row.preset && entry.argument.empty())
                    on = on.value_or(true) && *value == *row.preset;
                char *end = nullptr;
                const double number = std::strtod(shown.c_str(), &end);
                // -nSel fills two fields; the section on assignments means the second.
                if (row.preset || end == shown.c_str() || apart.contains(row.flag) ||
                    row.target == Target(&TrelmInfo::sCount))
                    continue;
                EXPECT_NEAR(number, *value, 1e-6 * std::abs(number)) << entry.flag;
                ++numbers;
            }
        }
        if (on) {
            EXPECT_EQ(shown, *on ? "on" : "off") << entry.flag;
        }
    }
    EXPECT_GT(numbers, 90);
}

TEST(Help, TheTextAsUsersKnowIt)
{
    testing::internal::CaptureStderr();
    printInfo();
    const std::string text = testing::internal::GetCapturedStderr();
    std::size_t place = 0;
    for (const char *line : {"trelm",
                             "ARGUMENTS FOR STERIC TRELM\n",
                             " -wv      conc     [0.05]    Liquid Crystal Concentration [mg/ml].\n",
                             "\nDipolar Interaction Value Calculation:\n",
                             "ARGUMENTS FOR ELECTROSTATIC TRELM\n",
                             " -cut     cutoff   [400.0]   ",
                             "ARGUMENTS FOR FREE FORMAT, STERIC TRELM\n",
                             "ARGUMENTS FOR BEST-FIT (SVD/POWELL)\n",
                             " -nAdjustMc steps  [1000]    ",
                             " -stdCone width    [10.0]    ",
                             " -fixCone          [off]     Fix Size of Cone.\n",
                             "ARGUMENTS FOR UNASSIGNED BEST-FIT (exhSVD)\n",
                             "ARGUMENTS FOR ADDITiON OF STRUCTURAL NOISE\n",
                             " -nofixCone        [on]      Fix Size of Cone.\n",
                             " -fixCone          [off]     Don't Fix Size of Cone.\n",
                             "ARGUMENTS FOR ANALYSIS OF ORDER MATRIX\n",
                             "ARGUMENTS FOR ANALYSIS OF DIPOLAR COUPLINGS\n",
                             "ARGUMENTS FOR ANALYSIS OF PDB FILE\n",
                             " -charmm22         [off]     Apply CHARMM Partial Charges.\n",
                             "ARGUMENTS FOR Da & R HISTOGRAM DETERMINATION\n",
                             "ARGUMENTS FOR Da & R LIKELIHOOD DETERMINATION\n",
                             "ARGUMENTS FOR CONVERSION OF DIPOLAR COUPLING TABLE\n",
                             "COMMOM ARGUMENTS\n"}) {
        const std::size_t found = text.find(line, place);
        EXPECT_NE(found, std::string::npos) << line;
        place = found == std::string::npos ? place : found;
    }
}

TEST(Help, TheSelectionHasAHelpTextOfItsOwn)
{
    std::string words[] = {"trelm", "-help", "-inv"};
    char *argv[] = {words[0].data(), words[1].data(), words[2].data(), nullptr};
    PDBSelectInfo sInfo;
    testing::internal::CaptureStderr();
    getPDBSelectArgs(3, argv, &sInfo);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), " -res      resID  Single Residue for Selection.\n"
                                                      " -r1       res1   First Residue in Segment.\n"
                                                      " -rN       resN   Last Residue in Segment.\n"
                                                      " -atomName aList  Atom Name List  (also -atom).\n"
                                                      " -resName  rList  Res Name List   (Default: *).\n"
                                                      " -chain    cList  Chain Name List (Default: *).\n"
                                                      " -seg      sList  Seg Name List   (Default: *).\n"
                                                      " -id       sID    Selection ID.\n"
                                                      " -inv             Invert Selection.\n"
                                                      "Special Class Selection:\n"
                                                      " -protein        Select Only Canonical Amino Acids.\n"
                                                      "Reset Selection; No Other Selection Performed:\n"
                                                      " -clear          Clear Selection for All Atoms.\n"
                                                      " -set            Set Selection for All Atoms.\n"
                                                      "Name Matching Modes:\n"
                                                      " -exact        Match Names Exactly (Default).\n"
                                                      " -regex        Regular Expression Pattern Matching.\n"
                                                      " -glob         Glob-style Pattern Matching.\n"
                                                      "PDB Input Options:\n"
                                                      " -hetatm       Interpret HETATM records as ATOMs.\n");
    EXPECT_EQ(sInfo.selectMode, 1);
}

} // namespace
} // namespace trelm
