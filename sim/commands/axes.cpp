// The lift axis (heights in millimetres, 0..1000) and the expansion axis (thousandths of a
// degree, one turn either way): a steady speed until stopped or at the end of the travel, or
// a target reported as device 3 or 4 when the request blocks.
#include "command.h"
#include "peripherals.h"

namespace sim {

namespace {

// What differs between the two axes.
struct Axis {
    AxisState ArmState::*state;
    const char* target_member;  // also the member the state query reports the position under
    int low, high;
    double rate;  // at 100 percent
    int device;
};

constexpr Axis kLift{&ArmState::lift, "height", 0, 1000, kLiftRate, 3};
constexpr Axis kExpand{&ArmState::expand, "pos", -360000, 360000, kExpandRate, 4};

// A signed percentage: the direction and the speed; 0 stops the axis.
template <const Axis* Row>
void set_speed(Call& call) {
    const int speed = call.args.integer("speed");
    if (speed < -100 || speed > 100) return call.refuse("speed outside -100..100");
    Travel& position = (call.arm.state.*(Row->state)).position;
    if (speed == 0) return call.arm.halt(position);
    call.arm.drive(position, {speed > 0 ? Row->high : Row->low}, Row->rate * std::abs(speed) / 100.0, 0);
}

template <const Axis* Row>
void move_to(Call& call) {
    const int speed = call.args.integer("speed");
    const int target = call.args.integer(Row->target_member);
    const bool block = call.args.boolean("block");
    if (speed < 1 || speed > 100) return call.refuse("speed outside 1..100");
    if (target < Row->low || target > Row->high)
        return call.refuse("target outside " + std::to_string(Row->low) + ".." + std::to_string(Row->high));
    call.arm.drive((call.arm.state.*(Row->state)).position, {target}, Row->rate * speed / 100.0,
                   block ? Row->device : 0);
}

// "mode" is non-zero while the axis moves: the library watches it during a blocking move.
template <const Axis* Row>
void get_state(Call& call) {
    const SimTime now = call.arm.now();
    const Travel& position = (call.arm.state.*(Row->state)).position;
    call.reply.set(Row->target_member, position.at(now)[0])
        .set("current", axis_current(position, now))
        .set("err_flag", 0)
        .set("mode", position.moving(now) ? 1 : 0);
}

const Command kCommands[] = {
    {"set_lift_speed", "set_lift_speed", "set_state", set_speed<&kLift>},
    {"set_lift_height", "set_lift_height", "set_state", move_to<&kLift>},
    {"get_lift_state", "lift_state", nullptr, get_state<&kLift>},
    {"expand_set_speed", "expand_set_speed", "set_speed_state", set_speed<&kExpand>},
    {"expand_set_pos", "expand_set_pos", "set_pos_state", move_to<&kExpand>},
    {"expand_get_state", "expand_state", nullptr, get_state<&kExpand>},
};
const CommandFamily kFamily(kCommands);

}  // namespace

}  // namespace sim
