// A user's C++ program over QM_Service, built against an installed tree only.
#include <cstdio>
#include <cstring>

#include "qm_service.h"

int main() {
    QM_Service qm;
    if (std::strcmp(qm.qm_api_version(), SDK_VERSION) != 0) return 1;
    qm.qm_algo_init_sys_data(QM_MODEL_QM_75_E, QM_MODEL_QM_B_E);
    float joints[ARM_DOF] = {};
    qm_pose_t pose = qm.qm_algo_forward_kinematics(nullptr, joints);
    if (!(pose.position.z > 0.3f && pose.position.z < 2.0f)) {
        std::fprintf(stderr, "implausible zero pose z = %f\n", pose.position.z);
        return 1;
    }
    std::printf("qm %s through QM_Service, zero pose z = %.4f m\n", qm.qm_api_version(), pose.position.z);
    return 0;
}
