// The lift axis and the expansion axis: one table row per axis, one way to move, wait and read.
#include "qm_command.h"
#include "qm_exchange.h"
#include "qm_interface.h"

namespace {

// The commands of one axis, and how its blocking move is watched.
struct Axis {
    const char* speed_command;
    const char* speed_checked;
    const char* move_command;
    const char* target_member;  // also the member the state reports the position under
    const char* move_checked;
    const char* state_command;
    const char* state_reply;
    int device;
    int (*read_state)(qm_robot_handle*, qm_expand_state_t*);
};

constexpr Axis kLift{"set_lift_speed", "set_state", "set_lift_height",
                     "height",         "set_state", "get_lift_state",
                     "lift_state",     3,           qm_get_lift_state};
constexpr Axis kExpand{"expand_set_speed", "set_speed_state",  "expand_set_pos", "pos",
                       "set_pos_state",    "expand_get_state", "expand_state",   4,
                       qm_get_expand_state};

int set_speed(const char* caller, qm_robot_handle* handle, const Axis& axis, int speed) {
    Request req(axis.speed_command);
    req.integer("speed", speed);
    return send_set_quick(caller, handle, req, axis.speed_checked);
}

// A refused move is returned even when blocking: nothing would arrive.
int move(const char* caller, qm_robot_handle* handle, const Axis& axis, int speed, int target, int block) {
    Request req(axis.move_command);
    req.integer("speed", speed).integer(axis.target_member, target).boolean("block", block != 0);
    const int accepted = send_set_quick(caller, handle, req, axis.move_checked);
    if (accepted != 0 || block == 0) return accepted;
    // The axis reports its own motion in its state's mode; an arrival of another device is
    // passed over while the axis may still move and refused once it stands.
    const MoveWait wait{.caller = caller,
                        .device = axis.device,
                        .seen_pause_ms = 100,
                        .idle_pause_ms = 50,
                        .idle_polls = 10,
                        .device_state = axis.read_state,
                        .missed_event_pause_ms = 100,
                        .other_mode_result = -3};
    return qm_wait_move_arrival(handle, wait, block);
}

int read_state(const char* caller, qm_robot_handle* handle, const Axis& axis, qm_expand_state_t* state) {
    return query_ints(caller, handle, Request(axis.state_command), Reply::query(axis.state_reply),
                      {{axis.target_member, store(&state->pos)},
                       {"current", store(&state->current)},
                       {"err_flag", store(&state->err_flag)},
                       {"mode", store(&state->mode)}});
}

}  // namespace

extern "C" {

int qm_set_lift_speed(qm_robot_handle* handle, int speed) {
    return set_speed(__func__, handle, kLift, speed);
}
int qm_set_lift_height(qm_robot_handle* handle, int speed, int height, int block) {
    return move(__func__, handle, kLift, speed, height, block);
}
int qm_get_lift_state(qm_robot_handle* handle, qm_expand_state_t* state) {
    return read_state(__func__, handle, kLift, state);
}

int qm_set_expand_speed(qm_robot_handle* handle, int speed) {
    return set_speed(__func__, handle, kExpand, speed);
}
int qm_set_expand_pos(qm_robot_handle* handle, int speed, int pos, int block) {
    return move(__func__, handle, kExpand, speed, pos, block);
}
int qm_get_expand_state(qm_robot_handle* handle, qm_expand_state_t* state) {
    return read_state(__func__, handle, kExpand, state);
}

}  // extern "C"
