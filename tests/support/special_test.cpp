#include "support/numerics/special.h"

#include "common/said.h"

namespace trelm {
namespace {

TEST(Special, ClosedForms)
{
    const struct {
        const char *call;
        float value;
        double exact;
    } rows[] = {{"gammln(0.5)", gammln(0.5f), 0.572364943},
                {"gammln(2.5)", gammln(2.5f), 0.284682870},
                {"gammln(5)", gammln(5.0f), 3.178053830},
                {"gammln(10.5)", gammln(10.5f), 13.940625219},
                {"gammq(0.5, 0.5)", gammq(0.5f, 0.5f), 0.317310508},
                {"gammq(0.5, 2)", gammq(0.5f, 2.0f), 0.045500264},
                {"gammq(1, 1)", gammq(1.0f, 1.0f), 0.367879441},
                {"gammq(1.5, 3)", gammq(1.5f, 3.0f), 0.111610225},
                {"gammq(3, 2)", gammq(3.0f, 2.0f), 0.676676416},
                {"gammq(5, 10)", gammq(5.0f, 10.0f), 0.029252688},
                {"gammq(2, 0)", gammq(2.0f, 0.0f), 1.0},
                {"betai(0.5, 0.5, 0.25)", betai(0.5f, 0.5f, 0.25f), 0.333333333},
                {"betai(1, 3, 0.2)", betai(1.0f, 3.0f, 0.2f), 0.488},
                {"betai(3, 1, 0.4)", betai(3.0f, 1.0f, 0.4f), 0.064},
                {"betai(2, 3, 0.5)", betai(2.0f, 3.0f, 0.5f), 0.6875},
                {"betai(5, 2, 0.9)", betai(5.0f, 2.0f, 0.9f), 0.885735},
                {"betai(2, 3, 0)", betai(2.0f, 3.0f, 0.0f), 0.0},
                {"betai(2, 3, 1)", betai(2.0f, 3.0f, 1.0f), 1.0}};
    for (const auto &row : rows)
        EXPECT_NEAR(row.value, row.exact, 1.5e-6) << row.call;
}

TEST(Special, BadArgumentsAreReported)
{
    EXPECT_EQ(said([] {
                  EXPECT_EQ(gammq(-1.0f, 1.0f), 0.0f);
                  EXPECT_EQ(betai(1.0f, 1.0f, 1.5f), 0.0f);
              }).err,
              "Utility Error: Invalid arguments in routine gammq\nAborting.\n"
              "Utility Error: Bad x in routine betai\nAborting.\n");
}

} // namespace
} // namespace trelm
