#include "event_loop.h"

#include <signal.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/signalfd.h>
#include <sys/timerfd.h>

#include <cerrno>
#include <system_error>

namespace sim {

namespace {

constexpr std::uint64_t kTimerKey = 1;
constexpr std::uint64_t kWakeKey = 2;
constexpr int kBatch = 64;

Fd checked(int fd, const char* what) {
    if (fd < 0) throw std::system_error(errno, std::generic_category(), what);
    return Fd(fd);
}

void add_to_epoll(int epoll, int fd, std::uint32_t events, std::uint64_t key) {
    epoll_event ev{};
    ev.events = events;
    ev.data.u64 = key;
    if (::epoll_ctl(epoll, EPOLL_CTL_ADD, fd, &ev) != 0)
        throw std::system_error(errno, std::generic_category(), "epoll_ctl");
}

}  // namespace

EventLoop::EventLoop()
    : epoll_(checked(::epoll_create1(EPOLL_CLOEXEC), "epoll_create1")),
      timer_fd_(checked(::timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC), "timerfd_create")),
      wake_fd_(checked(::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC), "eventfd")) {
    add_to_epoll(epoll_.get(), timer_fd_.get(), EPOLLIN, kTimerKey);
    add_to_epoll(epoll_.get(), wake_fd_.get(), EPOLLIN, kWakeKey);
}

void EventLoop::watch(int fd, std::uint32_t events, ReadyFn on_ready) {
    const std::uint64_t key = next_key_++;
    add_to_epoll(epoll_.get(), fd, events, key);
    watchers_[key] = Watcher{fd, std::move(on_ready)};
    key_of_fd_[fd] = key;
}

void EventLoop::change(int fd, std::uint32_t events) {
    auto it = key_of_fd_.find(fd);
    if (it == key_of_fd_.end()) return;
    epoll_event ev{};
    ev.events = events;
    ev.data.u64 = it->second;
    ::epoll_ctl(epoll_.get(), EPOLL_CTL_MOD, fd, &ev);
}

void EventLoop::unwatch(int fd) {
    auto it = key_of_fd_.find(fd);
    if (it == key_of_fd_.end()) return;
    ::epoll_ctl(epoll_.get(), EPOLL_CTL_DEL, fd, nullptr);
    watchers_.erase(it->second);
    key_of_fd_.erase(it);
}

EventLoop::TimerId EventLoop::at(Clock::time_point when, std::function<void()> fn) {
    const TimerId id = next_timer_++;
    timer_index_[id] = timers_.emplace(when, Timer{id, std::move(fn)});
    if (when < armed_for_) arm_timerfd();
    return id;
}

void EventLoop::cancel(TimerId id) {
    auto it = timer_index_.find(id);
    if (it == timer_index_.end()) return;
    timers_.erase(it->second);
    timer_index_.erase(it);
}

void EventLoop::post(std::function<void()> fn) {
    {
        std::lock_guard lock(posted_mutex_);
        posted_.push_back(std::move(fn));
    }
    const std::uint64_t one = 1;
    [[maybe_unused]] ssize_t n = ::write(wake_fd_.get(), &one, sizeof one);
}

void EventLoop::stop() {
    {
        std::lock_guard lock(posted_mutex_);
        stopping_ = true;
    }
    const std::uint64_t one = 1;
    [[maybe_unused]] ssize_t n = ::write(wake_fd_.get(), &one, sizeof one);
}

void EventLoop::arm_timerfd() {
    armed_for_ = timers_.empty() ? Clock::time_point::max() : timers_.begin()->first;
    itimerspec spec{};
    if (!timers_.empty()) {
        const auto since_epoch = armed_for_.time_since_epoch();
        const auto secs = std::chrono::duration_cast<std::chrono::seconds>(since_epoch);
        const auto nanos = std::chrono::duration_cast<std::chrono::nanoseconds>(since_epoch - secs);
        spec.it_value.tv_sec = secs.count();
        spec.it_value.tv_nsec = nanos.count();
        // An all-zero value disarms the timer; a due time at the clock's origin must still fire.
        if (spec.it_value.tv_sec == 0 && spec.it_value.tv_nsec == 0) spec.it_value.tv_nsec = 1;
    }
    ::timerfd_settime(timer_fd_.get(), TFD_TIMER_ABSTIME, &spec, nullptr);
}

void EventLoop::fire_due_timers() {
    std::uint64_t expirations = 0;
    [[maybe_unused]] ssize_t n = ::read(timer_fd_.get(), &expirations, sizeof expirations);
    const Clock::time_point now = Clock::now();
    // Timers added while firing wait for the next pass, so a timer that re-adds itself for
    // "now" cannot keep the loop here; one cancelled by an earlier callback does not run.
    std::vector<TimerId> due;
    for (auto it = timers_.begin(); it != timers_.end() && it->first <= now; ++it)
        due.push_back(it->second.id);
    for (TimerId id : due) {
        auto found = timer_index_.find(id);
        if (found == timer_index_.end()) continue;
        std::function<void()> fn = std::move(found->second->second.fn);
        timers_.erase(found->second);
        timer_index_.erase(found);
        fn();
    }
    arm_timerfd();
}

void EventLoop::run_posted() {
    std::uint64_t count = 0;
    [[maybe_unused]] ssize_t n = ::read(wake_fd_.get(), &count, sizeof count);
    std::vector<std::function<void()>> calls;
    {
        std::lock_guard lock(posted_mutex_);
        calls.swap(posted_);
    }
    for (auto& call : calls) call();
}

void EventLoop::run() {
    epoll_event events[kBatch];
    for (;;) {
        {
            std::lock_guard lock(posted_mutex_);
            if (stopping_) return;
        }
        const int n = ::epoll_wait(epoll_.get(), events, kBatch, -1);
        if (n < 0) {
            if (errno == EINTR) continue;
            throw std::system_error(errno, std::generic_category(), "epoll_wait");
        }
        for (int i = 0; i < n; ++i) {
            const std::uint64_t key = events[i].data.u64;
            if (key == kTimerKey) {
                fire_due_timers();
            } else if (key == kWakeKey) {
                run_posted();
            } else if (auto it = watchers_.find(key); it != watchers_.end()) {
                // A copy: the callback may unwatch itself.
                ReadyFn on_ready = it->second.on_ready;
                on_ready(events[i].events);
            }
        }
    }
}

void EventLoop::stop_on_signals() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    ::pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    signal_fd_ = checked(::signalfd(-1, &signals, SFD_NONBLOCK | SFD_CLOEXEC), "signalfd");
    watch(signal_fd_.get(), EPOLLIN, [this](std::uint32_t) { stop(); });
}

}  // namespace sim
