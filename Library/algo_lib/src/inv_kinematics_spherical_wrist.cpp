// Arms whose last three axes meet in one point (QM65, QML63 family): the wrist centre
// fixes joints 1 to 3 (shoulder left/right, elbow up/down), the orientation left over
// fixes joints 4 to 6 (wrist flip): up to 8 branches.
//
// Modified DH, alpha = [0, pi/2, 0, pi/2, -pi/2, pi/2]; the lengths are d1 = d[0], upper arm
// a2 = a[2], elbow offset a3 = a[3] (QML63 only), forearm d4 = d[3], flange d6 = d[5]. With
// A = a2 + a3*c3 + d4*s3 and B = a3*s3 - d4*c3 the wrist centre is
//   W = (0, 0, d1) + Rz(t1) * (c2*A - s2*B, 0, s2*A + c2*B),
// and the wrist rotation Rx(-pi/2) * R03^T * R = Rz(t4) * Ry(t5) * Rz(t6).

#include <cmath>
#include <initializer_list>

#include "inv_kinematics_internal.h"
#include "qman_inv_kinematics.h"

namespace algo::ik {
namespace {

struct SinCos {
    float s;
    float c;
};

// Joints 4 to 6 for the flange rotation r given joints 1 to 3 (q[0..2] mapped, j1 and j23
// their rotations); adds both wrist branches.
void add_wrist_branches(const SolveInput& in, const float r[3][3], SinCos j1, SinCos j23, float q[ROBOT_DOF],
                        float theta4_ref, IkSolve& out) {
    float n[3][3];
    for (int k = 0; k < 3; ++k) {
        const float u0 = j1.c * r[0][k] + j1.s * r[1][k];
        n[0][k] = j23.c * u0 + j23.s * r[2][k];
        n[1][k] = j1.s * r[0][k] - j1.c * r[1][k];
        n[2][k] = j23.s * u0 - j23.c * r[2][k];
    }
    for (const auto& w : zyz_angles(n, theta4_ref).angles) {
        for (int j = 0; j < 3; ++j) q[3 + j] = joint_value(in, 3 + j, w[j]);
        add_branch(q, out);
    }
}

// Branches of an arm with elbow offset a3 (zero for QM65, whose table does not use a[3]).
int solve_with_elbow_offset(const SolveInput& in, const Matrix& flange, float a3, IkSolve& out) {
    begin_solutions(in, out);
    const float d1 = in.dh.d[0], a2 = in.dh.a[2], d4 = in.dh.d[3], d6 = in.dh.d[5];
    float theta_ref[ROBOT_DOF];
    for (int j = 0; j < ROBOT_DOF; ++j) theta_ref[j] = in.q_ref[j] + in.dh.offset[j];

    float r[3][3];
    for (int i = 0; i < 3; ++i) {
        for (int k = 0; k < 3; ++k) r[i][k] = flange.data[i][k];
    }
    const float wx = flange.data[0][3] - d6 * r[0][2];
    const float wy = flange.data[1][3] - d6 * r[1][2];
    const float wz = flange.data[2][3] - d6 * r[2][2];

    // Joint 1 turns the arm plane through the wrist centre, facing it or turned away.
    const float reach = std::sqrt(wx * wx + wy * wy);
    float t1;
    SinCos j1;
    if (reach < kAxisEps) {
        t1 = theta_ref[0];  // wrist centre on axis 1: joint 1 is free
        j1 = {std::sin(t1), std::cos(t1)};
    } else {
        t1 = fast_atan2(wy, wx);
        j1 = {wy / reach, wx / reach};
    }

    // Joint 3 from the distance between shoulder and wrist centre: t3 = beta -+ gamma.
    const float ell = std::sqrt(a3 * a3 + d4 * d4);
    const SinCos beta = {d4 / ell, a3 / ell};
    const float y = wz - d1;
    float cg;
    if (!triangle_cosine(std::sqrt(reach * reach + y * y), a2, ell, cg, in.reach_tol)) return 0;
    const float sg = std::sqrt(1.0f - cg * cg);
    const float gamma = fast_atan2(sg, cg);
    const float beta_angle = fast_atan2(d4, a3);

    float q[ROBOT_DOF] = {};
    for (const float side : {1.0f, -1.0f}) {
        const float x = side * reach;
        const SinCos j1_side = {side * j1.s, side * j1.c};
        q[0] = joint_value(in, 0, side > 0.0f ? t1 : t1 + kPi);
        for (const float turn : {1.0f, -1.0f}) {
            const SinCos j3 = {beta.s * cg + turn * beta.c * sg, beta.c * cg - turn * beta.s * sg};
            const float a = a2 + a3 * j3.c + d4 * j3.s;
            const float b = a3 * j3.s - d4 * j3.c;
            float t2;
            SinCos j2;
            const float sy = a * y - b * x;
            const float cx = a * x + b * y;
            const float norm = std::sqrt(sy * sy + cx * cx);
            if (norm < kAxisEps) {
                t2 = theta_ref[1];  // wrist centre on axis 2: joint 2 is free
                j2 = {std::sin(t2), std::cos(t2)};
            } else {
                t2 = fast_atan2(sy, cx);
                j2 = {sy / norm, cx / norm};
            }
            const SinCos j23 = {j2.s * j3.c + j2.c * j3.s, j2.c * j3.c - j2.s * j3.s};
            q[1] = joint_value(in, 1, t2);
            q[2] = joint_value(in, 2, beta_angle + turn * gamma);
            add_wrist_branches(in, r, j1_side, j23, q, theta_ref[3], out);
        }
    }
    return out.num;
}

}  // namespace

int solve_spherical_wrist(const SolveInput& in, const Matrix& flange, IkSolve& out) {
    return solve_with_elbow_offset(in, flange, 0.0f, out);
}

int solve_spherical_wrist_offset(const SolveInput& in, const Matrix& flange, IkSolve& out) {
    return solve_with_elbow_offset(in, flange, in.dh.a[3], out);
}

}  // namespace algo::ik

using namespace algo::ik;

extern "C" {

int ikine_qm6_solver(const DH* dh, const Matrix* flange, const float* q_ref, IkSolve* solve) {
    return solve_with_table(model_solver(QM65), dh, flange, q_ref, solve);
}

int ikine_qml6II_solver(const DH* dh, const Matrix* flange, const float* q_ref, IkSolve* solve) {
    return solve_with_table(model_solver(QML63II), dh, flange, q_ref, solve);
}

int inverse_kinematics_qm6(const Matrix* flange, const float* q_ref, float* q_out) {
    return solve_flange_target(model_solver(QM65), flange, q_ref, q_out);
}

int inverse_kinematics_qml63_2(const Matrix* flange, const float* q_ref, float* q_out) {
    return solve_flange_target(model_solver(QML63II), flange, q_ref, q_out);
}

int inverse_kinematics_qml63_3(const Matrix* flange, const float* q_ref, float* q_out) {
    return solve_flange_target(model_solver(QML63III), flange, q_ref, q_out);
}

}  // extern "C"
