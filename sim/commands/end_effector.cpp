// The end-effector ecosystem: its mode (0 switches the device off) and touch settings, and
// the base information and live state of the device, which is the dexterous hand.
#include "command.h"
#include "peripherals.h"

namespace sim {

namespace {

constexpr IntSetting kMode{"mode", 0, 3, [](ArmState& s) -> int& { return s.end_effector.mode; }};
constexpr IntSetting kTouch{"mode", 0, 1, [](ArmState& s) -> int& { return s.end_effector.touch; }};

// A device that is off answers with "get_state" false.
void answer(Call& call, const char* member, JsonPtr section) {
    const bool on = cJSON_IsObject(section.get());
    call.reply.set("get_state", on);
    if (on) call.reply.add(member, std::move(section));
}

void get_base_info(Call& call) {
    answer(call, "base_info", end_effector_base(call.arm));
}

void get_state_info(Call& call) {
    answer(call, "state_info", end_effector_state(call.arm));
}

// The mode and touch settings are judged by "set_state", like every generic setting.
const Command kCommands[] = {
    {"set_qm_plus_mode", "set_qm_plus_mode", "set_state", set_setting<&kMode>},
    {"get_qm_plus_mode", "get_qm_plus_mode", nullptr, get_setting<&kMode>},
    {"set_qm_plus_touch", "set_qm_plus_touch", "set_state", set_setting<&kTouch>},
    {"get_qm_plus_touch", "get_qm_plus_touch", nullptr, get_setting<&kTouch>},
    {"get_qm_plus_base_info", "get_qm_plus_base_info", nullptr, get_base_info},
    {"get_qm_plus_state_info", "get_qm_plus_state_info", nullptr, get_state_info},
};
const CommandFamily kFamily(kCommands);

}  // namespace

}  // namespace sim
