// Decoding one realtime state datagram into qm_realtime_arm_joint_state_t.
#include <cstdint>
#include <cstring>
#include <span>
#include <utility>

#include "log.h"
#include "mio_json.h"
#include "qm_json_view.h"
#include "qm_plus_info.h"
#include "qm_realtime.h"

namespace {

using Record = qm_realtime_arm_joint_state_t;
using namespace json_view;

float thousandths(int v) {
    return static_cast<float>(v) / 1000.0f;
}
float millionths(int v) {
    return static_cast<float>(v) / 1000000.0f;
}
float per_six(int v) {
    return static_cast<float>(v) * 6.0f / 1000.0f;
}

// Copies the elements of a JSON integer array, cut to the record's size.
template <class J, class T, class Convert>
void copy_array(J array, std::span<T> out, Convert convert) {
    if (!is_array(array)) return;
    std::size_t i = 0;
    for (J e = first(array); e && i < out.size(); e = next(e), ++i) out[i] = convert(int_of(e));
}
template <class J, class T>
void copy_array(J array, std::span<T> out) {
    copy_array(array, out, [](int v) { return static_cast<T>(v); });
}

// A required number member; false when missing or of another type.
template <class J>
bool read_number(J object, const char* key, int& out) {
    const J item = member(object, key);
    if (!is_number(item)) return false;
    out = int_of(item);
    return true;
}

// "disable" or "offline" in place of an end-effector section.
bool read_plus_text(const char* text, Record& s) {
    if (std::strcmp(text, "disable") == 0) {
        s.qm_plus_state = 1;
        return true;
    }
    if (std::strcmp(text, "offline") == 0) {
        s.qm_plus_state = 2;
        return true;
    }
    qm_log_warn("[qm_realtime_arm_joint_state] parse qm_plus_state :%s\n", text);
    return false;
}

template <class J>
bool read_plus_state(J item, Record& s) {
    if (is_string(item)) return read_plus_text(text_of(item), s);
    plus_state_info_from(item, s.plus_state_info, CounterRule::wrapped);
    return true;
}

template <class J>
bool read_plus_base(J item, Record& s) {
    if (is_string(item)) return read_plus_text(text_of(item), s);
    plus_base_info_from(item, s.plus_base_info);
    return true;
}

template <class J>
bool read_aloha(J item, Record& s) {
    return read_number(item, "io1_state", s.aloha_state.io1_state) &&
           read_number(item, "io2_state", s.aloha_state.io2_state);
}

template <class J>
bool read_status(J item, Record& s) {
    if (is_string(item)) s.arm_current_status = get_arm_status_from_string(text_of(item));
    return true;
}

template <class J>
bool read_hand(J item, Record& s) {
    qm_udp_hand_state_t& hand = s.handState;
    const std::pair<const char*, std::span<int>> arrays[] = {{"hand_pos", hand.hand_pos},
                                                             {"hand_angle", hand.hand_angle},
                                                             {"hand_force", hand.hand_force},
                                                             {"hand_state", hand.hand_state}};
    for (const auto& [key, out] : arrays) {
        const J array = member(item, key);
        if (!is_array(array)) return false;
        copy_array(array, out);
    }
    return read_number(item, "hand_err", hand.hand_err);
}

// The number members of a section, and its position scaled by 1000.
template <class J>
bool read_numbers(J item, std::span<const std::pair<const char*, int*>> numbers, float& pos) {
    int raw = 0;
    if (!read_number(item, "pos", raw)) return false;
    pos = thousandths(raw);
    for (const auto& [key, out] : numbers)
        if (!read_number(item, key, *out)) return false;
    return true;
}

template <class J>
bool read_lift(J item, Record& s) {
    qm_udp_lift_state_t& lift = s.liftState;
    const std::pair<const char*, int*> numbers[] = {{"height", &lift.height},
                                                    {"current", &lift.current},
                                                    {"err_flag", &lift.err_flag},
                                                    {"en_flag", &lift.en_flag}};
    return read_numbers(item, numbers, lift.pos);
}

template <class J>
bool read_expand(J item, Record& s) {
    qm_udp_expand_state_t& expand = s.expandState;
    const std::pair<const char*, int*> numbers[] = {{"joint_id", &expand.joint_id},
                                                    {"mode", &expand.mode},
                                                    {"current", &expand.current},
                                                    {"err_flag", &expand.err_flag},
                                                    {"en_flag", &expand.en_flag}};
    return read_numbers(item, numbers, expand.pos);
}

template <class J>
bool read_joint_status(J item, Record& s) {
    if (!is_object(item)) return false;
    qm_joint_status_t& joints = s.joint_status;
    const std::pair<const char*, std::span<float>> thousandth_arrays[] = {
        {"joint_position", joints.joint_position},
        {"joint_current", joints.joint_current},
        {"joint_temperature", joints.joint_temperature},
        {"joint_voltage", joints.joint_voltage}};
    for (const auto& [key, out] : thousandth_arrays)
        copy_array(member(item, key), out, thousandths);
    copy_array(member(item, "joint_en_flag"), std::span<bool>(joints.joint_en_flag), [](int v) { return v != 0; });
    copy_array(member(item, "joint_err_code"), std::span<uint16_t>(joints.joint_err_code));
    copy_array(member(item, "joint_speed"), std::span<float>(joints.joint_speed), per_six);
    return true;
}

template <class J>
bool read_force_sensor(J item, Record& s) {
    if (!is_object(item)) return true;
    qm_force_sensor_t& sensor = s.force_sensor;
    copy_array(member(item, "force"), std::span<float>(sensor.force), thousandths);
    copy_array(member(item, "zero_force"), std::span<float>(sensor.zero_force), thousandths);
    read_number(item, "coordinate", sensor.coordinate);
    return true;
}

// An array member of exactly `size` elements, converted into `out`.
template <class J>
bool read_exact(J object, const char* key, std::span<float> out, float (*convert)(int)) {
    const J array = member(object, key);
    if (!is_array(array) || size_of(array) != static_cast<int>(out.size())) return false;
    copy_array(array, out, convert);
    return true;
}

template <class J>
bool read_waypoint(J item, Record& s) {
    qm_pose_t& pose = s.waypoint;
    float quat[4], euler[3], position[3];
    if (!read_exact(item, "quat", quat, millionths) || !read_exact(item, "euler", euler, thousandths) ||
        !read_exact(item, "position", position, millionths))
        return false;
    pose.quaternion = {quat[0], quat[1], quat[2], quat[3]};
    pose.euler = {euler[0], euler[1], euler[2]};
    pose.position = {position[0], position[1], position[2]};
    return true;
}

template <class J>
bool read_err(J item, Record& s) {
    const int count = size_of(item);
    if (!is_array(item) || count < 1) return false;
    copy_array(item, std::span<int>(s.err.err));
    constexpr int kMax = static_cast<int>(sizeof s.err.err / sizeof s.err.err[0]);
    s.err.err_len = static_cast<uint8_t>(count < kMax ? count : kMax);
    return true;
}

template <class J>
struct Section {
    const char* key;
    bool required;
    bool (*read)(J item, Record& s);
};

// In the order they are read: the one-axis force sensor follows the six-axis one and wins.
template <class J>
constexpr Section<J> kSections[] = {
    {"qm_plus_state", false, read_plus_state<J>},
    {"qm_plus_base", false, read_plus_base<J>},
    {"aloha_state", false, read_aloha<J>},
    {"arm_current_status", false, read_status<J>},
    {"hand", false, read_hand<J>},
    {"lift_state", false, read_lift<J>},
    {"expand_state", false, read_expand<J>},
    {"joint_status", true, read_joint_status<J>},
    {"six_force_sensor", false, read_force_sensor<J>},
    {"one_force_sensor", false, read_force_sensor<J>},
    {"waypoint", true, read_waypoint<J>},
    {"err", true, read_err<J>},
};

template <class J>
int decode(J root, Record& s) {
    for (const Section<J>& section : kSections<J>) {
        const J item = member(root, section.key);
        if (!item) {
            if (section.required) return -3;
            continue;
        }
        if (!section.read(item, s)) return -3;
    }
    return 0;
}

struct StatusName {
    const char* text;
    qm_udp_arm_current_status_e status;
};

constexpr StatusName kStatusNames[] = {
    {"idle", QM_IDLE_E},
    {"move_L", QM_MOVE_L_E},
    {"move_J", QM_MOVE_J_E},
    {"move_C", QM_MOVE_C_E},
    {"move_S", QM_MOVE_S_E},
    {"move_through_joint", QM_MOVE_THROUGH_JOINT_E},
    {"move_through_pose", QM_MOVE_THROUGH_POSE_E},
    {"move_through_force_pose", QM_MOVE_THROUGH_FORCE_POSE_E},
    {"move_through_current", QM_MOVE_THROUGH_CURRENT_E},
    {"stop", QM_STOP_E},
    {"slow_stop", QM_SLOW_STOP_E},
    {"pause", QM_PAUSE_E},
    {"current_drag", QM_CURRENT_DRAG_E},
    {"sensor_drag", QM_SENSOR_DRAG_E},
    {"tech_demonstration", QM_TECH_DEMONSTRATION_E},
};

}  // namespace

qm_udp_arm_current_status_e get_arm_status_from_string(const char* status_str) {
    if (!status_str) return QM_IDLE_E;
    for (const StatusName& name : kStatusNames)
        if (std::strcmp(name.text, status_str) == 0) return name.status;
    return QM_IDLE_E;
}

int parse_qm_realtime_arm_joint_state(const char* json_str, qm_realtime_arm_joint_state_t* robotstate) {
    if (!robotstate) return -3;
    *robotstate = {};
    // The plain form of a push is read without allocating; cJSON takes whatever else comes.
    FlatJson flat;
    if (flat.read(json_str)) return decode(flat.root(), *robotstate);
    JsonPtr root = json_parse(json_str);
    if (!root) {
        qm_log_error("[qm_realtime_arm_joint_state] parse err\n");
        return -3;
    }
    return decode(static_cast<const cJSON*>(root.get()), *robotstate);
}
