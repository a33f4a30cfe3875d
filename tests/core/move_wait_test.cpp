// The shared wait for the end of a blocking move, and the planned-trajectory query it uses.
#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <ostream>
#include <string>
#include <vector>

#include "connected_arm.h"
#include "log_capture.h"

namespace core_test {
namespace {

using qm_test::LogCapture;

std::string arrival(bool ok, int device, int connect) {
    return std::string(R"({"state":"current_trajectory_state","trajectory_state":)") +
           (ok ? "true" : "false") + R"(,"device":)" + std::to_string(device) + R"(,"trajectory_connect":)" +
           std::to_string(connect) + "}";
}

std::string trajectory(const char* type) {
    return std::string(R"({"command":"arm_current_trajectory","type":")") + type +
           R"(","data":[0,0,0,0,0,0]})";
}

constexpr MoveWait kJointMove{
    .caller = "qm_movej", .device = 0, .trajectory_type = QM_JOINT_SPACE_PLANNING_E};
constexpr MoveWait kStep{.caller = "qm_set_joint_step_block",
                         .device = 0,
                         .trajectory_type = QM_JOINT_SPACE_PLANNING_E,
                         .event_timeout_ms = 1000,
                         .poll_first = true,
                         .idle_polls = 10};

class MoveWaitThreaded : public ConnectedArm {
protected:
    // Answers the trajectory query with the given types in turn (the last one repeats) and
    // pushes `event` after answer number `push_after` (1-based; 0 never).
    void script_trajectory(std::vector<const char*> types, int push_after = 0, std::string event = "") {
        controller.on("get_arm_current_trajectory", [this, types, push_after, event](const std::string&) {
            const int n = ++queries;
            std::string answer = trajectory(types[std::min<size_t>(n - 1, types.size() - 1)]) + "\r\n";
            if (n == push_after) answer += event + "\r\n";
            return std::optional<std::string>(answer);
        });
    }
    std::atomic<int> queries{0};
};

TEST_F(MoveWaitThreaded, ArrivalOfTheArmEndsTheWait) {
    controller.push_line(arrival(true, 0, 0));
    EXPECT_EQ(qm_wait_move_arrival(arm(), kJointMove, 1), 0);
}

TEST_F(MoveWaitThreaded, FailedTrajectoryGivesOne) {
    controller.push_line(arrival(false, 0, 0));
    EXPECT_EQ(qm_wait_move_arrival(arm(), kJointMove, 1), 1);
}

TEST_F(MoveWaitThreaded, ConnectedSegmentsAndOtherDevicesAreWaitedPast) {
    controller.push_line(arrival(true, 0, 1));
    controller.push_line(arrival(true, 2, 0));
    controller.push_line(arrival(true, 0, 0));
    EXPECT_EQ(qm_wait_move_arrival(arm(), kJointMove, 1), 0);
    EXPECT_EQ(await("current_trajectory_state"), -2) << "all three events were consumed";
}

TEST_F(MoveWaitThreaded, MalformedArrivalIsReturned) {
    controller.push_line(R"({"state":"current_trajectory_state","trajectory_state":true})");
    EXPECT_EQ(qm_wait_move_arrival(arm(), kJointMove, 1), -3);
}

TEST_F(MoveWaitThreaded, RunningMoveIsWatchedUntilItEndsAndArrives) {
    script_trajectory({"movej", "movej", "none"}, 3, arrival(true, 0, 0));
    EXPECT_EQ(qm_wait_move_arrival(arm(), kJointMove, 1), 0);
    EXPECT_EQ(queries, 3);
}

TEST_F(MoveWaitThreaded, ArrivalOfAnotherDeviceAfterTheMoveEndedGivesMinusFour) {
    LogCapture log(LOG_LEVEL_ERROR);
    script_trajectory({"movej", "none"}, 2, arrival(true, 1, 0));
    EXPECT_EQ(qm_wait_move_arrival(arm(), kJointMove, 1), -4);
    EXPECT_TRUE(log.contains("[qm_movej] current device is: 1 \n"));
}

TEST_F(MoveWaitThreaded, MoveThatNeverShowsAndNeverArrivesTimesOut) {
    script_trajectory({"none"});
    EXPECT_EQ(qm_wait_move_arrival(arm(), kJointMove, 1), -6);
    EXPECT_EQ(queries, 5) << "five idle answers before the last wait";
}

TEST_F(MoveWaitThreaded, OtherTrajectoriesKeepTheWaitGoing) {
    script_trajectory({"movel", "none"}, 2, arrival(true, 0, 0));
    EXPECT_EQ(qm_wait_move_arrival(arm(), kJointMove, 1), 0);
}

TEST_F(MoveWaitThreaded, RepeatedQueryFailuresReturnTheQueryResult) {
    controller.reply("get_arm_current_trajectory", R"({"command":"arm_current_trajectory"})");
    EXPECT_EQ(qm_wait_move_arrival(arm(), kJointMove, 1), -1);
}

TEST_F(MoveWaitThreaded, StepWaitPollsFirstAndAwaitsTheEventOnceIdle) {
    // The event is there from the start, yet a step first watches the trajectory.
    controller.push_line(arrival(true, 0, 0));
    script_trajectory({"movej", "none"});
    EXPECT_EQ(qm_wait_move_arrival(arm(), kStep, 1), 0);
    EXPECT_EQ(queries, 2);
}

TEST_F(MoveWaitThreaded, StepWaitToleratesTenIdleAnswers) {
    script_trajectory({"none"}, 10, arrival(true, 0, 0));
    EXPECT_EQ(qm_wait_move_arrival(arm(), kStep, 1), 0);
    EXPECT_EQ(queries, 10);
}

using MoveWaitSingle = SingleThreadArm;

TEST_F(MoveWaitSingle, ArrivalWithinTheTurnsEndsTheWait) {
    controller.push_line(arrival(true, 0, 0));
    EXPECT_EQ(qm_wait_move_arrival(arm(), kJointMove, 3), 0);
}

TEST_F(MoveWaitSingle, NoArrivalWithinTheTurnsGivesMinusFive) {
    EXPECT_EQ(qm_wait_move_arrival(arm(), kJointMove, 1), -5);
}

TEST_F(MoveWaitSingle, FailedTrajectoryGivesOne) {
    controller.push_line(arrival(false, 0, 0));
    EXPECT_EQ(qm_wait_move_arrival(arm(), kJointMove, 2), 1);
}

// ---- the planned-trajectory query ----

struct TrajectoryCase {
    const char* name;
    const char* reply;
    int result;
    qm_arm_current_trajectory_e type;
    std::vector<float> data;
    const char* message;
};
// Names the case in test listings.
void PrintTo(const TrajectoryCase& c, std::ostream* os) {
    *os << c.name;
}

class CurrentTrajectory : public ConnectedArm, public ::testing::WithParamInterface<TrajectoryCase> {};

TEST_P(CurrentTrajectory, ParsesTypeAndTarget) {
    LogCapture log(LOG_LEVEL_ERROR);
    const TrajectoryCase& c = GetParam();
    controller.reply("get_arm_current_trajectory", c.reply);
    qm_arm_current_trajectory_e type = QM_TRAJECTORY_REPLAY_PLANNING_E;
    float data[ARM_DOF] = {};
    EXPECT_EQ(qm_get_arm_current_trajectory(arm(), &type, data), c.result);
    EXPECT_EQ(controller.received(), "{\"command\":\"get_arm_current_trajectory\"}\r\n");
    if (c.result == 0) {
        EXPECT_EQ(type, c.type);
        for (size_t i = 0; i < c.data.size(); ++i) EXPECT_NEAR(data[i], c.data[i], 1e-6) << "element " << i;
    }
    if (*c.message) {
        EXPECT_TRUE(log.contains(c.message));
    }
}

INSTANTIATE_TEST_SUITE_P(
    Replies, CurrentTrajectory,
    ::testing::Values(
        TrajectoryCase{"linear_pose_in_metres_and_radians",
                       R"({"command":"arm_current_trajectory","type":"movel","data":[1000000,0,0,3142,0,0]})",
                       0,
                       QM_CARTESIAN_LINEAR_PLANNING_E,
                       {1.0f, 0, 0, 3.142f, 0, 0},
                       ""},
        TrajectoryCase{
            "joint_move_in_degrees",
            R"({"command":"arm_current_trajectory","type":"movej","data":[1000,-2500,0,0,0,90000]})",
            0,
            QM_JOINT_SPACE_PLANNING_E,
            {1.0f, -2.5f, 0, 0, 0, 90.0f},
            ""},
        TrajectoryCase{"arc",
                       R"({"command":"arm_current_trajectory","type":"movec","data":[0,500000,0,0,1000,0]})",
                       0,
                       QM_CARTESIAN_ARC_PLANNING_E,
                       {0, 0.5f, 0, 0, 1.0f, 0},
                       ""},
        TrajectoryCase{"spline",
                       R"({"command":"arm_current_trajectory","type":"moves","data":[0,0,0,0,0,0]})",
                       0,
                       QM_SPLINE_CURVE_MOTION_PLANNING_E,
                       {},
                       ""},
        TrajectoryCase{
            "replay",
            R"({"command":"arm_current_trajectory","type":"re_trajectory","data":[1,2,3,4,5,6,7]})",
            0,
            QM_TRAJECTORY_REPLAY_PLANNING_E,
            {0.001f, 0.002f, 0.003f, 0.004f, 0.005f, 0.006f, 0.007f},
            ""},
        TrajectoryCase{"nothing_planned",
                       R"({"command":"arm_current_trajectory","type":"none","data":[0,0,0,0,0,0]})",
                       0,
                       QM_NO_PLANNING_E,
                       {},
                       ""},
        TrajectoryCase{"unknown_type",
                       R"({"command":"arm_current_trajectory","type":"jump","data":[0]})",
                       -1,
                       QM_NO_PLANNING_E,
                       {},
                       ""},
        TrajectoryCase{"missing_type",
                       R"({"command":"arm_current_trajectory","data":[0]})",
                       -1,
                       QM_NO_PLANNING_E,
                       {},
                       "[qm_get_arm_current_trajectory] Get arm current trajectory parse err\n"},
        TrajectoryCase{"missing_data",
                       R"({"command":"arm_current_trajectory","type":"movej"})",
                       -1,
                       QM_NO_PLANNING_E,
                       {},
                       "[qm_get_arm_current_trajectory] Get arm current trajectory parse err\n"},
        TrajectoryCase{"data_not_numbers",
                       R"({"command":"arm_current_trajectory","type":"movej","data":["a"]})",
                       -1,
                       QM_NO_PLANNING_E,
                       {},
                       "[qm_get_arm_current_trajectory] Data type parse err\n"}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(ConnectedArm, NothingPlannedTeachesTheJointCount) {
    controller.reply("get_arm_current_trajectory",
                     R"({"command":"arm_current_trajectory","type":"none","data":[0,0,0,0,0,0,0]})");
    qm_arm_current_trajectory_e type;
    float data[ARM_DOF];
    ASSERT_EQ(qm_get_arm_current_trajectory(arm(), &type, data), 0);
    int dof = 0;
    EXPECT_EQ(qm_get_arm_dof(arm(), &dof), 0);
    EXPECT_EQ(dof, 7);
}

TEST_F(ConnectedArm, LongDataIsCutToTheJointSlots) {
    controller.reply("get_arm_current_trajectory",
                     R"({"command":"arm_current_trajectory","type":"movej","data":[1,2,3,4,5,6,7,8,9,10]})");
    qm_arm_current_trajectory_e type;
    float data[ARM_DOF + 1];
    data[ARM_DOF] = -1.0f;
    ASSERT_EQ(qm_get_arm_current_trajectory(arm(), &type, data), 0);
    EXPECT_EQ(data[ARM_DOF], -1.0f);
}

}  // namespace
}  // namespace core_test
