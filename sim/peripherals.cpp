#include "peripherals.h"

#include <span>

#include "command.h"

namespace sim {

namespace {

constexpr int kRestCurrent = 300;    // mA
constexpr int kMovingCurrent = 1500;  // mA
constexpr int kEndEffectorValues = 12;
constexpr int kTouchValues = 18;

void put(cJSON* object, const char* key, std::span<const int> values) {
    cJSON_AddItemToObject(object, key, int_array(values).release());
}

// The hand's six values followed by zeros up to the ecosystem's twelve.
std::vector<int> twelve(std::vector<int> values) {
    values.resize(kEndEffectorValues, 0);
    return values;
}

}  // namespace

int axis_current(const Travel& travel, SimTime now) {
    return travel.moving(now) ? kMovingCurrent : kRestCurrent;
}

JsonPtr lift_section(const Arm& arm) {
    const SimTime now = arm.now();
    const int height = arm.state.lift.position.at(now)[0];
    return object_of({{"pos", height * 1000},
                      {"height", height},
                      {"current", axis_current(arm.state.lift.position, now)},
                      {"err_flag", 0},
                      {"en_flag", 1}});
}

JsonPtr expand_section(const Arm& arm) {
    const SimTime now = arm.now();
    const Travel& position = arm.state.expand.position;
    return object_of({{"pos", position.at(now)[0]},
                      {"joint_id", 1},
                      {"mode", position.moving(now) ? 1 : 0},
                      {"current", axis_current(position, now)},
                      {"err_flag", 0},
                      {"en_flag", 1}});
}

// A finger that stands closed holds the hand's force.
JsonPtr hand_section(const Arm& arm) {
    const SimTime now = arm.now();
    const HandState& hand = arm.state.hand;
    const std::vector<int> fingers = hand.fingers.at(now);
    const bool moving = hand.fingers.moving(now);
    std::vector<int> force(kFingers), state(kFingers);
    for (int i = 0; i < kFingers; ++i) {
        force[i] = !moving && fingers[i] > 0 ? hand.force : 0;
        state[i] = moving ? 1 : 0;
    }
    JsonPtr section(cJSON_CreateObject());
    put(section.get(), "hand_pos", fingers);
    put(section.get(), "hand_angle", fingers);
    put(section.get(), "hand_force", force);
    put(section.get(), "hand_state", state);
    cJSON_AddNumberToObject(section.get(), "hand_err", 0);
    return section;
}

JsonPtr end_effector_base(const Arm& arm) {
    if (arm.state.end_effector.mode == 0) return JsonPtr(cJSON_CreateString("disable"));
    JsonPtr base(cJSON_CreateObject());
    cJSON_AddStringToObject(base.get(), "manu", "QM-SIM");
    cJSON_AddNumberToObject(base.get(), "type", 1);
    cJSON_AddStringToObject(base.get(), "hv", "1.0");
    cJSON_AddStringToObject(base.get(), "sv", "1.3.2");
    cJSON_AddStringToObject(base.get(), "bv", "1.0.1");
    for (const auto& [key, value] :
         {std::pair{"id", 1}, {"dof", kFingers}, {"check", 0}, {"bee", 1}, {"touch_num", 5},
          {"touch_sw", arm.state.end_effector.touch}, {"hand", 1}})
        cJSON_AddNumberToObject(base.get(), key, value);
    cJSON_AddBoolToObject(base.get(), "force", true);
    cJSON_AddBoolToObject(base.get(), "touch", arm.state.end_effector.touch != 0);
    const std::vector<int> up = twelve(std::vector<int>(kFingers, 1000)), low(kEndEffectorValues, 0);
    for (const char* key : {"pos_up", "angle_up", "speed_up", "force_up"}) put(base.get(), key, up);
    for (const char* key : {"pos_low", "angle_low", "speed_low", "force_low"}) put(base.get(), key, low);
    return base;
}

JsonPtr end_effector_state(const Arm& arm) {
    if (arm.state.end_effector.mode == 0) return JsonPtr(cJSON_CreateString("disable"));
    const SimTime now = arm.now();
    const HandState& hand = arm.state.hand;
    const bool moving = hand.fingers.moving(now);
    const std::vector<int> fingers = twelve(hand.fingers.at(now));
    const std::vector<int> speed = twelve(std::vector<int>(kFingers, moving ? hand.speed : 0));
    const std::vector<int> current = twelve(std::vector<int>(kFingers, moving ? kMovingCurrent : kRestCurrent));
    const std::vector<int> zeros(kEndEffectorValues, 0), touch(kTouchValues, 0);
    JsonPtr state(cJSON_CreateObject());
    cJSON_AddNumberToObject(state.get(), "sys_state", moving ? 1 : 0);
    put(state.get(), "dof_state", twelve(std::vector<int>(kFingers, moving ? 1 : 0)));
    put(state.get(), "dof_err", zeros);
    put(state.get(), "pos", fingers);
    put(state.get(), "speed", speed);
    put(state.get(), "angle", fingers);
    put(state.get(), "current", current);
    for (const char* key : {"normal_force", "tangential_force", "tangential_force_dir", "touch_data"})
        put(state.get(), key, touch);
    put(state.get(), "tsa", zeros);
    put(state.get(), "tma", zeros);
    put(state.get(), "force", zeros);
    return state;
}

}  // namespace sim
