// The simulator as a peer: a query's round trip through the library, and the realtime push
// rate it keeps at a 1 ms cycle.
#include <benchmark/benchmark.h>

#include <chrono>
#include <thread>

#include "qm_interface.h"
#include "simulator.h"

namespace {

sim::Options options() {
    sim::Options o;
    o.port = 0;
    o.push.port = 0;
    return o;
}

void BM_JointQueryRoundTrip(benchmark::State& state) {
    sim::SimulatorThread simulator(options(), [](const std::string&) {});
    qm_init(QM_DUAL_MODE_E);
    qm_robot_handle* arm = qm_create_robot_arm("127.0.0.1", simulator->port(0));
    float joints[ARM_DOF];
    for (auto _ : state) benchmark::DoNotOptimize(qm_get_joint_degree(arm, joints));
    qm_delete_robot_arm(arm);
    qm_destory();
}
BENCHMARK(BM_JointQueryRoundTrip)->UseRealTime();

// Datagrams per second with the push set to 1 ms (1000 is the target).
void BM_PushAt1kHz(benchmark::State& state) {
    sim::Options o = options();
    o.push.cycle_ms = 1;
    sim::SimulatorThread simulator(o, [](const std::string&) {});
    std::uint64_t sent = 0;
    double seconds = 0;
    for (auto _ : state) {
        const std::uint64_t before = simulator->datagrams_sent();
        const auto start = std::chrono::steady_clock::now();
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        sent += simulator->datagrams_sent() - before;
        seconds += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    }
    state.counters["datagrams_per_s"] = static_cast<double>(sent) / seconds;
}
BENCHMARK(BM_PushAt1kHz)->Iterations(5)->UseRealTime()->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
