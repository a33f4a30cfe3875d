// Request members and steps that the moving commands (motion, steps, jogs) share.
#ifndef QM_SIM_MOVE_ARGS_H
#define QM_SIM_MOVE_ARGS_H

#include <optional>
#include <vector>

#include "command.h"

namespace sim {

// "v": a percentage of the arm's speed limits, 1 to 100.
int percent(const Args& args);
// "trajectory_connect": 0, or 1 to join the next move.
int trajectory_connect(const Args& args);
// dof joint angles in thousandths of a degree.
Joints joint_target(const Args& args, const char* key, int dof);
// A pose as [x, y, z] micrometres and [rx, ry, rz] thousandths of a radian.
Pose pose_target(const Args& args, const char* key);
// "pose_quat" [x, y, z, w, qx, qy, qz] when present, else "pose".
Pose streamed_pose(const Args& args);

// The joints of a streamed target: "joint", within the limits, or a pose ("pose_quat" or
// "pose") solved near the present joints. None after a refusal, also when the arm is held.
std::optional<Joints> streamed_target(Call& call);

// Where the next move starts: at the end of the queued ones.
struct Start {
    Joints joints;
    Pose pose;
};
Start planning_start(const Arm& arm);

// What get_arm_current_trajectory shows while a move runs: its joint or pose target.
std::vector<int> shown_joints(const Joints& target, int dof);
std::vector<int> shown_pose(const Pose& target);

// A replay of recorded joint points, one every kSamplePeriod, reported as "re_trajectory".
constexpr Seconds kSamplePeriod{0.02};
constexpr int kOriginSpeed = 20;  // percent: how fast an arm goes to a replay's first point
Segment replay_of(const std::vector<Joints>& points);

// Queues the plan, or refuses with the reason it cannot run.
void queue_move(Call& call, Plan plan, int connect, std::vector<int> shown);
// Starts the jog, or refuses with the reason it cannot run.
void start_jog(Call& call, Plan plan);

}  // namespace sim

#endif
