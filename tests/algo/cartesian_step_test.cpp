// Cartesian step moves through the public functions, offline (NULL handle).
#include <gtest/gtest.h>

#include <array>
#include <cmath>

#include "algo_api.h"
#include "qm_interface.h"
#include "qman_trajectory_planning.h"

namespace {

using Joints = std::array<float, ARM_DOF>;

constexpr float kTol = 1e-5f;

using Rotation = std::array<std::array<float, 3>, 3>;

// Rotation of a public pose's Euler angles as a plain 3x3 array.
Rotation rotation_of(const qm_euler_t& e) {
    const qm_matrix_t m = qm_algo_euler2matrix(e);
    Rotation r{};
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) r[i][j] = m.data[i][j];
    return r;
}

Rotation product(const Rotation& a, const Rotation& b) {
    Rotation r{};
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            for (int k = 0; k < 3; ++k) r[i][j] += a[i][k] * b[k][j];
    return r;
}

void expect_rotation_near(const Rotation& got, const Rotation& expected) {
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) EXPECT_NEAR(got[i][j], expected[i][j], 1e-5f);
}

void expect_same_rotation(const qm_euler_t& a, const qm_euler_t& b, float tol = 1e-5f) {
    const auto ra = rotation_of(a);
    const auto rb = rotation_of(b);
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) EXPECT_NEAR(ra[i][j], rb[i][j], tol) << "element " << i << "," << j;
}

void expect_same_position(const qm_pose_t& a, const qm_pose_t& b, float tol = kTol) {
    EXPECT_NEAR(a.position.x, b.position.x, tol);
    EXPECT_NEAR(a.position.y, b.position.y, tol);
    EXPECT_NEAR(a.position.z, b.position.z, tol);
}

qm_pose_t pose(float x, float y, float z, float rx, float ry, float rz) {
    qm_pose_t p{};
    p.position = {x, y, z};
    p.euler = {rx, ry, rz};
    p.quaternion = qm_algo_euler2quaternion(p.euler);
    return p;
}

class CartesianStep : public ::testing::Test {
protected:
    void SetUp() override { qm_algo_init_sys_data(QM_MODEL_QM_65_E, QM_MODEL_QM_B_E); }

    const Joints q_{10, 20, 30, 40, 50, 60};
};

// ---- translation along the tool axes ----

TEST_F(CartesianStep, ZeroToolStepReturnsTheCurrentToolPose) {
    qm_frame_t tool{};
    tool.pose = pose(0.01f, 0.02f, 0.1f, 0.1f, 0.2f, 0.3f);
    qm_algo_set_toolframe(&tool);
    const qm_pose_t now = qm_algo_forward_kinematics(nullptr, q_.data());
    const qm_pose_t stepped = qm_algo_cartesian_tool(nullptr, q_.data(), 0, 0, 0);
    expect_same_position(stepped, now);
    expect_same_rotation(stepped.euler, now.euler);
}

TEST_F(CartesianStep, ToolStepMovesAlongTheToolsOwnZ) {
    // At zero the QM65 flange points straight up, turned half a turn about z.
    const Joints zero{};
    const qm_pose_t up = qm_algo_cartesian_tool(nullptr, zero.data(), 0, 0, 0.05f);
    EXPECT_NEAR(up.position.z, 0.8505f + 0.05f, kTol);
    const qm_pose_t side = qm_algo_cartesian_tool(nullptr, zero.data(), 0.05f, 0, 0);
    EXPECT_NEAR(side.position.x, -0.05f, kTol);
    EXPECT_NEAR(side.position.z, 0.8505f, kTol);
}

TEST_F(CartesianStep, ToolStepFillsPositionQuaternionAndEuler) {
    const qm_pose_t p = qm_algo_cartesian_tool(nullptr, q_.data(), 0.01f, -0.02f, 0.03f);
    const qm_quat_t expected = qm_algo_euler2quaternion(p.euler);
    const float dot = p.quaternion.w * expected.w + p.quaternion.x * expected.x + p.quaternion.y * expected.y +
                      p.quaternion.z * expected.z;
    EXPECT_NEAR(std::fabs(dot), 1.0f, 1e-5f);
}

TEST_F(CartesianStep, NullJointsGiveAZeroPose) {
    const qm_pose_t p = qm_algo_cartesian_tool(nullptr, nullptr, 0.1f, 0, 0);
    EXPECT_EQ(p.position.z, 0.0f);
    EXPECT_EQ(p.quaternion.w, 0.0f);
}

// ---- rotation about a frame axis ----

TEST_F(CartesianStep, ZeroRotationKeepsTheCurrentPose) {
    const qm_pose_t now = qm_algo_forward_kinematics(nullptr, q_.data());
    const qm_pose_t turned = qm_algo_rotate_move(nullptr, q_.data(), 3, 0.0f, pose(0, 0, 0, 0.3f, 0.2f, 0.1f));
    expect_same_position(turned, now);
    expect_same_rotation(turned.euler, now.euler);
}

TEST_F(CartesianStep, AxisOutsideOneToThreeLeavesTheOrientation) {
    const qm_pose_t now = qm_algo_forward_kinematics(nullptr, q_.data());
    for (int axis : {0, 4, -1}) {
        const qm_pose_t turned = qm_algo_rotate_move(nullptr, q_.data(), axis, 30.0f, pose(0, 0, 0, 0, 0, 0));
        expect_same_rotation(turned.euler, now.euler);
    }
}

TEST_F(CartesianStep, RotationAboutBaseZTurnsTheToolInPlace) {
    const qm_pose_t now = qm_algo_forward_kinematics(nullptr, q_.data());
    const qm_pose_t turned = qm_algo_rotate_move(nullptr, q_.data(), 3, 90.0f, pose(0, 0, 0, 0, 0, 0));
    expect_same_position(turned, now);
    // R' = Rz(90) * R: the yaw grows by 90 degrees, roll and pitch stay.
    const qm_euler_t expected = {now.euler.rx, now.euler.ry, now.euler.rz + static_cast<float>(M_PI / 2)};
    expect_same_rotation(turned.euler, expected);
    const qm_quat_t q = qm_algo_euler2quaternion(turned.euler);
    EXPECT_NEAR(turned.quaternion.w, q.w, 1e-6f);
    EXPECT_NEAR(turned.quaternion.z, q.z, 1e-6f);
}

TEST_F(CartesianStep, RotationUsesTheAxisOfTheChosenFrame) {
    // The chosen frame's X is the base's Z (frame turned -90 degrees about Y).
    const qm_pose_t frame = pose(0.5f, 0.5f, 0.5f, 0, static_cast<float>(-M_PI / 2), 0);
    const qm_pose_t about_frame_x = qm_algo_rotate_move(nullptr, q_.data(), 1, 25.0f, frame);
    const qm_pose_t about_base_z = qm_algo_rotate_move(nullptr, q_.data(), 3, 25.0f, pose(0, 0, 0, 0, 0, 0));
    expect_same_rotation(about_frame_x.euler, about_base_z.euler);
}

// ---- pose steps ----

TEST_F(CartesianStep, WorkFrameStepChangesOnlyTheGivenCoordinate) {
    const qm_pose_t start = pose(0.3f, -0.2f, 0.5f, 0.4f, -0.3f, 1.2f);
    const float delta[6] = {0.01f, 0, 0, 0, 0, 0};
    const qm_pose_t p = qm_algo_pose_move(nullptr, start, delta, 0);
    EXPECT_FLOAT_EQ(p.position.x, 0.3f + 0.01f);
    EXPECT_FLOAT_EQ(p.position.y, -0.2f);
    EXPECT_FLOAT_EQ(p.position.z, 0.5f);
    expect_same_rotation(p.euler, start.euler);
}

TEST_F(CartesianStep, ToolFrameStepFollowsTheToolAxis) {
    // Tool z pointing down the base's -Z: a tool step of +0.1 along z lowers the tool.
    const qm_pose_t down = pose(0.3f, 0.1f, 0.5f, static_cast<float>(M_PI), 0, 0);
    const float delta[6] = {0, 0, 0.1f, 0, 0, 0};
    const qm_pose_t p = qm_algo_pose_move(nullptr, down, delta, 1);
    EXPECT_NEAR(p.position.x, 0.3f, kTol);
    EXPECT_NEAR(p.position.y, 0.1f, kTol);
    EXPECT_NEAR(p.position.z, 0.4f, kTol);
    expect_same_rotation(p.euler, down.euler);
}

TEST_F(CartesianStep, WorkRotationStepPreMultipliesRzRyRx) {
    const qm_pose_t start = pose(0, 0, 0, 0.4f, -0.3f, 1.2f);
    const float delta[6] = {0, 0, 0, 0.1f, 0.2f, 0.3f};
    const qm_pose_t p = qm_algo_pose_move(nullptr, start, delta, 0);
    expect_rotation_near(rotation_of(p.euler), product(rotation_of({0.1f, 0.2f, 0.3f}), rotation_of(start.euler)));
}

TEST_F(CartesianStep, ToolRotationStepPostMultipliesRzRyRx) {
    const qm_pose_t start = pose(0, 0, 0, 0.4f, -0.3f, 1.2f);
    const float delta[6] = {0, 0, 0, 0.1f, 0.2f, 0.3f};
    const qm_pose_t p = qm_algo_pose_move(nullptr, start, delta, 1);
    expect_rotation_near(rotation_of(p.euler), product(rotation_of(start.euler), rotation_of({0.1f, 0.2f, 0.3f})));
}

TEST_F(CartesianStep, PoseStepQuaternionMatchesItsEulerAngles) {
    const float delta[6] = {0.01f, 0.02f, 0.03f, 0.1f, -0.2f, 0.3f};
    const qm_pose_t p = qm_algo_pose_move(nullptr, pose(0.1f, 0.2f, 0.3f, 0.5f, 0.1f, -0.7f), delta, 1);
    const qm_quat_t q = qm_algo_euler2quaternion(p.euler);
    EXPECT_NEAR(p.quaternion.w, q.w, 1e-6f);
    EXPECT_NEAR(p.quaternion.x, q.x, 1e-6f);
    EXPECT_NEAR(p.quaternion.y, q.y, 1e-6f);
    EXPECT_NEAR(p.quaternion.z, q.z, 1e-6f);
}

TEST_F(CartesianStep, UnknownFrameModeGivesAZeroPose) {
    const float delta[6] = {0.01f, 0, 0, 0, 0, 0};
    const qm_pose_t p = qm_algo_pose_move(nullptr, pose(0.3f, 0.2f, 0.1f, 0.1f, 0.2f, 0.3f), delta, 2);
    EXPECT_EQ(p.position.x, 0.0f);
    EXPECT_EQ(p.position.y, 0.0f);
    EXPECT_EQ(p.euler.rz, 0.0f);
    EXPECT_EQ(p.quaternion.w, 0.0f);
}

TEST(CartesianStepParts, RodriguesAboutTheToolAxisEqualsTheFrameFormWithTheToolAsFrame) {
    const Euler current = {0.4f, -0.3f, 1.2f};
    const VEC3 axis = {0, 1, 0};
    const Euler tool = Rodrigues_rotate_simplify_tool(current, axis, 0.5f);
    const Euler frame = Rodrigues_rotate_simplify(current, current, axis, 0.5f);
    EXPECT_NEAR(tool.rx, frame.rx, 1e-6f);
    EXPECT_NEAR(tool.ry, frame.ry, 1e-6f);
    EXPECT_NEAR(tool.rz, frame.rz, 1e-6f);
}

TEST(CartesianStepParts, PositionStepOfAnUnknownModeIsZero) {
    Pose p{};
    p.position = {1, 2, 3};
    const float delta[3] = {0.1f, 0.1f, 0.1f};
    const Pose out = dPosMove(p, delta, 7);
    EXPECT_EQ(out.position.x, 0.0f);
    EXPECT_EQ(out.position.z, 0.0f);
}

}  // namespace
