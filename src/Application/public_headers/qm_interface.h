/** @file
 * The function API: connecting to up to five arm controllers, commanding and querying each arm,
 * its peripherals and its controller, receiving the realtime push, and local kinematics.
 *
 * Units: joint angles in degrees, positions and lengths in metres, orientations in radians,
 * timeouts in milliseconds unless a function says seconds. Joint arrays carry the arm's dof
 * values (qm_get_robot_info()); 7 slots always suffice. Texts are NUL-terminated.
 *
 * Every command returns one of these codes; a function names only the codes that differ:
 * | code | meaning |
 * |---|---|
 * | 0 | success: the controller answered and the answer said so |
 * | 1 | the controller refused (its state member was false), or an argument was rejected locally |
 * | -1 | unknown handle, disconnected arm, or the request could not be sent |
 * | -2 | no reply within the timeout |
 * | -3 | the reply could not be parsed or lacked a member |
 * | -4 | blocking move: the arrival named another device; elsewhere a refusal before sending |
 * | -5 | blocking move, single-thread mode: no arrival within the given seconds |
 * | -6 | blocking move, threaded modes: the arrival timed out |
 *
 * Threads: commands may come from any thread; the event callback runs on the TCP receive thread
 * and the realtime callback on the UDP thread. The qm_algo_* functions share one kinematics
 * model and must be called from one thread at a time. */
#ifndef QM_INTERFACE_H
#define QM_INTERFACE_H

#include "qm_define.h"
#include "qm_version.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- library and connection ---- */
/** @name Library and connection
 * @{ */

/** Starts the library in the given thread mode; call it once before connecting. 0, or -1 when a
 * thread cannot start. */
int qm_init(qm_thread_mode_e mode);
/** The library version text "1.1.0"; static, not to be freed. */
const char* qm_api_version(void);
/** Connects to the controller at ip (IPv4 text) and TCP port, and reads its model, push
 * configuration, frames, install pose, limits and DH table. NULL when all five slots are taken.
 * A failed connect or read still occupies a slot and returns a handle whose id is -1. */
qm_robot_handle* qm_create_robot_arm(const char* ip, int port);
/** Closes one connection and frees its slot; -1 for an unknown handle. */
int qm_delete_robot_arm(qm_robot_handle* handle);
/** Stops the receive threads and closes every connection; always 0. */
int qm_destory(void);
/** Sets the reply timeout of queries (default 500) and of set commands (default 1000), in
 * milliseconds; the Modbus timeout stays 1000. */
void qm_set_timeout(int timeout);
/** Model, dof, force type and controller generation of a connected arm; -2 while the dof is unknown. */
int qm_get_robot_info(qm_robot_handle* handle, qm_robot_info_t* robot_info);
/** Overrides the joint count (1..10, else -2). */
int qm_set_robot_dof(qm_robot_handle* handle, int dof);

/** @} */

/* ---- logging ---- */
/** @name Logging
 * @{ */

/** Installs a log sink (NULL restores the default sink on standard error) receiving the messages
 * of level (a LogLevel: 0 debug to 3 error) and above. */
void qm_set_log_call_back(LogCallback callback, int level);
/** Appends every message, time-stamped, to the file at path; ends the process if it cannot be opened. */
void qm_set_log_save(const char* path);

/** @} */

/* ---- command exchange and events ---- */
/** @name Command exchange and events
 * @{ */

/** The trajectory the controller is planning: joint targets in degrees (dof values) or a pose
 * (x, y, z metres, rx, ry, rz radians) in data. Awaits "arm_current_trajectory" up to 1000 ms;
 * -1 for a malformed reply or unknown type. An idle answer also sets the connection's dof. */
int qm_get_arm_current_trajectory(qm_robot_handle* handle, qm_arm_current_trajectory_e* type, float* data);
/** Registers the callback for trajectory-arrival and program-finished events (NULL keeps the old
 * one); it runs on the receive thread. */
void qm_get_arm_event_call_back(qm_event_callback_ptr event_callback);

/** @} */

/* ---- realtime state push ---- */
/** @name Realtime state push
 * @{ */

/** Registers the callback that receives every realtime state datagram (NULL keeps the old one);
 * it runs on the UDP thread and must return quickly. */
void qm_realtime_arm_state_call_back(qm_realtime_arm_state_callback_ptr realtime_callback);
/** Configures the controller's realtime push; awaits the answer for the query timeout plus
 * 200 ms. -4 for a cycle or port below 1 or an ip text of fewer than 7 or more than 15
 * characters (nothing is sent). */
int qm_set_realtime_push(qm_robot_handle* handle, qm_realtime_push_config_t config);
/** Reads the realtime push configuration and, when enabled in the triple thread mode, starts
 * receiving on its port. */
int qm_get_realtime_push(qm_robot_handle* handle, qm_realtime_push_config_t* config);

/** @} */

/* ---- kinematics bridge ---- */
/** @name Kinematics bridge
 * Local kinematics, no controller involved: joints in degrees, lengths in metres, orientations in
 * radians. These calls share one global model and must not run from several threads at once.
 * Functions taking a handle first load that connected arm's configuration; a NULL handle keeps
 * the one configured offline.
 * @{ */

/** The kinematics library version text "1.5.3-f0364d3b". */
const char* qm_algo_version(void);
/** Loads the defaults of an arm model and force-sensing variant; QM_MODEL_QM_63_III_E loads the
 * QML63IV data, QM_MODEL_UNIVERSAL_E and unknown models load QM65. */
void qm_algo_init_sys_data(qm_robot_arm_model_e Mode, qm_force_type_e Type);
/** Sets the installation angles about X, Y, Z, degrees. */
void qm_algo_set_angle(float x, float y, float z);
/** Reads the installation angles, degrees. */
void qm_algo_get_angle(float* x, float* y, float* z);
/** Sets the work frame the poses are expressed in. */
void qm_algo_set_workframe(const qm_frame_t* frame);
/** Reads the current work frame (pose only). */
void qm_algo_get_curr_workframe(qm_frame_t* frame);
/** Sets the tool frame relative to the flange. */
void qm_algo_set_toolframe(const qm_frame_t* frame);
/** Reads the current tool frame (pose only). */
void qm_algo_get_curr_toolframe(qm_frame_t* frame);
/** Sets the upper joint position limits, degrees, one per joint of the model. */
void qm_algo_set_joint_max_limit(const float* joint_limit);
/** Reads the upper joint position limits, degrees. */
void qm_algo_get_joint_max_limit(float* joint_limit);
/** Sets the lower joint position limits, degrees. */
void qm_algo_set_joint_min_limit(const float* joint_limit);
/** Reads the lower joint position limits, degrees. */
void qm_algo_get_joint_min_limit(float* joint_limit);
/** Sets the joint speed limits, degrees per second. */
void qm_algo_set_joint_max_speed(const float* joint_speed);
/** Reads the joint speed limits, degrees per second. */
void qm_algo_get_joint_max_speed(float* joint_speed);
/** Sets the joint acceleration limits in the controller's unit (read back unchanged). */
void qm_algo_set_joint_max_acc(const float* joint_acc);
/** Reads the joint acceleration limits in the controller's unit. */
void qm_algo_get_joint_max_acc(float* joint_acc);
/** Replaces the DH table in use (metres, radians); the next kinematics call uses every entry,
 * calibrated lengths and twists included. */
void qm_algo_set_dh(qm_dh_t dh);
/** The DH table in use. */
qm_dh_t qm_algo_get_dh(void);
/** true: the seven-joint solver searches the whole arm-angle range; false: only near the reference. */
void qm_algo_set_redundant_parameter_traversal_mode(bool mode);
/** Loads a connected arm's model, frames, limits, install angles and DH table; NULL changes nothing. */
void qm_algo_arm_state_set(qm_robot_handle* handle);
/** Tool pose in the work frame for the joints; an all-zero pose when joint is NULL.
 * The work frame is included here but not in qm_algo_inverse_kinematics, whose target is in the
 * base frame: with a work frame set, a round trip through both does not close unless the pose is
 * first converted with qm_algo_workframe2base. Within about 0.1 degrees of +-90 degrees pitch the
 * Euler angles lose up to 3e-3 rad (yaw is folded into roll); round trips there should pass the
 * quaternion (flag 0). */
qm_pose_t qm_algo_forward_kinematics(qm_robot_handle* handle, const float* joint);
/** Joints reaching params.q_pose nearest params.q_in: 0 solved, 1 no solution,
 * -1 reference outside the joint limits, -2 quaternion not normalised (flag 0).
 * The target is the tool pose in the base frame: the work frame is not applied, although
 * qm_algo_forward_kinematics applies it. Near +-90 degrees pitch the Euler angles of a pose carry
 * up to 3e-3 rad less accuracy than its quaternion; use flag 0 there. */
int qm_algo_inverse_kinematics(qm_robot_handle* handle, qm_inverse_kinematics_params_t params, float* q_out);
/** Every solution branch for the target, unfiltered, joints in degrees. */
qm_inverse_kinematics_all_solve_t qm_algo_inverse_kinematics_all(qm_robot_handle* handle, qm_inverse_kinematics_params_t params);
/** Index of the solution nearest q_ref by weighted squared distance within the limits, or -1. */
int qm_algo_ikine_select_ik_solve(const float* weight, qm_inverse_kinematics_all_solve_t params);
/** 0 when every joint (degrees) lies within its limits, else non-zero. */
int qm_algo_ikine_check_joint_position_limit(const float* q_solve);
/** 0 when no joint moves from q_ref to q_solve (degrees) faster than its limit within dt seconds. */
int qm_algo_ikine_check_joint_velocity_limit(float dt, const float* q_ref, const float* q_solve);
/** -1 when any joint (degrees) lies outside its limits, else 0. */
int qm_algo_judgment_overpos(const float* joint);
/** Euler angles (R = Rz * Ry * Rx) to a unit quaternion. */
qm_quat_t qm_algo_euler2quaternion(qm_euler_t eu);
/** Quaternion to Euler angles. */
qm_euler_t qm_algo_quaternion2euler(qm_quat_t qua);
/** Euler angles to a rotation matrix (3 x 3 used). */
qm_matrix_t qm_algo_euler2matrix(qm_euler_t eu);
/** Position and Euler angles of a pose to a 4 x 4 transform. */
qm_matrix_t qm_algo_pos2matrix(qm_pose_t state);
/** 4 x 4 transform to a pose with position, quaternion and Euler angles. */
qm_pose_t qm_algo_matrix2pos(qm_matrix_t matrix);
/** Re-expresses a base pose in the frame whose transform is matrix. */
qm_pose_t qm_algo_base2workframe(qm_matrix_t matrix, qm_pose_t state);
/** Re-expresses a pose given in the frame whose transform is matrix in the base. */
qm_pose_t qm_algo_workframe2base(qm_matrix_t matrix, qm_pose_t state);
/** Flange pose to tool pose with the current tool frame. */
qm_pose_t qm_algo_end2tool(qm_robot_handle* handle, qm_pose_t eu_end);
/** Tool pose to flange pose with the current tool frame. */
qm_pose_t qm_algo_tool2end(qm_robot_handle* handle, qm_pose_t eu_tool);
/** -1 when the smallest singular value of the geometric Jacobian at q (degrees) is below the limit, else 0. */
int qm_algo_universal_singularity_analyse(const float* q, float singular_value_limit);
/** 0 clear, -1 shoulder, -2 elbow, -3 wrist singularity near q (degrees); writes the distance (m or rad). */
int qm_algo_kin_robot_singularity_analyse(const float* q, float* distance);
/** Sets the elbow (rad), wrist (rad) and shoulder (m) singularity thresholds. */
void qm_algo_kin_set_singularity_thresholds(float limit_qe, float limit_qw, float limit_d);
/** Reads the elbow (rad), wrist (rad) and shoulder (m) singularity thresholds. */
void qm_algo_kin_get_singularity_thresholds(float* limit_qe, float* limit_qw, float* limit_d);
/** Restores the default singularity thresholds: 0.1 rad, 0.1 rad, 0.05 m. */
void qm_algo_kin_singularity_thresholds_init(void);
/** Stores tool-envelope sphere toolSphere_i (0 to 4). */
void qm_algo_set_tool_envelope(int toolSphere_i, qm_tool_sphere_t data);
/** Reads tool-envelope sphere toolSphere_i (0 to 4). */
qm_tool_sphere_t qm_algo_get_tool_envelope(int toolSphere_i);
/** 1 when the arm at joint (degrees) hits itself or its tool envelope or a joint is outside its limits, else 0. */
int qm_algo_safety_robot_self_collision_detection(const float* joint);
/** Arm angle (rad) of a seven-joint QM75 configuration q_ref (degrees). */
float qm_algo_calculate_arm_angle_from_config_qm75(const float* q_ref);
/** QM75 joints (degrees) reaching target at the given arm angle (rad) nearest q_ref; 0 on success. */
int qm_algo_inverse_kinematics_qm75_for_arm_angle(const float* q_ref, qm_pose_t target, float arm_angle, float* q_solve);
/** Tool pose after a step of the given lengths (m) along the tool's own axes from curr_joint (degrees). */
qm_pose_t qm_algo_cartesian_tool(qm_robot_handle* handle, const float* curr_joint, float move_lengthx, float move_lengthy, float move_lengthz);
/** Tool pose after turning rotate_angle degrees about axis 1 X, 2 Y, 3 Z of the frame choose_axis; the position stays. */
qm_pose_t qm_algo_rotate_move(qm_robot_handle* handle, const float* curr_joint, int rotate_axis, float rotate_angle, qm_pose_t choose_axis);
/** poseCurrent stepped by deltaPosAndRot (dx, dy, dz m; rx, ry, rz rad) in frame 0 work or 1 tool; other frames give a
 * zero pose. A step without rotation returns poseCurrent's Euler angles and quaternion unchanged. */
qm_pose_t qm_algo_pose_move(qm_robot_handle* handle, qm_pose_t poseCurrent, const float* deltaPosAndRot, int frameMode);

/** @} */

/* ---- arm state and information ---- */
/** @name Arm state and information
 * @{ */

/** Reads the controller's software versions and learns the arm's model, dof, force-sensing
 * variant and controller generation; -3 malformed reply, -1 unknown force suffix or handle. */
int qm_get_arm_software_info(qm_robot_handle* handle, qm_arm_software_version_t* software_info);
/** End pose (metres, radians, quaternion), joint angles (degrees) and error codes of the arm. */
int qm_get_current_arm_state(qm_robot_handle* handle, qm_current_arm_state_t* state);
/** Joint temperatures, dof values (controller's thousandths divided by 1000). */
int qm_get_current_joint_temperature(qm_robot_handle* handle, float* temperature);
/** Joint currents, dof values (controller's thousandths divided by 1000). */
int qm_get_current_joint_current(qm_robot_handle* handle, float* current);
/** Joint voltages, dof values (controller's thousandths divided by 1000). */
int qm_get_current_joint_voltage(qm_robot_handle* handle, float* voltage);
/** Joint angles, dof values in degrees. */
int qm_get_joint_degree(qm_robot_handle* handle, float* joint);
/** Currents, enables, temperatures, voltages and error codes of every joint, plus the arm's errors. */
int qm_get_arm_all_state(qm_robot_handle* handle, qm_arm_all_state_t* state);
/** Sets the initial pose from dof joint angles in degrees. */
int qm_set_init_pose(qm_robot_handle* handle, const float* joint);
/** Reads the initial pose, dof joint angles in degrees. */
int qm_get_init_pose(qm_robot_handle* handle, float* joint);

/** @} */

/* ---- motion ---- */
/** @name Motion
 * Planned moves: v speed, r blend radius, trajectory_connect 1 joins the next move (the blocking
 * variant then returns once accepted). The _nblock variant returns once the controller accepted
 * the move; _block waits for its arrival: 1 it ended without success, -4 another device arrived,
 * -5 no arrival within block one-second waits (single-thread mode), -6 arrival timed out or the
 * arm state could not be read (threaded modes). The dispatcher calls _block for a non-zero block.
 * @{ */

/** Joint-space move to joint (dof angles, degrees). */
int qm_movej(qm_robot_handle* handle, const float* joint, int v, int r, int trajectory_connect, int block);
/** Joint-space move to joint, returning once accepted. */
int qm_movej_nblock(qm_robot_handle* handle, const float* joint, int v, int r, int trajectory_connect);
/** Joint-space move to joint, waiting for its arrival. */
int qm_movej_block(qm_robot_handle* handle, const float* joint, int v, int r, int trajectory_connect, int block);
/** Straight-line move to pose (position and Euler angles). */
int qm_movel(qm_robot_handle* handle, qm_pose_t pose, int v, int r, int trajectory_connect, int block);
/** Straight-line move to pose, returning once accepted. */
int qm_movel_nblock(qm_robot_handle* handle, qm_pose_t pose, int v, int r, int trajectory_connect);
/** Straight-line move to pose, waiting for its arrival. */
int qm_movel_block(qm_robot_handle* handle, qm_pose_t pose, int v, int r, int trajectory_connect, int block);
/** Straight-line move by offset in frame_type; the non-blocking form moves to offset as an absolute pose. */
int qm_movel_offset(qm_robot_handle* handle, qm_pose_t offset, int v, int r, int trajectory_connect, int frame_type, int block);
/** Straight-line move to offset as an absolute pose (frame_type is not sent), returning once accepted. */
int qm_movel_offset_nblock(qm_robot_handle* handle, qm_pose_t offset, int v, int r, int trajectory_connect, int frame_type);
/** Straight-line move by offset in frame_type, waiting for its arrival. */
int qm_movel_offset_block(qm_robot_handle* handle, qm_pose_t offset, int v, int r, int trajectory_connect, int frame_type, int block);
/** Spline move through pose. */
int qm_moves(qm_robot_handle* handle, qm_pose_t pose, int v, int r, int trajectory_connect, int block);
/** Spline move through pose, returning once accepted. */
int qm_moves_nblock(qm_robot_handle* handle, qm_pose_t pose, int v, int r, int trajectory_connect);
/** Spline move through pose, waiting for its arrival. */
int qm_moves_block(qm_robot_handle* handle, qm_pose_t pose, int v, int r, int trajectory_connect, int block);
/** Arc move via pose_via to pose_to, loop times; r goes out times 1000, unlike the other moves.
 * -6 for a trajectory_connect other than 0 or 1. */
int qm_movec(qm_robot_handle* handle, qm_pose_t pose_via, qm_pose_t pose_to, int v, int r, int loop, int trajectory_connect, int block);
/** Arc move via pose_via to pose_to, returning once accepted. */
int qm_movec_nblock(qm_robot_handle* handle, qm_pose_t pose_via, qm_pose_t pose_to, int v, int r, int loop, int trajectory_connect);
/** Arc move via pose_via to pose_to, waiting for its arrival. */
int qm_movec_block(qm_robot_handle* handle, qm_pose_t pose_via, qm_pose_t pose_to, int v, int r, int loop, int trajectory_connect, int block);
/** Joint-space move to the Cartesian target pose. */
int qm_movej_p(qm_robot_handle* handle, qm_pose_t pose, int v, int r, int trajectory_connect, int block);
/** Joint-space move to pose, returning once accepted. */
int qm_movej_p_nblock(qm_robot_handle* handle, qm_pose_t pose, int v, int r, int trajectory_connect);
/** Joint-space move to pose, waiting for its arrival. */
int qm_movej_p_block(qm_robot_handle* handle, qm_pose_t pose, int v, int r, int trajectory_connect, int block);
/** Streams one joint pass-through target without awaiting a reply; an out-of-range radio only warns. */
int qm_movej_canfd(qm_robot_handle* handle, qm_movej_canfd_mode_t config);
/** Streams one pose pass-through target without awaiting a reply; an out-of-range radio only warns. */
int qm_movep_canfd(qm_robot_handle* handle, qm_movep_canfd_mode_t config);
/** Streams one joint follow target (dof angles, degrees) without awaiting a reply. */
int qm_movej_follow(qm_robot_handle* handle, float* joint);
/** Streams one pose follow target without awaiting a reply. */
int qm_movep_follow(qm_robot_handle* handle, qm_pose_t pose);

/** @} */

/* ---- jog, teach and stop ---- */
/** @name Jog, teach and stop
 * Step moves: the _nblock variant only sends; _block awaits acceptance and arrival with the
 * result codes of the planned moves; the dispatcher calls _block for a non-zero block.
 * @{ */

/** Steps joint joint_num by step degrees at speed v. */
int qm_set_joint_step(qm_robot_handle* handle, int joint_num, float step, int v, int block);
/** Steps joint joint_num by step degrees without awaiting a reply. */
int qm_set_joint_step_nblock(qm_robot_handle* handle, int joint_num, float step, int v);
/** Steps joint joint_num by step degrees and waits for the arrival. */
int qm_set_joint_step_block(qm_robot_handle* handle, int joint_num, float step, int v, int block);
/** Steps the tool by step metres along axis type. */
int qm_set_pos_step(qm_robot_handle* handle, qm_pos_teach_type_e type, float step, int v, int block);
/** Steps the tool by step metres along type without awaiting a reply. */
int qm_set_pos_step_nblock(qm_robot_handle* handle, qm_pos_teach_type_e type, float step, int v);
/** Steps the tool by step metres along type and waits for the arrival. */
int qm_set_pos_step_block(qm_robot_handle* handle, qm_pos_teach_type_e type, float step, int v, int block);
/** Turns the tool by step radians about axis type. */
int qm_set_ort_step(qm_robot_handle* handle, qm_ort_teach_type_e type, float step, int v, int block);
/** Turns the tool by step radians about type without awaiting a reply. */
int qm_set_ort_step_nblock(qm_robot_handle* handle, qm_ort_teach_type_e type, float step, int v);
/** Turns the tool by step radians about type and waits for the arrival. */
int qm_set_ort_step_block(qm_robot_handle* handle, qm_ort_teach_type_e type, float step, int v, int block);
/** Jogs joint joint_num at speed v until stopped; direction non-zero positive, 0 negative. */
int qm_set_joint_teach(qm_robot_handle* handle, int joint_num, int direction, int v);
/** Jogs the tool along axis type until stopped; direction non-zero positive, 0 negative. */
int qm_set_pos_teach(qm_robot_handle* handle, qm_pos_teach_type_e type, int direction, int v);
/** Turns the tool about axis type until stopped; direction non-zero positive, 0 negative. */
int qm_set_ort_teach(qm_robot_handle* handle, qm_ort_teach_type_e type, int direction, int v);
/** Ends a jog. */
int qm_set_stop_teach(qm_robot_handle* handle);
/** Selects the frame the Cartesian jogs and steps refer to. */
int qm_set_teach_frame(qm_robot_handle* handle, int frame_type);
/** Reads the frame the Cartesian jogs and steps refer to; unchanged on failure. */
int qm_get_teach_frame(qm_robot_handle* handle, int* frame_type);
/** Stops the arm slowly. */
int qm_set_arm_slow_stop(qm_robot_handle* handle);
/** Stops the arm at once. */
int qm_set_arm_stop(qm_robot_handle* handle);
/** Pauses the running trajectory. */
int qm_set_arm_pause(qm_robot_handle* handle);
/** Resumes a paused trajectory. */
int qm_set_arm_continue(qm_robot_handle* handle);
/** Deletes the current trajectory. */
int qm_set_delete_current_trajectory(qm_robot_handle* handle);
/** Deletes every planned trajectory. */
int qm_set_arm_delete_trajectory(qm_robot_handle* handle);

/** @} */

/* ---- joint and arm limits ---- */
/** @name Joint and arm limits
 * @{ */

/** Software speed limit of one joint, degrees per second; then re-reads all (the result is the read's). */
int qm_set_joint_max_speed(qm_robot_handle* handle, int joint_num, float speed);
/** Software acceleration limit of one joint, degrees per second squared; then re-reads all (the
 * result is the read's). */
int qm_set_joint_max_acc(qm_robot_handle* handle, int joint_num, float acc);
/** Software lower position limit of one joint, degrees; then re-reads all (the result is the read's). */
int qm_set_joint_min_pos(qm_robot_handle* handle, int joint_num, float pos);
/** Software upper position limit of one joint, degrees; then re-reads all (the result is the read's). */
int qm_set_joint_max_pos(qm_robot_handle* handle, int joint_num, float pos);
/** Drive speed limit of one joint, degrees per second. */
int qm_set_joint_drive_max_speed(qm_robot_handle* handle, int joint_num, float speed);
/** Drive acceleration limit of one joint, degrees per second squared (sent without the division
 * by 6 that the read applies, so it reads back 6 times larger). */
int qm_set_joint_drive_max_acc(qm_robot_handle* handle, int joint_num, float acc);
/** Drive lower position limit of one joint, degrees. */
int qm_set_joint_drive_min_pos(qm_robot_handle* handle, int joint_num, float pos);
/** Drive upper position limit of one joint, degrees. */
int qm_set_joint_drive_max_pos(qm_robot_handle* handle, int joint_num, float pos);
/** Enables (1) or disables (0) one joint. */
int qm_set_joint_en_state(qm_robot_handle* handle, int joint_num, int en_state);
/** Makes the present position of one joint its zero. */
int qm_set_joint_zero_pos(qm_robot_handle* handle, int joint_num);
/** Clears the errors of one joint. */
int qm_set_joint_clear_err(qm_robot_handle* handle, int joint_num);
/** Sets the joint position limits automatically in the given mode; then re-reads them. */
int qm_auto_set_joint_limit(qm_robot_handle* handle, int limit_mode);
/** Cartesian line speed limit, metres per second. */
int qm_set_arm_max_line_speed(qm_robot_handle* handle, float speed);
/** Cartesian line acceleration limit, metres per second squared. */
int qm_set_arm_max_line_acc(qm_robot_handle* handle, float acc);
/** Cartesian angular speed limit, radians per second. */
int qm_set_arm_max_angular_speed(qm_robot_handle* handle, float speed);
/** Cartesian angular acceleration limit, radians per second squared. */
int qm_set_arm_max_angular_acc(qm_robot_handle* handle, float acc);
/** Initialises the tool centre point. */
int qm_set_arm_tcp_init(qm_robot_handle* handle);
/** Collision sensitivity stage. */
int qm_set_collision_state(qm_robot_handle* handle, int collision_stage);
/** Software speed limits, dof values in degrees per second; also cached in the connection. */
int qm_get_joint_max_speed(qm_robot_handle* handle, float* speed);
/** Software acceleration limits, dof values in degrees per second squared; also cached in the
 * connection. */
int qm_get_joint_max_acc(qm_robot_handle* handle, float* acc);
/** Software lower position limits, dof values in degrees; also cached in the connection. */
int qm_get_joint_min_pos(qm_robot_handle* handle, float* min_pos);
/** Software upper position limits, dof values in degrees; also cached in the connection. */
int qm_get_joint_max_pos(qm_robot_handle* handle, float* max_pos);
/** Drive speed limits, dof values in degrees per second. */
int qm_get_joint_drive_max_speed(qm_robot_handle* handle, float* speed);
/** Drive acceleration limits, dof values in degrees per second squared. */
int qm_get_joint_drive_max_acc(qm_robot_handle* handle, float* acc);
/** Drive lower position limits, dof values in degrees. */
int qm_get_joint_drive_min_pos(qm_robot_handle* handle, float* min_pos);
/** Drive upper position limits, dof values in degrees. */
int qm_get_joint_drive_max_pos(qm_robot_handle* handle, float* max_pos);
/** Enable states of the joints, dof values. */
int qm_get_joint_en_state(qm_robot_handle* handle, uint8_t* en_state);
/** Error flags and brake states of the joints, dof values each. */
int qm_get_joint_err_flag(qm_robot_handle* handle, uint16_t* err_flag, uint16_t* brake_state);
/** Cartesian line speed limit, metres per second. */
int qm_get_arm_max_line_speed(qm_robot_handle* handle, float* speed);
/** Cartesian line acceleration limit, metres per second squared. */
int qm_get_arm_max_line_acc(qm_robot_handle* handle, float* acc);
/** Cartesian angular speed limit, radians per second. */
int qm_get_arm_max_angular_speed(qm_robot_handle* handle, float* speed);
/** Cartesian angular acceleration limit, radians per second squared. */
int qm_get_arm_max_angular_acc(qm_robot_handle* handle, float* acc);
/** Collision sensitivity stage. */
int qm_get_collision_stage(qm_robot_handle* handle, int* collision_stage);

/** @} */

/* ---- tool and work frames ---- */
/** @name Tool and work frames
 * @{ */

/** Records one of the taught points (point_num) of a new tool frame. */
int qm_set_auto_tool_frame(qm_robot_handle* handle, int point_num);
/** Creates the tool frame taught by points, with payload (kg) and its centre of mass (metres). */
int qm_generate_auto_tool_frame(qm_robot_handle* handle, const char* name, float payload, float x, float y, float z);
/** Creates a tool frame from its pose, payload and centre of mass. */
int qm_set_manual_tool_frame(qm_robot_handle* handle, qm_frame_t frame);
/** Selects a tool frame by name; then re-reads the current one. */
int qm_change_tool_frame(qm_robot_handle* handle, const char* tool_name);
/** Deletes a tool frame by name; then re-reads the current one. */
int qm_delete_tool_frame(qm_robot_handle* handle, const char* tool_name);
/** Replaces pose, payload and centre of mass of the named tool frame. */
int qm_update_tool_frame(qm_robot_handle* handle, qm_frame_t frame);
/** The current tool frame; also cached in the connection. -1 for a malformed reply or a
 * negative centre-of-mass coordinate. */
int qm_get_current_tool_frame(qm_robot_handle* handle, qm_frame_t* tool_frame);
/** Names of all tool frames and their count; -2 for a malformed reply. */
int qm_get_total_tool_frame(qm_robot_handle* handle, qm_frame_name_t* frame_names, int* len);
/** The named tool frame. A reply that does not parse gives its length (a positive number). */
int qm_get_given_tool_frame(qm_robot_handle* handle, const char* name, qm_frame_t* frame);
/** Records one of the taught points (point_num) of the named new work frame. */
int qm_set_auto_work_frame(qm_robot_handle* handle, const char* workname, int point_num);
/** Creates a work frame from its pose. */
int qm_set_manual_work_frame(qm_robot_handle* handle, const char* work_name, qm_pose_t pose);
/** Selects a work frame by name; then re-reads the current one. */
int qm_change_work_frame(qm_robot_handle* handle, const char* frame_name);
/** Deletes a work frame by name; then re-reads the current one. */
int qm_delete_work_frame(qm_robot_handle* handle, const char* frame_name);
/** Replaces the pose of the named work frame. */
int qm_update_work_frame(qm_robot_handle* handle, const char* work_name, qm_pose_t pose);
/** The current work frame (name and pose); also cached in the connection. -1 for a malformed reply. */
int qm_get_current_work_frame(qm_robot_handle* handle, qm_frame_t* work_frame);
/** Names of all work frames and their count; -2 for a malformed reply. */
int qm_get_total_work_frame(qm_robot_handle* handle, qm_frame_name_t* frame_names, int* len);
/** The pose of the named work frame. A reply that does not parse gives its length (a positive
 * number). */
int qm_get_given_work_frame(qm_robot_handle* handle, const char* name, qm_pose_t* pose);
/** Sets the envelope spheres of a tool (metres). */
int qm_set_tool_envelope(qm_robot_handle* handle, qm_envelope_balls_list_t envelope);
/** Reads the envelope spheres of a tool (metres). */
int qm_get_tool_envelope(qm_robot_handle* handle, const char* tool_name, qm_envelope_balls_list_t* envelope);

/** @} */

/* ---- install pose and model data ---- */
/** @name Install pose and model data
 * @{ */

/** Installation angles about X, Y, Z in whole degrees; also cached in the connection. */
int qm_get_install_pose(qm_robot_handle* handle, float* x, float* y, float* z);
/** DH table of the arm: a and d in metres, alpha and offset in radians; also cached in the connection. */
int qm_get_DH_data(qm_robot_handle* handle, qm_dh_t* dh);

/** @} */

/* ---- controller, power, network and serial ports ---- */
/** @name Controller, power, network and serial ports
 * @{ */

/** Controller supply voltage, current and temperature (controller's thousandths divided by 1000) and its error flag. */
int qm_get_controller_state(qm_robot_handle* handle, float* voltage, float* current, float* temperature, int* err_flag);
/** Switches the arm's power on (1) or off (0). */
int qm_set_arm_power(qm_robot_handle* handle, int arm_power);
/** The arm's power state. */
int qm_get_arm_power_state(qm_robot_handle* handle, int* power_state);
/** The controller's accumulated run time. */
int qm_get_system_runtime(qm_robot_handle* handle, int* day, int* hour, int* min, int* sec);
/** Clears the accumulated run time. */
int qm_clear_system_runtime(qm_robot_handle* handle);
/** Joint odometers, dof values as the controller counts them. */
int qm_get_joint_odom(qm_robot_handle* handle, float* joint_odom);
/** Clears the joint odometers. */
int qm_clear_joint_odom(qm_robot_handle* handle);
/** Sets the wired network address. */
int qm_set_NetIP(qm_robot_handle* handle, const char* ip);
/** Clears the system errors. */
int qm_clear_system_err(qm_robot_handle* handle);
/** Makes the controller a wireless access point; only sent (0 once sent), takes 800 ms. */
int qm_set_wifi_ap(qm_robot_handle* handle, const char* wifi_name, const char* password);
/** Joins the controller to a wireless router; only sent (0 once sent), takes 800 ms. */
int qm_set_wifi_sta(qm_robot_handle* handle, const char* router_name, const char* password);
/** Sets the USB serial port's baud rate; only sent (0 once sent), takes 800 ms. */
int qm_set_usb(qm_robot_handle* handle, int baudrate);
/** Sets the RS485 port's baud rate; only sent (0 once sent), takes 800 ms. */
int qm_set_RS485(qm_robot_handle* handle, int baudrate);
/** The wired network: ip and mask into 16 bytes each, mac into 18, terminated. */
int qm_get_wired_net(qm_robot_handle* handle, char* ip, char* mask, char* mac);
/** The wireless network; a malformed reply leaves the record partly filled. */
int qm_get_wifi_net(qm_robot_handle* handle, qm_wifi_net_t* wifi_net);
/** Restores the default network settings. */
int qm_set_net_default(qm_robot_handle* handle);
/** Switches the wireless network off. */
int qm_set_wifi_close(qm_robot_handle* handle);
/** Mode, baud rate and Modbus timeout of the controller's RS485 port; the timeout is left
 * unchanged outside Modbus RTU mode. */
int qm_get_controller_RS485_mode(qm_robot_handle* handle, int* mode, int* baudrate, int* timeout);
/** Mode, baud rate and Modbus timeout of the tool's RS485 port; the timeout is left unchanged
 * outside Modbus RTU mode. */
int qm_get_tool_RS485_mode(qm_robot_handle* handle, int* mode, int* baudrate, int* timeout);
/** Mode and baud rate of the controller's RS485 port (fourth controller generation). */
int qm_get_controller_rs485_mode_v4(qm_robot_handle* handle, int* controller_rs485_mode, int* baudrate);
/** Mode and baud rate of the tool's RS485 port (fourth controller generation). */
int qm_get_tool_rs485_mode_v4(qm_robot_handle* handle, int* tool_rs485_mode, int* baudrate);
/** Sets mode and baud rate of the controller's RS485 port (fourth controller generation). */
int qm_set_controller_rs485_mode(qm_robot_handle* handle, int controller_rs485_mode, int baudrate);
/** Sets mode and baud rate of the tool's RS485 port (fourth controller generation). */
int qm_set_tool_rs485_mode(qm_robot_handle* handle, int tool_rs485_mode, int baudrate);

/** @} */

/* ---- controller and tool IO ---- */
/** @name Controller and tool IO
 * @{ */

/** Sets the mode of controller IO port io_num (0..4) to config.io_mode (0..14); 1 without
 * sending for an argument out of range. */
int qm_set_IO_mode(qm_robot_handle* handle, int io_num, qm_io_config_t config);
/** Sets digital output io_num of the controller. */
int qm_set_DO_state(qm_robot_handle* handle, int io_num, int state);
/** State and mode of controller IO port io_num (0..4); 1 without sending for another port. */
int qm_get_IO_state(qm_robot_handle* handle, int io_num, qm_io_get_t* config);
/** The 4 digital inputs of the controller. */
int qm_get_IO_input(qm_robot_handle* handle, int* DI_state);
/** The 4 digital outputs of the controller. */
int qm_get_IO_output(qm_robot_handle* handle, int* DO_state);
/** Selects the controller's IO supply voltage. */
int qm_set_voltage(qm_robot_handle* handle, int voltage_type);
/** The controller's IO supply voltage selection. */
int qm_get_voltage(qm_robot_handle* handle, int* voltage_type);
/** Sets digital output io_num of the tool. */
int qm_set_tool_DO_state(qm_robot_handle* handle, int io_num, int state);
/** Sets the mode of tool IO port io_num. */
int qm_set_tool_IO_mode(qm_robot_handle* handle, int io_num, int io_mode);
/** Modes and states of the 2 tool IO ports. */
int qm_get_tool_IO_state(qm_robot_handle* handle, int* mode, int* state);
/** Selects the tool's supply voltage. */
int qm_set_tool_voltage(qm_robot_handle* handle, int voltage_type);
/** The tool's supply voltage selection. */
int qm_get_tool_voltage(qm_robot_handle* handle, int* voltage_type);

/** @} */

/* ---- Modbus RTU and Modbus TCP ---- */
/** @name Modbus RTU and Modbus TCP
 * The controller is the Modbus master; reads give 1 when the controller says it could not read.
 * The port commands (qm_set_modbus_mode to qm_read_multiple_input_registers) wait 1000 ms for
 * their answers whatever qm_set_timeout() says. Register and coil values travel unscaled.
 * @{ */

/** Opens controller port `port` in Modbus RTU mode. */
int qm_set_modbus_mode(qm_robot_handle* handle, int port, int baudrate, int timeout);
/** Closes Modbus mode on controller port `port`. */
int qm_close_modbus_mode(qm_robot_handle* handle, int port);
/** Opens a Modbus TCP connection from the controller to ip:port. */
int qm_set_modbustcp_mode(qm_robot_handle* handle, const char* ip, int port, int timeout);
/** Closes the Modbus TCP connection. */
int qm_close_modbustcp_mode(qm_robot_handle* handle);
/** Reads coils into data[0]. */
int qm_read_coils(qm_robot_handle* handle, qm_peripheral_read_write_params_t params, int* data);
/** Reads discrete inputs into data[0]. */
int qm_read_input_status(qm_robot_handle* handle, qm_peripheral_read_write_params_t params, int* data);
/** Reads a holding register into data[0]. */
int qm_read_holding_registers(qm_robot_handle* handle, qm_peripheral_read_write_params_t params, int* data);
/** Reads an input register into data[0]. */
int qm_read_input_registers(qm_robot_handle* handle, qm_peripheral_read_write_params_t params, int* data);
/** Writes one coil. */
int qm_write_single_coil(qm_robot_handle* handle, qm_peripheral_read_write_params_t params, int data);
/** Writes one holding register. */
int qm_write_single_register(qm_robot_handle* handle, qm_peripheral_read_write_params_t params, int data);
/** Writes params.num holding registers from data. */
int qm_write_registers(qm_robot_handle* handle, qm_peripheral_read_write_params_t params, int* data);
/** Writes params.num coils from data. */
int qm_write_coils(qm_robot_handle* handle, qm_peripheral_read_write_params_t params, int* data);
/** Reads params.num coils, eight to a value: params.num / 8 values into data. */
int qm_read_multiple_coils(qm_robot_handle* handle, qm_peripheral_read_write_params_t params, int* data);
/** Reads up to params.num holding registers into data. */
int qm_read_multiple_holding_registers(qm_robot_handle* handle, qm_peripheral_read_write_params_t params, int* data);
/** Reads up to params.num input registers into data. */
int qm_read_multiple_input_registers(qm_robot_handle* handle, qm_peripheral_read_write_params_t params, int* data);
/** Reads up to param.num coils of an RTU slave into data. */
int qm_read_modbus_rtu_coils(qm_robot_handle* handle, qm_modbus_rtu_read_params_t param, int* data);
/** Reads up to param.num discrete inputs of an RTU slave into data. */
int qm_read_modbus_rtu_input_status(qm_robot_handle* handle, qm_modbus_rtu_read_params_t param, int* data);
/** Reads up to param.num holding registers of an RTU slave into data. */
int qm_read_modbus_rtu_holding_registers(qm_robot_handle* handle, qm_modbus_rtu_read_params_t param, int* data);
/** Reads up to param.num input registers of an RTU slave into data. */
int qm_read_modbus_rtu_input_registers(qm_robot_handle* handle, qm_modbus_rtu_read_params_t param, int* data);
/** Writes param.num coils of an RTU slave. */
int qm_write_modbus_rtu_coils(qm_robot_handle* handle, qm_modbus_rtu_write_params_t param);
/** Writes param.num holding registers of an RTU slave. */
int qm_write_modbus_rtu_registers(qm_robot_handle* handle, qm_modbus_rtu_write_params_t param);
/** Stores a Modbus TCP master under its name. */
int qm_add_modbus_tcp_master(qm_robot_handle* handle, qm_modbus_tcp_master_info_t master);
/** Replaces the master stored as master_name by `master` (which may rename it). */
int qm_update_modbus_tcp_master(qm_robot_handle* handle, const char* master_name, qm_modbus_tcp_master_info_t master);
/** Deletes a stored Modbus TCP master. */
int qm_delete_modbus_tcp_master(qm_robot_handle* handle, const char* master_name);
/** The stored master of that name; 1 when there is none. */
int qm_get_modbus_tcp_master(qm_robot_handle* handle, const char* master_name, qm_modbus_tcp_master_info_t* master);
/** One page of the stored masters whose names match vague_search. */
int qm_get_modbus_tcp_master_list(qm_robot_handle* handle, int page_num, int page_size, const char* vague_search, qm_modbus_tcp_master_list_t* list);
/** Reads up to param.num coils of a TCP slave into data. */
int qm_read_modbus_tcp_coils(qm_robot_handle* handle, qm_modbus_tcp_read_params_t param, int* data);
/** Reads up to param.num discrete inputs of a TCP slave into data. */
int qm_read_modbus_tcp_input_status(qm_robot_handle* handle, qm_modbus_tcp_read_params_t param, int* data);
/** Reads up to param.num holding registers of a TCP slave into data. */
int qm_read_modbus_tcp_holding_registers(qm_robot_handle* handle, qm_modbus_tcp_read_params_t param, int* data);
/** Reads up to param.num input registers of a TCP slave into data. */
int qm_read_modbus_tcp_input_registers(qm_robot_handle* handle, qm_modbus_tcp_read_params_t param, int* data);
/** Writes param.num coils of a TCP slave. */
int qm_write_modbus_tcp_coils(qm_robot_handle* handle, qm_modbus_tcp_write_params_t param);
/** Writes param.num holding registers of a TCP slave. */
int qm_write_modbus_tcp_registers(qm_robot_handle* handle, qm_modbus_tcp_write_params_t param);

/** @} */

/* ---- grippers, dexterous hand, lift and expansion axes ---- */
/** @name Grippers, dexterous hand, lift and expansion axes
 * Blocking gripper and hand commands wait `timeout` seconds for their device's arrival:
 * -5 when none came, -4 when another device arrived.
 * @{ */

/** Sets the gripper's opening range. */
int qm_set_gripper_route(qm_robot_handle* handle, int min_limit, int max_limit);
/** Opens the gripper at speed; with block false and timeout 0 it is only sent (0 once sent). */
int qm_set_gripper_release(qm_robot_handle* handle, int speed, bool block, int timeout);
/** Closes the gripper at speed up to force; with block false and timeout 0 it is only sent. */
int qm_set_gripper_pick(qm_robot_handle* handle, int speed, int force, bool block, int timeout);
/** Closes the gripper and keeps holding with force; with block false and timeout 0 it is only
 * sent. */
int qm_set_gripper_pick_on(qm_robot_handle* handle, int speed, int force, bool block, int timeout);
/** Moves the gripper to a position. Blocking, a missing arrival gives -4 and another device -5. */
int qm_set_gripper_position(qm_robot_handle* handle, int position, bool block, int timeout);
/** The gripper's state. */
int qm_get_gripper_state(qm_robot_handle* handle, qm_gripper_state_t* state);
/** Runs a stored hand posture. */
int qm_set_hand_posture(qm_robot_handle* handle, int posture_num, bool block, int timeout);
/** Runs a stored hand sequence. */
int qm_set_hand_seq(qm_robot_handle* handle, int seq_num, bool block, int timeout);
/** Sets the six finger angles; the request always carries "block": true, though nothing waits. */
int qm_set_hand_angle(qm_robot_handle* handle, const int* hand_angle);
/** Streams six finger angles; blocking, waits at most 20 ms for the answer. */
int qm_set_hand_follow_angle(qm_robot_handle* handle, const int* hand_angle, bool block);
/** Streams six finger positions; blocking, waits at most 20 ms for the answer. */
int qm_set_hand_follow_pos(qm_robot_handle* handle, const int* hand_pos, bool block);
/** Sets the hand's speed. */
int qm_set_hand_speed(qm_robot_handle* handle, int speed);
/** Sets the hand's force limit. */
int qm_set_hand_force(qm_robot_handle* handle, int hand_force);
/** Sets the lift axis's speed. */
int qm_set_lift_speed(qm_robot_handle* handle, int speed);
/** Moves the lift axis; a non-zero block waits for its arrival (single-thread mode: block seconds). */
int qm_set_lift_height(qm_robot_handle* handle, int speed, int height, int block);
/** The lift axis's state; its height lands in pos. */
int qm_get_lift_state(qm_robot_handle* handle, qm_expand_state_t* state);
/** Sets the expansion axis's speed. */
int qm_set_expand_speed(qm_robot_handle* handle, int speed);
/** Moves the expansion axis; a non-zero block waits for its arrival (single-thread mode: block seconds). */
int qm_set_expand_pos(qm_robot_handle* handle, int speed, int pos, int block);
/** The expansion axis's state. */
int qm_get_expand_state(qm_robot_handle* handle, qm_expand_state_t* state);
/** Sets the end-effector ecosystem's mode. */
int qm_set_qm_plus_mode(qm_robot_handle* handle, int mode);
/** The end-effector ecosystem's mode. */
int qm_get_qm_plus_mode(qm_robot_handle* handle, int* mode);
/** Sets the end-effector ecosystem's touch mode. */
int qm_set_qm_plus_touch(qm_robot_handle* handle, int mode);
/** The end-effector ecosystem's touch mode. */
int qm_get_qm_plus_touch(qm_robot_handle* handle, int* mode);
/** The end-effector's base information; 1 when the controller has none to give. */
int qm_get_qm_plus_base_info(qm_robot_handle* handle, qm_plus_base_info_t* info);
/** The end-effector's live state; 1 when the controller has none to give. */
int qm_get_qm_plus_state_info(qm_robot_handle* handle, qm_plus_state_info_t* info);

/** @} */

/* ---- force sensing, drag teaching and force-position control ---- */
/** @name Force sensing, drag teaching and force-position control
 * Force-variant refusals send nothing and give -4.
 * @{ */

/** Six-axis sensor reading, newtons and newton-metres. */
int qm_get_force_data(qm_robot_handle* handle, qm_force_data_t* data);
/** Zeroes the six-axis sensor. */
int qm_clear_force_data(qm_robot_handle* handle);
/** Calibrates the six-axis sensor automatically; blocking, waits up to 30 s for the end. */
int qm_set_force_sensor(qm_robot_handle* handle, bool block);
/** Sends calibration pose count (1..4, else 1) at dof joint angles in degrees; the fourth, blocking, waits up to 30 s. */
int qm_manual_set_force(qm_robot_handle* handle, int count, float* joint, bool block);
/** Stops a sensor calibration. */
int qm_stop_set_force_sensor(qm_robot_handle* handle);
/** One-axis sensor reading; -4 on an arm without the one-axis sensor. */
int qm_get_Fz(qm_robot_handle* handle, qm_fz_data_t* data);
/** Zeroes the one-axis sensor. */
int qm_clear_Fz(qm_robot_handle* handle);
/** Calibrates the one-axis sensor automatically; blocking, waits up to 30 s for the end. */
int qm_auto_set_Fz(qm_robot_handle* handle, bool block);
/** Calibrates the one-axis sensor at two poses (dof joint angles in degrees); blocking, waits up to 30 s. */
int qm_manual_set_Fz(qm_robot_handle* handle, float* joint1, float* joint2, bool block);
/** Starts drag teaching, recording the trajectory when trajectory_record is 1. */
int qm_start_drag_teach(qm_robot_handle* handle, int trajectory_record);
/** Stops drag teaching. */
int qm_stop_drag_teach(qm_robot_handle* handle);
/** Starts multi-axis drag teaching: 1 on an arm without six-axis sensing, -4 before the fourth generation. */
int qm_start_multi_drag_teach(qm_robot_handle* handle, int mode, int singular_wall);
/** Starts multi-axis drag teaching; without six-axis sensing only the frame is sent. */
int qm_start_multi_drag_teach_new(qm_robot_handle* handle, qm_multi_drag_teach_t teach_state);
/** Sets the drag teaching sensitivity grade. */
int qm_set_drag_teach_sensitivity(qm_robot_handle* handle, int grade);
/** The drag teaching sensitivity grade. */
int qm_get_drag_teach_sensitivity(qm_robot_handle* handle, int* grade);
/** Returns to the start of the taught trajectory; a non-zero block waits for the arrival
 * (single-thread mode: block seconds). */
int qm_drag_trajectory_origin(qm_robot_handle* handle, int block);
/** Replays the taught trajectory; a non-zero timeout (seconds) waits for the replay's answer. */
int qm_run_drag_trajectory(qm_robot_handle* handle, int timeout);
/** Pauses the replay. */
int qm_pause_drag_trajectory(qm_robot_handle* handle);
/** Continues the replay. */
int qm_continue_drag_trajectory(qm_robot_handle* handle);
/** Stops the replay. */
int qm_stop_drag_trajectory(qm_robot_handle* handle);
/** Starts force-position control along one direction with force N, in whole newtons. */
int qm_set_force_position(qm_robot_handle* handle, int sensor, int mode, int direction, float N);
/** Starts force-position control with per-axis modes, forces (N) and speed limits (m/s). */
int qm_set_force_position_new(qm_robot_handle* handle, qm_force_position_t param);
/** Ends force-position control. */
int qm_stop_force_position(qm_robot_handle* handle);
/** Sets the force drag mode; -4 on an arm without force sensing. */
int qm_set_force_drag_mode(qm_robot_handle* handle, int mode);
/** The force drag mode; -4 on an arm without force sensing. */
int qm_get_force_drag_mode(qm_robot_handle* handle, int* mode);
/** Opens a stream of force-position moves. */
int qm_start_force_position_move(qm_robot_handle* handle);
/** Closes the stream of force-position moves. */
int qm_stop_force_position_move(qm_robot_handle* handle);
/** Streams a force-position joint target (dof angles in degrees, force in whole newtons); no answer awaited. */
int qm_force_position_move_joint(qm_robot_handle* handle, const float* joint, int sensor, int mode, int dir,
                                 float force, bool follow);
/** Streams a force-position pose target (force in whole newtons); no answer awaited. */
int qm_force_position_move_pose(qm_robot_handle* handle, qm_pose_t pose, int sensor, int mode, int dir,
                                float force, bool follow);
/** Streams a force-position target with per-axis modes, forces and speed limits; no answer awaited. */
int qm_force_position_move(qm_robot_handle* handle, qm_force_position_move_t param);

/** @} */

/* ---- projects, programs, trajectory files and global waypoints ---- */
/** @name Projects, programs, trajectory files and global waypoints
 * @{ */

/** Uploads a project file (wrapped in a flowchart project's header lines when project_type is
 * non-zero, written beside it); err_line gets -1, or the line the controller refused.
 * -4 the wrapped file's name cannot be formed, -5 the file cannot be read, -6 a generation-4 controller. */
int qm_send_project(qm_robot_handle* handle, qm_send_project_t project, int* err_line);
/** Uploads data_len bytes of project text as they are; err_line as for qm_send_project.
 * 1 for a NULL data with a non-zero length. */
int qm_send_project_lock(qm_robot_handle* handle, const char* data, int data_len, int* err_line);
/** Announces an upload of file_size bytes under the project_path's name; the upload's first step. */
int qm_run_project(qm_robot_handle* handle, qm_send_project_t project, int file_size);
/** Sets the speed ratio of the running program; awaits "plan_speed". */
int qm_set_plan_speed(qm_robot_handle* handle, int speed);
/** One page of the stored programs whose names contain vague_search. */
int qm_get_program_trajectory_list(qm_robot_handle* handle, int page_num, int page_size, const char* vague_search,
                                   qm_program_trajectorys_t* trajectorys);
/** State of the running program. */
int qm_get_program_run_state(qm_robot_handle* handle, qm_program_run_state_t* run_state);
/** State of the running flowchart program. */
int qm_get_flowchart_program_run_state(qm_robot_handle* handle, qm_flowchart_run_state_t* run_state);
/** Deletes a stored program. */
int qm_delete_program_trajectory(qm_robot_handle* handle, int id);
/** Renames a stored program and sets its speed. */
int qm_update_program_trajectory(qm_robot_handle* handle, int id, int speed, const char* name);
/** Selects the program run by default. */
int qm_set_default_run_program(qm_robot_handle* handle, int id);
/** The program run by default. */
int qm_get_default_run_program(qm_robot_handle* handle, int* id);
/** Runs a stored program; a non-zero block waits for its end (single-thread mode: block seconds).
 * -4 no end reported for this program. */
int qm_set_program_id_run(qm_robot_handle* handle, int id, int speed, int block);
/** Records the drag-taught trajectory into file_name (one point message per line) and its point
 * count into num. -4 the file cannot be created, -6 the points did not all come. */
int qm_save_trajectory(qm_robot_handle* handle, const char* file_name, int* num);
/** Stores a global waypoint, stamped with the local time. */
int qm_add_global_waypoint(qm_robot_handle* handle, qm_waypoint_t waypoint);
/** Replaces a global waypoint, stamped with the local time. */
int qm_update_global_waypoint(qm_robot_handle* handle, qm_waypoint_t waypoint);
/** Deletes a global waypoint. */
int qm_delete_global_waypoint(qm_robot_handle* handle, const char* point_name);
/** The named global waypoint. */
int qm_get_given_global_waypoint(qm_robot_handle* handle, const char* name, qm_waypoint_t* point);
/** One page of the global waypoints whose names contain vague_search. */
int qm_get_global_waypoints_list(qm_robot_handle* handle, int page_num, int page_size, const char* vague_search,
                                 qm_waypoint_list_t* point_list);
/** One page of the stored trajectory files whose names contain vague_search. */
int qm_get_trajectory_file_list(qm_robot_handle* handle, int page_num, int page_size, const char* vague_search,
                                qm_trajectory_list_t* trajectory_list);
/** Replays a stored trajectory file. */
int qm_set_run_trajectory(qm_robot_handle* handle, const char* trajectory_name);
/** Deletes a stored trajectory file. */
int qm_delete_trajectory_file(qm_robot_handle* handle, const char* trajectory_name);
/** Stores the last drag-taught trajectory under a name. */
int qm_save_trajectory_file(qm_robot_handle* handle, const char* trajectory_name);

/** @} */

/* ---- safety zones and arm model configuration ---- */
/** @name Safety zones and arm model configuration
 * @{ */

/** Stores a new electronic fence (metres); -4 for a form other than 1, 2 or 3. */
int qm_add_electronic_fence_config(qm_robot_handle* handle, qm_fence_config_t config);
/** Replaces a stored electronic fence (metres); -4 for a form other than 1, 2 or 3. */
int qm_update_electronic_fence_config(qm_robot_handle* handle, qm_fence_config_t config);
/** Deletes a stored electronic fence. */
int qm_delete_electronic_fence_config(qm_robot_handle* handle, const char* form_name);
/** Names of the stored fences (at most 10) and their count. */
int qm_get_electronic_fence_list_names(qm_robot_handle* handle, qm_fence_names_t* names, int* len);
/** The named fence; 1 when no fence has that name. */
int qm_get_given_electronic_fence_config(qm_robot_handle* handle, const char* given_name, qm_fence_config_t* config);
/** Every stored fence and their count. */
int qm_get_electronic_fence_list_infos(qm_robot_handle* handle, qm_fence_config_list_t* config_list, int* len);
/** Enables or disables the active electronic fence. */
int qm_set_electronic_fence_enable(qm_robot_handle* handle, qm_electronic_fence_enable_t state);
/** Whether the active electronic fence is enabled, and how. */
int qm_get_electronic_fence_enable(qm_robot_handle* handle, qm_electronic_fence_enable_t* state);
/** Sets the active electronic fence, a cube or a plane; -4 for another form. */
int qm_set_electronic_fence_config(qm_robot_handle* handle, qm_fence_config_t config);
/** The active electronic fence. */
int qm_get_electronic_fence_config(qm_robot_handle* handle, qm_fence_config_t* config);
/** Enables or disables the virtual wall. */
int qm_set_virtual_wall_enable(qm_robot_handle* handle, qm_electronic_fence_enable_t state);
/** Whether the virtual wall is enabled, and how. */
int qm_get_virtual_wall_enable(qm_robot_handle* handle, qm_electronic_fence_enable_t* state);
/** Sets the virtual wall, a cube or a sphere; -4 for another form. */
int qm_set_virtual_wall_config(qm_robot_handle* handle, qm_fence_config_t config);
/** The virtual wall. */
int qm_get_virtual_wall_config(qm_robot_handle* handle, qm_fence_config_t* config);
/** Enables or disables self-collision checking. */
int qm_set_self_collision_enable(qm_robot_handle* handle, bool state);
/** Whether self-collision checking is enabled. */
int qm_get_self_collision_enable(qm_robot_handle* handle, bool* state);
/** Sets the DH table: a and d in metres, alpha and offset in radians; joints beyond the dof go out as zeros. */
int qm_set_DH_data(qm_robot_handle* handle, qm_dh_t dh);
/** Restores the factory DH table. */
int qm_set_DH_data_default(qm_robot_handle* handle);
/** Installation angles about X, Y, Z, sent as whole degrees (90.9 goes out as 90). */
int qm_set_install_pose(qm_robot_handle* handle, float x, float y, float z);
/** Firmware versions of the joints, one per joint; their number into version. */
int qm_get_joint_software_version(qm_robot_handle* handle, int* version, qm_version_t* joint_v);
/** Firmware version of the tool board; the number of versions read into version. */
int qm_get_tool_software_version(qm_robot_handle* handle, int* version, qm_version_t* tool_v);
/** Run mode of the arm, as the controller defines it. */
int qm_set_arm_run_mode(qm_robot_handle* handle, int mode);
/** Run mode of the arm. */
int qm_get_arm_run_mode(qm_robot_handle* handle, int* mode);
/** Sets or releases the emergency stop. */
int qm_set_arm_emergency_stop(qm_robot_handle* handle, bool state);

/** @} */

#ifdef __cplusplus
}
#endif

#endif /* QM_INTERFACE_H */
