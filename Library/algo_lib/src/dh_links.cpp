// Single link transforms and the general chain product.
#include <algorithm>
#include <cmath>
#include <optional>

#include "qman_kinematics.h"
#include "qman_mathfuncs.h"

namespace {

struct Twist {
    float c;
    float s;
};

constexpr double kTwistTolerance = 1e-5;

// Right-angle twists give exact zeros and ones; compared in double on the float value.
Twist twist(float alpha) {
    const double al = alpha;
    if (std::fabs(al) < kTwistTolerance) return {1.0f, 0.0f};
    if (std::fabs(al - PI_2) < kTwistTolerance) return {0.0f, 1.0f};
    if (std::fabs(al + PI_2) < kTwistTolerance) return {0.0f, -1.0f};
    if (std::fabs(al - ALGO_PI) < kTwistTolerance || std::fabs(al + ALGO_PI) < kTwistTolerance) return {-1.0f, 0.0f};
    return {std::cos(alpha), std::sin(alpha)};
}

// What both conventions build link i from; none for a link outside the table or without data.
struct LinkTerms {
    float ct;
    float st;
    Twist t;
    float a;
    float d;
};

std::optional<LinkTerms> link_terms(int i, const DH* dh, const float* q) {
    if (i < 0 || i >= ROBOT_DOF || dh == nullptr || q == nullptr) return std::nullopt;
    const float theta = q[i] + dh->offset[i];
    return LinkTerms{std::cos(theta), std::sin(theta), twist(dh->alpha[i]), dh->a[i], dh->d[i]};
}

}  // namespace

extern "C" {

Matrix kin_get_MDH_Ti(int i, const DH* dh, const float* q) {
    Matrix m = unit_matrix(4);
    const std::optional<LinkTerms> terms = link_terms(i, dh, q);
    if (!terms) return m;
    const auto [ct, st, t, a, d] = *terms;
    m.data[0][0] = ct;
    m.data[0][1] = -st;
    m.data[0][2] = 0.0f;
    m.data[0][3] = a;
    m.data[1][0] = st * t.c;
    m.data[1][1] = ct * t.c;
    m.data[1][2] = -t.s;
    m.data[1][3] = -t.s * d;
    m.data[2][0] = st * t.s;
    m.data[2][1] = ct * t.s;
    m.data[2][2] = t.c;
    m.data[2][3] = t.c * d;
    return m;
}

Matrix kin_get_SDH_Ti(int i, const DH* dh, const float* q) {
    Matrix m = unit_matrix(4);
    const std::optional<LinkTerms> terms = link_terms(i, dh, q);
    if (!terms) return m;
    const auto [ct, st, t, a, d] = *terms;
    m.data[0][0] = ct;
    m.data[0][1] = -st * t.c;
    m.data[0][2] = st * t.s;
    m.data[0][3] = a * ct;
    m.data[1][0] = st;
    m.data[1][1] = ct * t.c;
    m.data[1][2] = -ct * t.s;
    m.data[1][3] = a * st;
    m.data[2][0] = 0.0f;
    m.data[2][1] = t.s;
    m.data[2][2] = t.c;
    m.data[2][3] = d;
    return m;
}

Matrix kin_universal_kinematics_Tn(const DH* dh, const float* q, int dof) {
    Matrix t = unit_matrix(4);
    const int n = std::clamp(dof, 0, ROBOT_DOF);
    for (int i = 0; i < n; ++i) t = matrix_m(t, kin_get_MDH_Ti(i, dh, q));
    return t;
}

}  // extern "C"
