// Force sensing: reading and zeroing the six-axis and the one-axis sensor, and calibrating
// them automatically or from taught poses. A calibration takes a while; its end is the
// "set_force_sensor" answer, sent when it is done.
#include "command.h"
#include "force_sensor.h"

namespace sim {

namespace {

constexpr Seconds kCalibration{2.0};
constexpr int kManualPoses = 4;

bool six_axis(const Arm& arm) {
    return arm.model().sensor == ForceSensor::six_axis || arm.model().sensor == ForceSensor::integrated_six_axis;
}

bool one_axis(const Arm& arm) {
    return arm.model().sensor == ForceSensor::one_axis;
}

// Refuses a command for a sensor the arm does not carry; queries answer with an "error".
bool has_sensor(Call& call, bool (*kind)(const Arm&)) {
    if (kind(call.arm)) return true;
    call.refuse(kind == six_axis ? "the arm has no six-axis force sensor" : "the arm has no one-axis force sensor");
    call.reply.set("error", call.refusal);
    return false;
}

void get_force_data(Call& call) {
    if (!has_sensor(call, six_axis)) return;
    const ForceReading r = read_force(call.arm);
    call.reply.ints("force_data", r.raw).ints("zero_force_data", r.zero).ints("work_zero_force_data", r.work)
        .ints("tool_zero_force_data", r.tool);
}

void clear(Call& call, bool (*kind)(const Arm&)) {
    if (has_sensor(call, kind)) call.arm.state.force.zero_offset = zero_offset(call.arm);
}
void clear_force_data(Call& call) {
    clear(call, six_axis);
}
void clear_Fz(Call& call) {
    clear(call, one_axis);
}

void get_Fz(Call& call) {
    if (!has_sensor(call, one_axis)) return;
    const ForceReading r = read_force(call.arm);
    call.reply.set("Fz", r.raw[2]).set("zero_Fz", r.zero[2]).set("work_zero_Fz", r.work[2]).set("tool_zero_Fz", r.tool[2]);
}

// Runs a calibration and answers when it is done; a stopped one never answers.
void calibrate(Call& call, bool (*kind)(const Arm&)) {
    if (!has_sensor(call, kind)) return;
    ForceState& force = call.arm.state.force;
    if (force.calibration) return call.refuse("a calibration is running");
    if (!call.arm.trajectory().idle()) return call.refuse("the arm is moving");
    call.defer();
    Arm& arm = call.arm;
    const int connection = call.connection;
    force.calibration = arm.at(arm.now() + kCalibration, [&arm, connection] {
        arm.state.force.calibration = 0;
        arm.state.force.calibrated = true;
        arm.state.force.zero_offset = {};
        arm.state.force.manual_poses = 0;
        arm.host().send_to(connection, Reply("set_force_sensor").set("set_state", true).text());
    });
}

void set_force_sensor(Call& call) {
    calibrate(call, six_axis);
}
void auto_set_Fz(Call& call) {
    calibrate(call, one_axis);
}

void manual_set_Fz(Call& call) {
    call.args.ints("pose1", static_cast<std::size_t>(call.arm.dof()));
    call.args.ints("pose2", static_cast<std::size_t>(call.arm.dof()));
    calibrate(call, one_axis);
}

// Poses 1 to 3 are only noted; the fourth, after the other three, starts the calibration.
template <int Pose>
void manual_pose(Call& call) {
    call.args.ints("joint", static_cast<std::size_t>(call.arm.dof()));
    if (!has_sensor(call, six_axis)) return;
    ForceState& force = call.arm.state.force;
    force.manual_poses |= 1 << (Pose - 1);
    if (Pose < kManualPoses) return;
    if (force.manual_poses != (1 << kManualPoses) - 1) {
        force.manual_poses = 0;
        return call.refuse("poses 1 to 3 were not all taught");
    }
    calibrate(call, six_axis);
}

void stop_set_force_sensor(Call& call) {
    ForceState& force = call.arm.state.force;
    call.arm.cancel(force.calibration);
    force.calibration = 0;
    force.manual_poses = 0;
}

const Command kCommands[] = {
    {"get_force_data", "get_force_data", nullptr, get_force_data},
    {"clear_force_data", "clear_force_data", "clear_state", clear_force_data},
    {"set_force_sensor", "set_force_sensor", "set_state", set_force_sensor},
    {"manual_set_force_pose1", nullptr, nullptr, manual_pose<1>},
    {"manual_set_force_pose2", nullptr, nullptr, manual_pose<2>},
    {"manual_set_force_pose3", nullptr, nullptr, manual_pose<3>},
    {"manual_set_force_pose4", "set_force_sensor", "set_state", manual_pose<4>},
    {"stop_set_force_sensor", "stop_set_force_sensor", "stop_state", stop_set_force_sensor},
    {"get_Fz", "get_Fz", nullptr, get_Fz},
    {"clear_Fz", "clear_Fz", "set_state", clear_Fz},
    {"auto_set_Fz", "set_force_sensor", "set_state", auto_set_Fz},
    {"manual_set_Fz", "set_force_sensor", "set_state", manual_set_Fz},
};
const CommandFamily kFamily(kCommands);

}  // namespace

}  // namespace sim
