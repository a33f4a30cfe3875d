// Self-collision model: geometry primitives, capsule chains, the tool envelope and the
// public degree-input check.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>

#include "algo_api.h"
#include "qm_interface.h"
#include "qman_safety.h"

namespace {

using Joints = std::array<float, ARM_DOF>;

constexpr qm_tool_sphere_t kNoSphere = {0.0f, {0.0f, 0.0f, 0.0f}};

class SelfCollision : public ::testing::Test {
protected:
    void SetUp() override {
        clear_envelope();
        qm_algo_init_sys_data(QM_MODEL_QM_65_E, QM_MODEL_QM_B_E);
    }
    void TearDown() override { clear_envelope(); }

    static void clear_envelope() {
        for (int i = 0; i < TOOL_SPHERE_NUM; ++i) qm_algo_set_tool_envelope(i, kNoSphere);
    }

    static float clearance(const Joints& deg) {
        float q[ROBOT_DOF] = {};
        for (int i = 0; i < ARM_DOF; ++i) q[i] = static_cast<float>(deg[i] * DEG2RAD);
        return isCollision_self_tool(q);
    }
};

TEST(CapsuleGeometry, SegmentDistancesMatchHandComputedValues) {
    const struct {
        const char* what;
        VEC3 a0, a1, b0, b1;
        float distance;
    } cases[] = {
        {"crossing skew segments", {-1, 0, 0}, {1, 0, 0}, {0, -1, 0.5f}, {0, 1, 0.5f}, 0.5f},
        {"parallel and overlapping", {0, 0, 0}, {2, 0, 0}, {1, 0.3f, 0}, {3, 0.3f, 0}, 0.3f},
        {"parallel, end to end", {0, 0, 0}, {1, 0, 0}, {3, 0, 0}, {4, 0, 0}, 2.0f},
        {"skew, nearest at the ends", {0, 0, 0}, {1, 0, 0}, {2, 1, 0}, {2, 2, 0}, std::sqrt(2.0f)},
        {"two points", {0, 0, 0}, {0, 0, 0}, {0, 3, 4}, {0, 3, 4}, 5.0f},
        {"point against a segment", {0, 0, 1}, {0, 0, 1}, {-1, 0, 0}, {1, 0, 0}, 1.0f},
        {"touching at a shared end", {0, 0, 0}, {1, 0, 0}, {1, 0, 0}, {1, 1, 0}, 0.0f},
    };
    for (const auto& c : cases) {
        EXPECT_NEAR(distance_ls2ls(c.a0, c.a1, c.b0, c.b1), c.distance, 1e-6f) << c.what;
        EXPECT_NEAR(distance_ls2ls(c.b0, c.b1, c.a0, c.a1), c.distance, 1e-6f) << c.what << " (swapped)";
    }
}

TEST(CapsuleGeometry, PointToSegmentClampsAtTheEndsUnlikePointToLineWhichIncludesTheExtension) {
    const VEC3 a = {0, 0, 0};
    const VEC3 b = {1, 0, 0};
    const VEC3 beyond = {2, 1, 0};
    EXPECT_NEAR(distance_p2l(beyond, a, b), 1.0f, 1e-6f);
    EXPECT_NEAR(distance_p2ls(beyond, a, b), std::sqrt(2.0f), 1e-6f);
    const VEC3 above_middle = {0.5f, 0, 0.25f};
    EXPECT_NEAR(distance_p2ls(above_middle, a, b), 0.25f, 1e-6f);
    EXPECT_NEAR(distance_p2p(a, beyond), std::sqrt(5.0f), 1e-6f);
    const VEC3 on_extension = {-2, 0, 0};
    EXPECT_EQ(isPinL(on_extension, a, b), 1);
    EXPECT_EQ(isPinL(beyond, a, b), 0);
}

TEST_F(SelfCollision, ChainEndsAtTheFlangeOfEveryModel) {
    const int types[] = {QM65, QM75, QML63II, QML63IV, LUX65, LUX62, LUX63, TAV72, TAV72II};
    const float q[ROBOT_DOF] = {0.3f, -0.7f, 1.1f, 0.4f, -0.9f, 0.6f, -0.2f};
    for (int type : types) {
        ASSERT_EQ(libalgo_set_robot_and_sensor_type(type, _B), 0);
        DH dh;
        libalgo_get_dh_value(&dh);
        JointPoints chain;
        calc_joint_points(&dh, q, libalgo_get_rbt_dof(), type == QM75, &chain);
        const Matrix flange = forward_kinematics_e(q);
        const float* end = chain.point[2 * chain.num_joints];
        for (int r = 0; r < 3; ++r)
            EXPECT_NEAR(end[r], flange.data[r][3], 1e-5f) << "type " << type << " row " << r;
    }
}

TEST_F(SelfCollision, StretchedArmsAreClearAndFoldedArmsCollide) {
    const struct {
        qm_robot_arm_model_e model;
        Joints stretched, folded;
    } cases[] = {
        {QM_MODEL_QM_65_E, {0, 0, 0, 0, 0, 0}, {0, 0, 135, 0, 90, 0}},        // wrist back onto the upper arm
        {QM_MODEL_QM_75_E, {0, 0, 0, 0, 0, 0, 0}, {0, 0, 0, 135, 0, 90, 0}},  // the same on seven joints
        {QM_MODEL_QM_63_II_E, {0, 0, 0, 0, 0, 0}, {0, 120, 135, 0, 0, 0}},    // forearm into the base
        {QM_MODEL_LUX_65_E, {0, -90, 0, -90, 0, 0}, {0, -90, 160, 0, 0, 0}},  // elbow closed
        {QM_MODEL_TAV_72_E, {0, 0, 0, 0, 0, 0, 0}, {0, 0, 0, -150, 0, -90, 0}},
    };
    for (const auto& c : cases) {
        qm_algo_init_sys_data(c.model, QM_MODEL_QM_B_E);
        EXPECT_EQ(qm_algo_safety_robot_self_collision_detection(c.stretched.data()), 0)
            << "model " << c.model;
        EXPECT_EQ(qm_algo_safety_robot_self_collision_detection(c.folded.data()), 1) << "model " << c.model;
        EXPECT_GT(clearance(c.stretched), SAFETY_COLLISION_CLEARANCE) << "model " << c.model;
    }
}

TEST_F(SelfCollision, ClearanceIsToTheNearestNonAdjacentLink) {
    const Joints away = {0, 0, 135, 0, -90, 0};
    EXPECT_EQ(qm_algo_safety_robot_self_collision_detection(away.data()), 0);
    // 0.21 m of forearm at 45 degrees keeps the wrist link 0.148 m off the upper arm's axis.
    EXPECT_NEAR(clearance(away), 0.0845f, 1e-3f);
    // Adjacent links touch at their joint and do not count: at zero the nearest pair is the
    // upper arm against the wrist link.
    EXPECT_NEAR(clearance({}), 0.21f - 0.034f - 0.03f, 1e-5f);
}

TEST_F(SelfCollision, JointBeyondItsLimitCountsAsCollisionEvenWhenClear) {
    const Joints inside = {177, 0, 0, 0, 0, 0};
    const Joints beyond = {179, 0, 0, 0, 0, 0};  // QM65 joint 1 ends at 178 degrees
    EXPECT_EQ(qm_algo_safety_robot_self_collision_detection(inside.data()), 0);
    EXPECT_EQ(qm_algo_safety_robot_self_collision_detection(beyond.data()), 1);
    EXPECT_GT(clearance(beyond), SAFETY_COLLISION_CLEARANCE);
}

TEST_F(SelfCollision, TypesWithoutACapsuleModelNeverCollide) {
    DH qm65;
    libalgo_get_dh_value(&qm65);
    for (int type : {UNIVERSAL, QML63III}) {
        ASSERT_EQ(libalgo_set_robot_and_sensor_type(type, _B), 0);
        libalgo_set_dh_params(&qm65);
        const Joints folded = {0, 0, 135, 0, 90, 0};
        EXPECT_FLOAT_EQ(clearance(folded), 1.0f) << "type " << type;
        EXPECT_EQ(qm_algo_safety_robot_self_collision_detection(folded.data()), 0) << "type " << type;
    }
}

TEST_F(SelfCollision, EnvelopeSpheresReadBackAndOnlyThoseWithARadiusEnterTheModelInIndexOrder) {
    const qm_tool_sphere_t sphere = {-0.01f, {0.01f, -0.02f, 0.3f}};
    qm_algo_set_tool_envelope(4, sphere);
    const qm_tool_sphere_t back = qm_algo_get_tool_envelope(4);
    EXPECT_EQ(std::memcmp(&back, &sphere, sizeof back), 0);
    qm_algo_set_tool_envelope(5, sphere);
    qm_algo_set_tool_envelope(-1, sphere);
    EXPECT_FLOAT_EQ(qm_algo_get_tool_envelope(5).radius, 0.0f);
    EXPECT_FLOAT_EQ(qm_algo_get_tool_envelope(-1).radius, 0.0f);
    qm_algo_set_tool_envelope(1, {0.02f, {0, 0, 0.1f}});
    qm_algo_set_tool_envelope(3, {5e-7f, {0, 0, 0.2f}});
    ASSERT_EQ(update_ToolSpheresModel(), 2);
    const ToolSpherePara* spheres = nullptr;
    ASSERT_EQ(get_ToolSpheresModel(&spheres), 2);
    EXPECT_FLOAT_EQ(spheres[0].centrePoint[2], 0.1f);
    EXPECT_FLOAT_EQ(spheres[1].centrePoint[2], 0.3f);
}

TEST_F(SelfCollision, ToolSphereReachingTheBaseColumnCollides) {
    // Upper arm level, elbow folded: the flange hangs 0.103 m beside the base column and
    // 0.144 m from the forearm; the arm itself stays clear.
    const Joints q = {0, 90, 120, 0, 0, 0};
    ASSERT_EQ(qm_algo_safety_robot_self_collision_detection(q.data()), 0);
    qm_algo_set_tool_envelope(2, {0.05f, {0, 0, 0}});
    EXPECT_EQ(qm_algo_safety_robot_self_collision_detection(q.data()), 0);
    qm_algo_set_tool_envelope(2, {0.07f, {0, 0, 0}});
    EXPECT_EQ(qm_algo_safety_robot_self_collision_detection(q.data()), 1);
    // Stretched, the same sphere touches only the link carrying it.
    EXPECT_EQ(qm_algo_safety_robot_self_collision_detection(Joints{}.data()), 0);
}

}  // namespace
