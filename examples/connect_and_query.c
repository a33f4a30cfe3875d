/* Connects to one controller, prints what the library knows about the arm and the arm's present
 * state, disconnects. Plain C99 over qm_interface.h. Usage: connect_and_query [ip] [port] */
#include <stdio.h>
#include <stdlib.h>

#include "qm_interface.h"

int main(int argc, char** argv) {
    const char* ip = argc > 1 ? argv[1] : "127.0.0.1";
    int port = argc > 2 ? atoi(argv[2]) : 8080;

    printf("qm %s\n", qm_api_version());
    if (qm_init(QM_DUAL_MODE_E) != 0) return 1;

    qm_robot_handle* arm = qm_create_robot_arm(ip, port);
    if (!arm || arm->id < 0) {
        fprintf(stderr, "could not connect to %s:%d\n", ip, port);
        if (arm) qm_delete_robot_arm(arm);
        qm_destory();
        return 1;
    }
    int rc = 1;
    qm_robot_info_t info;
    qm_arm_software_version_t software;
    qm_current_arm_state_t state;
    if (qm_get_robot_info(arm, &info) == 0 && qm_get_arm_software_info(arm, &software) == 0 &&
        qm_get_current_arm_state(arm, &state) == 0) {
        printf("arm %d: %s, model %d, %d joints, force type %d, controller generation %d\n", arm->id,
               software.product_version, (int)info.arm_model, info.arm_dof, (int)info.force_type,
               info.robot_controller_version);
        printf("joints (degrees):");
        for (int i = 0; i < info.arm_dof; ++i) printf(" %.3f", state.joint[i]);
        printf("\ntool at (%.4f, %.4f, %.4f) m, turned (%.3f, %.3f, %.3f) rad\nerror codes:",
               state.pose.position.x, state.pose.position.y, state.pose.position.z, state.pose.euler.rx,
               state.pose.euler.ry, state.pose.euler.rz);
        for (int i = 0; i < state.err.err_len; ++i) printf(" %d", state.err.err[i]);
        printf("\n");
        rc = 0;
    } else {
        fprintf(stderr, "the arm did not answer\n");
    }
    qm_delete_robot_arm(arm);
    qm_destory();
    return rc;
}
