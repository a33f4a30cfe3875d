#include "recorder.h"

#include <sys/epoll.h>
#include <sys/socket.h>

#include <cerrno>
#include <cstring>

namespace sim {

namespace {

constexpr std::size_t kReadChunk = 65536;
constexpr std::size_t kMaxPending = 16 * 1024 * 1024;  // a side that stops reading is dropped

}  // namespace

// One client and its connection to the controller. Bytes pass unchanged; lines are cut from a
// copy for the recording.
class Recorder::Relay {
public:
    Relay(Recorder& owner, int id, Fd client, Fd upstream)
        : owner_(owner), id_(id), sides_{Side{std::move(client)}, Side{std::move(upstream)}} {
        watch(kClient, EPOLLIN | EPOLLRDHUP);
        watch(kUpstream, EPOLLOUT);  // writable once the connection is made or has failed
    }
    ~Relay() {
        for (Side& side : sides_)
            if (side.fd) owner_.loop_.unwatch(side.fd.get());
    }

private:
    static constexpr int kClient = 0, kUpstream = 1;
    struct Side {
        Fd fd;
        std::string pending{};  // bytes for this side
        std::string partial{};  // the start of a line from this side
        bool want_write = false;
    };

    void watch(int side, std::uint32_t events) {
        owner_.loop_.watch(sides_[side].fd.get(), events, [this, side](std::uint32_t ready) { on_ready(side, ready); });
    }

    void on_ready(int side, std::uint32_t ready) {
        if (side == kUpstream && !connected_) {
            if (int error = connect_error(sides_[kUpstream].fd.get())) {
                owner_.log_.note(id_, std::string("cannot reach the controller: ") + std::strerror(error));
                return close();
            }
            connected_ = true;
            owner_.loop_.change(sides_[kUpstream].fd.get(), EPOLLIN | EPOLLRDHUP);
            flush(kUpstream);
            return;
        }
        if (ready & (EPOLLIN | EPOLLRDHUP | EPOLLHUP | EPOLLERR)) pass_on(side);
        if (open_ && (ready & EPOLLOUT)) flush(side);
    }

    // Reads what `from` sent, records its lines and queues it for the other side.
    void pass_on(int from) {
        const int to = 1 - from;
        char buf[kReadChunk];
        for (;;) {
            const ssize_t n = ::recv(sides_[from].fd.get(), buf, sizeof buf, MSG_DONTWAIT);
            if (n > 0) {
                record(from, std::string_view(buf, static_cast<std::size_t>(n)));
                sides_[to].pending.append(buf, static_cast<std::size_t>(n));
                continue;
            }
            if (n < 0 && errno == EINTR) continue;
            if (n < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) break;
            flush(to);  // what came before the end still goes on
            return close();
        }
        if (sides_[to].pending.size() > kMaxPending) {
            owner_.log_.note(id_, "a side stopped reading, closed");
            return close();
        }
        flush(to);
    }

    void record(int from, std::string_view bytes) {
        std::string& partial = sides_[from].partial;
        partial.append(bytes);
        std::size_t start = 0;
        for (std::size_t end; (end = partial.find("\r\n", start)) != std::string::npos; start = end + 2)
            owner_.recording_.write(id_, from == kClient ? '>' : '<', std::string_view(partial).substr(start, end - start));
        partial.erase(0, start);
    }

    void flush(int side) {
        Side& s = sides_[side];
        if (!open_ || (side == kUpstream && !connected_)) return;
        while (!s.pending.empty()) {
            const ssize_t n = ::send(s.fd.get(), s.pending.data(), s.pending.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
            if (n < 0 && errno == EINTR) continue;
            if (n < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) break;
            if (n < 0) return close();
            s.pending.erase(0, static_cast<std::size_t>(n));
        }
        const bool want = !s.pending.empty();
        if (want != s.want_write) owner_.loop_.change(s.fd.get(), EPOLLIN | EPOLLRDHUP | (want ? EPOLLOUT : 0u));
        s.want_write = want;
    }

    void close() {
        if (!open_) return;
        open_ = false;
        owner_.recording_.write(id_, '-', "");
        owner_.log_.note(id_, "closed");
        for (Side& side : sides_) {
            owner_.loop_.unwatch(side.fd.get());
            side.fd.reset();
        }
        // Not here: the relay is still inside its own callback.
        owner_.loop_.post([&owner = owner_, id = id_] { owner.relays_.erase(id); });
    }

    Recorder& owner_;
    int id_;
    Side sides_[2];
    bool connected_ = false;
    bool open_ = true;
};

Recorder::Recorder(const Options& options, NoteSink notes)
    : options_(options), log_(std::move(notes), options.log_path), recording_(options.record_path) {
    std::string ip;
    int port = 0;
    split_endpoint("upstream", options_.upstream, ip, port);
    upstream_ = ipv4_address(ip, port);
    listener_ = std::make_unique<Listener>(loop_, options_.bind, options_.port, "recorder", log_,
                                           [this](Fd client, const sockaddr_in& peer) { accept(std::move(client), peer); });
    warn_unless_loopback(log_, options_.bind);
}

Recorder::~Recorder() {
    listener_.reset();
    relays_.clear();
}

void Recorder::accept(Fd client, const sockaddr_in& peer) {
    const int id = next_id_++;
    Fd upstream = connect_to(upstream_);
    if (!upstream) {
        log_.note(id, "cannot connect to the controller " + options_.upstream);
        return;
    }
    log_.note(id, address_text(peer) + " to the controller " + options_.upstream);
    recording_.write(id, '+', address_text(peer));
    relays_[id] = std::make_unique<Relay>(*this, id, std::move(client), std::move(upstream));
}

}  // namespace sim
