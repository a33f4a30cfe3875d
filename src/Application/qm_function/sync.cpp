#include "qm_sync.h"

#include <array>

#include "qm_interface.h"

namespace {

// The queries write into the connection record; their out-records are scratch here.
template <class Record, int (*Query)(qm_robot_handle*, Record*)>
int sync_record(qm_robot_handle* handle) {
    Record scratch;
    return Query(handle, &scratch);
}
int sync_install_pose(qm_robot_handle* handle) {
    float x, y, z;
    return qm_get_install_pose(handle, &x, &y, &z);
}
template <int (*Query)(qm_robot_handle*, float*)>
int sync_joint_limit(qm_robot_handle* handle) {
    float limit[10];  // the dof may be set up to 10
    return Query(handle, limit);
}

constexpr std::array kSyncQueries = {
    &sync_record<qm_arm_software_version_t, qm_get_arm_software_info>,
    &sync_record<qm_realtime_push_config_t, qm_get_realtime_push>,
    &sync_record<qm_frame_t, qm_get_current_work_frame>,
    &sync_record<qm_frame_t, qm_get_current_tool_frame>,
    &sync_install_pose,
    &sync_joint_limit<qm_get_joint_min_pos>,
    &sync_joint_limit<qm_get_joint_max_pos>,
    &sync_joint_limit<qm_get_joint_max_acc>,
    &sync_joint_limit<qm_get_joint_max_speed>,
    &sync_record<qm_dh_t, qm_get_DH_data>,
};

}  // namespace

std::span<const SyncQuery> qm_sync_queries() { return kSyncQueries; }
