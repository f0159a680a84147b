#include "compare/order_matrices.h"

#include "compare/combine.h"
#include "support/numerics/numbers.h"
#include "support/text/text.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace trelm {
namespace {

constexpr std::size_t solutions = frameSolutions;
constexpr double degrees = 180.0 / pi;

/// Values that are no numbers print the same on every machine.
double printable(float value)
{
    return std::isnan(value) ? std::numeric_limits<double>::quiet_NaN() : static_cast<double>(value);
}

bool isNotGiven(const Vector3f &axis)
{
    return axis[0] == axis[1] && axis[1] == axis[2];
}

double dot(const Vector3f &a, const Vector3f &b)
{
    return number(a[0]) * number(b[0]) + number(a[1]) * number(b[1]) + number(a[2]) * number(b[2]);
}

Vector3f normalised(const Vector3f &v)
{
    const float length = calcNorm(v[0], v[1], v[2]);
    return {v[0] / length, v[1] / length, v[2] / length};
}

/// acos in degrees. The product of two unit vectors passes 1 by a rounding; one that is far beyond has no
/// angle.
double arcCosine(double cosine)
{
    constexpr double rounding = 1e-6;
    if (std::fabs(cosine) < 1.0 + rounding)
        cosine = std::clamp(cosine, -1.0, 1.0);
    return std::acos(cosine) * degrees;
}

/// The angle between two lines.
float foldedAngle(const Vector3f &a, const Vector3f &b)
{
    const double angle = arcCosine(dot(a, b));
    return static_cast<float>(angle > 90.0 ? 180.0 - angle : angle);
}

/// The part of a turn about `hinge` that is not twist, per cent.
float closurePart(const Vector3f &hinge, const Vector3f &twist)
{
    const double along = dot(hinge, twist);
    double square = 0.0;
    for (std::size_t k = 0; k < 3; ++k) {
        const double across = number(hinge[k]) - along * number(twist[k]);
        square += across * across;
    }
    return static_cast<float>(100.0 * square);
}

/// getRotMat of angles in degrees.
Matrix3f rotationOf(double theta, double phi, double psi)
{
    constexpr double radians = pi / 180.0;
    return getRotMat(static_cast<float>(theta * radians), static_cast<float>(phi * radians),
                     static_cast<float>(psi * radians));
}

/// The turn into the frame whose Euler angles these are.
Matrix3f turnInto(double alpha, double beta, double gamma)
{
    return rotationOf(-beta, -gamma, -alpha);
}

/// The axis of a rotation: v = (1, y, z) with (M - 1) v = 0, at unit length, in the frame of the first
/// tensor. No number, or the direction of the rounding, where there is no turn or the axis is at a right
/// angle to z. The report has its first two components exchanged, and whatever uses the axis takes it so.
Vector3f hingeAxisOf(const Matrix3f &m)
{
    const double a = number(m[0]) - 1.0;
    const double r = number(m[5]) / number(m[2]);
    const double y = (a * r - number(m[3])) / ((number(m[4]) - 1.0) - r * number(m[1]));
    const double z = -((number(m[1]) / number(m[2])) * y + a / number(m[2]));
    const Vector3f v = normalised({1.0f, static_cast<float>(y), static_cast<float>(z)});
    return {v[1], v[0], v[2]};
}

Hinge hingeOf(const Matrix3f &m, const Vector3f &twist)
{
    Hinge hinge;
    hinge.axis = hingeAxisOf(m);
    hinge.chi = static_cast<float>(arcCosine((number(m[0]) + number(m[4]) + number(m[8]) - 1.0) * 0.5));
    hinge.cloAngle = foldedAngle(hinge.axis, twist);
    hinge.cloPercent = closurePart(hinge.axis, twist);
    return hinge;
}

/// How a hinge axis that was given lies to the twist axis.
void tellHinge(const Vector3f &hingeAxis, const Vector3f &twist, Messages &messages)
{
    messages.out("REMARK %.2f degree between input hinge and twist axis.\n",
                 printable(foldedAngle(hingeAxis, twist)));
    messages.out("REMARK This corresponds to %.2f %% closure motion.\n",
                 printable(closurePart(hingeAxis, twist)));
}

ClosureFrame closureFrame(const Vector3f &hinge, const Vector3f &twist)
{
    const Vector3f bendAxis = normalised(crossProduct(hinge, twist));
    return {.closureAxis = crossProduct(twist, bendAxis), .twistAxis = twist, .bendAxis = bendAxis};
}

/// The turn into the closure, twist, bend frame.
Matrix3f turnInto(const ClosureFrame &frame)
{
    Matrix3d axes;
    for (std::size_t k = 0; k < 3; ++k) {
        axes[3 * k] = number(frame.closureAxis[k]);
        axes[3 * k + 1] = number(frame.twistAxis[k]);
        axes[3 * k + 2] = number(frame.bendAxis[k]);
    }
    std::array<double, 3> w;
    get_euler(axes, w);
    return turnInto(w[0], w[1], w[2]);
}

/// A solution's axes as columns x, y, z.
Matrix3d axesOf(const FrameLists &frames, std::size_t i)
{
    Matrix3d axes;
    for (std::size_t k = 0; k < 3; ++k) {
        axes[3 * k] = frames.x[i][k];
        axes[3 * k + 1] = frames.y[i][k];
        axes[3 * k + 2] = frames.z[i][k];
    }
    return axes;
}

Matrix3d turned(const Matrix3f &rotation, const Matrix3d &axes)
{
    Matrix3d exact;
    std::ranges::copy(rotation, exact.begin());
    return matMult(exact, axes);
}

Matrix3f toSingle(const Matrix3d &matrix)
{
    Matrix3f single;
    std::ranges::transform(matrix, single.begin(),
                           [](double element) { return static_cast<float>(element); });
    return single;
}

/// The rotation that takes one orthonormal frame into another: of all rotations the one that brings the tips
/// of the axes closest together.
RotationAngles fitAlignCoords(const Matrix3d &from, const Matrix3d &to)
{
    const Matrix3d back = {from[0], from[3], from[6], from[1], from[4], from[7], from[2], from[5], from[8]};
    RotationLists lists;
    rot2euler(toSingle(matMult(to, back)), lists);
    return {.psi = lists.psi[0], .theta = lists.theta[0], .phi = lists.phi[0]};
}

/// Equal axes need no turn, in whatever frame it is told.
bool isSame(const Matrix3d &axes1, const Matrix3d &axes2)
{
    constexpr double rounding = 1e-7;
    return std::ranges::equal(axes1, axes2, [](double a, double b) { return std::fabs(a - b) < rounding; });
}

RelativeAngles relativeAngles(const Matrix3f &turn1, const Matrix3f &turnClosure, const Matrix3d &axes1,
                              const Matrix3d &axes2)
{
    RelativeAngles angles;
    const Matrix3d relative = turned(turn1, axes2);
    get_euler(relative, angles.euler);
    rot2euler1(toSingle(relative), angles.lab.psi, angles.lab.theta, angles.lab.phi);
    if (!isSame(axes1, axes2))
        angles.closure = fitAlignCoords(turned(turnClosure, axes1), turned(turnClosure, axes2));
    return angles;
}

/// Euler angles are wanted here whether the report shows them or not. A tensor whose squares leave single
/// precision can not be compared.
Status analyze(const Saupe &saupe, int yzFlag, TensorAnalysis &analysis, Messages &messages)
{
    constexpr double largest = 1e18;
    if (analyzeSaupe(saupe, yzFlag, 1, analysis, messages) != Status::ok || !(analysis.gMag < largest))
        return messages.fail("Matrix: error in analyzeSaupe.\n");
    if (analysis.gMag == 0.0)
        messages.warn("trelm: an order matrix is 0: it has no frame to compare.\n");
    return Status::ok;
}

/// All rotations between the two tensors of `found`.
void compareFrames(const TensorPair &pair, TensorComparison &found, Messages &messages)
{
    const EulerLists &euler1 = found.tensor1.euler, &euler2 = found.tensor2.euler;
    const Vector3f twist =
        isNotGiven(pair.twistAxis) ? Vector3f{0.0f, 0.0f, 1.0f} : normalised(pair.twistAxis);
    const Matrix3f turn1 = turnInto(euler1.alpha[0], euler1.beta[0], euler1.gamma[0]);
    for (std::size_t i = 0; i < solutions; ++i) {
        const Matrix3f back2 = rotationOf(euler2.beta[i], euler2.alpha[i], euler2.gamma[i]);
        found.hinges[i] = hingeOf(matMult(turn1, back2), twist);
    }
    const bool isGiven = !isNotGiven(pair.hingeAxis);
    const Vector3f &hinge = isGiven ? pair.hingeAxis : found.hinges[static_cast<std::size_t>(pair.rotN)].axis;
    if (isGiven)
        tellHinge(hinge, twist, messages);
    found.frame = closureFrame(hinge, twist);
    const Matrix3f turnClosure = turnInto(found.frame);
    FrameLists frames1, frames2;
    make_eigVecList(found.tensor1.eigVec, frames1);
    make_eigVecList(found.tensor2.eigVec, frames2);
    for (std::size_t i = 0; i < solutions; ++i)
        found.relative[i] = relativeAngles(turn1, turnClosure, axesOf(frames1, 0), axesOf(frames2, i));
}

// ---- the report ----

void appendSaupe(const char *name, const Saupe &saupe, std::string &text)
{
    appendf(text, "DATA SAUPE %-6s % .4e % .4e % .4e % .4e % .4e\n", name, saupe[0], saupe[1], saupe[2],
            saupe[3], saupe[4]);
}

void appendOrientation(const TensorComparison &found, const Saupe &saupe1, const Saupe &saupe2,
                       std::string &text)
{
    const auto single = [](const Saupe &saupe) {
        std::array<float, 5> values;
        std::ranges::transform(saupe, values.begin(), [](double value) { return static_cast<float>(value); });
        return values;
    };
    text += "\nREMARK Relative orientation of alignment tensors.\n\n";
    const auto dcos = calcDcos(found.tensor1.eigVec, found.tensor2.eigVec);
    appendf(text, "DATA ANGLE_3D_AXES (X/Y/Z)  %.2f %.2f %.2f\n", dcos[0] * degrees, dcos[1] * degrees,
            dcos[2] * degrees);
    float dcos5d = 0.0f, angle = 0.0f;
    irrCollinarity(single(saupe1), single(saupe2), dcos5d, angle);
    appendf(text, "\nDATA ANGLE_5D_SPACE  %.2f\n", printable(angle));
    appendf(text, "DATA COLL_5D         %.5f\n", printable(dcos5d));
}

void appendHinges(const std::array<Hinge, solutions> &hinges, std::string &text)
{
    const auto row = [&](const char *name, float Hinge::*value) {
        appendf(text, "DATA %-18s", name);
        for (const Hinge &hinge : hinges)
            appendf(text, "  %7.2f", printable(hinge.*value));
        text += '\n';
    };
    text += "\n\nREMARK Hinge rotation between Saupe frames.\n\n";
    row("HINGE_ANGLES", &Hinge::chi);
    row("CLOSURE_ANGLES", &Hinge::cloAngle);
    row("CLOSURE_PERCENTAGE", &Hinge::cloPercent);
    text += '\n';
    for (std::size_t i = 0; i < solutions; ++i) {
        const Vector3f &axis = hinges[i].axis;
        appendf(text, "DATA HINGE_AXIS (X/Y/Z) %2d  %6.3f  %6.3f  %6.3f\n", static_cast<int>(i),
                printable(axis[0]), printable(axis[1]), printable(axis[2]));
    }
}

/// A heading and the four solutions, numbered from 1.
template <class Angles>
void appendSolutions(const char *heading, const std::array<const char *, 3> &names, const char *line,
                     Angles angles, std::string &text)
{
    appendf(text, "DATA %-19sREL  %5s  %7s  %7s\n", heading, names[0], names[1], names[2]);
    for (std::size_t i = 0; i < solutions; ++i) {
        const std::array<double, 3> values = angles(i);
        appendf(text, "DATA %-19s%2d  %7.2f  %7.2f  %7.2f\n", line, static_cast<int>(i) + 1, values[0],
                values[1], values[2]);
    }
}

void appendRotations(const std::array<RelativeAngles, solutions> &relative, std::string &text)
{
    const auto values = [](const RotationAngles &angles) {
        return std::array{printable(angles.psi), printable(angles.theta), printable(angles.phi)};
    };
    text += "\n\nREMARK Euler rotation between Saupe frames.\n\n";
    appendSolutions(
        "Q_EULER_SOLUTIONS", {"ALPHA", "BETA", "GAMMA"}, "Q_EULER_ANGLES",
        [&](std::size_t i) { return relative[i].euler; }, text);
    text += '\n';
    appendSolutions(
        "EULER_SOLUTIONS", {"PSI", "THETA", "PHI"}, "EULER_ANGLES",
        [&](std::size_t i) { return values(relative[i].lab); }, text);
    text += "\n\nREMARK Closure/twist/bend rotation between Saupe frames.\n\n";
    appendSolutions(
        "EULER_SOLUTIONS", {"CLOSURE", "TWIST", "BEND"}, "CTB_ANGLES",
        [&](std::size_t i) { return values(relative[i].closure); }, text);
}

void appendFrame(const ClosureFrame &frame, std::string &text)
{
    const auto axis = [&](char name, const Vector3f &v) {
        appendf(text, "DATA CTB_FRAME %c_AXIS (X/Y/Z) % .4e % .4e % .4e\n", name, printable(v[0]),
                printable(v[1]), printable(v[2]));
    };
    text += "\n\nREMARK Closure, twist, bend frame.\n\n";
    axis('X', frame.closureAxis);
    axis('Y', frame.twistAxis);
    axis('Z', frame.bendAxis);
    text += "\n\n";
}

} // namespace

Saupe addSaupe(const ComparisonOptions &options, const Saupe &userSaupe1, const Saupe &userSaupe2)
{
    std::array<double, 5> irrSaupe;
    double gMag1 = 0.0, gMag2 = 0.0;
    irreducRepres(userSaupe1, gMag1, irrSaupe);
    irreducRepres(userSaupe2, gMag2, irrSaupe);
    Saupe saupe = {};
    for (std::size_t i = 0; i < saupe.size(); ++i)
        saupe[i] = combined(options.opCode, number(options.c1) * userSaupe1[i],
                            number(options.c2) * userSaupe2[i], gMag1 < gMag2);
    return saupe;
}

Status compareSaupe(const TensorPair &pair, const ComparisonOptions &options, TensorComparison &found,
                    Messages &messages)
{
    if (isNotGiven(pair.hingeAxis) && (pair.rotN < 0 || pair.rotN > 3))
        return messages.fail(
            "trelm: -rotID %d: the four solutions for the hinge axis have the numbers 0 to 3.\n", pair.rotN);
    found.combined = addSaupe(options, pair.saupe1, pair.saupe2);
    if (analyze(pair.saupe1, pair.yzFlag, found.tensor1, messages) != Status::ok ||
        analyze(pair.saupe2, pair.yzFlag, found.tensor2, messages) != Status::ok)
        return Status::failed;
    if (!std::ranges::all_of(found.combined,
                             [](double value) { return std::isfinite(static_cast<float>(value)); }))
        messages.warn("trelm: the combined order matrix is not finite.\n");
    compareFrames(pair, found, messages);
    const auto isDefined = [](const Hinge &hinge) {
        return std::ranges::all_of(hinge.axis, [](float value) { return std::isfinite(value); });
    };
    if (const auto undefined = std::ranges::find_if_not(found.hinges, isDefined);
        undefined != found.hinges.end())
        messages.warn(
            "trelm: solution %td turns nothing: its hinge axis, and what goes by it, is no number\n",
            undefined - found.hinges.begin() + 1);
    return Status::ok;
}

void appendComparison(const TensorPair &pair, const TensorComparison &found, std::string &text)
{
    text += "\nREMARK Input order matrices.\n\n";
    appendSaupe("1", pair.saupe1, text);
    appendSaupe("2", pair.saupe2, text);
    appendSaupe("RESULT", found.combined, text);
    text += '\n';
    appendOrientation(found, pair.saupe1, pair.saupe2, text);
    appendHinges(found.hinges, text);
    appendRotations(found.relative, text);
    appendFrame(found.frame, text);
}

} // namespace trelm
