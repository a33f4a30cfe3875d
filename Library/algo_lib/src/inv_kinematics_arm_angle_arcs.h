#ifndef INV_KINEMATICS_ARM_ANGLE_ARCS_H
#define INV_KINEMATICS_ARM_ANGLE_ARCS_H

// What a Z-Y-Z triple's angles sweep over an interval of arm angles, from their values at its
// two ends. a, c, a + c and a - c are each the angle of a point (X, Y) whose coordinates are
// sums of R's entries, so sinusoids in the arm angle: the angle turns one way for as long as
// X Y' - Y X' keeps its sign, and that is k + p sin psi + q cos psi (the sin * cos terms cancel),
// whose least and greatest values over an interval shorter than half a turn lie at its ends or
// where its own derivative changes sign. Where it keeps its sign the angle's values are exactly
// the arc between its values at the ends, the way it turns; elsewhere a bound on its rate gives a
// wider arc. b = acos(r22) follows r22, whose range over the interval comes the same way. Not
// part of the library's interface.

#include <algorithm>
#include <cmath>

#include "inv_kinematics_internal.h"
#include "lane_trig.h"

namespace algo::ik {

// The entries of a rotation the angles are read from, each as [sin, cos, constant] in the arm
// angle.
enum ArcEntry { k00, k01, k02, k10, k11, k12, k20, k21, k22, kArcEntries };
using ArcEntries = float[kArcEntries][3];

// [0] sin psi + [1] cos psi + [2] at the lanes' arm angles: two multiply-adds where fused.
template <class V>
V sinusoid(const float (&f)[3], V sn, V cs) {
    return f[0] * sn + (f[1] * cs + lanes::splat<V>(f[2]));
}

// a, c, a + c and a - c, as the angles of
// (r02, r12), (-r20, r21), (r00 + r11, r10 - r01), (r11 - r00, -(r10 + r01)).
enum ArcAngle { kArcA, kArcC, kArcSum, kArcDifference, kArcAngles };

// X Y' - Y X' = k + p sin psi + q cos psi for one angle, with its amplitude and a margin for the
// rounding of the sum.
struct TurnForm {
    float k, p, q, amplitude, margin;
    float least, most, low_margin;  // k - amplitude, k + amplitude, -margin
    int way;                        // +1 (-1) where the angle turns up (down) at every arm angle, else 0
};

struct ArcForms {
    TurnForm turn[kArcAngles];
    float z_top, z_bottom;  // r22's extremes over all arm angles
    float b_top, b_bottom;  // b there

    // Well above single precision's rounding of k + p sin + q cos, with the sine and cosine
    // within a few ulp, and of r22.
    static constexpr double kTurnRounding = 2e-6;
    static constexpr double kExtremeRounding = 2e-6;
};

inline void arc_forms(const ArcEntries& r, ArcForms& f) {
    for (int i = 0; i < kArcAngles; ++i) {
        double x[3], y[3];
        for (int part = 0; part < 3; ++part) {
            const auto at = [&](int e) { return double(r[e][part]); };
            switch (i) {
                case kArcA:
                    x[part] = at(k02), y[part] = at(k12);
                    break;
                case kArcC:
                    x[part] = -at(k20), y[part] = at(k21);
                    break;
                case kArcSum:
                    x[part] = at(k00) + at(k11), y[part] = at(k10) - at(k01);
                    break;
                default:
                    x[part] = at(k11) - at(k00), y[part] = -(at(k10) + at(k01));
                    break;
            }
        }
        const double k = x[1] * y[0] - x[0] * y[1];
        const double p = y[2] * x[1] - x[2] * y[1];
        const double q = x[2] * y[0] - y[2] * x[0];
        const double amplitude = std::sqrt(p * p + q * q);
        const float margin = float(ArcForms::kTurnRounding * (std::fabs(k) + amplitude) + 1e-12);
        const float constant = float(k), swing = float(amplitude);
        TurnForm& t = f.turn[i];
        t = {constant, float(p), float(q), swing, margin, constant - swing, constant + swing, -margin, 0};
        t.way = t.least > t.margin ? 1 : t.most < t.low_margin ? -1 : 0;
    }
    // Widened for rounding: near r22 = +-1 its arc cosine takes in r22's rounding as a square root.
    const double zs = r[k22][0], zc = r[k22][1], zk = r[k22][2];
    const double amplitude = std::sqrt(zs * zs + zc * zc) + ArcForms::kExtremeRounding;
    f.z_top = float(zk + amplitude);
    f.z_bottom = float(zk - amplitude);
}

// b at r22's extremes, for two triples' forms at once: four arc cosines as arc tangents in lanes
// (within a few ulp; b's arcs carry kArcSlack).
inline void bends_at_extremes(ArcForms& first, ArcForms& second) {
    using lanes::F4;
    const F4 z = {std::min(1.0f, first.z_top), std::max(-1.0f, first.z_bottom), std::min(1.0f, second.z_top),
                  std::max(-1.0f, second.z_bottom)};
    const F4 one = lanes::splat(1.0f);
    const F4 b = lanes::atan2_finite(lanes::sqrt(lanes::max((one - z) * (one + z), lanes::splat(0.0f))), z);
    first.b_top = b[0];
    first.b_bottom = b[1];
    second.b_top = b[2];
    second.b_bottom = b[3];
}

// Slack for rounding: on every arc (loose anyway); for a and c, and a + c and a - c formed from
// them, times 1 / |sin b| (the solver's rounding and the ends'); for sin^2 b = 1 - r22^2 in
// entries not quite a rotation. Below kArcSingular |sin b| a and c may be anything (at the
// singularity the solver takes the reference's a).
constexpr float kArcSlack = 1e-4f;
constexpr float kArcOuterSlack = 4e-6f;
constexpr float kArcSinSquaredSlack = 4e-6f;
constexpr float kArcSingular = 1e-4f;

// One triple's values at one end of each lane's interval.
template <class V>
struct ArcEnd {
    V a, c;
    V z, dz, b;    // r22, its derivative, and b = atan2(sin b, r22)
    V sb;          // |sin b|: a + c and a - c carry a's and c's rounding over it
};

// a less its nearest whole number of turns: within half a turn (and rounding) either way. The
// number is rounded by pushing it into the mantissa's units place; from within a few turns the
// turns taken off are exact.
template <class V>
V within_half_turn(V a) {
    const V units = lanes::splat<V>(12582912.0f);  // 1.5 * 2^23
    const V turns = (a * lanes::splat<V>(float(0.5 / ALGO_PI)) + units) - units;
    return a - turns * lanes::splat<V>(kTwoPi);
}

template <class V>
ArcEnd<V> arc_end(const ArcEntries& m, V sn, V cs) {
    const auto entry = [&](int i) { return sinusoid(m[i], sn, cs); };
    const V r02 = entry(k02), r12 = entry(k12), r20 = entry(k20), r21 = entry(k21);
    ArcEnd<V> e;
    e.z = entry(k22);
    e.dz = m[k22][0] * cs - m[k22][1] * sn;
    e.sb = lanes::sqrt(r02 * r02 + r12 * r12);
    e.b = algo::lanes::atan2_finite_direct(e.sb, e.z);
    e.a = algo::lanes::atan2_finite_direct(r12, r02);
    e.c = algo::lanes::atan2_finite_direct(r21, -r20);
    return e;
}

// An angle's value at an end: a, c, a + c or a - c.
template <class V>
V arc_angle(const ArcEnd<V>& e, int i) {
    switch (i) {
        case kArcA:
            return e.a;
        case kArcC:
            return e.c;
        case kArcSum:
            return within_half_turn(e.a + e.c);
        default:
            return within_half_turn(e.a - e.c);
    }
}

// An arc of angles: every value within move of centre (move may be infinite).
template <class V>
struct Arc {
    V centre, move;
};

// What one triple sweeps over each lane's interval, from its ends lo and hi `width` apart (rad),
// whose sines and cosines of the arm angle are (sn_lo, cs_lo) and (sn_hi, cs_hi). b's arc comes
// first; the others' one at a time, as asked for, so that few values wait at once.
template <class V>
class TripleArcs {
    using I = lanes::MaskOf<V>;

public:
    Arc<V> b;  // within [0, pi]

    TripleArcs(const ArcForms& f, const ArcEnd<V>& lo, const ArcEnd<V>& hi, V sn_lo, V cs_lo, V sn_hi,
               V cs_hi, V width)
        : f_(f), lo_(lo), hi_(hi), sn_lo_(sn_lo), cs_lo_(cs_lo), sn_hi_(sn_hi), cs_hi_(cs_hi), width_(width) {
        const V zero = lanes::splat<V>(0.0f), half = lanes::splat<V>(0.5f), one = lanes::splat<V>(1.0f);
        // r22's range, and b's, exact but for rounding.
        const I z_peak = (lo.dz > zero) & (hi.dz < zero), z_trough = (lo.dz < zero) & (hi.dz > zero);
        z_max_ = lanes::select(z_peak, lanes::splat<V>(f.z_top), lanes::max(lo.z, hi.z));
        z_min_ = lanes::select(z_trough, lanes::splat<V>(f.z_bottom), lanes::min(lo.z, hi.z));
        const V b_min = lanes::select(z_peak, lanes::splat<V>(f.b_top), lanes::min(lo.b, hi.b));
        const V b_max = lanes::select(z_trough, lanes::splat<V>(f.b_bottom), lanes::max(lo.b, hi.b));
        b = {half * (b_min + b_max), half * (b_max - b_min) + lanes::splat<V>(kArcSlack)};
        // |sin b| at its least over the interval.
        const V z_far = lanes::max(z_max_ * z_max_, z_min_ * z_min_);
        sin_b_ = lanes::sqrt(lanes::max(one - z_far - lanes::splat<V>(kArcSinSquaredSlack), zero));
        // The solver's a and c carry its rounding over sin b.
        outer_ = lanes::splat<V>(2.0f * kArcOuterSlack) / sin_b_;
    }

    // a, c, a + c or a - c.
    Arc<V> angle(int i) const {
        const V zero = lanes::splat<V>(0.0f), half = lanes::splat<V>(0.5f), one = lanes::splat<V>(1.0f);
        const V turn = lanes::splat<V>(kTwoPi), pi = lanes::splat<V>(kPi), inf = lanes::splat<V>(INFINITY);
        const TurnForm& t = f_.turn[i];
        const V from = arc_angle(lo_, i);
        const V delta = arc_angle(hi_, i) - from;  // within a turn either way
        const V swept_up = lanes::select(delta < zero, delta + turn, delta);
        const V swept_down = lanes::select(delta > zero, turn - delta, -delta);
        V sweep, move;
        if (t.way > 0) {  // the same way at every arm angle: no need to look
            sweep = move = half * swept_up;
        } else if (t.way < 0) {
            move = half * swept_down;
            sweep = -move;
        } else {
            const V turn_lo = t.p * sn_lo_ + (t.q * cs_lo_ + lanes::splat<V>(t.k));
            const V turn_hi = t.p * sn_hi_ + (t.q * cs_hi_ + lanes::splat<V>(t.k));
            const V bend_lo = t.p * cs_lo_ - t.q * sn_lo_, bend_hi = t.p * cs_hi_ - t.q * sn_hi_;
            const I trough = (bend_lo < zero) & (bend_hi > zero), peak = (bend_lo > zero) & (bend_hi < zero);
            const V least = lanes::select(trough, lanes::splat<V>(t.least), lanes::min(turn_lo, turn_hi));
            const V most = lanes::select(peak, lanes::splat<V>(t.most), lanes::max(turn_lo, turn_hi));
            const I up = least > lanes::splat<V>(t.margin), down = most < lanes::splat<V>(t.low_margin);
            // Elsewhere the arc around the ends' middle within the rate's bound either way: 1 / |sin b|
            // for a and c, 1 / cos(b / 2) for a + c and 1 / sin(b / 2) for a - c, at their least.
            const V shortest =
                lanes::select(delta > pi, delta - turn, lanes::select(delta < -pi, delta + turn, delta));
            const V rate = i == kArcSum          ? one / lanes::sqrt(lanes::max(half + half * z_min_, zero))
                           : i == kArcDifference ? one / lanes::sqrt(lanes::max(half - half * z_max_, zero))
                                                 : one / sin_b_;
            const V reach = rate * width_;
            const V loose = lanes::select(reach < pi, half * reach, inf);
            sweep =
                lanes::select(up, half * swept_up, lanes::select(down, -half * swept_down, half * shortest));
            move = lanes::select(up, half * swept_up, lanes::select(down, half * swept_down, loose));
        }
        return {from + sweep, move + slack(i) + lanes::splat<V>(kArcSlack)};
    }

private:
    // a + c (a - c) is as well defined as the entries it comes from only while b stays within the
    // upper (lower) half turn; at the ends it comes from a and c; whether it turns one way, from
    // entries of size 1 + cos b (1 - cos b).
    V slack(int i) const {
        const V zero = lanes::splat<V>(0.0f), one = lanes::splat<V>(1.0f);
        if (i == kArcA || i == kArcC)
            return lanes::select(sin_b_ > lanes::splat<V>(kArcSingular), outer_, lanes::splat<V>(INFINITY));
        const V ends = lanes::splat<V>(2.0f * kArcOuterSlack) / lanes::min(lo_.sb, hi_.sb);
        const V form = lanes::splat<V>(kArcOuterSlack);
        return i == kArcSum ? ends + form / (one + z_min_) + lanes::select(z_min_ >= zero, zero, outer_)
                            : ends + form / (one - z_max_) + lanes::select(z_max_ <= zero, zero, outer_);
    }

    const ArcForms& f_;
    const ArcEnd<V>&lo_, &hi_;
    V sn_lo_, cs_lo_, sn_hi_, cs_hi_, width_;
    V z_max_, z_min_, sin_b_, outer_;
};

}  // namespace algo::ik

#endif
