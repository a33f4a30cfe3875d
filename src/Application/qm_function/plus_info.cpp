// Filling the end-effector ecosystem records from the controller's JSON objects.
#include <cstdint>
#include <span>
#include <utility>

#include "mio_json.h"
#include "qm_command.h"
#include "qm_plus_info.h"

namespace {

template <class T, class Convert>
void copy_array(const cJSON* array, std::span<T> out, Convert convert) {
    if (!cJSON_IsArray(array)) return;
    std::size_t i = 0;
    for (const cJSON* e = array->child; e && i < out.size(); e = e->next, ++i) convert(e, out[i]);
}
template <class T>
void copy_array(const cJSON* array, std::span<T> out) {
    copy_array(array, out, [](const cJSON* e, T& value) { value = static_cast<T>(e->valueint); });
}

void read_number(const cJSON* object, const char* key, int& out) {
    const cJSON* item = MIO_JSON_GetObjectItem(object, key);
    if (cJSON_IsNumber(item)) out = item->valueint;
}

// A flag sent as a boolean or as a number (non-zero is true).
void read_flag(const cJSON* object, const char* key, bool& out) {
    const cJSON* item = MIO_JSON_GetObjectItem(object, key);
    if (cJSON_IsBool(item)) out = cJSON_IsTrue(item);
    if (cJSON_IsNumber(item)) out = item->valueint != 0;
}

template <std::size_t N>
void read_text(const cJSON* object, const char* key, char (&out)[N]) {
    if (const char* text = MIO_JSON_GetObjectItemStr(object, key)) copy_text(out, text);
}

}  // namespace

void plus_base_info_from(const cJSON* object, qm_plus_base_info_t& info) {
    if (!cJSON_IsObject(object)) return;
    read_text(object, "manu", info.manu);
    read_text(object, "hv", info.hv);
    read_text(object, "sv", info.sv);
    read_text(object, "bv", info.bv);
    const std::pair<const char*, int*> numbers[] = {
        {"type", &info.type},         {"id", &info.id},    {"dof", &info.dof},
        {"check", &info.check},       {"bee", &info.bee},  {"touch_num", &info.touch_num},
        {"touch_sw", &info.touch_sw}, {"hand", &info.hand}};
    for (const auto& [key, out] : numbers) read_number(object, key, *out);
    read_flag(object, "force", info.force);
    read_flag(object, "touch", info.touch);
    const std::pair<const char*, std::span<int>> arrays[] = {
        {"pos_up", info.pos_up},       {"pos_low", info.pos_low},    {"angle_up", info.angle_up},
        {"angle_low", info.angle_low}, {"speed_up", info.speed_up},  {"speed_low", info.speed_low},
        {"force_up", info.force_up},   {"force_low", info.force_low}};
    for (const auto& [key, out] : arrays) copy_array(MIO_JSON_GetObjectItem(object, key), out);
}

void plus_state_info_from(const cJSON* object, qm_plus_state_info_t& info, CounterRule counters) {
    if (!cJSON_IsObject(object)) return;
    read_number(object, "sys_state", info.sys_state);
    const std::pair<const char*, std::span<int>> arrays[] = {
        {"dof_state", info.dof_state},
        {"dof_err", info.dof_err},
        {"pos", info.pos},
        {"speed", info.speed},
        {"angle", info.angle},
        {"current", info.current},
        {"normal_force", info.normal_force},
        {"tangential_force", info.tangential_force},
        {"tangential_force_dir", info.tangential_force_dir},
        {"touch_data", info.touch_data},
        {"force", info.force},
    };
    for (const auto& [key, out] : arrays) copy_array(MIO_JSON_GetObjectItem(object, key), out);
    for (const auto& [key, out] :
         {std::pair{"tsa", std::span<uint32_t>(info.tsa)}, std::pair{"tma", std::span<uint32_t>(info.tma)}}) {
        const cJSON* array = MIO_JSON_GetObjectItem(object, key);
        if (counters == CounterRule::wrapped) {
            copy_array(array, out);
            continue;
        }
        copy_array(array, out, [](const cJSON* e, uint32_t& value) {
            if (cJSON_IsNumber(e) && e->valuedouble >= 0.0 && e->valuedouble <= 4294967295.0)
                value = static_cast<uint32_t>(e->valuedouble);
        });
    }
}
