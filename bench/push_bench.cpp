// The realtime push as an application receives it: a datagram sent to the port a connected arm
// pushes to, until the realtime callback has its record. Beside it the decode of a datagram with
// every section present, and, after the timings, five arms pushing at 1 kHz each for three
// seconds with the share of one core the UDP thread takes to keep up.
#include <benchmark/benchmark.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <pthread.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <ctime>
#include <cstdio>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "fake_controller.h"
#include "qm_interface.h"
#include "qm_realtime.h"

namespace {

using Clock = std::chrono::steady_clock;
constexpr int kArms = 5;

// [value,value,...]
std::string ints(int count, int value) {
    std::string out = "[";
    for (int i = 0; i < count; ++i) {
        if (i > 0) out += ',';
        out += std::to_string(value);
    }
    return out + "]";
}

// A push of a seven-joint arm with every optional section, within the 2048 bytes a datagram may have.
std::string full_datagram() {
    std::string plus_state = R"({"sys_state":1)";
    for (const char* key : {"dof_state", "dof_err", "pos", "speed", "angle", "current", "tsa", "tma", "force"})
        plus_state += std::string(",\"") + key + "\":" + ints(12, 1);
    for (const char* key : {"normal_force", "tangential_force", "tangential_force_dir", "touch_data"})
        plus_state += std::string(",\"") + key + "\":" + ints(18, 2);
    std::string plus_base = R"({"manu":"maker","type":2,"hv":"1.0","sv":"2.1","bv":"3.2","id":1,"dof":6,)"
                            R"("check":0,"bee":1,"force":true,"touch":false,"touch_num":5,"touch_sw":1,"hand":1)";
    for (const char* key : {"pos_up", "pos_low", "angle_up", "angle_low", "speed_up", "speed_low", "force_up",
                            "force_low"})
        plus_base += std::string(",\"") + key + "\":" + ints(12, 3);
    const std::string joints = R"({"joint_position":)" + ints(7, 12345) + R"(,"joint_current":)" + ints(7, 150) +
                               R"(,"joint_en_flag":)" + ints(7, 1) + R"(,"joint_err_code":)" + ints(7, 0) +
                               R"(,"joint_temperature":)" + ints(7, 25) + R"(,"joint_voltage":)" + ints(7, 48) +
                               R"(,"joint_speed":)" + ints(7, 10) + "}";
    const std::string force = R"({"force":)" + ints(6, 10) + R"(,"zero_force":)" + ints(6, 5) + R"(,"coordinate":0})";
    return R"({"qm_plus_state":)" + plus_state + R"(},"qm_plus_base":)" + plus_base +
           R"(},"aloha_state":{"io1_state":1,"io2_state":0},"arm_current_status":"move_J",)"
           R"("hand":{"hand_pos":)" + ints(6, 10) + R"(,"hand_angle":)" + ints(6, 20) + R"(,"hand_force":)" +
           ints(6, 30) + R"(,"hand_state":)" + ints(6, 0) + R"(,"hand_err":0},)"
           R"("lift_state":{"pos":12000,"height":300,"current":500,"err_flag":0,"en_flag":1},)"
           R"("expand_state":{"joint_id":1,"mode":0,"pos":4000,"current":100,"err_flag":0,"en_flag":1},)"
           R"("joint_status":)" + joints + R"(,"six_force_sensor":)" + force + R"(,"one_force_sensor":)" + force +
           R"(,"waypoint":{"quat":[1000000,0,0,0],"euler":[3142,0,-1571],"position":[100000,0,-250000]},)"
           R"("err":[0,0]})";
}

// What the callback saw: how many records, when the last came, and on which thread.
std::atomic<uint64_t> g_delivered{0};
std::atomic<int64_t> g_arrival_ns{0};
std::atomic<bool> g_udp_thread_known{false};
pthread_t g_udp_thread;
std::atomic<int> g_bad_records{0};

void on_realtime_state(qm_realtime_arm_joint_state_t state) {
    g_arrival_ns = Clock::now().time_since_epoch().count();
    if (state.errCode != 0 || state.joint_status.joint_position[6] != 12.345f) ++g_bad_records;
    if (!g_udp_thread_known) {
        g_udp_thread = pthread_self();
        g_udp_thread_known = true;
    }
    ++g_delivered;
}

int free_udp_port() {
    const int fd = ::socket(AF_INET, SOCK_DGRAM, 0);
    sockaddr_in addr{};
    addr.sin_family = AF_INET;
    addr.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t len = sizeof addr;
    ::bind(fd, reinterpret_cast<sockaddr*>(&addr), sizeof addr);
    ::getsockname(fd, reinterpret_cast<sockaddr*>(&addr), &len);
    ::close(fd);
    return ntohs(addr.sin_port);
}

// Arms in triple mode, each with its own loopback controller that has the arm push to its own port.
class PushingArms {
public:
    explicit PushingArms(int count) : controllers_(static_cast<std::size_t>(count)) {
        qm_init(QM_TRIPLE_MODE_E);
        qm_realtime_arm_state_call_back(on_realtime_state);
        for (auto& controller : controllers_) {
            controller = std::make_unique<qm_test::FakeController>();
            const int port = free_udp_port();
            controller->answer_sync_queries();
            controller->reply("get_realtime_push", R"({"command":"get_realtime_push","cycle":1,"enable":true,)"
                                                   R"("port":)" + std::to_string(port) +
                                                       R"(,"ip":"127.0.0.1","custom":{}})");
            qm_robot_handle* arm = qm_create_robot_arm("127.0.0.1", controller->port());
            if (arm && arm->id > 0) {
                arms_.push_back(arm);
                ports_.push_back(port);
            }
        }
        sender_ = ::socket(AF_INET, SOCK_DGRAM, 0);
    }
    ~PushingArms() {
        ::close(sender_);
        for (qm_robot_handle* arm : arms_) qm_delete_robot_arm(arm);
        qm_destory();
    }
    bool ready() const { return arms_.size() == controllers_.size(); }
    bool push(int arm, const std::string& datagram) const {
        sockaddr_in to{};
        to.sin_family = AF_INET;
        to.sin_port = htons(static_cast<uint16_t>(ports_[static_cast<std::size_t>(arm)]));
        to.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        return ::sendto(sender_, datagram.data(), datagram.size(), 0, reinterpret_cast<sockaddr*>(&to), sizeof to) ==
               static_cast<ssize_t>(datagram.size());
    }

private:
    std::vector<std::unique_ptr<qm_test::FakeController>> controllers_;
    std::vector<qm_robot_handle*> arms_;
    std::vector<int> ports_;
    int sender_ = -1;
};

// Internal: the decode the UDP thread runs on each datagram.
void BM_DecodeFullDatagram(benchmark::State& state) {
    const std::string datagram = full_datagram();
    qm_realtime_arm_joint_state_t record;
    for (auto _ : state) {
        benchmark::DoNotOptimize(parse_qm_realtime_arm_joint_state(datagram.c_str(), &record));
        benchmark::ClobberMemory();
    }
    state.counters["bytes"] = static_cast<double>(datagram.size());
    if (parse_qm_realtime_arm_joint_state(datagram.c_str(), &record) != 0) state.SkipWithError("datagram refused");
}

void BM_ArrivalToCallback(benchmark::State& state) {
    PushingArms arms(1);
    if (!arms.ready()) {
        state.SkipWithError("the arm did not connect");
        return;
    }
    const std::string datagram = full_datagram();
    std::vector<double> micros;
    for (auto _ : state) {
        const uint64_t before = g_delivered;
        const auto sent = Clock::now();
        if (!arms.push(0, datagram)) {
            state.SkipWithError("send failed");
            return;
        }
        while (g_delivered == before) {
            if (Clock::now() - sent > std::chrono::seconds(1)) {
                state.SkipWithError("no callback");
                return;
            }
        }
        micros.push_back(static_cast<double>(g_arrival_ns - sent.time_since_epoch().count()) / 1000.0);
    }
    std::sort(micros.begin(), micros.end());
    const auto at = [&](double q) { return micros[static_cast<std::size_t>(q * static_cast<double>(micros.size() - 1))]; };
    state.counters["p50_us"] = at(0.5);
    state.counters["p99_us"] = at(0.99);
    state.counters["max_us"] = micros.back();
}

BENCHMARK(BM_DecodeFullDatagram);
BENCHMARK(BM_ArrivalToCallback)->Unit(benchmark::kMicrosecond)->MinTime(2.0);

// CPU time (ns) a thread of this process has used.
long long thread_cpu_ns(pthread_t thread) {
    clockid_t clock;
    timespec t{};
    if (pthread_getcpuclockid(thread, &clock) != 0 || clock_gettime(clock, &t) != 0) return 0;
    return t.tv_sec * 1000000000LL + t.tv_nsec;
}

void five_arms_at_one_kilohertz() {
    PushingArms arms(kArms);
    if (!arms.ready()) {
        std::printf("five arms: not all connected\n");
        return;
    }
    const std::string datagram = full_datagram();
    // The callback names the UDP thread before it counts the datagram: wait for the count, so
    // this one is not counted among the three seconds' datagrams.
    const uint64_t before_priming = g_delivered;
    arms.push(0, datagram);
    for (int waited = 0; g_delivered == before_priming; ++waited) {
        if (waited == 1000) {
            std::printf("five arms: the first datagram never reached the callback\n");
            return;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    const pthread_t udp = g_udp_thread;
    const uint64_t delivered_before = g_delivered;
    const int bad_before = g_bad_records;
    const long long cpu_before = thread_cpu_ns(udp);
    constexpr int kPeriods = 3000;  // 3 s at 1 kHz
    auto next = Clock::now();
    for (int period = 0; period < kPeriods; ++period) {
        next += std::chrono::milliseconds(1);
        for (int arm = 0; arm < kArms; ++arm) arms.push(arm, datagram);
        std::this_thread::sleep_until(next);
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    const long long cpu = thread_cpu_ns(udp) - cpu_before;
    const uint64_t delivered = g_delivered - delivered_before;
    std::printf("\nfive arms pushing at 1 kHz for 3 s: %llu of %d datagrams delivered (%d bad), "
                "UDP thread busy %.1f %% of one core\n",
                static_cast<unsigned long long>(delivered), kArms * kPeriods, g_bad_records - bad_before,
                100.0 * static_cast<double>(cpu) / 3e9);
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    five_arms_at_one_kilohertz();
    return 0;
}
