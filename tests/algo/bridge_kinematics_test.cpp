// Kinematics through the bridge: inverse kinematics with its argument checks, solution sets,
// limit checks, conversions and frame changes, all offline (NULL handle).
#include <gtest/gtest.h>

#include <array>
#include <cmath>

#include "algo_api.h"
#include "qm_interface.h"
#include "qm_invoke_algo.h"
#include "qman_inv_kinematics.h"

namespace {

using Joints = std::array<float, ARM_DOF>;

class BridgeKinematics : public ::testing::Test {
protected:
    void SetUp() override {
        qm_algo_init_sys_data(QM_MODEL_QM_65_E, QM_MODEL_QM_B_E);
        defaut_traversal_mode = true;
    }
    void TearDown() override {
        defaut_traversal_mode = true;
        ikine_set_solution_range_qm75(Q_STEP_MAX);
        ikine_set_7dof_solver_search_strategy(0);
    }

    static qm_inverse_kinematics_params_t request(const Joints& ref, const qm_pose_t& target, uint8_t flag) {
        qm_inverse_kinematics_params_t p{};
        std::copy(ref.begin(), ref.end(), p.q_in);
        p.q_pose = target;
        p.flag = flag;
        return p;
    }

    const Joints q_{10, 20, 30, 40, 50, 60};
};

TEST_F(BridgeKinematics, SolvesBackToTheReferenceAndListsAllBranchesInDegrees) {
    const qm_pose_t target = qm_algo_forward_kinematics(nullptr, q_.data());
    for (uint8_t flag : {0, 1}) {
        Joints out{};
        ASSERT_EQ(qm_algo_inverse_kinematics(nullptr, request(q_, target, flag), out.data()), 0) << int(flag);
        for (int i = 0; i < 6; ++i)
            EXPECT_NEAR(out[i], q_[i], 1e-2f) << "flag " << int(flag) << " joint " << i;
    }
    const qm_inverse_kinematics_all_solve_t all =
        qm_algo_inverse_kinematics_all(nullptr, request(q_, target, 0));
    ASSERT_GE(all.num, 1);
    EXPECT_EQ(all.result, 1);
    EXPECT_NEAR(all.q_ref[2], 30.0f, 1e-4f);
    const float weights[ROBOT_DOF] = {1, 1, 1, 1, 1, 1, 1, 1};
    const int best = qm_algo_ikine_select_ik_solve(weights, all);
    ASSERT_GE(best, 0);
    for (int i = 0; i < 6; ++i) EXPECT_NEAR(all.q_solve[best][i], q_[i], 1e-2f) << "joint " << i;
    EXPECT_EQ(qm_algo_ikine_select_ik_solve(weights, qm_inverse_kinematics_all_solve_t{}), -1);
}

TEST_F(BridgeKinematics, QuaternionOutsideTheNormBandIsRefusedBeforeSolving) {
    qm_pose_t target = qm_algo_forward_kinematics(nullptr, q_.data());
    Joints out{};
    // The squared norm must lie strictly between 0.99 and 1.1.
    const auto scaled = [&](float squared_norm) {
        const float k = std::sqrt(squared_norm);
        qm_pose_t t = target;
        t.quaternion = {target.quaternion.w * k, target.quaternion.x * k, target.quaternion.y * k,
                        target.quaternion.z * k};
        return request(q_, t, 0);
    };
    for (float n : {0.0f, 0.985f, 1.105f, 4.0f})
        EXPECT_EQ(qm_algo_inverse_kinematics(nullptr, scaled(n), out.data()), -2) << n;
    for (float n : {0.995f, 1.095f})
        EXPECT_EQ(qm_algo_inverse_kinematics(nullptr, scaled(n), out.data()), 0) << n;
    // Even an unknown handle is not looked at: the check comes first.
    qm_robot_handle stray{4};
    target.quaternion = {0, 0, 0, 0};
    EXPECT_EQ(qm_algo_inverse_kinematics(&stray, request(q_, target, 0), out.data()), -2);
    // An Euler request does not look at the quaternion.
    EXPECT_EQ(qm_algo_inverse_kinematics(nullptr, request(q_, target, 1), out.data()), 0);
}

TEST_F(BridgeKinematics, EveryNonZeroFlagReadsTheEulerAngles) {
    qm_pose_t target = qm_algo_forward_kinematics(nullptr, q_.data());
    target.quaternion = {0, 0, 0, 0};  // only the Euler angles say where the tool points
    for (const uint8_t flag : {1, 2, 7, 255}) {
        Joints out{};
        ASSERT_EQ(qm_algo_inverse_kinematics(nullptr, request(q_, target, flag), out.data()), 0) << int(flag);
        for (int i = 0; i < 6; ++i) EXPECT_NEAR(out[i], q_[i], 1e-2f) << "flag " << int(flag) << " joint " << i;
        const qm_inverse_kinematics_all_solve_t all = qm_algo_inverse_kinematics_all(nullptr, request(q_, target, flag));
        ASSERT_EQ(all.num, 8) << int(flag);
        const qm_pose_t reached = qm_algo_forward_kinematics(nullptr, all.q_solve[0]);
        const qm_quat_t want = qm_algo_euler2quaternion(target.euler), got = reached.quaternion;
        EXPECT_NEAR(std::fabs(want.w * got.w + want.x * got.x + want.y * got.y + want.z * got.z), 1.0f, 1e-5f)
            << int(flag);
    }
}

TEST_F(BridgeKinematics, RoundTripsCloseInTheBaseFrameAndThroughTheQuaternionNearNinetyDegreesPitch) {
    const auto expect_joints = [](const Joints& got, const Joints& want, float tol) {
        for (int i = 0; i < 6; ++i) EXPECT_NEAR(got[i], want[i], tol) << "joint " << i;
    };
    // Forward kinematics reports the pose in the work frame; inverse kinematics wants it in the base.
    qm_frame_t work{};
    work.pose.position = {0.1f, -0.2f, 0.05f};
    work.pose.euler = {0, 0, 0.5f};
    qm_algo_set_workframe(&work);
    const qm_pose_t in_work = qm_algo_forward_kinematics(nullptr, q_.data());
    const qm_pose_t in_base = qm_algo_workframe2base(qm_algo_pos2matrix(work.pose), in_work);
    Joints out{};
    ASSERT_EQ(qm_algo_inverse_kinematics(nullptr, request(q_, in_base, 0), out.data()), 0);
    expect_joints(out, q_, 1e-2f);
    const qm_frame_t none{};
    qm_algo_set_workframe(&none);

    // A tool frame that pitches the tool 0.03 degrees short of 90: the Euler angles fold yaw into
    // roll there, the quaternion stays exact.
    const qm_pose_t flange = qm_algo_forward_kinematics(nullptr, q_.data());
    qm_pose_t pitched = flange;
    pitched.euler = {0.4f, static_cast<float>(M_PI / 2 - 5e-4), 0.7f};
    qm_frame_t tool{};
    tool.pose = qm_algo_base2workframe(qm_algo_pos2matrix(flange), pitched);
    qm_algo_set_toolframe(&tool);
    const qm_pose_t reported = qm_algo_forward_kinematics(nullptr, q_.data());
    ASSERT_NEAR(reported.euler.ry, M_PI / 2, 1e-3);
    ASSERT_EQ(qm_algo_inverse_kinematics(nullptr, request(q_, reported, 0), out.data()), 0);
    expect_joints(out, q_, 2e-3f);
}

TEST_F(BridgeKinematics, ReferenceBeyondItsLimitIsRefusedAndUnreachableTargetIsASolverFailure) {
    const qm_pose_t target = qm_algo_forward_kinematics(nullptr, q_.data());
    Joints ref = q_;
    ref[1] = 131;  // QM65 joint 2 ends at 130 degrees
    Joints out{-7, -7, -7, -7, -7, -7, -7};
    EXPECT_EQ(qm_algo_inverse_kinematics(nullptr, request(ref, target, 1), out.data()), -1);
    EXPECT_EQ(out[0], -7.0f);
    qm_pose_t unreachable = target;
    unreachable.position.x = 3.0f;
    EXPECT_EQ(qm_algo_inverse_kinematics(nullptr, request(q_, unreachable, 0), out.data()), 1);
}

TEST_F(BridgeKinematics, DefaultTraversalResetsTheSevenJointSearchBeforeEachSolveAndTheOtherModeDoesNot) {
    ikine_set_solution_range_qm75(0.5f);
    ikine_set_7dof_solver_search_strategy(1);
    const qm_pose_t target = qm_algo_forward_kinematics(nullptr, q_.data());
    Joints out{};
    qm_algo_inverse_kinematics(nullptr, request(q_, target, 0), out.data());
    EXPECT_FLOAT_EQ(ikine_get_solution_range_qm75(), Q_STEP_MAX);
    EXPECT_EQ(ikine_get_7dof_solver_search_strategy(), 0);

    qm_algo_set_redundant_parameter_traversal_mode(false);
    EXPECT_FALSE(defaut_traversal_mode);
    EXPECT_FLOAT_EQ(ikine_get_solution_range_qm75(), Q_STEP_MIN);
    EXPECT_EQ(ikine_get_7dof_solver_search_strategy(), 1);
    qm_algo_inverse_kinematics(nullptr, request(q_, target, 0), out.data());
    EXPECT_FLOAT_EQ(ikine_get_solution_range_qm75(), Q_STEP_MIN);

    qm_algo_set_redundant_parameter_traversal_mode(true);
    EXPECT_FLOAT_EQ(ikine_get_solution_range_qm75(), Q_STEP_MAX);
    EXPECT_EQ(ikine_get_7dof_solver_search_strategy(), 0);
}

TEST_F(BridgeKinematics, SevenJointArmAngleRoundTrip) {
    qm_algo_init_sys_data(QM_MODEL_QM_75_E, QM_MODEL_QM_B_E);
    const Joints q = {10, 20, 30, 40, 50, 60, 70};
    const qm_pose_t target = qm_algo_forward_kinematics(nullptr, q.data());
    const float psi = qm_algo_calculate_arm_angle_from_config_qm75(q.data());
    Joints out{};
    ASSERT_EQ(qm_algo_inverse_kinematics_qm75_for_arm_angle(q.data(), target, psi, out.data()), 0);
    for (int i = 0; i < 7; ++i) EXPECT_NEAR(out[i], q[i], 1e-2f) << "joint " << i;
}

TEST_F(BridgeKinematics, LimitChecksUseTheModelsLimitsInDegrees) {
    const Joints inside = {177, -129, 134, 0, 0, 0};
    const Joints beyond = {177, -131, 134, 0, 0, 0};
    EXPECT_EQ(qm_algo_judgment_overpos(inside.data()), 0);
    EXPECT_EQ(qm_algo_judgment_overpos(beyond.data()), -1);
    EXPECT_EQ(qm_algo_ikine_check_joint_position_limit(inside.data()), 0);
    EXPECT_NE(qm_algo_ikine_check_joint_position_limit(beyond.data()), 0);
    // QM65 joint 1 runs 180 degrees/s: 1.8 degrees in 10 ms.
    const Joints from{};
    const Joints slow = {1.7f, 0, 0, 0, 0, 0};
    const Joints fast = {1.9f, 0, 0, 0, 0, 0};
    EXPECT_EQ(qm_algo_ikine_check_joint_velocity_limit(0.01f, from.data(), slow.data()), 0);
    EXPECT_NE(qm_algo_ikine_check_joint_velocity_limit(0.01f, from.data(), fast.data()), 0);
}

TEST_F(BridgeKinematics, ConversionsAndFrameChanges) {
    const float quarter = static_cast<float>(M_PI / 2);
    EXPECT_NEAR(qm_algo_quaternion2euler(qm_algo_euler2quaternion({0, 0, quarter})).rz, quarter, 1e-6f);
    EXPECT_EQ(qm_algo_euler2matrix({0, 0, quarter}).irow, 3);
    const qm_pose_t back =
        qm_algo_matrix2pos(qm_algo_pos2matrix(qm_pose_t{{0.1f, 0.2f, 0.3f}, {}, {0.3f, -0.2f, 0.1f}}));
    EXPECT_NEAR(back.euler.ry, -0.2f, 1e-6f);
    EXPECT_NEAR(back.position.y, 0.2f, 1e-6f);
    // A work frame at x = 1 turned a quarter about z: base (1, 1) is work (1, 0).
    const qm_matrix_t m = qm_algo_pos2matrix(qm_pose_t{{1, 0, 0}, {}, {0, 0, quarter}});
    const qm_pose_t in_work = qm_algo_base2workframe(m, qm_pose_t{{1, 1, 0}, {}, {}});
    EXPECT_TRUE(std::fabs(in_work.position.x - 1.0f) < 1e-6f && std::fabs(in_work.position.y) < 1e-6f);
    EXPECT_NEAR(in_work.euler.rz, -quarter, 1e-6f);
    const qm_pose_t again = qm_algo_workframe2base(m, in_work);
    EXPECT_TRUE(std::fabs(again.position.y - 1.0f) < 1e-6f && std::fabs(again.euler.rz) < 1e-6f);
}

TEST_F(BridgeKinematics, FlangeAndToolPosesConvertWithTheToolFrame) {
    qm_frame_t tool{};
    tool.pose.position = {0, 0, 0.1f};
    qm_algo_set_toolframe(&tool);
    const qm_pose_t flange{{0.2f, 0, 0.5f}, {}, {static_cast<float>(M_PI), 0, 0}};  // pointing down
    const qm_pose_t tip = qm_algo_end2tool(nullptr, flange);
    EXPECT_NEAR(tip.position.z, 0.4f, 1e-6f);
    const qm_pose_t back = qm_algo_tool2end(nullptr, tip);
    EXPECT_TRUE(std::fabs(back.position.z - 0.5f) < 1e-6f && std::fabs(back.position.x - 0.2f) < 1e-6f);
    // The flange transform for degrees: QM65 at zero stands 0.8505 m up, turned half a turn about z.
    const Joints zero{};
    const Matrix f = Forward_Kinematics_e(zero.data());
    EXPECT_NEAR(f.data[2][3], 0.8505f, 1e-5f);
    EXPECT_NEAR(f.data[0][0], -1.0f, 1e-6f);
    EXPECT_EQ(Forward_Kinematics_e(nullptr).data[3][3], 0.0f);
}

}  // namespace
