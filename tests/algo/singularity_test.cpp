// Singularity analysis: the Jacobian's smallest singular value and the shoulder, elbow and
// wrist measures, through the public degree-input functions.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <vector>

#include "qm_interface.h"

namespace {

using Joints = std::array<float, ARM_DOF>;

class Singularity : public ::testing::Test {
protected:
    void SetUp() override {
        qm_algo_init_sys_data(QM_MODEL_QM_65_E, QM_MODEL_QM_B_E);
        qm_algo_kin_singularity_thresholds_init();
    }
    void TearDown() override { qm_algo_kin_singularity_thresholds_init(); }
};

struct Case {
    const char* what;
    qm_robot_arm_model_e model;
    Joints q;
    int expected;
    float distance;  // of the reported measure; negative: not checked
};

TEST_F(Singularity, KnownArmsReportTheirNearestSingularity) {
    const std::vector<Case> cases = {
        {"QM65 clear", QM_MODEL_QM_65_E, {0, 30, 60, 0, 45, 0}, 0, -1},
        {"QM65 wrist centre on the first axis", QM_MODEL_QM_65_E, {0, 0, 0, 0, 45, 0}, -1, 0.0f},
        {"QM65 stretched elbow", QM_MODEL_QM_65_E, {0, 30, 0, 0, 45, 0}, -2, 0.0f},
        {"QM65 elbow 3 degrees from stretched", QM_MODEL_QM_65_E, {0, 30, 3, 0, 45, 0}, -2,
         static_cast<float>(3 * M_PI / 180)},
        {"QM65 wrist axes aligned", QM_MODEL_QM_65_E, {0, 30, 60, 0, 0, 0}, -3, 0.0f},
        {"QM65 wrist 4 degrees off", QM_MODEL_QM_65_E, {0, 30, 60, 0, 4, 0}, -3, static_cast<float>(4 * M_PI / 180)},
        {"QM75 clear", QM_MODEL_QM_75_E, {0, 30, 0, 60, 0, 45, 0}, 0, -1},
        {"QM75 stretched elbow", QM_MODEL_QM_75_E, {0, 30, 0, 0, 0, 45, 0}, -2, 0.0f},
        {"QM75 wrist axes aligned", QM_MODEL_QM_75_E, {0, 30, 0, 60, 0, 0, 0}, -3, 0.0f},
        {"LUX65 clear", QM_MODEL_LUX_65_E, {0, -60, 60, -90, 45, 0}, 0, -1},
        {"LUX65 stretched elbow", QM_MODEL_LUX_65_E, {0, -60, 0, -90, 45, 0}, -2, 0.0f},
        {"LUX65 wrist axes aligned", QM_MODEL_LUX_65_E, {0, -60, 60, -90, 0, 0}, -3, 0.0f},
        {"TAV72 stretched up", QM_MODEL_TAV_72_E, {0, 0, 0, 0, 0, 45, 0}, -1, 0.0f},
        {"TAV72 clear", QM_MODEL_TAV_72_E, {0, -30, 0, -60, 0, 45, 0}, 0, 0.489f},
        {"TAV72 elbow folding the wrist past the first axis", QM_MODEL_TAV_72_E, {0, 30, 0, -60, 0, 45, 0}, -1, -1},
    };
    for (const Case& c : cases) {
        qm_algo_init_sys_data(c.model, QM_MODEL_QM_B_E);
        float distance = -1.0f;
        EXPECT_EQ(qm_algo_kin_robot_singularity_analyse(c.q.data(), &distance), c.expected) << c.what;
        if (c.distance >= 0.0f) {
            EXPECT_NEAR(distance, c.distance, 1e-4f) << c.what;
        }
    }
}

TEST_F(Singularity, ShoulderOffsetIsMeasuredInTheArmPlane) {
    // LUX65 carries its wrist 0.134 m beside the arm plane: that offset is no clearance.
    // Upper arm level, forearm hanging down, the second wrist link pointing back: the
    // measure is the 0.425 m upper arm less the 0.0997 m wrist link.
    qm_algo_init_sys_data(QM_MODEL_LUX_65_E, QM_MODEL_QM_B_E);
    const Joints q = {0, -90, 90, -90, 45, 0};
    float distance = -1.0f;
    EXPECT_EQ(qm_algo_kin_robot_singularity_analyse(q.data(), &distance), 0);
    EXPECT_NEAR(distance, 0.425f - 0.0997f, 1e-4f);
}

TEST_F(Singularity, ClearConfigurationReportsTheShoulderDistance) {
    const Joints q = {0, 90, 90, 0, 45, 0};  // upper arm level: the wrist hangs 0.256 m out
    float distance = -1.0f;
    EXPECT_EQ(qm_algo_kin_robot_singularity_analyse(q.data(), &distance), 0);
    EXPECT_NEAR(distance, 0.256f, 1e-4f);
}

TEST_F(Singularity, ThresholdsDecideAndInitRestoresTheDefaults) {
    const Joints q = {0, 30, 60, 0, 8, 0};  // wrist 8 degrees (0.14 rad) from aligned
    EXPECT_EQ(qm_algo_kin_robot_singularity_analyse(q.data(), nullptr), 0);
    qm_algo_kin_set_singularity_thresholds(0.1f, 0.2f, 0.05f);
    EXPECT_EQ(qm_algo_kin_robot_singularity_analyse(q.data(), nullptr), -3);

    float qe = 0, qw = 0, d = 0;
    qm_algo_kin_get_singularity_thresholds(&qe, &qw, &d);
    EXPECT_FLOAT_EQ(qe, 0.1f);
    EXPECT_FLOAT_EQ(qw, 0.2f);
    EXPECT_FLOAT_EQ(d, 0.05f);

    qm_algo_kin_singularity_thresholds_init();
    qm_algo_kin_get_singularity_thresholds(&qe, &qw, &d);
    EXPECT_FLOAT_EQ(qe, 0.1f);
    EXPECT_FLOAT_EQ(qw, 0.1f);
    EXPECT_FLOAT_EQ(d, 0.05f);
}

TEST_F(Singularity, ShoulderIsCheckedBeforeElbowAndWrist) {
    // Stretched straight up: every singularity at once; the shoulder is reported.
    float distance = -1.0f;
    EXPECT_EQ(qm_algo_kin_robot_singularity_analyse(Joints{}.data(), &distance), -1);
    EXPECT_NEAR(distance, 0.0f, 1e-6f);
}

TEST_F(Singularity, UniversalFormComparesTheSmallestSingularValueWithTheLimit) {
    const Joints clear = {0, 30, 60, 0, 45, 0};
    const Joints wrist = {0, 30, 60, 0, 0, 0};
    EXPECT_EQ(qm_algo_universal_singularity_analyse(clear.data(), 0.01f), 0);
    EXPECT_EQ(qm_algo_universal_singularity_analyse(wrist.data(), 0.01f), -1);
    EXPECT_EQ(qm_algo_universal_singularity_analyse(clear.data(), 10.0f), -1);
}

TEST_F(Singularity, UniversalFormCoversSevenJointArms) {
    qm_algo_init_sys_data(QM_MODEL_QM_75_E, QM_MODEL_QM_B_E);
    const Joints clear = {10, 30, 20, 60, 10, 45, 0};
    const Joints elbow = {10, 30, 20, 0, 10, 45, 0};  // no joint can move the wrist centre radially
    EXPECT_EQ(qm_algo_universal_singularity_analyse(clear.data(), 0.01f), 0);
    EXPECT_EQ(qm_algo_universal_singularity_analyse(elbow.data(), 0.01f), -1);
}

}  // namespace
