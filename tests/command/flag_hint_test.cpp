// What a mistyped option probably meant.
#include "command/flag_hint.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace trelm {
namespace {

TEST(FlagHint, NearWordsAreFoundAndOthersAreNot)
{
    struct {
        std::string word;
        const char *meant;
    } cases[] = {
        {"-outd", "-outD"},        // not -out, a letter away: the case is the smaller fault
        {"-incl", "-inc"},         // the help text's word for it
        {"-pdbrot", "-pdbRot"},    // a wrong case in a long name
        {"-PDB", "-pdb"},          // three of them in a short one
        {"-bsetFit", "-bestFit"},  // neighbours exchanged
        {"-bestFits", "-bestFit"}, // a letter in excess
        {"-stTrlem", "-stTrelm"},  // exchanged, in a name that four others begin with
        {"--help", "-help"},       // the habit of other programs
        {"-fracAdjustM", "-fracAdjustMc"},
        {"-kLadjusMc", "-kLAdjustMc"}, // a missing letter and a case
        {"-rm", "-rM"},                // two letters: the case alone
        {"-r2", ""},                   // else -r1, -rA, -rM and more would do
        {"-h", "-H"},
        {"-x", ""},
        {"-stray", ""}, // two letters from -struc: too far for five
        {"-charge2s", ""},
        {"-outD", ""}, // no fault at all
        {"-help", ""},
        {"-", ""},
        {"", ""},
        {"-" + std::string(100000, 'o'), ""},
    };
    for (const auto &check : cases)
        EXPECT_EQ(nearestFlag(check.word), check.meant) << check.word.substr(0, 20);
}

TEST(FlagHint, EveryOptionIsNoFaultAndEveryWrongCaseIsMended)
{
    const std::vector<std::string_view> flags = knownFlags();
    EXPECT_GT(flags.size(), 250U);
    for (const std::string_view flag : flags) {
        EXPECT_EQ(nearestFlag(flag), "") << flag;
        std::string doubled = std::string(flag) + flag.back(); // "-outDD"
        if (flag.size() > 3) {
            EXPECT_NE(nearestFlag(doubled), "") << doubled;
        }
    }
}

} // namespace
} // namespace trelm
