#ifndef LIBALGO_INTERFACE_H
#define LIBALGO_INTERFACE_H

/* Setters and getters of the kinematics library's system data. SI units throughout
 * (m, rad, rad/s, rad/s^2, s). Joint arrays hold ROBOT_DOF floats. None of these
 * functions locks: call them from one thread at a time. */

#include "robot_define.h"
#include "robot_sys_data.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Loads QM65 with no sensor. */
void libalgo_init(void);
/* Clears the whole record and loads the model's defaults; 0, or -1 for an unknown model,
 * a sensor outside 0..3, a sensor the model does not accept, or QML63I (no defaults). */
int libalgo_set_robot_and_sensor_type(int robot_type, int sensor_type);
/* Stored RobotType. */
int libalgo_get_robot_type(void);
/* Stored SensorType. */
int libalgo_get_sensor_type(void);

/* Installation angles a, b, c (rad); rebuilds Rz(c)*Ry(b)*Rx(a) and the gravity vector. */
void libalgo_set_robot_install_angle(const float angle[3]);
/* Installation angles (rad). */
void libalgo_get_robot_install_angle(float angle[3]);
/* Installation rotation as a 4x4 transform with zero translation. */
Matrix libalgo_get_robot_install_angle_matrix(void);
/* Gravity vector in the base frame (m/s^2). */
void libalgo_get_robot_gravity_acc(float gravity[3]);

/* Replaces the whole DH table in use. */
void libalgo_set_dh_params(const DH* dh);
/* Copies the DH table in use. */
void libalgo_get_dh_value(DH* dh);
/* Restores the model's nominal table. */
void libalgo_set_dh_params_default(void);
/* Copies the model's nominal table. */
void libalgo_get_dh_params_default(DH* dh);
/* 1 when the table in use equals the nominal one bit for bit, else 0. */
int libalgo_check_dh_params_is_default(void);
/* Writes the calibration error arrays (ROBOT_DOF floats each). */
void libalgo_set_dh_compensation_value(const float* err_d, const float* err_a, const float* err_alpha,
                                       const float* err_theta);
/* Reads the calibration error arrays. */
void libalgo_get_dh_compensation_value(float* err_d, float* err_a, float* err_alpha, float* err_theta);

/* Per-joint position limits (rad). */
void libalgo_set_jointlim_max(const float* q);
void libalgo_set_jointlim_min(const float* q);
void libalgo_get_jointlim_max(float* q);
void libalgo_get_jointlim_min(float* q);
/* Position limits as the modelling uses them (the same stored limits). */
void libalgo_get_modeling_jointlim_max(float* q);
void libalgo_get_modeling_jointlim_min(float* q);
/* Per-joint velocity limits (rad/s). */
void libalgo_set_joint_vel_maxlim(const float* dq);
void libalgo_get_joint_vel_maxlim(float* dq);
/* Per-joint acceleration limits (rad/s^2). */
void libalgo_set_joint_acc_maxlim(const float* ddq);
void libalgo_get_joint_acc_maxlim(float* ddq);
/* One joint's 17-float record; -1 for an index outside 0..ROBOT_DOF-1. */
int libalgo_set_joint_config(int joint, const JointConfig* config);
int libalgo_get_joint_config(int joint, JointConfig* config);

/* Cartesian motion configuration (four floats). */
void libalgo_set_tcp_config(const TcpConfig* config);
void libalgo_get_tcp_config(TcpConfig* config);

/* Tool frame in the flange frame (m, rad). */
void libalgo_set_tool_cs_params(Coord tool);
Coord libalgo_get_tool_cs_params(void);
/* Tool frame as a 4x4 transform, flange to tool. */
Matrix libalgo_get_tool_cs_matrix(void);
/* Work frame in the base frame (m, rad). */
void libalgo_set_work_cs_params(Coord work);
Coord libalgo_get_work_cs_params(void);
/* Transform that re-expresses base coordinates in the work frame (inverse of the work frame's pose). */
Matrix libalgo_get_work_cs_to_base_matrix(void);

/* Tool load. */
void libalgo_set_payload_params(const PayloadCfg* payload);
void libalgo_get_payload_params(PayloadCfg* payload);

/* Control loop period (s), stored unchanged. */
void libalgo_set_control_loop_period(float period);
float libalgo_get_control_loop_period(void);

/* Joint direction signs, +1 or -1. */
void libalgo_set_joint_direction(const float* direction);
void libalgo_get_joint_direction(float* direction);

/* Number of joints of the model (6 or 7; 0 when no model is loaded). */
int libalgo_get_rbt_dof(void);
/* Joints of the whole system, arm plus external axes. */
void libalgo_set_system_all_dof(int dof);
int libalgo_get_system_all_dof(void);
/* Avoid-singularity switch of the motion algorithms. */
void libalgo_set_is_avoid_Singularity(int enable);
int libalgo_get_is_avoid_Singularity(void);

/* Values kept for the dynamics and motion-planning algorithms; plain copies. */
void libalgo_set_safety_level(int level);
int libalgo_get_safety_level(void);
/* Per-joint collision thresholds (ROBOT_DOF floats). */
void libalgo_set_user_collision_threshold(const float* threshold);
void libalgo_get_user_collision_threshold(float* threshold);
/* Link dynamics table (LINK_DYNAMICS_NUM floats). */
void libalgo_set_link_dynamics_params(const float* params);
void libalgo_get_link_dynamics_params(float* params);
/* Link dynamics table as loaded with the model. */
void libalgo_get_link_dynamics_params_default(float* params);
/* Identified friction (ROBOT_DOF x FRIC_PARMS_NUM, row per joint) and temperature (TEMP_PARAMS_NUM) parameters. */
void libalgo_set_dynamics_identification_params(const float* friction, const float* temperature);
/* Hand-guiding gain per joint (ROBOT_DOF floats). */
void libalgo_set_drag_regulation_factor(const float* factor);
void libalgo_set_dynamics_model_type(int type);
int libalgo_get_dynamics_model_type(void);
/* Measured joint positions, velocities and torques (ROBOT_DOF floats each). */
void libalgo_update_feedback_data(const float* q, const float* dq, const float* torque);
void libalgo_get_robot_feedback_data(float* q, float* dq, float* torque);
/* Planner command; setting a new one moves the previous command to the current state. */
void libalgo_set_trajectory_planning_joint_cmd(const float* q, const float* dq, const float* ddq);
void libalgo_get_trajectory_planning_joint_cmd(float* q, float* dq, float* ddq);
/* Planner's current joint state (the command before the latest). */
void libalgo_get_trajectory_planning_joint_cur(float* q, float* dq, float* ddq);

#ifdef __cplusplus
}
#endif

#endif
