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
// The same terms at the ends of a run of arm angles give the arcs each joint sweeps over the run,
// and from those a floor over the whole run. Not part of the library's interface.

#include <algorithm>
#include <cmath>

#include "inv_kinematics_arm_angle.h"
#include "inv_kinematics_arm_angle_arcs.h"
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
            const float q4 = joint_value(in, 3, b.t4);
            const float d4 = std::max(0.0f, std::fabs(q4 - in.q_ref[3]) - kAngleSlack);
            joint4_[e] = q4 >= in.limits.min[3] && q4 <= in.limits.max[3] ? d4 * d4 : INFINITY;
            forms_ready_[e] = false;
        }
        for (int k = 0; k < 2; ++k) {
            for (int i = 0; i < 3; ++i) {
                const int j = 4 * k + i;
                joints_[k].angle[i] = remainder_turn(theta_ref[j]);
                const float lo = in.limits.min[j], hi = in.limits.max[j];
                joints_[k].lo[i] = lo - in.q_ref[j];
                joints_[k].hi[i] = hi - in.q_ref[j];
                const float nearest = std::min(hi, std::max(lo, in.q_ref[j]));
                joints_[k].outside[i] = std::fabs(in.q_ref[j] - nearest) - kBoundSlack;
                joints_[k].shift[i] =
                    in.q_ref[j] == nearest ? 0.0f : remainder_turn(in.q_ref[j] - nearest);
                joints_[k].lo_seen[i] = lo - nearest - kBoundSlack;
                joints_[k].hi_seen[i] = hi - nearest + kBoundSlack;
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

    // The elbow signs whose joint 4 alone leaves a branch that may cost less than the best whose
    // cut (see cut()) is `cut`.
    int elbows_below(float cut) const { return (joint4_[0] < cut ? 1 : 0) | (joint4_[1] < cut ? 2 : 0); }

    // True when a branch whose floor is `floor` may cost less than best.
    static bool may_beat(float floor, double best) { return below(floor) < best; }
    // The least floor that cannot beat best: may_beat(floor, best) is floor < cut(best).
    static float cut(double best) {
        float f = static_cast<float>((best + kSlack) / (1.0 - kRelativeSlack));
        while (below(f) < best) f = std::nextafter(f, INFINITY);
        for (float lower = std::nextafter(f, -INFINITY); below(lower) >= best;
             lower = std::nextafter(f, -INFINITY))
            f = lower;
        return f;
    }

    // At the arm angles whose sines and cosines are sn and cs, for the elbow signs of `elbows`
    // (infinite for the others). A sign's floors at `cut` or above in every lane may stop short of
    // the wrist's share: they keep it out all the same.
    template <class V>
    FloorsOf<V> at(V sn, V cs, int elbows = kBothElbows, float cut = INFINITY) const {
        FloorsOf<V> f;
        for (int e = 0; e < 2; ++e) {
            if (joint4_[e] == INFINITY || (elbows & (1 << e)) == 0) {
                f.elbow[e] = lanes::splat<V>(INFINITY);
                continue;
            }
            // One triple after the other, so that few values wait at once.
            f.elbow[e] = lanes::splat<V>(joint4_[e]) +
                         triple_floor(triple_angles(parts_[e][0], joints_[0], sn, cs), joints_[0]);
            if (!beats(f.elbow[e], cut)) continue;
            f.elbow[e] += triple_floor(triple_angles(parts_[e][1], joints_[1], sn, cs), joints_[1]);
        }
        return f;
    }

    // Over every arm angle from those whose sines and cosines are (sn_lo, cs_lo) to those whose
    // are (sn_hi, cs_hi), width (rad) above them; `cut` as at()'s.
    template <class V>
    FloorsOf<V> over(V sn_lo, V cs_lo, V sn_hi, V cs_hi, V width, int elbows = kBothElbows,
                     float cut = INFINITY) const {
        FloorsOf<V> f;
        for (int e = 0; e < 2; ++e) {
            if (joint4_[e] == INFINITY || (elbows & (1 << e)) == 0) {
                f.elbow[e] = lanes::splat<V>(INFINITY);
                continue;
            }
            // Made on first use: many calls leave one elbow sign to joint 4 and single arm angles.
            if (!forms_ready_[e]) {
                for (int k = 0; k < 2; ++k) arc_forms(parts_[e][k], forms_[e][k]);
                bends_at_extremes(forms_[e][0], forms_[e][1]);
                forms_ready_[e] = true;
            }
            V sum = lanes::splat<V>(joint4_[e]);
            for (int k = 0; k < 2; ++k) {
                const ArcForms& forms = forms_[e][k];
                // Each end reads the entries afresh: held over from the other end, lane-wide, they
                // would wait on the stack.
                const ArcEntries* entries = &parts_[e][k];
                const ArcEnd<V> lo = arc_end(*entries, sn_lo, cs_lo);
                asm("" : "+r"(entries));
                const ArcEnd<V> hi = arc_end(*entries, sn_hi, cs_hi);
                sum +=
                    arcs_floor(TripleArcs<V>(forms, lo, hi, sn_lo, cs_lo, sn_hi, cs_hi, width), joints_[k]);
                if (k == 0 && !beats(sum, cut)) break;
            }
            f.elbow[e] = sum;
        }
        return f;
    }

private:
    template <class V>
    static bool beats(V floors, float cut) {
        return algo::lanes::lane_bits(floors < lanes::splat<V>(cut)) != 0;
    }

    // Slack for the single-precision rounding of the entries and angles, well above it. The
    // entries the solver and the floor read differ by about 5e-7, which moves the outer angles by
    // about that over |sin b|; the sum of the squares is rounded to about 3e-7 of itself.
    static constexpr float kAngleSlack = 2e-6f;
    static constexpr float kOuterSlack = 4e-6f;  // times 1 / |sin b|
    static constexpr float kBoundSlack = 1e-4f;  // for the bounds over runs, loose anyway
    static constexpr double kSlack = 1e-6;
    static constexpr double kRelativeSlack = 2e-6;
    // Below this |sin| of the middle angle the outer joints' angles are ill-conditioned (and at
    // the singularity the solver takes the reference's): they add nothing to the floor.
    static constexpr float kIllConditioned = 1e-4f;

    static double below(float floor) { return double(floor) * (1.0 - kRelativeSlack) - kSlack; }

    static void entries_of(const Mat3 m, int part, ArcEntries& out) {
        for (int i = 0; i < 3; ++i) {
            for (int j = 0; j < 3; ++j) out[3 * i + j][part] = m[i][j];
        }
    }

    // Per joint of one Z-Y-Z triple: the reference's angle (offset in, within half a turn), the
    // limits seen from the reference's value; and from the in-limit value nearest the reference:
    // the reference's distance and turn (within half a turn), and the limits. For the bounds over
    // runs, the distance is narrowed and the limits seen from there widened by kBoundSlack.
    struct Joints {
        float angle[3], lo[3], hi[3], outside[3], shift[3];
        float lo_seen[3], hi_seen[3];  // the limits, from the nearest value
        float pair[2];                 // the reference's a + c and a - c, within half a turn
    };

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
        const V lo = lanes::splat<V>(j.lo[i]) - slack, hi = lanes::splat<V>(j.hi[i]) + slack;
        const V turn = lanes::splat<V>(kTwoPi);
        const V size = lanes::abs(delta);
        const I below = delta < lo, above = delta > hi;
        const V moved = delta + lanes::select(below, turn, -turn);
        // At half a turn either way round may be the solver's.
        const I decided = (below | above) & (size <= lanes::splat<V>(kPi) - slack);
        const V d =
            lanes::max(lanes::select(decided, lanes::abs(moved), size) - slack, lanes::splat<V>(0.0f));
        return lanes::select(decided & ((moved < lo) | (moved > hi)), lanes::splat<V>(INFINITY), d * d);
    }

    // Squared distance from the reference of the nearest in-limit value of a joint whose angle
    // is anywhere within `move` of `delta` away from the reference's, or infinite when none is
    // within the limits. Seen from the in-limit value nearest the reference, the values are an
    // arc around a centre within half a turn, on every turn; the nearest in-limit one lies on the
    // arc itself or on its turn across half a turn (any other turn is farther than the arc). As
    // lo <= 0 <= hi, an arc's in-limit part lies |its centre| - move from 0, or nearer, and it has
    // one unless its near end lies beyond the limit on its centre's side.
    template <class V>
    static V joint_bound(V delta, V move, const Joints& j, int i) {
        const V zero = lanes::splat<V>(0.0f), inf = lanes::splat<V>(INFINITY);
        const V hi = lanes::splat<V>(j.hi_seen[i]), low = lanes::splat<V>(-j.lo_seen[i]);
        const V centre = within_half_turn(delta + lanes::splat<V>(j.shift[i]));
        const V size = lanes::abs(centre);
        const V near = size - move, across = (lanes::splat<V>(kTwoPi) - size) - move;
        // The arc across half a turn lies on the other side.
        const lanes::MaskOf<V> up = centre > zero;
        const V own = lanes::select(near <= lanes::select(up, hi, low), lanes::max(near, zero), inf);
        const V other = lanes::select(across <= lanes::select(up, low, hi), lanes::max(across, zero), inf);
        const V raw = lanes::min(own, other) + lanes::splat<V>(j.outside[i]);
        const V d = lanes::max(raw, zero);
        return d * d;
    }

    // One Z-Y-Z triple at a vector's arm angles: |sin b| and each angle's difference from the
    // reference's, within half a turn; the middle one's for both twins b and -b.
    template <class V>
    struct Triple {
        V sb, a, b, twin_b, c;
    };
    template <class V>
    static Triple<V> triple_angles(const ArcEntries& m, const Joints& j, V sn, V cs) {
        V r[kArcEntries];
        for (const int i : {k02, k12, k22, k00, k10, k20}) r[i] = sinusoid(m[i], sn, cs);
        Triple<V> t;
        t.sb = lanes::sqrt(r[k02] * r[k02] + r[k12] * r[k12]);
        // a, b and c as the solver forms them (c's direction times sin b), from finite entries.
        const V a = algo::lanes::atan2_finite_direct(r[k12], r[k02]);
        const V b = algo::lanes::atan2_finite_direct(t.sb, r[k22]);
        const V c = algo::lanes::atan2_finite_direct(
            r[k02] * r[k10] - r[k12] * r[k00],
            r[k22] * (r[k02] * r[k00] + r[k12] * r[k10]) - t.sb * t.sb * r[k20]);
        t.a = within_half_turn(a - lanes::splat<V>(j.angle[0]));
        t.b = within_half_turn(b - lanes::splat<V>(j.angle[1]));
        t.twin_b = within_half_turn(-b - lanes::splat<V>(j.angle[1]));
        t.c = within_half_turn(c - lanes::splat<V>(j.angle[2]));
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

    // Least floor over a run of the three joints over both Z-Y-Z twins (a, b, c) and
    // (a + pi, -b, c + pi), from the arcs they sweep. a and c together have a second floor, which
    // holds near the singularity too: their squares add up to half the squares of a + c's and
    // a - c's distances from the reference's, and one of those two is well defined at any b.
    template <class V>
    static V arcs_floor(const TripleArcs<V>& arcs, const Joints& j) {
        const V zero = lanes::splat<V>(0.0f);
        const auto apart = [&](const Arc<V>& arc, float ref) {
            return lanes::max(lanes::abs(within_half_turn(arc.centre - lanes::splat<V>(ref))) - arc.move,
                              zero);
        };
        const V d = apart(arcs.angle(kArcSum), j.pair[0]), e = apart(arcs.angle(kArcDifference), j.pair[1]);
        const V pair = lanes::splat<V>(0.5f) * (d * d + e * e);
        // On any turn: joint_bound takes it within half a turn.
        const auto from_ref = [&](V centre, int i) { return centre - lanes::splat<V>(j.angle[i]); };
        const Arc<V> a = arcs.angle(kArcA);
        const V da = from_ref(a.centre, 0);
        const V own_a = joint_bound(da, a.move, j, 0), twin_a = joint_bound(twin_of(da), a.move, j, 0);
        const Arc<V> c = arcs.angle(kArcC);
        const V dc = from_ref(c.centre, 2);
        const V own = lanes::max(own_a + joint_bound(dc, c.move, j, 2), pair) +
                      joint_bound(from_ref(arcs.b.centre, 1), arcs.b.move, j, 1);
        const V twin = lanes::max(twin_a + joint_bound(twin_of(dc), c.move, j, 2), pair) +
                       joint_bound(from_ref(-arcs.b.centre, 1), arcs.b.move, j, 1);
        return lanes::min(own, twin);
    }

    ArcEntries parts_[2][2];  // per elbow sign: shoulder, wrist
    mutable ArcForms forms_[2][2];
    mutable bool forms_ready_[2];
    Joints joints_[2];  // 1-3 and 5-7
    float joint4_[2];   // joint 4's squared distance, infinite outside its limits
};

}  // namespace algo::ik

#endif
