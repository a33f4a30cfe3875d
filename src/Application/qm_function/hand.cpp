// The dexterous hand: stored postures and sequences with their arrival wait, finger angles,
// streamed follow targets, speed and force.
#include <chrono>
#include <optional>
#include <span>

#include "log.h"
#include "qm_command.h"
#include "qm_interface.h"

namespace {

using namespace std::chrono_literals;

constexpr int kHandDevice = 2;
constexpr int kFingers = 6;

std::span<const int, kFingers> fingers(const int* values) {
    return std::span<const int, kFingers>(values, kFingers);
}

// A stored posture or sequence: always accepted under its own name, then optionally awaited.
int run_stored(const char* caller, qm_robot_handle* handle, const char* command, const char* member,
               int number, bool block, int timeout) {
    Request req(command);
    req.integer(member, number).boolean("block", block);
    const DeviceMotion motion{.reply_key = command, .checked = "set_state", .device = kHandDevice};
    return device_motion(caller, handle, req, motion, block, timeout);
}

// Follow targets are streamed: blocking waits at most 20 ms for the answer, else none at all.
int follow(const char* caller, qm_robot_handle* handle, const char* command, const char* member,
           const int* values, bool block) {
    Request req(command);
    req.ints(member, fingers(values));
    std::optional<Reply> answer;
    if (block) answer = Reply(command, "set_state").within(20ms);
    return send_set_or_only(caller, handle, req, answer, 0ms);
}

int set_hand(const char* caller, qm_robot_handle* handle, const char* command, const char* member,
             int value) {
    Request req(command);
    req.integer(member, value);
    return send_set(caller, handle, req, Reply(command, "set_state"));
}

}  // namespace

extern "C" {

int qm_set_hand_posture(qm_robot_handle* handle, int posture_num, bool block, int timeout) {
    return run_stored(__func__, handle, "set_hand_posture", "posture_num", posture_num, block, timeout);
}

int qm_set_hand_seq(qm_robot_handle* handle, int seq_num, bool block, int timeout) {
    return run_stored(__func__, handle, "set_hand_seq", "seq_num", seq_num, block, timeout);
}

// The controller expects "block" here although nothing waits for an arrival: always true.
int qm_set_hand_angle(qm_robot_handle* handle, const int* hand_angle) {
    Request req("set_hand_angle");
    req.ints("hand_angle", fingers(hand_angle)).boolean("block", true);
    return send_set(__func__, handle, req, Reply("set_hand_angle", "set_state"));
}

int qm_set_hand_follow_angle(qm_robot_handle* handle, const int* hand_angle, bool block) {
    return follow(__func__, handle, "hand_follow_angle", "hand_angle", hand_angle, block);
}

int qm_set_hand_follow_pos(qm_robot_handle* handle, const int* hand_pos, bool block) {
    if (block) qm_log_debug("[%s] block is %d\n", __func__, block ? 1 : 0);
    return follow(__func__, handle, "hand_follow_pos", "hand_pos", hand_pos, block);
}

int qm_set_hand_speed(qm_robot_handle* handle, int speed) {
    return set_hand(__func__, handle, "set_hand_speed", "hand_speed", speed);
}

int qm_set_hand_force(qm_robot_handle* handle, int hand_force) {
    return set_hand(__func__, handle, "set_hand_force", "hand_force", hand_force);
}

}  // extern "C"
