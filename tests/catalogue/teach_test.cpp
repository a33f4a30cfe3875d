// Step moves, jogs, the teach frame and the stop commands against a fake controller; their
// blocking waits are with the other moves.
#include <mutex>

#include "catalogue_fixture.h"

namespace catalogue_test {
namespace {

class Teach : public CatalogueArm {};

TEST_F(Teach, NonBlockingStepsOnlySendTheirMembersInOrder) {
    const std::pair<Call, std::string> rows[] = {
        {ON_ARM(qm_set_joint_step(h, 3, 1.5f, 20, QM_MOVE_NBLOCK)),
         R"({"command":"set_joint_step","joint_step":[3,1500],"v":20})"},
        // In single precision 2.3f scales to 2300 (a planned joint move sends 2299).
        {ON_ARM(qm_set_joint_step_nblock(h, 1, 2.3f, 5)),
         R"({"command":"set_joint_step","joint_step":[1,2300],"v":5})"},
        {ON_ARM(qm_set_pos_step(h, QM_X_DIR_E, 0.0015f, 20, 0)),
         R"({"command":"set_pos_step","v":20,"step":1500,"step_type":"x_step"})"},
        {ON_ARM(qm_set_pos_step_nblock(h, QM_Z_DIR_E, -0.0000009f, 20)),
         R"({"command":"set_pos_step","v":20,"step":0,"step_type":"z_step"})"},
        {ON_ARM(qm_set_ort_step(h, QM_RY_ROTATE_E, -0.5f, 7, 0)),
         R"({"command":"set_ort_step","v":7,"step":-500,"step_type":"ry_step"})"},
        // An axis outside 0..2 leaves step_type out.
        {ON_ARM(qm_set_ort_step_nblock(h, static_cast<qm_ort_teach_type_e>(3), 0.5f, 7)),
         R"({"command":"set_ort_step","v":7,"step":500})"},
    };
    for (const auto& [call, request] : rows) {
        SCOPED_TRACE(request);
        EXPECT_EQ(fresh(call), 0);  // the controller never answers
        EXPECT_EQ(only_line(), request);
    }
}

TEST_F(Teach, JogsStopsAndTheTeachFrameSendTheirMembersAndJudgeTheirOwnReplyMember) {
    expect_each_judged({
        {"joint jog, non-zero direction is pos", ON_ARM(qm_set_joint_teach(h, 2, 5, 30)),
         R"({"command":"set_joint_teach","teach_joint":2,"v":30,"direction":"pos"})", "joint_teach"},
        {"joint jog, zero direction is neg", ON_ARM(qm_set_joint_teach(h, 2, 0, 30)),
         R"({"command":"set_joint_teach","teach_joint":2,"v":30,"direction":"neg"})", "joint_teach"},
        {"position jog", ON_ARM(qm_set_pos_teach(h, QM_Z_DIR_E, 1, 40)),
         R"({"command":"set_pos_teach","v":40,"teach_type":"z","direction":"pos"})", "pos_teach"},
        {"position jog on an unknown axis leaves teach_type out",
         ON_ARM(qm_set_pos_teach(h, static_cast<qm_pos_teach_type_e>(-1), 0, 40)),
         R"({"command":"set_pos_teach","v":40,"direction":"neg"})", "pos_teach"},
        {"rotation jog", ON_ARM(qm_set_ort_teach(h, QM_RX_ROTATE_E, 0, 50)),
         R"({"command":"set_ort_teach","v":50,"teach_type":"rx","direction":"neg"})", "ort_teach"},
        {"stop jog", qm_set_stop_teach, R"({"command":"set_stop_teach"})", "stop_teach"},
        {"teach frame", ON_ARM(qm_set_teach_frame(h, 1)), R"({"command":"set_teach_frame","frame_type":1})",
         "set_state"},
        {"slow stop", qm_set_arm_slow_stop, R"({"command":"set_arm_slow_stop"})", "arm_slow_stop"},
        {"stop", qm_set_arm_stop, R"({"command":"set_arm_stop"})", "arm_stop"},
        {"pause", qm_set_arm_pause, R"({"command":"set_arm_pause"})", "arm_pause"},
        {"continue", qm_set_arm_continue, R"({"command":"set_arm_continue"})", "arm_continue"},
        {"delete current trajectory", qm_set_delete_current_trajectory,
         R"({"command":"set_delete_current_trajectory"})", "delete_current_trajectory"},
        {"delete every trajectory", qm_set_arm_delete_trajectory,
         R"({"command":"set_arm_delete_trajectory"})", "arm_delete_trajectory"},
    });
}

TEST_F(Teach, BlockingStepWatchesTheRunningStepEveryHundredMilliseconds) {
    using Clock = std::chrono::steady_clock;
    std::mutex mutex;
    std::vector<Clock::time_point> polls;
    controller.reply("set_joint_step", accepted("set_joint_step"));
    controller.on("get_arm_current_trajectory", [&](const std::string&) {
        std::lock_guard lock(mutex);
        polls.push_back(Clock::now());
        const bool running = polls.size() <= 3;
        std::string answer = std::string(R"({"command":"arm_current_trajectory","type":")") +
                             (running ? "movej" : "none") + R"(","data":[0,0,0,0,0,0]})" + "\r\n";
        if (!running) answer += R"({"state":"current_trajectory_state","trajectory_state":true,"device":0,)"
                                R"("trajectory_connect":0})" "\r\n";
        return std::optional<std::string>(answer);
    });
    ASSERT_EQ(qm_set_joint_step_block(arm(), 1, 1.0f, 10, 1), 0);
    std::lock_guard lock(mutex);
    ASSERT_EQ(polls.size(), 4u);
    for (size_t i = 1; i < polls.size(); ++i) EXPECT_GE(polls[i] - polls[i - 1], 99ms) << "poll " << i;
}

TEST_F(Teach, ReplyFailuresAreReturned) {
    expect_failures("set_arm_pause", qm_set_arm_pause, set_failures("set_arm_pause", "arm_pause"));
}

TEST_F(Teach, TeachFrameIsReadFromItsReplyAndLeftUnchangedOnFailure) {
    int frame_type = -7;
    const Call get = ON_ARM(qm_get_teach_frame(h, &frame_type));
    controller.reply("get_teach_frame", R"({"command":"get_teach_frame","frame_type":1})");
    EXPECT_EQ(fresh(get), 0);
    EXPECT_EQ(frame_type, 1);
    EXPECT_EQ(only_line(), R"({"command":"get_teach_frame"})");
    frame_type = -7;
    expect_failures("get_teach_frame", get, {{R"({"command":"get_teach_frame"})", -3}, {std::nullopt, -2}});
    EXPECT_EQ(frame_type, -7);
}

}  // namespace
}  // namespace catalogue_test
