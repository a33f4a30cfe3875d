#ifndef INV_KINEMATICS_LANES_H
#define INV_KINEMATICS_LANES_H

// Four Z-Y-Z extractions and their joint mapping side by side: zyz_angles, fast_atan2 and
// joint_value with every operation the same, lane by lane, so each lane's result is bit for bit
// the scalar one. Not part of the library's interface.

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "inv_kinematics_internal.h"
#include "lane_trig.h"

namespace algo::ik::lanes {

using algo::lanes::F4;
using algo::lanes::F8;
using algo::lanes::I4;
using algo::lanes::kLanesOf;
using algo::lanes::MaskOf;
using algo::lanes::splat;
// The plain lane functions under the same name here, for code that uses both sets.
using algo::lanes::abs;
using algo::lanes::atan2;
using algo::lanes::atan2_finite;
using algo::lanes::max;
using algo::lanes::min;
using algo::lanes::select;
using algo::lanes::sincos;
using algo::lanes::sincos_reducible;
using algo::lanes::sqrt;
using D2 = double __attribute__((vector_size(16)));
using L2 = int64_t __attribute__((vector_size(16)));

inline F4 bits_as_float(I4 v) { return reinterpret_cast<F4>(v); }
inline I4 float_bits(F4 v) { return reinterpret_cast<I4>(v); }
inline F4 copy_sign(F4 magnitude, F4 sign) {
    return bits_as_float((float_bits(magnitude) & INT32_MAX) | (float_bits(sign) & INT32_MIN));
}
inline F4 choose(I4 mask, F4 yes, F4 no) { return algo::lanes::select(mask, yes, no); }
// Masks combined with the instruction set's own and/or where it has them: the compiler otherwise
// turns the mask arithmetic into per-lane moves through integer registers.
inline L2 both(L2 a, L2 b) {
#if defined(__SSE2__)
    return reinterpret_cast<L2>(_mm_and_pd(reinterpret_cast<__m128d>(a), reinterpret_cast<__m128d>(b)));
#else
    return a & b;
#endif
}
inline D2 choose(L2 mask, D2 yes, D2 no) {
#if defined(__SSE2__)
    const __m128d m = reinterpret_cast<__m128d>(mask);
    return reinterpret_cast<D2>(_mm_or_pd(_mm_and_pd(m, reinterpret_cast<__m128d>(yes)),
                                          _mm_andnot_pd(m, reinterpret_cast<__m128d>(no))));
#else
    return reinterpret_cast<D2>((mask & reinterpret_cast<L2>(yes)) | (~mask & reinterpret_cast<L2>(no)));
#endif
}

// fast_atan2 of every lane.
inline F4 fast_atan2(F4 y, F4 x) {
    const F4 ax = algo::lanes::abs(x);
    const F4 ay = algo::lanes::abs(y);
    const F4 sum = ax + ay;
    const F4 gap = algo::lanes::abs(ax - ay);
    const F4 t = (sum - gap) / (sum + gap + splat(1e-30f));
    const F4 s = t * t;
    F4 p = splat(0.00276628350176f);
    p = p * s - splat(0.0157312491222f);
    p = p * s + splat(0.0421376235892f);
    p = p * s - splat(0.07456854826f);
    p = p * s + splat(0.10618370637f);
    p = p * s - splat(0.141977977941f);
    p = p * s + splat(0.199918720291f);
    p = p * s - splat(0.333330367093f);
    p = p * s + splat(0.999999981789f);
    const F4 octant = splat(0.25f * kPi) + copy_sign(splat(0.25f * kPi) - t * p, ay - ax - splat(1e-38f));
    const F4 half = splat(0.5f * kPi) + copy_sign(splat(0.5f * kPi) - octant, -x);
    return copy_sign(half, y);
}

// The 4x4 of rows m[0..3] transposed in place.
inline void transpose(F4 (&m)[4]) {
    const F4 t0 = __builtin_shufflevector(m[0], m[1], 0, 4, 1, 5);
    const F4 t1 = __builtin_shufflevector(m[0], m[1], 2, 6, 3, 7);
    const F4 t2 = __builtin_shufflevector(m[2], m[3], 0, 4, 1, 5);
    const F4 t3 = __builtin_shufflevector(m[2], m[3], 2, 6, 3, 7);
    m[0] = __builtin_shufflevector(t0, t2, 0, 1, 4, 5);
    m[1] = __builtin_shufflevector(t0, t2, 2, 3, 6, 7);
    m[2] = __builtin_shufflevector(t1, t3, 0, 1, 4, 5);
    m[3] = __builtin_shufflevector(t1, t3, 2, 3, 6, 7);
}

// A 3x3 rotation per lane.
using Mat3x4 = F4[3][3];

// zyz_angles of every lane: the first branch (a, b, c) and sin b; the twin is (a + pi, -b, c + pi).
struct Zyz {
    F4 a, b, c;
    F4 sin_b;
};

inline Zyz zyz_angles(const Mat3x4 r, F4 a_ref) {
    Zyz z;
    const F4 sb = algo::lanes::sqrt(r[0][2] * r[0][2] + r[1][2] * r[1][2]);
    z.b = fast_atan2(sb, r[2][2]);
    z.sin_b = sb;
    const I4 a_free = sb <= splat(kSingularSin);
    F4 a = fast_atan2(r[1][2], r[0][2]);
    F4 cos_a = r[0][2] / sb;
    F4 sin_a = r[1][2] / sb;
    if (algo::lanes::any(a_free)) {
        for (int i = 0; i < 4; ++i) {
            if (!a_free[i]) continue;
            a[i] = a_ref[i];
            cos_a[i] = std::cos(a_ref[i]);
            sin_a[i] = std::sin(a_ref[i]);
        }
    }
    const F4 p0 = cos_a * r[0][0] + sin_a * r[1][0];
    const F4 p1 = cos_a * r[1][0] - sin_a * r[0][0];
    z.c = fast_atan2(p1, r[2][2] * p0 - sb * r[2][0]);
    z.a = a;
    return z;
}

// Four doubles, for code built for 256-bit registers; their mask functions are templates, made
// only where such code uses them.
using D4 = double __attribute__((vector_size(32)));
using algo::lanes::L4;
template <class M>
inline M both(M a, M b) {
    return a & b;
}
template <class M, class D>
inline D choose(M mask, D yes, D no) {
    return mask ? yes : no;
}

// Lanes of double precision D holds.
template <class D>
constexpr int kWidthOf = static_cast<int>(sizeof(D) / sizeof(double));

// What joint_value reads of one joint per lane, in double precision as it uses them, in parts of
// D's width: two halves of D2, or one D4 in the builds for 256-bit registers.
template <class D>
struct JointLanesOf {
    static constexpr int kParts = 4 / kWidthOf<D>;
    D offset[kParts], lo[kParts], hi[kParts], ref[kParts];
};
using JointLanes = JointLanesOf<D2>;

template <class D = D2>
inline JointLanesOf<D> joint_lanes(const SolveInput& in, const int (&joint)[4]) {
    JointLanesOf<D> l;
    constexpr int kWidth = kWidthOf<D>;
    for (int h = 0; h < l.kParts; ++h) {
        for (int k = 0; k < kWidth; ++k) {
            const int j = joint[kWidth * h + k];
            l.offset[h][k] = in.dh.offset[j];
            l.lo[h][k] = in.limits.min[j];
            l.hi[h][k] = in.limits.max[j];
            l.ref[h][k] = in.q_ref[j];
        }
    }
    return l;
}

template <class D>
inline D round_to_integer(D x) {
    constexpr double kShift = 6755399441055744.0;
    return (x + kShift) - kShift;
}

// joint_value of every lane, for the joints l was made for.
template <class D>
inline F4 joint_values(const JointLanesOf<D>& l, F4 theta) {
    constexpr double kTurn = 2.0 * ALGO_PI;
    constexpr int kWidth = kWidthOf<D>;
    const D one = D{} + 1.0, zero = D{};
    F4 out;
    for (int h = 0; h < l.kParts; ++h) {
        D t;
        if constexpr (kWidth == 4) {
            t = __builtin_convertvector(theta, D4);
        } else {
            t = D{theta[2 * h], theta[2 * h + 1]};
        }
        const D raw = t - l.offset[h];
        D q = raw + kTurn * round_to_integer((l.ref[h] - raw) * (1.0 / kTurn));
        const D below = choose(q < l.lo[h], one, zero);
        const D above = choose(q > l.hi[h], one, zero);
        q += kTurn * (below - above);
        const D wrapped = raw - kTurn * round_to_integer(raw * (1.0 / kTurn));
        const D chosen = choose(both(q >= l.lo[h], q <= l.hi[h]), q, wrapped);
        if constexpr (kWidth == 4) {
            out = __builtin_convertvector(chosen, F4);
        } else {
            out[2 * h] = static_cast<float>(chosen[0]);
            out[2 * h + 1] = static_cast<float>(chosen[1]);
        }
    }
    return out;
}

}  // namespace algo::ik::lanes

#endif
