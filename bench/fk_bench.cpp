// Flange forward kinematics per call: the closed-form routines against KDL's recursive solver
// on chains built from the same DH tables.
#include <benchmark/benchmark.h>

#include <kdl/chainfksolverpos_recursive.hpp>

#include <vector>

#include "../tests/algo/kinematics_kdl_chains.h"
#include "../tests/algo/kinematics_reference.h"
#include "libalgo_interface.h"
#include "qman_kinematics.h"

namespace {

constexpr std::size_t kSamples = 1024;  // power of two: the index wraps with a mask

struct Workload {
    DH dh{};
    int dof = 0;
    std::vector<reference::Joints> joints;
    KDL::Chain chain;
    std::vector<KDL::JntArray> kdl_joints;
};

// Loads the model and checks the KDL chain against our routine before anything is timed.
bool prepare(int robot_type, Workload& w, benchmark::State& state) {
    if (libalgo_set_robot_and_sensor_type(robot_type, _B) != 0) {
        state.SkipWithError("model not available");
        return false;
    }
    libalgo_get_dh_value(&w.dh);
    w.dof = libalgo_get_rbt_dof();
    w.joints = reference::random_joints_within_limits(static_cast<int>(kSamples), 1);
    w.chain = robot_type == QM75 ? kdl_chains::standard_dh(w.dh, w.dof) : kdl_chains::modified_dh(w.dh, w.dof);
    KDL::ChainFkSolverPos_recursive solver(w.chain);
    for (const auto& q : w.joints) {
        w.kdl_joints.push_back(kdl_chains::joint_array(q.data(), w.dof));
        KDL::Frame f;
        solver.JntToCart(w.kdl_joints.back(), f);
        const Matrix m = forward_kinematics_model(robot_type, &w.dh, q.data());
        for (int i = 0; i < 3; ++i)
            if (std::fabs(m.data[i][3] - f.p(i)) > 1e-5 || std::fabs(m.data[i][0] - f.M(i, 0)) > 1e-5) {
                state.SkipWithError("KDL chain disagrees with the closed form");
                return false;
            }
    }
    return true;
}

void closed_form(benchmark::State& state, int robot_type, Matrix (*routine)(const DH*, const float*)) {
    Workload w;
    if (!prepare(robot_type, w, state)) return;
    std::size_t i = 0;
    for (auto _ : state) {
        Matrix m = routine(&w.dh, w.joints[i++ & (kSamples - 1)].data());
        benchmark::DoNotOptimize(m);
    }
    state.SetItemsProcessed(state.iterations());
}

// The model dispatch as the pose variants use it: the table's structure is checked, then the
// closed form runs.
void dispatched(benchmark::State& state, int robot_type) {
    Workload w;
    if (!prepare(robot_type, w, state)) return;
    std::size_t i = 0;
    for (auto _ : state) {
        Matrix m = forward_kinematics_model(robot_type, &w.dh, w.joints[i++ & (kSamples - 1)].data());
        benchmark::DoNotOptimize(m);
    }
    state.SetItemsProcessed(state.iterations());
}

void kdl_recursive(benchmark::State& state, int robot_type) {
    Workload w;
    if (!prepare(robot_type, w, state)) return;
    KDL::ChainFkSolverPos_recursive solver(w.chain);
    KDL::Frame f;
    std::size_t i = 0;
    for (auto _ : state) {
        solver.JntToCart(w.kdl_joints[i++ & (kSamples - 1)], f);
        benchmark::DoNotOptimize(f);
    }
    state.SetItemsProcessed(state.iterations());
}

}  // namespace

BENCHMARK_CAPTURE(closed_form, QM65, QM65, forward_kinematics_qm65);
BENCHMARK_CAPTURE(dispatched, QM65, QM65);
BENCHMARK_CAPTURE(kdl_recursive, QM65, QM65);
BENCHMARK_CAPTURE(closed_form, QM75, QM75, forward_kinematics_qm75);
BENCHMARK_CAPTURE(dispatched, QM75, QM75);
BENCHMARK_CAPTURE(kdl_recursive, QM75, QM75);

BENCHMARK_MAIN();
