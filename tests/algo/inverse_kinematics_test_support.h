#ifndef INVERSE_KINEMATICS_TEST_SUPPORT_H
#define INVERSE_KINEMATICS_TEST_SUPPORT_H

// Helpers shared by the inverse-kinematics tests.

#include <gtest/gtest.h>

#include <cmath>

#include "libalgo_interface.h"
#include "qman_inv_kinematics.h"
#include "qman_kinematics.h"
#include "qman_mathfuncs.h"

namespace ik_test {

constexpr double kPositionTol = 1e-4;  // m
constexpr double kRotationTol = 1e-3;  // per rotation-matrix entry, about rad
constexpr double kJointTol = 1e-3;     // rad

inline Matrix flange_of(const float* q) {
    DH dh;
    libalgo_get_dh_value(&dh);
    return forward_kinematics_model(libalgo_get_robot_type(), &dh, q);
}

// Largest position and rotation-entry differences of two transforms.
struct PoseError {
    double position = 0.0;
    double rotation = 0.0;
};

inline PoseError pose_error(const Matrix& a, const Matrix& b) {
    PoseError e;
    for (int i = 0; i < 3; ++i) {
        e.position = std::fmax(e.position, std::fabs(a.data[i][3] - b.data[i][3]));
        for (int j = 0; j < 3; ++j) e.rotation = std::fmax(e.rotation, std::fabs(a.data[i][j] - b.data[i][j]));
    }
    return e;
}

inline ::testing::AssertionResult reaches(const float* q, const Matrix& target) {
    for (int j = 0; j < ROBOT_DOF; ++j) {
        if (!std::isfinite(q[j])) return ::testing::AssertionFailure() << "joint " << j << " is not finite";
    }
    const PoseError e = pose_error(flange_of(q), target);
    if (e.position <= kPositionTol && e.rotation <= kRotationTol) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "misses the target by " << e.position << " m, " << e.rotation
                                         << " in rotation";
}

inline double max_joint_difference(const float* a, const float* b, int dof) {
    double worst = 0.0;
    for (int j = 0; j < dof; ++j) worst = std::fmax(worst, std::fabs(double(a[j]) - double(b[j])));
    return worst;
}

inline Pose pose_of(const Matrix& m) { return transformation_matrix_to_pose(m); }

}  // namespace ik_test

#endif
