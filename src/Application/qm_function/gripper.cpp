// The two-finger gripper: its range, its motions with their arrival wait, and its state.
#include "qm_command.h"
#include "qm_interface.h"

namespace {

constexpr int kGripperDevice = 1;

// Every motion is accepted under "set_gripper"; without block or timeout it is only sent.
constexpr DeviceMotion kGripperMotion{
    .reply_key = "set_gripper", .checked = "state", .device = kGripperDevice, .sent_only_when_idle = true};
// The position command reports a missing arrival as -4 and another device as -5, the other
// way round from its siblings: intended, applications tell the two apart by these codes.
constexpr DeviceMotion kGripperPosition{.reply_key = "set_gripper",
                                        .checked = "state",
                                        .device = kGripperDevice,
                                        .sent_only_when_idle = true,
                                        .missed_result = -4,
                                        .foreign_result = -5,
                                        .logs_missed = true};

}  // namespace

extern "C" {

int qm_set_gripper_route(qm_robot_handle* handle, int min_limit, int max_limit) {
    Request req("set_gripper_route");
    req.integer("min", min_limit).integer("max", max_limit);
    return send_set(__func__, handle, req, Reply("set_gripper_route", "state"));
}

int qm_set_gripper_release(qm_robot_handle* handle, int speed, bool block, int timeout) {
    Request req("set_gripper_release");
    req.integer("speed", speed).boolean("block", block);
    return device_motion(__func__, handle, req, kGripperMotion, block, timeout);
}

int qm_set_gripper_pick(qm_robot_handle* handle, int speed, int force, bool block, int timeout) {
    Request req("set_gripper_pick");
    req.integer("speed", speed).integer("force", force).boolean("block", block);
    return device_motion(__func__, handle, req, kGripperMotion, block, timeout);
}

int qm_set_gripper_pick_on(qm_robot_handle* handle, int speed, int force, bool block, int timeout) {
    Request req("set_gripper_pick_on");
    req.integer("speed", speed).integer("force", force).boolean("block", block);
    return device_motion(__func__, handle, req, kGripperMotion, block, timeout);
}

int qm_set_gripper_position(qm_robot_handle* handle, int position, bool block, int timeout) {
    Request req("set_gripper_position");
    req.integer("position", position).boolean("block", block);
    return device_motion(__func__, handle, req, kGripperPosition, block, timeout);
}

int qm_get_gripper_state(qm_robot_handle* handle, qm_gripper_state_t* state) {
    return query_ints(__func__, handle, Request("get_gripper_state"), Reply::query("get_gripper_state"),
                      {{"enable", store(&state->enable_state)},
                       {"status", store(&state->status)},
                       {"error", store(&state->error)},
                       {"mode", store(&state->mode)},
                       {"current_force", store(&state->current_force)},
                       {"temperature", store(&state->temperature)},
                       {"actpos", store(&state->actpos)}});
}

}  // extern "C"
