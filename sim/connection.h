// One client connection: cuts the incoming bytes into "\r\n"-terminated lines and writes
// replies and events in order, applying the configured faults. Never blocks: what the
// client does not take yet waits in a queue.
#ifndef QM_SIM_CONNECTION_H
#define QM_SIM_CONNECTION_H

#include <deque>
#include <functional>
#include <optional>
#include <random>
#include <string>
#include <string_view>

#include "event_loop.h"
#include "fd.h"
#include "log.h"
#include "options.h"

namespace sim {

class Connection {
public:
    using Clock = EventLoop::Clock;
    using LineHandler = std::function<void(Connection& from, std::string_view line)>;
    using ClosedHandler = std::function<void(Connection& closed)>;
    // The raw bytes, or none when they stopped coming before all were there.
    using RawHandler = std::function<void(Connection& from, std::optional<std::string_view> bytes)>;

    Connection(EventLoop& loop, Fd socket, int arm, int id, const Faults& faults, const Log& log,
               LineHandler on_line, ClosedHandler on_closed);
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    int arm() const { return arm_; }
    int id() const { return id_; }
    bool open() const { return socket_.get() >= 0; }

    // A reply to a command: every fault applies.
    void reply(const std::string& line);
    // An unsolicited line (an event): only the cutting of lines applies. It goes out after
    // `delay`, and never before the lines queued earlier.
    void send(const std::string& line, Clock::duration delay = {});
    // The next `bytes` bytes are not lines but data for `done`; after `patience` without all
    // of them, done gets none and lines are read again.
    void read_raw(std::size_t bytes, Clock::duration patience, RawHandler done);
    // Closes at once; the owner hears of it through on_closed.
    void close();

private:
    struct Piece {
        std::string bytes;
        Clock::time_point not_before;
    };

    void on_ready(std::uint32_t events);
    void read_input();
    void take_lines();
    void end_raw(bool complete);
    void queue_line(const std::string& line, Clock::duration delay);
    void flush();

    EventLoop& loop_;
    Fd socket_;
    int arm_;
    int id_;
    const Faults& faults_;
    const Log& log_;
    LineHandler on_line_;
    ClosedHandler on_closed_;

    std::string input_;
    bool skipping_ = false;  // inside an oversized line, up to its end
    struct Raw {
        std::size_t left;
        std::string bytes;
        RawHandler done;
        EventLoop::TimerId expiry;
    };
    std::optional<Raw> raw_;
    std::deque<Piece> output_;
    std::size_t queued_bytes_ = 0;
    bool want_write_ = false;
    EventLoop::TimerId flush_timer_ = 0;
    Clock::time_point flush_timer_at_{};

    int commands_ = 0;
    int replies_ = 0;
    bool close_when_flushed_ = false;
    std::mt19937 random_;
};

}  // namespace sim

#endif
