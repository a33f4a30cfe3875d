// The QM_Service facade: each method forwards to the flat function of the same name. Six methods
// are declared in qm_service.h and deliberately left without a body, as the facade shipped.
#include "qm_service.h"

// ---- library and connection ----

int QM_Service::qm_init(qm_thread_mode_e mode) {
    return ::qm_init(mode);
}
const char* QM_Service::qm_api_version() {
    return ::qm_api_version();
}
qm_robot_handle* QM_Service::qm_create_robot_arm(const char* ip, int port) {
    return ::qm_create_robot_arm(ip, port);
}
int QM_Service::qm_delete_robot_arm(qm_robot_handle* handle) {
    return ::qm_delete_robot_arm(handle);
}
int QM_Service::qm_destory() {
    return ::qm_destory();
}
void QM_Service::qm_set_timeout(int timeout) {
    return ::qm_set_timeout(timeout);
}
int QM_Service::qm_get_robot_info(qm_robot_handle* handle, qm_robot_info_t* robot_info) {
    return ::qm_get_robot_info(handle, robot_info);
}
int QM_Service::qm_set_robot_dof(qm_robot_handle* handle, int dof) {
    return ::qm_set_robot_dof(handle, dof);
}

// ---- logging ----

void QM_Service::qm_set_log_call_back(LogCallback callback, int level) {
    return ::qm_set_log_call_back(callback, level);
}
void QM_Service::qm_set_log_save(const char* path) {
    return ::qm_set_log_save(path);
}

// ---- command exchange and events ----

int QM_Service::qm_get_arm_current_trajectory(qm_robot_handle* handle, qm_arm_current_trajectory_e* type,
                                              float* data) {
    return ::qm_get_arm_current_trajectory(handle, type, data);
}
void QM_Service::qm_get_arm_event_call_back(qm_event_callback_ptr event_callback) {
    return ::qm_get_arm_event_call_back(event_callback);
}

// ---- realtime state push ----

void QM_Service::qm_realtime_arm_state_call_back(qm_realtime_arm_state_callback_ptr realtime_callback) {
    return ::qm_realtime_arm_state_call_back(realtime_callback);
}
int QM_Service::qm_set_realtime_push(qm_robot_handle* handle, qm_realtime_push_config_t config) {
    return ::qm_set_realtime_push(handle, config);
}
int QM_Service::qm_get_realtime_push(qm_robot_handle* handle, qm_realtime_push_config_t* config) {
    return ::qm_get_realtime_push(handle, config);
}

// ---- kinematics bridge ----

const char* QM_Service::qm_algo_version() {
    return ::qm_algo_version();
}
void QM_Service::qm_algo_init_sys_data(qm_robot_arm_model_e Mode, qm_force_type_e Type) {
    return ::qm_algo_init_sys_data(Mode, Type);
}
void QM_Service::qm_algo_set_angle(float x, float y, float z) {
    return ::qm_algo_set_angle(x, y, z);
}
void QM_Service::qm_algo_get_angle(float* x, float* y, float* z) {
    return ::qm_algo_get_angle(x, y, z);
}
void QM_Service::qm_algo_set_workframe(const qm_frame_t* frame) {
    return ::qm_algo_set_workframe(frame);
}
void QM_Service::qm_algo_get_curr_workframe(qm_frame_t* frame) {
    return ::qm_algo_get_curr_workframe(frame);
}
void QM_Service::qm_algo_set_toolframe(const qm_frame_t* frame) {
    return ::qm_algo_set_toolframe(frame);
}
void QM_Service::qm_algo_get_curr_toolframe(qm_frame_t* frame) {
    return ::qm_algo_get_curr_toolframe(frame);
}
void QM_Service::qm_algo_set_joint_max_limit(const float* joint_limit) {
    return ::qm_algo_set_joint_max_limit(joint_limit);
}
void QM_Service::qm_algo_get_joint_max_limit(float* joint_limit) {
    return ::qm_algo_get_joint_max_limit(joint_limit);
}
void QM_Service::qm_algo_set_joint_min_limit(const float* joint_limit) {
    return ::qm_algo_set_joint_min_limit(joint_limit);
}
void QM_Service::qm_algo_get_joint_min_limit(float* joint_limit) {
    return ::qm_algo_get_joint_min_limit(joint_limit);
}
void QM_Service::qm_algo_set_joint_max_speed(const float* joint_speed) {
    return ::qm_algo_set_joint_max_speed(joint_speed);
}
void QM_Service::qm_algo_get_joint_max_speed(float* joint_speed) {
    return ::qm_algo_get_joint_max_speed(joint_speed);
}
void QM_Service::qm_algo_set_joint_max_acc(const float* joint_acc) {
    return ::qm_algo_set_joint_max_acc(joint_acc);
}
void QM_Service::qm_algo_get_joint_max_acc(float* joint_acc) {
    return ::qm_algo_get_joint_max_acc(joint_acc);
}
void QM_Service::qm_algo_set_dh(qm_dh_t dh) {
    return ::qm_algo_set_dh(dh);
}
qm_dh_t QM_Service::qm_algo_get_dh() {
    return ::qm_algo_get_dh();
}
void QM_Service::qm_algo_set_redundant_parameter_traversal_mode(bool mode) {
    return ::qm_algo_set_redundant_parameter_traversal_mode(mode);
}
void QM_Service::qm_algo_arm_state_set(qm_robot_handle* handle) {
    return ::qm_algo_arm_state_set(handle);
}
qm_pose_t QM_Service::qm_algo_forward_kinematics(qm_robot_handle* handle, const float* joint) {
    return ::qm_algo_forward_kinematics(handle, joint);
}
int QM_Service::qm_algo_inverse_kinematics(qm_robot_handle* handle, qm_inverse_kinematics_params_t params,
                                           float* q_out) {
    return ::qm_algo_inverse_kinematics(handle, params, q_out);
}
qm_inverse_kinematics_all_solve_t QM_Service::qm_algo_inverse_kinematics_all(
    qm_robot_handle* handle, qm_inverse_kinematics_params_t params) {
    return ::qm_algo_inverse_kinematics_all(handle, params);
}
int QM_Service::qm_algo_ikine_select_ik_solve(const float* weight, qm_inverse_kinematics_all_solve_t params) {
    return ::qm_algo_ikine_select_ik_solve(weight, params);
}
int QM_Service::qm_algo_ikine_check_joint_position_limit(const float* q_solve) {
    return ::qm_algo_ikine_check_joint_position_limit(q_solve);
}
int QM_Service::qm_algo_ikine_check_joint_velocity_limit(float dt, const float* q_ref, const float* q_solve) {
    return ::qm_algo_ikine_check_joint_velocity_limit(dt, q_ref, q_solve);
}
int QM_Service::qm_algo_judgment_overpos(const float* joint) {
    return ::qm_algo_judgment_overpos(joint);
}
qm_quat_t QM_Service::qm_algo_euler2quaternion(qm_euler_t eu) {
    return ::qm_algo_euler2quaternion(eu);
}
qm_euler_t QM_Service::qm_algo_quaternion2euler(qm_quat_t qua) {
    return ::qm_algo_quaternion2euler(qua);
}
qm_matrix_t QM_Service::qm_algo_euler2matrix(qm_euler_t eu) {
    return ::qm_algo_euler2matrix(eu);
}
qm_matrix_t QM_Service::qm_algo_pos2matrix(qm_pose_t state) {
    return ::qm_algo_pos2matrix(state);
}
qm_pose_t QM_Service::qm_algo_matrix2pos(qm_matrix_t matrix) {
    return ::qm_algo_matrix2pos(matrix);
}
qm_pose_t QM_Service::qm_algo_base2workframe(qm_matrix_t matrix, qm_pose_t state) {
    return ::qm_algo_base2workframe(matrix, state);
}
qm_pose_t QM_Service::qm_algo_workframe2base(qm_matrix_t matrix, qm_pose_t state) {
    return ::qm_algo_workframe2base(matrix, state);
}
qm_pose_t QM_Service::qm_algo_end2tool(qm_robot_handle* handle, qm_pose_t eu_end) {
    return ::qm_algo_end2tool(handle, eu_end);
}
qm_pose_t QM_Service::qm_algo_tool2end(qm_robot_handle* handle, qm_pose_t eu_tool) {
    return ::qm_algo_tool2end(handle, eu_tool);
}
int QM_Service::qm_algo_universal_singularity_analyse(const float* q, float singular_value_limit) {
    return ::qm_algo_universal_singularity_analyse(q, singular_value_limit);
}
int QM_Service::qm_algo_kin_robot_singularity_analyse(const float* q, float* distance) {
    return ::qm_algo_kin_robot_singularity_analyse(q, distance);
}
void QM_Service::qm_algo_kin_set_singularity_thresholds(float limit_qe, float limit_qw, float limit_d) {
    return ::qm_algo_kin_set_singularity_thresholds(limit_qe, limit_qw, limit_d);
}
void QM_Service::qm_algo_kin_get_singularity_thresholds(float* limit_qe, float* limit_qw, float* limit_d) {
    return ::qm_algo_kin_get_singularity_thresholds(limit_qe, limit_qw, limit_d);
}
void QM_Service::qm_algo_kin_singularity_thresholds_init() {
    return ::qm_algo_kin_singularity_thresholds_init();
}
void QM_Service::qm_algo_set_tool_envelope(int toolSphere_i, qm_tool_sphere_t data) {
    return ::qm_algo_set_tool_envelope(toolSphere_i, data);
}
qm_tool_sphere_t QM_Service::qm_algo_get_tool_envelope(int toolSphere_i) {
    return ::qm_algo_get_tool_envelope(toolSphere_i);
}
int QM_Service::qm_algo_safety_robot_self_collision_detection(const float* joint) {
    return ::qm_algo_safety_robot_self_collision_detection(joint);
}
float QM_Service::qm_algo_calculate_arm_angle_from_config_qm75(const float* q_ref) {
    return ::qm_algo_calculate_arm_angle_from_config_qm75(q_ref);
}
int QM_Service::qm_algo_inverse_kinematics_qm75_for_arm_angle(const float* q_ref, qm_pose_t target,
                                                              float arm_angle, float* q_solve) {
    return ::qm_algo_inverse_kinematics_qm75_for_arm_angle(q_ref, target, arm_angle, q_solve);
}
qm_pose_t QM_Service::qm_algo_cartesian_tool(qm_robot_handle* handle, const float* curr_joint,
                                             float move_lengthx, float move_lengthy, float move_lengthz) {
    return ::qm_algo_cartesian_tool(handle, curr_joint, move_lengthx, move_lengthy, move_lengthz);
}
qm_pose_t QM_Service::qm_algo_rotate_move(qm_robot_handle* handle, const float* curr_joint, int rotate_axis,
                                          float rotate_angle, qm_pose_t choose_axis) {
    return ::qm_algo_rotate_move(handle, curr_joint, rotate_axis, rotate_angle, choose_axis);
}
qm_pose_t QM_Service::qm_algo_pose_move(qm_robot_handle* handle, qm_pose_t poseCurrent,
                                        const float* deltaPosAndRot, int frameMode) {
    return ::qm_algo_pose_move(handle, poseCurrent, deltaPosAndRot, frameMode);
}

// ---- arm state and information ----

int QM_Service::qm_get_arm_software_info(qm_robot_handle* handle, qm_arm_software_version_t* software_info) {
    return ::qm_get_arm_software_info(handle, software_info);
}
int QM_Service::qm_get_current_arm_state(qm_robot_handle* handle, qm_current_arm_state_t* state) {
    return ::qm_get_current_arm_state(handle, state);
}
int QM_Service::qm_get_current_joint_temperature(qm_robot_handle* handle, float* temperature) {
    return ::qm_get_current_joint_temperature(handle, temperature);
}
int QM_Service::qm_get_current_joint_current(qm_robot_handle* handle, float* current) {
    return ::qm_get_current_joint_current(handle, current);
}
int QM_Service::qm_get_current_joint_voltage(qm_robot_handle* handle, float* voltage) {
    return ::qm_get_current_joint_voltage(handle, voltage);
}
int QM_Service::qm_get_joint_degree(qm_robot_handle* handle, float* joint) {
    return ::qm_get_joint_degree(handle, joint);
}
int QM_Service::qm_get_arm_all_state(qm_robot_handle* handle, qm_arm_all_state_t* state) {
    return ::qm_get_arm_all_state(handle, state);
}
int QM_Service::qm_set_init_pose(qm_robot_handle* handle, const float* joint) {
    return ::qm_set_init_pose(handle, joint);
}
int QM_Service::qm_get_init_pose(qm_robot_handle* handle, float* joint) {
    return ::qm_get_init_pose(handle, joint);
}

// ---- motion ----

int QM_Service::qm_movej(qm_robot_handle* handle, const float* joint, int v, int r, int trajectory_connect,
                         int block) {
    return ::qm_movej(handle, joint, v, r, trajectory_connect, block);
}
int QM_Service::qm_movej_nblock(qm_robot_handle* handle, const float* joint, int v, int r,
                                int trajectory_connect) {
    return ::qm_movej_nblock(handle, joint, v, r, trajectory_connect);
}
int QM_Service::qm_movej_block(qm_robot_handle* handle, const float* joint, int v, int r,
                               int trajectory_connect, int block) {
    return ::qm_movej_block(handle, joint, v, r, trajectory_connect, block);
}
int QM_Service::qm_movel(qm_robot_handle* handle, qm_pose_t pose, int v, int r, int trajectory_connect,
                         int block) {
    return ::qm_movel(handle, pose, v, r, trajectory_connect, block);
}
int QM_Service::qm_movel_nblock(qm_robot_handle* handle, qm_pose_t pose, int v, int r,
                                int trajectory_connect) {
    return ::qm_movel_nblock(handle, pose, v, r, trajectory_connect);
}
int QM_Service::qm_movel_block(qm_robot_handle* handle, qm_pose_t pose, int v, int r, int trajectory_connect,
                               int block) {
    return ::qm_movel_block(handle, pose, v, r, trajectory_connect, block);
}
int QM_Service::qm_movel_offset(qm_robot_handle* handle, qm_pose_t offset, int v, int r,
                                int trajectory_connect, int frame_type, int block) {
    return ::qm_movel_offset(handle, offset, v, r, trajectory_connect, frame_type, block);
}
int QM_Service::qm_movel_offset_nblock(qm_robot_handle* handle, qm_pose_t offset, int v, int r,
                                       int trajectory_connect, int frame_type) {
    return ::qm_movel_offset_nblock(handle, offset, v, r, trajectory_connect, frame_type);
}
int QM_Service::qm_movel_offset_block(qm_robot_handle* handle, qm_pose_t offset, int v, int r,
                                      int trajectory_connect, int frame_type, int block) {
    return ::qm_movel_offset_block(handle, offset, v, r, trajectory_connect, frame_type, block);
}
int QM_Service::qm_moves(qm_robot_handle* handle, qm_pose_t pose, int v, int r, int trajectory_connect,
                         int block) {
    return ::qm_moves(handle, pose, v, r, trajectory_connect, block);
}
int QM_Service::qm_moves_nblock(qm_robot_handle* handle, qm_pose_t pose, int v, int r,
                                int trajectory_connect) {
    return ::qm_moves_nblock(handle, pose, v, r, trajectory_connect);
}
int QM_Service::qm_moves_block(qm_robot_handle* handle, qm_pose_t pose, int v, int r, int trajectory_connect,
                               int block) {
    return ::qm_moves_block(handle, pose, v, r, trajectory_connect, block);
}
int QM_Service::qm_movec(qm_robot_handle* handle, qm_pose_t pose_via, qm_pose_t pose_to, int v, int r,
                         int loop, int trajectory_connect, int block) {
    return ::qm_movec(handle, pose_via, pose_to, v, r, loop, trajectory_connect, block);
}
int QM_Service::qm_movec_nblock(qm_robot_handle* handle, qm_pose_t pose_via, qm_pose_t pose_to, int v, int r,
                                int loop, int trajectory_connect) {
    return ::qm_movec_nblock(handle, pose_via, pose_to, v, r, loop, trajectory_connect);
}
int QM_Service::qm_movec_block(qm_robot_handle* handle, qm_pose_t pose_via, qm_pose_t pose_to, int v, int r,
                               int loop, int trajectory_connect, int block) {
    return ::qm_movec_block(handle, pose_via, pose_to, v, r, loop, trajectory_connect, block);
}
int QM_Service::qm_movej_p(qm_robot_handle* handle, qm_pose_t pose, int v, int r, int trajectory_connect,
                           int block) {
    return ::qm_movej_p(handle, pose, v, r, trajectory_connect, block);
}
int QM_Service::qm_movej_p_nblock(qm_robot_handle* handle, qm_pose_t pose, int v, int r,
                                  int trajectory_connect) {
    return ::qm_movej_p_nblock(handle, pose, v, r, trajectory_connect);
}
int QM_Service::qm_movej_p_block(qm_robot_handle* handle, qm_pose_t pose, int v, int r,
                                 int trajectory_connect, int block) {
    return ::qm_movej_p_block(handle, pose, v, r, trajectory_connect, block);
}
int QM_Service::qm_movej_canfd(qm_robot_handle* handle, qm_movej_canfd_mode_t config) {
    return ::qm_movej_canfd(handle, config);
}
int QM_Service::qm_movep_canfd(qm_robot_handle* handle, qm_movep_canfd_mode_t config) {
    return ::qm_movep_canfd(handle, config);
}
int QM_Service::qm_movej_follow(qm_robot_handle* handle, float* joint) {
    return ::qm_movej_follow(handle, joint);
}
int QM_Service::qm_movep_follow(qm_robot_handle* handle, qm_pose_t pose) {
    return ::qm_movep_follow(handle, pose);
}

// ---- jog, teach and stop ----

int QM_Service::qm_set_joint_step(qm_robot_handle* handle, int joint_num, float step, int v, int block) {
    return ::qm_set_joint_step(handle, joint_num, step, v, block);
}
int QM_Service::qm_set_joint_step_nblock(qm_robot_handle* handle, int joint_num, float step, int v) {
    return ::qm_set_joint_step_nblock(handle, joint_num, step, v);
}
int QM_Service::qm_set_joint_step_block(qm_robot_handle* handle, int joint_num, float step, int v,
                                        int block) {
    return ::qm_set_joint_step_block(handle, joint_num, step, v, block);
}
int QM_Service::qm_set_pos_step(qm_robot_handle* handle, qm_pos_teach_type_e type, float step, int v,
                                int block) {
    return ::qm_set_pos_step(handle, type, step, v, block);
}
int QM_Service::qm_set_pos_step_nblock(qm_robot_handle* handle, qm_pos_teach_type_e type, float step, int v) {
    return ::qm_set_pos_step_nblock(handle, type, step, v);
}
int QM_Service::qm_set_pos_step_block(qm_robot_handle* handle, qm_pos_teach_type_e type, float step, int v,
                                      int block) {
    return ::qm_set_pos_step_block(handle, type, step, v, block);
}
int QM_Service::qm_set_ort_step(qm_robot_handle* handle, qm_ort_teach_type_e type, float step, int v,
                                int block) {
    return ::qm_set_ort_step(handle, type, step, v, block);
}
int QM_Service::qm_set_ort_step_nblock(qm_robot_handle* handle, qm_ort_teach_type_e type, float step, int v) {
    return ::qm_set_ort_step_nblock(handle, type, step, v);
}
int QM_Service::qm_set_ort_step_block(qm_robot_handle* handle, qm_ort_teach_type_e type, float step, int v,
                                      int block) {
    return ::qm_set_ort_step_block(handle, type, step, v, block);
}
int QM_Service::qm_set_joint_teach(qm_robot_handle* handle, int joint_num, int direction, int v) {
    return ::qm_set_joint_teach(handle, joint_num, direction, v);
}
int QM_Service::qm_set_pos_teach(qm_robot_handle* handle, qm_pos_teach_type_e type, int direction, int v) {
    return ::qm_set_pos_teach(handle, type, direction, v);
}
int QM_Service::qm_set_ort_teach(qm_robot_handle* handle, qm_ort_teach_type_e type, int direction, int v) {
    return ::qm_set_ort_teach(handle, type, direction, v);
}
int QM_Service::qm_set_stop_teach(qm_robot_handle* handle) {
    return ::qm_set_stop_teach(handle);
}
int QM_Service::qm_set_teach_frame(qm_robot_handle* handle, int frame_type) {
    return ::qm_set_teach_frame(handle, frame_type);
}
int QM_Service::qm_get_teach_frame(qm_robot_handle* handle, int* frame_type) {
    return ::qm_get_teach_frame(handle, frame_type);
}
int QM_Service::qm_set_arm_slow_stop(qm_robot_handle* handle) {
    return ::qm_set_arm_slow_stop(handle);
}
int QM_Service::qm_set_arm_stop(qm_robot_handle* handle) {
    return ::qm_set_arm_stop(handle);
}
int QM_Service::qm_set_arm_pause(qm_robot_handle* handle) {
    return ::qm_set_arm_pause(handle);
}
int QM_Service::qm_set_arm_continue(qm_robot_handle* handle) {
    return ::qm_set_arm_continue(handle);
}
int QM_Service::qm_set_delete_current_trajectory(qm_robot_handle* handle) {
    return ::qm_set_delete_current_trajectory(handle);
}
int QM_Service::qm_set_arm_delete_trajectory(qm_robot_handle* handle) {
    return ::qm_set_arm_delete_trajectory(handle);
}

// ---- joint and arm limits ----

int QM_Service::qm_set_joint_max_speed(qm_robot_handle* handle, int joint_num, float speed) {
    return ::qm_set_joint_max_speed(handle, joint_num, speed);
}
int QM_Service::qm_set_joint_max_acc(qm_robot_handle* handle, int joint_num, float acc) {
    return ::qm_set_joint_max_acc(handle, joint_num, acc);
}
int QM_Service::qm_set_joint_min_pos(qm_robot_handle* handle, int joint_num, float pos) {
    return ::qm_set_joint_min_pos(handle, joint_num, pos);
}
int QM_Service::qm_set_joint_max_pos(qm_robot_handle* handle, int joint_num, float pos) {
    return ::qm_set_joint_max_pos(handle, joint_num, pos);
}
int QM_Service::qm_set_joint_drive_max_speed(qm_robot_handle* handle, int joint_num, float speed) {
    return ::qm_set_joint_drive_max_speed(handle, joint_num, speed);
}
int QM_Service::qm_set_joint_drive_max_acc(qm_robot_handle* handle, int joint_num, float acc) {
    return ::qm_set_joint_drive_max_acc(handle, joint_num, acc);
}
int QM_Service::qm_set_joint_drive_min_pos(qm_robot_handle* handle, int joint_num, float pos) {
    return ::qm_set_joint_drive_min_pos(handle, joint_num, pos);
}
int QM_Service::qm_set_joint_drive_max_pos(qm_robot_handle* handle, int joint_num, float pos) {
    return ::qm_set_joint_drive_max_pos(handle, joint_num, pos);
}
int QM_Service::qm_set_joint_en_state(qm_robot_handle* handle, int joint_num, int en_state) {
    return ::qm_set_joint_en_state(handle, joint_num, en_state);
}
int QM_Service::qm_set_joint_zero_pos(qm_robot_handle* handle, int joint_num) {
    return ::qm_set_joint_zero_pos(handle, joint_num);
}
int QM_Service::qm_set_joint_clear_err(qm_robot_handle* handle, int joint_num) {
    return ::qm_set_joint_clear_err(handle, joint_num);
}
int QM_Service::qm_auto_set_joint_limit(qm_robot_handle* handle, int limit_mode) {
    return ::qm_auto_set_joint_limit(handle, limit_mode);
}
int QM_Service::qm_set_arm_max_line_speed(qm_robot_handle* handle, float speed) {
    return ::qm_set_arm_max_line_speed(handle, speed);
}
int QM_Service::qm_set_arm_max_line_acc(qm_robot_handle* handle, float acc) {
    return ::qm_set_arm_max_line_acc(handle, acc);
}
int QM_Service::qm_set_arm_max_angular_speed(qm_robot_handle* handle, float speed) {
    return ::qm_set_arm_max_angular_speed(handle, speed);
}
int QM_Service::qm_set_arm_max_angular_acc(qm_robot_handle* handle, float acc) {
    return ::qm_set_arm_max_angular_acc(handle, acc);
}
int QM_Service::qm_set_arm_tcp_init(qm_robot_handle* handle) {
    return ::qm_set_arm_tcp_init(handle);
}
int QM_Service::qm_set_collision_state(qm_robot_handle* handle, int collision_stage) {
    return ::qm_set_collision_state(handle, collision_stage);
}
int QM_Service::qm_get_joint_max_speed(qm_robot_handle* handle, float* speed) {
    return ::qm_get_joint_max_speed(handle, speed);
}
int QM_Service::qm_get_joint_max_acc(qm_robot_handle* handle, float* acc) {
    return ::qm_get_joint_max_acc(handle, acc);
}
int QM_Service::qm_get_joint_min_pos(qm_robot_handle* handle, float* min_pos) {
    return ::qm_get_joint_min_pos(handle, min_pos);
}
int QM_Service::qm_get_joint_max_pos(qm_robot_handle* handle, float* max_pos) {
    return ::qm_get_joint_max_pos(handle, max_pos);
}
int QM_Service::qm_get_joint_drive_max_speed(qm_robot_handle* handle, float* speed) {
    return ::qm_get_joint_drive_max_speed(handle, speed);
}
int QM_Service::qm_get_joint_drive_max_acc(qm_robot_handle* handle, float* acc) {
    return ::qm_get_joint_drive_max_acc(handle, acc);
}
int QM_Service::qm_get_joint_drive_min_pos(qm_robot_handle* handle, float* min_pos) {
    return ::qm_get_joint_drive_min_pos(handle, min_pos);
}
int QM_Service::qm_get_joint_drive_max_pos(qm_robot_handle* handle, float* max_pos) {
    return ::qm_get_joint_drive_max_pos(handle, max_pos);
}
int QM_Service::qm_get_joint_en_state(qm_robot_handle* handle, uint8_t* en_state) {
    return ::qm_get_joint_en_state(handle, en_state);
}
int QM_Service::qm_get_joint_err_flag(qm_robot_handle* handle, uint16_t* err_flag, uint16_t* brake_state) {
    return ::qm_get_joint_err_flag(handle, err_flag, brake_state);
}
int QM_Service::qm_get_arm_max_line_speed(qm_robot_handle* handle, float* speed) {
    return ::qm_get_arm_max_line_speed(handle, speed);
}
int QM_Service::qm_get_arm_max_line_acc(qm_robot_handle* handle, float* acc) {
    return ::qm_get_arm_max_line_acc(handle, acc);
}
int QM_Service::qm_get_arm_max_angular_speed(qm_robot_handle* handle, float* speed) {
    return ::qm_get_arm_max_angular_speed(handle, speed);
}
int QM_Service::qm_get_arm_max_angular_acc(qm_robot_handle* handle, float* acc) {
    return ::qm_get_arm_max_angular_acc(handle, acc);
}
int QM_Service::qm_get_collision_stage(qm_robot_handle* handle, int* collision_stage) {
    return ::qm_get_collision_stage(handle, collision_stage);
}

// ---- tool and work frames ----

int QM_Service::qm_set_auto_tool_frame(qm_robot_handle* handle, int point_num) {
    return ::qm_set_auto_tool_frame(handle, point_num);
}
int QM_Service::qm_generate_auto_tool_frame(qm_robot_handle* handle, const char* name, float payload, float x,
                                            float y, float z) {
    return ::qm_generate_auto_tool_frame(handle, name, payload, x, y, z);
}
int QM_Service::qm_set_manual_tool_frame(qm_robot_handle* handle, qm_frame_t frame) {
    return ::qm_set_manual_tool_frame(handle, frame);
}
int QM_Service::qm_change_tool_frame(qm_robot_handle* handle, const char* tool_name) {
    return ::qm_change_tool_frame(handle, tool_name);
}
int QM_Service::qm_delete_tool_frame(qm_robot_handle* handle, const char* tool_name) {
    return ::qm_delete_tool_frame(handle, tool_name);
}
int QM_Service::qm_update_tool_frame(qm_robot_handle* handle, qm_frame_t frame) {
    return ::qm_update_tool_frame(handle, frame);
}
int QM_Service::qm_get_current_tool_frame(qm_robot_handle* handle, qm_frame_t* tool_frame) {
    return ::qm_get_current_tool_frame(handle, tool_frame);
}
int QM_Service::qm_get_total_tool_frame(qm_robot_handle* handle, qm_frame_name_t* frame_names, int* len) {
    return ::qm_get_total_tool_frame(handle, frame_names, len);
}
int QM_Service::qm_get_given_tool_frame(qm_robot_handle* handle, const char* name, qm_frame_t* frame) {
    return ::qm_get_given_tool_frame(handle, name, frame);
}
int QM_Service::qm_set_auto_work_frame(qm_robot_handle* handle, const char* workname, int point_num) {
    return ::qm_set_auto_work_frame(handle, workname, point_num);
}
int QM_Service::qm_set_manual_work_frame(qm_robot_handle* handle, const char* work_name, qm_pose_t pose) {
    return ::qm_set_manual_work_frame(handle, work_name, pose);
}
int QM_Service::qm_change_work_frame(qm_robot_handle* handle, const char* frame_name) {
    return ::qm_change_work_frame(handle, frame_name);
}
int QM_Service::qm_delete_work_frame(qm_robot_handle* handle, const char* frame_name) {
    return ::qm_delete_work_frame(handle, frame_name);
}
int QM_Service::qm_update_work_frame(qm_robot_handle* handle, const char* work_name, qm_pose_t pose) {
    return ::qm_update_work_frame(handle, work_name, pose);
}
int QM_Service::qm_get_current_work_frame(qm_robot_handle* handle, qm_frame_t* work_frame) {
    return ::qm_get_current_work_frame(handle, work_frame);
}
int QM_Service::qm_get_total_work_frame(qm_robot_handle* handle, qm_frame_name_t* frame_names, int* len) {
    return ::qm_get_total_work_frame(handle, frame_names, len);
}
int QM_Service::qm_get_given_work_frame(qm_robot_handle* handle, const char* name, qm_pose_t* pose) {
    return ::qm_get_given_work_frame(handle, name, pose);
}
int QM_Service::qm_set_tool_envelope(qm_robot_handle* handle, qm_envelope_balls_list_t envelope) {
    return ::qm_set_tool_envelope(handle, envelope);
}
int QM_Service::qm_get_tool_envelope(qm_robot_handle* handle, const char* tool_name,
                                     qm_envelope_balls_list_t* envelope) {
    return ::qm_get_tool_envelope(handle, tool_name, envelope);
}

// ---- install pose and model data ----

int QM_Service::qm_get_install_pose(qm_robot_handle* handle, float* x, float* y, float* z) {
    return ::qm_get_install_pose(handle, x, y, z);
}
int QM_Service::qm_get_DH_data(qm_robot_handle* handle, qm_dh_t* dh) {
    return ::qm_get_DH_data(handle, dh);
}

// ---- controller, power, network and serial ports ----

int QM_Service::qm_get_controller_state(qm_robot_handle* handle, float* voltage, float* current,
                                        float* temperature, int* err_flag) {
    return ::qm_get_controller_state(handle, voltage, current, temperature, err_flag);
}
int QM_Service::qm_set_arm_power(qm_robot_handle* handle, int arm_power) {
    return ::qm_set_arm_power(handle, arm_power);
}
int QM_Service::qm_get_arm_power_state(qm_robot_handle* handle, int* power_state) {
    return ::qm_get_arm_power_state(handle, power_state);
}
int QM_Service::qm_get_system_runtime(qm_robot_handle* handle, int* day, int* hour, int* min, int* sec) {
    return ::qm_get_system_runtime(handle, day, hour, min, sec);
}
int QM_Service::qm_clear_system_runtime(qm_robot_handle* handle) {
    return ::qm_clear_system_runtime(handle);
}
int QM_Service::qm_get_joint_odom(qm_robot_handle* handle, float* joint_odom) {
    return ::qm_get_joint_odom(handle, joint_odom);
}
int QM_Service::qm_clear_joint_odom(qm_robot_handle* handle) {
    return ::qm_clear_joint_odom(handle);
}
int QM_Service::qm_set_NetIP(qm_robot_handle* handle, const char* ip) {
    return ::qm_set_NetIP(handle, ip);
}
int QM_Service::qm_clear_system_err(qm_robot_handle* handle) {
    return ::qm_clear_system_err(handle);
}
int QM_Service::qm_set_wifi_ap(qm_robot_handle* handle, const char* wifi_name, const char* password) {
    return ::qm_set_wifi_ap(handle, wifi_name, password);
}
int QM_Service::qm_set_wifi_sta(qm_robot_handle* handle, const char* router_name, const char* password) {
    return ::qm_set_wifi_sta(handle, router_name, password);
}
int QM_Service::qm_set_usb(qm_robot_handle* handle, int baudrate) {
    return ::qm_set_usb(handle, baudrate);
}
int QM_Service::qm_set_RS485(qm_robot_handle* handle, int baudrate) {
    return ::qm_set_RS485(handle, baudrate);
}
int QM_Service::qm_get_wired_net(qm_robot_handle* handle, char* ip, char* mask, char* mac) {
    return ::qm_get_wired_net(handle, ip, mask, mac);
}
int QM_Service::qm_get_wifi_net(qm_robot_handle* handle, qm_wifi_net_t* wifi_net) {
    return ::qm_get_wifi_net(handle, wifi_net);
}
int QM_Service::qm_set_net_default(qm_robot_handle* handle) {
    return ::qm_set_net_default(handle);
}
int QM_Service::qm_set_wifi_close(qm_robot_handle* handle) {
    return ::qm_set_wifi_close(handle);
}
int QM_Service::qm_get_controller_RS485_mode(qm_robot_handle* handle, int* mode, int* baudrate,
                                             int* timeout) {
    return ::qm_get_controller_RS485_mode(handle, mode, baudrate, timeout);
}
int QM_Service::qm_get_tool_RS485_mode(qm_robot_handle* handle, int* mode, int* baudrate, int* timeout) {
    return ::qm_get_tool_RS485_mode(handle, mode, baudrate, timeout);
}
int QM_Service::qm_get_controller_rs485_mode_v4(qm_robot_handle* handle, int* controller_rs485_mode,
                                                int* baudrate) {
    return ::qm_get_controller_rs485_mode_v4(handle, controller_rs485_mode, baudrate);
}
int QM_Service::qm_get_tool_rs485_mode_v4(qm_robot_handle* handle, int* tool_rs485_mode, int* baudrate) {
    return ::qm_get_tool_rs485_mode_v4(handle, tool_rs485_mode, baudrate);
}
int QM_Service::qm_set_controller_rs485_mode(qm_robot_handle* handle, int controller_rs485_mode,
                                             int baudrate) {
    return ::qm_set_controller_rs485_mode(handle, controller_rs485_mode, baudrate);
}
int QM_Service::qm_set_tool_rs485_mode(qm_robot_handle* handle, int tool_rs485_mode, int baudrate) {
    return ::qm_set_tool_rs485_mode(handle, tool_rs485_mode, baudrate);
}

// ---- controller and tool IO ----

int QM_Service::qm_set_IO_mode(qm_robot_handle* handle, int io_num, qm_io_config_t config) {
    return ::qm_set_IO_mode(handle, io_num, config);
}
int QM_Service::qm_set_DO_state(qm_robot_handle* handle, int io_num, int state) {
    return ::qm_set_DO_state(handle, io_num, state);
}
int QM_Service::qm_get_IO_state(qm_robot_handle* handle, int io_num, qm_io_get_t* config) {
    return ::qm_get_IO_state(handle, io_num, config);
}
int QM_Service::qm_get_IO_input(qm_robot_handle* handle, int* DI_state) {
    return ::qm_get_IO_input(handle, DI_state);
}
int QM_Service::qm_get_IO_output(qm_robot_handle* handle, int* DO_state) {
    return ::qm_get_IO_output(handle, DO_state);
}
int QM_Service::qm_set_voltage(qm_robot_handle* handle, int voltage_type) {
    return ::qm_set_voltage(handle, voltage_type);
}
int QM_Service::qm_get_voltage(qm_robot_handle* handle, int* voltage_type) {
    return ::qm_get_voltage(handle, voltage_type);
}
int QM_Service::qm_set_tool_DO_state(qm_robot_handle* handle, int io_num, int state) {
    return ::qm_set_tool_DO_state(handle, io_num, state);
}
int QM_Service::qm_set_tool_IO_mode(qm_robot_handle* handle, int io_num, int io_mode) {
    return ::qm_set_tool_IO_mode(handle, io_num, io_mode);
}
int QM_Service::qm_get_tool_IO_state(qm_robot_handle* handle, int* mode, int* state) {
    return ::qm_get_tool_IO_state(handle, mode, state);
}
int QM_Service::qm_set_tool_voltage(qm_robot_handle* handle, int voltage_type) {
    return ::qm_set_tool_voltage(handle, voltage_type);
}
int QM_Service::qm_get_tool_voltage(qm_robot_handle* handle, int* voltage_type) {
    return ::qm_get_tool_voltage(handle, voltage_type);
}

// ---- Modbus RTU and Modbus TCP ----

int QM_Service::qm_set_modbus_mode(qm_robot_handle* handle, int port, int baudrate, int timeout) {
    return ::qm_set_modbus_mode(handle, port, baudrate, timeout);
}
int QM_Service::qm_close_modbus_mode(qm_robot_handle* handle, int port) {
    return ::qm_close_modbus_mode(handle, port);
}
int QM_Service::qm_set_modbustcp_mode(qm_robot_handle* handle, const char* ip, int port, int timeout) {
    return ::qm_set_modbustcp_mode(handle, ip, port, timeout);
}
int QM_Service::qm_close_modbustcp_mode(qm_robot_handle* handle) {
    return ::qm_close_modbustcp_mode(handle);
}
int QM_Service::qm_read_coils(qm_robot_handle* handle, qm_peripheral_read_write_params_t params, int* data) {
    return ::qm_read_coils(handle, params, data);
}
int QM_Service::qm_read_input_status(qm_robot_handle* handle, qm_peripheral_read_write_params_t params,
                                     int* data) {
    return ::qm_read_input_status(handle, params, data);
}
int QM_Service::qm_read_holding_registers(qm_robot_handle* handle, qm_peripheral_read_write_params_t params,
                                          int* data) {
    return ::qm_read_holding_registers(handle, params, data);
}
int QM_Service::qm_read_input_registers(qm_robot_handle* handle, qm_peripheral_read_write_params_t params,
                                        int* data) {
    return ::qm_read_input_registers(handle, params, data);
}
int QM_Service::qm_write_single_coil(qm_robot_handle* handle, qm_peripheral_read_write_params_t params,
                                     int data) {
    return ::qm_write_single_coil(handle, params, data);
}
int QM_Service::qm_write_single_register(qm_robot_handle* handle, qm_peripheral_read_write_params_t params,
                                         int data) {
    return ::qm_write_single_register(handle, params, data);
}
int QM_Service::qm_write_registers(qm_robot_handle* handle, qm_peripheral_read_write_params_t params,
                                   int* data) {
    return ::qm_write_registers(handle, params, data);
}
int QM_Service::qm_write_coils(qm_robot_handle* handle, qm_peripheral_read_write_params_t params, int* data) {
    return ::qm_write_coils(handle, params, data);
}
int QM_Service::qm_read_multiple_coils(qm_robot_handle* handle, qm_peripheral_read_write_params_t params,
                                       int* data) {
    return ::qm_read_multiple_coils(handle, params, data);
}
int QM_Service::qm_read_multiple_holding_registers(qm_robot_handle* handle,
                                                   qm_peripheral_read_write_params_t params, int* data) {
    return ::qm_read_multiple_holding_registers(handle, params, data);
}
int QM_Service::qm_read_multiple_input_registers(qm_robot_handle* handle,
                                                 qm_peripheral_read_write_params_t params, int* data) {
    return ::qm_read_multiple_input_registers(handle, params, data);
}
int QM_Service::qm_read_modbus_rtu_coils(qm_robot_handle* handle, qm_modbus_rtu_read_params_t param,
                                         int* data) {
    return ::qm_read_modbus_rtu_coils(handle, param, data);
}
int QM_Service::qm_read_modbus_rtu_input_status(qm_robot_handle* handle, qm_modbus_rtu_read_params_t param,
                                                int* data) {
    return ::qm_read_modbus_rtu_input_status(handle, param, data);
}
int QM_Service::qm_read_modbus_rtu_holding_registers(qm_robot_handle* handle,
                                                     qm_modbus_rtu_read_params_t param, int* data) {
    return ::qm_read_modbus_rtu_holding_registers(handle, param, data);
}
int QM_Service::qm_read_modbus_rtu_input_registers(qm_robot_handle* handle, qm_modbus_rtu_read_params_t param,
                                                   int* data) {
    return ::qm_read_modbus_rtu_input_registers(handle, param, data);
}
int QM_Service::qm_write_modbus_rtu_coils(qm_robot_handle* handle, qm_modbus_rtu_write_params_t param) {
    return ::qm_write_modbus_rtu_coils(handle, param);
}
int QM_Service::qm_write_modbus_rtu_registers(qm_robot_handle* handle, qm_modbus_rtu_write_params_t param) {
    return ::qm_write_modbus_rtu_registers(handle, param);
}
int QM_Service::qm_add_modbus_tcp_master(qm_robot_handle* handle, qm_modbus_tcp_master_info_t master) {
    return ::qm_add_modbus_tcp_master(handle, master);
}
int QM_Service::qm_update_modbus_tcp_master(qm_robot_handle* handle, const char* master_name,
                                            qm_modbus_tcp_master_info_t master) {
    return ::qm_update_modbus_tcp_master(handle, master_name, master);
}
int QM_Service::qm_delete_modbus_tcp_master(qm_robot_handle* handle, const char* master_name) {
    return ::qm_delete_modbus_tcp_master(handle, master_name);
}
int QM_Service::qm_get_modbus_tcp_master(qm_robot_handle* handle, const char* master_name,
                                         qm_modbus_tcp_master_info_t* master) {
    return ::qm_get_modbus_tcp_master(handle, master_name, master);
}
int QM_Service::qm_get_modbus_tcp_master_list(qm_robot_handle* handle, int page_num, int page_size,
                                              const char* vague_search, qm_modbus_tcp_master_list_t* list) {
    return ::qm_get_modbus_tcp_master_list(handle, page_num, page_size, vague_search, list);
}
int QM_Service::qm_read_modbus_tcp_coils(qm_robot_handle* handle, qm_modbus_tcp_read_params_t param,
                                         int* data) {
    return ::qm_read_modbus_tcp_coils(handle, param, data);
}
int QM_Service::qm_read_modbus_tcp_input_status(qm_robot_handle* handle, qm_modbus_tcp_read_params_t param,
                                                int* data) {
    return ::qm_read_modbus_tcp_input_status(handle, param, data);
}
int QM_Service::qm_read_modbus_tcp_holding_registers(qm_robot_handle* handle,
                                                     qm_modbus_tcp_read_params_t param, int* data) {
    return ::qm_read_modbus_tcp_holding_registers(handle, param, data);
}
int QM_Service::qm_read_modbus_tcp_input_registers(qm_robot_handle* handle, qm_modbus_tcp_read_params_t param,
                                                   int* data) {
    return ::qm_read_modbus_tcp_input_registers(handle, param, data);
}
int QM_Service::qm_write_modbus_tcp_coils(qm_robot_handle* handle, qm_modbus_tcp_write_params_t param) {
    return ::qm_write_modbus_tcp_coils(handle, param);
}
int QM_Service::qm_write_modbus_tcp_registers(qm_robot_handle* handle, qm_modbus_tcp_write_params_t param) {
    return ::qm_write_modbus_tcp_registers(handle, param);
}

// ---- grippers, dexterous hand, lift and expansion axes ----

int QM_Service::qm_set_gripper_route(qm_robot_handle* handle, int min_limit, int max_limit) {
    return ::qm_set_gripper_route(handle, min_limit, max_limit);
}
int QM_Service::qm_set_gripper_release(qm_robot_handle* handle, int speed, bool block, int timeout) {
    return ::qm_set_gripper_release(handle, speed, block, timeout);
}
int QM_Service::qm_set_gripper_pick(qm_robot_handle* handle, int speed, int force, bool block, int timeout) {
    return ::qm_set_gripper_pick(handle, speed, force, block, timeout);
}
int QM_Service::qm_set_gripper_pick_on(qm_robot_handle* handle, int speed, int force, bool block,
                                       int timeout) {
    return ::qm_set_gripper_pick_on(handle, speed, force, block, timeout);
}
int QM_Service::qm_set_gripper_position(qm_robot_handle* handle, int position, bool block, int timeout) {
    return ::qm_set_gripper_position(handle, position, block, timeout);
}
int QM_Service::qm_get_gripper_state(qm_robot_handle* handle, qm_gripper_state_t* state) {
    return ::qm_get_gripper_state(handle, state);
}
int QM_Service::qm_set_hand_posture(qm_robot_handle* handle, int posture_num, bool block, int timeout) {
    return ::qm_set_hand_posture(handle, posture_num, block, timeout);
}
int QM_Service::qm_set_hand_seq(qm_robot_handle* handle, int seq_num, bool block, int timeout) {
    return ::qm_set_hand_seq(handle, seq_num, block, timeout);
}
int QM_Service::qm_set_hand_angle(qm_robot_handle* handle, const int* hand_angle) {
    return ::qm_set_hand_angle(handle, hand_angle);
}
int QM_Service::qm_set_hand_follow_angle(qm_robot_handle* handle, const int* hand_angle, bool block) {
    return ::qm_set_hand_follow_angle(handle, hand_angle, block);
}
int QM_Service::qm_set_hand_follow_pos(qm_robot_handle* handle, const int* hand_pos, bool block) {
    return ::qm_set_hand_follow_pos(handle, hand_pos, block);
}
int QM_Service::qm_set_hand_speed(qm_robot_handle* handle, int speed) {
    return ::qm_set_hand_speed(handle, speed);
}
int QM_Service::qm_set_hand_force(qm_robot_handle* handle, int hand_force) {
    return ::qm_set_hand_force(handle, hand_force);
}
int QM_Service::qm_set_lift_speed(qm_robot_handle* handle, int speed) {
    return ::qm_set_lift_speed(handle, speed);
}
int QM_Service::qm_set_lift_height(qm_robot_handle* handle, int speed, int height, int block) {
    return ::qm_set_lift_height(handle, speed, height, block);
}
int QM_Service::qm_get_lift_state(qm_robot_handle* handle, qm_expand_state_t* state) {
    return ::qm_get_lift_state(handle, state);
}
int QM_Service::qm_set_expand_speed(qm_robot_handle* handle, int speed) {
    return ::qm_set_expand_speed(handle, speed);
}
int QM_Service::qm_set_expand_pos(qm_robot_handle* handle, int speed, int pos, int block) {
    return ::qm_set_expand_pos(handle, speed, pos, block);
}
int QM_Service::qm_get_expand_state(qm_robot_handle* handle, qm_expand_state_t* state) {
    return ::qm_get_expand_state(handle, state);
}
int QM_Service::qm_set_qm_plus_mode(qm_robot_handle* handle, int mode) {
    return ::qm_set_qm_plus_mode(handle, mode);
}
int QM_Service::qm_get_qm_plus_mode(qm_robot_handle* handle, int* mode) {
    return ::qm_get_qm_plus_mode(handle, mode);
}
int QM_Service::qm_set_qm_plus_touch(qm_robot_handle* handle, int mode) {
    return ::qm_set_qm_plus_touch(handle, mode);
}
int QM_Service::qm_get_qm_plus_touch(qm_robot_handle* handle, int* mode) {
    return ::qm_get_qm_plus_touch(handle, mode);
}
int QM_Service::qm_get_qm_plus_base_info(qm_robot_handle* handle, qm_plus_base_info_t* info) {
    return ::qm_get_qm_plus_base_info(handle, info);
}
int QM_Service::qm_get_qm_plus_state_info(qm_robot_handle* handle, qm_plus_state_info_t* info) {
    return ::qm_get_qm_plus_state_info(handle, info);
}

// ---- force sensing, drag teaching and force-position control ----

int QM_Service::qm_get_force_data(qm_robot_handle* handle, qm_force_data_t* data) {
    return ::qm_get_force_data(handle, data);
}
int QM_Service::qm_clear_force_data(qm_robot_handle* handle) {
    return ::qm_clear_force_data(handle);
}
int QM_Service::qm_set_force_sensor(qm_robot_handle* handle, bool block) {
    return ::qm_set_force_sensor(handle, block);
}
int QM_Service::qm_manual_set_force(qm_robot_handle* handle, int count, float* joint, bool block) {
    return ::qm_manual_set_force(handle, count, joint, block);
}
int QM_Service::qm_stop_set_force_sensor(qm_robot_handle* handle) {
    return ::qm_stop_set_force_sensor(handle);
}
int QM_Service::qm_get_Fz(qm_robot_handle* handle, qm_fz_data_t* data) {
    return ::qm_get_Fz(handle, data);
}
int QM_Service::qm_clear_Fz(qm_robot_handle* handle) {
    return ::qm_clear_Fz(handle);
}
int QM_Service::qm_auto_set_Fz(qm_robot_handle* handle, bool block) {
    return ::qm_auto_set_Fz(handle, block);
}
int QM_Service::qm_manual_set_Fz(qm_robot_handle* handle, float* joint1, float* joint2, bool block) {
    return ::qm_manual_set_Fz(handle, joint1, joint2, block);
}
int QM_Service::qm_start_drag_teach(qm_robot_handle* handle, int trajectory_record) {
    return ::qm_start_drag_teach(handle, trajectory_record);
}
int QM_Service::qm_stop_drag_teach(qm_robot_handle* handle) {
    return ::qm_stop_drag_teach(handle);
}
int QM_Service::qm_start_multi_drag_teach_new(qm_robot_handle* handle, qm_multi_drag_teach_t teach_state) {
    return ::qm_start_multi_drag_teach_new(handle, teach_state);
}
int QM_Service::qm_set_drag_teach_sensitivity(qm_robot_handle* handle, int grade) {
    return ::qm_set_drag_teach_sensitivity(handle, grade);
}
int QM_Service::qm_get_drag_teach_sensitivity(qm_robot_handle* handle, int* grade) {
    return ::qm_get_drag_teach_sensitivity(handle, grade);
}
int QM_Service::qm_drag_trajectory_origin(qm_robot_handle* handle, int block) {
    return ::qm_drag_trajectory_origin(handle, block);
}
int QM_Service::qm_run_drag_trajectory(qm_robot_handle* handle, int timeout) {
    return ::qm_run_drag_trajectory(handle, timeout);
}
int QM_Service::qm_pause_drag_trajectory(qm_robot_handle* handle) {
    return ::qm_pause_drag_trajectory(handle);
}
int QM_Service::qm_continue_drag_trajectory(qm_robot_handle* handle) {
    return ::qm_continue_drag_trajectory(handle);
}
int QM_Service::qm_stop_drag_trajectory(qm_robot_handle* handle) {
    return ::qm_stop_drag_trajectory(handle);
}
int QM_Service::qm_set_force_position_new(qm_robot_handle* handle, qm_force_position_t param) {
    return ::qm_set_force_position_new(handle, param);
}
int QM_Service::qm_stop_force_position(qm_robot_handle* handle) {
    return ::qm_stop_force_position(handle);
}
int QM_Service::qm_set_force_drag_mode(qm_robot_handle* handle, int mode) {
    return ::qm_set_force_drag_mode(handle, mode);
}
int QM_Service::qm_get_force_drag_mode(qm_robot_handle* handle, int* mode) {
    return ::qm_get_force_drag_mode(handle, mode);
}
int QM_Service::qm_start_force_position_move(qm_robot_handle* handle) {
    return ::qm_start_force_position_move(handle);
}
int QM_Service::qm_stop_force_position_move(qm_robot_handle* handle) {
    return ::qm_stop_force_position_move(handle);
}
int QM_Service::qm_force_position_move_joint(qm_robot_handle* handle, const float* joint, int sensor,
                                             int mode, int dir, float force, bool follow) {
    return ::qm_force_position_move_joint(handle, joint, sensor, mode, dir, force, follow);
}
int QM_Service::qm_force_position_move_pose(qm_robot_handle* handle, qm_pose_t pose, int sensor, int mode,
                                            int dir, float force, bool follow) {
    return ::qm_force_position_move_pose(handle, pose, sensor, mode, dir, force, follow);
}
int QM_Service::qm_force_position_move(qm_robot_handle* handle, qm_force_position_move_t param) {
    return ::qm_force_position_move(handle, param);
}

// ---- projects, programs, trajectory files and global waypoints ----

int QM_Service::qm_send_project(qm_robot_handle* handle, qm_send_project_t project, int* err_line) {
    return ::qm_send_project(handle, project, err_line);
}
int QM_Service::qm_send_project_lock(qm_robot_handle* handle, const char* data, int data_len, int* err_line) {
    return ::qm_send_project_lock(handle, data, data_len, err_line);
}
int QM_Service::qm_run_project(qm_robot_handle* handle, qm_send_project_t project, int file_size) {
    return ::qm_run_project(handle, project, file_size);
}
int QM_Service::qm_get_program_trajectory_list(qm_robot_handle* handle, int page_num, int page_size,
                                               const char* vague_search,
                                               qm_program_trajectorys_t* trajectorys) {
    return ::qm_get_program_trajectory_list(handle, page_num, page_size, vague_search, trajectorys);
}
int QM_Service::qm_get_program_run_state(qm_robot_handle* handle, qm_program_run_state_t* run_state) {
    return ::qm_get_program_run_state(handle, run_state);
}
int QM_Service::qm_get_flowchart_program_run_state(qm_robot_handle* handle,
                                                   qm_flowchart_run_state_t* run_state) {
    return ::qm_get_flowchart_program_run_state(handle, run_state);
}
int QM_Service::qm_delete_program_trajectory(qm_robot_handle* handle, int id) {
    return ::qm_delete_program_trajectory(handle, id);
}
int QM_Service::qm_update_program_trajectory(qm_robot_handle* handle, int id, int speed, const char* name) {
    return ::qm_update_program_trajectory(handle, id, speed, name);
}
int QM_Service::qm_set_default_run_program(qm_robot_handle* handle, int id) {
    return ::qm_set_default_run_program(handle, id);
}
int QM_Service::qm_get_default_run_program(qm_robot_handle* handle, int* id) {
    return ::qm_get_default_run_program(handle, id);
}
int QM_Service::qm_set_program_id_run(qm_robot_handle* handle, int id, int speed, int block) {
    return ::qm_set_program_id_run(handle, id, speed, block);
}
int QM_Service::qm_save_trajectory(qm_robot_handle* handle, const char* file_name, int* num) {
    return ::qm_save_trajectory(handle, file_name, num);
}
int QM_Service::qm_add_global_waypoint(qm_robot_handle* handle, qm_waypoint_t waypoint) {
    return ::qm_add_global_waypoint(handle, waypoint);
}
int QM_Service::qm_update_global_waypoint(qm_robot_handle* handle, qm_waypoint_t waypoint) {
    return ::qm_update_global_waypoint(handle, waypoint);
}
int QM_Service::qm_delete_global_waypoint(qm_robot_handle* handle, const char* point_name) {
    return ::qm_delete_global_waypoint(handle, point_name);
}
int QM_Service::qm_get_given_global_waypoint(qm_robot_handle* handle, const char* name,
                                             qm_waypoint_t* point) {
    return ::qm_get_given_global_waypoint(handle, name, point);
}
int QM_Service::qm_get_global_waypoints_list(qm_robot_handle* handle, int page_num, int page_size,
                                             const char* vague_search, qm_waypoint_list_t* point_list) {
    return ::qm_get_global_waypoints_list(handle, page_num, page_size, vague_search, point_list);
}
int QM_Service::qm_get_trajectory_file_list(qm_robot_handle* handle, int page_num, int page_size,
                                            const char* vague_search, qm_trajectory_list_t* trajectory_list) {
    return ::qm_get_trajectory_file_list(handle, page_num, page_size, vague_search, trajectory_list);
}
int QM_Service::qm_set_run_trajectory(qm_robot_handle* handle, const char* trajectory_name) {
    return ::qm_set_run_trajectory(handle, trajectory_name);
}
int QM_Service::qm_delete_trajectory_file(qm_robot_handle* handle, const char* trajectory_name) {
    return ::qm_delete_trajectory_file(handle, trajectory_name);
}
int QM_Service::qm_save_trajectory_file(qm_robot_handle* handle, const char* trajectory_name) {
    return ::qm_save_trajectory_file(handle, trajectory_name);
}

// ---- safety zones and arm model configuration ----

int QM_Service::qm_add_electronic_fence_config(qm_robot_handle* handle, qm_fence_config_t config) {
    return ::qm_add_electronic_fence_config(handle, config);
}
int QM_Service::qm_update_electronic_fence_config(qm_robot_handle* handle, qm_fence_config_t config) {
    return ::qm_update_electronic_fence_config(handle, config);
}
int QM_Service::qm_delete_electronic_fence_config(qm_robot_handle* handle, const char* form_name) {
    return ::qm_delete_electronic_fence_config(handle, form_name);
}
int QM_Service::qm_get_electronic_fence_list_names(qm_robot_handle* handle, qm_fence_names_t* names,
                                                   int* len) {
    return ::qm_get_electronic_fence_list_names(handle, names, len);
}
int QM_Service::qm_get_given_electronic_fence_config(qm_robot_handle* handle, const char* given_name,
                                                     qm_fence_config_t* config) {
    return ::qm_get_given_electronic_fence_config(handle, given_name, config);
}
int QM_Service::qm_get_electronic_fence_list_infos(qm_robot_handle* handle,
                                                   qm_fence_config_list_t* config_list, int* len) {
    return ::qm_get_electronic_fence_list_infos(handle, config_list, len);
}
int QM_Service::qm_set_electronic_fence_enable(qm_robot_handle* handle, qm_electronic_fence_enable_t state) {
    return ::qm_set_electronic_fence_enable(handle, state);
}
int QM_Service::qm_get_electronic_fence_enable(qm_robot_handle* handle, qm_electronic_fence_enable_t* state) {
    return ::qm_get_electronic_fence_enable(handle, state);
}
int QM_Service::qm_set_electronic_fence_config(qm_robot_handle* handle, qm_fence_config_t config) {
    return ::qm_set_electronic_fence_config(handle, config);
}
int QM_Service::qm_get_electronic_fence_config(qm_robot_handle* handle, qm_fence_config_t* config) {
    return ::qm_get_electronic_fence_config(handle, config);
}
int QM_Service::qm_set_virtual_wall_enable(qm_robot_handle* handle, qm_electronic_fence_enable_t state) {
    return ::qm_set_virtual_wall_enable(handle, state);
}
int QM_Service::qm_get_virtual_wall_enable(qm_robot_handle* handle, qm_electronic_fence_enable_t* state) {
    return ::qm_get_virtual_wall_enable(handle, state);
}
int QM_Service::qm_set_virtual_wall_config(qm_robot_handle* handle, qm_fence_config_t config) {
    return ::qm_set_virtual_wall_config(handle, config);
}
int QM_Service::qm_get_virtual_wall_config(qm_robot_handle* handle, qm_fence_config_t* config) {
    return ::qm_get_virtual_wall_config(handle, config);
}
int QM_Service::qm_set_self_collision_enable(qm_robot_handle* handle, bool state) {
    return ::qm_set_self_collision_enable(handle, state);
}
int QM_Service::qm_get_self_collision_enable(qm_robot_handle* handle, bool* state) {
    return ::qm_get_self_collision_enable(handle, state);
}
int QM_Service::qm_set_DH_data_default(qm_robot_handle* handle) {
    return ::qm_set_DH_data_default(handle);
}
int QM_Service::qm_set_install_pose(qm_robot_handle* handle, float x, float y, float z) {
    return ::qm_set_install_pose(handle, x, y, z);
}
int QM_Service::qm_set_arm_run_mode(qm_robot_handle* handle, int mode) {
    return ::qm_set_arm_run_mode(handle, mode);
}
int QM_Service::qm_get_arm_run_mode(qm_robot_handle* handle, int* mode) {
    return ::qm_get_arm_run_mode(handle, mode);
}
int QM_Service::qm_set_arm_emergency_stop(qm_robot_handle* handle, bool state) {
    return ::qm_set_arm_emergency_stop(handle, state);
}
