// Forward then inverse kinematics over random joint vectors inside the limits, per model.

#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "inverse_kinematics_test_support.h"

namespace {

using ik_test::flange_of;
using ik_test::reaches;

// Near a singular configuration the single-precision target pins the joints only to its
// rounding divided by the distance to the singularity, and near two of them that exceeds
// 1e-3 rad; those samples are checked by the pose they reach only. th = q + offset.
constexpr float kNearSingular = 1e-2f;

bool spherical_wrist_singular(const DH& dh, const float* th) {
    const float elbow = std::fabs(std::sin(th[2] - std::atan2(dh.d[3], dh.a[3])));
    const float wrist_from_axis1 =
        dh.a[2] * std::cos(th[1]) + dh.a[3] * std::cos(th[1] + th[2]) + dh.d[3] * std::sin(th[1] + th[2]);
    return std::fabs(std::sin(th[4])) < kNearSingular || elbow < kNearSingular ||
           std::fabs(wrist_from_axis1) < kNearSingular;
}

bool parallel_axes_singular(const DH& dh, const float* th) {
    const float in_plane = dh.a[2] * std::cos(th[1]) + dh.a[3] * std::cos(th[1] + th[2]) +
                           dh.d[4] * std::sin(th[1] + th[2] + th[3]);
    return std::fabs(std::sin(th[4])) < kNearSingular || std::fabs(std::sin(th[2])) < kNearSingular ||
           std::fabs(in_plane) < kNearSingular;
}

bool arm_angle_singular(const DH&, const float* th) {
    for (const int j : {1, 3, 5})
        if (std::fabs(std::sin(th[j])) < kNearSingular) return true;
    return false;
}

struct ModelCase {
    const char* name;
    RobotType type;
    int samples;
    int branches;  // branches of every reachable target, 0 when it varies
    bool (*near_singular)(const DH&, const float*);
};

// 10 000 samples for one model of each solver family, 1000 for its siblings.
const ModelCase kModels[] = {
    {"QM65", QM65, 10000, 8, spherical_wrist_singular},
    {"QML63II", QML63II, 10000, 8, spherical_wrist_singular},
    {"QML63III", QML63III, 1000, 8, spherical_wrist_singular},
    {"QML63IV", QML63IV, 1000, 8, spherical_wrist_singular},
    {"LUX65", LUX65, 10000, 0, parallel_axes_singular},
    {"LUX62", LUX62, 1000, 0, parallel_axes_singular},
    {"LUX63", LUX63, 1000, 0, parallel_axes_singular},
    {"QM75", QM75, 10000, 8, arm_angle_singular},
    {"TAV72", TAV72, 10000, 8, arm_angle_singular},
    {"TAV72II", TAV72II, 1000, 8, arm_angle_singular},
};

class InverseKinematicsRoundTrip : public ::testing::TestWithParam<ModelCase> {
protected:
    void SetUp() override {
        ASSERT_EQ(libalgo_set_robot_and_sensor_type(GetParam().type, _B), 0);
        ikine_set_7dof_solver_search_strategy(0);
        ikine_set_solution_range_qm75(Q_STEP_MAX);
    }
};

TEST_P(InverseKinematicsRoundTrip, ReturnsTheOriginalJointsAndOnlyBranchesThatReachTheTarget) {
    const ModelCase& model = GetParam();
    DH dh;
    libalgo_get_dh_value(&dh);
    const int dof = libalgo_get_rbt_dof();
    int singular_samples = 0;
    int index = 0;
    for (const auto& q : reference::random_joints_within_limits(model.samples, 20240611u + model.type)) {
        SCOPED_TRACE("sample " + std::to_string(index++));
        const Matrix target = flange_of(q.data());
        const Pose pose = transformation_matrix_to_pose(target);
        const int form = index % 2 == 0 ? USE_QUAT : USE_EULER;

        float q_out[ROBOT_DOF] = {};
        ASSERT_EQ(inverse_kinematics(q.data(), &pose, q_out, form), IKINE_SUCCESSFUL);
        ASSERT_TRUE(reaches(q_out, target));
        float theta[ROBOT_DOF];
        for (int j = 0; j < ROBOT_DOF; ++j) theta[j] = q[j] + dh.offset[j];
        if (model.near_singular(dh, theta)) {
            ++singular_samples;
        } else {
            ASSERT_LT(ik_test::max_joint_difference(q_out, q.data(), dof), ik_test::kJointTol);
        }

        IkSolve all;
        ASSERT_EQ(inverse_kinematics_all(&all, q.data(), &pose, form), IKINE_SUCCESSFUL);
        ASSERT_TRUE(all.result);
        if (model.branches > 0) {
            ASSERT_EQ(all.num, model.branches);
        }
        for (int i = 0; i < all.num; ++i) ASSERT_TRUE(reaches(all.q_solve[i], target)) << "branch " << i;
    }
    // Only a thin shell around the singular sets is exempt from the exact comparison.
    EXPECT_LT(singular_samples, model.samples / 20);
}

INSTANTIATE_TEST_SUITE_P(EveryModel, InverseKinematicsRoundTrip, ::testing::ValuesIn(kModels),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(InverseKinematicsFrames, RemovesInstallationAndToolFrames) {
    ASSERT_EQ(libalgo_set_robot_and_sensor_type(QM65, _B), 0);
    const float install[3] = {0.3f, -0.2f, 1.1f};
    libalgo_set_robot_install_angle(install);
    libalgo_set_tool_cs_params(Coord{0.01f, -0.02f, 0.1f, 0.2f, 0.1f, -0.4f});
    for (const auto& q : reference::random_joints_within_limits(200, 7u)) {
        const Pose tool_pose = forward_kinematics_rotate(q.data());
        float q_out[ROBOT_DOF] = {};
        ASSERT_EQ(inverse_kinematics(q.data(), &tool_pose, q_out, USE_QUAT), IKINE_SUCCESSFUL);
        EXPECT_LT(ik_test::max_joint_difference(q_out, q.data(), 6), ik_test::kJointTol);
    }
}

TEST(InverseKinematicsFrames, PerModelSolversTakeTheFlangeTarget) {
    ASSERT_EQ(libalgo_set_robot_and_sensor_type(QML63II, _B), 0);
    const float q[ROBOT_DOF] = {0.3f, -0.4f, 0.9f, 0.2f, -0.7f, 1.3f};
    const Matrix flange = flange_of(q);
    float q_out[ROBOT_DOF] = {};
    ASSERT_EQ(inverse_kinematics_qml63_2(&flange, q, q_out), IKINE_SUCCESSFUL);
    EXPECT_LT(ik_test::max_joint_difference(q_out, q, 6), ik_test::kJointTol);
    DH dh;
    libalgo_get_dh_value(&dh);
    IkSolve all;
    ASSERT_EQ(ikine_qml6II_solver(&dh, &flange, q, &all), IKINE_SUCCESSFUL);
    EXPECT_EQ(all.num, 8);
}

}  // namespace
