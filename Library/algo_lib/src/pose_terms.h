#ifndef POSE_TERMS_H
#define POSE_TERMS_H

// Euler angles and quaternion of a transform, and products of rigid transforms: the end of
// every forward kinematics call, kept inline so that call pays no copies of whole matrices.
// Not part of the library's interface.

#include <cmath>
#include <cstring>

#include "lane_trig.h"
#include "robot_define.h"

namespace algo {

// Pitch this close to +-90 degrees folds yaw into roll.
constexpr float kGimbalLimit = 0.999999f;
// Deliberately not -pi: -pi comes back as +pi, and angles down to -3.13 stay negative.
constexpr float kWrapBelow = -3.13f;
constexpr float kTwoPiF = static_cast<float>(2.0 * ALGO_PI);

// Which rotations a pose is taken of: any matrix, or one orthonormal to rounding (a product of
// rotations, as forward kinematics makes), whose angles then need no division.
enum class Rotation { Any, Orthonormal };

// 1 / sqrt(v) in every lane: the estimate and one Newton step, which runs shorter than a square
// root and a division.
inline lanes::F4 reciprocal_sqrt(lanes::F4 v) {
#if defined(__SSE__)
    const lanes::F4 r = __builtin_ia32_rsqrtps(v);
    return r * (lanes::splat(1.5f) - lanes::splat(0.5f) * v * r * r);
#else
    return lanes::splat(1.0f) / lanes::sqrt(v);
#endif
}

// atan2(s, c) of every lane for points on the unit circle (to rounding), with no division: the
// arcsine of the smaller of |s| and |c|, below sqrt(1/2) where an odd polynomial serves, then its
// octant and quadrant, with atan2's signs for zeros.
inline lanes::F4 angle_on_circle(lanes::F4 s, lanes::F4 c) {
    using lanes::splat;
    const lanes::F4 as = lanes::abs(s), ac = lanes::abs(c);
    const lanes::I4 steep = as > ac;
    const lanes::F4 x = lanes::select(steep, ac, as);
    // asin(x) / x in z = x^2 on [0, 1/2], within 2e-8.
    const lanes::F4 z = x * x, z2 = z * z, z4 = z2 * z2;
    const lanes::F4 p =
        ((splat(1.0f) + splat(0.16667020320892334f) * z) +
         z2 * (splat(0.07485973089933395f) + splat(0.04674163833260536f) * z)) +
        z4 * ((splat(0.015222831629216671f) + splat(0.08001027256250381f) * z) +
              z2 * (splat(-0.0966452956199646f) + splat(0.11344993859529495f) * z));
    lanes::F4 a = x * p;
    a = lanes::select(steep, splat(1.57079632679490f) - a, a);
    a = lanes::select(lanes::sign_bit(c) != 0, splat(3.14159265358979f) - a, a);
    return lanes::flip_sign(a, lanes::sign_bit(s));
}

// R = Rz(rz) * Ry(ry) * Rx(rx); the three arc tangents in one pass.
template <Rotation kind = Rotation::Any>
inline Euler euler_of(const Matrix& m) {
    using lanes::F4;
    const auto& R = m.data;
    const bool gimbal = R[2][0] > kGimbalLimit || R[2][0] < -kGimbalLimit;
    if constexpr (kind == Rotation::Orthonormal) {
        if (!gimbal) {
            // Lanes: pitch, roll, yaw, each a sine-cosine pair scaled to the unit circle. cos(pitch)
            // from row 2: in a flange that starts with a turn about the base's z axis, row 2 does
            // not wait for that turn.
            const float cc = R[2][1] * R[2][1] + R[2][2] * R[2][2];
            const F4 y{-R[2][0], R[2][1], R[1][0], 0.0f};
            const F4 x{lanes::sqrt(lanes::splat(cc))[0], R[2][2], R[0][0], 1.0f};
            const F4 r = reciprocal_sqrt(y * y + F4{cc, R[2][2] * R[2][2], R[0][0] * R[0][0], 1.0f});
            F4 a = angle_on_circle(y * r, x * r);
            a = lanes::select(a < lanes::splat(kWrapBelow), a + lanes::splat(kTwoPiF), a);
            return Euler{a[1], a[0], a[2]};
        }
    }
    const float pitch_y = -R[2][0];
    const float pitch_x = std::sqrt(R[0][0] * R[0][0] + R[1][0] * R[1][0]);
    // Lanes: pitch, roll, yaw. At the gimbal lock yaw is 0 (atan2(0, 1)) and roll takes it up.
    const F4 y = gimbal ? F4{pitch_y, R[0][1], 0.0f, 0.0f} : F4{pitch_y, R[2][1], R[1][0], 0.0f};
    const F4 x = gimbal ? F4{pitch_x, R[1][1], 1.0f, 1.0f} : F4{pitch_x, R[2][2], R[0][0], 1.0f};
    F4 a = lanes::atan2(y, x);
    if (R[2][0] > kGimbalLimit) a[1] = -a[1];
    a = lanes::select(a < lanes::splat(kWrapBelow), a + lanes::splat(kTwoPiF), a);
    return Euler{a[1], a[0], a[2]};
}

// Branch on the largest diagonal term; no sign normalisation, so w may come out negative. One
// division, its reciprocal shared by the three other components.
inline Quat quat_of(const Matrix& m) {
    const auto& R = m.data;
    const float trace = R[0][0] + R[1][1] + R[2][2];
    if (trace > 0.0f) {
        const float S = 2.0f * std::sqrt(trace + 1.0f), k = 1.0f / S;
        return Quat{0.25f * S, (R[2][1] - R[1][2]) * k, (R[0][2] - R[2][0]) * k, (R[1][0] - R[0][1]) * k};
    }
    if (R[0][0] > R[1][1] && R[0][0] > R[2][2]) {
        const float S = 2.0f * std::sqrt(1.0f + R[0][0] - R[1][1] - R[2][2]), k = 1.0f / S;
        return Quat{(R[2][1] - R[1][2]) * k, 0.25f * S, (R[0][1] + R[1][0]) * k, (R[0][2] + R[2][0]) * k};
    }
    if (R[1][1] > R[2][2]) {
        const float S = 2.0f * std::sqrt(1.0f + R[1][1] - R[0][0] - R[2][2]), k = 1.0f / S;
        return Quat{(R[0][2] - R[2][0]) * k, (R[0][1] + R[1][0]) * k, 0.25f * S, (R[1][2] + R[2][1]) * k};
    }
    const float S = 2.0f * std::sqrt(1.0f + R[2][2] - R[0][0] - R[1][1]), k = 1.0f / S;
    return Quat{(R[1][0] - R[0][1]) * k, (R[0][2] + R[2][0]) * k, (R[1][2] + R[2][1]) * k, 0.25f * S};
}

// Stored in the three pieces (16, 16 and 8 bytes) in which a copy of the record reads it, so that
// the copy takes its bytes straight from these stores instead of stalling until they are written.
template <Rotation kind = Rotation::Any>
inline Pose pose_of(const Matrix& t) {
    using lanes::F4;
    const Euler e = euler_of<kind>(t);
    const Quat q = quat_of(t);
    static_assert(sizeof(Pose) == 10 * sizeof(float));
    const F4 first{t.data[0][3], t.data[1][3], t.data[2][3], q.w};
    const F4 second{q.x, q.y, q.z, e.rx};
    const float last[2] = {e.ry, e.rz};
    Pose p;
    std::memcpy(&p, &first, sizeof first);
    std::memcpy(reinterpret_cast<char*>(&p) + sizeof first, &second, sizeof second);
    std::memcpy(reinterpret_cast<char*>(&p) + 2 * sizeof first, last, sizeof last);
    return p;
}

// Below this squared norm a quaternion gives the identity.
constexpr float kQuatNormFloor = 1e-6f;

// The rotation entries of m from q, which need not be normalised.
inline void set_quat_rotation(const Quat& q, Matrix& m) {
    const float n = q.w * q.w + q.x * q.x + q.y * q.y + q.z * q.z;
    const float s = n > kQuatNormFloor ? 2.0f / n : 0.0f;
    const float wx = s * q.w * q.x, wy = s * q.w * q.y, wz = s * q.w * q.z;
    const float xx = s * q.x * q.x, xy = s * q.x * q.y, xz = s * q.x * q.z;
    const float yy = s * q.y * q.y, yz = s * q.y * q.z, zz = s * q.z * q.z;
    m.data[0][0] = 1.0f - (yy + zz);
    m.data[0][1] = xy - wz;
    m.data[0][2] = xz + wy;
    m.data[1][0] = xy + wz;
    m.data[1][1] = 1.0f - (xx + zz);
    m.data[1][2] = yz - wx;
    m.data[2][0] = xz - wy;
    m.data[2][1] = yz + wx;
    m.data[2][2] = 1.0f - (xx + yy);
}

// The rotation entries of m from fixed X-Y-Z angles, R = Rz * Ry * Rx.
inline void set_euler_rotation(const Euler& e, Matrix& m) {
    const float cx = std::cos(e.rx), sx = std::sin(e.rx);
    const float cy = std::cos(e.ry), sy = std::sin(e.ry);
    const float cz = std::cos(e.rz), sz = std::sin(e.rz);
    m.data[0][0] = cz * cy;
    m.data[0][1] = cz * sy * sx - sz * cx;
    m.data[0][2] = cz * sy * cx + sz * sx;
    m.data[1][0] = sz * cy;
    m.data[1][1] = sz * sy * sx + cz * cx;
    m.data[1][2] = sz * sy * cx - cz * sx;
    m.data[2][0] = -sy;
    m.data[2][1] = cy * sx;
    m.data[2][2] = cy * cx;
}

// The rigid transform to position p with the orientation of q (a quaternion) or e (Euler
// angles), built in place: it starts every inverse kinematics call.
inline Matrix rigid_transform(const Pos& p) {
    Matrix m{};
    m.irow = m.iline = 4;
    m.data[0][3] = p.x;
    m.data[1][3] = p.y;
    m.data[2][3] = p.z;
    m.data[3][3] = 1.0f;
    return m;
}
inline Matrix quat_transform(const Pos& p, const Quat& q) {
    Matrix m = rigid_transform(p);
    set_quat_rotation(q, m);
    return m;
}
inline Matrix euler_transform(const Pos& p, const Euler& e) {
    Matrix m = rigid_transform(p);
    set_euler_rotation(e, m);
    return m;
}

// a * b for rigid transforms (last row 0, 0, 0, 1): twelve entries, fixed sizes.
inline Matrix rigid_product(const Matrix& a, const Matrix& b) {
    Matrix r;
    r.irow = r.iline = 4;
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 4; ++j)
            r.data[i][j] = a.data[i][0] * b.data[0][j] + a.data[i][1] * b.data[1][j] + a.data[i][2] * b.data[2][j];
        r.data[i][3] += a.data[i][3];
    }
    r.data[3][0] = r.data[3][1] = r.data[3][2] = 0.0f;
    r.data[3][3] = 1.0f;
    return r;
}

}  // namespace algo

#endif
