// Digital IO and supply voltages of the controller and of the tool. The controller's ports
// 0..4 each take a mode 0..14 (14: real-time, with a speed and mode of its own); ports 1..4
// carry a digital level, reported in the four-element DO array. Nothing is wired to the
// inputs, so every DI reads 0. The tool's two ports drive their level in mode 1 (output) only.
#include "command.h"

namespace sim {

namespace {

constexpr int kRealTimeMode = 14;
constexpr int kToolOutput = 1;

int port_number(const Call& call, int first, int last) {
    const int port = call.args.integer("IO_Num");
    if (port < first || port > last) throw BadRequest("no IO port " + std::to_string(port));
    return port;
}

int level(const Call& call) {
    const int state = call.args.integer("state");
    if (state != 0 && state != 1) throw BadRequest("a level is 0 or 1");
    return state;
}

void set_IO_mode(Call& call) {
    const int port = port_number(call, 0, kIoPorts - 1);
    const int mode = call.args.integer("IO_mode");
    if (mode < 0 || mode > kRealTimeMode) return call.refuse("IO mode outside 0..14");
    IoState& io = call.arm.state.io;
    if (mode == kRealTimeMode) {
        const Args realtime(call.args.object("realtime_speed"));
        const std::array<int, 2> config{realtime.integer("speed"), realtime.integer("mode")};
        if (config[0] < 0 || config[1] < 0) return call.refuse("negative real-time speed or mode");
        io.realtime[port] = config;
    }
    io.mode[port] = mode;
}

void set_DO_state(Call& call) {
    const int port = port_number(call, 1, kIoPorts - 1);
    call.arm.state.io.level[port] = level(call);
}

void get_IO_state(Call& call) {
    const int port = port_number(call, 0, kIoPorts - 1);
    const IoState& io = call.arm.state.io;
    call.reply.set("IO_state", io.level[port]).set("IO_Mode", io.mode[port]);
    if (io.mode[port] == kRealTimeMode)
        call.reply.add("realtime_speed", object_of({{"speed", io.realtime[port][0]}, {"mode", io.realtime[port][1]}}));
}

void get_IO_input(Call& call) {
    const int inputs[kIoPorts - 1] = {};
    call.reply.ints("DI", inputs);
}

void get_IO_output(Call& call) {
    const auto& level = call.arm.state.io.level;
    call.reply.ints("DO", std::span<const int>(level.data() + 1, kIoPorts - 1));
}

void set_tool_DO_state(Call& call) {
    const int port = port_number(call, 1, kToolIoPorts) - 1;
    const int state = level(call);
    IoState& io = call.arm.state.io;
    if (io.tool_mode[port] != kToolOutput) return call.refuse("the tool port is no output");
    io.tool_level[port] = state;
}

// The mode travels under "state".
void set_tool_IO_mode(Call& call) {
    const int port = port_number(call, 1, kToolIoPorts) - 1;
    const int mode = call.args.integer("state");
    if (mode != 0 && mode != kToolOutput) return call.refuse("a tool port is an input (0) or an output (1)");
    IoState& io = call.arm.state.io;
    io.tool_mode[port] = mode;
    if (mode != kToolOutput) io.tool_level[port] = 0;
}

void get_tool_IO_state(Call& call) {
    const IoState& io = call.arm.state.io;
    call.reply.ints("IO_Mode", io.tool_mode).ints("IO_state", io.tool_level);
}

constexpr IntSetting kVoltage{"voltage_type", 0, 3, [](ArmState& s) -> int& { return s.io.voltage; }};
constexpr IntSetting kToolVoltage{"voltage_type", 0, 3, [](ArmState& s) -> int& { return s.io.tool_voltage; }};

const Command kCommands[] = {
    {"set_IO_mode", "set_IO_mode", "set_state", set_IO_mode},
    {"set_DO_state", "set_DO_state", "set_state", set_DO_state},
    {"get_IO_state", "IO_state", nullptr, get_IO_state},
    {"get_IO_input", "IO_input_state", nullptr, get_IO_input},
    {"get_IO_output", "IO_output_state", nullptr, get_IO_output},
    {"set_voltage", "set_voltage", "state", set_setting<&kVoltage>},
    {"get_voltage", "voltage_state", nullptr, get_setting<&kVoltage>},
    {"set_tool_DO_state", "set_tool_DO_state", "set_state", set_tool_DO_state},
    {"set_tool_IO_mode", "set_tool_IO_mode", "set_state", set_tool_IO_mode},
    {"get_tool_IO_state", "tool_IO_state", nullptr, get_tool_IO_state},
    {"set_tool_voltage", "set_tool_voltage", "state", set_setting<&kToolVoltage>},
    {"get_tool_voltage", "tool_voltage_state", nullptr, get_setting<&kToolVoltage>},
};
const CommandFamily kFamily(kCommands);

}  // namespace

}  // namespace sim
