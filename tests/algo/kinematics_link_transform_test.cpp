// Single link transforms and the general chain product.
#include <gtest/gtest.h>

#include <cmath>

#include "kinematics_reference.h"
#include "libalgo_interface.h"
#include "qman_kinematics.h"

namespace {

using reference::operator*;

DH one_link(float d, float a, float alpha, float offset) {
    DH dh{};
    dh.d[0] = d, dh.a[0] = a, dh.alpha[0] = alpha, dh.offset[0] = offset;
    return dh;
}

struct TwistCase {
    float alpha;
    float cos_alpha;
    float sin_alpha;
};

class RightAngleTwist : public testing::TestWithParam<TwistCase> {};

TEST_P(RightAngleTwist, GivesExactZerosAndOnesInBothConventions) {
    const DH dh = one_link(0.3f, 0.2f, GetParam().alpha, 0.0f);
    const float q[ROBOT_DOF] = {0.0f};
    const Matrix mdh = kin_get_MDH_Ti(0, &dh, q);
    EXPECT_EQ(mdh.data[1][2], -GetParam().sin_alpha);
    EXPECT_EQ(mdh.data[2][2], GetParam().cos_alpha);
    EXPECT_EQ(mdh.data[1][3], -GetParam().sin_alpha * 0.3f);
    EXPECT_EQ(mdh.data[2][3], GetParam().cos_alpha * 0.3f);
    const Matrix sdh = kin_get_SDH_Ti(0, &dh, q);
    EXPECT_EQ(sdh.data[2][1], GetParam().sin_alpha);
    EXPECT_EQ(sdh.data[2][2], GetParam().cos_alpha);
}

INSTANTIATE_TEST_SUITE_P(Twists, RightAngleTwist,
                         testing::Values(TwistCase{0.0f, 1, 0}, TwistCase{4e-6f, 1, 0}, TwistCase{1.5707964f, 0, 1},
                                         TwistCase{1.5707963267949f + 9e-6f, 0, 1}, TwistCase{-1.5707964f, 0, -1},
                                         TwistCase{3.1415927f, -1, 0}, TwistCase{-3.1415927f, -1, 0}));

TEST(LinkTransform, OtherTwistsUseTheirSineAndCosine) {
    const DH dh = one_link(0.1f, 0.0f, 0.7f, 0.0f);
    const float q[ROBOT_DOF] = {0.0f};
    const Matrix m = kin_get_MDH_Ti(0, &dh, q);
    EXPECT_FLOAT_EQ(m.data[2][2], std::cos(0.7f));
    EXPECT_FLOAT_EQ(m.data[1][2], -std::sin(0.7f));
    // Just outside the tolerance the real sine is used.
    const DH near = one_link(0.1f, 0.0f, 1.5707963f + 2e-5f, 0.0f);
    EXPECT_NE(kin_get_MDH_Ti(0, &near, q).data[2][2], 0.0f);
}

TEST(LinkTransform, ModifiedLayoutMatchesItsDefinition) {
    const DH dh = one_link(0.25f, 0.4f, 0.9f, 0.3f);
    const float q[ROBOT_DOF] = {-1.1f};
    const auto ref = reference::rot_x(0.9f) * reference::trans(0.4f, 0, 0) * reference::rot_z(-1.1 + 0.3f) *
                     reference::trans(0, 0, 0.25f);
    EXPECT_LT(reference::max_difference(kin_get_MDH_Ti(0, &dh, q), ref), 1e-6);
}

TEST(LinkTransform, StandardLayoutMatchesItsDefinition) {
    const DH dh = one_link(0.25f, 0.4f, 0.9f, 0.3f);
    const float q[ROBOT_DOF] = {-1.1f};
    const auto ref = reference::rot_z(-1.1 + 0.3f) * reference::trans(0, 0, 0.25f) * reference::trans(0.4f, 0, 0) *
                     reference::rot_x(0.9f);
    EXPECT_LT(reference::max_difference(kin_get_SDH_Ti(0, &dh, q), ref), 1e-6);
}

TEST(LinkTransform, IndexOutsideTheTableGivesIdentity) {
    const DH dh = one_link(0.25f, 0.4f, 0.9f, 0.3f);
    const float q[ROBOT_DOF] = {};
    for (const int i : {-1, ROBOT_DOF}) {
        const Matrix m = kin_get_MDH_Ti(i, &dh, q);
        for (int r = 0; r < 4; ++r)
            for (int c = 0; c < 4; ++c) EXPECT_EQ(m.data[r][c], r == c ? 1.0f : 0.0f);
    }
}

TEST(UniversalChain, MultipliesTheUsersModifiedTable) {
    DH dh{};
    const float d[7] = {0.3f, 0.01f, 0.2f, -0.02f, 0.25f, 0.0f, 0.1f};
    const float a[7] = {0.0f, 0.05f, 0.3f, 0.02f, 0.0f, 0.01f, 0.0f};
    const float alpha[7] = {0.0f, 1.5707964f, 0.2f, -1.5707964f, 1.5707964f, -0.4f, 1.5707964f};
    for (int i = 0; i < 7; ++i) dh.d[i] = d[i], dh.a[i] = a[i], dh.alpha[i] = alpha[i], dh.offset[i] = 0.1f * i;
    const float q[ROBOT_DOF] = {0.3f, -0.7f, 1.2f, 0.4f, -2.0f, 0.9f, 2.5f};
    EXPECT_LT(reference::max_difference(kin_universal_kinematics_Tn(&dh, q, 7), reference::modified_chain(dh, q, 7)),
              1e-5);
    EXPECT_LT(reference::max_difference(kin_universal_kinematics_Tn(&dh, q, 3), reference::modified_chain(dh, q, 3)),
              1e-5);
}

}  // namespace
