// One query round trip against a loopback controller that answers at once, as an application
// makes it (qm_get_current_joint_temperature) in both thread modes, against a raw client that
// writes the same request bytes to the same controller and reads the reply line itself. The
// summary gives each mode's median and 99th percentile as multiples of the raw ones.
#include <benchmark/benchmark.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "fake_controller.h"
#include "qm_interface.h"

namespace {

constexpr std::string_view kRequest = "{\"command\":\"get_current_joint_temperature\"}\r\n";
constexpr const char* kReply =
    R"({"command":"current_joint_temperature","joint_temperature":[25000,25100,25200,25300,25400,25500]})";

struct Percentiles {
    double p50 = 0, p99 = 0, max = 0;
};
std::map<std::string, Percentiles> g_results;
constexpr const char* kRaw = "raw ping-pong";

void report(benchmark::State& state, const char* label, std::vector<double>& micros) {
    if (micros.empty()) return;
    std::sort(micros.begin(), micros.end());
    auto at = [&](double q) { return micros[static_cast<size_t>(q * static_cast<double>(micros.size() - 1))]; };
    const Percentiles p{at(0.50), at(0.99), micros.back()};
    state.counters["p50_us"] = p.p50;
    state.counters["p99_us"] = p.p99;
    state.counters["max_us"] = p.max;
    g_results[label] = p;
}

template <class Call>
void time_calls(benchmark::State& state, const char* label, Call call) {
    std::vector<double> micros;
    micros.reserve(400000);
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        const bool ok = call();
        const auto end = std::chrono::steady_clock::now();
        if (!ok) {
            state.SkipWithError("round trip failed");
            return;
        }
        micros.push_back(std::chrono::duration<double, std::micro>(end - start).count());
    }
    report(state, label, micros);
}

void BM_QueryRoundTrip(benchmark::State& state, qm_thread_mode_e mode) {
    const char* label = mode == QM_DUAL_MODE_E ? "query, receive thread (dual mode)" : "query, single thread";
    qm_test::FakeController controller;
    controller.reply("get_current_joint_temperature", kReply);
    qm_test::ArmSession session(controller, mode);
    if (!session.handle() || session.handle()->id != 1) {
        state.SkipWithError("the arm did not connect");
        return;
    }
    float temperature[ARM_DOF] = {};
    time_calls(state, label, [&] { return qm_get_current_joint_temperature(session.handle(), temperature) == 0; });
}

// The same bytes over a plain blocking socket: the least a round trip can take here.
void BM_RawPingPong(benchmark::State& state) {
    qm_test::FakeController controller;
    controller.reply("get_current_joint_temperature", kReply);
    const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in addr{};
    addr.sin_family = AF_INET;
    addr.sin_port = htons(static_cast<uint16_t>(controller.port()));
    addr.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (fd < 0 || ::connect(fd, reinterpret_cast<sockaddr*>(&addr), sizeof addr) != 0) {
        state.SkipWithError("no connection");
        if (fd >= 0) ::close(fd);
        return;
    }
    char buf[2048];
    time_calls(state, kRaw, [&] {
        if (::send(fd, kRequest.data(), kRequest.size(), MSG_NOSIGNAL) != static_cast<ssize_t>(kRequest.size()))
            return false;
        size_t got = 0;
        while (got < 2 || buf[got - 2] != '\r' || buf[got - 1] != '\n') {
            const ssize_t n = ::recv(fd, buf + got, sizeof buf - got, 0);
            if (n <= 0) return false;
            got += static_cast<size_t>(n);
        }
        return true;
    });
    ::close(fd);
}

BENCHMARK(BM_RawPingPong)->Unit(benchmark::kMicrosecond)->MinTime(3.0);
BENCHMARK_CAPTURE(BM_QueryRoundTrip, receive_thread, QM_DUAL_MODE_E)->Unit(benchmark::kMicrosecond)->MinTime(3.0);
BENCHMARK_CAPTURE(BM_QueryRoundTrip, single_thread, QM_SINGLE_MODE_E)->Unit(benchmark::kMicrosecond)->MinTime(3.0);

void print_summary() {
    const auto raw = g_results.find(kRaw);
    if (raw == g_results.end() || raw->second.p50 <= 0) return;
    std::printf("\nround trip against the raw ping-pong of the same run (p50 %.1f us, p99 %.1f us):\n",
                raw->second.p50, raw->second.p99);
    for (const auto& [name, p] : g_results) {
        if (&p == &raw->second) continue;
        std::printf("  %-36s median %.2fx  p99 %.2fx\n", name.c_str(), p.p50 / raw->second.p50,
                    p.p99 / raw->second.p99);
    }
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    print_summary();
    return 0;
}
