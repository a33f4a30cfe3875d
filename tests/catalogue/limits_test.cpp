// Joint and arm limits against a fake controller: request bytes, judged members, scaling
// back, the cached software limits and the failure paths.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "arm_catalogue_fixture.h"
#include "log_capture.h"

namespace arm_catalogue_test {
namespace {

const std::vector<SetRow>& limit_setters() {
    static const std::vector<SetRow> rows = {
        {"joint speed goes out divided by 6",
         [](qm_robot_handle* h) { return qm_set_joint_max_speed(h, 1, 180.0f); },
         R"({"command":"set_joint_max_speed","joint_max_speed":[1,30000]})", "set_joint_max_speed", "joint_max_speed"},
        {"joint acceleration goes out divided by 6",
         [](qm_robot_handle* h) { return qm_set_joint_max_acc(h, 2, 600.0f); },
         R"({"command":"set_joint_max_acc","joint_max_acc":[2,100000]})", "set_joint_max_acc", "joint_max_acc"},
        {"joint lower position in thousandths",
         [](qm_robot_handle* h) { return qm_set_joint_min_pos(h, 3, -135.5f); },
         R"({"command":"set_joint_min_pos","joint_min_pos":[3,-135500]})", "set_joint_min_pos", "joint_min_pos"},
        {"joint upper position in thousandths",
         [](qm_robot_handle* h) { return qm_set_joint_max_pos(h, 4, 90.0f); },
         R"({"command":"set_joint_max_pos","joint_max_pos":[4,90000]})", "set_joint_max_pos", "joint_max_pos"},
        {"drive speed goes out divided by 6",
         [](qm_robot_handle* h) { return qm_set_joint_drive_max_speed(h, 5, 90.0f); },
         R"({"command":"set_joint_drive_max_speed","joint_max_speed":[5,15000]})", "set_joint_drive_max_speed",
         "joint_max_speed"},
        {"drive acceleration goes out without the division by 6",
         [](qm_robot_handle* h) { return qm_set_joint_drive_max_acc(h, 2, 60.0f); },
         R"({"command":"set_joint_drive_max_acc","joint_max_acc":[2,60000]})", "set_joint_drive_max_acc",
         "joint_max_acc"},
        {"drive lower position in thousandths",
         [](qm_robot_handle* h) { return qm_set_joint_drive_min_pos(h, 6, -360.0f); },
         R"({"command":"set_joint_drive_min_pos","joint_min_pos":[6,-360000]})", "set_joint_drive_min_pos",
         "joint_min_pos"},
        {"drive upper position in thousandths",
         [](qm_robot_handle* h) { return qm_set_joint_drive_max_pos(h, 6, 360.0f); },
         R"({"command":"set_joint_drive_max_pos","joint_max_pos":[6,360000]})", "set_joint_drive_max_pos",
         "joint_max_pos"},
        {"joint enable as is", [](qm_robot_handle* h) { return qm_set_joint_en_state(h, 1, 1); },
         R"({"command":"set_joint_en_state","joint_en_state":[1,1]})", "set_joint_en_state", "joint_en_state"},
        {"zero position names the joint", [](qm_robot_handle* h) { return qm_set_joint_zero_pos(h, 3); },
         R"({"command":"set_joint_zero_pos","joint_zero_pos":3})", "set_joint_zero_pos", "joint_zero_pos"},
        {"clearing errors names the joint", [](qm_robot_handle* h) { return qm_set_joint_clear_err(h, 7); },
         R"({"command":"set_joint_clear_err","joint_clear_err":7})", "set_joint_clear_err", "joint_clear_err"},
        {"automatic limits send the mode", [](qm_robot_handle* h) { return qm_auto_set_joint_limit(h, 1); },
         R"({"command":"auto_set_joint_limit","limit_mode":1})", "auto_set_joint_limit", "limit_mode"},
        {"line speed in thousandths", [](qm_robot_handle* h) { return qm_set_arm_max_line_speed(h, 0.25f); },
         R"({"command":"set_arm_max_line_speed","arm_line_speed":250})", "set_arm_max_line_speed", "arm_line_speed"},
        {"line acceleration in thousandths", [](qm_robot_handle* h) { return qm_set_arm_max_line_acc(h, 1.6f); },
         R"({"command":"set_arm_max_line_acc","arm_line_acc":1600})", "set_arm_max_line_acc", "arm_line_acc"},
        {"angular speed in thousandths", [](qm_robot_handle* h) { return qm_set_arm_max_angular_speed(h, 0.6f); },
         R"({"command":"set_arm_max_angular_speed","arm_angular_speed":600})", "set_arm_max_angular_speed",
         "arm_angular_speed"},
        {"angular acceleration in thousandths", [](qm_robot_handle* h) { return qm_set_arm_max_angular_acc(h, 4.0f); },
         R"({"command":"set_arm_max_angular_acc","arm_angular_acc":4000})", "set_arm_max_angular_acc",
         "arm_angular_acc"},
        {"tool centre init has no members", [](qm_robot_handle* h) { return qm_set_arm_tcp_init(h); },
         R"({"command":"set_arm_init"})", "set_arm_init", "arm_init"},
        {"collision stage is judged by collision_state",
         [](qm_robot_handle* h) { return qm_set_collision_state(h, 4); },
         R"({"command":"set_collision_stage","collision_stage":4})", "set_collision_stage", "collision_state"},
    };
    return rows;
}

class Limits : public CatalogueArm {};

TEST_F(Limits, SettersSendTheirMembersAndJudgeTheirOwnBoolean) { expect_each_accepted(limit_setters()); }

TEST_F(Limits, SettersReportARefusalWithOne) { expect_each_refused(limit_setters()); }

TEST_F(Limits, SoftwareSettersReadTheWholeLimitBack) {
    controller.reply("set_joint_max_pos", judged("set_joint_max_pos", "joint_max_pos"));
    controller.reply("get_joint_max_pos",
                     R"({"command":"joint_max_pos","max_pos":[90000,91000,92000,93000,94000,95000]})");
    ASSERT_EQ(fresh([](qm_robot_handle* h) { return qm_set_joint_max_pos(h, 1, 90.0f); }), 0);
    EXPECT_EQ(controller.lines(), (std::vector<std::string>{R"({"command":"set_joint_max_pos","joint_max_pos":[1,90000]})",
                                                           R"({"command":"get_joint_max_pos"})"}));
    const std::vector<float> cached = record([](qm_handle_t& r) { return std::vector<float>(r.joint_max_limit, r.joint_max_limit + 6); });
    EXPECT_EQ(cached, (std::vector<float>{90.0f, 91.0f, 92.0f, 93.0f, 94.0f, 95.0f}));
}

TEST_F(Limits, ASetterWhoseReadBackFailsReturnsTheReadsError) {
    controller.reply("set_joint_max_speed", judged("set_joint_max_speed", "joint_max_speed"));
    controller.forget("get_joint_max_speed");
    EXPECT_EQ(qm_set_joint_max_speed(arm(), 1, 180.0f), -2);
}

TEST_F(Limits, DriveSettersDoNotReadBack) {
    controller.reply("set_joint_drive_max_pos", judged("set_joint_drive_max_pos", "joint_max_pos"));
    ASSERT_EQ(fresh([](qm_robot_handle* h) { return qm_set_joint_drive_max_pos(h, 1, 10.0f); }), 0);
    EXPECT_EQ(controller.lines().size(), 1u);
}

TEST_F(Limits, AutomaticLimitsRefreshBothPositionLimits) {
    controller.reply("auto_set_joint_limit", judged("auto_set_joint_limit", "limit_mode"));
    controller.reply("get_joint_min_pos", R"({"command":"joint_min_pos","min_pos":[-1000,-2000,-3000,-4000,-5000,-6000]})");
    controller.reply("get_joint_max_pos", R"({"command":"joint_max_pos","max_pos":[1000,2000,3000,4000,5000,6000]})");
    ASSERT_EQ(fresh([](qm_robot_handle* h) { return qm_auto_set_joint_limit(h, 0); }), 0);
    EXPECT_EQ(controller.lines().size(), 3u);
    record([](qm_handle_t& r) {
        EXPECT_FLOAT_EQ(r.joint_min_limit[5], -6.0f);
        EXPECT_FLOAT_EQ(r.joint_max_limit[5], 6.0f);
        return 0;
    });
}

// A dof-long getter: its request, the reply scripted and the values read.
struct GetRow {
    const char* behaviour;
    std::function<int(qm_robot_handle*, float*)> call;
    std::string command;
    std::string reply;
    std::vector<float> expected;
};

TEST_F(Limits, JointLimitGettersScaleBackEveryJoint) {
    const GetRow rows[] = {
        {"speed read back times 6", qm_get_joint_max_speed, "get_joint_max_speed",
         R"({"command":"joint_max_speed","joint_speed":[30000,15000,1,0,-6000,1000]})",
         {180.0f, 90.0f, 0.006f, 0.0f, -36.0f, 6.0f}},
        {"acceleration read back times 6", qm_get_joint_max_acc, "get_joint_max_acc",
         R"({"command":"joint_max_acc","joint_acc":[100000,1,2,3,4,5]})", {600.0f, 0.006f, 0.012f, 0.018f, 0.024f, 0.03f}},
        {"lower positions in degrees", qm_get_joint_min_pos, "get_joint_min_pos",
         R"({"command":"joint_min_pos","min_pos":[-178000,-1,0,1,2,3]})", {-178.0f, -0.001f, 0.0f, 0.001f, 0.002f, 0.003f}},
        {"upper positions in degrees", qm_get_joint_max_pos, "get_joint_max_pos",
         R"({"command":"joint_max_pos","max_pos":[178000,1,0,1,2,3]})", {178.0f, 0.001f, 0.0f, 0.001f, 0.002f, 0.003f}},
        {"drive speed under its own command as reply key", qm_get_joint_drive_max_speed, "get_joint_drive_max_speed",
         R"({"command":"get_joint_drive_max_speed","joint_speed":[30000,0,0,0,0,0]})", {180.0f, 0, 0, 0, 0, 0}},
        {"drive acceleration read back times 6 although it went out without", qm_get_joint_drive_max_acc,
         "get_joint_drive_max_acc", R"({"command":"get_joint_drive_max_acc","joint_acc":[60000,0,0,0,0,0]})",
         {360.0f, 0, 0, 0, 0, 0}},
        {"drive lower positions", qm_get_joint_drive_min_pos, "get_joint_drive_min_pos",
         R"({"command":"get_joint_drive_min_pos","min_pos":[-360000,0,0,0,0,0]})", {-360.0f, 0, 0, 0, 0, 0}},
        {"drive upper positions", qm_get_joint_drive_max_pos, "get_joint_drive_max_pos",
         R"({"command":"get_joint_drive_max_pos","max_pos":[360000,0,0,0,0,0]})", {360.0f, 0, 0, 0, 0, 0}},
    };
    for (const GetRow& row : rows) {
        SCOPED_TRACE(row.behaviour);
        controller.reply(row.command, row.reply);
        float out[ARM_DOF] = {-1, -1, -1, -1, -1, -1, -1};
        EXPECT_EQ(fresh([&](qm_robot_handle* h) { return row.call(h, out); }), 0);
        EXPECT_EQ(first_line(), R"({"command":")" + row.command + R"("})");
        for (size_t i = 0; i < row.expected.size(); ++i) EXPECT_FLOAT_EQ(out[i], row.expected[i]) << "joint " << i;
        EXPECT_EQ(out[6], -1.0f) << "a six-joint arm writes six values";
    }
}

TEST_F(Limits, SoftwareLimitReadsAreCachedAndDriveReadsAreNot) {
    controller.reply("get_joint_max_acc", R"({"command":"joint_max_acc","joint_acc":[1000,2000,3000,4000,5000,6000]})");
    controller.reply("get_joint_drive_max_speed",
                     R"({"command":"get_joint_drive_max_speed","joint_speed":[1,1,1,1,1,1]})");
    float out[ARM_DOF];
    ASSERT_EQ(qm_get_joint_max_acc(arm(), out), 0);
    ASSERT_EQ(qm_get_joint_drive_max_speed(arm(), out), 0);
    record([](qm_handle_t& r) {
        EXPECT_FLOAT_EQ(r.joint_max_acc[0], 6.0f);
        EXPECT_FLOAT_EQ(r.joint_max_acc[5], 36.0f);
        EXPECT_FLOAT_EQ(r.joint_max_speed[0], 180.0f) << "still the synchronised speed limit";
        return 0;
    });
}

TEST_F(Limits, EnableStatesAndErrorFlagsAreReadAsIntegers) {
    controller.reply("get_joint_en_state", R"({"command":"joint_en_state","en_state":[1,0,1,1,0,1]})");
    controller.reply("get_joint_err_flag",
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
    controller.reply("get_arm_max_line_speed", R"({"command":"arm_max_line_speed","arm_line_speed":250})");
    controller.reply("get_arm_max_line_acc", R"({"command":"arm_max_line_acc","arm_line_acc":1600})");
    controller.reply("get_arm_max_angular_speed", R"({"command":"arm_max_angular_speed","arm_angular_speed":600})");
    controller.reply("get_arm_max_angular_acc", R"({"command":"arm_max_angular_acc","arm_angular_acc":4000})");
    controller.reply("get_collision_stage", R"({"command":"get_collision_stage","collision_stage":3})");
    float value = 0;
    ASSERT_EQ(qm_get_arm_max_line_speed(arm(), &value), 0);
    EXPECT_FLOAT_EQ(value, 0.25f);
    ASSERT_EQ(qm_get_arm_max_line_acc(arm(), &value), 0);
    EXPECT_FLOAT_EQ(value, 1.6f);
    ASSERT_EQ(qm_get_arm_max_angular_speed(arm(), &value), 0);
    EXPECT_FLOAT_EQ(value, 0.6f);
    ASSERT_EQ(qm_get_arm_max_angular_acc(arm(), &value), 0);
    EXPECT_FLOAT_EQ(value, 4.0f);
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

// ---- failure paths of the dof-long getters ----

TEST_F(Limits, AGetterWithoutAnswerTimesOut) {
    controller.forget("get_joint_max_speed");
    float out[ARM_DOF];
    EXPECT_EQ(qm_get_joint_max_speed(arm(), out), -2);
}

TEST_F(Limits, AnArrayOfTheWrongLengthIsMalformed) {
    controller.reply("get_joint_min_pos", R"({"command":"joint_min_pos","min_pos":[1,2,3,4,5,6,7]})");
    float out[ARM_DOF];
    EXPECT_EQ(qm_get_joint_min_pos(arm(), out), -3);
}

TEST_F(Limits, AnArmWithoutJointCountIsReportedDisconnectedAfterTheRequestWentOut) {
    qm_test::LogCapture log(LOG_LEVEL_ERROR);
    set_record_dof(0);
    float out[ARM_DOF];
    EXPECT_EQ(fresh([&](qm_robot_handle* h) { return qm_get_joint_max_speed(h, out); }), -1);
    EXPECT_EQ(first_line(), R"({"command":"get_joint_max_speed"})");
    EXPECT_TRUE(log.contains("[qm_get_joint_max_speed] The robotic arm has been disconnected\n"));
}

TEST_F(Limits, AnUnknownHandleFailsWithMinusOne) {
    qm_robot_handle stranger{1};
    float out[ARM_DOF];
    EXPECT_EQ(qm_get_joint_max_speed(&stranger, out), -1);
    EXPECT_EQ(qm_set_joint_max_speed(&stranger, 1, 1.0f), -1);
}

}  // namespace
}  // namespace arm_catalogue_test
