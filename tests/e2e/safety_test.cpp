// Safety zones and the arm's model configuration against the simulator: fences added are
// listed and read back, the active zones and switches keep what they were given, a DH table
// written moves the arm's kinematics, the emergency stop holds the arm.
#include <cstring>

#include "sim_session.h"

namespace e2e {
namespace {

class Safety : public OneArm {};

qm_fence_config_t zone(int form, const char* name) {
    qm_fence_config_t config{};
    config.form = form;
    std::strcpy(config.name, name);
    config.cube = {-0.5f, 0.5f, -0.4f, 0.4f, 0.0f, 0.8f};
    config.plan = {0, 0, 0.1f, 1, 0, 0.1f, 0, 1, 0.1f};
    config.sphere = {0.3f, 0.0f, 0.2f, 0.05f};
    return config;
}

TEST_F(Safety, FencesAddedAreListedReadBackReplacedAndDeleted) {
    ASSERT_EQ(qm_add_electronic_fence_config(arm(), zone(1, "cell")), 0);
    ASSERT_EQ(qm_add_electronic_fence_config(arm(), zone(2, "table")), 0);
    ASSERT_EQ(qm_add_electronic_fence_config(arm(), zone(3, "part")), 0);
    EXPECT_EQ(qm_add_electronic_fence_config(arm(), zone(1, "cell")), 1) << "the name is taken";
    qm_fence_config_t flat = zone(2, "flat");
    flat.plan.x3 = 2;
    flat.plan.y3 = 0;
    EXPECT_EQ(qm_add_electronic_fence_config(arm(), flat), 1) << "three points on one line";

    qm_fence_names_t names[10] = {};
    int count = 0;
    ASSERT_EQ(qm_get_electronic_fence_list_names(arm(), names, &count), 0);
    ASSERT_EQ(count, 3);
    EXPECT_STREQ(names[2].name, "part");
    qm_fence_config_list_t infos{};
    ASSERT_EQ(qm_get_electronic_fence_list_infos(arm(), &infos, &count), 0);
    EXPECT_FLOAT_EQ(infos.config[1].plan.z3, 0.1f);

    qm_fence_config_t read{};
    ASSERT_EQ(qm_get_given_electronic_fence_config(arm(), "part", &read), 0);
    EXPECT_EQ(read.form, 3);
    EXPECT_FLOAT_EQ(read.sphere.radius, 0.05f);
    qm_fence_config_t bigger = zone(1, "cell");
    bigger.cube.z_max_limit = 1.2f;
    ASSERT_EQ(qm_update_electronic_fence_config(arm(), bigger), 0);
    ASSERT_EQ(qm_get_given_electronic_fence_config(arm(), "cell", &read), 0);
    EXPECT_FLOAT_EQ(read.cube.z_max_limit, 1.2f);
    ASSERT_EQ(qm_delete_electronic_fence_config(arm(), "cell"), 0);
    EXPECT_EQ(qm_get_given_electronic_fence_config(arm(), "cell", &read), 1);
}

TEST_F(Safety, ActiveZonesAndSwitchesKeepWhatTheyWereGiven) {
    const qm_electronic_fence_enable_t on{true, 1, 0};
    EXPECT_EQ(qm_set_electronic_fence_enable(arm(), on), 1) << "no active fence yet";
    ASSERT_EQ(qm_set_electronic_fence_config(arm(), zone(1, "")), 0);
    ASSERT_EQ(qm_set_electronic_fence_enable(arm(), on), 0);
    qm_electronic_fence_enable_t state{};
    ASSERT_EQ(qm_get_electronic_fence_enable(arm(), &state), 0);
    EXPECT_TRUE(state.enable_state);
    EXPECT_EQ(state.in_out_side, 1);
    qm_fence_config_t read{};
    ASSERT_EQ(qm_get_virtual_wall_config(arm(), &read), 1) << "no wall yet";
    ASSERT_EQ(qm_set_virtual_wall_config(arm(), zone(3, "")), 0);
    ASSERT_EQ(qm_get_virtual_wall_config(arm(), &read), 0);
    EXPECT_FLOAT_EQ(read.sphere.x, 0.3f);
    ASSERT_EQ(qm_set_virtual_wall_enable(arm(), on), 0);
    ASSERT_EQ(qm_get_virtual_wall_enable(arm(), &state), 0);
    EXPECT_TRUE(state.enable_state);

    bool collision = true;
    ASSERT_EQ(qm_set_self_collision_enable(arm(), false), 0);
    ASSERT_EQ(qm_get_self_collision_enable(arm(), &collision), 0);
    EXPECT_FALSE(collision);
    int mode = -1;
    ASSERT_EQ(qm_set_arm_run_mode(arm(), 2), 0);
    EXPECT_EQ(qm_set_arm_run_mode(arm(), 5), 1);
    ASSERT_EQ(qm_get_arm_run_mode(arm(), &mode), 0);
    EXPECT_EQ(mode, 2);

    ASSERT_EQ(qm_set_arm_emergency_stop(arm(), true), 0);
    EXPECT_EQ(qm_movej(arm(), kReady, 100, 0, 0, QM_MOVE_MULTI_BLOCK), 1);
    ASSERT_EQ(qm_set_arm_emergency_stop(arm(), false), 0);
    EXPECT_EQ(qm_movej(arm(), kReady, 100, 0, 0, QM_MOVE_MULTI_BLOCK), 0);
}

TEST_F(Safety, ModelConfigurationReadsBackAndMovesTheKinematics) {
    ASSERT_EQ(qm_set_install_pose(arm(), 0.0f, 90.9f, -0.5f), 0);
    float x = -1, y = -1, z = -1;
    ASSERT_EQ(qm_get_install_pose(arm(), &x, &y, &z), 0);
    EXPECT_EQ(y, 90.0f);
    EXPECT_EQ(z, 0.0f);
    ASSERT_EQ(qm_set_install_pose(arm(), 0, 0, 0), 0);

    qm_dh_t dh{};
    ASSERT_EQ(qm_get_DH_data(arm(), &dh), 0);
    const float base = pose_now(arm()).position.z;
    dh.d[0] += 0.01f;  // the shoulder a centimetre higher
    ASSERT_EQ(qm_set_DH_data(arm(), dh), 0);
    qm_dh_t read{};
    ASSERT_EQ(qm_get_DH_data(arm(), &read), 0);
    EXPECT_NEAR(read.d[0], dh.d[0], 1e-6f);
    EXPECT_NEAR(pose_now(arm()).position.z, base + 0.01f, 2e-6f);
    ASSERT_EQ(qm_set_DH_data_default(arm()), 0);
    EXPECT_NEAR(pose_now(arm()).position.z, base, 2e-6f);

    int count = 0;
    qm_version_t versions[ARM_DOF] = {};
    ASSERT_EQ(qm_get_joint_software_version(arm(), &count, versions), 0);
    EXPECT_EQ(count, 6);
    EXPECT_STREQ(versions[5].version, "1.0.7");
    ASSERT_EQ(qm_get_tool_software_version(arm(), &count, versions), 0);
    EXPECT_EQ(count, 1);
}

}  // namespace
}  // namespace e2e
