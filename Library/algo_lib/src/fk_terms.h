#ifndef FK_TERMS_H
#define FK_TERMS_H

// Building blocks of the closed-form flange routines.

#include <cmath>

#include "robot_define.h"

#if defined(__x86_64__) && defined(__GLIBC__)
#include <immintrin.h>
#define FK_VECTOR_TRIG 1
// The C library's four-lane sinf and cosf (libmvec, pulled in through libm).
extern "C" __m128 _ZGVbN4v_sinf(__m128);
extern "C" __m128 _ZGVbN4v_cosf(__m128);
#endif

namespace fk {

struct SinCos {
    float s;
    float c;
};

// Sines and cosines of theta_i = q[i] + offset[i] for the model's joints; only those are read.
class JointTrig {
public:
    JointTrig(const DH* dh, const float* q, int dof) {
        alignas(16) float theta[ROBOT_DOF] = {};
        for (int i = 0; i < dof; ++i) theta[i] = q[i] + dh->offset[i];
#ifdef FK_VECTOR_TRIG
        // All joints in two calls per function: the sines and cosines dominate the routines' cost.
        for (int k = 0; k < ROBOT_DOF; k += 4) {
            const __m128 t = _mm_load_ps(theta + k);
            _mm_store_ps(s_ + k, _ZGVbN4v_sinf(t));
            _mm_store_ps(c_ + k, _ZGVbN4v_cosf(t));
        }
#else
        for (int i = 0; i < ROBOT_DOF; ++i) {
            s_[i] = std::sin(theta[i]);
            c_[i] = std::cos(theta[i]);
        }
#endif
    }

    SinCos operator[](int i) const { return {s_[i], c_[i]}; }

private:
    alignas(16) float s_[ROBOT_DOF];
    alignas(16) float c_[ROBOT_DOF];
};

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
