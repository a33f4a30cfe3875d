// Limits against the simulator: what is written reads back, and the software limits and
// joint enables bound the moves.
#include "sim_session.h"

namespace e2e {
namespace {

class Limits : public OneArm {};

using Setter = std::function<int(qm_robot_handle*)>;
using Getter = std::function<int(qm_robot_handle*, float*)>;
#define ON_ARM(...) [](qm_robot_handle* h) { return __VA_ARGS__; }
#define READ(call) [](qm_robot_handle* h, float* out) { return call(h, out); }

TEST_F(Limits, WrittenLimitsReadBack) {
    const struct {
        const char* behaviour;
        Setter set;
        Getter get;
        int index;  // of the joint read back
        float expected;
    } rows[] = {
        {"joint speed", ON_ARM(qm_set_joint_max_speed(h, 2, 90.0f)), READ(qm_get_joint_max_speed), 1, 90.0f},
        {"joint acceleration", ON_ARM(qm_set_joint_max_acc(h, 3, 60.0f)), READ(qm_get_joint_max_acc), 2,
         60.0f},
        {"lower position", ON_ARM(qm_set_joint_min_pos(h, 1, -90.5f)), READ(qm_get_joint_min_pos), 0, -90.5f},
        {"upper position", ON_ARM(qm_set_joint_max_pos(h, 6, 120.0f)), READ(qm_get_joint_max_pos), 5, 120.0f},
        {"drive speed", ON_ARM(qm_set_joint_drive_max_speed(h, 1, 150.0f)),
         READ(qm_get_joint_drive_max_speed), 0, 150.0f},
        // Sent without the division by six that the read applies: a sixfold read-back is intended.
        {"drive acceleration", ON_ARM(qm_set_joint_drive_max_acc(h, 2, 60.0f)),
         READ(qm_get_joint_drive_max_acc), 1, 360.0f},
        {"drive upper position", ON_ARM(qm_set_joint_drive_max_pos(h, 4, 170.0f)),
         READ(qm_get_joint_drive_max_pos), 3, 170.0f},
        {"line speed", ON_ARM(qm_set_arm_max_line_speed(h, 0.5f)), READ(qm_get_arm_max_line_speed), 0, 0.5f},
        {"angular acceleration", ON_ARM(qm_set_arm_max_angular_acc(h, 2.5f)),
         READ(qm_get_arm_max_angular_acc), 0, 2.5f},
    };
    for (const auto& row : rows) {
        ASSERT_EQ(row.set(arm()), 0) << row.behaviour;
        float read[ARM_DOF] = {};
        ASSERT_EQ(row.get(arm(), read), 0) << row.behaviour;
        EXPECT_NEAR(read[row.index], row.expected, 0.01f) << row.behaviour;
    }
    int stage = -1;
    ASSERT_EQ(qm_set_collision_state(arm(), 4), 0);
    ASSERT_EQ(qm_get_collision_stage(arm(), &stage), 0);
    EXPECT_EQ(stage, 4);
    EXPECT_EQ(qm_set_collision_state(arm(), 9), 1);
    EXPECT_EQ(qm_set_joint_min_pos(arm(), 1, 200.0f), 1) << "a lower limit above the upper one";
}

TEST_F(Limits, SoftwareLimitsAndDisabledJointsRefuseMoves) {
    const float target[ARM_DOF] = {20, -20, -70, 0, -90, 0, 0};
    ASSERT_EQ(qm_set_joint_max_pos(arm(), 1, 10.0f), 0);
    EXPECT_EQ(qm_movej(arm(), target, 100, 0, 0, QM_MOVE_MULTI_BLOCK), 1);
    ASSERT_EQ(qm_auto_set_joint_limit(arm(), 1), 0);
    ASSERT_EQ(qm_movej(arm(), target, 100, 0, 0, QM_MOVE_MULTI_BLOCK), 0);

    ASSERT_EQ(qm_set_joint_en_state(arm(), 2, 0), 0);
    uint8_t enabled[ARM_DOF] = {};
    uint16_t errors[ARM_DOF] = {}, brakes[ARM_DOF] = {};
    ASSERT_EQ(qm_get_joint_en_state(arm(), enabled), 0);
    ASSERT_EQ(qm_get_joint_err_flag(arm(), errors, brakes), 0);
    EXPECT_EQ(enabled[1], 0);
    EXPECT_EQ(brakes[1], 1);
    EXPECT_EQ(qm_movej(arm(), kReady, 100, 0, 0, QM_MOVE_MULTI_BLOCK), 1);
    ASSERT_EQ(qm_set_joint_en_state(arm(), 2, 1), 0);
    EXPECT_EQ(qm_movej(arm(), kReady, 100, 0, 0, QM_MOVE_MULTI_BLOCK), 0);
}

TEST_F(Limits, SlowerJointLimitsMakeSlowerMoves) {
    const auto timed = [&](const float* target) {
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(qm_movej(arm(), target, 100, 0, 0, QM_MOVE_MULTI_BLOCK), 0);
        return std::chrono::steady_clock::now() - start;
    };
    const float out[ARM_DOF] = {90, 0, 0, 0, 0, 0, 0};
    const float back[ARM_DOF] = {};
    const auto fast = timed(out);
    ASSERT_EQ(qm_set_joint_max_speed(arm(), 1, 18.0f), 0);  // a tenth
    const auto slow = timed(back);
    EXPECT_GT(slow, 3 * fast);
}

}  // namespace
}  // namespace e2e
