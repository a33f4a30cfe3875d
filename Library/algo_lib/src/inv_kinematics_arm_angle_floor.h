#ifndef INV_KINEMATICS_ARM_ANGLE_FLOOR_H
#define INV_KINEMATICS_ARM_ANGLE_FLOOR_H

// A floor under the distance from the reference of every branch within the limits at one arm
// angle, without working the branches out. Each joint takes the turn nearest the reference, or
// the next one towards its limits: from the joint's signed angle to the reference that is its
// distance, or no branch within the limits at all. The shoulder and wrist entries the angles come
// from are sinusoids in the arm angle, so an arm angle costs a few multiply-adds and two
// four-lane arc tangents per elbow sign, against the full set of branches. The search skips the
// elbow signs whose floor cannot beat the best so far: only work that could not change the answer.
// Not part of the library's interface.

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
            const float q4 = joint_value(in, 3, b.t4);
            const float d4 = std::fmax(0.0f, std::fabs(q4 - in.q_ref[3]) - kAngleSlack);
            joint4_[e] = q4 >= in.limits.min[3] && q4 <= in.limits.max[3] ? d4 * d4 : INFINITY;
        }
        for (int k = 0; k < 2; ++k) {
            for (int i = 0; i < 3; ++i) {
                const int j = 4 * k + i;
                joints_[k].ref[i] = in.q_ref[j];
                joints_[k].angle[i] = std::remainder(theta_ref[j], kTwoPi);
                joints_[k].lo[i] = in.limits.min[j];
                joints_[k].hi[i] = in.limits.max[j];
            }
        }
    }

    // Floors of each elbow sign (infinite where none can be within the limits) at four arm
    // angles, from their sines and cosines.
    struct Floors {
        lanes::F4 elbow[2];

        float least(int lane) const { return std::fmin(elbow[0][lane], elbow[1][lane]); }

        // The elbow signs of `elbows` whose branches at the lane's arm angle may cost less than
        // best, and no more than ceiling.
        int could_beat(int elbows, int lane, double best, double ceiling) const {
            for (int e = 0; e < 2; ++e) {
                const double floor = double(elbow[e][lane]) * (1.0 - kRelativeSlack) - kSlack;
                if (floor >= best || floor > ceiling) elbows &= ~(1 << e);
            }
            return elbows;
        }
    };
    Floors at(lanes::F4 sn, lanes::F4 cs) const {
        Floors f;
        for (int e = 0; e < 2; ++e) {
            f.elbow[e] = lanes::splat(joint4_[e]) + triple_floor(parts_[e][0], joints_[0], sn, cs) +
                         triple_floor(parts_[e][1], joints_[1], sn, cs);
        }
        return f;
    }

private:
    using F4 = lanes::F4;
    using I4 = lanes::I4;

    // Slack for the single-precision rounding of the entries and angles, well above it.
    static constexpr float kAngleSlack = 1e-4f;
    static constexpr double kSlack = 2e-3;
    static constexpr double kRelativeSlack = 1e-4;
    // Below this |sin| of the middle angle the outer joints' angles are ill-conditioned (and at
    // the singularity the solver takes the reference's): they add nothing to the floor.
    static constexpr float kIllConditioned = 0.02f;

    // The Z-Y-Z entries the three angles are read from: r02, r12, r22, r00, r10, r20.
    enum Entry { k02, k12, k22, k00, k10, k20, kEntries };
    using Entries = float[3][kEntries];  // per part: sin, cos, constant

    static void entries_of(const Mat3 m, int part, Entries& out) {
        out[part][k02] = m[0][2];
        out[part][k12] = m[1][2];
        out[part][k22] = m[2][2];
        out[part][k00] = m[0][0];
        out[part][k10] = m[1][0];
        out[part][k20] = m[2][0];
    }

    // The reference's value, its angle (offset in, within half a turn) and the limits of the
    // joints of one Z-Y-Z triple.
    struct Joints {
        float ref[3], angle[3], lo[3], hi[3];
    };

    static F4 within_half_turn(F4 a) {
        a = lanes::select(a > lanes::splat(kPi), a - lanes::splat(kTwoPi), a);
        return lanes::select(a < lanes::splat(-kPi), a + lanes::splat(kTwoPi), a);
    }

    // Squared distance from the reference of the joint whose angle is `delta` (signed, within
    // half a turn) away from the reference's, as the solver turns it into the limits: the
    // nearest turn, or the next towards the limits, or infinite when it clearly has none there.
    // Rounding goes the floor's way.
    static F4 joint_floor(F4 delta, const Joints& j, int i) {
        const F4 slack = lanes::splat(kAngleSlack), turn = lanes::splat(kTwoPi), zero = lanes::splat(0.0f);
        const F4 lo = lanes::splat(j.lo[i] - kAngleSlack), hi = lanes::splat(j.hi[i] + kAngleSlack);
        const F4 ref = lanes::splat(j.ref[i]);
        const F4 near = lanes::abs(delta) - slack;
        const F4 d = lanes::select(near > zero, near, zero);
        const F4 q = ref + delta;
        const I4 below = q < lo, above = q > hi;
        const F4 moved = q + lanes::select(below, turn, zero) - lanes::select(above, turn, zero);
        const F4 far_raw = lanes::abs(moved - ref) - slack;
        const F4 far = lanes::select(far_raw > zero, far_raw, zero);
        const F4 moved_floor = lanes::select((moved < lo) | (moved > hi), lanes::splat(INFINITY), far * far);
        // At half a turn either way round may be the solver's.
        const I4 decided = (below | above) & (lanes::abs(delta) <= lanes::splat(kPi - kAngleSlack));
        return lanes::select(decided, moved_floor, d * d);
    }

    // Least floor of the three joints over both Z-Y-Z twins (a, b, c) and (a + pi, -b, c + pi).
    static F4 triple_floor(const Entries& m, const Joints& j, F4 sn, F4 cs) {
        F4 r[kEntries];
        for (int i = 0; i < kEntries; ++i) r[i] = m[0][i] * sn + m[1][i] * cs + lanes::splat(m[2][i]);
        const F4 sb = lanes::sqrt(r[k02] * r[k02] + r[k12] * r[k12]);
        // a, b and c as the solver forms them (c's direction times sin b).
        const F4 a = lanes::atan2(r[k12], r[k02]);
        const F4 b = lanes::atan2(sb, r[k22]);
        const F4 c = lanes::atan2(r[k02] * r[k10] - r[k12] * r[k00],
                                  r[k22] * (r[k02] * r[k00] + r[k12] * r[k10]) - sb * sb * r[k20]);
        const F4 da = within_half_turn(a - lanes::splat(j.angle[0]));
        const F4 dc = within_half_turn(c - lanes::splat(j.angle[2]));
        const F4 half = lanes::splat(kPi);
        const F4 twin_da = lanes::select(da > lanes::splat(0.0f), da - half, da + half);
        const F4 twin_dc = lanes::select(dc > lanes::splat(0.0f), dc - half, dc + half);
        const F4 middle = joint_floor(within_half_turn(b - lanes::splat(j.angle[1])), j, 1);
        const F4 twin_middle = joint_floor(within_half_turn(-b - lanes::splat(j.angle[1])), j, 1);
        const F4 own = joint_floor(da, j, 0) + middle + joint_floor(dc, j, 2);
        const F4 twin = joint_floor(twin_da, j, 0) + twin_middle + joint_floor(twin_dc, j, 2);
        const F4 least = lanes::select(own < twin, own, twin);
        const F4 least_middle = lanes::select(middle < twin_middle, middle, twin_middle);
        return lanes::select(sb < lanes::splat(kIllConditioned), least_middle, least);
    }

    Entries parts_[2][2];  // per elbow sign: shoulder, wrist
    Joints joints_[2];     // 1-3 and 5-7
    float joint4_[2];      // joint 4's squared distance, infinite outside its limits
};

}  // namespace algo::ik

#endif
