// The hand-expanded flange routines against the plain product of their link transforms and,
// for QM65 and QM75, against KDL chains built from the same tables.
#include <gtest/gtest.h>

#include <kdl/chainfksolverpos_recursive.hpp>
#include <string>

#include "kinematics_kdl_chains.h"
#include "kinematics_reference.h"
#include "libalgo_interface.h"
#include "qman_kinematics.h"

namespace {

using FlangeRoutine = Matrix (*)(const DH*, const float*);

struct ModelCase {
    const char* name;
    int type;
    int sensor;  // a flange sensor lengthens the last link, which every routine must read from the table
    FlangeRoutine routine;
};

const ModelCase kModels[] = {
    {"QM65", QM65, _B, forward_kinematics_qm65},
    {"QM65_SF", QM65, _SF, forward_kinematics_qm65},
    {"QM75", QM75, _B, forward_kinematics_qm75},
    {"QM75_ISF", QM75, ISF, forward_kinematics_qm75},
    {"QML63II", QML63II, _B, forward_kinematics_qml63_2},
    {"QML63II_ZF", QML63II, _ZF, forward_kinematics_qml63_2},
    {"QML63IV", QML63IV, _B, forward_kinematics_qml63_2},
    {"QML63III", QML63III, _B, forward_kinematics_qml63_3},
    {"QML63III_SF", QML63III, _SF, forward_kinematics_qml63_3},
    {"LUX65", LUX65, _B, forward_kinematics_lux6},
    {"LUX62", LUX62, _B, forward_kinematics_lux6},
    {"LUX63_ISF", LUX63, ISF, forward_kinematics_lux6},
    {"TAV72", TAV72, _B, forward_kinematics_tav7},
    {"TAV72II_ZF", TAV72II, _ZF, forward_kinematics_tav7},
};

class Flange : public testing::TestWithParam<ModelCase> {
protected:
    void SetUp() override {
        ASSERT_EQ(libalgo_set_robot_and_sensor_type(GetParam().type, GetParam().sensor), 0);
        libalgo_get_dh_value(&dh_);
        dof_ = libalgo_get_rbt_dof();
    }
    DH dh_{};
    int dof_ = 0;
};

TEST_P(Flange, EqualsProductOfLinkTransformsForRandomJointsAndIsTheDispatchedRoutine) {
    for (const auto& q : reference::random_joints_within_limits(1000, 7)) {
        const Matrix m = GetParam().routine(&dh_, q.data());
        const auto ref = reference::dh_chain(dh_, q.data(), dof_, GetParam().type == QM75);
        ASSERT_LT(reference::max_difference(m, ref), 1e-5)
            << "q = " << q[0] << " " << q[1] << " " << q[2] << " " << q[3] << " " << q[4] << " " << q[5]
            << " " << q[6];
        ASSERT_TRUE(m.irow == 4 && m.iline == 4);
        ASSERT_LT(reference::max_difference(forward_kinematics_model(GetParam().type, &dh_, q.data()), ref),
                  1e-5);
    }
}

const auto kName = [](const testing::TestParamInfo<ModelCase>& info) { return std::string(info.param.name); };

INSTANTIATE_TEST_SUITE_P(EveryModel, Flange, testing::ValuesIn(kModels), kName);

class AgainstKdl : public Flange {};

TEST_P(AgainstKdl, FlangeMatchesTheKdlChainForRandomJoints) {
    const KDL::Chain chain =
        GetParam().type == QM75 ? kdl_chains::standard_dh(dh_, dof_) : kdl_chains::modified_dh(dh_, dof_);
    ASSERT_EQ(static_cast<int>(chain.getNrOfJoints()), dof_);
    KDL::ChainFkSolverPos_recursive solver(chain);
    for (const auto& q : reference::random_joints_within_limits(300, 21)) {
        KDL::Frame f;
        ASSERT_GE(solver.JntToCart(kdl_chains::joint_array(q.data(), dof_), f), 0);
        const Matrix m = forward_kinematics_model(GetParam().type, &dh_, q.data());
        for (int i = 0; i < 3; ++i) {
            for (int j = 0; j < 3; ++j) ASSERT_NEAR(m.data[i][j], f.M(i, j), 1e-5);
            ASSERT_NEAR(m.data[i][3], f.p(i), 1e-5);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(QM65AndQM75, AgainstKdl,
                         testing::Values(kModels[0], kModels[1], kModels[2], kModels[3]), kName);

TEST(ZeroJoints, QM65AndQM75StandStraightUp) {
    // QM65's flange is turned half a turn about z, QM75's is not.
    const struct {
        int type;
        FlangeRoutine routine;
        float xx;
    } cases[] = {{QM65, forward_kinematics_qm65, -1.0f}, {QM75, forward_kinematics_qm75, 1.0f}};
    for (const auto& c : cases) {
        ASSERT_EQ(libalgo_set_robot_and_sensor_type(c.type, _B), 0);
        DH dh;
        libalgo_get_dh_value(&dh);
        const float q[ROBOT_DOF] = {};
        const Matrix m = c.routine(&dh, q);
        const float expected[3][4] = {{c.xx, 0, 0, 0}, {0, c.xx, 0, 0}, {0, 0, 1, 0.8505f}};
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 4; ++j)
                EXPECT_NEAR(m.data[i][j], expected[i][j], 1e-6) << c.type << ": " << i << "," << j;
    }
}

TEST(ModelDispatch, UnknownTypeFallsToTheQM65Routine) {
    ASSERT_EQ(libalgo_set_robot_and_sensor_type(QM65, _B), 0);
    DH dh;
    libalgo_get_dh_value(&dh);
    const float q[ROBOT_DOF] = {0.3f, -0.5f, 0.9f, 1.1f, -0.7f, 2.0f};
    EXPECT_LT(
        reference::max_difference(forward_kinematics_model(42, &dh, q), reference::modified_chain(dh, q, 6)),
        1e-5);
}

}  // namespace
