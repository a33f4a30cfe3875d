#include "dh_chain.h"

#include <algorithm>
#include <cmath>

namespace algo {
namespace {

constexpr double kTwistTolerance = 1e-5;

void twist_of(double alpha, double& c, double& s) {
    const double quarter = std::round(alpha / PI_2);
    if (std::fabs(alpha - quarter * PI_2) < kTwistTolerance && std::fabs(quarter) <= 2.0) {
        const int k = static_cast<int>(quarter) & 3;
        constexpr double kCos[4] = {1, 0, -1, 0}, kSin[4] = {0, 1, 0, -1};
        c = kCos[k];
        s = kSin[k];
        return;
    }
    c = std::cos(alpha);
    s = std::sin(alpha);
}

// f = f * Rx(alpha) * Tx(a)
void twist_and_length(Frame3& f, double ca, double sa, double a) {
    for (int i = 0; i < 3; ++i) {
        f.p[i] += a * f.r[i][0];
        const double c1 = f.r[i][1], c2 = f.r[i][2];
        f.r[i][1] = ca * c1 + sa * c2;
        f.r[i][2] = ca * c2 - sa * c1;
    }
}

// f = f * Rz(theta) * Tz(d)
void turn_and_depth(Frame3& f, double theta, double d) {
    const double ct = std::cos(theta), st = std::sin(theta);
    for (int i = 0; i < 3; ++i) {
        const double c0 = f.r[i][0], c1 = f.r[i][1];
        f.r[i][0] = ct * c0 + st * c1;
        f.r[i][1] = ct * c1 - st * c0;
        f.p[i] += d * f.r[i][2];
    }
}

}  // namespace

DhChain::DhChain(const DH& dh, int dof, bool standard)
    : dof_(std::clamp(dof, 0, ROBOT_DOF)), standard_(standard) {
    for (int i = 0; i < dof_; ++i) {
        Link& l = link_[i];
        twist_of(dh.alpha[i], l.ca, l.sa);
        l.a = dh.a[i];
        l.d = dh.d[i];
        l.offset = dh.offset[i];
    }
}

Frame3 DhChain::flange(const double* q) const {
    Frame3 f = {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}, {0, 0, 0}};
    for (int i = 0; i < dof_; ++i) {
        const Link& l = link_[i];
        if (!standard_) twist_and_length(f, l.ca, l.sa, l.a);
        turn_and_depth(f, q[i] + l.offset, l.d);
        if (standard_) twist_and_length(f, l.ca, l.sa, l.a);
    }
    return f;
}

Frame3 DhChain::flange(const double* q, double jac[6][ROBOT_DOF]) const {
    Frame3 f = {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}, {0, 0, 0}};
    double axis[ROBOT_DOF][3], origin[ROBOT_DOF][3];
    for (int i = 0; i < dof_; ++i) {
        const Link& l = link_[i];
        // Joint i turns about the z axis of the frame reached before its own turn.
        if (!standard_) twist_and_length(f, l.ca, l.sa, l.a);
        for (int k = 0; k < 3; ++k) {
            axis[i][k] = f.r[k][2];
            origin[i][k] = f.p[k];
        }
        turn_and_depth(f, q[i] + l.offset, l.d);
        if (standard_) twist_and_length(f, l.ca, l.sa, l.a);
    }
    for (int j = 0; j < dof_; ++j) {
        const double* z = axis[j];
        const double v[3] = {f.p[0] - origin[j][0], f.p[1] - origin[j][1], f.p[2] - origin[j][2]};
        jac[0][j] = z[1] * v[2] - z[2] * v[1];
        jac[1][j] = z[2] * v[0] - z[0] * v[2];
        jac[2][j] = z[0] * v[1] - z[1] * v[0];
        for (int k = 0; k < 3; ++k) jac[3 + k][j] = z[k];
    }
    return f;
}

Matrix DhChain::flange_matrix(const float* q) const {
    double joints[ROBOT_DOF] = {};
    for (int i = 0; i < dof_; ++i) joints[i] = q[i];
    const Frame3 f = flange(joints);
    Matrix m{};
    m.irow = m.iline = 4;
    for (int i = 0; i < 3; ++i) {
        for (int k = 0; k < 3; ++k) m.data[i][k] = static_cast<float>(f.r[i][k]);
        m.data[i][3] = static_cast<float>(f.p[i]);
    }
    m.data[3][3] = 1.0f;
    return m;
}

Matrix chain_flange(const DH& dh, const float* q, int dof, bool standard) {
    return DhChain(dh, dof, standard).flange_matrix(q);
}

}  // namespace algo
