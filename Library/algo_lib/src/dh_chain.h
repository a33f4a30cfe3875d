#ifndef DH_CHAIN_H
#define DH_CHAIN_H

// The product of a DH table's link transforms in double precision, with the joint axes for the
// geometric Jacobian: the forward kinematics of a table the closed forms do not serve, and the
// model the refinement of inverse-kinematics branches works on. Not part of the library's
// interface.

#include "robot_define.h"

namespace algo {

// A rigid transform: rotation columns and origin.
struct Frame3 {
    double r[3][3];
    double p[3];
};

class DhChain {
public:
    DhChain() = default;
    // The first dof links of dh in the standard or the modified convention. Twists within 1e-5
    // of a right angle are taken as exact, as the single link transforms do.
    DhChain(const DH& dh, int dof, bool standard);

    int dof() const { return dof_; }
    // Base to flange for the joints q (rad).
    Frame3 flange(const double* q) const;
    // The same for float joints, as a 4x4 Matrix.
    Matrix flange_matrix(const float* q) const;
    // The same, with the geometric Jacobian: jac[0..2][j] the flange's velocity and jac[3..5][j]
    // its angular velocity per unit speed of joint j.
    Frame3 flange(const double* q, double jac[6][ROBOT_DOF]) const;

private:
    struct Link {
        double ca, sa;  // twist
        double a, d, offset;
    };
    Link link_[ROBOT_DOF] = {};
    int dof_ = 0;
    bool standard_ = false;
};

// The flange of dh's first dof links for float joints, as a 4x4 Matrix.
Matrix chain_flange(const DH& dh, const float* q, int dof, bool standard);

}  // namespace algo

#endif
