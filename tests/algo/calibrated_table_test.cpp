// Calibrated DH tables: every entry of a model's table counts. Each entry is moved in turn
// (1 mm for a length, 0.01 rad for a twist or an offset, both ways); forward kinematics must
// equal KDL's chain of the moved table, and inverse kinematics of KDL's flange must get back
// to the joints that made it.
#include <gtest/gtest.h>

#include <kdl/chainfksolverpos_recursive.hpp>
#include <string>
#include <vector>

#include "inverse_kinematics_test_support.h"
#include "kinematics_kdl_chains.h"

namespace {

struct Model {
    const char* name;
    RobotType type;
};

const Model kModels[] = {{"QM65", QM65},   {"QML63II", QML63II}, {"QML63III", QML63III}, {"QML63IV", QML63IV},
                         {"LUX65", LUX65}, {"LUX62", LUX62},     {"LUX63", LUX63},       {"QM75", QM75},
                         {"TAV72", TAV72}, {"TAV72II", TAV72II}};

using Row = float (DH::*)[ROBOT_DOF];

struct Perturbed {
    DH dh;
    std::string what;
};

std::vector<Perturbed> perturbed_tables(const DH& nominal, int dof) {
    const struct {
        Row row;
        const char* name;
        float step;
    } rows[] = {{&DH::d, "d", 1e-3f},
                {&DH::a, "a", 1e-3f},
                {&DH::alpha, "alpha", 0.01f},
                {&DH::offset, "offset", 0.01f}};
    std::vector<Perturbed> tables;
    for (const auto& r : rows) {
        for (int j = 0; j < dof; ++j) {
            for (const float sign : {1.0f, -1.0f}) {
                Perturbed p{nominal,
                            std::string(r.name) + "[" + std::to_string(j) + (sign > 0 ? "]+" : "]-")};
                (p.dh.*r.row)[j] += sign * r.step;
                tables.push_back(p);
            }
        }
    }
    return tables;
}

// The flange of KDL's chain for table at q, as a library Matrix.
Matrix kdl_flange(const DH& table, int dof, bool standard, const float* q) {
    const KDL::Chain chain =
        standard ? kdl_chains::standard_dh(table, dof) : kdl_chains::modified_dh(table, dof);
    KDL::ChainFkSolverPos_recursive solver(chain);
    KDL::Frame f;
    solver.JntToCart(kdl_chains::joint_array(q, dof), f);
    Matrix m{};
    m.irow = m.iline = 4;
    for (int i = 0; i < 3; ++i) {
        for (int k = 0; k < 3; ++k) m.data[i][k] = static_cast<float>(f.M(i, k));
        m.data[i][3] = static_cast<float>(f.p(i));
    }
    m.data[3][3] = 1.0f;
    return m;
}

class CalibratedTable : public ::testing::TestWithParam<Model> {
protected:
    void SetUp() override {
        ASSERT_EQ(libalgo_set_robot_and_sensor_type(GetParam().type, _B), 0);
        ikine_set_7dof_solver_search_strategy(0);
        ikine_set_solution_range_qm75(Q_STEP_MAX);
        libalgo_get_dh_value(&nominal_);
        dof_ = libalgo_get_rbt_dof();
    }
    void TearDown() override { libalgo_set_dh_params(&nominal_); }

    DH nominal_{};
    int dof_ = 0;
};

TEST_P(CalibratedTable, ForwardKinematicsEqualsTheChainOfEveryMovedTable) {
    const auto joints = reference::random_joints_within_limits(20, 3u);
    for (const Perturbed& table : perturbed_tables(nominal_, dof_)) {
        SCOPED_TRACE(table.what);
        libalgo_set_dh_params(&table.dh);
        const KDL::Chain chain = GetParam().type == QM75 ? kdl_chains::standard_dh(table.dh, dof_)
                                                         : kdl_chains::modified_dh(table.dh, dof_);
        KDL::ChainFkSolverPos_recursive kdl(chain);
        for (const auto& q : joints) {
            KDL::Frame f;
            ASSERT_GE(kdl.JntToCart(kdl_chains::joint_array(q.data(), dof_), f), 0);
            const Matrix m = forward_kinematics_e(q.data());
            for (int i = 0; i < 3; ++i) {
                ASSERT_NEAR(m.data[i][3], f.p(i), 1e-6) << "row " << i;
                for (int k = 0; k < 3; ++k) ASSERT_NEAR(m.data[i][k], f.M(i, k), 2e-6) << i << "," << k;
            }
        }
    }
}

TEST_P(CalibratedTable, InverseKinematicsReturnsToTheJointsOfTheTarget) {
    const std::vector<Perturbed> tables = perturbed_tables(nominal_, dof_);
    const int per_table = (1000 / ik_test::kSlowBuildDivisor + static_cast<int>(tables.size()) - 1) /
                          static_cast<int>(tables.size());
    unsigned seed = 40u;
    for (const Perturbed& table : tables) {
        SCOPED_TRACE(table.what);
        libalgo_set_dh_params(&table.dh);
        for (const auto& q : reference::random_joints_within_limits(per_table, seed++)) {
            const bool standard = GetParam().type == QM75;
            const Matrix target = kdl_flange(table.dh, dof_, standard, q.data());
            const Pose pose = transformation_matrix_to_pose(target);
            float out[ROBOT_DOF] = {};
            ASSERT_EQ(inverse_kinematics(q.data(), &pose, out, USE_QUAT), IKINE_SUCCESSFUL);
            const Matrix reached = kdl_flange(table.dh, dof_, standard, out);
            for (int i = 0; i < 3; ++i) {
                ASSERT_NEAR(reached.data[i][3], target.data[i][3], 3e-6) << "row " << i;
                for (int k = 0; k < 3; ++k)
                    ASSERT_NEAR(reached.data[i][k], target.data[i][k], 3e-6) << i << "," << k;
            }
            // 1e-2 rad: near a singular configuration the single-precision target pins the joints
            // only to its rounding over the distance to the singularity.
            ASSERT_LT(ik_test::max_joint_difference(out, q.data(), dof_), 1e-2);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(EveryModel, CalibratedTable, ::testing::ValuesIn(kModels),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
