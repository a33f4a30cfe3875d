#ifndef LANE_TRIG_H
#define LANE_TRIG_H

// Sines, cosines and arc tangents four at a time, in single precision, for the kinematics' hot
// paths (a forward kinematics call needs up to seven sine-cosine pairs and three arc tangents).
// Polynomial forms on reduced arguments, within about 2 ulp of the C library's functions; lanes
// the forms do not cover (huge or non-finite arguments) take the C library's result. Not part of
// the library's interface.

#include <cmath>
#include <cstdint>

namespace algo::lanes {

using F4 = float __attribute__((vector_size(16)));
using I4 = int32_t __attribute__((vector_size(16)));
using L2 = int64_t __attribute__((vector_size(16)));

constexpr F4 splat(float v) { return F4{v, v, v, v}; }
inline F4 select(I4 mask, F4 yes, F4 no) {
    return reinterpret_cast<F4>((mask & reinterpret_cast<I4>(yes)) | (~mask & reinterpret_cast<I4>(no)));
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
inline F4 abs(F4 v) { return reinterpret_cast<F4>(reinterpret_cast<I4>(v) & INT32_MAX); }
inline I4 sign_bit(F4 v) { return reinterpret_cast<I4>(v) & INT32_MIN; }
inline F4 flip_sign(F4 v, I4 sign) { return reinterpret_cast<F4>(reinterpret_cast<I4>(v) ^ sign); }
inline bool any(I4 mask) {
    const L2 halves = reinterpret_cast<L2>(mask);
    return (halves[0] | halves[1]) != 0;
}

// Lanes the polynomial forms do not serve, from the C library; out of the hot path's code.
[[gnu::cold, gnu::noinline]] inline void sincos_by_library(F4 x, I4 which, F4& s, F4& c) {
    for (int i = 0; i < 4; ++i)
        if (which[i]) {
            s[i] = std::sin(x[i]);
            c[i] = std::cos(x[i]);
        }
}
[[gnu::cold, gnu::noinline]] inline F4 atan2_by_library(F4 y, F4 x, I4 which, F4 a) {
    for (int i = 0; i < 4; ++i)
        if (which[i]) a[i] = std::atan2(y[i], x[i]);
    return a;
}

// Up to this size the three-part reduction by multiples of pi/2 keeps full single precision.
constexpr float kReducible = 8192.0f;

// sin and cos of every lane.
inline void sincos(F4 x, F4& s, F4& c) {
    // Round x * 2/pi to the nearest integer k by pushing it into the mantissa's units place;
    // the low bits of that float then hold k mod 4, the quadrant.
    const F4 round = splat(12582912.0f);  // 1.5 * 2^23
    const F4 shifted = x * splat(0.636619772367581343f) + round;
    const F4 k = shifted - round;
    const I4 quadrant = reinterpret_cast<I4>(shifted);
    // x - k * pi/2 in three parts, the first exact in k.
    const F4 r =
        ((x - k * splat(1.5703125f)) - k * splat(4.837512969970703125e-4f)) - k * splat(7.54978995489188216e-8f);
    const F4 z = r * r, z2 = z * z;
    // Both polynomials split in halves that run side by side.
    const F4 sin_r =
        r + (r * z) * ((splat(8.3321608736e-3f) * z + splat(-1.6666654611e-1f)) + z2 * splat(-1.9515295891e-4f));
    const F4 cos_r = (splat(1.0f) - splat(0.5f) * z) +
                     z2 * ((splat(-1.388731625493765e-3f) * z + splat(4.166664568298827e-2f)) +
                           z2 * splat(2.443315711809948e-5f));
    const I4 swap = (quadrant & 1) != 0;
    s = flip_sign(select(swap, cos_r, sin_r), (quadrant & 2) << 30);
    c = flip_sign(select(swap, sin_r, cos_r), ((quadrant + 1) & 2) << 30);
    const I4 outside = ~(abs(x) <= splat(kReducible));
    if (any(outside)) sincos_by_library(x, outside, s, c);
}

// atan2(y, x) of every lane, with the C library's signs for zeros.
inline F4 atan2(F4 y, F4 x) {
    const F4 ay = abs(y), ax = abs(x);
    const I4 steep = ay > ax;
    const F4 lo = select(steep, ax, ay), hi = select(steep, ay, ax);
    // atan(lo/hi) on [0, 1]; above tan(pi/8) as pi/4 + atan((lo - hi) / (lo + hi)).
    const I4 upper = lo > splat(0.414213562373095f) * hi;
    const F4 num = select(upper, lo - hi, lo), den = select(upper, lo + hi, hi);
    const F4 t = select(den > splat(0.0f), num / den, splat(0.0f));
    const F4 z = t * t, z2 = z * z;
    const F4 p = (splat(1.99777106478e-1f) * z + splat(-3.33329491539e-1f)) +
                 z2 * (splat(8.05374449538e-2f) * z + splat(-1.38776856032e-1f));
    F4 a = (t * z) * p + t;
    a = select(upper, a + splat(0.785398163397448f), a);
    a = select(steep, splat(1.57079632679490f) - a, a);
    a = select(sign_bit(x) != 0, splat(3.14159265358979f) - a, a);
    a = flip_sign(a, sign_bit(y));
    const I4 special = ~((ax <= splat(3.4e38f)) & (ay <= splat(3.4e38f)));  // infinities and NaNs
    return any(special) ? atan2_by_library(y, x, special, a) : a;
}

}  // namespace algo::lanes

#endif
