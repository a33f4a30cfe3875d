// Digital IO and supply voltages of the controller and of the tool end.
#include "log.h"
#include "qm_command.h"
#include "qm_interface.h"

namespace {

// The controller has IO ports 0..4, each in one of the modes 0..14; 14 is the real-time mode,
// the only one that carries a speed and a mode of its own.
constexpr int kLastIoPort = 4;
constexpr int kRealTimeMode = 14;

bool valid_port(int io_num) {
    return io_num >= 0 && io_num <= kLastIoPort;
}

// A rejected argument is 1, like a refusal, and nothing is sent (intended).
int reject_arguments() {
    qm_log_error("input param error...");
    return 1;
}

// "IO_state" and "IO_Mode" must be non-negative; below the real-time mode the real-time record
// reads -1, in it "realtime_speed" must carry a non-negative speed and mode, above it the record
// stays as it was. `config` is written only on success.
int prase_get_IO_state(const char* json_str, qm_io_get_t& config) {
    JsonPtr root = json_parse(json_str);
    if (!root) return -3;
    qm_io_get_t parsed = config;
    parsed.io_state = MIO_JSON_GetObjectItemInt(root.get(), "IO_state");
    parsed.io_config.io_mode = MIO_JSON_GetObjectItemInt(root.get(), "IO_Mode");
    if (parsed.io_state < 0 || parsed.io_config.io_mode < 0) return -3;

    qm_io_real_time_config_t& realtime = parsed.io_config.io_real_time_config_t;
    if (parsed.io_config.io_mode < kRealTimeMode) {
        realtime = {-1, -1};
    } else if (parsed.io_config.io_mode == kRealTimeMode) {
        const cJSON* speed = MIO_JSON_GetObjectItem(root.get(), "realtime_speed");
        realtime = {MIO_JSON_GetObjectItemInt(speed, "speed"), MIO_JSON_GetObjectItemInt(speed, "mode")};
        if (realtime.speed < 0 || realtime.mode < 0) return -3;
    }
    config = parsed;
    return 0;
}

// The port commands: "IO_Num" and "state", judged on "set_state".
int set_port(const char* caller, qm_robot_handle* handle, const char* command, int io_num, int state) {
    return send_set(caller, handle, Request(command, {{"IO_Num", io_num}, {"state", state}}),
                    Reply(command, "set_state"));
}

int set_voltage(const char* caller, qm_robot_handle* handle, const char* command, int voltage_type) {
    return send_set(caller, handle, Request(command, {{"voltage_type", voltage_type}}),
                    Reply(command, "state"));
}

int get_voltage(const char* caller, qm_robot_handle* handle, const char* command, const char* reply_key,
                int* voltage_type) {
    return query_ints(caller, handle, Request(command), Reply::query(reply_key),
                      {{"voltage_type", store(voltage_type)}});
}

}  // namespace

extern "C" {

// ---- controller IO ----

int qm_set_IO_mode(qm_robot_handle* handle, int io_num, qm_io_config_t config) {
    if (config.io_mode < 0 || config.io_mode > kRealTimeMode || !valid_port(io_num))
        return reject_arguments();
    Request req("set_IO_mode", {{"IO_Num", io_num}, {"IO_mode", config.io_mode}});
    if (config.io_mode == kRealTimeMode) {
        JsonPtr realtime(cJSON_CreateObject());
        cJSON_AddNumberToObject(realtime.get(), "speed", config.io_real_time_config_t.speed);
        cJSON_AddNumberToObject(realtime.get(), "mode", config.io_real_time_config_t.mode);
        req.object("realtime_speed", std::move(realtime));
    }
    return send_set(__func__, handle, req, Reply("set_IO_mode", "set_state"));
}

int qm_set_DO_state(qm_robot_handle* handle, int io_num, int state) {
    return set_port(__func__, handle, "set_DO_state", io_num, state);
}

int qm_get_IO_state(qm_robot_handle* handle, int io_num, qm_io_get_t* config) {
    if (!valid_port(io_num)) return reject_arguments();
    std::string text;
    const Request req("get_IO_state", {{"IO_Num", io_num}});
    if (int rc = exchange(__func__, handle, req, Reply::query("IO_state"), text); rc < 1) return rc;
    return prase_get_IO_state(text.c_str(), *config);
}

int qm_get_IO_input(qm_robot_handle* handle, int* DI_state) {
    return query_arrays(__func__, handle, Request("get_IO_input"), Reply::query("IO_input_state"),
                        {{"DI", store(DI_state), 4}});
}

int qm_get_IO_output(qm_robot_handle* handle, int* DO_state) {
    return query_arrays(__func__, handle, Request("get_IO_output"), Reply::query("IO_output_state"),
                        {{"DO", store(DO_state), 4}});
}

int qm_set_voltage(qm_robot_handle* handle, int voltage_type) {
    return set_voltage(__func__, handle, "set_voltage", voltage_type);
}

int qm_get_voltage(qm_robot_handle* handle, int* voltage_type) {
    return get_voltage(__func__, handle, "get_voltage", "voltage_state", voltage_type);
}

// ---- tool IO ----

int qm_set_tool_DO_state(qm_robot_handle* handle, int io_num, int state) {
    return set_port(__func__, handle, "set_tool_DO_state", io_num, state);
}

// The tool's mode travels under "state".
int qm_set_tool_IO_mode(qm_robot_handle* handle, int io_num, int io_mode) {
    return set_port(__func__, handle, "set_tool_IO_mode", io_num, io_mode);
}

int qm_get_tool_IO_state(qm_robot_handle* handle, int* mode, int* state) {
    return query_arrays(__func__, handle, Request("get_tool_IO_state"), Reply::query("tool_IO_state"),
                        {{"IO_Mode", store(mode), 2}, {"IO_state", store(state), 2}});
}

int qm_set_tool_voltage(qm_robot_handle* handle, int voltage_type) {
    return set_voltage(__func__, handle, "set_tool_voltage", voltage_type);
}

int qm_get_tool_voltage(qm_robot_handle* handle, int* voltage_type) {
    return get_voltage(__func__, handle, "get_tool_voltage", "tool_voltage_state", voltage_type);
}

}  // extern "C"
