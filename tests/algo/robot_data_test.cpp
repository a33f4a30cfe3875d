// The system-data record: model defaults, refusals, installation and plain setters.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <ostream>

#include "libalgo_interface.h"

namespace {

constexpr float kDeg = 0.0174532925199433f;

void expect_identity(const Matrix& m) {
    EXPECT_EQ(m.irow, 4);
    EXPECT_EQ(m.iline, 4);
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j) EXPECT_EQ(m.data[i][j], i == j ? 1.0f : 0.0f) << i << "," << j;
}

void expect_cleared_record(int robot_type, int sensor_type) {
    EXPECT_EQ(libalgo_get_rbt_dof(), 0);
    EXPECT_EQ(libalgo_get_robot_type(), robot_type);
    EXPECT_EQ(libalgo_get_sensor_type(), sensor_type);
    DH dh;
    libalgo_get_dh_value(&dh);
    const DH zero{};
    EXPECT_EQ(std::memcmp(&dh, &zero, sizeof dh), 0);
    float max[ROBOT_DOF];
    libalgo_get_jointlim_max(max);
    for (const float v : max) EXPECT_EQ(v, 0.0f);
    expect_identity(libalgo_get_tool_cs_matrix());
    expect_identity(libalgo_get_work_cs_to_base_matrix());
    expect_identity(libalgo_get_robot_install_angle_matrix());
    EXPECT_FLOAT_EQ(libalgo_get_control_loop_period(), 0.002f);
    float link[LINK_DYNAMICS_NUM];
    libalgo_get_link_dynamics_params(link);
    for (const float v : link) EXPECT_EQ(v, 0.0f);
}

struct Refusal {
    int robot_type;
    int sensor_type;
};

void PrintTo(const Refusal& r, std::ostream* os) { *os << "type " << r.robot_type << " sensor " << r.sensor_type; }

class RefusedModel : public testing::TestWithParam<Refusal> {};

TEST_P(RefusedModel, ReturnsMinusOneAndLeavesAClearedRecord) {
    ASSERT_EQ(libalgo_set_robot_and_sensor_type(QM75, _SF), 0);
    libalgo_set_tool_cs_params(Coord{0.1f, 0, 0, 0, 0, 0});
    EXPECT_EQ(libalgo_set_robot_and_sensor_type(GetParam().robot_type, GetParam().sensor_type), -1);
    expect_cleared_record(GetParam().robot_type, GetParam().sensor_type);
}

INSTANTIATE_TEST_SUITE_P(Cases, RefusedModel,
                         testing::Values(Refusal{TAV72, _ZF}, Refusal{TAV72, ISF}, Refusal{LUX62, _SF},
                                         Refusal{QML63I, _B}, Refusal{QML63I, _SF}, Refusal{12, _B}, Refusal{-1, _B},
                                         Refusal{QM65, 4}, Refusal{QM65, -1}, Refusal{UNIVERSAL, 7}));

TEST(ModelDefaults, InitLoadsQM65WithoutSensor) {
    libalgo_init();
    EXPECT_EQ(libalgo_get_robot_type(), QM65);
    EXPECT_EQ(libalgo_get_sensor_type(), _B);
    EXPECT_EQ(libalgo_get_rbt_dof(), 6);
    DH dh, def;
    libalgo_get_dh_value(&dh);
    libalgo_get_dh_params_default(&def);
    EXPECT_EQ(dh.d[5], 0.144f);
    EXPECT_EQ(std::memcmp(&dh, &def, sizeof dh), 0);
    EXPECT_EQ(libalgo_check_dh_params_is_default(), 1);
}

struct FlangeCase {
    int robot_type;
    int sensor_type;
    float last_d;
};

void PrintTo(const FlangeCase& c, std::ostream* os) { *os << "type " << c.robot_type << " sensor " << c.sensor_type; }

class FlangeSensor : public testing::TestWithParam<FlangeCase> {};

TEST_P(FlangeSensor, LengthensTheLastLink) {
    ASSERT_EQ(libalgo_set_robot_and_sensor_type(GetParam().robot_type, GetParam().sensor_type), 0);
    DH dh;
    libalgo_get_dh_value(&dh);
    EXPECT_EQ(dh.d[libalgo_get_rbt_dof() - 1], GetParam().last_d);
}

INSTANTIATE_TEST_SUITE_P(Lengths, FlangeSensor,
                         testing::Values(FlangeCase{QM65, _B, 0.144f}, FlangeCase{QM65, _ZF, 0.152f},
                                         FlangeCase{QM65, _SF, 0.1725f}, FlangeCase{QM65, ISF, 0.1612f},
                                         FlangeCase{QM75, _B, 0.144f}, FlangeCase{QM75, _ZF, 0.152f},
                                         FlangeCase{QM75, _SF, 0.1725f}, FlangeCase{QM75, ISF, 0.1612f},
                                         FlangeCase{QML63IV, _SF, 0.144f}, FlangeCase{TAV72, _B, 0.097f}));

struct LimitCase {
    int robot_type;
    int dof;
    float max_deg[7];
    float min_deg[7];
    float vel_deg[7];
};

void PrintTo(const LimitCase& c, std::ostream* os) { *os << "type " << c.robot_type; }

class PublishedLimits : public testing::TestWithParam<LimitCase> {};

TEST_P(PublishedLimits, AreStoredInRadians) {
    const LimitCase& c = GetParam();
    ASSERT_EQ(libalgo_set_robot_and_sensor_type(c.robot_type, _B), 0);
    ASSERT_EQ(libalgo_get_rbt_dof(), c.dof);
    float max[ROBOT_DOF], min[ROBOT_DOF], vel[ROBOT_DOF], acc[ROBOT_DOF];
    libalgo_get_jointlim_max(max);
    libalgo_get_jointlim_min(min);
    libalgo_get_joint_vel_maxlim(vel);
    libalgo_get_joint_acc_maxlim(acc);
    for (int j = 0; j < c.dof; ++j) {
        EXPECT_NEAR(max[j], c.max_deg[j] * kDeg, 1e-6f) << j;
        EXPECT_NEAR(min[j], c.min_deg[j] * kDeg, 1e-6f) << j;
        EXPECT_NEAR(vel[j], c.vel_deg[j] * kDeg, 1e-6f) << j;
        EXPECT_NEAR(acc[j], 1000 * kDeg, 1e-5f) << j;
    }
    for (int j = c.dof; j < ROBOT_DOF; ++j) EXPECT_EQ(max[j], 0.0f);
}

INSTANTIATE_TEST_SUITE_P(
    Models, PublishedLimits,
    testing::Values(LimitCase{QM65, 6, {178, 130, 135, 178, 128, 360}, {-178, -130, -135, -178, -128, -360},
                              {180, 180, 225, 225, 225, 225}},
                    LimitCase{QM75, 7, {178, 130, 178, 135, 178, 128, 360},
                              {-178, -130, -178, -135, -178, -128, -360}, {180, 180, 225, 225, 225, 225, 225}},
                    LimitCase{TAV72, 7, {172, 105, 172, 55, 172, 120, 172}, {-172, -105, -172, -170, -172, -90, -172},
                              {180, 180, 180, 180, 225, 225, 225}},
                    LimitCase{UNIVERSAL, 7, {360, 360, 360, 360, 360, 360, 360},
                              {-360, -360, -360, -360, -360, -360, -360}, {300, 300, 300, 300, 300, 300, 300}}));

TEST(ModelDefaults, EveryModelsLimitsContainZeroAndAUsefulRange) {
    for (const int type : {QM65, QM75, QML63II, QML63III, LUX65, LUX62, TAV72, LUX63, UNIVERSAL, QML63IV, TAV72II}) {
        ASSERT_EQ(libalgo_set_robot_and_sensor_type(type, _B), 0) << type;
        float max[ROBOT_DOF], min[ROBOT_DOF], vel[ROBOT_DOF];
        libalgo_get_jointlim_max(max);
        libalgo_get_jointlim_min(min);
        libalgo_get_joint_vel_maxlim(vel);
        for (int j = 0; j < libalgo_get_rbt_dof(); ++j) {
            EXPECT_LT(min[j], 0.0f) << type << "/" << j;
            EXPECT_GT(max[j], 0.0f) << type << "/" << j;
            EXPECT_GT(max[j] - min[j], 2.0f) << type << "/" << j;
            EXPECT_GT(vel[j], 3.0f) << type << "/" << j;
        }
    }
}

TEST(ModelDefaults, UniversalHasSevenJointsAZeroTableAndNoDynamics) {
    ASSERT_EQ(libalgo_set_robot_and_sensor_type(UNIVERSAL, _SF), 0);
    EXPECT_EQ(libalgo_get_rbt_dof(), 7);
    DH dh;
    libalgo_get_dh_value(&dh);
    const DH zero{};
    EXPECT_EQ(std::memcmp(&dh, &zero, sizeof dh), 0);
    float dir[ROBOT_DOF], link[LINK_DYNAMICS_NUM];
    libalgo_get_joint_direction(dir);
    for (int j = 0; j < 7; ++j) EXPECT_EQ(dir[j], 1.0f);
    libalgo_get_link_dynamics_params(link);
    for (const float v : link) EXPECT_EQ(v, 0.0f);
}

TEST(ModelDefaults, JointDirectionsPerModel) {
    float dir[ROBOT_DOF];
    ASSERT_EQ(libalgo_set_robot_and_sensor_type(QM65, _B), 0);
    libalgo_get_joint_direction(dir);
    for (int j = 0; j < 6; ++j) EXPECT_EQ(dir[j], 1.0f);
    ASSERT_EQ(libalgo_set_robot_and_sensor_type(QML63II, _B), 0);
    libalgo_get_joint_direction(dir);
    EXPECT_EQ(dir[1], -1.0f);
    EXPECT_EQ(dir[0], 1.0f);
}

TEST(ModelDefaults, CartesianConfigurationDefaults) {
    libalgo_init();
    TcpConfig tcp;
    libalgo_get_tcp_config(&tcp);
    EXPECT_FLOAT_EQ(tcp.vel_max, 0.25f);
    EXPECT_FLOAT_EQ(tcp.acc_max, 1.6f);
    EXPECT_FLOAT_EQ(tcp.rot_vel_max, 0.6f);
    EXPECT_FLOAT_EQ(tcp.rot_acc_max, 4.0f);
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
    float read[3];
    libalgo_get_robot_install_angle(read);
    EXPECT_EQ(read[0], 0.0f);
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

TEST(DHTable, CompensationValuesRoundTripAndLeaveTheNominalTable) {
    libalgo_init();
    float in[4][ROBOT_DOF], out[4][ROBOT_DOF];
    for (int k = 0; k < 4; ++k)
        for (int j = 0; j < ROBOT_DOF; ++j) in[k][j] = 0.001f * (k + 1) * (j + 1);
    libalgo_set_dh_compensation_value(in[0], in[1], in[2], in[3]);
    libalgo_get_dh_compensation_value(out[0], out[1], out[2], out[3]);
    EXPECT_EQ(std::memcmp(in, out, sizeof in), 0);
    DH dh;
    libalgo_get_dh_value(&dh);
    EXPECT_EQ(dh.err_theta[7], in[3][7]);
    EXPECT_EQ(dh.d[0], 0.2405f);
}

struct InstallCase {
    float angle[3];
    float gravity[3];
};

void PrintTo(const InstallCase& c, std::ostream* os) {
    *os << "angles " << c.angle[0] << " " << c.angle[1] << " " << c.angle[2];
}

class InstallAngle : public testing::TestWithParam<InstallCase> {};

TEST_P(InstallAngle, RotatesGravityIntoTheBaseFrame) {
    libalgo_init();
    libalgo_set_robot_install_angle(GetParam().angle);
    float g[3];
    libalgo_get_robot_gravity_acc(g);
    for (int i = 0; i < 3; ++i) EXPECT_NEAR(g[i], GetParam().gravity[i], 1e-5f) << i;
    // Gravity is the installation rotation's transpose applied to (0, 0, -9.81).
    const Matrix r = libalgo_get_robot_install_angle_matrix();
    for (int i = 0; i < 3; ++i) EXPECT_NEAR(g[i], -9.81f * r.data[2][i], 1e-5f) << i;
    float back[3];
    libalgo_get_robot_install_angle(back);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(back[i], GetParam().angle[i]);
}

INSTANTIATE_TEST_SUITE_P(
    Angles, InstallAngle,
    testing::Values(InstallCase{{0, 0, 0}, {0, 0, -9.81f}}, InstallCase{{1.5707963f, 0, 0}, {0, -9.81f, 0}},
                    InstallCase{{0, 1.5707963f, 0}, {9.81f, 0, 0}}, InstallCase{{0, 0, 1.2f}, {0, 0, -9.81f}},
                    InstallCase{{0.3f, -0.4f, 0.5f},
                                {9.81f * std::sin(-0.4f), -9.81f * std::sin(0.3f) * std::cos(-0.4f),
                                 -9.81f * std::cos(0.3f) * std::cos(-0.4f)}}));

TEST(InstallAngleMatrix, ZeroAnglesGiveIdentity) {
    libalgo_init();
    const float zero[3] = {0, 0, 0};
    libalgo_set_robot_install_angle(zero);
    expect_identity(libalgo_get_robot_install_angle_matrix());
}

TEST(InstallAngleMatrix, IsRzRyRxWithoutTranslation) {
    libalgo_init();
    const float angle[3] = {0.0f, 0.0f, 1.5707963f};
    libalgo_set_robot_install_angle(angle);
    const Matrix m = libalgo_get_robot_install_angle_matrix();
    EXPECT_NEAR(m.data[1][0], 1.0f, 1e-6f);
    EXPECT_NEAR(m.data[0][1], -1.0f, 1e-6f);
    EXPECT_EQ(m.data[0][3], 0.0f);
    EXPECT_EQ(m.data[3][3], 1.0f);
}

TEST(ToolAndWorkFrames, ToolFrameIsKeptAsPoseAndMatrix) {
    libalgo_init();
    const Coord tool{0.01f, 0.02f, 0.1f, 0.0f, 0.0f, 1.5707963f};
    libalgo_set_tool_cs_params(tool);
    const Coord back = libalgo_get_tool_cs_params();
    EXPECT_EQ(std::memcmp(&back, &tool, sizeof tool), 0);
    const Matrix m = libalgo_get_tool_cs_matrix();
    EXPECT_EQ(m.data[2][3], 0.1f);
    EXPECT_NEAR(m.data[1][0], 1.0f, 1e-6f);
}

TEST(ToolAndWorkFrames, WorkFrameMatrixMapsBaseCoordinatesIntoTheWorkFrame) {
    libalgo_init();
    const Coord work{1.0f, 0.0f, 0.0f, 0.0f, 0.0f, 1.5707963f};
    libalgo_set_work_cs_params(work);
    const Matrix m = libalgo_get_work_cs_to_base_matrix();
    // The work origin itself maps to zero; a base point one metre further along base y maps to work x = 1.
    EXPECT_NEAR(m.data[0][0] * 1.0f + m.data[0][3], 0.0f, 1e-6f);
    EXPECT_NEAR(m.data[0][1] * 1.0f + m.data[0][0] * 1.0f + m.data[0][3], 1.0f, 1e-6f);
    const Coord back = libalgo_get_work_cs_params();
    EXPECT_EQ(back.x, 1.0f);
}

TEST(JointConfigRecord, IndexOutsideTheRecordIsRefused) {
    libalgo_init();
    JointConfig cfg{};
    EXPECT_EQ(libalgo_set_joint_config(-1, &cfg), -1);
    EXPECT_EQ(libalgo_set_joint_config(ROBOT_DOF, &cfg), -1);
    EXPECT_EQ(libalgo_get_joint_config(ROBOT_DOF, &cfg), -1);
    EXPECT_EQ(libalgo_get_joint_config(0, nullptr), -1);
}

TEST(JointConfigRecord, WholeRecordRoundTripsAndFeedsTheLimitGetters) {
    libalgo_init();
    JointConfig cfg{};
    for (int k = 0; k < 10; ++k) cfg.drive[k] = 0.5f * k;
    cfg.jointlim_max = 1.5f;
    cfg.jointlim_min = -1.25f;
    cfg.vel_maxlim = 3.0f;
    cfg.acc_maxlim = 20.0f;
    cfg.aux[0] = 7.0f, cfg.aux[1] = 8.0f, cfg.aux[2] = 9.0f;
    ASSERT_EQ(libalgo_set_joint_config(3, &cfg), 0);
    JointConfig back{};
    ASSERT_EQ(libalgo_get_joint_config(3, &back), 0);
    EXPECT_EQ(std::memcmp(&cfg, &back, sizeof cfg), 0);
    float max[ROBOT_DOF], min[ROBOT_DOF], vel[ROBOT_DOF], acc[ROBOT_DOF], model_max[ROBOT_DOF];
    libalgo_get_jointlim_max(max);
    libalgo_get_jointlim_min(min);
    libalgo_get_joint_vel_maxlim(vel);
    libalgo_get_joint_acc_maxlim(acc);
    libalgo_get_modeling_jointlim_max(model_max);
    EXPECT_EQ(max[3], 1.5f);
    EXPECT_EQ(min[3], -1.25f);
    EXPECT_EQ(vel[3], 3.0f);
    EXPECT_EQ(acc[3], 20.0f);
    EXPECT_EQ(model_max[3], 1.5f);
}

TEST(PlainSetters, StoreWhatTheyAreGiven) {
    libalgo_init();
    libalgo_set_control_loop_period(0.004f);
    EXPECT_EQ(libalgo_get_control_loop_period(), 0.004f);
    libalgo_set_system_all_dof(8);
    EXPECT_EQ(libalgo_get_system_all_dof(), 8);
    libalgo_set_is_avoid_Singularity(1);
    EXPECT_EQ(libalgo_get_is_avoid_Singularity(), 1);
    libalgo_set_safety_level(5);
    EXPECT_EQ(libalgo_get_safety_level(), 5);
    libalgo_set_dynamics_model_type(2);
    EXPECT_EQ(libalgo_get_dynamics_model_type(), 2);
    const float v[ROBOT_DOF] = {1, 2, 3, 4, 5, 6, 7, 8};
    float out[ROBOT_DOF];
    libalgo_set_user_collision_threshold(v);
    libalgo_get_user_collision_threshold(out);
    EXPECT_EQ(std::memcmp(v, out, sizeof v), 0);
    libalgo_set_jointlim_min(v);
    libalgo_get_jointlim_min(out);
    EXPECT_EQ(std::memcmp(v, out, sizeof v), 0);
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
    libalgo_update_feedback_data(first, second, first);
    libalgo_get_robot_feedback_data(q, dq, ddq);
    EXPECT_EQ(dq[4], 2.0f);
}

}  // namespace
