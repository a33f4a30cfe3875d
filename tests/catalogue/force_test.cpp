// Force sensing, drag teaching and force-position control against a fake controller: requests
// and scalings, force-variant refusals, streamed moves and the replay waits.
#include <algorithm>
#include <sstream>

#include "catalogue_fixture.h"

namespace catalogue_test {
namespace {

float kJoints[7] = {1.5f, -0.0005f, 2.3f, -12.3456f, 180.0f, 0.001f, 99.0f};
const std::string kJointsWire = "[1500,0,2299,-12345,180000,1]";

class Force : public CatalogueArm {
protected:
    void set_variant(qm_force_type_e type, int generation = 3) {
        record([&](qm_handle_t& r) {
            r.force_type = type;
            r.robot_controller_version = generation;
        });
    }
};

TEST_F(Force, SettersSendTheirMembersAndJudgeTheirReplyMember) {
    // Commands of the handle alone, answered under their own name.
    const std::tuple<int (*)(qm_robot_handle*), std::string, std::string> bare[] = {
        {qm_clear_force_data, "clear_force_data", "clear_state"},
        {qm_stop_set_force_sensor, "stop_set_force_sensor", "stop_state"},
        {qm_clear_Fz, "clear_Fz", "set_state"},
        {qm_stop_drag_teach, "stop_drag_teach", "drag_teach"},
        {qm_pause_drag_trajectory, "pause_drag_trajectory", "pause_state"},
        {qm_continue_drag_trajectory, "continue_drag_trajectory", "continue_state"},
        {qm_stop_drag_trajectory, "stop_drag_trajectory", "stop_state"},
        {qm_stop_force_position, "stop_force_position", "stop_state"},
        {qm_start_force_position_move, "Start_Force_Position_Move", "set_state"},
        {qm_stop_force_position_move, "Stop_Force_Position_Move", "set_state"},
    };
    for (const auto& [call, command, member] : bare)
        expect_each_judged({{command.c_str(), call, R"({"command":")" + command + R"("})", member}});

    const qm_force_position_t position{
        1, 2, {0, 1, 0, 1, 0, 1}, {1.25f, -2.5f, 0, 0, 0, 9.99f}, {0.1f, 0, 0, 0, 0, 0.0125f}};
    expect_each_judged({
        {"the fourth manual pose, blocking, awaits the calibration's end",
         ON_ARM(qm_manual_set_force(h, 4, kJoints, true)),
         R"({"command":"manual_set_force_pose4","joint":)" + kJointsWire + "}", "set_state",
         "set_force_sensor"},
        {"blocking one-axis calibration sends both poses",
         ON_ARM(qm_manual_set_Fz(h, kJoints, kJoints, true)),
         R"({"command":"manual_set_Fz","pose1":)" + kJointsWire + R"(,"pose2":)" + kJointsWire + "}",
         "set_state", "set_force_sensor"},
        {"automatic calibration", ON_ARM(qm_auto_set_Fz(h, true)), R"({"command":"auto_set_Fz"})",
         "set_state", "set_force_sensor"},
        {"drag teaching with recording", ON_ARM(qm_start_drag_teach(h, 1)),
         R"({"command":"start_drag_teach","trajectory_record":1})", "drag_teach"},
        {"a single force drops its fraction before the tenths",
         ON_ARM(qm_set_force_position(h, 1, 0, 2, 12.7f)),
         R"({"command":"set_force_position","sensor":1,"mode":0,"direction":2,"N":120})", "set_state"},
        {"per-axis forces in tenths, speed limits in thousandths",
         ON_ARM(qm_set_force_position_new(h, position)),
         R"({"command":"set_force_position","mode":2,"sensor":1,"desired_force":[12,-25,0,0,0,99],)"
         R"("control_mode":[0,1,0,1,0,1],"limit_vel":[100,0,0,0,0,12]})",
         "set_state"},
    });
}

qm_pose_t pose_with(qm_quat_t quaternion) {
    qm_pose_t pose{};
    pose.position = {0.1234567f, 0, -0.5f};
    pose.quaternion = quaternion;
    pose.euler = {3.142f, -0.0005f, 0.5f};
    return pose;
}

TEST_F(Force, CalibrationStepsAndStreamedMovesAreOnlySent) {
    // The squared norms come out as exactly 0.99f and 1.1f: the strict bounds send Euler angles.
    const qm_quat_t at_lower{0.994987428f, 0, 0, 0}, at_upper{0.6f, 0.860232532f, 0, 0};
    ASSERT_EQ(at_lower.w * at_lower.w, 0.99f);
    ASSERT_EQ(at_upper.w * at_upper.w + at_upper.x * at_upper.x, 1.1f);
    const std::string pose_head =
        R"({"command":"Force_Position_Move","follow":true,"sensor":1,"mode":1,"dir":5,)";
    const std::string euler = R"("force":10,"pose":[123456,0,-500000,3142,0,500]})";
    qm_force_position_move_t joint_move{0,
                                        pose_with({1, 0, 0, 0}),
                                        {},
                                        1,
                                        2,
                                        true,
                                        {1, 1, 1, 0, 0, 0},
                                        {5, 0, 0, 0, 0, 0},
                                        {0.2f, 0, 0, 0, 0, 0},
                                        1,
                                        100};
    std::copy(kJoints, kJoints + 7, joint_move.joint);
    // A radio above its mode's bound only warns: mode 0 allows none.
    qm_force_position_move_t pose_move = joint_move;
    pose_move.flag = 1;
    pose_move.trajectory_mode = 0;
    pose_move.radio = 5;
    const auto move_head = [](const std::string& mode_and_radio) {
        return R"({"command":"Force_Position_Move","follow":true,"sensor":1,"mode":2,)" + mode_and_radio +
               R"(,"control_mode":[1,1,1,0,0,0],"desired_force":[50,0,0,0,0,0],"limit_vel":[200,0,0,0,0,0],)";
    };
    qm_test::LogCapture log(LOG_LEVEL_WARN);
    const std::pair<Call, std::string> rows[] = {
        {ON_ARM(qm_set_force_sensor(h, false)), R"({"command":"set_force_sensor"})"},
        {ON_ARM(qm_manual_set_force(h, 1, kJoints, true)),
         R"({"command":"manual_set_force_pose1","joint":)" + kJointsWire + "}"},
        {ON_ARM(qm_manual_set_force(h, 4, kJoints, false)),
         R"({"command":"manual_set_force_pose4","joint":)" + kJointsWire + "}"},
        {ON_ARM(qm_run_drag_trajectory(h, 0)), R"({"command":"run_drag_trajectory"})"},
        {ON_ARM(qm_drag_trajectory_origin(h, 0)), R"({"command":"drag_trajectory_origin"})"},
        {ON_ARM(qm_force_position_move_joint(h, kJoints, 1, 0, 2, -0.5f, false)),
         R"({"command":"Force_Position_Move","joint":)" + kJointsWire +
             R"(,"follow":false,"sensor":1,"mode":0,"dir":2,"force":0})"},
        {ON_ARM(qm_force_position_move_pose(h, pose_with({1, 0, 0, 0}), 1, 1, 5, 12.7f, true)),
         pose_head + R"("force":120,"pose_quat":[123456,0,-500000,1000000,0,0,0]})"},
        {ON_ARM(qm_force_position_move_pose(h, pose_with(at_lower), 1, 1, 5, 1.0f, true)), pose_head + euler},
        {ON_ARM(qm_force_position_move_pose(h, pose_with(at_upper), 1, 1, 5, 1.0f, true)), pose_head + euler},
        {ON_ARM(qm_force_position_move(h, joint_move)),
         move_head(R"("trajectory_mode":1,"radio":100)") + R"("joint":)" + kJointsWire + "}"},
        {ON_ARM(qm_force_position_move(h, pose_move)),
         move_head(R"("trajectory_mode":0,"radio":5)") + R"("pose_quat":[123456,0,-500000,1000000,0,0,0]})"},
    };
    for (const auto& [call, request] : rows) {
        SCOPED_TRACE(request);
        EXPECT_EQ(fresh(call), 0);  // the controller never answers
        EXPECT_EQ(only_line(), request);
    }
    EXPECT_EQ(log.messages(),
              std::vector<std::string>{"[qm_force_position_move] qm_force_position_move_t param "
                                       "warn, invaild radio: 5!\n"});
}

TEST_F(Force, RefusalsSendNothing) {
    qm_test::LogCapture log(LOG_LEVEL_WARN);
    const std::string no_six_axis =
        "Non-six-dimensional force version, The configuration for singular_wall and the values in free_axes "
        "array "
        "are invalid.\n";
    const std::string no_sensor = "QM_MODEL_QM_B_E not support force drag mode\n";
    const std::tuple<const char*, Call, int, std::string> rows[] = {
        {"a pose count below one", ON_ARM(qm_manual_set_force(h, 0, kJoints, true)), 1, ""},
        {"a pose count above four", ON_ARM(qm_manual_set_force(h, 5, kJoints, false)), 1, ""},
        {"one-axis reading on an arm without it", ON_ARM(qm_get_Fz(h, nullptr)), -4,
         "arm force type check err!"},
        {"multi-axis drag without six-axis sensing", ON_ARM(qm_start_multi_drag_teach(h, 1, 1)), 1,
         no_six_axis},
        {"force drag mode without force sensing", ON_ARM(qm_set_force_drag_mode(h, 1)), -4, no_sensor},
        {"reading it likewise", ON_ARM(qm_get_force_drag_mode(h, nullptr)), -4, no_sensor},
    };
    for (const auto& [behaviour, call, expected, message] : rows) {
        SCOPED_TRACE(behaviour);
        log.clear();
        EXPECT_EQ(call(arm()), expected);
        EXPECT_EQ(log.messages(),
                  message.empty() ? std::vector<std::string>{} : std::vector<std::string>{message});
    }
    set_variant(QM_MODEL_QM_SF_E, 3);
    log.clear();
    EXPECT_EQ(qm_start_multi_drag_teach(arm(), 1, 1), -4) << "third generation, silently";
    EXPECT_TRUE(log.messages().empty());

    record([](qm_handle_t& r) { r.arm_dof = 0; });
    EXPECT_EQ(qm_force_position_move_joint(arm(), kJoints, 1, 0, 2, 1.0f, false), -1);
    EXPECT_EQ(qm_manual_set_Fz(arm(), kJoints, kJoints, false), -1);
    EXPECT_TRUE(log.contains("[qm_manual_set_Fz] The robotic arm has been disconnected\n"));
    qm_robot_handle stranger{1};
    EXPECT_EQ(qm_start_multi_drag_teach_new(&stranger, {}), -1);
    std::this_thread::sleep_for(20ms);
    EXPECT_TRUE(controller.received().empty());
}

TEST_F(Force, MultiAxisDragSendsWhatTheSensingVariantSupports) {
    const qm_multi_drag_teach_t teach{{1, 1, 0, 0, 0, 1}, 1, 2};
    const std::tuple<qm_force_type_e, int, Call, std::string> rows[] = {
        {QM_MODEL_QM_ZF_E, 3, ON_ARM(qm_start_multi_drag_teach_new(h, teach)),
         R"({"command":"start_multi_drag_teach","frame":1})"},
        {QM_MODEL_QM_ISF_E, 3, ON_ARM(qm_start_multi_drag_teach_new(h, teach)),
         R"({"command":"start_multi_drag_teach","frame":1,"singular_wall":2,"free_axes":[1,1,0,0,0,1]})"},
        {QM_MODEL_QM_SF_E, 4, ON_ARM(qm_start_multi_drag_teach(h, 3, 0)),
         R"({"command":"start_multi_drag_teach","mode":3,"singular_wall":0})"},
        {QM_MODEL_QM_SF_E, 3, ON_ARM(qm_set_force_drag_mode(h, 1)),
         R"({"command":"set_force_drag_mode","mode":1})"},
    };
    for (const auto& [type, generation, call, request] : rows) {
        SCOPED_TRACE(request);
        set_variant(type, generation);
        controller.reply(command_of(request), judged(command_of(request), "set_state"));
        EXPECT_EQ(fresh(call), 0);
        EXPECT_EQ(only_line(), request);
    }
}

TEST_F(Force, ReadingsArriveInThousandths) {
    controller.reply("get_force_data",
                     R"({"command":"get_force_data","force_data":[1000,-2500,0,1,2,3],)"
                     R"("zero_force_data":[0,0,0,0,0,-7000],"work_zero_force_data":[0,0,0,0,0,0],)"
                     R"("tool_zero_force_data":[500,0,0,0,0,0]})");
    qm_force_data_t data{};
    ASSERT_EQ(fresh(ON_ARM(qm_get_force_data(h, &data))), 0);
    EXPECT_EQ(first_line(), R"({"command":"get_force_data"})");
    EXPECT_FLOAT_EQ(data.force_data[1], -2.5f);
    EXPECT_FLOAT_EQ(data.zero_force_data[5], -7.0f);
    EXPECT_FLOAT_EQ(data.tool_zero_force_data[0], 0.5f);

    set_variant(QM_MODEL_QM_ZF_E);
    controller.reply("get_Fz",
                     R"({"command":"get_Fz","Fz":12345,"zero_Fz":-1,"work_zero_Fz":0,"tool_zero_Fz":2000})");
    qm_fz_data_t fz{};
    ASSERT_EQ(qm_get_Fz(arm(), &fz), 0);
    EXPECT_FLOAT_EQ(fz.Fz, 12.345f);
    EXPECT_FLOAT_EQ(fz.zero_Fz, -0.001f);
    EXPECT_FLOAT_EQ(fz.tool_zero_Fz, 2.0f);
}

// ---- replay waits ----

struct OriginRow {
    const char* behaviour;
    std::string types;  // planned-trajectory answers in turn, the last repeats; "?" malformed
    int event_after_poll;
    std::string event;
    int expected;
    int polls;
    std::string message = "";
};

TEST_F(Force, ReturnToTheOriginWatchesTheJointMoveThenTakesTheArmsArrival) {
    const OriginRow rows[] = {
        {"runs, ends, arrives", "movej movej none", 3, arrival(0), 0, 3},
        {"another trajectory first, then nothing for ten polls", "movel none", 11, arrival(0), 0, 11},
        {"a missed arrival sends the wait back to watching", "movej none", 3, arrival(0), 0, 3},
        {"another device's arrival", "movej none", 2, arrival(1), -4, 2,
         "[qm_drag_trajectory_origin] current device is: 1 \n"},
        {"the return fails", "movej none", 2, arrival(0, false), 1, 2},
        {"six failed polls give the poll's code", "?", 0, "", -1, 6},
    };
    for (const OriginRow& row : rows) {
        SCOPED_TRACE(row.behaviour);
        qm_test::LogCapture log(LOG_LEVEL_ERROR);
        std::vector<std::string> types;
        std::istringstream in(row.types);
        for (std::string type; in >> type;) types.push_back(type);
        std::atomic<int> polls{0};
        controller.on("get_arm_current_trajectory", [&](const std::string&) -> std::optional<std::string> {
            const int n = ++polls;
            const std::string& type = types[std::min<size_t>(n, types.size()) - 1];
            return (type == "?" ? R"({"command":"arm_current_trajectory"})" : planned(type)) + "\r\n" +
                   (n == row.event_after_poll ? row.event + "\r\n" : "");
        });
        EXPECT_EQ(qm_drag_trajectory_origin(arm(), 1), row.expected);
        EXPECT_EQ(polls, row.polls);
        EXPECT_TRUE(row.message.empty() || log.contains(row.message));
    }
}

TEST_F(Force, ReplayIsWatchedUntilItEndsAndThenItsAnswerJudged) {
    std::atomic<int> polls{0};
    controller.on("get_arm_current_trajectory", [&](const std::string&) -> std::optional<std::string> {
        return (++polls <= 2 ? planned("re_trajectory") : planned("none")) + "\r\n";
    });
    controller.reply("run_drag_trajectory", judged("run_drag_trajectory", "run_state"));
    EXPECT_EQ(fresh(ON_ARM(qm_run_drag_trajectory(h, 5))), 0);
    EXPECT_EQ(polls, 3);
    EXPECT_EQ(first_line(), R"({"command":"run_drag_trajectory"})");
    controller.reply("run_drag_trajectory", judged("run_drag_trajectory", "run_state", false));
    EXPECT_EQ(qm_run_drag_trajectory(arm(), 5), 1);
    controller.forget("run_drag_trajectory");
    EXPECT_EQ(qm_run_drag_trajectory(arm(), 5), -2);
}

// In a thread mode other than the three, the axes give -3 once accepted and the return to
// the origin the send result.
TEST_F(Force, AnUnknownThreadModeEndsTheWaitsAtOnce) {
    controller.reply("set_lift_height", judged("set_lift_height", "set_state"));
    g_mode = static_cast<qm_thread_mode_e>(3);  // the one value beyond the three that the type holds
    const int lift = qm_set_lift_height(arm(), 50, 300, 1);
    const int origin = qm_drag_trajectory_origin(arm(), 1);
    g_mode = QM_DUAL_MODE_E;
    EXPECT_EQ(lift, -3);
    EXPECT_EQ(origin, 0);
}

class SingleThreadForce : public CatalogueArm {
protected:
    SingleThreadForce() : CatalogueArm(QM_SINGLE_MODE_E) {}
};

TEST_F(SingleThreadForce, ReplayWaitsCountOneSecondTurnsOrAwaitTheAnswerForTheTimeout) {
    {
        RepeatedPush events(controller, arrival(0));
        EXPECT_EQ(qm_drag_trajectory_origin(arm(), 2), 0);
    }
    {
        RepeatedPush events(controller, arrival(1));
        EXPECT_EQ(qm_drag_trajectory_origin(arm(), 1), -5) << "only another device arrived";
    }
    controller.reply("run_drag_trajectory", judged("run_drag_trajectory", "run_state"));
    EXPECT_EQ(qm_run_drag_trajectory(arm(), 1), 0);
    controller.reply("set_force_sensor", judged("set_force_sensor", "set_state", false));
    EXPECT_EQ(qm_set_force_sensor(arm(), true), 1);
}

}  // namespace
}  // namespace catalogue_test
