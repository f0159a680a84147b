#include "compare/order_matrices.h"
#include "support/text_input.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <limits>
#include <sstream>
#include <unistd.h>

using namespace trelm;

namespace {

constexpr Saupe tensor = {3.1e-4, -1.2e-4, 0.7e-4, -2.2e-4, 1.6e-4};

TEST(AddSaupe, CombinesElementByElement)
{
    const Saupe a = {4.0, -1.0, 2.0, 0.5, 0.0}, b = {2.0, 3.0, -4.0, 1.0, 0.25};
    const struct {
        int opCode;
        Saupe expected;
    } cases[] = {
        {1, {14.0, 7.0, -8.0, 4.0, 0.75}},
        {2, {2.0, -11.0, 16.0, -2.0, -0.75}},
        {3, {48.0, -18.0, -48.0, 3.0, 0.0}},
        {4, {8.0 / 6, -2.0 / 9, 4.0 / -12, 1.0 / 3, 0.0}},
        {5, {6.0, 9.0, -12.0, 3.0, 0.75}},  // the second is the larger one, whatever the scales
        {-5, {6.0, 9.0, -12.0, 3.0, 0.75}}, // the same with the inputs exchanged
        {0, {}},
        {6, {}},
    };
    for (const auto &c : cases) {
        Saupe saupe;
        const bool isExchanged = c.opCode < 0;
        EXPECT_EQ(isExchanged ? addSaupe(5, 3.0f, 2.0f, b, a, saupe)
                              : addSaupe(c.opCode, 2.0f, 3.0f, a, b, saupe),
                  0);
        for (std::size_t i = 0; i < 5; ++i)
            EXPECT_NEAR(saupe[i], c.expected[i], 1e-12) << c.opCode << ' ' << i;
    }
}

/// The numbers of each line of a report, by its first words.
struct Report {
    int status = -1;
    std::string text;

    [[nodiscard]] std::vector<double> after(const std::string &label) const
    {
        const std::size_t at = text.find(label);
        EXPECT_NE(at, std::string::npos) << label;
        std::istringstream line(text.substr(at + label.size(), text.find('\n', at) - at - label.size()));
        std::vector<double> numbers;
        for (double number = 0.0; line >> number;)
            numbers.push_back(number);
        return numbers;
    }
};

Report compare(const Saupe &a, const Saupe &b, const Vector3f &hinge = {}, const Vector3f &twist = {},
               TrelmInfo info = {})
{
    const std::string name = testing::TempDir() + "trelm_compare_" + std::to_string(getpid()) + ".txt";
    info.trelmMode = 14;
    DTable dTab;
    Report report;
    report.status = compareSaupe(&info, a, b, name, &dTab, hinge, twist);
    TextInput input;
    if (readText(input, name) == TextStatus::read)
        report.text = input.text;
    std::filesystem::remove(name);
    return report;
}

/// The tensor turned: R S R-transposed.
Saupe turnedTensor(const Matrix3f &rotation)
{
    const Matrix3d s = saupeMatrix(tensor);
    Matrix3d t = {};
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t j = 0; j < 3; ++j)
            for (std::size_t k = 0; k < 3; ++k)
                for (std::size_t l = 0; l < 3; ++l)
                    t[3 * i + j] += static_cast<double>(rotation[3 * i + k]) * s[3 * k + l] *
                                    static_cast<double>(rotation[3 * j + l]);
    return {t[8], t[0] - t[4], t[1], t[2], t[5]};
}

TEST(CompareSaupe, FindsTheTurnBetweenTwoCopies)
{
    constexpr double radians = 3.14159265 / 180.0;
    for (const auto &[theta, phi, psi] :
         {std::array{20.0, 30.0, -15.0}, {5.0, 10.0, 3.0}, {33.0, -60.0, 80.0}}) {
        const Matrix3f turn = getRotMat(static_cast<float>(theta * radians),
                                        static_cast<float>(phi * radians), static_cast<float>(psi * radians));
        const double trace = static_cast<double>(turn[0] + turn[4] + turn[8]);
        const double angle = std::acos((trace - 1.0) / 2.0) / radians;
        const Report report = compare(tensor, turnedTensor(turn));
        ASSERT_EQ(report.status, 0);
        // One of the four solutions is the turn itself; its hinge is the axis of the turn.
        const std::vector<double> chi = report.after("DATA HINGE_ANGLES");
        ASSERT_EQ(chi.size(), 4u);
        const auto nearest =
            std::ranges::min_element(chi, {}, [&](double value) { return std::fabs(value - angle); });
        EXPECT_NEAR(*nearest, angle, 0.02);
        const std::size_t solution = static_cast<std::size_t>(nearest - chi.begin());
        const std::vector<double> axis = report.after("DATA HINGE_AXIS (X/Y/Z)  " + std::to_string(solution));
        // In the frame of the first tensor, with x and y exchanged.
        const Axis v = {static_cast<double>(turn[7] - turn[5]), static_cast<double>(turn[2] - turn[6]),
                        static_cast<double>(turn[3] - turn[1])};
        TensorAnalysis analysis;
        analyzeSaupe(tensor, 0, 0, analysis);
        FrameLists frames;
        make_eigVecList(analysis.eigVec, frames);
        double along = 0.0;
        for (std::size_t k = 0; k < 3; ++k)
            along += v[k] * (frames.x[0][k] * axis[1] + frames.y[0][k] * axis[0] + frames.z[0][k] * axis[2]);
        along /= 2.0 * std::sin(angle * radians);
        EXPECT_NEAR(std::fabs(along), 1.0, 0.01) << report.text;
    }
}

TEST(CompareSaupe, EqualTensorsHaveNoTurn)
{
    TrelmInfo info;
    const Report report = compare(tensor, tensor, {}, {}, info);
    ASSERT_EQ(report.status, 0);
    EXPECT_EQ(report.after("DATA ANGLE_5D_SPACE"), (std::vector<double>{0.0}));
    EXPECT_EQ(report.after("DATA COLL_5D"), (std::vector<double>{1.0}));
    EXPECT_NEAR(report.after("DATA HINGE_ANGLES").at(0), 0.0, 0.05);
    for (const char *line : {"DATA CTB_ANGLES          1", "DATA EULER_ANGLES        1"}) {
        const std::vector<double> angles = report.after(line);
        ASSERT_EQ(angles.size(), 3u) << report.text;
        for (const double angle : angles)
            EXPECT_NEAR(angle, 0.0, 0.01);
    }
    EXPECT_EQ(report.after("DATA SAUPE RESULT"), (std::vector<double>(5, 0.0)));
}

TEST(CompareSaupe, HingeAndTwistOfTheUser)
{
    const Saupe other = turnedTensor(getRotMat(0.4f, 0.3f, -0.2f));
    testing::internal::CaptureStdout();
    const Report report = compare(tensor, other, {0.6f, 0.0f, 0.8f}, {0.0f, 0.0f, 2.0f});
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "REMARK 36.87 degree between input hinge and twist axis.\n"
              "REMARK This corresponds to 36.00 % closure motion.\n");
    EXPECT_EQ(report.after("DATA CTB_FRAME X_AXIS (X/Y/Z)"), (std::vector<double>{1.0, 0.0, 0.0}));
    EXPECT_EQ(report.after("DATA CTB_FRAME Y_AXIS (X/Y/Z)"), (std::vector<double>{0.0, 0.0, 1.0}));
    EXPECT_EQ(report.after("DATA CTB_FRAME Z_AXIS (X/Y/Z)"), (std::vector<double>{0.0, -1.0, 0.0}));
    // Equal components mean that none was given.
    testing::internal::CaptureStdout();
    const Report plain = compare(tensor, other, {1.0f, 1.0f, 1.0f}, {1.0f, 1.0f, 1.0f});
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(plain.after("DATA CTB_FRAME Y_AXIS (X/Y/Z)"), (std::vector<double>{0.0, 0.0, 1.0}));
    EXPECT_EQ(plain.text, compare(tensor, other).text);
    TrelmInfo info;
    info.rotN = 2;
    EXPECT_NE(compare(tensor, other, {}, {}, info).after("DATA CTB_FRAME X_AXIS (X/Y/Z)"),
              plain.after("DATA CTB_FRAME X_AXIS (X/Y/Z)"));
}

TEST(CompareSaupe, DegenerateTensorsAreReported)
{
    const Saupe axial = {2e-4, 0.0, 0.0, 0.0, 0.0}, none = {}, twisted = {2e-4, 5e-5, 4.330127e-5, 0.0, 0.0};
    const Saupe straight = {2e-4, 1e-4, 0.0, 0.0, 0.0};
    const struct {
        Saupe a, b;
        const char *line;
    } cases[] = {
        {axial, axial, "\nDATA HINGE_ANGLES           0.00"},
        {axial, tensor, "\nDATA CTB_FRAME Y_AXIS (X/Y/Z)  0.0000e+00  0.0000e+00  1.0000e+00\n"},
        {none, none, "\nDATA COLL_5D         0.00000\n"},
        {none, tensor, "\nDATA ANGLE_5D_SPACE  90.00\n"},
        // A turn about the twist axis alone: the hinge does not tell the other two axes.
        {straight, twisted, "\nDATA CTB_ANGLES          1      nan      nan      nan\n"},
    };
    for (const auto &c : cases) {
        testing::internal::CaptureStderr();
        const Report report = compare(c.a, c.b);
        const std::string err = testing::internal::GetCapturedStderr();
        EXPECT_EQ(report.status, 0);
        EXPECT_NE(report.text.find(c.line), std::string::npos) << c.line << report.text;
        EXPECT_EQ(err.find("trelm: an order matrix is 0") != std::string::npos, c.a == none || c.b == none)
            << err;
    }
    testing::internal::CaptureStderr();
    EXPECT_EQ(compare({std::numeric_limits<double>::infinity(), 0, 0, 0, 0}, tensor).status, 1);
    EXPECT_NE(testing::internal::GetCapturedStderr().find("Matrix: error in analyzeSaupe.\n"),
              std::string::npos);
}

} // namespace
