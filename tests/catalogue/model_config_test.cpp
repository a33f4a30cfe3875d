// Install angles and the DH table: reading, scaling back and caching.
#include <thread>

#include "catalogue_fixture.h"

namespace catalogue_test {
namespace {

class ModelConfig : public CatalogueArm {};

TEST_F(ModelConfig, InstallAnglesAreWholeDegreesAndCached) {
    controller.reply("get_install_pose", R"({"command":"install_pose","pose":[0,90,-180]})");
    float x = -1, y = -1, z = -1;
    const Call get = ON_ARM(qm_get_install_pose(h, &x, &y, &z));
    ASSERT_EQ(fresh(get), 0);
    EXPECT_EQ(first_line(), R"({"command":"get_install_pose"})");
    EXPECT_EQ(std::vector<float>({x, y, z}), (std::vector<float>{0.0f, 90.0f, -180.0f}));
    record([](qm_handle_t& r) {
        EXPECT_EQ(std::vector<float>(r.install_angle, r.install_angle + 3),
                  (std::vector<float>{0.0f, 90.0f, -180.0f}));
    });
    expect_failures("get_install_pose", get,
                    {{std::nullopt, -2}, {R"({"command":"install_pose","pose":[0,90]})", -3}});
}

TEST_F(ModelConfig, DhRowsAreAlphaAThenDThenOffset) {
    controller.reply("get_DH_data",
                     R"({"command":"get_DH_data","joint_1":[1571,1000000,240500,-1571],"joint_2":[0,0,0,0],)"
                     R"("joint_3":[0,256000,0,0],"joint_4":[0,0,210000,0],"joint_5":[0,0,0,0],)"
                     R"("joint_6":[0,0,144000,3],"joint_7":[9,9,9,9]})");
    qm_dh_t dh{};
    dh.d[6] = -1;
    ASSERT_EQ(fresh(ON_ARM(qm_get_DH_data(h, &dh))), 0);
    EXPECT_EQ(first_line(), R"({"command":"get_DH_data"})");
    EXPECT_FLOAT_EQ(dh.alpha[0], 1.571f);
    EXPECT_FLOAT_EQ(dh.a[0], 1.0f);
    EXPECT_FLOAT_EQ(dh.d[0], 0.2405f);
    EXPECT_FLOAT_EQ(dh.offset[0], -1.571f);
    EXPECT_EQ(dh.d[6], 0.0f) << "a six-joint arm has no seventh row";
    record([](qm_handle_t& r) { EXPECT_FLOAT_EQ(r.dh.d[5], 0.144f); });
}

TEST_F(ModelConfig, DhWaitsItsOwnSecondWhateverTheQueryTimeout) {
    controller.forget("get_DH_data");
    controller.clear_received();
    std::thread late_answer([this] {
        if (!controller.wait_command("get_DH_data")) return;
        std::this_thread::sleep_for(400ms);  // well beyond the 150 ms query timeout
        controller.push_line(qm_test::standard_sync_replies().at("get_DH_data"));
    });
    qm_dh_t dh{};
    EXPECT_EQ(qm_get_DH_data(arm(), &dh), 0);
    late_answer.join();
    EXPECT_FLOAT_EQ(dh.d[0], 0.2405f);
}

TEST_F(ModelConfig, DhWithAShortRowIsMalformedAndWithoutJointCountDisconnected) {
    controller.reply("get_DH_data",
                     R"({"command":"get_DH_data","joint_1":[0,0,0],"joint_2":[0,0,0,0],"joint_3":[0,0,0,0],)"
                     R"("joint_4":[0,0,0,0],"joint_5":[0,0,0,0],"joint_6":[0,0,0,0]})");
    qm_dh_t dh{};
    EXPECT_EQ(qm_get_DH_data(arm(), &dh), -3);
    qm_test::LogCapture log(LOG_LEVEL_ERROR);
    record([](qm_handle_t& r) { r.arm_dof = 0; });
    EXPECT_EQ(qm_get_DH_data(arm(), &dh), -1);
    EXPECT_TRUE(log.contains("[qm_get_DH_data] The robotic arm has been disconnected\n"));
}

}  // namespace
}  // namespace catalogue_test
