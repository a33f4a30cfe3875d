// Drag teaching: starting and stopping it (with trajectory recording, multi-axis, by force),
// its sensitivity, and the replay of the taught trajectory with the return to its origin.
#include <chrono>
#include <optional>
#include <string>

#include "log.h"
#include "qm_command.h"
#include "qm_exchange.h"
#include "qm_handle.h"
#include "qm_interface.h"

namespace {

using namespace std::chrono_literals;

constexpr std::chrono::milliseconds kSendPause = 10ms;

bool six_axis(qm_force_type_e type) {
    return type == QM_MODEL_QM_SF_E || type == QM_MODEL_QM_ISF_E;
}

// Force drag needs a force sensor: 0 when the arm has one, else the refusal's code.
int force_drag_refusal(qm_robot_handle* handle) {
    std::optional<qm_robot_info_t> info = robot_info_of(handle);
    if (!info) return -1;
    if (info->force_type != QM_MODEL_QM_B_E) return 0;
    qm_log_error("QM_MODEL_QM_B_E not support force drag mode\n");
    return -4;
}

}  // namespace

extern "C" {

int qm_start_drag_teach(qm_robot_handle* handle, int trajectory_record) {
    Request req("start_drag_teach");
    req.integer("trajectory_record", trajectory_record);
    return send_set_quick(__func__, handle, req, "drag_teach");
}

int qm_stop_drag_teach(qm_robot_handle* handle) {
    return send_set_quick(__func__, handle, Request("stop_drag_teach"), "drag_teach");
}

// Refused with 1, the refusal code, on an arm without six-axis sensing (intended), and silently
// with -4 before the fourth controller generation.
int qm_start_multi_drag_teach(qm_robot_handle* handle, int mode, int singular_wall) {
    std::optional<qm_robot_info_t> info = robot_info_of(handle);
    if (!info) return -1;
    if (!six_axis(info->force_type)) {
        qm_log_error(
            "Non-six-dimensional force version, The configuration for singular_wall and the values in "
            "free_axes array are invalid.\n");
        return 1;
    }
    if (info->robot_controller_version != 4) return -4;
    Request req("start_multi_drag_teach");
    req.integer("mode", mode).integer("singular_wall", singular_wall);
    return send_set_quick(__func__, handle, req, "set_state");
}

// Without six-axis sensing only the frame goes out, with a warning.
int qm_start_multi_drag_teach_new(qm_robot_handle* handle, qm_multi_drag_teach_t teach_state) {
    std::optional<qm_robot_info_t> info = robot_info_of(handle);
    if (!info) return -1;
    Request req("start_multi_drag_teach");
    req.integer("frame", teach_state.frame);
    if (six_axis(info->force_type))
        req.integer("singular_wall", teach_state.singular_wall).ints("free_axes", teach_state.free_axes);
    else
        qm_log_warn(
            "Non-six-dimensional force version, The configuration for singular_wall and the values in "
            "free_axes array are invalid.\n");
    return send_set_quick(__func__, handle, req, "set_state");
}

int qm_set_drag_teach_sensitivity(qm_robot_handle* handle, int grade) {
    return qm_set_data_common(handle, grade, "set_drag_teach_sensitivity", "grade");
}
int qm_get_drag_teach_sensitivity(qm_robot_handle* handle, int* grade) {
    return qm_get_data_common(handle, grade, "get_drag_teach_sensitivity", "grade");
}

int qm_set_force_drag_mode(qm_robot_handle* handle, int mode) {
    if (int rc = force_drag_refusal(handle)) return rc;
    return qm_set_data_common(handle, mode, "set_force_drag_mode", "mode");
}
int qm_get_force_drag_mode(qm_robot_handle* handle, int* mode) {
    if (int rc = force_drag_refusal(handle)) return rc;
    return qm_get_data_common(handle, mode, "get_force_drag_mode", "mode");
}

// ---- replay ----

int qm_drag_trajectory_origin(qm_robot_handle* handle, int block) {
    const int sent = send_only(__func__, handle, Request("drag_trajectory_origin"), kSendPause);
    if (block == 0 || sent != 0) return sent;
    // The return is a joint move: watched first, then its arrival awaited; a missed arrival
    // only sends the wait back to watching.
    const MoveWait wait{.caller = __func__,
                        .device = 0,
                        .trajectory_type = QM_JOINT_SPACE_PLANNING_E,
                        .event_timeout_ms = 1000,
                        .poll_first = true,
                        .seen_pause_ms = 0,
                        .other_pause_ms = 10,
                        .idle_pause_ms = 100,
                        .idle_polls = 10,
                        .missed_event_pause_ms = 10,
                        .other_mode_result = sent};
    return qm_wait_move_arrival(handle, wait, block);
}

// A zero timeout only sends. Single-thread mode awaits the answer for `timeout` seconds; the
// threaded modes let the replay run out first and then collect the answer it left.
int qm_run_drag_trajectory(qm_robot_handle* handle, int timeout) {
    const Request req("run_drag_trajectory");
    if (timeout == 0) return send_only(__func__, handle, req, 0ms);
    if (g_mode == QM_SINGLE_MODE_E)
        return send_set(__func__, handle, req,
                        Reply("run_drag_trajectory", "run_state").within(seconds_wait(timeout)));

    if (int sent = send_only(__func__, handle, req, 0ms)) return sent;
    qm_arm_current_trajectory_e type = QM_NO_PLANNING_E;
    float target[ARM_DOF] = {};
    while (qm_get_arm_current_trajectory(handle, &type, target) == 0 &&
           type == QM_TRAJECTORY_REPLAY_PLANNING_E)
        sleep_cp(50);
    std::string text;
    const int rc =
        exchange(__func__, handle, Request::nothing(), Reply("run_drag_trajectory", "run_state"), text);
    sleep_cp(10);
    return rc < 1 ? rc : parse_qm_set_command(__func__, text.c_str(), "run_state");
}

int qm_pause_drag_trajectory(qm_robot_handle* handle) {
    return send_set_quick(__func__, handle, Request("pause_drag_trajectory"), "pause_state");
}
int qm_continue_drag_trajectory(qm_robot_handle* handle) {
    return send_set_quick(__func__, handle, Request("continue_drag_trajectory"), "continue_state");
}
int qm_stop_drag_trajectory(qm_robot_handle* handle) {
    return send_set_quick(__func__, handle, Request("stop_drag_trajectory"), "stop_state");
}

}  // extern "C"
