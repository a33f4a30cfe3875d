// Controller housekeeping, network and serial ports against a fake controller.
#include <chrono>
#include <cstring>

#include "answered_rows.h"

namespace catalogue_test {
namespace {

class Controller : public AnsweredArm {};

TEST_F(Controller, SettersSendTheirMembersAndJudgeTheirOwnBoolean) {
    expect_each_judged({
        {"arm power", ON_ARM(qm_set_arm_power(h, 1)), R"({"command":"set_arm_power","arm_power":1})",
         "arm_power"},
        {"run time cleared", qm_clear_system_runtime, R"({"command":"clear_system_runtime"})", "clear_state"},
        {"odometers cleared", qm_clear_joint_odom, R"({"command":"clear_joint_odom"})", "clear_state"},
        {"system errors cleared", qm_clear_system_err, R"({"command":"clear_system_err"})", "clear_state"},
        {"wired address is judged by status", ON_ARM(qm_set_NetIP(h, "192.168.1.18")),
         R"({"command":"set_NetIP","ip":"192.168.1.18"})", "status"},
        {"network defaults", qm_set_net_default, R"({"command":"set_net_default"})", "net_default_state"},
        {"wireless off", qm_set_wifi_close, R"({"command":"set_wifi_close"})", "wifi_close_state"},
        {"controller port mode", ON_ARM(qm_set_controller_rs485_mode(h, 1, 115200)),
         R"({"command":"set_controller_rs485_mode","mode":1,"baudrate":115200})", "set_state"},
        {"tool port mode", ON_ARM(qm_set_tool_rs485_mode(h, 0, 9600)),
         R"({"command":"set_tool_rs485_mode","mode":0,"baudrate":9600})", "set_state"},
    });
}

TEST_F(Controller, UnansweredCommandsOnlySendAndHoldTheExchangeFor800Ms) {
    const std::pair<Call, std::string> rows[] = {
        {ON_ARM(qm_set_wifi_ap(h, "arm", "secret12")),
         R"({"command":"set_wifi_ap","wifi_name":"arm","password":"secret12"})"},
        {ON_ARM(qm_set_wifi_sta(h, "office", "pw")),
         R"({"command":"set_wifi_sta","router_name":"office","password":"pw"})"},
        {ON_ARM(qm_set_usb(h, 460800)), R"({"command":"set_usb","baudrate":460800})"},
        {ON_ARM(qm_set_RS485(h, 9600)), R"({"command":"set_RS485","baudrate":9600})"},
    };
    for (const auto& [call, request] : rows) {
        SCOPED_TRACE(request);
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(fresh(call), 0);
        EXPECT_GE(std::chrono::steady_clock::now() - start, 800ms);
        EXPECT_EQ(only_line(), request);
    }
    qm_robot_handle stranger{1};
    EXPECT_EQ(qm_set_usb(&stranger, 9600), -1);
}

TEST_F(Controller, QueriesReadTheirMembers) {
    float voltage = 0, current = 0, temperature = 0, odom[ARM_DOF] = {};
    int err = 0, day = 0, hour = 0, min = 0, sec = 0;
    char ip[16] = {}, mask[16] = {}, mac[18] = {};
    expect_each_answered({
        {"supply state: thousandths, error flag as is",
         ON_ARM(qm_get_controller_state(h, &voltage, &current, &temperature, &err)),
         R"({"command":"get_controller_state"})",
         R"({"command":"controller_state","voltage":24100,"current":-1500,"temperature":41000,"err_flag":3})",
         0,
         [&] {
             EXPECT_EQ(std::vector<float>({voltage, current, temperature, float(err)}),
                       (std::vector<float>{24.1f, -1.5f, 41.0f, 3.0f}));
         }},
        {"run time", ON_ARM(qm_get_system_runtime(h, &day, &hour, &min, &sec)),
         R"({"command":"get_system_runtime"})",
         R"({"command":"get_system_runtime","day":12,"hour":5,"min":59,"sec":1})", 0,
         [&] {
             EXPECT_EQ(std::vector<int>({day, hour, min, sec}), (std::vector<int>{12, 5, 59, 1}));
         }},
        {"odometers, dof values unscaled", ON_ARM(qm_get_joint_odom(h, odom)),
         R"({"command":"get_joint_odom"})", R"({"command":"get_joint_odom","odom":[1,2,3,4,5,123456]})", 0,
         [&] {
             EXPECT_EQ(std::vector<float>(odom, odom + ARM_DOF),
                       (std::vector<float>{1, 2, 3, 4, 5, 123456, 0}));
         }},
        {"wired network; an over-long text is cut to its buffer", ON_ARM(qm_get_wired_net(h, ip, mask, mac)),
         R"({"command":"get_wired_net"})",
         R"({"command":"get_wired_net","ip":"192.168.100.100.7","mask":"255.255.255.0","mac":"aa:bb:cc:dd:ee:ff"})",
         0,
         [&] {
             EXPECT_EQ(std::vector<std::string>({ip, mask, mac}),
                       (std::vector<std::string>{"192.168.100.100", "255.255.255.0", "aa:bb:cc:dd:ee:ff"}));
         }},
    });
}

TEST_F(Controller, QueryFailuresLeaveTheOutputsAlone) {
    int day = -7, hour = -7, min = -7, sec = -7;
    expect_failures(
        "get_system_runtime", ON_ARM(qm_get_system_runtime(h, &day, &hour, &min, &sec)),
        {{std::nullopt, -2}, {R"({"command":"get_system_runtime","day":1,"hour":2,"min":3})", -3}});
    EXPECT_EQ(std::vector<int>({day, hour, min, sec}), (std::vector<int>{-7, -7, -7, -7}));
}

TEST_F(Controller, PortModesToleratePortsOutsideModbusModeWithoutTheirTimeout) {
    int mode = -7, baud = -7, timeout = -7;
    const auto reset = [&] { mode = baud = timeout = -7; };
    const auto expect_read = [&](int m, int b, int t) {
        EXPECT_EQ(std::vector<int>({mode, baud, timeout}), (std::vector<int>{m, b, t}));
        reset();
    };
    qm_test::LogCapture log(LOG_LEVEL_WARN);
    expect_each_answered({
        {"controller port in Modbus mode", ON_ARM(qm_get_controller_RS485_mode(h, &mode, &baud, &timeout)),
         R"({"command":"get_controller_RS485_mode"})",
         R"({"command":"controller_RS485_mode","mode":2,"baudrate":115200,"modbus_timeout":20})", 0,
         [&] { expect_read(2, 115200, 20); }},
        {"tool port without its timeout", ON_ARM(qm_get_tool_RS485_mode(h, &mode, &baud, &timeout)),
         R"({"command":"get_tool_RS485_mode"})", R"({"command":"tool_RS485_mode","mode":0,"baudrate":9600})",
         0,
         [&] {
             expect_read(0, 9600, -7);
             EXPECT_TRUE(log.contains(
                 "it is not in Modbus-RTU mode, and the modbus_timeout field does not exist.\n"));
         }},
        {"a missing baud rate is an error", ON_ARM(qm_get_tool_RS485_mode(h, &mode, &baud, &timeout)),
         R"({"command":"get_tool_RS485_mode"})",
         R"({"command":"tool_RS485_mode","mode":0,"modbus_timeout":20})", -3,
         [&] {
             expect_read(-7, -7, -7);
             EXPECT_TRUE(log.contains("baudrate parsing error\n"));
         }},
        {"fourth generation controller port", ON_ARM(qm_get_controller_rs485_mode_v4(h, &mode, &baud)),
         R"({"command":"get_controller_rs485_mode"})",
         R"({"command":"controller_rs485_mode","mode":1,"baudrate":460800})", 0,
         [&] { expect_read(1, 460800, -7); }},
        {"fourth generation tool port needs its baud rate",
         ON_ARM(qm_get_tool_rs485_mode_v4(h, &mode, &baud)), R"({"command":"get_tool_rs485_mode"})",
         R"({"command":"tool_rs485_mode","mode":1})", -3, [&] { expect_read(-7, -7, -7); }},
    });
}

TEST_F(Controller, WirelessNetworkIsFilledByItsMode) {
    qm_wifi_net_t net{};
    const auto blank = [&] {
        std::memset(&net, 0x7f, sizeof net);
        net.channel = -7;
    };
    blank();
    const std::string ap =
        R"({"command":"get_wifi_net","ip":"10.0.0.1","mask":"255.0.0.0","mac":"aa:bb","mode":"ap",)"
        R"("channel":6,"ssid":"arm-net","password":"secret"})";
    const std::string long_ssid =
        R"({"command":"get_wifi_net","ip":"1.2.3.4","mask":"m","mac":"a","mode":"sta",)"
        R"("ssid":")" +
        std::string(40, 's') + R"(","password":"p"})";
    expect_each_answered({
        {"access point: channel, ssid and password", ON_ARM(qm_get_wifi_net(h, &net)),
         R"({"command":"get_wifi_net"})", ap, 0,
         [&] {
             EXPECT_STREQ(net.ip, "10.0.0.1");
             EXPECT_STREQ(net.mask, "255.0.0.0");
             EXPECT_STREQ(net.mac, "aa:bb");
             EXPECT_STREQ(net.mode, "ap");
             EXPECT_EQ(net.channel, 6);
             EXPECT_STREQ(net.ssid, "arm-net");
             EXPECT_STREQ(net.password, "secret");
             blank();
         }},
        {"station: no channel; a 40-character ssid is cut to its field", ON_ARM(qm_get_wifi_net(h, &net)),
         R"({"command":"get_wifi_net"})", long_ssid, 0,
         [&] {
             EXPECT_EQ(net.channel, -7);
             EXPECT_EQ(std::string(net.ssid), std::string(31, 's'));
             EXPECT_STREQ(net.password, "p");
             blank();
         }},
        {"off: ssid, password and channel stay unwritten", ON_ARM(qm_get_wifi_net(h, &net)),
         R"({"command":"get_wifi_net"})",
         R"({"command":"get_wifi_net","ip":"0.0.0.0","mask":"0.0.0.0","mac":"a","mode":"off","channel":1})",
         0,
         [&] {
             EXPECT_STREQ(net.mode, "off");
             EXPECT_EQ(net.channel, -7);
             EXPECT_EQ(net.ssid[0], 0x7f);
             EXPECT_EQ(net.password[0], 0x7f);
             blank();
         }},
        {"a station without its ssid keeps what came before", ON_ARM(qm_get_wifi_net(h, &net)),
         R"({"command":"get_wifi_net"})",
         R"({"command":"get_wifi_net","ip":"1.2.3.4","mask":"m","mac":"a","mode":"sta","password":"p"})", -3,
         [&] {
             EXPECT_STREQ(net.ip, "1.2.3.4");
             EXPECT_STREQ(net.mode, "sta");
             EXPECT_EQ(net.ssid[0], 0x7f);
         }},
    });
}

}  // namespace
}  // namespace catalogue_test
