#ifndef QMAN_KINEMATICS_H
#define QMAN_KINEMATICS_H

/* Forward kinematics. Joint arrays hold ROBOT_DOF floats in rad, of which the model's
 * joints are read; theta_i = q[i] + dh->offset[i]. Lengths in m. The per-model routines
 * take the DH table explicitly (copy it with libalgo_get_dh_value); the pose variants
 * read table, frames and installation from the system data. */

#include "robot_define.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Link i (0-based), modified convention: Rx(alpha[i])*Tx(a[i])*Rz(theta_i)*Tz(d[i]). */
Matrix kin_get_MDH_Ti(int i, const DH* dh, const float* q);
/* Link i (0-based), standard convention: Rz(theta_i)*Tz(d[i])*Tx(a[i])*Rx(alpha[i]). */
Matrix kin_get_SDH_Ti(int i, const DH* dh, const float* q);
/* Product of the first dof modified-convention links (the UNIVERSAL model's chain). */
Matrix kin_universal_kinematics_Tn(const DH* dh, const float* q, int dof);

/* Closed-form flange transforms, base to flange, for tables of the model's nominal structure:
 * they read only the lengths and offsets the model's table sets and take its twists as the
 * nominal right angles. */
Matrix forward_kinematics_qm65(const DH* dh, const float* q);    /* QM65, QML63I */
Matrix forward_kinematics_qm75(const DH* dh, const float* q);    /* QM75, standard convention */
Matrix forward_kinematics_qml63_2(const DH* dh, const float* q); /* QML63II, QML63IV */
Matrix forward_kinematics_qml63_3(const DH* dh, const float* q); /* QML63III */
Matrix forward_kinematics_lux6(const DH* dh, const float* q);    /* LUX65, LUX62, LUX63 */
Matrix forward_kinematics_tav7(const DH* dh, const float* q);    /* TAV72, TAV72II */

/* Flange transform of robot_type's routine; UNIVERSAL takes the 7-link modified product,
 * unknown types the QM65 routine. A table off the model's nominal structure (a calibrated one
 * with other lengths or twists) takes the general product of its links instead, so every entry
 * counts. The pose variants below dispatch the same way. */
Matrix forward_kinematics_model(int robot_type, const DH* dh, const float* q);

/* Tool point in the work frame: W*I*F*t. Intended quirk: UNIVERSAL and unknown types use the QM65 routine here. */
Pos forward_kinematics_pos(const float* q);
/* As forward_kinematics_pos, with the calibration errors added to d, a, alpha and theta (general product). */
Pos forward_kinematics_pos_calibration(const float* q);
/* Tool pose in the work frame, W*I*F*T. inverse_kinematics takes its target without W, so with a
 * work frame set the two do not round-trip; near +-90 degrees pitch the Euler angles of the pose
 * lose up to 3e-3 rad, so round trips there should go through the quaternion. */
Pose forward_kinematics(const float* q);
/* forward_kinematics for joint angles in degrees, the public calls' unit, converted on the way in. */
Pose forward_kinematics_degrees(const float* q);
/* Flange transform in the robot's base frame, F (no installation, no frames). */
Matrix forward_kinematics_e(const float* q);
/* Flange pose in the work frame, W*I*F. */
Pose forward_kinematics_world_to_flange(const float* q);
/* Tool pose in the installation-rotated base frame, I*F*T (no work frame). */
Pose forward_kinematics_rotate(const float* q);
/* Flange pose in the installation-rotated base frame, I*F. */
Pose forward_kinematics_rotate_flange(const float* q);

#ifdef __cplusplus
}
#endif

#endif
