// Controller housekeeping: supply state, arm power, run time, joint odometers and the
// system's errors.
#include <cmath>

#include "command.h"
#include "telemetry.h"

namespace sim {

namespace {

constexpr int kSupplyVoltage = 48000;     // mV
constexpr int kCabinetTemperature = 35000;  // thousandths of a degree Celsius

void get_controller_state(Call& call) {
    const Telemetry t = telemetry(call.arm);
    int current = 0;  // mA: what the joints draw
    for (int j = 0; j < call.arm.dof(); ++j) current += t.current[j];
    const bool on = call.arm.state.controller.power;
    call.reply.set("voltage", kSupplyVoltage)
        .set("current", on ? current : 0)
        .set("temperature", kCabinetTemperature)
        .set("err_flag", call.arm.state.errors.empty() ? 0 : 1);
}

// Switching the power off stops the arm where it is.
void set_arm_power(Call& call) {
    const int power = call.args.integer("arm_power");
    if (power != 0 && power != 1) return call.refuse("arm power is neither 0 nor 1");
    if (power == 0) {
        call.arm.stop_jog();
        call.arm.stop();
    }
    call.arm.state.controller.power = power == 1;
}

void get_arm_power_state(Call& call) {
    call.reply.set("power_state", call.arm.state.controller.power ? 1 : 0);
}

// Simulated time since the start or the last clearing.
void get_system_runtime(Call& call) {
    const long long seconds =
        std::llround((call.arm.now() - call.arm.state.controller.runtime_since).count());
    call.reply.set("day", static_cast<int>(seconds / 86400))
        .set("hour", static_cast<int>(seconds / 3600 % 24))
        .set("min", static_cast<int>(seconds / 60 % 60))
        .set("sec", static_cast<int>(seconds % 60));
}

void clear_system_runtime(Call& call) {
    call.arm.state.controller.runtime_since = call.arm.now();
}

// Whole degrees each joint has travelled.
void get_joint_odom(Call& call) {
    std::vector<int> odom;
    for (int j = 0; j < call.arm.dof(); ++j)
        odom.push_back(wire::round(std::floor(call.arm.state.controller.odometer[j])));
    call.reply.ints("odom", odom);
}

void clear_joint_odom(Call& call) {
    call.arm.state.controller.odometer = {};
}

void clear_system_err(Call& call) {
    call.arm.state.errors.clear();
    call.arm.state.err_flags = {};
}

const Command kCommands[] = {
    {"get_controller_state", "controller_state", nullptr, get_controller_state},
    {"set_arm_power", "set_arm_power", "arm_power", set_arm_power},
    {"get_arm_power_state", "arm_power_state", nullptr, get_arm_power_state},
    {"get_system_runtime", "get_system_runtime", nullptr, get_system_runtime},
    {"clear_system_runtime", "clear_system_runtime", "clear_state", clear_system_runtime},
    {"get_joint_odom", "get_joint_odom", nullptr, get_joint_odom},
    {"clear_joint_odom", "clear_joint_odom", "clear_state", clear_joint_odom},
    {"clear_system_err", "clear_system_err", "clear_state", clear_system_err},
};
const CommandFamily kFamily(kCommands);

}  // namespace

}  // namespace sim
