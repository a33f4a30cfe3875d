/* Connects to one controller, prints what the library knows about the arm, disconnects.
 * Usage: connect_and_query [ip] [port] */
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
    qm_robot_info_t info;
    if (qm_get_robot_info(arm, &info) == 0)
        printf("arm %d: model %d, %d joints, force type %d, controller generation %d\n", arm->id,
               (int)info.arm_model, info.arm_dof, (int)info.force_type, info.robot_controller_version);
    qm_delete_robot_arm(arm);
    qm_destory();
    return 0;
}
