// The glue between the public kinematics API and the kinematics library: unit conversions
// (public degrees, library radians) and record conversions, in one place per family.
#ifndef QM_INVOKE_ALGO_H
#define QM_INVOKE_ALGO_H

#include <algorithm>
#include <array>

#include "algo_api.h"
#include "qm_define.h"

// Whether qm_algo_inverse_kinematics resets the seven-joint search before each solve;
// qm_algo_set_redundant_parameter_traversal_mode clears it.
extern bool defaut_traversal_mode;
// Installation angles last set through the bridge, rad.
extern float angleU;
extern float angleV;
extern float angleH;
// Shortest and longest solve of an overspeed-checking inverse kinematics, ms. The plain solve
// does not time itself: two clock reads would cost a tenth of the call.
extern double invoke_inverse_time_total_min;
extern double invoke_inverse_time_total_max;

namespace invoke_units {
constexpr double kDegToRad = 0.017453292519943295;
constexpr double kRadToDeg = 57.29577951308232;
// Intended: accelerations go in times 6 and come back divided by 6, so a value written
// through the bridge reads back unchanged while the library holds six times its radians.
constexpr double kAccFactor = 6.0;

inline float deg_to_rad(float deg) { return static_cast<float>(deg * kDegToRad); }
inline float rad_to_deg(float rad) { return static_cast<float>(rad * kRadToDeg); }
inline float acc_into(float value) { return static_cast<float>(value * kAccFactor * kDegToRad); }
inline float acc_out(float value) { return static_cast<float>(value / kDegToRad / kAccFactor); }
}  // namespace invoke_units

// Joints of the loaded model (libalgo_get_rbt_dof); the other slots of a library array are 0.
inline int invoke_dof() { return std::clamp(libalgo_get_rbt_dof(), 0, ROBOT_DOF); }
void invoke_joints_to_rad(const float* deg, float* rad);
void invoke_joints_to_deg(const float* rad, float* deg);
// Joint degrees as a library array of radians, to pass straight on (inline: it is on the path of
// every kinematics call).
using JointRadians = std::array<float, ROBOT_DOF>;
inline JointRadians invoke_rad_of(const float* deg) {
    JointRadians rad{};
    const int dof = invoke_dof();
    for (int i = 0; i < dof; ++i) rad[i] = invoke_units::deg_to_rad(deg[i]);
    return rad;
}

// The configuration generation of the connection whose stored configuration the library holds
// (qm_algo_arm_state_set); 0 when none, which every configuring invoke_ call below makes it.
uint64_t invoke_loaded_generation();
void invoke_set_loaded_generation(uint64_t generation);

// Public model and sensor to the library's types: 4 gives QML63IV, unknown models QM65.
RobotType invoke_robot_type(int model);
SensorType invoke_sensor_type(int type);
// Loads the mapped pair (which clears the record, as libalgo_init would first); the library's result.
int invoke_init_sys_data(qm_robot_arm_model_e model, qm_force_type_e type);

void invoke_set_install_angle(float x, float y, float z);  // degrees
void invoke_get_install_angle(float* x, float* y, float* z);
void invoke_set_work_frame(const qm_frame_t& frame);
void invoke_get_work_frame(qm_frame_t* frame);
void invoke_set_tool_frame(const qm_frame_t& frame);
void invoke_get_tool_frame(qm_frame_t* frame);

// Per-joint limits through their unit rule; only the model's joints are touched, a null
// array is ignored.
enum class JointLimit { Max, Min, Speed, Acc };
void invoke_set_joint_limit(JointLimit which, const float* value);
void invoke_get_joint_limit(JointLimit which, float* value);

void invoke_set_dh(const qm_dh_t& dh);  // keeps the calibration errors
qm_dh_t invoke_get_dh();

// Record conversions.
// The public records and the library's share their member names and layout, so one copy
// serves both directions.
template <class To, class From>
To invoke_pose_copy(const From& p) {
    return {{p.position.x, p.position.y, p.position.z},
            {p.quaternion.w, p.quaternion.x, p.quaternion.y, p.quaternion.z},
            {p.euler.rx, p.euler.ry, p.euler.rz}};
}
inline Pose invoke_to_pose(const qm_pose_t& p) { return invoke_pose_copy<Pose>(p); }
inline qm_pose_t invoke_from_pose(const Pose& p) { return invoke_pose_copy<qm_pose_t>(p); }
Matrix invoke_to_matrix(const qm_matrix_t& m);
qm_matrix_t invoke_from_matrix(const Matrix& m);
IkSolve invoke_to_ik_solve(const qm_inverse_kinematics_all_solve_t& s);  // degrees to rad
qm_inverse_kinematics_all_solve_t invoke_from_ik_solve(const IkSolve& s);

// Orientation form of an inverse-kinematics request: flag 0 reads the quaternion, any other
// value the Euler angles.
int invoke_ik_form(uint8_t flag);
// inverse_kinematics from a reference already in radians; q_out (degrees) is written on success only.
int invoke_inverse_kinematics(const JointRadians& q_ref, const qm_pose_t& target, int form, float* q_out);

// Flange transform in the base frame for joint degrees; a zero matrix for NULL.
Matrix Forward_Kinematics_e(const float* joint);

#endif
