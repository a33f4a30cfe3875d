// Arm-angle parametrisation and search of the seven-joint solvers.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <random>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "inverse_kinematics_test_support.h"

namespace {

using ik_test::flange_of;
using ik_test::reaches;

float angle_between(float a, float b) {
    return std::fabs(std::remainder(a - b, 2.0f * static_cast<float>(ALGO_PI)));
}

const float kQ[ROBOT_DOF] = {0.3f, 0.6f, -0.4f, -1.2f, 0.5f, 0.7f, -0.3f};

class ArmAngle : public ::testing::TestWithParam<RobotType> {
protected:
    void SetUp() override {
        ASSERT_EQ(libalgo_set_robot_and_sensor_type(GetParam(), _B), 0);
        TearDown();
    }
    void TearDown() override {
        ikine_set_7dof_solver_search_strategy(0);
        ikine_set_solution_range_qm75(Q_STEP_MAX);
    }
};

TEST_P(ArmAngle, RandomConfigurationsComeBackAtTheirOwnArmAngle) {
    for (const auto& q : reference::random_joints_within_limits(500, 99u)) {
        const float psi = calculate_arm_angle_from_config_qm75(q.data());
        ASSERT_TRUE(std::isfinite(psi));
        const Pose pose = ik_test::pose_of(q.data());
        float out[ROBOT_DOF] = {};
        ASSERT_EQ(inverse_kinematics_qm75_for_arm_angle(q.data(), &pose, psi, out), IKINE_SUCCESSFUL);
        ASSERT_TRUE(reaches(out, flange_of(q.data())));
        ASSERT_LT(angle_between(calculate_arm_angle_from_config_qm75(out), psi), 1e-3f);
    }
}

TEST_P(ArmAngle, SearchLeavesTheReferencesArmAngleWhenItsBranchesAreLimitedAndWholeRangeIsNearest) {
    const Pose pose = ik_test::pose_of(kQ);
    // A reference on the same target, with the elbow swung by one radian.
    float ref[ROBOT_DOF] = {};
    ASSERT_EQ(inverse_kinematics_qm75_for_arm_angle(kQ, &pose,
                                                    calculate_arm_angle_from_config_qm75(kQ) + 1.0f, ref),
              IKINE_SUCCESSFUL);
    // Joint 1 may only stay near kQ's value, which the reference's own arm angle misses.
    float lo[ROBOT_DOF], hi[ROBOT_DOF];
    libalgo_get_jointlim_min(lo);
    libalgo_get_jointlim_max(hi);
    lo[0] = kQ[0] - 0.05f;
    hi[0] = kQ[0] + 0.05f;
    libalgo_set_jointlim_min(lo);
    libalgo_set_jointlim_max(hi);
    ASSERT_GT(std::fabs(ref[0] - kQ[0]), 0.05f);

    float out[ROBOT_DOF] = {};
    ikine_set_solution_range_qm75(Q_STEP_MIN);
    EXPECT_EQ(inverse_kinematics(ref, &pose, out, USE_QUAT), IKINE_LIMITED);
    ikine_set_solution_range_qm75(Q_STEP_MAX);
    double distance[2] = {};
    for (const int strategy : {0, 1}) {
        ikine_set_7dof_solver_search_strategy(strategy);
        ASSERT_EQ(inverse_kinematics(ref, &pose, out, USE_QUAT), IKINE_SUCCESSFUL) << strategy;
        EXPECT_TRUE(reaches(out, flange_of(kQ))) << strategy;
        EXPECT_EQ(ikine_check_joint_position_limit(out), 0) << strategy;
        for (int j = 0; j < 7; ++j) distance[strategy] += (out[j] - ref[j]) * (out[j] - ref[j]);
    }
    // The whole-range search is never farther from the reference than the first branch found.
    EXPECT_LE(distance[1], distance[0] + 1e-9);
}

TEST_P(ArmAngle, ReferenceTwoDegreesOffNeverFlipsToAFarBranch) {
    // Where the branch nearest the reference is just outside a limit at the reference's arm angle,
    // a neighbouring arm angle holds an in-limit solution about as near: that one is the answer.
    const int targets = 3000 / ik_test::kSlowBuildDivisor;
    std::mt19937 rng(2024u + GetParam());
    std::normal_distribution<float> noise(0.0f, 2.0f * static_cast<float>(DEG2RAD));
    int index = 0;
    for (const auto& q : reference::random_joints_within_limits(targets, 77u + GetParam())) {
        SCOPED_TRACE("target " + std::to_string(index++));
        float ref[ROBOT_DOF] = {};
        for (int j = 0; j < 7; ++j) ref[j] = q[j] + noise(rng);
        const Pose pose = ik_test::pose_of(q.data());
        float out[ROBOT_DOF] = {};
        ASSERT_EQ(inverse_kinematics(ref, &pose, out, USE_QUAT), IKINE_SUCCESSFUL);
        ASSERT_LT(ik_test::max_joint_difference(out, ref, 7), 30.0 * DEG2RAD);
    }
}

TEST_P(ArmAngle, WhatIsKeptOfTheMiddleJointsLimitsFollowsThem) {
    // The search keeps what it works out of joints 2 and 6's limits between calls: after narrow
    // ones, the model's own must give what a thread that never saw the narrow ones gives.
    const auto targets = reference::random_joints_within_limits(100, 3u + GetParam());
    const auto refs = reference::random_joints_within_limits(100, 4u + GetParam());
    const auto answers = [&] {
        std::vector<std::array<float, ROBOT_DOF + 1>> out(targets.size());
        for (std::size_t i = 0; i < targets.size(); ++i) {
            const Pose pose = ik_test::pose_of(targets[i].data());
            out[i][ROBOT_DOF] = static_cast<float>(inverse_kinematics(refs[i].data(), &pose, out[i].data(), USE_QUAT));
        }
        return out;
    };
    float lo[ROBOT_DOF], hi[ROBOT_DOF], narrow_lo[ROBOT_DOF], narrow_hi[ROBOT_DOF];
    libalgo_get_jointlim_min(lo);
    libalgo_get_jointlim_max(hi);
    std::copy(lo, lo + ROBOT_DOF, narrow_lo);
    std::copy(hi, hi + ROBOT_DOF, narrow_hi);
    for (const int j : {1, 5}) narrow_lo[j] = -0.3f, narrow_hi[j] = 0.2f;
    libalgo_set_jointlim_min(narrow_lo);
    libalgo_set_jointlim_max(narrow_hi);
    answers();
    libalgo_set_jointlim_min(lo);
    libalgo_set_jointlim_max(hi);
    decltype(answers()) fresh;
    std::thread([&] { fresh = answers(); }).join();
    EXPECT_EQ(answers(), fresh);
}

TEST_P(ArmAngle, DefaultSearchFindsWhatTheWholeWalkFinds) {
    // The default search skips runs of arm angles by floors on their costs: a floor above some cost
    // in its run shows as a different answer from the step-by-step walk, unless the default search
    // settled on the reference's own branch first.
    struct Row {
        const char* targets;
        bool whole_turns;  // target joints over whole turns, most beyond some limit
    };
    const Row rows[] = {{"within limits", false}, {"over whole turns", true}};
    const int count = 300 / ik_test::kSlowBuildDivisor;
    for (const Row& row : rows) {
        std::mt19937 rng(41u + GetParam());
        std::uniform_real_distribution<float> turn(-static_cast<float>(ALGO_PI), static_cast<float>(ALGO_PI));
        auto targets = reference::random_joints_within_limits(count, 7u + GetParam());
        const auto refs = reference::random_joints_within_limits(count, 8u + GetParam());
        for (int i = 0; i < count; ++i) {
            SCOPED_TRACE(std::string(row.targets) + " target " + std::to_string(i));
            if (row.whole_turns)
                for (int j = 0; j < 7; ++j) targets[i][j] = turn(rng);
            const Pose pose = ik_test::pose_of(targets[i].data());
            float out[2][ROBOT_DOF] = {};
            int rc[2];
            for (const int strategy : {0, 1}) {
                ikine_set_7dof_solver_search_strategy(strategy);
                rc[strategy] = inverse_kinematics(refs[i].data(), &pose, out[strategy], USE_QUAT);
            }
            ikine_set_7dof_solver_search_strategy(0);
            if (rc[0] == IKINE_SUCCESSFUL && ik_test::max_joint_difference(out[0], refs[i].data(), 7) <= 0.35)
                continue;  // the reference's own branch
            ASSERT_EQ(rc[0], rc[1]);
            for (int j = 0; j < 7; ++j) ASSERT_EQ(out[0][j], out[1][j]) << "joint " << j;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    SevenJointModels, ArmAngle, ::testing::Values(QM75, TAV72, TAV72II), [](const auto& info) {
        return std::string(info.param == QM75 ? "QM75" : info.param == TAV72 ? "TAV72" : "TAV72II");
    });

TEST(ArmAngleSettings, RangeIsClampedAndOnlyKnownStrategiesAreStored) {
    const std::pair<float, float> ranges[] = {
        {10.0f, Q_STEP_MAX}, {0.0f, Q_STEP_MIN}, {1.0f, 1.0f}, {NAN, 1.0f}};
    for (const auto& [in, stored] : ranges) {
        ikine_set_solution_range_qm75(in);
        EXPECT_FLOAT_EQ(ikine_get_solution_range_qm75(), stored) << in;
    }
    ikine_set_solution_range_qm75(Q_STEP_MAX);
    ikine_set_7dof_solver_search_strategy(1);
    ikine_set_7dof_solver_search_strategy(5);
    EXPECT_EQ(ikine_get_7dof_solver_search_strategy(), 1);
    ikine_set_7dof_solver_search_strategy(0);
    EXPECT_EQ(ikine_get_7dof_solver_search_strategy(), 0);
}

}  // namespace
