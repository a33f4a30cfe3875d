#ifndef INV_KINEMATICS_ARM_ANGLE_COSTS_H
#define INV_KINEMATICS_ARM_ANGLE_COSTS_H

// What the arm-angle search asks of the branches at one arm angle, worked out from their lanes
// rather than their rows: the selection's cost of the set, the branch nearest the reference
// limits aside, and whether the reference's own branch is among those within the limits. Not
// part of the library's interface.

#include <cmath>

#include "inv_kinematics_arm_angle_branches.h"

namespace algo::ik {

// The reference and the limits in the lanes of BranchLanes.
struct ReferenceLanes {
    lanes::F4 ref[3], lo[3], hi[3];  // joints (i+1, i+1, i+5, i+5)
    lanes::F4 ref4, lo4, hi4;        // joint 4 in lanes 0 and 1; the others let any value pass
    lanes::D2 shoulder[4];           // joints 1 to 4, twice
    lanes::D2 wrist[3];              // joints 5 to 7, twice

    explicit ReferenceLanes(const SolveInput& in) {
        const float* q = in.q_ref;
        const JointLimits& l = in.limits;
        for (int i = 0; i < 3; ++i) {
            ref[i] = lanes::F4{q[i], q[i], q[i + 4], q[i + 4]};
            lo[i] = lanes::F4{l.min[i], l.min[i], l.min[i + 4], l.min[i + 4]};
            hi[i] = lanes::F4{l.max[i], l.max[i], l.max[i + 4], l.max[i + 4]};
            wrist[i] = lanes::D2{q[i + 4], q[i + 4]};
        }
        ref4 = lanes::F4{q[3], q[3], 0.0f, 0.0f};
        lo4 = lanes::F4{l.min[3], l.min[3], -INFINITY, -INFINITY};
        hi4 = lanes::F4{l.max[3], l.max[3], INFINITY, INFINITY};
        for (int j = 0; j < 4; ++j) shoulder[j] = lanes::D2{q[j], q[j]};
    }
};

// The squared distances of the eight branches from the reference, summed joint by joint in
// double precision as the selection sums them, so the set's cost is the selection's to the bit:
// lane e of cost[k][m] is branch e*4 + k*2 + m (elbow sign e, shoulder k, wrist m).
struct BranchCosts {
    lanes::D2 cost[2][2];
    lanes::I4 within[2];  // per lane of BranchLanes: its joints within their limits
};

namespace costs_detail {

// The lanes 0-1 or 2-3 of v in double precision.
inline lanes::D2 low(lanes::F4 v) { return __builtin_convertvector(__builtin_shufflevector(v, v, 0, 1), lanes::D2); }
inline lanes::D2 high(lanes::F4 v) { return __builtin_convertvector(__builtin_shufflevector(v, v, 2, 3), lanes::D2); }

// d * d, kept out of the sum it goes into: a build with fused multiply-adds would otherwise fuse
// them and round the cost differently from the selection.
inline lanes::D2 square(lanes::D2 d) {
    lanes::D2 s = d * d;
    asm("" : "+x"(s));
    return s;
}

// The selection's ceiling: a set costing more has no answer.
constexpr double kCeiling = 1000000.0;

}  // namespace costs_detail

inline BranchCosts branch_costs(const BranchLanes& b, const ReferenceLanes& r) {
    using namespace costs_detail;
    BranchCosts c;
    lanes::D2 shoulder[2], wrist[2][3];
    for (int k = 0; k < 2; ++k) {
        const lanes::F4* q = b.joint[k];
        shoulder[k] = ((square(low(q[0]) - r.shoulder[0]) + square(low(q[1]) - r.shoulder[1])) +
                       square(low(q[2]) - r.shoulder[2])) +
                      square(low(b.joint4) - r.shoulder[3]);
        for (int i = 0; i < 3; ++i) wrist[k][i] = square(high(q[i]) - r.wrist[i]);
        lanes::I4 inside = (b.joint4 >= r.lo4) & (b.joint4 <= r.hi4);
        for (int i = 0; i < 3; ++i) inside &= (q[i] >= r.lo[i]) & (q[i] <= r.hi[i]);
        c.within[k] = inside;
    }
    for (int k = 0; k < 2; ++k) {
        for (int m = 0; m < 2; ++m) c.cost[k][m] = ((shoulder[k] + wrist[m][0]) + wrist[m][1]) + wrist[m][2];
    }
    return c;
}

// The lowest cost of the elbow signs in elbows within the limits, as select_solution gives it;
// infinite when none is.
inline double set_cost(const BranchCosts& c, int elbows) {
    using namespace costs_detail;
    const lanes::L2 asked = {(elbows & 1) ? -1 : 0, (elbows & 2) ? -1 : 0};
    lanes::D2 best = {kCeiling, kCeiling};
    for (int k = 0; k < 2; ++k) {
        for (int m = 0; m < 2; ++m) {
            const lanes::I4 both = c.within[k] & __builtin_shufflevector(c.within[m], c.within[m], 2, 3, 2, 3);
            const lanes::L2 within = __builtin_convertvector(__builtin_shufflevector(both, both, 0, 1), lanes::L2);
            const lanes::D2 v = c.cost[k][m];
            best = lanes::choose(lanes::both(lanes::both(within, asked), v < best), v, best);
        }
    }
    const double lowest = best[1] < best[0] ? best[1] : best[0];
    return lowest < kCeiling ? lowest : INFINITY;
}

// A branch of the set by its parts.
struct BranchIndex {
    int elbow, shoulder, wrist;
};

// The branch of the elbow signs in elbows nearest the reference, limits aside, the first in the
// set's order on a tie; false when no cost is below infinity.
inline bool nearest_branch(const BranchCosts& c, int elbows, BranchIndex& nearest) {
    double best = INFINITY;
    bool found = false;
    for (int e = 0; e < 2; ++e) {
        if ((elbows & (1 << e)) == 0) continue;
        for (int k = 0; k < 2; ++k) {
            for (int m = 0; m < 2; ++m) {
                if (c.cost[k][m][e] < best) {
                    best = c.cost[k][m][e];
                    nearest = {e, k, m};
                    found = true;
                }
            }
        }
    }
    return found;
}

// Joint j (0-based, not joint 4) of a branch.
inline float joint_of(const BranchLanes& b, const BranchIndex& at, int j) {
    return j < 3 ? b.joint[at.shoulder][j][at.elbow] : b.joint[at.wrist][j - 4][2 + at.elbow];
}

// True when a branch of either elbow sign within the limits is within `near` (rad) of the
// reference in every joint.
inline bool near_branch_within_limits(const BranchLanes& b, const BranchCosts& c, const ReferenceLanes& r,
                                      float near) {
    const lanes::F4 reach = lanes::splat(near);
    lanes::I4 any = {0, 0, 0, 0};
    for (int k = 0; k < 2; ++k) {
        lanes::I4 close = c.within[k] & (lanes::abs(b.joint4 - r.ref4) <= reach);
        for (int i = 0; i < 3; ++i) close &= lanes::abs(b.joint[k][i] - r.ref[i]) <= reach;
        any |= close;
    }
    // A shoulder and a wrist of the same elbow sign.
    return (any[0] && any[2]) || (any[1] && any[3]);
}

}  // namespace algo::ik

#endif
