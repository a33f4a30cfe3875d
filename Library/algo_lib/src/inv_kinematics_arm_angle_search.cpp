// The arm-angle search of the seven-joint solver. Every arm angle has up to 8 branches; the
// search looks for the branch nearest the reference within the limits over the arm angles it
// visits: the reference's own, those where a singular shoulder or wrist lets the outer joints
// keep the reference's values, and a grid of Q_STEP_MIN steps within the solution range.
// Strategy 0 settles at the reference's arm angle when its own branch there is within the
// limits, and otherwise looks at the grid in runs, cheapest floor first, until no arm angle left
// can hold a nearer branch; strategy 1 walks the whole range step by step. Both give the same
// answer past the reference's arm angle.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <initializer_list>
#include <optional>
#include <type_traits>

#include "inv_kinematics_arm_angle.h"
#include "inv_kinematics_arm_angle_branches.h"
#include "inv_kinematics_arm_angle_costs.h"
#include "inv_kinematics_arm_angle_floor.h"
#include "inv_kinematics_arm_angle_runs.h"
#include "qman_inv_kinematics.h"

namespace algo::ik {
namespace {

// Arm angle of the reference's shoulder against the target's zero-angle shoulder, so a
// reference that reaches the target gives back exactly its own arm.
float reference_arm_angle(const ArmAngleTarget& t, const float* theta_ref) {
    Mat3 shoulder;
    zyz_matrix(theta_ref[0], theta_ref[1], theta_ref[2], shoulder);
    const ElbowBranch& b = t.elbow[theta_ref[3] >= 0.0f ? 0 : 1];
    return arm_angle_between(shoulder, b.shoulder0, t.axis);
}

// Largest joint difference (rad) at which a branch counts as the reference's own: the others
// differ from it by half or whole turns.
constexpr float kOwnBranch = 0.35f;

// Angle (rad) of the rotation taking a to b.
double rotation_between(const Mat3 a, const Mat3 b) {
    double m[3][3];
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j)
            m[i][j] = double(a[0][i]) * b[0][j] + double(a[1][i]) * b[1][j] + double(a[2][i]) * b[2][j];
    }
    const double sx = m[2][1] - m[1][2], sy = m[0][2] - m[2][0], sz = m[1][0] - m[0][1];
    return std::atan2(0.5 * std::sqrt(sx * sx + sy * sy + sz * sz),
                      0.5 * (m[0][0] + m[1][1] + m[2][2] - 1.0));
}

// A lower bound on the distance from the reference of any branch at a given arm angle.
// Turning the arm angle by d turns both the shoulder R_S = Rz(t1)*Ry(t2)*Rz(t3) and the wrist
// Rz(t5)*Ry(t6)*Rz(t7) by d, and a rotation of angle r moves the three joints of a Z-Y-Z triple
// by at least r in sum, so by r^2/3 in squares. Per elbow sign, with the arm angle centre[e]
// nearest the reference and the reference's remaining shoulder and wrist rotations from there:
//   cost >= (q4 - ref4)^2 + max(0, d - shoulder_gap)^2 / 3 + max(0, d - wrist_gap)^2 / 3.
struct SearchBound {
    double centre[2];  // from psi0, within half a turn
    double shoulder_gap[2];
    double wrist_gap[2];
    double joint4_cost[2];  // infinite for an elbow sign outside joint 4's limits
};

// Slack for the single-precision rounding of the arm angles and rotations.
constexpr double kBoundSlack = 1e-4;

SearchBound search_bound(const SolveInput& in, const ArmAngleTarget& t, const float* theta_ref, float psi0) {
    SearchBound bound;
    Mat3 shoulder_ref, wrist_ref;
    zyz_matrix(theta_ref[0], theta_ref[1], theta_ref[2], shoulder_ref);
    zyz_matrix(theta_ref[4], theta_ref[5], theta_ref[6], wrist_ref);
    for (int e = 0; e < 2; ++e) {
        const ElbowBranch& b = t.elbow[e];
        const float centre = arm_angle_between(shoulder_ref, b.shoulder0, t.axis);
        bound.centre[e] = std::remainder(double(centre) - psi0, 2.0 * ALGO_PI);
        Mat3 shoulder, wrist;
        shoulder_at(b, centre, shoulder);
        wrist_rotation(b, shoulder, t.rotation, wrist);
        bound.shoulder_gap[e] = rotation_between(shoulder, shoulder_ref) + kBoundSlack;
        bound.wrist_gap[e] = rotation_between(wrist, wrist_ref) + kBoundSlack;
        const float q4 = joint_value(in, 3, b.t4);
        const bool within = q4 >= in.limits.min[3] && q4 <= in.limits.max[3];
        bound.joint4_cost[e] = within ? (double(q4) - in.q_ref[3]) * (double(q4) - in.q_ref[3]) : INFINITY;
    }
    return bound;
}

// Lowest cost a branch of either elbow sign can have at the arm angles psi0 + d, from <= d <= to.
double lowest_cost_between(const SearchBound& bound, double from, double to) {
    double lowest = INFINITY;
    for (int e = 0; e < 2; ++e) {
        double d = INFINITY;  // from the centre to the nearest of those arm angles
        for (const double turn : {-2.0 * ALGO_PI, 0.0, 2.0 * ALGO_PI}) {
            const double c = bound.centre[e] + turn;
            d = std::min(d, std::max({0.0, from - c, c - to}));
        }
        d = std::max(0.0, d - kBoundSlack);
        const double s = std::max(0.0, d - bound.shoulder_gap[e]);
        const double w = std::max(0.0, d - bound.wrist_gap[e]);
        lowest = std::min(lowest, bound.joint4_cost[e] + (s * s + w * w) / 3.0);
    }
    return lowest;
}

// Which elbow signs can have a branch within the limits at an arm angle, judged from the middle
// joints alone: cos t2 and cos t6 are sinusoids in the arm angle, so two multiply-adds each tell
// whether t2 (or its twin -t2) and t6 (or -t6) can lie within their limits, before any angle is
// worked out. Most arm angles of a target beyond the limits are dismissed this way. A joint with
// an offset, or limits beyond a half turn, is not judged (its turns could be mapped into them).
class MiddleJointFilter {
public:
    MiddleJointFilter(const SolveInput& in, const ArmAngleTarget& t) {
        const Mat3& r = t.rotation;
        for (int e = 0; e < 2; ++e) {
            const ElbowBranch& b = t.elbow[e];
            const Mat3* parts[3] = {&b.shoulder_sin, &b.shoulder_cos, &b.shoulder_const};
            for (int p = 0; p < 3; ++p) {
                const Mat3& m = *parts[p];
                shoulder_[e][p] = m[2][2];
                // Row 2 of Ry(-t4) * R_S^T * R, column 2.
                const float m02 = m[0][0] * r[0][2] + m[1][0] * r[1][2] + m[2][0] * r[2][2];
                const float m22 = m[0][2] * r[0][2] + m[1][2] * r[1][2] + m[2][2] * r[2][2];
                wrist_[e][p] = b.s4 * m02 + b.c4 * m22;
            }
        }
        judged_[0] = bands(in, 1, shoulder_band_);
        judged_[1] = bands(in, 5, wrist_band_);
    }

    // The elbow signs of `elbows` that can have a branch within the limits at the arm angle.
    int possible(int elbows, float sn, float cs) const {
        for (int e = 0; e < 2; ++e) {
            if ((elbows & (1 << e)) == 0) continue;
            const float c2 = shoulder_[e][0] * sn + shoulder_[e][1] * cs + shoulder_[e][2];
            const float c6 = wrist_[e][0] * sn + wrist_[e][1] * cs + wrist_[e][2];
            if ((judged_[0] && !within(c2, shoulder_band_)) || (judged_[1] && !within(c6, wrist_band_)))
                elbows &= ~(1 << e);
        }
        return elbows;
    }

private:
    // Cosine bands of a middle angle b in [0, pi] for which b, or its twin -b, lies within the
    // limits, widened by a margin for rounding.
    struct Band {
        float lo[2], hi[2];
    };
    static constexpr float kMargin = 1e-4f;

    // The bands of joint j's limits, kept per thread with the limits they came from: those seldom
    // change, and their cosines would cost a call as much as a few arm angles' branches.
    static bool bands(const SolveInput& in, int j, Band& band) {
        struct Kept {
            float lo = NAN, hi = NAN, offset = NAN;  // none kept: never equal
            bool judged;
            Band band;
        };
        thread_local Kept kept[2];  // joints 2 and 6
        Kept& k = kept[j == 1 ? 0 : 1];
        const float lo = in.limits.min[j], hi = in.limits.max[j], offset = in.dh.offset[j];
        if (lo != k.lo || hi != k.hi || offset != k.offset) {
            k.judged = work_out_bands(lo, hi, offset, k.band);
            k.lo = lo;
            k.hi = hi;
            k.offset = offset;
        }
        band = k.band;
        return k.judged;
    }

    static bool work_out_bands(float lo, float hi, float offset, Band& band) {
        if (offset != 0.0f || lo < -kPi || hi > kPi) return false;
        const float plus[2] = {std::fmax(lo, 0.0f), std::fmin(hi, kPi)};     // b itself
        const float twin[2] = {std::fmax(-hi, 0.0f), std::fmin(-lo, kPi)};  // -b
        for (int k = 0; k < 2; ++k) {
            const float* range = k == 0 ? plus : twin;
            band.lo[k] = range[0] <= range[1] ? std::cos(range[1]) - kMargin : 2.0f;
            band.hi[k] = range[0] <= range[1] ? std::cos(range[0]) + kMargin : -2.0f;
        }
        return true;
    }

    static bool within(float c, const Band& band) {
        return (c >= band.lo[0] && c <= band.hi[0]) || (c >= band.lo[1] && c <= band.hi[1]);
    }

    float shoulder_[2][3];  // cos t2 = [0] sin psi + [1] cos psi + [2], per elbow sign
    float wrist_[2][3];     // cos t6 likewise
    Band shoulder_band_, wrist_band_;
    bool judged_[2];
};

// Near the shoulder (t2 = 0) or wrist (t6 = 0) singularity, joints 1 and 3 (5 and 7) turn fast
// with the arm angle while their sum stays nearly put: the arm angle of a reference that does not
// quite reach the target can land far from it in joint space, and the band of arm angles where
// both are within their limits can be narrower than a grid step. So the arm angles at which
// joint 1 (5) keeps the reference's value are tried, then those at which joints 1 and 3 (5 and 7)
// share what is left: equally, which is nearest, or as nearly so as both limits allow.
constexpr float kNearSingularSin = 0.1f;
constexpr float kInsideLimit = 1e-4f;    // rad kept from a limit by a share forced against it
constexpr float kSingularWindow = 0.2f;  // rad of arm angle around the reference's, or around a first try
constexpr int kFirst[2] = {0, 4};        // shoulder, wrist: the joint that is the axis's azimuth
constexpr int kLast[2] = {2, 6};         // and the joint that turns opposite it

std::array<float, ROBOT_DOF> reference_of(const SolveInput& in) {
    std::array<float, ROBOT_DOF> theta;
    reference_theta(in, theta.data());
    return theta;
}

// The branches at the arm angle the search settled on, and the one the selection picks among them.
struct SearchAnswer {
    bool found = false;  // false: the target is out of reach
    int chosen = -1;     // the selection's branch, by its index in the set; -1: none within the limits
    BranchLanes branches;
};

template <class Wide>
class ArmAngleSearch {
public:
    ArmAngleSearch(const SolveInput& in, const ArmAngleTarget& t)
        : in_(in),
          t_(t),
          theta_ref_(reference_of(in)),
          terms_(in, t, theta_ref_.data()),
          ref_(in),
          psi0_(reference_arm_angle(t, theta_ref_.data())) {}

    SearchAnswer run(int strategy, float range) {
        search(strategy, range);
        SearchAnswer answer;
        answer.found = true;
        answer.chosen = selected_branch(answer_costs_);
        answer.branches = answer_;
        return answer;
    }

private:
    void search(int strategy, float range) {
        lanes::F4 sn, cs;
        lanes::sincos(lanes::splat(psi0_), sn, cs);
        const BranchLanes at_ref = branch_lanes(terms_, t_, sn[0], cs[0]);
        const BranchCosts<Doubles> costs = branch_costs<Doubles>(at_ref, ref_);
        take(at_ref, costs);
        const double cost = set_cost(costs, kBothElbows);
        const int own = theta_ref_[3] >= 0.0f ? 0 : 1;
        const bool near[2] = {at_ref.sines.shoulder[own] < kNearSingularSin,
                              at_ref.sines.wrist[own] < kNearSingularSin};
        if (near[0] || near[1]) {
            best_ = cost;
            for (int k = 0; k < 2; ++k) {
                if (near[k]) try_singular(k, psi0_, kSingularWindow);
            }
        }
        if (strategy == 0 && own_within_) return;
        if (!near[0] && !near[1]) best_ = cost;
        // Leaving the reference's arm angle: first wherever in the range the shoulder or wrist
        // can keep the reference's outer joints, then the grid.
        for (int k = 0; k < 2; ++k) try_singular(k, psi0_, range);
        const int steps = static_cast<int>(range / Q_STEP_MIN + 1e-3f);
        if (strategy == 0) {
            search_runs(steps);
        } else {
            walk(steps);
        }
    }

    // Every step of the grid in turn, both sides.
    void walk(int steps) {
        const int blocks = (steps + 1) / 2;
        for (int n = 0; n < blocks; ++n) {
            // Far enough out that the nearest branches are not close by: the cheapest-looking arm
            // angle of a sample of those left is worked out, and any whose floor lies above its
            // cost is skipped from there on. It is not taken as the answer: only the order of the
            // walk decides between equal costs.
            if (n == kBlocksBeforeCeiling) ceiling_ = cheapest_from(n, blocks, steps);
            const GridBlock& g = grid_block(n);
            for (int i = 0; i < 2 && g.step[i] <= steps; ++i) {
                for (int side = 0; side < 2; ++side) {
                    const int lane = 2 * i + side;
                    const int possible = middle().possible(kBothElbows, g.sn[lane], g.cs[lane]);
                    evaluate_among(g.sn[lane], g.cs[lane], g.floors.could_beat(possible, lane, best_, ceiling_),
                                   walk_order(g.step[i], side == 0 ? 1 : -1));
                }
            }
        }
    }

    // The grid in runs of steps, cheapest floor first. A run's floor comes from its middle arm
    // angle and how far the joints can move within the run; a run that could beat the best so far
    // is split into as many as a pass has lanes, down to single arm angles, whose branches are
    // worked out in order of their floors. Once no floor left is below the best cost, no arm angle
    // left can be nearer. The walk's order decides between equal costs, so the answer is the
    // walk's. The first runs wait with a cheaper, looser floor, from how far the shoulder and wrist
    // must turn to get there from the reference's, and get their own only when that is the lowest:
    // near a reference that almost reaches the target, most are never looked at.
    void search_runs(int steps) {
        // Roots that all fit in one pass are looked at together, whatever their keys.
        const bool keyed = 2 * ((steps + kRootRun - 1) / kRootRun) > kLanes;
        const SearchBound turning = keyed ? search_bound(in_, t_, theta_ref_.data(), psi0_) : SearchBound{};
        // Waiting in a heap rather than sorted: most calls look at a few roots only.
        RunQueue<kMaxRoots> roots;
        Queue queue;
        RunBatch batch;
        for (const int side : {1, -1}) {
            for (int first = 1; first <= steps; first += kRootRun) {
                const int count = std::min(kRootRun, steps - first + 1), last = first + count - 1;
                const GridRun run{{-INFINITY, -INFINITY},
                                  static_cast<int16_t>(side > 0 ? first : -last),
                                  static_cast<int16_t>(count)};
                if (!keyed) {
                    batch.add(run);
                    continue;
                }
                const double near = static_cast<double>(first) * Q_STEP_MIN;
                const double far = static_cast<double>(last) * Q_STEP_MIN;
                const float key = side > 0 ? static_cast<float>(lowest_cost_between(turning, near, far))
                                           : static_cast<float>(lowest_cost_between(turning, -far, -near));
                if (CostFloor::may_beat(key, best_)) roots.push(run, key);
            }
        }
        bound_runs(batch, queue);  // the roots, when they fit one pass
        while (!roots.empty() || !queue.empty()) {
            if (!roots.empty() && (queue.empty() || roots.top_key() < queue.top_key())) {
                if (!CostFloor::may_beat(roots.top_key(), best_)) {
                    roots.clear();  // nor can any root after it
                    continue;
                }
                // With the next cheapest that could beat it too, a pass's worth.
                while (batch.size < kLanes && !roots.empty() && CostFloor::may_beat(roots.top_key(), best_))
                    batch.add(roots.pop());
                bound_runs(batch, queue);
                continue;
            }
            if (!CostFloor::may_beat(queue.top_key(), best_)) return;  // every floor left is higher
            const GridRun run = queue.pop();
            if (run.count == 1) {
                evaluate_single(run);
                continue;
            }
            // Split, with the next waiting runs whose parts fill the pass's lanes.
            batch.split(run);
            while (!queue.empty() && batch.fits(queue.top()) && CostFloor::may_beat(queue.top_key(), best_))
                batch.split(queue.pop());
            bound_runs(batch, queue);
        }
    }

    static constexpr int kLanes = lanes::kLanesOf<Wide>;
    // The branches' joints and costs in doubles as wide as the build's registers.
    using Doubles = std::conditional_t<kLanes == 8, lanes::D4, lanes::D2>;
    static constexpr int kMaxSteps = static_cast<int>(Q_STEP_MAX / Q_STEP_MIN) + 1;
    // A root splits into a pass's worth of runs, each of them into a pass's worth of arm angles.
    static constexpr int kRootRun = kLanes * kLanes;  // steps
    static constexpr int kMaxRoots = 2 * ((kMaxSteps + kRootRun - 1) / kRootRun);
    static constexpr float kReachSlack = 1e-5f;  // rad, for the rounding of the arm angles
    // A pass bounds roots, or the parts of runs it splits, at least one of which is a root or a
    // root's part: parts of parts are single arm angles, which no pass splits.
    using Queue = PassQueue<Wide, kMaxRoots * (2 + kLanes)>;

    // Runs whose floors come in one pass, a lane each, with the floors of the runs they were split
    // from: those hold for them too. By lanes, so that a pass reads them as vectors.
    using Steps = lanes::MaskOf<Wide>;
    struct RunBatch {
        Steps low, count;   // as GridRun's
        Wide inherited[2];  // per elbow sign
        int size = 0;
        bool singles = false;  // every run one step: their floors at single arm angles
        bool added = false;    // runs added one by one: the lanes past them still to fill

        // A run's parts: as many as the lanes, of equal steps but the last.
        static int span_of(const GridRun& run) { return (run.count + kLanes - 1) / kLanes; }
        static int parts_of(const GridRun& run) {
            const int span = span_of(run);
            return (run.count + span - 1) / span;
        }
        bool fits(const GridRun& run) const {
            return run.count > 1 && parts_of(run) <= kLanes - size && (span_of(run) == 1) == singles;
        }
        void add(const GridRun& run) {
            singles = run.count == 1 && (size == 0 || singles);
            low[size] = run.low;
            count[size] = run.count;
            for (int e = 0; e < 2; ++e) inherited[e][size] = run.floor[e];
            ++size;
            added = true;
        }
        // From the end nearest the reference's arm angle outwards, the last part the rest. Parts
        // join a batch of their own span, one step or more (see fits). All lanes at once, as the
        // next pass reads them as vectors straight away; the lanes past the parts repeat the last,
        // beating nothing.
        void split(const GridRun& parent) {
            const int span = span_of(parent), parts = parts_of(parent);
            const int near = parent.low > 0 ? parent.low : -(parent.low + parent.count - 1);
            const Steps lane = algo::lanes::lane_numbers<Wide>(), part = lane - size;
            const Steps first = near + lanes::select(part < parts - 1, part, Steps{} + (parts - 1)) * span;
            const Steps steps = lanes::select(first + span > near + parent.count, near + parent.count - first,
                                              Steps{} + span);
            const Steps mine = lane >= size, theirs = part < parts;
            low = lanes::select(mine, parent.low > 0 ? first : -(first + steps - 1), low);
            count = lanes::select(mine, steps, count);
            for (int e = 0; e < 2; ++e) {
                const Wide floor =
                    lanes::select(theirs, lanes::splat<Wide>(parent.floor[e]), lanes::splat<Wide>(INFINITY));
                inherited[e] = lanes::select(mine, floor, inherited[e]);
            }
            singles = span == 1;
            size += parts;
        }
    };

    // The floors of the runs in batch, which then wait in queue if they could beat the best. An
    // elbow sign is left out where no run's inherited floor or joint 4 alone lets it beat the best.
    void bound_runs(RunBatch& batch, Queue& queue) {
        if (batch.size == 0) return;
        const float cut = cut_below(best_);
        // Lanes past the runs repeat the last, beating nothing (split() leaves them so).
        for (int lane = batch.size; batch.added && lane < kLanes; ++lane) {
            batch.low[lane] = batch.low[batch.size - 1];
            batch.count[lane] = batch.count[batch.size - 1];
            for (int e = 0; e < 2; ++e) batch.inherited[e][lane] = INFINITY;
        }
        int elbows = 0;
        for (int e = 0; e < 2; ++e)
            elbows |= algo::lanes::lane_bits(batch.inherited[e] < lanes::splat<Wide>(cut)) != 0 ? 1 << e : 0;
        // Read afresh each pass: the compiler would otherwise hold the floor's every coefficient,
        // lane-wide, across the whole search, far more than the registers.
        const CostFloor* bounds = &floor();
        asm("" : "+r"(bounds));
        elbows &= bounds->elbows_below(cut);
        // A run's arm angles lie between its ends'. The grid's offsets are rounded apart from the
        // sum, as grid_angle's table has them.
        const Wide step = lanes::splat<Wide>(Q_STEP_MIN), psi0 = lanes::splat<Wide>(psi0_);
        Wide low_offset = __builtin_convertvector(batch.low, Wide) * step;
        Wide high_offset = __builtin_convertvector(batch.low + batch.count - 1, Wide) * step;
        asm("" : "+m"(low_offset), "+m"(high_offset));
        const Wide lo = psi0 + low_offset, hi = psi0 + high_offset;
        const Wide width =
            __builtin_convertvector(batch.count - 1, Wide) * step + lanes::splat<Wide>(kReachSlack);
        // Grid arm angles are within a few turns: no lane needs the library's reduction.
        Wide sn_lo, cs_lo;
        lanes::sincos_reducible(lo, sn_lo, cs_lo);
        Wide sn_hi, cs_hi;
        if (!batch.singles) lanes::sincos_reducible(hi, sn_hi, cs_hi);
        const CostFloor::FloorsOf<Wide> floors =
            batch.singles ? bounds->at(sn_lo, cs_lo, elbows, cut)
                          : bounds->over(sn_lo, cs_lo, sn_hi, cs_hi, width, elbows, cut);
        const Wide floor0 = lanes::max(floors.elbow[0], batch.inherited[0]);
        const Wide floor1 = lanes::max(floors.elbow[1], batch.inherited[1]);
        const Wide key = lanes::min(floor0, floor1);
        // The runs' lanes whose keys are below the cut wait (the lanes past the runs have none).
        typename Queue::Pass& pass = queue.next();
        pass.key = lanes::select(key < lanes::splat<Wide>(cut), key, lanes::splat<Wide>(INFINITY));
        pass.floor[0] = floor0;
        pass.floor[1] = floor1;
        pass.low = batch.low;
        pass.count = batch.count;
        if (batch.singles && !dived_) dive(pass);
        queue.commit();
        batch.size = 0;
        batch.added = false;
    }

    // The first pass of single arm angles has the one with the least floor looked at at once,
    // before any run waiting below it is split: its cost is most often near the answer's, and
    // the runs it rules out would each have cost a pass. The walk's order still decides ties.
    void dive(typename Queue::Pass& pass) {
        dived_ = true;
        float least;
        int lane;
        if (!Queue::least_of(pass.key, least, lane)) return;
        pass.key[lane] = INFINITY;
        evaluate_single(Queue::run_of(pass, lane));
    }

    // The grid arm angle of a one-step run, for the elbow signs whose floors may beat the best.
    void evaluate_single(const GridRun& single) {
        int elbows = 0;
        for (int e = 0; e < 2; ++e) elbows |= CostFloor::may_beat(single.floor[e], best_) ? 1 << e : 0;
        const int step = std::abs(single.low), side = single.low > 0 ? 1 : -1;
        evaluate(grid_angle(step, side), elbows, walk_order(step, side));
    }

    // The least floor that cannot beat best (see CostFloor::may_beat), kept while best stays.
    float cut_below(double best) {
        if (best != cut_best_) {
            cut_ = CostFloor::cut(best);
            cut_best_ = best;
        }
        return cut_;
    }

    // The filters are made on first use: a call that settles at the reference's arm angle pays
    // for neither.
    const CostFloor& floor() {
        if (!floor_) floor_.emplace(in_, t_, theta_ref_.data());
        return *floor_;
    }
    const MiddleJointFilter& middle() {
        if (!middle_) middle_.emplace(in_, t_);
        return *middle_;
    }

    // From a table, so that no build fuses the product into the sum: every build and both
    // strategies work out the same arm angles.
    float grid_angle(int step, int side) const {
        static constexpr auto kOffsets = [] {
            std::array<float, kMaxSteps + 2> offsets{};
            for (int i = 0; i < kMaxSteps + 2; ++i) offsets[i] = static_cast<float>(i) * Q_STEP_MIN;
            return offsets;
        }();
        return side > 0 ? psi0_ + kOffsets[step] : psi0_ - kOffsets[step];
    }
    // Where the walk reaches a step: up, then down, one step after another, after the arm
    // angles tried before the grid (order 0).
    static int walk_order(int step, int side) { return 2 * step + (side > 0 ? 0 : 1); }

    // Two steps of the grid, both sides: the floors of their four arm angles come in one pass.
    struct GridBlock {
        int step[2];
        float psi[4];  // step[0] up, down, step[1] up, down
        lanes::F4 sn, cs;
        CostFloor::Floors floors;
    };
    static constexpr int kBlocksBeforeCeiling = 8;
    static constexpr int kCeilingStride = 4;
    static constexpr int kMaxBlocks = static_cast<int>(Q_STEP_MAX / Q_STEP_MIN) / 2 + 2;

    const GridBlock& grid_block(int n) {
        GridBlock& g = grid_[n];
        if (ready_[n]) return g;
        for (int i = 0; i < 2; ++i) {
            g.step[i] = 2 * n + 1 + i;
            g.psi[2 * i] = grid_angle(g.step[i], 1);
            g.psi[2 * i + 1] = grid_angle(g.step[i], -1);
        }
        lanes::sincos(lanes::F4{g.psi[0], g.psi[1], g.psi[2], g.psi[3]}, g.sn, g.cs);
        g.floors = floor().at(g.sn, g.cs);
        ready_[n] = true;
        return g;
    }

    // The cost at the arm angle with the lowest floor of every kCeilingStride-th block from
    // first to last - 1: a sample, so that a walk that would have stopped soon pays little.
    double cheapest_from(int first, int last, int steps) {
        float lowest = INFINITY;
        float sn = 0.0f, cs = 0.0f;
        for (int n = first; n < last; n += kCeilingStride) {
            const GridBlock& g = grid_block(n);
            for (int lane = 0; lane < 4; ++lane) {
                const float f = g.floors.least(lane);
                if (g.step[lane / 2] <= steps && f < lowest) {
                    lowest = f;
                    sn = g.sn[lane];
                    cs = g.cs[lane];
                }
            }
        }
        if (lowest == INFINITY) return INFINITY;
        return set_cost(branch_costs<Doubles>(branch_lanes(terms_, t_, sn, cs), ref_), kBothElbows);
    }

    // The set at psi becomes the answer when its best branch is nearer, or as near and reached
    // earlier by the walk (order, see walk_order). A set looked at for one elbow sign only is
    // completed first: the answer lists every branch of its arm angle.
    void evaluate(float psi, int elbows = kBothElbows, int order = 0) {
        lanes::F4 sn, cs;
        lanes::sincos(lanes::splat(psi), sn, cs);
        evaluate_at(sn[0], cs[0], elbows, order);
    }

    // evaluate() at the arm angle whose sine and cosine are sn and cs.
    void evaluate_at(float sn, float cs, int elbows = kBothElbows, int order = 0) {
        evaluate_among(sn, cs, middle().possible(elbows, sn, cs), order);
    }

    // evaluate_at() for the elbow signs in elbows, already filtered; the set stays as the candidate.
    void evaluate_among(float sn, float cs, int elbows, int order) {
        candidate_elbows_ = elbows;
        if (elbows == 0) return;  // nothing there within the limits
        candidate_ = branch_lanes(terms_, t_, sn, cs);
        candidate_costs_ = branch_costs<Doubles>(candidate_, ref_);
        const double cost = set_cost(candidate_costs_, elbows);
        if (cost < best_ || (cost == best_ && order < best_order_)) {
            best_ = cost;
            best_order_ = order;
            take(candidate_, candidate_costs_);
        }
    }

    // The set of b becomes the answer, with every branch of its arm angle.
    void take(const BranchLanes& b, const BranchCosts<Doubles>& costs) {
        answer_ = b;
        answer_costs_ = costs;
        own_within_ = near_branch_within_limits(b, costs, ref_, kOwnBranch);
    }

    // Arm angles within window of centre where joint kFirst[k] keeps the reference's value, and
    // near each, unless the answer is already the reference's own branch, the shared ones.
    void try_singular(int k, float centre, float window) {
        if (!axes_ready_) {
            const ElbowBranch& own = t_.elbow[theta_ref_[3] >= 0.0f ? 0 : 1];
            axes_[0] = upper_arm_axis(own);
            axes_[1] = wrist_axis(own, t_.rotation);
            axes_ready_ = true;
        }
        const float first = theta_ref_[kFirst[k]];
        float psi[2];
        const int n = arm_angles_for_azimuth(axes_[k], first, centre, window, psi);
        if (n == 0) return;
        lanes::F4 sn, cs;
        lanes::sincos(lanes::F4{psi[0], psi[n - 1], 0.0f, 0.0f}, sn, cs);
        for (int i = 0; i < n; ++i) {
            evaluate_at(sn[i], cs[i]);
            if (own_within_) continue;
            BranchIndex nearest;
            if (candidate_elbows_ == 0 || !nearest_branch(candidate_costs_, candidate_elbows_, nearest)) continue;
            const int last = kLast[k];
            const float left = remainder_turn(joint_of(candidate_, nearest, last) - in_.q_ref[last]);
            const float equal = 0.5f * left;
            const float within = share_within_limits(k, left, equal);
            float shared[4];
            int m = shared_angles(k, equal, psi[i], shared);
            if (within != equal) m += shared_angles(k, within, psi[i], shared + m);
            evaluate_each(shared, m);
        }
    }

    // The arm angles near centre at which joint kFirst[k] has moved by share from the reference,
    // into out; returns their count, at most 2.
    int shared_angles(int k, float share, float centre, float* out) const {
        return arm_angles_for_azimuth(axes_[k], theta_ref_[kFirst[k]] + share, centre, kSingularWindow, out);
    }

    // evaluate() at up to four arm angles in turn. No floor first: a pass of the floor's costs
    // more than the few full evaluations it could spare, and the answer is the same without it
    // (these arm angles come before the grid, so a set no cheaper than the best is never taken).
    void evaluate_each(const float* psi, int n) {
        if (n == 0) return;
        lanes::F4 angles, sn, cs;
        for (int lane = 0; lane < 4; ++lane) angles[lane] = psi[std::min(lane, n - 1)];
        lanes::sincos(angles, sn, cs);
        for (int i = 0; i < n; ++i) evaluate_at(sn[i], cs[i]);
    }

    // share clamped so that joint kFirst[k] moved by it and joint kLast[k] by left - share both
    // stay within their limits; share itself when no split does.
    float share_within_limits(int k, float left, float share) const {
        const int f = kFirst[k], l = kLast[k];
        const JointLimits& lim = in_.limits;
        const float lo = larger(lim.min[f] - in_.q_ref[f], in_.q_ref[l] + left - lim.max[l]) + kInsideLimit;
        const float hi = smaller(lim.max[f] - in_.q_ref[f], in_.q_ref[l] + left - lim.min[l]) - kInsideLimit;
        return lo <= hi ? smaller(hi, larger(lo, share)) : share;
    }

    // std::fmax and std::fmin as the C library gives them, without its call: a NaN yields the other
    // operand, and of two equal zeros the second comes back.
    static float larger(float x, float y) { return x > y || y != y ? x : y; }
    static float smaller(float x, float y) { return x < y || y != y ? x : y; }

    const SolveInput& in_;
    const ArmAngleTarget& t_;
    std::array<float, ROBOT_DOF> theta_ref_;
    BranchTerms<Doubles> terms_;
    ReferenceLanes ref_;
    std::optional<CostFloor> floor_;
    std::optional<MiddleJointFilter> middle_;
    float psi0_;
    AxisBlend axes_[2];  // of the reference's elbow sign, made on first use
    bool axes_ready_ = false;
    bool dived_ = false;  // into a pass of single arm angles (see dive)
    double best_ = INFINITY;
    double cut_best_ = INFINITY;
    float cut_ = INFINITY;
    int best_order_ = 0;         // walk_order of the answer's arm angle
    double ceiling_ = INFINITY;  // the cost of some grid arm angle
    bool own_within_ = false;  // the answer holds the reference's own branch, within the limits
    // The answer so far, every branch of its arm angle.
    BranchLanes answer_;
    BranchCosts<Doubles> answer_costs_;
    // The last set looked at, for the elbow signs in candidate_elbows_ (none: no set).
    BranchLanes candidate_;
    BranchCosts<Doubles> candidate_costs_;
    int candidate_elbows_ = 0;
    std::array<GridBlock, kMaxBlocks> grid_;
    std::array<bool, kMaxBlocks> ready_{};
};

// The search in one piece, built twice as the forward kinematics' pose calls are: for the
// baseline instruction set and, for processors that have them, with AVX2 and fused multiply-adds,
// which the floors gain most from, eight lanes at a time; the target and its branches come inline
// with it. The first call chooses.
using Search = SearchAnswer (*)(const SolveInput&, const Matrix&, int, float);

[[gnu::flatten]] SearchAnswer search_baseline(const SolveInput& in, const Matrix& flange, int strategy, float range) {
    const ArmAngleTarget t = arm_angle_target(in.dh, flange, in.reach_tol);
    return t.reachable ? ArmAngleSearch<lanes::F4>(in, t).run(strategy, range) : SearchAnswer{};
}

#if defined(__x86_64__)
__attribute__((target("avx2,fma"), flatten)) SearchAnswer search_fma(const SolveInput& in, const Matrix& flange,
                                                                     int strategy, float range) {
    const ArmAngleTarget t = arm_angle_target(in.dh, flange, in.reach_tol);
    return t.reachable ? ArmAngleSearch<lanes::F8>(in, t).run(strategy, range) : SearchAnswer{};
}
#endif

Search chosen_search() {
    static const Search chosen = [] {
#if defined(__x86_64__)
        __builtin_cpu_init();
        if (__builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma")) return &search_fma;
#endif
        return &search_baseline;
    }();
    return chosen;
}

SearchAnswer search(const SolveInput& in, const Matrix& flange) {
    return chosen_search()(in, flange, ikine_get_7dof_solver_search_strategy(), ikine_get_solution_range_qm75());
}

}  // namespace

int solve_arm_angle_search(const SolveInput& in, const Matrix& flange, IkSolve& out) {
    begin_solutions(in, out);
    const SearchAnswer answer = search(in, flange);
    if (answer.found) write_branches(in, answer.branches, kBothElbows, out);
    return out.num;
}

// The selection's pick among the set solve_arm_angle_search gives, without writing the set out.
int nearest_arm_angle_search(const SolveInput& in, const Matrix& flange, float* q_out) {
    const SearchAnswer answer = search(in, flange);
    if (!answer.found) return IKINE_FAILED;
    if (answer.chosen < 0) return IKINE_LIMITED;
    float row[ROBOT_DOF];
    branch_row(answer.branches, answer.chosen, row);
    std::memcpy(q_out, row, sizeof(float) * static_cast<size_t>(in.dof));
    return IKINE_SUCCESSFUL;
}

}  // namespace algo::ik
