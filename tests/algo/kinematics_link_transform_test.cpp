// Single link transforms and the general chain product.
#include <gtest/gtest.h>

#include "kinematics_reference.h"
#include "libalgo_interface.h"
#include "qman_kinematics.h"

namespace {

struct TwistCase {
    float alpha;
    float cos_alpha;
    float sin_alpha;
};

class RightAngleTwist : public testing::TestWithParam<TwistCase> {};

// Twists within 1e-5 of a quarter turn give exact zeros and ones, so chained products keep
// their zeros.
TEST_P(RightAngleTwist, GivesExactZerosAndOnesInBothConventions) {
    DH dh{};
    dh.d[0] = 0.3f, dh.a[0] = 0.2f, dh.alpha[0] = GetParam().alpha;
    const float q[ROBOT_DOF] = {};
    const Matrix mdh = kin_get_MDH_Ti(0, &dh, q);
    EXPECT_EQ(mdh.data[1][2], -GetParam().sin_alpha);
    EXPECT_EQ(mdh.data[2][2], GetParam().cos_alpha);
    EXPECT_EQ(mdh.data[1][3], -GetParam().sin_alpha * 0.3f);
    const Matrix sdh = kin_get_SDH_Ti(0, &dh, q);
    EXPECT_EQ(sdh.data[2][1], GetParam().sin_alpha);
    EXPECT_EQ(sdh.data[2][2], GetParam().cos_alpha);
}

INSTANTIATE_TEST_SUITE_P(Twists, RightAngleTwist,
                         testing::Values(TwistCase{0.0f, 1, 0}, TwistCase{4e-6f, 1, 0},
                                         TwistCase{1.5707964f, 0, 1},
                                         TwistCase{1.5707963267949f + 9e-6f, 0, 1},
                                         TwistCase{-1.5707964f, 0, -1}, TwistCase{3.1415927f, -1, 0},
                                         TwistCase{-3.1415927f, -1, 0}));

TEST(LinkTransform, IndexOutsideTheTableGivesIdentity) {
    const DH dh{};
    const float q[ROBOT_DOF] = {0.5f};
    for (const int i : {-1, ROBOT_DOF})
        EXPECT_LT(reference::max_difference(kin_get_MDH_Ti(i, &dh, q), reference::identity()), 1e-9) << i;
}

TEST(UniversalChain, MultipliesTheUsersModifiedTableUpToTheGivenJointCount) {
    DH dh{};
    const float d[7] = {0.3f, 0.01f, 0.2f, -0.02f, 0.25f, 0.0f, 0.1f};
    const float a[7] = {0.0f, 0.05f, 0.3f, 0.02f, 0.0f, 0.01f, 0.0f};
    // Two twists just outside the rounding tolerance of a quarter turn.
    const float alpha[7] = {0.0f,  1.5707964f,        0.2f, -1.5707964f, 1.5707963f + 2e-5f,
                            -0.4f, 1.5707963f - 2e-5f};
    for (int i = 0; i < 7; ++i)
        dh.d[i] = d[i], dh.a[i] = a[i], dh.alpha[i] = alpha[i], dh.offset[i] = 0.1f * i;
    const float q[ROBOT_DOF] = {0.3f, -0.7f, 1.2f, 0.4f, -2.0f, 0.9f, 2.5f};
    for (const int n : {3, 7})
        EXPECT_LT(reference::max_difference(kin_universal_kinematics_Tn(&dh, q, n),
                                            reference::modified_chain(dh, q, n)),
                  1e-5)
            << n;
}

}  // namespace
