// Arm-angle parametrisation and search of the seven-joint solvers.

#include <gtest/gtest.h>

#include <cmath>
#include <ostream>
#include <string>

#include "inverse_kinematics_test_support.h"
#include "kinematics_reference.h"

namespace {

using ik_test::flange_of;
using ik_test::reaches;

float angle_between(float a, float b) { return std::fabs(std::remainder(a - b, 2.0f * static_cast<float>(ALGO_PI))); }

class ArmAngle : public ::testing::TestWithParam<RobotType> {
protected:
    void SetUp() override {
        ASSERT_EQ(libalgo_set_robot_and_sensor_type(GetParam(), _B), 0);
        ikine_set_7dof_solver_search_strategy(0);
        ikine_set_solution_range_qm75(Q_STEP_MAX);
    }
    void TearDown() override {
        ikine_set_7dof_solver_search_strategy(0);
        ikine_set_solution_range_qm75(Q_STEP_MAX);
    }
};

TEST_P(ArmAngle, ConfigurationsComeBackAtTheirOwnArmAngle) {
    int index = 0;
    for (const auto& q : reference::random_joints_within_limits(500, 99u)) {
        SCOPED_TRACE("sample " + std::to_string(index++));
        const float psi = calculate_arm_angle_from_config_qm75(q.data());
        ASSERT_TRUE(std::isfinite(psi));
        const Pose pose = ik_test::pose_of(flange_of(q.data()));
        float out[ROBOT_DOF] = {};
        ASSERT_EQ(inverse_kinematics_qm75_for_arm_angle(q.data(), &pose, psi, out), IKINE_SUCCESSFUL);
        EXPECT_TRUE(reaches(out, flange_of(q.data())));
        EXPECT_LT(angle_between(calculate_arm_angle_from_config_qm75(out), psi), 1e-3f);
    }
}

TEST_P(ArmAngle, EveryArmAngleReachesTheTargetAtThatAngle) {
    const float q[ROBOT_DOF] = {0.3f, 0.6f, -0.4f, -1.2f, 0.5f, 0.7f, -0.3f};
    const Matrix target = flange_of(q);
    const Pose pose = ik_test::pose_of(target);
    int solved = 0;
    for (float psi = -3.1f; psi < 3.1f; psi += 0.25f) {
        SCOPED_TRACE("arm angle " + std::to_string(psi));
        float out[ROBOT_DOF] = {};
        const int rc = inverse_kinematics_qm75_for_arm_angle(q, &pose, psi, out);
        ASSERT_TRUE(rc == IKINE_SUCCESSFUL || rc == IKINE_LIMITED) << rc;
        if (rc != IKINE_SUCCESSFUL) continue;
        ++solved;
        EXPECT_TRUE(reaches(out, target));
        EXPECT_LT(angle_between(calculate_arm_angle_from_config_qm75(out), psi), 1e-3f);
    }
    EXPECT_GT(solved, 5);
}

TEST_P(ArmAngle, SearchLeavesTheReferencesArmAngleWhenItsBranchesAreLimited) {
    const float q[ROBOT_DOF] = {0.3f, 0.6f, -0.4f, -1.2f, 0.5f, 0.7f, -0.3f};
    const Pose pose = ik_test::pose_of(flange_of(q));
    // A reference on the same target, with the elbow swung by one radian.
    const float psi = calculate_arm_angle_from_config_qm75(q);
    float ref[ROBOT_DOF] = {};
    ASSERT_EQ(inverse_kinematics_qm75_for_arm_angle(q, &pose, psi + 1.0f, ref), IKINE_SUCCESSFUL);
    // Joint 1 may only stay near q's value, which the reference's own arm angle misses.
    float lo[ROBOT_DOF];
    float hi[ROBOT_DOF];
    libalgo_get_jointlim_min(lo);
    libalgo_get_jointlim_max(hi);
    lo[0] = q[0] - 0.05f;
    hi[0] = q[0] + 0.05f;
    libalgo_set_jointlim_min(lo);
    libalgo_set_jointlim_max(hi);
    ASSERT_GT(std::fabs(ref[0] - q[0]), 0.05f);

    float out[ROBOT_DOF] = {};
    ikine_set_solution_range_qm75(Q_STEP_MIN);
    EXPECT_EQ(inverse_kinematics(ref, &pose, out, USE_QUAT), IKINE_LIMITED);

    for (const int strategy : {0, 1}) {
        SCOPED_TRACE("strategy " + std::to_string(strategy));
        ikine_set_7dof_solver_search_strategy(strategy);
        ikine_set_solution_range_qm75(Q_STEP_MAX);
        ASSERT_EQ(inverse_kinematics(ref, &pose, out, USE_QUAT), IKINE_SUCCESSFUL);
        EXPECT_TRUE(reaches(out, flange_of(q)));
        EXPECT_EQ(ikine_check_joint_position_limit(out), 0);
    }
}

TEST_P(ArmAngle, WholeRangeStrategyIsNeverFartherThanFirstFound) {
    const float q[ROBOT_DOF] = {0.3f, 0.6f, -0.4f, -1.2f, 0.5f, 0.7f, -0.3f};
    const Pose pose = ik_test::pose_of(flange_of(q));
    const float ref[ROBOT_DOF] = {1.0f, 0.2f, 0.5f, 0.9f, -0.4f, 0.3f, 0.8f};  // does not reach the target
    const auto distance = [&ref](const float* out) {
        double sum = 0.0;
        for (int j = 0; j < 7; ++j) sum += (out[j] - ref[j]) * (out[j] - ref[j]);
        return sum;
    };
    float first[ROBOT_DOF] = {};
    float whole[ROBOT_DOF] = {};
    ikine_set_7dof_solver_search_strategy(0);
    ASSERT_EQ(inverse_kinematics(ref, &pose, first, USE_QUAT), IKINE_SUCCESSFUL);
    ikine_set_7dof_solver_search_strategy(1);
    ASSERT_EQ(inverse_kinematics(ref, &pose, whole, USE_QUAT), IKINE_SUCCESSFUL);
    EXPECT_TRUE(reaches(whole, flange_of(q)));
    EXPECT_LE(distance(whole), distance(first) + 1e-9);
}

TEST_P(ArmAngle, SixJointModelsHaveNoArmAngleSolver) {
    ASSERT_EQ(libalgo_set_robot_and_sensor_type(QM65, _B), 0);
    const float q[ROBOT_DOF] = {};
    const Pose pose = ik_test::pose_of(flange_of(q));
    float out[ROBOT_DOF] = {};
    EXPECT_EQ(inverse_kinematics_qm75_for_arm_angle(q, &pose, 0.0f, out), IKINE_UNKNOWN_TYPE);
}

INSTANTIATE_TEST_SUITE_P(SevenJointModels, ArmAngle, ::testing::Values(QM75, TAV72, TAV72II),
                         [](const auto& info) {
                             return std::string(info.param == QM75 ? "QM75" : info.param == TAV72 ? "TAV72" : "TAV72II");
                         });

TEST(ArmAngleSettings, RangeIsClampedToTheStepBounds) {
    ikine_set_solution_range_qm75(10.0f);
    EXPECT_FLOAT_EQ(ikine_get_solution_range_qm75(), Q_STEP_MAX);
    ikine_set_solution_range_qm75(0.0f);
    EXPECT_FLOAT_EQ(ikine_get_solution_range_qm75(), Q_STEP_MIN);
    ikine_set_solution_range_qm75(1.0f);
    EXPECT_FLOAT_EQ(ikine_get_solution_range_qm75(), 1.0f);
    ikine_set_solution_range_qm75(NAN);
    EXPECT_FLOAT_EQ(ikine_get_solution_range_qm75(), 1.0f);
    ikine_set_solution_range_qm75(Q_STEP_MAX);
}

TEST(ArmAngleSettings, OnlyKnownStrategiesAreStored) {
    ikine_set_7dof_solver_search_strategy(1);
    EXPECT_EQ(ikine_get_7dof_solver_search_strategy(), 1);
    ikine_set_7dof_solver_search_strategy(5);
    EXPECT_EQ(ikine_get_7dof_solver_search_strategy(), 1);
    ikine_set_7dof_solver_search_strategy(0);
    EXPECT_EQ(ikine_get_7dof_solver_search_strategy(), 0);
}

}  // namespace
