// qm_latency: how quickly a controller answers and how steadily it pushes. Measures the round
// trip of a harmless query (get_joint_degree) through the library, and the period and jitter
// of the realtime push as it arrives here, and prints them.
//
//     qm_latency 192.168.1.18 8080            # 200 queries, 2 s of push
//     qm_latency 127.0.0.1 8080 -n 1000 -s 5
#include <algorithm>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "qm_interface.h"

namespace {

using Clock = std::chrono::steady_clock;
using Ms = std::chrono::duration<double, std::milli>;

struct Settings {
    const char* ip = nullptr;
    int port = 0;
    int calls = 200;
    double seconds = 2.0;
};

// Arrival times of the push records from the measured controller.
std::mutex g_mutex;
std::vector<Clock::time_point> g_arrivals;
std::string g_controller_ip;

void on_record(qm_realtime_arm_joint_state_t record) {
    const Clock::time_point now = Clock::now();
    std::lock_guard lock(g_mutex);
    if (record.errCode == 0 && g_controller_ip == record.arm_ip) g_arrivals.push_back(now);
}

template <class Number>
bool parse(const char* text, Number& out) {
    const char* end = text + std::strlen(text);
    auto [rest, error] = std::from_chars(text, end, out);
    return error == std::errc() && rest == end;
}

bool read_arguments(int argc, char** argv, Settings& s) {
    std::vector<const char*> positional;
    for (int i = 1; i < argc; ++i) {
        const std::string flag = argv[i];
        if ((flag == "-n" || flag == "-s") && i + 1 < argc) {
            const char* value = argv[++i];
            if (flag == "-n" ? !parse(value, s.calls) || s.calls < 1 : !parse(value, s.seconds) || s.seconds <= 0)
                return false;
        } else {
            positional.push_back(argv[i]);
        }
    }
    if (positional.size() != 2 || !parse(positional[1], s.port) || s.port < 1 || s.port > 65535) return false;
    s.ip = positional[0];
    return true;
}

// The value below which `fraction` of the sorted values lie.
double percentile(const std::vector<double>& sorted, double fraction) {
    const std::size_t rank = static_cast<std::size_t>(std::ceil(fraction * static_cast<double>(sorted.size())));
    return sorted[std::clamp<std::size_t>(rank, 1, sorted.size()) - 1];
}

void measure_round_trip(qm_robot_handle* arm, int calls) {
    float joints[ARM_DOF];
    for (int i = 0; i < 5; ++i) qm_get_joint_degree(arm, joints);  // warm up
    std::vector<double> ms;
    int failed = 0;
    for (int i = 0; i < calls; ++i) {
        const Clock::time_point start = Clock::now();
        const int rc = qm_get_joint_degree(arm, joints);
        const double took = Ms(Clock::now() - start).count();
        if (rc == 0)
            ms.push_back(took);
        else
            ++failed;
    }
    if (ms.empty()) {
        std::printf("round trip: all %d queries failed\n", calls);
        return;
    }
    std::sort(ms.begin(), ms.end());
    std::printf("round trip of get_joint_degree over %zu calls: p50 %.3f ms, p99 %.3f ms, max %.3f ms", ms.size(),
                percentile(ms, 0.5), percentile(ms, 0.99), ms.back());
    if (failed) std::printf(" (%d failed)", failed);
    std::printf("\n");
}

void measure_push(qm_robot_handle* arm, double seconds) {
    qm_realtime_push_config_t config{};
    if (qm_get_realtime_push(arm, &config) != 0) {
        std::printf("realtime push: its configuration cannot be read\n");
        return;
    }
    {
        std::lock_guard lock(g_mutex);
        g_arrivals.clear();
    }
    std::this_thread::sleep_for(Ms(seconds * 1000.0));
    std::vector<Clock::time_point> arrivals;
    {
        std::lock_guard lock(g_mutex);
        arrivals.swap(g_arrivals);
    }
    if (arrivals.size() < 2) {
        std::printf("realtime push: %zu datagrams from %s in %.1f s (the controller pushes %s to %s:%d)\n",
                    arrivals.size(), g_controller_ip.c_str(), seconds, config.enable ? "on" : "off", config.ip,
                    config.port);
        return;
    }
    std::vector<double> periods;
    for (std::size_t i = 1; i < arrivals.size(); ++i) periods.push_back(Ms(arrivals[i] - arrivals[i - 1]).count());
    double mean = 0.0;
    for (double p : periods) mean += p;
    mean /= static_cast<double>(periods.size());
    double variance = 0.0;
    std::vector<double> deviations;
    for (double p : periods) {
        variance += (p - mean) * (p - mean);
        deviations.push_back(std::fabs(p - mean));
    }
    std::sort(deviations.begin(), deviations.end());
    std::printf("realtime push to port %d (cycle %d): %zu datagrams in %.1f s, period %.3f ms, "
                "jitter %.3f ms (standard deviation), p99 |deviation| %.3f ms\n",
                config.port, config.cycle, arrivals.size(), seconds, mean,
                std::sqrt(variance / static_cast<double>(periods.size())), percentile(deviations, 0.99));
}

}  // namespace

int main(int argc, char** argv) {
    Settings settings;
    if (!read_arguments(argc, argv, settings)) {
        std::fprintf(stderr,
                     "Usage: %s IP PORT [-n CALLS] [-s SECONDS]\n"
                     "Measures a controller's command round trip over CALLS queries (default 200) and\n"
                     "its realtime push period and jitter over SECONDS (default 2).\n",
                     argv[0]);
        return 2;
    }
    g_controller_ip = settings.ip;
    qm_init(QM_TRIPLE_MODE_E);
    qm_realtime_arm_state_call_back(on_record);
    qm_robot_handle* arm = qm_create_robot_arm(settings.ip, settings.port);
    if (!arm || arm->id <= 0) {
        std::fprintf(stderr, "qm_latency: cannot connect to %s:%d\n", settings.ip, settings.port);
        qm_destory();
        return 1;
    }
    std::printf("qm_latency: %s:%d\n", settings.ip, settings.port);
    measure_round_trip(arm, settings.calls);
    measure_push(arm, settings.seconds);
    qm_delete_robot_arm(arm);
    qm_destory();
    return 0;
}
