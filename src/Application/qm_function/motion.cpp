// Motion commands: planned moves (non-blocking, blocking and their dispatchers) and the
// streamed pass-through and follow targets.
#include <array>
#include <optional>
#include <span>
#include <string>

#include "log.h"
#include "mio_json.h"
#include "qm_command.h"
#include "qm_handle.h"
#include "qm_interface.h"

namespace {

using std::chrono::milliseconds;

// One planned move as the controller knows it.
struct PlannedMove {
    const char* command;
    const char* log_name;
    const char* target_key;  // member that carries the target
    qm_arm_current_trajectory_e shown_as;  // the planned-trajectory type while it runs
};

constexpr PlannedMove kMoveJ{"movej", "qm_movej", "joint", QM_JOINT_SPACE_PLANNING_E};
constexpr PlannedMove kMoveL{"movel", "qm_movel", "pose", QM_CARTESIAN_LINEAR_PLANNING_E};
constexpr PlannedMove kMoveLOffset{"movel_offset", "qm_movel_offset", "offset", QM_CARTESIAN_LINEAR_PLANNING_E};
constexpr PlannedMove kMoveS{"moves", "qm_moves", "pose", QM_SPLINE_CURVE_MOTION_PLANNING_E};
constexpr PlannedMove kMoveJP{"movej_p", "qm_movej_p", "pose", QM_JOINT_SPACE_PLANNING_E};
constexpr PlannedMove kMoveC{"movec", "qm_movec", "pose", QM_CARTESIAN_ARC_PLANNING_E};

struct MoveArgs {
    int v;
    int r;
    int trajectory_connect;
};

// The acceptance of a planned move: its own name as reply key, "receive_state" judged.
Reply acceptance(const PlannedMove& move) {
    return Reply(move.command, "receive_state").with_query_timeout().buffer(256);
}

// After the controller answered: a non-blocking move (block absent or 0) arms the listener
// so that its own arrival event does not end a later blocking wait; a blocking one waits
// for the arm's arrival unless more connected segments follow.
int settle(const PlannedMove& move, qm_robot_handle* handle, int accepted, int trajectory_connect,
           std::optional<int> block) {
    if (accepted != 0) return accepted;
    if (!block || *block == QM_MOVE_NBLOCK) {
        qm_event_listener_set_flag(1);
        return 0;
    }
    if (trajectory_connect == 1) return 0;
    MoveWait wait{.caller = move.log_name, .device = 0, .trajectory_type = move.shown_as};
    return qm_wait_move_arrival(handle, wait, *block);
}

int planned(const PlannedMove& move, qm_robot_handle* handle, std::span<const int> target, MoveArgs args,
            std::optional<int> block, std::optional<int> frame_type = std::nullopt) {
    Request req(move.command);
    req.integer("v", args.v)
        .ints(move.target_key, target)
        .integer("trajectory_connect", args.trajectory_connect)
        .integer("r", args.r);
    if (frame_type) req.integer("frame_type", *frame_type);
    int accepted = send_set(move.log_name, handle, req, acceptance(move));
    return settle(move, handle, accepted, args.trajectory_connect, block);
}

int joint_move(const PlannedMove& move, qm_robot_handle* handle, const float* joint, MoveArgs args,
               std::optional<int> block) {
    auto target = joint_target(move.log_name, handle, joint);
    if (!target) return -1;
    return planned(move, handle, target->span(), args, block);
}

int pose_move(const PlannedMove& move, qm_robot_handle* handle, const qm_pose_t& pose, MoveArgs args,
              std::optional<int> block, std::optional<int> frame_type = std::nullopt) {
    return planned(move, handle, wire::pose6(pose), args, block, frame_type);
}

// ---- arc move ----

JsonPtr int_array(std::span<const int> values) {
    JsonPtr array(MIO_JSON_CreateArray());
    for (int value : values) MIO_JSON_AddItemToArray(array.get(), MIO_JSON_CreateNumber(value));
    return array;
}

// The arc request is printed formatted, not compact, and carries r in thousandths: both
// intended, the controller reads it that way.
std::string arc_request(const qm_pose_t& via, const qm_pose_t& to, MoveArgs args, int loop) {
    JsonPtr root(MIO_JSON_CreateObject());
    JsonPtr pose(MIO_JSON_CreateObject());
    MIO_JSON_AddItemToObject(pose.get(), "pose_via", int_array(wire::pose6(via)).release());
    MIO_JSON_AddItemToObject(pose.get(), "pose_to", int_array(wire::pose6(to)).release());
    MIO_JSON_AddItemToObject(root.get(), "command", MIO_JSON_CreateString(kMoveC.command));
    MIO_JSON_AddItemToObject(root.get(), "pose", pose.release());
    MIO_JSON_AddItemToObject(root.get(), "v", MIO_JSON_CreateNumber(args.v));
    MIO_JSON_AddItemToObject(root.get(), "r", MIO_JSON_CreateNumber(wire::truncate(args.r * 1000.0)));
    MIO_JSON_AddItemToObject(root.get(), "loop", MIO_JSON_CreateNumber(loop));
    MIO_JSON_AddItemToObject(root.get(), "trajectory_connect", MIO_JSON_CreateNumber(args.trajectory_connect));
    JsonText text(MIO_JSON_Print(root.get()));
    return text ? std::string(text.get()) + "\r\n" : std::string();
}

int arc_move(qm_robot_handle* handle, const qm_pose_t& via, const qm_pose_t& to, MoveArgs args, int loop,
             std::optional<int> block) {
    const std::string line = arc_request(via, to, args, loop);
    if (line.empty() || send_raw(handle, line, line.size(), milliseconds(0)) != 0) return -1;
    if (block) qm_log_debug("send is: %s\n", line.c_str());
    int accepted = send_set(kMoveC.log_name, handle, Request::nothing(), acceptance(kMoveC));
    return settle(kMoveC, handle, accepted, args.trajectory_connect, block);
}

// ---- streamed targets ----

// Streamed targets go out without awaiting any reply.
int stream(const char* caller, qm_robot_handle* handle, const Request& req) {
    return send_only(caller, handle, req, milliseconds(0));
}

}  // namespace

extern "C" {

// ---- planned moves ----

int qm_movej_nblock(qm_robot_handle* handle, const float* joint, int v, int r, int trajectory_connect) {
    return joint_move(kMoveJ, handle, joint, {v, r, trajectory_connect}, std::nullopt);
}
int qm_movej_block(qm_robot_handle* handle, const float* joint, int v, int r, int trajectory_connect, int block) {
    return joint_move(kMoveJ, handle, joint, {v, r, trajectory_connect}, block);
}
int qm_movej(qm_robot_handle* handle, const float* joint, int v, int r, int trajectory_connect, int block) {
    return block ? qm_movej_block(handle, joint, v, r, trajectory_connect, block)
                 : qm_movej_nblock(handle, joint, v, r, trajectory_connect);
}

int qm_movel_nblock(qm_robot_handle* handle, qm_pose_t pose, int v, int r, int trajectory_connect) {
    return pose_move(kMoveL, handle, pose, {v, r, trajectory_connect}, std::nullopt);
}
int qm_movel_block(qm_robot_handle* handle, qm_pose_t pose, int v, int r, int trajectory_connect, int block) {
    return pose_move(kMoveL, handle, pose, {v, r, trajectory_connect}, block);
}
int qm_movel(qm_robot_handle* handle, qm_pose_t pose, int v, int r, int trajectory_connect, int block) {
    return block ? qm_movel_block(handle, pose, v, r, trajectory_connect, block)
                 : qm_movel_nblock(handle, pose, v, r, trajectory_connect);
}

// Intended asymmetry: without blocking the offset goes out as a plain "movel" target and
// frame_type is dropped.
int qm_movel_offset_nblock(qm_robot_handle* handle, qm_pose_t offset, int v, int r, int trajectory_connect,
                           int /*frame_type*/) {
    return pose_move(kMoveL, handle, offset, {v, r, trajectory_connect}, std::nullopt);
}
int qm_movel_offset_block(qm_robot_handle* handle, qm_pose_t offset, int v, int r, int trajectory_connect,
                          int frame_type, int block) {
    return pose_move(kMoveLOffset, handle, offset, {v, r, trajectory_connect}, block, frame_type);
}
int qm_movel_offset(qm_robot_handle* handle, qm_pose_t offset, int v, int r, int trajectory_connect, int frame_type,
                    int block) {
    return block ? qm_movel_offset_block(handle, offset, v, r, trajectory_connect, frame_type, block)
                 : qm_movel_offset_nblock(handle, offset, v, r, trajectory_connect, frame_type);
}

int qm_moves_nblock(qm_robot_handle* handle, qm_pose_t pose, int v, int r, int trajectory_connect) {
    return pose_move(kMoveS, handle, pose, {v, r, trajectory_connect}, std::nullopt);
}
int qm_moves_block(qm_robot_handle* handle, qm_pose_t pose, int v, int r, int trajectory_connect, int block) {
    return pose_move(kMoveS, handle, pose, {v, r, trajectory_connect}, block);
}
int qm_moves(qm_robot_handle* handle, qm_pose_t pose, int v, int r, int trajectory_connect, int block) {
    return block ? qm_moves_block(handle, pose, v, r, trajectory_connect, block)
                 : qm_moves_nblock(handle, pose, v, r, trajectory_connect);
}

int qm_movej_p_nblock(qm_robot_handle* handle, qm_pose_t pose, int v, int r, int trajectory_connect) {
    return pose_move(kMoveJP, handle, pose, {v, r, trajectory_connect}, std::nullopt);
}
int qm_movej_p_block(qm_robot_handle* handle, qm_pose_t pose, int v, int r, int trajectory_connect, int block) {
    return pose_move(kMoveJP, handle, pose, {v, r, trajectory_connect}, block);
}
int qm_movej_p(qm_robot_handle* handle, qm_pose_t pose, int v, int r, int trajectory_connect, int block) {
    return block ? qm_movej_p_block(handle, pose, v, r, trajectory_connect, block)
                 : qm_movej_p_nblock(handle, pose, v, r, trajectory_connect);
}

int qm_movec_nblock(qm_robot_handle* handle, qm_pose_t pose_via, qm_pose_t pose_to, int v, int r, int loop,
                    int trajectory_connect) {
    return arc_move(handle, pose_via, pose_to, {v, r, trajectory_connect}, loop, std::nullopt);
}
int qm_movec_block(qm_robot_handle* handle, qm_pose_t pose_via, qm_pose_t pose_to, int v, int r, int loop,
                   int trajectory_connect, int block) {
    return arc_move(handle, pose_via, pose_to, {v, r, trajectory_connect}, loop, block);
}
int qm_movec(qm_robot_handle* handle, qm_pose_t pose_via, qm_pose_t pose_to, int v, int r, int loop,
             int trajectory_connect, int block) {
    if (trajectory_connect != 0 && trajectory_connect != 1) {
        qm_log_error("[%s] trajectory_connect check err! \n", kMoveC.log_name);
        return -6;
    }
    return block ? qm_movec_block(handle, pose_via, pose_to, v, r, loop, trajectory_connect, block)
                 : qm_movec_nblock(handle, pose_via, pose_to, v, r, loop, trajectory_connect);
}

// ---- streamed targets ----

int qm_movej_canfd(qm_robot_handle* handle, qm_movej_canfd_mode_t config) {
    if (radio_exceeds(config.trajectory_mode, config.radio))
        qm_log_warn("[%s] qm_movej_canfd_mode_t config warn, invaild radio: %d!\n", __func__, config.radio);
    auto target = joint_target(__func__, handle, config.joint);
    if (!target) return -1;
    Request req("movej_canfd");
    req.ints("joint", target->span())
        .boolean("follow", config.follow)
        .integer("expand", wire::thousandths(config.expand))
        .integer("trajectory_mode", config.trajectory_mode)
        .integer("radio", config.radio);
    return stream(__func__, handle, req);
}

int qm_movep_canfd(qm_robot_handle* handle, qm_movep_canfd_mode_t config) {
    if (radio_exceeds(config.trajectory_mode, config.radio))
        qm_log_warn("[%s] qm_movep_canfd_mode_t config warn, invaild radio: %d!\n", __func__, config.radio);
    Request req("movep_canfd");
    req.boolean("follow", config.follow);
    add_pose_target(req, config.pose);
    req.integer("trajectory_mode", config.trajectory_mode).integer("radio", config.radio);
    return stream(__func__, handle, req);
}

int qm_movej_follow(qm_robot_handle* handle, float* joint) {
    auto target = joint_target(__func__, handle, joint);
    if (!target) return -1;
    Request req("movej_follow");
    req.ints("joint", target->span());
    return stream(__func__, handle, req);
}

int qm_movep_follow(qm_robot_handle* handle, qm_pose_t pose) {
    Request req("movep_follow");
    add_pose_target(req, pose);
    return stream(__func__, handle, req);
}

}  // extern "C"
