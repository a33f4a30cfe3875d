// The shared wait for the end of a blocking move, and the planned-trajectory query it uses.
#include <gtest/gtest.h>

#include <atomic>
#include <sstream>
#include <string>
#include <vector>

#include "connected_arm.h"
#include "log_capture.h"

namespace core_test {
namespace {

using qm_test::LogCapture;

// One arrival event line, with its line end.
std::string arrival(bool ok, int device = 0, int connect = 0) {
    return std::string(R"({"state":"current_trajectory_state","trajectory_state":)") +
           (ok ? "true" : "false") + R"(,"device":)" + std::to_string(device) + R"(,"trajectory_connect":)" +
           std::to_string(connect) + "}\r\n";
}

constexpr MoveWait kJointMove{
    .caller = "qm_movej", .device = 0, .trajectory_type = QM_JOINT_SPACE_PLANNING_E};
constexpr MoveWait kStep{.caller = "qm_set_joint_step_block",
                         .device = 0,
                         .trajectory_type = QM_JOINT_SPACE_PLANNING_E,
                         .event_timeout_ms = 1000,
                         .poll_first = true,
                         .idle_polls = 10};

struct WaitCase {
    const char* name;
    qm_thread_mode_e mode;
    MoveWait wait;
    int block;
    std::string pushed;   // bytes pushed before the wait
    std::string answers;  // trajectory types answering the query in turn, the last repeats; "?" none
    int push_after;       // answer after which `event` follows (1-based; 0 never)
    std::string event;
    int result;
    int queries;  // -1: not counted
};

// Named, so gtest does not dump the raw bytes (padding included) of a case.
void PrintTo(const WaitCase& c, std::ostream* os) { *os << c.name; }

class MoveWaitFor : public ConnectedArm, public ::testing::WithParamInterface<WaitCase> {
protected:
    MoveWaitFor() : ConnectedArm(GetParam().mode) {}
};

TEST_P(MoveWaitFor, EndsAsTheControllerSays) {
    const WaitCase& c = GetParam();
    LogCapture log(LOG_LEVEL_ERROR);
    if (!c.pushed.empty()) controller.push(c.pushed);
    std::vector<std::string> types;
    std::istringstream in(c.answers);
    for (std::string type; in >> type;) types.push_back(type);
    std::atomic<int> queries{0};
    if (!types.empty()) {
        controller.on("get_arm_current_trajectory", [&](const std::string&) {
            const int n = ++queries;
            const std::string& type = types[std::min<size_t>(n - 1, types.size() - 1)];
            std::string answer = type == "?" ? R"({"command":"arm_current_trajectory"})"
                                             : R"({"command":"arm_current_trajectory","type":")" + type +
                                                   R"(","data":[0,0,0,0,0,0]})";
            return std::optional<std::string>(answer + "\r\n" + (n == c.push_after ? c.event : ""));
        });
    }
    EXPECT_EQ(qm_wait_move_arrival(arm(), c.wait, c.block), c.result);
    EXPECT_TRUE(c.queries < 0 || queries == c.queries) << queries << " queries";
    EXPECT_EQ(log.contains("[qm_movej] current device is: 1 \n"), c.result == -4);
    EXPECT_EQ(await("current_trajectory_state", nullptr, 1), -2) << "every pushed event was consumed";
}

constexpr auto kDual = QM_DUAL_MODE_E, kSingle = QM_SINGLE_MODE_E;

INSTANTIATE_TEST_SUITE_P(
    Cases, MoveWaitFor,
    ::testing::Values(
        WaitCase{"arrival", kDual, kJointMove, 1, arrival(true), "", 0, "", 0, -1},
        WaitCase{"failed_trajectory_gives_one", kDual, kJointMove, 1, arrival(false), "", 0, "", 1, -1},
        WaitCase{"connected_segments_and_other_devices_are_waited_past", kDual, kJointMove, 1,
                 arrival(true, 0, 1) + arrival(true, 2, 0) + arrival(true), "", 0, "", 0, -1},
        WaitCase{"malformed_arrival", kDual, kJointMove, 1,
                 "{\"state\":\"current_trajectory_state\",\"trajectory_state\":true}\r\n", "", 0, "", -3, -1},
        WaitCase{"running_move_is_watched_until_it_ends_and_arrives", kDual, kJointMove, 1, "",
                 "movej movej none", 3, arrival(true), 0, 3},
        WaitCase{"other_device_arriving_after_the_move_ended_gives_minus_four", kDual, kJointMove, 1, "",
                 "movej none", 2, arrival(true, 1), -4, 2},
        WaitCase{"five_idle_answers_then_timeout", kDual, kJointMove, 1, "", "none", 0, "", -6, 5},
        WaitCase{"other_trajectories_keep_the_wait_going", kDual, kJointMove, 1, "", "movel none", 2,
                 arrival(true), 0, 2},
        WaitCase{"repeated_query_failures_return_the_query_result", kDual, kJointMove, 1, "", "?", 0, "", -1,
                 -1},
        // The event is there from the start, yet a step first watches the trajectory.
        WaitCase{"step_polls_first", kDual, kStep, 1, arrival(true), "movej none", 0, "", 0, 2},
        WaitCase{"step_tolerates_ten_idle_answers", kDual, kStep, 1, "", "none", 10, arrival(true), 0, 10},
        WaitCase{"single_arrival_within_the_turns", kSingle, kJointMove, 3, arrival(true), "", 0, "", 0, -1},
        WaitCase{"single_no_arrival_gives_minus_five", kSingle, kJointMove, 1, "", "", 0, "", -5, -1},
        WaitCase{"single_failed_trajectory", kSingle, kJointMove, 2, arrival(false), "", 0, "", 1, -1}),
    [](const auto& info) { return std::string(info.param.name); });

// ---- the planned-trajectory query ----

class CurrentTrajectory : public ConnectedArm {
protected:
    // Asks for the planned trajectory answered by {"command":"arm_current_trajectory",<tail>.
    int query(const char* tail, qm_arm_current_trajectory_e* type, float* data) {
        controller.clear_received();
        controller.reply("get_arm_current_trajectory",
                         std::string(R"({"command":"arm_current_trajectory",)") + tail);
        const int result = qm_get_arm_current_trajectory(arm(), type, data);
        EXPECT_EQ(controller.received(), "{\"command\":\"get_arm_current_trajectory\"}\r\n");
        return result;
    }
};

TEST_F(CurrentTrajectory, ParsesTypeAndTargetInMetresRadiansOrDegrees) {
    const struct {
        const char* type_text;
        const char* data_text;
        qm_arm_current_trajectory_e type;
        std::vector<float> data;
    } rows[] = {
        {"movel", "1000000,0,0,3142,0,0", QM_CARTESIAN_LINEAR_PLANNING_E, {1, 0, 0, 3.142f, 0, 0}},
        {"movej", "1000,-2500,0,0,0,90000,0,8,9", QM_JOINT_SPACE_PLANNING_E, {1, -2.5f, 0, 0, 0, 90}},  // cut
        {"movec", "0,500000,0,0,1000,0", QM_CARTESIAN_ARC_PLANNING_E, {0, 0.5f, 0, 0, 1, 0}},
        {"moves", "0,0,0,0,0,0", QM_SPLINE_CURVE_MOTION_PLANNING_E, {}},
        {"re_trajectory",
         "1,2,3,4,5,6,7",
         QM_TRAJECTORY_REPLAY_PLANNING_E,
         {1e-3f, 2e-3f, 3e-3f, 4e-3f, 5e-3f, 6e-3f, 7e-3f}},
        {"none", "0,0,0,0,0,0,0", QM_NO_PLANNING_E, {}},  // teaches the joint count
    };
    for (const auto& row : rows) {
        const std::string tail =
            std::string(R"("type":")") + row.type_text + R"(","data":[)" + row.data_text + "]}";
        SCOPED_TRACE(tail);
        auto type = static_cast<qm_arm_current_trajectory_e>(-1);
        float data[ARM_DOF + 1] = {};
        data[ARM_DOF] = -1.0f;
        ASSERT_EQ(query(tail.c_str(), &type, data), 0);
        EXPECT_EQ(type, row.type);
        for (size_t i = 0; i < row.data.size(); ++i)
            EXPECT_NEAR(data[i], row.data[i], 1e-6) << "element " << i;
        EXPECT_EQ(data[ARM_DOF], -1.0f);
    }
    int dof = 0;
    EXPECT_EQ(qm_get_arm_dof(arm(), &dof), 0);
    EXPECT_EQ(dof, 7);
}

TEST_F(CurrentTrajectory, UnknownTypeOrIncompleteReplyFails) {
    const char* const parse_err = "[qm_get_arm_current_trajectory] Get arm current trajectory parse err\n";
    const std::pair<const char*, const char*> rows[] = {
        {R"("type":"jump","data":[0]})", nullptr},
        {R"("data":[0]})", parse_err},
        {R"("type":"movej"})", parse_err},
        {R"("type":"movej","data":["a"]})", "[qm_get_arm_current_trajectory] Data type parse err\n"},
    };
    for (const auto& [tail, message] : rows) {
        LogCapture log(LOG_LEVEL_ERROR);
        qm_arm_current_trajectory_e type;
        float data[ARM_DOF];
        EXPECT_EQ(query(tail, &type, data), -1) << tail;
        EXPECT_TRUE(!message || log.contains(message)) << tail;
    }
}

}  // namespace
}  // namespace core_test
