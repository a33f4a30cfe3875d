// Tool and work frames: created, selected, updated, deleted, listed and read; the current
// ones are also kept in the connection record and as process-wide transforms.
#include <cstring>
#include <mutex>

#include "log.h"
#include "qm_command.h"
#include "qm_frames.h"
#include "qm_handle.h"
#include "qm_interface.h"

namespace {

std::mutex g_matrix_mutex;
qm_matrix_t Tool_Matrix{};
qm_matrix_t Frame_Matrix{};

// n numbers of an integer array member, or false.
bool read_ints(const cJSON* array, int n, int* out) {
    if (!cJSON_IsArray(array) || MIO_JSON_GetArraySize(array) < n) return false;
    for (int i = 0; i < n; ++i) {
        const cJSON* element = MIO_JSON_GetArrayItem(array, i);
        if (!cJSON_IsNumber(element)) return false;
        out[i] = element->valueint;
    }
    return true;
}

// ---- current frames ----

struct CurrentFrame {
    const char* command;
    const char* reply_key;
    const char* name_key;
    bool tool;  // a tool frame carries payload and centre of mass too
    const char* reply_err;
    const char* name_err;
    const char* pose_err;
    const char* name_found;
    const char* pose_found;
    qm_frame_t qm_handle_t::*cache;
    qm_matrix_t* matrix;
};

const CurrentFrame kCurrentTool{"get_current_tool_frame",
                                "current_tool_frame",
                                "tool_name",
                                true,
                                "[get_current_tool_frame] Current tool frame parse err\n",
                                "[get_current_tool_frame] Tool frame Name parse err\n",
                                "[get_current_tool_frame] Tool frame pose parse err\n",
                                "[get_current_tool_frame] Tool frame Name: %s\n",
                                "[get_current_tool_frame] Tool frame pose: (%.3f, %.3f, %.3f, %.3f, %.3f, %.3f)\n",
                                &qm_handle_t::tool_frame,
                                &Tool_Matrix};

const CurrentFrame kCurrentWork{"get_current_work_frame",
                                "current_work_frame",
                                "frame_name",
                                false,
                                "[get_current_work_frame] Current Work frame parse err\n",
                                "[get_current_work_frame] Work frame Name parse err\n",
                                "[get_current_work_frame] Work frame pose parse err\n",
                                "[get_current_work_frame] Work frame Name: %s\n",
                                "[get_current_work_frame] Work frame pose: (%.3f, %.3f, %.3f, %.3f, %.3f, %.3f)\n",
                                &qm_handle_t::work_frame,
                                &Frame_Matrix};

// Payload and centre of mass of a tool frame. Negative values are refused on purpose.
int decode_payload(const cJSON* reply, qm_frame_t& frame) {
    const int payload = MIO_JSON_GetObjectItemInt(reply, "payload");
    if (payload < 0) {
        qm_log_error("[get_current_tool_frame] Tool frame payload parse err\n");
        return -1;
    }
    frame.payload = wire::from_thousandths(payload);
    qm_log_debug("[get_current_tool_frame] Tool frame payloda: %.3f\n", frame.payload);

    int position[3];
    if (!read_ints(MIO_JSON_GetObjectItem(reply, "position"), 3, position) || position[0] < 0 || position[1] < 0 ||
        position[2] < 0) {
        qm_log_error("[get_current_tool_frame] Tool frame position parse err\n");
        return -1;
    }
    frame.x = wire::from_micrometres(position[0]);
    frame.y = wire::from_micrometres(position[1]);
    frame.z = wire::from_micrometres(position[2]);
    qm_log_debug("[get_current_tool_frame] Tool frame position: (%.3f, %.3f, %.3f)\n", frame.x, frame.y, frame.z);
    return 0;
}

int decode_current(const CurrentFrame& row, const char* text, qm_frame_t& frame) {
    JsonPtr root = json_parse(text);
    if (!cJSON_IsObject(root.get())) {
        qm_log_text(LOG_LEVEL_ERROR, row.reply_err);
        return -1;
    }
    const char* name = MIO_JSON_GetObjectItemStr(root.get(), row.name_key);
    if (!name) {
        qm_log_text(LOG_LEVEL_ERROR, row.name_err);
        return -1;
    }
    copy_text(frame.frame_name, name, 10);
    qm_log_debug(row.name_found, frame.frame_name);

    int pose[6];
    if (!read_ints(MIO_JSON_GetObjectItem(root.get(), "pose"), 6, pose)) {
        qm_log_text(LOG_LEVEL_ERROR, row.pose_err);
        return -1;
    }
    wire::pose_from6(pose, frame.pose);
    const qm_pose_t& p = frame.pose;
    qm_log_debug(row.pose_found, p.position.x, p.position.y, p.position.z, p.euler.rx, p.euler.ry, p.euler.rz);
    return row.tool ? decode_payload(root.get(), frame) : 0;
}

int read_current(const char* caller, const CurrentFrame& row, qm_robot_handle* handle, qm_frame_t* out) {
    std::string text;
    if (int rc = exchange(caller, handle, Request(row.command), Reply::query(row.reply_key), text); rc < 1)
        return rc;
    qm_frame_t frame{};
    if (int rc = decode_current(row, text.c_str(), frame)) return rc;
    *out = frame;
    {
        const qm_matrix_t matrix = qm_algo_pos2matrix(frame.pose);
        std::lock_guard lock(g_matrix_mutex);
        *row.matrix = matrix;
    }
    return with_record(handle, [&](qm_handle_t& record) { record.*row.cache = frame; });
}

// ---- name lists ----

// The caller's array holds this many names (documented with the two list functions); more are dropped.
constexpr int kMaxFrameNames = 100;

int decode_names(const char* text, qm_frame_name_t* names, int* len) {
    JsonPtr root = json_parse(text);
    if (!root) {
        qm_log_error("Get total frame name parse err\n");
        return -2;
    }
    const cJSON* list = MIO_JSON_GetObjectItem(root.get(), "frame_names");
    if (!list) list = MIO_JSON_GetObjectItem(root.get(), "tool_names");
    if (!cJSON_IsArray(list)) return -2;
    int i = 0;
    for (const cJSON* element = list->child; element && i < kMaxFrameNames; element = element->next, ++i) {
        const char* name = cJSON_IsString(element) ? element->valuestring : "";
        // The controller ends its list with a "NULL" entry; whatever follows is not a frame.
        if (std::strcmp(name, "NULL") == 0) break;
        copy_text(names[i].name, name);
        *len = i + 1;
    }
    return 0;
}

int read_names(const char* caller, qm_robot_handle* handle, const char* command, const char* reply_key,
               qm_frame_name_t* names, int* len) {
    std::string text;
    if (int rc = exchange(caller, handle, Request(command), Reply::query(reply_key), text); rc < 1) return rc;
    return decode_names(text.c_str(), names, len);
}

// ---- given frames ----

struct GivenFrame {
    const char* command;
    const char* name_key;
    const char* reply_key;
    bool tool;
};

constexpr GivenFrame kGivenTool{"get_tool_frame", "tool_name", "given_tool_frame", true};
constexpr GivenFrame kGivenWork{"get_work_frame", "frame_name", "given_work_frame", false};

// The controller answers an unknown name under the command's own key with a false "get_state";
// that answer is collected here after the frame did not come.
int rewait_refusal(const char* caller, qm_robot_handle* handle, const GivenFrame& row, int failed) {
    if (failed == -1) return failed;
    std::string text;
    const int rc = exchange(caller, handle, Request::nothing(), Reply::query(row.command), text);
    if (rc < 1) return rc;
    const int judged = parse_qm_set_command(caller, text.c_str(), "get_state");
    return judged >= 0 || g_mode != QM_SINGLE_MODE_E ? judged : 1;
}

int read_given(const char* caller, qm_robot_handle* handle, const GivenFrame& row, const char* name,
               qm_frame_t& frame) {
    Request req(row.command);
    req.str(row.name_key, name);
    std::string text;
    const int rc = exchange(caller, handle, req, Reply::query(row.reply_key), text);
    if (rc < 1) return rewait_refusal(caller, handle, row, rc);

    KeyValue table[] = {str_member(row.name_key), array_member("pose", 6), int_member("payload"),
                        array_member("position", 3)};
    // A reply that does not parse returns the exchange's positive result: intended.
    if (common_json_parse(caller, text.c_str(), table, row.tool ? 4 : 2) != 0) return rc;
    copy_text(frame.frame_name, table[0].value.str_value);
    wire::pose_from6(table[1].value.array_value, frame.pose);
    if (row.tool) {
        frame.payload = wire::from_thousandths(table[2].value.int_value);
        frame.x = wire::from_micrometres(table[3].value.array_value[0]);
        frame.y = wire::from_micrometres(table[3].value.array_value[1]);
        frame.z = wire::from_micrometres(table[3].value.array_value[2]);
    }
    return 0;
}

// ---- creating and changing frames ----

// Members of a tool frame as set_manual_tool_frame and update_tool_frame send them.
Request tool_frame_request(const char* command, const qm_frame_t& frame) {
    Request req(command);
    req.str("tool_name", field_text(frame.frame_name).c_str())
        .ints("tool_pose", wire::pose6(frame.pose))
        .integer("payload", wire::thousandths(frame.payload))
        .ints("position", {wire::micrometres(frame.x), wire::micrometres(frame.y), wire::micrometres(frame.z)});
    return req;
}

Request work_frame_request(const char* command, const char* name, const qm_pose_t& pose) {
    Request req(command);
    req.str("frame_name", name).ints("frame_pose", wire::pose6(pose));
    return req;
}

// Selecting or deleting a frame by name changes the current one, which is read again.
int by_name_then_reread(const char* caller, qm_robot_handle* handle, const char* command, const char* name_key,
                        const char* name, const char* checked, int (*reread)(qm_robot_handle*, qm_frame_t*)) {
    Request req(command);
    req.str(name_key, name);
    if (int rc = send_set(caller, handle, req, Reply(command, checked))) return rc;
    qm_frame_t current;
    return reread(handle, &current);
}

}  // namespace

qm_matrix_t qm_tool_matrix() {
    std::lock_guard lock(g_matrix_mutex);
    return Tool_Matrix;
}

qm_matrix_t qm_frame_matrix() {
    std::lock_guard lock(g_matrix_mutex);
    return Frame_Matrix;
}

extern "C" {

// ---- tool frames ----

int qm_set_auto_tool_frame(qm_robot_handle* handle, int point_num) {
    Request req("set_auto_tool_frame");
    req.integer("point_num", point_num);
    return send_set(__func__, handle, req, Reply("set_auto_tool_frame", "auto_tool_frame"));
}

int qm_generate_auto_tool_frame(qm_robot_handle* handle, const char* name, float payload, float x, float y, float z) {
    Request req("generate_auto_tool_frame");
    req.str("tool_name", name)
        .integer("payload", wire::thousandths(payload))
        .ints("position", {wire::micrometres(x), wire::micrometres(y), wire::micrometres(z)});
    return send_set(__func__, handle, req, Reply("set_auto_tool_frame", "auto_tool_frame"));
}

int qm_set_manual_tool_frame(qm_robot_handle* handle, qm_frame_t frame) {
    const int rc = send_set(__func__, handle, tool_frame_request("set_manual_tool_frame", frame),
                            Reply("set_manual_tool_frame", "manual_tool_frame"));
    if (rc == 1 || rc == -3)
        qm_log_error("[%s] Failed to create the tool frame system, please check if the name already exists",
                     __func__);
    return rc;
}

int qm_change_tool_frame(qm_robot_handle* handle, const char* tool_name) {
    return by_name_then_reread(__func__, handle, "set_change_tool_frame", "tool_name", tool_name,
                               "change_tool_frame", qm_get_current_tool_frame);
}

int qm_delete_tool_frame(qm_robot_handle* handle, const char* tool_name) {
    return by_name_then_reread(__func__, handle, "set_delete_tool_frame", "tool_name", tool_name,
                               "delete_tool_frame", qm_get_current_tool_frame);
}

int qm_update_tool_frame(qm_robot_handle* handle, qm_frame_t frame) {
    return send_set(__func__, handle, tool_frame_request("update_tool_frame", frame),
                    Reply("update_tool_frame", "update_state"));
}

int qm_get_current_tool_frame(qm_robot_handle* handle, qm_frame_t* tool_frame) {
    return read_current(__func__, kCurrentTool, handle, tool_frame);
}

int qm_get_total_tool_frame(qm_robot_handle* handle, qm_frame_name_t* frame_names, int* len) {
    return read_names(__func__, handle, "get_total_tool_frame", "total_tool_frame", frame_names, len);
}

int qm_get_given_tool_frame(qm_robot_handle* handle, const char* name, qm_frame_t* frame) {
    return read_given(__func__, handle, kGivenTool, name, *frame);
}

// ---- work frames ----

int qm_set_auto_work_frame(qm_robot_handle* handle, const char* workname, int point_num) {
    Request req("set_auto_work_frame");
    req.str("frame_name", workname).integer("point_num", point_num);
    return send_set(__func__, handle, req, Reply("set_auto_work_frame", "auto_work_frame"));
}

int qm_set_manual_work_frame(qm_robot_handle* handle, const char* work_name, qm_pose_t pose) {
    return send_set(__func__, handle, work_frame_request("set_manual_work_frame", work_name, pose),
                    Reply("set_manual_work_frame", "manual_work_frame"));
}

int qm_change_work_frame(qm_robot_handle* handle, const char* frame_name) {
    return by_name_then_reread(__func__, handle, "set_change_work_frame", "frame_name", frame_name,
                               "change_work_frame", qm_get_current_work_frame);
}

int qm_delete_work_frame(qm_robot_handle* handle, const char* frame_name) {
    return by_name_then_reread(__func__, handle, "set_delete_work_frame", "frame_name", frame_name,
                               "delete_work_frame", qm_get_current_work_frame);
}

int qm_update_work_frame(qm_robot_handle* handle, const char* work_name, qm_pose_t pose) {
    return send_set(__func__, handle, work_frame_request("update_work_frame", work_name, pose),
                    Reply("update_work_frame", "update_state"));
}

int qm_get_current_work_frame(qm_robot_handle* handle, qm_frame_t* work_frame) {
    return read_current(__func__, kCurrentWork, handle, work_frame);
}

int qm_get_total_work_frame(qm_robot_handle* handle, qm_frame_name_t* frame_names, int* len) {
    return read_names(__func__, handle, "get_total_work_frame", "total_work_frame", frame_names, len);
}

int qm_get_given_work_frame(qm_robot_handle* handle, const char* name, qm_pose_t* pose) {
    qm_frame_t frame{};
    const int rc = read_given(__func__, handle, kGivenWork, name, frame);
    if (rc == 0) *pose = frame.pose;
    return rc;
}

}  // extern "C"
