#include "planner.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "constant_define.h"
#include "qman_mathfuncs.h"

namespace sim {

namespace {

using Vec = std::array<double, 3>;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kSampleLength = 0.002;  // m between path samples
constexpr double kSampleTurn = 0.01;     // rad between path samples
constexpr int kMinSamples = 8;
constexpr int kMaxSamples = 200;
// A joint that turns this far between two neighbouring samples jumped to another branch:
// the path crosses a singularity.
constexpr double kBranchJump = 20.0;

Vec operator-(const Vec& a, const Vec& b) {
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}
Vec operator+(const Vec& a, const Vec& b) {
    return {a[0] + b[0], a[1] + b[1], a[2] + b[2]};
}
Vec operator*(double k, const Vec& a) {
    return {k * a[0], k * a[1], k * a[2]};
}
double dot(const Vec& a, const Vec& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}
Vec cross(const Vec& a, const Vec& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}
double norm(const Vec& a) {
    return std::sqrt(dot(a, a));
}
Vec position_of(const Pose& p) {
    return {p.position.x, p.position.y, p.position.z};
}

using Quaternion = std::array<double, 4>;  // w, x, y, z

Quaternion quaternion_of(const Pose& p) {
    return {p.quaternion.w, p.quaternion.x, p.quaternion.y, p.quaternion.z};
}

double quaternion_dot(const Quaternion& a, const Quaternion& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2] + a[3] * b[3];
}

// Angle of the rotation from a to b.
double turn_between(const Quaternion& a, const Quaternion& b) {
    return 2.0 * std::acos(std::min(1.0, std::fabs(quaternion_dot(a, b))));
}

Quaternion slerp(const Quaternion& a, Quaternion b, double s) {
    double d = quaternion_dot(a, b);
    if (d < 0.0) {
        for (double& c : b) c = -c;
        d = -d;
    }
    Quaternion q;
    if (d > 0.9995) {
        for (int i = 0; i < 4; ++i) q[i] = a[i] + s * (b[i] - a[i]);
    } else {
        const double theta = std::acos(d);
        const double wa = std::sin((1.0 - s) * theta) / std::sin(theta);
        const double wb = std::sin(s * theta) / std::sin(theta);
        for (int i = 0; i < 4; ++i) q[i] = wa * a[i] + wb * b[i];
    }
    const double n = std::sqrt(quaternion_dot(q, q));
    for (double& c : q) c /= n;
    return q;
}

Pose pose_from(const Vec& position, const Quaternion& q) {
    Pose p{};
    p.position = Pos{static_cast<float>(position[0]), static_cast<float>(position[1]),
                     static_cast<float>(position[2])};
    p.quaternion = Quat{static_cast<float>(q[0]), static_cast<float>(q[1]), static_cast<float>(q[2]),
                        static_cast<float>(q[3])};
    p.euler = quat_to_euler(p.quaternion);
    return p;
}

double largest_step(const Joints& a, const Joints& b, int dof) {
    double step = 0.0;
    for (int j = 0; j < dof; ++j) step = std::max(step, std::fabs(a[j] - b[j]));
    return step;
}

double fraction(int percent) {
    return std::clamp(percent, 1, 100) / 100.0;
}

// Progress rate and acceleration that keep each joint within its share of the limits.
void limit_by_joints(const MotionLimits& limits, const Path& path, double share, double& rate,
                     double& accel) {
    for (int j = 0; j < limits.dof; ++j) {
        const double steepest = path.steepest(j);
        if (steepest <= 0.0) continue;
        rate = std::min(rate, limits.speed[j] * share / steepest);
        accel = std::min(accel, limits.acc[j] * share / steepest);
    }
}

}  // namespace

int joint_outside(const MotionLimits& limits, const Joints& q) {
    for (int j = 0; j < limits.dof; ++j)
        if (!(q[j] >= limits.min_pos[j] - 1e-9 && q[j] <= limits.max_pos[j] + 1e-9)) return j + 1;
    return 0;
}

Plan plan_joint_move(const MotionLimits& limits, const Joints& from, const Joints& to, int percent,
                     MoveKind kind) {
    if (int joint = joint_outside(limits, to))
        return {std::nullopt, "joint " + std::to_string(joint) + " target outside its limits"};
    Path path({from, to});
    double rate = kInfinity, accel = kInfinity;
    limit_by_joints(limits, path, fraction(percent), rate, accel);
    return {Segment{.kind = kind, .path = std::move(path), .profile = Profile(rate, accel)}, {}};
}

Plan plan_cartesian(const MotionLimits& limits, const Kinematics& kinematics, const Joints& from,
                    const CartesianPath& cartesian, int percent, MoveKind kind, bool truncate) {
    const int wanted =
        static_cast<int>(std::ceil(std::max(cartesian.length / kSampleLength, cartesian.turn / kSampleTurn)));
    const int n = std::clamp(wanted, kMinSamples, kMaxSamples);
    std::vector<Joints> samples = {from};
    for (int i = 1; i <= n; ++i) {
        Joints q{};
        const int rc = kinematics.inverse(cartesian.pose_at(static_cast<double>(i) / n), samples.back(), q);
        const char* why = rc == IKINE_LIMITED      ? "path leaves the joint limits"
                          : rc != IKINE_SUCCESSFUL ? "path leaves the reachable space"
                          : largest_step(q, samples.back(), limits.dof) > kBranchJump
                              ? "path crosses a singularity"
                              : nullptr;
        if (why) {
            if (truncate) break;
            return {std::nullopt, why};
        }
        samples.push_back(q);
    }
    if (samples.size() < 2) return {std::nullopt, "no room to move that way"};
    const double reached = static_cast<double>(samples.size() - 1) / n;
    const double share = fraction(percent);
    double rate = kInfinity, accel = kInfinity;
    if (cartesian.length > 0.0) {
        rate = std::min(rate, limits.line_speed * share / (cartesian.length * reached));
        accel = std::min(accel, limits.line_acc * share / (cartesian.length * reached));
    }
    if (cartesian.turn > 0.0) {
        rate = std::min(rate, limits.angular_speed * share / (cartesian.turn * reached));
        accel = std::min(accel, limits.angular_acc * share / (cartesian.turn * reached));
    }
    Path path(std::move(samples));
    limit_by_joints(limits, path, share, rate, accel);
    return {Segment{.kind = kind, .path = std::move(path), .profile = Profile(rate, accel)}, {}};
}

CartesianPath line_path(const Pose& from, const Pose& to) {
    const Vec a = position_of(from), b = position_of(to);
    const Quaternion qa = quaternion_of(from), qb = quaternion_of(to);
    return {[=](double s) { return pose_from(a + s * (b - a), slerp(qa, qb, s)); }, norm(b - a),
            turn_between(qa, qb)};
}

std::optional<CartesianPath> arc_path(const Pose& from, const Pose& via, const Pose& to, int loops) {
    const Vec p0 = position_of(from), p1 = position_of(via), p2 = position_of(to);
    const Vec u = p1 - p0, v = p2 - p0, w = cross(u, v);
    const double w2 = dot(w, w);
    if (w2 < 1e-12 || norm(u) < 1e-6 || norm(v) < 1e-6) return std::nullopt;
    const Vec centre = p0 + (1.0 / (2.0 * w2)) * (dot(u, u) * cross(v, w) + dot(v, v) * cross(w, u));
    const double radius = norm(p0 - centre);
    const Vec e1 = (1.0 / radius) * (p0 - centre);
    const Vec e2 = cross((1.0 / std::sqrt(w2)) * w, e1);
    // Seen along w the points follow each other counter-clockwise, so `to` lies past `via`.
    double end = std::atan2(dot(p2 - centre, e2), dot(p2 - centre, e1));
    if (end <= 0.0) end += 2.0 * ALGO_PI;
    const double sweep = loops > 0 ? 2.0 * ALGO_PI * loops : end;
    const Quaternion qa = quaternion_of(from);
    const Quaternion qb = loops > 0 ? qa : quaternion_of(to);
    return CartesianPath{[=](double s) {
                             const double angle = s * sweep;
                             const Vec p = centre + radius * (std::cos(angle) * e1 + std::sin(angle) * e2);
                             return pose_from(p, slerp(qa, qb, s));
                         },
                         radius * sweep, turn_between(qa, qb)};
}

}  // namespace sim
