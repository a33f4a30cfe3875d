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

// Joints 1 to 3 of one arm configuration (q mapped, j1 and j23 their rotations).
struct Arm {
    float q[3];
    SinCos j1;
    SinCos j23;
};

// The arm configurations of a flange target (shoulder side, then elbow turn) and what the
// wrist needs besides.
struct Arms {
    Arm arm[4];
    float r[3][3];
    float theta4_ref;
};

// Joints 4 to 6 of both wrist branches for arm's configuration, mapped.
void wrist_joints(const SolveInput& in, const Arms& arms, const Arm& arm, float w[2][3]) {
    const auto& r = arms.r;
    const SinCos j1 = arm.j1, j23 = arm.j23;
    float n[3][3];
    for (int k = 0; k < 3; ++k) {
        const float u0 = j1.c * r[0][k] + j1.s * r[1][k];
        n[0][k] = j23.c * u0 + j23.s * r[2][k];
        n[1][k] = j1.s * r[0][k] - j1.c * r[1][k];
        n[2][k] = j23.s * u0 - j23.c * r[2][k];
    }
    const ZyzBranches z = zyz_angles(n, arms.theta4_ref);
    for (int b = 0; b < 2; ++b) {
        for (int j = 0; j < 3; ++j) w[b][j] = joint_value(in, 3 + j, z.angles[b][j]);
    }
}

// The four arm configurations of an arm with elbow offset a3 (zero for QM65, whose table does
// not use a[3]); false when the wrist centre is out of reach.
bool arm_configurations(const SolveInput& in, const Matrix& flange, float a3, Arms& arms) {
    const float d1 = in.dh.d[0], a2 = in.dh.a[2], d4 = in.dh.d[3], d6 = in.dh.d[5];
    const float theta1_ref = in.q_ref[0] + in.dh.offset[0];
    const float theta2_ref = in.q_ref[1] + in.dh.offset[1];
    arms.theta4_ref = in.q_ref[3] + in.dh.offset[3];

    auto& r = arms.r;
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
        t1 = theta1_ref;  // wrist centre on axis 1: joint 1 is free
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
    if (!triangle_cosine(std::sqrt(reach * reach + y * y), a2, ell, cg, in.reach_tol)) return false;
    const float sg = std::sqrt(1.0f - cg * cg);
    const float gamma = fast_atan2(sg, cg);
    const float beta_angle = fast_atan2(d4, a3);

    Arm* arm = arms.arm;
    for (const float side : {1.0f, -1.0f}) {
        const float x = side * reach;
        const SinCos j1_side = {side * j1.s, side * j1.c};
        const float q0 = joint_value(in, 0, side > 0.0f ? t1 : t1 + kPi);
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
                t2 = theta2_ref;  // wrist centre on axis 2: joint 2 is free
                j2 = {std::sin(t2), std::cos(t2)};
            } else {
                t2 = fast_atan2(sy, cx);
                j2 = {sy / norm, cx / norm};
            }
            arm->j1 = j1_side;
            arm->j23 = {j2.s * j3.c + j2.c * j3.s, j2.c * j3.c - j2.s * j3.s};
            arm->q[0] = q0;
            arm->q[1] = joint_value(in, 1, t2);
            arm->q[2] = joint_value(in, 2, beta_angle + turn * gamma);
            ++arm;
        }
    }
    return true;
}

int solve_with_elbow_offset(const SolveInput& in, const Matrix& flange, float a3, IkSolve& out) {
    begin_solutions(in, out);
    Arms arms;
    if (!arm_configurations(in, flange, a3, arms)) return 0;
    float q[ROBOT_DOF] = {};
    for (const Arm& arm : arms.arm) {
        float w[2][3];
        wrist_joints(in, arms, arm, w);
        for (const auto& wrist : w) {
            for (int j = 0; j < 3; ++j) {
                q[j] = arm.q[j];
                q[3 + j] = wrist[j];
            }
            add_branch(q, out);
        }
    }
    return out.num;
}

// The branch solve_with_elbow_offset and the selection would choose, without the wrists of
// the arm configurations whose first three joints alone already cost more than a branch found.
int nearest_with_elbow_offset(const SolveInput& in, const Matrix& flange, float a3, float* q_out) {
    Arms arms;
    if (!arm_configurations(in, flange, a3, arms)) return IKINE_FAILED;
    NearestBranch nearest(in);
    int order[4];
    double lead[4];
    int count = 0;
    for (int a = 0; a < 4; ++a) {
        if (!joints_within_limits(arms.arm[a].q, 0, 3, in.limits)) continue;
        const double cost = nearest.cost(arms.arm[a].q, 0, 3, 0.0);
        // Cheapest first, ties in branch order.
        int k = count++;
        for (; k > 0 && lead[k - 1] > cost; --k) {
            lead[k] = lead[k - 1];
            order[k] = order[k - 1];
        }
        lead[k] = cost;
        order[k] = a;
    }
    for (int k = 0; k < count && nearest.could_take(lead[k]); ++k) {
        const Arm& arm = arms.arm[order[k]];
        float w[2][3];
        wrist_joints(in, arms, arm, w);
        for (int b = 0; b < 2; ++b) {
            const float q[ROBOT_DOF] = {arm.q[0], arm.q[1], arm.q[2], w[b][0], w[b][1], w[b][2]};
            if (joints_within_limits(q, 3, 6, in.limits)) nearest.offer(2 * order[k] + b, q, nearest.cost(q, 3, 6, lead[k]));
        }
    }
    return nearest.result(q_out);
}

}  // namespace

int solve_spherical_wrist(const SolveInput& in, const Matrix& flange, IkSolve& out) {
    return solve_with_elbow_offset(in, flange, 0.0f, out);
}

int solve_spherical_wrist_offset(const SolveInput& in, const Matrix& flange, IkSolve& out) {
    return solve_with_elbow_offset(in, flange, in.dh.a[3], out);
}

int nearest_spherical_wrist(const SolveInput& in, const Matrix& flange, float* q_out) {
    return nearest_with_elbow_offset(in, flange, 0.0f, q_out);
}

int nearest_spherical_wrist_offset(const SolveInput& in, const Matrix& flange, float* q_out) {
    return nearest_with_elbow_offset(in, flange, in.dh.a[3], q_out);
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
