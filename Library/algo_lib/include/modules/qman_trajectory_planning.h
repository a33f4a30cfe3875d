#ifndef QMAN_TRAJECTORY_PLANNING_H
#define QMAN_TRAJECTORY_PLANNING_H

/* Cartesian step moves: target poses for small steps along or about the axes of the base,
 * work or tool frame. They only compute poses. Joint inputs are degrees (the model's joints
 * of a ROBOT_DOF array), lengths m, pose angles rad. Poses of the current joints are tool
 * poses in the work frame, as forward_kinematics gives them. */

#include "robot_define.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Frame of a pose step. */
#define STEP_FRAME_WORK 0
#define STEP_FRAME_TOOL 1

/* Tool pose after a translation by (dx, dy, dz) along the tool's own axes. */
Pose algo_cartesian_tool(const float* curr_joint, float dx, float dy, float dz);
/* Tool pose after turning rotate_angle degrees about axis rotate_axis (1 X, 2 Y, 3 Z; any
 * other value turns about nothing) of the frame whose orientation choose_axis gives (its
 * Euler angles are read). The tool point stays where it is: only the orientation turns. */
Pose algo_rotate_move(const float* curr_joint, int rotate_axis, float rotate_angle, Pose choose_axis);
/* poseCurrent stepped by delta (dx, dy, dz in m, then rx, ry, rz in rad) in frame mode
 * STEP_FRAME_WORK or STEP_FRAME_TOOL; an all-zero pose for any other mode. */
Pose algo_pose_move(Pose poseCurrent, const float* delta, int frameMode);

/* Position part of a pose step: the pose with its position moved per frame mode (the
 * orientation is carried over); an all-zero pose for any other mode. */
Pose dPosMove(Pose pose, const float* delta, int frameMode);
/* Adds (dx, dy, dz) to the position, in the frame the pose is given in. */
Pose dPosMoveWork(Pose pose, const float* delta);
/* Moves by (dx, dy, dz) along the pose's own axes; orientation rebuilt from its Euler angles. */
Pose dPosMoveTool(Pose pose, const float* delta);

/* Orientation part of a pose step: the pose's Euler angles turned by the step's three angles
 * (rx, ry, rz) = the rotation Rz*Ry*Rx, taken about the work axes (pre-multiplied) or about
 * the tool's axes (post-multiplied); all zero for any other mode. */
Euler rotateMove(Pose pose, const float* delta_rot, int frameMode);
/* current turned by angle (rad) about axis (a vector in the frame whose Euler angles are
 * frame), by the Rodrigues formula; a zero axis leaves the orientation. */
Euler Rodrigues_rotate_simplify(Euler current, Euler frame, const VEC3 axis, float angle);
/* current turned by angle (rad) about axis given in its own (tool) frame. */
Euler Rodrigues_rotate_simplify_tool(Euler current, const VEC3 axis, float angle);

#ifdef __cplusplus
}
#endif

#endif
