// The public kinematics bridge: qm_algo_* over the local kinematics library.
#include "algo_api.h"
#include "log.h"
#include "qm_handle.h"
#include "qm_interface.h"
#include "qm_invoke_algo.h"
#include "qman_inv_kinematics.h"
#include "qman_safety.h"
#include "qman_trajectory_planning.h"

namespace {

constexpr float kQuatNormMin = 0.99f;  // squared norm of an acceptable target quaternion, exclusive
constexpr float kQuatNormMax = 1.1f;

bool normalised(const qm_quat_t& q) {
    const float n = q.w * q.w + q.x * q.x + q.y * q.y + q.z * q.z;
    return n > kQuatNormMin && n < kQuatNormMax;
}

// A 4x4 rigid transform from a public matrix; a 3x3 rotation gets a zero translation.
Matrix rigid_of(const qm_matrix_t& m) {
    Matrix t = invoke_to_matrix(m);
    if (t.irow < 4 || t.iline < 4) {
        for (int i = 0; i < 3; ++i) t.data[i][3] = 0.0f;
    }
    t.irow = 4;
    t.iline = 4;
    t.data[3][0] = t.data[3][1] = t.data[3][2] = 0.0f;
    t.data[3][3] = 1.0f;
    return t;
}

qm_pose_t pose_of(const Matrix& m) { return invoke_from_pose(transformation_matrix_to_pose(m)); }

Matrix transform_of(const qm_pose_t& p) { return algo_pose_to_matrix(invoke_to_pose(p)); }

}  // namespace

Matrix Forward_Kinematics_e(const float* joint) {
    if (joint == nullptr) return zero_matrix(4, 4);
    return forward_kinematics_e(invoke_rad_of(joint).data());
}

extern "C" {

const char* qm_algo_version(void) { return LIBALGO_VERSION; }

void qm_algo_init_sys_data(qm_robot_arm_model_e Mode, qm_force_type_e Type) { invoke_init_sys_data(Mode, Type); }

void qm_algo_set_angle(float x, float y, float z) { invoke_set_install_angle(x, y, z); }
void qm_algo_get_angle(float* x, float* y, float* z) { invoke_get_install_angle(x, y, z); }

void qm_algo_set_workframe(const qm_frame_t* frame) {
    if (frame != nullptr) invoke_set_work_frame(*frame);
}
void qm_algo_get_curr_workframe(qm_frame_t* frame) {
    if (frame != nullptr) invoke_get_work_frame(frame);
}
void qm_algo_set_toolframe(const qm_frame_t* frame) {
    if (frame != nullptr) invoke_set_tool_frame(*frame);
}
void qm_algo_get_curr_toolframe(qm_frame_t* frame) {
    if (frame != nullptr) invoke_get_tool_frame(frame);
}

void qm_algo_set_joint_max_limit(const float* joint_limit) { invoke_set_joint_limit(JointLimit::Max, joint_limit); }
void qm_algo_get_joint_max_limit(float* joint_limit) { invoke_get_joint_limit(JointLimit::Max, joint_limit); }
void qm_algo_set_joint_min_limit(const float* joint_limit) { invoke_set_joint_limit(JointLimit::Min, joint_limit); }
void qm_algo_get_joint_min_limit(float* joint_limit) { invoke_get_joint_limit(JointLimit::Min, joint_limit); }
void qm_algo_set_joint_max_speed(const float* joint_speed) { invoke_set_joint_limit(JointLimit::Speed, joint_speed); }
void qm_algo_get_joint_max_speed(float* joint_speed) { invoke_get_joint_limit(JointLimit::Speed, joint_speed); }
void qm_algo_set_joint_max_acc(const float* joint_acc) { invoke_set_joint_limit(JointLimit::Acc, joint_acc); }
void qm_algo_get_joint_max_acc(float* joint_acc) { invoke_get_joint_limit(JointLimit::Acc, joint_acc); }

void qm_algo_set_dh(qm_dh_t dh) { invoke_set_dh(dh); }
qm_dh_t qm_algo_get_dh(void) { return invoke_get_dh(); }

void qm_algo_set_redundant_parameter_traversal_mode(bool mode) {
    defaut_traversal_mode = false;
    ikine_set_solution_range_qm75(mode ? Q_STEP_MAX : Q_STEP_MIN);
    ikine_set_7dof_solver_search_strategy(mode ? 0 : 1);
}

void qm_algo_arm_state_set(qm_robot_handle* handle) {
    // Offline use: without a handle the library keeps what the application configured.
    if (handle == nullptr) return;
    // The library holds this connection's configuration already unless the connection or the
    // application changed it since: loading it again would give the same record.
    if (const uint64_t held = invoke_loaded_generation(); held != 0 && qm_config_generation(handle) == held) return;
    TableReadLock lock;
    const qm_handle_t* arm = qm_get_qm_handle_by_robot_handle(handle);
    if (arm == nullptr) {
        qm_log_warn("The robotic arm is not connected!");
        return;
    }
    const uint64_t generation = qm_config_generation(handle);
    invoke_init_sys_data(arm->arm_model, arm->force_type);
    invoke_set_install_angle(arm->install_angle[0], arm->install_angle[1], arm->install_angle[2]);
    invoke_set_tool_frame(arm->tool_frame);
    invoke_set_work_frame(arm->work_frame);
    invoke_set_joint_limit(JointLimit::Max, arm->joint_max_limit);
    invoke_set_joint_limit(JointLimit::Min, arm->joint_min_limit);
    invoke_set_joint_limit(JointLimit::Acc, arm->joint_max_acc);
    invoke_set_joint_limit(JointLimit::Speed, arm->joint_max_speed);
    invoke_set_dh(arm->dh);
    invoke_set_loaded_generation(generation);
}

qm_pose_t qm_algo_forward_kinematics(qm_robot_handle* handle, const float* joint) {
    qm_algo_arm_state_set(handle);
    if (joint == nullptr) return qm_pose_t{};
    return invoke_from_pose(forward_kinematics_degrees(joint));
}

int qm_algo_inverse_kinematics(qm_robot_handle* handle, qm_inverse_kinematics_params_t params, float* q_out) {
    if (params.flag == 0 && !normalised(params.q_pose.quaternion)) return -2;
    qm_algo_arm_state_set(handle);
    // The reference is converted once, for the limit check of qm_algo_judgment_overpos and the solve.
    const JointRadians q_ref = invoke_rad_of(params.q_in);
    if (ikine_check_joint_position_limit(q_ref.data()) != 0) return -1;
    if (defaut_traversal_mode) {
        ikine_set_solution_range_qm75(Q_STEP_MAX);
        ikine_set_7dof_solver_search_strategy(0);
    }
    float unused[ARM_DOF];
    const int rc = invoke_inverse_kinematics(q_ref, params.q_pose, invoke_ik_form(params.flag),
                                             q_out != nullptr ? q_out : unused);
    return rc == IKINE_SUCCESSFUL ? 0 : 1;
}

qm_inverse_kinematics_all_solve_t qm_algo_inverse_kinematics_all(qm_robot_handle* handle,
                                                                 qm_inverse_kinematics_params_t params) {
    qm_algo_arm_state_set(handle);
    const Pose target = invoke_to_pose(params.q_pose);
    IkSolve solve{};
    inverse_kinematics_all(&solve, invoke_rad_of(params.q_in).data(), &target, invoke_ik_form(params.flag));
    return invoke_from_ik_solve(solve);
}

int qm_algo_ikine_select_ik_solve(const float* weight, qm_inverse_kinematics_all_solve_t params) {
    if (weight == nullptr) return -1;
    const IkSolve solve = invoke_to_ik_solve(params);
    return ikine_select_ik_solve(weight, &solve);
}

int qm_algo_ikine_check_joint_position_limit(const float* q_solve) {
    if (q_solve == nullptr) return IKINE_LIMITED;
    return ikine_check_joint_position_limit(invoke_rad_of(q_solve).data());
}

int qm_algo_ikine_check_joint_velocity_limit(float dt, const float* q_ref, const float* q_solve) {
    if (q_ref == nullptr || q_solve == nullptr) return IKINE_OVERSPEED;
    return ikine_check_joint_velocity_limit(invoke_rad_of(q_solve).data(), invoke_rad_of(q_ref).data(), dt);
}

int qm_algo_judgment_overpos(const float* joint) {
    if (joint == nullptr) return -1;
    return ikine_check_joint_position_limit(invoke_rad_of(joint).data()) == 0 ? 0 : -1;
}

qm_quat_t qm_algo_euler2quaternion(qm_euler_t eu) {
    const Quat q = euler_to_quat({eu.rx, eu.ry, eu.rz});
    return {q.w, q.x, q.y, q.z};
}

qm_euler_t qm_algo_quaternion2euler(qm_quat_t qua) {
    const Euler e = quat_to_euler({qua.w, qua.x, qua.y, qua.z});
    return {e.rx, e.ry, e.rz};
}

qm_matrix_t qm_algo_euler2matrix(qm_euler_t eu) { return invoke_from_matrix(euler_to_matrix({eu.rx, eu.ry, eu.rz})); }

qm_matrix_t qm_algo_pos2matrix(qm_pose_t state) { return invoke_from_matrix(transform_of(state)); }

qm_pose_t qm_algo_matrix2pos(qm_matrix_t matrix) { return pose_of(invoke_to_matrix(matrix)); }

qm_pose_t qm_algo_base2workframe(qm_matrix_t matrix, qm_pose_t state) {
    return pose_of(matrix_m(matrix_inv_coordinate_system(rigid_of(matrix)), transform_of(state)));
}

qm_pose_t qm_algo_workframe2base(qm_matrix_t matrix, qm_pose_t state) {
    return pose_of(matrix_m(rigid_of(matrix), transform_of(state)));
}

qm_pose_t qm_algo_end2tool(qm_robot_handle* handle, qm_pose_t eu_end) {
    qm_algo_arm_state_set(handle);
    return pose_of(matrix_m(transform_of(eu_end), libalgo_get_tool_cs_matrix()));
}

qm_pose_t qm_algo_tool2end(qm_robot_handle* handle, qm_pose_t eu_tool) {
    qm_algo_arm_state_set(handle);
    return pose_of(matrix_m(transform_of(eu_tool), matrix_inv_coordinate_system(libalgo_get_tool_cs_matrix())));
}

int qm_algo_universal_singularity_analyse(const float* q, float singular_value_limit) {
    if (q == nullptr) return -1;
    return universal_singularity_analyse(invoke_rad_of(q).data(), singular_value_limit);
}

int qm_algo_kin_robot_singularity_analyse(const float* q, float* distance) {
    if (q == nullptr) return -1;
    return kin_robot_singularity_analyse(invoke_rad_of(q).data(), distance);
}

void qm_algo_kin_set_singularity_thresholds(float limit_qe, float limit_qw, float limit_d) {
    kin_set_singularity_thresholds(limit_qe, limit_qw, limit_d);
}

void qm_algo_kin_get_singularity_thresholds(float* limit_qe, float* limit_qw, float* limit_d) {
    kin_get_singularity_thresholds(limit_qe, limit_qw, limit_d);
}

void qm_algo_kin_singularity_thresholds_init(void) { kin_singularity_thresholds_init(); }

void qm_algo_set_tool_envelope(int toolSphere_i, qm_tool_sphere_t data) {
    const ToolSpherePara sphere = {data.radius, {data.centrePoint[0], data.centrePoint[1], data.centrePoint[2]}};
    libalgo_set_tool_envelope(toolSphere_i, &sphere);
}

qm_tool_sphere_t qm_algo_get_tool_envelope(int toolSphere_i) {
    ToolSpherePara sphere;
    libalgo_get_tool_envelope(toolSphere_i, &sphere);
    return {sphere.radius, {sphere.centrePoint[0], sphere.centrePoint[1], sphere.centrePoint[2]}};
}

int qm_algo_safety_robot_self_collision_detection(const float* joint) {
    if (joint == nullptr) return 1;
    return safety_robot_self_collision_detection(invoke_rad_of(joint).data());
}

float qm_algo_calculate_arm_angle_from_config_qm75(const float* q_ref) {
    if (q_ref == nullptr) return 0.0f;
    return calculate_arm_angle_from_config_qm75(invoke_rad_of(q_ref).data());
}

int qm_algo_inverse_kinematics_qm75_for_arm_angle(const float* q_ref, qm_pose_t target, float arm_angle,
                                                  float* q_solve) {
    if (q_ref == nullptr || q_solve == nullptr) return IKINE_FAILED;
    float solved[ROBOT_DOF] = {};
    const Pose pose = invoke_to_pose(target);
    const int rc = inverse_kinematics_qm75_for_arm_angle(invoke_rad_of(q_ref).data(), &pose, arm_angle, solved);
    if (rc == IKINE_SUCCESSFUL) invoke_joints_to_deg(solved, q_solve);
    return rc;
}

qm_pose_t qm_algo_cartesian_tool(qm_robot_handle* handle, const float* curr_joint, float move_lengthx,
                                 float move_lengthy, float move_lengthz) {
    qm_algo_arm_state_set(handle);
    return invoke_from_pose(algo_cartesian_tool(curr_joint, move_lengthx, move_lengthy, move_lengthz));
}

qm_pose_t qm_algo_rotate_move(qm_robot_handle* handle, const float* curr_joint, int rotate_axis, float rotate_angle,
                              qm_pose_t choose_axis) {
    qm_algo_arm_state_set(handle);
    return invoke_from_pose(algo_rotate_move(curr_joint, rotate_axis, rotate_angle, invoke_to_pose(choose_axis)));
}

qm_pose_t qm_algo_pose_move(qm_robot_handle* handle, qm_pose_t poseCurrent, const float* deltaPosAndRot,
                            int frameMode) {
    qm_algo_arm_state_set(handle);
    return invoke_from_pose(algo_pose_move(invoke_to_pose(poseCurrent), deltaPosAndRot, frameMode));
}

}  // extern "C"
