// Cartesian step moves through the public functions, offline (NULL handle).
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>
#include <random>

#include "algo_api.h"
#include "qm_interface.h"

namespace {

using Joints = std::array<float, ARM_DOF>;

constexpr float kTol = 1e-5f;

void expect_rotation(const qm_euler_t& got, const qm_matrix_t& expected) {
    const qm_matrix_t r = qm_algo_euler2matrix(got);
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) EXPECT_NEAR(r.data[i][j], expected.data[i][j], kTol) << i << "," << j;
}

qm_matrix_t product(const qm_matrix_t& a, const qm_matrix_t& b) {
    qm_matrix_t r{};
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            for (int k = 0; k < 3; ++k) r.data[i][j] += a.data[i][k] * b.data[k][j];
    return r;
}

// Same position and rotation, and the result's quaternion describes its Euler angles.
void expect_pose(const qm_pose_t& got, const qm_pose_t& expected) {
    EXPECT_NEAR(got.position.x, expected.position.x, kTol);
    EXPECT_NEAR(got.position.y, expected.position.y, kTol);
    EXPECT_NEAR(got.position.z, expected.position.z, kTol);
    expect_rotation(got.euler, qm_algo_euler2matrix(expected.euler));
    const qm_quat_t q = qm_algo_euler2quaternion(got.euler);
    EXPECT_NEAR(std::fabs(q.w * got.quaternion.w + q.x * got.quaternion.x + q.y * got.quaternion.y +
                          q.z * got.quaternion.z),
                1.0f, 1e-5f);
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

TEST_F(CartesianStep, ToolStepMovesAlongTheToolsOwnAxes) {
    qm_frame_t tool{};
    tool.pose = pose(0.01f, 0.02f, 0.1f, 0.1f, 0.2f, 0.3f);
    qm_algo_set_toolframe(&tool);
    expect_pose(qm_algo_cartesian_tool(nullptr, q_.data(), 0, 0, 0),
                qm_algo_forward_kinematics(nullptr, q_.data()));
    tool = qm_frame_t{};
    qm_algo_set_toolframe(&tool);
    // At zero the QM65 flange points straight up, turned half a turn about z.
    const Joints zero{};
    expect_pose(qm_algo_cartesian_tool(nullptr, zero.data(), 0, 0, 0.05f), pose(0, 0, 0.9005f, 0, 0, M_PI));
    expect_pose(qm_algo_cartesian_tool(nullptr, zero.data(), 0.05f, 0, 0),
                pose(-0.05f, 0, 0.8505f, 0, 0, M_PI));
    const qm_pose_t none = qm_algo_cartesian_tool(nullptr, nullptr, 0.1f, 0, 0), zero_pose{};
    EXPECT_EQ(std::memcmp(&none, &zero_pose, sizeof none), 0);
}

TEST_F(CartesianStep, RotationTurnsAboutTheChosenFramesAxisInPlace) {
    const qm_pose_t now = qm_algo_forward_kinematics(nullptr, q_.data());
    expect_pose(qm_algo_rotate_move(nullptr, q_.data(), 3, 0.0f, pose(0, 0, 0, 0.3f, 0.2f, 0.1f)), now);
    for (int axis : {0, 4, -1})  // no such axis: the orientation stays
        expect_rotation(qm_algo_rotate_move(nullptr, q_.data(), axis, 30.0f, pose(0, 0, 0, 0, 0, 0)).euler,
                        qm_algo_euler2matrix(now.euler));
    // R' = Rz(90) * R about the base's z.
    const qm_pose_t turned = qm_algo_rotate_move(nullptr, q_.data(), 3, 90.0f, pose(0, 0, 0, 0, 0, 0));
    qm_pose_t expected = now;
    expected.euler.rz += static_cast<float>(M_PI / 2);
    expect_pose(turned, expected);
    // This frame's X is the base's Z (frame turned -90 degrees about Y).
    const qm_pose_t frame = pose(0.5f, 0.5f, 0.5f, 0, static_cast<float>(-M_PI / 2), 0);
    expect_rotation(qm_algo_rotate_move(nullptr, q_.data(), 1, 25.0f, frame).euler,
                    qm_algo_euler2matrix(
                        qm_algo_rotate_move(nullptr, q_.data(), 3, 25.0f, pose(0, 0, 0, 0, 0, 0)).euler));
}

TEST_F(CartesianStep, PoseStepTranslatesInTheWorkOrToolFrame) {
    const float dx[6] = {0.01f, 0, 0, 0, 0, 0};
    const qm_pose_t start = pose(0.3f, -0.2f, 0.5f, 0.4f, -0.3f, 1.2f);
    expect_pose(qm_algo_pose_move(nullptr, start, dx, 0), pose(0.31f, -0.2f, 0.5f, 0.4f, -0.3f, 1.2f));
    // Tool z pointing down the base's -Z: a tool step of +0.1 along z lowers the tool.
    const float dz[6] = {0, 0, 0.1f, 0, 0, 0};
    const qm_pose_t down = pose(0.3f, 0.1f, 0.5f, static_cast<float>(M_PI), 0, 0);
    expect_pose(qm_algo_pose_move(nullptr, down, dz, 1),
                pose(0.3f, 0.1f, 0.4f, static_cast<float>(M_PI), 0, 0));
    // An unknown frame mode gives a zero pose.
    const qm_pose_t unknown = qm_algo_pose_move(nullptr, start, dx, 2), zero_pose{};
    EXPECT_EQ(std::memcmp(&unknown, &zero_pose, sizeof unknown), 0);
}

bool same_orientation_bits(const qm_pose_t& a, const qm_pose_t& b) {
    return std::memcmp(&a.euler, &b.euler, sizeof a.euler) == 0 &&
           std::memcmp(&a.quaternion, &b.quaternion, sizeof a.quaternion) == 0;
}

TEST_F(CartesianStep, PureTranslationLeavesTheOrientationFieldsBitExact) {
    std::mt19937 rng(5);
    std::uniform_real_distribution<float> angle(-3.1f, 3.1f), length(-0.5f, 0.5f);
    const float step[6] = {0.01f, -0.02f, 0.03f, 0, 0, 0};
    for (int i = 0; i < 200; ++i) {
        const qm_pose_t start = pose(length(rng), length(rng), length(rng), angle(rng), angle(rng) / 2, angle(rng));
        for (const int frame : {0, 1}) {
            const qm_pose_t moved = qm_algo_pose_move(nullptr, start, step, frame);
            ASSERT_TRUE(same_orientation_bits(moved, start)) << "pose " << i << " frame " << frame;
        }
        const Joints q = {angle(rng) * 50, angle(rng) * 40, angle(rng) * 40, angle(rng) * 50, angle(rng) * 40, 0};
        ASSERT_TRUE(same_orientation_bits(qm_algo_cartesian_tool(nullptr, q.data(), 0.01f, 0.02f, -0.03f),
                                          qm_algo_forward_kinematics(nullptr, q.data())))
            << "joints " << i;
    }
}

TEST_F(CartesianStep, RotationStepPreMultipliesInTheWorkFrameAndPostMultipliesInTheTool) {
    const qm_pose_t start = pose(0, 0, 0, 0.4f, -0.3f, 1.2f);
    const float delta[6] = {0, 0, 0, 0.1f, 0.2f, 0.3f};
    const qm_matrix_t step = qm_algo_euler2matrix({0.1f, 0.2f, 0.3f});
    expect_rotation(qm_algo_pose_move(nullptr, start, delta, 0).euler,
                    product(step, qm_algo_euler2matrix(start.euler)));
    expect_rotation(qm_algo_pose_move(nullptr, start, delta, 1).euler,
                    product(qm_algo_euler2matrix(start.euler), step));
}

}  // namespace
