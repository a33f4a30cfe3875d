// One simulated arm with its controller: joints and motion in simulated time, the state of
// every command family (arm_state.h), and timers that run with the arm.
#ifndef QM_SIM_ARM_H
#define QM_SIM_ARM_H

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "arm_model.h"
#include "arm_state.h"
#include "event_loop.h"
#include "kinematics.h"
#include "motion.h"
#include "options.h"
#include "planner.h"

namespace sim {

// What an arm needs from the simulator around it.
class ArmHost {
public:
    virtual ~ArmHost() = default;
    // Sends a line to every client of arm `arm`.
    virtual void broadcast(int arm, const std::string& line) = 0;
    // Sends a line to one client, if it is still connected.
    virtual void send_to(int connection, const std::string& line) = 0;
    virtual EventLoop& loop() = 0;
    virtual const SimClock& clock() const = 0;
    virtual void push_changed(int arm) = 0;
    virtual void note(const std::string& text) = 0;
};

constexpr std::size_t kMaxFrames = 10;
constexpr std::size_t kMaxFrameName = 10;
constexpr std::size_t kMaxQueued = 64;

class Arm {
public:
    Arm(int index, ArmModel model, int generation, const PushConfig& push, ArmHost& host);
    ~Arm();
    Arm(const Arm&) = delete;
    Arm& operator=(const Arm&) = delete;

    int index() const { return index_; }
    const ArmModel& model() const { return model_; }
    int dof() const { return model_.dof; }
    int generation() const { return generation_; }
    ArmHost& host() { return host_; }

    SimTime now() const { return host_.clock().now(); }
    // Brings the motion up to now; finished moves are reported to the clients.
    void settle();
    Joints joints() const;
    Joints speeds() const;  // degrees per second
    // The tool pose in the work frame.
    Pose pose() const { return kinematics_.forward(joints()); }
    const Trajectory& trajectory() const { return trajectory_; }
    // The arm_current_status text of the realtime push.
    const char* status() const;
    // 1 for each enabled joint, 0 for each disabled one.
    WireJoints enable_flags() const;
    // The arm's error codes as the controller lists them: [0] when there is none.
    std::vector<int> error_codes() const { return state.errors.empty() ? std::vector<int>{0} : state.errors; }

    // ---- motion; each returns the refusal, empty when accepted ----
    MotionLimits motion_limits() const;
    const Kinematics& kinematics() const { return kinematics_; }
    // Queues a planned move; `reported` is what get_arm_current_trajectory shows while it runs.
    // The moves of stored program `program` end without a report of their own.
    std::string move(Plan plan, int trajectory_connect, std::vector<int> reported, int program = 0);
    // Queues a segment that is already complete (a replay, the end of a program).
    std::string run(Segment segment);
    // Starts a jog; it ends at the end of its path or at stop_jog().
    std::string jog(Plan plan);
    bool jogging() const;
    void stop_jog();
    // Stops every planned move; the running one is reported as not arrived.
    void stop();
    void pause();
    void resume();
    // Drops the running move; with `keep_queue` the queued ones follow.
    void drop_current(bool keep_queue);
    // Pass-through: the arm is at `q` at once; `status` shows in the push for a moment.
    void place(const Joints& q, const char* status);
    // Why the arm cannot move at all now (power, emergency stop, a disabled joint), or empty.
    std::string held() const;
    // Why a planned move cannot start now, or empty.
    std::string motion_blocked() const;

    // ---- frames and the settings kinematics depends on ----
    Frame* find_tool(const std::string& name);
    Frame* find_work(const std::string& name);
    const Frame* find_tool(const std::string& name) const { return const_cast<Arm*>(this)->find_tool(name); }
    // Loads the current frames, limits, installation and DH table into the kinematics.
    void reconfigure();

    // ---- timers and events ----
    using TimerKey = std::uint64_t;
    // Runs fn at simulated time `when` unless cancelled first; the arm's end cancels it.
    TimerKey at(SimTime when, std::function<void()> fn);
    void cancel(TimerKey key);
    // Starts `travel` from where it is now towards `target` at `rate` units per simulated
    // second (the value with the furthest to go sets the pace). With a `device` above 0 that
    // device announces its arrival; a new start replaces the arrival of the one before.
    void drive(Travel& travel, std::vector<int> target, double rate, int device);
    // Stops a travel where it is, without an arrival.
    void halt(Travel& travel);
    // The "current_trajectory_state" event of a device (0 the arm, 1 gripper, 2 hand, 3 lift,
    // 4 expansion axis) to every client.
    void announce_arrival(int device, bool arrived, int trajectory_connect = 0);

    ArmState state;

private:
    void rearm();
    void end(Segment& segment, bool arrived);

    int index_;
    ArmModel model_;
    int generation_;
    ArmHost& host_;
    Kinematics kinematics_;
    Trajectory trajectory_;
    EventLoop::TimerId arrival_timer_ = 0;
    std::optional<SimTime> placed_at_;
    const char* placed_status_ = "idle";
    std::map<TimerKey, EventLoop::TimerId> timers_;
    TimerKey next_timer_ = 1;
};

// Conversions between wire integers and physical values.
namespace wire {
int round(double value);
// Joint angles, degrees <-> thousandths.
WireJoints joints(const Joints& q, int dof);
Joints degrees(const WireJoints& w);
// Poses, Pose <-> [x, y, z] micrometres, [rx, ry, rz] thousandths of a radian.
Wire6 pose(const Pose& p);
Pose pose(const Wire6& w);
Coord coord(const Wire6& w);
}  // namespace wire

}  // namespace sim

#endif
