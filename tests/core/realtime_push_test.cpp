// Configuring the realtime push and receiving real datagrams on a registered port.
#include <gtest/gtest.h>
#include <sys/socket.h>

#include <condition_variable>
#include <mutex>
#include <utility>
#include <vector>

#include "connected_arm.h"
#include "log_capture.h"
#include "test_io.h"

namespace core_test {
namespace {

using qm_test::LogCapture;

qm_realtime_push_config_t config_of(int cycle, int port, const char* ip, int force_coordinate = -1,
                                    qm_udp_custom_config_t custom = {-1, -1, -1, -1, -1, -1, -1, -1}) {
    qm_realtime_push_config_t config{cycle, true, port, force_coordinate, {}, custom};
    std::snprintf(config.ip, sizeof config.ip, "%s", ip);
    return config;
}

class RealtimePush : public ConnectedArm {
protected:
    void SetUp() override {
        ConnectedArm::SetUp();
        controller.reply("set_realtime_push", R"({"command":"set_realtime_push","state":true})");
    }
    void give_force_sensor() {
        with_record([](qm_handle_t& record) { record.force_type = QM_MODEL_QM_ZF_E; });
    }
    // Sends a valid `config`; the request line after its fixed start.
    std::string request(const qm_realtime_push_config_t& config) {
        controller.clear_received();
        EXPECT_EQ(qm_set_realtime_push(arm(), config), 0);
        const std::string start = R"({"command":"set_realtime_push","enable":true,)";
        const std::string line = controller.wait_line(0, 200ms).value_or("");
        return line.rfind(start, 0) == 0 ? line.substr(start.size()) : "unexpected start: " + line;
    }
};

TEST_F(RealtimePush, InvalidConfigIsRefusedWithoutSending) {
    LogCapture log(LOG_LEVEL_ERROR);
    const std::pair<qm_realtime_push_config_t, const char*> rows[] = {
        {config_of(0, 8089, "192.168.1.10"), "cycle: 0!"},
        {config_of(5, 0, "192.168.1.10"), "port:0 !"},
        {config_of(5, 8089, "1.2.3"), "ip: 1.2.3!"},
        {config_of(5, 8089, "192.168.100.1000"), "ip: 192.168.100.1000!"},
        {config_of(-1, 0, ""), "cycle: -1!"},  // the cycle is checked first
    };
    for (const auto& [config, what] : rows) {
        EXPECT_EQ(qm_set_realtime_push(arm(), config), -4) << what;
        EXPECT_TRUE(log.contains(
            std::string("[qm_set_realtime_push] set realtime push config error, invaild ") + what + "\n"))
            << what;
    }
    EXPECT_FALSE(controller.wait_line(0, 30ms));
}

TEST_F(RealtimePush, RequestCarriesTheConfigInItsOrder) {
    LogCapture log(LOG_LEVEL_INFO);
    EXPECT_EQ(request(config_of(5, 8089, "1.2.3.4")), R"("cycle":5,"port":8089,"ip":"1.2.3.4"})");
    EXPECT_EQ(request(config_of(2, 9000, "192.168.100.100", -1, {1, 0, -1, 1, 1, -1, -1, 1})),
              R"("cycle":2,"port":9000,"ip":"192.168.100.100",)"
              R"("custom":{"joint_speed":true,"lift_state":false,"arm_current_status":true,"hand":true}})");
    EXPECT_EQ(request(config_of(2, 9000, "10.0.0.1", -1, {-1, -1, -1, -1, -1, 0, 0, -1})),
              R"("cycle":2,"port":9000,"ip":"10.0.0.1",)"
              R"("custom":{"aloha_state":false,"qm_plus_base":false,"qm_plus_state":true}})");
    // A force frame goes out only with a force sensor, and only when not negative.
    EXPECT_EQ(request(config_of(5, 8089, "1.2.3.4", 0)), R"("cycle":5,"port":8089,"ip":"1.2.3.4"})");
    EXPECT_TRUE(log.contains("[qm_set_realtime_push]Force sensors are not supported! \n"));
    give_force_sensor();
    EXPECT_EQ(request(config_of(5, 8089, "1.2.3.4", 2)),
              R"("cycle":5,"port":8089,"ip":"1.2.3.4","force_cordinate":2})");
    EXPECT_EQ(request(config_of(5, 8089, "1.2.3.4", -1)), R"("cycle":5,"port":8089,"ip":"1.2.3.4"})");
}

TEST_F(RealtimePush, RefusalGivesOneAndSilenceMinusTwo) {
    controller.reply("set_realtime_push", R"({"command":"set_realtime_push","state":false})");
    EXPECT_EQ(qm_set_realtime_push(arm(), config_of(5, 8089, "192.168.1.100")), 1);
    controller.forget("set_realtime_push");
    EXPECT_EQ(qm_set_realtime_push(arm(), config_of(5, 8089, "192.168.1.100")), -2);
}

// ---- reading the configuration ----

TEST_F(RealtimePush, ReadingFillsTheConfigAndLearnsThePort) {
    controller.reply(
        "get_realtime_push",
        R"({"command":"get_realtime_push","cycle":3,"port":8100,"ip":"192.168.1.20","enable":true,)"
        R"("custom":{"joint_speed":true,"hand":false},"force_coordinate":1})");
    qm_realtime_push_config_t config{};
    ASSERT_EQ(qm_get_realtime_push(arm(), &config), 0);
    EXPECT_EQ(controller.received(), "{\"command\":\"get_realtime_push\"}\r\n");
    EXPECT_STREQ(config.ip, "192.168.1.20");
    const auto& custom = config.custom_config;
    // No force sensor on this arm: no force frame.
    EXPECT_EQ(
        (std::vector{config.cycle, config.port, static_cast<int>(config.enable), config.force_coordinate,
                     custom.joint_speed, custom.hand_state, custom.lift_state, custom.plus_state}),
        (std::vector{3, 8100, 1, -1, 1, 0, -1, -1}));
    with_record([](qm_handle_t& record) { EXPECT_EQ(record.udp_port, 8100); });
}

TEST_F(RealtimePush, ReadingWithASensorNeedsTheForceFrame) {
    give_force_sensor();
    const std::string reply =
        R"({"command":"get_realtime_push","cycle":3,"port":8100,"ip":"1.2.3.4","enable":false,"custom":{})";
    qm_realtime_push_config_t config{};
    controller.reply("get_realtime_push", reply + "}");
    EXPECT_EQ(qm_get_realtime_push(arm(), &config), -3);
    controller.reply("get_realtime_push", reply + R"(,"force_coordinate":2})");
    EXPECT_EQ(qm_get_realtime_push(arm(), &config), 0);
    EXPECT_EQ(config.force_coordinate, 2);
}

// ---- real datagrams ----

std::mutex g_mutex;
std::condition_variable g_arrived;
std::vector<qm_realtime_arm_joint_state_t> g_states;

void collect_state(qm_realtime_arm_joint_state_t state) {
    std::lock_guard lock(g_mutex);
    g_states.push_back(state);
    g_arrived.notify_all();
}

class RealtimeDatagrams : public ConnectedArm {
protected:
    RealtimeDatagrams() : ConnectedArm(QM_TRIPLE_MODE_E) {}
    void SetUp() override {
        ConnectedArm::SetUp();
        {
            std::lock_guard lock(g_mutex);
            g_states.clear();
        }
        qm_realtime_arm_state_call_back(collect_state);
        port = qm_test::free_port(SOCK_DGRAM);
        controller.reply("get_realtime_push", R"({"command":"get_realtime_push","cycle":5,"port":)" +
                                                  std::to_string(port) +
                                                  R"(,"ip":"127.0.0.1","enable":true,"custom":{}})");
        qm_realtime_push_config_t config{};
        ASSERT_EQ(qm_get_realtime_push(arm(), &config), 0);
    }
    // Waits for `count` records in all.
    std::vector<qm_realtime_arm_joint_state_t> states(size_t count) {
        std::unique_lock lock(g_mutex);
        g_arrived.wait_for(lock, 2s, [&] { return g_states.size() >= count; });
        return g_states;
    }
    int port = 0;
};

TEST_F(RealtimeDatagrams, EnabledPushRegistersItsPortAndEachDatagramReachesTheCallback) {
    {
        std::lock_guard lock(gUdpHandle->mutex);
        int users = 0;
        for (const auto& entry : gUdpHandle->udp_list) users += entry.port == port ? entry.user_num : 0;
        EXPECT_EQ(users, 1);
    }
    qm_test::send_datagram(
        port, R"({"joint_status":{"joint_speed":[1000]},"waypoint":{"quat":[1000000,0,0,0],"euler":[0,0,0],)"
              R"("position":[0,0,0]},"err":[3],"arm_current_status":"move_L"})");
    auto received = states(1);
    ASSERT_EQ(received.size(), 1u);
    EXPECT_EQ(received[0].errCode, 0);
    EXPECT_STREQ(received[0].arm_ip, "127.0.0.1");
    EXPECT_FLOAT_EQ(received[0].joint_status.joint_speed[0], 6.0f);
    EXPECT_EQ(received[0].arm_current_status, QM_MOVE_L_E);
    EXPECT_EQ(received[0].err.err[0], 3);
}

TEST_F(RealtimeDatagrams, MalformedOrOverlongDatagramIsDeliveredWithMinusThree) {
    qm_test::send_datagram(port, R"({"joint_status":{},"waypoint":{"quat":[1,0,0]},"err":[0]})");
    qm_test::send_datagram(port, "not json at all");
    qm_test::send_datagram(port, std::string(4000, 'x'));  // cut to the buffer
    auto received = states(3);
    ASSERT_EQ(received.size(), 3u);
    for (const auto& state : received) {
        EXPECT_EQ(state.errCode, -3);
        EXPECT_STREQ(state.arm_ip, "127.0.0.1");
    }
}

}  // namespace
}  // namespace core_test
