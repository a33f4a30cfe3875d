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

// The angle of (x, y), whose length is given, with its sine and cosine; free_angle when the point
// lies on the axis.
float direction(float y, float x, float length, float free_angle, SinCos& sc) {
    if (length < kAxisEps) {
        sc = {std::sin(free_angle), std::cos(free_angle)};
        return free_angle;
    }
    sc = {y / length, x / length};
    return fast_atan2(y, x);
}

// Joints 1 to 3 of one arm configuration (q mapped, j1 and j23 their rotations).
struct Arm {
    float q[3];
    SinCos j1;
    SinCos j23;
};

// What the arm configurations of a flange target share: joint 1 (facing the wrist centre or
// turned away), the elbow triangle, and the flange rotation the wrist takes up.
class Arms {
public:
    // False when the wrist centre is out of reach; a3 is the elbow offset (zero for QM65,
    // whose table does not use a[3]).
    bool reach(const SolveInput& in, const Matrix& flange, float a3) {
        const float d1 = in.dh.d[0], a2 = in.dh.a[2], d4 = in.dh.d[3], d6 = in.dh.d[5];
        a2_ = a2;
        a3_ = a3;
        d4_ = d4;
        for (int i = 0; i < 3; ++i) {
            for (int k = 0; k < 3; ++k) r_[i][k] = flange.data[i][k];
        }
        const float wx = flange.data[0][3] - d6 * r_[0][2];
        const float wy = flange.data[1][3] - d6 * r_[1][2];
        const float wz = flange.data[2][3] - d6 * r_[2][2];

        reach_ = std::sqrt(wx * wx + wy * wy);
        // Wrist centre on axis 1: joint 1 is free.
        t1_ = direction(wy, wx, reach_, in.q_ref[0] + in.dh.offset[0], j1_);

        // Joint 3 from the distance between shoulder and wrist centre: t3 = beta -+ gamma.
        const float ell = std::sqrt(a3 * a3 + d4 * d4);
        beta_ = {d4 / ell, a3 / ell};
        y_ = wz - d1;
        if (!triangle_cosine(std::sqrt(reach_ * reach_ + y_ * y_), a2, ell, cg_, in.reach_tol)) return false;
        sg_ = std::sqrt(1.0f - cg_ * cg_);
        gamma_ = fast_atan2(sg_, cg_);
        beta_angle_ = fast_atan2(d4, a3);
        return true;
    }

    // Joint 1 of a side (0 facing the wrist centre, 1 turned away), mapped.
    float joint1(const SolveInput& in, int side) const { return joint_value(in, 0, side == 0 ? t1_ : t1_ + kPi); }

    // The configuration of a side and an elbow turn (0 or 1), joint 1 given.
    Arm arm(const SolveInput& in, int side, int turn, float q0) const {
        const float sign = side == 0 ? 1.0f : -1.0f, bend = turn == 0 ? 1.0f : -1.0f;
        const float x = sign * reach_;
        const SinCos j3 = {beta_.s * cg_ + bend * beta_.c * sg_, beta_.c * cg_ - bend * beta_.s * sg_};
        const float a = a2_ + a3_ * j3.c + d4_ * j3.s;
        const float b = a3_ * j3.s - d4_ * j3.c;
        const float sy = a * y_ - b * x;
        const float cx = a * x + b * y_;
        // Wrist centre on axis 2: joint 2 is free.
        SinCos j2;
        const float t2 = direction(sy, cx, std::sqrt(sy * sy + cx * cx), in.q_ref[1] + in.dh.offset[1], j2);
        Arm arm;
        arm.j1 = {sign * j1_.s, sign * j1_.c};
        arm.j23 = {j2.s * j3.c + j2.c * j3.s, j2.c * j3.c - j2.s * j3.s};
        arm.q[0] = q0;
        arm.q[1] = joint_value(in, 1, t2);
        arm.q[2] = joint_value(in, 2, beta_angle_ + bend * gamma_);
        return arm;
    }

    // Joints 4 to 6 of both wrist branches of arm, mapped.
    void wrist(const SolveInput& in, const Arm& arm, float w[2][3]) const {
        const SinCos j1 = arm.j1, j23 = arm.j23;
        float n[3][3];
        for (int k = 0; k < 3; ++k) {
            const float u0 = j1.c * r_[0][k] + j1.s * r_[1][k];
            n[0][k] = j23.c * u0 + j23.s * r_[2][k];
            n[1][k] = j1.s * r_[0][k] - j1.c * r_[1][k];
            n[2][k] = j23.s * u0 - j23.c * r_[2][k];
        }
        const ZyzBranches z = zyz_angles(n, in.q_ref[3] + in.dh.offset[3]);
        for (int b = 0; b < 2; ++b) {
            for (int j = 0; j < 3; ++j) w[b][j] = joint_value(in, 3 + j, z.angles[b][j]);
        }
    }

private:
    float r_[3][3];
    float a2_, a3_, d4_;
    float reach_, y_, t1_;
    SinCos j1_;
    SinCos beta_;
    float cg_, sg_, gamma_, beta_angle_;
};

int solve_with_elbow_offset(const SolveInput& in, const Matrix& flange, float a3, IkSolve& out) {
    begin_solutions(in, out);
    Arms arms;
    if (!arms.reach(in, flange, a3)) return 0;
    float q[ROBOT_DOF] = {};
    for (int side = 0; side < 2; ++side) {
        const float q0 = arms.joint1(in, side);
        for (int turn = 0; turn < 2; ++turn) {
            const Arm arm = arms.arm(in, side, turn, q0);
            float w[2][3];
            arms.wrist(in, arm, w);
            for (const auto& wrist : w) {
                for (int j = 0; j < 3; ++j) {
                    q[j] = arm.q[j];
                    q[3 + j] = wrist[j];
                }
                add_branch(q, out);
            }
        }
    }
    return out.num;
}

// The branch solve_with_elbow_offset and the selection would choose, walked as a tree (side,
// elbow turn, wrist), cheaper subtrees first: a subtree whose first joints alone cost more than
// a branch found holds no nearer branch and is not worked out.
int nearest_with_elbow_offset(const SolveInput& in, const Matrix& flange, float a3, float* q_out) {
    Arms arms;
    if (!arms.reach(in, flange, a3)) return IKINE_FAILED;
    NearestBranch nearest(in);
    float q0[2];
    double lead0[2];
    for (int side = 0; side < 2; ++side) {
        q0[side] = arms.joint1(in, side);
        lead0[side] = joints_within_limits(q0 + side, 0, 1, in.limits) ? nearest.cost(q0 + side, 0, 1, 0.0) : INFINITY;
    }
    const int first_side = lead0[1] < lead0[0] ? 1 : 0;
    for (const int side : {first_side, 1 - first_side}) {
        if (!nearest.could_take(lead0[side])) break;
        Arm arm[2];
        double lead[2];
        for (int turn = 0; turn < 2; ++turn) {
            arm[turn] = arms.arm(in, side, turn, q0[side]);
            lead[turn] = joints_within_limits(arm[turn].q, 1, 3, in.limits) ? nearest.cost(arm[turn].q, 1, 3, lead0[side])
                                                                             : INFINITY;
        }
        const int first_turn = lead[1] < lead[0] ? 1 : 0;
        for (const int turn : {first_turn, 1 - first_turn}) {
            if (!nearest.could_take(lead[turn])) break;
            float w[2][3];
            arms.wrist(in, arm[turn], w);
            for (int b = 0; b < 2; ++b) {
                const float q[ROBOT_DOF] = {arm[turn].q[0], arm[turn].q[1], arm[turn].q[2], w[b][0], w[b][1], w[b][2]};
                if (joints_within_limits(q, 3, 6, in.limits))
                    nearest.offer(4 * side + 2 * turn + b, q, nearest.cost(q, 3, 6, lead[turn]));
            }
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
