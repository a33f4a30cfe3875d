// The seven-joint search judges the branches at an arm angle from their lanes: its cost of a set
// must be the selection's to the bit (strategies and builds must agree on ties), its nearest branch
// and its test for the reference's own branch those a walk over the rows finds.

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>

#include "inv_kinematics_arm_angle_costs.h"
#include "inverse_kinematics_test_support.h"
#include "kinematics_reference.h"

namespace {

using namespace algo::ik;

TEST(ArmAngleCosts, SetCostNearestAndOwnBranchAgreeWithTheRows) {
    static constexpr float kUnitWeights[ROBOT_DOF] = {1, 1, 1, 1, 1, 1, 1, 1};
    for (const RobotType type : {QM75, TAV72}) {
        ASSERT_EQ(libalgo_set_robot_and_sensor_type(type, _B), 0);
        const ModelSolver model = model_solver(type);
        const int count = 200 / ik_test::kSlowBuildDivisor;
        const auto targets = reference::random_joints_within_limits(count, 8u + type);
        auto refs = reference::random_joints_within_limits(count, 9u + type);
        std::mt19937 rng(type);
        std::uniform_real_distribution<float> noise(-0.2f, 0.2f), arm(-3.2f, 3.2f);
        for (int i = 0; i < count; ++i) {
            // Every other reference near the target, so that sets within the limits and the
            // reference's own branch come up.
            if (i % 2 == 0) {
                for (int j = 0; j < 7; ++j) refs[i][j] = targets[i][j] + noise(rng);
            }
            const SolveInput in = make_solve_input(refs[i].data(), model);
            const ArmAngleTarget t = arm_angle_target(in.dh, ik_test::flange_of(targets[i].data()), in.reach_tol);
            if (!t.reachable) continue;
            float theta[ROBOT_DOF];
            reference_theta(in, theta);
            const BranchTerms<> terms(in, t, theta);
            const ReferenceLanes ref(in);
            for (int n = 0; n < 8; ++n) {
                const float psi = n == 0 ? 0.0f : arm(rng);
                const BranchLanes b = branch_lanes(terms, t, std::sin(psi), std::cos(psi));
                const BranchCosts<lanes::D2> costs = branch_costs<lanes::D2>(b, ref);
                for (const int elbows : {1, 2, 3}) {
                    IkSolve set;
                    write_branches(in, b, elbows, set);
                    double cost = 0.0;
                    const bool any = select_solution(kUnitWeights, set, in.dof, in.limits, &cost) >= 0;
                    EXPECT_EQ(set_cost(costs, elbows), any ? cost : INFINITY) << i << " " << psi << " " << elbows;
                    int nearest = -1;
                    double least = INFINITY;
                    for (int r = 0; r < set.num; ++r) {
                        double sum = 0.0;
                        for (int j = 0; j < 7; ++j) {
                            const double dq = double(set.q_solve[r][j]) - in.q_ref[j];
                            sum += dq * dq;
                        }
                        if (sum < least) least = sum, nearest = r;
                    }
                    BranchIndex at;
                    ASSERT_EQ(nearest_branch(costs, elbows, at), nearest >= 0);
                    if (nearest < 0) continue;
                    EXPECT_EQ((elbows == 3 ? 4 * at.elbow : 0) + 2 * at.shoulder + at.wrist, nearest) << i;
                    for (const int j : {0, 1, 2, 4, 5, 6}) EXPECT_EQ(joint_of(b, at, j), set.q_solve[nearest][j]);
                }
                IkSolve set;
                write_branches(in, b, kBothElbows, set);
                bool own = false;
                for (int r = 0; r < set.num; ++r) {
                    bool near = within_limits(set.q_solve[r], in.dof, in.limits);
                    for (int j = 0; j < 7; ++j) near &= std::fabs(set.q_solve[r][j] - in.q_ref[j]) <= 0.35f;
                    own |= near;
                }
                EXPECT_EQ(near_branch_within_limits(b, costs, ref, 0.35f), own) << i << " " << psi;
            }
        }
    }
}

TEST(ArmAngleCosts, TurnRemainderIsTheLibrarysToTheBit) {
    std::vector<float> xs = {0.0f, -0.0f, kPi, -kPi, kTwoPi, -kTwoPi, 2 * kTwoPi, -4 * kTwoPi, 3 * kPi,
                             -3 * kPi, 1e-30f, 9.5e5f, -2e6f, 1e30f, INFINITY, NAN};
    std::mt19937 rng(1);
    std::uniform_real_distribution<float> wide(-50.0f, 50.0f);
    for (int i = 0; i < 10000; ++i) xs.push_back(wide(rng));
    for (const float x : std::vector<float>(xs)) {
        xs.push_back(std::nextafter(x, INFINITY));
        xs.push_back(std::nextafter(x, -INFINITY));
    }
    for (const float x : xs) {
        const float want = std::remainder(x, kTwoPi), got = remainder_turn(x);
        if (std::isnan(want)) {
            EXPECT_TRUE(std::isnan(got)) << x;
        } else {
            EXPECT_EQ(std::memcmp(&want, &got, sizeof want), 0) << std::hexfloat << x << ": " << got << " not " << want;
        }
    }
}

}  // namespace
