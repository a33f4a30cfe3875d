/** @file
 * The C++ face of the library: every function of qm_interface.h as a method of QM_Service. */
#ifndef QM_SERVICE_H
#define QM_SERVICE_H

#include "qm_interface.h"

/**
 * The whole function API as methods. Each method bears the name of the function it forwards to,
 * takes the same parameters (records by value where the function takes them by value) and
 * returns its result unchanged, so qm_interface.h documents it.
 *
 * The class holds nothing: any number of instances may exist and all share the library's
 * process-wide state, so two instances given the same handle reach the same connection.
 */
class QM_Service {
public:
    /** @name Library and connection
     * @{ */
    /// Forwards to ::qm_init.
    int qm_init(qm_thread_mode_e mode);
    /// Forwards to ::qm_api_version.
    const char* qm_api_version();
    /// Forwards to ::qm_create_robot_arm.
    qm_robot_handle* qm_create_robot_arm(const char* ip, int port);
    /// Forwards to ::qm_delete_robot_arm.
    int qm_delete_robot_arm(qm_robot_handle* handle);
    /// Forwards to ::qm_destory.
    int qm_destory();
    /// Forwards to ::qm_set_timeout.
    void qm_set_timeout(int timeout);
    /// Forwards to ::qm_get_robot_info.
    int qm_get_robot_info(qm_robot_handle* handle, qm_robot_info_t* robot_info);
    /// Forwards to ::qm_set_robot_dof.
    int qm_set_robot_dof(qm_robot_handle* handle, int dof);
    /** @} */

    /** @name Logging
     * @{ */
    /// Forwards to ::qm_set_log_call_back.
    void qm_set_log_call_back(LogCallback callback, int level);
    /// Forwards to ::qm_set_log_save.
    void qm_set_log_save(const char* path);
    /** @} */

    /** @name Command exchange and events
     * @{ */
    /// Forwards to ::qm_get_arm_current_trajectory.
    int qm_get_arm_current_trajectory(qm_robot_handle* handle, qm_arm_current_trajectory_e* type,
                                      float* data);
    /// Forwards to ::qm_get_arm_event_call_back.
    void qm_get_arm_event_call_back(qm_event_callback_ptr event_callback);
    /** @} */

    /** @name Realtime state push
     * @{ */
    /// Forwards to ::qm_realtime_arm_state_call_back.
    void qm_realtime_arm_state_call_back(qm_realtime_arm_state_callback_ptr realtime_callback);
    /// Forwards to ::qm_set_realtime_push.
    int qm_set_realtime_push(qm_robot_handle* handle, qm_realtime_push_config_t config);
    /// Forwards to ::qm_get_realtime_push.
    int qm_get_realtime_push(qm_robot_handle* handle, qm_realtime_push_config_t* config);
    /** @} */

    /** @name Kinematics bridge
     * @{ */
    /// Forwards to ::qm_algo_version.
    const char* qm_algo_version();
    /// Forwards to ::qm_algo_init_sys_data.
    void qm_algo_init_sys_data(qm_robot_arm_model_e Mode, qm_force_type_e Type);
    /// Forwards to ::qm_algo_set_angle.
    void qm_algo_set_angle(float x, float y, float z);
    /// Forwards to ::qm_algo_get_angle.
    void qm_algo_get_angle(float* x, float* y, float* z);
    /// Forwards to ::qm_algo_set_workframe.
    void qm_algo_set_workframe(const qm_frame_t* frame);
    /// Forwards to ::qm_algo_get_curr_workframe.
    void qm_algo_get_curr_workframe(qm_frame_t* frame);
    /// Forwards to ::qm_algo_set_toolframe.
    void qm_algo_set_toolframe(const qm_frame_t* frame);
    /// Forwards to ::qm_algo_get_curr_toolframe.
    void qm_algo_get_curr_toolframe(qm_frame_t* frame);
    /// Forwards to ::qm_algo_set_joint_max_limit.
    void qm_algo_set_joint_max_limit(const float* joint_limit);
    /// Forwards to ::qm_algo_get_joint_max_limit.
    void qm_algo_get_joint_max_limit(float* joint_limit);
    /// Forwards to ::qm_algo_set_joint_min_limit.
    void qm_algo_set_joint_min_limit(const float* joint_limit);
    /// Forwards to ::qm_algo_get_joint_min_limit.
    void qm_algo_get_joint_min_limit(float* joint_limit);
    /// Forwards to ::qm_algo_set_joint_max_speed.
    void qm_algo_set_joint_max_speed(const float* joint_speed);
    /// Forwards to ::qm_algo_get_joint_max_speed.
    void qm_algo_get_joint_max_speed(float* joint_speed);
    /// Forwards to ::qm_algo_set_joint_max_acc.
    void qm_algo_set_joint_max_acc(const float* joint_acc);
    /// Forwards to ::qm_algo_get_joint_max_acc.
    void qm_algo_get_joint_max_acc(float* joint_acc);
    /// Forwards to ::qm_algo_set_dh.
    void qm_algo_set_dh(qm_dh_t dh);
    /// Forwards to ::qm_algo_get_dh.
    qm_dh_t qm_algo_get_dh();
    /// Forwards to ::qm_algo_set_redundant_parameter_traversal_mode.
    void qm_algo_set_redundant_parameter_traversal_mode(bool mode);
    /// Forwards to ::qm_algo_arm_state_set.
    void qm_algo_arm_state_set(qm_robot_handle* handle);
    /// Forwards to ::qm_algo_forward_kinematics.
    qm_pose_t qm_algo_forward_kinematics(qm_robot_handle* handle, const float* joint);
    /// Forwards to ::qm_algo_inverse_kinematics.
    int qm_algo_inverse_kinematics(qm_robot_handle* handle, qm_inverse_kinematics_params_t params,
                                   float* q_out);
    /// Forwards to ::qm_algo_inverse_kinematics_all.
    qm_inverse_kinematics_all_solve_t qm_algo_inverse_kinematics_all(qm_robot_handle* handle,
                                                                     qm_inverse_kinematics_params_t params);
    /// Forwards to ::qm_algo_ikine_select_ik_solve.
    int qm_algo_ikine_select_ik_solve(const float* weight, qm_inverse_kinematics_all_solve_t params);
    /// Forwards to ::qm_algo_ikine_check_joint_position_limit.
    int qm_algo_ikine_check_joint_position_limit(const float* q_solve);
    /// Forwards to ::qm_algo_ikine_check_joint_velocity_limit.
    int qm_algo_ikine_check_joint_velocity_limit(float dt, const float* q_ref, const float* q_solve);
    /// Forwards to ::qm_algo_judgment_overpos.
    int qm_algo_judgment_overpos(const float* joint);
    /// Forwards to ::qm_algo_euler2quaternion.
    qm_quat_t qm_algo_euler2quaternion(qm_euler_t eu);
    /// Forwards to ::qm_algo_quaternion2euler.
    qm_euler_t qm_algo_quaternion2euler(qm_quat_t qua);
    /// Forwards to ::qm_algo_euler2matrix.
    qm_matrix_t qm_algo_euler2matrix(qm_euler_t eu);
    /// Forwards to ::qm_algo_pos2matrix.
    qm_matrix_t qm_algo_pos2matrix(qm_pose_t state);
    /// Forwards to ::qm_algo_matrix2pos.
    qm_pose_t qm_algo_matrix2pos(qm_matrix_t matrix);
    /// Forwards to ::qm_algo_base2workframe.
    qm_pose_t qm_algo_base2workframe(qm_matrix_t matrix, qm_pose_t state);
    /// Forwards to ::qm_algo_workframe2base.
    qm_pose_t qm_algo_workframe2base(qm_matrix_t matrix, qm_pose_t state);
    /// Forwards to ::qm_algo_end2tool.
    qm_pose_t qm_algo_end2tool(qm_robot_handle* handle, qm_pose_t eu_end);
    /// Forwards to ::qm_algo_tool2end.
    qm_pose_t qm_algo_tool2end(qm_robot_handle* handle, qm_pose_t eu_tool);
    /// Forwards to ::qm_algo_universal_singularity_analyse.
    int qm_algo_universal_singularity_analyse(const float* q, float singular_value_limit);
    /// Forwards to ::qm_algo_kin_robot_singularity_analyse.
    int qm_algo_kin_robot_singularity_analyse(const float* q, float* distance);
    /// Forwards to ::qm_algo_kin_set_singularity_thresholds.
    void qm_algo_kin_set_singularity_thresholds(float limit_qe, float limit_qw, float limit_d);
    /// Forwards to ::qm_algo_kin_get_singularity_thresholds.
    void qm_algo_kin_get_singularity_thresholds(float* limit_qe, float* limit_qw, float* limit_d);
    /// Forwards to ::qm_algo_kin_singularity_thresholds_init.
    void qm_algo_kin_singularity_thresholds_init();
    /// Forwards to ::qm_algo_set_tool_envelope.
    void qm_algo_set_tool_envelope(int toolSphere_i, qm_tool_sphere_t data);
    /// Forwards to ::qm_algo_get_tool_envelope.
    qm_tool_sphere_t qm_algo_get_tool_envelope(int toolSphere_i);
    /// Forwards to ::qm_algo_safety_robot_self_collision_detection.
    int qm_algo_safety_robot_self_collision_detection(const float* joint);
    /// Forwards to ::qm_algo_calculate_arm_angle_from_config_qm75.
    float qm_algo_calculate_arm_angle_from_config_qm75(const float* q_ref);
    /// Forwards to ::qm_algo_inverse_kinematics_qm75_for_arm_angle.
    int qm_algo_inverse_kinematics_qm75_for_arm_angle(const float* q_ref, qm_pose_t target, float arm_angle,
                                                      float* q_solve);
    /// Forwards to ::qm_algo_cartesian_tool.
    qm_pose_t qm_algo_cartesian_tool(qm_robot_handle* handle, const float* curr_joint, float move_lengthx,
                                     float move_lengthy, float move_lengthz);
    /// Forwards to ::qm_algo_rotate_move.
    qm_pose_t qm_algo_rotate_move(qm_robot_handle* handle, const float* curr_joint, int rotate_axis,
                                  float rotate_angle, qm_pose_t choose_axis);
    /// Forwards to ::qm_algo_pose_move.
    qm_pose_t qm_algo_pose_move(qm_robot_handle* handle, qm_pose_t poseCurrent, const float* deltaPosAndRot,
                                int frameMode);
    /** @} */

    /** @name Arm state and information
     * @{ */
    /// Forwards to ::qm_get_arm_software_info.
    int qm_get_arm_software_info(qm_robot_handle* handle, qm_arm_software_version_t* software_info);
    /// Forwards to ::qm_get_current_arm_state.
    int qm_get_current_arm_state(qm_robot_handle* handle, qm_current_arm_state_t* state);
    /// Forwards to ::qm_get_current_joint_temperature.
    int qm_get_current_joint_temperature(qm_robot_handle* handle, float* temperature);
    /// Forwards to ::qm_get_current_joint_current.
    int qm_get_current_joint_current(qm_robot_handle* handle, float* current);
    /// Forwards to ::qm_get_current_joint_voltage.
    int qm_get_current_joint_voltage(qm_robot_handle* handle, float* voltage);
    /// Forwards to ::qm_get_joint_degree.
    int qm_get_joint_degree(qm_robot_handle* handle, float* joint);
    /// Forwards to ::qm_get_arm_all_state.
    int qm_get_arm_all_state(qm_robot_handle* handle, qm_arm_all_state_t* state);
    /// Forwards to ::qm_set_init_pose.
    int qm_set_init_pose(qm_robot_handle* handle, const float* joint);
    /// Forwards to ::qm_get_init_pose.
    int qm_get_init_pose(qm_robot_handle* handle, float* joint);
    /** @} */

    /** @name Motion
     * @{ */
    /// Forwards to ::qm_movej.
    int qm_movej(qm_robot_handle* handle, const float* joint, int v, int r, int trajectory_connect,
                 int block);
    /// Forwards to ::qm_movej_nblock.
    int qm_movej_nblock(qm_robot_handle* handle, const float* joint, int v, int r, int trajectory_connect);
    /// Forwards to ::qm_movej_block.
    int qm_movej_block(qm_robot_handle* handle, const float* joint, int v, int r, int trajectory_connect,
                       int block);
    /// Forwards to ::qm_movel.
    int qm_movel(qm_robot_handle* handle, qm_pose_t pose, int v, int r, int trajectory_connect, int block);
    /// Forwards to ::qm_movel_nblock.
    int qm_movel_nblock(qm_robot_handle* handle, qm_pose_t pose, int v, int r, int trajectory_connect);
    /// Forwards to ::qm_movel_block.
    int qm_movel_block(qm_robot_handle* handle, qm_pose_t pose, int v, int r, int trajectory_connect,
                       int block);
    /// Forwards to ::qm_movel_offset.
    int qm_movel_offset(qm_robot_handle* handle, qm_pose_t offset, int v, int r, int trajectory_connect,
                        int frame_type, int block);
    /// Forwards to ::qm_movel_offset_nblock.
    int qm_movel_offset_nblock(qm_robot_handle* handle, qm_pose_t offset, int v, int r,
                               int trajectory_connect, int frame_type);
    /// Forwards to ::qm_movel_offset_block.
    int qm_movel_offset_block(qm_robot_handle* handle, qm_pose_t offset, int v, int r, int trajectory_connect,
                              int frame_type, int block);
    /// Forwards to ::qm_moves.
    int qm_moves(qm_robot_handle* handle, qm_pose_t pose, int v, int r, int trajectory_connect, int block);
    /// Forwards to ::qm_moves_nblock.
    int qm_moves_nblock(qm_robot_handle* handle, qm_pose_t pose, int v, int r, int trajectory_connect);
    /// Forwards to ::qm_moves_block.
    int qm_moves_block(qm_robot_handle* handle, qm_pose_t pose, int v, int r, int trajectory_connect,
                       int block);
    /// Forwards to ::qm_movec.
    int qm_movec(qm_robot_handle* handle, qm_pose_t pose_via, qm_pose_t pose_to, int v, int r, int loop,
                 int trajectory_connect, int block);
    /// Forwards to ::qm_movec_nblock.
    int qm_movec_nblock(qm_robot_handle* handle, qm_pose_t pose_via, qm_pose_t pose_to, int v, int r,
                        int loop, int trajectory_connect);
    /// Forwards to ::qm_movec_block.
    int qm_movec_block(qm_robot_handle* handle, qm_pose_t pose_via, qm_pose_t pose_to, int v, int r, int loop,
                       int trajectory_connect, int block);
    /// Forwards to ::qm_movej_p.
    int qm_movej_p(qm_robot_handle* handle, qm_pose_t pose, int v, int r, int trajectory_connect, int block);
    /// Forwards to ::qm_movej_p_nblock.
    int qm_movej_p_nblock(qm_robot_handle* handle, qm_pose_t pose, int v, int r, int trajectory_connect);
    /// Forwards to ::qm_movej_p_block.
    int qm_movej_p_block(qm_robot_handle* handle, qm_pose_t pose, int v, int r, int trajectory_connect,
                         int block);
    /// Forwards to ::qm_movej_canfd.
    int qm_movej_canfd(qm_robot_handle* handle, qm_movej_canfd_mode_t config);
    /// Forwards to ::qm_movep_canfd.
    int qm_movep_canfd(qm_robot_handle* handle, qm_movep_canfd_mode_t config);
    /// Forwards to ::qm_movej_follow.
    int qm_movej_follow(qm_robot_handle* handle, float* joint);
    /// Forwards to ::qm_movep_follow.
    int qm_movep_follow(qm_robot_handle* handle, qm_pose_t pose);
    /** @} */

    /** @name Jog, teach and stop
     * @{ */
    /// Forwards to ::qm_set_joint_step.
    int qm_set_joint_step(qm_robot_handle* handle, int joint_num, float step, int v, int block);
    /// Forwards to ::qm_set_joint_step_nblock.
    int qm_set_joint_step_nblock(qm_robot_handle* handle, int joint_num, float step, int v);
    /// Forwards to ::qm_set_joint_step_block.
    int qm_set_joint_step_block(qm_robot_handle* handle, int joint_num, float step, int v, int block);
    /// Forwards to ::qm_set_pos_step.
    int qm_set_pos_step(qm_robot_handle* handle, qm_pos_teach_type_e type, float step, int v, int block);
    /// Forwards to ::qm_set_pos_step_nblock.
    int qm_set_pos_step_nblock(qm_robot_handle* handle, qm_pos_teach_type_e type, float step, int v);
    /// Forwards to ::qm_set_pos_step_block.
    int qm_set_pos_step_block(qm_robot_handle* handle, qm_pos_teach_type_e type, float step, int v,
                              int block);
    /// Forwards to ::qm_set_ort_step.
    int qm_set_ort_step(qm_robot_handle* handle, qm_ort_teach_type_e type, float step, int v, int block);
    /// Forwards to ::qm_set_ort_step_nblock.
    int qm_set_ort_step_nblock(qm_robot_handle* handle, qm_ort_teach_type_e type, float step, int v);
    /// Forwards to ::qm_set_ort_step_block.
    int qm_set_ort_step_block(qm_robot_handle* handle, qm_ort_teach_type_e type, float step, int v,
                              int block);
    /// Forwards to ::qm_set_joint_teach.
    int qm_set_joint_teach(qm_robot_handle* handle, int joint_num, int direction, int v);
    /// Forwards to ::qm_set_pos_teach.
    int qm_set_pos_teach(qm_robot_handle* handle, qm_pos_teach_type_e type, int direction, int v);
    /// Forwards to ::qm_set_ort_teach.
    int qm_set_ort_teach(qm_robot_handle* handle, qm_ort_teach_type_e type, int direction, int v);
    /// Forwards to ::qm_set_stop_teach.
    int qm_set_stop_teach(qm_robot_handle* handle);
    /// Forwards to ::qm_set_teach_frame.
    int qm_set_teach_frame(qm_robot_handle* handle, int frame_type);
    /// Forwards to ::qm_get_teach_frame.
    int qm_get_teach_frame(qm_robot_handle* handle, int* frame_type);
    /// Forwards to ::qm_set_arm_slow_stop.
    int qm_set_arm_slow_stop(qm_robot_handle* handle);
    /// Forwards to ::qm_set_arm_stop.
    int qm_set_arm_stop(qm_robot_handle* handle);
    /// Forwards to ::qm_set_arm_pause.
    int qm_set_arm_pause(qm_robot_handle* handle);
    /// Forwards to ::qm_set_arm_continue.
    int qm_set_arm_continue(qm_robot_handle* handle);
    /// Forwards to ::qm_set_delete_current_trajectory.
    int qm_set_delete_current_trajectory(qm_robot_handle* handle);
    /// Forwards to ::qm_set_arm_delete_trajectory.
    int qm_set_arm_delete_trajectory(qm_robot_handle* handle);
    /** @} */

    /** @name Joint and arm limits
     * @{ */
    /// Forwards to ::qm_set_joint_max_speed.
    int qm_set_joint_max_speed(qm_robot_handle* handle, int joint_num, float speed);
    /// Forwards to ::qm_set_joint_max_acc.
    int qm_set_joint_max_acc(qm_robot_handle* handle, int joint_num, float acc);
    /// Forwards to ::qm_set_joint_min_pos.
    int qm_set_joint_min_pos(qm_robot_handle* handle, int joint_num, float pos);
    /// Forwards to ::qm_set_joint_max_pos.
    int qm_set_joint_max_pos(qm_robot_handle* handle, int joint_num, float pos);
    /// Forwards to ::qm_set_joint_drive_max_speed.
    int qm_set_joint_drive_max_speed(qm_robot_handle* handle, int joint_num, float speed);
    /// Forwards to ::qm_set_joint_drive_max_acc.
    int qm_set_joint_drive_max_acc(qm_robot_handle* handle, int joint_num, float acc);
    /// Forwards to ::qm_set_joint_drive_min_pos.
    int qm_set_joint_drive_min_pos(qm_robot_handle* handle, int joint_num, float pos);
    /// Forwards to ::qm_set_joint_drive_max_pos.
    int qm_set_joint_drive_max_pos(qm_robot_handle* handle, int joint_num, float pos);
    /// Forwards to ::qm_set_joint_en_state.
    int qm_set_joint_en_state(qm_robot_handle* handle, int joint_num, int en_state);
    /// Forwards to ::qm_set_joint_zero_pos.
    int qm_set_joint_zero_pos(qm_robot_handle* handle, int joint_num);
    /// Forwards to ::qm_set_joint_clear_err.
    int qm_set_joint_clear_err(qm_robot_handle* handle, int joint_num);
    /// Forwards to ::qm_auto_set_joint_limit.
    int qm_auto_set_joint_limit(qm_robot_handle* handle, int limit_mode);
    /// Forwards to ::qm_set_arm_max_line_speed.
    int qm_set_arm_max_line_speed(qm_robot_handle* handle, float speed);
    /// Forwards to ::qm_set_arm_max_line_acc.
    int qm_set_arm_max_line_acc(qm_robot_handle* handle, float acc);
    /// Forwards to ::qm_set_arm_max_angular_speed.
    int qm_set_arm_max_angular_speed(qm_robot_handle* handle, float speed);
    /// Forwards to ::qm_set_arm_max_angular_acc.
    int qm_set_arm_max_angular_acc(qm_robot_handle* handle, float acc);
    /// Forwards to ::qm_set_arm_tcp_init.
    int qm_set_arm_tcp_init(qm_robot_handle* handle);
    /// Forwards to ::qm_set_collision_state.
    int qm_set_collision_state(qm_robot_handle* handle, int collision_stage);
    /// Forwards to ::qm_get_joint_max_speed.
    int qm_get_joint_max_speed(qm_robot_handle* handle, float* speed);
    /// Forwards to ::qm_get_joint_max_acc.
    int qm_get_joint_max_acc(qm_robot_handle* handle, float* acc);
    /// Forwards to ::qm_get_joint_min_pos.
    int qm_get_joint_min_pos(qm_robot_handle* handle, float* min_pos);
    /// Forwards to ::qm_get_joint_max_pos.
    int qm_get_joint_max_pos(qm_robot_handle* handle, float* max_pos);
    /// Forwards to ::qm_get_joint_drive_max_speed.
    int qm_get_joint_drive_max_speed(qm_robot_handle* handle, float* speed);
    /// Forwards to ::qm_get_joint_drive_max_acc.
    int qm_get_joint_drive_max_acc(qm_robot_handle* handle, float* acc);
    /// Forwards to ::qm_get_joint_drive_min_pos.
    int qm_get_joint_drive_min_pos(qm_robot_handle* handle, float* min_pos);
    /// Forwards to ::qm_get_joint_drive_max_pos.
    int qm_get_joint_drive_max_pos(qm_robot_handle* handle, float* max_pos);
    /// Forwards to ::qm_get_joint_en_state.
    int qm_get_joint_en_state(qm_robot_handle* handle, uint8_t* en_state);
    /// Forwards to ::qm_get_joint_err_flag.
    int qm_get_joint_err_flag(qm_robot_handle* handle, uint16_t* err_flag, uint16_t* brake_state);
    /// Forwards to ::qm_get_arm_max_line_speed.
    int qm_get_arm_max_line_speed(qm_robot_handle* handle, float* speed);
    /// Forwards to ::qm_get_arm_max_line_acc.
    int qm_get_arm_max_line_acc(qm_robot_handle* handle, float* acc);
    /// Forwards to ::qm_get_arm_max_angular_speed.
    int qm_get_arm_max_angular_speed(qm_robot_handle* handle, float* speed);
    /// Forwards to ::qm_get_arm_max_angular_acc.
    int qm_get_arm_max_angular_acc(qm_robot_handle* handle, float* acc);
    /// Forwards to ::qm_get_collision_stage.
    int qm_get_collision_stage(qm_robot_handle* handle, int* collision_stage);
    /** @} */

    /** @name Tool and work frames
     * @{ */
    /// Forwards to ::qm_set_auto_tool_frame.
    int qm_set_auto_tool_frame(qm_robot_handle* handle, int point_num);
    /// Forwards to ::qm_generate_auto_tool_frame.
    int qm_generate_auto_tool_frame(qm_robot_handle* handle, const char* name, float payload, float x,
                                    float y, float z);
    /// Forwards to ::qm_set_manual_tool_frame.
    int qm_set_manual_tool_frame(qm_robot_handle* handle, qm_frame_t frame);
    /// Forwards to ::qm_change_tool_frame.
    int qm_change_tool_frame(qm_robot_handle* handle, const char* tool_name);
    /// Forwards to ::qm_delete_tool_frame.
    int qm_delete_tool_frame(qm_robot_handle* handle, const char* tool_name);
    /// Forwards to ::qm_update_tool_frame.
    int qm_update_tool_frame(qm_robot_handle* handle, qm_frame_t frame);
    /// Forwards to ::qm_get_current_tool_frame.
    int qm_get_current_tool_frame(qm_robot_handle* handle, qm_frame_t* tool_frame);
    /// Forwards to ::qm_get_total_tool_frame.
    int qm_get_total_tool_frame(qm_robot_handle* handle, qm_frame_name_t* frame_names, int* len);
    /// Forwards to ::qm_get_given_tool_frame.
    int qm_get_given_tool_frame(qm_robot_handle* handle, const char* name, qm_frame_t* frame);
    /// Forwards to ::qm_set_auto_work_frame.
    int qm_set_auto_work_frame(qm_robot_handle* handle, const char* workname, int point_num);
    /// Forwards to ::qm_set_manual_work_frame.
    int qm_set_manual_work_frame(qm_robot_handle* handle, const char* work_name, qm_pose_t pose);
    /// Forwards to ::qm_change_work_frame.
    int qm_change_work_frame(qm_robot_handle* handle, const char* frame_name);
    /// Forwards to ::qm_delete_work_frame.
    int qm_delete_work_frame(qm_robot_handle* handle, const char* frame_name);
    /// Forwards to ::qm_update_work_frame.
    int qm_update_work_frame(qm_robot_handle* handle, const char* work_name, qm_pose_t pose);
    /// Forwards to ::qm_get_current_work_frame.
    int qm_get_current_work_frame(qm_robot_handle* handle, qm_frame_t* work_frame);
    /// Forwards to ::qm_get_total_work_frame.
    int qm_get_total_work_frame(qm_robot_handle* handle, qm_frame_name_t* frame_names, int* len);
    /// Forwards to ::qm_get_given_work_frame.
    int qm_get_given_work_frame(qm_robot_handle* handle, const char* name, qm_pose_t* pose);
    /// Forwards to ::qm_set_tool_envelope.
    int qm_set_tool_envelope(qm_robot_handle* handle, qm_envelope_balls_list_t envelope);
    /// Forwards to ::qm_get_tool_envelope.
    int qm_get_tool_envelope(qm_robot_handle* handle, const char* tool_name,
                             qm_envelope_balls_list_t* envelope);
    /** @} */

    /** @name Install pose and model data
     * @{ */
    /// Forwards to ::qm_get_install_pose.
    int qm_get_install_pose(qm_robot_handle* handle, float* x, float* y, float* z);
    /// Forwards to ::qm_get_DH_data.
    int qm_get_DH_data(qm_robot_handle* handle, qm_dh_t* dh);
    /** @} */

    /** @name Controller, power, network and serial ports
     * @{ */
    /// Forwards to ::qm_get_controller_state.
    int qm_get_controller_state(qm_robot_handle* handle, float* voltage, float* current, float* temperature,
                                int* err_flag);
    /// Forwards to ::qm_set_arm_power.
    int qm_set_arm_power(qm_robot_handle* handle, int arm_power);
    /// Forwards to ::qm_get_arm_power_state.
    int qm_get_arm_power_state(qm_robot_handle* handle, int* power_state);
    /// Forwards to ::qm_get_system_runtime.
    int qm_get_system_runtime(qm_robot_handle* handle, int* day, int* hour, int* min, int* sec);
    /// Forwards to ::qm_clear_system_runtime.
    int qm_clear_system_runtime(qm_robot_handle* handle);
    /// Forwards to ::qm_get_joint_odom.
    int qm_get_joint_odom(qm_robot_handle* handle, float* joint_odom);
    /// Forwards to ::qm_clear_joint_odom.
    int qm_clear_joint_odom(qm_robot_handle* handle);
    /// Forwards to ::qm_set_NetIP.
    int qm_set_NetIP(qm_robot_handle* handle, const char* ip);
    /// Forwards to ::qm_clear_system_err.
    int qm_clear_system_err(qm_robot_handle* handle);
    /// Forwards to ::qm_set_wifi_ap.
    int qm_set_wifi_ap(qm_robot_handle* handle, const char* wifi_name, const char* password);
    /// Forwards to ::qm_set_wifi_sta.
    int qm_set_wifi_sta(qm_robot_handle* handle, const char* router_name, const char* password);
    /// Forwards to ::qm_set_usb.
    int qm_set_usb(qm_robot_handle* handle, int baudrate);
    /// Forwards to ::qm_set_RS485.
    int qm_set_RS485(qm_robot_handle* handle, int baudrate);
    /// Forwards to ::qm_get_wired_net.
    int qm_get_wired_net(qm_robot_handle* handle, char* ip, char* mask, char* mac);
    /// Forwards to ::qm_get_wifi_net.
    int qm_get_wifi_net(qm_robot_handle* handle, qm_wifi_net_t* wifi_net);
    /// Forwards to ::qm_set_net_default.
    int qm_set_net_default(qm_robot_handle* handle);
    /// Forwards to ::qm_set_wifi_close.
    int qm_set_wifi_close(qm_robot_handle* handle);
    /// Forwards to ::qm_get_controller_RS485_mode.
    int qm_get_controller_RS485_mode(qm_robot_handle* handle, int* mode, int* baudrate, int* timeout);
    /// Forwards to ::qm_get_tool_RS485_mode.
    int qm_get_tool_RS485_mode(qm_robot_handle* handle, int* mode, int* baudrate, int* timeout);
    /// Forwards to ::qm_get_controller_rs485_mode_v4.
    int qm_get_controller_rs485_mode_v4(qm_robot_handle* handle, int* controller_rs485_mode, int* baudrate);
    /// Forwards to ::qm_get_tool_rs485_mode_v4.
    int qm_get_tool_rs485_mode_v4(qm_robot_handle* handle, int* tool_rs485_mode, int* baudrate);
    /// Forwards to ::qm_set_controller_rs485_mode.
    int qm_set_controller_rs485_mode(qm_robot_handle* handle, int controller_rs485_mode, int baudrate);
    /// Forwards to ::qm_set_tool_rs485_mode.
    int qm_set_tool_rs485_mode(qm_robot_handle* handle, int tool_rs485_mode, int baudrate);
    /** @} */

    /** @name Controller and tool IO
     * @{ */
    /// Forwards to ::qm_set_IO_mode.
    int qm_set_IO_mode(qm_robot_handle* handle, int io_num, qm_io_config_t config);
    /// Forwards to ::qm_set_DO_state.
    int qm_set_DO_state(qm_robot_handle* handle, int io_num, int state);
    /// Forwards to ::qm_get_IO_state.
    int qm_get_IO_state(qm_robot_handle* handle, int io_num, qm_io_get_t* config);
    /// Forwards to ::qm_get_IO_input.
    int qm_get_IO_input(qm_robot_handle* handle, int* DI_state);
    /// Forwards to ::qm_get_IO_output.
    int qm_get_IO_output(qm_robot_handle* handle, int* DO_state);
    /// Forwards to ::qm_set_voltage.
    int qm_set_voltage(qm_robot_handle* handle, int voltage_type);
    /// Forwards to ::qm_get_voltage.
    int qm_get_voltage(qm_robot_handle* handle, int* voltage_type);
    /// Forwards to ::qm_set_tool_DO_state.
    int qm_set_tool_DO_state(qm_robot_handle* handle, int io_num, int state);
    /// Forwards to ::qm_set_tool_IO_mode.
    int qm_set_tool_IO_mode(qm_robot_handle* handle, int io_num, int io_mode);
    /// Forwards to ::qm_get_tool_IO_state.
    int qm_get_tool_IO_state(qm_robot_handle* handle, int* mode, int* state);
    /// Forwards to ::qm_set_tool_voltage.
    int qm_set_tool_voltage(qm_robot_handle* handle, int voltage_type);
    /// Forwards to ::qm_get_tool_voltage.
    int qm_get_tool_voltage(qm_robot_handle* handle, int* voltage_type);
    /** @} */

    /** @name Modbus RTU and Modbus TCP
     * @{ */
    /// Forwards to ::qm_set_modbus_mode.
    int qm_set_modbus_mode(qm_robot_handle* handle, int port, int baudrate, int timeout);
    /// Forwards to ::qm_close_modbus_mode.
    int qm_close_modbus_mode(qm_robot_handle* handle, int port);
    /// Forwards to ::qm_set_modbustcp_mode.
    int qm_set_modbustcp_mode(qm_robot_handle* handle, const char* ip, int port, int timeout);
    /// Forwards to ::qm_close_modbustcp_mode.
    int qm_close_modbustcp_mode(qm_robot_handle* handle);
    /// Forwards to ::qm_read_coils.
    int qm_read_coils(qm_robot_handle* handle, qm_peripheral_read_write_params_t params, int* data);
    /// Forwards to ::qm_read_input_status.
    int qm_read_input_status(qm_robot_handle* handle, qm_peripheral_read_write_params_t params, int* data);
    /// Forwards to ::qm_read_holding_registers.
    int qm_read_holding_registers(qm_robot_handle* handle, qm_peripheral_read_write_params_t params,
                                  int* data);
    /// Forwards to ::qm_read_input_registers.
    int qm_read_input_registers(qm_robot_handle* handle, qm_peripheral_read_write_params_t params, int* data);
    /// Forwards to ::qm_write_single_coil.
    int qm_write_single_coil(qm_robot_handle* handle, qm_peripheral_read_write_params_t params, int data);
    /// Forwards to ::qm_write_single_register.
    int qm_write_single_register(qm_robot_handle* handle, qm_peripheral_read_write_params_t params, int data);
    /// Forwards to ::qm_write_registers.
    int qm_write_registers(qm_robot_handle* handle, qm_peripheral_read_write_params_t params, int* data);
    /// Forwards to ::qm_write_coils.
    int qm_write_coils(qm_robot_handle* handle, qm_peripheral_read_write_params_t params, int* data);
    /// Forwards to ::qm_read_multiple_coils.
    int qm_read_multiple_coils(qm_robot_handle* handle, qm_peripheral_read_write_params_t params, int* data);
    /// Forwards to ::qm_read_multiple_holding_registers.
    int qm_read_multiple_holding_registers(qm_robot_handle* handle, qm_peripheral_read_write_params_t params,
                                           int* data);
    /// Forwards to ::qm_read_multiple_input_registers.
    int qm_read_multiple_input_registers(qm_robot_handle* handle, qm_peripheral_read_write_params_t params,
                                         int* data);
    /// Forwards to ::qm_read_modbus_rtu_coils.
    int qm_read_modbus_rtu_coils(qm_robot_handle* handle, qm_modbus_rtu_read_params_t param, int* data);
    /// Forwards to ::qm_read_modbus_rtu_input_status.
    int qm_read_modbus_rtu_input_status(qm_robot_handle* handle, qm_modbus_rtu_read_params_t param,
                                        int* data);
    /// Forwards to ::qm_read_modbus_rtu_holding_registers.
    int qm_read_modbus_rtu_holding_registers(qm_robot_handle* handle, qm_modbus_rtu_read_params_t param,
                                             int* data);
    /// Forwards to ::qm_read_modbus_rtu_input_registers.
    int qm_read_modbus_rtu_input_registers(qm_robot_handle* handle, qm_modbus_rtu_read_params_t param,
                                           int* data);
    /// Forwards to ::qm_write_modbus_rtu_coils.
    int qm_write_modbus_rtu_coils(qm_robot_handle* handle, qm_modbus_rtu_write_params_t param);
    /// Forwards to ::qm_write_modbus_rtu_registers.
    int qm_write_modbus_rtu_registers(qm_robot_handle* handle, qm_modbus_rtu_write_params_t param);
    /// Forwards to ::qm_add_modbus_tcp_master.
    int qm_add_modbus_tcp_master(qm_robot_handle* handle, qm_modbus_tcp_master_info_t master);
    /// Forwards to ::qm_update_modbus_tcp_master.
    int qm_update_modbus_tcp_master(qm_robot_handle* handle, const char* master_name,
                                    qm_modbus_tcp_master_info_t master);
    /// Forwards to ::qm_delete_modbus_tcp_master.
    int qm_delete_modbus_tcp_master(qm_robot_handle* handle, const char* master_name);
    /// Forwards to ::qm_get_modbus_tcp_master.
    int qm_get_modbus_tcp_master(qm_robot_handle* handle, const char* master_name,
                                 qm_modbus_tcp_master_info_t* master);
    /// Forwards to ::qm_get_modbus_tcp_master_list.
    int qm_get_modbus_tcp_master_list(qm_robot_handle* handle, int page_num, int page_size,
                                      const char* vague_search, qm_modbus_tcp_master_list_t* list);
    /// Forwards to ::qm_read_modbus_tcp_coils.
    int qm_read_modbus_tcp_coils(qm_robot_handle* handle, qm_modbus_tcp_read_params_t param, int* data);
    /// Forwards to ::qm_read_modbus_tcp_input_status.
    int qm_read_modbus_tcp_input_status(qm_robot_handle* handle, qm_modbus_tcp_read_params_t param,
                                        int* data);
    /// Forwards to ::qm_read_modbus_tcp_holding_registers.
    int qm_read_modbus_tcp_holding_registers(qm_robot_handle* handle, qm_modbus_tcp_read_params_t param,
                                             int* data);
    /// Forwards to ::qm_read_modbus_tcp_input_registers.
    int qm_read_modbus_tcp_input_registers(qm_robot_handle* handle, qm_modbus_tcp_read_params_t param,
                                           int* data);
    /// Forwards to ::qm_write_modbus_tcp_coils.
    int qm_write_modbus_tcp_coils(qm_robot_handle* handle, qm_modbus_tcp_write_params_t param);
    /// Forwards to ::qm_write_modbus_tcp_registers.
    int qm_write_modbus_tcp_registers(qm_robot_handle* handle, qm_modbus_tcp_write_params_t param);
    /** @} */

    /** @name Grippers, dexterous hand, lift and expansion axes
     * @{ */
    /// Forwards to ::qm_set_gripper_route.
    int qm_set_gripper_route(qm_robot_handle* handle, int min_limit, int max_limit);
    /// Forwards to ::qm_set_gripper_release.
    int qm_set_gripper_release(qm_robot_handle* handle, int speed, bool block, int timeout);
    /// Forwards to ::qm_set_gripper_pick.
    int qm_set_gripper_pick(qm_robot_handle* handle, int speed, int force, bool block, int timeout);
    /// Forwards to ::qm_set_gripper_pick_on.
    int qm_set_gripper_pick_on(qm_robot_handle* handle, int speed, int force, bool block, int timeout);
    /// Forwards to ::qm_set_gripper_position.
    int qm_set_gripper_position(qm_robot_handle* handle, int position, bool block, int timeout);
    /// Forwards to ::qm_get_gripper_state.
    int qm_get_gripper_state(qm_robot_handle* handle, qm_gripper_state_t* state);
    /// Forwards to ::qm_set_hand_posture.
    int qm_set_hand_posture(qm_robot_handle* handle, int posture_num, bool block, int timeout);
    /// Forwards to ::qm_set_hand_seq.
    int qm_set_hand_seq(qm_robot_handle* handle, int seq_num, bool block, int timeout);
    /// Forwards to ::qm_set_hand_angle.
    int qm_set_hand_angle(qm_robot_handle* handle, const int* hand_angle);
    /// Forwards to ::qm_set_hand_follow_angle.
    int qm_set_hand_follow_angle(qm_robot_handle* handle, const int* hand_angle, bool block);
    /// Forwards to ::qm_set_hand_follow_pos.
    int qm_set_hand_follow_pos(qm_robot_handle* handle, const int* hand_pos, bool block);
    /// Forwards to ::qm_set_hand_speed.
    int qm_set_hand_speed(qm_robot_handle* handle, int speed);
    /// Forwards to ::qm_set_hand_force.
    int qm_set_hand_force(qm_robot_handle* handle, int hand_force);
    /// Forwards to ::qm_set_lift_speed.
    int qm_set_lift_speed(qm_robot_handle* handle, int speed);
    /// Forwards to ::qm_set_lift_height.
    int qm_set_lift_height(qm_robot_handle* handle, int speed, int height, int block);
    /// Forwards to ::qm_get_lift_state.
    int qm_get_lift_state(qm_robot_handle* handle, qm_expand_state_t* state);
    /// Forwards to ::qm_set_expand_speed.
    int qm_set_expand_speed(qm_robot_handle* handle, int speed);
    /// Forwards to ::qm_set_expand_pos.
    int qm_set_expand_pos(qm_robot_handle* handle, int speed, int pos, int block);
    /// Forwards to ::qm_get_expand_state.
    int qm_get_expand_state(qm_robot_handle* handle, qm_expand_state_t* state);
    /// Forwards to ::qm_set_qm_plus_mode.
    int qm_set_qm_plus_mode(qm_robot_handle* handle, int mode);
    /// Forwards to ::qm_get_qm_plus_mode.
    int qm_get_qm_plus_mode(qm_robot_handle* handle, int* mode);
    /// Forwards to ::qm_set_qm_plus_touch.
    int qm_set_qm_plus_touch(qm_robot_handle* handle, int mode);
    /// Forwards to ::qm_get_qm_plus_touch.
    int qm_get_qm_plus_touch(qm_robot_handle* handle, int* mode);
    /// Forwards to ::qm_get_qm_plus_base_info.
    int qm_get_qm_plus_base_info(qm_robot_handle* handle, qm_plus_base_info_t* info);
    /// Forwards to ::qm_get_qm_plus_state_info.
    int qm_get_qm_plus_state_info(qm_robot_handle* handle, qm_plus_state_info_t* info);
    /** @} */

    /** @name Force sensing, drag teaching and force-position control
     * @{ */
    /// Forwards to ::qm_get_force_data.
    int qm_get_force_data(qm_robot_handle* handle, qm_force_data_t* data);
    /// Forwards to ::qm_clear_force_data.
    int qm_clear_force_data(qm_robot_handle* handle);
    /// Forwards to ::qm_set_force_sensor.
    int qm_set_force_sensor(qm_robot_handle* handle, bool block);
    /// Forwards to ::qm_manual_set_force.
    int qm_manual_set_force(qm_robot_handle* handle, int count, float* joint, bool block);
    /// Forwards to ::qm_stop_set_force_sensor.
    int qm_stop_set_force_sensor(qm_robot_handle* handle);
    /// Forwards to ::qm_get_Fz.
    int qm_get_Fz(qm_robot_handle* handle, qm_fz_data_t* data);
    /// Forwards to ::qm_clear_Fz.
    int qm_clear_Fz(qm_robot_handle* handle);
    /// Forwards to ::qm_auto_set_Fz.
    int qm_auto_set_Fz(qm_robot_handle* handle, bool block);
    /// Forwards to ::qm_manual_set_Fz.
    int qm_manual_set_Fz(qm_robot_handle* handle, float* joint1, float* joint2, bool block);
    /// Forwards to ::qm_start_drag_teach.
    int qm_start_drag_teach(qm_robot_handle* handle, int trajectory_record);
    /// Forwards to ::qm_stop_drag_teach.
    int qm_stop_drag_teach(qm_robot_handle* handle);
    /// Declared but deliberately not defined: a program that calls it does not link.
    /// Call the function ::qm_start_multi_drag_teach instead.
    int qm_start_multi_drag_teach(qm_robot_handle* handle, int mode, int singular_wall);
    /// Forwards to ::qm_start_multi_drag_teach_new.
    int qm_start_multi_drag_teach_new(qm_robot_handle* handle, qm_multi_drag_teach_t teach_state);
    /// Forwards to ::qm_set_drag_teach_sensitivity.
    int qm_set_drag_teach_sensitivity(qm_robot_handle* handle, int grade);
    /// Forwards to ::qm_get_drag_teach_sensitivity.
    int qm_get_drag_teach_sensitivity(qm_robot_handle* handle, int* grade);
    /// Forwards to ::qm_drag_trajectory_origin.
    int qm_drag_trajectory_origin(qm_robot_handle* handle, int block);
    /// Forwards to ::qm_run_drag_trajectory.
    int qm_run_drag_trajectory(qm_robot_handle* handle, int timeout);
    /// Forwards to ::qm_pause_drag_trajectory.
    int qm_pause_drag_trajectory(qm_robot_handle* handle);
    /// Forwards to ::qm_continue_drag_trajectory.
    int qm_continue_drag_trajectory(qm_robot_handle* handle);
    /// Forwards to ::qm_stop_drag_trajectory.
    int qm_stop_drag_trajectory(qm_robot_handle* handle);
    /// Declared but deliberately not defined: a program that calls it does not link.
    /// Call the function ::qm_set_force_position instead.
    int qm_set_force_position(qm_robot_handle* handle, int sensor, int mode, int direction, float N);
    /// Forwards to ::qm_set_force_position_new.
    int qm_set_force_position_new(qm_robot_handle* handle, qm_force_position_t param);
    /// Forwards to ::qm_stop_force_position.
    int qm_stop_force_position(qm_robot_handle* handle);
    /// Forwards to ::qm_set_force_drag_mode.
    int qm_set_force_drag_mode(qm_robot_handle* handle, int mode);
    /// Forwards to ::qm_get_force_drag_mode.
    int qm_get_force_drag_mode(qm_robot_handle* handle, int* mode);
    /// Forwards to ::qm_start_force_position_move.
    int qm_start_force_position_move(qm_robot_handle* handle);
    /// Forwards to ::qm_stop_force_position_move.
    int qm_stop_force_position_move(qm_robot_handle* handle);
    /// Forwards to ::qm_force_position_move_joint.
    int qm_force_position_move_joint(qm_robot_handle* handle, const float* joint, int sensor, int mode,
                                     int dir, float force, bool follow);
    /// Forwards to ::qm_force_position_move_pose.
    int qm_force_position_move_pose(qm_robot_handle* handle, qm_pose_t pose, int sensor, int mode, int dir,
                                    float force, bool follow);
    /// Forwards to ::qm_force_position_move.
    int qm_force_position_move(qm_robot_handle* handle, qm_force_position_move_t param);
    /** @} */

    /** @name Projects, programs, trajectory files and global waypoints
     * @{ */
    /// Forwards to ::qm_send_project.
    int qm_send_project(qm_robot_handle* handle, qm_send_project_t project, int* err_line);
    /// Forwards to ::qm_send_project_lock.
    int qm_send_project_lock(qm_robot_handle* handle, const char* data, int data_len, int* err_line);
    /// Forwards to ::qm_run_project.
    int qm_run_project(qm_robot_handle* handle, qm_send_project_t project, int file_size);
    /// Declared but deliberately not defined: a program that calls it does not link.
    /// Call the function ::qm_set_plan_speed instead.
    int qm_set_plan_speed(qm_robot_handle* handle, int speed);
    /// Forwards to ::qm_get_program_trajectory_list.
    int qm_get_program_trajectory_list(qm_robot_handle* handle, int page_num, int page_size,
                                       const char* vague_search, qm_program_trajectorys_t* trajectorys);
    /// Forwards to ::qm_get_program_run_state.
    int qm_get_program_run_state(qm_robot_handle* handle, qm_program_run_state_t* run_state);
    /// Forwards to ::qm_get_flowchart_program_run_state.
    int qm_get_flowchart_program_run_state(qm_robot_handle* handle, qm_flowchart_run_state_t* run_state);
    /// Forwards to ::qm_delete_program_trajectory.
    int qm_delete_program_trajectory(qm_robot_handle* handle, int id);
    /// Forwards to ::qm_update_program_trajectory.
    int qm_update_program_trajectory(qm_robot_handle* handle, int id, int speed, const char* name);
    /// Forwards to ::qm_set_default_run_program.
    int qm_set_default_run_program(qm_robot_handle* handle, int id);
    /// Forwards to ::qm_get_default_run_program.
    int qm_get_default_run_program(qm_robot_handle* handle, int* id);
    /// Forwards to ::qm_set_program_id_run.
    int qm_set_program_id_run(qm_robot_handle* handle, int id, int speed, int block);
    /// Forwards to ::qm_save_trajectory.
    int qm_save_trajectory(qm_robot_handle* handle, const char* file_name, int* num);
    /// Forwards to ::qm_add_global_waypoint.
    int qm_add_global_waypoint(qm_robot_handle* handle, qm_waypoint_t waypoint);
    /// Forwards to ::qm_update_global_waypoint.
    int qm_update_global_waypoint(qm_robot_handle* handle, qm_waypoint_t waypoint);
    /// Forwards to ::qm_delete_global_waypoint.
    int qm_delete_global_waypoint(qm_robot_handle* handle, const char* point_name);
    /// Forwards to ::qm_get_given_global_waypoint.
    int qm_get_given_global_waypoint(qm_robot_handle* handle, const char* name, qm_waypoint_t* point);
    /// Forwards to ::qm_get_global_waypoints_list.
    int qm_get_global_waypoints_list(qm_robot_handle* handle, int page_num, int page_size,
                                     const char* vague_search, qm_waypoint_list_t* point_list);
    /// Forwards to ::qm_get_trajectory_file_list.
    int qm_get_trajectory_file_list(qm_robot_handle* handle, int page_num, int page_size,
                                    const char* vague_search, qm_trajectory_list_t* trajectory_list);
    /// Forwards to ::qm_set_run_trajectory.
    int qm_set_run_trajectory(qm_robot_handle* handle, const char* trajectory_name);
    /// Forwards to ::qm_delete_trajectory_file.
    int qm_delete_trajectory_file(qm_robot_handle* handle, const char* trajectory_name);
    /// Forwards to ::qm_save_trajectory_file.
    int qm_save_trajectory_file(qm_robot_handle* handle, const char* trajectory_name);
    /** @} */

    /** @name Safety zones and arm model configuration
     * @{ */
    /// Forwards to ::qm_add_electronic_fence_config.
    int qm_add_electronic_fence_config(qm_robot_handle* handle, qm_fence_config_t config);
    /// Forwards to ::qm_update_electronic_fence_config.
    int qm_update_electronic_fence_config(qm_robot_handle* handle, qm_fence_config_t config);
    /// Forwards to ::qm_delete_electronic_fence_config.
    int qm_delete_electronic_fence_config(qm_robot_handle* handle, const char* form_name);
    /// Forwards to ::qm_get_electronic_fence_list_names.
    int qm_get_electronic_fence_list_names(qm_robot_handle* handle, qm_fence_names_t* names, int* len);
    /// Forwards to ::qm_get_given_electronic_fence_config.
    int qm_get_given_electronic_fence_config(qm_robot_handle* handle, const char* given_name,
                                             qm_fence_config_t* config);
    /// Forwards to ::qm_get_electronic_fence_list_infos.
    int qm_get_electronic_fence_list_infos(qm_robot_handle* handle, qm_fence_config_list_t* config_list,
                                           int* len);
    /// Forwards to ::qm_set_electronic_fence_enable.
    int qm_set_electronic_fence_enable(qm_robot_handle* handle, qm_electronic_fence_enable_t state);
    /// Forwards to ::qm_get_electronic_fence_enable.
    int qm_get_electronic_fence_enable(qm_robot_handle* handle, qm_electronic_fence_enable_t* state);
    /// Forwards to ::qm_set_electronic_fence_config.
    int qm_set_electronic_fence_config(qm_robot_handle* handle, qm_fence_config_t config);
    /// Forwards to ::qm_get_electronic_fence_config.
    int qm_get_electronic_fence_config(qm_robot_handle* handle, qm_fence_config_t* config);
    /// Forwards to ::qm_set_virtual_wall_enable.
    int qm_set_virtual_wall_enable(qm_robot_handle* handle, qm_electronic_fence_enable_t state);
    /// Forwards to ::qm_get_virtual_wall_enable.
    int qm_get_virtual_wall_enable(qm_robot_handle* handle, qm_electronic_fence_enable_t* state);
    /// Forwards to ::qm_set_virtual_wall_config.
    int qm_set_virtual_wall_config(qm_robot_handle* handle, qm_fence_config_t config);
    /// Forwards to ::qm_get_virtual_wall_config.
    int qm_get_virtual_wall_config(qm_robot_handle* handle, qm_fence_config_t* config);
    /// Forwards to ::qm_set_self_collision_enable.
    int qm_set_self_collision_enable(qm_robot_handle* handle, bool state);
    /// Forwards to ::qm_get_self_collision_enable.
    int qm_get_self_collision_enable(qm_robot_handle* handle, bool* state);
    /// Declared but deliberately not defined: a program that calls it does not link.
    /// Call the function ::qm_set_DH_data instead.
    int qm_set_DH_data(qm_robot_handle* handle, qm_dh_t dh);
    /// Forwards to ::qm_set_DH_data_default.
    int qm_set_DH_data_default(qm_robot_handle* handle);
    /// Forwards to ::qm_set_install_pose.
    int qm_set_install_pose(qm_robot_handle* handle, float x, float y, float z);
    /// Declared but deliberately not defined: a program that calls it does not link.
    /// Call the function ::qm_get_joint_software_version instead.
    int qm_get_joint_software_version(qm_robot_handle* handle, int* version, qm_version_t* joint_v);
    /// Declared but deliberately not defined: a program that calls it does not link.
    /// Call the function ::qm_get_tool_software_version instead.
    int qm_get_tool_software_version(qm_robot_handle* handle, int* version, qm_version_t* tool_v);
    /// Forwards to ::qm_set_arm_run_mode.
    int qm_set_arm_run_mode(qm_robot_handle* handle, int mode);
    /// Forwards to ::qm_get_arm_run_mode.
    int qm_get_arm_run_mode(qm_robot_handle* handle, int* mode);
    /// Forwards to ::qm_set_arm_emergency_stop.
    int qm_set_arm_emergency_stop(qm_robot_handle* handle, bool state);
    /** @} */
};

#endif /* QM_SERVICE_H */
