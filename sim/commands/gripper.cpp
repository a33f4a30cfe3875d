// The two-finger gripper: its route, its motions (reported as device 1 when the request
// blocks) and its state. Openings are thousandths of the full stroke; nothing lies between
// the fingers, so a pick closes to the route's minimum and holds its force there.
#include "command.h"
#include "peripherals.h"

namespace sim {

namespace {

constexpr int kGripperDevice = 1;

// The position command carries no speed: it moves at the speed of the motion before.
int speed(const Call& call) {
    if (!call.args.has("speed")) return call.arm.state.gripper.speed;
    const int speed = call.args.integer("speed");
    if (speed < 1 || speed > 1000) throw BadRequest("\"speed\" outside 1..1000");
    return speed;
}

void move(Call& call, int opening, int force, int mode) {
    const int rate = speed(call);
    const bool block = call.args.boolean("block");
    GripperState& gripper = call.arm.state.gripper;
    gripper.speed = rate;
    if (opening < gripper.min || opening > gripper.max) return call.refuse("the position lies outside the route");
    gripper.force = force;
    gripper.mode = mode;
    call.arm.drive(gripper.opening, {opening}, rate * kGripperRate, block ? kGripperDevice : 0);
}

int force(const Call& call) {
    const int force = call.args.integer("force");
    if (force < 1 || force > 1000) throw BadRequest("\"force\" outside 1..1000");
    return force;
}

void set_gripper_route(Call& call) {
    const int min = call.args.integer("min"), max = call.args.integer("max");
    if (min < 0 || max > 1000 || min >= max) return call.refuse("a route is 0 <= min < max <= 1000");
    call.arm.state.gripper.min = min;
    call.arm.state.gripper.max = max;
}

void release(Call& call) {
    move(call, call.arm.state.gripper.max, 0, 1);
}
void pick(Call& call) {
    move(call, call.arm.state.gripper.min, force(call), 2);
}
void pick_on(Call& call) {
    move(call, call.arm.state.gripper.min, force(call), 3);
}
void position(Call& call) {
    move(call, call.args.integer("position"), 0, 4);
}

void get_gripper_state(Call& call) {
    const SimTime now = call.arm.now();
    const GripperState& gripper = call.arm.state.gripper;
    const bool moving = gripper.opening.moving(now);
    call.reply.set("enable", 1)
        .set("status", moving ? 1 : 0)
        .set("error", 0)
        .set("mode", gripper.mode)
        .set("current_force", moving ? 0 : gripper.force)
        .set("temperature", 36)
        .set("actpos", gripper.opening.at(now)[0]);
}

// Every motion is answered under "set_gripper".
const Command kCommands[] = {
    {"set_gripper_route", "set_gripper_route", "state", set_gripper_route},
    {"set_gripper_release", "set_gripper", "state", release},
    {"set_gripper_pick", "set_gripper", "state", pick},
    {"set_gripper_pick_on", "set_gripper", "state", pick_on},
    {"set_gripper_position", "set_gripper", "state", position},
    {"get_gripper_state", "get_gripper_state", nullptr, get_gripper_state},
};
const CommandFamily kFamily(kCommands);

}  // namespace

}  // namespace sim
