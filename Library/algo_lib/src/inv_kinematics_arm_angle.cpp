// Seven-joint shoulder-elbow-wrist arms (QM75 in standard DH, TAV family in modified DH).
// Both tables give the same chain:
//   R = Rz(t1)*Ry(t2)*Rz(t3) * Ry(t4) * Rz(t5)*Ry(t6)*Rz(t7),
//   p = (0, 0, d1) + R_S * (d5*s4, 0, d3 + d5*c4) + d7 * R * z,   R_S = Rz(t1)*Ry(t2)*Rz(t3),
// with d1, d3, d5, d7 = d[0], d[2], d[4], d[6]. The wrist centre fixes joint 4 (two elbow
// signs); the arm angle psi turns the shoulder about the shoulder-wrist line s:
// R_S = Rot(s, psi) * R_S0, where R_S0 is the shoulder with joint 3 at zero. Per psi,
// R_S = As*sin(psi) + Bs*cos(psi) + Cs, so each arm angle costs per elbow sign one 3x3
// blend, the wrist product Ry(-t4)*R_S^T*R and two ZYZ extractions: up to 8 branches.

#include <cmath>
#include <cstring>
#include <initializer_list>

#include "inv_kinematics_arm_angle.h"
#include "inv_kinematics_arm_angle_branches.h"
#include "inv_kinematics_lanes.h"
#include "libalgo_interface.h"
#include "qman_inv_kinematics.h"

namespace algo::ik {
namespace {

int g_search_strategy = 0;
float g_solution_range = Q_STEP_MAX;

}  // namespace

void reference_theta(const SolveInput& in, float* theta) {
    for (int j = 0; j < ROBOT_DOF; ++j) theta[j] = in.q_ref[j] + in.dh.offset[j];
}

AxisBlend upper_arm_axis(const ElbowBranch& b) {
    return {{b.shoulder_sin[0][2], b.shoulder_sin[1][2], b.shoulder_sin[2][2]},
            {b.shoulder_cos[0][2], b.shoulder_cos[1][2], b.shoulder_cos[2][2]},
            {b.shoulder_const[0][2], b.shoulder_const[1][2], b.shoulder_const[2][2]}};
}

AxisBlend wrist_axis(const ElbowBranch& b, const Mat3 r) {
    const auto term = [&](const Mat3 m) {
        float v[3];
        for (int i = 0; i < 3; ++i) v[i] = m[0][i] * r[0][2] + m[1][i] * r[1][2] + m[2][i] * r[2][2];
        return Vec3{b.c4 * v[0] - b.s4 * v[2], v[1], b.s4 * v[0] + b.c4 * v[2]};
    };
    return {term(b.shoulder_sin), term(b.shoulder_cos), term(b.shoulder_const)};
}

int arm_angles_for_azimuth(const AxisBlend& axis, float azimuth, float centre, float window, float out[2]) {
    const float ca = std::cos(azimuth), sa = std::sin(azimuth);
    const auto across = [&](const Vec3& v) { return ca * v.y - sa * v.x; };
    // alpha * sin(psi) + beta * cos(psi) + gamma = 0
    const float alpha = across(axis.vs), beta = across(axis.vc), gamma = across(axis.v0);
    const float r = std::sqrt(alpha * alpha + beta * beta);
    if (r < kAxisEps || std::fabs(gamma) > r) return 0;
    const float phi = fast_atan2(beta, alpha);
    const float base = std::asin(-gamma / r);
    int n = 0;
    for (const float psi : {base - phi, kPi - base - phi}) {
        const float step = remainder_turn(psi - centre);
        if (std::fabs(step) <= window) out[n++] = centre + step;
    }
    return n;
}

}  // namespace algo::ik

using namespace algo::ik;

extern "C" {

int inverse_kinematics_qm_75(const Matrix* flange, const float* q_ref, float* q_out) {
    return solve_flange_target(model_solver(QM75), flange, q_ref, q_out);
}

int inverse_kinematics_tav7(const Matrix* flange, const float* q_ref, float* q_out) {
    return solve_flange_target(model_solver(TAV72), flange, q_ref, q_out);
}

float calculate_arm_angle_from_config_qm75(const float* q) {
    if (!q) return 0.0f;
    DH dh;
    libalgo_get_dh_value(&dh);
    float theta[ROBOT_DOF];
    for (int j = 0; j < ROBOT_DOF; ++j) theta[j] = (j < 7 ? q[j] : 0.0f) + dh.offset[j];
    const float d3 = dh.d[2], d5 = dh.d[4];
    Mat3 shoulder;
    zyz_matrix(theta[0], theta[1], theta[2], shoulder);
    const float vx = d5 * std::sin(theta[3]), vz = d3 + d5 * std::cos(theta[3]);
    const Vec3 sw = {shoulder[0][0] * vx + shoulder[0][2] * vz, shoulder[1][0] * vx + shoulder[1][2] * vz,
                     shoulder[2][0] * vx + shoulder[2][2] * vz};
    const float len = std::sqrt(sw.x * sw.x + sw.y * sw.y + sw.z * sw.z);
    if (len < kAxisEps) return 0.0f;
    Mat3 shoulder0;
    shoulder_zero(sw, vx, vz, shoulder0);
    return arm_angle_between(shoulder, shoulder0, {sw.x / len, sw.y / len, sw.z / len});
}

int inverse_kinematics_qm75_for_arm_angle(const float* q_ref, const Pose* target, float arm_angle, float* q_solve) {
    if (!q_ref || !target || !q_solve) return IKINE_FAILED;
    const ModelSolver model = model_solver(libalgo_get_robot_type());
    if (model.solver != solve_arm_angle_search) return IKINE_UNKNOWN_TYPE;
    const Matrix flange = flange_target(*target, USE_EULER);
    const SolveInput in = make_solve_input(q_ref, model);
    IkSolve solve;
    solve_on_table(*model.shape, in, flange, solve, [arm_angle](const SolveInput& on, const Matrix& f, IkSolve& out) {
        begin_solutions(on, out);
        const ArmAngleTarget t = arm_angle_target(on.dh, f, on.reach_tol);
        if (!t.reachable) return 0;
        float theta_ref[ROBOT_DOF];
        reference_theta(on, theta_ref);
        branches_at(on, t, theta_ref, arm_angle, out);
        return out.num;
    });
    return pick_solution(in, solve, q_solve);
}

void ikine_set_7dof_solver_search_strategy(int strategy) {
    if (strategy == 0 || strategy == 1) g_search_strategy = strategy;
}

int ikine_get_7dof_solver_search_strategy(void) { return g_search_strategy; }

void ikine_set_solution_range_qm75(float range) {
    if (std::isnan(range)) return;
    g_solution_range = range < Q_STEP_MIN ? Q_STEP_MIN : (range > Q_STEP_MAX ? Q_STEP_MAX : range);
}

float ikine_get_solution_range_qm75(void) { return g_solution_range; }

}  // extern "C"
