// Arm state and information queries: joint state, end pose, errors and the initial pose.
#include <algorithm>

#include "log.h"
#include "qm_command.h"
#include "qm_interface.h"

namespace {

constexpr JointArrayQuery kJointTemperature{"get_current_joint_temperature", "current_joint_temperature",
                                            "joint_temperature", wire::from_thousandths};
constexpr JointArrayQuery kJointCurrent{"get_current_joint_current", "current_joint_current", "joint_current",
                                        wire::from_thousandths};
constexpr JointArrayQuery kJointVoltage{"get_current_joint_voltage", "current_joint_voltage", "joint_voltage",
                                        wire::from_thousandths};
constexpr JointArrayQuery kJointDegree{"get_joint_degree", "joint_degree", "joint", wire::from_thousandths};
constexpr JointArrayQuery kInitPose{"get_init_pose", "arm_init_pose", "init_pose", wire::from_thousandths};

// The error list has no fixed length, so it is read beside the key table, from the same place
// the table is looked up in: "arm_state" or "all_state" when the reply has one, else the root.
int parse_err_list(const char* caller, const std::string& text, qm_err_t& err) {
    JsonPtr root = json_parse(text.c_str());
    if (!root) {
        qm_log_error("Error parsing JSON\n");
        return -3;
    }
    const cJSON* scope = root.get();
    if (const cJSON* state = MIO_JSON_GetObjectItem(root.get(), "arm_state"))
        scope = state;
    else if (const cJSON* state = MIO_JSON_GetObjectItem(root.get(), "all_state"))
        scope = state;
    const cJSON* list = MIO_JSON_GetObjectItem(scope, "err");
    if (!list) {
        qm_log_error("[%s] %s parsing error\n", caller, "err");
        return -3;
    }
    if (!cJSON_IsArray(list)) {
        qm_log_error("[%s] %s is not an array\n", caller, "err");
        return -3;
    }
    const int count = std::min(MIO_JSON_GetArraySize(list), static_cast<int>(std::size(err.err)));
    err.err_len = static_cast<uint8_t>(count);
    for (int i = 0; i < count; ++i) err.err[i] = MIO_JSON_GetArrayItem(list, i)->valueint;
    return 0;
}

}  // namespace

extern "C" {

int qm_get_current_arm_state(qm_robot_handle* handle, qm_current_arm_state_t* state) {
    std::string text;
    int dof = 0;
    if (int rc = exchange_with_dof(__func__, handle, Request("get_current_arm_state"),
                                   Reply::query("current_arm_state"), text, dof))
        return rc;

    qm_err_t err{};
    if (int rc = parse_err_list(__func__, text, err)) return rc;
    KeyValue table[] = {array_member("joint", dof), array_member("pose", 6)};
    if (int rc = common_json_parse(__func__, text.c_str(), table, 2)) return rc;

    state->err = err;
    for (int i = 0; i < dof && i < ARM_DOF; ++i) state->joint[i] = wire::from_thousandths(table[0].value.array_value[i]);
    wire::pose_from6(table[1].value.array_value, state->pose);
    state->pose.quaternion = qm_algo_euler2quaternion(state->pose.euler);
    return 0;
}

int qm_get_current_joint_temperature(qm_robot_handle* handle, float* temperature) {
    return kJointTemperature.read(__func__, handle, temperature);
}

int qm_get_current_joint_current(qm_robot_handle* handle, float* current) {
    return kJointCurrent.read(__func__, handle, current);
}

int qm_get_current_joint_voltage(qm_robot_handle* handle, float* voltage) {
    return kJointVoltage.read(__func__, handle, voltage);
}

int qm_get_joint_degree(qm_robot_handle* handle, float* joint) { return kJointDegree.read(__func__, handle, joint); }

int qm_get_arm_all_state(qm_robot_handle* handle, qm_arm_all_state_t* state) {
    std::string text;
    int dof = 0;
    if (int rc = exchange_with_dof(__func__, handle, Request("get_arm_all_state"), Reply::query("arm_all_state"),
                                   text, dof))
        return rc;

    KeyValue table[] = {array_member("temperature", dof), array_member("current", dof), array_member("voltage", dof),
                        array_member("err_flag", dof), array_member("en_flag", dof)};
    if (int rc = common_json_parse(__func__, text.c_str(), table, 5)) return rc;
    qm_err_t err{};
    if (int rc = parse_err_list(__func__, text, err)) return rc;

    for (int i = 0; i < dof && i < ARM_DOF; ++i) {
        state->joint_temperature[i] = wire::from_thousandths(table[0].value.array_value[i]);
        state->joint_current[i] = wire::from_thousandths(table[1].value.array_value[i]);
        state->joint_voltage[i] = wire::from_thousandths(table[2].value.array_value[i]);
        state->joint_err_code[i] = table[3].value.array_value[i];
        state->joint_en_flag[i] = table[4].value.array_value[i];
    }
    state->err = err;
    return 0;
}

int qm_set_init_pose(qm_robot_handle* handle, const float* joint) {
    const int dof = dof_or_disconnected(__func__, handle);
    if (dof < 0) return -1;
    int angles[10];
    std::transform(joint, joint + dof, angles, wire::millidegrees);
    Request req("set_init_pose");
    req.ints("init_pose", std::span<const int>(angles, static_cast<size_t>(dof)));
    return send_set(__func__, handle, req, Reply("set_init_pose", "init_pose"));
}

int qm_get_init_pose(qm_robot_handle* handle, float* joint) { return kInitPose.read(__func__, handle, joint); }

}  // extern "C"
