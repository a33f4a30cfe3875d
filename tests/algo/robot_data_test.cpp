// The system-data record: model defaults, refusals, installation and the stored configuration.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <utility>
#include <vector>

#include "libalgo_interface.h"
#include "qman_mathfuncs.h"

namespace {

constexpr float kDeg = 0.0174532925199433f;

void expect_identity(const Matrix& m) {
    EXPECT_TRUE(m.irow == 4 && m.iline == 4);
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j) EXPECT_EQ(m.data[i][j], i == j ? 1.0f : 0.0f) << i << "," << j;
}

TEST(ModelTable, RefusedPairsReturnMinusOneAndLeaveAClearedRecord) {
    const int refused[][2] = {{TAV72, _ZF}, {TAV72, ISF}, {LUX62, _SF}, {QML63I, _B}, {QML63I, _SF},
                              {12, _B},     {-1, _B},     {QM65, 4},    {QM65, -1},   {UNIVERSAL, 7}};
    for (const auto& [robot_type, sensor_type] : refused) {
        SCOPED_TRACE(testing::Message() << robot_type << "/" << sensor_type);
        ASSERT_EQ(libalgo_set_robot_and_sensor_type(QM75, _SF), 0);
        libalgo_set_tool_cs_params(Coord{0.1f, 0, 0, 0, 0, 0});
        EXPECT_EQ(libalgo_set_robot_and_sensor_type(robot_type, sensor_type), -1);
        EXPECT_EQ(libalgo_get_rbt_dof(), 0);
        EXPECT_EQ(libalgo_get_robot_type(), robot_type);
        EXPECT_EQ(libalgo_get_sensor_type(), sensor_type);
        DH dh;
        libalgo_get_dh_value(&dh);
        const DH zero{};
        EXPECT_EQ(std::memcmp(&dh, &zero, sizeof dh), 0);
        float max[ROBOT_DOF], link[LINK_DYNAMICS_NUM];
        libalgo_get_jointlim_max(max);
        for (const float v : max) EXPECT_EQ(v, 0.0f);
        libalgo_get_link_dynamics_params(link);
        for (const float v : link) EXPECT_EQ(v, 0.0f);
        expect_identity(libalgo_get_tool_cs_matrix());
        EXPECT_FLOAT_EQ(libalgo_get_control_loop_period(), 0.002f);
    }
}

TEST(ModelTable, InitLoadsQM65WithoutSensorAndTheCartesianDefaultsAndModelsTurnTheirOwnWay) {
    libalgo_init();
    EXPECT_EQ(libalgo_get_robot_type(), QM65);
    EXPECT_EQ(libalgo_get_sensor_type(), _B);
    EXPECT_EQ(libalgo_get_rbt_dof(), 6);
    DH dh, def;
    libalgo_get_dh_value(&dh);
    libalgo_get_dh_params_default(&def);
    EXPECT_EQ(std::memcmp(&dh, &def, sizeof dh), 0);
    EXPECT_EQ(libalgo_check_dh_params_is_default(), 1);
    TcpConfig tcp;
    libalgo_get_tcp_config(&tcp);
    EXPECT_FLOAT_EQ(tcp.vel_max, 0.25f);
    EXPECT_FLOAT_EQ(tcp.acc_max, 1.6f);
    EXPECT_FLOAT_EQ(tcp.rot_vel_max, 0.6f);
    EXPECT_FLOAT_EQ(tcp.rot_acc_max, 4.0f);
    float dir[ROBOT_DOF];
    ASSERT_EQ(libalgo_set_robot_and_sensor_type(QML63II, _B), 0);
    libalgo_get_joint_direction(dir);
    EXPECT_TRUE(dir[0] == 1.0f && dir[1] == -1.0f);
}

// The last link's length with each flange sensor, and the published limits in degrees where a
// row gives them (minima are the negated maxima unless listed); every acceleration limit is 1000.
TEST(ModelTable, SensorsLengthenTheLastLinkAndLimitsAreStoredInRadians) {
    const struct {
        int robot_type, sensor_type, dof;
        float last_d;
        std::vector<float> max_deg, vel_deg, min_deg;
    } rows[] = {
        // clang-format off
        {QM65, _B, 6, 0.144f, {178, 130, 135, 178, 128, 360}, {180, 180, 225, 225, 225, 225}, {}},
        {QM65, _ZF, 6, 0.152f, {}, {}, {}},
        {QM65, _SF, 6, 0.1725f, {}, {}, {}},
        {QM65, ISF, 6, 0.1612f, {}, {}, {}},
        {QM75, _B, 7, 0.144f, {178, 130, 178, 135, 178, 128, 360}, {180, 180, 225, 225, 225, 225, 225}, {}},
        {QM75, _SF, 7, 0.1725f, {}, {}, {}},
        {QML63IV, _SF, 6, 0.144f, {}, {}, {}},
        {TAV72, _B, 7, 0.097f, {172, 105, 172, 55, 172, 120, 172}, {180, 180, 180, 180, 225, 225, 225},
         {-172, -105, -172, -170, -172, -90, -172}},
        {UNIVERSAL, _B, 7, 0.0f, std::vector<float>(7, 360), std::vector<float>(7, 300), {}},
        // clang-format on
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(testing::Message() << r.robot_type << "/" << r.sensor_type);
        ASSERT_EQ(libalgo_set_robot_and_sensor_type(r.robot_type, r.sensor_type), 0);
        ASSERT_EQ(libalgo_get_rbt_dof(), r.dof);
        DH dh;
        libalgo_get_dh_value(&dh);
        EXPECT_EQ(dh.d[r.dof - 1], r.last_d);
        if (r.max_deg.empty()) continue;
        float max[ROBOT_DOF], min[ROBOT_DOF], vel[ROBOT_DOF], acc[ROBOT_DOF];
        libalgo_get_jointlim_max(max);
        libalgo_get_jointlim_min(min);
        libalgo_get_joint_vel_maxlim(vel);
        libalgo_get_joint_acc_maxlim(acc);
        for (int j = 0; j < r.dof; ++j) {
            EXPECT_NEAR(max[j], r.max_deg[j] * kDeg, 1e-6f) << j;
            EXPECT_NEAR(min[j], (r.min_deg.empty() ? -r.max_deg[j] : r.min_deg[j]) * kDeg, 1e-6f) << j;
            EXPECT_NEAR(vel[j], r.vel_deg[j] * kDeg, 1e-6f) << j;
            EXPECT_NEAR(acc[j], 1000 * kDeg, 1e-5f) << j;
        }
        for (int j = r.dof; j < ROBOT_DOF; ++j) EXPECT_EQ(max[j], 0.0f);
    }
}

TEST(ModelDefaults, LinkDynamicsDependOnTheSensorAndAreKeptAsDefault) {
    float plain[LINK_DYNAMICS_NUM], with_sensor[LINK_DYNAMICS_NUM], kept[LINK_DYNAMICS_NUM];
    ASSERT_EQ(libalgo_set_robot_and_sensor_type(QM65, _B), 0);
    libalgo_get_link_dynamics_params(plain);
    ASSERT_EQ(libalgo_set_robot_and_sensor_type(QM65, _SF), 0);
    libalgo_get_link_dynamics_params(with_sensor);
    libalgo_get_link_dynamics_params_default(kept);
    EXPECT_GT(with_sensor[50], plain[50]);  // mass of the sixth link
    EXPECT_EQ(plain[0], with_sensor[0]);
    EXPECT_EQ(std::memcmp(with_sensor, kept, sizeof kept), 0);
}

TEST(ModelChange, ClearsFramesInstallationPayloadAndUserTable) {
    ASSERT_EQ(libalgo_set_robot_and_sensor_type(QM65, _B), 0);
    libalgo_set_tool_cs_params(Coord{0.1f, 0.2f, 0.3f, 0, 0, 0});
    libalgo_set_work_cs_params(Coord{0.1f, 0.2f, 0.3f, 0, 0, 0});
    const float angle[3] = {0.1f, 0.2f, 0.3f};
    libalgo_set_robot_install_angle(angle);
    PayloadCfg payload{};
    payload.mass = 2.0f;
    libalgo_set_payload_params(&payload);
    DH dh;
    libalgo_get_dh_value(&dh);
    dh.d[0] = 0.5f;
    libalgo_set_dh_params(&dh);

    ASSERT_EQ(libalgo_set_robot_and_sensor_type(QM65, _B), 0);
    expect_identity(libalgo_get_tool_cs_matrix());
    expect_identity(libalgo_get_work_cs_to_base_matrix());
    expect_identity(libalgo_get_robot_install_angle_matrix());
    libalgo_get_payload_params(&payload);
    EXPECT_EQ(payload.mass, 0.0f);
    EXPECT_EQ(libalgo_check_dh_params_is_default(), 1);
}

TEST(DHTable, DefaultRestoresTheModelsTableExactly) {
    ASSERT_EQ(libalgo_set_robot_and_sensor_type(QM75, _ZF), 0);
    DH original, changed;
    libalgo_get_dh_value(&original);
    changed = original;
    changed.d[2] = 0.3f;
    changed.alpha[4] = 0.1f;
    libalgo_set_dh_params(&changed);
    EXPECT_EQ(libalgo_check_dh_params_is_default(), 0);
    libalgo_set_dh_params_default();
    DH restored;
    libalgo_get_dh_value(&restored);
    EXPECT_EQ(std::memcmp(&restored, &original, sizeof restored), 0);
    EXPECT_EQ(libalgo_check_dh_params_is_default(), 1);
}

TEST(InstallAngle, IsAnRzRyRxRotationThatTurnsGravityIntoTheBaseFrame) {
    const float a = 0.3f, b = -0.4f;
    const struct {
        float angle[3], gravity[3];
    } cases[] = {
        {{0, 0, 0}, {0, 0, -9.81f}},
        {{1.5707963f, 0, 0}, {0, -9.81f, 0}},
        {{0, 1.5707963f, 0}, {9.81f, 0, 0}},
        {{0, 0, 1.2f}, {0, 0, -9.81f}},
        {{a, b, 0.5f},
         {9.81f * std::sin(b), -9.81f * std::sin(a) * std::cos(b), -9.81f * std::cos(a) * std::cos(b)}},
    };
    libalgo_init();
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.angle[0] << " " << c.angle[1] << " " << c.angle[2]);
        libalgo_set_robot_install_angle(c.angle);
        float g[3], back[3];
        libalgo_get_robot_gravity_acc(g);
        libalgo_get_robot_install_angle(back);
        for (int i = 0; i < 3; ++i) {
            EXPECT_NEAR(g[i], c.gravity[i], 1e-5f) << i;
            EXPECT_EQ(back[i], c.angle[i]);
        }
        const Matrix m = libalgo_get_robot_install_angle_matrix();
        const Matrix r = euler_to_matrix(Euler{c.angle[0], c.angle[1], c.angle[2]});
        for (int i = 0; i < 4; ++i)
            for (int j = 0; j < 4; ++j)
                EXPECT_NEAR(m.data[i][j], i < 3 && j < 3 ? r.data[i][j] : i == j, 1e-6f);
    }
}

TEST(StoredConfiguration, ToolFrameAndJointRecordRoundTrip) {
    libalgo_init();
    const Coord tool{0.01f, 0.02f, 0.1f, 0.0f, 0.0f, 1.5707963f};
    libalgo_set_tool_cs_params(tool);
    const Coord tool_back = libalgo_get_tool_cs_params();
    EXPECT_EQ(std::memcmp(&tool_back, &tool, sizeof tool), 0);

    JointConfig cfg{};
    for (int k = 0; k < 10; ++k) cfg.drive[k] = 0.5f * k;
    cfg.jointlim_max = 1.5f, cfg.jointlim_min = -1.25f, cfg.vel_maxlim = 3.0f, cfg.acc_maxlim = 20.0f;
    cfg.aux[0] = 7.0f, cfg.aux[1] = 8.0f, cfg.aux[2] = 9.0f;
    ASSERT_EQ(libalgo_set_joint_config(3, &cfg), 0);
    JointConfig back{};
    ASSERT_EQ(libalgo_get_joint_config(3, &back), 0);
    EXPECT_EQ(std::memcmp(&cfg, &back, sizeof cfg), 0);
    const std::pair<void (*)(float*), float> getters[] = {{libalgo_get_jointlim_max, 1.5f},
                                                          {libalgo_get_jointlim_min, -1.25f},
                                                          {libalgo_get_joint_vel_maxlim, 3.0f},
                                                          {libalgo_get_joint_acc_maxlim, 20.0f},
                                                          {libalgo_get_modeling_jointlim_max, 1.5f}};
    for (const auto& [get, expected] : getters) {
        float v[ROBOT_DOF];
        get(v);
        EXPECT_EQ(v[3], expected);
    }

    EXPECT_EQ(libalgo_set_joint_config(-1, &cfg), -1);
    EXPECT_EQ(libalgo_set_joint_config(ROBOT_DOF, &cfg), -1);
    EXPECT_EQ(libalgo_get_joint_config(ROBOT_DOF, &cfg), -1);
    EXPECT_EQ(libalgo_get_joint_config(0, nullptr), -1);
}

TEST(PlannerState, NewCommandMovesThePreviousOneToCurrent) {
    libalgo_init();
    const float first[ROBOT_DOF] = {1, 1, 1, 1, 1, 1, 1, 1};
    const float second[ROBOT_DOF] = {2, 2, 2, 2, 2, 2, 2, 2};
    libalgo_set_trajectory_planning_joint_cmd(first, first, first);
    libalgo_set_trajectory_planning_joint_cmd(second, second, second);
    float q[ROBOT_DOF], dq[ROBOT_DOF], ddq[ROBOT_DOF];
    libalgo_get_trajectory_planning_joint_cmd(q, dq, ddq);
    EXPECT_EQ(q[0], 2.0f);
    libalgo_get_trajectory_planning_joint_cur(q, dq, ddq);
    EXPECT_EQ(ddq[7], 1.0f);
}

}  // namespace
