// Reading replies: the key-table parser, set replies and trajectory events.
#include <cstring>

#include "log.h"
#include "mio_json.h"
#include "qm_exchange.h"

namespace {

// One table entry; false after logging why the member was refused.
bool parse_member(const char* caller, const cJSON* scope, bool nested, KeyValue& kv) {
    const cJSON* item = MIO_JSON_GetObjectItem(scope, kv.key);
    if (!item) {
        qm_log_error("[%s] %s parsing error\n", caller, kv.key);
        return false;
    }
    switch (kv.type) {
        case JSON_INT:
            kv.value.int_value = item->valueint;
            qm_log_debug("[%s] %s parse result: %d\n", caller, kv.key, kv.value.int_value);
            return true;
        case JSON_STRING:
            if (!cJSON_IsString(item)) {
                qm_log_error("[%s] %s is not a string\n", caller, kv.key);
                return false;
            }
            std::strncpy(kv.value.str_value, item->valuestring, KEYVALUE_STR_MAX - 1);
            kv.value.str_value[KEYVALUE_STR_MAX - 1] = '\0';
            qm_log_debug("[%s] %s parse result: %s\n", caller, kv.key, kv.value.str_value);
            return true;
        case JSON_ARRAY: {
            if (!cJSON_IsArray(item)) {
                qm_log_error("[%s] %s is not an array\n", caller, kv.key);
                return false;
            }
            const int size = cJSON_GetArraySize(item);
            if (size != kv.array_size || size > KEYVALUE_ARRAY_MAX || (nested && size == 0)) {
                qm_log_error("[%s] Array size mismatch for key %s\n", caller, kv.key);
                return false;
            }
            qm_log_debug("[%s] %s parse result:\n", caller, kv.key);
            int i = 0;
            for (const cJSON* element = item->child; element; element = element->next, ++i) {
                kv.value.array_value[i] = element->valueint;
                qm_log_debug(" %d\n", kv.value.array_value[i]);
            }
            return true;
        }
        case JSON_BOOL:
            // A member of another type leaves the value as it was (intended).
            if (cJSON_IsBool(item)) kv.value.bool_value = cJSON_IsTrue(item);
            qm_log_debug("[%s] %s parse result: %d\n", caller, kv.key, kv.value.bool_value);
            return true;
        case JSON_OBJECT:
            kv.value.sub_json = cJSON_Duplicate(item, true);
            return true;
    }
    qm_log_error("[%s] Unsupported JSON value type for key %s\n", caller, kv.key);
    return false;
}

}  // namespace

int common_json_parse(const char* caller_function_name, const char* json_str, KeyValue* key_values,
                      int num_keys) {
    const char* caller = caller_function_name ? caller_function_name : "";
    JsonPtr root = json_parse(json_str);
    if (!root) {
        qm_log_error("Error parsing JSON\n");
        return -3;
    }
    const cJSON* scope = MIO_JSON_GetObjectItem(root.get(), "arm_state");
    if (!scope) scope = MIO_JSON_GetObjectItem(root.get(), "all_state");
    const bool nested = scope != nullptr;
    if (!scope) scope = root.get();

    for (int i = 0; key_values && i < num_keys; ++i) {
        if (!key_values[i].key) continue;
        if (parse_member(caller, scope, nested, key_values[i])) continue;
        // A failed parse hands out no copies.
        for (int k = 0; k < i; ++k) {
            if (key_values[k].type != JSON_OBJECT || !key_values[k].key) continue;
            cJSON_Delete(key_values[k].value.sub_json);
            key_values[k].value.sub_json = nullptr;
        }
        return -3;
    }
    return 0;
}

int parse_qm_set_command(const char* caller_function_name, const char* json_str, const char* key) {
    const char* caller = caller_function_name ? caller_function_name : "";
    const char* name = key ? key : "";
    JsonPtr root = json_parse(json_str);
    if (!root) {
        // Compares the reply text, not the key (intended).
        if (!json_str || std::strcmp(json_str, "given_state") != 0)
            qm_log_error("[%s] %s parse err\n", caller, json_str ? json_str : "");
        return -3;
    }
    switch (MIO_JSON_GetObjectItemBool(root.get(), name)) {
        case 1:
            qm_log_debug("[%s] %s: true\n", caller, name);
            return 0;
        case 0:
            qm_log_error("[%s] %s: false\n", caller, name);
            return 1;
        default:
            if (std::strcmp(name, "given_state") != 0)
                qm_log_error("[%s] %s command parse err\n", caller, name);
            return -3;
    }
}

int parse_qm_move_command(const char* json_str, int* device, int* trajectory_connect) {
    JsonPtr root = json_parse(json_str);
    if (!root) {
        qm_log_error("Set command parse err\n");
        return -3;
    }
    const int state = MIO_JSON_GetObjectItemBool(root.get(), "trajectory_state");
    const int dev = MIO_JSON_GetObjectItemInt(root.get(), "device");
    if (dev < 0) {
        qm_log_error("Move command parse err\n");
        return -3;
    }
    if (device) *device = dev;
    const int connect = MIO_JSON_GetObjectItemInt(root.get(), "trajectory_connect");
    if (connect < 0) {
        qm_log_error("Move command parse err\n");
        return -3;
    }
    if (trajectory_connect) *trajectory_connect = connect;
    if (state != 0)
        qm_log_debug("Move command result is: true, current Device: %d, trajectory_connect: %d\n", dev,
                     connect);
    else
        qm_log_error("Move command result is: false, current Device: %d, trajectory_connect: %d\n", dev,
                     connect);
    return state;
}
