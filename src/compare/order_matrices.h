// Two order matrices side by side: combined, the angles between their frames, and the rotation from one
// frame to the other as a hinge, in Euler angles, and as closure, twist and bend.
#pragma once

#include "compare/options.h"
#include "couplings/tensor.h"
#include "ground/messages.h"
#include "simulation/orientations/rotation.h"

#include <array>
#include <cstddef>
#include <string>

namespace trelm {

/// Combines two Saupe vectors element by element: opCode 1 c1 a + c2 b, 2 the difference, 3 the product, 4
/// the quotient; 5 takes all of the one with the larger general magnitude, scaled; any other gives 0.
Saupe addSaupe(const ComparisonOptions &options, const Saupe &userSaupe1, const Saupe &userSaupe2);

constexpr std::size_t frameSolutions = 4; ///< right-handed frames of a tensor

/// The rotation from tensor 1 to one solution of tensor 2, as a turn about one axis.
struct Hinge {
    Vector3f axis = {};
    float chi = 0.0f;        ///< angle of the turn, degrees
    float cloAngle = 0.0f;   ///< between hinge and twist axis, degrees
    float cloPercent = 0.0f; ///< closure part
};

/// Rotations about x, y, z, degrees.
struct RotationAngles {
    float psi = 0.0f, theta = 0.0f, phi = 0.0f;
};

/// The same rotation in angles.
struct RelativeAngles {
    std::array<double, 3> euler = {}; ///< alpha, beta, gamma of tensor 2 in the frame of tensor 1, degrees
    RotationAngles lab;
    RotationAngles closure; ///< closure, twist and bend
};

/// The axes of the closure, twist, bend frame.
struct ClosureFrame {
    Vector3f closureAxis, twistAxis, bendAxis;
};

/// Two tensors to compare. An axis with three equal components is not given: the twist axis is z then, and
/// the hinge axis that of solution rotN, 0 to 3.
struct TensorPair {
    Saupe saupe1 = {}, saupe2 = {};
    Vector3f hingeAxis = {}, twistAxis = {};
    int rotN = 0;   ///< solution of the hinge axis
    int yzFlag = 0; ///< exchange the ordering of the y and z axes in tensor analysis
};

/// What a comparison finds.
struct TensorComparison {
    Saupe combined = {};
    TensorAnalysis tensor1, tensor2;
    std::array<Hinge, frameSolutions> hinges;
    ClosureFrame frame;
    std::array<RelativeAngles, frameSolutions> relative;
};

/// Compares two tensors. A hinge axis that is given is told of as a result, and is taken at the length it
/// has. An axis without direction (the hinge between equal frames) is no number, and so are closure, twist
/// and bend about it; those between equal frames are 0. Fails after a message: values that are no finite
/// numbers, or rotN out of range where the hinge axis is taken from it.
Status compareSaupe(const TensorPair &pair, const ComparisonOptions &options, TensorComparison &found,
                    Messages &messages);

/// The report of a comparison.
void appendComparison(const TensorPair &pair, const TensorComparison &found, std::string &text);

} // namespace trelm
