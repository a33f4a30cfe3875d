// Euler angles, quaternions and matrices: convention, singular branches and wrap rules.
#include <gtest/gtest.h>

#include <random>

#include "qman_mathfuncs.h"

namespace {

constexpr float kPi = 3.14159265358979f;

void expect_rotation_near(const Matrix& a, const Matrix& b, float tol) {
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) EXPECT_NEAR(a.data[i][j], b.data[i][j], tol) << i << "," << j;
}

TEST(EulerConvention, MatrixIsRzRyRxOfFixedAxesAndTheQuaternionAgrees) {
    const Euler e{0.3f, -0.5f, 1.2f};
    const Matrix m = euler_to_matrix(e);
    EXPECT_TRUE(m.irow == 3 && m.iline == 3);
    expect_rotation_near(m, matrix_m(rotz(e.rz), matrix_m(roty(e.ry), rotx(e.rx))), 1e-6f);
    expect_rotation_near(quat_to_matrix(euler_to_quat(e)), m, 1e-6f);
}

TEST(EulerRoundTrip, MatrixAndQuaternionAndBackAwayFromTheSingularity) {
    std::mt19937 rng(5);
    std::uniform_real_distribution<float> roll_yaw(-3.1f, 3.1f);
    std::uniform_real_distribution<float> pitch(-1.5f, 1.5f);
    for (int n = 0; n < 1000; ++n) {
        const Euler e{roll_yaw(rng), pitch(rng), roll_yaw(rng)};
        for (const Euler& back : {matrix_to_euler(euler_to_matrix(e)), quat_to_euler(euler_to_quat(e))}) {
            ASSERT_NEAR(back.rx, e.rx, 2e-4f) << e.rx << " " << e.ry << " " << e.rz;
            ASSERT_NEAR(back.ry, e.ry, 2e-4f);
            ASSERT_NEAR(back.rz, e.rz, 2e-4f);
        }
        const Matrix r = euler_to_matrix(e);
        expect_rotation_near(quat_to_matrix(matrix_to_quat(r)), r, 2e-5f);
    }
}

TEST(EulerSingularity, PitchOfNinetyComesBackWithTheYawFoldedIntoRoll) {
    const Euler cases[][2] = {{{0.0f, kPi / 2, 0.0f}, {0.0f, kPi / 2, 0.0f}},
                              {{0.3f, kPi / 2, 0.2f}, {0.1f, kPi / 2, 0.0f}},
                              {{0.3f, -kPi / 2, 0.2f}, {0.5f, -kPi / 2, 0.0f}}};
    for (const auto& [in, out] : cases) {
        const Euler back = matrix_to_euler(euler_to_matrix(in));
        EXPECT_NEAR(back.rx, out.rx, 1e-5f) << in.rx << " " << in.ry;
        EXPECT_NEAR(back.ry, out.ry, 1e-6f) << in.rx << " " << in.ry;
        EXPECT_EQ(back.rz, 0.0f) << in.rx << " " << in.ry;
    }
}

TEST(EulerWrap, AnglesBelowMinus313AreLiftedByTwoPi) {
    const float cases[][2] = {{-3.14f, -3.14f + 2 * kPi},
                              {-3.135f, -3.135f + 2 * kPi},
                              {-3.12f, -3.12f},
                              {-kPi, kPi},
                              {3.0f, 3.0f}};
    for (const auto& [in, out] : cases) {
        const Euler back = matrix_to_euler(euler_to_matrix(Euler{in, 0.0f, in}));
        EXPECT_NEAR(back.rx, out, 1e-5f) << in;
        EXPECT_NEAR(back.rz, out, 1e-5f) << in;
    }
}

TEST(QuaternionToMatrix, ZeroGivesIdentityAndNonUnitIsNormalised) {
    expect_rotation_near(quat_to_matrix(Quat{0, 0, 0, 0}), unit_matrix(3), 0.0f);
    expect_rotation_near(quat_to_matrix(Quat{2, 0, 0, 0}), unit_matrix(3), 0.0f);
    expect_rotation_near(quat_to_matrix(Quat{1.6f, 0.4f, -0.8f, 0.6f}),
                         quat_to_matrix(Quat{0.8f, 0.2f, -0.4f, 0.3f}), 1e-6f);
}

TEST(MatrixToQuaternion, HalfTurnsTakeTheirAxissBranchAndWIsNotMadePositive) {
    const Quat qx = matrix_to_quat(rotx(kPi));  // branch 2
    EXPECT_NEAR(qx.w, 0.0f, 1e-6f);
    EXPECT_FLOAT_EQ(qx.x, 1.0f);
    EXPECT_NEAR(qx.y, 0.0f, 1e-6f);
    EXPECT_NEAR(qx.z, 0.0f, 1e-6f);
    EXPECT_FLOAT_EQ(matrix_to_quat(roty(kPi)).y, 1.0f);
    EXPECT_FLOAT_EQ(matrix_to_quat(rotz(kPi)).z, 1.0f);
    // A turn just past pi about x with a small y part lands in branch 2 with w < 0.
    const Matrix r = matrix_m(rotx(3.3f), roty(0.2f));
    const Quat q = matrix_to_quat(r);
    EXPECT_LT(q.w, 0.0f);
    expect_rotation_near(quat_to_matrix(q), r, 1e-5f);
}

TEST(PoseTransforms, TransformAndPoseCarryTheSamePositionAndRotation) {
    const Euler e{0.4f, 0.5f, -0.6f};
    const Matrix t = pose_euler_to_transformation_matrix(Pos{0.1f, -0.2f, 0.3f}, e);
    EXPECT_TRUE(t.irow == 4 && t.iline == 4);
    EXPECT_EQ(t.data[1][3], -0.2f);
    EXPECT_EQ(t.data[3][0], 0.0f);
    EXPECT_EQ(t.data[3][3], 1.0f);
    const Pose p = transformation_matrix_to_pose(t);
    EXPECT_EQ(p.position.x, 0.1f);
    EXPECT_NEAR(p.euler.ry, e.ry, 1e-5f);
    expect_rotation_near(pose_quat_to_transformation_matrix(p.position, p.quaternion), t, 1e-5f);
}

TEST(PoseTransforms, PoseToMatrixReadsTheEulerAnglesNotTheQuaternion) {
    Pose p{};
    p.position = Pos{1, 2, 3};
    p.euler = Euler{0.0f, 0.0f, kPi / 2};
    p.quaternion = Quat{1, 0, 0, 0};
    const Matrix t = algo_pose_to_matrix(p);
    EXPECT_NEAR(t.data[1][0], 1.0f, 1e-6f);
    EXPECT_EQ(t.data[2][3], 3.0f);
    EXPECT_NEAR(algo_matrix_to_pose(t).euler.rz, kPi / 2, 1e-6f);
}

}  // namespace
