// Tool and work frames against the simulator: a frame created is listed, selected, changes
// the reported pose, updates and goes again.
#include <algorithm>
#include <cstring>

#include "sim_session.h"

namespace e2e {
namespace {

class Frames : public ::testing::Test {
protected:
    Frames() : session_(QM_DUAL_MODE_E, fast_options()) {}
    void SetUp() override { ASSERT_EQ(qm_movej(arm(), kReady, 100, 0, 0, QM_MOVE_MULTI_BLOCK), 0); }
    qm_robot_handle* arm() const { return session_.arm(); }

    std::vector<std::string> names(int (*list)(qm_robot_handle*, qm_frame_name_t*, int*)) const {
        qm_frame_name_t found[12] = {};
        int count = 0;
        EXPECT_EQ(list(arm(), found, &count), 0);
        std::vector<std::string> out;
        for (int i = 0; i < count; ++i) out.emplace_back(found[i].name);
        return out;
    }
    static bool has(const std::vector<std::string>& list, const std::string& name) {
        return std::find(list.begin(), list.end(), name) != list.end();
    }

    Session session_;
};

TEST_F(Frames, ToolFrameIsListedSelectedMovesThePoseAndGoes) {
    const qm_pose_t flange = pose_now(arm());
    qm_frame_t gripper{};
    std::strcpy(gripper.frame_name, "gripper");
    gripper.pose = pose_of(0, 0, 0.1f, 0, 0, 0);
    gripper.payload = 1.5f;
    gripper.z = 0.05f;
    ASSERT_EQ(qm_set_manual_tool_frame(arm(), gripper), 0);
    EXPECT_EQ(qm_set_manual_tool_frame(arm(), gripper), 1) << "a second frame of the same name";
    EXPECT_TRUE(has(names(qm_get_total_tool_frame), "gripper"));

    ASSERT_EQ(qm_change_tool_frame(arm(), "gripper"), 0);
    qm_frame_t current{};
    ASSERT_EQ(qm_get_current_tool_frame(arm(), &current), 0);
    EXPECT_STREQ(current.frame_name, "gripper");
    EXPECT_FLOAT_EQ(current.payload, 1.5f);
    // The tool points down, so its tip is 10 cm below the flange.
    EXPECT_NEAR(pose_now(arm()).position.z, flange.position.z - 0.1f, 2e-5f);
    EXPECT_EQ(session_.sim().view(0).tool, "gripper");

    gripper.pose = pose_of(0, 0, 0.2f, 0, 0, 0);
    ASSERT_EQ(qm_update_tool_frame(arm(), gripper), 0);
    qm_frame_t given{};
    ASSERT_EQ(qm_get_given_tool_frame(arm(), "gripper", &given), 0);
    EXPECT_FLOAT_EQ(given.pose.position.z, 0.2f);
    EXPECT_NEAR(pose_now(arm()).position.z, flange.position.z - 0.2f, 2e-5f);

    EXPECT_EQ(qm_delete_tool_frame(arm(), "gripper"), 1) << "the frame in use";
    ASSERT_EQ(qm_change_tool_frame(arm(), "Arm_Tip"), 0);
    ASSERT_EQ(qm_delete_tool_frame(arm(), "gripper"), 0);
    EXPECT_FALSE(has(names(qm_get_total_tool_frame), "gripper"));
    EXPECT_EQ(qm_change_tool_frame(arm(), "gripper"), 1);
}

TEST_F(Frames, WorkFrameIsListedSelectedAndShiftsThePose) {
    const qm_pose_t in_world = pose_now(arm());
    ASSERT_EQ(qm_set_manual_work_frame(arm(), "table", pose_of(0.1f, 0, 0, 0, 0, 0)), 0);
    EXPECT_TRUE(has(names(qm_get_total_work_frame), "table"));
    ASSERT_EQ(qm_change_work_frame(arm(), "table"), 0);
    qm_frame_t current{};
    ASSERT_EQ(qm_get_current_work_frame(arm(), &current), 0);
    EXPECT_STREQ(current.frame_name, "table");
    EXPECT_NEAR(pose_now(arm()).position.x, in_world.position.x - 0.1f, 2e-5f);

    // Targets are then taken in the work frame.
    qm_pose_t target = pose_now(arm());
    target.position.x = 0.25f;
    ASSERT_EQ(qm_movel(arm(), target, 50, 0, 0, QM_MOVE_MULTI_BLOCK), 0);
    EXPECT_NEAR(pose_now(arm()).position.x, 0.25f, 2e-5f);

    ASSERT_EQ(qm_update_work_frame(arm(), "table", pose_of(0.2f, 0, 0, 0, 0, 0)), 0);
    qm_pose_t given{};
    ASSERT_EQ(qm_get_given_work_frame(arm(), "table", &given), 0);
    EXPECT_FLOAT_EQ(given.position.x, 0.2f);

    ASSERT_EQ(qm_change_work_frame(arm(), "World"), 0);
    ASSERT_EQ(qm_delete_work_frame(arm(), "table"), 0);
    EXPECT_FALSE(has(names(qm_get_total_work_frame), "table"));
    EXPECT_EQ(qm_delete_work_frame(arm(), "World"), 1);
}

TEST_F(Frames, TaughtPointsMakeFrames) {
    // Three flange poses around one tool tip 10 cm below the flange.
    qm_pose_t tip = pose_now(arm());
    tip.position.z -= 0.1f;
    const float tilts[3][2] = {{0, 0}, {0.3f, 0}, {0, 0.3f}};
    for (int i = 0; i < 3; ++i) {
        qm_pose_t flange = tip;
        flange.euler.rx += tilts[i][0];
        flange.euler.ry += tilts[i][1];
        // Rotating the flange about the tip: tip + R * (0, 0, -0.1) in the flange frame.
        const qm_matrix_t r = qm_algo_pos2matrix(flange);
        flange.position.x = tip.position.x - 0.1f * r.data[0][2];
        flange.position.y = tip.position.y - 0.1f * r.data[1][2];
        flange.position.z = tip.position.z - 0.1f * r.data[2][2];
        ASSERT_EQ(qm_movej_p(arm(), flange, 50, 0, 0, QM_MOVE_MULTI_BLOCK), 0) << "pose " << i;
        ASSERT_EQ(qm_set_auto_tool_frame(arm(), i + 1), 0);
    }
    ASSERT_EQ(qm_generate_auto_tool_frame(arm(), "taught", 0.5f, 0, 0, 0), 0);
    qm_frame_t taught{};
    ASSERT_EQ(qm_get_given_tool_frame(arm(), "taught", &taught), 0);
    EXPECT_NEAR(taught.pose.position.z, 0.1f, 1e-4f);
    EXPECT_NEAR(taught.pose.position.x, 0.0f, 1e-4f);

    ASSERT_EQ(qm_movej(arm(), kReady, 100, 0, 0, QM_MOVE_MULTI_BLOCK), 0);
    const qm_pose_t origin = pose_now(arm());
    ASSERT_EQ(qm_set_auto_work_frame(arm(), "bench", 1), 0);
    ASSERT_EQ(qm_set_pos_step(arm(), QM_Y_DIR_E, 0.05f, 50, QM_MOVE_MULTI_BLOCK), 0);
    ASSERT_EQ(qm_set_auto_work_frame(arm(), "bench", 2), 0);
    ASSERT_EQ(qm_set_pos_step(arm(), QM_X_DIR_E, -0.05f, 50, QM_MOVE_MULTI_BLOCK), 0);
    ASSERT_EQ(qm_set_auto_work_frame(arm(), "bench", 3), 0);
    qm_pose_t bench{};
    ASSERT_EQ(qm_get_given_work_frame(arm(), "bench", &bench), 0);
    EXPECT_NEAR(bench.position.x, origin.position.x, 1e-4f);
    EXPECT_NEAR(bench.euler.rz, 1.5708f, 2e-3f) << "its x axis is the base's y axis";
}

TEST_F(Frames, ToolEnvelopeReadsBackAsWritten) {
    qm_envelope_balls_list_t envelope{};
    std::strcpy(envelope.tool_name, "Arm_Tip");
    envelope.size = 2;
    envelope.balls[0] = {"b1", 0.05f, 0.0f, 0.0f, 0.1f};
    envelope.balls[1] = {"b2", 0.025f, -0.01f, 0.02f, 0.2f};
    ASSERT_EQ(qm_set_tool_envelope(arm(), envelope), 0);
    qm_envelope_balls_list_t read{};
    ASSERT_EQ(qm_get_tool_envelope(arm(), "Arm_Tip", &read), 0);
    EXPECT_EQ(read.size, 2);
    EXPECT_STREQ(read.balls[1].name, "b2");
    EXPECT_FLOAT_EQ(read.balls[1].y, 0.02f);
    EXPECT_EQ(qm_get_tool_envelope(arm(), "ghost", &read), 1);
}

}  // namespace
}  // namespace e2e
