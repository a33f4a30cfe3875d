// Self-collision checking, the run mode and the emergency stop.
#include "qm_command.h"
#include "qm_interface.h"

extern "C" {

int qm_set_self_collision_enable(qm_robot_handle* handle, bool state) {
    Request req("set_self_collision_enable");
    req.boolean("set_enable", state);
    return send_set(__func__, handle, req, Reply("set_self_collision_enable", "set_state"));
}

int qm_get_self_collision_enable(qm_robot_handle* handle, bool* state) {
    KeyValue table[] = {bool_member("enable_state")};
    const Request req("get_self_collision_enable");
    if (int rc = send_query(__func__, handle, req, Reply::query("get_self_collision_enable"), table))
        return rc;
    if (state) *state = table[0].value.bool_value;
    return 0;
}

// The controller judges this one by its "mode" member.
int qm_set_arm_run_mode(qm_robot_handle* handle, int mode) {
    Request req("set_arm_run_mode");
    req.integer("mode", mode);
    return send_set(__func__, handle, req, Reply("set_arm_run_mode", "mode"));
}

int qm_get_arm_run_mode(qm_robot_handle* handle, int* mode) {
    KeyValue table[] = {int_member("mode")};
    if (int rc = send_query(__func__, handle, Request("get_arm_run_mode"), Reply::query("get_arm_run_mode"),
                            table))
        return rc;
    if (mode) *mode = table[0].value.int_value;
    return 0;
}

int qm_set_arm_emergency_stop(qm_robot_handle* handle, bool state) {
    return qm_set_data_common(handle, state ? 1 : 0, "set_arm_emergency_stop", "emergency_stop");
}

}  // extern "C"
