// Targets at and near the singular configurations of every solver family: a valid branch or a
// clean failure code, never a NaN.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <string>

#include "inverse_kinematics_test_support.h"

namespace {

using ik_test::flange_of;
using ik_test::reaches;

constexpr float kH = 1.5707963f;

struct SingularCase {
    const char* name;
    RobotType type;
    float q[ROBOT_DOF];  // a configuration at the singularity
};

// theta = q + offset; QM65 offsets (0, pi/2, pi/2, 0, 0, 0), LUX (0, -pi/2, 0, -pi/2, 0, 0).
const SingularCase kCases[] = {
    {"QM65_StretchedUpright", QM65, {0, 0, 0, 0, 0, 0}},
    {"QM65_WristAligned", QM65, {0.3f, -0.4f, 0.9f, 0.7f, 0, -0.2f}},
    {"QM65_WristNearlyAligned", QM65, {0.3f, -0.4f, 0.9f, 0.7f, 1e-7f, -0.2f}},
    {"QM65_ElbowStretched", QM65, {0.3f, -0.6f, 0, 0.7f, 0.5f, -0.2f}},
    {"QML63II_WristAligned", QML63II, {-1.0f, 0.4f, -0.5f, 0.2f, 0, 1.0f}},
    {"LUX65_WristAligned", LUX65, {0.5f, -0.8f, 1.2f, 0.3f, 0, 0.4f}},
    {"LUX65_ElbowStretched", LUX65, {0.5f, -0.8f, 0, 0.3f, 0.6f, 0.4f}},
    {"LUX65_StretchedLevel", LUX65, {0, kH, 0, kH, 0, 0}},
    {"QM75_StretchedUpright", QM75, {0, 0, 0, 0, 0, 0, 0}},
    {"QM75_ElbowStretched", QM75, {0.4f, 0.7f, -0.3f, 0, 0.5f, 0.6f, 0.2f}},
    {"QM75_ShoulderAligned", QM75, {0.4f, 0, -0.3f, 1.1f, 0.5f, 0.6f, 0.2f}},
    {"QM75_WristAligned", QM75, {0.4f, 0.7f, -0.3f, 1.1f, 0.5f, 0, 0.2f}},
    {"TAV72_StretchedUpright", TAV72, {0, 0, 0, 0, 0, 0, 0}},
    {"TAV72_WristAligned", TAV72, {0.4f, 0.7f, -0.3f, -1.1f, 0.5f, 0, 0.2f}},
};

class IkSingularity : public ::testing::TestWithParam<SingularCase> {
protected:
    void SetUp() override {
        ASSERT_EQ(libalgo_set_robot_and_sensor_type(GetParam().type, _B), 0);
        ikine_set_7dof_solver_search_strategy(0);
        ikine_set_solution_range_qm75(Q_STEP_MAX);
        dof_ = libalgo_get_rbt_dof();
    }

    // A valid branch or a clean failure code for the target of q, and every listed branch reaches it.
    static int valid_answer(const float* q, const float* ref, float* out) {
        const Matrix target = flange_of(q);
        const Pose pose = transformation_matrix_to_pose(target);
        const int rc = inverse_kinematics(ref, &pose, out, USE_QUAT);
        EXPECT_TRUE(rc == IKINE_SUCCESSFUL || rc == IKINE_LIMITED || rc == IKINE_FAILED) << rc;
        if (rc == IKINE_SUCCESSFUL) {
            EXPECT_TRUE(reaches(out, target));
            EXPECT_EQ(ikine_check_joint_position_limit(out), 0);
        }
        IkSolve all;
        inverse_kinematics_all(&all, ref, &pose, USE_QUAT);
        for (int i = 0; i < all.num; ++i) EXPECT_TRUE(reaches(all.q_solve[i], target)) << "branch " << i;
        return rc;
    }

    int dof_ = 6;
};

TEST_P(IkSingularity, ExactSingularTargetGivesABranchNearTheReference) {
    float ref[ROBOT_DOF], out[ROBOT_DOF] = {};
    for (int j = 0; j < ROBOT_DOF; ++j) ref[j] = GetParam().q[j] + (j % 2 == 0 ? 0.01f : -0.01f);
    ASSERT_EQ(valid_answer(GetParam().q, ref, out), IKINE_SUCCESSFUL);
    // The joints the target leaves free follow the reference, so the answer stays close.
    EXPECT_LT(ik_test::max_joint_difference(out, ref, dof_), 0.05);
}

TEST_P(IkSingularity, NearbyTargetsGiveValidBranches) {
    for (const float step : {1e-7f, 1e-6f, 1e-5f, 1e-4f, 1e-3f}) {
        for (int j = 0; j < dof_; ++j) {
            SCOPED_TRACE("joint " + std::to_string(j) + " moved by " + std::to_string(step));
            float q[ROBOT_DOF], out[ROBOT_DOF] = {};
            std::copy(GetParam().q, GetParam().q + ROBOT_DOF, q);
            q[j] += step;
            valid_answer(q, GetParam().q, out);
        }
    }
}

TEST_P(IkSingularity, TargetJustBeyondReachFailsCleanly) {
    const Matrix target = flange_of(GetParam().q);
    // Push the flange 2 m away from the base along its own offset from the first joint.
    const float x = target.data[0][3], y = target.data[1][3], z = target.data[2][3] - 0.1f;
    const float k = 2.0f / std::sqrt(x * x + y * y + z * z);
    Pose pose = transformation_matrix_to_pose(target);
    pose.position = Pos{pose.position.x + k * x, pose.position.y + k * y, pose.position.z + k * z};
    float out[ROBOT_DOF] = {};
    EXPECT_EQ(inverse_kinematics(GetParam().q, &pose, out, USE_QUAT), IKINE_FAILED);
}

INSTANTIATE_TEST_SUITE_P(EveryFamily, IkSingularity, ::testing::ValuesIn(kCases),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace

namespace {

// LUX arms with joint 5 just off zero and the elbow nearly straight: the orientation pins
// t2 + t3 + t4 only to its rounding over sin t5, and the links nearly at full reach must still
// meet. Every reachable target is solved, with every branch on the singular shoulder side: the
// truth's elbow pair, and the wrist twin's pair (t2 + t3 + t4 a half turn on) where its two-link
// target lies within reach. With the wrist point also near axis 1 the two shoulder sides merge
// and joint 1 is as loose; there only the reach of every branch is checked.
class LuxNearWristSingularity : public ::testing::TestWithParam<RobotType> {};

TEST_P(LuxNearWristSingularity, EveryReachableTargetIsSolvedWithEveryBranchOfItsSide) {
    ASSERT_EQ(libalgo_set_robot_and_sensor_type(GetParam(), _B), 0);
    DH dh;
    libalgo_get_dh_value(&dh);
    std::mt19937 rng(5u + GetParam());
    std::uniform_real_distribution<float> wrist(1e-5f, 3e-4f), elbow(-5.0f, 5.0f), sign(-1.0f, 1.0f);
    const int targets = 1000 / ik_test::kSlowBuildDivisor;
    int index = 0;
    for (auto q : reference::random_joints_within_limits(targets, 11u + GetParam())) {
        SCOPED_TRACE("target " + std::to_string(index++));
        q[4] = sign(rng) < 0.0f ? -wrist(rng) : wrist(rng);
        q[2] = static_cast<float>(elbow(rng) * DEG2RAD) - dh.offset[2];
        const Matrix target = flange_of(q.data());
        const Pose pose = transformation_matrix_to_pose(target);
        float out[ROBOT_DOF] = {};
        ASSERT_EQ(inverse_kinematics(q.data(), &pose, out, USE_QUAT), IKINE_SUCCESSFUL);
        ASSERT_TRUE(reaches(out, target));

        double th[6];
        for (int j = 0; j < 6; ++j) th[j] = double(q[j]) + dh.offset[j];
        const double t23 = th[1] + th[2], t234 = t23 + th[3];
        // The twin's two-link target lies 2 * d4 on along (sin t234, -cos t234).
        const double x = dh.a[2] * std::cos(th[1]) + dh.a[3] * std::cos(t23) + 2.0 * dh.d[4] * std::sin(t234);
        const double y = dh.a[2] * std::sin(th[1]) + dh.a[3] * std::sin(t23) - 2.0 * dh.d[4] * std::cos(t234);
        const double reach = dh.a[2] + dh.a[3] - std::hypot(x, y);
        const double from_axis1 = dh.a[2] * std::cos(th[1]) + dh.a[3] * std::cos(t23) + dh.d[4] * std::sin(t234);

        IkSolve all;
        ASSERT_EQ(inverse_kinematics_all(&all, q.data(), &pose, USE_QUAT), IKINE_SUCCESSFUL);
        int own = 0, twins = 0;
        for (int i = 0; i < all.num; ++i) {
            const float* b = all.q_solve[i];
            ASSERT_TRUE(reaches(b, target)) << "branch " << i;
            if (std::fabs(std::remainder(b[0] - q[0], 2 * M_PI)) > 1e-3) continue;  // the other shoulder side
            const double turn = std::remainder(b[1] + b[2] + b[3] + dh.offset[1] + dh.offset[2] + dh.offset[3] - t234,
                                               2 * M_PI);
            ++(std::fabs(turn) < M_PI / 2 ? own : twins);
        }
        if (std::fabs(from_axis1) < 1e-2) continue;
        EXPECT_EQ(own, 2);
        if (reach > 1e-4) {
            EXPECT_EQ(twins, 2) << "twin pair " << reach << " m within reach";
        }
    }
}

INSTANTIATE_TEST_SUITE_P(LuxModels, LuxNearWristSingularity, ::testing::Values(LUX65, LUX62, LUX63),
                         [](const auto& info) {
                             return std::string(info.param == LUX65 ? "LUX65" : info.param == LUX62 ? "LUX62" : "LUX63");
                         });

}  // namespace
