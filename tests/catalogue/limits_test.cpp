// Joint and arm limits against a fake controller: request bytes, judged members, scaling
// back, the cached software limits and the failure paths.
#include "catalogue_fixture.h"

namespace catalogue_test {
namespace {

class Limits : public CatalogueArm {};

TEST_F(Limits, SettersSendTheirMembersAndJudgeTheirOwnBoolean) {
    expect_each_judged({
        {"joint speed goes out divided by 6", ON_ARM(qm_set_joint_max_speed(h, 1, 180.0f)),
         R"({"command":"set_joint_max_speed","joint_max_speed":[1,30000]})", "joint_max_speed"},
        {"joint acceleration goes out divided by 6", ON_ARM(qm_set_joint_max_acc(h, 2, 600.0f)),
         R"({"command":"set_joint_max_acc","joint_max_acc":[2,100000]})", "joint_max_acc"},
        {"joint lower position", ON_ARM(qm_set_joint_min_pos(h, 3, -135.5f)),
         R"({"command":"set_joint_min_pos","joint_min_pos":[3,-135500]})", "joint_min_pos"},
        {"drive acceleration goes out without the division by 6",
         ON_ARM(qm_set_joint_drive_max_acc(h, 2, 60.0f)),
         R"({"command":"set_joint_drive_max_acc","joint_max_acc":[2,60000]})", "joint_max_acc"},
        {"joint enable as is", ON_ARM(qm_set_joint_en_state(h, 1, 1)),
         R"({"command":"set_joint_en_state","joint_en_state":[1,1]})", "joint_en_state"},
        {"zero position names the joint", ON_ARM(qm_set_joint_zero_pos(h, 3)),
         R"({"command":"set_joint_zero_pos","joint_zero_pos":3})", "joint_zero_pos"},
        {"automatic limits send the mode", ON_ARM(qm_auto_set_joint_limit(h, 1)),
         R"({"command":"auto_set_joint_limit","limit_mode":1})", "limit_mode"},
        {"line speed in thousandths", ON_ARM(qm_set_arm_max_line_speed(h, 0.25f)),
         R"({"command":"set_arm_max_line_speed","arm_line_speed":250})", "arm_line_speed"},
        {"angular acceleration", ON_ARM(qm_set_arm_max_angular_acc(h, 4.0f)),
         R"({"command":"set_arm_max_angular_acc","arm_angular_acc":4000})", "arm_angular_acc"},
        {"tool centre init has no members", qm_set_arm_tcp_init, R"({"command":"set_arm_init"})", "arm_init"},
        {"collision stage is judged by collision_state", ON_ARM(qm_set_collision_state(h, 4)),
         R"({"command":"set_collision_stage","collision_stage":4})", "collision_state"},
    });
}

TEST_F(Limits, SoftwareSettersReadTheWholeLimitBackAndDriveSettersDoNot) {
    controller.reply("set_joint_max_pos", judged("set_joint_max_pos", "joint_max_pos"));
    controller.reply("get_joint_max_pos",
                     R"({"command":"joint_max_pos","max_pos":[90000,91000,92000,93000,94000,95000]})");
    ASSERT_EQ(fresh(ON_ARM(qm_set_joint_max_pos(h, 1, 90.0f))), 0);
    EXPECT_EQ(controller.lines(),
              (std::vector<std::string>{R"({"command":"set_joint_max_pos","joint_max_pos":[1,90000]})",
                                        R"({"command":"get_joint_max_pos"})"}));
    const auto cached =
        record([](qm_handle_t& r) { return std::vector<float>(r.joint_max_limit, r.joint_max_limit + 6); });
    EXPECT_EQ(cached, (std::vector<float>{90.0f, 91.0f, 92.0f, 93.0f, 94.0f, 95.0f}));

    controller.reply("set_joint_drive_max_pos", judged("set_joint_drive_max_pos", "joint_max_pos"));
    ASSERT_EQ(fresh(ON_ARM(qm_set_joint_drive_max_pos(h, 1, 10.0f))), 0);
    EXPECT_EQ(controller.lines().size(), 1u);

    controller.reply("set_joint_max_speed", judged("set_joint_max_speed", "joint_max_speed"));
    controller.forget("get_joint_max_speed");
    EXPECT_EQ(qm_set_joint_max_speed(arm(), 1, 180.0f), -2) << "the read-back's error";
}

TEST_F(Limits, AutomaticLimitsRefreshBothPositionLimits) {
    controller.reply("auto_set_joint_limit", judged("auto_set_joint_limit", "limit_mode"));
    controller.reply("get_joint_min_pos",
                     R"({"command":"joint_min_pos","min_pos":[-1000,-2000,-3000,-4000,-5000,-6000]})");
    controller.reply("get_joint_max_pos",
                     R"({"command":"joint_max_pos","max_pos":[1000,2000,3000,4000,5000,6000]})");
    ASSERT_EQ(fresh(ON_ARM(qm_auto_set_joint_limit(h, 0))), 0);
    EXPECT_EQ(controller.lines().size(), 3u);
    record([](qm_handle_t& r) {
        EXPECT_FLOAT_EQ(r.joint_min_limit[5], -6.0f);
        EXPECT_FLOAT_EQ(r.joint_max_limit[5], 6.0f);
    });
}

TEST_F(Limits, JointLimitGettersScaleBackEveryJoint) {
    const int wire[6] = {30000, 15000, 1, 0, -6000, 1000};
    const std::tuple<int (*)(qm_robot_handle*, float*), std::string, std::string, float> rows[] = {
        {qm_get_joint_max_speed, "get_joint_max_speed", R"({"command":"joint_max_speed","joint_speed":)",
         0.006f},
        {qm_get_joint_max_acc, "get_joint_max_acc", R"({"command":"joint_max_acc","joint_acc":)", 0.006f},
        {qm_get_joint_min_pos, "get_joint_min_pos", R"({"command":"joint_min_pos","min_pos":)", 0.001f},
        // The drive getters answer under their own command.
        {qm_get_joint_drive_max_speed, "get_joint_drive_max_speed",
         R"({"command":"get_joint_drive_max_speed","joint_speed":)", 0.006f},
        // Read back times 6 although it went out without the division: intended.
        {qm_get_joint_drive_max_acc, "get_joint_drive_max_acc",
         R"({"command":"get_joint_drive_max_acc","joint_acc":)", 0.006f},
    };
    for (const auto& [get, command, reply, factor] : rows) {
        SCOPED_TRACE(command);
        controller.reply(command, reply + "[30000,15000,1,0,-6000,1000]}");
        float out[ARM_DOF] = {-1, -1, -1, -1, -1, -1, -1};
        const auto query = get;  // a lambda may not capture a structured binding before clang 16
        EXPECT_EQ(fresh(ON_ARM(query(h, out))), 0);
        EXPECT_EQ(first_line(), R"({"command":")" + command + R"("})");
        for (int i = 0; i < 6; ++i) EXPECT_FLOAT_EQ(out[i], wire[i] * factor) << "joint " << i;
        EXPECT_EQ(out[6], -1.0f) << "a six-joint arm writes six values";
    }
}

TEST_F(Limits, SoftwareLimitReadsAreCachedAndDriveReadsAreNot) {
    controller.reply("get_joint_max_acc",
                     R"({"command":"joint_max_acc","joint_acc":[1000,2000,3000,4000,5000,6000]})");
    controller.reply("get_joint_drive_max_speed",
                     R"({"command":"get_joint_drive_max_speed","joint_speed":[1,1,1,1,1,1]})");
    float out[ARM_DOF];
    ASSERT_EQ(qm_get_joint_max_acc(arm(), out), 0);
    ASSERT_EQ(qm_get_joint_drive_max_speed(arm(), out), 0);
    record([](qm_handle_t& r) {
        EXPECT_FLOAT_EQ(r.joint_max_acc[5], 36.0f);
        EXPECT_FLOAT_EQ(r.joint_max_speed[0], 180.0f) << "still the synchronised speed limit";
    });
}

TEST_F(Limits, EnableStatesAndErrorFlagsAreReadAsIntegers) {
    controller.reply("get_joint_en_state", R"({"command":"joint_en_state","en_state":[1,0,1,1,0,1]})");
    controller.reply(
        "get_joint_err_flag",
        R"({"command":"joint_err_flag","err_flag":[0,1,2,3,4,65535],"brake_state":[1,1,0,0,1,1]})");
    uint8_t en[ARM_DOF] = {};
    ASSERT_EQ(qm_get_joint_en_state(arm(), en), 0);
    EXPECT_EQ(std::vector<int>(en, en + 6), (std::vector<int>{1, 0, 1, 1, 0, 1}));
    uint16_t err[ARM_DOF] = {}, brake[ARM_DOF] = {};
    ASSERT_EQ(qm_get_joint_err_flag(arm(), err, brake), 0);
    EXPECT_EQ(std::vector<int>(err, err + 6), (std::vector<int>{0, 1, 2, 3, 4, 65535}));
    EXPECT_EQ(std::vector<int>(brake, brake + 6), (std::vector<int>{1, 1, 0, 0, 1, 1}));
}

TEST_F(Limits, CartesianLimitsAndCollisionStageAreReadUnderTheirReplyKeys) {
    const std::tuple<int (*)(qm_robot_handle*, float*), std::string, std::string, float> rows[] = {
        {qm_get_arm_max_line_speed, "get_arm_max_line_speed",
         R"({"command":"arm_max_line_speed","arm_line_speed":250})", 0.25f},
        {qm_get_arm_max_angular_acc, "get_arm_max_angular_acc",
         R"({"command":"arm_max_angular_acc","arm_angular_acc":4000})", 4.0f},
    };
    for (const auto& [get, command, reply, expected] : rows) {
        controller.reply(command, reply);
        float value = 0;
        ASSERT_EQ(get(arm(), &value), 0) << command;
        EXPECT_FLOAT_EQ(value, expected) << command;
    }
    controller.reply("get_collision_stage", R"({"command":"get_collision_stage","collision_stage":3})");
    int stage = 0;
    ASSERT_EQ(qm_get_collision_stage(arm(), &stage), 0);
    EXPECT_EQ(stage, 3);
}

TEST_F(Limits, AScalarReplyWithoutItsMemberReturnsTheReplyLength) {
    const std::string reply = R"({"command":"arm_max_line_speed"})";
    controller.reply("get_arm_max_line_speed", reply);
    float value = -1;
    EXPECT_EQ(qm_get_arm_max_line_speed(arm(), &value), static_cast<int>(reply.size()));
    EXPECT_EQ(value, -1.0f);
}

TEST_F(Limits, GetterFailuresAreReturned) {
    float out[ARM_DOF];
    expect_failures("get_joint_min_pos", ON_ARM(qm_get_joint_min_pos(h, out)),
                    {{std::nullopt, -2}, {R"({"command":"joint_min_pos","min_pos":[1,2,3,4,5,6,7]})", -3}});
}

TEST_F(Limits, AnArmWithoutJointCountIsReportedDisconnectedAfterTheRequestWentOut) {
    qm_test::LogCapture log(LOG_LEVEL_ERROR);
    record([](qm_handle_t& r) { r.arm_dof = 0; });
    float out[ARM_DOF];
    EXPECT_EQ(fresh(ON_ARM(qm_get_joint_max_speed(h, out))), -1);
    EXPECT_EQ(first_line(), R"({"command":"get_joint_max_speed"})");
    EXPECT_TRUE(log.contains("[qm_get_joint_max_speed] The robotic arm has been disconnected\n"));
}

}  // namespace
}  // namespace catalogue_test
