// The controller's serial ports: USB and RS485 baud rates and the RS485 port modes of the
// controller and the tool, in both controller generations' forms.
#include <span>

#include "log.h"
#include "qm_command.h"
#include "qm_interface.h"

namespace {

// One integer member of a port-mode reply and where it goes.
struct Rs485Item {
    const char* key;
    int* value;
};

// A tolerant sibling of common_json_parse. The third member of a three-member list (the Modbus
// timeout) is sent only in Modbus RTU mode; without it the earlier members are still delivered.
// The outputs are written only on success.
int parse_rs485(const char* text, std::span<const Rs485Item> items) {
    JsonPtr root = parse_reply(text);
    if (!root) return -3;
    int values[3] = {};
    std::size_t parsed = 0;
    for (; parsed < items.size() && parsed < std::size(values); ++parsed) {
        const Rs485Item& item = items[parsed];
        const cJSON* member = MIO_JSON_GetObjectItem(root.get(), item.key);
        if (!member && parsed == 2) {
            qm_log_warn("it is not in Modbus-RTU mode, and the modbus_timeout field does not exist.\n");
            break;
        }
        if (!member) {
            qm_log_error("%s parsing error\n", item.key);
            return -3;
        }
        values[parsed] = member->valueint;
        qm_log_debug("%s parse result: %d\n", item.key, values[parsed]);
    }
    for (std::size_t i = 0; i < parsed; ++i) *items[i].value = values[i];
    return 0;
}

int read_port_mode(const char* caller, qm_robot_handle* handle, const char* command, const char* reply_key,
                   std::initializer_list<Rs485Item> items) {
    std::string text;
    if (int rc = exchange(caller, handle, Request(command), Reply::query(reply_key), text); rc < 1) return rc;
    return parse_rs485(text.c_str(), std::span<const Rs485Item>(items.begin(), items.size()));
}

int set_port_mode(const char* caller, qm_robot_handle* handle, const char* command, int mode, int baudrate) {
    return send_set(caller, handle, Request(command, {{"mode", mode}, {"baudrate", baudrate}}),
                    Reply(command, "set_state"));
}

int set_baudrate(const char* caller, qm_robot_handle* handle, const char* command, int baudrate) {
    return send_only(caller, handle, Request(command, {{"baudrate", baudrate}}), kUnansweredHold);
}

}  // namespace

extern "C" {

int qm_set_usb(qm_robot_handle* handle, int baudrate) {
    return set_baudrate(__func__, handle, "set_usb", baudrate);
}

int qm_set_RS485(qm_robot_handle* handle, int baudrate) {
    return set_baudrate(__func__, handle, "set_RS485", baudrate);
}

int qm_get_controller_RS485_mode(qm_robot_handle* handle, int* mode, int* baudrate, int* timeout) {
    return read_port_mode(__func__, handle, "get_controller_RS485_mode", "controller_RS485_mode",
                          {{"mode", mode}, {"baudrate", baudrate}, {"modbus_timeout", timeout}});
}

int qm_get_tool_RS485_mode(qm_robot_handle* handle, int* mode, int* baudrate, int* timeout) {
    return read_port_mode(__func__, handle, "get_tool_RS485_mode", "tool_RS485_mode",
                          {{"mode", mode}, {"baudrate", baudrate}, {"modbus_timeout", timeout}});
}

int qm_get_controller_rs485_mode_v4(qm_robot_handle* handle, int* controller_rs485_mode, int* baudrate) {
    return read_port_mode(__func__, handle, "get_controller_rs485_mode", "controller_rs485_mode",
                          {{"mode", controller_rs485_mode}, {"baudrate", baudrate}});
}

int qm_get_tool_rs485_mode_v4(qm_robot_handle* handle, int* tool_rs485_mode, int* baudrate) {
    return read_port_mode(__func__, handle, "get_tool_rs485_mode", "tool_rs485_mode",
                          {{"mode", tool_rs485_mode}, {"baudrate", baudrate}});
}

int qm_set_controller_rs485_mode(qm_robot_handle* handle, int controller_rs485_mode, int baudrate) {
    return set_port_mode(__func__, handle, "set_controller_rs485_mode", controller_rs485_mode, baudrate);
}

int qm_set_tool_rs485_mode(qm_robot_handle* handle, int tool_rs485_mode, int baudrate) {
    return set_port_mode(__func__, handle, "set_tool_rs485_mode", tool_rs485_mode, baudrate);
}

}  // extern "C"
