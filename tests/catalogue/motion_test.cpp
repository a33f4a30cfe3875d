// Planned, arc, step and streamed moves and their blocking waits against a fake controller.
#include <atomic>

#include "catalogue_fixture.h"

namespace catalogue_test {
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
const std::string kJointsWire = "[1500,0,2299,-12345,180000,1]";
const qm_pose_t kPose = make_pose({0.1234567f, -0.0000009f, 2.3f}, {3.142f, -0.0005f, 2.3f});
const std::string kPoseWire = "[123456,0,2300000,3142,0,2300]";

using RequestRow = std::pair<Call, std::string>;

class Motion : public CatalogueArm {};

TEST_F(Motion, EachMoveSendsItsMembersInOrderWithItsScaling) {
    const RequestRow rows[] = {
        // Joint move: dof values of millidegrees widened to double, truncated.
        {ON_ARM(qm_movej(h, kJoints, 20, 3, 0, QM_MOVE_NBLOCK)),
         R"({"command":"movej","v":20,"joint":)" + kJointsWire + R"(,"trajectory_connect":0,"r":3})"},
        // Linear move: micrometres and milliradians in single precision.
        {ON_ARM(qm_movel(h, kPose, 30, 0, 0, QM_MOVE_NBLOCK)),
         R"({"command":"movel","v":30,"pose":)" + kPoseWire + R"(,"trajectory_connect":0,"r":0})"},
        // Non-blocking offset move sends a plain linear move without frame_type.
        {ON_ARM(qm_movel_offset(h, kPose, 30, 2, 0, 1, QM_MOVE_NBLOCK)),
         R"({"command":"movel","v":30,"pose":)" + kPoseWire + R"(,"trajectory_connect":0,"r":2})"},
        // Blocking offset move sends movel_offset with frame_type last.
        {ON_ARM(qm_movel_offset(h, kPose, 30, 2, 1, 1, QM_MOVE_MULTI_BLOCK)),
         R"({"command":"movel_offset","v":30,"offset":)" + kPoseWire +
             R"(,"trajectory_connect":1,"r":2,"frame_type":1})"},
        {ON_ARM(qm_moves(h, kPose, 10, 0, 1, QM_MOVE_NBLOCK)),
         R"({"command":"moves","v":10,"pose":)" + kPoseWire + R"(,"trajectory_connect":1,"r":0})"},
        {ON_ARM(qm_movej_p(h, kPose, 10, 4, 0, QM_MOVE_NBLOCK)),
         R"({"command":"movej_p","v":10,"pose":)" + kPoseWire + R"(,"trajectory_connect":0,"r":4})"},
        // Blocking connected joint move returns once accepted.
        {ON_ARM(qm_movej_block(h, kJoints, 20, 0, 1, QM_MOVE_MULTI_BLOCK)),
         R"({"command":"movej","v":20,"joint":)" + kJointsWire + R"(,"trajectory_connect":1,"r":0})"},
    };
    for (const auto& [call, request] : rows) {
        SCOPED_TRACE(request);
        controller.reply(command_of(request), accepted(command_of(request)));
        EXPECT_EQ(fresh(call), 0);
        EXPECT_EQ(only_line(), request);
        controller.forget(command_of(request));
    }
}

TEST_F(Motion, ArcMoveSendsFormattedMultiLineJsonWithRadiusInThousandths) {
    controller.reply("movec", accepted("movec"));
    const qm_pose_t via = make_pose({0.1f, 0.2f, 0.3f}, {0.1f, -0.2f, 0.3f});
    const qm_pose_t to = make_pose({-0.1f, 0.0f, 0.5f}, {3.142f, 0.0f, -1.5f});
    EXPECT_EQ(qm_movec(arm(), via, to, 15, 5, 2, 0, QM_MOVE_NBLOCK), 0);
    controller.wait_line(0);
    EXPECT_EQ(controller.received(),
              "{\n\t\"command\":\t\"movec\",\n\t\"pose\":\t{\n"
              "\t\t\"pose_via\":\t[100000, 200000, 300000, 100, -200, 300],\n"
              "\t\t\"pose_to\":\t[-100000, 0, 500000, 3142, 0, -1500]\n"
              "\t},\n\t\"v\":\t15,\n\t\"r\":\t5000,\n\t\"loop\":\t2,\n\t\"trajectory_connect\":\t0\n}\r\n");
}

TEST_F(Motion, ArcMoveRefusesATrajectoryConnectOtherThanZeroOrOneWithoutSending) {
    qm_test::LogCapture log;
    EXPECT_EQ(qm_movec(arm(), kPose, kPose, 15, 5, 0, 2, QM_MOVE_NBLOCK), -6);
    EXPECT_EQ(qm_movec(arm(), kPose, kPose, 15, 5, 0, -1, QM_MOVE_MULTI_BLOCK), -6);
    EXPECT_TRUE(log.contains("[qm_movec] trajectory_connect check err! \n"));
    std::this_thread::sleep_for(20ms);
    EXPECT_TRUE(controller.received().empty());
}

TEST_F(Motion, AcceptanceFailuresAreReturnedWithoutWaiting) {
    const std::vector<Failure> failures = set_failures("movel", "receive_state");
    expect_failures("movel", ON_ARM(qm_movel(h, kPose, 10, 0, 0, QM_MOVE_NBLOCK)), failures);
    expect_failures("movel", ON_ARM(qm_movel(h, kPose, 10, 0, 0, QM_MOVE_MULTI_BLOCK)), failures);
    expect_failures("movec", ON_ARM(qm_movec(h, kPose, kPose, 15, 5, 0, 0, QM_MOVE_NBLOCK)),
                    set_failures("movec", "receive_state"));
    expect_failures("set_ort_step", ON_ARM(qm_set_ort_step(h, QM_RZ_ROTATE_E, 0.1f, 10, QM_MOVE_MULTI_BLOCK)),
                    set_failures("set_ort_step", "receive_state"));
}

TEST_F(Motion, AnUnknownArmIsReportedDisconnectedAndNothingIsSent) {
    qm_test::LogCapture log;
    controller.clear_received();
    float joints[7] = {};
    qm_robot_handle stranger{1};
    EXPECT_EQ(qm_movej(&stranger, kJoints, 10, 0, 0, QM_MOVE_MULTI_BLOCK), -1);
    EXPECT_TRUE(log.contains("[qm_movej] The robotic arm has been disconnected\n"));
    EXPECT_EQ(qm_set_joint_step(&stranger, 3, 1.5f, 20, QM_MOVE_NBLOCK), -1);
    EXPECT_EQ(qm_movej_canfd(&stranger, {joints, 0, false, 0, 0}), -1);
    EXPECT_EQ(qm_movej_follow(&stranger, joints), -1);
    EXPECT_EQ(qm_movep_follow(&stranger, qm_pose_t{}), -1);
    EXPECT_TRUE(controller.lines().empty());
}

// ---- blocking waits ----

// A blocking move: its acceptance and what follows it in the same write, how the planned
// trajectory polls are answered (none: the scripted sync answer), the result and its log line.
struct WaitRow {
    const char* behaviour;
    std::string command;
    Call call;
    std::string after_acceptance;
    std::function<std::string(int poll)> poll;
    int expected;
    std::string message = "";
};

int blocking_movej(qm_robot_handle* h) {
    return qm_movej(h, kJoints, 20, 0, 0, QM_MOVE_MULTI_BLOCK);
}

TEST_F(Motion, BlockingMovesEndOnTheArrivalOfTheArmOrPollTheTrajectory) {
    // Polls 1..n see `type` planned, later ones nothing, followed by `last`.
    const auto running_then = [](int n, std::string last, std::string type = "movej") {
        return [=](int poll) {
            return poll <= n ? planned(type) : planned("none") + (last.empty() ? "" : "\r\n" + last);
        };
    };
    const WaitRow rows[] = {
        {"arrival of the arm", "movej", blocking_movej, arrival(0), nullptr, 0},
        {"connected segments are waited through to the last", "movej", blocking_movej,
         arrival(0, true, 1) + "\r\n" + arrival(0), nullptr, 0},
        {"trajectory ended without success", "movej", blocking_movej, arrival(0, false), nullptr, 1},
        {"seen running, then ended: the late arrival", "movej", blocking_movej, "",
         running_then(2, arrival(0)), 0},
        {"seen running, then ended: another device's arrival", "movej", blocking_movej, "",
         running_then(1, arrival(1)), -4, "[qm_movej] current device is: 1 \n"},
        {"nothing planned and no arrival times out", "movej", blocking_movej, "", running_then(0, ""), -6},
        {"arc move", "movec", ON_ARM(qm_movec(h, kPose, kPose, 15, 5, 0, 0, QM_MOVE_MULTI_BLOCK)), arrival(0),
         nullptr, 0},
        {"a step taking another device's arrival", "set_joint_step",
         ON_ARM(qm_set_joint_step(h, 2, 1.0f, 10, QM_MOVE_MULTI_BLOCK)), arrival(2), running_then(1, ""), -4,
         "[qm_set_joint_step_block] current device is: 2 \n"},
        {"a step polls the plan before taking the arrival", "set_pos_step",
         ON_ARM(qm_set_pos_step(h, QM_Y_DIR_E, 0.01f, 10, QM_MOVE_MULTI_BLOCK)), arrival(0),
         running_then(1, "", "movel"), 0},
    };
    for (const WaitRow& row : rows) {
        SCOPED_TRACE(row.behaviour);
        controller.clear_received();
        qm_test::LogCapture log;
        controller.reply(
            row.command,
            accepted(row.command) + (row.after_acceptance.empty() ? "" : "\r\n" + row.after_acceptance));
        std::atomic<int> polls{0};
        if (row.poll)
            controller.on(
                "get_arm_current_trajectory",
                [&](const std::string&) -> std::optional<std::string> { return row.poll(++polls) + "\r\n"; });
        EXPECT_EQ(row.call(arm()), row.expected);
        EXPECT_EQ(polls.load() >= 1, row.poll != nullptr);
        if (!row.message.empty()) {
            EXPECT_TRUE(log.contains(row.message));
        }
        controller.forget("get_arm_current_trajectory");
    }
    EXPECT_EQ(controller.lines().front(),
              R"({"command":"set_pos_step","v":10,"step":10000,"step_type":"y_step"})");
}

TEST_F(Motion, RepeatedFailedTrajectoryPollsReturnThePollsError) {
    controller.reply("movej", accepted("movej"));
    controller.reply("get_arm_current_trajectory", R"({"command":"arm_current_trajectory","type":"movej"})");
    EXPECT_EQ(blocking_movej(arm()), -1);
    EXPECT_EQ(controller.lines().size(), 1u + 6u);  // the move and six failed polls
}

// A non-blocking move marks its own arrival to be discarded, so a later blocking wait does not
// take it; were it delivered, the wait would give 1.
TEST_F(Motion, OnlyAnAcceptedNonBlockingMoveDiscardsItsArrival) {
    // The move, its reply and result, and the result of the blocking move after it.
    const std::tuple<Call, std::string, int, int> rows[] = {
        {ON_ARM(qm_movel(h, kPose, 10, 0, 0, QM_MOVE_NBLOCK)), accepted("movel"), 0, 0},
        // Blocking variant given no block.
        {ON_ARM(qm_moves_block(h, kPose, 10, 0, 0, QM_MOVE_NBLOCK)), accepted("moves"), 0, 0},
        // Refused non-blocking move.
        {ON_ARM(qm_movel(h, kPose, 10, 0, 0, QM_MOVE_NBLOCK)), accepted("movel", false), 1, 1},
    };
    for (const auto& [call, reply, first, blocking] : rows) {
        SCOPED_TRACE(reply);
        controller.reply(command_of(reply), reply);
        ASSERT_EQ(call(arm()), first);
        controller.push_line(arrival(0, false));
        controller.reply("movej", accepted("movej") + (first == 0 ? "\r\n" + arrival(0) : ""));
        EXPECT_EQ(blocking_movej(arm()), blocking);
    }
}

// `block` counts one-second turns in single-thread mode; another device's arrival only uses them up.
class SingleThreadMotion : public CatalogueArm {
protected:
    SingleThreadMotion() : CatalogueArm(QM_SINGLE_MODE_E) {}
};

TEST_F(SingleThreadMotion, BlockingMovesWaitForTheArrivalOfTheArm) {
    const WaitRow rows[] = {
        {"joint move", "movej", ON_ARM(qm_movej(h, kJoints, 20, 0, 0, 3)), arrival(0), nullptr, 0},
        {"ended without success", "movel", ON_ARM(qm_movel(h, kPose, 20, 0, 0, 3)), arrival(0, false),
         nullptr, 1},
        {"arc move", "movec", ON_ARM(qm_movec(h, kPose, kPose, 15, 5, 0, 0, 3)), arrival(0), nullptr, 0},
        {"joint step", "set_joint_step", ON_ARM(qm_set_joint_step(h, 1, 1.0f, 10, 3)), arrival(0), nullptr,
         0},
        {"only another device arrives within the turns", "movej", ON_ARM(qm_movej(h, kJoints, 20, 0, 0, 1)),
         arrival(1), nullptr, -5},
    };
    for (const WaitRow& row : rows) {
        SCOPED_TRACE(row.behaviour);
        controller.reply(row.command, accepted(row.command));
        RepeatedPush events(controller, row.after_acceptance);
        EXPECT_EQ(row.call(arm()), row.expected);
    }
}

// ---- streamed targets ----

TEST_F(Motion, StreamedTargetsGoOutWithoutAwaitingAReply) {
    float joints[7] = {1.5f, -0.0005f, 2.3f, -12.3456f, 180.0f, 0.001f, 99.0f};
    const qm_pose_t unit_quat = make_pose({0.1234567f, 0, 2.3f}, {0.5f, 0, 0}, {1, 0, 0, 0});
    const qm_pose_t zero_quat = make_pose({0.1234567f, 0, 2.3f}, {0.5f, 0, 0}, {0, 0, 0, 0});
    // Squared norm 1.1025: too far from unit length, so the Euler angles go out.
    const qm_pose_t long_quat = make_pose({0.1234567f, 0, 2.3f}, {0.5f, 0, 0}, {1.05f, 0, 0, 0});
    const RequestRow rows[] = {
        // Joint pass-through: dof joints, follow, expand in thousandths.
        {ON_ARM(qm_movej_canfd(h, {joints, 1.5f, true, 2, 1000})),
         R"({"command":"movej_canfd","joint":)" + kJointsWire +
             R"(,"follow":true,"expand":1500,"trajectory_mode":2,"radio":1000})"},
        // Pose pass-through with a unit quaternion sends pose_quat.
        {ON_ARM(qm_movep_canfd(h, {unit_quat, false, 1, 50})),
         R"({"command":"movep_canfd","follow":false,"pose_quat":[123456,0,2300000,1000000,0,0,0],"trajectory_mode":1,"radio":50})"},
        // Pose follow with an all-zero quaternion sends the Euler pose.
        {ON_ARM(qm_movep_follow(h, zero_quat)),
         R"({"command":"movep_follow","pose":[123456,0,2300000,500,0,0]})"},
        // Pose follow with a quaternion far from unit length sends the Euler pose.
        {ON_ARM(qm_movep_follow(h, long_quat)),
         R"({"command":"movep_follow","pose":[123456,0,2300000,500,0,0]})"},
        {ON_ARM(qm_movej_follow(h, joints)), R"({"command":"movej_follow","joint":)" + kJointsWire + "}"},
    };
    for (const auto& [call, request] : rows) {
        SCOPED_TRACE(request);
        EXPECT_EQ(fresh(call), 0);
        EXPECT_EQ(only_line(), request);
    }
}

TEST_F(Motion, StreamedRadioBeyondItsModesBoundWarnsAndIsSentAnyway) {
    struct Row {
        int trajectory_mode;
        int radio;
        bool warns;
    };
    const Row rows[] = {{0, 0, false},    {0, 1, true},    {1, 100, false}, {1, 101, true},
                        {2, 1000, false}, {2, 1001, true}, {3, 5000, false}};
    float joints[7] = {};
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << "mode " << row.trajectory_mode << " radio " << row.radio);
        qm_test::LogCapture log(LOG_LEVEL_WARN);
        controller.clear_received();
        EXPECT_EQ(qm_movej_canfd(arm(), {joints, 0, false, row.trajectory_mode, row.radio}), 0);
        EXPECT_EQ(qm_movep_canfd(arm(), {qm_pose_t{}, false, row.trajectory_mode, row.radio}), 0);
        const std::string warning =
            "_canfd_mode_t config warn, invaild radio: " + std::to_string(row.radio) + "!\n";
        EXPECT_EQ(log.contains("[qm_movej_canfd] qm_movej" + warning), row.warns);
        EXPECT_EQ(log.contains("[qm_movep_canfd] qm_movep" + warning), row.warns);
        EXPECT_TRUE(controller.wait_line(1).has_value());
    }
}

}  // namespace
}  // namespace catalogue_test
