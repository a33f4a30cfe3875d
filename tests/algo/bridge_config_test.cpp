// Configuring the kinematics library through the bridge: model mapping and loading a
// connected arm's stored configuration.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>

#include "algo_api.h"
#include "fake_controller.h"
#include "log_capture.h"
#include "qm_interface.h"

namespace {

using Joints = std::array<float, ARM_DOF>;

TEST(BridgeConfig, PublicModelsAndSensorsMapToLibraryTypes) {
    const struct {
        int model, sensor, robot_type, sensor_type;
    } cases[] = {
        {QM_MODEL_QM_65_E, QM_MODEL_QM_B_E, QM65, _B},
        {QM_MODEL_QM_75_E, QM_MODEL_QM_ZF_E, QM75, _ZF},
        {QM_MODEL_QM_63_II_E, QM_MODEL_QM_SF_E, QML63II, _SF},
        {QM_MODEL_QM_63_III_E, QM_MODEL_QM_B_E, QML63IV, _B},  // intended: not QML63III
        {QM_MODEL_LUX_65_E, QM_MODEL_QM_ISF_E, LUX65, ISF},
        {QM_MODEL_LUX_62_E, QM_MODEL_QM_B_E, LUX62, _B},
        {QM_MODEL_TAV_72_E, QM_MODEL_QM_B_E, TAV72, _B},
        {QM_MODEL_LUX_63_E, QM_MODEL_QM_B_E, LUX63, _B},
        {QM_MODEL_UNIVERSAL_E, QM_MODEL_QM_B_E, QM65, _B},
        {42, 7, QM65, _B},
    };
    for (const auto& c : cases) {
        qm_algo_init_sys_data(static_cast<qm_robot_arm_model_e>(c.model),
                              static_cast<qm_force_type_e>(c.sensor));
        EXPECT_EQ(libalgo_get_robot_type(), c.robot_type) << "model " << c.model;
        EXPECT_EQ(libalgo_get_sensor_type(), c.sensor_type) << "model " << c.model;
    }
}

TEST(BridgeConfig, VersionIsTheLibrarysText) {
    EXPECT_STREQ(qm_algo_version(), "1.5.3-f0364d3b");
}

TEST(BridgeConfig, NullHandleKeepsTheOfflineConfiguration) {
    qm_algo_init_sys_data(QM_MODEL_QM_75_E, QM_MODEL_QM_B_E);
    qm_algo_set_angle(0, 0, 30);
    const Joints zero{};
    const qm_pose_t p = qm_algo_forward_kinematics(nullptr, zero.data());
    EXPECT_EQ(libalgo_get_robot_type(), QM75);
    EXPECT_NEAR(p.position.z, 0.8505f, 1e-5f);
    float x = 0, y = 0, z = 0;
    qm_algo_get_angle(&x, &y, &z);
    EXPECT_FLOAT_EQ(z, 30.0f);
}

TEST(BridgeConfig, UnknownHandleWarnsAndChangesNothing) {
    qm_algo_init_sys_data(QM_MODEL_QM_75_E, QM_MODEL_QM_B_E);
    qm_test::LogCapture log(LOG_LEVEL_WARN);
    qm_robot_handle stray{3};
    qm_algo_arm_state_set(&stray);
    EXPECT_TRUE(log.contains("The robotic arm is not connected!"));
    EXPECT_EQ(libalgo_get_robot_type(), QM75);
}

TEST(BridgeConfig, NullForwardKinematicsJointsGiveAnAllZeroPose) {
    qm_algo_init_sys_data(QM_MODEL_QM_65_E, QM_MODEL_QM_B_E);
    const qm_pose_t p = qm_algo_forward_kinematics(nullptr, nullptr);
    const qm_pose_t zero{};
    EXPECT_EQ(std::memcmp(&p, &zero, sizeof p), 0);
}

// A connected arm: the synchronisation stores its configuration in the connection, and
// every bridge call with its handle loads that configuration first.
class ConnectedArm : public ::testing::Test {
protected:
    void SetUp() override {
        controller_.answer_sync_queries();
        // A 0.1 m tool along the flange's z, 90 degrees of installation yaw.
        controller_.reply(
            "get_current_tool_frame",
            R"({"command":"current_tool_frame","tool_name":"Gripper","pose":[0,0,100000,0,0,0],)"
            R"("payload":0,"position":[0,0,0]})");
        controller_.reply("get_install_pose", R"({"command":"install_pose","pose":[0,0,90]})");
        qm_init(QM_DUAL_MODE_E);
        handle_ = qm_create_robot_arm("127.0.0.1", controller_.port());
        ASSERT_NE(handle_, nullptr);
        ASSERT_GT(handle_->id, 0);
    }
    void TearDown() override {
        if (handle_ != nullptr) qm_delete_robot_arm(handle_);
        qm_destory();
    }

    qm_test::FakeController controller_;
    qm_robot_handle* handle_ = nullptr;
};

TEST_F(ConnectedArm, HandleLoadsTheArmsModelFramesLimitsAndTable) {
    // Whatever the application configured offline is replaced by the arm's own data.
    qm_algo_init_sys_data(QM_MODEL_QM_75_E, QM_MODEL_QM_SF_E);
    const Joints zero{};
    const qm_pose_t p = qm_algo_forward_kinematics(handle_, zero.data());
    EXPECT_EQ(libalgo_get_robot_type(), QM65);
    EXPECT_EQ(libalgo_get_sensor_type(), _B);
    EXPECT_NEAR(p.position.z, 0.8505f + 0.1f, 1e-4f);

    float x = 0, y = 0, z = 0;
    qm_algo_get_angle(&x, &y, &z);
    EXPECT_NEAR(z, 90.0f, 1e-3f);

    Joints limit{}, acc{}, speed{};
    qm_algo_get_joint_max_limit(limit.data());
    EXPECT_NEAR(limit[1], 130.0f, 1e-3f);
    // The connection keeps speed and acceleration as the controller scales them (x6 / 1000).
    qm_algo_get_joint_max_acc(acc.data());
    EXPECT_NEAR(acc[0], 600.0f, 1e-3f);
    qm_algo_get_joint_max_speed(speed.data());
    EXPECT_NEAR(speed[0], 180.0f, 1e-3f);

    const qm_dh_t dh = qm_algo_get_dh();
    EXPECT_NEAR(dh.d[0], 0.2405f, 1e-6f);
    EXPECT_NEAR(dh.alpha[1], 1.571f, 1e-6f);
}

}  // namespace
