// Tool and flange poses over the system data: frames, installation and calibration.
#include <gtest/gtest.h>

#include "kinematics_reference.h"
#include "libalgo_interface.h"
#include "qman_kinematics.h"
#include "qman_mathfuncs.h"

namespace {

using reference::Mat4;
using reference::operator*;

Mat4 to_mat4(const Matrix& m) {
    Mat4 r{};
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j) r[i][j] = m.data[i][j];
    return r;
}

Mat4 coord_matrix(const Coord& c) {
    return to_mat4(pose_euler_to_transformation_matrix(Pos{c.x, c.y, c.z}, Euler{c.rx, c.ry, c.rz}));
}

Mat4 inverse_rigid(const Mat4& t) {
    Mat4 r = reference::identity();
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) r[i][j] = t[j][i];
    for (int i = 0; i < 3; ++i) r[i][3] = -(r[i][0] * t[0][3] + r[i][1] * t[1][3] + r[i][2] * t[2][3]);
    return r;
}

void expect_pos_is(const Pos& p, const Mat4& t) {
    EXPECT_NEAR(p.x, t[0][3], 2e-5);
    EXPECT_NEAR(p.y, t[1][3], 2e-5);
    EXPECT_NEAR(p.z, t[2][3], 2e-5);
}

// Both orientation forms of the pose must describe t.
void expect_pose_is(const Pose& p, const Mat4& t) {
    EXPECT_LT(reference::max_difference(pose_quat_to_transformation_matrix(p.position, p.quaternion), t),
              2e-5);
    EXPECT_LT(reference::max_difference(pose_euler_to_transformation_matrix(p.position, p.euler), t), 2e-5);
}

const Coord kTool = {0.01f, -0.02f, 0.12f, 0.3f, -0.2f, 1.0f};
const Coord kWork = {0.4f, 0.1f, -0.05f, 0.1f, 0.2f, -0.6f};
const float kQ[ROBOT_DOF] = {0.3f, -0.5f, 0.9f, 1.1f, -0.7f, 2.0f, -0.4f};

class PoseVariants : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(libalgo_set_robot_and_sensor_type(QM65, _B), 0);
        libalgo_set_tool_cs_params(kTool);
        libalgo_set_work_cs_params(kWork);
        const float install[3] = {0.2f, -0.4f, 0.7f};
        libalgo_set_robot_install_angle(install);
        libalgo_get_dh_value(&dh);
        install_ = to_mat4(libalgo_get_robot_install_angle_matrix());
        work_inverse_ = inverse_rigid(coord_matrix(kWork));
        tool_ = coord_matrix(kTool);
    }

    DH dh{};
    Mat4 install_{}, work_inverse_{}, tool_{};
};

TEST_F(PoseVariants, EachVariantChainsItsOwnFrames) {
    const Mat4 flange = reference::modified_chain(dh, kQ, 6);
    EXPECT_LT(reference::max_difference(forward_kinematics_e(kQ), flange), 1e-5);
    expect_pose_is(forward_kinematics(kQ), work_inverse_ * install_ * flange * tool_);
    expect_pos_is(forward_kinematics_pos(kQ), work_inverse_ * install_ * flange * tool_);
    expect_pose_is(forward_kinematics_world_to_flange(kQ), work_inverse_ * install_ * flange);
    expect_pose_is(forward_kinematics_rotate(kQ), install_ * flange * tool_);
    expect_pose_is(forward_kinematics_rotate_flange(kQ), install_ * flange);
}

TEST_F(PoseVariants, CalibrationErrorsOnlyReachTheCalibrationVariant) {
    const float err_d[ROBOT_DOF] = {0.001f, 0.0f, 0.002f, -0.001f, 0.0f, 0.0005f};
    const float err_a[ROBOT_DOF] = {0.0f, 0.001f, -0.002f, 0.0f, 0.001f, 0.0f};
    const float err_alpha[ROBOT_DOF] = {0.001f, -0.002f, 0.0f, 0.003f, 0.0f, -0.001f};
    const float err_theta[ROBOT_DOF] = {0.002f, 0.0f, -0.001f, 0.0f, 0.004f, 0.0f};
    const Pos nominal = forward_kinematics_pos(kQ);
    libalgo_set_dh_compensation_value(err_d, err_a, err_alpha, err_theta);
    const Pos still_nominal = forward_kinematics_pos(kQ);
    EXPECT_EQ(still_nominal.x, nominal.x);
    EXPECT_EQ(still_nominal.z, nominal.z);
    DH with_errors = dh;
    for (int i = 0; i < ROBOT_DOF; ++i) {
        with_errors.d[i] += err_d[i], with_errors.a[i] += err_a[i];
        with_errors.alpha[i] += err_alpha[i], with_errors.offset[i] += err_theta[i];
    }
    expect_pos_is(forward_kinematics_pos_calibration(kQ),
                  work_inverse_ * install_ * reference::modified_chain(with_errors, kQ, 6) * tool_);
}

TEST(PoseVariantsQM75, CalibrationUsesTheStandardConvention) {
    ASSERT_EQ(libalgo_set_robot_and_sensor_type(QM75, _B), 0);
    const float err_d[ROBOT_DOF] = {0.001f, 0.0f, 0.002f, -0.001f, 0.0f, 0.0005f, 0.001f};
    const float err_a[ROBOT_DOF] = {0.0f, 0.001f, -0.002f, 0.0f, 0.001f, 0.0f, 0.0f};
    const float zero[ROBOT_DOF] = {};
    libalgo_set_dh_compensation_value(err_d, err_a, zero, zero);
    DH dh;
    libalgo_get_dh_value(&dh);
    for (int i = 0; i < ROBOT_DOF; ++i) dh.d[i] += err_d[i], dh.a[i] += err_a[i];
    expect_pos_is(forward_kinematics_pos_calibration(kQ), reference::standard_chain(dh, kQ, 7));
}

TEST(PoseVariantsUniversal, PositionCallUsesQM65GeometryWhileFullPoseUsesTheOwnTable) {
    ASSERT_EQ(libalgo_set_robot_and_sensor_type(UNIVERSAL, _B), 0);
    DH dh{};
    const float d[7] = {0.3f, 0.0f, 0.05f, 0.25f, 0.0f, 0.1f, 0.08f};
    const float alpha[7] = {0.0f, 1.5707964f, 0.0f, 1.5707964f, -1.5707964f, 1.5707964f, -1.5707964f};
    for (int i = 0; i < 7; ++i) dh.d[i] = d[i], dh.alpha[i] = alpha[i];
    dh.a[2] = 0.3f;
    libalgo_set_dh_params(&dh);
    const Matrix qm65 = forward_kinematics_qm65(&dh, kQ);
    const Pos pos = forward_kinematics_pos(kQ);
    EXPECT_FLOAT_EQ(pos.x, qm65.data[0][3]);
    EXPECT_FLOAT_EQ(pos.y, qm65.data[1][3]);
    EXPECT_FLOAT_EQ(pos.z, qm65.data[2][3]);
    EXPECT_LT(reference::max_difference(forward_kinematics_e(kQ), reference::modified_chain(dh, kQ, 7)),
              1e-5);
}

}  // namespace
