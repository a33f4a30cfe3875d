#ifndef LANE_TRIG_H
#define LANE_TRIG_H

// Sines, cosines and arc tangents four or eight at a time, in single precision, for the
// kinematics' hot paths (a forward kinematics call needs up to seven sine-cosine pairs and three
// arc tangents).
// Polynomial forms on reduced arguments, within about 2 ulp of the C library's functions; lanes
// the forms do not cover (huge or non-finite arguments) take the C library's result. Not part of
// the library's interface.

#include <cmath>
#include <cstdint>

namespace algo::lanes {

using F4 = float __attribute__((vector_size(16)));
using I4 = int32_t __attribute__((vector_size(16)));
using L2 = int64_t __attribute__((vector_size(16)));
// Eight lanes, for code built for processors with 256-bit registers; elsewhere the compiler
// splits them.
using F8 = float __attribute__((vector_size(32)));
using I8 = int32_t __attribute__((vector_size(32)));
using L4 = int64_t __attribute__((vector_size(32)));

// The lane mask of a float vector (as its comparisons give), and its lane count.
template <class V>
using MaskOf = decltype(V{} < V{});
template <class V>
constexpr int kLanesOf = static_cast<int>(sizeof(V) / sizeof(float));

// Eight lanes as lane 0 shuffled everywhere: the compiler builds a listed vector the baseline's way
// even inlined into code for wider registers, four inserts and a lane copy where one broadcast does.
template <class V = F4>
inline V splat(float v) {
    if constexpr (kLanesOf<V> == 4) {
        return V{v, v, v, v};
    } else {
#if defined(__clang__)
        return __builtin_shufflevector(V{v}, V{v}, 0, 0, 0, 0, 0, 0, 0, 0);
#else
        return __builtin_shuffle(V{v}, MaskOf<V>{});
#endif
    }
}
// Masks are whole lanes of ones or zeros, as comparisons give them: one blend where the
// instruction set has it.
template <class V>
inline V select(MaskOf<V> mask, V yes, V no) {
    return mask ? yes : no;
}
inline F4 sqrt(F4 v) {
#if defined(__SSE__)
    return __builtin_ia32_sqrtps(v);  // correctly rounded, as std::sqrt
#else
    return F4{std::sqrt(v[0]), std::sqrt(v[1]), std::sqrt(v[2]), std::sqrt(v[3])};
#endif
}
// The larger and the smaller of each pair of lanes; b where either is a NaN.
#if defined(__SSE__)
inline F4 max(F4 a, F4 b) { return __builtin_ia32_maxps(a, b); }
inline F4 min(F4 a, F4 b) { return __builtin_ia32_minps(a, b); }
#else
inline F4 max(F4 a, F4 b) { return select(a > b, a, b); }
inline F4 min(F4 a, F4 b) { return select(a < b, a, b); }
#endif
template <class V>
inline V abs(V v) { return reinterpret_cast<V>(reinterpret_cast<MaskOf<V>>(v) & INT32_MAX); }
template <class V>
inline MaskOf<V> sign_bit(V v) { return reinterpret_cast<MaskOf<V>>(v) & INT32_MIN; }
template <class V>
inline V flip_sign(V v, MaskOf<V> sign) { return reinterpret_cast<V>(reinterpret_cast<MaskOf<V>>(v) ^ sign); }
inline bool any(I4 mask) {
    const L2 halves = reinterpret_cast<L2>(mask);
    return (halves[0] | halves[1]) != 0;
}
template <class M>
    requires(sizeof(M) == sizeof(I8))
inline bool any(M mask) {
    const L4 quarters = reinterpret_cast<L4>(mask);
    return ((quarters[0] | quarters[1]) | (quarters[2] | quarters[3])) != 0;
}
// One bit a lane, lane 0 lowest.
inline int lane_bits(I4 mask) {
#if defined(__SSE__)
    return __builtin_ia32_movmskps(reinterpret_cast<F4>(mask));
#else
    return (mask[0] & 1) | (mask[1] & 2) | (mask[2] & 4) | (mask[3] & 8);
#endif
}

// Square roots, maxima, minima and lane bits of eight lanes. Optimised builds inline the search's
// and the pose calls' eight-lane code into their builds for 256-bit registers, where each is one
// instruction (the compiler writes a max or min against zero as a compare and a mask).
// Unoptimised builds keep functions out of line, compiled for the baseline: there the portable
// forms, so that no call passes a vector between the two calling conventions. Clang refuses such a
// call even where it would inline it, and writes the portable forms as those instructions anyway.
#if defined(__x86_64__) && defined(__OPTIMIZE__) && !defined(__clang__)
template <class V>
    requires(kLanesOf<V> == 8)
[[gnu::target("avx")]] inline V sqrt(V v) {
    return __builtin_ia32_sqrtps256(v);  // correctly rounded, as std::sqrt
}
template <class V>
    requires(kLanesOf<V> == 8)
[[gnu::target("avx")]] inline V max(V a, V b) {
    return __builtin_ia32_maxps256(a, b);
}
template <class V>
    requires(kLanesOf<V> == 8)
[[gnu::target("avx")]] inline V min(V a, V b) {
    return __builtin_ia32_minps256(a, b);
}
template <class M>
    requires(sizeof(M) == sizeof(I8))
[[gnu::target("avx")]] inline int lane_bits(M mask) {
    return __builtin_ia32_movmskps256(reinterpret_cast<F8>(mask));
}
#else
template <class V>
    requires(kLanesOf<V> == 8)
inline V sqrt(V v) {
    const F4 lo = sqrt(F4{v[0], v[1], v[2], v[3]}), hi = sqrt(F4{v[4], v[5], v[6], v[7]});
    return __builtin_shufflevector(lo, hi, 0, 1, 2, 3, 4, 5, 6, 7);
}
template <class V>
    requires(kLanesOf<V> == 8)
inline V max(V a, V b) {
    return a > b ? a : b;
}
template <class V>
    requires(kLanesOf<V> == 8)
inline V min(V a, V b) {
    return a < b ? a : b;
}
template <class M>
    requires(sizeof(M) == sizeof(I8))
inline int lane_bits(M mask) {
    const I4 lo = {mask[0], mask[1], mask[2], mask[3]}, hi = {mask[4], mask[5], mask[6], mask[7]};
    return lane_bits(lo) | lane_bits(hi) << 4;
}
#endif

// Each lane's number, from 0.
template <class V>
inline MaskOf<V> lane_numbers() {
    if constexpr (kLanesOf<V> == 8) {
        return MaskOf<V>{0, 1, 2, 3, 4, 5, 6, 7};
    } else {
        return MaskOf<V>{0, 1, 2, 3};
    }
}

// Lanes the polynomial forms do not serve, from the C library; out of the hot path's code, so
// by reference: a call from code built for wider registers passes no vectors by value.
template <class V>
[[gnu::cold, gnu::noinline]] inline void sincos_by_library(const V& x, const MaskOf<V>& which, V& s, V& c) {
    for (int i = 0; i < kLanesOf<V>; ++i)
        if (which[i]) {
            s[i] = std::sin(x[i]);
            c[i] = std::cos(x[i]);
        }
}
template <class V>
[[gnu::cold, gnu::noinline]] inline void atan2_by_library(const V& y, const V& x, const MaskOf<V>& which, V& a) {
    for (int i = 0; i < kLanesOf<V>; ++i)
        if (which[i]) a[i] = std::atan2(y[i], x[i]);
}

// Up to this size the three-part reduction by multiples of pi/2 keeps full single precision.
constexpr float kReducible = 8192.0f;

// sin and cos of every lane, for arguments within kReducible.
template <class V>
inline void sincos_reducible(V x, V& s, V& c) {
    // Round x * 2/pi to the nearest integer k by pushing it into the mantissa's units place;
    // the low bits of that float then hold k mod 4, the quadrant.
    const V round = splat<V>(12582912.0f);  // 1.5 * 2^23
    const V shifted = x * splat<V>(0.636619772367581343f) + round;
    const V k = shifted - round;
    const MaskOf<V> quadrant = reinterpret_cast<MaskOf<V>>(shifted);
    // x - k * pi/2 in three parts, the first exact in k.
    const V r = ((x - k * splat<V>(1.5703125f)) - k * splat<V>(4.837512969970703125e-4f)) -
                k * splat<V>(7.54978995489188216e-8f);
    const V z = r * r, z2 = z * z;
    // Both polynomials split in halves that run side by side.
    const V sin_r = r + (r * z) * ((splat<V>(8.3321608736e-3f) * z + splat<V>(-1.6666654611e-1f)) +
                                   z2 * splat<V>(-1.9515295891e-4f));
    const V cos_r = (splat<V>(1.0f) - splat<V>(0.5f) * z) +
                    z2 * ((splat<V>(-1.388731625493765e-3f) * z + splat<V>(4.166664568298827e-2f)) +
                          z2 * splat<V>(2.443315711809948e-5f));
    const MaskOf<V> swap = (quadrant & 1) != 0;
    s = flip_sign(select(swap, cos_r, sin_r), (quadrant & 2) << 30);
    c = flip_sign(select(swap, sin_r, cos_r), ((quadrant + 1) & 2) << 30);
}

// sin and cos of every lane.
template <class V>
inline void sincos(V x, V& s, V& c) {
    sincos_reducible(x, s, c);
    const MaskOf<V> outside = ~(abs(x) <= splat<V>(kReducible));
    if (any(outside)) sincos_by_library(x, outside, s, c);
}

// atan2(y, x) of every lane of finite y and x, with the C library's signs for zeros.
template <class V>
inline V atan2_finite(V y, V x) {
    const V ay = abs(y), ax = abs(x);
    const MaskOf<V> steep = ay > ax;
    const V lo = select(steep, ax, ay), hi = select(steep, ay, ax);
    // atan(lo/hi) on [0, 1]; above tan(pi/8) as pi/4 + atan((lo - hi) / (lo + hi)).
    const MaskOf<V> upper = lo > splat<V>(0.414213562373095f) * hi;
    const V num = select(upper, lo - hi, lo), den = select(upper, lo + hi, hi);
    const V t = select(den > splat<V>(0.0f), num / den, splat<V>(0.0f));
    const V z = t * t, z2 = z * z;
    const V p = (splat<V>(1.99777106478e-1f) * z + splat<V>(-3.33329491539e-1f)) +
                z2 * (splat<V>(8.05374449538e-2f) * z + splat<V>(-1.38776856032e-1f));
    V a = (t * z) * p + t;
    a = select(upper, a + splat<V>(0.785398163397448f), a);
    a = select(steep, splat<V>(1.57079632679490f) - a, a);
    a = select(sign_bit(x) != 0, splat<V>(3.14159265358979f) - a, a);
    return flip_sign(a, sign_bit(y));
}

// atan2_finite() with one polynomial over the whole octant, unsplit at tan(pi/8): a few
// instructions fewer, within 4e-7 rad of the C library's (atan2_finite: 3e-7) but not equal to it.
template <class V>
inline V atan2_finite_direct(V y, V x) {
    const V ay = abs(y), ax = abs(x);
    const MaskOf<V> steep = ay > ax;
    const V lo = min(ay, ax), hi = max(ay, ax);
    const V t = select(hi > splat<V>(0.0f), lo / hi, splat<V>(0.0f));
    const V z = t * t, z2 = z * z, z4 = z2 * z2;
    // Least greatest error on [0, 1], split for the lanes' parallel work.
    const V p = ((splat<V>(1.9962703955e-1f) * z + splat<V>(-3.3331659032e-1f)) +
                 z2 * (splat<V>(9.7942341302e-2f) * z + splat<V>(-1.3976581970e-1f))) +
                z4 * ((splat<V>(2.3040131533e-2f) * z + splat<V>(-5.7773583590e-2f)) +
                      z2 * splat<V>(-4.3554045612e-3f));
    V a = (t * z) * p + t;
    a = select(steep, splat<V>(1.57079632679490f) - a, a);
    a = select(sign_bit(x) != 0, splat<V>(3.14159265358979f) - a, a);
    return flip_sign(a, sign_bit(y));
}

// atan2(y, x) of every lane, with the C library's signs for zeros.
template <class V>
inline V atan2(V y, V x) {
    V a = atan2_finite(y, x);
    const V ay = abs(y), ax = abs(x);
    const MaskOf<V> special =
        ~((ax <= splat<V>(3.4e38f)) & (ay <= splat<V>(3.4e38f)));  // infinities and NaNs
    if (any(special)) atan2_by_library(y, x, special, a);
    return a;
}

}  // namespace algo::lanes

#endif
