// Singularity analysis: the Jacobian's smallest singular value for any chain, and the
// shoulder, elbow and wrist measures of the known arm families.
#include <algorithm>
#include <array>
#include <cmath>

#include "libalgo_interface.h"
#include "qman_safety.h"
#include "safety_models.h"

namespace {

struct Thresholds {
    float limit_qe = SINGULARITY_LIMIT_QE;
    float limit_qw = SINGULARITY_LIMIT_QW;
    float limit_d = SINGULARITY_LIMIT_D;
};
Thresholds thresholds;

using Vec = std::array<double, 3>;

Vec vec(const float* p) { return {p[0], p[1], p[2]}; }
Vec sub(const Vec& a, const Vec& b) { return {a[0] - b[0], a[1] - b[1], a[2] - b[2]}; }
Vec scaled(const Vec& a, double k) { return {a[0] * k, a[1] * k, a[2] * k}; }
double dot(const Vec& a, const Vec& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }
double norm(const Vec& a) { return std::sqrt(dot(a, a)); }
Vec cross(const Vec& a, const Vec& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}
// Component of v perpendicular to the unit vector k.
Vec perpendicular(const Vec& v, const Vec& k) { return sub(v, scaled(k, dot(v, k))); }

struct Axis {
    Vec origin;
    Vec direction;
};

Axis axis_of(const JointPoints& chain, int j) {
    float o[3];
    float d[3];
    joint_points_axis(&chain, j, o, d);
    return {vec(o), vec(d)};
}

int convention_of(int robot_type) { return robot_type == QM75 ? 1 : 0; }

void chain_at(const float* q, JointPoints* chain) {
    safety::loaded_chain(q, convention_of(libalgo_get_robot_type()), chain);
}

// Smallest eigenvalue of a symmetric 6x6 matrix by cyclic Jacobi rotations.
double smallest_eigenvalue(std::array<std::array<double, 6>, 6> a) {
    constexpr int n = 6;
    for (int sweep = 0; sweep < 50; ++sweep) {
        double off = 0.0;
        for (int p = 0; p < n; ++p)
            for (int q = p + 1; q < n; ++q) off += a[p][q] * a[p][q];
        if (off < 1e-24) break;
        for (int p = 0; p < n; ++p) {
            for (int q = p + 1; q < n; ++q) {
                if (std::fabs(a[p][q]) < 1e-300) continue;
                const double theta = (a[q][q] - a[p][p]) / (2.0 * a[p][q]);
                const double t = (theta >= 0 ? 1.0 : -1.0) / (std::fabs(theta) + std::sqrt(theta * theta + 1.0));
                const double c = 1.0 / std::sqrt(t * t + 1.0);
                const double s = t * c;
                const auto turn = [c, s](double& x, double& y) {
                    const double u = x;
                    const double v = y;
                    x = c * u - s * v;
                    y = s * u + c * v;
                };
                for (int k = 0; k < n; ++k) turn(a[k][p], a[k][q]);  // columns p and q
                for (int k = 0; k < n; ++k) turn(a[p][k], a[q][k]);  // then rows p and q
            }
        }
    }
    double smallest = a[0][0];
    for (int i = 1; i < n; ++i) smallest = std::min(smallest, a[i][i]);
    return smallest;
}

// Where the shoulder, elbow and wrist measures look on each family's chain (point indices
// as in JointPoints). Six-joint arms keep their arm in a plane through the first axis, so
// their shoulder measure is the wrist's distance within that plane, which also covers
// shoulder offsets; seven-joint arms use the plain distance to the first axis.
struct Structure {
    int elbow_joint;
    int shoulder_point;
    int elbow_point;
    int wrist_point;  // for the elbow measure: a point on the axis after the elbow
    bool in_plane;
};
constexpr int kWristCentre = 10;  // point of joint 5 in every family
constexpr Structure kSixJoint = {3, 4, 6, 8, true};
constexpr Structure kQM75 = {4, 4, 6, 10, false};
constexpr Structure kTAV72 = {4, 4, 8, 10, false};

const Structure* structure_of(int robot_type) {
    switch (robot_type) {
        case QM65:
        case QML63I:
        case QML63II:
        case QML63III:
        case QML63IV:
        case LUX65:
        case LUX62:
        case LUX63: return &kSixJoint;
        case QM75: return &kQM75;
        case TAV72:
        case TAV72II: return &kTAV72;
        default: return nullptr;
    }
}

double shoulder_measure(const JointPoints& chain, const Structure& s) {
    const Axis first = axis_of(chain, 1);
    const Vec p = sub(vec(chain.point[kWristCentre]), first.origin);
    if (s.in_plane) {
        const Vec normal = cross(first.direction, axis_of(chain, 2).direction);
        const double len = norm(normal);
        if (len > 1e-9) return std::fabs(dot(p, normal)) / len;
    }
    return norm(perpendicular(p, first.direction));
}

// Angle between upper arm and forearm seen along the elbow axis: 0 when stretched.
double elbow_measure(const JointPoints& chain, const Structure& s) {
    const Vec k = axis_of(chain, s.elbow_joint).direction;
    const Vec e = vec(chain.point[s.elbow_point]);
    const Vec u = perpendicular(sub(e, vec(chain.point[s.shoulder_point])), k);
    const Vec v = perpendicular(sub(vec(chain.point[s.wrist_point]), e), k);
    return std::atan2(norm(cross(u, v)), dot(u, v));
}

// Angle between the wrist's outer axes, folded to [0, pi/2]: 0 when they line up.
double wrist_measure(const JointPoints& chain) {
    const int n = chain.num_joints;
    const double c = std::clamp(std::fabs(dot(axis_of(chain, n - 2).direction, axis_of(chain, n).direction)), 0.0, 1.0);
    return std::acos(c);
}

}  // namespace

extern "C" {

float universal_min_singular_value(const float* q) {
    JointPoints chain;
    chain_at(q, &chain);
    const int n = chain.num_joints;
    if (n == 0) return 0.0f;
    const Vec tip = vec(chain.point[2 * n]);
    std::array<std::array<double, 6>, ROBOT_DOF> jacobian{};  // one column per joint
    for (int j = 1; j <= n; ++j) {
        const Axis ax = axis_of(chain, j);
        const Vec linear = cross(ax.direction, sub(tip, ax.origin));
        auto& col = jacobian[static_cast<std::size_t>(j - 1)];
        for (int r = 0; r < 3; ++r) {
            col[static_cast<std::size_t>(r)] = linear[static_cast<std::size_t>(r)];
            col[static_cast<std::size_t>(r + 3)] = ax.direction[static_cast<std::size_t>(r)];
        }
    }
    std::array<std::array<double, 6>, 6> jjt{};
    for (std::size_t r = 0; r < 6; ++r)
        for (std::size_t c = 0; c < 6; ++c)
            for (std::size_t j = 0; j < static_cast<std::size_t>(n); ++j) jjt[r][c] += jacobian[j][r] * jacobian[j][c];
    return static_cast<float>(std::sqrt(std::max(0.0, smallest_eigenvalue(jjt))));
}

int universal_singularity_analyse(const float* q, float limit) {
    return universal_min_singular_value(q) < limit ? -1 : 0;
}

int kin_robot_singularity_analyse(const float* q, float* distance) {
    float measure = 0.0f;
    int result = 0;
    JointPoints chain;
    chain_at(q, &chain);
    const Structure* s = structure_of(libalgo_get_robot_type());
    if (s != nullptr && chain.num_joints >= 6) {
        const auto shoulder = static_cast<float>(shoulder_measure(chain, *s));
        const auto elbow = static_cast<float>(elbow_measure(chain, *s));
        const auto wrist = static_cast<float>(wrist_measure(chain));
        measure = shoulder;
        if (shoulder < thresholds.limit_d) {
            result = -1;
        } else if (elbow < thresholds.limit_qe) {
            result = -2;
            measure = elbow;
        } else if (wrist < thresholds.limit_qw) {
            result = -3;
            measure = wrist;
        }
    }
    if (distance != nullptr) *distance = measure;
    return result;
}

void kin_set_singularity_thresholds(float limit_qe, float limit_qw, float limit_d) {
    thresholds = {limit_qe, limit_qw, limit_d};
}

void kin_get_singularity_thresholds(float* limit_qe, float* limit_qw, float* limit_d) {
    if (limit_qe != nullptr) *limit_qe = thresholds.limit_qe;
    if (limit_qw != nullptr) *limit_qw = thresholds.limit_qw;
    if (limit_d != nullptr) *limit_d = thresholds.limit_d;
}

void kin_singularity_thresholds_init(void) { thresholds = Thresholds{}; }

}  // extern "C"
