#include "errors/jackknife.h"

#include "common/heard.h"

#include <algorithm>

namespace trelm {
namespace {

TEST(SelectDcFrac, FractionsOfTheCouplings)
{
    struct {
        float frac;
        int fixed, kept;
    } constexpr choices[] = {{7.9f, 1, 7},  {50.0f, 1, 20}, {0.2f, 0, 4}, {0.99f, 0, 19},
                             {0.01f, 0, 0}, {-3.0f, 1, 0},  {2.0f, 0, 20}};
    for (const auto &choice : choices) {
        std::vector<unsigned char> marks(20, 1);
        RandomStream random;
        Heard heard;
        EXPECT_EQ(selectDcFrac(random, marks, choice.frac, choice.fixed, heard.messages), choice.kept)
            << choice.frac;
        EXPECT_EQ(std::ranges::count(marks, 1), choice.kept);
    }
}

} // namespace
} // namespace trelm
