#include "load_run.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <cstring>
#include <memory>
#include <thread>
#include <vector>

#include "deliveries.h"
#include "process_usage.h"
#include "qm_interface.h"
#include "restartable_sim.h"

namespace rel {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::microseconds;
using std::chrono::milliseconds;

// Latencies in buckets 2 % apart: fixed memory however long the run.
class Histogram {
public:
    void add(microseconds latency) {
        const double us = std::max<double>(1.0, static_cast<double>(latency.count()));
        const auto bucket = static_cast<std::size_t>(std::log(us) / kStep);
        ++counts_[std::min(bucket, counts_.size() - 1)];
        slowest_ = std::max(slowest_, latency);
    }
    void merge(const Histogram& other) {
        for (std::size_t i = 0; i < counts_.size(); ++i) counts_[i] += other.counts_[i];
        slowest_ = std::max(slowest_, other.slowest_);
    }
    microseconds percentile(double p) const {
        std::uint64_t total = 0;
        for (std::uint64_t c : counts_) total += c;
        const auto rank = static_cast<std::uint64_t>(std::ceil(p * static_cast<double>(total)));
        std::uint64_t seen = 0;
        for (std::size_t i = 0; i < counts_.size(); ++i) {
            seen += counts_[i];
            if (seen >= rank && seen > 0) return microseconds(std::llround(std::exp((i + 0.5) * kStep)));
        }
        return microseconds(0);
    }
    microseconds slowest() const { return slowest_; }

private:
    static constexpr double kStep = 0.0198;  // log(1.02)
    std::array<std::uint64_t, 1024> counts_{};  // up to e^20 us
    microseconds slowest_{0};
};

struct QueryCounts {
    std::uint64_t answered = 0, timed_out = 0, failed = 0;
    Histogram latency;
};

struct StreamCounts {
    std::uint64_t sent = 0, failed = 0;
};

void query_loop(qm_robot_handle* arm, const LoadPlan& plan, const std::atomic<bool>& stop, QueryCounts& out) {
    float joints[ARM_DOF];
    qm_current_arm_state_t state;
    for (unsigned n = 0; !stop; ++n) {
        const auto start = Clock::now();
        const int rc = n % 2 ? qm_get_joint_degree(arm, joints) : qm_get_current_arm_state(arm, &state);
        const auto took = std::chrono::duration_cast<microseconds>(Clock::now() - start);
        if (rc == 0) {
            ++out.answered;
            out.latency.add(took);
        } else if (rc == -2) {
            ++out.timed_out;
        } else {
            ++out.failed;
        }
        if (plan.query_pause.count() > 0) std::this_thread::sleep_for(plan.query_pause);
    }
}

// Joint targets on a slow circle around a pose inside every model's limits.
void stream_loop(qm_robot_handle* arm, const LoadPlan& plan, const std::atomic<bool>& stop, StreamCounts& out) {
    float joints[ARM_DOF] = {0, -20, -70, 0, -90, 0, 0};
    qm_movej_canfd_mode_t config{joints, 0.0f, false, 0, 0};
    auto due = Clock::now();
    for (unsigned n = 0; !stop; ++n) {
        joints[0] = 10.0f * std::sin(static_cast<float>(n) * 1e-3f);
        if (qm_movej_canfd(arm, config) == 0)
            ++out.sent;
        else
            ++out.failed;
        due += plan.stream_period;
        const auto now = Clock::now();
        if (due < now - milliseconds(50)) due = now;  // far behind: drop the missed ticks
        std::this_thread::sleep_until(due);
    }
}

// Turns every arm's push on or off with the configuration it has; false if one refused.
bool set_push(const std::vector<qm_robot_handle*>& arms, const std::vector<qm_realtime_push_config_t>& configs,
              bool enable, int cycle) {
    bool ok = true;
    for (std::size_t i = 0; i < arms.size(); ++i) {
        qm_realtime_push_config_t config = configs[i];
        config.enable = enable;
        config.cycle = cycle;
        ok = qm_set_realtime_push(arms[i], config) == 0 && ok;
    }
    return ok;
}

// Waits until no record has arrived for a while: everything sent has been received or lost.
void wait_quiet() {
    const auto limit = Clock::now() + std::chrono::seconds(5);
    std::uint64_t last = records_delivered();
    while (Clock::now() < limit) {
        std::this_thread::sleep_for(milliseconds(100));
        const std::uint64_t now = records_delivered();
        if (now == last) return;
        last = now;
    }
}

}  // namespace

LoadFigures run_load(const LoadPlan& plan) {
    LoadFigures figures;
    figures.descriptors_at_start = open_descriptors();
    {
        sim::Options options = quiet_options("QM65-B", plan.arms, 1.0);
        options.push.cycle_ms = plan.push_cycle_ms;
        RestartableSim simulator(options);
        qm_init(QM_TRIPLE_MODE_E);
        count_deliveries();

        std::vector<qm_robot_handle*> arms;
        std::vector<qm_realtime_push_config_t> configs(static_cast<std::size_t>(plan.arms));
        for (int i = 0; i < plan.arms; ++i) {
            qm_robot_handle* arm = qm_create_robot_arm("127.0.0.1", simulator.port(i));
            if (!arm || arm->id < 1) continue;
            if (qm_get_realtime_push(arm, &configs[arms.size()]) != 0) continue;
            arms.push_back(arm);
        }
        configs.resize(arms.size());
        figures.connected = static_cast<int>(arms.size());

        // Count only what is pushed while every port is registered.
        set_push(arms, configs, false, plan.push_cycle_ms);
        wait_quiet();
        reset_deliveries();
        const std::uint64_t sent_before = simulator->datagrams_sent();
        set_push(arms, configs, true, plan.push_cycle_ms);

        std::atomic<bool> stop{false};
        std::vector<std::unique_ptr<QueryCounts>> queries;
        std::vector<std::unique_ptr<StreamCounts>> streams;
        std::vector<std::thread> threads;
        const double cpu_start = cpu_seconds();
        const auto start = Clock::now();
        for (qm_robot_handle* arm : arms) {
            streams.push_back(std::make_unique<StreamCounts>());
            threads.emplace_back(stream_loop, arm, std::cref(plan), std::cref(stop), std::ref(*streams.back()));
            for (int t = 0; t < plan.query_threads_per_arm; ++t) {
                queries.push_back(std::make_unique<QueryCounts>());
                threads.emplace_back(query_loop, arm, std::cref(plan), std::cref(stop), std::ref(*queries.back()));
            }
        }
        std::this_thread::sleep_for(plan.warm_up);
        figures.descriptors_before = open_descriptors();
        figures.resident_before_kib = resident_kib();
        std::this_thread::sleep_until(start + plan.duration);
        figures.descriptors_after = open_descriptors();
        figures.resident_after_kib = resident_kib();
        stop = true;
        for (std::thread& thread : threads) thread.join();
        figures.seconds = std::chrono::duration<double>(Clock::now() - start).count();
        figures.cpu_seconds = cpu_seconds() - cpu_start;

        set_push(arms, configs, false, plan.push_cycle_ms);
        wait_quiet();
        figures.datagrams_sent = simulator->datagrams_sent() - sent_before;
        figures.records = records_delivered();
        figures.bad_records = bad_records_delivered();

        Histogram latency;
        for (const auto& q : queries) {
            figures.answered += q->answered;
            figures.timed_out += q->timed_out;
            figures.failed += q->failed;
            latency.merge(q->latency);
        }
        figures.p50 = latency.percentile(0.50);
        figures.p99 = latency.percentile(0.99);
        figures.slowest = latency.slowest();
        for (const auto& s : streams) {
            figures.streamed += s->sent;
            figures.stream_failures += s->failed;
        }
        for (qm_robot_handle* arm : arms) qm_delete_robot_arm(arm);
        qm_destory();
    }
    figures.descriptors_at_end = open_descriptors();
    return figures;
}

}  // namespace rel
