// Joint and arm limits: software and drive joint limits, joint enable, zero and errors,
// Cartesian speed and acceleration limits, collision stage.
#include "qm_command.h"
#include "qm_handle.h"
#include "qm_interface.h"

namespace {

// ---- per-joint limits ----

// A per-joint setter sends [joint_num, value] under `member` and judges the same member;
// the software limits then read the whole limit back so the connection's copy stays current.
struct JointSetter {
    const char* command;
    const char* member;
    int (*refresh)(qm_robot_handle*, float*) = nullptr;
};

constexpr JointSetter kSetMaxSpeed{"set_joint_max_speed", "joint_max_speed", qm_get_joint_max_speed};
constexpr JointSetter kSetMaxAcc{"set_joint_max_acc", "joint_max_acc", qm_get_joint_max_acc};
constexpr JointSetter kSetMinPos{"set_joint_min_pos", "joint_min_pos", qm_get_joint_min_pos};
constexpr JointSetter kSetMaxPos{"set_joint_max_pos", "joint_max_pos", qm_get_joint_max_pos};
constexpr JointSetter kSetDriveMaxSpeed{"set_joint_drive_max_speed", "joint_max_speed"};
constexpr JointSetter kSetDriveMaxAcc{"set_joint_drive_max_acc", "joint_max_acc"};
constexpr JointSetter kSetDriveMinPos{"set_joint_drive_min_pos", "joint_min_pos"};
constexpr JointSetter kSetDriveMaxPos{"set_joint_drive_max_pos", "joint_max_pos"};
constexpr JointSetter kSetEnState{"set_joint_en_state", "joint_en_state"};

int set_joint(const char* caller, qm_robot_handle* handle, const JointSetter& row, int joint_num, int value) {
    Request req(row.command);
    req.ints(row.member, {joint_num, value});
    if (int rc = send_set(caller, handle, req, Reply(row.command, row.member))) return rc;
    if (!row.refresh) return 0;
    float refreshed[10];  // the dof may be set up to 10
    return row.refresh(handle, refreshed);
}

constexpr JointArrayQuery kMaxSpeed{"get_joint_max_speed", "joint_max_speed", "joint_speed", wire::from_per_six,
                                    &qm_handle_t::joint_max_speed};
constexpr JointArrayQuery kMaxAcc{"get_joint_max_acc", "joint_max_acc", "joint_acc", wire::from_per_six,
                                  &qm_handle_t::joint_max_acc};
constexpr JointArrayQuery kMinPos{"get_joint_min_pos", "joint_min_pos", "min_pos", wire::from_thousandths,
                                  &qm_handle_t::joint_min_limit};
constexpr JointArrayQuery kMaxPos{"get_joint_max_pos", "joint_max_pos", "max_pos", wire::from_thousandths,
                                  &qm_handle_t::joint_max_limit};
constexpr JointArrayQuery kDriveMaxSpeed{"get_joint_drive_max_speed", "get_joint_drive_max_speed", "joint_speed",
                                         wire::from_per_six};
constexpr JointArrayQuery kDriveMaxAcc{"get_joint_drive_max_acc", "get_joint_drive_max_acc", "joint_acc",
                                       wire::from_per_six};
constexpr JointArrayQuery kDriveMinPos{"get_joint_drive_min_pos", "get_joint_drive_min_pos", "min_pos",
                                       wire::from_thousandths};
constexpr JointArrayQuery kDriveMaxPos{"get_joint_drive_max_pos", "get_joint_drive_max_pos", "max_pos",
                                       wire::from_thousandths};

// ---- Cartesian limits ----

// One Cartesian limit: its setter, its getter, the getter's reply key and the member both use.
struct CartesianLimit {
    const char* set_command;
    const char* get_command;
    const char* reply_key;
    const char* member;
};

constexpr CartesianLimit kLineSpeed{"set_arm_max_line_speed", "get_arm_max_line_speed", "arm_max_line_speed",
                                    "arm_line_speed"};
constexpr CartesianLimit kLineAcc{"set_arm_max_line_acc", "get_arm_max_line_acc", "arm_max_line_acc",
                                  "arm_line_acc"};
constexpr CartesianLimit kAngularSpeed{"set_arm_max_angular_speed", "get_arm_max_angular_speed",
                                       "arm_max_angular_speed", "arm_angular_speed"};
constexpr CartesianLimit kAngularAcc{"set_arm_max_angular_acc", "get_arm_max_angular_acc", "arm_max_angular_acc",
                                     "arm_angular_acc"};

int set_cartesian(const char* caller, qm_robot_handle* handle, const CartesianLimit& row, float value) {
    Request req(row.set_command);
    req.integer(row.member, wire::thousandths(value));
    return send_set(caller, handle, req, Reply(row.set_command, row.member));
}

// One integer member of a query. A reply that lacks it returns the exchange's (positive)
// result and leaves `value` alone: intended.
int read_int(const char* caller, qm_robot_handle* handle, const char* command, const char* reply_key,
             const char* member, int& value) {
    std::string text;
    const int rc = exchange(caller, handle, Request(command), Reply::query(reply_key), text);
    if (rc < 1) return rc;
    KeyValue table[] = {int_member(member)};
    if (common_json_parse(caller, text.c_str(), table, 1) != 0) return rc;
    value = table[0].value.int_value;
    return 0;
}

int get_cartesian(const char* caller, qm_robot_handle* handle, const CartesianLimit& row, float* out) {
    int value = 0;
    if (int rc = read_int(caller, handle, row.get_command, row.reply_key, row.member, value)) return rc;
    *out = wire::from_thousandths(value);
    return 0;
}

}  // namespace

extern "C" {

int qm_set_joint_max_speed(qm_robot_handle* handle, int joint_num, float speed) {
    return set_joint(__func__, handle, kSetMaxSpeed, joint_num, wire::per_six(speed));
}
int qm_set_joint_max_acc(qm_robot_handle* handle, int joint_num, float acc) {
    return set_joint(__func__, handle, kSetMaxAcc, joint_num, wire::per_six(acc));
}
int qm_set_joint_min_pos(qm_robot_handle* handle, int joint_num, float pos) {
    return set_joint(__func__, handle, kSetMinPos, joint_num, wire::thousandths(pos));
}
int qm_set_joint_max_pos(qm_robot_handle* handle, int joint_num, float pos) {
    return set_joint(__func__, handle, kSetMaxPos, joint_num, wire::thousandths(pos));
}
int qm_set_joint_drive_max_speed(qm_robot_handle* handle, int joint_num, float speed) {
    return set_joint(__func__, handle, kSetDriveMaxSpeed, joint_num, wire::per_six(speed));
}
// Sent without the division by 6 that qm_get_joint_drive_max_acc undoes: intended.
int qm_set_joint_drive_max_acc(qm_robot_handle* handle, int joint_num, float acc) {
    return set_joint(__func__, handle, kSetDriveMaxAcc, joint_num, wire::thousandths(acc));
}
int qm_set_joint_drive_min_pos(qm_robot_handle* handle, int joint_num, float pos) {
    return set_joint(__func__, handle, kSetDriveMinPos, joint_num, wire::thousandths(pos));
}
int qm_set_joint_drive_max_pos(qm_robot_handle* handle, int joint_num, float pos) {
    return set_joint(__func__, handle, kSetDriveMaxPos, joint_num, wire::thousandths(pos));
}
int qm_set_joint_en_state(qm_robot_handle* handle, int joint_num, int en_state) {
    return set_joint(__func__, handle, kSetEnState, joint_num, en_state);
}

int qm_set_joint_zero_pos(qm_robot_handle* handle, int joint_num) {
    Request req("set_joint_zero_pos");
    req.integer("joint_zero_pos", joint_num);
    return send_set(__func__, handle, req, Reply("set_joint_zero_pos", "joint_zero_pos"));
}

int qm_set_joint_clear_err(qm_robot_handle* handle, int joint_num) {
    Request req("set_joint_clear_err");
    req.integer("joint_clear_err", joint_num);
    return send_set(__func__, handle, req, Reply("set_joint_clear_err", "joint_clear_err"));
}

int qm_auto_set_joint_limit(qm_robot_handle* handle, int limit_mode) {
    Request req("auto_set_joint_limit");
    req.integer("limit_mode", limit_mode);
    if (int rc = send_set(__func__, handle, req, Reply("auto_set_joint_limit", "limit_mode"))) return rc;
    float refreshed[10];
    if (int rc = qm_get_joint_min_pos(handle, refreshed)) return rc;
    return qm_get_joint_max_pos(handle, refreshed);
}

int qm_set_arm_max_line_speed(qm_robot_handle* handle, float speed) {
    return set_cartesian(__func__, handle, kLineSpeed, speed);
}
int qm_set_arm_max_line_acc(qm_robot_handle* handle, float acc) {
    return set_cartesian(__func__, handle, kLineAcc, acc);
}
int qm_set_arm_max_angular_speed(qm_robot_handle* handle, float speed) {
    return set_cartesian(__func__, handle, kAngularSpeed, speed);
}
int qm_set_arm_max_angular_acc(qm_robot_handle* handle, float acc) {
    return set_cartesian(__func__, handle, kAngularAcc, acc);
}

int qm_set_arm_tcp_init(qm_robot_handle* handle) {
    return send_set(__func__, handle, Request("set_arm_init"), Reply("set_arm_init", "arm_init"));
}

int qm_set_collision_state(qm_robot_handle* handle, int collision_stage) {
    Request req("set_collision_stage");
    req.integer("collision_stage", collision_stage);
    return send_set(__func__, handle, req, Reply("set_collision_stage", "collision_state"));
}

int qm_get_joint_max_speed(qm_robot_handle* handle, float* speed) { return kMaxSpeed.read(__func__, handle, speed); }
int qm_get_joint_max_acc(qm_robot_handle* handle, float* acc) { return kMaxAcc.read(__func__, handle, acc); }
int qm_get_joint_min_pos(qm_robot_handle* handle, float* min_pos) { return kMinPos.read(__func__, handle, min_pos); }
int qm_get_joint_max_pos(qm_robot_handle* handle, float* max_pos) { return kMaxPos.read(__func__, handle, max_pos); }
int qm_get_joint_drive_max_speed(qm_robot_handle* handle, float* speed) {
    return kDriveMaxSpeed.read(__func__, handle, speed);
}
int qm_get_joint_drive_max_acc(qm_robot_handle* handle, float* acc) {
    return kDriveMaxAcc.read(__func__, handle, acc);
}
int qm_get_joint_drive_min_pos(qm_robot_handle* handle, float* min_pos) {
    return kDriveMinPos.read(__func__, handle, min_pos);
}
int qm_get_joint_drive_max_pos(qm_robot_handle* handle, float* max_pos) {
    return kDriveMaxPos.read(__func__, handle, max_pos);
}

int qm_get_joint_en_state(qm_robot_handle* handle, uint8_t* en_state) {
    return query_dof_arrays(__func__, handle, Request("get_joint_en_state"), Reply::query("joint_en_state"),
                            {{"en_state", store(en_state)}});
}

int qm_get_joint_err_flag(qm_robot_handle* handle, uint16_t* err_flag, uint16_t* brake_state) {
    return query_dof_arrays(__func__, handle, Request("get_joint_err_flag"), Reply::query("joint_err_flag"),
                            {{"err_flag", store(err_flag)}, {"brake_state", store(brake_state)}});
}

int qm_get_arm_max_line_speed(qm_robot_handle* handle, float* speed) {
    return get_cartesian(__func__, handle, kLineSpeed, speed);
}
int qm_get_arm_max_line_acc(qm_robot_handle* handle, float* acc) {
    return get_cartesian(__func__, handle, kLineAcc, acc);
}
int qm_get_arm_max_angular_speed(qm_robot_handle* handle, float* speed) {
    return get_cartesian(__func__, handle, kAngularSpeed, speed);
}
int qm_get_arm_max_angular_acc(qm_robot_handle* handle, float* acc) {
    return get_cartesian(__func__, handle, kAngularAcc, acc);
}

int qm_get_collision_stage(qm_robot_handle* handle, int* collision_stage) {
    return read_int(__func__, handle, "get_collision_stage", "get_collision_stage", "collision_stage",
                    *collision_stage);
}

}  // extern "C"
