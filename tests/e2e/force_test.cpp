// Force sensing and drag teaching against a simulated arm with a six-axis sensor: the sensor
// weighs the tool's payload as the arm turns it, zeroing and calibration take it away, a
// force-position hold shows as contact, and a drag-taught trajectory replays from its origin.
#include <thread>

#include "sim_session.h"

namespace e2e {
namespace {

class Force : public ::testing::TestWithParam<qm_thread_mode_e> {
protected:
    Force() : session_(GetParam(), fast_options("QM65-6F")) {}
    qm_robot_handle* arm() const { return session_.arm(); }
    qm_force_data_t read() {
        qm_force_data_t data{};
        EXPECT_EQ(qm_get_force_data(arm(), &data), 0);
        return data;
    }
    Session session_;
};

void expect_all_near(const float* values, float expected, float tolerance, const char* what) {
    for (int i = 0; i < 6; ++i) EXPECT_NEAR(values[i], expected, tolerance) << what << " " << i;
}

TEST_P(Force, TheSensorWeighsThePayloadUntilZeroedOrCalibrated) {
    ASSERT_EQ(qm_movej(arm(), kReady, 100, 0, 0, QM_MOVE_MULTI_BLOCK), 0);
    qm_frame_t grip{"grip", pose_of(0, 0, 0.1f, 0, 0, 0), 1.0f, 0.05f, 0, 0.05f};
    ASSERT_EQ(qm_set_manual_tool_frame(arm(), grip), 0);
    ASSERT_EQ(qm_change_tool_frame(arm(), "grip"), 0);

    // The tool points down: the kilogram pulls along the flange's z, on top of the sensor's bias.
    qm_force_data_t data = read();
    EXPECT_NEAR(data.force_data[2], 2.0f + 9.81f, 0.02f);
    EXPECT_NEAR(data.zero_force_data[2], data.force_data[2], 1e-6f) << "nothing is compensated yet";

    ASSERT_EQ(qm_clear_force_data(arm()), 0);
    expect_all_near(read().zero_force_data, 0.0f, 0.002f, "zeroed");
    ASSERT_EQ(qm_set_joint_step(arm(), 5, 30.0f, 100, QM_MOVE_MULTI_BLOCK), 0);
    EXPECT_GT(std::fabs(read().zero_force_data[2]), 1.0f) << "turned, the weight pulls elsewhere";

    ASSERT_EQ(qm_set_force_sensor(arm(), true), 0);
    expect_all_near(read().zero_force_data, 0.0f, 0.002f, "calibrated");
    ASSERT_EQ(qm_movej(arm(), kReady, 100, 0, 0, QM_MOVE_MULTI_BLOCK), 0);
    data = read();
    expect_all_near(data.zero_force_data, 0.0f, 0.002f, "calibrated, in another pose");
    expect_all_near(data.work_zero_force_data, 0.0f, 0.002f, "in the work frame");

    ASSERT_EQ(qm_set_force_position(arm(), 1, 0, 2, 5.0f), 0);
    EXPECT_NEAR(read().zero_force_data[2], 5.0f, 0.002f) << "the held force is the contact";
    ASSERT_EQ(qm_stop_force_position(arm()), 0);
    EXPECT_NEAR(read().zero_force_data[2], 0.0f, 0.002f);
}

TEST_P(Force, StreamedForcePositionMovesGoStraightToTheirTargets) {
    const float target[ARM_DOF] = {5, -25, -65, 0, -90, 0};
    EXPECT_EQ(qm_force_position_move_joint(arm(), target, 1, 0, 2, 3.0f, false), 0);
    EXPECT_NEAR(joints_of(arm())[0], 0.0f, 1e-3f) << "refused before the start";
    ASSERT_EQ(qm_start_force_position_move(arm()), 0);
    ASSERT_EQ(qm_force_position_move_joint(arm(), target, 1, 0, 2, 3.0f, false), 0);
    expect_joints_near(joints_of(arm()).data(), {target, target + 6});
    EXPECT_NEAR(read().zero_force_data[2], 2.0f + 3.0f, 0.02f) << "bias and contact, uncalibrated";
    ASSERT_EQ(qm_stop_force_position_move(arm()), 0);
}

TEST_P(Force, ADragTaughtTrajectoryReplaysFromItsOrigin) {
    ASSERT_EQ(qm_movej(arm(), kReady, 100, 0, 0, QM_MOVE_MULTI_BLOCK), 0);
    ASSERT_EQ(qm_start_drag_teach(arm(), 1), 0);
    EXPECT_EQ(qm_movej(arm(), kReady, 100, 0, 0, QM_MOVE_MULTI_BLOCK), 1) << "no planned moves while dragged";
    // The hand guides the arm through two poses.
    float first[ARM_DOF] = {10, -20, -70, 0, -90, 0}, second[ARM_DOF] = {20, -30, -60, 0, -90, 10};
    for (float* pose : {first, second}) {
        std::this_thread::sleep_for(20ms);
        ASSERT_EQ(qm_movej_canfd(arm(), qm_movej_canfd_mode_t{pose, 0.0f, false, 0, 0}), 0);
    }
    std::this_thread::sleep_for(20ms);
    ASSERT_EQ(qm_stop_drag_teach(arm()), 0);

    EXPECT_EQ(qm_run_drag_trajectory(arm(), 5), 1) << "not at the trajectory's first point";
    ASSERT_EQ(qm_drag_trajectory_origin(arm(), 5), 0);
    expect_joints_near(joints_of(arm()).data(), {kReady, kReady + 6});
    ASSERT_EQ(qm_run_drag_trajectory(arm(), 5), 0);
    expect_joints_near(joints_of(arm()).data(), {second, second + 6});
}

INSTANTIATE_TEST_SUITE_P(Modes, Force, ::testing::Values(QM_DUAL_MODE_E, QM_TRIPLE_MODE_E), mode_name);

TEST(OneAxisForce, CalibrationCompensatesTheBias) {
    Session session(QM_DUAL_MODE_E, fast_options("QML63II-ZF"));
    qm_fz_data_t fz{};
    ASSERT_EQ(qm_get_Fz(session.arm(), &fz), 0);
    EXPECT_NEAR(fz.Fz, 2.0f, 1e-3f);
    EXPECT_NEAR(fz.zero_Fz, 2.0f, 1e-3f);
    ASSERT_EQ(qm_auto_set_Fz(session.arm(), true), 0);
    ASSERT_EQ(qm_get_Fz(session.arm(), &fz), 0);
    EXPECT_NEAR(fz.zero_Fz, 0.0f, 1e-3f);
    qm_force_data_t data{};
    EXPECT_EQ(qm_get_force_data(session.arm(), &data), -3) << "no six-axis sensor: an error reply";
}

}  // namespace
}  // namespace e2e
