// The realtime push against the simulator: configured through the library, received by it,
// with the sections the configuration enables, up to 1 kHz.
#include <sys/socket.h>

#include <cstring>
#include <thread>

#include "sim_session.h"
#include "test_io.h"

namespace e2e {
namespace {

qm_realtime_push_config_t push_config(int port, int cycle) {
    qm_realtime_push_config_t config{};
    config.cycle = cycle;
    config.enable = true;
    config.port = port;
    config.force_coordinate = -1;
    std::strcpy(config.ip, "127.0.0.1");
    config.custom_config = {1, -1, -1, -1, 1, -1, -1, -1};  // joint speeds and the arm's status
    return config;
}

TEST(Realtime, PushFollowsItsConfigurationAtUpTo1kHz) {
    Session session(QM_TRIPLE_MODE_E, fast_options());
    qm_robot_handle* arm = session.arm();
    const int port = qm_test::free_port(SOCK_DGRAM);
    ASSERT_EQ(qm_set_realtime_push(arm, push_config(port, 1)), 0);
    qm_realtime_push_config_t read{};
    ASSERT_EQ(qm_get_realtime_push(arm, &read), 0);  // also starts receiving on the new port
    EXPECT_EQ(read.cycle, 1);
    EXPECT_EQ(read.port, port);
    EXPECT_STREQ(read.ip, "127.0.0.1");
    EXPECT_EQ(read.custom_config.joint_speed, 1);
    EXPECT_EQ(read.custom_config.arm_current_status, 1);
    EXPECT_EQ(read.custom_config.hand_state, -1);

    const float target[ARM_DOF] = {90, 0, 0, 0, 0, 0, 0};
    ASSERT_EQ(qm_movej(arm, target, 5, 0, 0, QM_MOVE_NBLOCK), 0);
    ASSERT_TRUE(wait_for([](const Deliveries& d) {
        return d.latest && d.latest->arm_current_status == QM_MOVE_J_E &&
               d.latest->joint_status.joint_speed[0] > 1.0f;
    })) << "no record showed the move";

    const std::uint64_t before = session.sim().datagrams_sent(0);
    std::this_thread::sleep_for(300ms);
    EXPECT_GT(session.sim().datagrams_sent(0) - before, 100u) << "about 300 at 1 kHz";

    qm_realtime_push_config_t off = push_config(port, 1);
    off.enable = false;
    ASSERT_EQ(qm_set_realtime_push(arm, off), 0);
    const std::uint64_t stopped = session.sim().datagrams_sent(0);
    std::this_thread::sleep_for(50ms);
    EXPECT_EQ(session.sim().datagrams_sent(0), stopped);
}

TEST(Realtime, ConfigurationsTheControllerCannotServeAreRefused) {
    Session session(QM_DUAL_MODE_E, fast_options("QM65-6F"));
    qm_realtime_push_config_t config = push_config(qm_test::free_port(SOCK_DGRAM), 20);
    std::strcpy(config.ip, "999.1.1.1");
    EXPECT_EQ(qm_set_realtime_push(session.arm(), config), 1);
    std::strcpy(config.ip, "127.0.0.1");
    config.cycle = 20000;
    EXPECT_EQ(qm_set_realtime_push(session.arm(), config), 1);
    config.cycle = 20;
    config.force_coordinate = 2;
    ASSERT_EQ(qm_set_realtime_push(session.arm(), config), 0);
    qm_realtime_push_config_t read{};
    ASSERT_EQ(qm_get_realtime_push(session.arm(), &read), 0);
    EXPECT_EQ(read.force_coordinate, 2);
    EXPECT_EQ(read.cycle, 20);
}

}  // namespace
}  // namespace e2e
