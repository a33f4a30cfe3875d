// Jog, teach and stop: step moves, continuous jogs, the teach frame and the stop, pause,
// continue and trajectory-deletion commands.
#include <chrono>
#include <span>

#include "log.h"
#include "qm_command.h"
#include "qm_handle.h"
#include "qm_interface.h"

namespace {

using std::chrono::milliseconds;

// The controller's name of axis `type` (0..2); none outside, so the member is left out
// and the controller decides.
const char* axis_name(std::span<const char* const, 3> names, int type) {
    return type >= 0 && type <= 2 ? names[static_cast<size_t>(type)] : nullptr;
}

constexpr const char* kStepAxes[] = {"x_step", "y_step", "z_step"};
constexpr const char* kRotateStepAxes[] = {"rx_step", "ry_step", "rz_step"};
constexpr const char* kTeachAxes[] = {"x", "y", "z"};
constexpr const char* kRotateTeachAxes[] = {"rx", "ry", "rz"};

const char* direction_name(int direction) { return direction ? "pos" : "neg"; }

// ---- step moves ----

// A joint step in degrees goes out in single precision, unlike the planned joint moves.
Request joint_step(int joint_num, float step, int v) {
    Request req("set_joint_step");
    req.ints("joint_step", {joint_num, wire::thousandths(step)}).integer("v", v);
    return req;
}

Request pos_step(int type, float step, int v) {
    Request req("set_pos_step");
    req.integer("v", v).integer("step", wire::micrometres(step)).str("step_type", axis_name(kStepAxes, type));
    return req;
}

Request ort_step(int type, float step, int v) {
    Request req("set_ort_step");
    req.integer("v", v).integer("step", wire::milliradians(step)).str("step_type", axis_name(kRotateStepAxes, type));
    return req;
}

// Sent without awaiting a reply; the exchange still holds for the query timeout.
int step_nblock(const char* caller, qm_robot_handle* handle, const Request& req) {
    return send_only(caller, handle, req, milliseconds(m_nOutTime.load()));
}

// Accepted under the command's own name, then the arm's arrival is awaited; a step shows
// as a planned trajectory only after a moment, so the wait polls for it first.
int step_block(const char* caller, qm_robot_handle* handle, const Request& req, qm_arm_current_trajectory_e shown_as,
               int block) {
    int accepted = send_set(caller, handle, req, Reply(req.command(), "receive_state").with_query_timeout());
    if (accepted != 0) return accepted;
    if (block == QM_MOVE_NBLOCK) {
        qm_event_listener_set_flag(1);
        return 0;
    }
    MoveWait wait{.caller = caller,
                  .device = 0,
                  .trajectory_type = shown_as,
                  .event_timeout_ms = 1000,
                  .poll_first = true,
                  .seen_pause_ms = 100,
                  .idle_polls = 10};
    return qm_wait_move_arrival(handle, wait, block);
}

// ---- set commands ----

// One set command of this family: reply awaited under the command's name, one boolean judged.
struct SetCommand {
    const char* command;
    const char* checked;
};

int set_command(const char* caller, qm_robot_handle* handle, const SetCommand& cmd, const Request& req) {
    return send_set(caller, handle, req, Reply(cmd.command, cmd.checked));
}
int set_command(const char* caller, qm_robot_handle* handle, const SetCommand& cmd) {
    return set_command(caller, handle, cmd, Request(cmd.command));
}

constexpr SetCommand kJointTeach{"set_joint_teach", "joint_teach"};
constexpr SetCommand kPosTeach{"set_pos_teach", "pos_teach"};
constexpr SetCommand kOrtTeach{"set_ort_teach", "ort_teach"};
constexpr SetCommand kStopTeach{"set_stop_teach", "stop_teach"};
constexpr SetCommand kTeachFrame{"set_teach_frame", "set_state"};

// Stop and trajectory control: the command alone.
constexpr SetCommand kArmSlowStop{"set_arm_slow_stop", "arm_slow_stop"};
constexpr SetCommand kArmStop{"set_arm_stop", "arm_stop"};
constexpr SetCommand kArmPause{"set_arm_pause", "arm_pause"};
constexpr SetCommand kArmContinue{"set_arm_continue", "arm_continue"};
constexpr SetCommand kDeleteCurrentTrajectory{"set_delete_current_trajectory", "delete_current_trajectory"};
constexpr SetCommand kArmDeleteTrajectory{"set_arm_delete_trajectory", "arm_delete_trajectory"};

}  // namespace

extern "C" {

// ---- step moves ----

int qm_set_joint_step_nblock(qm_robot_handle* handle, int joint_num, float step, int v) {
    return step_nblock(__func__, handle, joint_step(joint_num, step, v));
}
int qm_set_joint_step_block(qm_robot_handle* handle, int joint_num, float step, int v, int block) {
    return step_block(__func__, handle, joint_step(joint_num, step, v), QM_JOINT_SPACE_PLANNING_E, block);
}
int qm_set_joint_step(qm_robot_handle* handle, int joint_num, float step, int v, int block) {
    return block ? qm_set_joint_step_block(handle, joint_num, step, v, block)
                 : qm_set_joint_step_nblock(handle, joint_num, step, v);
}

int qm_set_pos_step_nblock(qm_robot_handle* handle, qm_pos_teach_type_e type, float step, int v) {
    return step_nblock(__func__, handle, pos_step(type, step, v));
}
int qm_set_pos_step_block(qm_robot_handle* handle, qm_pos_teach_type_e type, float step, int v, int block) {
    return step_block(__func__, handle, pos_step(type, step, v), QM_CARTESIAN_LINEAR_PLANNING_E, block);
}
int qm_set_pos_step(qm_robot_handle* handle, qm_pos_teach_type_e type, float step, int v, int block) {
    return block ? qm_set_pos_step_block(handle, type, step, v, block) : qm_set_pos_step_nblock(handle, type, step, v);
}

int qm_set_ort_step_nblock(qm_robot_handle* handle, qm_ort_teach_type_e type, float step, int v) {
    return step_nblock(__func__, handle, ort_step(type, step, v));
}
int qm_set_ort_step_block(qm_robot_handle* handle, qm_ort_teach_type_e type, float step, int v, int block) {
    return step_block(__func__, handle, ort_step(type, step, v), QM_CARTESIAN_LINEAR_PLANNING_E, block);
}
int qm_set_ort_step(qm_robot_handle* handle, qm_ort_teach_type_e type, float step, int v, int block) {
    return block ? qm_set_ort_step_block(handle, type, step, v, block) : qm_set_ort_step_nblock(handle, type, step, v);
}

// ---- jogs and the teach frame ----

int qm_set_joint_teach(qm_robot_handle* handle, int joint_num, int direction, int v) {
    Request req(kJointTeach.command);
    req.integer("teach_joint", joint_num).integer("v", v).str("direction", direction_name(direction));
    return set_command(__func__, handle, kJointTeach, req);
}

int qm_set_pos_teach(qm_robot_handle* handle, qm_pos_teach_type_e type, int direction, int v) {
    Request req(kPosTeach.command);
    req.integer("v", v).str("teach_type", axis_name(kTeachAxes, type)).str("direction", direction_name(direction));
    return set_command(__func__, handle, kPosTeach, req);
}

int qm_set_ort_teach(qm_robot_handle* handle, qm_ort_teach_type_e type, int direction, int v) {
    Request req(kOrtTeach.command);
    req.integer("v", v).str("teach_type", axis_name(kRotateTeachAxes, type)).str("direction", direction_name(direction));
    return set_command(__func__, handle, kOrtTeach, req);
}

int qm_set_stop_teach(qm_robot_handle* handle) { return set_command(__func__, handle, kStopTeach); }

int qm_set_teach_frame(qm_robot_handle* handle, int frame_type) {
    Request req(kTeachFrame.command);
    req.integer("frame_type", frame_type);
    return set_command(__func__, handle, kTeachFrame, req);
}

int qm_get_teach_frame(qm_robot_handle* handle, int* frame_type) {
    KeyValue table[] = {int_member("frame_type")};
    if (int rc = send_query(__func__, handle, Request("get_teach_frame"), Reply::query("get_teach_frame"), table))
        return rc;
    if (frame_type) *frame_type = table[0].value.int_value;
    return 0;
}

// ---- stop and trajectory control ----

int qm_set_arm_slow_stop(qm_robot_handle* handle) { return set_command(__func__, handle, kArmSlowStop); }
int qm_set_arm_stop(qm_robot_handle* handle) { return set_command(__func__, handle, kArmStop); }
int qm_set_arm_pause(qm_robot_handle* handle) { return set_command(__func__, handle, kArmPause); }
int qm_set_arm_continue(qm_robot_handle* handle) { return set_command(__func__, handle, kArmContinue); }
int qm_set_delete_current_trajectory(qm_robot_handle* handle) {
    return set_command(__func__, handle, kDeleteCurrentTrajectory);
}
int qm_set_arm_delete_trajectory(qm_robot_handle* handle) { return set_command(__func__, handle, kArmDeleteTrajectory); }

}  // extern "C"
