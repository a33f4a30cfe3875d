// Configuring the kinematics library through the bridge: model mapping, the unit rules (public
// degrees in, library radians held, the same values back) and a connected arm's stored data.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>
#include <memory>

#include "algo_api.h"
#include "fake_controller.h"
#include "kinematics_reference.h"
#include "log_capture.h"
#include "qm_interface.h"
#include "qm_invoke_algo.h"

namespace {

using Joints = std::array<float, ARM_DOF>;

constexpr double kDegToRad = 0.017453292519943295;

// The flange position for joint degrees equals the link product of the table in use.
void expect_flange_from_the_table_in_use(const Joints& deg, bool standard) {
    DH dh;
    libalgo_get_dh_value(&dh);
    float rad[ROBOT_DOF] = {};
    for (int i = 0; i < libalgo_get_rbt_dof(); ++i) rad[i] = static_cast<float>(deg[i] * kDegToRad);
    const Matrix m = Forward_Kinematics_e(deg.data());
    const auto chain = reference::dh_chain(dh, rad, libalgo_get_rbt_dof(), standard);
    for (int i = 0; i < 3; ++i) EXPECT_NEAR(m.data[i][3], chain[i][3], 1e-6) << "row " << i;
}

class BridgeConfig : public ::testing::Test {
protected:
    void SetUp() override { qm_algo_init_sys_data(QM_MODEL_QM_65_E, QM_MODEL_QM_B_E); }
};

TEST_F(BridgeConfig, PublicModelsAndSensorsMapToLibraryTypes) {
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
    EXPECT_STREQ(qm_algo_version(), "1.5.3-f0364d3b");
}

TEST_F(BridgeConfig, NullHandleKeepsTheOfflineConfigurationAndNullJointsGiveAnAllZeroPose) {
    const qm_pose_t none = qm_algo_forward_kinematics(nullptr, nullptr), zero_pose{};
    EXPECT_EQ(std::memcmp(&none, &zero_pose, sizeof none), 0);
    qm_algo_init_sys_data(QM_MODEL_QM_75_E, QM_MODEL_QM_B_E);
    EXPECT_NEAR(qm_algo_forward_kinematics(nullptr, Joints{}.data()).position.z, 0.8505f, 1e-5f);
    EXPECT_EQ(libalgo_get_robot_type(), QM75);
}

TEST_F(BridgeConfig, UnknownHandleWarnsAndChangesNothing) {
    qm_test::LogCapture log(LOG_LEVEL_WARN);
    qm_robot_handle stray{3};
    qm_algo_arm_state_set(&stray);
    EXPECT_TRUE(log.contains("The robotic arm is not connected!"));
    EXPECT_EQ(libalgo_get_robot_type(), QM65);
}

TEST_F(BridgeConfig, JointLimitsRoundTripAndLandInTheLibraryInRadians) {
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

TEST_F(BridgeConfig, InstallAnglesGoInAsRadians) {
    const float deg[3] = {90, -30, 45};
    qm_algo_set_angle(deg[0], deg[1], deg[2]);
    float lib[3], back[3] = {};
    libalgo_get_robot_install_angle(lib);
    qm_algo_get_angle(&back[0], &back[1], &back[2]);
    for (int i = 0; i < 3; ++i) {
        EXPECT_FLOAT_EQ(lib[i], static_cast<float>(deg[i] * kDegToRad)) << i;
        EXPECT_EQ(back[i], deg[i]) << i;
    }
}

TEST_F(BridgeConfig, FramesPassThroughInMetresAndRadians) {
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

TEST_F(BridgeConfig, DhTableReplacesTheOneInUseAndKeepsTheCalibrationErrors) {
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

TEST_F(BridgeConfig, CalibratedTableCountsAtOnceInBothDirections) {
    const Joints q = {10, 20, 30, 40, 50, 60};
    const qm_pose_t nominal = qm_algo_forward_kinematics(nullptr, q.data());
    qm_dh_t dh = qm_algo_get_dh();
    dh.a[0] = 0.001f;       // QM65's table has no such length
    dh.alpha[3] += 0.01f;   // nor such a twist
    qm_algo_set_dh(dh);
    const qm_pose_t calibrated = qm_algo_forward_kinematics(nullptr, q.data());
    EXPECT_GT(std::hypot(calibrated.position.x - nominal.position.x, calibrated.position.y - nominal.position.y,
                         calibrated.position.z - nominal.position.z),
              1e-3f);
    expect_flange_from_the_table_in_use(q, false);
    qm_inverse_kinematics_params_t params{};
    std::copy(q.begin(), q.end(), params.q_in);
    params.q_pose = calibrated;
    Joints out{};
    ASSERT_EQ(qm_algo_inverse_kinematics(nullptr, params, out.data()), 0);
    for (int i = 0; i < 6; ++i) EXPECT_NEAR(out[i], q[i], 1e-3f) << "joint " << i;
}

// The synchronisation stores a connected arm's configuration in the connection, and every
// bridge call with its handle loads that configuration first, replacing the offline one.
TEST_F(BridgeConfig, ConnectedHandleLoadsTheArmsModelFramesLimitsAndTable) {
    qm_test::FakeController controller;
    controller.answer_sync_queries();
    // A 0.1 m tool along the flange's z, 90 degrees of installation yaw.
    controller.reply("get_current_tool_frame",
                     R"({"command":"current_tool_frame","tool_name":"Gripper","pose":[0,0,100000,0,0,0],)"
                     R"("payload":0,"position":[0,0,0]})");
    controller.reply("get_install_pose", R"({"command":"install_pose","pose":[0,0,90]})");
    qm_init(QM_DUAL_MODE_E);
    const std::unique_ptr<void, void (*)(void*)> library(&controller, [](void*) { qm_destory(); });
    const std::unique_ptr<qm_robot_handle, int (*)(qm_robot_handle*)> arm(
        qm_create_robot_arm("127.0.0.1", controller.port()), qm_delete_robot_arm);
    ASSERT_NE(arm, nullptr);

    qm_algo_init_sys_data(QM_MODEL_QM_75_E, QM_MODEL_QM_SF_E);
    EXPECT_NEAR(qm_algo_forward_kinematics(arm.get(), Joints{}.data()).position.z, 0.8505f + 0.1f, 1e-4f);
    EXPECT_EQ(libalgo_get_robot_type(), QM65);
    EXPECT_EQ(libalgo_get_sensor_type(), _B);
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
    EXPECT_NEAR(qm_algo_get_dh().alpha[1], 1.571f, 1e-6f);
    // The reported twists are thousandths of a radian, 2e-4 off a right angle: they count too.
    expect_flange_from_the_table_in_use({10, 20, 30, 40, 50, 60}, false);
}

// A handle's configuration is loaded again only when the connection's stored configuration or
// the bridge's own setters changed it: the library record is otherwise left as it is.
TEST_F(BridgeConfig, HandleReloadsOnlyWhenTheConfigurationChanged) {
    qm_test::FakeController controller;
    qm_test::ArmSession session(controller);
    qm_robot_handle* arm = session.handle();
    ASSERT_NE(arm, nullptr);
    const auto flange_height = [&](qm_robot_handle* h) { return qm_algo_forward_kinematics(h, Joints{}.data()).position.z; };
    EXPECT_NEAR(flange_height(arm), 0.8505f, 1e-4f);

    libalgo_set_control_loop_period(0.004f);  // outside the stored configuration: a reload would reset it
    EXPECT_NEAR(flange_height(arm), 0.8505f, 1e-4f);
    EXPECT_FLOAT_EQ(libalgo_get_control_loop_period(), 0.004f);

    qm_frame_t tool{};
    tool.pose.position.z = 0.3f;
    qm_algo_set_toolframe(&tool);
    EXPECT_NEAR(flange_height(nullptr), 0.8505f + 0.3f, 1e-4f);
    EXPECT_NEAR(flange_height(arm), 0.8505f, 1e-4f) << "the bridge's own setting is replaced";
    EXPECT_FLOAT_EQ(libalgo_get_control_loop_period(), 0.002f);

    libalgo_set_control_loop_period(0.004f);
    controller.reply("get_current_tool_frame",
                     R"({"command":"current_tool_frame","tool_name":"Gripper","pose":[0,0,100000,0,0,0],)"
                     R"("payload":0,"position":[0,0,0]})");
    qm_frame_t stored{};
    ASSERT_EQ(qm_get_current_tool_frame(arm, &stored), 0);
    EXPECT_NEAR(flange_height(arm), 0.8505f + 0.1f, 1e-4f) << "the connection's new tool frame is loaded";
    EXPECT_FLOAT_EQ(libalgo_get_control_loop_period(), 0.002f);
}

}  // namespace
