// Moves against the simulator, in both threaded modes: they arrive where they were sent, the
// arrival is reported and pushed, refusals leave the arm alone, running moves can be watched,
// paused and stopped.
#include <thread>

#include "sim_session.h"

namespace e2e {
namespace {

class Motion : public BothModes {
protected:
    void ready() { ASSERT_EQ(qm_movej(arm(), kReady, 100, 0, 0, QM_MOVE_MULTI_BLOCK), 0); }
    std::vector<float> ready_joints() const { return {kReady, kReady + 6}; }
};

TEST_P(Motion, BlockingJointMoveArrivesReportsAndIsPushed) {
    ASSERT_EQ(qm_movej(arm(), kReady, 100, 0, 0, QM_MOVE_MULTI_BLOCK), 0);
    const std::vector<float> now = joints_of(arm());
    expect_joints_near(now.data(), ready_joints());

    ASSERT_TRUE(wait_for([](const Deliveries& d) { return !d.events.empty(); }));
    const qm_event_push_data_t event = deliveries().events.back();
    EXPECT_EQ(event.event_type, QM_CURRENT_TRAJECTORY_STATE_E);
    EXPECT_EQ(event.handle_id, arm()->id);
    EXPECT_EQ(event.device, 0);
    EXPECT_TRUE(event.trajectory_state);
    EXPECT_EQ(event.trajectory_connect, 0);

    if (GetParam() != QM_TRIPLE_MODE_E) return;
    // Every joint within the check's tolerance: a push from the last step of the approach is not
    // the arrival.
    const std::vector<float> ready = ready_joints();
    ASSERT_TRUE(wait_for([&](const Deliveries& d) {
        if (!d.latest) return false;
        for (std::size_t j = 0; j < ready.size(); ++j)
            if (std::fabs(d.latest->joint_status.joint_position[j] - ready[j]) > 0.002f) return false;
        return true;
    })) << "the push never showed the arrived joints";
    const qm_realtime_arm_joint_state_t pushed = *deliveries().latest;
    EXPECT_EQ(pushed.errCode, 0);
    expect_pose_near(pushed.waypoint, pose_now(arm()));
}

TEST_P(Motion, CartesianMovesEndAtTheirTargets) {
    ready();
    const qm_pose_t start = pose_now(arm());
    const qm_pose_t down = pose_of(start.position.x, start.position.y, start.position.z - 0.1f,
                                   start.euler.rx, start.euler.ry, start.euler.rz);
    ASSERT_EQ(qm_movel(arm(), down, 50, 0, 0, QM_MOVE_MULTI_BLOCK), 0);
    expect_pose_near(pose_now(arm()), down);

    qm_pose_t via = down, to = down;
    via.position.x += 0.05f;
    via.position.y += 0.05f;
    to.position.x += 0.1f;
    ASSERT_EQ(qm_movec(arm(), via, to, 50, 0, 0, 0, QM_MOVE_MULTI_BLOCK), 0);
    expect_pose_near(pose_now(arm()), to);

    ASSERT_EQ(qm_movej_p(arm(), start, 50, 0, 0, QM_MOVE_MULTI_BLOCK), 0);
    expect_pose_near(pose_now(arm()), start);

    // 5 cm along the tool's own z, which points down.
    const qm_pose_t offset = pose_of(0, 0, 0.05f, 0, 0, 0);
    ASSERT_EQ(qm_movel_offset(arm(), offset, 50, 0, 0, 1, QM_MOVE_MULTI_BLOCK), 0);
    EXPECT_NEAR(pose_now(arm()).position.z, start.position.z - 0.05f, 2e-5f);
}

TEST_P(Motion, RefusedMovesLeaveTheArmWhereItIs) {
    ready();
    const qm_pose_t here = pose_now(arm());
    qm_pose_t far = here;
    far.position.x += 2.0f;
    const float beyond[ARM_DOF] = {0, -20, -70, 0, -90, 400};
    const struct {
        const char* behaviour;
        std::function<int()> move;
    } rows[] = {
        {"joint target beyond a limit", [&] { return qm_movej(arm(), beyond, 50, 0, 0, 1); }},
        {"speed of 0 percent", [&] { return qm_movej(arm(), kReady, 0, 0, 0, 1); }},
        {"linear target out of reach", [&] { return qm_movel(arm(), far, 50, 0, 0, 1); }},
        {"arc through three points on a line",
         [&] {
             qm_pose_t mid = here, end = here;
             mid.position.x += 0.05f;
             end.position.x += 0.1f;
             return qm_movec(arm(), mid, end, 50, 0, 0, 0, 1);
         }},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.move(), 1) << row.behaviour;
        expect_joints_near(joints_of(arm()).data(), ready_joints());
    }
    EXPECT_TRUE(session().noted("movej refused"));
}

TEST_P(Motion, RunningMoveIsShownAndCanBePausedResumedAndStopped) {
    const float target[ARM_DOF] = {60, -20, -70, 0, -90, 0, 0};
    ASSERT_EQ(qm_movej(arm(), target, 2, 0, 0, QM_MOVE_NBLOCK), 0);
    qm_arm_current_trajectory_e type = QM_NO_PLANNING_E;
    float shown[ARM_DOF] = {};
    ASSERT_EQ(qm_get_arm_current_trajectory(arm(), &type, shown), 0);
    EXPECT_EQ(type, QM_JOINT_SPACE_PLANNING_E);
    expect_joints_near(shown, {target, target + 6});

    ASSERT_EQ(qm_set_arm_pause(arm()), 0);
    const std::vector<float> paused = joints_of(arm());
    std::this_thread::sleep_for(50ms);
    expect_joints_near(joints_of(arm()).data(), paused, 0.0f);
    EXPECT_TRUE(session().sim().view(0).paused);

    ASSERT_EQ(qm_set_arm_continue(arm()), 0);
    std::this_thread::sleep_for(50ms);
    EXPECT_GT(joints_of(arm())[0], paused[0]);

    ASSERT_EQ(qm_set_arm_stop(arm()), 0);
    ASSERT_EQ(qm_get_arm_current_trajectory(arm(), &type, shown), 0);
    EXPECT_EQ(type, QM_NO_PLANNING_E);
    EXPECT_LT(joints_of(arm())[0], 59.0f);
}

TEST_P(Motion, ConnectedSegmentsReportEachArrival) {
    const float first[ARM_DOF] = {10, -20, -70, 0, -90, 0, 0};
    ASSERT_EQ(qm_movej(arm(), first, 100, 0, 1, QM_MOVE_MULTI_BLOCK), 0);  // returns once accepted
    ASSERT_EQ(qm_movej(arm(), kReady, 100, 0, 0, QM_MOVE_MULTI_BLOCK), 0);
    expect_joints_near(joints_of(arm()).data(), ready_joints());
    ASSERT_TRUE(wait_for([](const Deliveries& d) { return d.events.size() >= 2; }));
    const std::vector<qm_event_push_data_t> events = deliveries().events;
    EXPECT_EQ(events[0].trajectory_connect, 1);
    EXPECT_EQ(events[1].trajectory_connect, 0);
}

TEST_P(Motion, PassThroughAndFollowTargetsMoveAtOnce) {
    ready();
    float through[ARM_DOF] = {5, -25, -65, 1, -88, 3, 0};
    qm_movej_canfd_mode_t config{through, 0.0f, false, 0, 0};
    ASSERT_EQ(qm_movej_canfd(arm(), config), 0);
    expect_joints_near(joints_of(arm()).data(), {through, through + 6});

    float follow[ARM_DOF] = {0, -20, -70, 0, -90, 0, 0};
    ASSERT_EQ(qm_movej_follow(arm(), follow), 0);
    const qm_pose_t here = pose_now(arm());
    qm_movep_canfd_mode_t by_pose{here, false, 0, 0};
    by_pose.pose.position.y += 0.02f;
    ASSERT_EQ(qm_movep_canfd(arm(), by_pose), 0);
    expect_pose_near(pose_now(arm()), by_pose.pose);
}

TEST_P(Motion, StepsMoveByTheirStepAndJogsUntilStopped) {
    ready();
    ASSERT_EQ(qm_set_joint_step(arm(), 1, 5.0f, 50, QM_MOVE_MULTI_BLOCK), 0);
    EXPECT_NEAR(joints_of(arm())[0], 5.0f, 0.002f);

    const qm_pose_t before = pose_now(arm());
    ASSERT_EQ(qm_set_pos_step(arm(), QM_Y_DIR_E, 0.02f, 50, QM_MOVE_MULTI_BLOCK), 0);
    EXPECT_NEAR(pose_now(arm()).position.y, before.position.y + 0.02f, 2e-5f);

    ASSERT_EQ(qm_set_teach_frame(arm(), 1), 0);
    int frame = -1;
    ASSERT_EQ(qm_get_teach_frame(arm(), &frame), 0);
    EXPECT_EQ(frame, 1);

    const float joint6 = joints_of(arm())[5];
    ASSERT_EQ(qm_set_joint_teach(arm(), 6, 1, 20), 0);
    std::this_thread::sleep_for(50ms);
    ASSERT_EQ(qm_set_stop_teach(arm()), 0);
    const float stopped = joints_of(arm())[5];
    EXPECT_GT(stopped, joint6);
    std::this_thread::sleep_for(30ms);
    EXPECT_FLOAT_EQ(joints_of(arm())[5], stopped);
}

INSTANTIATE_TEST_SUITE_P(Modes, Motion, ::testing::Values(QM_DUAL_MODE_E, QM_TRIPLE_MODE_E), mode_name);

}  // namespace
}  // namespace e2e
