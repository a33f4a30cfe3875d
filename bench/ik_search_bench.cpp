// Seven-joint inverse kinematics from a reference 2 degrees (normal noise per joint) off the
// target's joints, with the bridge's default search (strategy 0 over the whole arm-angle range).
// Before the timings the program prints, per model over 3000 random in-limit targets, the
// distribution of the answer's distance from the reference (largest joint difference) and the
// per-call cost, worst case included.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <vector>

#include "../tests/algo/kinematics_reference.h"
#include "libalgo_interface.h"
#include "qman_inv_kinematics.h"
#include "qman_kinematics.h"
#include "qman_mathfuncs.h"

namespace {

using Joints = reference::Joints;

constexpr int kTargets = 3000;
constexpr float kNoiseDeg = 2.0f;

struct Workload {
    std::vector<Joints> reference;
    std::vector<Pose> pose;
};

void load_model(RobotType type) {
    if (libalgo_set_robot_and_sensor_type(type, _B) != 0) {
        std::fprintf(stderr, "cannot load robot type %d\n", type);
        std::exit(1);
    }
    ikine_set_7dof_solver_search_strategy(0);
    ikine_set_solution_range_qm75(Q_STEP_MAX);
}

const Workload& workload(RobotType type) {
    static std::vector<std::pair<RobotType, Workload>> cache;
    load_model(type);
    for (const auto& [t, w] : cache)
        if (t == type) return w;
    Workload w;
    DH dh;
    libalgo_get_dh_value(&dh);
    std::mt19937 rng(2024u + type);
    std::normal_distribution<float> noise(0.0f, kNoiseDeg * static_cast<float>(DEG2RAD));
    for (const Joints& q : reference::random_joints_within_limits(kTargets, 77u + type)) {
        Joints ref = q;
        for (int j = 0; j < 7; ++j) ref[j] += noise(rng);
        w.reference.push_back(ref);
        w.pose.push_back(transformation_matrix_to_pose(forward_kinematics_model(type, &dh, q.data())));
    }
    return cache.emplace_back(type, std::move(w)).second;
}

double percentile(std::vector<double> v, double p) {
    std::sort(v.begin(), v.end());
    return v[static_cast<std::size_t>(p * static_cast<double>(v.size() - 1))];
}

void print_distribution(RobotType type, const char* name) {
    const Workload& w = workload(type);
    std::vector<double> distance, micros;
    int failed = 0, far = 0;
    for (int i = 0; i < kTargets; ++i) {
        float q[ROBOT_DOF] = {};
        const auto start = std::chrono::steady_clock::now();
        const int rc = inverse_kinematics(w.reference[i].data(), &w.pose[i], q, USE_QUAT);
        micros.push_back(std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start).count());
        if (rc != IKINE_SUCCESSFUL) {
            ++failed;
            continue;
        }
        double worst = 0.0;
        for (int j = 0; j < 7; ++j) worst = std::fmax(worst, std::fabs(double(q[j]) - w.reference[i][j]) * RAD2DEG);
        distance.push_back(worst);
        if (worst > 30.0) ++far;
    }
    std::printf("%-8s distance from the reference (deg, largest joint): median %.2f  p90 %.2f  p99 %.2f  max %.2f;"
                " %d beyond 30 deg, %d failed\n",
                name, percentile(distance, 0.5), percentile(distance, 0.9), percentile(distance, 0.99),
                percentile(distance, 1.0), far, failed);
    std::printf("%-8s cost per call (us): median %.2f  p99 %.2f  p99.9 %.2f  max %.2f\n", name,
                percentile(micros, 0.5), percentile(micros, 0.99), percentile(micros, 0.999),
                percentile(micros, 1.0));
}

void BM_NoisyReference(benchmark::State& state, RobotType type) {
    const Workload& w = workload(type);
    float q[ROBOT_DOF];
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(inverse_kinematics(w.reference[i].data(), &w.pose[i], q, USE_QUAT));
        benchmark::ClobberMemory();
        i = (i + 1) % kTargets;
    }
}

BENCHMARK_CAPTURE(BM_NoisyReference, QM75, QM75);
BENCHMARK_CAPTURE(BM_NoisyReference, TAV72, TAV72);
BENCHMARK_CAPTURE(BM_NoisyReference, TAV72II, TAV72II);

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    print_distribution(QM75, "QM75");
    print_distribution(TAV72, "TAV72");
    print_distribution(TAV72II, "TAV72II");
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
