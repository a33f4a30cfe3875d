#include "datagram.h"

#include <algorithm>
#include <span>

#include "command.h"
#include "telemetry.h"

namespace sim {

namespace {

JsonPtr object() {
    return JsonPtr(cJSON_CreateObject());
}

void put(cJSON* object, const char* key, std::span<const int> values) {
    cJSON_AddItemToObject(object, key, int_array(values).release());
}

void put(cJSON* object, const char* key, const WireJoints& values, int dof) {
    put(object, key, std::span<const int>(values.data(), static_cast<std::size_t>(dof)));
}

JsonPtr joint_status(const Arm& arm, const Telemetry& t) {
    JsonPtr status = object();
    put(status.get(), "joint_position", t.position, arm.dof());
    put(status.get(), "joint_current", t.current, arm.dof());
    put(status.get(), "joint_en_flag", arm.enable_flags(), arm.dof());
    put(status.get(), "joint_err_code", arm.state.err_flags, arm.dof());
    put(status.get(), "joint_temperature", t.temperature, arm.dof());
    put(status.get(), "joint_voltage", t.voltage, arm.dof());
    auto speed = arm.state.push.custom.find("joint_speed");
    if (speed != arm.state.push.custom.end() && speed->second)
        put(status.get(), "joint_speed", t.speed, arm.dof());
    return status;
}

JsonPtr waypoint(const Pose& p) {
    JsonPtr point = object();
    const Wire6 w = wire::pose(p);
    const int quat[] = {wire::round(p.quaternion.w * 1e6), wire::round(p.quaternion.x * 1e6),
                        wire::round(p.quaternion.y * 1e6), wire::round(p.quaternion.z * 1e6)};
    put(point.get(), "euler", std::span<const int>(w.data() + 3, 3));
    put(point.get(), "position", std::span<const int>(w.data(), 3));
    put(point.get(), "quat", quat);
    return point;
}

JsonPtr force_sensor(const Arm& arm) {
    JsonPtr sensor = object();
    const int zero[6] = {};
    put(sensor.get(), "force", zero);
    put(sensor.get(), "zero_force", zero);
    cJSON_AddNumberToObject(sensor.get(), "coordinate", arm.state.push.force_coordinate);
    return sensor;
}

JsonPtr numbers(std::initializer_list<const char*> keys) {
    JsonPtr section = object();
    for (const char* key : keys) cJSON_AddNumberToObject(section.get(), key, 0);
    return section;
}

// The peripherals are idle until their command families drive them.
JsonPtr arm_current_status(const Arm& arm) {
    return JsonPtr(cJSON_CreateString(arm.status()));
}
JsonPtr lift_state(const Arm&) {
    return numbers({"pos", "height", "current", "err_flag", "en_flag"});
}
JsonPtr expand_state(const Arm&) {
    return numbers({"pos", "joint_id", "mode", "current", "err_flag", "en_flag"});
}
JsonPtr aloha_state(const Arm&) {
    return numbers({"io1_state", "io2_state"});
}
JsonPtr hand(const Arm&) {
    JsonPtr section = object();
    const int zero[6] = {};
    for (const char* key : {"hand_pos", "hand_angle", "hand_force", "hand_state"})
        put(section.get(), key, zero);
    cJSON_AddNumberToObject(section.get(), "hand_err", 0);
    return section;
}
JsonPtr offline(const Arm&) {
    return JsonPtr(cJSON_CreateString("offline"));
}

struct Section {
    const char* key;  // in the datagram and in the push configuration's "custom"
    JsonPtr (*build)(const Arm& arm);
};
constexpr Section kSections[] = {
    {"arm_current_status", arm_current_status},
    {"lift_state", lift_state},
    {"expand_state", expand_state},
    {"hand", hand},
    {"aloha_state", aloha_state},
    {"qm_plus_base", offline},
    {"qm_plus_state", offline},
};

}  // namespace

bool is_push_section(const std::string& key) {
    return key == "joint_speed" || std::any_of(std::begin(kSections), std::end(kSections),
                                               [&](const Section& s) { return key == s.key; });
}

std::string realtime_datagram(const Arm& arm) {
    JsonPtr root = object();
    const Telemetry t = telemetry(arm);
    cJSON_AddItemToObject(root.get(), "joint_status", joint_status(arm, t).release());
    cJSON_AddItemToObject(root.get(), "waypoint", waypoint(arm.pose()).release());
    put(root.get(), "err", arm.error_codes());
    switch (arm.model().sensor) {
        case ForceSensor::none:
            break;
        case ForceSensor::one_axis:
            cJSON_AddItemToObject(root.get(), "one_force_sensor", force_sensor(arm).release());
            break;
        case ForceSensor::six_axis:
        case ForceSensor::integrated_six_axis:
            cJSON_AddItemToObject(root.get(), "six_force_sensor", force_sensor(arm).release());
            break;
    }
    for (const Section& section : kSections) {
        auto flag = arm.state.push.custom.find(section.key);
        if (flag != arm.state.push.custom.end() && flag->second)
            cJSON_AddItemToObject(root.get(), section.key, section.build(arm).release());
    }
    JsonText text(cJSON_PrintUnformatted(root.get()));
    return text ? text.get() : std::string();
}

}  // namespace sim
