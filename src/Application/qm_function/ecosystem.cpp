// The end-effector ecosystem: its mode and touch settings, base information and live state.
#include <functional>
#include <string>

#include "mio_json.h"
#include "qm_command.h"
#include "qm_exchange.h"
#include "qm_interface.h"
#include "qm_plus_info.h"

namespace {

// Queries `command` and hands the reply's `member` object to `fill`. The reply's own "get_state"
// false gives 1. Without the object the result is `missing_result`, or the exchange's result
// when that is none.
int read_section(const char* caller, qm_robot_handle* handle, const char* command, const char* member,
                 std::optional<int> missing_result, const std::function<void(const cJSON*)>& fill) {
    std::string text;
    const int rc = exchange(caller, handle, Request(command), Reply::query(command), text);
    if (rc < 1) return rc;
    JsonPtr reply = json_parse(text.c_str());
    if (!reply) return -3;
    if (MIO_JSON_GetObjectItemBool(reply.get(), "get_state") == 0) return 1;
    const cJSON* section = MIO_JSON_GetObjectItem(reply.get(), member);
    if (!cJSON_IsObject(section)) return missing_result.value_or(rc);
    fill(section);
    return 0;
}

}  // namespace

extern "C" {

int qm_set_qm_plus_mode(qm_robot_handle* handle, int mode) {
    return qm_set_data_common(handle, mode, "set_qm_plus_mode", "mode");
}
int qm_get_qm_plus_mode(qm_robot_handle* handle, int* mode) {
    return qm_get_data_common(handle, mode, "get_qm_plus_mode", "mode");
}
int qm_set_qm_plus_touch(qm_robot_handle* handle, int mode) {
    return qm_set_data_common(handle, mode, "set_qm_plus_touch", "mode");
}
int qm_get_qm_plus_touch(qm_robot_handle* handle, int* mode) {
    return qm_get_data_common(handle, mode, "get_qm_plus_touch", "mode");
}

int qm_get_qm_plus_base_info(qm_robot_handle* handle, qm_plus_base_info_t* info) {
    return read_section(__func__, handle, "get_qm_plus_base_info", "base_info", 0,
                        [&](const cJSON* section) { plus_base_info_from(section, *info); });
}

// A reply without "state_info" returns the exchange's positive result and leaves the record: intended.
int qm_get_qm_plus_state_info(qm_robot_handle* handle, qm_plus_state_info_t* info) {
    return read_section(
        __func__, handle, "get_qm_plus_state_info", "state_info", std::nullopt,
        [&](const cJSON* section) { plus_state_info_from(section, *info, CounterRule::in_range); });
}

}  // extern "C"
