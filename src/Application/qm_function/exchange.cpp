// The one send-and-wait exchange every command goes through, and the generic one-integer commands.
#include <chrono>
#include <cstring>
#include <string>

#include "log.h"
#include "mio_json.h"
#include "qm_exchange.h"
#include "qm_handle.h"
#include "qm_mailbox.h"
#include "qm_receive.h"

namespace {

constexpr int kGenericReplyLen = 1024;

const char* first_text(const JsonValue* json_values, int num_values) {
    if (json_values && num_values > 0 && json_values[0].type == JSON_STRING && json_values[0].value.str_value)
        return json_values[0].value.str_value;
    return "";
}

// Objects of a request that is never built still belong to the exchange.
void release_objects(const JsonValue* json_values, int num_values) {
    if (!json_values) return;
    for (int i = 0; i < num_values; ++i)
        if (json_values[i].type == JSON_OBJECT) cJSON_Delete(json_values[i].value.sub_json);
}

JsonPtr build_request(const JsonValue* json_values, int num_values) {
    JsonPtr root(cJSON_CreateObject());
    for (int i = 0; i < num_values; ++i) {
        const JsonValue& v = json_values[i];
        cJSON* item = nullptr;
        switch (v.type) {
            case JSON_STRING:
                item = v.key && v.value.str_value ? cJSON_CreateString(v.value.str_value) : nullptr;
                break;
            case JSON_INT:
                item = cJSON_CreateNumber(v.value.int_value);
                break;
            case JSON_ARRAY:
                item = cJSON_CreateArray();
                for (int k = 0; v.value.array_value && k < v.array_size; ++k)
                    cJSON_AddItemToArray(item, cJSON_CreateNumber(v.value.array_value[k]));
                break;
            case JSON_BOOL:
                item = cJSON_CreateBool(v.value.bool_value);
                break;
            case JSON_OBJECT:
                item = v.value.sub_json;
                break;
        }
        if (!item) continue;
        if (!v.key || !root) {
            cJSON_Delete(item);
            continue;
        }
        cJSON_AddItemToObject(root.get(), v.key, item);
    }
    return root;
}

int send_request(qm_handle_t& record, const JsonValue* json_values, int num_values) {
    if (!json_values || num_values < 1) {
        release_objects(json_values, num_values);
        qm_log_error("Send command: Invalid input");
        return -1;
    }
    JsonPtr root = build_request(json_values, num_values);
    JsonText text(root ? cJSON_PrintUnformatted(root.get()) : nullptr);
    if (!text) {
        qm_log_error("Failed to print JSON");
        return -1;
    }
    std::string line;
    line.reserve(std::strlen(text.get()) + 3);
    line.append(text.get()).append("\r\n");
    qm_socket_handle* socket = record.socket_handle.get();
    int result = socket->block_send(socket, line.data(), static_cast<int>(line.size()));
    if (result != 0)
        qm_log_error("send is: %s send err: %d\n", line.c_str(), result);
    else
        qm_log_debug("send is: %s \n", line.c_str());
    return result;
}

int receive_reply(qm_handle_t& record, const char* command, char* buf, int buf_len, int timeout) {
    // The wait is timeout/2 rounds of 2 ms; it ends early the moment the reply is filed.
    const int rounds = timeout / 2;
    if (rounds < 1) return -1;
    const auto wait = std::chrono::milliseconds(2 * rounds);
    if (g_mode == QM_SINGLE_MODE_E) return single_mode_receive(record, command, buf, buf_len, wait);
    return fifo_wait_line(*record.fifo_handle, command, buf, buf_len,
                          std::chrono::steady_clock::now() + wait);
}

}  // namespace

int common_json_pack_set(const char* caller_function_name, qm_robot_handle* handle,
                         const JsonValue* json_values, int num_values) {
    (void)caller_function_name;
    qm_handle_t* record = qm_get_qm_handle_by_robot_handle(handle);
    if (!record || !record->socket_handle) {
        release_objects(json_values, num_values);
        return -1;
    }
    return send_request(*record, json_values, num_values);
}

int handle_revice_data(const char* caller_function_name, qm_robot_handle* handle, const char* command,
                       char* buf, int buf_len, int timeout) {
    (void)caller_function_name;
    qm_handle_t* record = qm_get_qm_handle_by_robot_handle(handle);
    if (!record || !command) return -1;
    return receive_reply(*record, command, buf, buf_len, timeout);
}

int qm_pack_lock_set(const char* caller_function_name, qm_robot_handle* handle, const JsonValue* json_values,
                     int num_values, const char* command, char* buf, int buf_len, int timeout) {
    const char* caller = caller_function_name ? caller_function_name : "";
    TableReadLock lock;
    qm_handle_t* record = qm_get_qm_handle_by_robot_handle(handle);
    if (!record || !record->socket_handle) {
        release_objects(json_values, num_values);
        return -1;
    }
    const char* request_name = first_text(json_values, num_values);
    if (json_values && send_request(*record, json_values, num_values) != 0) {
        qm_log_error("[%s] %s send error\n", caller, request_name);
        return -1;
    }
    if (!command) {
        sleep_cp(timeout);
        return 0;
    }
    int length = receive_reply(*record, command, buf, buf_len, timeout);
    if (length >= 1) return length;
    if (json_values)
        qm_log_error("[%s] %s revice error\n", caller, request_name);
    else if (std::strcmp(command, "point") == 0)
        qm_log_debug("[%s] %s save_trajectory complete\n", caller, command);
    return -2;
}

int qm_get_data_common(qm_robot_handle* handle, int* data, const char* cmd_str, const char* valua_str) {
    const JsonValue request[] = {{JSON_STRING, "command", 0, {.str_value = cmd_str}}};
    char reply[kGenericReplyLen] = {};
    int length = qm_pack_lock_set(__func__, handle, request, 1, cmd_str, reply, sizeof reply,
                                  static_cast<int>(m_nOutTime.load()));
    if (length < 1) return length;
    KeyValue value{JSON_INT, valua_str, 0, {}};
    int result = common_json_parse(__func__, reply, &value, 1);
    if (result == 0 && data) *data = value.value.int_value;
    return result;
}

int qm_set_data_common(qm_robot_handle* handle, int data, const char* cmd_str, const char* valua_str) {
    const JsonValue request[] = {
        {JSON_STRING, "command", 0, {.str_value = cmd_str}},
        {JSON_INT, valua_str, 0, {.int_value = data}},
    };
    char reply[kGenericReplyLen] = {};
    int length = qm_pack_lock_set(__func__, handle, request, 2, cmd_str, reply, sizeof reply,
                                  static_cast<int>(m_nOutTime_max.load()));
    if (length < 1) return length;
    return parse_qm_set_command(__func__, reply, "set_state");
}
