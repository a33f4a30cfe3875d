#ifndef KINEMATICS_REFERENCE_H
#define KINEMATICS_REFERENCE_H

// Double-precision link products straight from the DH definitions, as the yardstick for
// the single-precision closed forms.

#include <array>
#include <cmath>
#include <random>
#include <vector>

#include "libalgo_interface.h"

namespace reference {

using Mat4 = std::array<std::array<double, 4>, 4>;

inline Mat4 identity() {
    Mat4 m{};
    for (int i = 0; i < 4; ++i) m[i][i] = 1.0;
    return m;
}

inline Mat4 operator*(const Mat4& a, const Mat4& b) {
    Mat4 r{};
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            for (int k = 0; k < 4; ++k) r[i][j] += a[i][k] * b[k][j];
    return r;
}

// Elementary turns and shifts.
inline Mat4 rot_x(double t) {
    return {
        {{1, 0, 0, 0}, {0, std::cos(t), -std::sin(t), 0}, {0, std::sin(t), std::cos(t), 0}, {0, 0, 0, 1}}};
}
inline Mat4 rot_z(double t) {
    return {
        {{std::cos(t), -std::sin(t), 0, 0}, {std::sin(t), std::cos(t), 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}};
}
inline Mat4 trans(double x, double y, double z) {
    return {{{1, 0, 0, x}, {0, 1, 0, y}, {0, 0, 1, z}, {0, 0, 0, 1}}};
}

// Twists are rounded to the nearest quarter turn when they are one, as the library does.
inline double exact_twist(float alpha) {
    const double quarter = std::round(alpha / (M_PI / 2));
    return std::fabs(alpha - quarter * M_PI / 2) < 1e-5 ? quarter * M_PI / 2 : alpha;
}

// Per link: Rx(alpha)*Tx(a)*Rz(theta)*Tz(d) in the modified convention,
// Rz(theta)*Tz(d)*Tx(a)*Rx(alpha) in the standard one.
inline Mat4 dh_chain(const DH& dh, const float* q, int dof, bool standard) {
    Mat4 t = identity();
    for (int i = 0; i < dof; ++i) {
        const Mat4 twist = rot_x(exact_twist(dh.alpha[i])), length = trans(dh.a[i], 0, 0);
        const Mat4 turn = rot_z(double(q[i]) + dh.offset[i]), depth = trans(0, 0, dh.d[i]);
        t = standard ? t * turn * depth * length * twist : t * twist * length * turn * depth;
    }
    return t;
}
inline Mat4 modified_chain(const DH& dh, const float* q, int dof) {
    return dh_chain(dh, q, dof, false);
}
inline Mat4 standard_chain(const DH& dh, const float* q, int dof) {
    return dh_chain(dh, q, dof, true);
}

inline double max_difference(const Matrix& m, const Mat4& r) {
    double worst = 0.0;
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j) worst = std::fmax(worst, std::fabs(m.data[i][j] - r[i][j]));
    return worst;
}

using Joints = std::array<float, ROBOT_DOF>;

// Joint vectors drawn uniformly inside the loaded model's limits.
inline std::vector<Joints> random_joints_within_limits(int count, unsigned seed) {
    float lo[ROBOT_DOF], hi[ROBOT_DOF];
    libalgo_get_jointlim_min(lo);
    libalgo_get_jointlim_max(hi);
    const int dof = libalgo_get_rbt_dof();
    std::mt19937 rng(seed);
    std::vector<Joints> out(static_cast<std::size_t>(count));
    for (auto& q : out) {
        q.fill(0.0f);
        for (int j = 0; j < dof; ++j) q[j] = std::uniform_real_distribution<float>(lo[j], hi[j])(rng);
    }
    return out;
}

}  // namespace reference

#endif
