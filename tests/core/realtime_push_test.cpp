// Configuring the realtime push and receiving real datagrams on a registered port.
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <condition_variable>
#include <cstring>
#include <mutex>
#include <ostream>
#include <vector>

#include "connected_arm.h"
#include "log_capture.h"

namespace core_test {
namespace {

using qm_test::LogCapture;

qm_realtime_push_config_t config_of(int cycle, int port, const char* ip, int force_coordinate = -1,
                                    qm_udp_custom_config_t custom = {-1, -1, -1, -1, -1, -1, -1, -1}) {
    qm_realtime_push_config_t config{};
    config.cycle = cycle;
    config.enable = true;
    config.port = port;
    config.force_coordinate = force_coordinate;
    std::snprintf(config.ip, sizeof config.ip, "%s", ip);
    config.custom_config = custom;
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
    std::string sent() {
        auto line = controller.wait_line(0, 200ms);
        return line.value_or("");
    }
};

// ---- validation ----

struct Invalid {
    const char* name;
    qm_realtime_push_config_t config;
    const char* message;
};
// Names the case in test listings.
void PrintTo(const Invalid& c, std::ostream* os) {
    *os << c.name;
}

class RealtimePushValidation : public RealtimePush, public ::testing::WithParamInterface<Invalid> {};

TEST_P(RealtimePushValidation, RefusesWithoutSending) {
    LogCapture log(LOG_LEVEL_ERROR);
    EXPECT_EQ(qm_set_realtime_push(arm(), GetParam().config), -4);
    EXPECT_TRUE(log.contains(GetParam().message)) << testing::PrintToString(log.messages());
    EXPECT_FALSE(controller.wait_line(0, 30ms));
}

INSTANTIATE_TEST_SUITE_P(
    Configs, RealtimePushValidation,
    ::testing::Values(
        Invalid{"cycle_zero", config_of(0, 8089, "192.168.1.10"),
                "[qm_set_realtime_push] set realtime push config error, invaild cycle: 0!\n"},
        Invalid{"port_zero", config_of(5, 0, "192.168.1.10"),
                "[qm_set_realtime_push] set realtime push config error, invaild port:0 !\n"},
        Invalid{"ip_of_five_characters", config_of(5, 8089, "1.2.3"),
                "[qm_set_realtime_push] set realtime push config error, invaild ip: 1.2.3!\n"},
        Invalid{"ip_of_sixteen_characters", config_of(5, 8089, "192.168.100.1000"),
                "[qm_set_realtime_push] set realtime push config error, invaild ip: 192.168.100.1000!\n"},
        Invalid{"cycle_checked_first", config_of(-1, 0, ""),
                "[qm_set_realtime_push] set realtime push config error, invaild cycle: -1!\n"}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(RealtimePush, IpOfSevenCharactersPasses) {
    EXPECT_EQ(qm_set_realtime_push(arm(), config_of(5, 8089, "1.2.3.4")), 0);
}

// ---- request bytes ----

struct Request {
    const char* name;
    bool force_sensor;
    qm_realtime_push_config_t config;
    const char* line;
};
// Names the case in test listings.
void PrintTo(const Request& c, std::ostream* os) {
    *os << c.name;
}

class RealtimePushRequest : public RealtimePush, public ::testing::WithParamInterface<Request> {};

TEST_P(RealtimePushRequest, SendsExactly) {
    if (GetParam().force_sensor) give_force_sensor();
    EXPECT_EQ(qm_set_realtime_push(arm(), GetParam().config), 0);
    EXPECT_EQ(sent(), GetParam().line);
}

INSTANTIATE_TEST_SUITE_P(
    Configs, RealtimePushRequest,
    ::testing::Values(
        Request{
            "no_sections", false, config_of(5, 8089, "192.168.1.100"),
            R"({"command":"set_realtime_push","enable":true,"cycle":5,"port":8089,"ip":"192.168.1.100"})"},
        Request{"sections_in_their_order", false,
                config_of(2, 9000, "10.0.0.1", -1, {1, 0, -1, 1, 1, -1, -1, 1}),
                R"({"command":"set_realtime_push","enable":true,"cycle":2,"port":9000,"ip":"10.0.0.1",)"
                R"("custom":{"joint_speed":true,"lift_state":false,"arm_current_status":true,"hand":true}})"},
        Request{"plus_state_follows_plus_base", false,
                config_of(2, 9000, "10.0.0.1", -1, {-1, -1, -1, -1, -1, 0, 0, -1}),
                R"({"command":"set_realtime_push","enable":true,"cycle":2,"port":9000,"ip":"10.0.0.1",)"
                R"("custom":{"aloha_state":false,"qm_plus_base":false,"qm_plus_state":true}})"},
        Request{"force_frame_with_a_sensor", true, config_of(5, 8089, "192.168.1.100", 2),
                R"({"command":"set_realtime_push","enable":true,"cycle":5,"port":8089,"ip":"192.168.1.100",)"
                R"("force_cordinate":2})"},
        Request{
            "negative_force_frame_with_a_sensor_is_left_out", true, config_of(5, 8089, "192.168.1.100", -1),
            R"({"command":"set_realtime_push","enable":true,"cycle":5,"port":8089,"ip":"192.168.1.100"})"}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(RealtimePush, ForceFrameWithoutASensorIsLeftOutWithANotice) {
    LogCapture log(LOG_LEVEL_INFO);
    EXPECT_EQ(qm_set_realtime_push(arm(), config_of(5, 8089, "192.168.1.100", 0)), 0);
    EXPECT_EQ(sent(),
              R"({"command":"set_realtime_push","enable":true,"cycle":5,"port":8089,"ip":"192.168.1.100"})");
    EXPECT_TRUE(log.contains("[qm_set_realtime_push]Force sensors are not supported! \n"));
}

TEST_F(RealtimePush, RefusalGivesOne) {
    controller.reply("set_realtime_push", R"({"command":"set_realtime_push","state":false})");
    EXPECT_EQ(qm_set_realtime_push(arm(), config_of(5, 8089, "192.168.1.100")), 1);
}

TEST_F(RealtimePush, SilenceGivesMinusTwo) {
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
    EXPECT_EQ(config.cycle, 3);
    EXPECT_EQ(config.port, 8100);
    EXPECT_STREQ(config.ip, "192.168.1.20");
    EXPECT_TRUE(config.enable);
    EXPECT_EQ(config.force_coordinate, -1) << "no force sensor on this arm";
    EXPECT_EQ(config.custom_config.joint_speed, 1);
    EXPECT_EQ(config.custom_config.hand_state, 0);
    EXPECT_EQ(config.custom_config.lift_state, -1);
    EXPECT_EQ(config.custom_config.plus_state, -1);
    with_record([](qm_handle_t& record) { EXPECT_EQ(record.udp_port, 8100); });
}

TEST_F(RealtimePush, ReadingWithASensorNeedsTheForceFrame) {
    give_force_sensor();
    controller.reply(
        "get_realtime_push",
        R"({"command":"get_realtime_push","cycle":3,"port":8100,"ip":"1.2.3.4","enable":false,"custom":{}})");
    qm_realtime_push_config_t config{};
    EXPECT_EQ(qm_get_realtime_push(arm(), &config), -3);
    controller.reply("get_realtime_push",
                     R"({"command":"get_realtime_push","cycle":3,"port":8100,"ip":"1.2.3.4",)"
                     R"("enable":false,"custom":{},"force_coordinate":2})");
    EXPECT_EQ(qm_get_realtime_push(arm(), &config), 0);
    EXPECT_EQ(config.force_coordinate, 2);
}

// ---- real datagrams ----

int free_udp_port() {
    int fd = ::socket(AF_INET, SOCK_DGRAM, 0);
    sockaddr_in addr{};
    addr.sin_family = AF_INET;
    addr.sin_addr.s_addr = htonl(INADDR_ANY);
    socklen_t len = sizeof addr;
    ::bind(fd, reinterpret_cast<sockaddr*>(&addr), sizeof addr);
    ::getsockname(fd, reinterpret_cast<sockaddr*>(&addr), &len);
    ::close(fd);
    return ntohs(addr.sin_port);
}

void send_datagram(int port, const std::string& text) {
    int fd = ::socket(AF_INET, SOCK_DGRAM, 0);
    sockaddr_in to{};
    to.sin_family = AF_INET;
    to.sin_port = htons(static_cast<uint16_t>(port));
    to.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    ::sendto(fd, text.data(), text.size(), 0, reinterpret_cast<sockaddr*>(&to), sizeof to);
    ::close(fd);
}

std::mutex g_mutex;
std::condition_variable g_arrived;
std::vector<qm_realtime_arm_joint_state_t> g_states;

void collect_state(qm_realtime_arm_joint_state_t state) {
    std::lock_guard lock(g_mutex);
    g_states.push_back(state);
    g_arrived.notify_all();
}

class RealtimeDatagrams : public TripleModeArm {
protected:
    void SetUp() override {
        TripleModeArm::SetUp();
        {
            std::lock_guard lock(g_mutex);
            g_states.clear();
        }
        qm_realtime_arm_state_call_back(collect_state);
        port = free_udp_port();
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

TEST_F(RealtimeDatagrams, EnabledPushRegistersItsPort) {
    std::lock_guard lock(gUdpHandle->mutex);
    int users = 0;
    for (const auto& entry : gUdpHandle->udp_list)
        if (entry.port == port) users = entry.user_num;
    EXPECT_EQ(users, 1);
}

TEST_F(RealtimeDatagrams, EachDatagramReachesTheCallbackWithItsSender) {
    send_datagram(
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

TEST_F(RealtimeDatagrams, MalformedDatagramIsDeliveredWithMinusThree) {
    send_datagram(port, R"({"joint_status":{},"waypoint":{"quat":[1,0,0]},"err":[0]})");
    send_datagram(port, "not json at all");
    auto received = states(2);
    ASSERT_EQ(received.size(), 2u);
    EXPECT_EQ(received[0].errCode, -3);
    EXPECT_EQ(received[1].errCode, -3);
    EXPECT_STREQ(received[1].arm_ip, "127.0.0.1");
}

TEST_F(RealtimeDatagrams, DatagramLongerThanTheBufferIsCutAndDeliveredAsMalformed) {
    send_datagram(port, std::string(4000, 'x'));
    auto received = states(1);
    ASSERT_EQ(received.size(), 1u);
    EXPECT_EQ(received[0].errCode, -3);
}

}  // namespace
}  // namespace core_test
