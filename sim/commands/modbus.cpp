// Modbus through the controller: it is the master on its RS485 ports and towards Modbus TCP
// slaves, and this simulator plays every slave it asks. A slave keeps the coils and holding
// registers written to it (the rest read 0); nothing drives its inputs, which read a fixed
// pattern: discrete input a is a % 2, input register a holds a.
//
// Buses: the older family names a port, 0 the controller's RS485 port, 1 the tool's (both
// opened by set_modbus_mode or by the RS485 port mode 1), 2 the Modbus TCP connection that
// set_modbustcp_mode opens. The modbus_rtu family names the RS485 port by "type" (0 or 1);
// the modbus_tcp family names its slave by "ip" and "port" or by a stored master.
#include <algorithm>
#include "command.h"

namespace sim {

namespace {

constexpr int kMaxValues = 120;
constexpr int kMaxPackedCoils = 8 * kMaxValues;
constexpr int kAddresses = 65536;
constexpr std::size_t kMaxMasterName = 19;
constexpr std::size_t kMaxMasters = 100;

enum class Table { coils, inputs, holding, input_registers };
enum class Shape { one, many, packed };  // one value, one value per address, 8 coils per value
enum class Bus { port, rtu, tcp };

struct Access {
    Table table;
    Shape shape;
    Bus bus;
    bool write;
};

SerialPort* serial_port(Call& call, int number) {
    if (number == 0) return &call.arm.state.serial.controller;
    if (number == 1) return &call.arm.state.serial.tool;
    return nullptr;
}

std::string tcp_key(const std::string& ip, int port) {
    return "tcp:" + ip + ":" + std::to_string(port);
}

// The slave a request addresses as "bus/device", or empty with the refusal noted.
std::string slave_key(Call& call, Bus bus) {
    if (bus == Bus::tcp) {
        std::string ip;
        int port = 0;
        if (call.args.has("ip")) {
            ip = call.args.text("ip", 15);
            port = call.args.integer("port");
            call.reply.set("ip", ip).set("port", port);
        } else {
            const std::string name = call.args.text("master_name");
            call.reply.set("master_name", name);
            const ModbusMaster* master = find_named(call.arm.state.modbus.masters, name);
            if (!master) {
                call.refuse("no Modbus TCP master \"" + name + "\"");
                return {};
            }
            ip = master->ip;
            port = master->port;
        }
        return tcp_key(ip, port) + "/1";
    }
    const int number = call.args.integer(bus == Bus::port ? "port" : "type");
    const int device = call.args.integer("device");
    if (device < 0 || device > 247) throw BadRequest("no Modbus device " + std::to_string(device));
    if (bus == Bus::port && number == 2) {
        const SerialState& serial = call.arm.state.serial;
        if (!serial.modbus_tcp) {
            call.refuse("Modbus TCP is not open");
            return {};
        }
        return tcp_key(serial.tcp_ip, serial.tcp_port) + "/" + std::to_string(device);
    }
    const SerialPort* port = serial_port(call, number);
    if (!port) throw BadRequest("no Modbus port " + std::to_string(number));
    if (port->mode != kModbusRtuMode) {
        call.refuse("RS485 port " + std::to_string(number) + " is not in Modbus RTU mode");
        return {};
    }
    return "rs485:" + std::to_string(number) + "/" + std::to_string(device);
}

int value_at(const ModbusSlave& slave, Table table, int address) {
    const std::map<int, int>* written = nullptr;
    switch (table) {
        case Table::inputs:
            return address % 2;
        case Table::input_registers:
            return address;
        case Table::coils:
            written = &slave.coils;
            break;
        case Table::holding:
            written = &slave.registers;
            break;
    }
    auto it = written->find(address);
    return it == written->end() ? 0 : it->second;
}

void check_range(int address, int count, int most) {
    if (count < 1 || count > most) throw BadRequest("count outside 1.." + std::to_string(most));
    if (address < 0 || address + count > kAddresses) throw BadRequest("addresses outside 0..65535");
}

void read(Call& call, const Access& row, const std::string& key) {
    const int address = call.args.integer("address");
    const int num = call.args.integer("num");
    const ModbusSlave& slave = call.arm.state.modbus.slaves[key];
    const bool bits = row.table == Table::coils || row.table == Table::inputs;
    if (row.shape == Shape::many) {
        check_range(address, num, kMaxValues);
        std::vector<int> values;
        for (int i = 0; i < num; ++i) values.push_back(value_at(slave, row.table, address + i));
        call.reply.ints("data", values);
        return;
    }
    // Eight coils to a value, the lowest address in the lowest bit; a single read packs up to 16.
    check_range(address, num, row.shape == Shape::packed ? kMaxPackedCoils : bits ? 16 : 1);
    std::vector<int> packed((num + 7) / 8);
    for (int i = 0; i < num; ++i) packed[i / 8] |= value_at(slave, row.table, address + i) << (i % 8);
    if (row.shape == Shape::packed)
        call.reply.ints("data", packed);
    else
        call.reply.set("data", bits ? packed[0] | (num > 8 ? packed[1] << 8 : 0) : value_at(slave, row.table, address));
}

void write(Call& call, const Access& row, const std::string& key) {
    const int address = call.args.integer("address");
    std::vector<int> values;
    if (row.shape == Shape::one) {
        values.push_back(call.args.integer("data"));
    } else {
        const cJSON* data = call.args.array("data");
        const int count = cJSON_GetArraySize(data);
        values = call.args.ints("data", static_cast<std::size_t>(count));
        if (call.args.has("num") && call.args.integer("num") != count) throw BadRequest("\"num\" is not the data's size");
    }
    check_range(address, static_cast<int>(values.size()), kMaxValues);
    const int most = row.table == Table::coils ? 1 : 65535;
    for (int value : values)
        if (value < 0 || value > most) return call.refuse("a value outside 0.." + std::to_string(most));
    std::map<int, int>& table = row.table == Table::coils ? call.arm.state.modbus.slaves[key].coils
                                                          : call.arm.state.modbus.slaves[key].registers;
    for (std::size_t i = 0; i < values.size(); ++i) table[address + static_cast<int>(i)] = values[i];
}

template <const Access* Row>
void access(Call& call) {
    const std::string key = slave_key(call, Row->bus);
    if (key.empty()) return;
    if (Row->write)
        write(call, *Row, key);
    else
        read(call, *Row, key);
}

// ---- opening and closing ----

void set_modbus_mode(Call& call) {
    SerialPort* port = serial_port(call, call.args.integer("port"));
    if (!port) return call.refuse("Modbus RTU runs on port 0 or 1");
    port->mode = kModbusRtuMode;
    port->baudrate = call.args.integer("baudrate");
    port->modbus_timeout = call.args.integer("timeout");
}

void close_modbus_mode(Call& call) {
    const int number = call.args.integer("port");
    if (number == 2) {
        call.arm.state.serial.modbus_tcp = false;
        return;
    }
    SerialPort* port = serial_port(call, number);
    if (!port) return call.refuse("no Modbus port " + std::to_string(number));
    port->mode = 0;
}

void set_modbustcp_mode(Call& call) {
    const std::string ip = call.args.text("ip", 15);
    const int port = call.args.integer("port");
    if (call.args.integer("timeout") < 0) throw BadRequest("negative timeout");
    if (!is_ipv4(ip) || port < 1 || port > 65535) return call.refuse("no Modbus TCP address " + ip);
    SerialState& serial = call.arm.state.serial;
    serial.modbus_tcp = true;
    serial.tcp_ip = ip;
    serial.tcp_port = port;
}

void close_modbustcp_mode(Call& call) {
    call.arm.state.serial.modbus_tcp = false;
}

// ---- stored Modbus TCP masters ----

std::vector<ModbusMaster>& masters(Call& call) {
    return call.arm.state.modbus.masters;
}

// A master from the request, with its name under `name_key`; none after a refusal.
std::optional<ModbusMaster> master_from(Call& call, const char* name_key) {
    ModbusMaster master{call.args.text(name_key, kMaxMasterName), call.args.text("ip", 15), call.args.integer("port")};
    if (master.name.empty()) throw BadRequest("empty master name");
    if (!is_ipv4(master.ip) || master.port < 1 || master.port > 65535) {
        call.refuse("no Modbus TCP address " + master.ip);
        return std::nullopt;
    }
    return master;
}

void add_master(Call& call) {
    if (std::optional<ModbusMaster> master = master_from(call, "master_name"))
        call.judge(add_named(masters(call), std::move(*master), kMaxMasters));
}

// The stored name comes as "master_name", the new one as "new_name".
void update_master(Call& call) {
    const std::string name = call.args.text("master_name");
    if (std::optional<ModbusMaster> master = master_from(call, "new_name"))
        call.judge(replace_named(masters(call), name, std::move(*master)));
}

void delete_master(Call& call) {
    call.judge(erase_named(masters(call), call.args.text("master_name")));
}

JsonPtr master_json(const ModbusMaster& master) {
    JsonPtr object(cJSON_CreateObject());
    cJSON_AddStringToObject(object.get(), "master_name", master.name.c_str());
    cJSON_AddStringToObject(object.get(), "ip", master.ip.c_str());
    cJSON_AddNumberToObject(object.get(), "port", master.port);
    return object;
}

void given_master(Call& call) {
    reply_given(call, find_named(masters(call), call.args.text("master_name")), master_json);
}

void list_masters(Call& call) {
    reply_page(call, masters(call), master_json);
}

constexpr Access kPortCoil{Table::coils, Shape::one, Bus::port, false};
constexpr Access kPortInput{Table::inputs, Shape::one, Bus::port, false};
constexpr Access kPortHolding{Table::holding, Shape::one, Bus::port, false};
constexpr Access kPortInputRegister{Table::input_registers, Shape::one, Bus::port, false};
constexpr Access kPortWriteCoil{Table::coils, Shape::one, Bus::port, true};
constexpr Access kPortWriteRegister{Table::holding, Shape::one, Bus::port, true};
constexpr Access kPortWriteRegisters{Table::holding, Shape::many, Bus::port, true};
constexpr Access kPortWriteCoils{Table::coils, Shape::many, Bus::port, true};
constexpr Access kPortCoils{Table::coils, Shape::packed, Bus::port, false};
constexpr Access kPortHoldings{Table::holding, Shape::many, Bus::port, false};
constexpr Access kPortInputRegisters{Table::input_registers, Shape::many, Bus::port, false};
constexpr Access kRtuCoils{Table::coils, Shape::many, Bus::rtu, false};
constexpr Access kRtuInputs{Table::inputs, Shape::many, Bus::rtu, false};
constexpr Access kRtuHoldings{Table::holding, Shape::many, Bus::rtu, false};
constexpr Access kRtuInputRegisters{Table::input_registers, Shape::many, Bus::rtu, false};
constexpr Access kRtuWriteCoils{Table::coils, Shape::many, Bus::rtu, true};
constexpr Access kRtuWriteRegisters{Table::holding, Shape::many, Bus::rtu, true};
constexpr Access kTcpCoils{Table::coils, Shape::many, Bus::tcp, false};
constexpr Access kTcpInputs{Table::inputs, Shape::many, Bus::tcp, false};
constexpr Access kTcpHoldings{Table::holding, Shape::many, Bus::tcp, false};
constexpr Access kTcpInputRegisters{Table::input_registers, Shape::many, Bus::tcp, false};
constexpr Access kTcpWriteCoils{Table::coils, Shape::many, Bus::tcp, true};
constexpr Access kTcpWriteRegisters{Table::holding, Shape::many, Bus::tcp, true};

// Reads are judged by "read_state", writes by "write_state".
const Command kCommands[] = {
    {"set_modbus_mode", "set_modbus_mode", "set_state", set_modbus_mode},
    {"close_modbus_mode", "close_modbus_mode", "set_state", close_modbus_mode},
    {"set_modbustcp_mode", "set_modbustcp_mode", "set_state", set_modbustcp_mode},
    {"close_modbustcp_mode", "close_modbustcp_mode", "set_state", close_modbustcp_mode},
    {"read_coils", "read_coils", "read_state", access<&kPortCoil>},
    {"read_input_status", "read_input_status", "read_state", access<&kPortInput>},
    {"read_holding_registers", "read_holding_registers", "read_state", access<&kPortHolding>},
    {"read_input_registers", "read_input_registers", "read_state", access<&kPortInputRegister>},
    {"write_single_coil", "write_single_coil", "write_state", access<&kPortWriteCoil>},
    {"write_single_register", "write_single_register", "write_state", access<&kPortWriteRegister>},
    {"write_registers", "write_registers", "write_state", access<&kPortWriteRegisters>},
    {"write_coils", "write_coils", "write_state", access<&kPortWriteCoils>},
    {"read_multiple_coils", "read_multiple_coils", "read_state", access<&kPortCoils>},
    {"read_multiple_holding_registers", "read_multiple_holding_registers", "read_state", access<&kPortHoldings>},
    {"read_multiple_input_registers", "read_multiple_input_registers", "read_state", access<&kPortInputRegisters>},
    {"read_modbus_rtu_coils", "read_modbus_rtu_coils", "read_state", access<&kRtuCoils>},
    {"read_modbus_rtu_input_status", "read_modbus_rtu_input_status", "read_state", access<&kRtuInputs>},
    {"read_modbus_rtu_holding_registers", "read_modbus_rtu_holding_registers", "read_state", access<&kRtuHoldings>},
    {"read_modbus_rtu_input_registers", "read_modbus_rtu_input_registers", "read_state", access<&kRtuInputRegisters>},
    {"write_modbus_rtu_coils", "write_modbus_rtu_coils", "write_state", access<&kRtuWriteCoils>},
    {"write_modbus_rtu_registers", "write_modbus_rtu_registers", "write_state", access<&kRtuWriteRegisters>},
    {"read_modbus_tcp_coils", "read_modbus_tcp_coils", "read_state", access<&kTcpCoils>},
    {"read_modbus_tcp_input_status", "read_modbus_tcp_input_status", "read_state", access<&kTcpInputs>},
    {"read_modbus_tcp_holding_registers", "read_modbus_tcp_holding_registers", "read_state", access<&kTcpHoldings>},
    {"read_modbus_tcp_input_registers", "read_modbus_tcp_input_registers", "read_state", access<&kTcpInputRegisters>},
    {"write_modbus_tcp_coils", "write_modbus_tcp_coils", "write_state", access<&kTcpWriteCoils>},
    {"write_modbus_tcp_registers", "write_modbus_tcp_registers", "write_state", access<&kTcpWriteRegisters>},
    {"add_modbus_tcp_master", "add_modbus_tcp_master", "add_state", add_master},
    {"update_modbus_tcp_master", "update_modbus_tcp_master", "update_state", update_master},
    {"delete_modbus_tcp_master", "delete_modbus_tcp_master", "delete_state", delete_master},
    {"given_modbus_tcp_master", "given_modbus_tcp_master", nullptr, given_master},
    {"get_modbus_tcp_master_list", "get_modbus_tcp_master_list", nullptr, list_masters},
};
const CommandFamily kFamily(kCommands);

}  // namespace

}  // namespace sim
