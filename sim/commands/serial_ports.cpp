// The controller's serial ports: USB and RS485 baud rates, and the RS485 port modes of the
// controller and the tool in both controller generations' forms. In mode 1 a port is a
// Modbus RTU master (see modbus.cpp); only then does it report its Modbus timeout.
#include <algorithm>

#include "command.h"

namespace sim {

namespace {

constexpr int kBaudRates[] = {9600, 19200, 38400, 57600, 115200, 230400, 460800};
constexpr int kLastMode = 2;

int baudrate(Call& call) {
    const int rate = call.args.integer("baudrate");
    if (std::find(std::begin(kBaudRates), std::end(kBaudRates), rate) == std::end(kBaudRates))
        throw BadRequest("no baud rate " + std::to_string(rate));
    return rate;
}

// Sent without awaiting an answer: a wrong rate only shows in the log.
void set_usb(Call& call) {
    call.arm.state.serial.usb_baudrate = baudrate(call);
}

void set_RS485(Call& call) {
    call.arm.state.serial.rs485_baudrate = baudrate(call);
}

struct PortRow {
    SerialPort SerialState::*port;
    bool with_timeout;  // the earlier generation's form reports the Modbus timeout
};
constexpr PortRow kController{&SerialState::controller, true};
constexpr PortRow kTool{&SerialState::tool, true};
constexpr PortRow kControllerV4{&SerialState::controller, false};
constexpr PortRow kToolV4{&SerialState::tool, false};

template <const PortRow* Row>
void get_mode(Call& call) {
    const SerialPort& port = call.arm.state.serial.*(Row->port);
    call.reply.set("mode", port.mode).set("baudrate", port.baudrate);
    if (Row->with_timeout && port.mode == kModbusRtuMode) call.reply.set("modbus_timeout", port.modbus_timeout);
}

template <const PortRow* Row>
void set_mode(Call& call) {
    const int mode = call.args.integer("mode");
    const int rate = baudrate(call);
    if (mode < 0 || mode > kLastMode) return call.refuse("port mode outside 0.." + std::to_string(kLastMode));
    SerialPort& port = call.arm.state.serial.*(Row->port);
    port.mode = mode;
    port.baudrate = rate;
}

const Command kCommands[] = {
    {"set_usb", nullptr, nullptr, set_usb},
    {"set_RS485", nullptr, nullptr, set_RS485},
    {"get_controller_RS485_mode", "controller_RS485_mode", nullptr, get_mode<&kController>},
    {"get_tool_RS485_mode", "tool_RS485_mode", nullptr, get_mode<&kTool>},
    {"get_controller_rs485_mode", "controller_rs485_mode", nullptr, get_mode<&kControllerV4>},
    {"get_tool_rs485_mode", "tool_rs485_mode", nullptr, get_mode<&kToolV4>},
    {"set_controller_rs485_mode", "set_controller_rs485_mode", "set_state", set_mode<&kController>},
    {"set_tool_rs485_mode", "set_tool_rs485_mode", "set_state", set_mode<&kTool>},
};
const CommandFamily kFamily(kCommands);

}  // namespace

}  // namespace sim
