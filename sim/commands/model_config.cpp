// The arm's model configuration and its safety switches: installation angles, the DH table
// (which the simulated kinematics then use), self-collision checking, the run mode, the
// emergency stop, and the firmware versions of the joints and the tool board.
#include <cmath>

#include "command.h"

namespace sim {

namespace {

constexpr const char* kDhRows[] = {"joint_1", "joint_2", "joint_3", "joint_4", "joint_5", "joint_6", "joint_7"};
constexpr int kMaxLength = 2000000;  // micrometres: no link of these arms is longer
constexpr int kMaxAngle = 6284;      // thousandths of a radian: a turn

void set_install_pose(Call& call) {
    const std::vector<int> angles = call.args.ints("pose", 3);
    for (int angle : angles)
        if (angle < -180 || angle > 180) return call.refuse("installation angle outside -180..180 degrees");
    std::copy(angles.begin(), angles.end(), call.arm.state.install.begin());
    call.arm.reconfigure();
}

void get_install_pose(Call& call) {
    call.reply.ints("pose", call.arm.state.install);
}

// Each row: twist and offset in thousandths of a radian, lengths in micrometres. The rows
// beyond the arm's joints are ignored.
void set_DH_data(Call& call) {
    ArmModel::Dh dh = call.arm.state.dh;
    for (int j = 0; j < call.arm.dof(); ++j) {
        const std::vector<int> row = call.args.ints(kDhRows[j], 4);
        if (std::abs(row[0]) > kMaxAngle || std::abs(row[3]) > kMaxAngle || std::abs(row[1]) > kMaxLength ||
            std::abs(row[2]) > kMaxLength)
            return call.refuse(std::string(kDhRows[j]) + " is no DH row of this arm");
        dh.alpha[j] = row[0] / 1e3;
        dh.a[j] = row[1] / 1e6;
        dh.d[j] = row[2] / 1e6;
        dh.offset[j] = row[3] / 1e3;
    }
    call.arm.state.dh = dh;
    call.arm.reconfigure();
}

void get_DH_data(Call& call) {
    const ArmModel::Dh& dh = call.arm.state.dh;
    for (int j = 0; j < call.arm.dof(); ++j) {
        const int row[] = {wire::round(dh.alpha[j] * 1e3), wire::round(dh.a[j] * 1e6), wire::round(dh.d[j] * 1e6),
                           wire::round(dh.offset[j] * 1e3)};
        call.reply.ints(kDhRows[j], row);
    }
}

void set_DH_data_default(Call& call) {
    call.arm.state.dh = call.arm.model().dh;
    call.arm.reconfigure();
}

void set_self_collision_enable(Call& call) {
    call.arm.state.safety.self_collision = call.args.boolean("set_enable");
}

void get_self_collision_enable(Call& call) {
    call.reply.set("enable_state", call.arm.state.safety.self_collision);
}

constexpr IntSetting kRunMode{"mode", 0, 2, [](ArmState& s) -> int& { return s.controller.run_mode; }};

// Pressing it stops whatever moves; releasing it lets the arm move again.
void set_arm_emergency_stop(Call& call) {
    const int pressed = call.args.integer("emergency_stop");
    if (pressed != 0 && pressed != 1) return call.refuse("emergency stop is neither 0 nor 1");
    if (pressed) {
        call.arm.stop_jog();
        call.arm.stop();
    }
    call.arm.state.controller.emergency_stop = pressed == 1;
}

void get_joint_software_version(Call& call) {
    JsonPtr versions(cJSON_CreateArray());
    for (int j = 0; j < call.arm.dof(); ++j) cJSON_AddItemToArray(versions.get(), cJSON_CreateString("1.0.7"));
    call.reply.add("version", std::move(versions));
}

void get_tool_software_version(Call& call) {
    call.reply.set("version", "1.2.1");
}

const Command kCommands[] = {
    {"set_install_pose", "set_install_pose", "set_state", set_install_pose},
    {"get_install_pose", "install_pose", nullptr, get_install_pose},
    {"set_DH_data", "set_DH_data", "set_state", set_DH_data},
    {"get_DH_data", "get_DH_data", nullptr, get_DH_data},
    {"set_DH_data_default", "set_DH_data_default", "set_state", set_DH_data_default},
    {"set_self_collision_enable", "set_self_collision_enable", "set_state", set_self_collision_enable},
    {"get_self_collision_enable", "get_self_collision_enable", nullptr, get_self_collision_enable},
    // Judged by a boolean under the same name the query answers with a number.
    {"set_arm_run_mode", "set_arm_run_mode", "mode", set_setting<&kRunMode>},
    {"get_arm_run_mode", "get_arm_run_mode", nullptr, get_setting<&kRunMode>},
    {"set_arm_emergency_stop", "set_arm_emergency_stop", "set_state", set_arm_emergency_stop},
    {"get_joint_software_version", "joint_software_version", nullptr, get_joint_software_version},
    {"get_tool_software_version", "tool_software_version", nullptr, get_tool_software_version},
};
const CommandFamily kFamily(kCommands);

}  // namespace

}  // namespace sim
