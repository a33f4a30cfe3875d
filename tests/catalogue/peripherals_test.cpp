// Gripper, dexterous hand, lift and expansion axes and the end-effector ecosystem against a
// fake controller: requests, judged members, arrival waits in both receive modes, state records.
#include <sstream>

#include "catalogue_fixture.h"

namespace catalogue_test {
namespace {

const int kFingers[6] = {100, 200, 300, 400, 500, 65535};

class Peripherals : public CatalogueArm {};

TEST_F(Peripherals, SettersSendTheirMembersAndJudgeTheirReplyMember) {
    expect_each_judged({
        {"gripper route names its limits min and max", ON_ARM(qm_set_gripper_route(h, 10, 900)),
         R"({"command":"set_gripper_route","min":10,"max":900})", "state"},
        {"a gripper given a timeout awaits set_gripper", ON_ARM(qm_set_gripper_pick(h, 500, 200, false, 5)),
         R"({"command":"set_gripper_pick","speed":500,"force":200,"block":false})", "state", "set_gripper"},
        {"hand posture without block", ON_ARM(qm_set_hand_posture(h, 3, false, 0)),
         R"({"command":"set_hand_posture","posture_num":3,"block":false})", "set_state"},
        {"hand sequence without block", ON_ARM(qm_set_hand_seq(h, 4, false, 0)),
         R"({"command":"set_hand_seq","seq_num":4,"block":false})", "set_state"},
        {"hand angles always say block", ON_ARM(qm_set_hand_angle(h, kFingers)),
         R"({"command":"set_hand_angle","hand_angle":[100,200,300,400,500,65535],"block":true})",
         "set_state"},
        {"hand speed", ON_ARM(qm_set_hand_speed(h, 800)), R"({"command":"set_hand_speed","hand_speed":800})",
         "set_state"},
        {"hand force", ON_ARM(qm_set_hand_force(h, 600)), R"({"command":"set_hand_force","hand_force":600})",
         "set_state"},
        {"lift speed", ON_ARM(qm_set_lift_speed(h, 50)), R"({"command":"set_lift_speed","speed":50})",
         "set_state"},
        {"lift height without block", ON_ARM(qm_set_lift_height(h, 50, 300, 0)),
         R"({"command":"set_lift_height","speed":50,"height":300,"block":false})", "set_state"},
        {"expansion speed", ON_ARM(qm_set_expand_speed(h, 40)),
         R"({"command":"expand_set_speed","speed":40})", "set_speed_state"},
        {"expansion position without block", ON_ARM(qm_set_expand_pos(h, 40, -1200, 0)),
         R"({"command":"expand_set_pos","speed":40,"pos":-1200,"block":false})", "set_pos_state"},
        {"ecosystem mode", ON_ARM(qm_set_qm_plus_mode(h, 2)), R"({"command":"set_qm_plus_mode","mode":2})",
         "set_state"},
        {"ecosystem touch", ON_ARM(qm_set_qm_plus_touch(h, 1)), R"({"command":"set_qm_plus_touch","mode":1})",
         "set_state"},
    });
}

TEST_F(Peripherals, StreamedAndIdleGripperCommandsAreOnlySent) {
    const std::pair<Call, std::string> rows[] = {
        {ON_ARM(qm_set_gripper_release(h, 500, false, 0)),
         R"({"command":"set_gripper_release","speed":500,"block":false})"},
        {ON_ARM(qm_set_gripper_pick_on(h, 500, 300, false, 0)),
         R"({"command":"set_gripper_pick_on","speed":500,"force":300,"block":false})"},
        {ON_ARM(qm_set_gripper_position(h, 250, false, 0)),
         R"({"command":"set_gripper_position","position":250,"block":false})"},
        {ON_ARM(qm_set_hand_follow_angle(h, kFingers, false)),
         R"({"command":"hand_follow_angle","hand_angle":[100,200,300,400,500,65535]})"},
        {ON_ARM(qm_set_hand_follow_pos(h, kFingers, false)),
         R"({"command":"hand_follow_pos","hand_pos":[100,200,300,400,500,65535]})"},
    };
    for (const auto& [call, request] : rows) {
        SCOPED_TRACE(request);
        EXPECT_EQ(fresh(call), 0);  // the controller never answers
        EXPECT_EQ(only_line(), request);
    }
}

// The answer is already filed when the follow command looks, so its 20 ms suffice on any machine.
TEST_F(Peripherals, BlockingHandFollowJudgesAnAnswerWithinTwentyMilliseconds) {
    qm_test::LogCapture log;
    controller.push_line(judged("hand_follow_pos", "set_state", false));
    std::this_thread::sleep_for(50ms);
    EXPECT_EQ(qm_set_hand_follow_pos(arm(), kFingers, true), 1);
    EXPECT_TRUE(log.contains("[qm_set_hand_follow_pos] block is 1\n"));
    EXPECT_EQ(qm_set_hand_follow_angle(arm(), kFingers, true), -2);
}

TEST_F(Peripherals, StateQueriesFillTheirRecordsUnscaled) {
    controller.reply("get_gripper_state", R"({"command":"get_gripper_state","enable":1,"status":2,"error":3,)"
                                          R"("mode":4,"current_force":-5,"temperature":36,"actpos":700})");
    qm_gripper_state_t gripper{};
    ASSERT_EQ(qm_get_gripper_state(arm(), &gripper), 0);
    EXPECT_EQ(std::vector<int>({gripper.enable_state, gripper.status, gripper.error, gripper.mode,
                                gripper.current_force, gripper.temperature, gripper.actpos}),
              std::vector<int>({1, 2, 3, 4, -5, 36, 700}));

    // The lift reports its height, which lands in pos.
    controller.reply("get_lift_state",
                     R"({"command":"lift_state","height":320,"current":12,"err_flag":0,"mode":1})");
    controller.reply("expand_get_state",
                     R"({"command":"expand_state","pos":-80,"current":7,"err_flag":2,"mode":0})");
    qm_expand_state_t lift{}, expand{};
    ASSERT_EQ(fresh(ON_ARM(qm_get_lift_state(h, &lift))), 0);
    EXPECT_EQ(first_line(), R"({"command":"get_lift_state"})");
    ASSERT_EQ(qm_get_expand_state(arm(), &expand), 0);
    EXPECT_EQ(std::vector<int>({lift.pos, lift.current, lift.err_flag, lift.mode}),
              std::vector<int>({320, 12, 0, 1}));
    EXPECT_EQ(std::vector<int>({expand.pos, expand.current, expand.err_flag, expand.mode}),
              std::vector<int>({-80, 7, 2, 0}));

    controller.reply("get_qm_plus_touch", R"({"command":"get_qm_plus_touch","mode":3})");
    int mode = 0;
    ASSERT_EQ(qm_get_qm_plus_touch(arm(), &mode), 0);
    EXPECT_EQ(mode, 3);

    // A reply missing a member stores nothing.
    controller.reply("get_lift_state", R"({"command":"lift_state","height":1,"current":1,"err_flag":1})");
    EXPECT_EQ(qm_get_lift_state(arm(), &lift), -3);
    EXPECT_EQ(lift.pos, 320);
}

TEST_F(Peripherals, EcosystemBaseInfoIsCutToTheRecord) {
    controller.reply(
        "get_qm_plus_base_info",
        R"({"command":"get_qm_plus_base_info","base_info":{"manu":"MakerNameLong","type":2,)"
        R"("hv":"hv-1234567890","sv":"1.2","bv":"b","id":7,"dof":6,"check":1,"bee":0,"force":1,)"
        R"("touch":0,"touch_num":5,"touch_sw":1,"hand":3,"pos_up":[1,2,3,4,5,6,7,8,9,10,11,12,13,14],)"
        R"("angle_low":[-1,-2]}})");
    qm_plus_base_info_t info{};
    info.pos_low[0] = 99;
    ASSERT_EQ(qm_get_qm_plus_base_info(arm(), &info), 0);
    EXPECT_STREQ(info.manu, "MakerName");
    EXPECT_STREQ(info.hv, "hv-123456");
    EXPECT_STREQ(info.sv, "1.2");
    EXPECT_EQ(std::vector<int>(
                  {info.type, info.id, info.dof, info.check, info.touch_num, info.touch_sw, info.hand}),
              std::vector<int>({2, 7, 6, 1, 5, 1, 3}));
    EXPECT_TRUE(info.force);
    EXPECT_FALSE(info.touch);
    EXPECT_EQ(info.pos_up[11], 12);
    EXPECT_EQ(info.angle_low[1], -2);
    EXPECT_EQ(info.pos_low[0], 99) << "an array the reply lacks is left alone";

    controller.reply("get_qm_plus_base_info", R"({"command":"get_qm_plus_base_info","get_state":false})");
    EXPECT_EQ(qm_get_qm_plus_base_info(arm(), &info), 1);
    controller.reply("get_qm_plus_base_info", R"({"command":"get_qm_plus_base_info"})");
    EXPECT_EQ(qm_get_qm_plus_base_info(arm(), &info), 0);
}

TEST_F(Peripherals, EcosystemStateKeepsCountersOutsideTheirRangeAsTheyWere) {
    controller.reply("get_qm_plus_state_info",
                     R"({"command":"get_qm_plus_state_info","state_info":{"sys_state":3,"dof_state":[1,1],)"
                     R"("normal_force":[0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,18,19],)"
                     R"("tsa":[-1,4294967295,4294967296,12.9,"x"],"tma":[5]}})");
    qm_plus_state_info_t info{};
    for (uint32_t& counter : info.tsa) counter = 7;
    ASSERT_EQ(qm_get_qm_plus_state_info(arm(), &info), 0);
    EXPECT_EQ(info.sys_state, 3);
    EXPECT_EQ(info.normal_force[17], 18);
    EXPECT_EQ(std::vector<uint32_t>(info.tsa, info.tsa + 6),
              std::vector<uint32_t>({7, 4294967295u, 7, 12, 7, 7}));
    EXPECT_EQ(info.tma[0], 5u);

    const std::string bare = R"({"command":"get_qm_plus_state_info"})";
    controller.reply("get_qm_plus_state_info", bare);
    EXPECT_EQ(qm_get_qm_plus_state_info(arm(), &info), static_cast<int>(bare.size()))
        << "the exchange's own result when state_info is missing";
    controller.reply("get_qm_plus_state_info", R"({"command":"get_qm_plus_state_info","get_state":false})");
    EXPECT_EQ(qm_get_qm_plus_state_info(arm(), &info), 1);
}

// ---- arrival waits of the gripper and the hand, in both receive modes ----

struct DeviceWaitRow {
    const char* behaviour;
    Call call;
    std::string command;
    std::string reply;
    std::string event;  // "" none
    int expected;
    std::string message = "";
};

class DeviceWaits : public CatalogueArm, public ::testing::WithParamInterface<qm_thread_mode_e> {
protected:
    DeviceWaits() : CatalogueArm(GetParam()) {}
};

TEST_P(DeviceWaits, TheDevicesOwnArrivalDecides) {
    const DeviceWaitRow rows[] = {
        {"gripper arrives", ON_ARM(qm_set_gripper_pick(h, 500, 200, true, 2)), "set_gripper_pick",
         judged("set_gripper", "state"), arrival(1), 0},
        {"a refused gripper command still waits and may arrive",
         ON_ARM(qm_set_gripper_release(h, 500, true, 2)), "set_gripper_release",
         judged("set_gripper", "state", false), arrival(1), 0},
        {"the gripper's trajectory fails", ON_ARM(qm_set_gripper_release(h, 500, true, 2)),
         "set_gripper_release", judged("set_gripper", "state"), arrival(1, false), 1},
        {"another device arrives", ON_ARM(qm_set_gripper_pick_on(h, 500, 200, true, 2)),
         "set_gripper_pick_on", judged("set_gripper", "state"), arrival(2), -4,
         "[qm_set_gripper_pick_on] current device is: 2 \n"},
        {"position: another device is -5", ON_ARM(qm_set_gripper_position(h, 300, true, 2)),
         "set_gripper_position", judged("set_gripper", "state"), arrival(0), -5,
         "[qm_set_gripper_position] current device is: 0 \n"},
        {"nothing arrives", ON_ARM(qm_set_gripper_release(h, 500, true, 1)), "set_gripper_release",
         judged("set_gripper", "state"), "", -5},
        {"position: nothing arrives is -4", ON_ARM(qm_set_gripper_position(h, 300, true, 1)),
         "set_gripper_position", judged("set_gripper", "state"), "", -4,
         "[qm_set_gripper_position] timeout error\n"},
        {"hand posture arrives", ON_ARM(qm_set_hand_posture(h, 1, true, 2)), "set_hand_posture",
         judged("set_hand_posture", "set_state"), arrival(2), 0},
        {"hand sequence meets the gripper's arrival", ON_ARM(qm_set_hand_seq(h, 1, true, 2)), "set_hand_seq",
         judged("set_hand_seq", "set_state"), arrival(1), -4, "[qm_set_hand_seq] current device is: 1 \n"},
    };
    for (const DeviceWaitRow& row : rows) {
        SCOPED_TRACE(row.behaviour);
        qm_test::LogCapture log(LOG_LEVEL_ERROR);
        std::optional<RepeatedPush> events;
        if (GetParam() == QM_SINGLE_MODE_E && !row.event.empty()) {
            controller.reply(row.command, row.reply);
            events.emplace(controller, row.event);
        } else {
            controller.reply(row.command, row.reply + (row.event.empty() ? "" : "\r\n" + row.event));
        }
        EXPECT_EQ(row.call(arm()), row.expected);
        if (row.message.empty()) {
            EXPECT_FALSE(log.mentions("timeout error") || log.mentions("current device"));
        } else {
            EXPECT_TRUE(log.contains(row.message));
        }
        controller.forget(row.command);
    }
}

INSTANTIATE_TEST_SUITE_P(Modes, DeviceWaits, ::testing::Values(QM_DUAL_MODE_E, QM_SINGLE_MODE_E));

// ---- arrival waits of the axes ----

// A state answer whose mode is `mode`; "?" answers without mode.
std::string axis_state(const std::string& reply_key, const std::string& mode) {
    return R"({"command":")" + reply_key + R"(","height":0,"pos":0,"current":0,"err_flag":0)" +
           (mode == "?" ? "" : R"(,"mode":)" + mode) + "}";
}

struct AxisWaitRow {
    const char* behaviour;
    Call call;
    std::string command;
    std::string reply;     // the acceptance, and events in the same write
    std::string modes;     // the axis's state answers in turn, the last repeats; "" not polled
    int event_after_poll;  // the poll whose answer carries `event` (0 never)
    std::string event;
    int expected;
    std::string message = "";
};

class AxisWaits : public CatalogueArm {};

TEST_F(AxisWaits, AnAxisWaitSkipsForeignArrivalsWhileItMayMoveAndRefusesThemAfter) {
    const Call lift = ON_ARM(qm_set_lift_height(h, 50, 300, 1));
    const Call expand = ON_ARM(qm_set_expand_pos(h, 40, 100, 1));
    const AxisWaitRow rows[] = {
        {"the arm's arrival is passed over, the lift's ends the wait", lift, "set_lift_height",
         judged("set_lift_height", "set_state") + "\r\n" + arrival(0) + "\r\n" + arrival(3), "", 0, "", 0},
        {"a refused move is not awaited", lift, "set_lift_height",
         judged("set_lift_height", "set_state", false), "", 0, "", 1},
        {"seen moving, then standing: another device's arrival is refused", lift, "set_lift_height",
         judged("set_lift_height", "set_state"), "1 1 0", 3, arrival(4), -4,
         "[qm_set_lift_height] current device is: 4 \n"},
        {"a missed arrival sends the wait back to watching", expand, "expand_set_pos",
         judged("expand_set_pos", "set_pos_state"), "1 0 0", 3, arrival(4), 0},
        {"the expansion's trajectory fails", expand, "expand_set_pos",
         judged("expand_set_pos", "set_pos_state") + "\r\n" + arrival(4, false), "", 0, "", 1},
        {"six unreadable states end the wait with the read's code", lift, "set_lift_height",
         judged("set_lift_height", "set_state"), "?", 0, "", -3},
    };
    for (const AxisWaitRow& row : rows) {
        SCOPED_TRACE(row.behaviour);
        qm_test::LogCapture log(LOG_LEVEL_ERROR);
        controller.reply(row.command, row.reply);
        std::vector<std::string> modes;
        std::istringstream in(row.modes);
        for (std::string mode; in >> mode;) modes.push_back(mode);
        const std::string state_command =
            row.command == "set_lift_height" ? "get_lift_state" : "expand_get_state";
        const std::string state_key = row.command == "set_lift_height" ? "lift_state" : "expand_state";
        std::atomic<int> polls{0};
        controller.on(state_command, [&](const std::string&) -> std::optional<std::string> {
            const int n = ++polls;
            if (modes.empty()) return std::nullopt;
            const std::string answer = axis_state(state_key, modes[std::min<size_t>(n, modes.size()) - 1]);
            return answer + "\r\n" + (n == row.event_after_poll ? row.event + "\r\n" : "");
        });
        EXPECT_EQ(row.call(arm()), row.expected);
        if (row.modes.empty()) {
            EXPECT_EQ(polls, 0);
        }
        if (row.modes == "?") {
            EXPECT_EQ(polls, 6);
        }
        if (!row.message.empty()) {
            EXPECT_TRUE(log.contains(row.message));
        }
        controller.forget(state_command);
    }
}

TEST_F(AxisWaits, InAnUnknownThreadModeTheAxisGivesMinusThreeAfterTheAcceptance) {
    controller.reply("set_lift_height", judged("set_lift_height", "set_state"));
    g_mode = static_cast<qm_thread_mode_e>(5);
    const int result = qm_set_lift_height(arm(), 50, 300, 1);
    g_mode = QM_DUAL_MODE_E;
    EXPECT_EQ(result, -3);
}

class SingleThreadAxisWaits : public CatalogueArm {
protected:
    SingleThreadAxisWaits() : CatalogueArm(QM_SINGLE_MODE_E) {}
};

TEST_F(SingleThreadAxisWaits, BlockCountsOneSecondTurnsForTheAxissArrival) {
    controller.reply("set_lift_height", judged("set_lift_height", "set_state"));
    controller.reply("expand_set_pos", judged("expand_set_pos", "set_pos_state"));
    {
        RepeatedPush events(controller, arrival(3));
        EXPECT_EQ(qm_set_lift_height(arm(), 50, 300, 2), 0);
    }
    RepeatedPush events(controller, arrival(3));
    EXPECT_EQ(qm_set_expand_pos(arm(), 40, 100, 1), -5) << "only the lift arrived";
}

}  // namespace
}  // namespace catalogue_test
