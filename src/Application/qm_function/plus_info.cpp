// Filling the end-effector ecosystem records from the controller's JSON objects.
#include <cstdint>
#include <span>
#include <utility>

#include "qm_command.h"
#include "qm_json_view.h"
#include "qm_plus_info.h"

namespace {

using namespace json_view;

template <class J, class T, class Convert>
void copy_array(J array, std::span<T> out, Convert convert) {
    if (!is_array(array)) return;
    std::size_t i = 0;
    for (J e = first(array); e && i < out.size(); e = next(e), ++i) convert(e, out[i]);
}
template <class J, class T>
void copy_array(J array, std::span<T> out) {
    copy_array(array, out, [](J e, T& value) { value = static_cast<T>(int_of(e)); });
}

template <class J>
void read_number(J object, const char* key, int& out) {
    const J item = member(object, key);
    if (is_number(item)) out = int_of(item);
}

// A flag sent as a boolean or as a number (non-zero is true).
template <class J>
void read_flag(J object, const char* key, bool& out) {
    const J item = member(object, key);
    if (is_bool(item)) out = is_true(item);
    if (is_number(item)) out = int_of(item) != 0;
}

template <class J, std::size_t N>
void read_text(J object, const char* key, char (&out)[N]) {
    if (const char* text = text_of(member(object, key))) copy_text(out, text);
}

template <class J>
void base_info_from(J object, qm_plus_base_info_t& info) {
    if (!is_object(object)) return;
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
    for (const auto& [key, out] : arrays) copy_array(member(object, key), out);
}

template <class J>
void state_info_from(J object, qm_plus_state_info_t& info, CounterRule counters) {
    if (!is_object(object)) return;
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
    for (const auto& [key, out] : arrays) copy_array(member(object, key), out);
    for (const auto& [key, out] :
         {std::pair{"tsa", std::span<uint32_t>(info.tsa)}, std::pair{"tma", std::span<uint32_t>(info.tma)}}) {
        const J array = member(object, key);
        if (counters == CounterRule::wrapped) {
            copy_array(array, out);
            continue;
        }
        copy_array(array, out, [](J e, uint32_t& value) {
            if (is_number(e) && double_of(e) >= 0.0 && double_of(e) <= 4294967295.0)
                value = static_cast<uint32_t>(double_of(e));
        });
    }
}

}  // namespace

void plus_base_info_from(const cJSON* object, qm_plus_base_info_t& info) { base_info_from(object, info); }
void plus_base_info_from(FlatJson::Item object, qm_plus_base_info_t& info) { base_info_from(object, info); }

void plus_state_info_from(const cJSON* object, qm_plus_state_info_t& info, CounterRule counters) {
    state_info_from(object, info, counters);
}
void plus_state_info_from(FlatJson::Item object, qm_plus_state_info_t& info, CounterRule counters) {
    state_info_from(object, info, counters);
}
