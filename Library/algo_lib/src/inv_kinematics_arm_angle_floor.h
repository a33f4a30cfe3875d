#ifndef INV_KINEMATICS_ARM_ANGLE_FLOOR_H
#define INV_KINEMATICS_ARM_ANGLE_FLOOR_H

// A floor under the distance from the reference of every branch within the limits at one arm
// angle, without working the branches out. Each joint takes the turn nearest the reference, or
// the next one towards its limits: from the joint's signed angle to the reference that is its
// distance, or no branch within the limits at all. The shoulder and wrist entries the angles come
// from are sinusoids in the arm angle, so an arm angle costs a few multiply-adds and, with those in
// the other lanes, a few arc tangents per elbow sign, against the full set of branches. The search
// skips the elbow signs whose floor cannot beat the best so far: only work that could not change
// the answer.
// The same terms, with bounds on how fast each joint turns with the arm angle, give a floor over a
// whole run of arm angles from the run's middle one. Not part of the library's interface.

#include <algorithm>
#include <cmath>

#include "inv_kinematics_arm_angle.h"
#include "lane_trig.h"

namespace algo::ik {

class CostFloor {
public:
    CostFloor(const SolveInput& in, const ArmAngleTarget& t, const float* theta_ref) {
        for (int e = 0; e < 2; ++e) {
            const ElbowBranch& b = t.elbow[e];
            const Mat3* shoulder[3] = {&b.shoulder_sin, &b.shoulder_cos, &b.shoulder_const};
            for (int p = 0; p < 3; ++p) {
                Mat3 wrist;
                wrist_rotation(b, *shoulder[p], t.rotation, wrist);  // linear in the shoulder
                entries_of(*shoulder[p], p, parts_[e][0]);
                entries_of(wrist, p, parts_[e][1]);
            }
            // The axes the shoulder and the wrist turn about, at unit rate, as the arm angle grows:
            // the shoulder-wrist line, and for the wrist the same seen from the elbow, reversed.
            const Vec3& s = t.axis;
            axes_[e][0] = s;
            const float v[3] = {b.shoulder0[0][0] * s.x + b.shoulder0[1][0] * s.y + b.shoulder0[2][0] * s.z,
                                b.shoulder0[0][1] * s.x + b.shoulder0[1][1] * s.y + b.shoulder0[2][1] * s.z,
                                b.shoulder0[0][2] * s.x + b.shoulder0[1][2] * s.y + b.shoulder0[2][2] * s.z};
            axes_[e][1] = {-(b.c4 * v[0] - b.s4 * v[2]), -v[1], -(b.s4 * v[0] + b.c4 * v[2])};
            const float q4 = joint_value(in, 3, b.t4);
            const float d4 = std::fmax(0.0f, std::fabs(q4 - in.q_ref[3]) - kAngleSlack);
            joint4_[e] = q4 >= in.limits.min[3] && q4 <= in.limits.max[3] ? d4 * d4 : INFINITY;
        }
        for (int k = 0; k < 2; ++k) {
            for (int i = 0; i < 3; ++i) {
                const int j = 4 * k + i;
                joints_[k].ref[i] = in.q_ref[j];
                joints_[k].angle[i] = std::remainder(theta_ref[j], kTwoPi);
                const float lo = in.limits.min[j], hi = in.limits.max[j];
                joints_[k].lo[i] = lo;
                joints_[k].hi[i] = hi;
                const float nearest = std::fmin(hi, std::fmax(lo, in.q_ref[j]));
                joints_[k].outside[i] = std::fabs(in.q_ref[j] - nearest);
                joints_[k].shift[i] =
                    in.q_ref[j] == nearest ? 0.0f : std::remainder(in.q_ref[j] - nearest, kTwoPi);
                joints_[k].lo_seen[i] = lo - nearest;
                joints_[k].hi_seen[i] = hi - nearest;
            }
            const float first = joints_[k].angle[0], last = joints_[k].angle[2];
            joints_[k].pair[0] = wrapped(first + last);
            joints_[k].pair[1] = wrapped(first - last);
        }
    }

    // Floors of each elbow sign (infinite where none can be within the limits) at four or eight
    // arm angles, or over as many runs of them.
    template <class V>
    struct FloorsOf {
        V elbow[2];

        float least(int lane) const { return std::min(elbow[0][lane], elbow[1][lane]); }

        // The elbow signs of `elbows` whose branches at the lane's arm angle may cost less than
        // best, and no more than ceiling.
        int could_beat(int elbows, int lane, double best, double ceiling) const {
            for (int e = 0; e < 2; ++e) {
                if (!may_beat(elbow[e][lane], best) || below(elbow[e][lane]) > ceiling) elbows &= ~(1 << e);
            }
            return elbows;
        }
    };

    using Floors = FloorsOf<lanes::F4>;

    // The elbow signs whose joint 4 alone leaves a branch that may cost less than best.
    int elbows_below(double best) const {
        int elbows = 0;
        for (int e = 0; e < 2; ++e) elbows |= may_beat(joint4_[e], best) ? 1 << e : 0;
        return elbows;
    }

    // True when a branch whose floor is `floor` may cost less than best.
    static bool may_beat(float floor, double best) { return below(floor) < best; }

    // At the arm angles whose sines and cosines are sn and cs, for the elbow signs of `elbows`
    // (infinite for the others).
    template <class V>
    FloorsOf<V> at(V sn, V cs, int elbows = kBothElbows) const {
        FloorsOf<V> f;
        for (int e = 0; e < 2; ++e) {
            if (joint4_[e] == INFINITY || (elbows & (1 << e)) == 0) {
                f.elbow[e] = lanes::splat<V>(INFINITY);
                continue;
            }
            const Triple<V> shoulder = triple_angles(parts_[e][0], joints_[0], sn, cs);
            const Triple<V> wrist = triple_angles(parts_[e][1], joints_[1], sn, cs);
            f.elbow[e] = lanes::splat<V>(joint4_[e]) + triple_floor(shoulder, joints_[0]) +
                         triple_floor(wrist, joints_[1]);
        }
        return f;
    }

    // Over every arm angle within reach (rad) of those whose sines and cosines are sn and cs.
    template <class V>
    FloorsOf<V> over(V sn, V cs, V reach, int elbows = kBothElbows) const {
        FloorsOf<V> f;
        for (int e = 0; e < 2; ++e) {
            if (joint4_[e] == INFINITY || (elbows & (1 << e)) == 0) {
                f.elbow[e] = lanes::splat<V>(INFINITY);
                continue;
            }
            const Shares<V> shoulder = triple_bound(parts_[e][0], axes_[e][0], joints_[0], sn, cs, reach);
            const Shares<V> wrist = triple_bound(parts_[e][1], axes_[e][1], joints_[1], sn, cs, reach);
            // Per branch the better of the two bounds, then the least over the branches.
            const V half_square = lanes::splat<V>(0.5f) * reach * reach;
            V lowest = lanes::splat<V>(INFINITY);
            for (const Share<V>& sh : shoulder.twin) {
                for (const Share<V>& wr : wrist.twin) {
                    const V taylor = sh.sum + wr.sum - lanes::abs(sh.rate + wr.rate) * reach -
                                     (sh.curve + wr.curve) * half_square - lanes::splat<V>(kTaylorSlack);
                    const V floor = sh.floor + wr.floor;
                    lowest = lanes::min(lowest, lanes::max(taylor, floor));
                }
            }
            f.elbow[e] = lanes::splat<V>(joint4_[e]) + lowest;
        }
        return f;
    }

private:
    // Slack for the single-precision rounding of the entries and angles, well above it. The
    // entries the solver and the floor read differ by about 5e-7, which moves the outer angles by
    // about that over |sin b|; the sum of the squares is rounded to about 3e-7 of itself.
    static constexpr float kAngleSlack = 2e-6f;
    static constexpr float kOuterSlack = 4e-6f;  // times 1 / |sin b|
    static constexpr float kBoundSlack = 1e-4f;  // for the bounds over runs, loose anyway
    static constexpr float kTaylorSlack = 1e-2f;
    static constexpr double kSlack = 1e-6;
    static constexpr double kRelativeSlack = 2e-6;
    // Below this |sin| of the middle angle the outer joints' angles are ill-conditioned (and at
    // the singularity the solver takes the reference's): they add nothing to the floor. Over runs
    // of arm angles, where the bounds on their movement grow as 1 / |sin b|, they add nothing
    // below the second.
    static constexpr float kIllConditioned = 1e-4f;
    static constexpr float kNearSingular = 0.02f;

    static double below(float floor) { return double(floor) * (1.0 - kRelativeSlack) - kSlack; }

    // The Z-Y-Z entries the three angles are read from: r02, r12, r22, r00, r10, r20.
    // r01 and r11 too for the bounds over runs: they give a + c and a - c.
    enum Entry { k02, k12, k22, k00, k10, k20, kAngleEntries, k01 = kAngleEntries, k11, kEntries };
    using Entries = float[3][kEntries];  // per part: sin, cos, constant

    static void entries_of(const Mat3 m, int part, Entries& out) {
        out[part][k02] = m[0][2];
        out[part][k12] = m[1][2];
        out[part][k22] = m[2][2];
        out[part][k00] = m[0][0];
        out[part][k10] = m[1][0];
        out[part][k20] = m[2][0];
        out[part][k01] = m[0][1];
        out[part][k11] = m[1][1];
    }

    // Per joint of one Z-Y-Z triple: the reference's value, its angle (offset in, within half a
    // turn), the limits; and from the in-limit value nearest the reference: the reference's
    // distance and turn (within half a turn), and the limits.
    struct Joints {
        float ref[3], angle[3], lo[3], hi[3], outside[3], shift[3];
        float lo_seen[3], hi_seen[3];  // the limits, from the nearest value
        float pair[2];                 // the reference's a + c and a - c, within half a turn
    };

    template <class V>
    static V within_half_turn(V a) {
        a = lanes::select(a > lanes::splat<V>(kPi), a - lanes::splat<V>(kTwoPi), a);
        return lanes::select(a < lanes::splat<V>(-kPi), a + lanes::splat<V>(kTwoPi), a);
    }
    static float wrapped(float a) { return a > kPi ? a - kTwoPi : a < -kPi ? a + kTwoPi : a; }
    template <class V>
    static V twin_of(V delta) {
        const V half = lanes::splat<V>(kPi);
        return lanes::select(delta > lanes::splat<V>(0.0f), delta - half, delta + half);
    }

    // Squared distance from the reference of the joint whose angle is `delta` (signed, within
    // half a turn) away from the reference's, as the solver turns it into the limits: the
    // nearest turn, or the next towards the limits, or infinite when it clearly has none there.
    // Rounding goes the floor's way.
    template <class V>
    static V joint_floor(V delta, V slack, const Joints& j, int i) {
        using I = lanes::MaskOf<V>;
        const V turn = lanes::splat<V>(kTwoPi), zero = lanes::splat<V>(0.0f);
        const V lo = lanes::splat<V>(j.lo[i]) - slack, hi = lanes::splat<V>(j.hi[i]) + slack;
        const V ref = lanes::splat<V>(j.ref[i]);
        const V near = lanes::abs(delta) - slack;
        const V d = lanes::max(near, zero);
        const V q = ref + delta;
        const I below = q < lo, above = q > hi;
        const V moved = q + lanes::select(below, turn, zero) - lanes::select(above, turn, zero);
        const V far_raw = lanes::abs(moved - ref) - slack;
        const V far = lanes::max(far_raw, zero);
        const V moved_floor =
            lanes::select((moved < lo) | (moved > hi), lanes::splat<V>(INFINITY), far * far);
        // At half a turn either way round may be the solver's.
        const I decided = (below | above) & (lanes::abs(delta) <= lanes::splat<V>(kPi) - slack);
        return lanes::select(decided, moved_floor, d * d);
    }

    // Squared distance from the reference of the nearest in-limit value of a joint whose angle
    // is anywhere within `move` of `delta` away from the reference's, or infinite when none is
    // within the limits. Seen from the in-limit value nearest the reference, the values are an
    // arc around a centre within half a turn, on every turn; the nearest in-limit one lies on the
    // arc itself or on its turn across half a turn (any other turn is farther than the arc).
    template <class V>
    static V joint_bound(V delta, V move, const Joints& j, int i) {
        const V zero = lanes::splat<V>(0.0f);
        const V lo = lanes::splat<V>(j.lo_seen[i] - kBoundSlack),
                hi = lanes::splat<V>(j.hi_seen[i] + kBoundSlack);
        const V centre = within_half_turn(delta + lanes::splat<V>(j.shift[i]));
        const V across =
            centre + lanes::select(centre > zero, lanes::splat<V>(-kTwoPi), lanes::splat<V>(kTwoPi));
        V gap = lanes::splat<V>(INFINITY);
        for (const V c : {centre, across}) {
            const V from = c - move, to = c + move;
            const V in_lo = lanes::max(from, lo), in_hi = lanes::min(to, hi);
            // lo <= 0 <= hi: the larger of in_lo and -in_hi is the in-limit part's distance from 0.
            const V apart = lanes::max(in_lo, -in_hi);
            gap = lanes::select(in_lo <= in_hi, lanes::min(gap, lanes::max(apart, zero)), gap);
        }
        const V raw = gap + lanes::splat<V>(j.outside[i] - kBoundSlack);
        const V d = lanes::max(raw, zero);
        return d * d;
    }

    // One Z-Y-Z triple at a vector's arm angles: |sin b| and each angle's difference from the
    // reference's, within half a turn; the middle one's for both twins b and -b.
    template <class V>
    struct Triple {
        V sb, a, b, twin_b, c;
        V x, y, z;  // column 2
    };
    template <class V>
    static Triple<V> triple_angles(const Entries& m, const Joints& j, V sn, V cs) {
        V r[kAngleEntries];
        for (int i = 0; i < kAngleEntries; ++i) r[i] = m[0][i] * sn + m[1][i] * cs + lanes::splat<V>(m[2][i]);
        Triple<V> t;
        t.sb = lanes::sqrt(r[k02] * r[k02] + r[k12] * r[k12]);
        // a, b and c as the solver forms them (c's direction times sin b).
        const V a = lanes::atan2(r[k12], r[k02]);
        const V b = lanes::atan2(t.sb, r[k22]);
        const V c = lanes::atan2(r[k02] * r[k10] - r[k12] * r[k00],
                                 r[k22] * (r[k02] * r[k00] + r[k12] * r[k10]) - t.sb * t.sb * r[k20]);
        t.a = within_half_turn(a - lanes::splat<V>(j.angle[0]));
        t.b = within_half_turn(b - lanes::splat<V>(j.angle[1]));
        t.twin_b = within_half_turn(-b - lanes::splat<V>(j.angle[1]));
        t.c = within_half_turn(c - lanes::splat<V>(j.angle[2]));
        t.x = r[k02];
        t.y = r[k12];
        t.z = r[k22];
        return t;
    }

    // Least floor of the three joints over both Z-Y-Z twins (a, b, c) and (a + pi, -b, c + pi).
    template <class V>
    static V triple_floor(const Triple<V>& t, const Joints& j) {
        const V slack = lanes::splat<V>(kAngleSlack);
        const V outer = slack + lanes::splat<V>(kOuterSlack) / t.sb;
        const V middle = joint_floor(t.b, slack, j, 1);
        const V twin_middle = joint_floor(t.twin_b, slack, j, 1);
        const V own = joint_floor(t.a, outer, j, 0) + middle + joint_floor(t.c, outer, j, 2);
        const V twin =
            joint_floor(twin_of(t.a), outer, j, 0) + twin_middle + joint_floor(twin_of(t.c), outer, j, 2);
        return lanes::select(t.sb < lanes::splat<V>(kIllConditioned), lanes::min(middle, twin_middle),
                             lanes::min(own, twin));
    }

    // A floor under joints a and c together over the arm angles within reach, which holds near the
    // singularity too: their squares add up to half the squares of a + c's and a - c's distances
    // from the reference's. One of the two is well defined at any b, and R's upper-left entries
    // give it (a + c's while b is at most a right angle); the other comes from a and c. As
    // a' + c' = w_z + w.u tan(b/2) and a' - c' = w_z - w.u cot(b/2), a + c turns at most
    // 1 / cos(b/2) and a - c at most 1 / sin(b/2) as fast.
    template <class V>
    static V pair_floor(const Entries& m, const Triple<V>& t, const Joints& j, V sn, V cs, V reach) {
        using I = lanes::MaskOf<V>;
        const auto entry = [&](int i) { return m[0][i] * sn + m[1][i] * cs + lanes::splat<V>(m[2][i]); };
        const V r00 = entry(k00), r10 = entry(k10), r01 = entry(k01), r11 = entry(k11);
        const V zero = lanes::splat<V>(0.0f), half = lanes::splat<V>(0.5f);
        const I upper = t.z >= zero;
        const V angle = lanes::atan2(lanes::select(upper, r10 - r01, -(r10 + r01)),
                                     lanes::select(upper, r00 + r11, r11 - r00));
        const V well = within_half_turn(
            angle - lanes::select(upper, lanes::splat<V>(j.pair[0]), lanes::splat<V>(j.pair[1])));
        const V other = within_half_turn(lanes::select(upper, t.a - t.c, t.a + t.c));
        const V cos_half = lanes::sqrt(lanes::max(half + half * t.z, zero));
        const V sin_half = lanes::sqrt(lanes::max(half - half * t.z, zero));
        // cos of (b + reach) / 2 and sin of (b - reach) / 2, from below.
        const V shrink = lanes::splat<V>(1.0f) - lanes::splat<V>(0.125f) * reach * reach, turn = half * reach;
        const V cos_far = cos_half * shrink - sin_half * turn, sin_near = sin_half * shrink - cos_half * turn;
        const auto moved = [&](V rate) {
            return lanes::select(rate > lanes::splat<V>(1e-3f), reach / rate, lanes::splat<V>(INFINITY));
        };
        const V well_move = moved(lanes::select(upper, cos_far, sin_near));
        const V other_move = moved(lanes::select(upper, sin_near, cos_far));
        // a and c each carry the outer joints' rounding.
        const V other_slack = lanes::splat<V>(kBoundSlack) + lanes::splat<V>(2.0f * kOuterSlack) / t.sb;
        const V d = lanes::max(lanes::abs(well) - well_move - lanes::splat<V>(kBoundSlack), zero);
        const V e = lanes::max(lanes::abs(other) - other_move - other_slack, zero);
        return half * (d * d + e * e);
    }

    // A triple's share of an elbow sign's bound over the arm angles within reach of a vector's,
    // for one twin: the joints' floors (infinite where one cannot be within its limits) and, for a
    // second bound, the sum of their squared distances at those with its rate and a bound on how
    // fast that rate falls within reach.
    template <class V>
    struct Share {
        V floor, sum, rate, curve;
    };
    template <class V>
    struct Shares {
        Share<V> twin[2];
    };

    // The shoulder and the wrist turn at unit rate about `axis` with the arm angle, so b moves by
    // at most reach and |sin b| falls by at most as much; a and c turn at most 1 / |sin b| as fast,
    // by at most reach / (|sin b| - reach) in all. Their second rates are at most 2 / sin^2 b,
    // b's at most 1 / |sin b|. Near the singularity a and c may be anywhere, and near half a turn
    // from the reference a joint's distance has a kink: such joints add nothing to the second
    // bound.
    template <class V>
    static Shares<V> triple_bound(const Entries& m, const Vec3& axis, const Joints& j, V sn, V cs, V reach) {
        using I = lanes::MaskOf<V>;
        const Triple<V> t = triple_angles(m, j, sn, cs);
        const V zero = lanes::splat<V>(0.0f), one = lanes::splat<V>(1.0f);
        const V low = t.sb - reach;  // |sin b| within reach
        const I regular = low > lanes::splat<V>(kNearSingular);
        const V pair = pair_floor(m, t, j, sn, cs, reach);
        const V inv = one / t.sb, inv_low = one / lanes::select(regular, low, one);
        const V outer_move = lanes::select(regular, reach * inv_low, lanes::splat<V>(INFINITY));
        // a', b', c' there from the spatial angular velocity: c' = w.u / sin b,
        // b' = w.u_perp, a' = w_z - cot b * w.u / sin b, with u the unit (cos a, sin a, 0).
        const V along = lanes::splat<V>(axis.x) * t.x + lanes::splat<V>(axis.y) * t.y;   // sin b * w.u
        const V across = lanes::splat<V>(axis.y) * t.x - lanes::splat<V>(axis.x) * t.y;  // sin b * w.u_perp
        const V rate_c = along * inv * inv;
        const V rate_b = across * inv;
        const V rate_a = lanes::splat<V>(axis.z) - t.z * rate_c;
        const V outer_curve = lanes::splat<V>(2.0f) * inv_low * inv_low;
        const V middle_curve = inv_low;
        // Or, where the rates' bounds hold, from the rates here and how fast they can change: less
        // where they are slow.
        const V half_square = lanes::splat<V>(0.5f) * reach * reach;
        const auto within = [&](V move, V rate, V curve) {
            return lanes::select(regular, lanes::min(move, lanes::abs(rate) * reach + curve * half_square),
                                 move);
        };
        const V move_a = within(outer_move, rate_a, outer_curve);
        const V move_b = within(reach, rate_b, middle_curve);
        const V move_c = within(outer_move, rate_c, outer_curve);
        const auto add = [&](Share<V>& s, V delta, V rate, V move, V curve, int i) {
            if (i != 1) s.floor += joint_bound(delta, move, j, i);
            const V far = lanes::abs(delta) + move;
            const I smooth = regular & (far < lanes::splat<V>(kPi - kBoundSlack));
            s.sum += lanes::select(smooth, delta * delta, zero);
            s.rate += lanes::select(smooth, lanes::splat<V>(2.0f) * delta * rate, zero);
            s.curve += lanes::select(
                smooth, lanes::splat<V>(2.0f) * (far + lanes::splat<V>(kBoundSlack)) * curve, zero);
        };
        Shares<V> out;
        for (int k = 0; k < 2; ++k) {
            Share<V>& s = out.twin[k];
            s = {zero, zero, zero, zero};
            add(s, k == 0 ? t.a : twin_of(t.a), rate_a, move_a, outer_curve, 0);
            add(s, k == 0 ? t.b : t.twin_b, k == 0 ? rate_b : -rate_b, move_b, middle_curve, 1);
            add(s, k == 0 ? t.c : twin_of(t.c), rate_c, move_c, outer_curve, 2);
            s.floor = lanes::max(s.floor, pair) + joint_bound(k == 0 ? t.b : t.twin_b, move_b, j, 1);
        }
        return out;
    }

    Entries parts_[2][2];  // per elbow sign: shoulder, wrist
    Joints joints_[2];     // 1-3 and 5-7
    float joint4_[2];      // joint 4's squared distance, infinite outside its limits
    Vec3 axes_[2][2];      // per elbow sign: the shoulder's and the wrist's turning axis
};

}  // namespace algo::ik

#endif
