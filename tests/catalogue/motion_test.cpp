// Planned moves, the arc move and the streamed targets against a fake controller.
#include <gtest/gtest.h>

#include <string>
#include <thread>

#include "log_capture.h"
#include "motion_fixture.h"

namespace motion_test {
namespace {

qm_pose_t make_pose(qm_position_t position, qm_euler_t euler, qm_quat_t quaternion = {0, 0, 0, 0}) {
    qm_pose_t pose{};
    pose.position = position;
    pose.euler = euler;
    pose.quaternion = quaternion;
    return pose;
}

// 2.3f lies just below 2.3: in double it scales to 2299.99..., in single precision to 2300.
const float kJoints[7] = {1.5f, -0.0005f, 2.3f, -12.3456f, 180.0f, 0.001f, 99.0f};
const char* const kJointsWire = "[1500,0,2299,-12345,180000,1]";
const qm_pose_t kPose = make_pose({0.1234567f, -0.0000009f, 2.3f}, {3.142f, -0.0005f, 2.3f});
const char* const kPoseWire = "[123456,0,2300000,3142,0,2300]";

// ---- request bytes ----

struct RequestRow {
    const char* behaviour;
    const char* command;  // the reply key the controller answers under
    Call call;
    std::string request;
};

class PlannedMoveRequest : public MotionArm {};

TEST_F(PlannedMoveRequest, EachMoveSendsItsMembersInOrderWithItsScaling) {
    const RequestRow rows[] = {
        {"joint move: dof values of millidegrees widened to double, truncated", "movej",
         [](qm_robot_handle* h) { return qm_movej(h, kJoints, 20, 3, 0, QM_MOVE_NBLOCK); },
         std::string(R"({"command":"movej","v":20,"joint":)") + kJointsWire + R"(,"trajectory_connect":0,"r":3})"},
        {"linear move: micrometres and milliradians in single precision", "movel",
         [](qm_robot_handle* h) { return qm_movel(h, kPose, 30, 0, 0, QM_MOVE_NBLOCK); },
         std::string(R"({"command":"movel","v":30,"pose":)") + kPoseWire + R"(,"trajectory_connect":0,"r":0})"},
        {"non-blocking offset move sends a plain linear move without frame_type", "movel",
         [](qm_robot_handle* h) { return qm_movel_offset(h, kPose, 30, 2, 0, 1, QM_MOVE_NBLOCK); },
         std::string(R"({"command":"movel","v":30,"pose":)") + kPoseWire + R"(,"trajectory_connect":0,"r":2})"},
        {"blocking offset move sends movel_offset with frame_type last", "movel_offset",
         [](qm_robot_handle* h) { return qm_movel_offset(h, kPose, 30, 2, 1, 1, QM_MOVE_MULTI_BLOCK); },
         std::string(R"({"command":"movel_offset","v":30,"offset":)") + kPoseWire +
             R"(,"trajectory_connect":1,"r":2,"frame_type":1})"},
        {"spline move", "moves", [](qm_robot_handle* h) { return qm_moves(h, kPose, 10, 0, 1, QM_MOVE_NBLOCK); },
         std::string(R"({"command":"moves","v":10,"pose":)") + kPoseWire + R"(,"trajectory_connect":1,"r":0})"},
        {"joint move to a pose", "movej_p",
         [](qm_robot_handle* h) { return qm_movej_p(h, kPose, 10, 4, 0, QM_MOVE_NBLOCK); },
         std::string(R"({"command":"movej_p","v":10,"pose":)") + kPoseWire + R"(,"trajectory_connect":0,"r":4})"},
        {"blocking connected joint move returns once accepted", "movej",
         [](qm_robot_handle* h) { return qm_movej_block(h, kJoints, 20, 0, 1, QM_MOVE_MULTI_BLOCK); },
         std::string(R"({"command":"movej","v":20,"joint":)") + kJointsWire + R"(,"trajectory_connect":1,"r":0})"},
    };
    start();
    for (const RequestRow& row : rows) {
        SCOPED_TRACE(row.behaviour);
        controller.clear_received();
        controller.reply(row.command, accepted(row.command));
        EXPECT_EQ(row.call(arm()), 0);
        EXPECT_EQ(only_line(), row.request);
        controller.forget(row.command);
    }
}

// ---- acceptance failures ----

class PlannedMoveFailure : public MotionArm {};

TEST_F(PlannedMoveFailure, EveryAcceptanceFailureIsReturnedForBlockingAndNonBlocking) {
    const FailureRow rows[] = {
        {"refused", accepted("movel", false), 1},
        {"no reply in time", std::nullopt, -2},
        {"reply without receive_state", R"({"command":"movel","state":true})", -3},
    };
    start();
    for (const FailureRow& row : rows) {
        SCOPED_TRACE(row.behaviour);
        answer("movel", row.reply);
        EXPECT_EQ(qm_movel(arm(), kPose, 10, 0, 0, QM_MOVE_NBLOCK), row.expected);
        EXPECT_EQ(qm_movel(arm(), kPose, 10, 0, 0, QM_MOVE_MULTI_BLOCK), row.expected);
    }
}

TEST_F(PlannedMoveFailure, JointMoveOnAnUnknownArmLogsDisconnectedAndSendsNothing) {
    start();
    qm_test::LogCapture log;
    qm_robot_handle stranger{1};
    EXPECT_EQ(qm_movej(&stranger, kJoints, 10, 0, 0, QM_MOVE_NBLOCK), -1);
    EXPECT_EQ(qm_movej(&stranger, kJoints, 10, 0, 0, QM_MOVE_MULTI_BLOCK), -1);
    EXPECT_TRUE(log.contains("[qm_movej] The robotic arm has been disconnected\n"));
    EXPECT_EQ(qm_movel(&stranger, kPose, 10, 0, 0, QM_MOVE_NBLOCK), -1);
    EXPECT_TRUE(controller.lines().empty());
}

// ---- the arc move ----

class ArcMove : public MotionArm {};

TEST_F(ArcMove, SendsFormattedMultiLineJsonWithRadiusInThousandths) {
    start();
    controller.reply("movec", accepted("movec"));
    const qm_pose_t via = make_pose({0.1f, 0.2f, 0.3f}, {0.1f, -0.2f, 0.3f});
    const qm_pose_t to = make_pose({-0.1f, 0.0f, 0.5f}, {3.142f, 0.0f, -1.5f});
    EXPECT_EQ(qm_movec(arm(), via, to, 15, 5, 2, 0, QM_MOVE_NBLOCK), 0);
    controller.wait_line(0);
    EXPECT_EQ(controller.received(),
              "{\n"
              "\t\"command\":\t\"movec\",\n"
              "\t\"pose\":\t{\n"
              "\t\t\"pose_via\":\t[100000, 200000, 300000, 100, -200, 300],\n"
              "\t\t\"pose_to\":\t[-100000, 0, 500000, 3142, 0, -1500]\n"
              "\t},\n"
              "\t\"v\":\t15,\n"
              "\t\"r\":\t5000,\n"
              "\t\"loop\":\t2,\n"
              "\t\"trajectory_connect\":\t0\n"
              "}\r\n");
}

TEST_F(ArcMove, RefusesATrajectoryConnectOtherThanZeroOrOneWithoutSending) {
    start();
    qm_test::LogCapture log;
    const qm_pose_t pose = make_pose({0.1f, 0.2f, 0.3f}, {0, 0, 0});
    EXPECT_EQ(qm_movec(arm(), pose, pose, 15, 5, 0, 2, QM_MOVE_NBLOCK), -6);
    EXPECT_EQ(qm_movec(arm(), pose, pose, 15, 5, 0, -1, QM_MOVE_MULTI_BLOCK), -6);
    EXPECT_TRUE(log.contains("[qm_movec] trajectory_connect check err! \n"));
    std::this_thread::sleep_for(20ms);
    EXPECT_TRUE(controller.received().empty());
}

TEST_F(ArcMove, JudgesTheReplyAndFailsOnAnUnknownArm) {
    start();
    const qm_pose_t pose = make_pose({0.1f, 0.2f, 0.3f}, {0, 0, 0});
    controller.reply("movec", accepted("movec", false));
    EXPECT_EQ(qm_movec(arm(), pose, pose, 15, 5, 0, 0, QM_MOVE_NBLOCK), 1);
    controller.forget("movec");
    EXPECT_EQ(qm_movec(arm(), pose, pose, 15, 5, 0, 0, QM_MOVE_NBLOCK), -2);
    qm_robot_handle stranger{1};
    EXPECT_EQ(qm_movec(&stranger, pose, pose, 15, 5, 0, 0, QM_MOVE_NBLOCK), -1);
}

TEST_F(ArcMove, BlockingArcWaitsForTheArmsArrival) {
    start();
    controller.reply("movec", accepted("movec") + "\r\n" + arrival(0));
    const qm_pose_t pose = make_pose({0.1f, 0.2f, 0.3f}, {0, 0, 0});
    EXPECT_EQ(qm_movec(arm(), pose, pose, 15, 5, 0, 0, QM_MOVE_MULTI_BLOCK), 0);
}

// ---- blocking moves, threaded receive ----

class BlockingMoveThreaded : public MotionArm {
protected:
    // The controller accepts every joint move; `then` follows the acceptance in the same write.
    void accept_joint_moves(const std::string& then = "") {
        controller.reply("movej", then.empty() ? accepted("movej") : accepted("movej") + "\r\n" + then);
    }
    int move() { return qm_movej(arm(), kJoints, 20, 0, 0, QM_MOVE_MULTI_BLOCK); }
};

TEST_F(BlockingMoveThreaded, ArrivalOfTheArmEndsTheWaitWithoutPolling) {
    start();
    accept_joint_moves(arrival(0));
    EXPECT_EQ(move(), 0);
    EXPECT_EQ(controller.lines().size(), 1u);
}

TEST_F(BlockingMoveThreaded, ConnectedSegmentsAreWaitedThroughToTheLast) {
    start();
    accept_joint_moves(arrival(0, true, 1) + "\r\n" + arrival(0));
    EXPECT_EQ(move(), 0);
}

TEST_F(BlockingMoveThreaded, TrajectoryEndedWithoutSuccessGivesOne) {
    start();
    accept_joint_moves(arrival(0, false));
    EXPECT_EQ(move(), 1);
}

// Without an event the wait polls the planned trajectory: the joint move is seen running,
// then nothing is planned, and the last wait finds the arrival of another device.
TEST_F(BlockingMoveThreaded, ArrivalOfAnotherDeviceAfterTheMoveEndedGivesMinusFour) {
    start();
    qm_test::LogCapture log;
    accept_joint_moves();
    std::atomic<int> polls{0};
    controller.on("get_arm_current_trajectory", [&](const std::string&) -> std::optional<std::string> {
        return ++polls == 1 ? planned("movej") + "\r\n" : planned("none") + "\r\n" + arrival(1) + "\r\n";
    });
    EXPECT_EQ(move(), -4);
    EXPECT_TRUE(log.contains("[qm_movej] current device is: 1 \n"));
}

TEST_F(BlockingMoveThreaded, MoveSeenRunningThenEndedFindsTheLateArrival) {
    start();
    accept_joint_moves();
    std::atomic<int> polls{0};
    controller.on("get_arm_current_trajectory", [&](const std::string&) -> std::optional<std::string> {
        return ++polls < 3 ? planned("movej") + "\r\n" : planned("none") + "\r\n" + arrival(0) + "\r\n";
    });
    EXPECT_EQ(move(), 0);
    EXPECT_GE(polls.load(), 3);
}

TEST_F(BlockingMoveThreaded, NothingPlannedAndNoArrivalTimesOutWithMinusSix) {
    start();
    accept_joint_moves();
    controller.reply("get_arm_current_trajectory", planned("none"));
    EXPECT_EQ(move(), -6);
}

TEST_F(BlockingMoveThreaded, RepeatedFailedTrajectoryPollsReturnThePollsError) {
    start();
    accept_joint_moves();
    controller.reply("get_arm_current_trajectory", R"({"command":"arm_current_trajectory","type":"movej"})");
    EXPECT_EQ(move(), -1);
    EXPECT_EQ(controller.lines().size(), 1u + 6u);  // the move and six failed polls
}

// ---- the listener flag ----

class ListenerFlag : public MotionArm {};

TEST_F(ListenerFlag, NonBlockingMoveDiscardsItsOwnArrivalSoALaterBlockingWaitIgnoresIt) {
    start();
    controller.reply("movel", accepted("movel"));
    ASSERT_EQ(qm_movel(arm(), kPose, 10, 0, 0, QM_MOVE_NBLOCK), 0);
    // This arrival belongs to the non-blocking move; were it delivered, the next wait would give 1.
    controller.push_line(arrival(0, false));
    controller.reply("movej", accepted("movej") + "\r\n" + arrival(0));
    EXPECT_EQ(qm_movej(arm(), kJoints, 20, 0, 0, QM_MOVE_MULTI_BLOCK), 0);
}

TEST_F(ListenerFlag, BlockingVariantGivenNoBlockReturnsOnceAcceptedAndDiscardsTheArrival) {
    start();
    controller.reply("moves", accepted("moves"));
    ASSERT_EQ(qm_moves_block(arm(), kPose, 10, 0, 0, QM_MOVE_NBLOCK), 0);
    EXPECT_EQ(controller.lines().size(), 1u);
    controller.push_line(arrival(0, false));
    controller.reply("movej", accepted("movej") + "\r\n" + arrival(0));
    EXPECT_EQ(qm_movej(arm(), kJoints, 20, 0, 0, QM_MOVE_MULTI_BLOCK), 0);
}

TEST_F(ListenerFlag, RefusedNonBlockingMoveLeavesTheNextArrivalToTheWait) {
    start();
    controller.reply("movel", accepted("movel", false));
    ASSERT_EQ(qm_movel(arm(), kPose, 10, 0, 0, QM_MOVE_NBLOCK), 1);
    controller.push_line(arrival(0, false));
    controller.reply("movej", accepted("movej"));
    EXPECT_EQ(qm_movej(arm(), kJoints, 20, 0, 0, QM_MOVE_MULTI_BLOCK), 1);
}

// ---- blocking moves, single-thread receive ----

class BlockingMoveSingleThread : public MotionArm {};

TEST_F(BlockingMoveSingleThread, ArrivalOfTheArmEndsTheWait) {
    start(QM_SINGLE_MODE_E);
    controller.reply("movej", accepted("movej"));
    RepeatedPush events(controller, arrival(0));
    EXPECT_EQ(qm_movej(arm(), kJoints, 20, 0, 0, 3), 0);
}

TEST_F(BlockingMoveSingleThread, TrajectoryEndedWithoutSuccessGivesOne) {
    start(QM_SINGLE_MODE_E);
    controller.reply("movel", accepted("movel"));
    RepeatedPush events(controller, arrival(0, false));
    EXPECT_EQ(qm_movel(arm(), kPose, 20, 0, 0, 3), 1);
}

TEST_F(BlockingMoveSingleThread, ArcMoveWaitsForItsReplyAndTheArrival) {
    start(QM_SINGLE_MODE_E);
    controller.reply("movec", accepted("movec"));
    RepeatedPush events(controller, arrival(0));
    const qm_pose_t pose = make_pose({0.1f, 0.2f, 0.3f}, {0, 0, 0});
    EXPECT_EQ(qm_movec(arm(), pose, pose, 15, 5, 0, 0, 3), 0);
}

// `block` counts one-second turns here; another device's arrival only uses up turns.
TEST_F(BlockingMoveSingleThread, NoArrivalOfTheArmWithinTheTurnsGivesMinusFive) {
    start(QM_SINGLE_MODE_E);
    controller.reply("movej", accepted("movej"));
    RepeatedPush events(controller, arrival(1));
    EXPECT_EQ(qm_movej(arm(), kJoints, 20, 0, 0, 1), -5);
}

// ---- streamed targets ----

class StreamedTarget : public MotionArm {};

TEST_F(StreamedTarget, EachTargetGoesOutWithoutAwaitingAReply) {
    float joints[7] = {1.5f, -0.0005f, 2.3f, -12.3456f, 180.0f, 0.001f, 99.0f};
    const qm_pose_t unit_quat = make_pose({0.1234567f, 0, 2.3f}, {0.5f, 0, 0}, {1, 0, 0, 0});
    const qm_pose_t zero_quat = make_pose({0.1234567f, 0, 2.3f}, {0.5f, 0, 0}, {0, 0, 0, 0});
    // Squared norm 1.1025: too far from unit length, so the Euler angles go out.
    const qm_pose_t long_quat = make_pose({0.1234567f, 0, 2.3f}, {0.5f, 0, 0}, {1.05f, 0, 0, 0});
    const RequestRow rows[] = {
        {"joint pass-through: dof joints, follow, expand in thousandths", "",
         [&](qm_robot_handle* h) { return qm_movej_canfd(h, {joints, 1.5f, true, 2, 1000}); },
         std::string(R"({"command":"movej_canfd","joint":)") + kJointsWire +
             R"(,"follow":true,"expand":1500,"trajectory_mode":2,"radio":1000})"},
        {"pose pass-through with a unit quaternion sends pose_quat", "",
         [&](qm_robot_handle* h) { return qm_movep_canfd(h, {unit_quat, false, 1, 50}); },
         R"({"command":"movep_canfd","follow":false,"pose_quat":[123456,0,2300000,1000000,0,0,0],)"
         R"("trajectory_mode":1,"radio":50})"},
        {"pose follow with an all-zero quaternion sends the Euler pose", "",
         [&](qm_robot_handle* h) { return qm_movep_follow(h, zero_quat); },
         R"({"command":"movep_follow","pose":[123456,0,2300000,500,0,0]})"},
        {"pose follow with a quaternion far from unit length sends the Euler pose", "",
         [&](qm_robot_handle* h) { return qm_movep_follow(h, long_quat); },
         R"({"command":"movep_follow","pose":[123456,0,2300000,500,0,0]})"},
        {"joint follow", "", [&](qm_robot_handle* h) { return qm_movej_follow(h, joints); },
         std::string(R"({"command":"movej_follow","joint":)") + kJointsWire + "}"},
    };
    start();
    for (const RequestRow& row : rows) {
        SCOPED_TRACE(row.behaviour);
        controller.clear_received();
        EXPECT_EQ(row.call(arm()), 0);
        EXPECT_EQ(only_line(), row.request);
    }
}

TEST_F(StreamedTarget, RadioBeyondItsModesBoundWarnsAndIsSentAnyway) {
    struct Row {
        int trajectory_mode;
        int radio;
        bool warns;
    };
    const Row rows[] = {{0, 0, false}, {0, 1, true},       {1, 100, false}, {1, 101, true},
                        {2, 1000, false}, {2, 1001, true}, {3, 5000, false}};
    float joints[7] = {};
    start();
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << "mode " << row.trajectory_mode << " radio " << row.radio);
        qm_test::LogCapture log(LOG_LEVEL_WARN);
        controller.clear_received();
        EXPECT_EQ(qm_movej_canfd(arm(), {joints, 0, false, row.trajectory_mode, row.radio}), 0);
        EXPECT_EQ(qm_movep_canfd(arm(), {qm_pose_t{}, false, row.trajectory_mode, row.radio}), 0);
        const std::string radio = std::to_string(row.radio);
        EXPECT_EQ(log.contains("[qm_movej_canfd] qm_movej_canfd_mode_t config warn, invaild radio: " + radio + "!\n"),
                  row.warns);
        EXPECT_EQ(log.contains("[qm_movep_canfd] qm_movep_canfd_mode_t config warn, invaild radio: " + radio + "!\n"),
                  row.warns);
        EXPECT_TRUE(controller.wait_line(1).has_value());
    }
}

TEST_F(StreamedTarget, JointTargetsNeedAKnownArm) {
    start();
    float joints[7] = {};
    qm_robot_handle stranger{1};
    EXPECT_EQ(qm_movej_canfd(&stranger, {joints, 0, false, 0, 0}), -1);
    EXPECT_EQ(qm_movej_follow(&stranger, joints), -1);
    EXPECT_EQ(qm_movep_follow(&stranger, qm_pose_t{}), -1);
}

}  // namespace
}  // namespace motion_test
