#include "datagram.h"

#include <algorithm>
#include <span>

#include "command.h"
#include "force_sensor.h"
#include "peripherals.h"
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

// The six-axis sensor reports every component; the one-axis sensor only Fz (the third).
JsonPtr force_sensor(const Arm& arm) {
    ForceReading reading = read_force(arm);
    if (arm.model().sensor == ForceSensor::one_axis)
        for (int i = 0; i < 6; ++i)
            if (i != 2) reading.raw[i] = reading.zero[i] = 0;
    JsonPtr sensor = object();
    put(sensor.get(), "force", reading.raw);
    put(sensor.get(), "zero_force", reading.zero);
    cJSON_AddNumberToObject(sensor.get(), "coordinate", arm.state.push.force_coordinate);
    return sensor;
}

JsonPtr arm_current_status(const Arm& arm) {
    return JsonPtr(cJSON_CreateString(arm.status()));
}

// The tool's two IO levels.
JsonPtr aloha_state(const Arm& arm) {
    return object_of({{"io1_state", arm.state.io.tool_level[0]}, {"io2_state", arm.state.io.tool_level[1]}});
}

struct Section {
    const char* key;  // in the datagram and in the push configuration's "custom"
    JsonPtr (*build)(const Arm& arm);
};
constexpr Section kSections[] = {
    {"arm_current_status", arm_current_status},
    {"lift_state", lift_section},
    {"expand_state", expand_section},
    {"hand", hand_section},
    {"aloha_state", aloha_state},
    {"qm_plus_base", end_effector_base},
    {"qm_plus_state", end_effector_state},
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
