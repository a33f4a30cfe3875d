#include "connection.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/epoll.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>

namespace sim {

namespace {

constexpr std::size_t kReadChunk = 65536;
constexpr std::size_t kMaxLine = 256 * 1024;          // longer input is refused
constexpr std::size_t kMaxQueued = 16 * 1024 * 1024;  // a client that stops reading is dropped
constexpr std::size_t kOversizedLine = 30000;         // beyond every client buffer
constexpr const char* kGarbageLine = "#garbage}{ not a JSON line";

std::string oversized_line() {
    std::string line = R"({"command":"oversized","padding":")";
    line.append(kOversizedLine, 'x');
    line += "\"}";
    return line;
}

}  // namespace

Connection::Connection(EventLoop& loop, Fd socket, int arm, int id, const Faults& faults, const Log& log,
                       LineHandler on_line, ClosedHandler on_closed)
    : loop_(loop),
      socket_(std::move(socket)),
      arm_(arm),
      id_(id),
      faults_(faults),
      log_(log),
      on_line_(std::move(on_line)),
      on_closed_(std::move(on_closed)),
      random_(faults.seed + static_cast<unsigned>(id)) {
    loop_.watch(socket_.get(), EPOLLIN | EPOLLRDHUP, [this](std::uint32_t events) { on_ready(events); });
}

Connection::~Connection() {
    loop_.cancel(flush_timer_);
    if (raw_) loop_.cancel(raw_->expiry);
    if (open()) loop_.unwatch(socket_.get());
}

void Connection::on_ready(std::uint32_t events) {
    if (events & (EPOLLIN | EPOLLRDHUP | EPOLLHUP | EPOLLERR)) read_input();
    if (open() && (events & EPOLLOUT)) flush();
}

void Connection::read_input() {
    // Acknowledged at once: a client whose small writes wait for our acknowledgement (Nagle)
    // would otherwise stream no faster than the delayed acknowledgements come.
    const int one = 1;
    ::setsockopt(socket_.get(), IPPROTO_TCP, TCP_QUICKACK, &one, sizeof one);
    char buf[kReadChunk];
    for (;;) {
        const ssize_t n = ::recv(socket_.get(), buf, sizeof buf, MSG_DONTWAIT);
        if (n > 0) {
            input_.append(buf, static_cast<std::size_t>(n));
            continue;
        }
        if (n < 0 && errno == EINTR) continue;
        if (n < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) break;
        take_lines();  // what came before the end still counts
        close();
        return;
    }
    take_lines();
}

void Connection::take_lines() {
    std::size_t start = 0;
    while (open() && !close_when_flushed_) {
        if (raw_) {
            const std::size_t n = std::min(raw_->left, input_.size() - start);
            raw_->bytes.append(input_, start, n);
            raw_->left -= n;
            start += n;
            if (raw_->left > 0) break;
            end_raw(true);
            continue;
        }
        const std::size_t end = input_.find("\r\n", start);
        if (end == std::string::npos) break;
        const std::string_view line(input_.data() + start, end - start);
        start = end + 2;
        if (skipping_) {
            skipping_ = false;
            continue;
        }
        log_.traffic(arm_, id_, true, line);
        on_line_(*this, line);
        if (faults_.close_after > 0 && ++commands_ >= faults_.close_after) {
            close_when_flushed_ = true;
            flush();
        }
    }
    input_.erase(0, start);
    if (!raw_ && input_.size() > kMaxLine) {
        log_.note("connection #" + std::to_string(id_) + ": a line of more than " + std::to_string(kMaxLine) +
                  " bytes, dropped");
        reply(R"({"command":"error","error":"line too long"})");
        input_.clear();
        skipping_ = true;
    }
}

void Connection::read_raw(std::size_t bytes, Clock::duration patience, RawHandler done) {
    if (raw_) loop_.cancel(raw_->expiry);
    raw_.emplace(Raw{bytes, {}, std::move(done), loop_.at(Clock::now() + patience, [this] { end_raw(false); })});
    if (bytes == 0) end_raw(true);
}

void Connection::end_raw(bool complete) {
    Raw raw = std::move(*raw_);
    raw_.reset();
    loop_.cancel(raw.expiry);
    std::string summary = "(";
    summary += std::to_string(raw.bytes.size());
    summary += complete ? " bytes of data)" : " bytes of data, incomplete)";
    log_.traffic(arm_, id_, true, summary);
    if (complete)
        raw.done(*this, std::string_view(raw.bytes));
    else
        raw.done(*this, std::nullopt);
    if (!complete) take_lines();  // what came meanwhile is lines again
}

void Connection::reply(const std::string& line) {
    if (!open()) return;
    ++replies_;
    if (faults_.drop_replies > 0.0 &&
        std::uniform_real_distribution<double>(0.0, 1.0)(random_) < faults_.drop_replies)
        return;
    if (faults_.garbage_every > 0 && replies_ % faults_.garbage_every == 0) queue_line(kGarbageLine, {});
    if (faults_.oversized_every > 0 && replies_ % faults_.oversized_every == 0)
        queue_line(oversized_line(), {});
    queue_line(line, faults_.reply_delay);
}

void Connection::send(const std::string& line, Clock::duration delay) {
    if (open()) queue_line(line, delay);
}

void Connection::queue_line(const std::string& line, Clock::duration delay) {
    log_.traffic(arm_, id_, false, line);
    const std::string bytes = line + "\r\n";
    Clock::time_point at = Clock::now() + delay;
    if (!output_.empty()) at = std::max(at, output_.back().not_before);
    std::size_t from = 0;
    for (int cut : faults_.split_at) {
        const std::size_t to = static_cast<std::size_t>(cut);
        if (to <= from || to >= bytes.size()) continue;
        output_.push_back({bytes.substr(from, to - from), at});
        at += faults_.split_gap;
        from = to;
    }
    output_.push_back({bytes.substr(from), at});
    queued_bytes_ += bytes.size();
    if (queued_bytes_ > kMaxQueued) {
        log_.note("connection #" + std::to_string(id_) + ": the client stopped reading, closed");
        close();
        return;
    }
    flush();
}

void Connection::flush() {
    const Clock::time_point now = Clock::now();
    while (open() && !output_.empty()) {
        Piece& piece = output_.front();
        if (piece.not_before > now) {
            if (flush_timer_ == 0 || flush_timer_at_ > piece.not_before) {
                loop_.cancel(flush_timer_);
                flush_timer_at_ = piece.not_before;
                flush_timer_ = loop_.at(piece.not_before, [this] {
                    flush_timer_ = 0;
                    flush();
                });
            }
            return;
        }
        const ssize_t n =
            ::send(socket_.get(), piece.bytes.data(), piece.bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) {
            if (!want_write_) loop_.change(socket_.get(), EPOLLIN | EPOLLRDHUP | EPOLLOUT);
            want_write_ = true;
            return;
        }
        if (n < 0) {
            close();
            return;
        }
        queued_bytes_ -= static_cast<std::size_t>(n);
        if (static_cast<std::size_t>(n) < piece.bytes.size()) {
            piece.bytes.erase(0, static_cast<std::size_t>(n));
            continue;  // the next send says whether the socket is full
        }
        output_.pop_front();
    }
    if (!open()) return;
    if (want_write_) {
        loop_.change(socket_.get(), EPOLLIN | EPOLLRDHUP);
        want_write_ = false;
    }
    if (close_when_flushed_) close();
}

void Connection::close() {
    if (!open()) return;
    loop_.unwatch(socket_.get());
    loop_.cancel(flush_timer_);
    flush_timer_ = 0;
    if (raw_) loop_.cancel(raw_->expiry);
    raw_.reset();
    socket_.reset();
    output_.clear();
    queued_bytes_ = 0;
    on_closed_(*this);
}

}  // namespace sim
