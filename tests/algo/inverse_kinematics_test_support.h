#ifndef INVERSE_KINEMATICS_TEST_SUPPORT_H
#define INVERSE_KINEMATICS_TEST_SUPPORT_H

// Helpers shared by the inverse-kinematics tests.

#include <gtest/gtest.h>

#include <cmath>

#include "kinematics_reference.h"
#include "qman_inv_kinematics.h"
#include "qman_kinematics.h"
#include "qman_mathfuncs.h"

namespace ik_test {

constexpr double kJointTol = 1e-3;  // rad

// Sample counts shrink by this factor under the sanitizers, which run the solvers 20 to 50 times slower.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int kSlowBuildDivisor = 10;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
constexpr int kSlowBuildDivisor = 10;
#else
constexpr int kSlowBuildDivisor = 1;
#endif
#else
constexpr int kSlowBuildDivisor = 1;
#endif

inline Matrix flange_of(const float* q) {
    DH dh;
    libalgo_get_dh_value(&dh);
    return forward_kinematics_model(libalgo_get_robot_type(), &dh, q);
}

inline Pose pose_of(const float* q) {
    return transformation_matrix_to_pose(flange_of(q));
}

// Finite joints whose flange is within 1e-4 m and 1e-3 per rotation entry of the target.
inline ::testing::AssertionResult reaches(const float* q, const Matrix& target) {
    for (int j = 0; j < ROBOT_DOF; ++j)
        if (!std::isfinite(q[j])) return ::testing::AssertionFailure() << "joint " << j << " is not finite";
    const Matrix m = flange_of(q);
    double position = 0.0, rotation = 0.0;
    for (int i = 0; i < 3; ++i) {
        position = std::fmax(position, std::fabs(m.data[i][3] - target.data[i][3]));
        for (int j = 0; j < 3; ++j)
            rotation = std::fmax(rotation, std::fabs(m.data[i][j] - target.data[i][j]));
    }
    if (position <= 1e-4 && rotation <= 1e-3) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure()
           << "misses the target by " << position << " m, " << rotation << " in rotation";
}

inline double max_joint_difference(const float* a, const float* b, int dof) {
    double worst = 0.0;
    for (int j = 0; j < dof; ++j) worst = std::fmax(worst, std::fabs(double(a[j]) - double(b[j])));
    return worst;
}

}  // namespace ik_test

#endif
