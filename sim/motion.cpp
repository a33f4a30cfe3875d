#include "motion.h"

#include <algorithm>
#include <cmath>

namespace sim {

Profile::Profile(double rate, double acceleration) {
    if (!(rate > 0.0) || !(acceleration > 0.0) || std::isinf(rate)) return;  // nothing to move
    accel_ = acceleration;
    if (rate * rate / acceleration <= 1.0) {
        top_ = rate;
        ramp_ = rate / acceleration;
        cruise_ = 1.0 / rate - ramp_;
    } else {
        ramp_ = std::sqrt(1.0 / acceleration);
        top_ = acceleration * ramp_;
        cruise_ = 0.0;
    }
}

Profile Profile::lasting(Seconds duration) {
    Profile p;
    if (duration.count() <= 0.0) return p;
    p.top_ = 1.0 / duration.count();
    p.cruise_ = duration.count();
    return p;
}

double Profile::at(Seconds time) const {
    const double t = time.count();
    const double total = 2 * ramp_ + cruise_;
    if (t <= 0.0) return 0.0;
    if (t >= total) return 1.0;
    if (t < ramp_) return 0.5 * accel_ * t * t;
    if (t < ramp_ + cruise_) return 0.5 * accel_ * ramp_ * ramp_ + top_ * (t - ramp_);
    const double left = total - t;
    return 1.0 - 0.5 * accel_ * left * left;
}

double Profile::rate(Seconds time) const {
    const double t = time.count();
    const double total = 2 * ramp_ + cruise_;
    if (t <= 0.0 || t >= total) return 0.0;
    if (t < ramp_) return accel_ * t;
    if (t < ramp_ + cruise_) return top_;
    return accel_ * (total - t);
}

Joints Path::at(double s) const {
    s = std::clamp(s, 0.0, 1.0);
    const double scaled = s * static_cast<double>(samples_.size() - 1);
    const std::size_t i = std::min(static_cast<std::size_t>(scaled), samples_.size() - 2);
    const double f = scaled - static_cast<double>(i);
    Joints q{};
    for (int j = 0; j < kMaxJoints; ++j) q[j] = samples_[i][j] + f * (samples_[i + 1][j] - samples_[i][j]);
    return q;
}

double Path::steepest(int j) const {
    const double step = 1.0 / static_cast<double>(samples_.size() - 1);
    double steepest = 0.0;
    for (std::size_t i = 1; i < samples_.size(); ++i)
        steepest = std::max(steepest, std::fabs(samples_[i][j] - samples_[i - 1][j]) / step);
    return steepest;
}

Seconds Trajectory::elapsed(SimTime now) const {
    return (paused_at_ ? *paused_at_ : now) - started_;
}

Joints Trajectory::joints(SimTime now) const {
    if (queue_.empty()) return rest_;
    const Segment& running = queue_.front();
    return running.path.at(running.profile.at(elapsed(now)));
}

std::optional<SimTime> Trajectory::next_end() const {
    if (queue_.empty() || paused_at_) return std::nullopt;
    return started_ + queue_.front().profile.duration();
}

int Trajectory::program() const {
    for (const Segment& segment : queue_)
        if (segment.program) return segment.program;
    return 0;
}

void Trajectory::append(Segment segment, SimTime now) {
    if (queue_.empty()) {
        started_ = now;
        paused_at_.reset();
    }
    queue_.push_back(std::move(segment));
}

std::vector<Segment> Trajectory::advance(SimTime now) {
    std::vector<Segment> finished;
    while (!queue_.empty() && !paused_at_ && now - started_ >= queue_.front().profile.duration()) {
        started_ += queue_.front().profile.duration();
        rest_ = queue_.front().path.end();
        finished.push_back(std::move(queue_.front()));
        queue_.pop_front();
    }
    return finished;
}

void Trajectory::pause(SimTime now) {
    if (!queue_.empty() && !paused_at_) paused_at_ = now;
}

void Trajectory::resume(SimTime now) {
    if (!paused_at_) return;
    started_ += now - *paused_at_;
    paused_at_.reset();
}

std::optional<Segment> Trajectory::stop(SimTime now, bool keep_queue) {
    if (queue_.empty()) return std::nullopt;
    rest_ = joints(now);
    std::optional<Segment> running(std::move(queue_.front()));
    queue_.pop_front();
    if (!keep_queue) queue_.clear();
    started_ = now;
    paused_at_.reset();
    return running;
}

void Trajectory::prepend(Segment segment, SimTime now) {
    queue_.push_front(std::move(segment));
    started_ = now;
    paused_at_.reset();
}

void Trajectory::place(const Joints& q) {
    queue_.clear();
    paused_at_.reset();
    rest_ = q;
}

}  // namespace sim
