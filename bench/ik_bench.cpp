// Inverse kinematics per call, ours against KDL's numeric solvers, on the same 1000 random
// reachable targets inside the joint limits.
//
// Timing uses a tracking seed: the reference is the target's joints plus a perturbation of
// up to one control period of travel (2 ms at about 225 deg/s), as when following a path.
// Before the timings the program prints the success rates within the joint limits, from
// the tracking seed and from a random seed inside the limits, and for the seven-joint models
// how far the answer lies from a reference 2 degrees (normal noise per joint) off the target's
// joints, with the per-call cost of that search.

#include <benchmark/benchmark.h>

#include <kdl/chainfksolverpos_recursive.hpp>
#include <kdl/chainiksolverpos_lma.hpp>
#include <kdl/chainiksolverpos_nr_jl.hpp>
#include <kdl/chainiksolvervel_pinv.hpp>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <memory>
#include <random>
#include <vector>

#include "../tests/algo/kinematics_kdl_chains.h"
#include "../tests/algo/kinematics_reference.h"
#include "libalgo_interface.h"
#include "qman_inv_kinematics.h"
#include "qman_kinematics.h"
#include "qman_mathfuncs.h"
#include "qm_interface.h"

namespace {

using Joints = reference::Joints;

constexpr int kTargets = 1000;
constexpr float kTrackingStep = 0.008f;  // rad, one control period of travel
constexpr float kNoisyReference = 2.0f * static_cast<float>(DEG2RAD);  // rad, standard deviation

struct Workload {
    RobotType type;
    int dof;
    DH dh;
    float lo[ROBOT_DOF];
    float hi[ROBOT_DOF];
    std::vector<Joints> truth;
    std::vector<Joints> tracking_seed;
    std::vector<Joints> random_seed;
    std::vector<Joints> noisy_seed;
    std::vector<Pose> pose;
    std::vector<Matrix> flange;
    std::vector<KDL::Frame> frame;
    KDL::Chain chain;
};

void load_model(RobotType type) {
    if (libalgo_set_robot_and_sensor_type(type, _B) != 0) {
        std::fprintf(stderr, "cannot load robot type %d\n", type);
        std::exit(1);
    }
    ikine_set_7dof_solver_search_strategy(0);
    ikine_set_solution_range_qm75(Q_STEP_MAX);
}

KDL::Frame kdl_frame(const Matrix& m) {
    return KDL::Frame(KDL::Rotation(m.data[0][0], m.data[0][1], m.data[0][2], m.data[1][0], m.data[1][1],
                                    m.data[1][2], m.data[2][0], m.data[2][1], m.data[2][2]),
                      KDL::Vector(m.data[0][3], m.data[1][3], m.data[2][3]));
}

// The chain must agree with the library's forward kinematics before it is timed.
void verify_chain(const Workload& w) {
    KDL::ChainFkSolverPos_recursive fk(w.chain);
    for (int i = 0; i < 100; ++i) {
        KDL::Frame f;
        fk.JntToCart(kdl_chains::joint_array(w.truth[i].data(), w.dof), f);
        const KDL::Frame& ours = w.frame[i];
        const double dp = (f.p - ours.p).Norm();
        const double dr = (f.M.UnitX() - ours.M.UnitX()).Norm() + (f.M.UnitZ() - ours.M.UnitZ()).Norm();
        if (dp > 1e-5 || dr > 1e-5) {
            std::fprintf(stderr, "KDL chain of type %d disagrees with forward kinematics: %g m, %g\n", w.type, dp, dr);
            std::exit(1);
        }
    }
}

Workload make_workload(RobotType type) {
    load_model(type);
    Workload w;
    w.type = type;
    w.dof = libalgo_get_rbt_dof();
    libalgo_get_dh_value(&w.dh);
    libalgo_get_jointlim_min(w.lo);
    libalgo_get_jointlim_max(w.hi);
    w.truth = reference::random_joints_within_limits(kTargets, 1234u + type);
    w.random_seed = reference::random_joints_within_limits(kTargets, 5678u + type);
    std::mt19937 rng(91u + type);
    std::uniform_real_distribution<float> step(-kTrackingStep, kTrackingStep);
    std::mt19937 noise_rng(191u + type);  // its own, so the tracking seeds stay as they were
    std::normal_distribution<float> noise(0.0f, kNoisyReference);
    for (const Joints& q : w.truth) {
        Joints seed = q, noisy = q;
        for (int j = 0; j < w.dof; ++j) {
            seed[j] = std::fmin(w.hi[j], std::fmax(w.lo[j], q[j] + step(rng)));
            noisy[j] += noise(noise_rng);
        }
        w.tracking_seed.push_back(seed);
        w.noisy_seed.push_back(noisy);
        const Matrix m = forward_kinematics_model(type, &w.dh, q.data());
        w.flange.push_back(m);
        w.pose.push_back(transformation_matrix_to_pose(m));
        w.frame.push_back(kdl_frame(m));
    }
    w.chain = type == QM75 ? kdl_chains::standard_dh(w.dh, w.dof) : kdl_chains::modified_dh(w.dh, w.dof);
    verify_chain(w);
    return w;
}

const Workload& workload(RobotType type) {
    static std::map<int, Workload> cache;
    auto it = cache.find(type);
    if (it == cache.end()) it = cache.emplace(type, make_workload(type)).first;
    load_model(type);
    return it->second;
}

// The KDL solvers under test, built once per model.
struct KdlSolvers {
    explicit KdlSolvers(const Workload& w)
        : fk(w.chain),
          vel(w.chain),
          nr_jl(w.chain, kdl_chains::joint_array(w.lo, w.dof), kdl_chains::joint_array(w.hi, w.dof), fk, vel),
          lma(w.chain),
          seed(static_cast<unsigned>(w.dof)),
          out(static_cast<unsigned>(w.dof)) {}
    KDL::ChainFkSolverPos_recursive fk;
    KDL::ChainIkSolverVel_pinv vel;
    KDL::ChainIkSolverPos_NR_JL nr_jl;
    KDL::ChainIkSolverPos_LMA lma;
    KDL::JntArray seed;
    KDL::JntArray out;
};

void set_seed(KDL::JntArray& a, const Joints& q, int dof) {
    for (int j = 0; j < dof; ++j) a(static_cast<unsigned>(j)) = q[j];
}

// Reached within 1e-4 m and 1e-3 per rotation entry, every joint within its limits after
// moving it by whole turns (KDL's solvers do not wrap).
bool valid_solution(const Workload& w, int target, float* q) {
    for (int j = 0; j < w.dof; ++j) {
        if (!std::isfinite(q[j])) return false;
        q[j] = std::remainder(q[j], 2.0f * static_cast<float>(ALGO_PI));
        if (find_nearest_joint(0.0f, &q[j], 0.0f, w.lo[j], w.hi[j]) != 0) return false;
    }
    const Matrix m = forward_kinematics_model(w.type, &w.dh, q);
    const Matrix& t = w.flange[static_cast<std::size_t>(target)];
    for (int i = 0; i < 3; ++i) {
        if (std::fabs(m.data[i][3] - t.data[i][3]) > 1e-4f) return false;
        for (int k = 0; k < 3; ++k) {
            if (std::fabs(m.data[i][k] - t.data[i][k]) > 1e-3f) return false;
        }
    }
    return true;
}

using SolveFn = std::function<bool(int target, const Joints& seed, float* q_out)>;

double success_rate(const Workload& w, const std::vector<Joints>& seeds, const SolveFn& solve) {
    int ok = 0;
    for (int i = 0; i < kTargets; ++i) {
        float q[ROBOT_DOF] = {};
        if (solve(i, seeds[static_cast<std::size_t>(i)], q) && valid_solution(w, i, q)) ++ok;
    }
    return 100.0 * ok / kTargets;
}

// The public call as an application makes it: degrees in and out, the target as a qm_pose_t.
SolveFn ours(const Workload& w) {
    return [&w](int target, const Joints& seed, float* q) {
        qm_inverse_kinematics_params_t params{};
        for (int j = 0; j < w.dof; ++j) params.q_in[j] = static_cast<float>(seed[j] * RAD2DEG);
        const Pose& pose = w.pose[static_cast<std::size_t>(target)];
        params.q_pose.position = {pose.position.x, pose.position.y, pose.position.z};
        params.q_pose.quaternion = {pose.quaternion.w, pose.quaternion.x, pose.quaternion.y, pose.quaternion.z};
        params.q_pose.euler = {pose.euler.rx, pose.euler.ry, pose.euler.rz};
        float deg[ARM_DOF] = {};
        if (qm_algo_inverse_kinematics(nullptr, params, deg) != 0) return false;
        for (int j = 0; j < w.dof; ++j) q[j] = static_cast<float>(deg[j] * DEG2RAD);
        return true;
    };
}

SolveFn kdl(const Workload& w, KdlSolvers& s, bool lma) {
    return [&w, &s, lma](int target, const Joints& seed, float* q) {
        set_seed(s.seed, seed, w.dof);
        const KDL::Frame& f = w.frame[static_cast<std::size_t>(target)];
        const int rc = lma ? s.lma.CartToJnt(s.seed, f, s.out) : s.nr_jl.CartToJnt(s.seed, f, s.out);
        for (int j = 0; j < w.dof; ++j) q[j] = static_cast<float>(s.out(static_cast<unsigned>(j)));
        return rc >= 0;
    };
}

void print_success_rates(RobotType type, const char* name) {
    const Workload& w = workload(type);
    KdlSolvers s(w);
    std::printf("%-5s success within limits         tracking seed   random seed\n", name);
    const struct {
        const char* solver;
        SolveFn fn;
    } rows[] = {{"qm_algo_inverse_kinematics", ours(w)},
                {"KDL NR_JL", kdl(w, s, false)},
                {"KDL LMA", kdl(w, s, true)}};
    for (const auto& row : rows) {
        std::printf("      %-30s %9.1f %%   %9.1f %%\n", row.solver, success_rate(w, w.tracking_seed, row.fn),
                    success_rate(w, w.random_seed, row.fn));
    }
}

double percentile(std::vector<double> v, double p) {
    std::sort(v.begin(), v.end());
    return v[static_cast<std::size_t>(p * static_cast<double>(v.size() - 1))];
}

// The cost of one call (us): the least of three, so that a preemption on this shared machine does
// not pass for the solver's worst case.
double solve_cost(const Joints& ref, const Pose& pose, float* q, int& rc) {
    double best = INFINITY;
    for (int run = 0; run < 3; ++run) {
        const auto start = std::chrono::steady_clock::now();
        rc = inverse_kinematics(ref.data(), &pose, q, USE_QUAT);
        best = std::fmin(best, std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start).count());
    }
    return best;
}

void print_costs(const char* what, std::vector<double>& micros) {
    std::printf("        %-44s cost per call (us): median %.2f p99 %.2f max %.2f\n", what, percentile(micros, 0.5),
                percentile(micros, 0.99), percentile(micros, 1.0));
}

// Largest joint difference of the answer from a reference 2 degrees off the target's joints, and
// the cost of each call; then the cost from a random reference inside the limits, and on targets
// of joints drawn over whole turns, most beyond some limit and many without any branch within them.
void print_search_costs(RobotType type, const char* name) {
    const Workload& w = workload(type);
    std::vector<double> degrees, noisy, random, anywhere;
    float q[ROBOT_DOF] = {};
    int rc = 0;
    for (int i = 0; i < kTargets; ++i) {
        const Joints& ref = w.noisy_seed[static_cast<std::size_t>(i)];
        noisy.push_back(solve_cost(ref, w.pose[static_cast<std::size_t>(i)], q, rc));
        double worst = rc == IKINE_SUCCESSFUL ? 0.0 : INFINITY;
        for (int j = 0; j < w.dof; ++j) worst = std::fmax(worst, std::fabs(double(q[j]) - ref[j]) * RAD2DEG);
        degrees.push_back(worst);
        random.push_back(solve_cost(w.random_seed[static_cast<std::size_t>(i)], w.pose[static_cast<std::size_t>(i)], q, rc));
    }
    std::mt19937 rng(313u + type);
    std::uniform_real_distribution<float> turn(-static_cast<float>(ALGO_PI), static_cast<float>(ALGO_PI));
    int solved = 0;
    for (int i = 0; i < kTargets; ++i) {
        Joints joints{};
        for (int j = 0; j < w.dof; ++j) joints[j] = turn(rng);
        const Pose pose = transformation_matrix_to_pose(forward_kinematics_model(type, &w.dh, joints.data()));
        anywhere.push_back(solve_cost(w.random_seed[static_cast<std::size_t>(i)], pose, q, rc));
        solved += rc == IKINE_SUCCESSFUL;
    }
    const auto far = std::count_if(degrees.begin(), degrees.end(), [](double d) { return d > 30.0; });
    std::printf("%-7s answer from a reference 2 deg off (deg, largest joint): median %.2f p99 %.2f max %.2f, "
                "%ld beyond 30\n",
                name, percentile(degrees, 0.5), percentile(degrees, 0.99), percentile(degrees, 1.0),
                static_cast<long>(far));
    print_costs("from a reference 2 deg off:", noisy);
    print_costs("from a random reference:", random);
    char label[64];
    std::snprintf(label, sizeof label, "joints over whole turns (%d%% solvable):", solved * 100 / kTargets);
    print_costs(label, anywhere);
}

using Seeds = std::vector<Joints> Workload::*;

void BM_Ours(benchmark::State& state, RobotType type, Seeds seeds) {
    const Workload& w = workload(type);
    float q[ROBOT_DOF];
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(inverse_kinematics((w.*seeds)[i].data(), &w.pose[i], q, USE_QUAT));
        benchmark::ClobberMemory();
        i = (i + 1) % kTargets;
    }
}

void BM_OursAllBranches(benchmark::State& state, RobotType type) {
    const Workload& w = workload(type);
    IkSolve all;
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(inverse_kinematics_all(&all, w.tracking_seed[i].data(), &w.pose[i], USE_QUAT));
        benchmark::ClobberMemory();
        i = (i + 1) % kTargets;
    }
}

void BM_OursAtArmAngle(benchmark::State& state) {
    const Workload& w = workload(QM75);
    std::vector<float> psi;
    for (const Joints& q : w.truth) psi.push_back(calculate_arm_angle_from_config_qm75(q.data()));
    std::vector<Pose> euler_pose = w.pose;  // the arm-angle call reads Euler angles
    float q[ROBOT_DOF];
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            inverse_kinematics_qm75_for_arm_angle(w.tracking_seed[i].data(), &euler_pose[i], psi[i], q));
        benchmark::ClobberMemory();
        i = (i + 1) % kTargets;
    }
}

// The public calls on the same work, in degrees, configured offline (null handle).
std::vector<qm_inverse_kinematics_params_t> public_params(const Workload& w) {
    std::vector<qm_inverse_kinematics_params_t> params(kTargets);
    for (int i = 0; i < kTargets; ++i) {
        qm_inverse_kinematics_params_t& p = params[static_cast<std::size_t>(i)];
        p = {};
        for (int j = 0; j < w.dof; ++j) p.q_in[j] = static_cast<float>(w.tracking_seed[i][j] * RAD2DEG);
        const Pose& pose = w.pose[static_cast<std::size_t>(i)];
        p.q_pose.position = {pose.position.x, pose.position.y, pose.position.z};
        p.q_pose.quaternion = {pose.quaternion.w, pose.quaternion.x, pose.quaternion.y, pose.quaternion.z};
        p.q_pose.euler = {pose.euler.rx, pose.euler.ry, pose.euler.rz};
        p.flag = 0;
    }
    return params;
}

void BM_Bridge(benchmark::State& state, RobotType type) {
    const Workload& w = workload(type);
    qm_algo_init_sys_data(type == QM75 ? QM_MODEL_QM_75_E : QM_MODEL_QM_65_E, QM_MODEL_QM_B_E);
    const std::vector<qm_inverse_kinematics_params_t> params = public_params(w);
    float q[ROBOT_DOF];
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(qm_algo_inverse_kinematics(nullptr, params[i], q));
        benchmark::ClobberMemory();
        i = (i + 1) % kTargets;
    }
}

void BM_BridgeAllBranches(benchmark::State& state, RobotType type) {
    const Workload& w = workload(type);
    qm_algo_init_sys_data(type == QM75 ? QM_MODEL_QM_75_E : QM_MODEL_QM_65_E, QM_MODEL_QM_B_E);
    const std::vector<qm_inverse_kinematics_params_t> params = public_params(w);
    std::size_t i = 0;
    for (auto _ : state) {
        qm_inverse_kinematics_all_solve_t all = qm_algo_inverse_kinematics_all(nullptr, params[i]);
        benchmark::DoNotOptimize(all);
        i = (i + 1) % kTargets;
    }
}

void BM_Kdl(benchmark::State& state, RobotType type, bool lma) {
    const Workload& w = workload(type);
    KdlSolvers s(w);
    std::size_t i = 0;
    for (auto _ : state) {
        set_seed(s.seed, w.tracking_seed[i], w.dof);
        benchmark::DoNotOptimize(lma ? s.lma.CartToJnt(s.seed, w.frame[i], s.out)
                                     : s.nr_jl.CartToJnt(s.seed, w.frame[i], s.out));
        i = (i + 1) % kTargets;
    }
}

BENCHMARK_CAPTURE(BM_Ours, QM65, QM65, &Workload::tracking_seed);
BENCHMARK_CAPTURE(BM_OursAllBranches, QM65, QM65);
BENCHMARK_CAPTURE(BM_Bridge, QM65, QM65);
BENCHMARK_CAPTURE(BM_BridgeAllBranches, QM65, QM65);
BENCHMARK_CAPTURE(BM_Kdl, QM65_NR_JL, QM65, false);
BENCHMARK_CAPTURE(BM_Kdl, QM65_LMA, QM65, true);
BENCHMARK_CAPTURE(BM_Ours, QM75, QM75, &Workload::tracking_seed);
BENCHMARK_CAPTURE(BM_Ours, QM75_NoisyReference, QM75, &Workload::noisy_seed);
BENCHMARK_CAPTURE(BM_Ours, TAV72_NoisyReference, TAV72, &Workload::noisy_seed);
BENCHMARK(BM_OursAtArmAngle);
BENCHMARK_CAPTURE(BM_Bridge, QM75, QM75);
BENCHMARK_CAPTURE(BM_BridgeAllBranches, QM75, QM75);
BENCHMARK_CAPTURE(BM_Kdl, QM75_NR_JL, QM75, false);
BENCHMARK_CAPTURE(BM_Kdl, QM75_LMA, QM75, true);

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    print_success_rates(QM65, "QM65");
    print_success_rates(QM75, "QM75");
    print_search_costs(QM75, "QM75");
    print_search_costs(TAV72, "TAV72");
    print_search_costs(TAV72II, "TAV72II");
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
