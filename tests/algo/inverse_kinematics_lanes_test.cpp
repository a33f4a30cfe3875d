// The solvers' four-lane forms must give, lane by lane, the scalar forms' bits: the seven-joint
// branches are computed with the first and compared with answers of the second.

#include <gtest/gtest.h>

#include <cstring>
#include <random>

#include "inv_kinematics_arm_angle_branches.h"
#include "inv_kinematics_lanes.h"

namespace {

using algo::ik::lanes::F4;

bool same_bits(float a, float b) { return std::memcmp(&a, &b, sizeof a) == 0; }

// The Z-Y-Z angles of the build for AVX2, whose arc tangents of b and a share a pass of eight
// lanes, against its four-lane passes; true where the processor lacks AVX2.
#if defined(__x86_64__)
__attribute__((target("avx2,fma"), flatten)) bool eight_lanes_agree_avx2(const algo::ik::lanes::Mat3x4 r, F4 a_ref) {
    const algo::ik::lanes::Zyz four = algo::ik::lanes::zyz_angles(r, a_ref);
    const algo::ik::lanes::Zyz eight = algo::ik::lanes::zyz_angles<true>(r, a_ref);
    return std::memcmp(&four, &eight, sizeof four) == 0;
}
bool eight_lanes_agree(const algo::ik::lanes::Mat3x4 r, F4 a_ref) {
    return !(__builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma")) || eight_lanes_agree_avx2(r, a_ref);
}
#else
bool eight_lanes_agree(const algo::ik::lanes::Mat3x4, F4) { return true; }
#endif

TEST(InverseKinematicsLanes, ArcTangentsZyzAnglesAndJointMappingMatchTheScalarForms) {
    std::mt19937 rng(17);
    std::uniform_real_distribution<float> unit(-1.0f, 1.0f), angle(-9.0f, 9.0f);
    algo::ik::SolveInput in{};
    for (int j = 0; j < ROBOT_DOF; ++j) {
        in.dh.offset[j] = 0.1f * static_cast<float>(j) - 0.3f;
        in.limits.min[j] = j % 2 ? -3.0f : -6.5f;  // some ranges beyond a turn, some short of it
        in.limits.max[j] = j % 2 ? 2.0f : 6.5f;
    }
    const int joints[4] = {0, 1, 4, 5};
    for (int n = 0; n < 20000; ++n) {
        for (int j = 0; j < ROBOT_DOF; ++j) in.q_ref[j] = angle(rng);
        float m[4][3][3];
        algo::ik::lanes::Mat3x4 r;
        F4 y, x, theta, a_ref;
        for (int l = 0; l < 4; ++l) {
            // Every eighth lane singular: row and column 2 on the z axis.
            const bool singular = (n + l) % 8 == 0;
            algo::ik::zyz_matrix(angle(rng), singular ? (n % 2 ? 0.0f : 3.14159265f) : angle(rng), angle(rng), m[l]);
            y[l] = n % 50 == 0 ? 0.0f : unit(rng);
            x[l] = n % 70 == 0 ? -0.0f : unit(rng);
            theta[l] = angle(rng);
            a_ref[l] = angle(rng);
        }
        for (int i = 0; i < 3; ++i)
            for (int k = 0; k < 3; ++k) r[i][k] = F4{m[0][i][k], m[1][i][k], m[2][i][k], m[3][i][k]};
        const F4 atan = algo::ik::lanes::fast_atan2(y, x);
        const algo::ik::lanes::Zyz z = algo::ik::lanes::zyz_angles(r, a_ref);
        ASSERT_TRUE(eight_lanes_agree(r, a_ref)) << n;
        const F4 q = algo::ik::lanes::joint_values(algo::ik::lanes::joint_lanes(in, joints), theta);
        for (int l = 0; l < 4; ++l) {
            ASSERT_TRUE(same_bits(atan[l], algo::ik::fast_atan2(y[l], x[l]))) << n << " lane " << l;
            const algo::ik::ZyzBranches s = algo::ik::zyz_angles(m[l], a_ref[l]);
            ASSERT_TRUE(same_bits(z.a[l], s.angles[0][0]) && same_bits(z.b[l], s.angles[0][1]) &&
                        same_bits(z.c[l], s.angles[0][2]) && same_bits(z.sin_b[l], s.sin_b))
                << n << " lane " << l;
            ASSERT_TRUE(same_bits(q[l], algo::ik::joint_value(in, joints[l], theta[l]))) << n << " lane " << l;
        }
    }
}

}  // namespace
