// The controller's housekeeping, network, serial ports and IO against the simulator: what
// is written reads back, and refusals say 1.
#include <cstring>

#include "sim_session.h"

namespace e2e {
namespace {

class ControllerIo : public OneArm {};

TEST_F(ControllerIo, PowerRuntimeAndOdometerFollowTheArm) {
    ASSERT_EQ(qm_set_arm_power(arm(), 0), 0);
    int power = -1;
    ASSERT_EQ(qm_get_arm_power_state(arm(), &power), 0);
    EXPECT_EQ(power, 0);
    EXPECT_EQ(qm_movej(arm(), kReady, 100, 0, 0, QM_MOVE_MULTI_BLOCK), 1) << "no moves without power";
    ASSERT_EQ(qm_set_arm_power(arm(), 1), 0);

    ASSERT_EQ(qm_clear_joint_odom(arm()), 0);
    ASSERT_EQ(qm_movej(arm(), kReady, 100, 0, 0, QM_MOVE_MULTI_BLOCK), 0);
    float odom[ARM_DOF] = {};
    ASSERT_EQ(qm_get_joint_odom(arm(), odom), 0);
    expect_joints_near(odom, {0, 20, 70, 0, 90, 0}, 1.0f);

    ASSERT_EQ(qm_clear_system_runtime(arm()), 0);
    int day = -1, hour = -1, min = -1, sec = -1;
    ASSERT_EQ(qm_get_system_runtime(arm(), &day, &hour, &min, &sec), 0);
    EXPECT_EQ(day + hour + min, 0);
    EXPECT_LT(sec, 5);

    float voltage = 0, current = 0, temperature = 0;
    int err_flag = -1;
    ASSERT_EQ(qm_get_controller_state(arm(), &voltage, &current, &temperature, &err_flag), 0);
    EXPECT_FLOAT_EQ(voltage, 48.0f);
    EXPECT_EQ(err_flag, 0);
    EXPECT_EQ(qm_clear_system_err(arm()), 0);
}

TEST_F(ControllerIo, NetworkSettingsReadBack) {
    ASSERT_EQ(qm_set_NetIP(arm(), "10.0.0.7"), 0);
    EXPECT_EQ(qm_set_NetIP(arm(), "10.0.0"), 1);
    char ip[16] = {}, mask[16] = {}, mac[18] = {};
    ASSERT_EQ(qm_get_wired_net(arm(), ip, mask, mac), 0);
    EXPECT_STREQ(ip, "10.0.0.7");
    EXPECT_STREQ(mask, "255.255.255.0");

    ASSERT_EQ(qm_set_wifi_sta(arm(), "workshop", "secret-77"), 0);  // sent only
    qm_wifi_net_t wifi{};
    ASSERT_EQ(qm_get_wifi_net(arm(), &wifi), 0);
    EXPECT_STREQ(wifi.mode, "sta");
    EXPECT_STREQ(wifi.ssid, "workshop");
    ASSERT_EQ(qm_set_wifi_close(arm()), 0);
    qm_wifi_net_t off{};
    std::strcpy(off.ssid, "untouched");
    ASSERT_EQ(qm_get_wifi_net(arm(), &off), 0);
    EXPECT_STREQ(off.mode, "off");
    EXPECT_STREQ(off.ssid, "untouched");
    ASSERT_EQ(qm_set_net_default(arm()), 0);
    ASSERT_EQ(qm_get_wired_net(arm(), ip, mask, mac), 0);
    EXPECT_STREQ(ip, "192.168.1.18");
}

TEST_F(ControllerIo, SerialPortModesReadBackWithTheModbusTimeoutOnlyInModbusMode) {
    ASSERT_EQ(qm_set_controller_rs485_mode(arm(), 1, 115200), 0);
    EXPECT_EQ(qm_set_tool_rs485_mode(arm(), 1, 1234), 1) << "no such baud rate";
    int mode = -1, baud = -1, timeout = -1;
    ASSERT_EQ(qm_get_controller_RS485_mode(arm(), &mode, &baud, &timeout), 0);
    EXPECT_EQ(mode, 1);
    EXPECT_EQ(baud, 115200);
    EXPECT_EQ(timeout, 100);
    ASSERT_EQ(qm_set_tool_rs485_mode(arm(), 2, 9600), 0);
    timeout = -7;
    ASSERT_EQ(qm_get_tool_RS485_mode(arm(), &mode, &baud, &timeout), 0);
    EXPECT_EQ(mode, 2);
    EXPECT_EQ(timeout, -7);
    ASSERT_EQ(qm_get_tool_rs485_mode_v4(arm(), &mode, &baud), 0);
    EXPECT_EQ(baud, 9600);
}

TEST_F(ControllerIo, OutputsSetReadBackAndTheRealTimeModeKeepsItsSettings) {
    ASSERT_EQ(qm_set_DO_state(arm(), 2, 1), 0);
    int outputs[4] = {-1, -1, -1, -1}, inputs[4] = {-1, -1, -1, -1};
    ASSERT_EQ(qm_get_IO_output(arm(), outputs), 0);
    ASSERT_EQ(qm_get_IO_input(arm(), inputs), 0);
    EXPECT_EQ(outputs[1], 1);
    EXPECT_EQ(outputs[0] + outputs[2] + outputs[3], 0);
    EXPECT_EQ(inputs[1], 0);

    ASSERT_EQ(qm_set_IO_mode(arm(), 3, qm_io_config_t{14, {250, 2}}), 0);
    qm_io_get_t port{};
    ASSERT_EQ(qm_get_IO_state(arm(), 3, &port), 0);
    EXPECT_EQ(port.io_config.io_mode, 14);
    EXPECT_EQ(port.io_config.io_real_time_config_t.speed, 250);
    ASSERT_EQ(qm_get_IO_state(arm(), 2, &port), 0);
    EXPECT_EQ(port.io_state, 1);

    EXPECT_EQ(qm_set_tool_DO_state(arm(), 1, 1), 1) << "a tool port starts as an input";
    ASSERT_EQ(qm_set_tool_IO_mode(arm(), 1, 1), 0);
    ASSERT_EQ(qm_set_tool_DO_state(arm(), 1, 1), 0);
    int modes[2] = {-1, -1}, levels[2] = {-1, -1};
    ASSERT_EQ(qm_get_tool_IO_state(arm(), modes, levels), 0);
    EXPECT_EQ(modes[0], 1);
    EXPECT_EQ(levels[0], 1);
    EXPECT_EQ(levels[1], 0);

    int voltage = -1;
    ASSERT_EQ(qm_set_voltage(arm(), 2), 0);
    ASSERT_EQ(qm_set_tool_voltage(arm(), 3), 0);
    EXPECT_EQ(qm_set_tool_voltage(arm(), 4), 1);
    ASSERT_EQ(qm_get_voltage(arm(), &voltage), 0);
    EXPECT_EQ(voltage, 2);
    ASSERT_EQ(qm_get_tool_voltage(arm(), &voltage), 0);
    EXPECT_EQ(voltage, 3);
}

}  // namespace
}  // namespace e2e
