// Layouts that language bindings (ctypes and the like) depend on.
#include <cstddef>

#include "qm_interface.h"

static_assert(sizeof(qm_robot_handle) == 4);
static_assert(sizeof(qm_pose_t) == 40);
static_assert(offsetof(qm_pose_t, quaternion) == 12 && offsetof(qm_pose_t, euler) == 28);
static_assert(sizeof(qm_frame_t) == 68);
static_assert(offsetof(qm_frame_t, pose) == 12 && offsetof(qm_frame_t, payload) == 52);
static_assert(sizeof(qm_robot_info_t) == 16);
static_assert(offsetof(qm_robot_info_t, arm_model) == 4 && offsetof(qm_robot_info_t, force_type) == 8 &&
              offsetof(qm_robot_info_t, robot_controller_version) == 12);
static_assert(sizeof(qm_event_push_data_t) == 24);
static_assert(offsetof(qm_event_push_data_t, trajectory_state) == 8 &&
              offsetof(qm_event_push_data_t, device) == 12 &&
              offsetof(qm_event_push_data_t, program_id) == 20);
static_assert(offsetof(qm_realtime_arm_joint_state_t, arm_ip) == 4);
static_assert(offsetof(qm_realtime_arm_joint_state_t, joint_status) == 20);
static_assert(sizeof(qm_joint_status_t) == 7 * 4 * 5 + 8 + 16);
static_assert(offsetof(qm_realtime_arm_joint_state_t, force_sensor) == 20 + sizeof(qm_joint_status_t));
static_assert(sizeof(qm_err_t) == 100);
static_assert(sizeof(qm_dh_t) == 128);

// Enumerations cross the wire and the bindings by value.
static_assert(QM_TRIPLE_MODE_E == 2 && QM_MODEL_UNIVERSAL_E == 9 && QM_MODEL_QM_ISF_E == 3 &&
              QM_TRAJECTORY_REPLAY_PLANNING_E == 5 && QM_TECH_DEMONSTRATION_E == 14);
