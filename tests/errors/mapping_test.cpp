// The mappings of a fit's error in the process: what whole runs do not show.
#include "errors/coupling_noise.h"
#include "errors/structural_noise.h"

#include "common/said.h"
#include "common/temp_file.h"
#include "couplings/fit.h"
#include "couplings/prepared.h"

#include <gmock/gmock.h>

#include <sstream>

namespace trelm {
namespace {

using ::testing::HasSubstr;

/// The N-H couplings of ubiquitin and a mapping whose files go away.
struct Mapping : Prepared {
    TrelmInfo info;
    TempFile couplings, turned, fails, da, map, angles, saupe;
    Mapping() : Prepared(ubiquitinFolder + "bicelle_hn.tab")
    {
        info.validCountD = valid;
        info.trelmMode = 7;
    }
    ~Mapping()
    {
        for (const char *frame : {".0", ".1", ".2", ".3"})
            std::filesystem::remove(turned.name + frame);
    }
    MappingSetup setup(int mapCount)
    {
        const MappingFiles files = {couplings.name, turned.name, da.name,   map.name,
                                    fails.name,     angles.name, saupe.name};
        return {&pdb, nullptr, &table, &info, files, mapCount};
    }
};

// They were once those of the last noisy fit, below the order matrix of the mean tensor.
TEST(CouplingNoise, ReportsTheAnglesOfTheMeanTensor)
{
    Mapping p;
    p.info.mcAdjustFlag = 0;
    p.info.mapMode = 0;
    p.info.kSigma = 10.0f;
    said([&] { EXPECT_EQ(mapSimDC(p.setup(5)), 0); });
    DTensor mean;
    mean.saupe = p.table.dTensor.saupe;
    solveEuler(mean);
    std::string expected;
    reportEuler(expected, mean);
    for (const TempFile *file : {&p.couplings, &p.fails}) {
        std::ostringstream text;
        text << std::ifstream(file->name).rdbuf();
        EXPECT_THAT(text.str(), HasSubstr(expected.substr(0, expected.find("\n\n"))));
    }
}

TEST(StructuralNoise, RefusesASearchWithoutFits)
{
    Mapping p;
    p.info.nConeAdjust = 0;
    const ResidueOffset offset = {1, 1, 76};
    const Said told = said([&] { EXPECT_EQ(noiseStrucSimDC(p.setup(1), offset), 1); });
    EXPECT_EQ(told.err, "trelm: -nCone 0: the search needs one fit at least.\n");
}

} // namespace
} // namespace trelm
