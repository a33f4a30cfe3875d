// One epoll loop for the whole simulator: descriptors, timers and calls posted from other
// threads. Everything the simulator does runs on the thread inside run(); nothing polls.
#ifndef QM_SIM_EVENT_LOOP_H
#define QM_SIM_EVENT_LOOP_H

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <unordered_map>
#include <vector>

#include "fd.h"

namespace sim {

class EventLoop {
public:
    using Clock = std::chrono::steady_clock;
    using TimerId = std::uint64_t;
    using ReadyFn = std::function<void(std::uint32_t events)>;

    EventLoop();
    EventLoop(const EventLoop&) = delete;
    EventLoop& operator=(const EventLoop&) = delete;

    // Calls on_ready with the epoll events whenever fd is ready. The descriptor stays owned
    // by the caller, who unwatches it before closing it.
    void watch(int fd, std::uint32_t events, ReadyFn on_ready);
    void change(int fd, std::uint32_t events);
    void unwatch(int fd);

    // Runs fn once at `when` (at once when that has passed); ids are never reused.
    TimerId at(Clock::time_point when, std::function<void()> fn);
    void cancel(TimerId id);

    // Runs fn on the loop's thread; callable from any thread.
    void post(std::function<void()> fn);

    // Serves until stop(); returns at once when stop() came first.
    void run();
    // Callable from any thread.
    void stop();
    // Makes SIGINT and SIGTERM stop the loop; call before starting other threads.
    void stop_on_signals();

private:
    struct Watcher {
        int fd;
        ReadyFn on_ready;
    };
    struct Timer {
        TimerId id;
        std::function<void()> fn;
    };
    using TimerQueue = std::multimap<Clock::time_point, Timer>;

    void arm_timerfd();
    void fire_due_timers();
    void run_posted();

    Fd epoll_;
    Fd timer_fd_;
    Fd wake_fd_;
    Fd signal_fd_;
    // epoll data carries a watcher key, never the descriptor: an event for a descriptor that
    // was closed and reused within the same batch then finds no watcher.
    std::unordered_map<std::uint64_t, Watcher> watchers_;
    std::unordered_map<int, std::uint64_t> key_of_fd_;
    std::uint64_t next_key_ = 3;  // 1 and 2 are the timer and the wake descriptor
    TimerQueue timers_;
    std::unordered_map<TimerId, TimerQueue::iterator> timer_index_;
    TimerId next_timer_ = 1;
    Clock::time_point armed_for_ = Clock::time_point::max();

    std::mutex posted_mutex_;
    std::vector<std::function<void()>> posted_;
    bool stopping_ = false;  // guarded by posted_mutex_
};

}  // namespace sim

#endif
