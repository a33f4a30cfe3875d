#ifndef INV_KINEMATICS_ARM_ANGLE_H
#define INV_KINEMATICS_ARM_ANGLE_H

// Arm-angle geometry of the seven-joint arms, shared by their solver and its search over the
// arm angle; not part of the library's interface.

#include <cmath>

#include "inv_kinematics_internal.h"

namespace algo::ik {

using Mat3 = float[3][3];

struct Vec3 {
    float x, y, z;
};

// One elbow sign: R_S(psi) = shoulder_sin*sin(psi) + shoulder_cos*cos(psi) + shoulder_const.
struct ElbowBranch {
    float t4, c4, s4;
    Mat3 shoulder0;  // R_S0
    Mat3 shoulder_sin, shoulder_cos, shoulder_const;
};

struct ArmAngleTarget {
    bool reachable;
    Vec3 axis;      // unit shoulder-to-wrist direction
    Mat3 rotation;  // of the flange
    ElbowBranch elbow[2];
};

// |sin t2| and |sin t6| of each elbow sign at one arm angle: near 0 the arm is near the
// shoulder or wrist singularity.
struct MiddleSines {
    float shoulder[2];
    float wrist[2];
};

// Column 2 of R_S(psi) = sin*vs + cos*vc + v0 (the upper-arm axis), or of the wrist rotation.
struct AxisBlend {
    Vec3 vs, vc, v0;
};

// Elbow signs of branches_at (inv_kinematics_arm_angle_branches.h): bit e for sign e.
constexpr int kBothElbows = 3;
// The reference's joint rotations, offsets included.
void reference_theta(const SolveInput& in, float* theta);

// std::remainder(x, kTwoPi) to the bit without the library call: within a million turns
// x - n * kTwoPi is exact in double precision, and the remainder of two floats is a float.
inline float remainder_turn(float x) {
    constexpr double kTurn = kTwoPi;
    if (!(std::fabs(x) < 1e6f)) return std::remainder(x, kTwoPi);
    double r = static_cast<double>(x) - kTurn * round_to_integer(static_cast<double>(x) / kTurn);
    // Within a rounding of a half turn the quotient can round to the other side.
    if (r > 0.5 * kTurn) r -= kTurn;
    if (r < -0.5 * kTurn) r += kTurn;
    return r == 0.0 ? std::copysign(0.0f, x) : static_cast<float>(r);
}

inline void blend(const Mat3 a, const Mat3 b, const Mat3 c, float sn, float cs, Mat3 out) {
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) out[i][j] = a[i][j] * sn + b[i][j] * cs + c[i][j];
    }
}

// The shoulder R_S(psi) of one elbow sign.
inline void shoulder_at(const ElbowBranch& b, float psi, Mat3 out) {
    blend(b.shoulder_sin, b.shoulder_cos, b.shoulder_const, std::sin(psi), std::cos(psi), out);
}

// The wrist Ry(-t4) * R_S^T * R left for joints 5 to 7.
inline void wrist_rotation(const ElbowBranch& b, const Mat3 shoulder, const Mat3 r, Mat3 out) {
    for (int j = 0; j < 3; ++j) {
        float m[3];
        for (int i = 0; i < 3; ++i)
            m[i] = shoulder[0][i] * r[0][j] + shoulder[1][i] * r[1][j] + shoulder[2][i] * r[2][j];
        out[0][j] = b.c4 * m[0] - b.s4 * m[2];
        out[1][j] = m[1];
        out[2][j] = b.s4 * m[0] + b.c4 * m[2];
    }
}

// Column 2 of R_S(psi): the upper-arm axis, whose azimuth is joint 1 (or joint 1 + pi).
AxisBlend upper_arm_axis(const ElbowBranch& b);
// Column 2 of the wrist rotation: the flange z axis seen from the wrist, azimuth joint 5 (or + pi).
AxisBlend wrist_axis(const ElbowBranch& b, const Mat3 r);
// Arm angles within window of centre at which the axis's azimuth is `azimuth` (or opposite
// it, the Z-Y-Z twin's); returns their count, at most 2.
int arm_angles_for_azimuth(const AxisBlend& axis, float azimuth, float centre, float window, float out[2]);

}  // namespace algo::ik

#endif
