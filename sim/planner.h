// Planning of moves: joint-space moves and Cartesian paths (lines, arcs, jogs along an axis)
// that are solved through the kinematics library sample by sample, with the arm's limits.
#ifndef QM_SIM_PLANNER_H
#define QM_SIM_PLANNER_H

#include <functional>
#include <optional>
#include <string>

#include "kinematics.h"
#include "motion.h"

namespace sim {

// Limits a plan must keep, in physical units.
struct MotionLimits {
    int dof = 6;
    Joints min_pos{}, max_pos{};  // degrees
    Joints speed{};               // degrees per second
    Joints acc{};                 // degrees per second squared
    double line_speed = 0.25;     // m/s
    double line_acc = 1.6;        // m/s^2
    double angular_speed = 0.6;   // rad/s
    double angular_acc = 4.0;     // rad/s^2
};

// A path, or why there is none.
struct Plan {
    std::optional<Segment> segment;
    std::string refusal;
};

// A Cartesian path in the work frame: the tool pose at progress s in [0, 1], with the
// path's length (m) and total turn (rad).
struct CartesianPath {
    std::function<Pose(double s)> pose_at;
    double length = 0.0;
    double turn = 0.0;
};

// Joint-space move at `percent` (1 to 100) of the joint speeds and accelerations.
Plan plan_joint_move(const MotionLimits& limits, const Joints& from, const Joints& to, int percent,
                     MoveKind kind);

// A Cartesian path from `from` (joints) solved sample by sample. A path that leaves the
// reachable space is refused, or with `truncate` (jogs) cut where it leaves.
Plan plan_cartesian(const MotionLimits& limits, const Kinematics& kinematics, const Joints& from,
                    const CartesianPath& path, int percent, MoveKind kind, bool truncate = false);

// Straight line with the orientation turned evenly (slerp).
CartesianPath line_path(const Pose& from, const Pose& to);
// Circle through from, via and to: the arc to `to`, or with loops > 0 that many full circles
// back to `from`. None when the three points are (nearly) on one line.
std::optional<CartesianPath> arc_path(const Pose& from, const Pose& via, const Pose& to, int loops);

// Whether every joint of `q` lies within the limits; the first offending joint (1-based) otherwise.
int joint_outside(const MotionLimits& limits, const Joints& q);

}  // namespace sim

#endif
