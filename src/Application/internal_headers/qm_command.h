// The command layer of the arm catalogue: wire scaling rules, a request builder, a reply
// description and the few generic exchanges that every command is made of.
//
// A set command states only what differs:
//
//     Request req("set_joint_max_speed");
//     req.ints("joint_max_speed", {joint_num, wire::per_six(speed)});
//     return send_set(__func__, handle, req, Reply("set_joint_max_speed", "joint_max_speed"));
//
// A query of dof-long arrays:
//
//     return query_dof_arrays(__func__, handle, Request("get_joint_degree"),
//                             Reply::query("joint_degree"),
//                             {{"joint", store(out, wire::from_thousandths)}});
#ifndef QM_COMMAND_H
#define QM_COMMAND_H

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <functional>
#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "mio_json.h"
#include "qm_define.h"
#include "qm_exchange.h"

struct qm_handle_t;

// ---- wire scaling ----
// Every number on the wire is an integer. Outgoing values are multiplied and truncated toward
// zero (never rounded); values beyond the int range saturate and NaN goes out as 0. Which
// precision a rule multiplies in is part of the protocol: joint angles in double, the rest in
// single precision.
namespace wire {

int truncate(double value);

// Joint angle, degrees -> thousandths of a degree; widened to double first.
inline int millidegrees(float degrees) { return truncate(static_cast<double>(degrees) * 1000.0); }
// Length, metres -> micrometres, single precision. Also quaternion components -> millionths.
inline int micrometres(float metres) { return truncate(metres * 1000000.0f); }
inline int millionths(float value) { return truncate(value * 1000000.0f); }
// Angle, radians -> thousandths of a radian, single precision.
inline int milliradians(float radians) { return truncate(radians * 1000.0f); }
// Any value -> thousandths, single precision (speeds, loads, step angles, radii ...).
inline int thousandths(float value) { return truncate(value * 1000.0f); }
// Joint speeds and software joint accelerations: divided by 6, then thousandths.
inline int per_six(float value) { return truncate(value / 6.0f * 1000.0f); }
// Whole number without scaling (the install angles): 90.9 goes out as 90.
inline int whole(float value) { return truncate(value); }
// Any value -> tenths, single precision (desired forces).
inline int tenths(float value) { return truncate(value * 10.0f); }
// The whole part, then tenths: 12.7 goes out as 120 (single forces drop their fraction first).
inline int truncated_tenths(float value) { return truncate(std::trunc(static_cast<double>(value)) * 10.0); }

// One rule applied to each value of a record's fixed array.
template <std::size_t N, class Rule>
std::array<int, N> each(const float (&values)[N], Rule rule) {
    std::array<int, N> out{};
    for (std::size_t i = 0; i < N; ++i) out[i] = rule(values[i]);
    return out;
}

// Incoming integers back to floats.
inline float from_thousandths(int value) { return static_cast<float>(static_cast<float>(value) / 1000.0); }
inline float from_micrometres(int value) { return static_cast<float>(static_cast<float>(value) / 1000000.0); }
inline float from_per_six(int value) { return static_cast<float>(value) * 6.0f / 1000.0f; }
inline float as_is(int value) { return static_cast<float>(value); }

// [x, y, z] micrometres, [rx, ry, rz] milliradians.
std::array<int, 6> pose6(const qm_pose_t& pose);
// [x, y, z] micrometres, [w, x, y, z] millionths.
std::array<int, 7> pose_quat7(const qm_pose_t& pose);
// The inverse of pose6 for positions and Euler angles; the quaternion is left untouched.
void pose_from6(const int* values, qm_pose_t& pose);

}  // namespace wire

// ---- request ----
// The members of one request in the order they go out; "command" is always first. Texts,
// arrays and objects are owned by the request, keys are borrowed (use literals).
class Request {
public:
    explicit Request(const char* command);
    // "command" followed by integer members in order.
    Request(const char* command, std::initializer_list<std::pair<const char*, int>> integers);
    // A request that sends nothing: the exchange only waits for a reply.
    static Request nothing();

    Request& str(const char* key, const char* text);  // a null text leaves the member out
    Request& integer(const char* key, int value);
    Request& ints(const char* key, std::initializer_list<int> values);
    Request& ints(const char* key, std::span<const int> values);
    Request& boolean(const char* key, bool value);
    Request& object(const char* key, JsonPtr tree);  // any JSON tree: an object or an array

    bool empty() const { return members_.empty(); }
    const char* command() const;
    // The member table for qm_pack_lock_set. Object members are duplicated, and each
    // duplicate passes to the exchange as JsonValue prescribes.
    std::vector<JsonValue> table() const;

private:
    Request() = default;
    struct Member {
        JsonValueType type;
        const char* key;
        bool has_text = false;
        std::string text;
        int number = 0;
        std::vector<int> array;
        JsonPtr tree;
    };
    Member& add(JsonValueType type, const char* key);
    std::vector<Member> members_;
};

// How a pose target compares its squared quaternion norm with the bounds 0.99 and 1.1
// (both strict): the single-precision norm against the double bounds, or against the bounds
// as floats, so that a norm of exactly 0.99f or 1.1f lies outside.
enum class NormBounds { in_double, in_single };

// A streamed pose target: "pose_quat" [x, y, z, w, qx, qy, qz] whenever the quaternion is near
// unit length (squared norm, in single precision, strictly between 0.99 and 1.1), else "pose"
// with the Euler angles.
inline Request& add_pose_target(Request& req, const qm_pose_t& pose, NormBounds bounds = NormBounds::in_double) {
    const qm_quat_t& q = pose.quaternion;
    const float norm = q.w * q.w + q.x * q.x + q.y * q.y + q.z * q.z;
    const bool near_unit = bounds == NormBounds::in_double ? norm > 0.99 && norm < 1.1 : norm > 0.99f && norm < 1.1f;
    if (near_unit) return req.ints("pose_quat", wire::pose_quat7(pose));
    return req.ints("pose", wire::pose6(pose));
}

// Whether a streamed target's radio exceeds the bound of its trajectory mode (0, 100, 1000
// for modes 0, 1, 2; other modes have none). Callers only warn: the target still goes out.
inline bool radio_exceeds(int trajectory_mode, int radio) {
    constexpr int kRadioMax[] = {0, 100, 1000};
    return trajectory_mode >= 0 && trajectory_mode <= 2 && radio > kRadioMax[trajectory_mode];
}

// ---- reply ----
enum class Timeout { query, set, modbus, fixed };

// Where the reply is awaited, how long, how much of it is kept and which boolean judges it.
struct Reply {
    // A set command: awaited under `key` with the set timeout (m_nOutTime_max); the boolean
    // `checked` goes through parse_qm_set_command.
    Reply(const char* key, const char* checked) : key(key), checked(checked), timeout(Timeout::set) {}
    // A query: awaited under `key` with the query timeout (m_nOutTime).
    static Reply query(const char* key) { return Reply(key, nullptr, Timeout::query); }

    Reply& within(std::chrono::milliseconds fixed) { timeout = Timeout::fixed; fixed_ms = fixed; return *this; }
    Reply& with_query_timeout() { timeout = Timeout::query; return *this; }
    // The set timeout (m_nOutTime_max), for the few queries that take long.
    Reply& with_long_timeout() { timeout = Timeout::set; return *this; }
    // The Modbus timeout (m_nOutTime_modbus), which qm_set_timeout leaves alone.
    Reply& with_modbus_timeout() { timeout = Timeout::modbus; return *this; }
    Reply& buffer(int bytes) { buf_len = bytes; return *this; }

    std::chrono::milliseconds wait() const;

    const char* key;
    const char* checked;
    Timeout timeout;
    std::chrono::milliseconds fixed_ms{0};
    int buf_len = 1024;

private:
    Reply(const char* key, const char* checked, Timeout timeout) : key(key), checked(checked), timeout(timeout) {}
};

// A wait given in seconds by the caller, saturated to what an exchange can take.
inline std::chrono::milliseconds seconds_wait(int seconds) {
    return std::chrono::milliseconds(std::clamp<long long>(seconds * 1000LL, 0, INT32_MAX));
}

// ---- exchanges ----
// Sends and waits. The result of qm_pack_lock_set: the reply's length (>= 1) with the reply
// in `text`, or -1 / -2.
int exchange(const char* caller, qm_robot_handle* handle, const Request& req, const Reply& reply, std::string& text);
// Sends without awaiting a reply, then holds the exchange for `pause`; the send result (0 or -1).
int send_only(const char* caller, qm_robot_handle* handle, const Request& req, std::chrono::milliseconds pause);
// How long the controller's unanswered configuration commands (network, serial ports) hold the exchange.
inline constexpr std::chrono::milliseconds kUnansweredHold{800};
// A set command: an exchange result below 1 is returned, else the judgement of reply.checked
// (0 true, 1 false, -3 missing or unparsable).
int send_set(const char* caller, qm_robot_handle* handle, const Request& req, const Reply& reply);
// A set command answered under its own name within the query timeout, `checked` judged.
inline int send_set_quick(const char* caller, qm_robot_handle* handle, const Request& req, const char* checked) {
    return send_set(caller, handle, req, Reply(req.command(), checked).with_query_timeout());
}
// send_set when `reply` is given; without, the request is only sent and the exchange held
// for `pause` (the send result).
int send_set_or_only(const char* caller, qm_robot_handle* handle, const Request& req,
                     const std::optional<Reply>& reply, std::chrono::milliseconds pause);
// A query parsed through a key table: an exchange result below 1 is returned, else
// common_json_parse's result (0 or -3).
int send_query(const char* caller, qm_robot_handle* handle, const Request& req, const Reply& reply,
               std::span<KeyValue> table);

// A reply parsed whole; null after logging "Error parsing JSON" when it does not parse.
JsonPtr parse_reply(const char* text);

// Writes `data` straight to the connection's socket under the table lock, in pieces of at most
// `piece` bytes, each sent up to its first zero byte, with `pause` after each piece. 0, or -1
// when the connection is gone or a send fails.
int send_raw(qm_robot_handle* handle, std::string_view data, std::size_t piece, std::chrono::milliseconds pause);

// Key-table entries.
KeyValue int_member(const char* key);
KeyValue array_member(const char* key, int size);
KeyValue bool_member(const char* key);
KeyValue str_member(const char* key);

// ---- members copied straight into a caller's record ----
// For texts that outgrow the key table's value area and for nested replies: each member goes to
// its field directly, a text bounded by its field and always terminated, an integer as
// common_json_parse reads it. Missing and mistyped members are logged as common_json_parse does.
struct MemberCopy {
    template <std::size_t N>
    static MemberCopy text(const char* key, char (&field)[N]) { return {key, field, N, nullptr}; }
    static MemberCopy integer(const char* key, int& value) { return {key, nullptr, 0, &value}; }

    const char* key;
    char* text_field;
    std::size_t text_size;
    int* number;
};

// The members in order; 0, or -3 at the first missing or mistyped one (the earlier ones are written).
int copy_members(const char* caller, const cJSON* scope, std::initializer_list<MemberCopy> members);
// The array member `key` of `scope`; null, logged as common_json_parse logs it, when missing or no array.
const cJSON* array_item(const char* caller, const cJSON* scope, const char* key);

// ---- integer members and arrays ----
// Stores element i of a parsed integer array (only i below the array's length is passed).
using ElementStore = std::function<void(int index, int value)>;

template <class T, class Scale>
ElementStore store(T* out, Scale scale) {
    return [out, scale](int i, int v) { out[i] = static_cast<T>(scale(v)); };
}
template <class T>
ElementStore store(T* out) {
    return [out](int i, int v) { out[i] = static_cast<T>(v); };
}

// One integer member of a reply; stored as element 0 of `element`'s output.
struct IntField {
    const char* member;
    ElementStore element;
};

// A query of integer members through one key table; the outputs are written only when every
// member parsed. An exchange result below 1 is returned, else 0 or -3.
int query_ints(const char* caller, qm_robot_handle* handle, const Request& req, const Reply& reply,
               std::initializer_list<IntField> fields);

// One integer array of a reply: exactly `length` elements, or the arm's dof when length is kDofLong.
struct ArrayField {
    static constexpr int kDofLong = 0;
    const char* member;
    ElementStore element;
    int length = kDofLong;
};

// The arm's dof, or -1 after logging "[caller] The robotic arm has been disconnected".
int dof_or_disconnected(const char* caller, qm_robot_handle* handle);

// A joint target in thousandths of a degree: exactly the arm's dof values.
struct JointTarget {
    std::array<int, 10> values{};
    int dof = 0;
    std::span<const int> span() const { return {values.data(), static_cast<size_t>(dof)}; }
};
// The first dof angles of `joint`; none without joints or with a disconnected arm (logged).
std::optional<JointTarget> joint_target(const char* caller, qm_robot_handle* handle, const float* joint);

// The arm's model, dof, force-sensing variant and controller generation; none when unknown.
std::optional<qm_robot_info_t> robot_info_of(qm_robot_handle* handle);

// Exchange; then the arm's dof is read (after the exchange, deliberately: the request goes out
// before the dof is known). 0 with the reply in `text` and the dof in `dof`, the exchange's code
// (below 1), or -1 for a disconnected arm.
int exchange_with_dof(const char* caller, qm_robot_handle* handle, const Request& req, const Reply& reply,
                      std::string& text, int& dof);

// Exchange (with the dof read after it when an array is dof-long); then the arrays are parsed
// with one key table, in order, and stored element by element. 0, the exchange's code, -1 for
// a disconnected arm, or the parse result. `dof` receives the dof used when given.
int query_dof_arrays(const char* caller, qm_robot_handle* handle, const Request& req, const Reply& reply,
                     std::initializer_list<ArrayField> arrays, int* dof = nullptr);

// A query of fixed-length integer arrays through one key table, stored element by element.
// An exchange result below 1 is returned, else 0 or the parse result.
int query_arrays(const char* caller, qm_robot_handle* handle, const Request& req, const Reply& reply,
                 std::initializer_list<ArrayField> arrays);

// A cached joint limit of the connection record (joint_max_speed, joint_min_limit, ...).
using JointCache = float (qm_handle_t::*)[ARM_DOF];

// query_dof_arrays for one dof-long array scaled into `out`; with a cache, `out` and the
// connection's copy are written together under the table lock (-1 when the connection is gone).
int query_joint_floats(const char* caller, qm_robot_handle* handle, const Request& req, const Reply& reply,
                       const char* member, float (*scale)(int), float* out, JointCache cache = nullptr);

// One row of a table of dof-long array queries: {"command"}, reply key, member, scaling and
// the connection's cached copy (if any).
struct JointArrayQuery {
    const char* command;
    const char* reply_key;
    const char* member;
    float (*scale)(int);
    JointCache cache = nullptr;

    int read(const char* caller, qm_robot_handle* handle, float* out) const {
        return query_joint_floats(caller, handle, Request(command), Reply::query(reply_key), member, scale, out, cache);
    }
};

// ---- device motions ----
// A gripper or hand command that may wait for its device's arrival event.
struct DeviceMotion {
    const char* reply_key;
    const char* checked;  // the acceptance's boolean
    int device;
    bool sent_only_when_idle = false;  // neither blocking nor given a timeout: only sent
    int missed_result = -5;            // no arrival within the timeout
    int foreign_result = -4;           // another device's arrival
    bool logs_missed = false;          // logs "timeout error" when no arrival came
};
// Not blocking: the acceptance decides. Blocking: the acceptance is awaited but the arrival
// within timeout_s seconds decides, even after a refusal (intended: the device reports itself).
int device_motion(const char* caller, qm_robot_handle* handle, const Request& req, const DeviceMotion& motion,
                  bool block, int timeout_s);

// Copies at most max_chars of src into the field of field_size bytes, always terminated.
void copy_text(char* dst, std::size_t field_size, const char* src, std::size_t max_chars);
template <std::size_t N>
void copy_text(char (&dst)[N], const char* src, std::size_t max_chars = N) { copy_text(dst, N, src, max_chars); }

// A name field of a caller's record, which need not be terminated.
template <std::size_t N>
std::string field_text(const char (&field)[N]) {
    return std::string(field, strnlen(field, N));
}

// Runs `write` on the connection record under the table's read lock and gives the record a new
// configuration generation; -1 when it is gone.
int with_record(qm_robot_handle* handle, const std::function<void(qm_handle_t&)>& write);

#endif
