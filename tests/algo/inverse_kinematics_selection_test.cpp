// Branch selection, nearest turn, limit checks and result codes of the inverse kinematics.

#include <gtest/gtest.h>

#include <cmath>

#include "inverse_kinematics_test_support.h"

namespace {

constexpr float kOnes[ROBOT_DOF] = {1, 1, 1, 1, 1, 1, 1, 1};

IkSolve two_solutions(float first_q1, float second_q1) {
    IkSolve s{};
    s.result = true;
    s.num = 2;
    s.q_solve[0][0] = first_q1;
    s.q_solve[1][0] = second_q1;
    return s;
}

class QM65Loaded : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(libalgo_set_robot_and_sensor_type(QM65, _B), 0);
        libalgo_get_jointlim_max(hi_);
        libalgo_get_jointlim_min(lo_);
        libalgo_get_joint_vel_maxlim(vmax_);
    }
    float hi_[ROBOT_DOF], lo_[ROBOT_DOF], vmax_[ROBOT_DOF];
    const float q_[ROBOT_DOF] = {0.4f, -0.3f, 0.8f, 0.5f, 0.9f, -1.1f};
};

TEST_F(QM65Loaded, SelectionPicksTheSmallestWeightedDistanceFirstOnTiesAndNothingOutsideALimit) {
    IkSolve empty{};
    EXPECT_EQ(ikine_select_ik_solve(kOnes, &empty), -1);
    const IkSolve tie = two_solutions(0.2f, -0.2f);
    EXPECT_EQ(ikine_select_ik_solve(kOnes, &tie), 0);
    IkSolve s = two_solutions(0.3f, 0.0f);
    s.q_solve[1][1] = 0.2f;  // nearer overall, but farther on joint 2
    EXPECT_EQ(ikine_select_ik_solve(kOnes, &s), 1);
    const float heavy_joint2[ROBOT_DOF] = {1, 10, 1, 1, 1, 1, 1, 1};
    EXPECT_EQ(ikine_select_ik_solve(heavy_joint2, &s), 0);
    // Never a solution just outside a limit.
    s = two_solutions(hi_[0] + 0.01f, 0.0f);
    s.q_ref[0] = hi_[0] + 0.01f;  // the outside solution is exactly the reference
    EXPECT_EQ(ikine_select_ik_solve(kOnes, &s), 1);
    s.q_solve[1][0] = hi_[0] + 0.02f;
    EXPECT_EQ(ikine_select_ik_solve(kOnes, &s), -1);
}

TEST(FindNearestJoint, ShiftsByWholeTurnsTowardsTheReferenceWithinTheWidenedLimits) {
    const double k2Pi = 2.0 * ALGO_PI;
    const struct {
        float ref, angle, tolerance, lo, hi;
        int rc;
        double expected;
    } cases[] = {
        {3.0f, -3.1f, 0.0f, -float(k2Pi), float(k2Pi), 0, -3.1 + k2Pi},  // one turn
        {3.0f, -3.1f, 0.0f, -3.14f, 3.14f, 0, -3.1},                     // the nearer turn is outside
        {1.0f, 1.0f, 0.0f, -0.5f, 0.5f, -1, 1.0},                        // no turn fits: left alone
        {0.0f, 0.55f, 0.1f, -0.5f, 0.5f, 0, 0.55},                       // tolerance widens the limits
        {12.5f, 0.1f, 0.0f, -13.0f, 13.0f, 0, 0.1 + 2 * k2Pi},           // two turns
    };
    for (const auto& c : cases) {
        float angle = c.angle;
        EXPECT_EQ(find_nearest_joint(c.ref, &angle, c.tolerance, c.lo, c.hi), c.rc)
            << c.ref << " " << c.angle;
        EXPECT_NEAR(angle, c.expected, 1e-5) << c.ref << " " << c.angle;
    }
}

TEST_F(QM65Loaded, PositionLimitsAreInclusiveAndCoverOnlyTheModelsJoints) {
    float q[ROBOT_DOF] = {};
    q[2] = hi_[2];
    q[4] = lo_[4];
    q[6] = 100.0f;  // QM65 has six joints
    EXPECT_EQ(ikine_check_joint_position_limit(q), 0);
    q[2] = std::nextafter(hi_[2], 10.0f);
    EXPECT_EQ(ikine_check_joint_position_limit(q), IKINE_LIMITED);
}

TEST_F(QM65Loaded, VelocityChecksAllowExactlyTheLimit) {
    const float dt = 0.004f;
    float prev[ROBOT_DOF] = {}, next[ROBOT_DOF] = {};
    next[1] = dt * vmax_[1];
    EXPECT_EQ(ikine_check_joint_velocity_limit(next, prev, dt), 0);
    next[1] = 1.001f * dt * vmax_[1];
    EXPECT_EQ(ikine_check_joint_velocity_limit(next, prev, dt), IKINE_OVERSPEED);
    // The overspeed judgment scales the control period; a negative factor allows no motion.
    float step[ROBOT_DOF] = {};
    EXPECT_EQ(joint_overspeed_judgment(step, prev, -1.0f), 0);
    step[0] = 1e-6f;
    EXPECT_EQ(joint_overspeed_judgment(step, prev, -1.0f), IKINE_OVERSPEED);
    step[0] = 0.0f;
    step[5] = -1.5f * libalgo_get_control_loop_period() * vmax_[5];
    EXPECT_EQ(joint_overspeed_judgment(step, prev, 1.0f), IKINE_OVERSPEED);
    EXPECT_EQ(joint_overspeed_judgment(step, prev, 1.6f), 0);
}

TEST_F(QM65Loaded, TypesWithoutASolverGiveUnknownType) {
    const Pose pose = ik_test::pose_of(q_);
    for (const int type : {int(UNIVERSAL), 12}) {
        libalgo_set_robot_and_sensor_type(type, _B);
        float out[ROBOT_DOF] = {};
        EXPECT_EQ(inverse_kinematics(q_, &pose, out, USE_QUAT), IKINE_UNKNOWN_TYPE) << type;
        IkSolve all;
        EXPECT_EQ(inverse_kinematics_all(&all, q_, &pose, USE_QUAT), IKINE_UNKNOWN_TYPE) << type;
        EXPECT_EQ(all.num, 0);
        EXPECT_FALSE(all.result);
    }
    // Six-joint models have no arm-angle solver.
    ASSERT_EQ(libalgo_set_robot_and_sensor_type(QM65, _B), 0);
    float out[ROBOT_DOF] = {};
    EXPECT_EQ(inverse_kinematics_qm75_for_arm_angle(q_, &pose, 0.0f, out), IKINE_UNKNOWN_TYPE);
}

TEST_F(QM65Loaded, OutOfReachFailsAndLeavesTheOutputAloneWhileOutOfLimitsIsLimited) {
    Pose pose = ik_test::pose_of(q_);
    pose.position.z += 2.0f;
    float out[ROBOT_DOF] = {7, 7, 7, 7, 7, 7, 7, 7};
    EXPECT_EQ(inverse_kinematics(q_, &pose, out, USE_EULER), IKINE_FAILED);
    for (const float v : out) EXPECT_EQ(v, 7.0f);
    IkSolve all;
    EXPECT_EQ(inverse_kinematics_all(&all, q_, &pose, USE_EULER), IKINE_FAILED);
    EXPECT_EQ(all.num, 0);
    // Branches only outside the limits give limited.
    pose = ik_test::pose_of(q_);
    // Joint 1 may neither face the wrist centre nor turn away from it.
    lo_[0] = q_[0] + 0.5f;
    hi_[0] = q_[0] + 1.0f;
    libalgo_set_jointlim_max(hi_);
    libalgo_set_jointlim_min(lo_);
    EXPECT_EQ(inverse_kinematics(q_, &pose, out, USE_QUAT), IKINE_LIMITED);
    EXPECT_EQ(inverse_kinematics_all(&all, q_, &pose, USE_QUAT), IKINE_SUCCESSFUL);
    EXPECT_EQ(all.num, 8);
}

TEST_F(QM65Loaded, JointsBeyondHalfATurnKeepTheReferencesTurn) {
    float q[ROBOT_DOF] = {0.4f, -0.3f, 0.8f, 0.5f, 0.9f, 5.5f};  // joint 6 spans +-360 deg
    const Pose pose = ik_test::pose_of(q);
    float out[ROBOT_DOF] = {};
    for (const float turn : {5.5f, 5.5f - 2.0f * static_cast<float>(ALGO_PI)}) {
        q[5] = turn;
        ASSERT_EQ(inverse_kinematics(q, &pose, out, USE_QUAT), IKINE_SUCCESSFUL);
        EXPECT_NEAR(out[5], turn, ik_test::kJointTol);
    }
}

TEST_F(QM65Loaded, EulerAndQuaternionFormsReadTheirOwnOrientationFromTheCurrentTable) {
    Pose euler_only = ik_test::pose_of(q_);
    Pose quat_only = euler_only;
    euler_only.quaternion = Quat{0, 0, 0, 0};
    quat_only.euler = Euler{0, 0, 0};
    float out[ROBOT_DOF] = {};
    ASSERT_EQ(inverse_kinematics(q_, &euler_only, out, USE_EULER), IKINE_SUCCESSFUL);
    EXPECT_LT(ik_test::max_joint_difference(out, q_, 6), ik_test::kJointTol);
    ASSERT_EQ(inverse_kinematics(q_, &quat_only, out, USE_QUAT), IKINE_SUCCESSFUL);
    EXPECT_LT(ik_test::max_joint_difference(out, q_, 6), ik_test::kJointTol);
    // A changed table is used at once.
    DH dh;
    libalgo_get_dh_value(&dh);
    dh.a[2] = 0.3f;  // longer upper arm
    dh.offset[3] = 0.2f;
    libalgo_set_dh_params(&dh);
    const Pose changed = ik_test::pose_of(q_);
    ASSERT_EQ(inverse_kinematics(q_, &changed, out, USE_QUAT), IKINE_SUCCESSFUL);
    EXPECT_LT(ik_test::max_joint_difference(out, q_, 6), ik_test::kJointTol);
}

// The solve of one branch stops early once no other arm configuration can be nearer, or picks from
// the set it found without writing it out; its answer must be the selection's among all branches,
// bit for bit, in range and limited alike.
TEST(NearestBranch, AgreesWithTheSelectionAmongAllBranches) {
    for (const RobotType type : {QM65, QML63II, QM75, TAV72}) {
        ASSERT_EQ(libalgo_set_robot_and_sensor_type(type, _B), 0);
        const int dof = type == QM75 || type == TAV72 ? 7 : 6;
        float lo[ROBOT_DOF], hi[ROBOT_DOF];
        libalgo_get_jointlim_min(lo);
        libalgo_get_jointlim_max(hi);
        const auto targets = reference::random_joints_within_limits(2000 / ik_test::kSlowBuildDivisor, 5u + type);
        const auto refs = reference::random_joints_within_limits(2000 / ik_test::kSlowBuildDivisor, 9u + type);
        for (float& l : lo) l *= 0.7f;  // narrower limits: some targets have no branch within them
        for (float& h : hi) h *= 0.7f;
        libalgo_set_jointlim_min(lo);
        libalgo_set_jointlim_max(hi);
        int limited = 0;
        for (std::size_t i = 0; i < targets.size(); ++i) {
            const Pose pose = ik_test::pose_of(targets[i].data());
            IkSolve all;
            ASSERT_EQ(inverse_kinematics_all(&all, refs[i].data(), &pose, USE_QUAT), IKINE_SUCCESSFUL);
            const int chosen = ikine_select_ik_solve(kOnes, &all);
            float out[ROBOT_DOF] = {};
            const int rc = inverse_kinematics(refs[i].data(), &pose, out, USE_QUAT);
            ASSERT_EQ(rc, chosen < 0 ? IKINE_LIMITED : IKINE_SUCCESSFUL) << type << " target " << i;
            limited += chosen < 0;
            for (int j = 0; chosen >= 0 && j < dof; ++j) ASSERT_EQ(out[j], all.q_solve[chosen][j]) << type << " " << i;
        }
        EXPECT_GT(limited, 0);
    }
}

}  // namespace
