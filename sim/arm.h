// One simulated arm with its controller's state: joints and motion in simulated time,
// limits, frames, realtime push configuration. Values the controller receives are kept in
// the units they travel in, so a value written reads back exactly.
#ifndef QM_SIM_ARM_H
#define QM_SIM_ARM_H

#include <array>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "arm_model.h"
#include "event_loop.h"
#include "kinematics.h"
#include "motion.h"
#include "options.h"
#include "planner.h"

namespace sim {

using WireJoints = std::array<int, kMaxJoints>;
using Wire6 = std::array<int, 6>;  // x, y, z micrometres; rx, ry, rz thousandths of a radian

struct Frame {
    std::string name;
    Wire6 pose{};
    int payload = 0;              // thousandths of a kilogram
    std::array<int, 3> centre{};  // centre of mass of the payload, micrometres
};

struct EnvelopeBall {
    std::string name;
    int radius = 0, x = 0, y = 0, z = 0;  // thousandths of a metre
};

// Joint limits as the wire carries them: positions in thousandths of a degree, speeds and
// accelerations in thousandths of a sixth (degrees per second / 6).
struct JointLimitSet {
    WireJoints min_pos{}, max_pos{}, max_speed{}, max_acc{};
};

struct PushConfig {
    bool enable = true;
    int cycle_ms = 10;
    int port = 8089;
    std::string ip = "127.0.0.1";
    int force_coordinate = 0;
    std::map<std::string, bool> custom;  // optional sections by their key
};

// Everything the command families read and change besides the motion.
struct ArmState {
    JointLimitSet limits;        // software limits, what moves are checked against
    JointLimitSet drive_limits;  // the drives' own, only stored
    std::array<bool, kMaxJoints> enabled{};
    std::array<int, kMaxJoints> err_flags{};
    std::vector<int> errors;  // the arm's error codes, none while it is well
    int line_speed = 250, line_acc = 1600, angular_speed = 600, angular_acc = 4000;  // thousandths
    int collision_stage = 0;
    int teach_frame = 0;  // 0 work frame, 1 tool frame
    WireJoints init_pose{};
    std::array<int, 3> install{};  // whole degrees about X, Y, Z

    std::vector<Frame> tools;  // the first is the flange itself and cannot go
    std::vector<Frame> works;  // the first is the base itself and cannot go
    std::string tool = "Arm_Tip";
    std::string work = "World";
    std::map<int, Pose> tool_points;                         // taught flange poses by point number
    std::map<std::string, std::map<int, Pose>> work_points;  // taught tool poses by frame and point
    std::map<std::string, std::vector<EnvelopeBall>> envelopes;

    PushConfig push;
};

// What an arm needs from the simulator around it.
class ArmHost {
public:
    virtual ~ArmHost() = default;
    // Sends a line to every client of arm `arm`.
    virtual void broadcast(int arm, const std::string& line) = 0;
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
    std::string move(Plan plan, int trajectory_connect, std::vector<int> reported);
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
    // Pass-through: the arm is at `q` at once.
    void place(const Joints& q, bool by_pose);
    // Why a move cannot start now, or empty.
    std::string motion_blocked() const;

    // ---- frames and the settings kinematics depends on ----
    Frame* find_tool(const std::string& name);
    Frame* find_work(const std::string& name);
    // Loads the current frames, limits and installation into the kinematics.
    void reconfigure();

    ArmState state;

private:
    void rearm();
    void report(const Segment& segment, bool arrived);

    int index_;
    ArmModel model_;
    int generation_;
    ArmHost& host_;
    Kinematics kinematics_;
    Trajectory trajectory_;
    EventLoop::TimerId arrival_timer_ = 0;
    std::optional<SimTime> placed_at_;
    bool placed_by_pose_ = false;
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
