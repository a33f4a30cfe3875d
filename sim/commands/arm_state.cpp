// Arm state and information: joint state, end pose and errors, software versions, the
// initial pose and the trajectory being run.
#include "command.h"
#include "lib_version.h"
#include "telemetry.h"

namespace sim {

namespace {

constexpr const char* kVersion = "1.1.0-sim";
constexpr const char* kBuildTime = "2025-01-01 00:00:00";

JsonPtr version(const char* text, bool with_build_time = true) {
    JsonPtr info(cJSON_CreateObject());
    cJSON_AddStringToObject(info.get(), "version", text);
    if (with_build_time) cJSON_AddStringToObject(info.get(), "build_time", kBuildTime);
    return info;
}

void get_arm_software_info(Call& call) {
    call.reply.set("Product_version", call.arm.model().product)
        .set("robot_controller_version", call.arm.generation() == 4 ? "4.0" : "3.0")
        .add("algorithm_info", version(LIBALGO_VERSION, false))
        .add("ctrl_info", version(kVersion))
        .add("plan_info", version(kVersion));
    JsonPtr dynamic(cJSON_CreateObject());
    cJSON_AddStringToObject(dynamic.get(), "model_version", "1.0");
    call.reply.add("dynamic_info", std::move(dynamic));
    if (call.arm.generation() == 4)
        call.reply.add("program_info", version(kVersion)).add("communication_info", version(kVersion));
}

std::span<const int> of_dof(const Call& call, const WireJoints& values) {
    return {values.data(), static_cast<std::size_t>(call.arm.dof())};
}

void get_current_arm_state(Call& call) {
    const Wire6 pose = wire::pose(call.arm.pose());
    JsonPtr state(cJSON_CreateObject());
    cJSON_AddItemToObject(state.get(), "joint",
                          int_array(of_dof(call, wire::joints(call.arm.joints(), call.arm.dof()))).release());
    cJSON_AddItemToObject(state.get(), "pose", int_array(pose).release());
    cJSON_AddItemToObject(state.get(), "err", int_array(call.arm.error_codes()).release());
    call.reply.add("arm_state", std::move(state));
}

// Queries of one dof-long array of joint telemetry.
struct TelemetryQuery {
    const char* member;
    WireJoints Telemetry::*field;
};
constexpr TelemetryQuery kTemperature{"joint_temperature", &Telemetry::temperature};
constexpr TelemetryQuery kCurrent{"joint_current", &Telemetry::current};
constexpr TelemetryQuery kVoltage{"joint_voltage", &Telemetry::voltage};
constexpr TelemetryQuery kDegree{"joint", &Telemetry::position};

template <const TelemetryQuery* Row>
void joint_telemetry(Call& call) {
    call.reply.ints(Row->member, of_dof(call, telemetry(call.arm).*(Row->field)));
}

void get_arm_all_state(Call& call) {
    const Telemetry t = telemetry(call.arm);
    call.reply.ints("temperature", of_dof(call, t.temperature))
        .ints("current", of_dof(call, t.current))
        .ints("voltage", of_dof(call, t.voltage))
        .ints("err_flag", of_dof(call, call.arm.state.err_flags))
        .ints("en_flag", of_dof(call, call.arm.enable_flags()))
        .ints("err", call.arm.error_codes());
}

void set_init_pose(Call& call) {
    const std::vector<int> pose = call.args.ints("init_pose", static_cast<std::size_t>(call.arm.dof()));
    WireJoints init{};
    std::copy(pose.begin(), pose.end(), init.begin());
    if (int joint = joint_outside(call.arm.motion_limits(), wire::degrees(init)))
        return call.refuse("joint " + std::to_string(joint) + " outside its limits");
    call.arm.state.init_pose = init;
}

void get_init_pose(Call& call) {
    call.reply.ints("init_pose", of_dof(call, call.arm.state.init_pose));
}

// The running move's type and target; with nothing planned, a jog or a replay the present joints.
void get_arm_current_trajectory(Call& call) {
    const Segment* running = call.arm.trajectory().current();
    const char* type = "none";
    if (running) {
        switch (running->kind) {
            case MoveKind::joint:
                type = "movej";
                break;
            case MoveKind::linear:
                type = "movel";
                break;
            case MoveKind::arc:
                type = "movec";
                break;
            case MoveKind::spline:
                type = "moves";
                break;
            case MoveKind::replay:
                type = "re_trajectory";
                break;
            case MoveKind::jog:
                break;
        }
    }
    call.reply.set("type", type);
    // A replay shows where it is; the others their targets.
    if (!running || running->kind == MoveKind::jog || running->kind == MoveKind::replay)
        call.reply.ints("data", of_dof(call, wire::joints(call.arm.joints(), call.arm.dof())));
    else
        call.reply.ints("data", running->reported);
}

const Command kCommands[] = {
    {"get_arm_software_info", "arm_software_info", nullptr, get_arm_software_info},
    {"get_current_arm_state", "current_arm_state", nullptr, get_current_arm_state},
    {"get_current_joint_temperature", "current_joint_temperature", nullptr, joint_telemetry<&kTemperature>},
    {"get_current_joint_current", "current_joint_current", nullptr, joint_telemetry<&kCurrent>},
    {"get_current_joint_voltage", "current_joint_voltage", nullptr, joint_telemetry<&kVoltage>},
    {"get_joint_degree", "joint_degree", nullptr, joint_telemetry<&kDegree>},
    {"get_arm_all_state", "arm_all_state", nullptr, get_arm_all_state},
    {"set_init_pose", "set_init_pose", "init_pose", set_init_pose},
    {"get_init_pose", "arm_init_pose", nullptr, get_init_pose},
    {"get_arm_current_trajectory", "arm_current_trajectory", nullptr, get_arm_current_trajectory},
};
const CommandFamily kFamily(kCommands);

}  // namespace

}  // namespace sim
