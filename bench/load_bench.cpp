// Five simulated arms for a minute: each streamed qm_movej_canfd at 1 kHz, queried by two
// threads and pushing its realtime state at 1 kHz. Reports query throughput and latency under
// that load, the streaming and push rates kept, and the processor time of the whole process
// (the simulator runs in it too).
#include <benchmark/benchmark.h>

#include "load_run.h"

namespace {

void BM_FiveArmsUnderLoad(benchmark::State& state) {
    rel::LoadPlan plan;
    plan.duration = std::chrono::seconds(state.range(0));
    rel::LoadFigures f;
    for (auto _ : state) f = rel::run_load(plan);
    state.counters["arms"] = f.connected;
    state.counters["queries_per_s"] = static_cast<double>(f.answered) / f.seconds;
    state.counters["timed_out"] = static_cast<double>(f.timed_out);
    state.counters["failed"] = static_cast<double>(f.failed + f.stream_failures);
    state.counters["p50_us"] = static_cast<double>(f.p50.count());
    state.counters["p99_us"] = static_cast<double>(f.p99.count());
    state.counters["slowest_us"] = static_cast<double>(f.slowest.count());
    state.counters["canfd_per_s"] = static_cast<double>(f.streamed) / f.seconds;
    state.counters["datagrams_per_s"] = static_cast<double>(f.datagrams_sent) / f.seconds;
    state.counters["datagrams_lost"] = static_cast<double>(f.datagrams_sent) - static_cast<double>(f.records);
    state.counters["cpu_cores"] = f.cpu_seconds / f.seconds;
    state.counters["rss_growth_kib"] = static_cast<double>(f.resident_after_kib - f.resident_before_kib);
    state.counters["fd_growth"] = f.descriptors_after - f.descriptors_before;
}
BENCHMARK(BM_FiveArmsUnderLoad)->Arg(60)->Iterations(1)->UseRealTime()->Unit(benchmark::kSecond);

}  // namespace

BENCHMARK_MAIN();
