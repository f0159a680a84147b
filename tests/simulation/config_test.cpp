#include "simulation/domains/config.h"

#include "common/said.h"
#include "common/temp_file.h"

#include <gmock/gmock.h>

#include <array>
#include <climits>

using namespace trelm;

namespace {

struct Read {
    int status = 0;
    std::string messages;
    DomainOptions options;
};

Read readLines(const std::string &text)
{
    const TempFile file(text);
    Read read;
    read.messages = said([&] {
                        read.status =
                            static_cast<int>(readConfig(file.name, read.options, standardMessages()));
                    }).err;
    return read;
}

} // namespace

TEST(Config, EachKeySetsItsField)
{
    const Read read = readLines("CENTER_PIVOT: 2\nPmax: 3.5\nOUTPUT_ENSEMBLE: 4\nALIGN_ALONG_Z: 5\n"
                                "FIX_POSITION_DOM1: 6\nENSEMBLE_CLASH: 7\nCLASH_DISTANCE: 8.5\n"
                                "ENSEMBLE_DENSITY: 9\nENSEMBLE_GAMMA: 10\nDOMAIN_ANGLE_VAR: 11\n"
                                "DOM_ANG_ALPHA: 12.5\nDOM_ANG_BETA: 13.5\nORIGIN_DOM1: 14\nORIGIN_DOM2: 15\n"
                                "START_RESID_1: 16\nEND_RESID_1: 17\nSTART_RESID_2: 18\nEND_RESID_2: 19\n"
                                "BETA_L: 20.5\nBETA_H: 21.5\nALPHA_CENTER: 22.5\nALPHA_WIDTH: 23.5\n"
                                "START_RES_ANGLE_1: 24\nEND_RES_ANGLE_1: 25\nSTART_RES_ANGLE_2: 26\n"
                                "END_RES_ANGLE_2: -27.9\n");
    const DomainOptions &g = read.options;
    EXPECT_EQ(read.messages, "");
    EXPECT_THAT((std::array{g.pivotCenter, g.outEflag, g.initOrientFlag, g.fixRotDomain, g.clashFlag, g.densE,
                            g.digPsiE, g.angleDomFlag, g.resDom1Origin, g.resDom2Origin, g.startResDom1,
                            g.endResDom1, g.startResDom2, g.endResDom2, g.startResPart1, g.endResPart1,
                            g.startResPart2, g.endResPart2}),
                testing::ElementsAre(2, 4, 5, 6, 7, 9, 10, 11, 14, 15, 16, 17, 18, 19, 24, 25, 26, -27));
    EXPECT_THAT(
        (std::array{g.clashDist, g.angleDom[0], g.angleDom[1], g.lBetaCone, g.hBetaCone, g.errAlphaCone}),
        testing::ElementsAre(8.5f, 12.5f, 13.5f, 20.5f, 21.5f, 23.5f));
}

TEST(Config, LaterOfThirdAngleAndOriginWins)
{
    const DomainOptions angle = readLines("ORIGIN_DOM1: 7\nDOM_ANG_GAMMA: 30\n").options;
    EXPECT_EQ(angle.angleDom[2], 30.0f);
    EXPECT_EQ(angle.resDom1Origin, 0);
    const DomainOptions origin = readLines("DOM_ANG_GAMMA: 30\nORIGIN_DOM1: 7\n").options;
    EXPECT_EQ(origin.angleDom[2], 0.0f);
    EXPECT_EQ(origin.resDom1Origin, 7);
}

TEST(Config, LinesAreReadOrRefused)
{
    const std::string unknown = "Error: Wrong input parameter in auto file\n";
    const std::string wrong = "Error: Input data in auto file have wrong format\n";
    const std::string notFinite = "Error: ENSEMBLE_DENSITY: in auto file needs a finite number, not ";
    const struct {
        const char *why;
        std::string text;
        int status, densE;
        std::string messages;
    } cases[] = {
        {"no lines", "", 0, 200, ""},
        {"white space, text behind the number, no last newline", "\t ENSEMBLE_DENSITY: \t5.9e1 per turn", 0,
         59, ""},
        {"line ends of other systems, blank lines at the end", "ENSEMBLE_DENSITY: 7\r\n\r\n \n", 0, 7, ""},
        {"the later line wins", "ENSEMBLE_DENSITY: 7\nENSEMBLE_DENSITY: 8\n", 0, 8, ""},
        {"unknown key, rest applies", "DENSITY: 3\nENSEMBLE_DENSITY: 7\n", 0, 7,
         unknown + "Line:DENSITY: 3\n"},
        {"keys are exact", "ensemble_density: 3\nENSEMBLE_DENSITY 4\n", 0, 200,
         unknown + "Line:ensemble_density: 3\n" + unknown + "Line:ENSEMBLE_DENSITY 4\n"},
        {"beyond int", "ENSEMBLE_DENSITY: 1e20\n", 0, INT_MAX, ""},
        {"no number", "ENSEMBLE_DENSITY: 7\nENSEMBLE_DENSITY: x\nENSEMBLE_DENSITY: 9\n", 1, 7,
         wrong + "Line:ENSEMBLE_DENSITY: x\n"},
        {"no blank", "ENSEMBLE_DENSITY:7\n", 1, 200, wrong + "Line:ENSEMBLE_DENSITY:7\n"},
        {"blank line in between", "ENSEMBLE_DENSITY: 7\n\nENSEMBLE_DENSITY: 9\n", 1, 7, wrong + "Line:\n"},
        {"no finite number", "ENSEMBLE_DENSITY: nan\n", 1, 200, notFinite + "nan\n"},
        {"infinite as float", "ENSEMBLE_DENSITY: 1e60\n", 1, 200, notFinite + "1e60\n"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.why);
        const Read read = readLines(c.text);
        EXPECT_EQ(read.status, c.status);
        EXPECT_EQ(read.options.densE, c.densE);
        EXPECT_EQ(read.messages, c.messages);
    }
}

TEST(Config, MissingFileIsToldAndNoNameIsNone)
{
    Read read;
    const Said messages = said([&] {
        EXPECT_EQ(readConfig("", read.options, standardMessages()), Status::ok);
        EXPECT_EQ(readConfig("none.inp", read.options, standardMessages()), Status::failed);
    });
    EXPECT_EQ(messages.err, "readConfig File open error: none.inp.\n");
}
