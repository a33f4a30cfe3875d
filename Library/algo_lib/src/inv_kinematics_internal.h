#ifndef INV_KINEMATICS_INTERNAL_H
#define INV_KINEMATICS_INTERNAL_H

// Shared pieces of the inverse-kinematics solvers; not part of the library's interface.

#include <cmath>
#include <cstring>

#include "constant_define.h"
#include "dh_table_shape.h"
#include "robot_define.h"

namespace algo::ik {

constexpr float kPi = static_cast<float>(ALGO_PI);
constexpr float kTwoPi = static_cast<float>(2.0 * ALGO_PI);
// Below this |sin| of a middle ZYZ angle the outer two axes line up; the first angle then
// keeps the reference's value (orientation error at most pi times this).
constexpr float kSingularSin = 1e-5f;
// A target this far (m) beyond the reach of a link pair still counts as reached, at the
// pair's limit: rounding of the target and the solver is far below it.
constexpr float kReachTol = 1e-5f;
// The same on the nominal table of a calibrated one, whose reach may differ by about this much;
// the refinement on the real table then decides what is reached.
constexpr float kCalibratedReachTol = 1e-2f;
// Below this distance (m) a line through a joint axis leaves that joint free.
constexpr float kAxisEps = 1e-6f;

struct JointLimits {
    float min[ROBOT_DOF];
    float max[ROBOT_DOF];
};

// Everything a solver needs besides the target: geometry, reference, limits, and how far
// beyond a link pair's reach a target still counts as reached.
struct SolveInput {
    DH dh;
    float q_ref[ROBOT_DOF];
    JointLimits limits;
    int dof;
    float reach_tol = kReachTol;
    bool nominal = true;  // dh has the model's nominal structure
};

// Fills out with the branches for flange (base to flange) and returns their count.
using Solver = int (*)(const SolveInput& in, const Matrix& flange, IkSolve& out);
// The branch the selection would choose among the solver's for a nominal table, into q_out
// (first dof joints); the result code of the selection.
using NearestSolver = int (*)(const SolveInput& in, const Matrix& flange, float* q_out);

int solve_spherical_wrist(const SolveInput& in, const Matrix& flange, IkSolve& out);         // QM65
int solve_spherical_wrist_offset(const SolveInput& in, const Matrix& flange, IkSolve& out);  // QML63
int solve_parallel_axes(const SolveInput& in, const Matrix& flange, IkSolve& out);
int solve_arm_angle_search(const SolveInput& in, const Matrix& flange, IkSolve& out);
int nearest_spherical_wrist(const SolveInput& in, const Matrix& flange, float* q_out);         // QM65
int nearest_spherical_wrist_offset(const SolveInput& in, const Matrix& flange, float* q_out);  // QML63
int nearest_arm_angle_search(const SolveInput& in, const Matrix& flange, float* q_out);

// Solver, joint count and table shape of a robot type; solver is null for types without one.
// nearest, where a model has it, finds the selection's branch without forming every branch.
struct ModelSolver {
    Solver solver;
    int dof;
    const TableShape* shape;
    NearestSolver nearest = nullptr;
};
ModelSolver model_solver(int robot_type);

// Moves every branch of solve until the link product of in's table reproduces the flange target
// within 1e-6 m and 1e-6 rad, each joint on the turn nearest in's reference within its limits;
// drops the branches that do not get there.
void refine_branches(const SolveInput& in, const TableShape& shape, const Matrix& flange, IkSolve& solve);

// Runs solve(in, flange, out), a closed-form solver, on in's table when it has the model's
// nominal structure, else on the nearest nominal table with every branch then refined on the
// real one. Returns the number of branches.
template <class Solve>
int solve_on_table(const TableShape& shape, const SolveInput& in, const Matrix& flange, IkSolve& out, Solve solve) {
    if (in.nominal) return solve(in, flange, out);
    SolveInput nominal = in;
    nominal.dh = nominal_table(shape, in.dh);
    nominal.reach_tol = kCalibratedReachTol;
    nominal.nominal = true;
    solve(nominal, flange, out);
    refine_branches(in, shape, flange, out);
    return out.num;
}

inline int solve_model(const ModelSolver& model, const SolveInput& in, const Matrix& flange, IkSolve& out) {
    return solve_on_table(*model.shape, in, flange, out, model.solver);
}

// Reads the table in use, the limits and the reference for the model.
SolveInput make_solve_input(const float* q_ref, const ModelSolver& model);

// Starts an empty solution set for in's reference.
void begin_solutions(const SolveInput& in, IkSolve& out);
// Appends a branch of ROBOT_DOF joint values, zero beyond the model's joints.
inline void add_branch(const float* q, IkSolve& out) {
    if (out.num >= 8) return;
    std::memcpy(out.q_solve[out.num++], q, sizeof(float) * ROBOT_DOF);
    out.result = true;
}

// True when joints first to last - 1 lie within their limits (a NaN never does). Every joint is
// compared: which branches are within the limits is random, and a jump per joint mispredicts.
inline bool joints_within_limits(const float* q, int first, int last, const JointLimits& limits) {
    bool inside = true;
    for (int j = first; j < last; ++j) inside &= (q[j] <= limits.max[j]) & (q[j] >= limits.min[j]);
    return inside;
}
inline bool within_limits(const float* q, int dof, const JointLimits& limits) {
    return joints_within_limits(q, 0, dof, limits);
}

// The selection with unit weights over branches offered in any order: the cheapest within the
// limits below the cost ceiling, the lower index on a tie, as a walk in index order finds.
// Costs add joint by joint in the selection's order, so a partial sum never exceeds the whole.
class NearestBranch {
public:
    explicit NearestBranch(const SolveInput& in) : in_(in) {}
    double cost(const float* q, int first, int last, double sum) const {
        for (int j = first; j < last; ++j) {
            const double dq = static_cast<double>(q[j]) - static_cast<double>(in_.q_ref[j]);
            sum += dq * dq;
        }
        return sum;
    }
    // False once a branch costing at least partial cannot win any more.
    bool could_take(double partial) const { return partial <= cost_; }
    void offer(int index, const float* q, double cost) {
        if (cost < cost_ || (cost == cost_ && index < index_)) {
            cost_ = cost;
            index_ = index;
            std::memcpy(q_, q, sizeof q_);
        }
    }
    int result(float* q_out) const {
        if (index_ < 0) return IKINE_LIMITED;
        std::memcpy(q_out, q_, sizeof(float) * static_cast<size_t>(in_.dof));
        return IKINE_SUCCESSFUL;
    }

private:
    const SolveInput& in_;
    double cost_ = 1000000.0;  // the selection's ceiling
    int index_ = -1;
    float q_[ROBOT_DOF] = {};
};

// Selection over the first dof joints; writes the winning cost when cost is not null.
int select_solution(const float* weights, const IkSolve& solve, int dof, const JointLimits& limits,
                    double* cost);
// Result code of a solved set, and the chosen joints (first dof) on success.
int pick_solution(const SolveInput& in, const IkSolve& solve, float* q_out);
// The model's branches for flange and the selection's choice among them: pick_solution's result.
int solve_nearest(const ModelSolver& model, const SolveInput& in, const Matrix& flange, float* q_out);

// Runs the model's solver with the given table; IKINE_SUCCESSFUL when it found a branch.
int solve_with_table(const ModelSolver& model, const DH* dh, const Matrix* flange, const float* q_ref, IkSolve* out);
// Runs the model's solver with the table in use and picks the branch nearest q_ref.
int solve_flange_target(const ModelSolver& model, const Matrix* flange, const float* q_ref, float* q_out);

// Base to flange transform of a tool pose, installation and tool removed.
Matrix flange_target(const Pose& pose, int form);

// atan2 within 4e-7 rad (single-precision rounding near pi) at a fraction of libm's cost;
// the solvers call it a dozen times per target. atan(t) = t * P(t^2) on [0, 1], P a
// Chebyshev fit of error 2e-8.
inline float fast_atan2(float y, float x) {
    // Octant and half-plane are folded in with sign copies rather than branches: the signs
    // are random across calls and mispredicted jumps would cost more than the polynomial.
    const float ax = std::fabs(x);
    const float ay = std::fabs(y);
    const float sum = ax + ay;
    const float gap = std::fabs(ax - ay);
    const float t = (sum - gap) / (sum + gap + 1e-30f);  // min / max, 0 for (0, 0)
    const float s = t * t;
    float p = 0.00276628350176f;
    p = p * s - 0.0157312491222f;
    p = p * s + 0.0421376235892f;
    p = p * s - 0.07456854826f;
    p = p * s + 0.10618370637f;
    p = p * s - 0.141977977941f;
    p = p * s + 0.199918720291f;
    p = p * s - 0.333330367093f;
    p = p * s + 0.999999981789f;
    // pi/2 - r above the diagonal (ties and (0, 0) count as below), then pi - r left of the y axis.
    const float octant = 0.25f * kPi + std::copysign(0.25f * kPi - t * p, ay - ax - 1e-38f);
    const float half = 0.5f * kPi + std::copysign(0.5f * kPi - octant, -x);
    return std::copysign(half, y);
}

// Angles of r = Rz(a)*Ry(b)*Rz(c): (a, b, c) with b in [0, pi] and its twin (a+pi, -b, c+pi).
struct ZyzBranches {
    float angles[2][3];
    float cos_a;  // of the first a; the twin's are negated
    float sin_a;
    float sin_b;  // |sin b|
    bool a_free;  // b is 0 or pi: a took a_ref, only a + c (or a - c) is fixed
};

// c is taken from what remains after a and b, so an inaccurate a near b = 0 or pi is
// compensated; at the singularity a is a_ref.
inline ZyzBranches zyz_angles(const float r[3][3], float a_ref) {
    ZyzBranches z;
    const float sb = std::sqrt(r[0][2] * r[0][2] + r[1][2] * r[1][2]);
    const float b = fast_atan2(sb, r[2][2]);
    float a;
    z.sin_b = sb;
    z.a_free = sb <= kSingularSin;
    if (!z.a_free) {
        a = fast_atan2(r[1][2], r[0][2]);
        z.cos_a = r[0][2] / sb;
        z.sin_a = r[1][2] / sb;
    } else {
        a = a_ref;
        z.cos_a = std::cos(a);
        z.sin_a = std::sin(a);
    }
    // Rz(c) = Ry(-b) * Rz(-a) * r, column 0.
    const float p0 = z.cos_a * r[0][0] + z.sin_a * r[1][0];
    const float p1 = z.cos_a * r[1][0] - z.sin_a * r[0][0];
    const float c = fast_atan2(p1, r[2][2] * p0 - sb * r[2][0]);
    z.angles[0][0] = a;
    z.angles[0][1] = b;
    z.angles[0][2] = c;
    z.angles[1][0] = a + kPi;
    z.angles[1][1] = -b;
    z.angles[1][2] = c + kPi;
    return z;
}

// b and c of r = Rz(a)*Ry(b)*Rz(c) for a given a, the nearest rotation of that form: off by
// about sin(b) * (a - a_r) from r, where a_r is r's own first angle.
struct ZyzRest {
    float b;
    float c;
};
inline ZyzRest zyz_rest(const float r[3][3], float a) {
    const float ca = std::cos(a), sa = std::sin(a);
    const float along = ca * r[0][2] + sa * r[1][2];  // sin b, signed
    const float p0 = ca * r[0][0] + sa * r[1][0];
    const float p1 = ca * r[1][0] - sa * r[0][0];
    return {fast_atan2(along, r[2][2]), fast_atan2(p1, r[2][2] * p0 - along * r[2][0])};
}

// x rounded to the nearest integer (ties to even) for |x| < 2^51, without a libm call:
// adding 1.5 * 2^52 leaves no fraction bits.
inline double round_to_integer(double x) {
    constexpr double kShift = 6755399441055744.0;
    return (x + kShift) - kShift;
}

// Joint j's value for the rotation theta (offset included): the offset removed, on the turn
// nearest the reference within the joint's limits, or wrapped into [-pi, pi] when no turn
// fits (the result of find_nearest_joint). Solvers map a joint once and share it among the
// branches that have it in common.
inline float joint_value(const SolveInput& in, int j, float theta) {
    constexpr double kTurn = 2.0 * ALGO_PI;
    const double raw = static_cast<double>(theta) - in.dh.offset[j];
    const double lo = in.limits.min[j];
    const double hi = in.limits.max[j];
    // The turn nearest the reference; when it is outside the limits the next turn towards
    // them is the nearest inside, if any turn is. Selected arithmetically, as in fast_atan2.
    double q = raw + kTurn * round_to_integer((in.q_ref[j] - raw) * (1.0 / kTurn));
    const int below = q < lo;
    const int above = q > hi;
    q += kTurn * static_cast<double>(below - above);
    const double wrapped = raw - kTurn * round_to_integer(raw * (1.0 / kTurn));
    const int inside = static_cast<int>(q >= lo) & static_cast<int>(q <= hi);
    return static_cast<float>(inside ? q : wrapped);
}

// Cosine of the joint angle between links p and q that puts their far ends len apart,
// (len^2 - p^2 - q^2) / (2 p q): 1 stretched, -1 folded. Clamped to [-1, 1]; false when len
// lies more than tol outside [|p - q|, p + q].
inline bool triangle_cosine(float len, float p, float q, float& c, float tol) {
    c = (len * len - p * p - q * q) / (2.0f * p * q);
    if (c > 1.0f) {
        if (len - (p + q) > tol) return false;
        c = 1.0f;
    } else if (c < -1.0f) {
        if (std::fabs(p - q) - len > tol) return false;
        c = -1.0f;
    }
    return c == c;  // NaN from a zero-length link
}

// Sine of the angle at which a line at distance offset from a point passes at distance len,
// offset / len clamped to [-1, 1]; false when |offset| exceeds len by more than tol.
inline bool offset_sine(float offset, float len, float& s, float tol) {
    if (std::fabs(offset) - len > tol) return false;
    s = len > 0.0f ? std::fmax(-1.0f, std::fmin(1.0f, offset / len)) : (offset < 0.0f ? -1.0f : 1.0f);
    return true;
}

}  // namespace algo::ik

#endif
