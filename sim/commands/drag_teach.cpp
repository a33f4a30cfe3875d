// Drag teaching: the arm follows a guiding hand (here, the pass-through and follow commands)
// and, when asked, records where it was every 20 ms of simulated time. The recording can be
// saved to the client as a stream of "point" messages, stored as a trajectory file, and
// replayed at its own pace after a joint move back to its first point.
#include <cmath>

#include "command.h"
#include "move_args.h"

namespace sim {

namespace {

constexpr std::size_t kMaxPoints = 10000;
constexpr double kAtOrigin = 0.1;  // degrees: the arm stands at a replay's first point

// The hand's placements sampled every period from the start, and where the arm stands at the
// end: a point is where the arm was placed last at that time.
std::vector<Joints> sampled(const DragState& drag, SimTime end) {
    const std::size_t count = std::min(static_cast<std::size_t>((end - drag.started) / kSamplePeriod) + 1, kMaxPoints - 1);
    std::vector<Joints> points;
    std::size_t placed = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const SimTime t = drag.started + kSamplePeriod * static_cast<double>(i);
        while (placed + 1 < drag.placed.size() && drag.placed[placed + 1].first <= t) ++placed;
        points.push_back(drag.placed[placed].second);
    }
    points.push_back(drag.placed.back().second);
    return points;
}

void start(Call& call, bool record) {
    if (std::string why = call.arm.motion_blocked(); !why.empty()) return call.refuse(why);
    if (!call.arm.trajectory().idle()) return call.refuse("the arm is moving");
    DragState& drag = call.arm.state.drag;
    drag.active = true;
    drag.recording = record;
    drag.started = call.arm.now();
    drag.placed = {{drag.started, call.arm.joints()}};
}

void start_drag_teach(Call& call) {
    const int record = call.args.integer("trajectory_record");
    if (record != 0 && record != 1) throw BadRequest("\"trajectory_record\" is neither 0 nor 1");
    start(call, record == 1);
}

// Both forms: "mode" and "singular_wall", or "frame" with the six-axis members.
void start_multi_drag_teach(Call& call) {
    if (call.arm.model().sensor == ForceSensor::none) return call.refuse("the arm has no force sensor");
    if (!call.args.has("mode")) call.args.integer("frame");
    start(call, false);
}

void stop_drag_teach(Call& call) {
    DragState& drag = call.arm.state.drag;
    if (!drag.active) return;
    if (drag.recording) drag.replay = drag.recorded = sampled(drag, call.arm.now());
    drag.active = drag.recording = false;
    drag.placed.clear();
}

constexpr IntSetting kSensitivity{"grade", 0, 100, [](ArmState& s) -> int& { return s.force.drag_sensitivity; }};
constexpr IntSetting kDragMode{"mode", 0, 1, [](ArmState& s) -> int& { return s.force.drag_mode; }};

// Force drag needs a force sensor.
void set_drag_mode(Call& call) {
    if (call.arm.model().sensor == ForceSensor::none) return call.refuse("the arm has no force sensor");
    set_setting<&kDragMode>(call);
}

// ---- the recording saved by the client ----

void save_trajectory(Call& call) {
    call.args.text("trajectory_name");
    const std::vector<Joints>& points = call.arm.state.drag.recorded;
    if (points.empty()) return call.refuse("nothing recorded");
    call.reply.set("total_num", static_cast<int>(points.size()));
    for (const Joints& q : points) {
        JsonPtr point(cJSON_CreateObject());
        cJSON_AddItemToObject(point.get(), "point", int_array(shown_joints(q, call.arm.dof())).release());
        JsonText text(cJSON_PrintUnformatted(point.get()));
        call.then.emplace_back(text.get());
    }
}

// ---- replay ----

void drag_trajectory_origin(Call& call) {
    const std::vector<Joints>& replay = call.arm.state.drag.replay;
    if (replay.empty()) return call.refuse("nothing to replay");
    const Joints from = call.arm.trajectory().planned_end();
    queue_move(call, plan_joint_move(call.arm.motion_limits(), from, replay.front(), kOriginSpeed, MoveKind::joint),
               0, shown_joints(replay.front(), call.arm.dof()));
}

bool at_origin(const Arm& arm, const Joints& origin) {
    const Joints q = arm.joints();
    for (int j = 0; j < arm.dof(); ++j)
        if (std::fabs(q[j] - origin[j]) > kAtOrigin) return false;
    return true;
}

// Answered when the replay ends: "run_state" true when it ran to its end.
void run_drag_trajectory(Call& call) {
    const std::vector<Joints>& replay = call.arm.state.drag.replay;
    if (replay.empty()) return call.refuse("nothing to replay");
    if (!call.arm.trajectory().idle()) return call.refuse("the arm is moving");
    if (!at_origin(call.arm, replay.front())) return call.refuse("the arm is not at the replay's first point");
    Arm& arm = call.arm;
    const int connection = call.connection;
    Segment replaying = replay_of(replay);
    replaying.on_end = [&arm, connection](bool arrived) {
        arm.host().send_to(connection, Reply("run_drag_trajectory").set("run_state", arrived).text());
    };
    if (std::string why = call.arm.run(std::move(replaying)); !why.empty()) return call.refuse(why);
    call.defer();
}

bool replaying(const Arm& arm) {
    const Segment* running = arm.trajectory().current();
    return running && running->kind == MoveKind::replay;
}

void pause_replay(Call& call) {
    if (!replaying(call.arm)) return call.refuse("no replay runs");
    call.arm.pause();
}
void continue_replay(Call& call) {
    if (!replaying(call.arm)) return call.refuse("no replay runs");
    call.arm.resume();
}
void stop_replay(Call& call) {
    if (!replaying(call.arm)) return call.refuse("no replay runs");
    call.arm.stop();
}

const Command kCommands[] = {
    {"start_drag_teach", "start_drag_teach", "drag_teach", start_drag_teach},
    {"stop_drag_teach", "stop_drag_teach", "drag_teach", stop_drag_teach},
    {"start_multi_drag_teach", "start_multi_drag_teach", "set_state", start_multi_drag_teach},
    {"set_drag_teach_sensitivity", "set_drag_teach_sensitivity", "set_state", set_setting<&kSensitivity>},
    {"get_drag_teach_sensitivity", "get_drag_teach_sensitivity", nullptr, get_setting<&kSensitivity>},
    {"set_force_drag_mode", "set_force_drag_mode", "set_state", set_drag_mode},
    {"get_force_drag_mode", "get_force_drag_mode", nullptr, get_setting<&kDragMode>},
    {"save_trajectory", "save_trajectory", "save_state", save_trajectory},
    {"drag_trajectory_origin", nullptr, nullptr, drag_trajectory_origin},
    {"run_drag_trajectory", "run_drag_trajectory", "run_state", run_drag_trajectory},
    {"pause_drag_trajectory", "pause_drag_trajectory", "pause_state", pause_replay},
    {"continue_drag_trajectory", "continue_drag_trajectory", "continue_state", continue_replay},
    {"stop_drag_trajectory", "stop_drag_trajectory", "stop_state", stop_replay},
};
const CommandFamily kFamily(kCommands);

}  // namespace

}  // namespace sim
