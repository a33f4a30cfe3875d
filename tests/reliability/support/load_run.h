// Several simulated arms under load at once: each is streamed joint targets, queried from
// several threads and pushes its realtime state, all through one library instance. Shared by
// the load test (a few seconds) and the load benchmark (a minute).
#ifndef QM_TEST_LOAD_RUN_H
#define QM_TEST_LOAD_RUN_H

#include <chrono>
#include <cstdint>

namespace rel {

struct LoadPlan {
    int arms = 5;
    std::chrono::milliseconds duration{3000};
    std::chrono::microseconds stream_period{1000};  // qm_movej_canfd per arm
    int push_cycle_ms = 1;                          // the controllers' realtime push
    int query_threads_per_arm = 2;
    std::chrono::microseconds query_pause{0};       // between one thread's queries
    std::chrono::milliseconds warm_up{500};         // before the steady-state snapshot
};

struct LoadFigures {
    int connected = 0;
    double seconds = 0;      // of the loaded phase
    double cpu_seconds = 0;  // of the whole process (simulator included) in that phase

    std::uint64_t answered = 0;
    std::uint64_t timed_out = 0;  // -2: no reply within the query timeout
    std::uint64_t failed = 0;     // any other result
    std::chrono::microseconds p50{}, p99{}, slowest{};  // of the answered queries

    std::uint64_t streamed = 0;
    std::uint64_t stream_failures = 0;

    std::uint64_t datagrams_sent = 0;  // by the simulator while the push ran
    std::uint64_t records = 0;         // delivered to the realtime callback meanwhile
    std::uint64_t bad_records = 0;

    // Steady state: after the warm-up and at the end of the loaded phase.
    int descriptors_before = 0, descriptors_after = 0;
    long resident_before_kib = 0, resident_after_kib = 0;
    // Before the library started and after it was destroyed.
    int descriptors_at_start = 0, descriptors_at_end = 0;
};

LoadFigures run_load(const LoadPlan& plan);

}  // namespace rel

#endif
