// Branches of a table the closed forms do not serve: the closed form's branches for the
// nearest nominal table, each moved by damped Newton steps on the real table's link product
// until it reproduces the target.

#include <cmath>
#include <cstring>

#include "dh_chain.h"
#include "inv_kinematics_internal.h"

namespace algo::ik {
namespace {

constexpr int kMaxSteps = 30;
constexpr double kPositionTol = 1e-6;  // m
constexpr double kRotationTol = 1e-6;  // rad
constexpr double kDamping = 1e-10;     // keeps the step finite at a singular configuration
constexpr double kMaxJointStep = 0.3;  // rad per step, so a step cannot jump to another branch
// A seven-joint branch this near the reference (rad, every joint) also slides along its arm's
// self-motion towards it; farther branches keep their arm angle.
constexpr double kPullWindow = 0.1;
constexpr double kSameBranch = 1e-4;  // rad: two refined branches this close are one

// The target's rotation made orthonormal (columns), and its origin.
Frame3 target_frame(const Matrix& m) {
    Frame3 t;
    double x[3], z[3];
    for (int i = 0; i < 3; ++i) {
        x[i] = m.data[i][0];
        z[i] = m.data[i][2];
        t.p[i] = m.data[i][3];
    }
    const double nz = std::sqrt(z[0] * z[0] + z[1] * z[1] + z[2] * z[2]);
    for (double& v : z) v /= nz;
    const double along = x[0] * z[0] + x[1] * z[1] + x[2] * z[2];
    for (int i = 0; i < 3; ++i) x[i] -= along * z[i];
    const double nx = std::sqrt(x[0] * x[0] + x[1] * x[1] + x[2] * x[2]);
    for (double& v : x) v /= nx;
    const double y[3] = {z[1] * x[2] - z[2] * x[1], z[2] * x[0] - z[0] * x[2], z[0] * x[1] - z[1] * x[0]};
    for (int i = 0; i < 3; ++i) {
        t.r[i][0] = x[i];
        t.r[i][1] = y[i];
        t.r[i][2] = z[i];
    }
    return t;
}

// Position and orientation error of f against t; the orientation as half the sum of the
// column cross products, sin(angle) * axis for a small angle.
void error_of(const Frame3& f, const Frame3& t, double e[6]) {
    for (int i = 0; i < 3; ++i) {
        e[i] = t.p[i] - f.p[i];
        e[3 + i] = 0.0;
    }
    for (int k = 0; k < 3; ++k) {
        const double a[3] = {f.r[0][k], f.r[1][k], f.r[2][k]};
        const double b[3] = {t.r[0][k], t.r[1][k], t.r[2][k]};
        e[3] += 0.5 * (a[1] * b[2] - a[2] * b[1]);
        e[4] += 0.5 * (a[2] * b[0] - a[0] * b[2]);
        e[5] += 0.5 * (a[0] * b[1] - a[1] * b[0]);
    }
}

bool within_tolerance(const double e[6]) {
    return std::hypot(e[0], e[1], e[2]) <= kPositionTol && std::hypot(e[3], e[4], e[5]) <= kRotationTol;
}

// x = (J J^T + damping I)^-1 e by Cholesky; false when the system is not positive definite.
bool solve_normal(const double jac[6][ROBOT_DOF], int dof, const double e[6], double x[6]) {
    double a[6][6];
    for (int i = 0; i < 6; ++i) {
        for (int j = 0; j <= i; ++j) {
            double sum = i == j ? kDamping : 0.0;
            for (int k = 0; k < dof; ++k) sum += jac[i][k] * jac[j][k];
            a[i][j] = sum;
        }
    }
    for (int j = 0; j < 6; ++j) {
        double diag = a[j][j];
        for (int k = 0; k < j; ++k) diag -= a[j][k] * a[j][k];
        if (!(diag > 0.0)) return false;
        a[j][j] = std::sqrt(diag);
        for (int i = j + 1; i < 6; ++i) {
            double sum = a[i][j];
            for (int k = 0; k < j; ++k) sum -= a[i][k] * a[j][k];
            a[i][j] = sum / a[j][j];
        }
    }
    for (int i = 0; i < 6; ++i) {
        double sum = e[i];
        for (int k = 0; k < i; ++k) sum -= a[i][k] * x[k];
        x[i] = sum / a[i][i];
    }
    for (int i = 5; i >= 0; --i) {
        double sum = x[i];
        for (int k = i + 1; k < 6; ++k) sum -= a[k][i] * x[k];
        x[i] = sum / a[i][i];
    }
    return true;
}

// Moves q (the chain's joints, rad) until its flange reproduces the target; true when the
// single-precision result does. Each step is the least-norm correction J^T (J J^T)^-1 e, and for
// a branch near the reference also the part of (ref - q) that leaves the flange in place:
// dq = p + J^T (J J^T)^-1 (e - J p) with p = ref - q (zero for six joints).
bool refine_branch(const DhChain& chain, const Frame3& target, const float* ref, float* q) {
    const int dof = chain.dof();
    double x[ROBOT_DOF] = {}, pull[ROBOT_DOF] = {};
    bool near = dof > 6;
    for (int j = 0; j < dof; ++j) {
        x[j] = q[j];
        near &= std::fabs(double(ref[j]) - q[j]) <= kPullWindow;
    }
    double jac[6][ROBOT_DOF], e[6], y[6];
    for (int step = 0; step < kMaxSteps; ++step) {
        error_of(chain.flange(x, jac), target, e);
        double moved = 0.0;  // how far the pull still goes
        for (int j = 0; j < dof; ++j) {
            pull[j] = near ? double(ref[j]) - x[j] : 0.0;
            moved = std::fmax(moved, std::fabs(pull[j]));
        }
        for (int i = 0; i < 6; ++i) {
            for (int j = 0; j < dof; ++j) e[i] -= jac[i][j] * pull[j];
        }
        if (std::hypot(e[0], e[1], e[2]) < 1e-3 * kPositionTol &&
            std::hypot(e[3], e[4], e[5]) < 1e-3 * kRotationTol && moved < 1e-3 * kRotationTol) {
            break;
        }
        if (!solve_normal(jac, dof, e, y)) return false;
        double dq[ROBOT_DOF], largest = 0.0;
        for (int j = 0; j < dof; ++j) {
            dq[j] = pull[j];
            for (int i = 0; i < 6; ++i) dq[j] += jac[i][j] * y[i];
            largest = std::fmax(largest, std::fabs(dq[j]));
        }
        const double scale = largest > kMaxJointStep ? kMaxJointStep / largest : 1.0;
        for (int j = 0; j < dof; ++j) x[j] += scale * dq[j];
    }
    float rounded[ROBOT_DOF] = {};
    double at[ROBOT_DOF] = {};
    for (int j = 0; j < dof; ++j) {
        rounded[j] = static_cast<float>(x[j]);
        at[j] = rounded[j];
    }
    error_of(chain.flange(at), target, e);
    if (!within_tolerance(e)) return false;
    std::memcpy(q, rounded, sizeof(float) * static_cast<size_t>(dof));
    return true;
}

}  // namespace

void refine_branches(const SolveInput& in, const TableShape& shape, const Matrix& flange, IkSolve& solve) {
    const DhChain chain(in.dh, shape.dof, shape.standard);
    const Frame3 target = target_frame(flange);
    const auto refine = [&](float* q) {
        if (!refine_branch(chain, target, in.q_ref, q)) return false;
        // The turns were chosen before the branch moved, possibly just across a limit.
        for (int j = 0; j < shape.dof; ++j) q[j] = joint_value(in, j, q[j] + in.dh.offset[j]);
        return true;
    };
    int kept = 0;
    for (int i = 0; i < solve.num; ++i) {
        if (!refine(solve.q_solve[i])) continue;
        if (kept != i) std::memcpy(solve.q_solve[kept], solve.q_solve[i], sizeof solve.q_solve[i]);
        ++kept;
    }
    solve.num = kept;
    // Far from the nominal structure a branch of the nominal table may not lead to its real
    // counterpart; the solution reached from the reference itself is then missing. It joins the
    // set, in place of the branch farthest from the reference when the set is full.
    float own[ROBOT_DOF];
    std::memcpy(own, in.q_ref, sizeof own);
    if (refine(own)) {
        int farthest = 0;
        double farthest_distance = -1.0;
        bool known = false;
        for (int i = 0; i < solve.num; ++i) {
            double distance = 0.0, apart = 0.0;
            for (int j = 0; j < shape.dof; ++j) {
                distance += (solve.q_solve[i][j] - in.q_ref[j]) * (solve.q_solve[i][j] - in.q_ref[j]);
                apart = std::fmax(apart, std::fabs(solve.q_solve[i][j] - own[j]));
            }
            known |= apart < kSameBranch;
            if (distance > farthest_distance) {
                farthest_distance = distance;
                farthest = i;
            }
        }
        if (!known) std::memcpy(solve.q_solve[solve.num < 8 ? solve.num++ : farthest], own, sizeof own);
    }
    solve.result = solve.num > 0;
}

}  // namespace algo::ik
