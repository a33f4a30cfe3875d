// Modbus through the controller against a fake controller.
#include <cstring>
#include <thread>

#include "answered_rows.h"

namespace catalogue_test {
namespace {

class Modbus : public AnsweredArm {};

qm_peripheral_read_write_params_t on_port(int num) {
    return {1, 10, 2, num};
}

template <class Params>
Params tcp_slave(const char* ip, const char* master_name, int num) {
    Params params{};
    params.address = 7;
    std::strncpy(params.ip, ip, sizeof params.ip);
    std::strncpy(params.master_name, master_name, sizeof params.master_name);
    params.port = 502;
    params.num = num;
    return params;
}

qm_modbus_tcp_master_info_t master(const char* name, const char* ip) {
    qm_modbus_tcp_master_info_t info{};
    std::strncpy(info.master_name, name, sizeof info.master_name);
    std::strncpy(info.ip, ip, sizeof info.ip);
    info.port = 502;
    return info;
}

std::string ints(int n, int value) {
    std::string list = "[";
    for (int i = 0; i < n; ++i) list.append(i ? "," : "").append(std::to_string(value));
    return list + "]";
}

TEST_F(Modbus, ModesAndWritesSendTheirMembersAndJudgeTheirState) {
    int three[3] = {1, 2, 3};
    qm_modbus_rtu_write_params_t rtu{5, 1, 0, 2, {1, 0}};
    auto tcp_by_ip = tcp_slave<qm_modbus_tcp_write_params_t>("192.168.1.50", "plc", 2);
    tcp_by_ip.data[0] = 9;
    tcp_by_ip.data[1] = 8;
    // Six characters are no address, so the stored master is named.
    const auto tcp_by_name = tcp_slave<qm_modbus_tcp_write_params_t>("1.2.34", "plc", 0);
    expect_each_judged({
        {"serial Modbus on", ON_ARM(qm_set_modbus_mode(h, 1, 115200, 2)),
         R"({"command":"set_modbus_mode","port":1,"baudrate":115200,"timeout":2})", "set_state"},
        {"serial Modbus off", ON_ARM(qm_close_modbus_mode(h, 1)),
         R"({"command":"close_modbus_mode","port":1})", "set_state"},
        {"Modbus TCP on", ON_ARM(qm_set_modbustcp_mode(h, "192.168.1.50", 502, 1000)),
         R"({"command":"set_modbustcp_mode","ip":"192.168.1.50","port":502,"timeout":1000})", "set_state"},
        {"Modbus TCP off", qm_close_modbustcp_mode, R"({"command":"close_modbustcp_mode"})", "set_state"},
        {"one coil", ON_ARM(qm_write_single_coil(h, on_port(1), 1)),
         R"({"command":"write_single_coil","port":1,"address":10,"data":1,"device":2})", "write_state"},
        {"registers", ON_ARM(qm_write_registers(h, on_port(3), three)),
         R"({"command":"write_registers","port":1,"address":10,"num":3,"data":[1,2,3],"device":2})",
         "write_state"},
        {"RTU coils send num values and no num", ON_ARM(qm_write_modbus_rtu_coils(h, rtu)),
         R"({"command":"write_modbus_rtu_coils","address":5,"device":1,"type":0,"data":[1,0]})",
         "write_state"},
        {"TCP coils by address", ON_ARM(qm_write_modbus_tcp_coils(h, tcp_by_ip)),
         R"({"command":"write_modbus_tcp_coils","address":7,"data":[9,8],"ip":"192.168.1.50","port":502})",
         "write_state"},
        {"TCP registers by master name", ON_ARM(qm_write_modbus_tcp_registers(h, tcp_by_name)),
         R"({"command":"write_modbus_tcp_registers","address":7,"data":[],"master_name":"plc"})",
         "write_state"},
        {"a master is added", ON_ARM(qm_add_modbus_tcp_master(h, master("plc", "10.0.0.9"))),
         R"({"command":"add_modbus_tcp_master","master_name":"plc","ip":"10.0.0.9","port":502})",
         "add_state"},
        {"an update names the stored master, then the new name",
         ON_ARM(qm_update_modbus_tcp_master(h, "old", master("plc", "10.0.0.9"))),
         R"({"command":"update_modbus_tcp_master","master_name":"old","new_name":"plc","ip":"10.0.0.9","port":502})",
         "update_state"},
        {"a master is deleted", ON_ARM(qm_delete_modbus_tcp_master(h, "plc")),
         R"({"command":"delete_modbus_tcp_master","master_name":"plc"})", "delete_state"},
    });
}

TEST_F(Modbus, WritesSendAtMostTheRecordsValues) {
    qm_modbus_rtu_write_params_t rtu{};
    std::fill(std::begin(rtu.data), std::end(rtu.data), 4);
    auto tcp = tcp_slave<qm_modbus_tcp_write_params_t>("10.0.0.9", "", -3);
    // A 16-character ip field without terminator is no address either.
    auto unterminated = tcp_slave<qm_modbus_tcp_write_params_t>("", "plc", 0);
    std::memset(unterminated.ip, '1', sizeof unterminated.ip);
    rtu.num = 500;
    const std::pair<Call, std::string> rows[] = {
        {ON_ARM(qm_write_modbus_rtu_registers(h, rtu)),
         R"({"command":"write_modbus_rtu_registers","address":0,"device":0,"type":0,"data":)" + ints(120, 4) +
             "}"},
        {ON_ARM(qm_write_modbus_tcp_registers(h, tcp)),
         R"({"command":"write_modbus_tcp_registers","address":7,"data":[],"ip":"10.0.0.9","port":502})"},
        {ON_ARM(qm_write_modbus_tcp_coils(h, unterminated)),
         R"({"command":"write_modbus_tcp_coils","address":7,"data":[],"master_name":"plc"})"},
    };
    for (const auto& [call, request] : rows) {
        controller.reply(command_of(request), judged(command_of(request), "write_state"));
        EXPECT_EQ(fresh(call), 0);
        EXPECT_EQ(only_line(), request);
    }
}

TEST_F(Modbus, ReadsCopyAtMostTheirCountAndNeedDataAndTheirTarget) {
    int data[4] = {};
    const auto expect_data = [&](std::vector<int> expected) {
        EXPECT_EQ(std::vector<int>(data, data + 4), expected);
        std::fill(data, data + 4, -7);
    };
    std::fill(data, data + 4, -7);
    const qm_modbus_rtu_read_params_t rtu{5, 1, 2, 3};
    const auto tcp_by_ip = tcp_slave<qm_modbus_tcp_read_params_t>("192.168.1.50", "plc", 2);
    const auto tcp_by_name = tcp_slave<qm_modbus_tcp_read_params_t>("", "plc", 2);
    const std::string tcp_by_ip_request =
        R"({"command":"read_modbus_tcp_input_registers","address":7,"num":2,"ip":"192.168.1.50","port":502})";
    expect_each_answered({
        {"one coil into the first entry", ON_ARM(qm_read_coils(h, on_port(1), data)),
         R"({"command":"read_coils","port":1,"address":10,"num":1,"device":2})",
         R"({"command":"read_coils","read_state":true,"data":1})", 0,
         [&] {
             expect_data({1, -7, -7, -7});
         }},
        {"sixteen coils are two values", ON_ARM(qm_read_multiple_coils(h, on_port(16), data)),
         R"({"command":"read_multiple_coils","port":1,"address":10,"num":16,"device":2})",
         R"({"command":"read_multiple_coils","data":[255,3,9]})", 0,
         [&] {
             expect_data({255, 3, -7, -7});
         }},
        {"a longer data array is cut to the count",
         ON_ARM(qm_read_multiple_holding_registers(h, on_port(2), data)),
         R"({"command":"read_multiple_holding_registers","port":1,"address":10,"num":2,"device":2})",
         R"({"command":"read_multiple_holding_registers","data":[1,2,3,4,5,6,7,8,9]})", 0,
         [&] {
             expect_data({1, 2, -7, -7});
         }},
        {"a shorter one fills what it holds", ON_ARM(qm_read_multiple_input_registers(h, on_port(4), data)),
         R"({"command":"read_multiple_input_registers","port":1,"address":10,"num":4,"device":2})",
         R"({"command":"read_multiple_input_registers","data":[6]})", 0,
         [&] {
             expect_data({6, -7, -7, -7});
         }},
        {"RTU registers", ON_ARM(qm_read_modbus_rtu_holding_registers(h, rtu, data)),
         R"({"command":"read_modbus_rtu_holding_registers","address":5,"device":1,"num":3,"type":2})",
         R"({"command":"read_modbus_rtu_holding_registers","data":[4,5,6]})", 0,
         [&] {
             expect_data({4, 5, 6, -7});
         }},
        {"TCP by address", ON_ARM(qm_read_modbus_tcp_input_registers(h, tcp_by_ip, data)), tcp_by_ip_request,
         R"({"command":"read_modbus_tcp_input_registers","data":[7,8],"ip":"192.168.1.50","port":502})", 0,
         [&] {
             expect_data({7, 8, -7, -7});
         }},
        {"TCP by master name", ON_ARM(qm_read_modbus_tcp_coils(h, tcp_by_name, data)),
         R"({"command":"read_modbus_tcp_coils","address":7,"num":2,"master_name":"plc"})",
         R"({"command":"read_modbus_tcp_coils","data":[1,0],"master_name":"plc"})", 0,
         [&] {
             expect_data({1, 0, -7, -7});
         }},
        {"a TCP reply without its target", ON_ARM(qm_read_modbus_tcp_input_registers(h, tcp_by_ip, data)),
         tcp_by_ip_request,
         R"({"command":"read_modbus_tcp_input_registers","data":[7,8],"ip":"192.168.1.50"})", -3,
         [&] {
             expect_data({-7, -7, -7, -7});
         }},
        {"a refused read", ON_ARM(qm_read_modbus_rtu_coils(h, rtu, data)),
         R"({"command":"read_modbus_rtu_coils","address":5,"device":1,"num":3,"type":2})",
         R"({"command":"read_modbus_rtu_coils","read_state":false,"data":[1,1,1]})", 1,
         [&] {
             expect_data({-7, -7, -7, -7});
         }},
        {"a reply without data", ON_ARM(qm_read_holding_registers(h, on_port(1), data)),
         R"({"command":"read_holding_registers","port":1,"address":10,"num":1,"device":2})",
         R"({"command":"read_holding_registers","read_state":true})", -3,
         [&] {
             expect_data({-7, -7, -7, -7});
         }},
        {"data that is no array", ON_ARM(qm_read_modbus_rtu_input_status(h, rtu, data)),
         R"({"command":"read_modbus_rtu_input_status","address":5,"device":1,"num":3,"type":2})",
         R"({"command":"read_modbus_rtu_input_status","data":5})", -3,
         [&] {
             expect_data({-7, -7, -7, -7});
         }},
    });
}

TEST_F(Modbus, StoredMastersAreReadBoundedByTheirRecords) {
    qm_modbus_tcp_master_info_t info = master("unchanged", "0.0.0.0");
    const std::string long_name(40, 'n');
    std::string entries;
    for (int i = 0; i < 200; ++i) {  // short entries, so the reply fits one mailbox line
        if (i) entries.append(",");
        entries.append(R"({"master_name":")").append(i == 99 ? long_name : "m").append(R"(","ip":"10.0.0.)");
        entries.append(std::to_string(i)).append(R"(","port":)").append(std::to_string(i)).append("}");
    }
    auto list = std::make_unique<qm_modbus_tcp_master_list_t>();
    expect_each_answered({
        {"an unknown master", ON_ARM(qm_get_modbus_tcp_master(h, "ghost", &info)),
         R"({"command":"given_modbus_tcp_master","master_name":"ghost"})",
         R"({"command":"given_modbus_tcp_master","given_state":false})", 1,
         [&] { EXPECT_STREQ(info.master_name, "unchanged"); }},
        {"a master without its address", ON_ARM(qm_get_modbus_tcp_master(h, "plc", &info)),
         R"({"command":"given_modbus_tcp_master","master_name":"plc"})",
         R"({"command":"given_modbus_tcp_master","master_name":"plc","port":502})", -3,
         [&] { EXPECT_STREQ(info.master_name, "unchanged"); }},
        {"a stored master", ON_ARM(qm_get_modbus_tcp_master(h, "plc", &info)),
         R"({"command":"given_modbus_tcp_master","master_name":"plc"})",
         R"({"command":"given_modbus_tcp_master","master_name":"plc","ip":"10.0.0.9","port":1502})", 0,
         [&] {
             EXPECT_STREQ(info.master_name, "plc");
             EXPECT_STREQ(info.ip, "10.0.0.9");
             EXPECT_EQ(info.port, 1502);
         }},
        {"a page of 200 masters keeps 100", ON_ARM(qm_get_modbus_tcp_master_list(h, 1, 200, "", list.get())),
         R"({"command":"get_modbus_tcp_master_list","page_num":1,"page_size":200,"vague_search":""})",
         R"({"command":"get_modbus_tcp_master_list","page_num":1,"page_size":200,"total_size":200,)"
         R"("vague_search":")" +
             long_name + R"(","list":[)" + entries + "]}",
         0,
         [&] {
             EXPECT_EQ(list->total_size, 200);
             EXPECT_EQ(list->list_len, 100);
             EXPECT_EQ(std::string(list->vague_search), std::string(31, 'n'));
             EXPECT_EQ(std::string(list->master_list[99].master_name), std::string(19, 'n'));
             EXPECT_STREQ(list->master_list[99].ip, "10.0.0.99");
             EXPECT_EQ(list->master_list[99].port, 99);
         }},
        {"an entry without its port", ON_ARM(qm_get_modbus_tcp_master_list(h, 2, 10, "p", list.get())),
         R"({"command":"get_modbus_tcp_master_list","page_num":2,"page_size":10,"vague_search":"p"})",
         R"({"command":"get_modbus_tcp_master_list","page_num":2,"page_size":10,"total_size":1,)"
         R"("vague_search":"p","list":[{"master_name":"plc","ip":"10.0.0.9"}]})",
         -3, [&] { EXPECT_EQ(list->page_num, 1) << "the earlier page stays"; }},
    });
}

// The older family waits with the Modbus timeout, which qm_set_timeout leaves alone; the
// modbus_rtu and modbus_tcp families with the query timeout, the master list with the set timeout.
TEST_F(Modbus, EachFamilyWaitsWithItsOwnTimeout) {
    m_nOutTime_modbus = 3000;
    const std::string late_commands[] = {"read_coils", "read_modbus_rtu_coils", "get_modbus_tcp_master_list"};
    for (const std::string& command : late_commands)
        controller.on(command, [command](const std::string&) -> std::optional<std::string> {
            std::this_thread::sleep_for(400ms);
            return R"({"command":")" + command +
                   R"(","data":1,"page_num":0,"page_size":0,"total_size":0,)"
                   R"("vague_search":"","list":[]})"
                   "\r\n";
        });
    int data[1] = {};
    qm_modbus_tcp_master_list_t list{};
    EXPECT_EQ(qm_read_coils(arm(), on_port(1), data), 0);
    EXPECT_EQ(qm_read_modbus_rtu_coils(arm(), {0, 0, 0, 1}, data), -2);
    EXPECT_EQ(qm_get_modbus_tcp_master_list(arm(), 1, 1, "", &list), -2);
    m_nOutTime_max = 3000;
    EXPECT_EQ(qm_get_modbus_tcp_master_list(arm(), 1, 1, "", &list), 0);
    m_nOutTime_modbus = 1000;
}

}  // namespace
}  // namespace catalogue_test
