// Motion in simulated time: a clock that may run faster than the wall clock, time-optimal
// trapezoidal profiles, joint paths and the arm's queue of planned segments.
#ifndef QM_SIM_MOTION_H
#define QM_SIM_MOTION_H

#include <chrono>
#include <deque>
#include <functional>
#include <optional>
#include <vector>

#include "arm_model.h"

namespace sim {

using Seconds = std::chrono::duration<double>;
using SimTime = Seconds;  // simulated time since the simulator started

class SimClock {
public:
    using Wall = std::chrono::steady_clock;
    explicit SimClock(double speed_factor) : factor_(speed_factor), start_(Wall::now()) {}
    SimTime now() const { return to_sim(Wall::now()); }
    SimTime to_sim(Wall::time_point wall) const { return Seconds(wall - start_) * factor_; }
    Wall::time_point to_wall(SimTime t) const {
        return start_ + std::chrono::duration_cast<Wall::duration>(t / factor_);
    }

private:
    double factor_;
    Wall::time_point start_;
};

// Progress s from 0 to 1 over time, accelerating, cruising and braking no faster than
// `rate` (1/s) and `acceleration` (1/s^2): a trapezoid, or a triangle when there is no time
// to reach the rate.
class Profile {
public:
    Profile() = default;
    Profile(double rate, double acceleration);
    // A profile that takes exactly `duration` (jogs at a steady speed use it).
    static Profile lasting(Seconds duration);

    Seconds duration() const { return Seconds(2 * ramp_ + cruise_); }
    double at(Seconds t) const;    // s, clamped to [0, 1]
    double rate(Seconds t) const;  // ds/dt

private:
    double ramp_ = 0.0;    // s of accelerating (and of braking)
    double cruise_ = 0.0;  // s at the top rate
    double top_ = 0.0;     // the top rate
    double accel_ = 0.0;
};

// Joint positions along a move, sampled evenly in s and interpolated linearly between samples;
// a joint-space move needs only its two ends.
class Path {
public:
    explicit Path(std::vector<Joints> samples) : samples_(std::move(samples)) {}
    Joints at(double s) const;
    const Joints& start() const { return samples_.front(); }
    const Joints& end() const { return samples_.back(); }
    // The largest |dq/ds| of joint j over the path (degrees per unit s).
    double steepest(int j) const;

private:
    std::vector<Joints> samples_;
};

// What get_arm_current_trajectory reports while a segment runs.
enum class MoveKind { joint, linear, arc, spline, jog, replay };

struct Segment {
    MoveKind kind;
    Path path;
    Profile profile;
    std::vector<int> reported{};  // "data" of the current trajectory: target joints or pose, wire units
    int trajectory_connect = 0;
    bool reports = true;                    // its end is announced to the clients
    int program = 0;                        // the stored program it belongs to, 0 for none
    std::function<void(bool arrived)> on_end{};  // called when it ends or is stopped
};

// The queue of planned segments; the first runs, the others follow it end to end.
class Trajectory {
public:
    explicit Trajectory(const Joints& rest) : rest_(rest) {}

    bool idle() const { return queue_.empty(); }
    bool paused() const { return paused_at_.has_value(); }
    const Segment* current() const { return queue_.empty() ? nullptr : &queue_.front(); }
    std::size_t size() const { return queue_.size(); }
    // The stored program whose moves are queued, 0 for none.
    int program() const;
    // Joints at `now`, which must not precede the last advance.
    Joints joints(SimTime now) const;
    // Where the last queued segment ends: the start of the next one.
    const Joints& planned_end() const { return queue_.empty() ? rest_ : queue_.back().path.end(); }
    // When the running segment ends, unless paused or idle.
    std::optional<SimTime> next_end() const;

    void append(Segment segment, SimTime now);
    // Removes and returns the segments finished by `now`, in order.
    std::vector<Segment> advance(SimTime now);
    void pause(SimTime now);
    void resume(SimTime now);
    // Freezes the arm where it is; returns the running segment, if any. With `keep_queue`
    // only that segment goes; the next one then starts where the stopped one was meant to end,
    // so the caller prepends a way there.
    std::optional<Segment> stop(SimTime now, bool keep_queue = false);
    // Runs `segment` first, from now on.
    void prepend(Segment segment, SimTime now);
    // Puts the arm somewhere at once (pass-through); the queue is dropped.
    void place(const Joints& q);

private:
    Seconds elapsed(SimTime now) const;

    std::deque<Segment> queue_;
    Joints rest_;        // where the arm stands when idle
    SimTime started_{};  // when the first queued segment started
    std::optional<SimTime> paused_at_;
};

}  // namespace sim

#endif
