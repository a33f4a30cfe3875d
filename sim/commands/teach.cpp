// Jog, teach and stop: step moves (reported like planned moves), jogs that run until stopped
// or until the arm can go no further, the teach frame, and stop, pause and continue.
#include <cmath>

#include "constant_define.h"
#include "move_args.h"
#include "qman_trajectory_planning.h"

namespace sim {

namespace {

constexpr double kJogReach = 1.0;     // m: a Cartesian jog heads this far at most
constexpr double kJogTurn = ALGO_PI;  // rad: a rotating jog turns this far at most

// Index 0..2 of `name` among `axes`, or -1.
int axis_of(const std::string& name, std::initializer_list<const char*> axes) {
    int i = 0;
    for (const char* axis : axes) {
        if (name == axis) return i;
        ++i;
    }
    return -1;
}

int axis_member(const Args& args, const char* key, std::initializer_list<const char*> axes) {
    const int axis = axis_of(args.text(key), axes);
    if (axis < 0) throw BadRequest(std::string("\"") + key + "\" names no axis");
    return axis;
}

int joint_number(const Arm& arm, int joint) {
    if (joint < 1 || joint > arm.dof()) throw BadRequest("no joint " + std::to_string(joint));
    return joint - 1;
}

double direction(const Args& args) {
    const std::string text = args.text("direction");
    if (text != "pos" && text != "neg") throw BadRequest("\"direction\" is neither \"pos\" nor \"neg\"");
    return text == "pos" ? 1.0 : -1.0;
}

// A pose path that steps `delta` (3 lengths, 3 angles) in the teach frame, evenly over s.
CartesianPath stepped_path(const Arm& arm, const Pose& from, std::array<double, 6> delta) {
    const int frame = arm.state.teach_frame == 1 ? STEP_FRAME_TOOL : STEP_FRAME_WORK;
    const double length = std::sqrt(delta[0] * delta[0] + delta[1] * delta[1] + delta[2] * delta[2]);
    const double turn = std::fabs(delta[3]) + std::fabs(delta[4]) + std::fabs(delta[5]);
    return {[=](double s) {
                float d[6];
                for (int i = 0; i < 6; ++i) d[i] = static_cast<float>(delta[static_cast<std::size_t>(i)] * s);
                return algo_pose_move(from, d, frame);
            },
            length, turn};
}

// ---- steps ----

void set_joint_step(Call& call) {
    const std::vector<int> step = call.args.ints("joint_step", 2);
    const int v = percent(call.args);
    const int joint = joint_number(call.arm, step[0]);
    const Start start = planning_start(call.arm);
    Joints target = start.joints;
    target[joint] += step[1] / 1000.0;
    queue_move(call, plan_joint_move(call.arm.motion_limits(), start.joints, target, v, MoveKind::joint), 0,
               shown_joints(target, call.arm.dof()));
}

void cartesian_step(Call& call, int axis, double amount) {
    const int v = percent(call.args);
    const Start start = planning_start(call.arm);
    std::array<double, 6> delta{};
    delta[static_cast<std::size_t>(axis)] = amount;
    const CartesianPath path = stepped_path(call.arm, start.pose, delta);
    queue_move(call,
               plan_cartesian(call.arm.motion_limits(), call.arm.kinematics(), start.joints, path, v,
                              MoveKind::linear),
               0, shown_pose(path.pose_at(1.0)));
}

void set_pos_step(Call& call) {
    cartesian_step(call, axis_member(call.args, "step_type", {"x_step", "y_step", "z_step"}),
                   call.args.integer("step") / 1e6);
}

void set_ort_step(Call& call) {
    cartesian_step(call, 3 + axis_member(call.args, "step_type", {"rx_step", "ry_step", "rz_step"}),
                   call.args.integer("step") / 1e3);
}

// ---- jogs ----

void set_joint_teach(Call& call) {
    const int joint = joint_number(call.arm, call.args.integer("teach_joint"));
    const int v = percent(call.args);
    const double sign = direction(call.args);
    const MotionLimits limits = call.arm.motion_limits();
    const Joints from = call.arm.joints();
    Joints to = from;
    to[joint] = sign > 0 ? limits.max_pos[joint] : limits.min_pos[joint];
    if (std::fabs(to[joint] - from[joint]) < 1e-6) return call.refuse("the joint is at its limit");
    start_jog(call, plan_joint_move(limits, from, to, v, MoveKind::jog));
}

void cartesian_jog(Call& call, int axis, double reach) {
    const int v = percent(call.args);
    const Joints from = call.arm.joints();
    std::array<double, 6> delta{};
    delta[static_cast<std::size_t>(axis)] = direction(call.args) * reach;
    const CartesianPath path = stepped_path(call.arm, call.arm.kinematics().forward(from), delta);
    start_jog(call, plan_cartesian(call.arm.motion_limits(), call.arm.kinematics(), from, path, v,
                                   MoveKind::jog, true));
}

void set_pos_teach(Call& call) {
    cartesian_jog(call, axis_member(call.args, "teach_type", {"x", "y", "z"}), kJogReach);
}

void set_ort_teach(Call& call) {
    cartesian_jog(call, 3 + axis_member(call.args, "teach_type", {"rx", "ry", "rz"}), kJogTurn);
}

void set_stop_teach(Call& call) {
    call.arm.stop_jog();
}

// ---- teach frame ----

void set_teach_frame(Call& call) {
    const int frame = call.args.integer("frame_type");
    if (frame != 0 && frame != 1) return call.refuse("teach frame is neither 0 (work) nor 1 (tool)");
    call.arm.state.teach_frame = frame;
}

void get_teach_frame(Call& call) {
    call.reply.set("frame_type", call.arm.state.teach_frame);
}

// ---- stop and trajectory control ----

void stop(Call& call) {
    call.arm.stop_jog();
    call.arm.stop();
}
void pause(Call& call) {
    call.arm.pause();
}
void resume(Call& call) {
    call.arm.resume();
}
void delete_current(Call& call) {
    call.arm.drop_current(true);
}
void delete_all(Call& call) {
    call.arm.drop_current(false);
}

const Command kCommands[] = {
    {"set_joint_step", "set_joint_step", "receive_state", set_joint_step},
    {"set_pos_step", "set_pos_step", "receive_state", set_pos_step},
    {"set_ort_step", "set_ort_step", "receive_state", set_ort_step},
    {"set_joint_teach", "set_joint_teach", "joint_teach", set_joint_teach},
    {"set_pos_teach", "set_pos_teach", "pos_teach", set_pos_teach},
    {"set_ort_teach", "set_ort_teach", "ort_teach", set_ort_teach},
    {"set_stop_teach", "set_stop_teach", "stop_teach", set_stop_teach},
    {"set_teach_frame", "set_teach_frame", "set_state", set_teach_frame},
    {"get_teach_frame", "get_teach_frame", nullptr, get_teach_frame},
    {"set_arm_slow_stop", "set_arm_slow_stop", "arm_slow_stop", stop},
    {"set_arm_stop", "set_arm_stop", "arm_stop", stop},
    {"set_arm_pause", "set_arm_pause", "arm_pause", pause},
    {"set_arm_continue", "set_arm_continue", "arm_continue", resume},
    {"set_delete_current_trajectory", "set_delete_current_trajectory", "delete_current_trajectory",
     delete_current},
    {"set_arm_delete_trajectory", "set_arm_delete_trajectory", "arm_delete_trajectory", delete_all},
};
const CommandFamily kFamily(kCommands);

}  // namespace

}  // namespace sim
