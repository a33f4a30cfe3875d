// Placeholder until the kinematics bridge lands (H3 replaces this whole file).
#include "qm_interface.h"

extern "C" void qm_algo_arm_state_set(qm_robot_handle*) {}
