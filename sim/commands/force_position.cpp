// Force-position (constant force) control, and the streamed force-position moves between
// "Start_Force_Position_Move" and "Stop_Force_Position_Move". While either holds a force, the
// sensor reads it as the contact force.
#include "command.h"
#include "move_args.h"

namespace sim {

namespace {

constexpr int kAxes = 6;

bool refused_without_sensor(Call& call) {
    if (call.arm.model().sensor != ForceSensor::none) return false;
    call.refuse("the arm has no force sensor");
    return true;
}

// The single-direction form: one force, in tenths of a newton, along "direction" (0..5).
void hold(ForceState& force, int direction, int tenths) {
    force.desired_force = {};
    force.desired_force[static_cast<std::size_t>(direction)] = tenths;
}

int direction(const Call& call, const char* member) {
    const int direction = call.args.integer(member);
    if (direction < 0 || direction >= kAxes) throw BadRequest(std::string("\"") + member + "\" outside 0..5");
    return direction;
}

// Both forms: "direction" and "N", or the six-axis "desired_force" with its modes and limits.
void set_force_position(Call& call) {
    if (refused_without_sensor(call)) return;
    ForceState& force = call.arm.state.force;
    call.args.integer("sensor");
    call.args.integer("mode");
    if (call.args.has("direction")) {
        const int axis = direction(call, "direction");
        hold(force, axis, call.args.integer("N"));
    } else {
        const std::vector<int> desired = call.args.ints("desired_force", kAxes);
        call.args.ints("control_mode", kAxes);
        call.args.ints("limit_vel", kAxes);
        std::copy(desired.begin(), desired.end(), force.desired_force.begin());
    }
    force.force_position = true;
}

void stop_force_position(Call& call) {
    call.arm.state.force.force_position = false;
}

void start_move(Call& call) {
    if (refused_without_sensor(call)) return;
    if (std::string why = call.arm.held(); !why.empty()) return call.refuse(why);
    if (!call.arm.trajectory().idle()) return call.refuse("the arm is moving");
    call.arm.state.force.streaming = true;
}

void stop_move(Call& call) {
    call.arm.state.force.streaming = false;
}

// Streamed: the arm is at the target at once, holding the force.
void force_position_move(Call& call) {
    ForceState& force = call.arm.state.force;
    if (!force.streaming) return call.refuse("not between Start_ and Stop_Force_Position_Move");
    const std::optional<Joints> target = streamed_target(call);
    if (!target) return;
    if (call.args.has("desired_force")) {
        const std::vector<int> desired = call.args.ints("desired_force", kAxes);
        std::copy(desired.begin(), desired.end(), force.desired_force.begin());
    } else {
        hold(force, direction(call, "dir"), call.args.integer("force"));
    }
    call.arm.place(*target, "move_through_force_pose");
}

const Command kCommands[] = {
    {"set_force_position", "set_force_position", "set_state", set_force_position},
    {"stop_force_position", "stop_force_position", "stop_state", stop_force_position},
    {"Start_Force_Position_Move", "Start_Force_Position_Move", "set_state", start_move},
    {"Stop_Force_Position_Move", "Stop_Force_Position_Move", "set_state", stop_move},
    {"Force_Position_Move", nullptr, nullptr, force_position_move},
};
const CommandFamily kFamily(kCommands);

}  // namespace

}  // namespace sim
