// Connecting an arm synchronises model, frames, install pose, limits and DH table, in order.
#include "catalogue_fixture.h"

namespace catalogue_test {
namespace {

std::vector<std::string> commands_of(const std::vector<std::string>& lines) {
    std::vector<std::string> commands;
    for (const std::string& line : lines) commands.push_back(command_of(line));
    return commands;
}

class Synchronisation : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(qm_init(QM_DUAL_MODE_E), 0);
        controller.answer_sync_queries();
    }
    void TearDown() override {
        qm_destory();
        m_nOutTime = saved_query_timeout_;
        m_nOutTime_max = saved_set_timeout_;
    }

    // Connects, expects the handle marked `id`, returns the commands sent and deletes the arm.
    std::vector<std::string> connect(int id, const std::function<void(qm_robot_handle*)>& check = nullptr) {
        qm_robot_handle* handle = qm_create_robot_arm("127.0.0.1", controller.port());
        EXPECT_NE(handle, nullptr);
        if (!handle) return {};
        EXPECT_EQ(handle->id, id);
        if (check) check(handle);
        EXPECT_EQ(qm_delete_robot_arm(handle), 0);
        return commands_of(controller.lines());
    }

    qm_test::FakeController controller;

private:
    uint32_t saved_query_timeout_ = m_nOutTime;
    uint32_t saved_set_timeout_ = m_nOutTime_max;
};

TEST_F(Synchronisation, ConnectingAQm65AsksEverythingInOrderAndKeepsIt) {
    const auto sent = connect(1, [](qm_robot_handle* handle) {
        qm_robot_info_t info{};
        ASSERT_EQ(qm_get_robot_info(handle, &info), 0);
        EXPECT_EQ(info.arm_dof, 6);
        EXPECT_EQ(info.arm_model, QM_MODEL_QM_65_E);
        EXPECT_EQ(info.force_type, QM_MODEL_QM_B_E);
        EXPECT_EQ(info.robot_controller_version, 3);
        TableReadLock lock;
        const qm_handle_t& r = *qm_get_qm_handle_by_robot_handle(handle);
        EXPECT_STREQ(r.work_frame.frame_name, "World");
        EXPECT_STREQ(r.tool_frame.frame_name, "Arm_Tip");
        EXPECT_EQ(r.install_angle[0], 0.0f);
        EXPECT_FLOAT_EQ(r.joint_min_limit[0], -178.0f);
        EXPECT_FLOAT_EQ(r.joint_max_limit[5], 360.0f);
        EXPECT_FLOAT_EQ(r.joint_max_acc[0], 600.0f);
        EXPECT_FLOAT_EQ(r.joint_max_speed[0], 180.0f);
        EXPECT_FLOAT_EQ(r.dh.d[0], 0.2405f);
        EXPECT_FLOAT_EQ(r.dh.a[2], 0.256f);
    });
    EXPECT_EQ(sent, (std::vector<std::string>{"get_arm_software_info", "get_realtime_push",
                                              "get_current_work_frame", "get_current_tool_frame",
                                              "get_install_pose", "get_joint_min_pos", "get_joint_max_pos",
                                              "get_joint_max_acc", "get_joint_max_speed", "get_DH_data"}));
}

TEST_F(Synchronisation, TheFirstFailingQueryStopsItAndMarksTheHandle) {
    qm_set_timeout(150);
    controller.forget("get_install_pose");
    qm_test::LogCapture log(LOG_LEVEL_ERROR);
    const auto sent = connect(-1);
    EXPECT_TRUE(log.contains("[qm_create_robot_arm] get robot info err!\n"));
    ASSERT_FALSE(sent.empty());
    EXPECT_EQ(sent.back(), "get_install_pose") << "no limit was asked after the failure";
}

TEST_F(Synchronisation, AnArmWithAnUnknownForceSensorIsNotSynchronised) {
    qm_set_timeout(150);
    controller.reply("get_arm_software_info", R"({"command":"arm_software_info","Product_version":"QM65"})");
    EXPECT_EQ(connect(-1), std::vector<std::string>{"get_arm_software_info"});
}

}  // namespace
}  // namespace catalogue_test
