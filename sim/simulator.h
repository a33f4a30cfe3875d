// The controller simulator: one or more arms, each listening on its own TCP port, answering
// the command protocol, moving in simulated time and pushing its realtime state over UDP.
// Everything runs on the one thread inside run().
//
//     sim::Options options;
//     options.port = 0;           // free ports
//     options.speed_factor = 10;  // moves ten times faster than real
//     sim::SimulatorThread simulator(options);  // serving on a thread of its own
//     qm_create_robot_arm("127.0.0.1", simulator->port(0));
#ifndef QM_SIM_SIMULATOR_H
#define QM_SIM_SIMULATOR_H

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "arm.h"
#include "connection.h"
#include "event_loop.h"
#include "log.h"
#include "net.h"
#include "options.h"
#include "server_thread.h"

namespace sim {

struct Command;
struct Upload;

// What a test or an operator may see of an arm from another thread.
struct ArmView {
    Joints joints{};  // degrees
    Pose pose{};      // tool pose in the work frame
    bool moving = false;
    bool paused = false;
    std::size_t queued = 0;
    std::string tool, work;
    int clients = 0;
    std::uint64_t datagrams = 0;
};

class Simulator : private ArmHost {
public:
    // Binds every port; throws std::system_error when one is taken or cannot be bound.
    explicit Simulator(const Options& options, NoteSink notes = {});
    ~Simulator() override;
    Simulator(const Simulator&) = delete;
    Simulator& operator=(const Simulator&) = delete;

    // Serves until stop(), which may come from any thread.
    void run();
    void stop();
    // Makes SIGINT and SIGTERM stop the simulator; call before starting other threads.
    void stop_on_signals() { loop_.stop_on_signals(); }

    int arms() const { return static_cast<int>(arms_.size()); }
    int port(int arm = 0) const { return ports_.at(static_cast<std::size_t>(arm)); }
    // The push destination an arm starts with.
    int push_port(int arm) const { return push_ports_.at(static_cast<std::size_t>(arm)); }
    const Options& options() const { return options_; }
    // Realtime datagrams sent so far, by all arms or by one.
    std::uint64_t datagrams_sent() const;
    std::uint64_t datagrams_sent(int arm) const;
    // A consistent view of an arm, taken on the loop thread; run() must be serving.
    ArmView view(int arm);

private:
    // ArmHost
    void broadcast(int arm, const std::string& line) override;
    void send_to(int connection, const std::string& line) override;
    EventLoop& loop() override { return loop_; }
    const SimClock& clock() const override { return clock_; }
    void push_changed(int arm) override;
    void note(const std::string& text) override { log_.note(text); }

    std::vector<Fd> bind_ports();
    void accept(int arm, Fd client, const sockaddr_in& peer);
    void serve(Connection& from, std::string_view line);
    void take_upload(Connection& from, Arm& arm, Upload upload);
    void push(int arm);

    Options options_;
    Log log_;
    EventLoop loop_;
    SimClock clock_;
    std::vector<std::unique_ptr<Listener>> listeners_;
    std::vector<int> ports_;
    std::vector<int> push_ports_;
    std::vector<std::unique_ptr<Arm>> arms_;
    std::unordered_map<std::string_view, const Command*> commands_;
    std::map<int, std::unique_ptr<Connection>> connections_;
    int next_connection_ = 1;

    Fd udp_;
    std::vector<EventLoop::TimerId> push_timers_;
    std::vector<EventLoop::Clock::time_point> push_due_;
    std::unique_ptr<std::atomic<std::uint64_t>[]> datagrams_;
};

using SimulatorThread = ServerThread<Simulator>;

}  // namespace sim

#endif
