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
        {"hand angles always say block", ON_ARM(qm_set_hand_angle(h, kFingers)),
         R"({"command":"set_hand_angle","hand_angle":[100,200,300,400,500,65535],"block":true})",
         "set_state"},
        {"hand force", ON_ARM(qm_set_hand_force(h, 6)), R"({"command":"set_hand_force","hand_force":6})",
         "set_state"},
        {"lift height without block", ON_ARM(qm_set_lift_height(h, 50, 300, 0)),
         R"({"command":"set_lift_height","speed":50,"height":300,"block":false})", "set_state"},
        {"expansion speed", ON_ARM(qm_set_expand_speed(h, 40)),
         R"({"command":"expand_set_speed","speed":40})", "set_speed_state"},
        {"expansion position without block", ON_ARM(qm_set_expand_pos(h, 40, -1200, 0)),
         R"({"command":"expand_set_pos","speed":40,"pos":-1200,"block":false})", "set_pos_state"},
        {"ecosystem mode, generic set", ON_ARM(qm_set_qm_plus_mode(h, 2)),
         R"({"command":"set_qm_plus_mode","mode":2})", "set_state"},
    });
}

TEST_F(Peripherals, IdleGrippersAndStreamedHandTargetsAreOnlySent) {
    const std::pair<Call, std::string> rows[] = {
        {ON_ARM(qm_set_gripper_position(h, 250, false, 0)),
         R"({"command":"set_gripper_position","position":250,"block":false})"},
        {ON_ARM(qm_set_hand_follow_pos(h, kFingers, false)),
         R"({"command":"hand_follow_pos","hand_pos":[100,200,300,400,500,65535]})"},
    };
    for (const auto& [call, request] : rows) {
        EXPECT_EQ(fresh(call), 0);  // the controller never answers
        EXPECT_EQ(only_line(), request);
    }
}

// The answer is filed before the follow command looks, so its 20 ms suffice on any machine.
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
    qm_gripper_state_t g{};
    ASSERT_EQ(qm_get_gripper_state(arm(), &g), 0);
    EXPECT_EQ(std::vector<int>(
                  {g.enable_state, g.status, g.error, g.mode, g.current_force, g.temperature, g.actpos}),
              std::vector<int>({1, 2, 3, 4, -5, 36, 700}));
    // The lift reports its height, which lands in pos; a reply missing a member stores nothing.
    controller.reply("get_lift_state",
                     R"({"command":"lift_state","height":320,"current":12,"err_flag":0,"mode":1})");
    qm_expand_state_t lift{};
    ASSERT_EQ(fresh(ON_ARM(qm_get_lift_state(h, &lift))), 0);
    EXPECT_EQ(first_line(), R"({"command":"get_lift_state"})");
    EXPECT_EQ(std::vector<int>({lift.pos, lift.current, lift.err_flag, lift.mode}),
              std::vector<int>({320, 12, 0, 1}));
    controller.reply("expand_get_state", R"({"command":"expand_state","pos":-80,"current":7,"err_flag":2})");
    EXPECT_EQ(qm_get_expand_state(arm(), &lift), -3);
    EXPECT_EQ(lift.pos, 320);
}

TEST_F(Peripherals, EcosystemInfoIsCutToTheRecord) {
    controller.reply(
        "get_qm_plus_base_info",
        R"({"command":"get_qm_plus_base_info","base_info":{"manu":"MakerNameLong","hv":"hv-1234567890",)"
        R"("id":7,"force":1,"touch":0,"pos_up":[1,2,3,4,5,6,7,8,9,10,11,12,13,14]}})");
    qm_plus_base_info_t base{};
    base.pos_low[0] = 99;
    ASSERT_EQ(qm_get_qm_plus_base_info(arm(), &base), 0);
    EXPECT_STREQ(base.manu, "MakerName");
    EXPECT_STREQ(base.hv, "hv-123456");
    EXPECT_EQ(base.id, 7);
    EXPECT_TRUE(base.force && !base.touch);
    EXPECT_EQ(base.pos_up[11], 12);
    EXPECT_EQ(base.pos_low[0], 99) << "an array the reply lacks is left alone";

    // "tsa" and "tma" entries outside 0..4294967295 (or not numbers) stay as they were.
    controller.reply("get_qm_plus_state_info",
                     R"({"command":"get_qm_plus_state_info","state_info":{"sys_state":3,)"
                     R"("normal_force":[0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,18,19],)"
                     R"("tsa":[-1,4294967295,4294967296,12.9,"x"],"tma":[5]}})");
    qm_plus_state_info_t state{};
    for (uint32_t& counter : state.tsa) counter = 7;
    ASSERT_EQ(qm_get_qm_plus_state_info(arm(), &state), 0);
    EXPECT_EQ(state.normal_force[17], 18);
    EXPECT_EQ(std::vector<uint32_t>(state.tsa, state.tsa + 6),
              std::vector<uint32_t>({7, 4294967295u, 7, 12, 7, 7}));
    EXPECT_EQ(state.tma[0], 5u);

    const std::string bare = R"({"command":"get_qm_plus_state_info"})";
    controller.reply("get_qm_plus_state_info", bare);
    EXPECT_EQ(qm_get_qm_plus_state_info(arm(), &state), static_cast<int>(bare.size())) << "no state_info";
    controller.reply("get_qm_plus_base_info", R"({"command":"get_qm_plus_base_info"})");
    EXPECT_EQ(qm_get_qm_plus_base_info(arm(), &base), 0) << "no base_info";
    controller.reply("get_qm_plus_base_info", R"({"command":"get_qm_plus_base_info","get_state":false})");
    EXPECT_EQ(qm_get_qm_plus_base_info(arm(), &base), 1);
}

// ---- arrival waits of the gripper and the hand, in both receive modes ----

class DeviceWaits : public CatalogueArm, public ::testing::WithParamInterface<qm_thread_mode_e> {
protected:
    DeviceWaits() : CatalogueArm(GetParam()) {}
};

TEST_P(DeviceWaits, TheDevicesOwnArrivalDecides) {
    const std::string accepted = judged("set_gripper", "state"),
                      refused = judged("set_gripper", "state", false);
    // behaviour, call, command, reply, event ("" none), result, log line
    const std::tuple<const char*, Call, std::string, std::string, std::string, int, std::string> rows[] = {
        {"gripper arrives", ON_ARM(qm_set_gripper_pick(h, 500, 200, true, 2)), "set_gripper_pick", accepted,
         arrival(1), 0, ""},
        {"a refused gripper command still waits and may arrive",
         ON_ARM(qm_set_gripper_release(h, 500, true, 2)), "set_gripper_release", refused, arrival(1), 0, ""},
        {"the gripper's motion fails", ON_ARM(qm_set_gripper_release(h, 500, true, 2)), "set_gripper_release",
         accepted, arrival(1, false), 1, ""},
        {"another device arrives", ON_ARM(qm_set_gripper_pick_on(h, 500, 200, true, 2)),
         "set_gripper_pick_on", accepted, arrival(2), -4, "[qm_set_gripper_pick_on] current device is: 2 \n"},
        {"position: another device is -5", ON_ARM(qm_set_gripper_position(h, 300, true, 2)),
         "set_gripper_position", accepted, arrival(0), -5,
         "[qm_set_gripper_position] current device is: 0 \n"},
        {"nothing arrives", ON_ARM(qm_set_gripper_release(h, 500, true, 1)), "set_gripper_release", accepted,
         "", -5, ""},
        {"position: nothing arrives is -4", ON_ARM(qm_set_gripper_position(h, 300, true, 1)),
         "set_gripper_position", accepted, "", -4, "[qm_set_gripper_position] timeout error\n"},
        {"hand posture arrives", ON_ARM(qm_set_hand_posture(h, 1, true, 2)), "set_hand_posture",
         judged("set_hand_posture", "set_state"), arrival(2), 0, ""},
        {"hand sequence meets the gripper's arrival", ON_ARM(qm_set_hand_seq(h, 1, true, 2)), "set_hand_seq",
         judged("set_hand_seq", "set_state"), arrival(1), -4, "[qm_set_hand_seq] current device is: 1 \n"},
    };
    for (const auto& [behaviour, call, command, reply, event, expected, message] : rows) {
        SCOPED_TRACE(behaviour);
        qm_test::LogCapture log(LOG_LEVEL_ERROR);
        // Single-thread mode loses what shares a read with the awaited reply: push repeatedly there.
        std::optional<RepeatedPush> events;
        const bool repeat = GetParam() == QM_SINGLE_MODE_E && !event.empty();
        controller.reply(command, reply + (event.empty() || repeat ? "" : "\r\n" + event));
        if (repeat) events.emplace(controller, event);
        EXPECT_EQ(call(arm()), expected);
        EXPECT_TRUE(message.empty() ? !log.mentions("timeout error") && !log.mentions("current device")
                                    : log.contains(message));
        controller.forget(command);
    }
}

INSTANTIATE_TEST_SUITE_P(Modes, DeviceWaits, ::testing::Values(QM_DUAL_MODE_E, QM_SINGLE_MODE_E));

// ---- arrival waits of the axes ----

struct AxisWaitRow {
    const char* behaviour;
    bool lift;             // else the expansion axis
    std::string reply;     // the acceptance, and events in the same write
    std::string modes;     // the axis's state answers in turn, the last repeats; "?" without mode
    int event_after_poll;  // the poll whose answer carries `event` (0 never)
    std::string event;
    int expected;
    int polls;
    std::string message = "";
};

class AxisWaits : public CatalogueArm {};

TEST_F(AxisWaits, AnAxisWaitSkipsForeignArrivalsWhileItMayMoveAndRefusesThemAfter) {
    const std::string lift_ok = judged("set_lift_height", "set_state"),
                      expand_ok = judged("expand_set_pos", "set_pos_state");
    const AxisWaitRow rows[] = {
        {"the arm's arrival is passed over, the lift's ends the wait", true,
         lift_ok + "\r\n" + arrival(0) + "\r\n" + arrival(3), "1", 0, "", 0, 0},
        {"a refused move is not awaited", true, judged("set_lift_height", "set_state", false), "1", 0, "", 1,
         0},
        {"seen moving, then standing: another device's arrival is refused", true, lift_ok, "1 1 0", 3,
         arrival(4), -4, 3, "[qm_set_lift_height] current device is: 4 \n"},
        {"a missed arrival sends the wait back to watching", false, expand_ok, "1 0 0", 3, arrival(4), 0, 3},
        {"the expansion's motion fails", false, expand_ok + "\r\n" + arrival(4, false), "1", 0, "", 1, 0},
        {"six unreadable states end the wait with the read's code", true, lift_ok, "?", 0, "", -3, 6},
    };
    for (const AxisWaitRow& row : rows) {
        SCOPED_TRACE(row.behaviour);
        qm_test::LogCapture log(LOG_LEVEL_ERROR);
        controller.reply(row.lift ? "set_lift_height" : "expand_set_pos", row.reply);
        std::vector<std::string> modes;
        std::istringstream in(row.modes);
        for (std::string mode; in >> mode;) modes.push_back(mode);
        const std::string state_command = row.lift ? "get_lift_state" : "expand_get_state";
        std::atomic<int> polls{0};
        controller.on(state_command, [&](const std::string&) -> std::optional<std::string> {
            const int n = ++polls;
            const std::string& mode = modes[std::min<size_t>(n, modes.size()) - 1];
            return std::string(R"({"command":")") + (row.lift ? "lift_state" : "expand_state") +
                   R"(","height":0,"pos":0,"current":0,"err_flag":0)" +
                   (mode == "?" ? "" : R"(,"mode":)" + mode) + "}\r\n" +
                   (n == row.event_after_poll ? row.event + "\r\n" : "");
        });
        EXPECT_EQ(row.lift ? qm_set_lift_height(arm(), 50, 300, 1) : qm_set_expand_pos(arm(), 40, 100, 1),
                  row.expected);
        EXPECT_EQ(polls, row.polls);
        EXPECT_TRUE(row.message.empty() || log.contains(row.message));
        controller.forget(state_command);
    }
}

class SingleThreadAxisWaits : public CatalogueArm {
protected:
    SingleThreadAxisWaits() : CatalogueArm(QM_SINGLE_MODE_E) {}
};

TEST_F(SingleThreadAxisWaits, BlockCountsOneSecondTurnsForTheAxissArrival) {
    controller.reply("set_lift_height", judged("set_lift_height", "set_state"));
    controller.reply("expand_set_pos", judged("expand_set_pos", "set_pos_state"));
    RepeatedPush events(controller, arrival(3));
    EXPECT_EQ(qm_set_lift_height(arm(), 50, 300, 2), 0);
    EXPECT_EQ(qm_set_expand_pos(arm(), 40, 100, 1), -5) << "only the lift arrived";
}

}  // namespace
}  // namespace catalogue_test
