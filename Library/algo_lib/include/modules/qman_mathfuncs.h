#ifndef QMAN_MATHFUNCS_H
#define QMAN_MATHFUNCS_H

/* Matrix toolkit and orientation conversions. Single precision; a Matrix uses only its
 * leading irow x iline block, everything outside it is zero. Euler angles are fixed-axis
 * X-Y-Z (R = Rz*Ry*Rx), quaternions scalar first. */

#include "robot_define.h"

#ifdef __cplusplus
extern "C" {
#endif

/* 7x7 operand for Jacobians of seven-joint arms; same conventions as Matrix. */
typedef struct {
    int16_t irow;
    int16_t iline;
    float data[7][7];
} Matrix7;

/* irow x iline zero matrix (sizes up to 4). */
Matrix zero_matrix(int rows, int cols);
/* n x n identity (n up to 4). */
Matrix unit_matrix(int n);
/* a*b; a.irow x b.iline, inner size a.iline. */
Matrix matrix_m(Matrix a, Matrix b);
/* Transpose. */
Matrix matrix_t(Matrix a);
/* a+b over a's size. */
Matrix matrix_a(Matrix a, Matrix b);
/* a*k. */
Matrix matrix_m_num(Matrix a, float k);
/* Inverse of a square matrix, pseudo-inverse of a full-rank rectangular one; zero matrix when singular. */
Matrix matrix_inv(Matrix a);
/* Inverse of a square full-rank matrix (Gauss-Jordan); zero matrix when singular. */
Matrix matrix_inv_full_rank(Matrix a);
/* Inverse of a rigid 4x4 transform: [R^T, -R^T p]. */
Matrix matrix_inv_coordinate_system(Matrix t);

/* The same toolkit for sizes up to 7. */
Matrix7 zero_matrix_dim7(int rows, int cols);
Matrix7 unit_matrix_dim7(int n);
Matrix7 matrix_m_dim7(const Matrix7* a, const Matrix7* b);
Matrix7 matrix_t_dim7(const Matrix7* a);
Matrix7 matrix_a_dim7(const Matrix7* a, const Matrix7* b);
Matrix7 matrix_m_num_dim7(const Matrix7* a, float k);
Matrix7 matrix_inv_dim7(const Matrix7* a);
Matrix7 matrix_inv_full_rank_dim7(const Matrix7* a);

/* out = a x b. */
void cross(const float* a, const float* b, float* out);
/* atan2f that gives 0 when both arguments are (nearly) zero. */
float my_atan2f(float y, float x);
/* +1, -1, or 0 for exactly 0. */
float qm_sign(float x);

/* Elementary rotations (3x3 used). */
Matrix rotx(float angle);
Matrix roty(float angle);
Matrix rotz(float angle);
/* Rotation part of a transform (3x3 used). */
Matrix matrix_T2R(Matrix t);

/* Orientation conversions; matrices from an orientation alone are 3x3 with zero translation. */
Matrix euler_to_matrix(Euler e);
Quat euler_to_quat(Euler e);
/* Need not be normalised; a zero quaternion gives the identity. */
Matrix quat_to_matrix(Quat q);
Euler quat_to_euler(Quat q);
/* Angles below -3.13 are wrapped by +2*pi; at |R20| > 0.999999 yaw is folded into roll. */
Euler matrix_to_euler(Matrix r);
/* Branch on the largest diagonal term; no sign normalisation of w. */
Quat matrix_to_quat(Matrix r);

/* 4x4 transforms of a pose. */
Matrix pose_euler_to_transformation_matrix(Pos p, Euler e);
Matrix pose_quat_to_transformation_matrix(Pos p, Quat q);
/* Position, quaternion and Euler angles of a transform. */
Pose transformation_matrix_to_pose(Matrix t);
/* Transform from the pose's position and Euler angles (its quaternion is ignored). */
Matrix algo_pose_to_matrix(Pose p);
/* As transformation_matrix_to_pose. */
Pose algo_matrix_to_pose(Matrix t);

#ifdef __cplusplus
}
#endif

#endif
