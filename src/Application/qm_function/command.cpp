// The generic exchanges of the arm catalogue; each command only describes itself.
#include "qm_command.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstring>

#include "log.h"
#include "qm_handle.h"
#include "qm_interface.h"

namespace wire {

int truncate(double value) {
    if (std::isnan(value)) return 0;
    if (value >= static_cast<double>(INT_MAX)) return INT_MAX;
    if (value <= static_cast<double>(INT_MIN)) return INT_MIN;
    return static_cast<int>(value);
}

std::array<int, 6> pose6(const qm_pose_t& pose) {
    return {micrometres(pose.position.x), micrometres(pose.position.y), micrometres(pose.position.z),
            milliradians(pose.euler.rx), milliradians(pose.euler.ry), milliradians(pose.euler.rz)};
}

std::array<int, 7> pose_quat7(const qm_pose_t& pose) {
    return {micrometres(pose.position.x),  micrometres(pose.position.y), micrometres(pose.position.z),
            millionths(pose.quaternion.w), millionths(pose.quaternion.x), millionths(pose.quaternion.y),
            millionths(pose.quaternion.z)};
}

void pose_from6(const int* values, qm_pose_t& pose) {
    pose.position = {from_micrometres(values[0]), from_micrometres(values[1]), from_micrometres(values[2])};
    pose.euler = {from_thousandths(values[3]), from_thousandths(values[4]), from_thousandths(values[5])};
}

}  // namespace wire

// ---- request ----

Request::Request(const char* command) { str("command", command); }

Request::Request(const char* command, std::initializer_list<std::pair<const char*, int>> integers) : Request(command) {
    for (const auto& [key, value] : integers) integer(key, value);
}

Request Request::nothing() { return Request(); }

Request::Member& Request::add(JsonValueType type, const char* key) {
    Member& member = members_.emplace_back();
    member.type = type;
    member.key = key;
    return member;
}

Request& Request::str(const char* key, const char* text) {
    Member& member = add(JSON_STRING, key);
    if (text) {
        member.has_text = true;
        member.text = text;
    }
    return *this;
}

Request& Request::integer(const char* key, int value) {
    add(JSON_INT, key).number = value;
    return *this;
}

Request& Request::ints(const char* key, std::initializer_list<int> values) {
    return ints(key, std::span<const int>(values.begin(), values.size()));
}

Request& Request::ints(const char* key, std::span<const int> values) {
    add(JSON_ARRAY, key).array.assign(values.begin(), values.end());
    return *this;
}

Request& Request::boolean(const char* key, bool value) {
    add(JSON_BOOL, key).number = value ? 1 : 0;
    return *this;
}

Request& Request::object(const char* key, JsonPtr tree) {
    add(JSON_OBJECT, key).tree = std::move(tree);
    return *this;
}

const char* Request::command() const {
    return members_.empty() || !members_.front().has_text ? nullptr : members_.front().text.c_str();
}

std::vector<JsonValue> Request::table() const {
    std::vector<JsonValue> table;
    table.reserve(members_.size());
    for (const Member& member : members_) {
        JsonValue value{};
        value.type = member.type;
        value.key = member.key;
        switch (member.type) {
            case JSON_STRING: value.value.str_value = member.has_text ? member.text.c_str() : nullptr; break;
            case JSON_INT: value.value.int_value = member.number; break;
            case JSON_ARRAY:
                value.array_size = static_cast<int>(member.array.size());
                value.value.array_value = member.array.data();
                break;
            case JSON_BOOL: value.value.bool_value = member.number != 0; break;
            case JSON_OBJECT: value.value.sub_json = cJSON_Duplicate(member.tree.get(), true); break;
        }
        table.push_back(value);
    }
    return table;
}

// ---- reply ----

std::chrono::milliseconds Reply::wait() const {
    switch (timeout) {
        case Timeout::query: return std::chrono::milliseconds(m_nOutTime.load());
        case Timeout::set: return std::chrono::milliseconds(m_nOutTime_max.load());
        case Timeout::modbus: return std::chrono::milliseconds(m_nOutTime_modbus.load());
        case Timeout::fixed: break;
    }
    return fixed_ms;
}

// ---- exchanges ----

namespace {

int pack(const char* caller, qm_robot_handle* handle, const Request& req, const char* key, char* buf, int buf_len,
         std::chrono::milliseconds timeout) {
    std::vector<JsonValue> table = req.table();
    return qm_pack_lock_set(caller, handle, table.empty() ? nullptr : table.data(), static_cast<int>(table.size()),
                            key, buf, buf_len, static_cast<int>(timeout.count()));
}

}  // namespace

int exchange(const char* caller, qm_robot_handle* handle, const Request& req, const Reply& reply, std::string& text) {
    // One byte more than announced, so the reply always ends in a terminator.
    text.assign(static_cast<size_t>(reply.buf_len) + 1, '\0');
    int rc = pack(caller, handle, req, reply.key, text.data(), reply.buf_len, reply.wait());
    text.resize(std::strlen(text.c_str()));
    return rc;
}

int send_only(const char* caller, qm_robot_handle* handle, const Request& req, std::chrono::milliseconds pause) {
    return pack(caller, handle, req, nullptr, nullptr, 0, pause);
}

int send_set(const char* caller, qm_robot_handle* handle, const Request& req, const Reply& reply) {
    std::string text;
    if (int rc = exchange(caller, handle, req, reply, text); rc < 1) return rc;
    return parse_qm_set_command(caller, text.c_str(), reply.checked);
}

int send_query(const char* caller, qm_robot_handle* handle, const Request& req, const Reply& reply,
               std::span<KeyValue> table) {
    std::string text;
    if (int rc = exchange(caller, handle, req, reply, text); rc < 1) return rc;
    return common_json_parse(caller, text.c_str(), table.data(), static_cast<int>(table.size()));
}

int send_raw(qm_robot_handle* handle, std::string_view data, std::size_t piece, std::chrono::milliseconds pause) {
    if (piece == 0) return -1;
    TableReadLock lock;
    qm_handle_t* record = qm_get_qm_handle_by_robot_handle(handle);
    if (!record || !record->socket_handle) return -1;
    qm_socket_handle* socket = record->socket_handle.get();
    for (std::size_t at = 0; at < data.size(); at += piece) {
        const std::string_view chunk = data.substr(at, piece);
        const std::size_t text = std::min(chunk.size(), chunk.find('\0'));
        if (text > 0 && socket->send(socket, chunk.data(), static_cast<int>(text)) != 0) return -1;
        if (pause.count() > 0) sleep_cp(static_cast<int>(pause.count()));
    }
    return 0;
}

int send_set_or_only(const char* caller, qm_robot_handle* handle, const Request& req,
                     const std::optional<Reply>& reply, std::chrono::milliseconds pause) {
    return reply ? send_set(caller, handle, req, *reply) : send_only(caller, handle, req, pause);
}

namespace {

KeyValue member(JsonValueType type, const char* key, int size = 0) {
    KeyValue entry{};
    entry.type = type;
    entry.key = key;
    entry.array_size = size;
    return entry;
}

}  // namespace

KeyValue int_member(const char* key) { return member(JSON_INT, key); }
KeyValue array_member(const char* key, int size) { return member(JSON_ARRAY, key, size); }
KeyValue bool_member(const char* key) { return member(JSON_BOOL, key); }
KeyValue str_member(const char* key) { return member(JSON_STRING, key); }

const cJSON* array_item(const char* caller, const cJSON* scope, const char* key) {
    const cJSON* item = MIO_JSON_GetObjectItem(scope, key);
    if (!item) {
        qm_log_error("[%s] %s parsing error\n", caller, key);
        return nullptr;
    }
    if (!cJSON_IsArray(item)) {
        qm_log_error("[%s] %s is not an array\n", caller, key);
        return nullptr;
    }
    return item;
}

JsonPtr parse_reply(const char* text) {
    JsonPtr root = json_parse(text);
    if (!root) qm_log_error("Error parsing JSON\n");
    return root;
}

int copy_members(const char* caller, const cJSON* scope, std::initializer_list<MemberCopy> members) {
    for (const MemberCopy& m : members) {
        const cJSON* item = MIO_JSON_GetObjectItem(scope, m.key);
        if (!item) {
            qm_log_error("[%s] %s parsing error\n", caller, m.key);
            return -3;
        }
        if (m.number) {
            *m.number = item->valueint;
            qm_log_debug("[%s] %s parse result: %d\n", caller, m.key, *m.number);
            continue;
        }
        if (!cJSON_IsString(item)) {
            qm_log_error("[%s] %s is not a string\n", caller, m.key);
            return -3;
        }
        copy_text(m.text_field, m.text_size, item->valuestring, m.text_size);
        qm_log_debug("[%s] %s parse result: %s\n", caller, m.key, m.text_field);
    }
    return 0;
}

// ---- dof-long arrays ----

int dof_or_disconnected(const char* caller, qm_robot_handle* handle) {
    int dof = 0;
    if (qm_get_arm_dof(handle, &dof) != 0 || dof < 1 || dof > 10) {
        qm_log_error("[%s] The robotic arm has been disconnected\n", caller);
        return -1;
    }
    return dof;
}

std::optional<JointTarget> joint_target(const char* caller, qm_robot_handle* handle, const float* joint) {
    if (!joint) return std::nullopt;
    JointTarget target;
    target.dof = dof_or_disconnected(caller, handle);
    if (target.dof < 0) return std::nullopt;
    for (int i = 0; i < target.dof; ++i) target.values[i] = wire::millidegrees(joint[i]);
    return target;
}

std::optional<qm_robot_info_t> robot_info_of(qm_robot_handle* handle) {
    qm_robot_info_t info{};
    if (qm_get_robot_info(handle, &info) != 0) return std::nullopt;
    return info;
}

int exchange_with_dof(const char* caller, qm_robot_handle* handle, const Request& req, const Reply& reply,
                      std::string& text, int& dof) {
    if (int rc = exchange(caller, handle, req, reply, text); rc < 1) return rc;
    dof = dof_or_disconnected(caller, handle);
    return dof < 0 ? -1 : 0;
}

namespace {

// Parses the arrays with one key table and stores them element by element; kDofLong ones are
// `dof` long.
int parse_arrays(const char* caller, const std::string& text, std::initializer_list<ArrayField> arrays, int dof) {
    std::vector<KeyValue> table;
    table.reserve(arrays.size());
    for (const ArrayField& field : arrays)
        table.push_back(array_member(field.member, field.length == ArrayField::kDofLong ? dof : field.length));
    if (int rc = common_json_parse(caller, text.c_str(), table.data(), static_cast<int>(table.size()))) return rc;

    const KeyValue* parsed = table.data();
    for (const ArrayField& field : arrays) {
        for (int i = 0; i < parsed->array_size && i < KEYVALUE_ARRAY_MAX; ++i)
            field.element(i, parsed->value.array_value[i]);
        ++parsed;
    }
    return 0;
}

}  // namespace

int query_dof_arrays(const char* caller, qm_robot_handle* handle, const Request& req, const Reply& reply,
                     std::initializer_list<ArrayField> arrays, int* dof) {
    std::string text;
    int joints = 0;
    if (int rc = exchange_with_dof(caller, handle, req, reply, text, joints)) return rc;
    if (int rc = parse_arrays(caller, text, arrays, joints)) return rc;
    if (dof) *dof = joints;
    return 0;
}

int query_arrays(const char* caller, qm_robot_handle* handle, const Request& req, const Reply& reply,
                 std::initializer_list<ArrayField> arrays) {
    std::string text;
    if (int rc = exchange(caller, handle, req, reply, text); rc < 1) return rc;
    return parse_arrays(caller, text, arrays, ArrayField::kDofLong);
}

int query_ints(const char* caller, qm_robot_handle* handle, const Request& req, const Reply& reply,
               std::initializer_list<IntField> fields) {
    std::vector<KeyValue> table;
    table.reserve(fields.size());
    for (const IntField& field : fields) table.push_back(int_member(field.member));
    if (int rc = send_query(caller, handle, req, reply, table)) return rc;
    const KeyValue* parsed = table.data();
    for (const IntField& field : fields) field.element(0, (parsed++)->value.int_value);
    return 0;
}

int query_joint_floats(const char* caller, qm_robot_handle* handle, const Request& req, const Reply& reply,
                       const char* member, float (*scale)(int), float* out, JointCache cache) {
    if (!cache)
        return query_dof_arrays(caller, handle, req, reply, {{member, store(out, scale)}});

    int raw[KEYVALUE_ARRAY_MAX]{};
    int dof = 0;
    if (int rc = query_dof_arrays(caller, handle, req, reply, {{member, store(raw)}}, &dof)) return rc;
    return with_record(handle, [&](qm_handle_t& record) {
        float* cached = record.*cache;
        for (int i = 0; i < dof; ++i) {
            out[i] = scale(raw[i]);
            if (i < ARM_DOF) cached[i] = out[i];
        }
    });
}

// ---- device motions ----

int device_motion(const char* caller, qm_robot_handle* handle, const Request& req, const DeviceMotion& motion,
                  bool block, int timeout_s) {
    if (motion.sent_only_when_idle && !block && timeout_s == 0) return send_only(caller, handle, req, {});
    std::string text;
    if (int rc = exchange(caller, handle, req, Reply(motion.reply_key, motion.checked), text); rc < 1) return rc;
    const int accepted = parse_qm_set_command(caller, text.c_str(), motion.checked);
    if (!block) return accepted;
    MoveWait wait{.caller = caller,
                  .device = motion.device,
                  .missed_result = motion.missed_result,
                  .foreign_result = motion.foreign_result};
    const int arrived = qm_wait_device_arrival(handle, wait, static_cast<int>(seconds_wait(timeout_s).count()));
    if (arrived == motion.missed_result && motion.logs_missed) qm_log_error("[%s] timeout error\n", caller);
    return arrived;
}

int with_record(qm_robot_handle* handle, const std::function<void(qm_handle_t&)>& write) {
    TableReadLock lock;
    qm_handle_t* record = qm_get_qm_handle_by_robot_handle(handle);
    if (!record) return -1;
    write(*record);
    qm_config_changed(handle);
    return 0;
}

void copy_text(char* dst, std::size_t field_size, const char* src, std::size_t max_chars) {
    if (field_size == 0) return;
    std::size_t n = src ? strnlen(src, max_chars) : 0;
    if (n > field_size - 1) n = field_size - 1;
    if (n) std::memcpy(dst, src, n);
    dst[n] = '\0';
}
