// Motion commands: planned moves that run in simulated time and report their arrival, and
// the pass-through and follow targets that put the arm in place at once.
#include "constant_define.h"
#include "move_args.h"
#include "qman_trajectory_planning.h"

namespace sim {

namespace {

void movej(Call& call) {
    const int v = percent(call.args);
    const int connect = trajectory_connect(call.args);
    const Joints target = joint_target(call.args, "joint", call.arm.dof());
    const Start start = planning_start(call.arm);
    queue_move(call, plan_joint_move(call.arm.motion_limits(), start.joints, target, v, MoveKind::joint),
               connect, shown_joints(target, call.arm.dof()));
}

// A joint-space move to a Cartesian target: solved once, then moved like movej.
void movej_p(Call& call) {
    const int v = percent(call.args);
    const int connect = trajectory_connect(call.args);
    const Pose target = pose_target(call.args, "pose");
    const Start start = planning_start(call.arm);
    Joints joints{};
    const int rc = call.arm.kinematics().inverse(target, start.joints, joints);
    if (rc != IKINE_SUCCESSFUL)
        return call.refuse(rc == IKINE_LIMITED ? "target outside the joint limits" : "target out of reach");
    queue_move(call, plan_joint_move(call.arm.motion_limits(), start.joints, joints, v, MoveKind::joint),
               connect, shown_joints(joints, call.arm.dof()));
}

void linear_to(Call& call, const Pose& target, MoveKind kind) {
    const int v = percent(call.args);
    const int connect = trajectory_connect(call.args);
    const Start start = planning_start(call.arm);
    queue_move(call,
               plan_cartesian(call.arm.motion_limits(), call.arm.kinematics(), start.joints,
                              line_path(start.pose, target), v, kind),
               connect, shown_pose(target));
}

void movel(Call& call) {
    linear_to(call, pose_target(call.args, "pose"), MoveKind::linear);
}

// Splines through consecutive targets are run as straight segments.
void moves(Call& call) {
    linear_to(call, pose_target(call.args, "pose"), MoveKind::spline);
}

// The offset is taken in the work frame (0) or the tool frame (1) from where the move starts.
void movel_offset(Call& call) {
    const std::vector<int> o = call.args.ints("offset", 6);
    const int frame = call.args.integer("frame_type");
    if (frame != STEP_FRAME_WORK && frame != STEP_FRAME_TOOL)
        throw BadRequest("\"frame_type\" is neither 0 nor 1");
    const float delta[6] = {static_cast<float>(o[0] / 1e6), static_cast<float>(o[1] / 1e6),
                            static_cast<float>(o[2] / 1e6), static_cast<float>(o[3] / 1e3),
                            static_cast<float>(o[4] / 1e3), static_cast<float>(o[5] / 1e3)};
    linear_to(call, algo_pose_move(planning_start(call.arm).pose, delta, frame), MoveKind::linear);
}

// Through "pose_via" to "pose_to"; with "loop" n > 0, n full circles back to the start.
void movec(Call& call) {
    const int v = percent(call.args);
    const int connect = trajectory_connect(call.args);
    const cJSON* poses = call.args.object("pose");
    const Args points(poses);
    const Pose via = pose_target(points, "pose_via");
    const Pose to = pose_target(points, "pose_to");
    const int loops = call.args.integer("loop");
    if (loops < 0) throw BadRequest("\"loop\" is negative");
    const Start start = planning_start(call.arm);
    std::optional<CartesianPath> arc = arc_path(start.pose, via, to, loops);
    if (!arc) return call.refuse("start, via and target lie on one line");
    queue_move(
        call,
        plan_cartesian(call.arm.motion_limits(), call.arm.kinematics(), start.joints, *arc, v, MoveKind::arc),
        connect, shown_pose(loops > 0 ? start.pose : to));
}

// ---- pass-through and follow: no reply, the arm is there at once ----

void place(Call& call) {
    const char* status = call.args.has("joint") ? "move_through_joint" : "move_through_pose";
    if (std::optional<Joints> target = streamed_target(call)) call.arm.place(*target, status);
}

const Command kCommands[] = {
    {"movej", "movej", "receive_state", movej},
    {"movej_p", "movej_p", "receive_state", movej_p},
    {"movel", "movel", "receive_state", movel},
    {"movel_offset", "movel_offset", "receive_state", movel_offset},
    {"moves", "moves", "receive_state", moves},
    {"movec", "movec", "receive_state", movec},
    {"movej_canfd", nullptr, nullptr, place},
    {"movej_follow", nullptr, nullptr, place},
    {"movep_canfd", nullptr, nullptr, place},
    {"movep_follow", nullptr, nullptr, place},
};
const CommandFamily kFamily(kCommands);

}  // namespace

}  // namespace sim
