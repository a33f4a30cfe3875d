// Step moves, jogs, the teach frame and the stop commands against a fake controller.
#include <gtest/gtest.h>

#include <string>

#include "log_capture.h"
#include "motion_fixture.h"

namespace motion_test {
namespace {

// ---- step moves ----

struct StepRow {
    const char* behaviour;
    Call call;
    std::string request;
};

class StepMove : public MotionArm {};

TEST_F(StepMove, NonBlockingStepsOnlySendTheirMembersInOrder) {
    const StepRow rows[] = {
        {"joint step: [joint, thousandths], then v",
         [](qm_robot_handle* h) { return qm_set_joint_step(h, 3, 1.5f, 20, QM_MOVE_NBLOCK); },
         R"({"command":"set_joint_step","joint_step":[3,1500],"v":20})"},
        // In single precision 2.3f scales to 2300 (a planned joint move sends 2299).
        {"joint step scales in single precision",
         [](qm_robot_handle* h) { return qm_set_joint_step_nblock(h, 1, 2.3f, 5); },
         R"({"command":"set_joint_step","joint_step":[1,2300],"v":5})"},
        {"position step in micrometres", [](qm_robot_handle* h) { return qm_set_pos_step(h, QM_X_DIR_E, 0.0015f, 20, 0); },
         R"({"command":"set_pos_step","v":20,"step":1500,"step_type":"x_step"})"},
        {"position step truncates toward zero",
         [](qm_robot_handle* h) { return qm_set_pos_step_nblock(h, QM_Z_DIR_E, -0.0000009f, 20); },
         R"({"command":"set_pos_step","v":20,"step":0,"step_type":"z_step"})"},
        {"rotation step in milliradians",
         [](qm_robot_handle* h) { return qm_set_ort_step(h, QM_RY_ROTATE_E, -0.5f, 7, 0); },
         R"({"command":"set_ort_step","v":7,"step":-500,"step_type":"ry_step"})"},
        {"an axis outside 0..2 leaves step_type out",
         [](qm_robot_handle* h) { return qm_set_ort_step_nblock(h, static_cast<qm_ort_teach_type_e>(3), 0.5f, 7); },
         R"({"command":"set_ort_step","v":7,"step":500})"},
    };
    start();
    for (const StepRow& row : rows) {
        SCOPED_TRACE(row.behaviour);
        controller.clear_received();
        EXPECT_EQ(row.call(arm()), 0);  // the controller never answers
        EXPECT_EQ(only_line(), row.request);
    }
}

TEST_F(StepMove, NonBlockingStepOnAnUnknownArmFailsToSend) {
    start();
    qm_robot_handle stranger{1};
    EXPECT_EQ(qm_set_joint_step(&stranger, 3, 1.5f, 20, QM_MOVE_NBLOCK), -1);
}

TEST_F(StepMove, BlockingStepPollsThePlannedTrajectoryBeforeTakingTheArrival) {
    start();
    controller.reply("set_pos_step", accepted("set_pos_step") + "\r\n" + arrival(0));
    std::atomic<int> polls{0};
    controller.on("get_arm_current_trajectory", [&](const std::string&) -> std::optional<std::string> {
        return (++polls == 1 ? planned("movel") : planned("none")) + "\r\n";
    });
    EXPECT_EQ(qm_set_pos_step(arm(), QM_Y_DIR_E, 0.01f, 10, QM_MOVE_MULTI_BLOCK), 0);
    EXPECT_GE(polls.load(), 1);
    EXPECT_EQ(controller.lines().front(), R"({"command":"set_pos_step","v":10,"step":10000,"step_type":"y_step"})");
}

TEST_F(StepMove, BlockingStepReportsAnotherDevicesArrivalWithMinusFour) {
    start();
    qm_test::LogCapture log;
    controller.reply("set_joint_step", accepted("set_joint_step") + "\r\n" + arrival(2));
    std::atomic<int> polls{0};
    controller.on("get_arm_current_trajectory", [&](const std::string&) -> std::optional<std::string> {
        return (++polls == 1 ? planned("movej") : planned("none")) + "\r\n";
    });
    EXPECT_EQ(qm_set_joint_step(arm(), 2, 1.0f, 10, QM_MOVE_MULTI_BLOCK), -4);
    EXPECT_TRUE(log.contains("[qm_set_joint_step_block] current device is: 2 \n"));
}

TEST_F(StepMove, BlockingStepReturnsAcceptanceFailuresWithoutWaiting) {
    const FailureRow rows[] = {
        {"refused", accepted("set_ort_step", false), 1},
        {"no reply in time", std::nullopt, -2},
        {"reply without receive_state", R"({"command":"set_ort_step"})", -3},
    };
    start();
    for (const FailureRow& row : rows) {
        SCOPED_TRACE(row.behaviour);
        controller.clear_received();
        answer("set_ort_step", row.reply);
        EXPECT_EQ(qm_set_ort_step(arm(), QM_RZ_ROTATE_E, 0.1f, 10, QM_MOVE_MULTI_BLOCK), row.expected);
        EXPECT_EQ(only_line(), R"({"command":"set_ort_step","v":10,"step":100,"step_type":"rz_step"})");
    }
}

TEST_F(StepMove, BlockingStepInSingleThreadModeWaitsForTheArrival) {
    start(QM_SINGLE_MODE_E);
    controller.reply("set_joint_step", accepted("set_joint_step"));
    RepeatedPush events(controller, arrival(0));
    EXPECT_EQ(qm_set_joint_step(arm(), 1, 1.0f, 10, 3), 0);
}

// ---- jogs, teach frame, stop and trajectory control ----

struct SetRow {
    const char* behaviour;
    Call call;
    std::string request;
    std::string reply;  // answered under the request's command, which is also the reply key
};

class TeachAndStop : public MotionArm {};

TEST_F(TeachAndStop, EachCommandSendsItsMembersAndJudgesItsOwnReplyMember) {
    const SetRow rows[] = {
        {"joint jog, non-zero direction is pos", [](qm_robot_handle* h) { return qm_set_joint_teach(h, 2, 5, 30); },
         R"({"command":"set_joint_teach","teach_joint":2,"v":30,"direction":"pos"})",
         R"({"command":"set_joint_teach","joint_teach":true})"},
        {"joint jog, zero direction is neg", [](qm_robot_handle* h) { return qm_set_joint_teach(h, 2, 0, 30); },
         R"({"command":"set_joint_teach","teach_joint":2,"v":30,"direction":"neg"})",
         R"({"command":"set_joint_teach","joint_teach":true})"},
        {"position jog", [](qm_robot_handle* h) { return qm_set_pos_teach(h, QM_Z_DIR_E, 1, 40); },
         R"({"command":"set_pos_teach","v":40,"teach_type":"z","direction":"pos"})",
         R"({"command":"set_pos_teach","pos_teach":true})"},
        {"position jog on an unknown axis leaves teach_type out",
         [](qm_robot_handle* h) { return qm_set_pos_teach(h, static_cast<qm_pos_teach_type_e>(-1), 0, 40); },
         R"({"command":"set_pos_teach","v":40,"direction":"neg"})", R"({"command":"set_pos_teach","pos_teach":true})"},
        {"rotation jog", [](qm_robot_handle* h) { return qm_set_ort_teach(h, QM_RX_ROTATE_E, 0, 50); },
         R"({"command":"set_ort_teach","v":50,"teach_type":"rx","direction":"neg"})",
         R"({"command":"set_ort_teach","ort_teach":true})"},
        {"stop jog", [](qm_robot_handle* h) { return qm_set_stop_teach(h); }, R"({"command":"set_stop_teach"})",
         R"({"command":"set_stop_teach","stop_teach":true})"},
        {"teach frame", [](qm_robot_handle* h) { return qm_set_teach_frame(h, 1); },
         R"({"command":"set_teach_frame","frame_type":1})", R"({"command":"set_teach_frame","set_state":true})"},
        {"slow stop", [](qm_robot_handle* h) { return qm_set_arm_slow_stop(h); }, R"({"command":"set_arm_slow_stop"})",
         R"({"command":"set_arm_slow_stop","arm_slow_stop":true})"},
        {"stop", [](qm_robot_handle* h) { return qm_set_arm_stop(h); }, R"({"command":"set_arm_stop"})",
         R"({"command":"set_arm_stop","arm_stop":true})"},
        {"pause", [](qm_robot_handle* h) { return qm_set_arm_pause(h); }, R"({"command":"set_arm_pause"})",
         R"({"command":"set_arm_pause","arm_pause":true})"},
        {"continue", [](qm_robot_handle* h) { return qm_set_arm_continue(h); }, R"({"command":"set_arm_continue"})",
         R"({"command":"set_arm_continue","arm_continue":true})"},
        {"delete current trajectory", [](qm_robot_handle* h) { return qm_set_delete_current_trajectory(h); },
         R"({"command":"set_delete_current_trajectory"})",
         R"({"command":"set_delete_current_trajectory","delete_current_trajectory":true})"},
        {"delete every trajectory", [](qm_robot_handle* h) { return qm_set_arm_delete_trajectory(h); },
         R"({"command":"set_arm_delete_trajectory"})",
         R"({"command":"set_arm_delete_trajectory","arm_delete_trajectory":true})"},
    };
    start();
    for (const SetRow& row : rows) {
        SCOPED_TRACE(row.behaviour);
        controller.clear_received();
        controller.reply(command_of(row.request), row.reply);
        EXPECT_EQ(row.call(arm()), 0);
        EXPECT_EQ(only_line(), row.request);
    }
}

TEST_F(TeachAndStop, ReplyFailuresAreReturned) {
    const FailureRow rows[] = {
        {"refused", R"({"command":"set_arm_pause","arm_pause":false})", 1},
        {"no reply in time", std::nullopt, -2},
        {"the judged member is missing", R"({"command":"set_arm_pause","set_state":true})", -3},
    };
    start();
    for (const FailureRow& row : rows) {
        SCOPED_TRACE(row.behaviour);
        answer("set_arm_pause", row.reply);
        EXPECT_EQ(qm_set_arm_pause(arm()), row.expected);
    }
    qm_robot_handle stranger{1};
    EXPECT_EQ(qm_set_arm_pause(&stranger), -1);
}

TEST_F(TeachAndStop, TeachFrameIsReadFromItsReply) {
    start();
    controller.reply("get_teach_frame", R"({"command":"get_teach_frame","frame_type":1})");
    int frame_type = -7;
    EXPECT_EQ(qm_get_teach_frame(arm(), &frame_type), 0);
    EXPECT_EQ(frame_type, 1);
    EXPECT_EQ(only_line(), R"({"command":"get_teach_frame"})");
}

TEST_F(TeachAndStop, TeachFrameMissingFromTheReplyLeavesTheOutputUnchanged) {
    start();
    controller.reply("get_teach_frame", R"({"command":"get_teach_frame"})");
    int frame_type = -7;
    EXPECT_EQ(qm_get_teach_frame(arm(), &frame_type), -3);
    EXPECT_EQ(frame_type, -7);
    controller.forget("get_teach_frame");
    EXPECT_EQ(qm_get_teach_frame(arm(), &frame_type), -2);
    EXPECT_EQ(frame_type, -7);
}

}  // namespace
}  // namespace motion_test
