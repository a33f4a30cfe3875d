// Install angles and the DH table: reading, scaling back and caching.
#include <gtest/gtest.h>

#include <string>
#include <thread>

#include "arm_catalogue_fixture.h"
#include "log_capture.h"

namespace arm_catalogue_test {
namespace {

class ModelConfig : public CatalogueArm {};

TEST_F(ModelConfig, InstallAnglesAreWholeDegreesAndCached) {
    controller.reply("get_install_pose", R"({"command":"install_pose","pose":[0,90,-180]})");
    float x = -1, y = -1, z = -1;
    ASSERT_EQ(fresh([&](qm_robot_handle* h) { return qm_get_install_pose(h, &x, &y, &z); }), 0);
    EXPECT_EQ(first_line(), R"({"command":"get_install_pose"})");
    EXPECT_EQ(x, 0.0f);
    EXPECT_EQ(y, 90.0f);
    EXPECT_EQ(z, -180.0f);
    record([](qm_handle_t& r) {
        EXPECT_EQ(r.install_angle[1], 90.0f);
        EXPECT_EQ(r.install_angle[2], -180.0f);
        return 0;
    });
}

TEST_F(ModelConfig, InstallAnglesFailWithTheExchangeOrParseCode) {
    controller.forget("get_install_pose");
    float x, y, z;
    EXPECT_EQ(qm_get_install_pose(arm(), &x, &y, &z), -2);
    controller.reply("get_install_pose", R"({"command":"install_pose","pose":[0,90]})");
    EXPECT_EQ(qm_get_install_pose(arm(), &x, &y, &z), -3);
}

TEST_F(ModelConfig, DhRowsAreAlphaAThenDThenOffset) {
    controller.reply("get_DH_data",
                     R"({"command":"get_DH_data","joint_1":[1571,1000000,240500,-1571],"joint_2":[0,0,0,0],)"
                     R"("joint_3":[0,256000,0,0],"joint_4":[0,0,210000,0],"joint_5":[0,0,0,0],)"
                     R"("joint_6":[0,0,144000,3],"joint_7":[9,9,9,9]})");
    qm_dh_t dh{};
    dh.d[6] = -1;
    ASSERT_EQ(fresh([&](qm_robot_handle* h) { return qm_get_DH_data(h, &dh); }), 0);
    EXPECT_EQ(first_line(), R"({"command":"get_DH_data"})");
    EXPECT_FLOAT_EQ(dh.alpha[0], 1.571f);
    EXPECT_FLOAT_EQ(dh.a[0], 1.0f);
    EXPECT_FLOAT_EQ(dh.d[0], 0.2405f);
    EXPECT_FLOAT_EQ(dh.offset[0], -1.571f);
    EXPECT_FLOAT_EQ(dh.a[2], 0.256f);
    EXPECT_FLOAT_EQ(dh.d[5], 0.144f);
    EXPECT_FLOAT_EQ(dh.offset[5], 0.003f);
    EXPECT_EQ(dh.d[6], 0.0f) << "a six-joint arm has no seventh row";
    record([](qm_handle_t& r) {
        EXPECT_FLOAT_EQ(r.dh.d[0], 0.2405f);
        EXPECT_FLOAT_EQ(r.dh.d[5], 0.144f);
        return 0;
    });
}

TEST_F(ModelConfig, DhWaitsItsOwnSecondWhateverTheQueryTimeout) {
    controller.forget("get_DH_data");
    controller.clear_received();
    std::thread late_answer([this] {
        if (!controller.wait_command("get_DH_data")) return;
        std::this_thread::sleep_for(150ms);  // well beyond the 60 ms query timeout
        controller.push_line(qm_test::standard_sync_replies().at("get_DH_data"));
    });
    qm_dh_t dh{};
    EXPECT_EQ(qm_get_DH_data(arm(), &dh), 0);
    late_answer.join();
    EXPECT_FLOAT_EQ(dh.d[0], 0.2405f);
}

TEST_F(ModelConfig, DhOfAnArmWithoutJointCountIsDisconnected) {
    qm_test::LogCapture log(LOG_LEVEL_ERROR);
    set_record_dof(0);
    qm_dh_t dh{};
    EXPECT_EQ(qm_get_DH_data(arm(), &dh), -1);
    EXPECT_TRUE(log.contains("[qm_get_DH_data] The robotic arm has been disconnected\n"));
}

TEST_F(ModelConfig, DhWithAShortRowIsMalformed) {
    controller.reply("get_DH_data",
                     R"({"command":"get_DH_data","joint_1":[0,0,0],"joint_2":[0,0,0,0],"joint_3":[0,0,0,0],)"
                     R"("joint_4":[0,0,0,0],"joint_5":[0,0,0,0],"joint_6":[0,0,0,0]})");
    qm_dh_t dh{};
    EXPECT_EQ(qm_get_DH_data(arm(), &dh), -3);
}

}  // namespace
}  // namespace arm_catalogue_test
