/* A user's C program, built against an installed tree only: the library's version and one
 * forward kinematics computation, which need no controller. */
#include <stdio.h>
#include <string.h>

#include "qm_interface.h"

int main(void) {
    if (strcmp(qm_api_version(), SDK_VERSION) != 0) {
        fprintf(stderr, "library %s, header %s\n", qm_api_version(), SDK_VERSION);
        return 1;
    }
    qm_algo_init_sys_data(QM_MODEL_QM_65_E, QM_MODEL_QM_B_E);
    float joints[ARM_DOF] = {0};
    qm_pose_t pose = qm_algo_forward_kinematics(NULL, joints);
    /* The arm's zero position stands upright: the flange is well above the base. */
    if (!(pose.position.z > 0.3f && pose.position.z < 2.0f)) {
        fprintf(stderr, "implausible zero pose z = %f\n", pose.position.z);
        return 1;
    }
    printf("qm %s, kinematics %s, zero pose at (%.4f, %.4f, %.4f) m\n", qm_api_version(), qm_algo_version(),
           pose.position.x, pose.position.y, pose.position.z);
    return 0;
}
