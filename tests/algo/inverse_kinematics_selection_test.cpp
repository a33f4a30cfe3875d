// Branch selection, nearest turn, limit checks and result codes of the inverse kinematics.

#include <gtest/gtest.h>

#include <cmath>

#include "inverse_kinematics_test_support.h"

namespace {

using ik_test::flange_of;

class IkSelection : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(libalgo_set_robot_and_sensor_type(QM65, _B), 0); }

    static IkSolve two_solutions(float first_q1, float second_q1) {
        IkSolve s{};
        s.result = true;
        s.num = 2;
        s.q_solve[0][0] = first_q1;
        s.q_solve[1][0] = second_q1;
        return s;
    }

    static constexpr float kOnes[ROBOT_DOF] = {1, 1, 1, 1, 1, 1, 1, 1};
};

TEST_F(IkSelection, EmptySetSelectsNothing) {
    IkSolve s{};
    EXPECT_EQ(ikine_select_ik_solve(kOnes, &s), -1);
}

TEST_F(IkSelection, EqualCostsKeepTheFirstSolution) {
    const IkSolve s = two_solutions(0.2f, -0.2f);
    EXPECT_EQ(ikine_select_ik_solve(kOnes, &s), 0);
}

TEST_F(IkSelection, PicksTheSmallestWeightedDistance) {
    IkSolve s = two_solutions(0.3f, 0.0f);
    s.q_solve[1][1] = 0.2f;  // nearer overall, but farther on joint 2
    EXPECT_EQ(ikine_select_ik_solve(kOnes, &s), 1);
    const float heavy_joint2[ROBOT_DOF] = {1, 10, 1, 1, 1, 1, 1, 1};
    EXPECT_EQ(ikine_select_ik_solve(heavy_joint2, &s), 0);
}

TEST_F(IkSelection, NeverChoosesASolutionJustOutsideALimit) {
    float hi[ROBOT_DOF];
    libalgo_get_jointlim_max(hi);
    IkSolve s = two_solutions(hi[0] + 0.01f, 0.0f);
    s.q_ref[0] = hi[0] + 0.01f;  // the outside solution is exactly the reference
    EXPECT_EQ(ikine_select_ik_solve(kOnes, &s), 1);
    s.q_solve[1][0] = hi[0] + 0.02f;
    EXPECT_EQ(ikine_select_ik_solve(kOnes, &s), -1);
}

TEST(FindNearestJoint, ShiftsByAWholeTurnTowardsTheReference) {
    float angle = -3.1f;
    EXPECT_EQ(find_nearest_joint(3.0f, &angle, 0.0f, -2.0f * ALGO_PI, 2.0f * ALGO_PI), 0);
    EXPECT_NEAR(angle, -3.1 + 2.0 * ALGO_PI, 1e-6);
}

TEST(FindNearestJoint, StaysInsideTheLimitsEvenWhenAnotherTurnIsNearer) {
    float angle = -3.1f;
    EXPECT_EQ(find_nearest_joint(3.0f, &angle, 0.0f, -3.14f, 3.14f), 0);
    EXPECT_FLOAT_EQ(angle, -3.1f);
}

TEST(FindNearestJoint, LeavesTheAngleWhenNoTurnFits) {
    float angle = 1.0f;
    EXPECT_EQ(find_nearest_joint(1.0f, &angle, 0.0f, -0.5f, 0.5f), -1);
    EXPECT_FLOAT_EQ(angle, 1.0f);
}

TEST(FindNearestJoint, ToleranceWidensTheInterval) {
    float angle = 0.55f;
    EXPECT_EQ(find_nearest_joint(0.0f, &angle, 0.1f, -0.5f, 0.5f), 0);
    EXPECT_FLOAT_EQ(angle, 0.55f);
}

TEST(FindNearestJoint, ReachesTwoTurnsAway) {
    float angle = 0.1f;
    EXPECT_EQ(find_nearest_joint(12.5f, &angle, 0.0f, -13.0f, 13.0f), 0);
    EXPECT_NEAR(angle, 0.1 + 4.0 * ALGO_PI, 1e-5);
}

class IkLimitChecks : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(libalgo_set_robot_and_sensor_type(QM65, _B), 0);
        libalgo_get_jointlim_max(hi_);
        libalgo_get_jointlim_min(lo_);
        libalgo_get_joint_vel_maxlim(vmax_);
    }
    float hi_[ROBOT_DOF];
    float lo_[ROBOT_DOF];
    float vmax_[ROBOT_DOF];
};

TEST_F(IkLimitChecks, PositionLimitsAreInclusive) {
    float q[ROBOT_DOF] = {};
    q[2] = hi_[2];
    q[4] = lo_[4];
    EXPECT_EQ(ikine_check_joint_position_limit(q), 0);
    q[2] = std::nextafter(hi_[2], 10.0f);
    EXPECT_EQ(ikine_check_joint_position_limit(q), IKINE_LIMITED);
}

TEST_F(IkLimitChecks, PositionCheckReadsOnlyTheModelsJoints) {
    float q[ROBOT_DOF] = {};
    q[6] = 100.0f;  // QM65 has six joints
    EXPECT_EQ(ikine_check_joint_position_limit(q), 0);
}

TEST_F(IkLimitChecks, VelocityCheckAllowsExactlyTheLimit) {
    const float dt = 0.004f;
    float prev[ROBOT_DOF] = {};
    float next[ROBOT_DOF] = {};
    next[1] = dt * vmax_[1];
    EXPECT_EQ(ikine_check_joint_velocity_limit(next, prev, dt), 0);
    next[1] = 1.001f * dt * vmax_[1];
    EXPECT_EQ(ikine_check_joint_velocity_limit(next, prev, dt), IKINE_OVERSPEED);
}

TEST_F(IkLimitChecks, OverspeedJudgmentScalesTheControlPeriod) {
    const float period = libalgo_get_control_loop_period();
    float prev[ROBOT_DOF] = {};
    float next[ROBOT_DOF] = {};
    next[5] = -1.5f * period * vmax_[5];
    EXPECT_EQ(joint_overspeed_judgment(next, prev, 1.0f), IKINE_OVERSPEED);
    EXPECT_EQ(joint_overspeed_judgment(next, prev, 1.6f), 0);
}

TEST_F(IkLimitChecks, NegativeOverspeedFactorAllowsNoMotion) {
    float prev[ROBOT_DOF] = {};
    float next[ROBOT_DOF] = {};
    EXPECT_EQ(joint_overspeed_judgment(next, prev, -1.0f), 0);
    next[0] = 1e-6f;
    EXPECT_EQ(joint_overspeed_judgment(next, prev, -1.0f), IKINE_OVERSPEED);
}

class IkResultCodes : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(libalgo_set_robot_and_sensor_type(QM65, _B), 0); }
    const float q_[ROBOT_DOF] = {0.4f, -0.3f, 0.8f, 0.5f, 0.9f, -1.1f};
};

TEST_F(IkResultCodes, TypesWithoutASolverGiveUnknownType) {
    const Pose pose = ik_test::pose_of(flange_of(q_));
    for (const int type : {int(UNIVERSAL), 12}) {
        libalgo_set_robot_and_sensor_type(type, _B);
        float out[ROBOT_DOF] = {};
        EXPECT_EQ(inverse_kinematics(q_, &pose, out, USE_QUAT), IKINE_UNKNOWN_TYPE) << type;
        IkSolve all;
        EXPECT_EQ(inverse_kinematics_all(&all, q_, &pose, USE_QUAT), IKINE_UNKNOWN_TYPE) << type;
        EXPECT_EQ(all.num, 0);
        EXPECT_FALSE(all.result);
    }
}

TEST_F(IkResultCodes, OutOfReachFailsAndLeavesTheOutputAlone) {
    Pose pose = ik_test::pose_of(flange_of(q_));
    pose.position.z += 2.0f;
    float out[ROBOT_DOF] = {7, 7, 7, 7, 7, 7, 7, 7};
    EXPECT_EQ(inverse_kinematics(q_, &pose, out, USE_EULER), IKINE_FAILED);
    for (const float v : out) EXPECT_EQ(v, 7.0f);
    IkSolve all;
    EXPECT_EQ(inverse_kinematics_all(&all, q_, &pose, USE_EULER), IKINE_FAILED);
    EXPECT_EQ(all.num, 0);
}

TEST_F(IkResultCodes, BranchesOnlyOutsideTheLimitsGiveLimited) {
    const Pose pose = ik_test::pose_of(flange_of(q_));
    float hi[ROBOT_DOF];
    float lo[ROBOT_DOF];
    libalgo_get_jointlim_max(hi);
    libalgo_get_jointlim_min(lo);
    // Joint 1 may neither face the wrist centre nor turn away from it.
    lo[0] = q_[0] + 0.5f;
    hi[0] = q_[0] + 1.0f;
    libalgo_set_jointlim_max(hi);
    libalgo_set_jointlim_min(lo);
    float out[ROBOT_DOF] = {};
    EXPECT_EQ(inverse_kinematics(q_, &pose, out, USE_QUAT), IKINE_LIMITED);
    IkSolve all;
    EXPECT_EQ(inverse_kinematics_all(&all, q_, &pose, USE_QUAT), IKINE_SUCCESSFUL);
    EXPECT_EQ(all.num, 8);
}

TEST_F(IkResultCodes, JointsBeyondHalfATurnKeepTheReferencesTurn) {
    float q[ROBOT_DOF] = {0.4f, -0.3f, 0.8f, 0.5f, 0.9f, 5.5f};  // joint 6 spans +-360 deg
    const Pose pose = ik_test::pose_of(flange_of(q));
    float out[ROBOT_DOF] = {};
    ASSERT_EQ(inverse_kinematics(q, &pose, out, USE_QUAT), IKINE_SUCCESSFUL);
    EXPECT_NEAR(out[5], 5.5f, ik_test::kJointTol);
    q[5] = 5.5f - 2.0f * static_cast<float>(ALGO_PI);
    ASSERT_EQ(inverse_kinematics(q, &pose, out, USE_QUAT), IKINE_SUCCESSFUL);
    EXPECT_NEAR(out[5], q[5], ik_test::kJointTol);
}

TEST_F(IkResultCodes, EulerAndQuaternionFormsReadTheirOwnOrientation) {
    Pose pose = ik_test::pose_of(flange_of(q_));
    Pose euler_only = pose;
    euler_only.quaternion = Quat{0, 0, 0, 0};
    float out[ROBOT_DOF] = {};
    ASSERT_EQ(inverse_kinematics(q_, &euler_only, out, USE_EULER), IKINE_SUCCESSFUL);
    EXPECT_LT(ik_test::max_joint_difference(out, q_, 6), ik_test::kJointTol);
    Pose quat_only = pose;
    quat_only.euler = Euler{0, 0, 0};
    ASSERT_EQ(inverse_kinematics(q_, &quat_only, out, USE_QUAT), IKINE_SUCCESSFUL);
    EXPECT_LT(ik_test::max_joint_difference(out, q_, 6), ik_test::kJointTol);
}

TEST_F(IkResultCodes, ChangedTableIsUsedAtOnce) {
    DH dh;
    libalgo_get_dh_value(&dh);
    dh.a[2] = 0.3f;  // longer upper arm
    dh.offset[3] = 0.2f;
    libalgo_set_dh_params(&dh);
    const Matrix target = flange_of(q_);
    const Pose pose = ik_test::pose_of(target);
    float out[ROBOT_DOF] = {};
    ASSERT_EQ(inverse_kinematics(q_, &pose, out, USE_QUAT), IKINE_SUCCESSFUL);
    EXPECT_LT(ik_test::max_joint_difference(out, q_, 6), ik_test::kJointTol);
    EXPECT_TRUE(ik_test::reaches(out, target));
}

}  // namespace
