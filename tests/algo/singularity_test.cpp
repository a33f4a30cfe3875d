// Singularity analysis: the Jacobian's smallest singular value and the shoulder, elbow and
// wrist measures, through the public degree-input functions.
#include <gtest/gtest.h>

#include <array>
#include <cmath>

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

constexpr qm_robot_arm_model_e kQM65 = QM_MODEL_QM_65_E, kQM75 = QM_MODEL_QM_75_E;
constexpr qm_robot_arm_model_e kLUX65 = QM_MODEL_LUX_65_E, kTAV72 = QM_MODEL_TAV_72_E;
constexpr float kDeg = static_cast<float>(M_PI / 180);

TEST_F(Singularity, KnownArmsReportTheirNearestSingularity) {
    const struct {
        const char* what;
        qm_robot_arm_model_e model;
        Joints q;
        int expected;
        float distance;  // of the reported measure; negative: not checked
    } cases[] = {
        {"QM65 clear", kQM65, {0, 30, 60, 0, 45, 0}, 0, -1},
        {"QM65 upper arm level: the wrist hangs out", kQM65, {0, 90, 90, 0, 45, 0}, 0, 0.256f},
        {"QM65 stretched up: all of them, the shoulder reported", kQM65, {}, -1, 0.0f},
        {"QM65 wrist centre on the first axis", kQM65, {0, 0, 0, 0, 45, 0}, -1, 0.0f},
        {"QM65 stretched elbow", kQM65, {0, 30, 0, 0, 45, 0}, -2, 0.0f},
        {"QM65 elbow 3 degrees from stretched", kQM65, {0, 30, 3, 0, 45, 0}, -2, 3 * kDeg},
        {"QM65 wrist axes aligned", kQM65, {0, 30, 60, 0, 0, 0}, -3, 0.0f},
        {"QM65 wrist 4 degrees off", kQM65, {0, 30, 60, 0, 4, 0}, -3, 4 * kDeg},
        {"QM75 clear", kQM75, {0, 30, 0, 60, 0, 45, 0}, 0, -1},
        {"QM75 stretched elbow", kQM75, {0, 30, 0, 0, 0, 45, 0}, -2, 0.0f},
        {"QM75 wrist axes aligned", kQM75, {0, 30, 0, 60, 0, 0, 0}, -3, 0.0f},
        {"LUX65 clear", kLUX65, {0, -60, 60, -90, 45, 0}, 0, -1},
        // The wrist's 0.134 m beside the arm plane is no clearance: the measure is the 0.425 m
        // upper arm less the 0.0997 m wrist link pointing back.
        {"LUX65 shoulder in the arm plane", kLUX65, {0, -90, 90, -90, 45, 0}, 0, 0.425f - 0.0997f},
        {"LUX65 stretched elbow", kLUX65, {0, -60, 0, -90, 45, 0}, -2, 0.0f},
        {"LUX65 wrist axes aligned", kLUX65, {0, -60, 60, -90, 0, 0}, -3, 0.0f},
        {"TAV72 stretched up", kTAV72, {0, 0, 0, 0, 0, 45, 0}, -1, 0.0f},
        {"TAV72 clear", kTAV72, {0, -30, 0, -60, 0, 45, 0}, 0, 0.489f},
        {"TAV72 elbow folding the wrist past the first axis", kTAV72, {0, 30, 0, -60, 0, 45, 0}, -1, -1},
    };
    for (const auto& c : cases) {
        qm_algo_init_sys_data(c.model, QM_MODEL_QM_B_E);
        float distance = -1.0f;
        EXPECT_EQ(qm_algo_kin_robot_singularity_analyse(c.q.data(), &distance), c.expected) << c.what;
        if (c.distance >= 0.0f) {
            EXPECT_NEAR(distance, c.distance, 1e-4f) << c.what;
        }
    }
}

TEST_F(Singularity, ThresholdsDecideAndInitRestoresTheDefaults) {
    const Joints q = {0, 30, 60, 0, 8, 0};  // wrist 8 degrees (0.14 rad) from aligned
    EXPECT_EQ(qm_algo_kin_robot_singularity_analyse(q.data(), nullptr), 0);
    qm_algo_kin_set_singularity_thresholds(0.1f, 0.2f, 0.05f);
    EXPECT_EQ(qm_algo_kin_robot_singularity_analyse(q.data(), nullptr), -3);

    float qe = 0, qw = 0, d = 0;
    qm_algo_kin_get_singularity_thresholds(&qe, &qw, &d);
    EXPECT_FLOAT_EQ(qw, 0.2f);

    qm_algo_kin_singularity_thresholds_init();
    qm_algo_kin_get_singularity_thresholds(&qe, &qw, &d);
    EXPECT_FLOAT_EQ(qe, 0.1f);
    EXPECT_FLOAT_EQ(qw, 0.1f);
    EXPECT_FLOAT_EQ(d, 0.05f);
}

TEST_F(Singularity, UniversalFormComparesTheSmallestSingularValueWithTheLimit) {
    const struct {
        qm_robot_arm_model_e model;
        Joints q;
        float limit;
        int expected;
    } cases[] = {
        {kQM65, {0, 30, 60, 0, 45, 0}, 0.01f, 0},
        {kQM65, {0, 30, 60, 0, 0, 0}, 0.01f, -1},  // wrist axes aligned
        {kQM65, {0, 30, 60, 0, 45, 0}, 10.0f, -1},
        {kQM75, {10, 30, 20, 60, 10, 45, 0}, 0.01f, 0},
        {kQM75, {10, 30, 20, 0, 10, 45, 0}, 0.01f, -1},  // no joint moves the wrist centre radially
    };
    for (const auto& c : cases) {
        qm_algo_init_sys_data(c.model, QM_MODEL_QM_B_E);
        EXPECT_EQ(qm_algo_universal_singularity_analyse(c.q.data(), c.limit), c.expected)
            << c.q[3] << " " << c.limit;
    }
}

}  // namespace
