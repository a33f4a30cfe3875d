#include "simulator.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <signal.h>
#include <sys/epoll.h>
#include <sys/signalfd.h>
#include <sys/socket.h>

#include <cerrno>
#include <future>
#include <system_error>

#include "command.h"
#include "datagram.h"

namespace sim {

namespace {

constexpr int kBacklog = 16;
constexpr int kPortAttempts = 32;

std::system_error socket_error(const std::string& what) {
    return std::system_error(errno, std::generic_category(), what);
}

sockaddr_in address(const std::string& ip, int port) {
    sockaddr_in addr{};
    addr.sin_family = AF_INET;
    addr.sin_port = htons(static_cast<std::uint16_t>(port));
    if (::inet_pton(AF_INET, ip.c_str(), &addr.sin_addr) != 1)
        throw std::system_error(EINVAL, std::generic_category(), "not an IPv4 address: " + ip);
    return addr;
}

int bound_port(int fd) {
    sockaddr_in addr{};
    socklen_t len = sizeof addr;
    ::getsockname(fd, reinterpret_cast<sockaddr*>(&addr), &len);
    return ntohs(addr.sin_port);
}

// A listening socket on ip:port, or an empty Fd with errno set.
Fd listen_on(const std::string& ip, int port) {
    Fd fd(::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    if (!fd) return fd;
    const int one = 1;
    ::setsockopt(fd.get(), SOL_SOCKET, SO_REUSEADDR, &one, sizeof one);
    const sockaddr_in addr = address(ip, port);
    if (::bind(fd.get(), reinterpret_cast<const sockaddr*>(&addr), sizeof addr) != 0 ||
        ::listen(fd.get(), kBacklog) != 0)
        return Fd();
    return fd;
}

// A UDP port nothing is bound to right now.
int free_udp_port(const std::string& ip) {
    Fd fd(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    const sockaddr_in addr = address(ip, 0);
    if (!fd || ::bind(fd.get(), reinterpret_cast<const sockaddr*>(&addr), sizeof addr) != 0)
        throw socket_error("cannot find a free UDP port");
    return bound_port(fd.get());
}

}  // namespace

Simulator::Simulator(const Options& options, NoteSink notes)
    : options_(options), log_(std::move(notes), options.log_path), clock_(options.speed_factor) {
    std::optional<ArmModel> model = find_arm_model(options_.model);
    if (!model)
        throw std::system_error(EINVAL, std::generic_category(), "unknown arm model " + options_.model);
    for (std::span<const Command> family : command_families())
        for (const Command& command : family) commands_[command.name] = &command;

    bind_ports();
    udp_ = Fd(::socket(AF_INET, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    if (!udp_) throw socket_error("cannot open the push socket");
    datagrams_ = std::make_unique<std::atomic<std::uint64_t>[]>(static_cast<std::size_t>(options_.arms));
    push_timers_.assign(static_cast<std::size_t>(options_.arms), 0);
    push_due_.assign(static_cast<std::size_t>(options_.arms), {});

    for (int i = 0; i < options_.arms; ++i) {
        const int push_port =
            options_.push.port == 0 ? free_udp_port(options_.push.ip) : options_.push.port + i;
        push_ports_.push_back(push_port);
        PushConfig push;
        push.enable = options_.push.enable;
        push.cycle_ms = options_.push.cycle_ms;
        push.ip = options_.push.ip;
        push.port = push_port;
        ArmHost& host = *this;
        arms_.push_back(std::make_unique<Arm>(i, *model, options_.generation, push, host));
        loop_.watch(listeners_[static_cast<std::size_t>(i)].get(), EPOLLIN,
                    [this, i](std::uint32_t) { accept(i); });
        push_changed(i);
    }
    if (options_.bind != "127.0.0.1")
        log_.note("warning: listening on " + options_.bind +
                  ": the protocol has no authentication, anyone who reaches this address can move the arms");
}

Simulator::~Simulator() {
    connections_.clear();
    for (EventLoop::TimerId timer : push_timers_) loop_.cancel(timer);
    arms_.clear();
}

void Simulator::bind_ports() {
    for (int attempt = 0; attempt < kPortAttempts; ++attempt) {
        listeners_.clear();
        ports_.clear();
        for (int i = 0; i < options_.arms; ++i) {
            // Port 0: the first arm takes a free port, the others the ones after it.
            const int wanted = options_.port == 0 ? (i == 0 ? 0 : ports_[0] + i) : options_.port + i;
            Fd fd = listen_on(options_.bind, wanted);
            if (!fd) break;
            ports_.push_back(bound_port(fd.get()));
            listeners_.push_back(std::move(fd));
        }
        if (static_cast<int>(listeners_.size()) == options_.arms) return;
        if (options_.port != 0) break;
    }
    const int failed = options_.port == 0 ? 0 : options_.port + static_cast<int>(listeners_.size());
    throw socket_error("cannot listen on " + options_.bind + ":" + std::to_string(failed));
}

void Simulator::run() {
    loop_.run();
}

void Simulator::stop() {
    loop_.stop();
}

void Simulator::stop_on_signals() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    ::pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    signal_fd_ = Fd(::signalfd(-1, &signals, SFD_NONBLOCK | SFD_CLOEXEC));
    if (!signal_fd_) throw socket_error("signalfd");
    loop_.watch(signal_fd_.get(), EPOLLIN, [this](std::uint32_t) { stop(); });
}

std::uint64_t Simulator::datagrams_sent() const {
    std::uint64_t total = 0;
    for (int i = 0; i < options_.arms; ++i) total += datagrams_sent(i);
    return total;
}

std::uint64_t Simulator::datagrams_sent(int arm) const {
    return datagrams_[static_cast<std::size_t>(arm)].load();
}

ArmView Simulator::view(int arm) {
    std::promise<ArmView> taken;
    loop_.post([&] {
        Arm& a = *arms_.at(static_cast<std::size_t>(arm));
        a.settle();
        ArmView v;
        v.joints = a.joints();
        v.pose = a.pose();
        v.moving = !a.trajectory().idle();
        v.paused = a.trajectory().paused();
        v.queued = a.trajectory().size();
        v.tool = a.state.tool;
        v.work = a.state.work;
        for (const auto& [id, connection] : connections_)
            v.clients += connection->arm() == arm && connection->open();
        v.datagrams = datagrams_sent(arm);
        taken.set_value(v);
    });
    return taken.get_future().get();
}

void Simulator::accept(int arm) {
    for (;;) {
        sockaddr_in peer{};
        socklen_t len = sizeof peer;
        const int listener = listeners_[static_cast<std::size_t>(arm)].get();
        Fd fd(::accept4(listener, reinterpret_cast<sockaddr*>(&peer), &len, SOCK_NONBLOCK | SOCK_CLOEXEC));
        if (!fd && (errno == EMFILE || errno == ENFILE || errno == ENOBUFS || errno == ENOMEM)) {
            // The waiting client stays readable: listen again a little later instead of spinning.
            log_.note("arm " + std::to_string(arm + 1) + ": cannot accept a client now (out of descriptors)");
            loop_.unwatch(listener);
            loop_.at(EventLoop::Clock::now() + std::chrono::seconds(1), [this, arm, listener] {
                loop_.watch(listener, EPOLLIN, [this, arm](std::uint32_t) { accept(arm); });
            });
            return;
        }
        if (!fd) return;
        const int one = 1;
        ::setsockopt(fd.get(), IPPROTO_TCP, TCP_NODELAY, &one, sizeof one);
        const int id = next_connection_++;
        char ip[INET_ADDRSTRLEN] = "?";
        ::inet_ntop(AF_INET, &peer.sin_addr, ip, sizeof ip);
        log_.note("arm " + std::to_string(arm + 1) + ": client #" + std::to_string(id) + " from " + ip + ":" +
                  std::to_string(ntohs(peer.sin_port)));
        connections_[id] = std::make_unique<Connection>(
            loop_, std::move(fd), arm, id, options_.faults, log_,
            [this](Connection& from, std::string_view line) { serve(from, line); },
            [this](Connection& closed) {
                log_.note("arm " + std::to_string(closed.arm() + 1) + ": client #" +
                          std::to_string(closed.id()) + " gone");
                // Not here: the connection is still inside its own callback.
                loop_.post([this, id = closed.id()] { connections_.erase(id); });
            });
    }
}

void Simulator::broadcast(int arm, const std::string& line) {
    for (const auto& [id, connection] : connections_)
        if (connection->arm() == arm) connection->send(line);
}

void Simulator::serve(Connection& from, std::string_view line) {
    Arm& arm = *arms_[static_cast<std::size_t>(from.arm())];
    arm.settle();  // moves that ended by now are reported before anything else is answered
    const std::string who =
        "arm " + std::to_string(arm.index() + 1) + " #" + std::to_string(from.id()) + ": ";

    JsonPtr request(cJSON_ParseWithLength(line.data(), line.size()));
    const cJSON* name = cJSON_GetObjectItemCaseSensitive(request.get(), "command");
    if (!cJSON_IsObject(request.get()) || !cJSON_IsString(name)) {
        log_.note(who + "malformed request " + std::string(line.substr(0, 200)));
        from.reply(Reply("error")
                       .set("error", request ? "request has no \"command\" text" : "request is not JSON")
                       .text());
        return;
    }
    auto found = commands_.find(name->valuestring);
    if (found == commands_.end()) {
        log_.note(who + "unknown command \"" + name->valuestring + "\"");
        from.reply(Reply(name->valuestring).set("error", "unknown command").text());
        return;
    }
    const Command& command = *found->second;
    Call call(arm, request.get(), command.reply_key ? command.reply_key : command.name);
    try {
        command.run(call);
    } catch (const BadRequest& bad) {
        call.refuse(bad.what());
        call.reply.set("error", bad.what());
    }
    if (!call.refusal.empty()) log_.note(who + command.name + " refused: " + call.refusal);
    if (!command.reply_key) return;  // streamed
    if (command.verdict) call.reply.set(command.verdict, call.accepted);
    from.reply(call.reply.text());
}

void Simulator::push_changed(int arm) {
    const std::size_t i = static_cast<std::size_t>(arm);
    loop_.cancel(push_timers_[i]);
    push_timers_[i] = 0;
    const PushConfig& config = arms_[i]->state.push;
    if (!config.enable) return;
    push_due_[i] = EventLoop::Clock::now() + std::chrono::milliseconds(config.cycle_ms);
    push_timers_[i] = loop_.at(push_due_[i], [this, arm] { push(arm); });
}

void Simulator::push(int arm) {
    const std::size_t i = static_cast<std::size_t>(arm);
    const PushConfig& config = arms_[i]->state.push;
    const std::string datagram = realtime_datagram(*arms_[i]);
    sockaddr_in to{};
    to.sin_family = AF_INET;
    to.sin_port = htons(static_cast<std::uint16_t>(config.port));
    if (::inet_pton(AF_INET, config.ip.c_str(), &to.sin_addr) == 1 &&
        ::sendto(udp_.get(), datagram.data(), datagram.size(), 0, reinterpret_cast<const sockaddr*>(&to),
                 sizeof to) == static_cast<ssize_t>(datagram.size()))
        ++datagrams_[i];
    // Due times follow each other by the cycle, whatever each push cost; a late loop skips
    // the pushes it missed rather than sending a burst.
    const auto cycle = std::chrono::milliseconds(config.cycle_ms);
    const auto now = EventLoop::Clock::now();
    push_due_[i] += cycle;
    if (push_due_[i] <= now) push_due_[i] = now + cycle;
    push_timers_[i] = loop_.at(push_due_[i], [this, arm] { push(arm); });
}

SimulatorThread::SimulatorThread(const Options& options, NoteSink notes)
    : simulator_(std::make_unique<Simulator>(options, std::move(notes))),
      thread_([this] { simulator_->run(); }) {}

SimulatorThread::~SimulatorThread() {
    simulator_->stop();
    thread_.join();
}

}  // namespace sim
