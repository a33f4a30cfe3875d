// Arm state queries and the initial pose against a fake controller.
#include <cmath>

#include "catalogue_fixture.h"

namespace catalogue_test {
namespace {

class ArmState : public CatalogueArm {};

TEST_F(ArmState, JointQueriesDivideEachOfTheDofValuesByOneThousand) {
    const std::tuple<int (*)(qm_robot_handle*, float*), std::string, std::string> rows[] = {
        {qm_get_current_joint_temperature, "get_current_joint_temperature",
         R"({"command":"current_joint_temperature","joint_temperature":)"},
        {qm_get_current_joint_current, "get_current_joint_current",
         R"({"command":"current_joint_current","joint_current":)"},
        {qm_get_current_joint_voltage, "get_current_joint_voltage",
         R"({"command":"current_joint_voltage","joint_voltage":)"},
        {qm_get_joint_degree, "get_joint_degree", R"({"command":"joint_degree","joint":)"},
        {qm_get_init_pose, "get_init_pose", R"({"command":"arm_init_pose","init_pose":)"},
    };
    for (const auto& [get, command, reply] : rows) {
        SCOPED_TRACE(command);
        const auto query = get;  // a lambda may not capture a structured binding before clang 16
        controller.reply(command, reply + "[25000,-1,1500,0,7,1000000]}");
        float out[ARM_DOF] = {-9, -9, -9, -9, -9, -9, -9};
        EXPECT_EQ(fresh(ON_ARM(query(h, out))), 0);
        EXPECT_EQ(first_line(), R"({"command":")" + command + R"("})");
        EXPECT_EQ(std::vector<float>(out, out + ARM_DOF),
                  (std::vector<float>{25.0f, -0.001f, 1.5f, 0.0f, 0.007f, 1000.0f, -9.0f}));
    }
}

TEST_F(ArmState, ExchangeFailuresAreReturnedUnchanged) {
    float out[ARM_DOF];
    // A line that does not parse is never filed, so it times out.
    expect_failures("get_current_joint_voltage", ON_ARM(qm_get_current_joint_voltage(h, out)),
                    {{std::nullopt, -2},
                     {"not json", -2},
                     {R"({"command":"current_joint_voltage","joint_voltage":"x"})", -3}});
}

TEST_F(ArmState, SevenJointArmReadsSevenValues) {
    ASSERT_EQ(qm_set_robot_dof(arm(), 7), 0);
    controller.reply("get_joint_degree",
                     R"({"command":"joint_degree","joint":[1000,2000,3000,4000,5000,6000,7000]})");
    float out[ARM_DOF] = {};
    ASSERT_EQ(qm_get_joint_degree(arm(), out), 0);
    EXPECT_FLOAT_EQ(out[6], 7.0f);
}

TEST_F(ArmState, CurrentStateReadsErrorsJointsAndPoseWithItsQuaternion) {
    controller.reply("get_current_arm_state",
                     R"({"command":"current_arm_state","arm_state":{"err":[4097,12],)"
                     R"("joint":[10000,-20000,30000,0,1,-1],"pose":[100000,-200000,300000,0,0,1571]}})");
    qm_current_arm_state_t state{};
    state.joint[6] = -9;
    ASSERT_EQ(fresh(ON_ARM(qm_get_current_arm_state(h, &state))), 0);
    EXPECT_EQ(first_line(), R"({"command":"get_current_arm_state"})");
    EXPECT_EQ(std::vector<int>(state.err.err, state.err.err + state.err.err_len),
              (std::vector<int>{4097, 12}));
    EXPECT_EQ(std::vector<float>(state.joint, state.joint + ARM_DOF),
              (std::vector<float>{10.0f, -20.0f, 30.0f, 0.0f, 0.001f, -0.001f, -9.0f}));
    EXPECT_FLOAT_EQ(state.pose.position.x, 0.1f);
    EXPECT_FLOAT_EQ(state.pose.euler.rz, 1.571f);
    // A quarter turn about Z.
    EXPECT_NEAR(state.pose.quaternion.w, std::cos(1.571 / 2), 1e-4);
    EXPECT_NEAR(state.pose.quaternion.z, std::sin(1.571 / 2), 1e-4);
}

TEST_F(ArmState, CurrentStateNeedsAnErrorListButAcceptsAnEmptyOne) {
    const std::string rest = R"("joint":[0,0,0,0,0,0],"pose":[0,0,0,0,0,0]})";
    controller.reply("get_current_arm_state", R"({"command":"current_arm_state","err":[],)" + rest);
    qm_current_arm_state_t state{};
    state.err.err_len = 9;
    ASSERT_EQ(qm_get_current_arm_state(arm(), &state), 0);
    EXPECT_EQ(state.err.err_len, 0);
    qm_test::LogCapture log(LOG_LEVEL_ERROR);
    controller.reply("get_current_arm_state", R"({"command":"current_arm_state",)" + rest);
    EXPECT_EQ(qm_get_current_arm_state(arm(), &state), -3);
    EXPECT_TRUE(log.contains("[qm_get_current_arm_state] err parsing error\n"));
}

TEST_F(ArmState, AllStateMapsEveryMemberOfTheJoints) {
    controller.reply(
        "get_arm_all_state",
        R"({"command":"arm_all_state","all_state":{"temperature":[1000,2000,3000,4000,5000,6000],)"
        R"("current":[100,200,300,400,500,600],"voltage":[48000,48000,48000,48000,48000,48100],)"
        R"("err_flag":[0,0,0,0,0,32],"en_flag":[1,1,1,1,1,0],"err":[1,2,3]}})");
    qm_arm_all_state_t state{};
    ASSERT_EQ(fresh(ON_ARM(qm_get_arm_all_state(h, &state))), 0);
    EXPECT_EQ(first_line(), R"({"command":"get_arm_all_state"})");
    EXPECT_FLOAT_EQ(state.joint_temperature[5], 6.0f);
    EXPECT_FLOAT_EQ(state.joint_current[1], 0.2f);
    EXPECT_FLOAT_EQ(state.joint_voltage[5], 48.1f);
    EXPECT_EQ(state.joint_err_code[5], 32);
    EXPECT_EQ(state.joint_en_flag[5], 0);
    EXPECT_EQ(state.err.err[2], 3);
}

TEST_F(ArmState, InitialPoseGoesOutAsTruncatedThousandthsOfTheDofJoints) {
    const float joints[ARM_DOF] = {10.0009f, -0.0005f, 2.3f, 0, 0, 90, 45};
    expect_each_judged(
        {{"initial pose", ON_ARM(qm_set_init_pose(h, joints)),
          R"({"command":"set_init_pose","init_pose":[10000,0,2299,0,0,90000]})", "init_pose"}});
}

TEST_F(ArmState, InitialPoseChecksTheDofBeforeSending) {
    qm_test::LogCapture log(LOG_LEVEL_ERROR);
    record([](qm_handle_t& r) { r.arm_dof = 11; });
    const float joints[ARM_DOF] = {};
    EXPECT_EQ(fresh(ON_ARM(qm_set_init_pose(h, joints))), -1);
    EXPECT_FALSE(controller.wait_line(0, 50ms));
    EXPECT_TRUE(log.contains("[qm_set_init_pose] The robotic arm has been disconnected\n"));
}

}  // namespace
}  // namespace catalogue_test
