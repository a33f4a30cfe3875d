// DH table, joint limits, joint records and joint counts of the system data.
#include <algorithm>
#include <cstring>

#include "dh_table_shape.h"
#include "libalgo_interface.h"

using algo::robot;

namespace {

void copy_joints(const float* from, float* to) {
    if (from != nullptr && to != nullptr) std::copy_n(from, ROBOT_DOF, to);
}

void set_joint_field(float JointConfig::*field, const float* values) {
    if (values == nullptr) return;
    for (int i = 0; i < ROBOT_DOF; ++i) robot.joint[i].*field = values[i];
}

void get_joint_field(float JointConfig::*field, float* values) {
    if (values == nullptr) return;
    for (int i = 0; i < ROBOT_DOF; ++i) values[i] = robot.joint[i].*field;
}

bool valid_joint(int joint) { return joint >= 0 && joint < ROBOT_DOF; }

}  // namespace

extern "C" {

void libalgo_set_dh_params(const DH* dh) {
    if (dh == nullptr) return;
    robot.dh = *dh;
    algo::table_in_use_changed();
}

void libalgo_get_dh_value(DH* dh) {
    if (dh != nullptr) *dh = robot.dh;
}

void libalgo_set_dh_params_default(void) {
    robot.dh = algo::dh_default;
    algo::table_in_use_changed();
}

void libalgo_get_dh_params_default(DH* dh) {
    if (dh != nullptr) *dh = algo::dh_default;
}

int libalgo_check_dh_params_is_default(void) {
    return std::memcmp(&robot.dh, &algo::dh_default, sizeof(DH)) == 0 ? 1 : 0;
}

void libalgo_set_dh_compensation_value(const float* err_d, const float* err_a, const float* err_alpha,
                                       const float* err_theta) {
    copy_joints(err_d, robot.dh.err_d);
    copy_joints(err_a, robot.dh.err_a);
    copy_joints(err_alpha, robot.dh.err_alpha);
    copy_joints(err_theta, robot.dh.err_theta);
}

void libalgo_get_dh_compensation_value(float* err_d, float* err_a, float* err_alpha, float* err_theta) {
    copy_joints(robot.dh.err_d, err_d);
    copy_joints(robot.dh.err_a, err_a);
    copy_joints(robot.dh.err_alpha, err_alpha);
    copy_joints(robot.dh.err_theta, err_theta);
}

void libalgo_set_jointlim_max(const float* q) { set_joint_field(&JointConfig::jointlim_max, q); }
void libalgo_set_jointlim_min(const float* q) { set_joint_field(&JointConfig::jointlim_min, q); }
void libalgo_get_jointlim_max(float* q) { get_joint_field(&JointConfig::jointlim_max, q); }
void libalgo_get_jointlim_min(float* q) { get_joint_field(&JointConfig::jointlim_min, q); }
void libalgo_get_modeling_jointlim_max(float* q) { get_joint_field(&JointConfig::jointlim_max, q); }
void libalgo_get_modeling_jointlim_min(float* q) { get_joint_field(&JointConfig::jointlim_min, q); }
void libalgo_set_joint_vel_maxlim(const float* dq) { set_joint_field(&JointConfig::vel_maxlim, dq); }
void libalgo_get_joint_vel_maxlim(float* dq) { get_joint_field(&JointConfig::vel_maxlim, dq); }
void libalgo_set_joint_acc_maxlim(const float* ddq) { set_joint_field(&JointConfig::acc_maxlim, ddq); }
void libalgo_get_joint_acc_maxlim(float* ddq) { get_joint_field(&JointConfig::acc_maxlim, ddq); }

int libalgo_set_joint_config(int joint, const JointConfig* config) {
    if (!valid_joint(joint) || config == nullptr) return -1;
    robot.joint[joint] = *config;
    return 0;
}

int libalgo_get_joint_config(int joint, JointConfig* config) {
    if (!valid_joint(joint) || config == nullptr) return -1;
    *config = robot.joint[joint];
    return 0;
}

void libalgo_set_tcp_config(const TcpConfig* config) {
    if (config != nullptr) robot.tcp = *config;
}

void libalgo_get_tcp_config(TcpConfig* config) {
    if (config != nullptr) *config = robot.tcp;
}

void libalgo_set_joint_direction(const float* direction) { copy_joints(direction, robot.joint_direction); }
void libalgo_get_joint_direction(float* direction) { copy_joints(robot.joint_direction, direction); }

int libalgo_get_rbt_dof(void) { return robot.rbt_dof; }
void libalgo_set_system_all_dof(int dof) { robot.system_all_dof = dof; }
int libalgo_get_system_all_dof(void) { return robot.system_all_dof; }
void libalgo_set_is_avoid_Singularity(int enable) { robot.avoid_singularity = enable; }
int libalgo_get_is_avoid_Singularity(void) { return robot.avoid_singularity; }

void libalgo_set_control_loop_period(float period) { robot.control_period = period; }
float libalgo_get_control_loop_period(void) { return robot.control_period; }

}  // extern "C"
