// Force-position (constant force) control, and the streamed force-position moves that run
// between "Start_Force_Position_Move" and "Stop_Force_Position_Move".
#include <chrono>
#include <optional>

#include "log.h"
#include "qm_command.h"
#include "qm_interface.h"

namespace {

using namespace std::chrono_literals;

// The members of a single-direction move that follow a joint target or precede a pose target.
// The force loses its fraction before scaling: intended.
Request& add_single_direction(Request& req, int sensor, int mode, int dir, float force, bool follow) {
    return req.boolean("follow", follow)
        .integer("sensor", sensor)
        .integer("mode", mode)
        .integer("dir", dir)
        .integer("force", wire::truncated_tenths(force));
}

// Streamed moves await no answer, so that they can follow each other closely.
int stream(const char* caller, qm_robot_handle* handle, const Request& req) {
    return send_only(caller, handle, req, 0ms);
}

// A pose target's bounds hold as floats here: a squared norm of exactly 0.99 or 1.1 goes out
// with the Euler angles.
constexpr NormBounds kPoseBounds = NormBounds::in_single;

}  // namespace

extern "C" {

int qm_set_force_position(qm_robot_handle* handle, int sensor, int mode, int direction, float N) {
    Request req("set_force_position");
    req.integer("sensor", sensor)
        .integer("mode", mode)
        .integer("direction", direction)
        .integer("N", wire::truncated_tenths(N));
    return send_set_quick(__func__, handle, req, "set_state");
}

int qm_set_force_position_new(qm_robot_handle* handle, qm_force_position_t param) {
    Request req("set_force_position");
    req.integer("mode", param.mode)
        .integer("sensor", param.sensor)
        .ints("desired_force", wire::each(param.desired_force, wire::tenths))
        .ints("control_mode", param.control_mode)
        .ints("limit_vel", wire::each(param.limit_vel, wire::thousandths));
    return send_set_quick(__func__, handle, req, "set_state");
}

int qm_stop_force_position(qm_robot_handle* handle) {
    return send_set_quick(__func__, handle, Request("stop_force_position"), "stop_state");
}

int qm_start_force_position_move(qm_robot_handle* handle) {
    return send_set_quick(__func__, handle, Request("Start_Force_Position_Move"), "set_state");
}
int qm_stop_force_position_move(qm_robot_handle* handle) {
    return send_set_quick(__func__, handle, Request("Stop_Force_Position_Move"), "set_state");
}

int qm_force_position_move_joint(qm_robot_handle* handle, const float* joint, int sensor, int mode, int dir,
                                 float force, bool follow) {
    std::optional<JointTarget> target = joint_target(__func__, handle, joint);
    if (!target) return -1;
    Request req("Force_Position_Move");
    req.ints("joint", target->span());
    return stream(__func__, handle, add_single_direction(req, sensor, mode, dir, force, follow));
}

int qm_force_position_move_pose(qm_robot_handle* handle, qm_pose_t pose, int sensor, int mode, int dir,
                                float force, bool follow) {
    Request req("Force_Position_Move");
    add_pose_target(add_single_direction(req, sensor, mode, dir, force, follow), pose, kPoseBounds);
    return stream(__func__, handle, req);
}

// A flag other than 0 or 1 names no target; the move goes out without one and the controller decides.
int qm_force_position_move(qm_robot_handle* handle, qm_force_position_move_t param) {
    if (radio_exceeds(param.trajectory_mode, param.radio))
        qm_log_warn("[%s] qm_force_position_move_t param warn, invaild radio: %d!\n", __func__, param.radio);
    Request req("Force_Position_Move");
    req.boolean("follow", param.follow)
        .integer("sensor", param.sensor)
        .integer("mode", param.mode)
        .integer("trajectory_mode", param.trajectory_mode)
        .integer("radio", param.radio)
        .ints("control_mode", param.control_mode)
        .ints("desired_force", wire::each(param.desired_force, wire::tenths))
        .ints("limit_vel", wire::each(param.limit_vel, wire::thousandths));
    if (param.flag == 1) add_pose_target(req, param.pose, kPoseBounds);
    if (param.flag == 0) {
        std::optional<JointTarget> target = joint_target(__func__, handle, param.joint);
        if (!target) return -1;
        req.ints("joint", target->span());
    }
    return stream(__func__, handle, req);
}

}  // extern "C"
