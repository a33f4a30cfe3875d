// Independent cross-check of QM65 and QM75 against KDL chains built from the same tables.
#include <gtest/gtest.h>

#include <kdl/chainfksolverpos_recursive.hpp>

#include "kinematics_kdl_chains.h"
#include "kinematics_reference.h"
#include "libalgo_interface.h"
#include "qman_kinematics.h"

namespace {

double max_difference(const Matrix& m, const KDL::Frame& f) {
    double worst = 0.0;
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) worst = std::fmax(worst, std::fabs(m.data[i][j] - f.M(i, j)));
        worst = std::fmax(worst, std::fabs(m.data[i][3] - f.p(i)));
    }
    return worst;
}

struct KdlCase {
    const char* name;
    int type;
    int sensor;
};

void PrintTo(const KdlCase& c, std::ostream* os) { *os << c.name; }

class AgainstKdl : public testing::TestWithParam<KdlCase> {};

TEST_P(AgainstKdl, FlangeMatchesTheKdlChainForRandomJoints) {
    ASSERT_EQ(libalgo_set_robot_and_sensor_type(GetParam().type, GetParam().sensor), 0);
    DH dh;
    libalgo_get_dh_value(&dh);
    const int dof = libalgo_get_rbt_dof();
    const KDL::Chain chain = GetParam().type == QM75 ? kdl_chains::standard_dh(dh, dof) : kdl_chains::modified_dh(dh, dof);
    ASSERT_EQ(static_cast<int>(chain.getNrOfJoints()), dof);
    KDL::ChainFkSolverPos_recursive solver(chain);
    for (const auto& q : reference::random_joints_within_limits(300, 21)) {
        KDL::Frame f;
        ASSERT_GE(solver.JntToCart(kdl_chains::joint_array(q.data(), dof), f), 0);
        ASSERT_LT(max_difference(forward_kinematics_model(GetParam().type, &dh, q.data()), f), 1e-5);
    }
}

INSTANTIATE_TEST_SUITE_P(Models, AgainstKdl,
                         testing::Values(KdlCase{"QM65", QM65, _B}, KdlCase{"QM65_SF", QM65, _SF},
                                         KdlCase{"QM75", QM75, _B}, KdlCase{"QM75_ISF", QM75, ISF}),
                         [](const testing::TestParamInfo<KdlCase>& info) { return std::string(info.param.name); });

}  // namespace
