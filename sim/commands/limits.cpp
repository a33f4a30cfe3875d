// Joint and arm limits: the software limits that moves are checked against, the drives'
// own limits, joint enable, zero and errors, Cartesian limits and the collision stage.
#include "command.h"

namespace sim {

namespace {

using Field = WireJoints JointLimitSet::*;
using LimitSet = JointLimitSet ArmState::*;

// Why a joint limit cannot take `value`, or null.
using Check = const char* (*)(const JointLimitSet& set, int joint, int value);

const char* positive(const JointLimitSet&, int, int value) {
    return value > 0 ? nullptr : "the limit must be positive";
}
const char* below_max(const JointLimitSet& set, int joint, int value) {
    return value < set.max_pos[joint] ? nullptr : "the lower limit must lie below the upper one";
}
const char* above_min(const JointLimitSet& set, int joint, int value) {
    return value > set.min_pos[joint] ? nullptr : "the upper limit must lie above the lower one";
}

// A per-joint setter: [joint, value] under `member`, judged by the same member.
struct JointSetter {
    const char* member;
    LimitSet set;
    Field field;
    Check check;
};

constexpr JointSetter kMaxSpeed{"joint_max_speed", &ArmState::limits, &JointLimitSet::max_speed, positive};
constexpr JointSetter kMaxAcc{"joint_max_acc", &ArmState::limits, &JointLimitSet::max_acc, positive};
constexpr JointSetter kMinPos{"joint_min_pos", &ArmState::limits, &JointLimitSet::min_pos, below_max};
constexpr JointSetter kMaxPos{"joint_max_pos", &ArmState::limits, &JointLimitSet::max_pos, above_min};
constexpr JointSetter kDriveMaxSpeed{"joint_max_speed", &ArmState::drive_limits, &JointLimitSet::max_speed,
                                     positive};
constexpr JointSetter kDriveMaxAcc{"joint_max_acc", &ArmState::drive_limits, &JointLimitSet::max_acc,
                                   positive};
constexpr JointSetter kDriveMinPos{"joint_min_pos", &ArmState::drive_limits, &JointLimitSet::min_pos,
                                   below_max};
constexpr JointSetter kDriveMaxPos{"joint_max_pos", &ArmState::drive_limits, &JointLimitSet::max_pos,
                                   above_min};

// [joint_num, value] of a per-joint request, with the joint 0-based.
std::pair<int, int> joint_and_value(const Call& call, const char* member) {
    const std::vector<int> pair = call.args.ints(member, 2);
    if (pair[0] < 1 || pair[0] > call.arm.dof()) throw BadRequest("no joint " + std::to_string(pair[0]));
    return {pair[0] - 1, pair[1]};
}

template <const JointSetter* Row>
void set_joint(Call& call) {
    const auto [joint, value] = joint_and_value(call, Row->member);
    JointLimitSet& set = call.arm.state.*(Row->set);
    if (const char* why = Row->check(set, joint, value)) return call.refuse(why);
    (set.*(Row->field))[joint] = value;
    call.arm.reconfigure();  // the software position limits bound the kinematics
}

// A getter of one limit of every joint.
struct JointGetter {
    const char* member;
    LimitSet set;
    Field field;
};

constexpr JointGetter kGetMaxSpeed{"joint_speed", &ArmState::limits, &JointLimitSet::max_speed};
constexpr JointGetter kGetMaxAcc{"joint_acc", &ArmState::limits, &JointLimitSet::max_acc};
constexpr JointGetter kGetMinPos{"min_pos", &ArmState::limits, &JointLimitSet::min_pos};
constexpr JointGetter kGetMaxPos{"max_pos", &ArmState::limits, &JointLimitSet::max_pos};
constexpr JointGetter kGetDriveMaxSpeed{"joint_speed", &ArmState::drive_limits, &JointLimitSet::max_speed};
constexpr JointGetter kGetDriveMaxAcc{"joint_acc", &ArmState::drive_limits, &JointLimitSet::max_acc};
constexpr JointGetter kGetDriveMinPos{"min_pos", &ArmState::drive_limits, &JointLimitSet::min_pos};
constexpr JointGetter kGetDriveMaxPos{"max_pos", &ArmState::drive_limits, &JointLimitSet::max_pos};

template <const JointGetter* Row>
void get_joint(Call& call) {
    call.reply.ints(Row->member, dof_values(call.arm.state.*(Row->set).*(Row->field), call.arm.dof()));
}

void set_joint_en_state(Call& call) {
    const auto [joint, value] = joint_and_value(call, "joint_en_state");
    if (value != 0 && value != 1) return call.refuse("enable state is neither 0 nor 1");
    if (value == 0 && !call.arm.trajectory().idle()) return call.refuse("the arm is moving");
    call.arm.state.enabled[joint] = value == 1;
}

void get_joint_en_state(Call& call) {
    call.reply.ints("en_state", dof_values(call.arm.enable_flags(), call.arm.dof()));
}

// The brakes hold every joint that is not enabled.
void get_joint_err_flag(Call& call) {
    WireJoints brakes = call.arm.enable_flags();
    for (int j = 0; j < call.arm.dof(); ++j) brakes[j] = 1 - brakes[j];
    call.reply.ints("err_flag", dof_values(call.arm.state.err_flags, call.arm.dof()));
    call.reply.ints("brake_state", dof_values(brakes, call.arm.dof()));
}

int joint_of(const Call& call, const char* member) {
    const int joint = call.args.integer(member);
    if (joint < 1 || joint > call.arm.dof()) throw BadRequest("no joint " + std::to_string(joint));
    return joint - 1;
}

// The joint's present angle becomes its zero.
void set_joint_zero_pos(Call& call) {
    const int joint = joint_of(call, "joint_zero_pos");
    if (!call.arm.trajectory().idle()) return call.refuse("the arm is moving");
    Joints q = call.arm.joints();
    q[joint] = 0.0;
    call.arm.place(q, "idle");
}

void set_joint_clear_err(Call& call) {
    call.arm.state.err_flags[joint_of(call, "joint_clear_err")] = 0;
}

// Every mode puts the software position limits back to the model's.
void auto_set_joint_limit(Call& call) {
    if (call.args.integer("limit_mode") < 0) return call.refuse("negative limit mode");
    JointLimitSet& limits = call.arm.state.limits;
    for (int j = 0; j < call.arm.dof(); ++j) {
        limits.min_pos[j] = wire::round(call.arm.model().min_pos[j] * 1000.0);
        limits.max_pos[j] = wire::round(call.arm.model().max_pos[j] * 1000.0);
    }
    call.arm.reconfigure();
}

// ---- Cartesian limits: one member each, thousandths of m/s, m/s^2, rad/s, rad/s^2 ----

struct CartesianLimit {
    const char* member;
    int ArmState::*field;
};

constexpr CartesianLimit kLineSpeed{"arm_line_speed", &ArmState::line_speed};
constexpr CartesianLimit kLineAcc{"arm_line_acc", &ArmState::line_acc};
constexpr CartesianLimit kAngularSpeed{"arm_angular_speed", &ArmState::angular_speed};
constexpr CartesianLimit kAngularAcc{"arm_angular_acc", &ArmState::angular_acc};

template <const CartesianLimit* Row>
void set_cartesian(Call& call) {
    const int value = call.args.integer(Row->member);
    if (value <= 0) return call.refuse("the limit must be positive");
    call.arm.state.*(Row->field) = value;
}

template <const CartesianLimit* Row>
void get_cartesian(Call& call) {
    call.reply.set(Row->member, call.arm.state.*(Row->field));
}

// The tool centre goes back to the flange.
void set_arm_init(Call& call) {
    call.arm.state.tool = call.arm.state.tools.front().name;
    call.arm.reconfigure();
}

void set_collision_stage(Call& call) {
    const int stage = call.args.integer("collision_stage");
    if (stage < 0 || stage > 8) return call.refuse("collision stage outside 0..8");
    call.arm.state.collision_stage = stage;
}

void get_collision_stage(Call& call) {
    call.reply.set("collision_stage", call.arm.state.collision_stage);
}

const Command kCommands[] = {
    {"set_joint_max_speed", "set_joint_max_speed", "joint_max_speed", set_joint<&kMaxSpeed>},
    {"set_joint_max_acc", "set_joint_max_acc", "joint_max_acc", set_joint<&kMaxAcc>},
    {"set_joint_min_pos", "set_joint_min_pos", "joint_min_pos", set_joint<&kMinPos>},
    {"set_joint_max_pos", "set_joint_max_pos", "joint_max_pos", set_joint<&kMaxPos>},
    {"set_joint_drive_max_speed", "set_joint_drive_max_speed", "joint_max_speed", set_joint<&kDriveMaxSpeed>},
    {"set_joint_drive_max_acc", "set_joint_drive_max_acc", "joint_max_acc", set_joint<&kDriveMaxAcc>},
    {"set_joint_drive_min_pos", "set_joint_drive_min_pos", "joint_min_pos", set_joint<&kDriveMinPos>},
    {"set_joint_drive_max_pos", "set_joint_drive_max_pos", "joint_max_pos", set_joint<&kDriveMaxPos>},
    {"get_joint_max_speed", "joint_max_speed", nullptr, get_joint<&kGetMaxSpeed>},
    {"get_joint_max_acc", "joint_max_acc", nullptr, get_joint<&kGetMaxAcc>},
    {"get_joint_min_pos", "joint_min_pos", nullptr, get_joint<&kGetMinPos>},
    {"get_joint_max_pos", "joint_max_pos", nullptr, get_joint<&kGetMaxPos>},
    {"get_joint_drive_max_speed", "get_joint_drive_max_speed", nullptr, get_joint<&kGetDriveMaxSpeed>},
    {"get_joint_drive_max_acc", "get_joint_drive_max_acc", nullptr, get_joint<&kGetDriveMaxAcc>},
    {"get_joint_drive_min_pos", "get_joint_drive_min_pos", nullptr, get_joint<&kGetDriveMinPos>},
    {"get_joint_drive_max_pos", "get_joint_drive_max_pos", nullptr, get_joint<&kGetDriveMaxPos>},
    {"set_joint_en_state", "set_joint_en_state", "joint_en_state", set_joint_en_state},
    {"get_joint_en_state", "joint_en_state", nullptr, get_joint_en_state},
    {"get_joint_err_flag", "joint_err_flag", nullptr, get_joint_err_flag},
    {"set_joint_zero_pos", "set_joint_zero_pos", "joint_zero_pos", set_joint_zero_pos},
    {"set_joint_clear_err", "set_joint_clear_err", "joint_clear_err", set_joint_clear_err},
    {"auto_set_joint_limit", "auto_set_joint_limit", "limit_mode", auto_set_joint_limit},
    {"set_arm_max_line_speed", "set_arm_max_line_speed", "arm_line_speed", set_cartesian<&kLineSpeed>},
    {"set_arm_max_line_acc", "set_arm_max_line_acc", "arm_line_acc", set_cartesian<&kLineAcc>},
    {"set_arm_max_angular_speed", "set_arm_max_angular_speed", "arm_angular_speed",
     set_cartesian<&kAngularSpeed>},
    {"set_arm_max_angular_acc", "set_arm_max_angular_acc", "arm_angular_acc", set_cartesian<&kAngularAcc>},
    {"get_arm_max_line_speed", "arm_max_line_speed", nullptr, get_cartesian<&kLineSpeed>},
    {"get_arm_max_line_acc", "arm_max_line_acc", nullptr, get_cartesian<&kLineAcc>},
    {"get_arm_max_angular_speed", "arm_max_angular_speed", nullptr, get_cartesian<&kAngularSpeed>},
    {"get_arm_max_angular_acc", "arm_max_angular_acc", nullptr, get_cartesian<&kAngularAcc>},
    {"set_arm_init", "set_arm_init", "arm_init", set_arm_init},
    {"set_collision_stage", "set_collision_stage", "collision_state", set_collision_stage},
    {"get_collision_stage", "get_collision_stage", nullptr, get_collision_stage},
};
const CommandFamily kFamily(kCommands);

}  // namespace

}  // namespace sim
