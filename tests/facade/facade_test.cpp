// QM_Service reaches the same process-wide state as the flat API: the same connection from any
// instance, records passed by value arriving intact, results handed back unchanged.
#include <gtest/gtest.h>

#include "fake_controller.h"
#include "qm_service.h"

namespace {

using qm_test::ArmSession;
using qm_test::FakeController;

TEST(Facade, TwoInstancesGivenTheSameHandleReachTheSameConnection) {
    FakeController controller;
    ArmSession session(controller);
    controller.reply("set_arm_stop", R"({"command":"set_arm_stop","arm_stop":true})");
    controller.reply("set_arm_pause", R"({"command":"set_arm_pause","arm_pause":false})");

    QM_Service first, second;
    EXPECT_EQ(first.qm_set_arm_stop(session.handle()), 0);
    EXPECT_EQ(second.qm_set_arm_pause(session.handle()), 1);  // the controller's refusal, unchanged
    ASSERT_EQ(controller.lines().size(), 2u);
    EXPECT_EQ(controller.lines()[0], R"({"command":"set_arm_stop"})");
    EXPECT_EQ(controller.lines()[1], R"({"command":"set_arm_pause"})");
}

TEST(Facade, RecordsPassedByValueGoOutAsTheFlatFunctionSendsThem) {
    FakeController controller;
    ArmSession session(controller);
    qm_pose_t pose{};
    pose.position = {0.1234567f, -0.2f, 0.3f};
    pose.euler = {3.142f, 0, -1.5f};

    QM_Service qm;
    qm.qm_movel(session.handle(), pose, 20, 0, 0, QM_MOVE_NBLOCK);  // unanswered: only the bytes matter
    qm_movel(session.handle(), pose, 20, 0, 0, QM_MOVE_NBLOCK);
    ASSERT_TRUE(controller.wait_line(1).has_value());
    EXPECT_EQ(controller.lines()[0],
              R"({"command":"movel","v":20,"pose":[123456,-200000,300000,3142,0,-1500],"trajectory_connect":0,"r":0})");
    EXPECT_EQ(controller.lines()[1], controller.lines()[0]);
}

TEST(Facade, KinematicsMethodsReturnWhatTheFunctionsReturn) {
    QM_Service qm;
    const qm_euler_t turn{0.3f, -0.2f, 1.1f};
    const qm_quat_t a = qm.qm_algo_euler2quaternion(turn), b = qm_algo_euler2quaternion(turn);
    EXPECT_EQ(a.w, b.w);
    EXPECT_EQ(a.z, b.z);
    EXPECT_STREQ(qm.qm_algo_version(), "1.5.3-f0364d3b");
    EXPECT_STREQ(qm.qm_api_version(), "1.1.0");
}

}  // namespace
