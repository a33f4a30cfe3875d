// The seven-joint search's floor over a run of arm angles must lie under the distance from the
// reference of every branch within the limits at the run's arm angles: a run floor above one
// skips an arm angle that could hold the answer.

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "inv_kinematics_arm_angle_branches.h"
#include "inv_kinematics_arm_angle_floor.h"
#include "inverse_kinematics_test_support.h"
#include "kinematics_reference.h"

namespace {

using algo::ik::CostFloor;
using algo::lanes::F4;

double squared_distance(const float* q, const float* ref) {
    double sum = 0.0;
    for (int j = 0; j < 7; ++j) sum += (double(q[j]) - ref[j]) * (double(q[j]) - ref[j]);
    return sum;
}

class ArmAngleFloor : public ::testing::TestWithParam<RobotType> {};

TEST_P(ArmAngleFloor, RunFloorsLieUnderEveryBranchAtTheirArmAngles) {
    ASSERT_EQ(libalgo_set_robot_and_sensor_type(GetParam(), _B), 0);
    struct Row {
        const char* targets;
        int near_zero;  // a middle joint of the target brought near its singularity, or -1
    };
    const Row rows[] = {{"within limits", -1}, {"shoulder near singular", 1}, {"wrist near singular", 5}};
    const int count = 150 / ik_test::kSlowBuildDivisor;
    const algo::ik::ModelSolver model = algo::ik::model_solver(GetParam());
    for (const Row& row : rows) {
        std::mt19937 rng(5u + GetParam());
        std::uniform_real_distribution<float> small(-0.06f, 0.06f), arm(-3.0f, 3.0f);
        std::uniform_int_distribution<int> steps(2, 64);
        auto targets = reference::random_joints_within_limits(count, 3u + GetParam());
        const auto refs = reference::random_joints_within_limits(count, 4u + GetParam());
        for (int i = 0; i < count; ++i) {
            if (row.near_zero >= 0) targets[i][row.near_zero] = small(rng);
            const algo::ik::SolveInput in = algo::ik::make_solve_input(refs[i].data(), model);
            const algo::ik::ArmAngleTarget t =
                algo::ik::arm_angle_target(in.dh, ik_test::flange_of(targets[i].data()), in.reach_tol);
            if (!t.reachable) continue;
            float theta[ROBOT_DOF];
            algo::ik::reference_theta(in, theta);
            const CostFloor floor(in, t, theta);
            for (int n = 0; n < 40; ++n) {
                const float base = arm(rng);
                const int last = steps(rng) - 1;
                const auto at = [&](int k) { return base + static_cast<float>(k) * Q_STEP_MIN; };
                double least[2] = {INFINITY, INFINITY};
                for (int k = 0; k <= last; ++k) {
                    for (int e = 0; e < 2; ++e) {
                        IkSolve branches;
                        algo::ik::branches_at(in, t, theta, at(k), branches, 1 << e);
                        for (int b = 0; b < branches.num; ++b) {
                            if (algo::ik::within_limits(branches.q_solve[b], in.dof, in.limits))
                                least[e] =
                                    std::min(least[e], squared_distance(branches.q_solve[b], in.q_ref));
                        }
                    }
                }
                F4 sn[2], cs[2];
                for (int end = 0; end < 2; ++end)
                    algo::lanes::sincos(F4{} + at(end * last), sn[end], cs[end]);
                const F4 width = F4{} + (static_cast<float>(last) * Q_STEP_MIN + 1e-5f);
                const auto f = floor.over(sn[0], cs[0], sn[1], cs[1], width);
                for (int e = 0; e < 2; ++e) {
                    ASSERT_LE(f.elbow[e][0], least[e]) << row.targets << " target " << i << " from arm angle "
                                                       << base << " over " << last << " steps, elbow " << e;
                }
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    SevenJointModels, ArmAngleFloor, ::testing::Values(QM75, TAV72, TAV72II), [](const auto& info) {
        return std::string(info.param == QM75 ? "QM75" : info.param == TAV72 ? "TAV72" : "TAV72II");
    });

}  // namespace
