// Modbus through the simulated controller: registers and coils written read back on every
// family that reaches the same slave, closed ports refuse, stored masters are kept and listed.
#include <cstring>

#include "sim_session.h"

namespace e2e {
namespace {

class Modbus : public OneArm {};

TEST_F(Modbus, RegistersAndCoilsReadBackOnTheSameSlaveThroughEveryFamily) {
    int data[16] = {};
    const qm_peripheral_read_write_params_t registers{0, 10, 1, 3};
    EXPECT_EQ(qm_read_holding_registers(arm(), registers, data), 1) << "the port is not in Modbus mode";
    ASSERT_EQ(qm_set_modbus_mode(arm(), 0, 115200, 100), 0);

    int written[] = {7, 65535, 300};
    ASSERT_EQ(qm_write_registers(arm(), registers, written), 0);
    ASSERT_EQ(qm_read_multiple_holding_registers(arm(), registers, data), 0);
    EXPECT_EQ(std::vector<int>(data, data + 3), std::vector<int>(written, written + 3));
    int rtu[3] = {};
    ASSERT_EQ(qm_read_modbus_rtu_holding_registers(arm(), qm_modbus_rtu_read_params_t{10, 1, 0, 3}, rtu), 0);
    EXPECT_EQ(std::vector<int>(rtu, rtu + 3), std::vector<int>(written, written + 3));
    ASSERT_EQ(qm_write_single_register(arm(), {0, 11, 1, 1}, 42), 0);
    ASSERT_EQ(qm_read_holding_registers(arm(), {0, 11, 1, 1}, data), 0);
    EXPECT_EQ(data[0], 42);
    EXPECT_EQ(qm_write_single_register(arm(), {0, 11, 1, 1}, 70000), 1) << "beyond 16 bits";

    // Sixteen coils come back as two values of eight.
    int coils[16] = {1, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1};
    ASSERT_EQ(qm_write_coils(arm(), {0, 0, 1, 16}, coils), 0);
    ASSERT_EQ(qm_read_multiple_coils(arm(), {0, 0, 1, 16}, data), 0);
    EXPECT_EQ(data[0], 0x05);
    EXPECT_EQ(data[1], 0x80);
    qm_modbus_rtu_write_params_t coil{2, 1, 0, 1, {1}};
    ASSERT_EQ(qm_write_modbus_rtu_coils(arm(), coil), 0);
    ASSERT_EQ(qm_read_coils(arm(), {0, 0, 1, 3}, data), 0);
    EXPECT_EQ(data[0], 0x05);

    ASSERT_EQ(qm_read_input_registers(arm(), {0, 7, 1, 1}, data), 0);
    EXPECT_EQ(data[0], 7) << "nothing drives the inputs: input register a holds a";
    ASSERT_EQ(qm_close_modbus_mode(arm(), 0), 0);
    EXPECT_EQ(qm_read_modbus_rtu_coils(arm(), qm_modbus_rtu_read_params_t{0, 1, 0, 1}, data), 1);
}

TEST_F(Modbus, StoredMastersNameTheirSlaves) {
    qm_modbus_tcp_master_info_t plc{"plc", "192.168.1.50", 502};
    ASSERT_EQ(qm_add_modbus_tcp_master(arm(), plc), 0);
    EXPECT_EQ(qm_add_modbus_tcp_master(arm(), plc), 1) << "the name is taken";
    ASSERT_EQ(qm_add_modbus_tcp_master(arm(), {"press", "192.168.1.51", 1502}), 0);

    qm_modbus_tcp_write_params_t write{};
    write.address = 4;
    std::strcpy(write.master_name, "plc");
    write.num = 2;
    write.data[0] = 11;
    write.data[1] = 12;
    ASSERT_EQ(qm_write_modbus_tcp_registers(arm(), write), 0);
    qm_modbus_tcp_read_params_t read{4, "", "192.168.1.50", 502, 2};
    int data[2] = {};
    ASSERT_EQ(qm_read_modbus_tcp_holding_registers(arm(), read, data), 0);
    EXPECT_EQ(data[1], 12) << "by address, the same slave as by name";
    ASSERT_EQ(qm_set_modbustcp_mode(arm(), "192.168.1.50", 502, 100), 0);
    ASSERT_EQ(qm_read_holding_registers(arm(), {2, 5, 1, 1}, data), 0);
    EXPECT_EQ(data[0], 12) << "and through port 2";

    qm_modbus_tcp_master_list_t list{};
    ASSERT_EQ(qm_get_modbus_tcp_master_list(arm(), 1, 10, "pl", &list), 0);
    EXPECT_EQ(list.total_size, 1);
    EXPECT_STREQ(list.master_list[0].master_name, "plc");
    ASSERT_EQ(qm_update_modbus_tcp_master(arm(), "plc", {"line1", "192.168.1.60", 502}), 0);
    qm_modbus_tcp_master_info_t given{};
    ASSERT_EQ(qm_get_modbus_tcp_master(arm(), "line1", &given), 0);
    EXPECT_STREQ(given.ip, "192.168.1.60");
    ASSERT_EQ(qm_delete_modbus_tcp_master(arm(), "line1"), 0);
    EXPECT_EQ(qm_get_modbus_tcp_master(arm(), "line1", &given), 1);
    std::strcpy(read.master_name, "line1");
    read.ip[0] = '\0';
    EXPECT_EQ(qm_read_modbus_tcp_coils(arm(), read, data), 1) << "an unknown master";
    ASSERT_EQ(qm_get_modbus_tcp_master_list(arm(), 1, 0, "", &list), 0);
    EXPECT_EQ(list.list_len, 1);
}

}  // namespace
}  // namespace e2e
