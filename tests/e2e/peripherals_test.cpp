// End effectors and extra axes against the simulator, in both threaded modes: blocking
// motions end with their device's arrival, the states and the push show where they are.
#include <thread>

#include "sim_session.h"

namespace e2e {
namespace {

class Peripherals : public BothModes {};

bool arrived(int device) {
    return wait_for([device](const Deliveries& d) {
        for (const qm_event_push_data_t& event : d.events)
            if (event.device == device && event.trajectory_state) return true;
        return false;
    });
}

TEST_P(Peripherals, BlockingMotionsEndWithTheirDevicesArrival) {
    const struct {
        const char* behaviour;
        std::function<int(qm_robot_handle*)> move;
        int device;
    } rows[] = {
        {"gripper pick", [](qm_robot_handle* h) { return qm_set_gripper_pick(h, 500, 300, true, 3); }, 1},
        {"gripper position", [](qm_robot_handle* h) { return qm_set_gripper_position(h, 400, true, 3); }, 1},
        {"hand posture", [](qm_robot_handle* h) { return qm_set_hand_posture(h, 3, true, 3); }, 2},
        {"hand sequence", [](qm_robot_handle* h) { return qm_set_hand_seq(h, 1, true, 3); }, 2},
        {"lift height", [](qm_robot_handle* h) { return qm_set_lift_height(h, 50, 300, 1); }, 3},
        {"expansion axis", [](qm_robot_handle* h) { return qm_set_expand_pos(h, 50, 90000, 1); }, 4},
    };
    for (const auto& row : rows) {
        clear_deliveries();
        EXPECT_EQ(row.move(arm()), 0) << row.behaviour;
        EXPECT_TRUE(arrived(row.device)) << row.behaviour;
    }
    qm_gripper_state_t gripper{};
    ASSERT_EQ(qm_get_gripper_state(arm(), &gripper), 0);
    EXPECT_EQ(gripper.actpos, 400);
    EXPECT_EQ(gripper.status, 0);
    qm_expand_state_t lift{}, expand{};
    ASSERT_EQ(qm_get_lift_state(arm(), &lift), 0);
    ASSERT_EQ(qm_get_expand_state(arm(), &expand), 0);
    EXPECT_EQ(lift.pos, 300);
    EXPECT_EQ(expand.pos, 90000);
    EXPECT_EQ(lift.mode + expand.mode, 0);
    EXPECT_EQ(qm_set_lift_height(arm(), 50, 5000, 0), 1) << "beyond the lift's travel";
}

TEST_P(Peripherals, MotionsThatDoNotBlockReportNoArrival) {
    ASSERT_EQ(qm_set_gripper_release(arm(), 100, false, 0), 0);
    qm_gripper_state_t gripper{};
    ASSERT_EQ(qm_get_gripper_state(arm(), &gripper), 0);
    EXPECT_EQ(gripper.actpos, 1000) << "the gripper starts open";
    ASSERT_EQ(qm_set_gripper_position(arm(), 0, false, 1), 0);
    ASSERT_EQ(qm_get_gripper_state(arm(), &gripper), 0);
    EXPECT_EQ(gripper.status, 1) << "still closing";

    ASSERT_EQ(qm_set_lift_speed(arm(), -100), 0);
    ASSERT_EQ(qm_set_lift_speed(arm(), 60), 0);
    std::this_thread::sleep_for(30ms);
    ASSERT_EQ(qm_set_lift_speed(arm(), 0), 0);
    qm_expand_state_t lift{};
    ASSERT_EQ(qm_get_lift_state(arm(), &lift), 0);
    EXPECT_GT(lift.pos, 0);
    EXPECT_EQ(lift.mode, 0);
    std::this_thread::sleep_for(80ms);
    EXPECT_TRUE(deliveries().events.empty());
}

TEST_P(Peripherals, TheEndEffectorIsTheHandAndCanBeSwitchedOff) {
    const int angles[6] = {100, 200, 300, 400, 500, 600};
    ASSERT_EQ(qm_set_hand_follow_angle(arm(), angles, false), 0);
    qm_plus_state_info_t state{};
    ASSERT_EQ(qm_get_qm_plus_state_info(arm(), &state), 0);
    EXPECT_EQ(state.pos[5], 600);
    qm_plus_base_info_t base{};
    ASSERT_EQ(qm_get_qm_plus_base_info(arm(), &base), 0);
    EXPECT_EQ(base.dof, 6);
    EXPECT_STREQ(base.manu, "QM-SIM");

    if (GetParam() == QM_TRIPLE_MODE_E) {
        qm_realtime_push_config_t config{};
        ASSERT_EQ(qm_get_realtime_push(arm(), &config), 0);
        config.custom_config = {-1, 1, 1, 1, -1, 1, 1, 1};
        ASSERT_EQ(qm_set_realtime_push(arm(), config), 0);
        ASSERT_TRUE(wait_for([](const Deliveries& d) {
            return d.latest && d.latest->handState.hand_pos[5] == 600 && d.latest->plus_base_info.dof == 6 &&
                   d.latest->plus_state_info.angle[0] == 100 && d.latest->liftState.en_flag == 1 &&
                   d.latest->expandState.en_flag == 1;
        })) << "the push never showed the peripherals";
    }

    ASSERT_EQ(qm_set_qm_plus_mode(arm(), 0), 0);
    int mode = -1;
    ASSERT_EQ(qm_get_qm_plus_mode(arm(), &mode), 0);
    EXPECT_EQ(mode, 0);
    EXPECT_EQ(qm_get_qm_plus_base_info(arm(), &base), 1) << "a device switched off";
    if (GetParam() == QM_TRIPLE_MODE_E) {
        EXPECT_TRUE(wait_for([](const Deliveries& d) { return d.latest && d.latest->qm_plus_state == 1; }));
    }
}

INSTANTIATE_TEST_SUITE_P(Modes, Peripherals, ::testing::Values(QM_DUAL_MODE_E, QM_TRIPLE_MODE_E), mode_name);

}  // namespace
}  // namespace e2e
