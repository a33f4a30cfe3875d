// Configuring the controller's realtime push, and learning its port.
#include <cstdio>
#include <cstring>
#include <string>

#include "log.h"
#include "mio_json.h"
#include "qm_exchange.h"
#include "qm_handle.h"
#include "qm_interface.h"

namespace {

constexpr int kReplyLen = 1024;
constexpr int kSetExtraMs = 200;  // the controller needs longer to re-arm the push
constexpr size_t kIpMin = 7;      // "1.2.3.4"
constexpr size_t kIpMax = 15;     // "255.255.255.255"

// The optional sections, in the order they are sent. "qm_plus_state" is included when
// plus_base is set (intended: the check tests plus_base twice).
struct CustomFlag {
    const char* key;
    int qm_udp_custom_config_t::*sent_value;
    int qm_udp_custom_config_t::*presence;
};
constexpr CustomFlag kCustomFlags[] = {
    {"joint_speed", &qm_udp_custom_config_t::joint_speed, &qm_udp_custom_config_t::joint_speed},
    {"lift_state", &qm_udp_custom_config_t::lift_state, &qm_udp_custom_config_t::lift_state},
    {"expand_state", &qm_udp_custom_config_t::expand_state, &qm_udp_custom_config_t::expand_state},
    {"arm_current_status", &qm_udp_custom_config_t::arm_current_status,
     &qm_udp_custom_config_t::arm_current_status},
    {"aloha_state", &qm_udp_custom_config_t::aloha_state, &qm_udp_custom_config_t::aloha_state},
    {"hand", &qm_udp_custom_config_t::hand_state, &qm_udp_custom_config_t::hand_state},
    {"qm_plus_base", &qm_udp_custom_config_t::plus_base, &qm_udp_custom_config_t::plus_base},
    {"qm_plus_state", &qm_udp_custom_config_t::plus_state, &qm_udp_custom_config_t::plus_base},
};

// The flags as the reply names them, in the order they are read.
struct ReadFlag {
    const char* key;
    int qm_udp_custom_config_t::*value;
};
constexpr ReadFlag kReadFlags[] = {
    {"expand_state", &qm_udp_custom_config_t::expand_state},
    {"lift_state", &qm_udp_custom_config_t::lift_state},
    {"joint_speed", &qm_udp_custom_config_t::joint_speed},
    {"arm_current_status", &qm_udp_custom_config_t::arm_current_status},
    {"aloha_state", &qm_udp_custom_config_t::aloha_state},
    {"hand", &qm_udp_custom_config_t::hand_state},
    {"qm_plus_base", &qm_udp_custom_config_t::plus_base},
    {"qm_plus_state", &qm_udp_custom_config_t::plus_state},
};

JsonValue text_member(const char* key, const char* text) {
    return {JSON_STRING, key, 0, {.str_value = text}};
}
JsonValue int_member(const char* key, int value) {
    return {JSON_INT, key, 0, {.int_value = value}};
}
JsonValue bool_member(const char* key, bool value) {
    return {JSON_BOOL, key, 0, {.bool_value = value}};
}

bool has_force_sensor(qm_force_type_e type) {
    return type != QM_MODEL_QM_B_E;
}

// 0, or -4 after logging the first invalid field.
int validate(const qm_realtime_push_config_t& config) {
    if (config.cycle < 1) {
        qm_log_error("[%s] set realtime push config error, invaild cycle: %d!\n", "qm_set_realtime_push",
                     config.cycle);
        return -4;
    }
    if (config.port < 1) {
        qm_log_error("[%s] set realtime push config error, invaild port:%d !\n", "qm_set_realtime_push",
                     config.port);
        return -4;
    }
    const size_t ip_len = strnlen(config.ip, sizeof config.ip);
    if (ip_len < kIpMin || ip_len > kIpMax) {
        const std::string ip(config.ip, ip_len);  // the caller's field need not be terminated
        qm_log_error("[%s] set realtime push config error, invaild ip: %s!\n", "qm_set_realtime_push", ip.c_str());
        return -4;
    }
    return 0;
}

// Whether the connection's arm has a force sensor; false for an unknown handle.
bool arm_has_force_sensor(qm_robot_handle* handle) {
    TableReadLock lock;
    const qm_handle_t* record = qm_get_qm_handle_by_robot_handle(handle);
    return record && has_force_sensor(record->force_type);
}

}  // namespace

extern "C" int qm_set_realtime_push(qm_robot_handle* handle, qm_realtime_push_config_t config) {
    qm_robot_info_t info{};
    qm_get_robot_info(handle, &info);
    if (int rc = validate(config)) return rc;

    char ip[sizeof config.ip + 1] = {};
    std::memcpy(ip, config.ip, strnlen(config.ip, sizeof config.ip));
    JsonValue request[7];
    int count = 0;
    request[count++] = text_member("command", "set_realtime_push");
    request[count++] = bool_member("enable", config.enable);
    request[count++] = int_member("cycle", config.cycle);
    request[count++] = int_member("port", config.port);
    request[count++] = text_member("ip", ip);
    if (has_force_sensor(info.force_type) && config.force_coordinate >= 0) {
        // The request says "cordinate" while the reply says "coordinate" (intended).
        request[count++] = int_member("force_cordinate", config.force_coordinate);
    } else if (!has_force_sensor(info.force_type) && config.force_coordinate != -1) {
        qm_log_info("[%s]Force sensors are not supported! \n", "qm_set_realtime_push");
    }
    JsonPtr custom(cJSON_CreateObject());
    for (const CustomFlag& flag : kCustomFlags)
        if (config.custom_config.*flag.presence >= 0)
            cJSON_AddItemToObject(custom.get(), flag.key,
                                  cJSON_CreateBool(config.custom_config.*flag.sent_value));
    if (cJSON_GetArraySize(custom.get()) > 0)
        request[count++] = {JSON_OBJECT, "custom", 0, {.sub_json = custom.release()}};

    char reply[kReplyLen] = {};
    int length = qm_pack_lock_set("qm_set_realtime_push", handle, request, count, "set_realtime_push", reply,
                                  sizeof reply, static_cast<int>(m_nOutTime.load()) + kSetExtraMs);
    if (length < 1) return length;
    return parse_qm_set_command("qm_set_realtime_push", reply, "state");
}

extern "C" int qm_get_realtime_push(qm_robot_handle* handle, qm_realtime_push_config_t* config) {
    const JsonValue request[] = {text_member("command", "get_realtime_push")};
    char reply[kReplyLen] = {};
    int length = qm_pack_lock_set("qm_get_realtime_push", handle, request, 1, "get_realtime_push", reply,
                                  sizeof reply, static_cast<int>(m_nOutTime.load()));
    if (length < 1) return length;

    const bool force_sensor = arm_has_force_sensor(handle);
    KeyValue table[] = {
        {JSON_INT, "cycle", 0, {}},   {JSON_INT, "port", 0, {}},      {JSON_STRING, "ip", 0, {}},
        {JSON_BOOL, "enable", 0, {}}, {JSON_OBJECT, "custom", 0, {}}, {JSON_INT, "force_coordinate", 0, {}},
    };
    const int keys = force_sensor ? 6 : 5;
    if (int rc = common_json_parse("qm_get_realtime_push", reply, table, keys)) return rc;
    JsonPtr custom(table[4].value.sub_json);
    const int port = table[1].value.int_value;
    const bool enable = table[3].value.bool_value;
    {
        TableReadLock lock;
        qm_handle_t* record = qm_get_qm_handle_by_robot_handle(handle);
        if (!record) {
            qm_log_error("[%s] handle is NULL!\n", "qm_get_realtime_push");
            return -1;
        }
        record->udp_port = port;
    }
    if (config) {
        for (const ReadFlag& flag : kReadFlags)
            config->custom_config.*flag.value = MIO_JSON_GetObjectItemBool(custom.get(), flag.key);
        config->cycle = table[0].value.int_value;
        config->port = port;
        std::snprintf(config->ip, sizeof config->ip, "%s", table[2].value.str_value);
        config->enable = enable;
        config->force_coordinate = force_sensor ? table[5].value.int_value : -1;
    }
    qm_log_debug("current thread mode %d realtime push config.enable: %d\n", g_mode.load(),
                 enable);
    if (enable && g_mode == QM_TRIPLE_MODE_E && gUdpHandle) {
        int result = qm_udp_add_port(gUdpHandle.get(), port);
        qm_log_info("udp add port %d result: %d\n", port, result);
    }
    return 0;
}
