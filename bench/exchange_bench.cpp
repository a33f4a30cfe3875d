// One query round trip against a loopback controller that answers at once:
// request out, reply filed by the receive thread, waiting command woken.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <vector>

#include "fake_controller.h"
#include "qm_interface.h"

namespace {

void report_percentiles(benchmark::State& state, std::vector<double>& micros) {
    if (micros.empty()) return;
    std::sort(micros.begin(), micros.end());
    auto at = [&](double q) {
        return micros[static_cast<size_t>(q * static_cast<double>(micros.size() - 1))];
    };
    state.counters["p50_us"] = at(0.50);
    state.counters["p99_us"] = at(0.99);
    state.counters["max_us"] = micros.back();
}

void BM_QueryRoundTrip(benchmark::State& state, qm_thread_mode_e mode) {
    qm_test::FakeController controller;
    controller.reply(
        "get_current_joint_temperature",
        R"({"command":"current_joint_temperature","joint_temperature":[25000,25100,25200,25300,25400,25500]})");
    qm_test::ArmSession session(controller, mode);
    if (!session.handle() || session.handle()->id != 1) {
        state.SkipWithError("the arm did not connect");
        return;
    }
    float temperature[ARM_DOF] = {};
    std::vector<double> micros;
    micros.reserve(200000);
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        int rc = qm_get_current_joint_temperature(session.handle(), temperature);
        const auto end = std::chrono::steady_clock::now();
        if (rc != 0) {
            state.SkipWithError("query failed");
            break;
        }
        micros.push_back(std::chrono::duration<double, std::micro>(end - start).count());
    }
    report_percentiles(state, micros);
}

BENCHMARK_CAPTURE(BM_QueryRoundTrip, receive_thread, QM_DUAL_MODE_E)
    ->Unit(benchmark::kMicrosecond)
    ->MinTime(3.0);
BENCHMARK_CAPTURE(BM_QueryRoundTrip, single_thread, QM_SINGLE_MODE_E)
    ->Unit(benchmark::kMicrosecond)
    ->MinTime(3.0);

}  // namespace

BENCHMARK_MAIN();
