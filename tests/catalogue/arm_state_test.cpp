// Arm state queries and the initial pose against a fake controller.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "arm_catalogue_fixture.h"
#include "log_capture.h"

namespace arm_catalogue_test {
namespace {

class ArmState : public CatalogueArm {};

struct JointQueryRow {
    const char* behaviour;
    int (*call)(qm_robot_handle*, float*);
    std::string command;
    std::string reply;
};

TEST_F(ArmState, JointQueriesDivideEachOfTheDofValuesByOneThousand) {
    const JointQueryRow rows[] = {
        {"temperatures", qm_get_current_joint_temperature, "get_current_joint_temperature",
         R"({"command":"current_joint_temperature","joint_temperature":[25000,-1,1500,0,7,1000000]})"},
        {"currents", qm_get_current_joint_current, "get_current_joint_current",
         R"({"command":"current_joint_current","joint_current":[25000,-1,1500,0,7,1000000]})"},
        {"voltages", qm_get_current_joint_voltage, "get_current_joint_voltage",
         R"({"command":"current_joint_voltage","joint_voltage":[25000,-1,1500,0,7,1000000]})"},
        {"joint angles", qm_get_joint_degree, "get_joint_degree",
         R"({"command":"joint_degree","joint":[25000,-1,1500,0,7,1000000]})"},
        {"initial pose", qm_get_init_pose, "get_init_pose",
         R"({"command":"arm_init_pose","init_pose":[25000,-1,1500,0,7,1000000]})"},
    };
    for (const JointQueryRow& row : rows) {
        SCOPED_TRACE(row.behaviour);
        controller.reply(row.command, row.reply);
        float out[ARM_DOF] = {-9, -9, -9, -9, -9, -9, -9};
        EXPECT_EQ(fresh([&](qm_robot_handle* h) { return row.call(h, out); }), 0);
        EXPECT_EQ(first_line(), R"({"command":")" + row.command + R"("})");
        EXPECT_EQ(std::vector<float>(out, out + ARM_DOF),
                  (std::vector<float>{25.0f, -0.001f, 1.5f, 0.0f, 0.007f, 1000.0f, -9.0f}));
    }
}

TEST_F(ArmState, CurrentStateReadsErrorsJointsAndPoseWithItsQuaternion) {
    controller.reply("get_current_arm_state",
                     R"({"command":"current_arm_state","arm_state":{"err":[4097,12],)"
                     R"("joint":[10000,-20000,30000,0,1,-1],"pose":[100000,-200000,300000,0,0,1571]}})");
    qm_current_arm_state_t state{};
    state.joint[6] = -9;
    ASSERT_EQ(fresh([&](qm_robot_handle* h) { return qm_get_current_arm_state(h, &state); }), 0);
    EXPECT_EQ(first_line(), R"({"command":"get_current_arm_state"})");
    EXPECT_EQ(state.err.err_len, 2);
    EXPECT_EQ(state.err.err[0], 4097);
    EXPECT_EQ(state.err.err[1], 12);
    EXPECT_EQ(std::vector<float>(state.joint, state.joint + ARM_DOF),
              (std::vector<float>{10.0f, -20.0f, 30.0f, 0.0f, 0.001f, -0.001f, -9.0f}));
    EXPECT_FLOAT_EQ(state.pose.position.x, 0.1f);
    EXPECT_FLOAT_EQ(state.pose.position.y, -0.2f);
    EXPECT_FLOAT_EQ(state.pose.position.z, 0.3f);
    EXPECT_FLOAT_EQ(state.pose.euler.rz, 1.571f);
    // A quarter turn about Z.
    EXPECT_NEAR(state.pose.quaternion.w, std::cos(1.571 / 2), 1e-4);
    EXPECT_NEAR(state.pose.quaternion.x, 0.0, 1e-4);
    EXPECT_NEAR(state.pose.quaternion.y, 0.0, 1e-4);
    EXPECT_NEAR(state.pose.quaternion.z, std::sin(1.571 / 2), 1e-4);
}

TEST_F(ArmState, CurrentStateAcceptsAnEmptyErrorList) {
    controller.reply("get_current_arm_state",
                     R"({"command":"current_arm_state","err":[],"joint":[0,0,0,0,0,0],"pose":[0,0,0,0,0,0]})");
    qm_current_arm_state_t state{};
    state.err.err_len = 9;
    ASSERT_EQ(qm_get_current_arm_state(arm(), &state), 0);
    EXPECT_EQ(state.err.err_len, 0);
}

TEST_F(ArmState, CurrentStateWithoutErrorsIsMalformed) {
    qm_test::LogCapture log(LOG_LEVEL_ERROR);
    controller.reply("get_current_arm_state",
                     R"({"command":"current_arm_state","joint":[0,0,0,0,0,0],"pose":[0,0,0,0,0,0]})");
    qm_current_arm_state_t state{};
    EXPECT_EQ(qm_get_current_arm_state(arm(), &state), -3);
    EXPECT_TRUE(log.contains("[qm_get_current_arm_state] err parsing error\n"));
}

TEST_F(ArmState, AllStateMapsEveryMemberOfTheJoints) {
    controller.reply("get_arm_all_state",
                     R"({"command":"arm_all_state","all_state":{"temperature":[1000,2000,3000,4000,5000,6000],)"
                     R"("current":[100,200,300,400,500,600],"voltage":[48000,48000,48000,48000,48000,48100],)"
                     R"("err_flag":[0,0,0,0,0,32],"en_flag":[1,1,1,1,1,0],"err":[1,2,3]}})");
    qm_arm_all_state_t state{};
    ASSERT_EQ(fresh([&](qm_robot_handle* h) { return qm_get_arm_all_state(h, &state); }), 0);
    EXPECT_EQ(first_line(), R"({"command":"get_arm_all_state"})");
    EXPECT_FLOAT_EQ(state.joint_temperature[5], 6.0f);
    EXPECT_FLOAT_EQ(state.joint_current[1], 0.2f);
    EXPECT_FLOAT_EQ(state.joint_voltage[5], 48.1f);
    EXPECT_EQ(state.joint_err_code[5], 32);
    EXPECT_EQ(state.joint_en_flag[5], 0);
    EXPECT_EQ(state.joint_en_flag[0], 1);
    EXPECT_EQ(state.err.err_len, 3);
    EXPECT_EQ(state.err.err[2], 3);
}

TEST_F(ArmState, InitialPoseGoesOutAsTruncatedThousandthsOfTheDofJoints) {
    controller.reply("set_init_pose", judged("set_init_pose", "init_pose"));
    const float joints[ARM_DOF] = {10.0009f, -0.0005f, 2.3f, 0, 0, 90, 45};
    ASSERT_EQ(fresh([&](qm_robot_handle* h) { return qm_set_init_pose(h, joints); }), 0);
    EXPECT_EQ(first_line(), R"({"command":"set_init_pose","init_pose":[10000,0,2299,0,0,90000]})");
}

TEST_F(ArmState, InitialPoseRefusalIsOne) {
    controller.reply("set_init_pose", judged("set_init_pose", "init_pose", false));
    const float joints[ARM_DOF] = {};
    EXPECT_EQ(qm_set_init_pose(arm(), joints), 1);
}

TEST_F(ArmState, InitialPoseChecksTheDofBeforeSending) {
    qm_test::LogCapture log(LOG_LEVEL_ERROR);
    set_record_dof(11);
    const float joints[ARM_DOF] = {};
    EXPECT_EQ(fresh([&](qm_robot_handle* h) { return qm_set_init_pose(h, joints); }), -1);
    EXPECT_FALSE(controller.wait_line(0, 50ms));
    EXPECT_TRUE(log.contains("[qm_set_init_pose] The robotic arm has been disconnected\n"));
}

TEST_F(ArmState, SevenJointArmReadsSevenValues) {
    ASSERT_EQ(qm_set_robot_dof(arm(), 7), 0);
    controller.reply("get_joint_degree", R"({"command":"joint_degree","joint":[1000,2000,3000,4000,5000,6000,7000]})");
    float out[ARM_DOF] = {};
    ASSERT_EQ(qm_get_joint_degree(arm(), out), 0);
    EXPECT_FLOAT_EQ(out[6], 7.0f);
}

TEST_F(ArmState, ExchangeFailuresAreReturnedUnchanged) {
    float out[ARM_DOF];
    EXPECT_EQ(qm_get_current_joint_voltage(arm(), out), -2) << "no answer";
    qm_robot_handle stranger{1};
    EXPECT_EQ(qm_get_current_joint_voltage(&stranger, out), -1) << "unknown handle";
    controller.reply("get_current_joint_voltage", "not json");
    EXPECT_EQ(qm_get_current_joint_voltage(arm(), out), -2) << "a line that does not parse is never filed";
    controller.reply("get_current_joint_voltage", R"({"command":"current_joint_voltage","joint_voltage":"x"})");
    EXPECT_EQ(qm_get_current_joint_voltage(arm(), out), -3);
}

}  // namespace
}  // namespace arm_catalogue_test
