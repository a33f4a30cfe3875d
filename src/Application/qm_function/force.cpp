// Force sensing: reading and zeroing the six-axis and the one-axis sensor, and their
// automatic and manual calibration.
#include <chrono>
#include <optional>

#include "log.h"
#include "qm_command.h"
#include "qm_interface.h"

namespace {

using namespace std::chrono_literals;

constexpr int kAxes = 6;
constexpr const char* kManualPoses[] = {"manual_set_force_pose1", "manual_set_force_pose2",
                                        "manual_set_force_pose3", "manual_set_force_pose4"};

// A calibration step: when awaited, the controller's "set_force_sensor" answer ends the
// calibration (it may take up to 30 s); otherwise it is only sent.
int calibrate(const char* caller, qm_robot_handle* handle, const Request& req, bool await_end) {
    std::optional<Reply> end;
    if (await_end) end = Reply("set_force_sensor", "set_state").within(30000ms);
    return send_set_or_only(caller, handle, req, end, 10ms);
}

}  // namespace

extern "C" {

// ---- six-axis sensor ----

int qm_get_force_data(qm_robot_handle* handle, qm_force_data_t* data) {
    return query_arrays(
        __func__, handle, Request("get_force_data"), Reply::query("get_force_data"),
        {{"force_data", store(data->force_data, wire::from_thousandths), kAxes},
         {"zero_force_data", store(data->zero_force_data, wire::from_thousandths), kAxes},
         {"work_zero_force_data", store(data->work_zero_force_data, wire::from_thousandths), kAxes},
         {"tool_zero_force_data", store(data->tool_zero_force_data, wire::from_thousandths), kAxes}});
}

int qm_clear_force_data(qm_robot_handle* handle) {
    return send_set_quick(__func__, handle, Request("clear_force_data"), "clear_state");
}

int qm_set_force_sensor(qm_robot_handle* handle, bool block) {
    return calibrate(__func__, handle, Request("set_force_sensor"), block);
}

// The four poses go out one call each; only the fourth can await the end of the calibration.
int qm_manual_set_force(qm_robot_handle* handle, int count, float* joint, bool block) {
    if (count < 1 || count > 4) return 1;  // names no pose: refused before anything goes out
    std::optional<JointTarget> target = joint_target(__func__, handle, joint);
    if (!target) return -1;
    Request req(kManualPoses[count - 1]);
    req.ints("joint", target->span());
    return calibrate(__func__, handle, req, count == 4 && block);
}

int qm_stop_set_force_sensor(qm_robot_handle* handle) {
    return send_set_quick(__func__, handle, Request("stop_set_force_sensor"), "stop_state");
}

// ---- one-axis sensor ----

int qm_get_Fz(qm_robot_handle* handle, qm_fz_data_t* data) {
    std::optional<qm_robot_info_t> info = robot_info_of(handle);
    if (!info) return -1;
    if (info->force_type != QM_MODEL_QM_ZF_E) {
        qm_log_error("arm force type check err!");
        return -4;
    }
    return query_ints(__func__, handle, Request("get_Fz"), Reply::query("get_Fz"),
                      {{"Fz", store(&data->Fz, wire::from_thousandths)},
                       {"zero_Fz", store(&data->zero_Fz, wire::from_thousandths)},
                       {"work_zero_Fz", store(&data->work_zero_Fz, wire::from_thousandths)},
                       {"tool_zero_Fz", store(&data->tool_zero_Fz, wire::from_thousandths)}});
}

int qm_clear_Fz(qm_robot_handle* handle) {
    return send_set_quick(__func__, handle, Request("clear_Fz"), "set_state");
}

int qm_auto_set_Fz(qm_robot_handle* handle, bool block) {
    return calibrate(__func__, handle, Request("auto_set_Fz"), block);
}

int qm_manual_set_Fz(qm_robot_handle* handle, float* joint1, float* joint2, bool block) {
    std::optional<JointTarget> pose1 = joint_target(__func__, handle, joint1);
    if (!pose1) return -1;
    std::optional<JointTarget> pose2 = joint_target(__func__, handle, joint2);
    if (!pose2) return -1;
    Request req("manual_set_Fz");
    req.ints("pose1", pose1->span()).ints("pose2", pose2->span());
    return calibrate(__func__, handle, req, block);
}

}  // extern "C"
