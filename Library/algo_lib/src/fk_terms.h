#ifndef FK_TERMS_H
#define FK_TERMS_H

// Building blocks of the closed-form flange routines.

#include <array>

#include "lane_trig.h"
#include "robot_define.h"

namespace fk {

struct SinCos {
    float s;
    float c;
};

// Which angle the third sine-cosine pair is of: joint 3's, or joints 2 and 3 together for the forms
// that use only that sum, which then need not be formed from the two pairs.
enum class Third { Joint3, Joints2And3 };

// Sines and cosines of theta_i = q[i] * unit + offset[i] for the model's N joints; only those are
// read. unit turns the caller's angles into radians (1 for radians). V is the lane type: four lanes
// take all joints in two passes, eight (code built for 256-bit registers) in one.
template <int N, Third third = Third::Joint3, class V = algo::lanes::F4>
std::array<SinCos, N> joint_trig(const DH* dh, const float* q, float unit = 1.0f) {
    // Built in registers: a vector read of just-stored floats would stall on the stores.
    float theta[ROBOT_DOF];
    for (int i = 0; i < ROBOT_DOF; ++i) theta[i] = i < N ? q[i] * unit + dh->offset[i] : 0.0f;
    if constexpr (third == Third::Joints2And3) theta[2] += theta[1];
    // The sines and cosines dominate the routines' cost.
    constexpr int kLanes = algo::lanes::kLanesOf<V>;
    V s[ROBOT_DOF / kLanes], c[ROBOT_DOF / kLanes];
    if constexpr (kLanes == 8) {
        algo::lanes::sincos(V{theta[0], theta[1], theta[2], theta[3], theta[4], theta[5], theta[6], theta[7]}, s[0],
                            c[0]);
    } else {
        algo::lanes::sincos(V{theta[0], theta[1], theta[2], theta[3]}, s[0], c[0]);
        algo::lanes::sincos(V{theta[4], theta[5], theta[6], theta[7]}, s[1], c[1]);
    }
    std::array<SinCos, N> out;
    for (int i = 0; i < N; ++i) out[i] = {s[i / kLanes][i % kLanes], c[i / kLanes][i % kLanes]};
    return out;
}

// Sine and cosine of a sum without another call.
inline SinCos sum(SinCos a, SinCos b) { return {a.s * b.c + a.c * b.s, a.c * b.c - a.s * b.s}; }

// A rigid transform as rotation rows and position.
struct Frame {
    float r[3][3];
    float p[3];
};

// Rz(theta1) * Tz(d1) * f: the first link of every modified-convention model.
inline Matrix from_frame1(SinCos j1, float d1, const Frame& f) {
    Matrix m{};
    m.irow = m.iline = 4;
    for (int col = 0; col < 3; ++col) {
        m.data[0][col] = j1.c * f.r[0][col] - j1.s * f.r[1][col];
        m.data[1][col] = j1.s * f.r[0][col] + j1.c * f.r[1][col];
        m.data[2][col] = f.r[2][col];
    }
    m.data[0][3] = j1.c * f.p[0] - j1.s * f.p[1];
    m.data[1][3] = j1.s * f.p[0] + j1.c * f.p[1];
    m.data[2][3] = f.p[2] + d1;
    m.data[3][3] = 1.0f;
    return m;
}

}  // namespace fk

#endif
