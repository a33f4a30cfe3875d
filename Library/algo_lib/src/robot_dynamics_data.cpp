// Values kept for the dynamics and motion-planning algorithms: plain copies into the record.
#include <algorithm>

#include "libalgo_interface.h"

using algo::robot;

namespace {

void copy_n_floats(const float* from, float* to, int n) {
    if (from != nullptr && to != nullptr) std::copy_n(from, n, to);
}

void copy_joints(const float* from, float* to) { copy_n_floats(from, to, ROBOT_DOF); }

void copy_motion(const JointMotion& from, float* q, float* dq, float* ddq) {
    copy_joints(from.q, q);
    copy_joints(from.dq, dq);
    copy_joints(from.ddq, ddq);
}

}  // namespace

extern "C" {

void libalgo_set_payload_params(const PayloadCfg* payload) {
    if (payload != nullptr) robot.dyn.payload = *payload;
}

void libalgo_get_payload_params(PayloadCfg* payload) {
    if (payload != nullptr) *payload = robot.dyn.payload;
}

void libalgo_set_safety_level(int level) { robot.dyn.safety_level = level; }
int libalgo_get_safety_level(void) { return robot.dyn.safety_level; }

void libalgo_set_user_collision_threshold(const float* threshold) {
    copy_joints(threshold, robot.dyn.collision_threshold);
}

void libalgo_get_user_collision_threshold(float* threshold) {
    copy_joints(robot.dyn.collision_threshold, threshold);
}

void libalgo_set_link_dynamics_params(const float* params) {
    copy_n_floats(params, robot.dyn.link_dynamics, LINK_DYNAMICS_NUM);
}

void libalgo_get_link_dynamics_params(float* params) {
    copy_n_floats(robot.dyn.link_dynamics, params, LINK_DYNAMICS_NUM);
}

void libalgo_get_link_dynamics_params_default(float* params) {
    copy_n_floats(algo::dyn_param_default.link_dynamics, params, LINK_DYNAMICS_NUM);
}

void libalgo_set_dynamics_identification_params(const float* friction, const float* temperature) {
    copy_n_floats(friction, robot.dyn.friction, ROBOT_DOF * FRIC_PARMS_NUM);
    copy_n_floats(temperature, robot.dyn.temperature, TEMP_PARAMS_NUM);
}

void libalgo_set_drag_regulation_factor(const float* factor) {
    copy_joints(factor, robot.dyn.drag_regulation_factor);
}

void libalgo_set_dynamics_model_type(int type) { robot.dyn.dynamics_model_type = type; }
int libalgo_get_dynamics_model_type(void) { return robot.dyn.dynamics_model_type; }

void libalgo_update_feedback_data(const float* q, const float* dq, const float* torque) {
    copy_joints(q, robot.feedback.q);
    copy_joints(dq, robot.feedback.dq);
    copy_joints(torque, robot.feedback.torque);
}

void libalgo_get_robot_feedback_data(float* q, float* dq, float* torque) {
    copy_joints(robot.feedback.q, q);
    copy_joints(robot.feedback.dq, dq);
    copy_joints(robot.feedback.torque, torque);
}

void libalgo_set_trajectory_planning_joint_cmd(const float* q, const float* dq, const float* ddq) {
    robot.plan_cur = robot.plan_cmd;
    copy_joints(q, robot.plan_cmd.q);
    copy_joints(dq, robot.plan_cmd.dq);
    copy_joints(ddq, robot.plan_cmd.ddq);
}

void libalgo_get_trajectory_planning_joint_cmd(float* q, float* dq, float* ddq) {
    copy_motion(robot.plan_cmd, q, dq, ddq);
}

void libalgo_get_trajectory_planning_joint_cur(float* q, float* dq, float* ddq) {
    copy_motion(robot.plan_cur, q, dq, ddq);
}

}  // extern "C"
