// The hand-expanded flange routines against the plain product of their link transforms.
#include <gtest/gtest.h>

#include <cmath>
#include <ostream>
#include <string>

#include "kinematics_reference.h"
#include "libalgo_interface.h"
#include "qman_kinematics.h"

namespace {

using FlangeRoutine = Matrix (*)(const DH*, const float*);

struct ModelCase {
    const char* name;
    int type;
    FlangeRoutine routine;
    bool standard_convention;
};

void PrintTo(const ModelCase& c, std::ostream* os) { *os << c.name; }

const ModelCase kModels[] = {
    {"QM65", QM65, forward_kinematics_qm65, false},
    {"QM75", QM75, forward_kinematics_qm75, true},
    {"QML63II", QML63II, forward_kinematics_qml63_2, false},
    {"QML63IV", QML63IV, forward_kinematics_qml63_2, false},
    {"QML63III", QML63III, forward_kinematics_qml63_3, false},
    {"LUX65", LUX65, forward_kinematics_lux6, false},
    {"LUX62", LUX62, forward_kinematics_lux6, false},
    {"LUX63", LUX63, forward_kinematics_lux6, false},
    {"TAV72", TAV72, forward_kinematics_tav7, false},
    {"TAV72II", TAV72II, forward_kinematics_tav7, false},
};

constexpr double kTolerance = 1e-5;

class ClosedFormFlange : public testing::TestWithParam<ModelCase> {
protected:
    void SetUp() override { ASSERT_EQ(libalgo_set_robot_and_sensor_type(GetParam().type, _B), 0); }

    reference::Mat4 link_product(const DH& dh, const float* q) const {
        const int dof = libalgo_get_rbt_dof();
        return GetParam().standard_convention ? reference::standard_chain(dh, q, dof)
                                              : reference::modified_chain(dh, q, dof);
    }
};

TEST_P(ClosedFormFlange, EqualsProductOfLinkTransformsForRandomJoints) {
    DH dh;
    libalgo_get_dh_value(&dh);
    for (const auto& q : reference::random_joints_within_limits(1000, 7)) {
        const Matrix m = GetParam().routine(&dh, q.data());
        ASSERT_LT(reference::max_difference(m, link_product(dh, q.data())), kTolerance)
            << "q = " << q[0] << " " << q[1] << " " << q[2] << " " << q[3] << " " << q[4] << " " << q[5] << " " << q[6];
        ASSERT_EQ(m.irow, 4);
        ASSERT_EQ(m.iline, 4);
    }
}

TEST_P(ClosedFormFlange, ModelDispatchPicksTheModelsRoutine) {
    DH dh;
    libalgo_get_dh_value(&dh);
    for (const auto& q : reference::random_joints_within_limits(20, 11)) {
        const Matrix expected = GetParam().routine(&dh, q.data());
        const Matrix dispatched = forward_kinematics_model(GetParam().type, &dh, q.data());
        for (int i = 0; i < 4; ++i)
            for (int j = 0; j < 4; ++j) ASSERT_EQ(dispatched.data[i][j], expected.data[i][j]);
    }
}

TEST_P(ClosedFormFlange, PicksUpAChangedTableAtOnce) {
    DH dh;
    libalgo_get_dh_value(&dh);
    const int last = libalgo_get_rbt_dof() - 1;
    const float q[ROBOT_DOF] = {0.1f, 0.2f, 0.3f, -0.4f, 0.5f, 0.6f, 0.7f};
    const Matrix before = GetParam().routine(&dh, q);
    dh.d[last] += 0.05f;
    const Matrix after = GetParam().routine(&dh, q);
    EXPECT_LT(reference::max_difference(after, link_product(dh, q)), kTolerance);
    // A longer last link moves the flange 5 cm along its own z axis.
    for (int i = 0; i < 3; ++i) EXPECT_NEAR(after.data[i][3] - before.data[i][3], 0.05f * before.data[i][2], 1e-6);
}

INSTANTIATE_TEST_SUITE_P(EveryModel, ClosedFormFlange, testing::ValuesIn(kModels),
                         [](const testing::TestParamInfo<ModelCase>& info) { return std::string(info.param.name); });

TEST(ClosedFormFlangeSensor, EverySensorLengthStillMatchesTheLinkProduct) {
    for (const int type : {QM65, QM75, QML63II, QML63III, LUX65, LUX63, TAV72II})
        for (const int sensor : {_ZF, _SF, ISF}) {
            ASSERT_EQ(libalgo_set_robot_and_sensor_type(type, sensor), 0);
            DH dh;
            libalgo_get_dh_value(&dh);
            const int dof = libalgo_get_rbt_dof();
            for (const auto& q : reference::random_joints_within_limits(50, 3)) {
                const Matrix m = forward_kinematics_model(type, &dh, q.data());
                const auto ref = type == QM75 ? reference::standard_chain(dh, q.data(), dof)
                                              : reference::modified_chain(dh, q.data(), dof);
                ASSERT_LT(reference::max_difference(m, ref), kTolerance) << type << "/" << sensor;
            }
        }
}

// The flange of a model with every joint at zero, 0.8505 m straight above the base, and its rotation.
void expect_upright_at_zero(int type, FlangeRoutine routine, const float (&rotation)[3][3]) {
    ASSERT_EQ(libalgo_set_robot_and_sensor_type(type, _B), 0);
    DH dh;
    libalgo_get_dh_value(&dh);
    const float q[ROBOT_DOF] = {};
    const Matrix m = routine(&dh, q);
    EXPECT_NEAR(m.data[0][3], 0.0f, 1e-6);
    EXPECT_NEAR(m.data[1][3], 0.0f, 1e-6);
    EXPECT_NEAR(m.data[2][3], 0.8505f, 1e-6);
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) EXPECT_NEAR(m.data[i][j], rotation[i][j], 1e-6) << i << "," << j;
}

TEST(ZeroJoints, QM65FlangeStandsStraightUpTurnedHalfAboutZ) {
    const float rz_pi[3][3] = {{-1, 0, 0}, {0, -1, 0}, {0, 0, 1}};
    expect_upright_at_zero(QM65, forward_kinematics_qm65, rz_pi);
}

TEST(ZeroJoints, QM75FlangeStandsStraightUpUnrotated) {
    const float identity[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    expect_upright_at_zero(QM75, forward_kinematics_qm75, identity);
}

TEST(ZeroJoints, TAVArmsStandStraightUp) {
    for (const int type : {TAV72, TAV72II}) {
        ASSERT_EQ(libalgo_set_robot_and_sensor_type(type, _B), 0);
        DH dh;
        libalgo_get_dh_value(&dh);
        const float q[ROBOT_DOF] = {};
        const Matrix m = forward_kinematics_tav7(&dh, q);
        EXPECT_NEAR(m.data[2][3], dh.d[0] + dh.d[2] + dh.d[4] + dh.d[6], 1e-6);
        EXPECT_NEAR(m.data[2][2], 1.0f, 1e-6);
    }
}

}  // namespace
