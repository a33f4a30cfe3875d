#include "simulator.h"

#include <arpa/inet.h>
#include <sys/socket.h>

#include <cerrno>
#include <future>
#include <system_error>

#include "command.h"
#include "datagram.h"

namespace sim {

namespace {

constexpr int kPortAttempts = 32;
// A client that announced an upload and stops sending it for this long has given up.
constexpr auto kUploadPatience = std::chrono::seconds(5);

// A UDP port nothing is bound to right now.
int free_udp_port(const std::string& ip) {
    Fd fd(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    const sockaddr_in addr = ipv4_address(ip, 0);
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

    std::vector<Fd> listening = bind_ports();
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
        listeners_.push_back(std::make_unique<Listener>(
            loop_, std::move(listening[static_cast<std::size_t>(i)]), "arm " + std::to_string(i + 1), log_,
            [this, i](Fd client, const sockaddr_in& peer) { accept(i, std::move(client), peer); }));
        push_changed(i);
    }
    warn_unless_loopback(log_, options_.bind);
}

Simulator::~Simulator() {
    listeners_.clear();
    connections_.clear();
    for (EventLoop::TimerId timer : push_timers_) loop_.cancel(timer);
    arms_.clear();
}

std::vector<Fd> Simulator::bind_ports() {
    std::vector<Fd> listening;
    for (int attempt = 0; attempt < kPortAttempts; ++attempt) {
        listening.clear();
        ports_.clear();
        for (int i = 0; i < options_.arms; ++i) {
            // Port 0: the first arm takes a free port, the others the ones after it.
            const int wanted = options_.port == 0 ? (i == 0 ? 0 : ports_[0] + i) : options_.port + i;
            Fd fd = listen_on(options_.bind, wanted);
            if (!fd) break;
            ports_.push_back(bound_port(fd.get()));
            listening.push_back(std::move(fd));
        }
        if (static_cast<int>(listening.size()) == options_.arms) return listening;
        if (options_.port != 0) break;
    }
    const int failed = options_.port == 0 ? 0 : options_.port + static_cast<int>(listening.size());
    throw socket_error("cannot listen on " + options_.bind + ":" + std::to_string(failed));
}

void Simulator::run() {
    loop_.run();
}

void Simulator::stop() {
    loop_.stop();
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

void Simulator::accept(int arm, Fd client, const sockaddr_in& peer) {
    const int id = next_connection_++;
    log_.note("arm " + std::to_string(arm + 1) + ": client #" + std::to_string(id) + " from " + address_text(peer));
    connections_[id] = std::make_unique<Connection>(
        loop_, std::move(client), arm, id, options_.faults, log_,
        [this](Connection& from, std::string_view line) { serve(from, line); },
        [this](Connection& closed) {
            log_.note("arm " + std::to_string(closed.arm() + 1) + ": client #" + std::to_string(closed.id()) +
                      " gone");
            // Not here: the connection is still inside its own callback.
            loop_.post([this, id = closed.id()] { connections_.erase(id); });
        });
}

void Simulator::broadcast(int arm, const std::string& line) {
    for (const auto& [id, connection] : connections_)
        if (connection->arm() == arm) connection->send(line);
}

void Simulator::send_to(int connection, const std::string& line) {
    auto it = connections_.find(connection);
    if (it != connections_.end()) it->second->send(line);
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
    Call call(arm, request.get(), command.reply_key ? command.reply_key : command.name, from.id());
    try {
        command.run(call);
    } catch (const BadRequest& bad) {
        call.refuse(bad.what());
        call.reply.set("error", bad.what());
        call.deferred = false;
        call.then.clear();
        call.upload.reset();
    }
    if (!call.refusal.empty()) log_.note(who + command.name + " refused: " + call.refusal);
    if (command.reply_key && !call.deferred) {  // else streamed, or answered later
        if (command.verdict) call.reply.set(command.verdict, call.accepted);
        from.reply(call.reply.text());
    }
    for (const std::string& next : call.then) from.send(next);
    if (call.upload) take_upload(from, arm, std::move(*call.upload));
}

void Simulator::take_upload(Connection& from, Arm& arm, Upload upload) {
    from.read_raw(upload.bytes, kUploadPatience,
                  [&arm, upload = std::move(upload)](Connection& to, std::optional<std::string_view> bytes) {
                      arm.settle();
                      to.reply(bytes ? upload.answer(*bytes) : upload.incomplete);
                  });
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

}  // namespace sim
