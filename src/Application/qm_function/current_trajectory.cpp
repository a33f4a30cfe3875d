// qm_get_arm_current_trajectory: which trajectory the controller plans, and its target.
#include <algorithm>
#include <cstring>
#include <string>

#include "log.h"
#include "mio_json.h"
#include "qm_exchange.h"
#include "qm_handle.h"
#include "qm_interface.h"

namespace {

constexpr const char* kCaller = "qm_get_arm_current_trajectory";
constexpr int kReplyLen = 1024;
constexpr int kTimeoutMs = 1000;
constexpr int kPoseValues = 6;

enum class Target { joints, pose };

struct TrajectoryKind {
    const char* text;
    qm_arm_current_trajectory_e type;
    Target target;
    const char* shown;  // the debug line naming it
};

constexpr TrajectoryKind kKinds[] = {
    {"none", QM_NO_PLANNING_E, Target::joints, "[qm_get_arm_current_trajectory] Current trajectory is None!\n"},
    {"movej", QM_JOINT_SPACE_PLANNING_E, Target::joints, "[qm_get_arm_current_trajectory] Current trajectory is MoveJ!\n"},
    {"movel", QM_CARTESIAN_LINEAR_PLANNING_E, Target::pose, "[qm_get_arm_current_trajectory] Current trajectory is MoveL!\n"},
    {"movec", QM_CARTESIAN_ARC_PLANNING_E, Target::pose, "[qm_get_arm_current_trajectory] Current trajectory is MoveC!\n"},
    {"moves", QM_SPLINE_CURVE_MOTION_PLANNING_E, Target::pose, "[qm_get_arm_current_trajectory] Current trajectory is MoveS!\n"},
    {"re_trajectory", QM_TRAJECTORY_REPLAY_PLANNING_E, Target::joints, "[qm_get_arm_current_trajectory] Current trajectory is Re-Trajectory!\n"},
};

const TrajectoryKind* kind_of(const char* text) {
    if (!text) return nullptr;
    for (const TrajectoryKind& kind : kKinds)
        if (std::strcmp(kind.text, text) == 0) return &kind;
    return nullptr;
}

bool all_numbers(const cJSON* array) {
    if (!cJSON_IsArray(array)) return false;
    for (const cJSON* element = array->child; element; element = element->next)
        if (!cJSON_IsNumber(element)) return false;
    return true;
}

// Joint targets in degrees; a pose as metres then radians.
int convert(const TrajectoryKind& kind, const cJSON* data, float* out) {
    const int size = cJSON_GetArraySize(data);
    const int count = kind.target == Target::pose ? std::min(size, kPoseValues) : std::min(size, ARM_DOF);
    std::string values;
    for (int i = 0; i < count; ++i) {
        const int raw = cJSON_GetArrayItem(data, i)->valueint;
        const bool metres = kind.target == Target::pose && i < 3;
        const float value = static_cast<float>(raw) / (metres ? 1000000.0f : 1000.0f);
        if (out) out[i] = value;
        values += ' ' + std::to_string(value);
    }
    qm_log_text(LOG_LEVEL_DEBUG, kind.shown);
    qm_log_debug("[qm_get_arm_current_trajectory]%s\n", values.c_str());
    return size;
}

}  // namespace

extern "C" int qm_get_arm_current_trajectory(qm_robot_handle* handle, qm_arm_current_trajectory_e* type,
                                             float* data) {
    const JsonValue request[] = {{JSON_STRING, "command", 0, {.str_value = "get_arm_current_trajectory"}}};
    char reply[kReplyLen] = {};
    int length = qm_pack_lock_set(kCaller, handle, request, 1, "arm_current_trajectory", reply, sizeof reply,
                                  kTimeoutMs);
    if (length < 1) return length;

    JsonPtr root = json_parse(reply);
    const cJSON* values = MIO_JSON_GetObjectItem(root.get(), "data");
    if (!values) {
        qm_log_error("[qm_get_arm_current_trajectory] Get arm current trajectory parse err\n");
        return -1;
    }
    if (!all_numbers(values)) {
        qm_log_error("[qm_get_arm_current_trajectory] Data type parse err\n");
        return -1;
    }
    const char* text = MIO_JSON_GetObjectItemStr(root.get(), "type");
    if (!text) {
        qm_log_error("[qm_get_arm_current_trajectory] Get arm current trajectory parse err\n");
        return -1;
    }
    const TrajectoryKind* kind = kind_of(text);
    if (!kind) return -1;

    const int size = convert(*kind, values, data);
    if (type) *type = kind->type;
    if (kind->type == QM_NO_PLANNING_E && size >= 1 && size <= 10) {
        // With nothing planned the controller reports the present joints: one per joint.
        TableReadLock lock;
        if (qm_handle_t* record = qm_get_qm_handle_by_robot_handle(handle)) record->arm_dof = size;
    }
    return 0;
}
