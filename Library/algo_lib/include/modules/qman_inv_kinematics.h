#ifndef QMAN_INV_KINEMATICS_H
#define QMAN_INV_KINEMATICS_H

/* Inverse kinematics. Joint arrays hold ROBOT_DOF floats in rad, of which the model's
 * joints are used; lengths in m. Geometry, limits, tool frame and installation come from
 * the system data at each call. Every solution branch is mapped to the turn nearest the
 * reference joint within that joint's limits (find_nearest_joint). Not thread-safe: the
 * seven-joint search settings are process-wide, like the system data.
 *
 * A table off the model's nominal structure (a calibrated one with other lengths or twists)
 * is solved in closed form on the nearest nominal table; each branch, and the reference
 * itself, is then refined on the real table until it reproduces the target within 1e-6 m
 * and 1e-6 rad, and a branch that does not get there is dropped (IKINE_FAILED when none is
 * left). The solution reached from the reference takes the place of the branch farthest from
 * it when it is not among the eight already. */

#include "robot_define.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Result codes IKINE_SUCCESSFUL 0, IKINE_FAILED -1 (out of reach: no branch), IKINE_LIMITED -2
 * (branches exist, none within the joint limits), IKINE_OVERSPEED -3, IKINE_UNKNOWN_TYPE -4
 * (no solver for the robot type) are defined in constant_define.h. */

/* ---- Common frame ---- */

/* Joints reaching the tool pose target (base frame; form USE_EULER or USE_QUAT picks the
 * orientation read) nearest q_ref within the limits. q_out is written on success only.
 * Intended: the work frame is not removed, although forward_kinematics applies it; near +-90
 * degrees pitch pass USE_QUAT, as the Euler angles there lose up to 3e-3 rad.
 * Result IKINE_SUCCESSFUL, IKINE_FAILED, IKINE_LIMITED or IKINE_UNKNOWN_TYPE. No speed check:
 * callers at the control rate use joint_overspeed_judgment on the result. */
int inverse_kinematics(const float* q_ref, const Pose* target, float* q_out, int form);
/* Every branch of the model's solver for target, unfiltered by the limits (turns mapped as
 * above); seven-joint models give the branches at the arm angle the search settled on.
 * solve->result is true when num > 0. Result as inverse_kinematics, never IKINE_LIMITED. */
int inverse_kinematics_all(IkSolve* solve, const float* q_ref, const Pose* target, int form);
/* 4x4 transform of a pose from its position and, per form, its Euler angles or quaternion
 * (anything other than USE_QUAT reads the Euler angles). */
Matrix calc_Tbase2tool_from_Pose(const Pose* pose, int form);
/* Flange target of a tool pose: inverse(installation) * T * inverse(tool). */
Matrix calc_Tbase2flange_from_Pose(const Pose* pose, int form);

/* ---- Selection and checks ---- */

/* Index of the solution with the smallest weighted squared distance to solve->q_ref that is
 * within the position limits (ties keep the earlier one), or -1. weights: one per joint. */
int ikine_select_ik_solve(const float* weights, const IkSolve* solve);
/* Shifts *angle by a whole number of turns (-2..+2) to the value nearest ref inside
 * [min - tol, max + tol]; 0 when one was found, -1 (angle unchanged) when none lies inside. */
int find_nearest_joint(float ref, float* angle, float tol, float min, float max);
/* 0 when every joint of the model lies within [minimum, maximum], else IKINE_LIMITED. */
int ikine_check_joint_position_limit(const float* q);
/* 0 when no joint moves from q_prev to q_new by more than dt * its maximum velocity,
 * else IKINE_OVERSPEED. dt in s. */
int ikine_check_joint_velocity_limit(const float* q_new, const float* q_prev, float dt);
/* 0 when no joint moves by more than its maximum velocity * control period * factor
 * (a negative factor counts as 0), else IKINE_OVERSPEED. */
int joint_overspeed_judgment(const float* q_new, const float* q_prev, float factor);

/* ---- Per-model solvers ----
 * The ikine_*_solver functions fill solve with every branch for the flange target
 * (base to flange transform, installation and tool already removed) using the DH table dh;
 * they return IKINE_SUCCESSFUL when at least one branch exists, else IKINE_FAILED.
 * The inverse_kinematics_<model> functions solve the flange target with the table in use
 * and write the branch nearest q_ref within the limits to q_out (result as
 * inverse_kinematics). Singular configurations take the reference's value for the joint
 * that the target leaves free. */

/* QM65 and QML63I: spherical wrist. */
int ikine_qm6_solver(const DH* dh, const Matrix* flange, const float* q_ref, IkSolve* solve);
int inverse_kinematics_qm6(const Matrix* flange, const float* q_ref, float* q_out);
/* QML63II and QML63IV: spherical wrist, elbow offset a[3]. */
int ikine_qml6II_solver(const DH* dh, const Matrix* flange, const float* q_ref, IkSolve* solve);
int inverse_kinematics_qml63_2(const Matrix* flange, const float* q_ref, float* q_out);
/* QML63III: spherical wrist, elbow offset a[3]. */
int inverse_kinematics_qml63_3(const Matrix* flange, const float* q_ref, float* q_out);
/* LUX65, LUX62, LUX63: axes 2, 3 and 4 parallel, offset wrist. */
int ikine_lux6_solver(const DH* dh, const Matrix* flange, const float* q_ref, IkSolve* solve);
int inverse_kinematics_lux6(const Matrix* flange, const float* q_ref, float* q_out);

/* ---- Seven-joint arms (QM75, TAV72, TAV72II) ----
 * Both families are shoulder-elbow-wrist arms; the redundancy is the arm angle: the
 * rotation of the shoulder-elbow-wrist plane about the shoulder-wrist line, measured from
 * the plane in which joint 3 is zero. The solvers return the branch nearest the reference
 * within the limits over the arm angles they try: the reference's own (near the shoulder or
 * wrist singularity also the nearby ones that keep joint 1 or 5 at the reference's value, or
 * share the rest between joints 1 and 3, or 5 and 7), and, unless the search settles there
 * (see the search settings), the same singular arm angles anywhere within +-range and a grid
 * of Q_STEP_MIN steps outward on both sides. */

/* QM75. */
int inverse_kinematics_qm_75(const Matrix* flange, const float* q_ref, float* q_out);
/* TAV72, TAV72II. */
int inverse_kinematics_tav7(const Matrix* flange, const float* q_ref, float* q_out);
/* Arm angle (rad) of the seven-joint configuration q with the table in use. */
float calculate_arm_angle_from_config_qm75(const float* q);
/* Joints reaching the tool pose target (base frame, Euler angles read) at exactly the given
 * arm angle (rad), the branch nearest q_ref within the limits; no search. Result as
 * inverse_kinematics; IKINE_UNKNOWN_TYPE unless a seven-joint model is loaded. */
int inverse_kinematics_qm75_for_arm_angle(const float* q_ref, const Pose* target, float arm_angle, float* q_solve);

/* Search strategy: 0 settles at the reference's arm angle when a branch there within the
 * limits lies within 0.35 rad (20 degrees) of the reference in every joint; otherwise it goes
 * on outward only while an arm angle left could still hold a nearer branch (a lower bound from
 * how far the arm angle turns the shoulder and wrist), so a branch just beyond a limit never
 * hands the answer to a far one. 1 walks the whole range. Both return the nearest branch within
 * the limits over the arm angles tried. Other values are ignored. Default 0. */
void ikine_set_7dof_solver_search_strategy(int strategy);
int ikine_get_7dof_solver_search_strategy(void);
/* Half-width (rad) of the arm-angle search around the reference's arm angle, clamped to
 * [Q_STEP_MIN, Q_STEP_MAX]. Default Q_STEP_MAX. */
void ikine_set_solution_range_qm75(float range);
float ikine_get_solution_range_qm75(void);

#ifdef __cplusplus
}
#endif

#endif
