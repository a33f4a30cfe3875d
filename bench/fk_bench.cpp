// Forward kinematics per call as an application makes it: qm_algo_forward_kinematics on joint
// degrees, the whole pose used, against KDL's recursive solver on the same chain. The internal
// closed forms are timed beside it, and a connected arm (its table as the controller reports
// it) with and without its handle.
#include <benchmark/benchmark.h>

#include <kdl/chainfksolverpos_recursive.hpp>

#include <cmath>
#include <vector>

#include "../tests/algo/kinematics_kdl_chains.h"
#include "../tests/algo/kinematics_reference.h"
#include "fake_controller.h"
#include "libalgo_interface.h"
#include "qm_interface.h"
#include "qman_kinematics.h"

namespace {

constexpr std::size_t kSamples = 1024;  // power of two: the index wraps with a mask
constexpr double kRadToDeg = 57.29577951308232;

// Random joints inside the loaded model's limits, in radians and in the caller's degrees, and
// KDL's chain for the table in use, checked against the public call before anything is timed.
struct Workload {
    int dof = 0;
    DH dh{};
    std::vector<reference::Joints> rad;
    std::vector<reference::Joints> deg;
    KDL::Chain chain;
    std::vector<KDL::JntArray> kdl_joints;

    bool prepare(qm_robot_handle* handle, benchmark::State& state) {
        libalgo_get_dh_value(&dh);
        dof = libalgo_get_rbt_dof();
        rad = reference::random_joints_within_limits(static_cast<int>(kSamples), 1);
        const bool standard = libalgo_get_robot_type() == QM75;
        chain = standard ? kdl_chains::standard_dh(dh, dof) : kdl_chains::modified_dh(dh, dof);
        KDL::ChainFkSolverPos_recursive solver(chain);
        for (const auto& q : rad) {
            reference::Joints d{};
            for (int j = 0; j < dof; ++j) d[j] = static_cast<float>(q[j] * kRadToDeg);
            deg.push_back(d);
            kdl_joints.push_back(kdl_chains::joint_array(q.data(), dof));
            KDL::Frame f;
            solver.JntToCart(kdl_joints.back(), f);
            const qm_pose_t p = qm_algo_forward_kinematics(handle, d.data());
            double roll, pitch, yaw;
            f.M.GetRPY(roll, pitch, yaw);
            const KDL::Rotation ours = KDL::Rotation::RPY(p.euler.rx, p.euler.ry, p.euler.rz);
            const double dp = (f.p - KDL::Vector(p.position.x, p.position.y, p.position.z)).Norm();
            const double dr = KDL::diff(f.M, ours).Norm();
            if (dp > 1e-5 || dr > 1e-5) {
                state.SkipWithError("the public call disagrees with KDL");
                return false;
            }
        }
        return true;
    }
};

bool load(qm_robot_arm_model_e model, Workload& w, benchmark::State& state) {
    qm_algo_init_sys_data(model, QM_MODEL_QM_B_E);
    return w.prepare(nullptr, state);
}

void public_call(benchmark::State& state, qm_robot_arm_model_e model) {
    Workload w;
    if (!load(model, w, state)) return;
    std::size_t i = 0;
    for (auto _ : state) {
        qm_pose_t pose = qm_algo_forward_kinematics(nullptr, w.deg[i++ & (kSamples - 1)].data());
        benchmark::DoNotOptimize(pose);
    }
    state.SetItemsProcessed(state.iterations());
}

void kdl_recursive(benchmark::State& state, const Workload& w) {
    KDL::ChainFkSolverPos_recursive solver(w.chain);
    KDL::Frame f;
    std::size_t i = 0;
    for (auto _ : state) {
        solver.JntToCart(w.kdl_joints[i++ & (kSamples - 1)], f);
        benchmark::DoNotOptimize(f);
    }
    state.SetItemsProcessed(state.iterations());
}

void kdl_nominal(benchmark::State& state, qm_robot_arm_model_e model) {
    Workload w;
    if (load(model, w, state)) kdl_recursive(state, w);
}

// Internal: the model's closed form alone, on radians, flange transform only.
void closed_form(benchmark::State& state, qm_robot_arm_model_e model, int robot_type) {
    Workload w;
    if (!load(model, w, state)) return;
    std::size_t i = 0;
    for (auto _ : state) {
        Matrix m = forward_kinematics_model(robot_type, &w.dh, w.rad[i++ & (kSamples - 1)].data());
        benchmark::DoNotOptimize(m);
    }
    state.SetItemsProcessed(state.iterations());
}

// A connected QM65: the controller reports twists in whole milliradians, so its table takes the
// general link product. "handle" passes the arm's handle as an application does; "offline" is
// the same configuration already loaded, called without one; "kdl" is KDL on that table.
enum class Connected { Handle, Offline, Kdl };

void connected_arm(benchmark::State& state, Connected how) {
    qm_test::FakeController controller;
    qm_test::ArmSession session(controller, QM_DUAL_MODE_E);
    qm_robot_handle* arm = session.handle();
    if (!arm || arm->id != 1) {
        state.SkipWithError("the arm did not connect");
        return;
    }
    qm_algo_arm_state_set(arm);
    Workload w;
    if (!w.prepare(arm, state)) return;
    if (how == Connected::Kdl) return kdl_recursive(state, w);
    qm_robot_handle* passed = how == Connected::Handle ? arm : nullptr;
    std::size_t i = 0;
    for (auto _ : state) {
        qm_pose_t pose = qm_algo_forward_kinematics(passed, w.deg[i++ & (kSamples - 1)].data());
        benchmark::DoNotOptimize(pose);
    }
    state.SetItemsProcessed(state.iterations());
}

}  // namespace

BENCHMARK_CAPTURE(public_call, QM65, QM_MODEL_QM_65_E);
BENCHMARK_CAPTURE(kdl_nominal, QM65, QM_MODEL_QM_65_E);
BENCHMARK_CAPTURE(closed_form, QM65, QM_MODEL_QM_65_E, QM65);
BENCHMARK_CAPTURE(public_call, QM75, QM_MODEL_QM_75_E);
BENCHMARK_CAPTURE(kdl_nominal, QM75, QM_MODEL_QM_75_E);
BENCHMARK_CAPTURE(closed_form, QM75, QM_MODEL_QM_75_E, QM75);
BENCHMARK_CAPTURE(connected_arm, QM65_handle, Connected::Handle);
BENCHMARK_CAPTURE(connected_arm, QM65_offline, Connected::Offline);
BENCHMARK_CAPTURE(connected_arm, QM65_kdl, Connected::Kdl);

BENCHMARK_MAIN();
