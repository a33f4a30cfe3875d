// Modbus through the controller: it is the master on its serial ports and towards Modbus TCP
// slaves; every call here is one JSON command to it. The older family (port-numbered) waits
// with the Modbus timeout, the modbus_rtu and modbus_tcp families with the query timeout (the
// master list with the long one).
#include <algorithm>
#include <climits>
#include <cstring>
#include <span>

#include "log.h"
#include "qm_command.h"
#include "qm_fifo.h"
#include "qm_interface.h"

namespace {

// Data arrays of the write records hold this many values.
constexpr int kMaxValues = 120;

// Room for a reply with 120 values or 100 masters.
constexpr int kLongReply = FIFO_LINE_MAX;

// Whether the reply's boolean `member` is false; missing or unreadable is not a refusal.
bool refused(const char* caller, const std::string& text, const char* member) {
    JsonPtr root = json_parse(text.c_str());
    if (MIO_JSON_GetObjectItemBool(root.get(), member) != 0) return false;
    qm_log_error("[%s] %s: false\n", caller, member);
    return true;
}

// The first `num` values of the caller's array, none for a negative count.
std::span<const int> values(const int* data, int num, int most = kMaxValues) {
    return data ? std::span<const int>(data, static_cast<std::size_t>(std::clamp(num, 0, most)))
                : std::span<const int>();
}

// ---- reads ----

// The exchange of a read; 0 when its reply is in `text` and the controller did not refuse.
int read_reply(const char* caller, qm_robot_handle* handle, const Request& req, const Reply& reply,
               std::string& text) {
    if (int rc = exchange(caller, handle, req, reply, text); rc < 1) return rc;
    return refused(caller, text, "read_state") ? 1 : 0;
}

// One integer "data" into data[0].
int read_one(const char* caller, qm_robot_handle* handle, const Request& req, const Reply& reply, int* data) {
    std::string text;
    if (int rc = read_reply(caller, handle, req, reply, text)) return rc;
    KeyValue table[] = {int_member("data")};
    if (int rc = common_json_parse(caller, text.c_str(), table, 1)) return rc;
    data[0] = table[0].value.int_value;
    return 0;
}

// The array "data" into `data`, at most `count` values; `also` are members the reply must carry too.
int read_many(const char* caller, qm_robot_handle* handle, const Request& req, Reply reply, int* data,
              int count, std::span<KeyValue> also = {}) {
    std::string text;
    if (int rc = read_reply(caller, handle, req, reply.buffer(kLongReply), text)) return rc;
    const JsonPtr root = parse_reply(text.c_str());
    const cJSON* array = root ? array_item(caller, root.get(), "data") : nullptr;
    if (!array) return -3;
    if (!also.empty()) {
        if (int rc = common_json_parse(caller, text.c_str(), also.data(), static_cast<int>(also.size())))
            return rc;
    }
    int i = 0;
    for (const cJSON* value = array->child; value && i < count; value = value->next)
        data[i++] = value->valueint;
    return 0;
}

// ---- the older family: slaves on a numbered controller port ----

Reply modbus_read(const char* command) {
    return Reply::query(command).with_modbus_timeout();
}
Reply modbus_set(const char* command, const char* checked) {
    return Reply(command, checked).with_modbus_timeout();
}

Request port_read(const char* command, const qm_peripheral_read_write_params_t& p) {
    return Request(command, {{"port", p.port}, {"address", p.address}, {"num", p.num}, {"device", p.device}});
}

int read_port_one(const char* caller, qm_robot_handle* handle, const char* command,
                  const qm_peripheral_read_write_params_t& p, int* data) {
    return read_one(caller, handle, port_read(command, p), modbus_read(command), data);
}

int read_port_many(const char* caller, qm_robot_handle* handle, const char* command,
                   const qm_peripheral_read_write_params_t& p, int* data, int count) {
    return read_many(caller, handle, port_read(command, p), modbus_read(command), data, count);
}

int write_port_one(const char* caller, qm_robot_handle* handle, const char* command,
                   const qm_peripheral_read_write_params_t& p, int data) {
    const Request req(command,
                      {{"port", p.port}, {"address", p.address}, {"data", data}, {"device", p.device}});
    return send_set(caller, handle, req, modbus_set(command, "write_state"));
}

int write_port_many(const char* caller, qm_robot_handle* handle, const char* command,
                    const qm_peripheral_read_write_params_t& p, const int* data) {
    Request req(command, {{"port", p.port}, {"address", p.address}, {"num", p.num}});
    req.ints("data", values(data, p.num, INT_MAX)).integer("device", p.device);
    return send_set(caller, handle, req, modbus_set(command, "write_state"));
}

// ---- Modbus RTU ----

int read_rtu(const char* caller, qm_robot_handle* handle, const char* command,
             const qm_modbus_rtu_read_params_t& p, int* data) {
    const Request req(command,
                      {{"address", p.address}, {"device", p.device}, {"num", p.num}, {"type", p.type}});
    return read_many(caller, handle, req, Reply::query(command), data, p.num);
}

int write_rtu(const char* caller, qm_robot_handle* handle, const char* command,
              const qm_modbus_rtu_write_params_t& p) {
    Request req(command, {{"address", p.address}, {"device", p.device}, {"type", p.type}});
    req.ints("data", values(p.data, p.num));
    return send_set(caller, handle, req, Reply(command, "write_state").with_query_timeout());
}

// ---- Modbus TCP ----

// A slave is named by address when the record's ip text looks like one (7 to 15 characters),
// else by a stored master's name. The reply of a read carries the same members.
template <class Params>
bool by_address(const Params& p) {
    const std::size_t length = strnlen(p.ip, sizeof p.ip);
    return length > 6 && length < 16;
}

template <class Params>
void add_target(Request& req, const Params& p) {
    if (by_address(p))
        req.str("ip", field_text(p.ip).c_str()).integer("port", p.port);
    else
        req.str("master_name", field_text(p.master_name).c_str());
}

int read_tcp(const char* caller, qm_robot_handle* handle, const char* command,
             const qm_modbus_tcp_read_params_t& p, int* data) {
    Request req(command, {{"address", p.address}, {"num", p.num}});
    add_target(req, p);
    KeyValue target[] = {str_member("ip"), int_member("port"), str_member("master_name")};
    const std::span<KeyValue> named = by_address(p) ? std::span(target, 2) : std::span(target + 2, 1);
    return read_many(caller, handle, req, Reply::query(command), data, p.num, named);
}

int write_tcp(const char* caller, qm_robot_handle* handle, const char* command,
              const qm_modbus_tcp_write_params_t& p) {
    Request req(command);
    req.integer("address", p.address).ints("data", values(p.data, p.num));
    add_target(req, p);
    return send_set(caller, handle, req, Reply(command, "write_state").with_query_timeout());
}

// ---- stored Modbus TCP masters ----

int decode_master(const char* caller, const cJSON* scope, qm_modbus_tcp_master_info_t& master) {
    using M = MemberCopy;
    return copy_members(caller, scope,
                        {M::text("master_name", master.master_name), M::text("ip", master.ip),
                         M::integer("port", master.port)});
}

// The page's members, then at most 100 entries of "list".
int decode_master_list(const char* caller, const cJSON* reply, qm_modbus_tcp_master_list_t& list) {
    using M = MemberCopy;
    if (int rc = copy_members(
            caller, reply,
            {M::integer("page_num", list.page_num), M::integer("page_size", list.page_size),
             M::integer("total_size", list.total_size), M::text("vague_search", list.vague_search)}))
        return rc;
    const cJSON* masters = array_item(caller, reply, "list");
    if (!masters) return -3;
    list.list_len = 0;
    const int most = static_cast<int>(std::size(list.master_list));
    for (const cJSON* entry = masters->child; entry && list.list_len < most; entry = entry->next) {
        if (int rc = decode_master(caller, entry, list.master_list[list.list_len])) return rc;
        ++list.list_len;
    }
    return 0;
}

// Decodes a reply into a fresh record, which replaces `out` only on success.
template <class Record>
int decode_into(const char* caller, const std::string& text, Record& out,
                int (*decode)(const char*, const cJSON*, Record&)) {
    JsonPtr root = parse_reply(text.c_str());
    if (!root) return -3;
    Record parsed{};
    if (int rc = decode(caller, root.get(), parsed)) return rc;
    out = parsed;
    return 0;
}

}  // namespace

extern "C" {

// ---- the older family ----

int qm_set_modbus_mode(qm_robot_handle* handle, int port, int baudrate, int timeout) {
    const Request req("set_modbus_mode", {{"port", port}, {"baudrate", baudrate}, {"timeout", timeout}});
    return send_set(__func__, handle, req, modbus_set("set_modbus_mode", "set_state"));
}

int qm_close_modbus_mode(qm_robot_handle* handle, int port) {
    return send_set(__func__, handle, Request("close_modbus_mode", {{"port", port}}),
                    modbus_set("close_modbus_mode", "set_state"));
}

int qm_set_modbustcp_mode(qm_robot_handle* handle, const char* ip, int port, int timeout) {
    Request req("set_modbustcp_mode");
    req.str("ip", ip).integer("port", port).integer("timeout", timeout);
    return send_set(__func__, handle, req, modbus_set("set_modbustcp_mode", "set_state"));
}

int qm_close_modbustcp_mode(qm_robot_handle* handle) {
    return send_set(__func__, handle, Request("close_modbustcp_mode"),
                    modbus_set("close_modbustcp_mode", "set_state"));
}

int qm_read_coils(qm_robot_handle* handle, qm_peripheral_read_write_params_t params, int* data) {
    return read_port_one(__func__, handle, "read_coils", params, data);
}
int qm_read_input_status(qm_robot_handle* handle, qm_peripheral_read_write_params_t params, int* data) {
    return read_port_one(__func__, handle, "read_input_status", params, data);
}
int qm_read_holding_registers(qm_robot_handle* handle, qm_peripheral_read_write_params_t params, int* data) {
    return read_port_one(__func__, handle, "read_holding_registers", params, data);
}
int qm_read_input_registers(qm_robot_handle* handle, qm_peripheral_read_write_params_t params, int* data) {
    return read_port_one(__func__, handle, "read_input_registers", params, data);
}

int qm_write_single_coil(qm_robot_handle* handle, qm_peripheral_read_write_params_t params, int data) {
    return write_port_one(__func__, handle, "write_single_coil", params, data);
}
int qm_write_single_register(qm_robot_handle* handle, qm_peripheral_read_write_params_t params, int data) {
    return write_port_one(__func__, handle, "write_single_register", params, data);
}
int qm_write_registers(qm_robot_handle* handle, qm_peripheral_read_write_params_t params, int* data) {
    return write_port_many(__func__, handle, "write_registers", params, data);
}
int qm_write_coils(qm_robot_handle* handle, qm_peripheral_read_write_params_t params, int* data) {
    return write_port_many(__func__, handle, "write_coils", params, data);
}

// The controller packs eight coils into one value, hence num / 8 values (integer division).
int qm_read_multiple_coils(qm_robot_handle* handle, qm_peripheral_read_write_params_t params, int* data) {
    return read_port_many(__func__, handle, "read_multiple_coils", params, data, params.num / 8);
}
int qm_read_multiple_holding_registers(qm_robot_handle* handle, qm_peripheral_read_write_params_t params,
                                       int* data) {
    return read_port_many(__func__, handle, "read_multiple_holding_registers", params, data, params.num);
}
int qm_read_multiple_input_registers(qm_robot_handle* handle, qm_peripheral_read_write_params_t params,
                                     int* data) {
    return read_port_many(__func__, handle, "read_multiple_input_registers", params, data, params.num);
}

// ---- Modbus RTU ----

int qm_read_modbus_rtu_coils(qm_robot_handle* handle, qm_modbus_rtu_read_params_t param, int* data) {
    return read_rtu(__func__, handle, "read_modbus_rtu_coils", param, data);
}
int qm_read_modbus_rtu_input_status(qm_robot_handle* handle, qm_modbus_rtu_read_params_t param, int* data) {
    return read_rtu(__func__, handle, "read_modbus_rtu_input_status", param, data);
}
int qm_read_modbus_rtu_holding_registers(qm_robot_handle* handle, qm_modbus_rtu_read_params_t param,
                                         int* data) {
    return read_rtu(__func__, handle, "read_modbus_rtu_holding_registers", param, data);
}
int qm_read_modbus_rtu_input_registers(qm_robot_handle* handle, qm_modbus_rtu_read_params_t param,
                                       int* data) {
    return read_rtu(__func__, handle, "read_modbus_rtu_input_registers", param, data);
}
int qm_write_modbus_rtu_coils(qm_robot_handle* handle, qm_modbus_rtu_write_params_t param) {
    return write_rtu(__func__, handle, "write_modbus_rtu_coils", param);
}
int qm_write_modbus_rtu_registers(qm_robot_handle* handle, qm_modbus_rtu_write_params_t param) {
    return write_rtu(__func__, handle, "write_modbus_rtu_registers", param);
}

// ---- stored Modbus TCP masters ----

int qm_add_modbus_tcp_master(qm_robot_handle* handle, qm_modbus_tcp_master_info_t master) {
    Request req("add_modbus_tcp_master");
    req.str("master_name", field_text(master.master_name).c_str())
        .str("ip", field_text(master.ip).c_str())
        .integer("port", master.port);
    return send_set(__func__, handle, req, Reply("add_modbus_tcp_master", "add_state").with_query_timeout());
}

// The stored name goes as "master_name", the record's name as "new_name".
int qm_update_modbus_tcp_master(qm_robot_handle* handle, const char* master_name,
                                qm_modbus_tcp_master_info_t master) {
    Request req("update_modbus_tcp_master");
    req.str("master_name", master_name)
        .str("new_name", field_text(master.master_name).c_str())
        .str("ip", field_text(master.ip).c_str())
        .integer("port", master.port);
    return send_set(__func__, handle, req,
                    Reply("update_modbus_tcp_master", "update_state").with_query_timeout());
}

int qm_delete_modbus_tcp_master(qm_robot_handle* handle, const char* master_name) {
    Request req("delete_modbus_tcp_master");
    req.str("master_name", master_name);
    return send_set(__func__, handle, req,
                    Reply("delete_modbus_tcp_master", "delete_state").with_query_timeout());
}

int qm_get_modbus_tcp_master(qm_robot_handle* handle, const char* master_name,
                             qm_modbus_tcp_master_info_t* master) {
    Request req("given_modbus_tcp_master");
    req.str("master_name", master_name);
    std::string text;
    if (int rc = exchange(__func__, handle, req, Reply::query("given_modbus_tcp_master"), text); rc < 1)
        return rc;
    if (refused(__func__, text, "given_state")) return 1;
    return decode_into(__func__, text, *master, decode_master);
}

int qm_get_modbus_tcp_master_list(qm_robot_handle* handle, int page_num, int page_size,
                                  const char* vague_search, qm_modbus_tcp_master_list_t* list) {
    Request req("get_modbus_tcp_master_list", {{"page_num", page_num}, {"page_size", page_size}});
    req.str("vague_search", vague_search);
    std::string text;
    const Reply reply = Reply::query("get_modbus_tcp_master_list").with_long_timeout().buffer(kLongReply);
    if (int rc = exchange(__func__, handle, req, reply, text); rc < 1) return rc;
    return decode_into(__func__, text, *list, decode_master_list);
}

// ---- Modbus TCP slaves ----

int qm_read_modbus_tcp_coils(qm_robot_handle* handle, qm_modbus_tcp_read_params_t param, int* data) {
    return read_tcp(__func__, handle, "read_modbus_tcp_coils", param, data);
}
int qm_read_modbus_tcp_input_status(qm_robot_handle* handle, qm_modbus_tcp_read_params_t param, int* data) {
    return read_tcp(__func__, handle, "read_modbus_tcp_input_status", param, data);
}
int qm_read_modbus_tcp_holding_registers(qm_robot_handle* handle, qm_modbus_tcp_read_params_t param,
                                         int* data) {
    return read_tcp(__func__, handle, "read_modbus_tcp_holding_registers", param, data);
}
int qm_read_modbus_tcp_input_registers(qm_robot_handle* handle, qm_modbus_tcp_read_params_t param,
                                       int* data) {
    return read_tcp(__func__, handle, "read_modbus_tcp_input_registers", param, data);
}
int qm_write_modbus_tcp_coils(qm_robot_handle* handle, qm_modbus_tcp_write_params_t param) {
    return write_tcp(__func__, handle, "write_modbus_tcp_coils", param);
}
int qm_write_modbus_tcp_registers(qm_robot_handle* handle, qm_modbus_tcp_write_params_t param) {
    return write_tcp(__func__, handle, "write_modbus_tcp_registers", param);
}

}  // extern "C"
