#include "arm.h"

#include <algorithm>
#include <cmath>

#include "constant_define.h"
#include "mio_json.h"

namespace sim {

namespace wire {

int round(double value) {
    if (!(std::fabs(value) < 2.0e9)) return 0;
    return static_cast<int>(std::lround(value));
}

WireJoints joints(const Joints& q, int dof) {
    WireJoints w{};
    for (int j = 0; j < dof; ++j) w[j] = round(q[j] * 1000.0);
    return w;
}

Joints degrees(const WireJoints& w) {
    Joints q{};
    for (int j = 0; j < kMaxJoints; ++j) q[j] = w[j] / 1000.0;
    return q;
}

Wire6 pose(const Pose& p) {
    return {round(p.position.x * 1e6), round(p.position.y * 1e6), round(p.position.z * 1e6),
            round(p.euler.rx * 1e3),   round(p.euler.ry * 1e3),   round(p.euler.rz * 1e3)};
}

Pose pose(const Wire6& w) {
    return make_pose(w[0] / 1e6, w[1] / 1e6, w[2] / 1e6, w[3] / 1e3, w[4] / 1e3, w[5] / 1e3);
}

Coord coord(const Wire6& w) {
    return Coord{static_cast<float>(w[0] / 1e6), static_cast<float>(w[1] / 1e6),
                 static_cast<float>(w[2] / 1e6), static_cast<float>(w[3] / 1e3),
                 static_cast<float>(w[4] / 1e3), static_cast<float>(w[5] / 1e3)};
}

}  // namespace wire

namespace {

constexpr Seconds kSpeedWindow{0.002};
constexpr Seconds kPassThroughShown{0.1};  // a pass-through target shows in the status this long

// Speeds and accelerations travel in thousandths of a sixth of the physical unit; the
// software accelerations are sixfold again (a read-back value of 10 is 60 degrees/s^2).
int speed_wire(double degrees_per_second) {
    return wire::round(degrees_per_second * 1000.0 / 6.0);
}
int acc_wire(double degrees_per_second2) {
    return wire::round(degrees_per_second2 * 1000.0 / 36.0);
}

JointLimitSet default_limits(const ArmModel& model) {
    JointLimitSet limits;
    for (int j = 0; j < model.dof; ++j) {
        limits.min_pos[j] = wire::round(model.min_pos[j] * 1000.0);
        limits.max_pos[j] = wire::round(model.max_pos[j] * 1000.0);
        limits.max_speed[j] = speed_wire(model.max_speed[j]);
        limits.max_acc[j] = acc_wire(model.max_acc[j]);
    }
    return limits;
}

const char* status_of(MoveKind kind) {
    if (kind == MoveKind::replay) return "tech_demonstration";
    switch (kind) {
        case MoveKind::joint:
            return "move_J";
        case MoveKind::linear:
            return "move_L";
        case MoveKind::arc:
            return "move_C";
        case MoveKind::spline:
            return "move_S";
        case MoveKind::jog:
            return "move_J";
        case MoveKind::replay:
            break;
    }
    return "idle";
}

void add_travel(std::array<double, kMaxJoints>& odometer, const Joints& from, const Joints& to) {
    for (int j = 0; j < kMaxJoints; ++j) odometer[j] += std::fabs(to[j] - from[j]);
}

}  // namespace

Arm::Arm(int index, ArmModel model, int generation, const PushConfig& push, ArmHost& host)
    : index_(index),
      model_(std::move(model)),
      generation_(generation),
      host_(host),
      kinematics_(model_),
      trajectory_(Joints{}) {
    state.limits = default_limits(model_);
    state.dh = model_.dh;
    state.network.mac = "02:51:4d:00:00:0" + std::to_string(index + 1);
    state.drive_limits = state.limits;
    state.enabled.fill(true);
    state.tools.push_back(Frame{state.tool, {}, 0, {}});
    state.works.push_back(Frame{state.work, {}, 0, {}});
    state.push = push;
    reconfigure();
}

Arm::~Arm() {
    host_.loop().cancel(arrival_timer_);
    for (const auto& [key, timer] : timers_) host_.loop().cancel(timer);
}

Arm::TimerKey Arm::at(SimTime when, std::function<void()> fn) {
    const TimerKey key = next_timer_++;
    timers_[key] = host_.loop().at(host_.clock().to_wall(when), [this, key, fn = std::move(fn)] {
        timers_.erase(key);
        fn();
    });
    return key;
}

void Arm::cancel(TimerKey key) {
    auto it = timers_.find(key);
    if (it == timers_.end()) return;
    host_.loop().cancel(it->second);
    timers_.erase(it);
}

void Arm::drive(Travel& travel, std::vector<int> target, double rate, int device) {
    const SimTime now = this->now();
    travel.from = travel.at(now);
    target.resize(travel.from.size(), 0);
    double furthest = 0.0;
    for (std::size_t i = 0; i < target.size(); ++i)
        furthest = std::max(furthest, std::fabs(static_cast<double>(target[i]) - travel.from[i]));
    travel.to = std::move(target);
    travel.start = now;
    travel.end = now + Seconds(rate > 0.0 ? furthest / rate : 0.0);
    cancel(travel.arrival);
    travel.arrival = 0;
    if (device > 0)
        travel.arrival = at(travel.end, [this, &travel, device] {
            travel.arrival = 0;
            announce_arrival(device, true);
        });
}

void Arm::halt(Travel& travel) {
    const SimTime now = this->now();
    travel.to = travel.from = travel.at(now);
    travel.start = travel.end = now;
    cancel(travel.arrival);
    travel.arrival = 0;
}

void Arm::announce_arrival(int device, bool arrived, int trajectory_connect) {
    JsonPtr event(cJSON_CreateObject());
    cJSON_AddStringToObject(event.get(), "state", "current_trajectory_state");
    cJSON_AddBoolToObject(event.get(), "trajectory_state", arrived);
    cJSON_AddNumberToObject(event.get(), "device", device);
    cJSON_AddNumberToObject(event.get(), "trajectory_connect", trajectory_connect);
    JsonText text(cJSON_PrintUnformatted(event.get()));
    host_.broadcast(index_, text.get());
}

void Arm::reconfigure() {
    KinematicsSetup setup;
    if (const Frame* tool = find_tool(state.tool)) setup.tool = wire::coord(tool->pose);
    if (const Frame* work = find_work(state.work)) setup.work = wire::coord(work->pose);
    for (int i = 0; i < 3; ++i) setup.install[i] = static_cast<float>(state.install[i] * ALGO_PI / 180.0);
    setup.dh = state.dh;
    setup.min_pos = wire::degrees(state.limits.min_pos);
    setup.max_pos = wire::degrees(state.limits.max_pos);
    kinematics_.configure(setup);
}

Frame* Arm::find_tool(const std::string& name) {
    auto it =
        std::find_if(state.tools.begin(), state.tools.end(), [&](const Frame& f) { return f.name == name; });
    return it == state.tools.end() ? nullptr : &*it;
}

Frame* Arm::find_work(const std::string& name) {
    auto it =
        std::find_if(state.works.begin(), state.works.end(), [&](const Frame& f) { return f.name == name; });
    return it == state.works.end() ? nullptr : &*it;
}

MotionLimits Arm::motion_limits() const {
    MotionLimits limits;
    limits.dof = model_.dof;
    for (int j = 0; j < model_.dof; ++j) {
        limits.min_pos[j] = state.limits.min_pos[j] / 1000.0;
        limits.max_pos[j] = state.limits.max_pos[j] / 1000.0;
        limits.speed[j] = state.limits.max_speed[j] * 6.0 / 1000.0;
        limits.acc[j] = state.limits.max_acc[j] * 36.0 / 1000.0;
    }
    limits.line_speed = state.line_speed / 1000.0;
    limits.line_acc = state.line_acc / 1000.0;
    limits.angular_speed = state.angular_speed / 1000.0;
    limits.angular_acc = state.angular_acc / 1000.0;
    return limits;
}

Joints Arm::joints() const {
    return trajectory_.joints(host_.clock().now());
}

Joints Arm::speeds() const {
    const SimTime now = host_.clock().now();
    const Joints a = trajectory_.joints(now - kSpeedWindow), b = trajectory_.joints(now);
    Joints v{};
    for (int j = 0; j < kMaxJoints; ++j) v[j] = (b[j] - a[j]) / kSpeedWindow.count();
    return v;
}

const char* Arm::status() const {
    if (state.controller.emergency_stop) return "stop";
    if (const Segment* running = trajectory_.current())
        return trajectory_.paused() ? "pause" : status_of(running->kind);
    if (state.drag.active)
        return model_.sensor != ForceSensor::none && state.force.drag_mode == 1 ? "sensor_drag" : "current_drag";
    if (placed_at_ && host_.clock().now() - *placed_at_ < kPassThroughShown) return placed_status_;
    return "idle";
}

WireJoints Arm::enable_flags() const {
    WireJoints flags{};
    for (int j = 0; j < model_.dof; ++j) flags[j] = state.enabled[j] ? 1 : 0;
    return flags;
}

// Jogs and replays end without a report: nobody waits for them by the arrival event.
void Arm::end(Segment& segment, bool arrived) {
    if (arrived) add_travel(state.controller.odometer, segment.path.start(), segment.path.end());
    if (segment.reports && segment.kind != MoveKind::jog && segment.kind != MoveKind::replay)
        announce_arrival(0, arrived, arrived ? segment.trajectory_connect : 0);
    if (segment.on_end) segment.on_end(arrived);
}

void Arm::settle() {
    for (Segment& done : trajectory_.advance(host_.clock().now())) end(done, true);
    rearm();
}

void Arm::rearm() {
    host_.loop().cancel(arrival_timer_);
    arrival_timer_ = 0;
    if (std::optional<SimTime> end = trajectory_.next_end())
        arrival_timer_ = host_.loop().at(host_.clock().to_wall(*end), [this] { settle(); });
}

std::string Arm::held() const {
    if (!state.controller.power) return "the arm's power is off";
    if (state.controller.emergency_stop) return "the emergency stop holds the arm";
    for (int j = 0; j < model_.dof; ++j)
        if (!state.enabled[j]) return "joint " + std::to_string(j + 1) + " is disabled";
    return {};
}

std::string Arm::motion_blocked() const {
    if (std::string why = held(); !why.empty()) return why;
    if (state.drag.active) return "the arm is being dragged";
    if (jogging()) return "the arm is jogging";
    if (trajectory_.size() >= kMaxQueued) return "too many moves queued";
    return {};
}

std::string Arm::move(Plan plan, int trajectory_connect, std::vector<int> reported, int program) {
    if (!plan.segment) return plan.refusal;
    plan.segment->trajectory_connect = trajectory_connect;
    plan.segment->reported = std::move(reported);
    plan.segment->program = program;
    plan.segment->reports = program == 0;
    return run(std::move(*plan.segment));
}

std::string Arm::run(Segment segment) {
    if (std::string blocked = motion_blocked(); !blocked.empty()) return blocked;
    trajectory_.append(std::move(segment), host_.clock().now());
    // Not settled here: even a move that is over at once reports its arrival after the reply.
    rearm();
    return {};
}

std::string Arm::jog(Plan plan) {
    if (!plan.segment) return plan.refusal;
    if (!trajectory_.idle()) return "the arm is moving";
    if (std::string blocked = motion_blocked(); !blocked.empty()) return blocked;
    plan.segment->kind = MoveKind::jog;
    trajectory_.append(std::move(*plan.segment), host_.clock().now());
    rearm();
    return {};
}

bool Arm::jogging() const {
    const Segment* running = trajectory_.current();
    return running && running->kind == MoveKind::jog;
}

void Arm::stop_jog() {
    if (jogging()) trajectory_.stop(host_.clock().now());
    rearm();
}

void Arm::stop() {
    if (std::optional<Segment> stopped = trajectory_.stop(host_.clock().now())) end(*stopped, false);
    rearm();
}

void Arm::pause() {
    trajectory_.pause(host_.clock().now());
    rearm();
}

void Arm::resume() {
    trajectory_.resume(host_.clock().now());
    rearm();
}

void Arm::drop_current(bool keep_queue) {
    const SimTime now = host_.clock().now();
    std::optional<Segment> dropped = trajectory_.stop(now, keep_queue);
    if (dropped) end(*dropped, false);
    if (const Segment* next = trajectory_.current()) {
        // The next move was planned from where the dropped one would have ended: go there first.
        Plan bridge =
            plan_joint_move(motion_limits(), trajectory_.joints(now), next->path.start(), 50, next->kind);
        if (bridge.segment) {
            bridge.segment->trajectory_connect = 1;
            bridge.segment->reported = next->reported;
            trajectory_.prepend(std::move(*bridge.segment), now);
        } else {
            trajectory_.stop(now);  // the limits changed meanwhile: the rest cannot be reached
        }
    }
    rearm();
}

// A running move is dropped without a report, as before a pass-through target.
void Arm::place(const Joints& q, const char* status) {
    const SimTime now = host_.clock().now();
    const Joints from = joints();
    if (std::optional<Segment> dropped = trajectory_.stop(now); dropped && dropped->on_end) dropped->on_end(false);
    trajectory_.place(q);
    add_travel(state.controller.odometer, from, q);
    if (state.drag.recording) state.drag.placed.emplace_back(now, q);
    placed_at_ = now;
    placed_status_ = status;
    rearm();
}

}  // namespace sim
