// Common frame of the inverse kinematics: target transforms, model dispatch, branch
// collection, selection and the limit checks.

#include <cmath>
#include <cstring>

#include "flange_frames.h"
#include "inv_kinematics_internal.h"
#include "libalgo_interface.h"
#include "pose_terms.h"
#include "qman_inv_kinematics.h"
#include "qman_mathfuncs.h"

namespace algo::ik {
namespace {

constexpr double kCostCeiling = 1000000.0;

int model_dof() {
    const int dof = libalgo_get_rbt_dof();
    return dof < 0 ? 0 : (dof > ROBOT_DOF ? ROBOT_DOF : dof);
}

JointLimits current_limits() {
    JointLimits limits;
    libalgo_get_jointlim_min(limits.min);
    libalgo_get_jointlim_max(limits.max);
    return limits;
}

// a^-1 * b for rigid transforms, without forming the inverse.
Matrix inverse_times(const Matrix& a, const Matrix& b) {
    Matrix m{};
    m.irow = m.iline = 4;
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 4; ++j) {
            const float bj0 = b.data[0][j] - (j == 3 ? a.data[0][3] : 0.0f);
            const float bj1 = b.data[1][j] - (j == 3 ? a.data[1][3] : 0.0f);
            const float bj2 = b.data[2][j] - (j == 3 ? a.data[2][3] : 0.0f);
            m.data[i][j] = a.data[0][i] * bj0 + a.data[1][i] * bj1 + a.data[2][i] * bj2;
        }
    }
    m.data[3][3] = 1.0f;
    return m;
}

// a * b^-1 for rigid transforms, without forming the inverse.
Matrix times_inverse(const Matrix& a, const Matrix& b) {
    Matrix m{};
    m.irow = m.iline = 4;
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            m.data[i][j] = a.data[i][0] * b.data[j][0] + a.data[i][1] * b.data[j][1] + a.data[i][2] * b.data[j][2];
        }
        m.data[i][3] = a.data[i][3] - (m.data[i][0] * b.data[0][3] + m.data[i][1] * b.data[1][3] + m.data[i][2] * b.data[2][3]);
    }
    m.data[3][3] = 1.0f;
    return m;
}

// find_nearest_joint: angle + 2*pi*k, k = -2..2 tried in order, inside [lo, hi], nearest
// to ref, ties to the earlier candidate; false when none lies inside.
bool nearest_turn(double ref, double angle, double lo, double hi, double& out) {
    constexpr double kTurn = 2.0 * ALGO_PI;
    double best_dist = kCostCeiling;
    bool found = false;
    for (int k = -2; k <= 2; ++k) {
        const double candidate = angle + k * kTurn;
        const double dist = std::fabs(candidate - ref);
        if (candidate >= lo && candidate <= hi && dist < best_dist) {
            best_dist = dist;
            out = candidate;
            found = true;
        }
    }
    return found;
}

// The selection for a joint count known at compile time, so the joint loops unroll.
template <int Dof>
int select_fixed(const float* weights, const IkSolve& solve, int dof, const JointLimits& limits, double* cost) {
    const int n = Dof > 0 ? Dof : dof;
    const int num = solve.num < 8 ? solve.num : 8;
    double ref[ROBOT_DOF];
    double w[ROBOT_DOF];
    for (int j = 0; j < n; ++j) {
        ref[j] = solve.q_ref[j];
        w[j] = weights[j];
    }
    int best = -1;
    double best_cost = kCostCeiling;
    for (int i = 0; i < num; ++i) {
        const float* q = solve.q_solve[i];
        double c = 0.0;
        for (int j = 0; j < n; ++j) {
            const double dq = static_cast<double>(q[j]) - ref[j];
            c += w[j] * dq * dq;
        }
        if (within_limits(q, n, limits) && c < best_cost) {
            best_cost = c;
            best = i;
        }
    }
    if (cost) *cost = best_cost;
    return best;
}

}  // namespace

ModelSolver model_solver(int robot_type) {
    const TableShape* shape = &table_shape(robot_type);
    switch (robot_type) {
        case QM65:
        case QML63I:
            return {solve_spherical_wrist, 6, shape, nearest_spherical_wrist};
        case QML63II:
        case QML63III:
        case QML63IV:
            return {solve_spherical_wrist_offset, 6, shape, nearest_spherical_wrist_offset};
        case LUX65:
        case LUX62:
        case LUX63:
            return {solve_parallel_axes, 6, shape};
        case QM75:
        case TAV72:
        case TAV72II:
            return {solve_arm_angle_search, 7, shape, nearest_arm_angle_search};
        default:
            return {nullptr, 0, shape};
    }
}

SolveInput make_solve_input(const float* q_ref, const ModelSolver& model) {
    SolveInput in;
    libalgo_get_dh_value(&in.dh);
    in.limits = current_limits();
    in.dof = model.dof;
    // The loaded model's own shape: its setters keep the answer.
    in.nominal = model.shape == &table_shape(libalgo_get_robot_type()) ? table_in_use_nominal()
                                                                        : nominal_structure(*model.shape, in.dh);
    std::memset(in.q_ref, 0, sizeof in.q_ref);
    std::memcpy(in.q_ref, q_ref, sizeof(float) * static_cast<size_t>(in.dof));
    return in;
}

void begin_solutions(const SolveInput& in, IkSolve& out) {
    out.result = false;
    out.num = 0;
    std::memcpy(out.q_ref, in.q_ref, sizeof out.q_ref);
}

int select_solution(const float* weights, const IkSolve& solve, int dof, const JointLimits& limits, double* cost) {
    if (solve.num < 1) return -1;
    switch (dof) {
        case 6:
            return select_fixed<6>(weights, solve, dof, limits, cost);
        case 7:
            return select_fixed<7>(weights, solve, dof, limits, cost);
        default:
            return select_fixed<0>(weights, solve, dof, limits, cost);
    }
}

int pick_solution(const SolveInput& in, const IkSolve& solve, float* q_out) {
    if (solve.num < 1) return IKINE_FAILED;
    static constexpr float kUnitWeights[ROBOT_DOF] = {1, 1, 1, 1, 1, 1, 1, 1};
    const int best = select_solution(kUnitWeights, solve, in.dof, in.limits, nullptr);
    if (best < 0) return IKINE_LIMITED;
    std::memcpy(q_out, solve.q_solve[best], sizeof(float) * static_cast<size_t>(in.dof));
    return IKINE_SUCCESSFUL;
}

int solve_nearest(const ModelSolver& model, const SolveInput& in, const Matrix& flange, float* q_out) {
    if (model.nearest != nullptr && in.nominal) return model.nearest(in, flange, q_out);
    IkSolve solve;
    solve_model(model, in, flange, solve);
    return pick_solution(in, solve, q_out);
}

int solve_flange_target(const ModelSolver& model, const Matrix* flange, const float* q_ref, float* q_out) {
    if (!flange || !q_ref || !q_out) return IKINE_FAILED;
    return solve_nearest(model, make_solve_input(q_ref, model), *flange, q_out);
}

int solve_with_table(const ModelSolver& model, const DH* dh, const Matrix* flange, const float* q_ref, IkSolve* out) {
    if (!dh || !flange || !q_ref || !out) return IKINE_FAILED;
    SolveInput in = make_solve_input(q_ref, model);
    in.dh = *dh;
    in.nominal = nominal_structure(*model.shape, in.dh);
    return solve_model(model, in, *flange, *out) > 0 ? IKINE_SUCCESSFUL : IKINE_FAILED;
}

Matrix flange_target(const Pose& pose, int form) {
    // Built and read in place rather than through the by-value interface calls.
    const Matrix target = form == USE_QUAT ? quat_transform(pose.position, pose.quaternion)
                                           : euler_transform(pose.position, pose.euler);
    // Frames left at the identity are skipped: most applications set neither.
    const FlangeFrames& frames = flange_frames();
    if (frames.install_identity && frames.tool_identity) return target;
    const Matrix installed = frames.install_identity ? target : inverse_times(robot.install_matrix, target);
    return frames.tool_identity ? installed : times_inverse(installed, robot.tool_cs);
}

}  // namespace algo::ik

using namespace algo::ik;

extern "C" {

Matrix calc_Tbase2tool_from_Pose(const Pose* pose, int form) {
    if (form == USE_QUAT) return pose_quat_to_transformation_matrix(pose->position, pose->quaternion);
    return pose_euler_to_transformation_matrix(pose->position, pose->euler);
}

Matrix calc_Tbase2flange_from_Pose(const Pose* pose, int form) { return flange_target(*pose, form); }

int inverse_kinematics_all(IkSolve* solve, const float* q_ref, const Pose* target, int form) {
    if (!solve) return IKINE_FAILED;
    std::memset(solve, 0, sizeof *solve);
    if (!q_ref || !target) return IKINE_FAILED;
    const ModelSolver model = model_solver(libalgo_get_robot_type());
    if (!model.solver) {
        std::memcpy(solve->q_ref, q_ref, sizeof(float) * static_cast<size_t>(model_dof()));
        return IKINE_UNKNOWN_TYPE;
    }
    const Matrix flange = flange_target(*target, form);
    const SolveInput in = make_solve_input(q_ref, model);
    return solve_model(model, in, flange, *solve) > 0 ? IKINE_SUCCESSFUL : IKINE_FAILED;
}

int inverse_kinematics(const float* q_ref, const Pose* target, float* q_out, int form) {
    if (!q_ref || !target || !q_out) return IKINE_FAILED;
    const ModelSolver model = model_solver(libalgo_get_robot_type());
    if (!model.solver) return IKINE_UNKNOWN_TYPE;
    return solve_nearest(model, make_solve_input(q_ref, model), flange_target(*target, form), q_out);
}

int ikine_select_ik_solve(const float* weights, const IkSolve* solve) {
    if (!weights || !solve) return -1;
    return select_solution(weights, *solve, model_dof(), current_limits(), nullptr);
}

int find_nearest_joint(float ref, float* angle, float tol, float min, float max) {
    double shifted = 0.0;
    if (!nearest_turn(ref, *angle, static_cast<double>(min) - tol, static_cast<double>(max) + tol, shifted)) return -1;
    *angle = static_cast<float>(shifted);
    return 0;
}

int ikine_check_joint_position_limit(const float* q) {
    if (!q) return IKINE_LIMITED;
    return within_limits(q, model_dof(), current_limits()) ? 0 : IKINE_LIMITED;
}

int ikine_check_joint_velocity_limit(const float* q_new, const float* q_prev, float dt) {
    if (!q_new || !q_prev) return IKINE_OVERSPEED;
    float vmax[ROBOT_DOF];
    libalgo_get_joint_vel_maxlim(vmax);
    const int dof = model_dof();
    for (int j = 0; j < dof; ++j) {
        if (std::fabs(q_new[j] - q_prev[j]) > dt * vmax[j]) return IKINE_OVERSPEED;
    }
    return 0;
}

int joint_overspeed_judgment(const float* q_new, const float* q_prev, float factor) {
    if (!q_new || !q_prev) return IKINE_OVERSPEED;
    float vmax[ROBOT_DOF];
    libalgo_get_joint_vel_maxlim(vmax);
    const float scale = libalgo_get_control_loop_period() * (factor > 0.0f ? factor : 0.0f);
    const int dof = model_dof();
    for (int j = 0; j < dof; ++j) {
        if (std::fabs(q_new[j] - q_prev[j]) > vmax[j] * scale) return IKINE_OVERSPEED;
    }
    return 0;
}

}  // extern "C"
