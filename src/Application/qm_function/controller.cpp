// Controller housekeeping: supply state, arm power, run time, joint odometers and system errors.
#include "qm_command.h"
#include "qm_interface.h"

extern "C" {

int qm_get_controller_state(qm_robot_handle* handle, float* voltage, float* current, float* temperature,
                            int* err_flag) {
    return query_ints(__func__, handle, Request("get_controller_state"), Reply::query("controller_state"),
                      {{"voltage", store(voltage, wire::from_thousandths)},
                       {"current", store(current, wire::from_thousandths)},
                       {"temperature", store(temperature, wire::from_thousandths)},
                       {"err_flag", store(err_flag)}});
}

int qm_set_arm_power(qm_robot_handle* handle, int arm_power) {
    return send_set(__func__, handle, Request("set_arm_power", {{"arm_power", arm_power}}),
                    Reply("set_arm_power", "arm_power"));
}

int qm_get_arm_power_state(qm_robot_handle* handle, int* power_state) {
    return query_ints(__func__, handle, Request("get_arm_power_state"), Reply::query("arm_power_state"),
                      {{"power_state", store(power_state)}});
}

int qm_get_system_runtime(qm_robot_handle* handle, int* day, int* hour, int* min, int* sec) {
    return query_ints(__func__, handle, Request("get_system_runtime"), Reply::query("get_system_runtime"),
                      {{"day", store(day)}, {"hour", store(hour)}, {"min", store(min)}, {"sec", store(sec)}});
}

int qm_clear_system_runtime(qm_robot_handle* handle) {
    return send_set(__func__, handle, Request("clear_system_runtime"),
                    Reply("clear_system_runtime", "clear_state"));
}

// The odometer counts travel as they are: the controller's unit, unscaled.
int qm_get_joint_odom(qm_robot_handle* handle, float* joint_odom) {
    return query_dof_arrays(__func__, handle, Request("get_joint_odom"), Reply::query("get_joint_odom"),
                            {{"odom", store(joint_odom, wire::as_is)}});
}

int qm_clear_joint_odom(qm_robot_handle* handle) {
    return send_set(__func__, handle, Request("clear_joint_odom"), Reply("clear_joint_odom", "clear_state"));
}

int qm_clear_system_err(qm_robot_handle* handle) {
    return send_set(__func__, handle, Request("clear_system_err"), Reply("clear_system_err", "clear_state"));
}

}  // extern "C"
