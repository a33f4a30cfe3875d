// The bridge's unit rules: public degrees in, library radians held, the same values back.
#include <gtest/gtest.h>

#include <array>

#include "algo_api.h"
#include "qm_interface.h"

namespace {

using Joints = std::array<float, ARM_DOF>;

constexpr double kDegToRad = 0.017453292519943295;

class BridgeUnits : public ::testing::Test {
protected:
    void SetUp() override { qm_algo_init_sys_data(QM_MODEL_QM_65_E, QM_MODEL_QM_B_E); }
};

TEST_F(BridgeUnits, JointLimitsRoundTripAndLandInTheLibraryInRadians) {
    const struct {
        const char* what;
        void (*set)(const float*);
        void (*get)(float*);
        void (*library)(float*);
        double into;  // library value per public unit
    } rules[] = {
        {"max position", qm_algo_set_joint_max_limit, qm_algo_get_joint_max_limit, libalgo_get_jointlim_max,
         kDegToRad},
        {"min position", qm_algo_set_joint_min_limit, qm_algo_get_joint_min_limit, libalgo_get_jointlim_min,
         kDegToRad},
        {"max speed", qm_algo_set_joint_max_speed, qm_algo_get_joint_max_speed, libalgo_get_joint_vel_maxlim,
         kDegToRad},
        // Intended: six times the radians go in, so the value reads back unchanged.
        {"max acceleration", qm_algo_set_joint_max_acc, qm_algo_get_joint_max_acc,
         libalgo_get_joint_acc_maxlim, 6 * kDegToRad},
    };
    const Joints value = {10, 20, 30, 40, 50, 60, 70};
    for (const auto& rule : rules) {
        float before[ROBOT_DOF], lib[ROBOT_DOF];
        rule.library(before);
        rule.set(value.data());
        rule.library(lib);
        for (int i = 0; i < 6; ++i)
            EXPECT_FLOAT_EQ(lib[i], static_cast<float>(value[i] * rule.into)) << rule.what << " joint " << i;
        EXPECT_EQ(lib[6], before[6]) << rule.what << ": a six-joint model leaves the seventh joint alone";
        Joints back{};
        rule.get(back.data());
        for (int i = 0; i < 6; ++i) EXPECT_FLOAT_EQ(back[i], value[i]) << rule.what << " joint " << i;
        EXPECT_EQ(back[6], 0.0f) << rule.what;
    }
}

TEST_F(BridgeUnits, InstallAnglesGoInAsRadians) {
    qm_algo_set_angle(90, -30, 45);
    float lib[3];
    libalgo_get_robot_install_angle(lib);
    EXPECT_FLOAT_EQ(lib[0], static_cast<float>(90 * kDegToRad));
    EXPECT_FLOAT_EQ(lib[1], static_cast<float>(-30 * kDegToRad));
    EXPECT_FLOAT_EQ(lib[2], static_cast<float>(45 * kDegToRad));
    float x = 0, y = 0, z = 0;
    qm_algo_get_angle(&x, &y, &z);
    EXPECT_TRUE(x == 90.0f && y == -30.0f && z == 45.0f) << x << " " << y << " " << z;
}

TEST_F(BridgeUnits, FramesPassThroughInMetresAndRadians) {
    qm_frame_t work{};
    work.pose.position = {0.1f, -0.2f, 0.3f};
    work.pose.euler = {0.4f, -0.5f, 0.6f};
    qm_algo_set_workframe(&work);
    const Coord lib = libalgo_get_work_cs_params();
    EXPECT_FLOAT_EQ(lib.x, 0.1f);
    EXPECT_FLOAT_EQ(lib.rz, 0.6f);
    qm_frame_t back{};
    qm_algo_get_curr_workframe(&back);
    EXPECT_FLOAT_EQ(back.pose.position.y, -0.2f);
    EXPECT_FLOAT_EQ(back.pose.euler.ry, -0.5f);
    EXPECT_FLOAT_EQ(back.pose.quaternion.w, qm_algo_euler2quaternion(work.pose.euler).w);
    qm_frame_t tool{};
    tool.pose.position = {0, 0, 0.12f};
    qm_algo_set_toolframe(&tool);
    qm_algo_get_curr_toolframe(&back);
    EXPECT_FLOAT_EQ(back.pose.position.z, 0.12f);
}

TEST_F(BridgeUnits, DhTableReplacesTheOneInUseAndKeepsTheCalibrationErrors) {
    const float err[ROBOT_DOF] = {0.001f};
    const float zero[ROBOT_DOF] = {};
    libalgo_set_dh_compensation_value(err, zero, zero, zero);
    qm_dh_t dh = qm_algo_get_dh();
    EXPECT_FLOAT_EQ(dh.d[0], 0.2405f);
    dh.d[0] = 0.25f;
    qm_algo_set_dh(dh);
    EXPECT_FLOAT_EQ(qm_algo_get_dh().d[0], 0.25f);
    DH lib;
    libalgo_get_dh_value(&lib);
    EXPECT_FLOAT_EQ(lib.d[0], 0.25f);
    EXPECT_FLOAT_EQ(lib.err_d[0], 0.001f);
}

}  // namespace
