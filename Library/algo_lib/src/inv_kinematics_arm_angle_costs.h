#ifndef INV_KINEMATICS_ARM_ANGLE_COSTS_H
#define INV_KINEMATICS_ARM_ANGLE_COSTS_H

// What the arm-angle search asks of the branches at one arm angle, worked out from their lanes
// rather than their rows: the selection's cost of the set, the branch nearest the reference
// limits aside, and whether the reference's own branch is among those within the limits. Not
// part of the library's interface.

#include <cmath>
#include <cstring>

#include "inv_kinematics_arm_angle_branches.h"

namespace algo::ik {

// The reference and the limits in the lanes of BranchLanes.
struct ReferenceLanes {
    lanes::F4 ref[3], lo[3], hi[3];  // joints (i+1, i+1, i+5, i+5)
    lanes::F4 ref4, lo4, hi4;        // joint 4 in lanes 0 and 1; the others let any value pass
    lanes::D2 shoulder[4];           // joints 1 to 4, twice
    lanes::D2 wrist[3];              // joints 5 to 7, twice
    lanes::D4 wide[3], wide4;        // ref and ref4 in double precision

    explicit ReferenceLanes(const SolveInput& in) {
        const float* q = in.q_ref;
        const JointLimits& l = in.limits;
        for (int i = 0; i < 3; ++i) {
            ref[i] = lanes::F4{q[i], q[i], q[i + 4], q[i + 4]};
            lo[i] = lanes::F4{l.min[i], l.min[i], l.min[i + 4], l.min[i + 4]};
            hi[i] = lanes::F4{l.max[i], l.max[i], l.max[i + 4], l.max[i + 4]};
            wrist[i] = lanes::D2{q[i + 4], q[i + 4]};
            wide[i] = lanes::D4{q[i], q[i], q[i + 4], q[i + 4]};
        }
        ref4 = lanes::F4{q[3], q[3], 0.0f, 0.0f};
        lo4 = lanes::F4{l.min[3], l.min[3], -INFINITY, -INFINITY};
        hi4 = lanes::F4{l.max[3], l.max[3], INFINITY, INFINITY};
        wide4 = lanes::D4{q[3], q[3], 0.0, 0.0};
        for (int j = 0; j < 4; ++j) shoulder[j] = lanes::D2{q[j], q[j]};
    }
};

// The squared distances of the eight branches from the reference, summed joint by joint in
// double precision as the selection sums them, so the set's cost is the selection's to the bit;
// in doubles of D's width, in memory as [wrist m][shoulder k][elbow sign e] (branch e*4 + k*2 + m
// of the set).
template <class D>
struct BranchCosts {
    static constexpr int kParts = 8 / lanes::kWidthOf<D>;
    D cost[kParts];
    lanes::I4 within[2];  // per lane of BranchLanes: its joints within their limits
};

namespace costs_detail {

// The lanes 0-1 or 2-3 of v in double precision.
inline lanes::D2 low(lanes::F4 v) { return __builtin_convertvector(__builtin_shufflevector(v, v, 0, 1), lanes::D2); }
inline lanes::D2 high(lanes::F4 v) { return __builtin_convertvector(__builtin_shufflevector(v, v, 2, 3), lanes::D2); }

// d * d, kept out of the sum it goes into: GCC, building for fused multiply-adds, fuses a product
// into a later sum and would round the cost differently from the selection. Clang fuses within an
// expression only, and unoptimised builds fuse nothing (there the four-double form is compiled
// out of line for the baseline, where no register could hold it for the barrier).
template <class D>
inline D square(D d) {
    D s = d * d;
#if !defined(__clang__) && defined(__OPTIMIZE__)
    asm("" : "+x"(s));
#endif
    return s;
}

// The selection's ceiling: a set costing more has no answer.
constexpr double kCeiling = 1000000.0;

}  // namespace costs_detail

template <class D>
inline BranchCosts<D> branch_costs(const BranchLanes& b, const ReferenceLanes& r) {
    using namespace costs_detail;
    BranchCosts<D> c;
    for (int k = 0; k < 2; ++k) {
        const lanes::F4* q = b.joint[k];
        lanes::I4 inside = (b.joint4 >= r.lo4) & (b.joint4 <= r.hi4);
        for (int i = 0; i < 3; ++i) inside &= (q[i] >= r.lo[i]) & (q[i] <= r.hi[i]);
        c.within[k] = inside;
    }
    if constexpr (lanes::kWidthOf<D> == 4) {
        // Lanes (shoulder, shoulder, wrist, wrist) of each elbow sign, then lanes (k, e) per wrist m.
        const auto wide = [](lanes::F4 v) { return __builtin_convertvector(v, lanes::D4); };
        const lanes::D4 joint4 = square(wide(b.joint4) - r.wide4);
        lanes::D4 squares[2][3], shoulder[2];
        for (int k = 0; k < 2; ++k) {
            for (int i = 0; i < 3; ++i) squares[k][i] = square(wide(b.joint[k][i]) - r.wide[i]);
            shoulder[k] = ((squares[k][0] + squares[k][1]) + squares[k][2]) + joint4;
        }
        const lanes::D4 both = __builtin_shufflevector(shoulder[0], shoulder[1], 0, 1, 4, 5);
        for (int m = 0; m < 2; ++m) {
            lanes::D4 sum = both;
            for (int i = 0; i < 3; ++i) sum += __builtin_shufflevector(squares[m][i], squares[m][i], 2, 3, 2, 3);
            c.cost[m] = sum;
        }
    } else {
        lanes::D2 shoulder[2], wrist[2][3];
        for (int k = 0; k < 2; ++k) {
            const lanes::F4* q = b.joint[k];
            shoulder[k] = ((square(low(q[0]) - r.shoulder[0]) + square(low(q[1]) - r.shoulder[1])) +
                           square(low(q[2]) - r.shoulder[2])) +
                          square(low(b.joint4) - r.shoulder[3]);
            for (int i = 0; i < 3; ++i) wrist[k][i] = square(high(q[i]) - r.wrist[i]);
        }
        for (int m = 0; m < 2; ++m) {
            for (int k = 0; k < 2; ++k) c.cost[2 * m + k] = ((shoulder[k] + wrist[m][0]) + wrist[m][1]) + wrist[m][2];
        }
    }
    return c;
}

// The lowest cost of the elbow signs in elbows within the limits, as select_solution gives it;
// infinite when none is.
template <class D>
inline double set_cost(const BranchCosts<D>& c, int elbows) {
    using namespace costs_detail;
    const int64_t e0 = (elbows & 1) ? -1 : 0, e1 = (elbows & 2) ? -1 : 0;
    if constexpr (lanes::kWidthOf<D> == 4) {
        const lanes::L4 asked = {e0, e1, e0, e1};
        const lanes::I4 shoulders = __builtin_shufflevector(c.within[0], c.within[1], 0, 1, 4, 5);
        lanes::D4 best = lanes::D4{} + kCeiling;
        for (int m = 0; m < 2; ++m) {
            const lanes::I4 both = shoulders & __builtin_shufflevector(c.within[m], c.within[m], 2, 3, 2, 3);
            const lanes::L4 within = __builtin_convertvector(both, lanes::L4);
            const lanes::L4 lower = reinterpret_cast<lanes::L4>(c.cost[m] < best);
            best = lanes::choose(lanes::both(lanes::both(within, asked), lower), c.cost[m], best);
        }
        const lanes::D2 half = __builtin_shufflevector(best, best, 0, 1) < __builtin_shufflevector(best, best, 2, 3)
                                   ? __builtin_shufflevector(best, best, 0, 1)
                                   : __builtin_shufflevector(best, best, 2, 3);
        const double lowest = half[1] < half[0] ? half[1] : half[0];
        return lowest < kCeiling ? lowest : INFINITY;
    } else {
        const lanes::L2 asked = {e0, e1};
        lanes::D2 best = {kCeiling, kCeiling};
        for (int m = 0; m < 2; ++m) {
            for (int k = 0; k < 2; ++k) {
                const lanes::I4 both = c.within[k] & __builtin_shufflevector(c.within[m], c.within[m], 2, 3, 2, 3);
                const lanes::L2 within = __builtin_convertvector(__builtin_shufflevector(both, both, 0, 1), lanes::L2);
                const lanes::D2 v = c.cost[2 * m + k];
                best = lanes::choose(lanes::both(lanes::both(within, asked), v < best), v, best);
            }
        }
        const double lowest = best[1] < best[0] ? best[1] : best[0];
        return lowest < kCeiling ? lowest : INFINITY;
    }
}

// A branch of the set by its parts.
struct BranchIndex {
    int elbow, shoulder, wrist;
};

namespace costs_detail {

// The index in the set of the cheapest branch of the elbow signs in elbows costing less than
// below, within the limits or not as asked, the first in the set's order on a tie; -1 when none is.
template <class D>
inline int cheapest_branch(const BranchCosts<D>& c, int elbows, double below, bool within_limits) {
    double cost[2][2][2];  // [m][k][e]
    std::memcpy(cost, c.cost, sizeof cost);
    int chosen = -1;
    for (int e = 0; e < 2; ++e) {
        if ((elbows & (1 << e)) == 0) continue;
        for (int k = 0; k < 2; ++k) {
            for (int m = 0; m < 2; ++m) {
                const bool within = c.within[k][e] && c.within[m][2 + e];
                if ((within || !within_limits) && cost[m][k][e] < below) {
                    below = cost[m][k][e];
                    chosen = e * 4 + k * 2 + m;
                }
            }
        }
    }
    return chosen;
}

}  // namespace costs_detail

// The branch of the elbow signs in elbows nearest the reference, limits aside, the first in the
// set's order on a tie; false when no cost is below infinity.
template <class D>
inline bool nearest_branch(const BranchCosts<D>& c, int elbows, BranchIndex& nearest) {
    const int index = costs_detail::cheapest_branch(c, elbows, INFINITY, false);
    nearest = index < 0 ? BranchIndex{} : BranchIndex{index / 4, (index / 2) % 2, index % 2};
    return index >= 0;
}

// The branch select_solution picks from the set of both elbow signs, by its index there: the
// cheapest within the limits below the selection's ceiling, the first on a tie; -1 when none is.
template <class D>
inline int selected_branch(const BranchCosts<D>& c) {
    return costs_detail::cheapest_branch(c, kBothElbows, costs_detail::kCeiling, true);
}

// Joint j (0-based, not joint 4) of a branch.
inline float joint_of(const BranchLanes& b, const BranchIndex& at, int j) {
    return j < 3 ? b.joint[at.shoulder][j][at.elbow] : b.joint[at.wrist][j - 4][2 + at.elbow];
}

// Branch index of the set of both elbow signs as write_branches writes its row (ROBOT_DOF values).
inline void branch_row(const BranchLanes& b, int index, float* row) {
    const BranchIndex at = {index / 4, (index / 2) % 2, index % 2};
    for (int j = 0; j < ROBOT_DOF; ++j) row[j] = j == 3 ? b.joint4[at.elbow] : j < 7 ? joint_of(b, at, j) : 0.0f;
}

// True when a branch of either elbow sign within the limits is within `near` (rad) of the
// reference in every joint.
template <class D>
inline bool near_branch_within_limits(const BranchLanes& b, const BranchCosts<D>& c, const ReferenceLanes& r,
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
