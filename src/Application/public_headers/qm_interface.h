#ifndef QM_INTERFACE_H
#define QM_INTERFACE_H

#include "qm_define.h"
#include "qm_version.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Result codes of every command: 0 success; 1 refused by the controller or a rejected
 * argument; -1 unknown handle, disconnected arm or failed send; -2 no reply in time;
 * -3 malformed reply; -4..-6 outcomes of blocking waits and local refusals. */

/* ---- library and connection ---- */

/* Starts the library in the given thread mode; 0, or -1 when a thread cannot start. */
int qm_init(qm_thread_mode_e mode);
/* The library version text "1.1.0"; static, not to be freed. */
const char* qm_api_version(void);
/* Connects to one controller; NULL when all five slots are taken. A failed connect
 * still occupies a slot and returns a handle whose id is -1. */
qm_robot_handle* qm_create_robot_arm(const char* ip, int port);
/* Closes one connection and frees its slot; -1 for an unknown handle. */
int qm_delete_robot_arm(qm_robot_handle* handle);
/* Stops the receive threads and closes every connection; always 0. */
int qm_destory(void);
/* Sets the reply timeout of queries and of set commands, in milliseconds. */
void qm_set_timeout(int timeout);
/* Model, dof, force type and controller generation of a connected arm; -2 while the dof is unknown. */
int qm_get_robot_info(qm_robot_handle* handle, qm_robot_info_t* robot_info);
/* Overrides the joint count (1..10, else -2). */
int qm_set_robot_dof(qm_robot_handle* handle, int dof);

/* ---- logging ---- */

/* Installs a log sink (NULL restores the default sink on standard error) with its level. */
void qm_set_log_call_back(LogCallback callback, int level);
/* Appends every message, time-stamped, to the file at path; ends the process if it cannot be opened. */
void qm_set_log_save(const char* path);

/* ---- command exchange and events ---- */

/* ---- realtime state push ---- */

/* ---- kinematics bridge ---- */

/* Loads a connected arm's model, frames, limits, install angles and DH table into the kinematics library. */
void qm_algo_arm_state_set(qm_robot_handle* handle);
/* Local kinematics: joints in degrees, lengths in metres, orientations in radians. These calls
 * share one global model and must not run from several threads at once. Functions taking a
 * handle first load that connected arm's configuration; a NULL handle keeps the offline one. */

/* The kinematics library version text "1.5.3-f0364d3b". */
const char* qm_algo_version(void);
/* Loads the defaults of an arm model and force-sensing variant (unknown models load QM65). */
void qm_algo_init_sys_data(qm_robot_arm_model_e Mode, qm_force_type_e Type);
/* Sets the installation angles about X, Y, Z, degrees. */
void qm_algo_set_angle(float x, float y, float z);
/* Reads the installation angles, degrees. */
void qm_algo_get_angle(float* x, float* y, float* z);
/* Sets the work frame the poses are expressed in. */
void qm_algo_set_workframe(const qm_frame_t* frame);
/* Reads the current work frame (pose only). */
void qm_algo_get_curr_workframe(qm_frame_t* frame);
/* Sets the tool frame relative to the flange. */
void qm_algo_set_toolframe(const qm_frame_t* frame);
/* Reads the current tool frame (pose only). */
void qm_algo_get_curr_toolframe(qm_frame_t* frame);
/* Sets the upper joint position limits, degrees, one per joint of the model. */
void qm_algo_set_joint_max_limit(const float* joint_limit);
/* Reads the upper joint position limits, degrees. */
void qm_algo_get_joint_max_limit(float* joint_limit);
/* Sets the lower joint position limits, degrees. */
void qm_algo_set_joint_min_limit(const float* joint_limit);
/* Reads the lower joint position limits, degrees. */
void qm_algo_get_joint_min_limit(float* joint_limit);
/* Sets the joint speed limits, degrees per second. */
void qm_algo_set_joint_max_speed(const float* joint_speed);
/* Reads the joint speed limits, degrees per second. */
void qm_algo_get_joint_max_speed(float* joint_speed);
/* Sets the joint acceleration limits in the controller's unit (read back unchanged). */
void qm_algo_set_joint_max_acc(const float* joint_acc);
/* Reads the joint acceleration limits in the controller's unit. */
void qm_algo_get_joint_max_acc(float* joint_acc);
/* Replaces the DH table in use (metres, radians). */
void qm_algo_set_dh(qm_dh_t dh);
/* The DH table in use. */
qm_dh_t qm_algo_get_dh(void);
/* true: the seven-joint solver searches the whole arm-angle range; false: only near the reference. */
void qm_algo_set_redundant_parameter_traversal_mode(bool mode);
/* Loads a connected arm's model, frames, limits, install angles and DH table; NULL changes nothing. */
void qm_algo_arm_state_set(qm_robot_handle* handle);
/* Tool pose in the work frame for the joints; an all-zero pose when joint is NULL. */
qm_pose_t qm_algo_forward_kinematics(qm_robot_handle* handle, const float* joint);
/* Joints reaching params.q_pose nearest params.q_in: 0 solved, 1 no solution,
 * -1 reference outside the joint limits, -2 quaternion not normalised (flag 0). */
int qm_algo_inverse_kinematics(qm_robot_handle* handle, qm_inverse_kinematics_params_t params, float* q_out);
/* Every solution branch for the target, unfiltered, joints in degrees. */
qm_inverse_kinematics_all_solve_t qm_algo_inverse_kinematics_all(qm_robot_handle* handle, qm_inverse_kinematics_params_t params);
/* Index of the solution nearest q_ref by weighted squared distance within the limits, or -1. */
int qm_algo_ikine_select_ik_solve(const float* weight, qm_inverse_kinematics_all_solve_t params);
/* 0 when every joint (degrees) lies within its limits, else non-zero. */
int qm_algo_ikine_check_joint_position_limit(const float* q_solve);
/* 0 when no joint moves from q_ref to q_solve (degrees) faster than its limit within dt seconds. */
int qm_algo_ikine_check_joint_velocity_limit(float dt, const float* q_ref, const float* q_solve);
/* -1 when any joint (degrees) lies outside its limits, else 0. */
int qm_algo_judgment_overpos(const float* joint);
/* Euler angles (R = Rz * Ry * Rx) to a unit quaternion. */
qm_quat_t qm_algo_euler2quaternion(qm_euler_t eu);
/* Quaternion to Euler angles. */
qm_euler_t qm_algo_quaternion2euler(qm_quat_t qua);
/* Euler angles to a rotation matrix (3 x 3 used). */
qm_matrix_t qm_algo_euler2matrix(qm_euler_t eu);
/* Position and Euler angles of a pose to a 4 x 4 transform. */
qm_matrix_t qm_algo_pos2matrix(qm_pose_t state);
/* 4 x 4 transform to a pose with position, quaternion and Euler angles. */
qm_pose_t qm_algo_matrix2pos(qm_matrix_t matrix);
/* Re-expresses a base pose in the frame whose transform is matrix. */
qm_pose_t qm_algo_base2workframe(qm_matrix_t matrix, qm_pose_t state);
/* Re-expresses a pose given in the frame whose transform is matrix in the base. */
qm_pose_t qm_algo_workframe2base(qm_matrix_t matrix, qm_pose_t state);
/* Flange pose to tool pose with the current tool frame. */
qm_pose_t qm_algo_end2tool(qm_robot_handle* handle, qm_pose_t eu_end);
/* Tool pose to flange pose with the current tool frame. */
qm_pose_t qm_algo_tool2end(qm_robot_handle* handle, qm_pose_t eu_tool);
/* -1 when the smallest singular value of the geometric Jacobian at q (degrees) is below the limit, else 0. */
int qm_algo_universal_singularity_analyse(const float* q, float singular_value_limit);
/* 0 clear, -1 shoulder, -2 elbow, -3 wrist singularity near q (degrees); writes the distance (m or rad). */
int qm_algo_kin_robot_singularity_analyse(const float* q, float* distance);
/* Sets the elbow (rad), wrist (rad) and shoulder (m) singularity thresholds. */
void qm_algo_kin_set_singularity_thresholds(float limit_qe, float limit_qw, float limit_d);
/* Reads the elbow (rad), wrist (rad) and shoulder (m) singularity thresholds. */
void qm_algo_kin_get_singularity_thresholds(float* limit_qe, float* limit_qw, float* limit_d);
/* Restores the default singularity thresholds: 0.1 rad, 0.1 rad, 0.05 m. */
void qm_algo_kin_singularity_thresholds_init(void);
/* Stores tool-envelope sphere toolSphere_i (0 to 4). */
void qm_algo_set_tool_envelope(int toolSphere_i, qm_tool_sphere_t data);
/* Reads tool-envelope sphere toolSphere_i (0 to 4). */
qm_tool_sphere_t qm_algo_get_tool_envelope(int toolSphere_i);
/* 1 when the arm at joint (degrees) hits itself or its tool envelope or a joint is outside its limits, else 0. */
int qm_algo_safety_robot_self_collision_detection(const float* joint);
/* Arm angle (rad) of a seven-joint QM75 configuration q_ref (degrees). */
float qm_algo_calculate_arm_angle_from_config_qm75(const float* q_ref);
/* QM75 joints (degrees) reaching target at the given arm angle (rad) nearest q_ref; 0 on success. */
int qm_algo_inverse_kinematics_qm75_for_arm_angle(const float* q_ref, qm_pose_t target, float arm_angle, float* q_solve);
/* Tool pose after a step of the given lengths (m) along the tool's own axes from curr_joint (degrees). */
qm_pose_t qm_algo_cartesian_tool(qm_robot_handle* handle, const float* curr_joint, float move_lengthx, float move_lengthy, float move_lengthz);
/* Tool pose after turning rotate_angle degrees about axis 1 X, 2 Y, 3 Z of the frame choose_axis; the position stays. */
qm_pose_t qm_algo_rotate_move(qm_robot_handle* handle, const float* curr_joint, int rotate_axis, float rotate_angle, qm_pose_t choose_axis);
/* poseCurrent stepped by deltaPosAndRot (dx, dy, dz m; rx, ry, rz rad) in frame 0 work or 1 tool; other frames give a zero pose. */
qm_pose_t qm_algo_pose_move(qm_robot_handle* handle, qm_pose_t poseCurrent, const float* deltaPosAndRot, int frameMode);

/* ---- arm state and information ---- */

/* ---- motion ---- */

/* ---- jog, teach and stop ---- */

/* ---- joint and arm limits ---- */

/* ---- tool and work frames ---- */

/* ---- install pose and model data ---- */

#ifdef __cplusplus
}
#endif

#endif /* QM_INTERFACE_H */
